#include "emulator/OvMemBinding/Exchange.h"

#include <array>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "emulator/manager/Refusal.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "emulator/store/MemoryStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Wire.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::headerBlock;

namespace {

// A store in memory that can be lost.
class FragileStore : public MemoryStore {
public:
    std::optional<bool> hasEvents(const Identity& caller) override {
        fail();
        return MemoryStore::hasEvents(caller);
    }
    std::optional<PendingEvents> getEvents(const Identity& caller) override {
        fail();
        return MemoryStore::getEvents(caller);
    }
    void consume(const Identity& caller, std::int64_t upto) override {
        fail();
        MemoryStore::consume(caller, upto);
    }

    bool lost = false;

private:
    void fail() const {
        if (lost) {
            throw StoreError("The store is lost.");
        }
    }
};

class ExchangeTest : public testing::Test {
protected:
    std::string refusal(const std::function<void()>& work) {
        try {
            work();
        } catch (const Refusal& refused) {
            return std::to_string(refused.status) + " " + refused.what();
        }
        return "no refusal";
    }

    void beginBody() {
        exchange.sendPart(headerBlock("getStatus", "", ""));
        exchange.endOfSend();
        ASSERT_EQ(exchange.receive(manager, buffer.data()), Exchange::sendBody);
    }

    void getWithoutComplete() {
        store.registerClient({"plant", "pump"});
        store.registerClient({"plant", "valve"});
        store.putEvents({"plant", "pump"}, "open");
        exchange.send(headerBlock("getEvents", "plant", "valve"));
        exchange.endOfSend();
        ASSERT_EQ(exchange.receive(manager, buffer.data()), 4);
        ASSERT_EQ(exchange.receive(manager, buffer.data()),
                  Exchange::endOfReply);
    }

    // The rest of a reply that has begun.
    std::string restOfReply() {
        std::string reply;
        for (;;) {
            const int length = exchange.receive(manager, buffer.data());
            if (length < 0) {
                return reply;
            }
            reply.append(buffer.data(), static_cast<std::size_t>(length));
        }
    }

    // The reply to a request in one piece.
    std::string replyTo(const std::string& operation,
                        const std::string& client) {
        exchange.send(headerBlock(operation, "plant", client));
        exchange.endOfSend();
        return restOfReply();
    }

    FragileStore store;
    SharedClientsReplies replies;
    EventManager manager{store, replies};
    std::array<char, Exchange::chunkSize> buffer{};
    Exchange exchange{{&std::malloc, &std::free}, Limits{200, 10}};
};

}  // namespace

TEST_F(ExchangeTest, ABodyAtTheLimitIsTaken) {
    beginBody();
    exchange.sendPart("01234");
    exchange.sendPart("56789");
    exchange.endOfSend();
    EXPECT_EQ(exchange.receive(manager, buffer.data()), Exchange::replyFollows);
    EXPECT_EQ(exchange.receive(manager, buffer.data()), 10);
}

TEST_F(ExchangeTest, ABodyOverTheLimitIsRefusedWhenSent) {
    beginBody();
    exchange.sendPart("01234");
    EXPECT_EQ(refusal([&] { exchange.sendPart("567890"); }),
              "-751 The body is longer than 10 bytes. Send a shorter one.");
}

TEST_F(ExchangeTest, AWholeRequestHasTheSameLimits) {
    const std::string block = headerBlock("getStatus", "", "");
    exchange.send(block + "0123456789");
    exchange.endOfSend();
    EXPECT_EQ(exchange.receive(manager, buffer.data()), 10);
    exchange.send(block + "01234567890");
    exchange.endOfSend();
    EXPECT_EQ(refusal([&] { exchange.receive(manager, buffer.data()); }),
              "-751 The body is longer than 10 bytes. Send a shorter one.");
    EXPECT_EQ(refusal([&] { exchange.send(std::string(211, 'x')); }),
              "-751 The request is longer than 210 bytes. Send a shorter one.");
}

TEST_F(ExchangeTest, AbandoningLeavesItReadyForTheNextRequest) {
    beginBody();
    exchange.sendPart("0");
    exchange.abandon();
    beginBody();
    exchange.endOfSend();
    EXPECT_EQ(exchange.receive(manager, buffer.data()), Exchange::replyFollows);
    EXPECT_EQ(exchange.receive(manager, buffer.data()), Exchange::endOfReply);
}

TEST_F(ExchangeTest, AStoreLostBeforeCompleteLosesNothing) {
    getWithoutComplete();
    store.lost = true;
    EXPECT_THROW(exchange.complete(manager), StoreError);
    store.lost = false;
    EXPECT_EQ(store.getEvents({"plant", "valve"})->text, "open");
}

TEST_F(ExchangeTest, ACompleteThatFailedIsMadeUpForByTheNextExchange) {
    getWithoutComplete();
    store.lost = true;
    EXPECT_THROW(exchange.complete(manager), StoreError);
    exchange.abandon();
    store.lost = false;
    exchange.send(headerBlock("getEvents", "plant", "valve"));
    exchange.endOfSend();
    EXPECT_EQ(exchange.receive(manager, buffer.data()), Exchange::endOfReply);
    EXPECT_EQ(store.getEvents({"plant", "valve"})->text, "");
}

TEST_F(ExchangeTest, ACompleteThatFailsForGoodIsToldWithTheNextExchangeOnce) {
    getWithoutComplete();
    store.lost = true;
    EXPECT_THROW(exchange.complete(manager), StoreError);
    exchange.abandon();
    exchange.send(headerBlock("getStatus", "", "") + "echo");
    exchange.endOfSend();
    try {
        exchange.receive(manager, buffer.data());
        ADD_FAILURE() << "silent";
    } catch (const StoreError& error) {
        EXPECT_STREQ(error.what(),
                     "The events of the last getEvents could not be taken out "
                     "of the queue, and the next getEvents brings them again. "
                     "This request was not carried out. The store is lost.");
    }
    exchange.abandon();
    exchange.send(headerBlock("getStatus", "", "") + "echo");
    exchange.endOfSend();
    EXPECT_EQ(exchange.receive(manager, buffer.data()), 4);
}

TEST_F(ExchangeTest, AStoreLostBeforeTheReplyEndsInItsError) {
    exchange.send(headerBlock("getEvents", "plant", "valve"));
    exchange.endOfSend();
    store.lost = true;
    EXPECT_THROW(exchange.receive(manager, buffer.data()), StoreError);
}

// The front of such a reply is given back while it is received.
TEST_F(ExchangeTest, EventsOfManyPagesArriveAsTheyWerePut) {
    store.registerClient({"plant", "pump"});
    store.registerClient({"plant", "valve"});
    std::string events;
    while (events.size() < 5U * 1024 * 1024) {
        events += std::to_string(events.size()) + "\n";
    }
    store.putEvents({"plant", "pump"}, events);
    EXPECT_TRUE(replyTo("getEvents", "valve") == events);
    exchange.abandon();
    EXPECT_TRUE(replyTo("getEvents", "valve") == events);
    exchange.complete(manager);
    EXPECT_EQ(replyTo("getEvents", "valve"), "");
}

// It is kept for the next request, so its front must stay.
TEST_F(ExchangeTest, AListOfManyPagesIsTheSameTheNextTime) {
    store.registerClient({"plant", "valve"});
    for (int i = 0; i < 60; ++i) {
        store.registerClient(
            {"plant", std::to_string(i) + std::string(50000, 'x')});
    }
    const std::string list = replyTo("getSharedClients", "valve");
    EXPECT_GT(list.size(), 60U * 50000);
    EXPECT_EQ(list.find('\0'), std::string::npos);
    EXPECT_TRUE(replyTo("getSharedClients", "valve") == list);
}
