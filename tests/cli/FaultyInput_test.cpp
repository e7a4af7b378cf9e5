#include "tests/cli/FaultyCliTest.h"

using OvMemTest::exchange;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// A put whose input does not come in one piece.
class FaultyInput : public OvMemTest::FaultyCliTest {
protected:
    Program putter(const std::string& faults) const {
        script(exchange("<r/>") + exchange("<r/>"));
        return withFaults(as("pump").input(manyEvents), faults);
    }

    Outcome put() const {
        return {0, "",
                "ovmem: Put " + std::to_string(manyEvents.size()) +
                    " bytes; 0 other clients share the events.\n"};
    }
};

}  // namespace

TEST_F(FaultyInput, ShortAndInterruptedReadsPutEverything) {
    EXPECT_EQ(
        putter("read input 2 fail EINTR;read input 1+ short 7777").run({"put"}),
        put());
}

TEST_F(FaultyInput, AFileInShortReadsIsPutWhole) {
    script(exchange("<r/>") + exchange("<r/>"));
    const std::string file = folder.write("file", manyEvents);
    EXPECT_EQ(
        withFaults(as("pump"), "read file 1+ short 7777").run({"put", file}),
        put());
}

TEST_F(FaultyInput, InputThatIsNotThereYetIsAwaited) {
    EXPECT_EQ(putter("read input 1 fail EAGAIN;read input 3 fail EAGAIN;"
                     "read input 1+ short 7777")
                  .run({"put"}),
              put());
}

TEST_F(FaultyInput, ThatDoesNotFitIntoTheMemoryPutsNothing) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "The sanitizer brings operator new.";
#endif
    script("");
    const Outcome outcome = withFaults(as("pump").input(manyEvents), "")
                                .set("OVMEM_TEST_LARGEST_EARLY_NEW", "200000")
                                .run({"put"});
    EXPECT_EQ(outcome,
              (Outcome{9, "",
                       "ovmem: input/output: There is not enough memory to "
                       "read the events.\n"
                       "ovmem: Nothing was sent.\n"}));
    EXPECT_EQ(trace(), "");
}

TEST_F(FaultyInput, AReadThatFailsHalfWayPutsNothing) {
    script("");
    const Outcome outcome =
        withFaults(as("pump").input(manyEvents), "read input 3 fail EIO")
            .run({"put"});
    EXPECT_EQ(outcome,
              (Outcome{9, "",
                       "ovmem: input/output: Cannot read standard input: "
                       "Input/output error.\n"
                       "ovmem: Nothing was sent.\n"}));
    EXPECT_EQ(trace(), "");
}

TEST_F(FaultyInput, AFileThatFailsHalfWayPutsNothing) {
    const std::string file = folder.write("file", manyEvents);
    EXPECT_EQ(withFaults(as("pump"), "read file 2 fail EIO").run({"put", file}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot read '" + file +
                           "': Input/output error.\n"
                           "ovmem: Nothing was sent.\n"}));
    EXPECT_EQ(trace(), "");
}
