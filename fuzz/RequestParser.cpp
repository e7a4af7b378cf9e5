#include "emulator/manager/Refusal.h"
#include "emulator/manager/RequestHeader.h"
#include "fuzz/Fuzz.h"

// Any bytes as a request to the emulator.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Orvane::Net::OvModelEventManager::Emulator;
    const std::string text = Fuzz::textOf(data, size);
    try {
        const WholeRequest request = WholeRequest::split(text);
        Fuzz::require(
            std::string(request.headerBlock) + std::string(request.body) ==
                text,
            "nothing is lost between the parts");
        const RequestHeader header = RequestHeader::parse(request.headerBlock);
        const std::string block(request.headerBlock);
        const std::string operation = operationName(header.operation);
        Fuzz::require(block.find("Operation-Name=" + operation + "\r\n") !=
                          std::string::npos,
                      "the operation stands there");
        for (const std::string* identity :
             {&header.caller.serverId, &header.caller.clientId}) {
            Fuzz::require(
                block.find("=" + *identity + "\r\n") != std::string::npos ||
                    header.operation == Operation::getStatus,
                "the identity stands there");
        }
    } catch (const Refusal& refusal) {
        Fuzz::require(refusal.status == Status::malformed,
                      "a request is malformed");
        for (const char byte : std::string(refusal.what())) {
            const auto code = static_cast<unsigned char>(byte);
            Fuzz::require(code >= 0x20 && code != 0x7f,
                          "a refusal holds no control character");
        }
    }
    return 0;
}
