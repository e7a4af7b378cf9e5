#include "tests/emulator/StoreModel.h"

namespace OvMemTest {

std::string StoreModel::answer(const StoreStep& step) {
    using Kind = StoreStep::Kind;
    if (step.kind == Kind::complete) {
        complete(got.at(step.get));
        return "completed";
    }
    auto& clients = servers[step.server];
    if (step.kind == Kind::registerClient) {
        clients[step.client];
        return list(step.server);
    }
    const auto client = clients.find(step.client);
    if (client == clients.end()) {
        if (step.kind == Kind::get || step.kind == Kind::getComplete) {
            got.push_back({step.server, step.client, 0});
        }
        return "none";
    }
    switch (step.kind) {
        case Kind::unregisterClient:
            clients.erase(client);
            return list(step.server);
        case Kind::put:
            ++puts;
            for (auto& [name, queue] : clients) {
                if (name != step.client && !step.events.empty()) {
                    queue.push_back({puts, step.events});
                }
            }
            return list(step.server);
        case Kind::get:
            return get(step, client->second);
        case Kind::getComplete: {
            std::string events = get(step, client->second);
            complete(got.back());
            return events;
        }
        default:
            return list(step.server);
    }
}

void StoreModel::forgetGetsAfter(std::size_t count) {
    for (; count < got.size(); ++count) {
        got.at(count).last = 0;
    }
}

std::string StoreModel::list(const std::string& server) const {
    std::string text;
    for (const auto& client : servers.at(server)) {
        text += "[" + client.first + "]";
    }
    return text;
}

std::string StoreModel::get(const StoreStep& step, const Queue& queue) {
    std::string text;
    got.push_back({step.server, step.client, 0});
    for (const Event& event : queue) {
        if (!text.empty() && text.size() + event.text.size() > portion) {
            break;
        }
        text += event.text;
        got.back().last = event.put;
    }
    return text;
}

void StoreModel::complete(const Got& done) {
    auto& clients = servers[done.server];
    const auto client = clients.find(done.client);
    if (client == clients.end()) {
        return;
    }
    Queue& queue = client->second;
    while (!queue.empty() && queue.front().put <= done.last) {
        queue.pop_front();
    }
}

}  // namespace OvMemTest
