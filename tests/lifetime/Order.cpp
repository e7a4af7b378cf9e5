#include "tests/lifetime/Order.h"

#include <array>

namespace OvMemTest {

namespace {

constexpr std::size_t count = 3;

std::string inWords(const Event& event) {
    const std::string connection = std::to_string(event.connection);
    switch (event.kind) {
        case Event::Create:
            return "create " + connection;
        case Event::Copy:
            return "copy " + std::to_string(event.source) + " to " + connection;
        case Event::Use:
            return "use " + connection;
        case Event::Destroy:
            break;
    }
    return "destroy " + connection;
}

// Goes through all orders, one event at a time.
class Search {
public:
    std::vector<Order> run() {
        goOn();
        return found;
    }

private:
    enum Stage { Absent, New, Used, Gone };

    static bool isAlive(Stage stage) { return stage == New || stage == Used; }

    void goOn() {
        bool over = true;
        bool mayBegin = true;
        for (std::size_t i = 0; i < count; ++i) {
            if (stages[i] == Gone) {
                continue;
            }
            over = false;
            if (stages[i] != Absent) {
                goThrough({stages[i] == New ? Event::Use : Event::Destroy, i});
            } else if (mayBegin) {
                begin(i);
                mayBegin = false;
            }
        }
        if (over) {
            found.push_back(order);
        }
    }

    void begin(std::size_t i) {
        goThrough({Event::Create, i});
        for (std::size_t source = 0; source < i; ++source) {
            if (isAlive(stages[source])) {
                goThrough({Event::Copy, i, source});
            }
        }
    }

    void goThrough(const Event& event) {
        Stage& stage = stages[event.connection];
        const Stage before = stage;
        stage = static_cast<Stage>(before + 1);
        order.push_back(event);
        goOn();
        order.pop_back();
        stage = before;
    }

    std::array<Stage, count> stages{};
    Order order;
    std::vector<Order> found;
};

}  // namespace

std::string inWords(const Order& order) {
    std::string words;
    for (const Event& event : order) {
        words += (words.empty() ? "" : ", ") + inWords(event);
    }
    return words;
}

std::vector<Order> allOrders() {
    return Search().run();
}

}  // namespace OvMemTest
