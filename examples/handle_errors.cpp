// Every class of exception, in the order in which to catch them. A program that
// only wants to tell its user, and then ends, has enough with the last handler;
// one that goes on also needs that of the pointer, which it deletes.

#include <clocale>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <OvMemCppBinding/client/CurrentException.h>
#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/util/DomException.h>
#include <OvMemCppBinding/util/XmlPlatformGuard.h>

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::DomException;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

namespace {

void tell(const std::string& what, const Exception& e) {
    std::cout << what << " (" << e.getType() << "): " << e.getMessage() << "\n";
}

template <class Operation>
void attempt(const char* name, Operation operation) {
    std::cout << name << ": ";
    try {
        operation();
        std::cout << "done\n";
    } catch (const OvMEMConnectionException& e) {
        tell("try again later", e);
    } catch (const OvMEMProtocolException& e) {
        tell("fix the request", e);
    } catch (OvMEMProtocolException* e) {
        // getSharedClients throws a pointer, which is ours to delete.
        const std::unique_ptr<OvMEMProtocolException> owner(e);
        tell("fix the request, by pointer", *e);
    } catch (const OvMEMRuntimeException& e) {
        tell("look at the platform", e);
    } catch (const OvMEMUnrecognisedException& e) {
        tell("report this", e);
    } catch (const Exception& e) {
        // unregisterClient throws every failure as this class.
        tell("not unregistered", e);
    } catch (DomException& e) {
        std::cout << "not the expected XML: " << e.getMessage() << "\n";
    } catch (...) {
        // Whatever else there is, in words; it knows the classes above too.
        std::cout << describeCurrentException() << "\n";
    }
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");
    const XmlPlatformGuard guard;
    OvMEMConnection connection;
    std::string events = "event", correlation = "errors";
    std::vector<std::string> others;
    attempt("status", [&] { connection.getStatus(); });
    attempt("put", [&] { connection.putEvents(events, others, correlation); });
    attempt("clients", [&] { connection.getSharedClients(others); });
    attempt("unregister", [&] { connection.unregisterClient(others); });
}
