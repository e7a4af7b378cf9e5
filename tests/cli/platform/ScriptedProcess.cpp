#include <cstdlib>
#include <fstream>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

#include "tests/cli/platform/ScriptFile.h"
#include "tests/support/ScriptedLogging.h"
#include "tests/support/ScriptedTransport.h"

// The scripted transport and logging library of a whole process: loaded in the
// place of the real ones, they take their script from the file that
// OVMEM_TEST_SCRIPT names and write each call to OVMEM_TEST_TRACE.

namespace OvMemTest {

namespace {

const char* need(const char* variable) {
    const char* value = std::getenv(variable);
    if (value == nullptr) {
        std::cerr << variable << " is not set.\n";
        std::abort();
    }
    return value;
}

// Above the standard descriptors, which may be closed on purpose.
int openTrace() {
    const int low = open(need("OVMEM_TEST_TRACE"), O_WRONLY | O_APPEND);
    const int high = fcntl(low, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(low);
    return high;
}

class ScriptedProcess {
public:
    ScriptedProcess() : transport(fail), logging(transport) {
        transport.traceTo(openTrace());
        std::ifstream script(need("OVMEM_TEST_SCRIPT"));
        readScript(script, transport);
    }

    // Every call is in the trace; only answers that are left are a failure.
    ~ScriptedProcess() { transport.takeCalls(); }

private:
    static void fail(const std::string& text) {
        std::cerr << "script: " << text << "\n";
    }

    ScriptedTransport transport;
    ScriptedLogging logging;
};

const ScriptedProcess process;

}  // namespace

}  // namespace OvMemTest
