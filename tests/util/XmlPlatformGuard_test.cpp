#include "OvMemCppBinding/util/XmlPlatformGuard.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/LimitedMemory.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/RunInChild.h"
#include "tests/support/SystemCheck.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Thrown.h"
#include "tests/util/XmlPlatform.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Util::LimitedMemory;
using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;
using OvMemTest::nothingThrown;
using OvMemTest::runInChild;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using OvMemTest::xmlPlatformRuns;
using xercesc::XMLPlatformUtils;

const Thrown runsAlready{
    "DomException", 0,
    "XmlPlatformGuard: the XML parser platform runs already"};
const Thrown notInitialised{"DomException", 0,
                            "XML parser platform is not initialised"};
const Thrown dtdRefused{"DomException", 0,
                        "Fatal Error: parsing: From-String: line 1, char 10\n"
                        "Message: invalid document structure\n"};

Thrown domException(const std::string& text) {
    return {"DomException", 0, "XmlPlatformGuard: " + text};
}

Thrown parsing(const std::string& xml) {
    return thrownBy([&xml] { SAXToNodeParser().parseString(xml); });
}

Thrown parsingFile(const std::string& name) {
    return thrownBy([&name] { SAXToNodeParser().parseFile(name); });
}

const char withDtd[] = "<!DOCTYPE r [<!ENTITY e 'text'>]><r>&e;</r>";

// A folder with a document, and one beside it that may not be read.
class Documents {
public:
    Documents() {
        for (const char* name : {"open", "closed"}) {
            std::filesystem::create_directory(path(name));
            std::ofstream(path(name) + "/r.xml") << "<r/>";
        }
        std::filesystem::create_symlink(path("closed/r.xml"),
                                        path("open/out.xml"));
        EXPECT_EQ(::mkfifo(path("open/fifo.xml").c_str(), 0600), 0);
    }

    std::string path(const std::string& name) const {
        return folder.file(name);
    }

private:
    OvMemTest::TemporaryFolder folder;
};

// The leak sanitizer looks away.
class LossesAllowed {
public:
#if defined(__SANITIZE_ADDRESS__)
    LossesAllowed() {
        __lsan_disable();
    }
    ~LossesAllowed() {
        __lsan_enable();
    }
#else
    LossesAllowed() {}
    ~LossesAllowed() {}
#endif
    LossesAllowed(const LossesAllowed&) = delete;
    LossesAllowed& operator=(const LossesAllowed&) = delete;
};

Thrown missing(const std::string& name) {
    return {"DomException", 0, "XML Document '" + name + "' does not exist.\n"};
}

}  // namespace

TEST(XmlPlatformGuard, HoldsThePlatformWhileItLives) {
    runInChild([] {
        EXPECT_EQ(parsing("<r/>"), notInitialised);
        {
            const XmlPlatformGuard guard;
            EXPECT_TRUE(xmlPlatformRuns());
            EXPECT_EQ(parsing("<r/>"), nothingThrown);
        }
        EXPECT_FALSE(xmlPlatformRuns());
        EXPECT_EQ(parsing("<r/>"), notInitialised);
    });
}

TEST(XmlPlatformGuard, KeepsThePlatformWhenTheFirstConnectionIsDestroyed) {
    runInChild([] {
        const XmlPlatformGuard guard;
        const OvMEMConnection kept;
        for (int time = 0; time < 3; ++time) {
            { const OvMEMConnection destroyed; }
            EXPECT_TRUE(xmlPlatformRuns());
            EXPECT_EQ(parsing("<r/>"), nothingThrown);
        }
    });
}

TEST(XmlPlatformGuard, ASecondOneIsRefused) {
    runInChild([] {
        const XmlPlatformGuard guard;
        EXPECT_EQ(thrownBy([] { const XmlPlatformGuard second; }), runsAlready);
        EXPECT_EQ(thrownBy([] { const XmlPlatformGuard second("/"); }),
                  runsAlready);
        EXPECT_EQ(parsing(withDtd), dtdRefused);
    });
}

TEST(XmlPlatformGuard, AfterAConnectionItIsRefusedAndChangesNothing) {
    runInChild([] {
        std::optional<OvMEMConnection> connection(std::in_place);
        EXPECT_EQ(thrownBy([] { const XmlPlatformGuard guard; }), runsAlready);
        EXPECT_EQ(parsing(withDtd), nothingThrown);
        connection.reset();
        const XmlPlatformGuard guard;
        EXPECT_EQ(parsing(withDtd), dtdRefused);
    });
}

TEST(XmlPlatformGuard, AnotherMayFollow) {
    runInChild([] {
        for (int time = 0; time < 3; ++time) {
            const XmlPlatformGuard guard;
            EXPECT_EQ(parsing(withDtd), dtdRefused);
        }
        const OvMEMConnection connection;
        EXPECT_EQ(parsing(withDtd), nothingThrown);
    });
}

TEST(XmlPlatformGuard, AnotherMayFollowWhateverTheLimitOfTheFirst) {
    runInChild([] {
        { const XmlPlatformGuard narrow(0); }
        const XmlPlatformGuard guard;
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
    });
}

TEST(XmlPlatformGuard, ConnectionsThatOutliveItKeepThePlatform) {
    runInChild([] {
        std::optional<XmlPlatformGuard> guard(std::in_place);
        std::optional<OvMEMConnection> first(std::in_place);
        const OvMEMConnection second;
        guard.reset();
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
        EXPECT_EQ(parsing(withDtd), nothingThrown);
        EXPECT_EQ(parsingFile("/etc/passwd"), missing("/etc/passwd"));
        first.reset();
        EXPECT_FALSE(xmlPlatformRuns());
        EXPECT_EQ(parsing("<r/>"), notInitialised);
    });
}

TEST(XmlPlatformGuard, WithoutAFolderNoFileIsOpened) {
    runInChild([] {
        const Documents documents;
        const XmlPlatformGuard guard;
        const std::string name = documents.path("open/r.xml");
        EXPECT_EQ(parsingFile(name), missing(name));
    });
}

TEST(XmlPlatformGuard, OfAFolderOnlyTheRegularFilesAreOpened) {
    runInChild([] {
        const Documents documents;
        const XmlPlatformGuard guard(documents.path("open"));
        const std::string name = documents.path("open/r.xml");
        EXPECT_EQ(parsingFile(name), nothingThrown);
        EXPECT_EQ(parsingFile("file://" + name), nothingThrown);
        for (const char* refused :
             {"closed/r.xml", "open/out.xml", "open/fifo.xml", "open",
              "open/none.xml", "open/../closed/r.xml"}) {
            const std::string other = documents.path(refused);
            EXPECT_EQ(parsingFile(other), missing(other));
        }
    });
}

TEST(XmlPlatformGuard, AFolderMayBeNamedByALink) {
    runInChild([] {
        const Documents documents;
        std::filesystem::create_directory_symlink(documents.path("open"),
                                                  documents.path("link"));
        const XmlPlatformGuard guard(documents.path("link"));
        EXPECT_EQ(parsingFile(documents.path("link/r.xml")), nothingThrown);
        EXPECT_EQ(parsingFile(documents.path("open/r.xml")), nothingThrown);
    });
}

TEST(XmlPlatformGuard, WhatIsNoFolderIsRefusedAndStartsNothing) {
    runInChild([] {
        const Documents documents;
        for (const std::string& name :
             {documents.path("none"), documents.path("open/r.xml"),
              std::string()}) {
            EXPECT_EQ(thrownBy([&] { const XmlPlatformGuard guard(name); }),
                      domException("'" + name + "' is not a folder"));
            EXPECT_FALSE(xmlPlatformRuns());
        }
    });
}

TEST(XmlPlatformGuard, TakesTheNetworkAway) {
    runInChild([] {
        {
            const OvMemTest::XmlPlatform bare;
            EXPECT_NE(XMLPlatformUtils::fgNetAccessor, nullptr);
        }
        const XmlPlatformGuard guard;
        EXPECT_EQ(XMLPlatformUtils::fgNetAccessor, nullptr);
    });
}

TEST(XmlPlatformGuard, LimitsTheMemoryOfTheXmlLibrary) {
    runInChild([] {
        const XmlPlatformGuard guard(1000000);
        const std::size_t before = LimitedMemory::instance().held();
        const Thrown tooMuch =
            domException("the XML library may hold no more than 1000000 bytes");
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
        for (int time = 0; time < 3; ++time) {
            EXPECT_EQ(parsing("<" + std::string(1000000, 'r') + "/>"), tooMuch);
            EXPECT_EQ(LimitedMemory::instance().held(), before);
        }
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
    });
}

// Cut short at some points, the XML library loses what it held there.
TEST(XmlPlatformGuard, WhereverTheLimitIsMetADocumentEndsInAnException) {
    runInChild([] {
        const LossesAllowed allowed;
        const XmlPlatformGuard guard;
        const std::string element =
            "<p:r xmlns:p='urn:p' a='&lt;'><![CDATA[x]]><!-- c --><?p i?>"
            "&#xE9;</p:r>";
        const std::string good = "<?xml version='1.0'?>" + element;
        const std::string bad = "<?xml encoding='UTF-16BE'?>" + element;
        std::size_t limit = 0;
        for (bool enough = false; !enough; limit += 256) {
            LimitedMemory::instance().limitGrowth(limit);
            const Thrown thrown = parsing(good);
            enough = thrown == nothingThrown;
            ASSERT_TRUE(enough ||
                        thrown ==
                            domException("the XML library may hold no "
                                         "more than " +
                                         std::to_string(limit) + " bytes"))
                << thrown;
            ASSERT_EQ(parsing(bad).type, "DomException") << limit;
        }
        EXPECT_GT(limit, 100000U);
    });
}

TEST(XmlPlatformGuard, LimitsTheTreeByAsMuch) {
    runInChild([] {
        const XmlPlatformGuard guard(1000000);
        const auto list = [](int count) {
            std::string xml = "<r>";
            for (int i = 0; i < count; ++i) {
                xml += "<c>" + std::string(1000, 'x') + "</c>";
            }
            return xml + "</r>";
        };
        EXPECT_EQ(parsing(list(1000)),
                  domException("the tree of a document may hold no more than "
                               "1000000 bytes"));
        EXPECT_EQ(parsing(list(700)), nothingThrown);
    });
}

TEST(XmlPlatformGuard, LimitsTheDepthUntilItsEnd) {
    runInChild([] {
        std::optional<XmlPlatformGuard> guard(std::in_place);
        const OvMEMConnection connection;
        std::string deep;
        for (int i = 0; i < 1001; ++i) {
            deep = "<r>" + deep + "</r>";
        }
        EXPECT_EQ(parsing(deep),
                  domException("a document may be nested no deeper than 1000 "
                               "elements"));
        EXPECT_EQ(parsing(deep.substr(3, deep.size() - 7)), nothingThrown);
        guard.reset();
        EXPECT_EQ(parsing(deep), nothingThrown);
    });
}

TEST(XmlPlatformGuard, ItsDefaultLimitIs16MiB) {
    runInChild([] {
        const XmlPlatformGuard guard;
        EXPECT_EQ(parsing("<r>" + std::string(17000000, 'x') + "</r>"),
                  domException("the tree of a document may hold no more than "
                               "16777216 bytes"));
    });
}

TEST(XmlPlatformGuard, AFolderComesWithTheSameLimits) {
    runInChild([] {
        const XmlPlatformGuard guard("/");
        EXPECT_EQ(parsing("<r>" + std::string(17000000, 'x') + "</r>"),
                  domException("the tree of a document may hold no more than "
                               "16777216 bytes"));
        EXPECT_EQ(parsing("<" + std::string(17000000, 'r') + "/>"),
                  domException("the XML library may hold no more than 16777216 "
                               "bytes"));
        EXPECT_EQ(parsing(withDtd), dtdRefused);
    });
}

TEST(XmlPlatformGuard, TurnsAPanicIntoAnException) {
    runInChild([] {
        const XmlPlatformGuard guard;
        EXPECT_EQ(
            thrownBy([] {
                XMLPlatformUtils::panic(xercesc::PanicHandler::Panic_MutexErr);
            }),
            domException("the XML library cannot go on: Cannot "
                         "create, lock or unlock a mutex"));
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
    });
}

TEST(XmlPlatformGuard, LeavesTheEnvironmentAsItWas) {
    runInChild([] {
        const char* const name = "XERCES_DISABLE_DTD";
        ::unsetenv(name);
        {
            const XmlPlatformGuard guard;
            EXPECT_STREQ(std::getenv(name), "1");
        }
        EXPECT_EQ(std::getenv(name), nullptr);
        ::setenv(name, "0", 1);
        {
            const XmlPlatformGuard guard;
            EXPECT_STREQ(std::getenv(name), "1");
        }
        EXPECT_STREQ(std::getenv(name), "0");
    });
}
