#include <functional>
#include <vector>

#include <xercesc/util/OutOfMemoryException.hpp>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "fuzz/ByteTransport.h"
#include "fuzz/Fuzz.h"

// Operations of one connection, with a transport that plays the input's bytes.
// Its first line chooses the operations.

namespace {

using namespace Orvane::Net::OvModelEventManager;

// Whatever leaves an operation is of a documented kind.
void run(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const Client::Exception& exception) {
        Fuzz::require(exception.getType() <= 0 && exception.getType() >= -2,
                      "a type code");
    } catch (const Client::OvMEMProtocolException* exception) {
        Fuzz::require(exception->getType() == -2,
                      "only not being registered is a pointer");
        delete exception;
    } catch (Util::DomException&) {
    } catch (const xercesc::OutOfMemoryException&) {
    }
}

void runOne(char choice, Client::OvMEMConnection& connection, std::string& text,
            std::vector<std::string>& ids) {
    switch (choice) {
        case 'r':
            return connection.registerClient(text, text, text, ids);
        case 'u':
            return connection.unregisterClient(ids);
        case 's':
            return connection.getSharedClients(ids);
        case 'g':
            return connection.getEvents(text, ids, text);
        case 'p':
            return connection.putEvents(text, ids, text);
        default:
            const int status = connection.getStatus();
            Fuzz::require(status == 0 || status == -2, "a result of getStatus");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Util::XmlPlatformGuard guard;
    std::string answers = Fuzz::textOf(data, size);
    const std::string choices = Fuzz::takeUntil(answers, '\n').substr(0, 8);
    const Fuzz::ByteTransport transport(answers);
    Client::OvMEMConnection connection;
    std::string text = "server";
    std::vector<std::string> ids;
    for (const char choice : choices) {
        run([&] { runOne(choice, connection, text, ids); });
    }
    return 0;
}
