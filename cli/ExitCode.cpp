#include "cli/ExitCode.h"

namespace ovmem::cli {

namespace {

struct Meaning {
    ExitCode code;
    const char* text;
};

const Meaning MEANINGS[] = {
    {ExitCode::Done, "done"},
    {ExitCode::Usage, "the command line or the event text is not acceptable"},
    {ExitCode::ConnectionException, "OvMEMConnectionException"},
    {ExitCode::ProtocolException, "OvMEMProtocolException"},
    {ExitCode::RuntimeException, "OvMEMRuntimeException"},
    {ExitCode::UnrecognisedException, "OvMEMUnrecognisedException"},
    {ExitCode::PlainException, "Exception: unregister failed"},
    {ExitCode::DomException, "DomException: the reply is not the expected XML"},
    {ExitCode::AnyOtherException, "any other exception"},
    {ExitCode::InputOutput, "a local file or stream failed"},
    {ExitCode::OtherAnswer, "the service answered the status check wrongly"},
    {ExitCode::NoReceiver, "nobody would receive what is put back"},
};

}  // namespace

std::string listExitCodes() {
    std::string list;
    for (const Meaning& meaning : MEANINGS) {
        const std::string number =
            std::to_string(static_cast<int>(meaning.code));
        list += std::string(4 - number.size(), ' ') + number + "  " +
                meaning.text + "\n";
    }
    return list +
           " 128  and the number of a signal added: get was told to stop\n";
}

}  // namespace ovmem::cli
