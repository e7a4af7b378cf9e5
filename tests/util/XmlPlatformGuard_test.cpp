#include "OvMemCppBinding/util/XmlPlatformGuard.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RunInChild.h"
#include "tests/support/SystemCheck.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Thrown.h"
#include "tests/util/GuardedParsing.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;
using OvMemTest::domException;
using OvMemTest::nothingThrown;
using OvMemTest::parsing;
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

TEST(XmlPlatformGuard, RefusesDocumentTypesEvenWithoutTheEnvironment) {
    runInChild([] {
        std::optional<XmlPlatformGuard> guard(std::in_place);
        const OvMEMConnection connection;
        ::clearenv();
        for (const char* const xml :
             {withDtd, "<!DOCTYPE r []><r/>", "<!DOCTYPE r SYSTEM 'd'><r/>",
              "<!DOCTYPE r PUBLIC 'p' 'd' [<!ENTITY % p SYSTEM 'p'> %p;]>"}) {
            EXPECT_EQ(parsing(xml),
                      domException("a document may have no document type"));
        }
        // One that declares nothing, here or elsewhere.
        EXPECT_EQ(parsing("<!DOCTYPE r><r/>"), nothingThrown);
        EXPECT_EQ(parsing("<r><!-- c --><![CDATA[x]]></r>"), nothingThrown);
        guard.reset();
        EXPECT_EQ(parsing(withDtd), nothingThrown);
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

// What was registered before the guard runs after the end of its statics. The
// platform still runs then.
TEST(XmlPlatformGuard, APanicWhileTheProcessEndsIsStillAnException) {
    OvMemTest::ChildProcess child([] {
        std::atexit([] {
            std::cout << thrownBy([] {
                             XMLPlatformUtils::panic(
                                 xercesc::PanicHandler::Panic_MutexErr);
                         }).message
                      << std::flush;
        });
        static const auto* const guard = new XmlPlatformGuard;
        static_cast<void>(guard);
        std::exit(0);
        return 1;
    });
    EXPECT_TRUE(child.awaitEnd(std::chrono::minutes(1)));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    EXPECT_EQ(child.output(),
              "XmlPlatformGuard: the XML library cannot go on: Cannot create, "
              "lock or unlock a mutex");
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
