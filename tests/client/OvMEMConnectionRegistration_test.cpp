#include <stdexcept>
#include <string>

#include "OvMemCppBinding/client/Exceptions.h"
#include "tests/client/ConnectionTest.h"
#include "tests/client/WithoutConverters.h"

// registerClient, unregisterClient and getSharedClients.

namespace OvMemTest {

namespace Client = Orvane::Net::OvModelEventManager::Client;

class OvMEMConnectionRegistration : public ConnectionTest {
protected:
    void registerNow() {
        connection.registerClient(server, client, locale, shared);
    }
    void unregister() { connection.unregisterClient(shared); }
    void ask() { connection.getSharedClients(shared); }

    // The calls of an exchange that ends with a failed first OvMem_Receive.
    static Calls refused(const Exchange& exchange) {
        return {exchange.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
                "OvMem_GetLastError()"};
    }

    const Exchange anonymousUnregistering{"unregisterClient",
                                          "OvMEMConnection.unregisterClient",
                                          "OvMEM unregister client",
                                          "Client-ID=\r\n",
                                          "",
                                          "Server-ID=\r\n"};
};

// registerClient

TEST_F(OvMEMConnectionRegistration, RegisteringSendsTheNewIdentity) {
    answer(listing({"valve", "motor"}));
    registerNow();
    EXPECT_EQ(takeTransportCalls(), Calls{start} + registering.calls());
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_TRUE(isClientRegistered(connection));
    EXPECT_EQ(shared, (Texts{"before", "valve", "motor"}));
    EXPECT_EQ((Texts{server, client, locale}),
              (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionRegistration, TheIdentityIsStoredBeforeAnyCall) {
    logging.onGet = [this] {
        EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    };
    answer(listing({}));
    registerNow();
    EXPECT_EQ(takeTransportCalls(), Calls{start} + registering.calls());
}

// They are taken by non-const reference.
TEST_F(OvMEMConnectionRegistration, WhatIsHandedInStaysAsItWas) {
    server = "null";
    locale = std::string("a\0b", 3);
    transport.init(0).receive(-3001).lastError(0, "down");
    EXPECT_EQ(thrownBy([this] { registerNow(); }).type,
              "OvMEMConnectionException");
    transport.takeCalls();
    EXPECT_EQ(server, "null");
    EXPECT_EQ(client, "pump");
    EXPECT_EQ(locale, std::string("a\0b", 3));
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionRegistration, RegisteringAgainReplacesTheIdentity) {
    identify();
    std::string newServer = "other";
    std::string newClient;
    std::string newLocale;
    answer(listing({}));
    connection.registerClient(newServer, newClient, newLocale, shared);
    Exchange exchange = registering;
    exchange.clientLine = "Client-ID=\r\n";
    exchange.localeLine = "";
    exchange.serverLine = "Server-ID=other\r\n";
    EXPECT_EQ(takeTransportCalls(), exchange.calls());
    EXPECT_EQ(identity(), (Texts{"other", "", ""}));
}

TEST_F(OvMEMConnectionRegistration, ItsOwnMembersMayBeTheArguments) {
    identify();
    answer(listing({}));
    connection.registerClient(serverIdOf(connection), clientIdOf(connection),
                              localeOf(connection), shared);
    EXPECT_EQ(takeTransportCalls(), registering.calls());
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionRegistration, AnEmptyServerIdentityLeavesItUnregistered) {
    server = "";
    answer(listing({"valve"}));
    registerNow();
    Exchange exchange = registering;
    exchange.serverLine = "Server-ID=\r\n";
    EXPECT_EQ(takeTransportCalls(), Calls{start} + exchange.calls());
    EXPECT_FALSE(isClientRegistered(connection));
    EXPECT_EQ(identity(), (Texts{"", "pump", "en_GB"}));
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
}

// docs/irregularities.md#identity-before-acceptance
TEST_F(OvMEMConnectionRegistration, IdentityBeforeAcceptanceStaysWhenRefused) {
    transport.receive(-3017).lastError(0, "refused");
    EXPECT_EQ(thrownBy([this] { registerNow(); }),
              (Thrown{"OvMEMProtocolException", 0, "refused"}));
    EXPECT_EQ(takeTransportCalls(), Calls{start} + refused(registering));
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_TRUE(isClientRegistered(connection));
    EXPECT_EQ(shared, (Texts{"before"}));
}

// docs/irregularities.md#identity-before-acceptance
TEST_F(OvMEMConnectionRegistration, IdentityBeforeAcceptanceStaysWhenDown) {
    transport.init(1001).lastError(1, std::nullopt);
    EXPECT_EQ(thrownBy([this] { registerNow(); }),
              (Thrown{"OvMEMConnectionException", 0,
                      "Could not retrieve last error message."}));
    EXPECT_EQ(transport.takeCalls(), (Calls{start, "OvMem_GetLastError()"}));
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_TRUE(isClientRegistered(connection));
    EXPECT_FALSE(ovMemStartedOf(connection));
}

// docs/irregularities.md#identity-before-acceptance
TEST_F(OvMEMConnectionRegistration, IdentityBeforeAcceptanceStaysOnBadXml) {
    answer("no XML");
    EXPECT_EQ(thrownBy([this] { registerNow(); }),
              (Thrown{"DomException", 0,
                      "Fatal Error: parsing: From-String: line 1, char 1\n"
                      "Message: invalid document structure\n"}));
    EXPECT_EQ(takeTransportCalls(), Calls{start} + registering.calls());
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionRegistration, ALocaleStaysForTheRequestsThatFollow) {
    answer(listing({}));
    registerNow();
    transport.takeCalls();
    answer("OvMEM Status check");
    connection.getStatus();
    EXPECT_EQ(takeTransportCalls(), checking.calls());
}

// unregisterClient

TEST_F(OvMEMConnectionRegistration, UnregisteringForgetsTheIdentity) {
    identify();
    answer(listing({"valve"}));
    unregister();
    EXPECT_EQ(takeTransportCalls(), unregistering.calls());
    EXPECT_EQ(identity(), (Texts{"", "", "en_GB"}));
    EXPECT_FALSE(isClientRegistered(connection));
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
    EXPECT_TRUE(ovMemStartedOf(connection));
}

TEST_F(OvMEMConnectionRegistration, UnregisteringUnregisteredSendsEmptyValues) {
    answer(listing({"valve"}));
    unregister();
    EXPECT_EQ(takeTransportCalls(),
              Calls{start} + anonymousUnregistering.calls());
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
}

// docs/irregularities.md#plain-exception
TEST_F(OvMEMConnectionRegistration, PlainExceptionIsWhatUnregisteringThrows) {
    identify();
    transport.receive(-3001).lastError(0, "connection lost");
    EXPECT_EQ(thrownBy([this] { unregister(); }),
              (Thrown{"Exception", 0, "connection lost"}));
    EXPECT_EQ(takeTransportCalls(), refused(unregistering));
    EXPECT_EQ(identity(), (Texts{"", "", "en_GB"}));
    EXPECT_EQ(shared, (Texts{"before"}));
}

// docs/irregularities.md#plain-exception
TEST_F(OvMEMConnectionRegistration, PlainExceptionIsCaughtByNoSubclassHandler) {
    identify();
    transport.init(1001);
    ovMemStartedOf(connection) = false;
    transport.lastError(0, "no transport");
    int handler = 0;
    try {
        unregister();
    } catch (const Client::OvMEMConnectionException&) {
        handler = 1;
    } catch (const Client::OvMEMException&) {
        handler = 2;
    } catch (const Client::Exception& exception) {
        handler = 3;
        EXPECT_EQ(exception.getMessage(), "no transport");
    }
    EXPECT_EQ(handler, 3);
    EXPECT_EQ(transport.takeCalls(), (Calls{start, "OvMem_GetLastError()"}));
    EXPECT_EQ(identity(), (Texts{"", "", "en_GB"}));
}

// docs/irregularities.md#plain-exception
TEST_F(OvMEMConnectionRegistration, PlainExceptionKeepsTypeCodeAndMessage) {
    identify();
    logging.onGet = [] { throw Client::OvMEMProtocolException(-5, "own\n"); };
    EXPECT_EQ(thrownBy([this] { unregister(); }),
              (Thrown{"Exception", -5, "own\n"}));
    EXPECT_EQ(transport.takeCalls(), (Calls{"LogCorrelation::get()"}));
    EXPECT_EQ(identity(), (Texts{"", "", "en_GB"}));
}

TEST_F(OvMEMConnectionRegistration, AnotherExceptionLeavesTheIdentity) {
    identify();
    logging.onGet = [] { throw std::runtime_error("disk"); };
    EXPECT_EQ(thrownBy([this] { unregister(); }),
              (Thrown{"runtime_error", 0, "disk"}));
    EXPECT_EQ(transport.takeCalls(), (Calls{"LogCorrelation::get()"}));
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionRegistration, ABadReplyToUnregisteringKeepsTheIdentity) {
    identify();
    answer("<r><other/></r>");
    EXPECT_EQ(thrownBy([this] { unregister(); }),
              (Thrown{"DomException", 0, "Unexpected node name: other"}));
    EXPECT_EQ(takeTransportCalls(), unregistering.calls());
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionRegistration, RegisteringAfterUnregisteringWorks) {
    identify();
    answer(listing({}));
    unregister();
    answer(listing({"valve"}));
    registerNow();
    EXPECT_EQ(takeTransportCalls(),
              unregistering.calls() + registering.calls());
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
}

// getSharedClients

TEST_F(OvMEMConnectionRegistration, AskingAppendsInDocumentOrder) {
    identify();
    answer(listing({"b", "a", "", "a"}));
    ask();
    EXPECT_EQ(takeTransportCalls(), askingWhoShares.calls());
    EXPECT_EQ(shared, (Texts{"before", "b", "a", "", "a"}));
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionRegistration, AskingTwiceGivesEveryIdentifierTwice) {
    identify();
    answer(listing({"valve", "motor"}));
    ask();
    answer(listing({"valve", "motor"}));
    ask();
    EXPECT_EQ(takeTransportCalls(),
              askingWhoShares.calls() + askingWhoShares.calls());
    EXPECT_EQ(shared, (Texts{"before", "valve", "motor", "valve", "motor"}));
}

// docs/irregularities.md#pointer-throw
TEST_F(OvMEMConnectionRegistration, PointerThrowMeetsWhoAsksUnregistered) {
    clientIdOf(connection) = "pump";
    EXPECT_EQ(thrownBy([this] { ask(); }), notRegisteredByPointer);
    EXPECT_EQ(transport.takeCalls(), Calls{});
    EXPECT_EQ(shared, (Texts{"before"}));
}

// docs/irregularities.md#pointer-throw
TEST_F(OvMEMConnectionRegistration, PointerThrowIsANewObjectEveryTime) {
    const Client::Exception* thrown[2] = {nullptr, nullptr};
    for (const Client::Exception*& pointer : thrown) {
        try {
            ask();
        } catch (Client::Exception* caught) {
            pointer = caught;
        }
    }
    EXPECT_NE(thrown[0], thrown[1]);
    for (const Client::Exception* pointer : thrown) {
        ASSERT_NE(pointer, nullptr);
        EXPECT_EQ(pointer->getType(), -2);
        EXPECT_EQ(pointer->getMessage(), notRegistered.message);
        delete static_cast<const Client::OvMEMProtocolException*>(pointer);
    }
}

TEST_F(OvMEMConnectionRegistration, AFailureOfAskingIsThrownByValue) {
    identify();
    transport.receive(-3099).lastError(0, "malformed");
    EXPECT_EQ(thrownBy([this] { ask(); }),
              (Thrown{"OvMEMProtocolException", 0, "malformed"}));
    EXPECT_EQ(takeTransportCalls(), refused(askingWhoShares));
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

// Headers that cannot be converted.

TEST_F(OvMEMConnectionRegistration, AFailedConversionStopsTheRequest) {
    const std::string message =
        "Exception occurred while converting to UTF-8 bytes.";
    identify();
    withoutConverters([&] {
        EXPECT_EQ(thrownBy([this] { registerNow(); }),
                  (Thrown{"OvMEMRuntimeException", 0, message}));
        EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
        EXPECT_EQ(thrownBy([this] { ask(); }),
                  (Thrown{"OvMEMRuntimeException", 0, message}));
        EXPECT_EQ(thrownBy([this] { unregister(); }),
                  (Thrown{"Exception", 0, message}));
        EXPECT_EQ(identity(), (Texts{"", "", "en_GB"}));
        EXPECT_EQ(takeTransportCalls(), Calls{});
        EXPECT_EQ(shared, (Texts{"before"}));
    });
}

// The reply of all three.

TEST_F(OvMEMConnectionRegistration, TheReplyMayUseAnyPrefixAndRootName) {
    identify();
    answer(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- c -->"
        "<x:Any xmlns:x=\"urn:x\" xmlns:y=\"urn:y\"> <x:sharedClients>a&amp;b"
        "</x:sharedClients>\n<y:sharedClients><![CDATA[<c>]]></y:sharedClients>"
        "<sharedClients/></x:Any>\n");
    ask();
    EXPECT_EQ(shared, (Texts{"before", "a&b", "<c>", ""}));
    EXPECT_EQ(takeTransportCalls(), askingWhoShares.calls());
}

TEST_F(OvMEMConnectionRegistration, AReplyThatIsNoXmlSaysWhere) {
    identify();
    const std::pair<std::string, std::string> replies[] = {
        {"no XML",
         "Fatal Error: parsing: From-String: line 1, char 1\n"
         "Message: invalid document structure\n"},
        {"<r><sharedClients>a</sharedClients>",
         "Fatal Error: parsing: From-String: line 1, char 36\n"
         "Message: input ended before all started tags were ended; last tag "
         "started is 'r'\n"},
        {"<r>\n</x>",
         "Fatal Error: parsing: From-String: line 2, char 3\n"
         "Message: expected end of tag 'r'\n"},
        {std::string("<r>\0</r>", 8),
         "Fatal Error: parsing: From-String: line 1, char 4\n"
         "Message: input ended before all started tags were ended; last tag "
         "started is 'r'\n"},
    };
    for (const auto& [reply, message] : replies) {
        answer(reply);
        EXPECT_EQ(thrownBy([this] { ask(); }),
                  (Thrown{"DomException", 0, message}));
        EXPECT_EQ(takeTransportCalls(), askingWhoShares.calls());
    }
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionRegistration, AnEmptyReplyIsNoXml) {
    identify();
    transport.receive(20).reply("");
    EXPECT_EQ(thrownBy([this] { ask(); }),
              (Thrown{"DomException", 0,
                      "Fatal Error: parsing: From-String: line 1, char 1\n"
                      "Message: invalid document structure\n"}));
    EXPECT_EQ(
        takeTransportCalls(),
        (Calls{askingWhoShares.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
               "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMConnectionRegistration, AnUnexpectedElementAppendsNothing) {
    identify();
    answer(
        "<r><sharedClients>a</sharedClients><y:SharedClients "
        "xmlns:y=\"urn:y\"/></r>");
    EXPECT_EQ(
        thrownBy([this] { ask(); }),
        (Thrown{"DomException", 0, "Unexpected node name: SharedClients"}));
    EXPECT_EQ(takeTransportCalls(), askingWhoShares.calls());
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionRegistration, AListLongerThanTheBufferArrivesWhole) {
    identify();
    Texts many;
    for (int number = 0; number < 2000; ++number) {
        many.push_back("client-" + std::to_string(number));
    }
    const std::string reply = listing(many);
    ASSERT_GT(reply.size(), 2 * 16384u);
    transport.receive(19).receive(20).reply(reply);
    shared.clear();
    ask();
    EXPECT_EQ(shared, many);
    Calls calls = askingWhoShares.calls();
    calls.insert(calls.end() - 1, (reply.size() - 1) / 16384,
                 "OvMem_Receive()");
    EXPECT_EQ(takeTransportCalls(), calls);
}

}  // namespace OvMemTest
