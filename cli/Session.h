#ifndef CLI_SESSION_H
#define CLI_SESSION_H

#include <string>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>

#include "cli/Advice.h"
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
    // All are borrowed. How far the run gets is noted in `reached`.
    Session(const Options& asked, const Reporter& voice, Progress& reached);

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

    // For put-back: refuses if nobody is in the latest list of shared clients.
    // `fate` says what became of the events.
    void requireReceiver(const std::string& what,
                         const std::string& fate) const;

    // For commands that only look: says that they have registered the
    // identity. The service does not tell whether it was there before.
    void tellRegistered() const;

    // Registers, fetches the events, and writes them out or saves them.
    void fetch(SignalWatch& watch);

    // The same with events that are here.
    void writeEvents(const std::string& events, SignalWatch& watch);

    // Writes the shared clients, completing `object` where it is JSON, and
    // tells what was done.
    ExitCode writeShared(JsonObject& object, const std::string& done);

    const Options& options;
    const Reporter& reporter;
    Progress& progress;
    Orvane::Net::OvModelEventManager::Client::OvMEMConnection connection;
    std::vector<std::string> shared;  // of the latest reply
};

}  // namespace ovmem::cli

#endif
