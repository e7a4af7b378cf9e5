#include <fstream>
#include <iostream>
#include <string>

#include "tests/cli/CliTest.h"

using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

constexpr long long mebibyte = 1024 * 1024;
constexpr long long portion = 64 * mebibyte;

// What the tool needs to get a whole portion, and not what it needs anyway.
class PeakMemory : public OvMemTest::CliTest {
protected:
    // The peak of `ovmem get` in bytes, and what it writes to standard error.
    long long peakOfGet(const std::string& client, bool json,
                        const std::string& words) {
        Program::Arguments arguments = {peakFile, OVMEM_PROGRAM, "get"};
        if (json) {
            arguments.push_back("--json");
        }
        const Outcome outcome = Program(OVMEM_PEAK_OF)
                                    .set("OVMEM_STORE", store)
                                    .set("HOME", folder.file("home"))
                                    .set("OVMEM_SERVER", "plant")
                                    .set("OVMEM_CLIENT", client)
                                    .set("LC_ALL", "C.UTF-8")
                                    .outputTo(folder.file("events"))
                                    .run(arguments);
        EXPECT_EQ(outcome, (Outcome{0, "", words}));
        long long kibibytes = 0;
        std::ifstream(peakFile) >> kibibytes;
        EXPECT_GT(kibibytes, 0);
        return kibibytes * 1024;
    }

    // More events than a portion, of a length by which it can be divided.
    void expectLimits(long long bytesOfAnEvent) {
        registerClient("pump");
        registerClient("valve");
        const std::string nothing =
            "ovmem: 'pump' is registered at 'plant'; if it was not before, it "
            "receives events from now on.\n"
            "ovmem: Got 0 bytes.\n";
        const long long idle = peakOfGet("pump", false, nothing);
        const long long count = portion / bytesOfAnEvent;
        ASSERT_EQ(Program(OVMEM_FILL_STORE)
                      .run({file, "events", std::to_string(count + count / 2),
                            std::to_string(bytesOfAnEvent)}),
                  (Outcome{0, "", ""}));
        const std::string got = "ovmem: Got " +
                                std::to_string(count * bytesOfAnEvent) +
                                " bytes.\n";
        const double text = portions(peakOfGet("valve", false, got) - idle);
        const double json = portions(peakOfGet("pump", true, "") - idle);
        std::cout << "events of " << bytesOfAnEvent << " bytes: " << text
                  << " portions, as JSON " << json << "\n";
        EXPECT_LE(text, 2.2);
        EXPECT_LE(json, 2.2);
    }

    static double portions(long long bytes) {
        return static_cast<double>(bytes) / static_cast<double>(portion);
    }

    const std::string file = folder.file("events.db");
    const std::string store = "sqlite:" + file;
    const std::string peakFile = folder.file("peak");
};

}  // namespace

TEST_F(PeakMemory, OfAGetIsAtMostTwoPortionsAndAFifthForSmallEvents) {
    expectLimits(100);
}

TEST_F(PeakMemory, OfAGetIsAtMostTwoPortionsAndAFifthForEventsOfAMebibyte) {
    expectLimits(mebibyte);
}
