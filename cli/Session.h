#ifndef CLI_SESSION_H
#define CLI_SESSION_H

#include <string>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>

#include "cli/ExitCode.h"
#include "cli/Options.h"
#include "cli/Reporter.h"

namespace ovmem::cli {

class JsonObject;
class SignalWatch;

// One run of ovmem: a connection, and the command on it.
//
// THROWS: whatever the library throws, and Failure.
class Session {
public:
    // Both are borrowed.
    Session(const Options& asked, const Reporter& voice);

    // Runs the command of the options.
    ExitCode run();

private:
    ExitCode status();
    ExitCode registerClient();
    ExitCode clients();
    ExitCode put();
    ExitCode get();
    ExitCode unregister();
    ExitCode putBack();

    // Registers the identity, if there is one, so that the connection may act
    // for it.
    void attach();

    // Registers, fetches the events, and writes them out or saves them.
    void fetch(SignalWatch& watch);

    // The same with events that are here.
    void writeEvents(const std::string& events, SignalWatch& watch);

    // Writes the shared clients, completing `object` where it is JSON, and
    // tells what was done.
    ExitCode writeShared(JsonObject& object, const std::string& done);

    const Options& options;
    const Reporter& reporter;
    Orvane::Net::OvModelEventManager::Client::OvMEMConnection connection;
    std::vector<std::string> shared;  // of the latest reply
};

}  // namespace ovmem::cli

#endif
