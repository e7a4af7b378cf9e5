#include "OvMemCppBinding/client/OvMEMConnection.h"

#include <cstdlib>
#include <sstream>
#include <utility>

#include <xercesc/util/PlatformUtils.hpp>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "OvMemCppBinding/client/TransportError.h"
#include "OvMemCppBinding/client/WireFormat.h"
#include "OvMemCppBinding/platform/LogCorrelation.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/PlatformStart.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"

namespace Orvane::Net::OvModelEventManager::Client {

using Common::Logging::LogCorrelation;
using Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;
using Util::SAXToNodeParser;

namespace {

// Deliberate: one flag for all connections of the process.
// See docs/irregularities.md#first-destroyed-ends-the-platform.
bool xmlPlatformReady = false;

std::string exchangeText(OvMEMRequest& request, const std::string& body) {
    std::istringstream stream(body);
    request.setRequestStream(&stream);
    return request.sendAndReceive();
}

// Reads the reply into `bound` and hands its identifiers on.
void bindReply(const std::string& reply, SharedClientIDs& bound,
               std::vector<std::string>& sharedClients) {
    SAXToNodeParser parser;
    parser.parseString(reply);
    bound.parse(*parser.getRootNode());
    bound.getSharedClients(sharedClients);
}

OvMEMProtocolException notRegistered() {
    return OvMEMProtocolException(
        -2, "Client not Registered with Model Event Manager");
}

}  // namespace

OvMEMConnection::OvMEMConnection() : reserved(false), ovMemStarted(false) {
    if (!xmlPlatformReady) {
        Util::startPlatform();
        xmlPlatformReady = true;
    }
}

OvMEMConnection::OvMEMConnection(const OvMEMConnection& other)
    : serverId(other.serverId),
      clientId(other.clientId),
      reserved(other.reserved),
      ovMemStarted(other.ovMemStarted),
      locale(other.locale) {}

OvMEMConnection& OvMEMConnection::operator=(const OvMEMConnection& other) {
    serverId = other.serverId;
    clientId = other.clientId;
    reserved = other.reserved;
    ovMemStarted = other.ovMemStarted;
    locale = other.locale;
    return *this;
}

OvMEMConnection::~OvMEMConnection() {
    if (xmlPlatformReady) {
        xercesc::XMLPlatformUtils::Terminate();
        xmlPlatformReady = false;
    }
}

void OvMEMConnection::registerClient(std::string& newServerId,
                                     std::string& newClientId,
                                     std::string& newLocale,
                                     std::vector<std::string>& sharedClients) {
    // Deliberate: the identity is stored before the service has accepted it.
    // See docs/irregularities.md#identity-before-acceptance.
    serverId = newServerId;
    clientId = newClientId;
    locale = newLocale;

    std::string operation = WireFormat::registerClientOperation;
    std::string correlation = WireFormat::registerClientLogCorrelation;
    OvMEMRequest request;
    setRequestHeader(request, operation, correlation, true);
    const std::string reply =
        exchangeText(request, WireFormat::registerClientProbe);
    SharedClientIDs bound;
    bindReply(reply, bound, sharedClients);
}

void OvMEMConnection::unregisterClient(
    std::vector<std::string>& sharedClients) {
    try {
        std::string operation = WireFormat::unregisterClientOperation;
        std::string correlation = WireFormat::unregisterClientLogCorrelation;
        OvMEMRequest request;
        setRequestHeader(request, operation, correlation, true);
        const std::string reply =
            exchangeText(request, WireFormat::unregisterClientProbe);
        SharedClientIDs bound;
        bindReply(reply, bound, sharedClients);
        serverId.clear();
        clientId.clear();
    } catch (const Exception& failure) {
        // Deliberate: what is thrown is a plain Exception.
        // See docs/irregularities.md#plain-exception. Without memory for the
        // copy the identity stays.
        try {
            throw Exception(failure);
        } catch (const Exception&) {
            serverId.clear();
            clientId.clear();
            throw;
        }
    }
}

void OvMEMConnection::getSharedClients(
    std::vector<std::string>& sharedClients) {
    SharedClientIDs bound;
    // Deliberate: a pointer, which the catcher deletes.
    // See docs/irregularities.md#pointer-throw.
    if (!isClientRegistered())
        throw new OvMEMProtocolException(notRegistered());

    std::string operation = WireFormat::getSharedClientsOperation;
    std::string correlation = WireFormat::getSharedClientsLogCorrelation;
    OvMEMRequest request;
    setRequestHeader(request, operation, correlation, true);
    bindReply(exchangeText(request, WireFormat::getSharedClientsProbe), bound,
              sharedClients);
}

void OvMEMConnection::getEvents(std::string& events,
                                std::vector<std::string>& sharedClients,
                                std::string& logCorrelationId) {
    if (!isClientRegistered())
        throw notRegistered();

    std::string operation = WireFormat::getEventsOperation;
    OvMEMRequest request;
    setRequestHeader(request, operation, logCorrelationId, true);
    events = exchangeText(request, WireFormat::getEventsProbe);
    sharedClients.clear();
    getSharedClients(sharedClients);
}

void OvMEMConnection::putEvents(std::string& events,
                                std::vector<std::string>& sharedClients,
                                std::string& logCorrelationId) {
    SharedClientIDs bound;
    if (!isClientRegistered())
        throw notRegistered();

    std::string operation = WireFormat::putEventsOperation;
    OvMEMRequest request;
    setRequestHeader(request, operation, logCorrelationId, true);
    bindReply(exchangeText(request, events), bound, sharedClients);
}

int OvMEMConnection::getStatus() {
    try {
        std::string operation = WireFormat::getStatusOperation;
        std::string correlation = WireFormat::getStatusLogCorrelation;
        OvMEMRequest request;
        setRequestHeader(request, operation, correlation, false);
        const std::string reply =
            exchangeText(request, WireFormat::getStatusProbe);
        return reply == WireFormat::getStatusProbe ? 0 : -2;
    } catch (const Exception&) {
        throw OvMEMConnectionException(-1, "OvMEM Connection failed");
    }
}

void OvMEMConnection::setRequestHeader(OvMEMRequest& request,
                                       std::string& operationName,
                                       std::string& logCorrelationId,
                                       bool withIdentity) {
    initOvMem();
    request.setHeader(WireFormat::serviceHeader, WireFormat::serviceName);
    request.setHeader(WireFormat::operationHeader, operationName.c_str());
    request.setHeader(WireFormat::logCorrelationHeader,
                      logCorrelationId.c_str());
    const LogCorrelation* log = LogCorrelation::get();
    request.setHeader(LogCorrelation::HTTP_HEADER_REQUEST_ID,
                      log->getRequestID().c_str());
    request.setHeader(LogCorrelation::HTTP_HEADER_SESSION_ID,
                      log->getSessionID().c_str());
    request.setHeader(LogCorrelation::HTTP_HEADER_USER_ACTION,
                      log->getUserAction().c_str());
    if (!locale.empty())
        request.setHeader(WireFormat::localeHeader, locale.c_str());
    if (withIdentity) {
        request.setHeader(WireFormat::serverIdHeader, serverId.c_str());
        request.setHeader(WireFormat::clientIdHeader, clientId.c_str());
    }
}

bool OvMEMConnection::isClientRegistered() {
    return !serverId.empty();
}

void OvMEMConnection::initOvMem() {
    if (!ovMemStarted) {
        const int status = OvMem_Init(std::malloc, std::free);
        if (status != 0)
            throwTransportError(status);
        ovMemStarted = true;
    }
}

void OvMEMConnection::termOvMem() {
    if (ovMemStarted) {
        const int status = OvMem_Term();
        if (status < 0)
            throwTransportError(status);
        ovMemStarted = false;
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Client
