#include <cstdint>
#include <string>

#include "tests/cli/CliTest.h"

using OvMemTest::Outcome;
using OvMemTest::readFile;

namespace {

using LargeEvents = OvMemTest::CliTest;

// Bytes of every value but NUL, in no order that a buffer could hide.
std::string makeEvents(std::size_t size) {
    std::string events(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : events) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>((state >> 24) % 255 + 1);
    }
    return events;
}

}  // namespace

TEST_F(LargeEvents, PassBetweenTwoProcessesByteForByte) {
    const std::size_t size = OVMEM_LARGE_MEBIBYTES * 1024 * 1024;
    const std::string bytes = std::to_string(size) + " bytes";
    const std::string sent = folder.write("sent", makeEvents(size));
    const std::string received = folder.write("received", "");
    registerClient("valve");
    EXPECT_EQ(as("pump").run({"put", sent}),
              (Outcome{0, "valve\n",
                       "ovmem: Put " + bytes +
                           "; 1 other client shares the events.\n"}));
    EXPECT_EQ(as("valve").outputTo(received).run({"get"}),
              (Outcome{0, "", "ovmem: Got " + bytes + ".\n"}));
    EXPECT_TRUE(readFile(sent) == readFile(received));
}
