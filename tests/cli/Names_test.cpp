#include "tests/cli/ScriptedCliTest.h"
#include "tests/cli/Terminal.h"

using OvMemTest::exchange;
using OvMemTest::failingExchange;
using OvMemTest::Outcome;
using OvMemTest::readFile;
using OvMemTest::Terminal;

namespace {

// Names and texts that others chose.
class Names : public OvMemTest::ScriptedCliTest {
protected:
    // A reply that shares with these: text of XML.
    static std::string shared(const std::string& name) {
        return exchange("<r><sharedClients>" + name + "</sharedClients></r>");
    }
};

// DEL, a control of C1, one that turns the direction of writing, a tab and a
// line end, a backslash.
const std::string TRICKY =
    "a\x7F"
    "b\u009B"
    "2Jc\u202E"
    "d&#9;e&#10;f\\g";
const std::string AS_BYTES =
    "a\x7F"
    "b\u009B"
    "2Jc\u202E"
    "d\te\nf\\g";
const std::string AS_SHOWN =
    "a\\x7fb\\xc2\\x9b2Jc\\xe2\\x80\\xaed\\x09e\\x0af\\\\g";

}  // namespace

TEST_F(Names, AreEscapedOnATerminal) {
    for (const char* command : {"register", "clients", "put", "unregister"}) {
        const bool once = std::string(command) == "register";
        script((once ? "" : exchange("<r/>")) + shared(TRICKY));
        Terminal terminal;
        const Outcome outcome =
            as("pump").outputTo(terminal.file()).run({command, "--quiet"});
        EXPECT_EQ(outcome, (Outcome{0, "", ""}));
        EXPECT_EQ(terminal.take(), AS_SHOWN + "\n");
    }
}

TEST_F(Names, AreWrittenByteForByteElsewhere) {
    script(exchange("<r/>") + shared(TRICKY));
    EXPECT_EQ(as("pump").run({"clients", "--quiet"}),
              (Outcome{0, AS_BYTES + "\n", ""}));
}

TEST_F(Names, OfOrdinaryLettersLookTheSameOnATerminal) {
    script(exchange("<r/>") + shared("Kühlung 冷却 \U0001F40B"));
    Terminal terminal;
    EXPECT_EQ(as("pump").outputTo(terminal.file()).run({"clients", "--quiet"}),
              (Outcome{0, "", ""}));
    EXPECT_EQ(terminal.take(), "Kühlung 冷却 \U0001F40B\n");
}

TEST_F(Names, InJsonNeverSteerATerminal) {
    script(exchange("<r/>") + shared(TRICKY));
    EXPECT_EQ(as("pump").run({"clients", "--json"}),
              (Outcome{0,
                       "{\"command\":\"clients\",\"sharedClients\":"
                       "[\"a\\u007fb\\u009b2Jc\\u202ed\\te\\nf\\\\g\"]}\n",
                       ""}));
}

TEST_F(Names, EventsAreWrittenByteForByteAlsoOnATerminal) {
    script(exchange("<r/>") + exchange("\x1B[2J\xFF\u202E\\") +
           exchange("<r/>"));
    Terminal terminal;
    EXPECT_EQ(as("pump").outputTo(terminal.file()).run({"get", "--quiet"}),
              (Outcome{0, "", ""}));
    EXPECT_EQ(terminal.take(), "\x1B[2J\xFF\u202E\\");
}

TEST_F(Names, AreEscapedInTheWords) {
    script(exchange("<r/>"));
    EXPECT_EQ(as("p\x1B[2J\u202Emp").run({"register"}),
              (Outcome{0, "",
                       "ovmem: Registered 'p\\x1b[2J\\xe2\\x80\\xaemp' at "
                       "'plant'; 0 other clients share the events.\n"}));
}

TEST_F(Names, InTheTransportsTextAreEscaped) {
    script(failingExchange(-3001, "Not '\x1B]0;\xFF\u2066'.\r"));
    EXPECT_EQ(as("pump").run({"register"}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): Not "
                       "'\\x1b]0;\\xff\\xe2\\x81\\xa6'.\\x0d\n"
                       "ovmem: Remove the cause, then try again.\n"}));
}

TEST_F(Names, WithALineEndForgeNoMessage) {
    script(failingExchange(-3001, "'a\novmem: The service is alive.'"));
    EXPECT_EQ(as("pump").run({"register"}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): 'a\n"
                       "       ovmem: The service is alive.'\n"
                       "ovmem: Remove the cause, then try again.\n"}));
}

TEST_F(Names, OfFilesAreEscapedInTheWords) {
    EXPECT_EQ(as("pump").run({"put", "\x1B[31m\n\xFF"}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot read \\x1b[31m\n"
                       "       \\xff: No such file or directory.\n"
                       "ovmem: Nothing was sent.\n"}));
}
