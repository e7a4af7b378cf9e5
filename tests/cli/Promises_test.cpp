#include <csignal>
#include <filesystem>

#include "tests/cli/RescueTest.h"

using OvMemTest::FIRST;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::readFile;
using OvMemTest::SECOND;
using OvMemTest::VALVE;
namespace fs = std::filesystem;

namespace {

const Outcome KILLED{-SIGKILL, "", ""};
const Outcome NOTHING_SAVED{0, "", "ovmem: No events are saved.\n"};

// What is left when ovmem is killed, or ends before its reader has read.
class Promises : public OvMemTest::FaultyCliTest {
protected:
    void saveTwoFiles() const {
        fs::create_directories(place);
        folder.write("home/.local/state/ovmem/" + FIRST, "first;");
        folder.write("home/.local/state/ovmem/" + SECOND, "second;");
    }

    Program putsBack(const std::string& faults) const {
        script(VALVE + VALVE);
        return withFaults(as("pump"), faults);
    }

    void kill(OvMemTest::RunningProgram& running) const {
        waitForHang(running);
        running.send(SIGKILL);
        EXPECT_EQ(running.waitForEnd(), KILLED);
        fs::remove(folder / "reached");
        script("");
    }

    // Puts back both files, and is killed where `faults` make it hang.
    void killPutBack(const std::string& faults) const {
        saveTwoFiles();
        folder.write("trace", "");
        auto running =
            putsBack(faults).start({"rescue", "put-back", FIRST, SECOND});
        kill(running);
    }
};

}  // namespace

TEST_F(Promises, AGetThatIsKilledWhileItWritesLeavesWhatTheReaderHasTaken) {
    auto running = getterOf(manyEvents).pipeOutput().start({"get"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.send(SIGKILL);
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome, (Outcome{-SIGKILL, manyEvents.substr(0, 65536), ""}));
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(Promises, AGetThatIsKilledWhileItSavesLeavesAHiddenFile) {
    auto running = getterOf("the events", "fsync - 1 hang -")
                       .outputTo("/dev/full")
                       .start({"get"});
    kill(running);
    const fs::path file = savedFile("the events");
    EXPECT_EQ(file.filename().string().substr(0, 8), ".events-");
    EXPECT_EQ(ovmem.run({"rescue", "list"}), NOTHING_SAVED);
}

TEST_F(Promises, AGetThatIsKilledOnceItHasSavedLeavesAFileThatIsListed) {
    auto running = getterOf("the events", "write errors 1 hang -")
                       .outputTo("/dev/full")
                       .start({"get"});
    kill(running);
    const std::string name = fs::path(savedFile("the events")).filename();
    EXPECT_EQ(ovmem.run({"rescue", "show", "--quiet", name}),
              (Outcome{0, "the events", ""}));
}

TEST_F(Promises, EventsInAPipeAreNotSavedWhenTheReaderEndsLater) {
    auto running = getterOf("the events").pipeOutput().start({"get"});
    running.waitUntil([&] { return running.hasEnded(); });
    running.closeOutput();
    EXPECT_EQ(running.waitForEnd(), (Outcome{0, "", "ovmem: Got 10 bytes.\n"}));
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(Promises, EventsThatAreWrittenToAFileAreNotAwaitedOnTheDisk) {
    EXPECT_EQ(getterOf("the events", "fsync - 1+ fail EIO").run({"get"}),
              (Outcome{0, "the events", "ovmem: Got 10 bytes.\n"}));
}

TEST_F(Promises, APutBackThatIsKilledBeforeItSendsTheEventsLeavesAllFiles) {
    killPutBack("receive - 1 hang -");
    EXPECT_EQ(trace().find("first;second;"), std::string::npos);
    EXPECT_EQ(savedFiles(),
              (std::vector{place + "/" + FIRST, place + "/" + SECOND}));
}

TEST_F(Promises, APutBackThatIsKilledBeforeItRemovesAFilePutsAllTwice) {
    for (const std::string step :
         {"receive - 6", "receive - 7", "unlink not-delivered 1"}) {
        killPutBack(step + " hang -");
        EXPECT_EQ(savedFiles(),
                  (std::vector{place + "/" + FIRST, place + "/" + SECOND}))
            << step;
        EXPECT_NE(trace().find("OvMem_SendNoAck(\"first;second;\")"),
                  std::string::npos)
            << step;
        EXPECT_EQ(putsBack("").run({"rescue", "put-back", FIRST, SECOND}),
                  (Outcome{0, "valve\n",
                           "ovmem: Put back 13 bytes and removed 2 files; 1 "
                           "other client shares the events.\n"}))
            << step;
    }
}

TEST_F(Promises, APutBackThatIsKilledBetweenTwoFilesLeavesTheSecond) {
    killPutBack("unlink not-delivered 2 hang -");
    EXPECT_EQ(savedFiles(), (std::vector{place + "/" + SECOND}));
}

TEST_F(Promises, APutBackThatIsKilledAtItsAnswerLeavesNoFile) {
    killPutBack("write output 1 hang -");
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", FIRST}),
        (Outcome{9, "",
                 "ovmem: input/output: No saved events are named '" + FIRST +
                     "'.\n"
                     "ovmem: 'ovmem rescue list' names those there "
                     "are.\n"}));
}
