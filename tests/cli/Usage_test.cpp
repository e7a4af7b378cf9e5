#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::ScriptedCliTest;
using OvMemTest::SEE_HELP;

namespace {

// What is refused is refused before any library is called.
class Usage : public ScriptedCliTest {
protected:
    void expectRefusal(const Program& program,
                       const Program::Arguments& arguments,
                       const std::string& text, const std::string& advice) {
        EXPECT_EQ(
            program.run(arguments),
            (Outcome{1, "",
                     "ovmem: usage: " + text + "\novmem: " + advice + "\n"}));
        EXPECT_EQ(trace(), "");
    }

    void expectRefusal(const Program::Arguments& arguments,
                       const std::string& text, const std::string& advice) {
        expectRefusal(ovmem, arguments, text, advice);
    }
};

std::string lineEnd(const std::string& option) {
    return option +
           " holds a line end, which would break the header lines of the "
           "request.";
}

}  // namespace

TEST_F(Usage, ACommandIsNeeded) {
    expectRefusal({}, "A command is missing.", SEE_HELP);
    expectRefusal({"--quiet"}, "A command is missing.", SEE_HELP);
}

TEST_F(Usage, AnUnknownCommandIsRefused) {
    expectRefusal({"fetch"}, "'fetch' is neither a command nor an option.",
                  SEE_HELP);
}

TEST_F(Usage, TwoCommandsAreRefused) {
    expectRefusal({"status", "get"},
                  "The following argument was not expected: 'get'.", SEE_HELP);
}

TEST_F(Usage, AnUnknownOptionIsRefused) {
    expectRefusal({"status", "--loud"},
                  "The following argument was not expected: '--loud'.",
                  SEE_HELP);
    expectRefusal({"--loud"},
                  "The following argument was not expected: '--loud'.",
                  SEE_HELP);
    expectRefusal({"rescue", "-x", "-y"},
                  "The following argument was not expected: '-x'.", SEE_HELP);
}

TEST_F(Usage, AnUnknownLetterIsNamedAndNeverTakenForAnOptionThatItBeginsLike) {
    for (const std::string word : {"-x", "-hx", "-h=1", "-xh"}) {
        expectRefusal(
            {word}, "The following argument was not expected: '" + word + "'.",
            SEE_HELP);
        expectRefusal(
            {"get", word},
            "The following argument was not expected: '" + word + "'.",
            SEE_HELP);
    }
}

TEST_F(Usage, AnEmptyWordIsQuoted) {
    expectRefusal({""}, "'' is neither a command nor an option.", SEE_HELP);
    expectRefusal({"status", ""},
                  "The following argument was not expected: ''.", SEE_HELP);
}

TEST_F(Usage, RegisterNeedsAServer) {
    expectRefusal({"register", "--client", "pump"}, "register needs --server.",
                  "Give --server, or set OVMEM_SERVER.");
}

TEST_F(Usage, AServerNeedsAClient) {
    for (const char* command :
         {"register", "clients", "put", "get", "unregister"}) {
        expectRefusal({command, "--server", "plant"},
                      "--server needs --client as well.",
                      "Give --client, or set OVMEM_CLIENT.");
    }
}

TEST_F(Usage, AValueWithALineEndIsRefused) {
    const std::string option[] = {"--server", "--client", "--locale"};
    for (const std::string& broken : option) {
        for (const std::string value : {"a\r\nb", "a\n", "\rb"}) {
            Program program = ovmem;
            program.set("OVMEM_SERVER", "plant").set("OVMEM_CLIENT", "pump");
            expectRefusal(program, {"get", broken, value}, lineEnd(broken),
                          "Give " + broken + " a value of one line.");
        }
    }
}

TEST_F(Usage, AValueFromTheEnvironmentIsCheckedAsWell) {
    ovmem.set("OVMEM_SERVER", "plant").set("OVMEM_CLIENT", "pump\nServer-ID=x");
    expectRefusal({"get"}, lineEnd("--client"),
                  "Give --client a value of one line.");
}

TEST_F(Usage, AnIdByWhichNoPutIsKnownIsRefused) {
    const std::string advice =
        "Give --id a value that no other put of this client has.";
    ovmem.set("OVMEM_SERVER", "plant").set("OVMEM_CLIENT", "pump");
    expectRefusal({"put", "--id", ""}, "--id is empty.", advice);
    expectRefusal({"put", "--id=ovmem.put"},
                  "--id is 'ovmem.put', which is what is sent without it.",
                  advice);
    expectRefusal({"put", "--id", "a\nb"}, lineEnd("--id"),
                  "Give --id a value of one line.");
    expectRefusal({"put", "--id", "null"},
                  "--id is \"null\", which would be sent as an empty value.",
                  "Give --id another value.");
    expectRefusal({"put", "--id", "\xFF"}, "--id is not UTF-8.",
                  "Give --id a value in UTF-8, which is what is sent, whatever "
                  "the locale.");
}

TEST_F(Usage, OnlyPutHasAnId) {
    for (const char* command :
         {"status", "register", "clients", "get", "unregister"}) {
        expectRefusal({command, "--id", "run 1"},
                      "The following argument was not expected: '--id'.",
                      SEE_HELP);
    }
}

TEST_F(Usage, AValueThatIsTheWordNullIsRefused) {
    expectRefusal({"get", "--server", "plant", "--client", "null"},
                  "--client is \"null\", which would be sent as an empty "
                  "value.",
                  "Give --client another value.");
}

TEST_F(Usage, StandardInputNamedTwiceIsRefused) {
    expectRefusal({"put", "-", "-"}, "Standard input is named twice.",
                  "Name '-' once.");
}

TEST_F(Usage, ErrorsAreJsonWhereJsonIsAskedFor) {
    const Outcome failure{
        1, "",
        "{\"error\":\"usage\",\"text\":\"'fetch' is neither a command "
        "nor an option.\",\"advice\":\"'ovmem --help' "
        "lists the commands and options.\",\"exitCode\":1}\n"};
    EXPECT_EQ(ovmem.run({"fetch", "--json"}), failure);
    EXPECT_EQ(ovmem.run({"fetch", "--client", "x", "--json"}), failure);
    EXPECT_EQ(ovmem.run({"fetch", "--client=", "--json"}), failure);
}

TEST_F(Usage, TheWordAfterAnIdDoesNotAskForJson) {
    EXPECT_EQ(ovmem.run({"put", "--id", "--json"}),
              (Outcome{1, "",
                       "ovmem: usage: --id is followed by '--json', which "
                       "begins like an option.\n"
                       "ovmem: Give --id a value; if '--json' is the value, "
                       "write --id=--json.\n"}));
}
