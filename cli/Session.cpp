#include "cli/Session.h"

#include <cstring>
#include <optional>

#include <unistd.h>

#include "cli/EventInput.h"
#include "cli/Failure.h"
#include "cli/JsonObject.h"
#include "cli/RescueFile.h"
#include "cli/StandardStreams.h"
#include "cli/TerminalText.h"

namespace ovmem::cli {

namespace {

std::string count(std::size_t number, const char* singular) {
    return std::to_string(number) + ' ' + singular + (number == 1 ? "" : "s");
}

long long sizeOf(const std::string& bytes) {
    return static_cast<long long>(bytes.size());
}

Failure notAnswered(const Written& written) {
    return {ExitCode::InputOutput,
            "Cannot write the answer to standard output: " +
                std::string(std::strerror(written.error)) + ".",
            "What was asked for is done; only the answer is missing."};
}

Failure notDelivered(const std::string& events, const Written& written) {
    const auto rescue = saveToRescueFile(events);
    return {ExitCode::InputOutput,
            "Cannot write the events to standard output: " +
                std::string(std::strerror(written.error)) + ".",
            rescue ? "The service has handed them out and will not do so "
                     "again. All of them (" +
                         count(events.size(), "byte") +
                         ") are saved in this file: " + *rescue
                   : "They could not be saved in a file either and are lost."};
}

}  // namespace

Session::Session(const Options& asked, const Reporter& voice, Progress& reached)
    : options(asked), reporter(voice), progress(reached) {
    progress.command = options.command;
    progress.namesServer = options.server.has_value();
}

ExitCode Session::run() {
    requireWritableOutput();
    switch (options.command) {
        case Command::Register:
            return registerClient();
        case Command::Clients:
            return clients();
        case Command::Put:
            return put();
        case Command::Get:
            return get();
        case Command::Unregister:
            return unregister();
        case Command::Status:
            break;
    }
    return status();
}

ExitCode Session::status() {
    const bool alive = connection.getStatus() == 0;
    if (options.json) {
        JsonObject object;
        object.add("command", "status");
        object.add("alive", alive);
        writeOutput(object.line());
    }
    reporter.tell(alive ? "The service is alive."
                        : "Something answers, but it does not send the status "
                          "check back as the service does.");
    return alive ? ExitCode::Done : ExitCode::OtherAnswer;
}

ExitCode Session::registerClient() {
    attach();
    JsonObject object;
    object.add("command", "register");
    object.add("server", *options.server);
    object.add("client", options.client);
    return writeShared(object, "Registered '" + options.client + "' at '" +
                                   *options.server + "'");
}

ExitCode Session::clients() {
    attach();
    tellRegistered();
    shared.clear();
    connection.getSharedClients(shared);
    JsonObject object;
    object.add("command", "clients");
    return writeShared(object, "Asked");
}

ExitCode Session::put() {
    std::string events = readEvents(options.files);
    attach();
    shared.clear();
    std::string correlation = "ovmem.put";
    connection.putEvents(events, shared, correlation);
    JsonObject object;
    object.add("command", "put");
    object.add("bytes", sizeOf(events));
    return writeShared(object, "Put " + count(events.size(), "byte"));
}

ExitCode Session::get() {
    attach();
    std::string events;
    std::string correlation = "ovmem.get";
    try {
        connection.getEvents(events, shared, correlation);
    } catch (...) {
        // The events come before the shared clients: when only the second
        // step failed, they are here and nowhere else any more.
        if (!events.empty()) {
            deliver(events);
        } else {
            tellRegistered();
        }
        throw;
    }
    if (events.empty()) {
        tellRegistered();  // what has events was registered before
    }
    deliver(events);
    reporter.tell("Got " + count(events.size(), "byte") + ".");
    return ExitCode::Done;
}

ExitCode Session::unregister() {
    attach();
    shared.clear();
    connection.unregisterClient(shared);
    JsonObject object;
    object.add("command", "unregister");
    return writeShared(object, "Unregistered");
}

void Session::attach() {
    if (!options.server) {
        return;
    }
    std::string server = *options.server;
    std::string client = options.client;
    std::string locale = options.locale;
    connection.registerClient(server, client, locale, shared);
    progress.registered = true;
}

void Session::tellRegistered() const {
    if (progress.registered) {
        reporter.tell("'" + options.client + "' is registered at '" +
                      *options.server +
                      "'; if it was not before, it receives events from now "
                      "on.");
    }
}

void Session::deliver(const std::string& events) {
    std::string output = events;
    if (options.json) {
        JsonObject object;
        object.add("command", "get");
        object.add("bytes", sizeOf(events));
        object.add("events", events);
        object.add("sharedClients", shared);
        output = object.line();
    }
    const Written written = tryWriteOutput(output);
    if (written.error != 0) {
        throw notDelivered(events, written);
    }
}

ExitCode Session::writeShared(JsonObject& object, const std::string& done) {
    object.add("sharedClients", shared);
    const bool terminal = isatty(STDOUT_FILENO) != 0;
    std::string lines;
    for (const std::string& client : shared) {
        lines += (terminal ? escaped(client) : client) + "\n";
    }
    const Written written =
        tryWriteOutput(options.json ? object.line() : lines);
    if (written.error != 0) {
        throw notAnswered(written);
    }
    reporter.tell(done + "; " + count(shared.size(), "other client") +
                  (shared.size() == 1 ? " shares" : " share") + " the events.");
    return ExitCode::Done;
}

}  // namespace ovmem::cli
