#include "OvMemCppBinding/client/CurrentException.h"

#include <exception>
#include <new>

#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/WireFormat.h"
#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Client {

namespace {

constexpr const char* lookAtPlatform =
    "try again; if it persists, the platform needs attention.";
constexpr const char* moreMemory = "give the process more memory.";
constexpr const char* lookAtProgram = "look at the program that threw it.";
constexpr const char* wrongReply =
    "check that it is a Model Event Manager that answers; the request itself "
    "was carried out.";
constexpr const char* beyondLimit =
    "check that it is a Model Event Manager that answers; if it is, grant the "
    "XmlPlatformGuard more memory.";

// How the texts of DomException begin that say nothing about a reply.
constexpr struct {
    const char* beginning;
    const char* advice;
} domAdvice[] = {
    {"XML parser platform is not initialised",
     "hold an XmlPlatformGuard, or one connection, for the life of the "
     "process; if one is held, its start failed: begin a new process."},
    {"XmlPlatformGuard: the XML parser platform runs already",
     "construct the one XmlPlatformGuard of the process before its first "
     "connection."},
    {"XmlPlatformGuard: the XML parser platform failed to start", moreMemory},
    {"XmlPlatformGuard: the XML library may hold", beyondLimit},
    {"XmlPlatformGuard: the tree of a document", beyondLimit},
    {"XmlPlatformGuard: the XML library cannot go on",
     "end the process; its XML library is in doubt."},
    {"XmlPlatformGuard: '", "name a folder that exists."},
};

std::string describe(const std::string& what, std::string text,
                     const char* advice) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return what + ": " + text + "\nWhat to do: " + advice;
}

std::string describeClient(const char* name, const Exception& exception,
                           const char* advice) {
    switch (exception.getType()) {
        case -1:
            advice =
                "check that the service can be reached; another operation "
                "tells the cause.";
            break;
        case -2:
            advice =
                "call registerClient with a server identity that is not empty "
                "first.";
            break;
        default:
            break;
    }
    return describe(
        std::string(name) + " (" + std::to_string(exception.getType()) + ")",
        exception.getMessage(), advice);
}

std::string describeProtocol(const char* name,
                             const OvMEMProtocolException& exception) {
    if (exception.getMessage() == WireFormat::oversizedChunk) {
        return describeClient(
            name, exception,
            "stop the process; the transport has written past its buffer.");
    }
    return describeClient(
        name, exception,
        "fix what was asked for; the same request will fail again.");
}

std::string describeDom(const std::string& text) {
    for (const auto& [beginning, advice] : domAdvice) {
        if (text.starts_with(beginning))
            return describe("DomException", text, advice);
    }
    return describe("DomException", text, wrongReply);
}

// Whoever catches the pointer owns the object; to describe it is no catch.
std::string describePointer(const OvMEMProtocolException* exception) {
    constexpr const char* name = "OvMEMProtocolException*";
    return exception == nullptr ? describe(name, "null", lookAtProgram)
                                : describeProtocol(name, *exception);
}

// Without the XML library: it may have no memory, or have ended.
std::string narrowed(const XMLCh* text) {
    std::string narrow;
    for (; text != nullptr && *text != 0; ++text)
        narrow += *text < 0x80 ? static_cast<char>(*text) : '?';
    return narrow;
}

std::string describeBeingHandled() {
    try {
        throw;
    } catch (const OvMEMConnectionException& exception) {
        return describeClient(
            "OvMEMConnectionException", exception,
            "check that the service can be reached, then try again.");
    } catch (const OvMEMProtocolException& exception) {
        return describeProtocol("OvMEMProtocolException", exception);
    } catch (const OvMEMProtocolException* exception) {
        return describePointer(exception);
    } catch (const OvMEMRuntimeException& exception) {
        return describeClient("OvMEMRuntimeException", exception,
                              lookAtPlatform);
    } catch (const OvMEMUnrecognisedException& exception) {
        return describeClient("OvMEMUnrecognisedException", exception,
                              "report the text; it is the transport's own.");
    } catch (const OvMEMException& exception) {
        return describeClient("OvMEMException", exception, lookAtProgram);
    } catch (const Exception& exception) {
        return describeClient(
            "Exception", exception,
            "the connection has forgotten its identity; the service may still "
            "know it.");
    } catch (Util::DomException& exception) {
        return describeDom(exception.getMessage());
    } catch (const xercesc::OutOfMemoryException&) {
        return describe("xercesc::OutOfMemoryException",
                        "the XML library has no memory left", moreMemory);
    } catch (const xercesc::XMLException& exception) {
        return describe("xercesc::XMLException",
                        narrowed(exception.getMessage()), lookAtPlatform);
    } catch (const xercesc::SAXException& exception) {
        return describe("xercesc::SAXException",
                        narrowed(exception.getMessage()), lookAtPlatform);
    } catch (const std::bad_alloc& exception) {
        return describe("std::bad_alloc", exception.what(), moreMemory);
    } catch (const std::exception& exception) {
        return describe("std::exception", exception.what(), lookAtProgram);
    } catch (...) {
        return describe("unknown",
                        "an exception of a class that the library does not "
                        "know",
                        lookAtProgram);
    }
}

}  // namespace

std::string describeCurrentException() {
    return std::current_exception() ? describeBeingHandled()
                                    : "No exception is being handled.";
}

}  // namespace Orvane::Net::OvModelEventManager::Client
