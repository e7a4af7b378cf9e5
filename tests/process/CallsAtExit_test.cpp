#include <string>

#include "tests/cli/CliTest.h"

using OvMemTest::CliTest;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// A program that puts an event while it, or a thread of it, is ending.
class CallsAtExit : public CliTest {
protected:
    CallsAtExit() { registerClient("valve"); }

    void expectPutAt(const std::string& place) {
        Program program(OVMEM_USE_AT_EXIT);
        program.set("OVMEM_STORE", "sqlite:" + folder.file("events.db"));
        EXPECT_EQ(program.run({place}), (Outcome{0, "", ""}));
        EXPECT_EQ(eventsOf("valve"), "last words");
    }

    void expectNoHeapAt(const std::string& place) {
        Program program(OVMEM_USE_AT_EXIT);
        program.set("OVMEM_STORE", "sqlite:" + folder.file("events.db"));
        EXPECT_EQ(program.run({place, "ended"}), (Outcome{0, "", ""})) << place;
    }
};

}  // namespace

TEST_F(CallsAtExit, ThePutOfAGlobalsDestructorArrives) {
    expectPutAt("global");
}

TEST_F(CallsAtExit, ThePutOfALateGlobalsDestructorArrives) {
    expectPutAt("late_global");
}

TEST_F(CallsAtExit, ThePutOfAThreadLocalsDestructorArrives) {
    expectPutAt("thread_local");
}

TEST_F(CallsAtExit, ThePutOfAnotherThreadsThreadLocalArrives) {
    expectPutAt("other_thread_local");
}

TEST_F(CallsAtExit, ThePutOfAnExitHandlerArrives) {
    expectPutAt("atexit");
}

TEST_F(CallsAtExit, ThePutOfAnExitHandlerOlderThanTheTransportArrives) {
    expectPutAt("early_atexit");
}

TEST_F(CallsAtExit, ThePutOfACancelledThreadArrives) {
    expectPutAt("cancelled");
}

TEST_F(CallsAtExit, AThreadCancelledWhileItPutsHarmsNobody) {
    expectPutAt("cancelled_in_a_call");
}

TEST_F(CallsAtExit, ThePutOfThreadSpecificDataArrives) {
    expectPutAt("key");
}

TEST_F(CallsAtExit, AfterTheLastEndTheHostsHeapIsNeverCalledAgain) {
    for (const char* place :
         {"global", "late_global", "thread_local", "other_thread_local",
          "atexit", "early_atexit", "cancelled", "key"}) {
        expectNoHeapAt(place);
    }
}
