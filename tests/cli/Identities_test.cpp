#include "tests/cli/CliTest.h"

using OvMemTest::CliTest;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// Which names are taken, under which locale. They are sent as UTF-8.
class Identities : public CliTest {
protected:
    // A locale whose code page is Latin-1, made for this test.
    void useLatin1() {
        const std::string locale = folder.file("en_GB.ISO-8859-1");
        const Outcome made = Program("/usr/bin/localedef")
                                 .run({"--no-archive", "-i", "en_GB", "-f",
                                       "ISO-8859-1", locale});
        ASSERT_EQ(made.exitCode, 0) << made;
        ovmem.set("LOCPATH", folder.file("")).set("LC_ALL", "en_GB.ISO-8859-1");
        // The C library itself never frees its copy of LOCPATH.
        const std::string known =
            folder.write("known-leaks", "leak:__argz_add_sep\n");
        ovmem.set("LSAN_OPTIONS", "print_suppressions=0:suppressions=" + known);
        ASSERT_EQ(Program("/usr/bin/locale")
                      .set("LOCPATH", folder.file(""))
                      .set("LC_ALL", "en_GB.ISO-8859-1")
                      .run({"charmap"}),
                  (Outcome{0, "ISO-8859-1\n", ""}));
    }

    void expectRefusal(const std::string& option, const std::string& value) {
        const Outcome refusal = {
            1, "",
            "ovmem: usage: " + option + " is not UTF-8.\novmem: Give " +
                option +
                " a value in UTF-8, which is what is sent, whatever the "
                "locale.\n"};
        std::string variable = "OVMEM_";
        for (const char letter : option.substr(2)) {
            variable += static_cast<char>(letter - 'a' + 'A');
        }
        EXPECT_EQ(as("pump").run({"register", option, value}), refusal);
        EXPECT_EQ(as("pump").set(variable, value).run({"register"}), refusal);
    }

    void expectRefused(const std::string& value) {
        for (const char* option : {"--server", "--client", "--locale"}) {
            expectRefusal(option, value);
        }
    }

    // Two names of one letter's difference, under whatever locale is set.
    void expectTwoClients() {
        registerClient("pümp");
        registerClient("pämp");
        EXPECT_EQ(as("pump").run({"register"}).output, "pämp\npümp\n");
        EXPECT_EQ(as("pümp").input("e").run({"put"}).output, "pump\npämp\n");
        EXPECT_EQ(eventsOf("pämp"), "e");
        EXPECT_EQ(eventsOf("pümp"), "");
    }
};

}  // namespace

TEST_F(Identities, UnderALatin1LocaleNamesOfThatCodePageAreRefused) {
    useLatin1();
    expectRefused("p\xFCmp");
    expectRefused("p\xE4mp");
}

TEST_F(Identities, UnderALatin1LocaleTwoClientsStayTwo) {
    useLatin1();
    expectTwoClients();
}

TEST_F(Identities, UnderThePlainLocaleTwoClientsStayTwo) {
    ovmem.set("LC_ALL", "C");
    expectTwoClients();
}

TEST_F(Identities, UnderAUtf8LocaleTwoClientsStayTwo) {
    expectTwoClients();
}

TEST_F(Identities, WhatIsNotUtf8IsRefusedUnderEveryLocale) {
    for (const char* locale : {"C", "C.UTF-8", "no-such-locale"}) {
        ovmem.set("LC_ALL", locale);
        expectRefused("\xF7\xBF\xBF\xBF");  // beyond the last character
        expectRefused("\xED\xA0\x80");      // a surrogate
        expectRefused("\xC0\x80");          // an overlong form
        expectRefused("cut \xC3");
        expectRefused("K\xFC");
    }
}

TEST_F(Identities, TheLastCharacterOfUnicodeIsTaken) {
    for (const char* locale : {"C", "C.UTF-8"}) {
        ovmem.set("LC_ALL", locale).set("OVMEM_LOCALE", "\U0010FFFF");
        EXPECT_EQ(as("\U0010FFFF")
                      .set("OVMEM_SERVER", "\U0010FFFF")
                      .run({"register", "--quiet"}),
                  (Outcome{0, "", ""}));
    }
}
