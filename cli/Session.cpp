#include "cli/Session.h"

#include <cstring>
#include <list>
#include <new>
#include <optional>

#include <unistd.h>

#include "cli/Count.h"
#include "cli/Delivery.h"
#include "cli/ErrorReport.h"
#include "cli/EventInput.h"
#include "cli/Failure.h"
#include "cli/JsonObject.h"
#include "cli/RescueCommands.h"
#include "cli/SignalWatch.h"
#include "cli/StandardStreams.h"
#include "cli/StopSignal.h"
#include "cli/TerminalText.h"

namespace ovmem::cli {

namespace {

long long sizeOf(const std::string& bytes) {
    return static_cast<long long>(bytes.size());
}

// What `read` returns: events that are to be sent.
template <class Read>
std::string readToSend(const Read& read) {
    try {
        return read();
    } catch (const std::bad_alloc&) {
        throw Failure{ExitCode::InputOutput,
                      "There is not enough memory to read the events.",
                      "Nothing was sent."};
    }
}

Failure notAnswered(const Written& written) {
    return {ExitCode::InputOutput,
            "Cannot write the answer to standard output: " +
                std::string(std::strerror(written.error)) + ".",
            "What was asked for is done; only the answer is missing."};
}

Failure stopped(const SignalWatch& watch, const std::string& when,
                const std::string& advice) {
    return {exitCodeOfSignal(watch.signal()),
            "Stopped by " + nameOfSignal(watch.signal()) + ' ' + when + '.',
            advice};
}

}  // namespace

Session::Session(const Options& asked, const Reporter& voice, Progress& reached)
    : options(asked), reporter(voice), progress(reached) {
    progress.command = options.command;
    progress.namesServer = options.server.has_value();
    progress.sendsId =
        options.id.has_value() || options.command == Command::RescuePutBack;
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
        case Command::RescuePutBack:
            return putBack();
        case Command::RescueList:
            listRescued(options, reporter);
            return ExitCode::Done;
        case Command::RescueShow:
            showRescued(options, reporter);
            return ExitCode::Done;
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
    const ExitCode result =
        writeShared(object, "Registered '" + options.client + "' at '" +
                                *options.server + "'");
    if (options.server->empty()) {
        reporter.tell(
            "The server identity is empty, which the library takes for none: "
            "no other command can use this registration.");
    }
    return result;
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
    std::string events = readToSend([&] { return readEvents(options.files); });
    attach();
    shared.clear();
    std::string correlation = options.id.value_or(PUT_WITHOUT_ID);
    connection.putEvents(events, shared, correlation);
    JsonObject object;
    object.add("command", "put");
    object.add("bytes", sizeOf(events));
    return writeShared(object, "Put " + count(events.size(), "byte"));
}

ExitCode Session::get() {
    SignalWatch watch(options.grace, reporter);
    try {
        fetch(watch);
        return ExitCode::Done;
    } catch (...) {
        // Reported here and not by the caller: a signal must not come between
        // saving the events and saying where.
        ErrorReport error = reportCurrentException();
        adviseUser(error, progress);
        watch.enter(SignalWatch::Phase::Telling);
        if (watch.signal() != 0) {
            error.exitCode = exitCodeOfSignal(watch.signal());
        }
        reporter.report(error);
        return error.exitCode;
    }
}

void Session::fetch(SignalWatch& watch) {
    attach();
    if (watch.signal() != 0) {
        throw stopped(
            watch, "before the events were asked for",
            "Nothing is lost; what waits for the client still waits.");
    }
    watch.enter(SignalWatch::Phase::Asking);
    std::string events;
    std::string correlation = "ovmem.get";
    try {
        connection.getEvents(events, shared, correlation);
    } catch (...) {
        // The events come before the shared clients: when only the second
        // step failed, they are here and nowhere else any more.
        if (!events.empty()) {
            writeEvents(events, watch);
        } else {
            tellRegistered();
        }
        throw;
    }
    writeEvents(events, watch);
    watch.enter(SignalWatch::Phase::Telling);
    const std::string size = count(events.size(), "byte");
    if (watch.signal() != 0) {
        throw stopped(watch, "after all events (" + size + ") were written",
                      "");
    }
    if (events.empty()) {
        tellRegistered();  // what has events was registered before
    }
    reporter.tell("Got " + size + ".");
}

ExitCode Session::unregister() {
    attach();
    shared.clear();
    connection.unregisterClient(shared);
    JsonObject object;
    object.add("command", "unregister");
    return writeShared(object, "Unregistered");
}

ExitCode Session::putBack() {
    std::list<SavedEvents> files;
    std::string events =
        readToSend([&] { return claimRescued(options, files); });
    attach();
    // A put that nobody receives would leave the events nowhere.
    requireReceiver("Nobody would receive the events",
                    "Nothing was sent, and the files stay.");
    shared.clear();
    // The same for the same files, so that repeating it can be made safe.
    std::string correlation = "ovmem.rescue." + files.front().name();
    connection.putEvents(events, shared, correlation);
    requireReceiver("Nobody has received the events",
                    "The clients went just before; the files stay.");
    // Only now: whatever ends this run before leaves the files.
    removeRescued(files);
    JsonObject object;
    object.add("command", "rescue put-back");
    object.add("bytes", sizeOf(events));
    return writeShared(object, "Put back " + count(events.size(), "byte") +
                                   " and removed " +
                                   count(files.size(), "file"));
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

void Session::requireReceiver(const std::string& what,
                              const std::string& fate) const {
    if (shared.empty()) {
        throw Failure{
            ExitCode::NoReceiver,
            what + ": '" + options.client + "' is the only client of '" +
                *options.server + "'.",
            fate +
                " Register the client that is to have the events ('ovmem "
                "register'), then put them back, or write them with 'ovmem "
                "rescue show'. If it is not the server you meant, 'ovmem "
                "unregister' takes '" +
                options.client + "' away from it."};
    }
}

void Session::tellRegistered() const {
    // The library takes an empty server identity for none: what follows fails.
    if (progress.registered && !options.server->empty()) {
        reporter.tell("'" + options.client + "' is registered at '" +
                      *options.server +
                      "'; if it was not before, it receives events from now "
                      "on.");
    }
}

void Session::writeEvents(const std::string& events, SignalWatch& watch) {
    const auto asJson = [&](const TextSink& sink) {
        JsonObject object;
        object.add("command", "get");
        object.add("bytes", sizeOf(events));
        object.addBorrowed("events", events);
        object.add("sharedClients", shared);
        object.write(sink);
    };
    deliver(events, options.json ? asJson : TextSource(), watch);
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
