#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::exchange;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::ScriptedCliTest;
using OvMemTest::SEE_HELP;

namespace {

// How the words of a command line are told apart.
class CommandLine : public ScriptedCliTest {
protected:
    // What is registered, as ovmem itself names it.
    void expectRegistered(const Program& program,
                          const Program::Arguments& arguments,
                          const std::string& server,
                          const std::string& client) {
        script(exchange("<r/>"));
        EXPECT_EQ(program.run(arguments),
                  (Outcome{0,
                           "{\"command\":\"register\",\"server\":\"" + server +
                               "\",\"client\":\"" + client +
                               "\",\"sharedClients\":[]}\n",
                           ""}));
    }

    void expectRegistered(const Program::Arguments& arguments,
                          const std::string& server,
                          const std::string& client) {
        expectRegistered(ovmem, arguments, server, client);
    }

    void expectRefusal(const Program::Arguments& arguments,
                       const std::string& text, const std::string& advice) {
        EXPECT_EQ(
            ovmem.run(arguments),
            (Outcome{1, "",
                     "ovmem: usage: " + text + "\novmem: " + advice + "\n"}));
    }

    // The event text that reached the transport.
    void expectPut(const Program::Arguments& arguments,
                   const std::string& events) {
        script(exchange("<r/>") + exchange("<r/>"));
        const Outcome outcome = as("pump").input("input;").run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        const std::string calls = trace();
        EXPECT_NE(calls.find("\nOvMem_SendNoAck(\"" + events + "\")\n"),
                  std::string::npos)
            << calls;
    }
};

}  // namespace

TEST_F(CommandLine, AnEqualsSignWithNothingBehindItIsTheEmptyValue) {
    expectRegistered({"--server=", "--client=x", "register", "--json"}, "",
                     "x");
    expectRegistered({"register", "--server=x", "--client=", "--json"}, "x",
                     "");
    expectRegistered(
        {"register", "--client=", "--server=", "--locale=", "--json"}, "", "");
}

TEST_F(CommandLine, AnEmptyValueNeverTakesTheNextOption) {
    expectRefusal({"register", "--server=", "--client=x", "--client", "y"},
                  "--client is given twice.", "Give it once.");
    script(exchange("<r/>"));
    EXPECT_EQ(as("pump").run({"register", "--client=", "--quiet"}),
              (Outcome{0, "", ""}));
}

TEST_F(CommandLine, AnEmptyWordIsTheEmptyValue) {
    expectRegistered({"register", "--server", "", "--client", "", "--json"}, "",
                     "");
}

TEST_F(CommandLine, AnEmptyOptionWinsOverTheEnvironment) {
    expectRegistered(as("pump"), {"register", "--client=", "--json"}, "plant",
                     "");
}

TEST_F(CommandLine, AValueThatBeginsLikeAnOptionNeedsTheEqualsSign) {
    for (const std::string option :
         {"--server", "--client", "--locale", "--grace"}) {
        for (const std::string value : {"--json", "--", "--x"}) {
            const auto refused = as("pump").run({"register", option, value});
            std::string advice = "Give ";
            advice += option + " a value; if '" + value +
                      "' is the value, write " + option + "=" + value + ".";
            const std::string text = option + " is followed by '" + value +
                                     "', which begins like an option.";
            EXPECT_EQ(refused, (Outcome{1, "",
                                        "ovmem: usage: " + text +
                                            "\novmem: " + advice + "\n"}));
        }
    }
    EXPECT_EQ(trace(), "");
}

TEST_F(CommandLine, WithTheEqualsSignEveryValueIsTaken) {
    expectRegistered({"register", "--server=--client=x", "--client=--json",
                      "--json", "--locale=--"},
                     "--client=x", "--json");
    expectRegistered({"register", "--server=a=b", "--client==", "--json"},
                     "a=b", "=");
}

TEST_F(CommandLine, AValueMayBeginWithOneDash) {
    expectRegistered({"register", "--server", "-", "--client", "-h", "--json"},
                     "-", "-h");
    expectRegistered({"register", "--server=-x", "--client=-", "--json"}, "-x",
                     "-");
}

TEST_F(CommandLine, AValueMayBeNamedLikeACommand) {
    expectRegistered(
        {"--server", "get", "register", "--client", "put", "--json"}, "get",
        "put");
}

TEST_F(CommandLine, OptionsStandBeforeAndAfterTheCommand) {
    expectRegistered({"--json", "--client", "c", "register", "--server", "s"},
                     "s", "c");
    expectRegistered({"--server=s", "register", "--json", "--client=c"}, "s",
                     "c");
}

TEST_F(CommandLine, AnOptionWithAValueIsGivenOnce) {
    for (const std::string option : {"--server", "--client", "--locale"}) {
        expectRefusal({option, "a", "register", option + "=a"},
                      option + " is given twice.", "Give it once.");
    }
    EXPECT_EQ(trace(), "");
}

TEST_F(CommandLine, AnOptionWithoutAValueMayBeGivenTwice) {
    script(exchange("OvMEM Status check"));
    EXPECT_EQ(ovmem.run({"--quiet", "status", "--quiet"}),
              (Outcome{0, "", ""}));
}

TEST_F(CommandLine, AnOptionWithoutItsValueIsRefused) {
    for (const std::string option : {"--server", "--client", "--locale"}) {
        expectRefusal({"status", option}, option + " needs a value.",
                      "Give " + option + " a value, or write " + option +
                          "= for the empty one.");
    }
}

TEST_F(CommandLine, AValueForAnOptionThatTakesNoneIsRefused) {
    for (const std::string option :
         {"--json", "--quiet", "--help", "--version"}) {
        expectRefusal({"status", option + "=no"}, option + " takes no value.",
                      "Write " + option + " alone.");
        expectRefusal({"status", option + "="}, option + " takes no value.",
                      "Write " + option + " alone.");
    }
}

TEST_F(CommandLine, ACommandWithoutFilesTakesNone) {
    for (const std::string command :
         {"status", "register", "clients", "get", "unregister"}) {
        expectRefusal({command, "--quiet", "x"},
                      "The following argument was not expected: 'x'.",
                      SEE_HELP);
        expectRefusal({command, "--", "--json"},
                      "The following argument was not expected: '--json'.",
                      SEE_HELP);
    }
    EXPECT_EQ(trace(), "");
}

TEST_F(CommandLine, AfterTwoDashesEveryWordIsAFile) {
    EXPECT_EQ(
        as("pump").run({"put", folder.write("a", "a"), "--", "--json"}),
        (Outcome{9, "",
                 "ovmem: input/output: Cannot read '--json': No such file "
                 "or directory.\novmem: Nothing was sent.\n"}));
    EXPECT_EQ(trace(), "");
    expectRefusal({"--", "status"},
                  "'status' is neither a command nor an option.", SEE_HELP);
}

TEST_F(CommandLine, FilesStandOnBothSidesOfTwoDashesAndOfOptions) {
    const std::string a = folder.write("a", "a;");
    const std::string b = folder.write("b", "b;");
    expectPut({"put", a, "--quiet", "-", "--", b, a}, "a;input;b;a;");
}

TEST_F(CommandLine, ASingleDashIsStandardInputAlsoAfterTwoDashes) {
    expectPut({"put", "--", "-"}, "input;");
}

// The parser of options would take it for a list.
TEST_F(CommandLine, AFileInBracketsIsThatFile) {
    const std::string bracketed = "[" + folder.write("a", "a") + "]";
    EXPECT_EQ(as("pump").run({"put", bracketed}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot read '" + bracketed +
                           "': No such file or directory.\n"
                           "ovmem: Nothing was sent.\n"}));
}
