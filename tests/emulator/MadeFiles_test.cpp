#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/StoreRefusal.h"
#include "tests/emulator/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::pump;
using OvMemTest::storeRefusal;
using OvMemTest::SystemCall;
using OvMemTest::SystemCallWatcher;

// Which files a store makes, and when it makes none.

namespace {

// Only a part of what is written to one file gets there.
class ShortWrites : public SystemCallWatcher {
public:
    explicit ShortWrites(std::string file) : path(std::move(file)) {}

    Verdict before(const SystemCall& call) override {
        const bool cut =
            call.kind == SystemCall::Kind::write && call.path == path;
        return cut ? Verdict{0, call.count / 2} : Verdict{};
    }

private:
    const std::string path;
};

class MadeFiles : public testing::Test {
protected:
    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db")};
};

}  // namespace

TEST_F(MadeFiles, AGateWithoutRoomForItsTextIsReportedAsAFullDisk) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    const ShortWrites writes(options.path + ".gate");
    EXPECT_EQ(
        storeRefusal([this] { SqliteStore(options).registerClient(pump); }),
        "The gate '" + options.path +
            ".gate' of the event store cannot be made (No space left on "
            "device). Free space on its disk, then repeat the call.");
}
