#include "tests/support/PrivateAccess.h"

namespace OvMemTest {

namespace {

// Access is not checked in the arguments of an explicit instantiation, so it
// may name a private member; the friend function hands the pointer out.
template <typename Tag, typename Tag::Member pointer>
struct Reveal {
    friend typename Tag::Member reveal(Tag) { return pointer; }
};

struct ServerId {
    using Member = std::string OvMEMConnection::*;
    friend Member reveal(ServerId);
};

struct ClientId {
    using Member = std::string OvMEMConnection::*;
    friend Member reveal(ClientId);
};

struct Locale {
    using Member = std::string OvMEMConnection::*;
    friend Member reveal(Locale);
};

struct OvMemStarted {
    using Member = bool OvMEMConnection::*;
    friend Member reveal(OvMemStarted);
};

struct Reserved {
    using Member = bool OvMEMConnection::*;
    friend Member reveal(Reserved);
};

struct ReservedInException {
    using Member = int Exception::*;
    friend Member reveal(ReservedInException);
};

struct Capacity {
    using Member = std::size_t ReplyBuffer::*;
    friend Member reveal(Capacity);
};

struct IsClientRegistered {
    using Member = bool (OvMEMConnection::*)();
    friend Member reveal(IsClientRegistered);
};

struct InitOvMem {
    using Member = void (OvMEMConnection::*)();
    friend Member reveal(InitOvMem);
};

struct TermOvMem {
    using Member = void (OvMEMConnection::*)();
    friend Member reveal(TermOvMem);
};

struct SetRequestHeader {
    using Member = void (OvMEMConnection::*)(OvMEMRequest&, std::string&,
                                             std::string&, bool);
    friend Member reveal(SetRequestHeader);
};

template struct Reveal<ServerId, &OvMEMConnection::serverId>;
template struct Reveal<ClientId, &OvMEMConnection::clientId>;
template struct Reveal<Locale, &OvMEMConnection::locale>;
template struct Reveal<OvMemStarted, &OvMEMConnection::ovMemStarted>;
template struct Reveal<Reserved, &OvMEMConnection::reserved>;
template struct Reveal<ReservedInException, &Exception::reserved>;
template struct Reveal<Capacity, &ReplyBuffer::capacity>;
template struct Reveal<IsClientRegistered,
                       &OvMEMConnection::isClientRegistered>;
template struct Reveal<InitOvMem, &OvMEMConnection::initOvMem>;
template struct Reveal<TermOvMem, &OvMEMConnection::termOvMem>;
template struct Reveal<SetRequestHeader, &OvMEMConnection::setRequestHeader>;

}  // namespace

std::string& serverIdOf(OvMEMConnection& connection) {
    return connection.*reveal(ServerId());
}

std::string& clientIdOf(OvMEMConnection& connection) {
    return connection.*reveal(ClientId());
}

std::string& localeOf(OvMEMConnection& connection) {
    return connection.*reveal(Locale());
}

bool& ovMemStartedOf(OvMEMConnection& connection) {
    return connection.*reveal(OvMemStarted());
}

bool& reservedOf(OvMEMConnection& connection) {
    return connection.*reveal(Reserved());
}

int& reservedOf(Exception& exception) {
    return exception.*reveal(ReservedInException());
}

std::size_t capacityOf(ReplyBuffer& buffer) {
    return buffer.*reveal(Capacity());
}

bool isClientRegistered(OvMEMConnection& connection) {
    return (connection.*reveal(IsClientRegistered()))();
}

void initOvMem(OvMEMConnection& connection) {
    (connection.*reveal(InitOvMem()))();
}

void termOvMem(OvMEMConnection& connection) {
    (connection.*reveal(TermOvMem()))();
}

void setRequestHeader(OvMEMConnection& connection, OvMEMRequest& request,
                      std::string& operationName, std::string& logCorrelationId,
                      bool withIdentity) {
    (connection.*reveal(SetRequestHeader()))(request, operationName,
                                             logCorrelationId, withIdentity);
}

}  // namespace OvMemTest
