#include "tests/cli/CliTest.h"

using OvMemTest::CliTest;
using OvMemTest::Outcome;
using OvMemTest::readFile;

namespace {

class Help : public CliTest {
protected:
    static std::string expected(const std::string& name) {
        return readFile(OVMEM_EXPECTED_TEXTS "/" + name + ".txt");
    }
};

}  // namespace

TEST_F(Help, TheWholeTextIsAsCheckedIn) {
    EXPECT_EQ(ovmem.run({"--help"}), (Outcome{0, expected("help"), ""}));
}

TEST_F(Help, EachCommandHasAHelpOfItsOwn) {
    for (const std::string command :
         {"status", "register", "clients", "put", "get", "unregister"}) {
        EXPECT_EQ(ovmem.run({command, "--help"}),
                  (Outcome{0, expected("help-" + command), ""}));
    }
}

TEST_F(Help, IsAskedForWithOneLetterToo) {
    EXPECT_EQ(ovmem.run({"-h"}), (Outcome{0, expected("help"), ""}));
    for (const std::string command :
         {"status", "register", "clients", "put", "get", "unregister"}) {
        const Outcome help = {0, expected("help-" + command), ""};
        EXPECT_EQ(ovmem.run({command, "-h"}), help);
        EXPECT_EQ(ovmem.run({"-h", command}), help);
        EXPECT_EQ(ovmem.run({command, "--quiet", "-h"}), help);
    }
}

TEST_F(Help, EachCommandOfRescueHasAHelpOfItsOwn) {
    EXPECT_EQ(ovmem.run({"rescue", "--help"}),
              (Outcome{0, expected("help-rescue"), ""}));
    EXPECT_EQ(ovmem.run({"rescue", "-h"}),
              (Outcome{0, expected("help-rescue"), ""}));
    for (const std::string command : {"list", "show", "put-back"}) {
        const Outcome help = {0, expected("help-rescue-" + command), ""};
        EXPECT_EQ(ovmem.run({"rescue", command, "--help"}), help);
        EXPECT_EQ(ovmem.run({"rescue", command, "-h"}), help);
    }
}

TEST_F(Help, WinsOverAnUnknownOptionAndOverJson) {
    const Outcome help = {0, expected("help-get"), ""};
    EXPECT_EQ(ovmem.run({"get", "--bogus", "-h"}), help);
    EXPECT_EQ(ovmem.run({"get", "-x", "--json", "--help"}), help);
    EXPECT_EQ(ovmem.run({"--version", "--json", "--bogus"}),
              (Outcome{0, "ovmem " OVMEM_VERSION "\n", ""}));
}

TEST_F(Help, TheEnvironmentDoesNotChangeIt) {
    ovmem.set("OVMEM_SERVER", "plant").set("LC_ALL", "C");
    EXPECT_EQ(ovmem.run({"--help"}), (Outcome{0, expected("help"), ""}));
}

TEST_F(Help, TheVersionIsTheProjectsOwn) {
    EXPECT_EQ(ovmem.run({"--version"}),
              (Outcome{0, "ovmem " OVMEM_VERSION "\n", ""}));
}

TEST_F(Help, ThatCannotBeWrittenIsAFailure) {
    ovmem.outputTo("/dev/full");
    EXPECT_EQ(ovmem.run({"--help"}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot write to standard output: "
                       "No space left on device.\n"
                       "ovmem: Give standard output a place to go.\n"}));
}
