#include "cli/EventInput.h"

#include <sys/stat.h>
#include <unistd.h>

#include "emulator/manager/Limits.h"
#include "tests/cli/ScriptedCliTest.h"

using Orvane::Net::OvModelEventManager::Emulator::Limits;
using ovmem::cli::MAX_EVENT_BYTES;
using OvMemTest::exchange;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// What put reads, and refuses before anything is sent.
class EventInput : public OvMemTest::ScriptedCliTest {
protected:
    // A file of NUL bytes that takes no room on the disk.
    std::string sparse(const std::string& name, std::size_t size) {
        const std::string file = folder.write(name, "");
        EXPECT_EQ(truncate(file.c_str(), static_cast<off_t>(size)), 0);
        return file;
    }

    void expectRefusal(const Program& program,
                       const Program::Arguments& arguments,
                       const Outcome& refusal) {
        EXPECT_EQ(program.run(arguments), refusal);
        EXPECT_EQ(trace(), "");
    }

    void expectRefusal(const Program::Arguments& arguments,
                       const Outcome& refusal) {
        expectRefusal(as("pump"), arguments, refusal);
    }

    // ovmem in a pipeline of the shell, as "$0".
    Program shell() {
        Program shell("/bin/sh");
        for (const char* name :
             {"LD_LIBRARY_PATH", "OVMEM_TEST_SCRIPT", "OVMEM_TEST_TRACE"}) {
            shell.set(name, valueOf(name));
        }
        return shell.set("PATH", "/usr/bin:/bin")
            .set("OVMEM_SERVER", "plant")
            .set("OVMEM_CLIENT", "pump");
    }

    std::string valueOf(const std::string& name) const {
        return name == "LD_LIBRARY_PATH"     ? OVMEM_SCRIPTED_PLATFORM
               : name == "OVMEM_TEST_SCRIPT" ? (folder / "script").string()
                                             : (folder / "trace").string();
    }
};

const Outcome TOO_LONG = {
    1, "",
    "ovmem: usage: The events are longer than 536870912 bytes, the most that "
    "one put carries.\n"
    "ovmem: Nothing was sent. Put them in several parts.\n"};

std::string quoted(const std::string& file) {
    return "'" + file + "'";
}

Outcome nulAt(std::size_t offset, const std::string& name) {
    return {1, "",
            "ovmem: usage: The byte at offset " + std::to_string(offset) +
                " of " + name +
                " is NUL; the transport carries texts and would drop what "
                "follows it.\n"
                "ovmem: Nothing was sent. Remove the NUL bytes, or send the "
                "data encoded, for instance with base64.\n"};
}

Outcome cannotRead(const std::string& name, const std::string& why) {
    return {9, "",
            "ovmem: input/output: Cannot read " + name + ": " + why +
                ".\novmem: Nothing was sent.\n"};
}

}  // namespace

TEST_F(EventInput, ThatIsTooLongForTheEmulatorIsTooLongForTheTool) {
    EXPECT_EQ(MAX_EVENT_BYTES, Limits().body);
}

// A file that were read would be refused for its first byte, a NUL.
TEST_F(EventInput, OfAFileThatIsTooLongIsNotRead) {
    expectRefusal({"put", sparse("a", MAX_EVENT_BYTES + 1)}, TOO_LONG);
}

TEST_F(EventInput, OfTheGreatestLengthIsRead) {
    const std::string file = sparse("a", MAX_EVENT_BYTES);
    expectRefusal({"put", file}, nulAt(0, quoted(file)));
}

TEST_F(EventInput, OfFilesThatAreTooLongTogetherIsNotRead) {
    expectRefusal({"put", folder.write("a", "x"), sparse("b", MAX_EVENT_BYTES)},
                  TOO_LONG);
    const std::string half = sparse("c", MAX_EVENT_BYTES / 2);
    expectRefusal({"put", half, half, half}, TOO_LONG);
    expectRefusal({"put", half, half}, nulAt(0, quoted(half)));
}

TEST_F(EventInput, FromAFileOnStandardInputIsMeasuredFromWhereItStands) {
    const std::string file = sparse("a", MAX_EVENT_BYTES + 1);
    const Outcome refusal = nulAt(0, "standard input");
    expectRefusal(shell(), {"-c", "\"$0\" put <\"$1\"", OVMEM_PROGRAM, file},
                  TOO_LONG);
    expectRefusal(shell(),
                  {"-c", "{ head -c 1 >/dev/null; \"$0\" put; } <\"$1\"",
                   OVMEM_PROGRAM, file},
                  refusal);
}

TEST_F(EventInput, WithoutAnEndIsRefusedWhenItIsTooLong) {
    expectRefusal(shell(), {"-c", "yes | \"$0\" put", OVMEM_PROGRAM}, TOO_LONG);
}

TEST_F(EventInput, WithoutAnEndIsRefusedAtItsFirstNul) {
    expectRefusal({"put", "/dev/zero"}, nulAt(0, "'/dev/zero'"));
}

TEST_F(EventInput, WithANulInAnyFileIsRefusedBeforeAnythingIsSent) {
    const std::string good = folder.write("good", "abc");
    const std::string bad = folder.write("bad", std::string("de\0f", 4));
    Program program = as("pump").input("input");
    expectRefusal(program, {"put", bad, good, "-"}, nulAt(2, quoted(bad)));
    expectRefusal(program, {"put", good, bad, "-"}, nulAt(2, quoted(bad)));
    expectRefusal(program, {"put", good, "-", bad}, nulAt(2, quoted(bad)));
    program.input(std::string("in\0put", 6));
    expectRefusal(program, {"put"}, nulAt(2, "standard input"));
    expectRefusal(program, {"put", good, "-"}, nulAt(2, "standard input"));
    expectRefusal(program, {"put", "-", good}, nulAt(2, "standard input"));
}

TEST_F(EventInput, TheOffsetOfANulCountsFromTheBeginningOfItsFile) {
    std::string late(200000, 'x');
    late[150000] = '\0';
    const std::string file = folder.write("late", late);
    expectRefusal({"put", folder.write("good", "abc"), file},
                  nulAt(150000, quoted(file)));
    late.back() = '\0';
    late[150000] = 'x';
    folder.write("late", late);
    expectRefusal({"put", file}, nulAt(199999, quoted(file)));
}

// The first would be found last if it were looked for in turn.
TEST_F(EventInput, AMissingFileIsFoundBeforeAnythingIsRead) {
    const std::string missing = folder.file("missing");
    Program program = as("pump").input(std::string(1, '\0'));
    expectRefusal(program, {"put", "-", missing},
                  cannotRead(quoted(missing), "No such file or directory"));
    const std::string place = folder.file("");
    expectRefusal(program, {"put", "-", place},
                  cannotRead(quoted(place), "Is a directory"));
}

TEST_F(EventInput, APipeWithANameIsReadOnce) {
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    script(exchange("<r/>") + exchange("<r/>"));
    EXPECT_EQ(shell().run({"-c", "printf events >\"$1\" & \"$0\" put \"$1\"",
                           OVMEM_PROGRAM, pipe}),
              (Outcome{0, "",
                       "ovmem: Put 6 bytes; 0 other clients share the "
                       "events.\n"}));
}
