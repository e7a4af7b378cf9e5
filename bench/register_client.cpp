// A whole registration, over a transport that answers at once.

#include <memory>
#include <string>
#include <vector>

#include <unicode/unistr.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/platform/LogCorrelation.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "bench/IdsHandler.h"
#include "bench/InstantTransport.h"
#include "bench/Measure.h"
#include "bench/Reply.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

using Common::Logging::LogCorrelation;
using Ids = std::vector<std::string>;

std::string serverId = "plant-7";
std::string clientId = "pump-00000001";
std::string locale = "en_GB";

// Both must send the same bytes and bring back the same identifiers.
struct Registration {
    Ids ids;
};

std::uint32_t checksum(const Registration& registration) {
    return Bench::checksum(InstantTransport::takeRecorded(),
                           Bench::checksum(registration.ids));
}

template <typename Work>
void measureExchange(benchmark::State& state, Work work) {
    InstantTransport::setReply(reply(static_cast<std::size_t>(state.range(0))));
    InstantTransport::record(true);
    measure(state, [&] {
        Registration registration = work();
        InstantTransport::record(false);
        return registration;
    });
    InstantTransport::takeRecorded();
}

void ours(benchmark::State& state) {
    startXmlLibrary();
    Client::OvMEMConnection connection;
    measureExchange(state, [&] {
        Registration registration;
        connection.registerClient(serverId, clientId, locale, registration.ids);
        return registration;
    });
}

// The least code for the same road.

std::string exchangeByHand(const std::string& block, const char* body) {
    std::string utf8;
    icu::UnicodeString(block.data(), static_cast<std::int32_t>(block.size()))
        .toUTF8String(utf8);
    OvMem_SendNoAck(utf8.c_str());
    OvMem_SendEOF();
    char buffer[16384];
    OvMem_Receive(buffer);
    OvMem_SendNoAck(body);
    OvMem_SendEOF();
    OvMem_Receive(buffer);
    std::string answer;
    for (std::int32_t length; (length = OvMem_Receive(buffer)) >= 0;) {
        answer.append(buffer, static_cast<std::size_t>(length));
    }
    OvMem_Complete();
    return answer;
}

Registration registerByHand() {
    const LogCorrelation* log = LogCorrelation::get();
    const std::string answer = exchangeByHand(
        "Client-ID=" + clientId + "\r\nLocale=" + locale +
            "\r\nLog-Correlation-ID=OvMEMConnection.registerClient" +
            "\r\nOperation-Name=registerClient" +
            "\r\nRequest-ID=" + log->getRequestID() +
            "\r\nServer-ID=" + serverId + "\r\nService-Name=OvMEMRequest" +
            "\r\nSession-ID=" + log->getSessionID() +
            "\r\nUser-Action=" + log->getUserAction() + "\r\n\r\n",
        "OvMEM register client");
    Registration registration;
    IdsHandler handler(registration.ids);
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(
        xercesc::XMLReaderFactory::createXMLReader());
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->parse(xercesc::MemBufInputSource(
        reinterpret_cast<const XMLByte*>(answer.data()), answer.size(),
        "reply"));
    return registration;
}

void byHand(benchmark::State& state) {
    startXmlLibrary();
    measureExchange(state, registerByHand);
}

BENCHMARK(ours)
    ->Name("register_client/ours")
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Arg(2500)
    ->Arg(5000)
    ->Arg(10000);
BENCHMARK(byHand)
    ->Name("register_client/by_hand")
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Arg(10000);

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
