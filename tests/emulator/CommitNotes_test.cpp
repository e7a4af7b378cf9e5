#include "emulator/store/CommitNotes.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "emulator/store/Checksum.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/QueuedEvents.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::motor;
using OvMemTest::pump;
using OvMemTest::StoreBytes;
using OvMemTest::valve;

namespace {

const Identity printer{"office", "printer"};

// A store of which earlier files are put back under a gate that knows better.
class CommitNotesTest : public testing::Test {
protected:
    CommitNotesTest() {
        SqliteStore store(options);
        for (const Identity& client : {pump, valve, printer}) {
            store.registerClient(client);
        }
        store.putEvents(pump, "one;");
    }

    void use(const std::function<void(SqliteStore&)>& work) {
        SqliteStore store(options);
        work(store);
    }

    // The files are then as they were before `work`, but for the gate.
    void lose(const std::function<void(SqliteStore&)>& work) {
        const StoreBytes before = StoreBytes::read(options.path);
        use(work);
        const StoreBytes after = StoreBytes::read(options.path);
        StoreBytes{before.database, before.log, after.gate}.write(options.path);
    }

    std::string refusal(const std::function<void(SqliteStore&)>& work) {
        try {
            use(work);
        } catch (const StoreError& error) {
            return error.what();
        }
        return "no refusal";
    }

    std::string refusalToGet(const Identity& client) {
        return refusal([&](SqliteStore& store) { store.getEvents(client); });
    }

    // As if they had been written before the machine was started again.
    void moveNotesToAnotherStart() {
        std::string gate = OvMemTest::readFile(options.path + ".gate");
        for (std::size_t at = 512; at < gate.size(); at += 32) {
            std::int64_t words[4];
            std::memcpy(words, &gate.at(at), sizeof(words));
            words[2] += 1;
            words[3] =
                Checksum(7).add(words[0]).add(words[1]).add(words[2]).value();
            std::memcpy(&gate.at(at), words, sizeof(words));
        }
        std::ofstream(options.path + ".gate", std::ios::binary) << gate;
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db")};
    const std::string lost =
        "The event store '" + options.path +
        "' has lost steps that were answered, some of them of the server "
        "'plant': its log was cut or altered, or its files were replaced by "
        "earlier ones. Put the newest files back. To go on with what is left, "
        "remove its gate '" +
        options.path + ".gate'.";
};

}  // namespace

TEST_F(CommitNotesTest, APutThatIsGoneIsNoticedByEveryCallOfItsServer) {
    lose([](SqliteStore& store) { store.putEvents(pump, "two;"); });
    EXPECT_EQ(refusalToGet(valve), lost);
    EXPECT_EQ(refusal([](auto& store) { store.sharedClients(pump); }), lost);
    EXPECT_EQ(refusal([](auto& store) { store.putEvents(pump, "3;"); }), lost);
    EXPECT_EQ(refusal([](auto& store) { store.registerClient(motor); }), lost);
    EXPECT_EQ(refusal([](auto& store) { store.unregisterClient(pump); }), lost);
    EXPECT_EQ(refusal([](auto& store) { store.consume(valve, 1); }), lost);
    EXPECT_EQ(refusalToGet(printer), "no refusal");
}

TEST_F(CommitNotesTest, WhatIsGoneIsNoticedAgainByTheSameProcess) {
    lose([](SqliteStore& store) { store.putEvents(pump, "two;"); });
    SqliteStore store(options);
    EXPECT_THROW(store.getEvents(valve), StoreError);
    EXPECT_THROW(store.getEvents(valve), StoreError);
}

TEST_F(CommitNotesTest, ARegistrationThatIsGoneIsNoticed) {
    lose([](SqliteStore& store) { store.registerClient(motor); });
    EXPECT_EQ(refusalToGet(motor), lost);
    EXPECT_EQ(refusalToGet(valve), lost);
}

TEST_F(CommitNotesTest, AServerThatIsGoneIsNoticed) {
    lose([](SqliteStore& store) { store.registerClient({"yard", "crane"}); });
    EXPECT_TRUE(refusalToGet({"yard", "crane"}).find("'yard'") !=
                std::string::npos);
    EXPECT_EQ(refusalToGet(valve), "no refusal");
}

TEST_F(CommitNotesTest, AnUnregistrationThatIsGoneIsNoticed) {
    lose([](SqliteStore& store) { store.unregisterClient(valve); });
    EXPECT_EQ(refusalToGet(valve), lost);
}

TEST_F(CommitNotesTest, AConsumptionThatIsGoneIsNoticedByItsClient) {
    lose([](SqliteStore& store) { store.consume(valve, 1); });
    EXPECT_EQ(refusalToGet(valve), lost);
    EXPECT_EQ(refusalToGet(pump), "no refusal");
}

TEST_F(CommitNotesTest, WithoutTheGateTheStoreGoesOnWithWhatIsLeft) {
    lose([](SqliteStore& store) { store.putEvents(pump, "two;"); });
    std::filesystem::remove(options.path + ".gate");
    use([](SqliteStore& store) {
        EXPECT_EQ(store.getEvents(valve)->text, "one;");
        store.putEvents(pump, "three;");
    });
    use([](SqliteStore& store) {
        EXPECT_EQ(store.getEvents(valve)->text, "one;three;");
    });
}

TEST_F(CommitNotesTest, ANoteThatIsOlderThanTheStoreIsNoReasonToRefuse) {
    const std::string gate = OvMemTest::readFile(options.path + ".gate");
    use([](SqliteStore& store) {
        store.putEvents(pump, "two;");
        store.consume(valve, 2);
    });
    std::ofstream(options.path + ".gate", std::ios::binary) << gate;
    EXPECT_EQ(refusalToGet(valve), "no refusal");
}

TEST_F(CommitNotesTest, ANoteOfACommitThatWasNotSyncedEndsWithTheMachine) {
    options.synchronous = Synchronous::normal;
    std::filesystem::remove(options.path + ".gate");
    lose([](SqliteStore& store) { store.putEvents(pump, "two;"); });
    EXPECT_EQ(refusalToGet(valve), lost);
    moveNotesToAnotherStart();
    EXPECT_EQ(refusalToGet(valve), "no refusal");
}

TEST_F(CommitNotesTest, ADamagedNoteIsIgnored) {
    lose([](SqliteStore& store) { store.putEvents(pump, "two;"); });
    std::string gate = OvMemTest::readFile(options.path + ".gate");
    for (std::size_t at = 512; at < gate.size(); at += 32) {
        gate.at(at + 8) = static_cast<char>(gate.at(at + 8) ^ 64);
    }
    std::ofstream(options.path + ".gate", std::ios::binary) << gate;
    EXPECT_EQ(refusalToGet(valve), "no refusal");
}

TEST_F(CommitNotesTest, MoreNotesThanThereIsRoomForAreNoReasonToRefuse) {
    const std::string gate = folder.write("notes", "");
    const CommitNotes notes(gate, Synchronous::full);
    const int file = ::open(gate.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(file, 0);
    int kept = 0;
    for (int i = 0; i < 3000; ++i) {
        notes.noteClient(file, {"plant", std::to_string(i)}, i);
    }
    for (int i = 0; i < 3000; ++i) {
        const auto noted = notes.of({"plant", std::to_string(i)});
        EXPECT_EQ(noted.client.value_or(i), i);
        EXPECT_EQ(noted.server, std::nullopt);
        kept += noted.client ? 1 : 0;
    }
    ::close(file);
    EXPECT_GE(kept, 900);
    EXPECT_LE(std::filesystem::file_size(gate), 64U * 1024);
}

TEST_F(CommitNotesTest, SomeHundredNotesAllHaveRoom) {
    const std::string gate = folder.write("notes", "");
    const CommitNotes notes(gate, Synchronous::full);
    const int file = ::open(gate.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(file, 0);
    for (int i = 0; i < 300; ++i) {
        notes.noteServer(file, std::to_string(i), {1, i, 5, 0});
        notes.noteServer(file, std::to_string(i), {1, i + 1, 5, 0});
    }
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(notes.of({std::to_string(i), "pump"}).server, i + 6) << i;
    }
    ::close(file);
}
