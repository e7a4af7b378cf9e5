#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/faults/StartSweep.h"
#include "tests/support/TemporaryFolder.h"

// An XmlPlatformGuard starts the XML platform in place of the first
// connection. Whichever request for memory is refused, the process does not
// end: there is a guard that keeps every promise, or an exception, and after
// that no document is read.

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

constexpr std::size_t memoryLimit = 1000000;
const char dtdSwitch[] = "XERCES_DISABLE_DTD";

Thrown domException(const std::string& text) {
    return {"DomException", 0, text};
}

Thrown parsing(const std::string& xml) {
    return thrownBy([&xml] { SAXToNodeParser().parseString(xml); });
}

Thrown parsingFile(const std::string& name) {
    return thrownBy([&name] { SAXToNodeParser().parseFile(name); });
}

std::string nested(int depth) {
    std::string xml;
    for (int i = 0; i < depth; ++i) {
        xml = "<r>" + xml + "</r>";
    }
    return xml;
}

// What is tried under a guard, or where there is none.
std::vector<Thrown> answers(const std::string& file) {
    return {parsing("<r/>"),
            parsing("<!DOCTYPE r [<!ENTITY e 'text'>]><r>&e;</r>"),
            parsingFile(file), parsing(nested(1001)),
            parsing("<" + std::string(memoryLimit, 'r') + "/>")};
}

std::vector<Thrown> guarded(const std::string& file) {
    const std::string guard = "XmlPlatformGuard: ";
    return {
        nothingThrown,
        domException("Fatal Error: parsing: From-String: line 1, char 10\n"
                     "Message: invalid document structure\n"),
        domException("XML Document '" + file + "' does not exist.\n"),
        domException(guard + "a document may be nested no deeper than 1000 "
                             "elements"),
        domException(guard + "the XML library may hold no more than 1000000 "
                             "bytes")};
}

std::vector<Thrown> unguarded() {
    return std::vector<Thrown>(
        5, domException("XML parser platform is not initialised"));
}

// What differs, a line each.
std::string differences(const std::vector<Thrown>& found,
                        const std::vector<Thrown>& wanted) {
    std::ostringstream lines;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (found.at(i) != wanted[i]) {
            lines << "\ndocument " << i << " ends as " << found[i];
        }
    }
    return lines.str();
}

class Guard : public PlatformStart {
public:
    // With an empty folder one that opens no files.
    Guard(const std::string& unreadable, const std::string& readableFolder)
        : file(unreadable), folder(readableFolder) {}

    void start() override {
        if (folder.empty()) {
            guard.emplace(memoryLimit);
        } else {
            guard.emplace(folder, memoryLimit);
        }
    }

    std::string use(const Thrown& thrown) override {
        const std::string ended =
            thrown.type == "DomException" ? thrown.message : thrown.type;
        return ended +
               (thrown == nothingThrown ? wrongUnderGuard() : afterFailure());
    }

private:
    std::string wrongUnderGuard() const {
        return differences(answers(file), guarded(file)) +
               complaintsOfRegistration(true);
    }

    // Another guard either works or says why it cannot.
    std::string afterFailure() {
        std::string wrong = wrongUnguarded();
        const Thrown again = thrownBy([this] { start(); });
        if (again == nothingThrown) {
            return wrong + ", then a guard" + wrongUnderGuard();
        }
        if (again != domException("XmlPlatformGuard: the XML parser platform "
                                  "failed to start earlier")) {
            wrong += "\nanother guard ends as " + again.type + again.message;
        }
        return wrong + wrongUnguarded() + complaintsOfRegistration(false);
    }

    std::string wrongUnguarded() const {
        return differences(answers(file), unguarded()) +
               (std::getenv(dtdSwitch) == nullptr ? "" : "\nDTDs stay off");
    }

    std::string file;
    std::string folder;
    std::optional<XmlPlatformGuard> guard;
};

}  // namespace

class GuardedPlatformStart : public ::testing::Test {
protected:
    void SetUp() override {
        ::unsetenv(dtdSwitch);
        folder.write("r.xml", "<r/>");
    }

    StartSweep sweepOf(const std::string& readableFolder) const {
        return StartSweep([file = folder.file("r.xml"), readableFolder] {
            return std::make_unique<Guard>(file, readableFolder);
        });
    }

    void expectForeseen(const StartSweep& sweep,
                        const StartSweep::Outcomes& outcomes) {
        const std::set<std::string> foreseen{
            "nothing",
            "bad_alloc",
            "bad_alloc, then a guard",
            "OutOfMemoryException",
            "OutOfMemoryException, then a guard",
            "XmlPlatformGuard: the XML library cannot go on: Unknown reason",
            "XmlPlatformGuard: the XML library cannot go on: Could not load a "
            "local code page transcoder",
        };
        std::cout << "of " << sweep.positions() << " positions";
        for (const auto& [outcome, count] : outcomes) {
            EXPECT_TRUE(foreseen.contains(outcome)) << outcome;
            std::cout << ", " << count << " \"" << outcome << "\"";
        }
        std::cout << std::endl;
    }

    TemporaryFolder folder;
};

TEST_F(GuardedPlatformStart, ASampleOfItsPositionsEndsAsForeseen) {
    const StartSweep sweep = sweepOf("");
    EXPECT_GT(sweep.positions(), 0U);
    expectForeseen(sweep, sweep.refuseSome(97, false));
    expectForeseen(sweep, sweep.refuseSome(89, true));
}

TEST_F(GuardedPlatformStart, WithAFolderASampleOfItsPositionsEndsAsForeseen) {
    std::filesystem::create_directory(folder / "open");
    const StartSweep sweep = sweepOf(folder.file("open"));
    EXPECT_GT(sweep.positions(), sweepOf("").positions());
    expectForeseen(sweep, sweep.refuseSome(997, false));
    expectForeseen(sweep, sweep.refuseSome(997, true));
}

class LongGuardedPlatformStart : public GuardedPlatformStart {};

TEST_F(LongGuardedPlatformStart, EachOfItsPositionsEndsAsForeseen) {
    const StartSweep sweep = sweepOf("");
    expectForeseen(sweep, sweep.refuseEach(false));
}

TEST_F(LongGuardedPlatformStart,
       EachOfItsPositionsAndAllThatFollowEndAsForeseen) {
    const StartSweep sweep = sweepOf("");
    expectForeseen(sweep, sweep.refuseEach(true));
}

}  // namespace OvMemTest
