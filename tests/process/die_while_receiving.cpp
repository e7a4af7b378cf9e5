// Fetches events over the transport itself and kills itself on the way, as
// kill -9 would, at a place that is chosen exactly:
//
//     die_while_receiving SERVER CLIENT CHUNKS
//
// after that many pieces of the reply, or with "all" between the end of the
// reply and the completion of the exchange. Writes the pieces as they come.
// Ends with 1 if the exchange went otherwise.

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <OvMemCppBinding/platform/OvMemBinding.h>
#include <unistd.h>

namespace {

const std::size_t BUFFER_SIZE = 16384;
const int32_t BODY_WANTED = 19;
const int32_t NO_MORE_BODY = 20;
const int32_t END_OF_REPLY = -1;

bool startExchange(const std::string& server, const std::string& client,
                   char* buffer) {
    const std::string headers = "Client-ID=" + client +
                                "\r\nLog-Correlation-ID=dying"
                                "\r\nOperation-Name=getEvents"
                                "\r\nServer-ID=" +
                                server +
                                "\r\nService-Name=OvMEMRequest\r\n\r\n";
    return OvMem_Init(std::malloc, std::free) == 0 &&
           OvMem_SendNoAck(headers.c_str()) >= 0 && OvMem_SendEOF() >= 0 &&
           OvMem_Receive(buffer) == BODY_WANTED &&
           OvMem_SendNoAck("Get Events Request") > 0 && OvMem_SendEOF() >= 0 &&
           OvMem_Receive(buffer) == NO_MORE_BODY;
}

// Takes up to `limit` pieces; true if the reply ended before.
bool receive(char* buffer, long limit) {
    for (long chunk = 0; limit < 0 || chunk < limit; ++chunk) {
        const int32_t count = OvMem_Receive(buffer);
        if (count == END_OF_REPLY) {
            return true;
        }
        const auto size = static_cast<std::size_t>(count);
        if (count < 0 || write(STDOUT_FILENO, buffer, size) != count) {
            std::exit(1);
        }
    }
    return false;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        return 1;
    }
    const bool all = std::string(arguments[3]) == "all";
    const long limit = all ? -1 : std::strtol(arguments[3], nullptr, 10);
    std::vector<char> buffer(BUFFER_SIZE);
    if (!startExchange(arguments[1], arguments[2], buffer.data()) ||
        receive(buffer.data(), limit) != all) {
        return 1;
    }
    return std::raise(SIGKILL);
}
