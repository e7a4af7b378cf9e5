#include "OvMemCppBinding/util/RestrictedFiles.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::RestrictedFiles;
using Orvane::Net::OvModelEventManager::Util::transcodeToString;
using xercesc::XMLPlatformUtils;

const std::string content = "<r/>";
const xercesc::FileHandle refused = XERCES_Invalid_File_Handle;

// The folder "open" may be read, "closed" beside it may not.
class RestrictedFilesTest : public OvMemTest::XmlPlatformTest {
protected:
    RestrictedFilesTest() {
        for (const char* name : {"open", "open/deep", "open.too", "closed"}) {
            std::filesystem::create_directory(path(name));
        }
        for (const char* file : {"open/a.xml", "open/deep/b.xml",
                                 "open.too/c.xml", "closed/d.xml"}) {
            std::ofstream(path(file)) << content;
        }
    }

    std::string path(const std::string& name) const {
        return folder.file(name);
    }

    std::unique_ptr<RestrictedFiles> restrictedTo(
        const std::string& allowed) const {
        return std::make_unique<RestrictedFiles>(
            std::unique_ptr<xercesc::XMLFileMgr>(
                XMLPlatformUtils::makeFileMgr(memory)),
            allowed);
    }

    // By both forms of a name.
    bool opens(RestrictedFiles& access, const std::string& name) {
        XMLCh* wide = xercesc::XMLString::transcode(name.c_str());
        const bool wideOpens =
            closes(access, access.fileOpen(wide, false, memory));
        xercesc::XMLString::release(&wide);
        const bool opens =
            closes(access, access.fileOpen(name.c_str(), false, memory));
        EXPECT_EQ(wideOpens, opens) << name;
        return opens;
    }

    bool closes(RestrictedFiles& access, xercesc::FileHandle file) {
        if (file == refused) {
            return false;
        }
        access.fileClose(file, memory);
        return true;
    }

    std::string taken(XMLCh* text) {
        const std::string copy = transcodeToString(text, false);
        xercesc::XMLString::release(&text, memory);
        return copy;
    }

    xercesc::MemoryManager* const memory = XMLPlatformUtils::fgMemoryManager;
    OvMemTest::TemporaryFolder folder;
    std::unique_ptr<RestrictedFiles> files = restrictedTo(path("open"));
};

}  // namespace

TEST_F(RestrictedFilesTest, RegularFilesBelowTheFolderAreOpened) {
    EXPECT_TRUE(opens(*files, path("open/a.xml")));
    EXPECT_TRUE(opens(*files, path("open/deep/b.xml")));
    EXPECT_TRUE(opens(*files, path("closed/../open/deep/../a.xml")));
}

TEST_F(RestrictedFilesTest, FilesElsewhereAreNot) {
    EXPECT_FALSE(opens(*files, path("closed/d.xml")));
    EXPECT_FALSE(opens(*files, path("open/../closed/d.xml")));
    EXPECT_FALSE(opens(*files, path("open.too/c.xml")));
    EXPECT_FALSE(opens(*files, "/etc/passwd"));
}

TEST_F(RestrictedFilesTest, ANameIsTakenByteForByte) {
    std::ofstream(path("open/\x1A.xml")) << content;
    EXPECT_TRUE(opens(*files, path("open/\x1A.xml")));
    EXPECT_FALSE(opens(*files, path("open/?.xml")));
}

TEST_F(RestrictedFilesTest, ALinkCountsForWhereItLeads) {
    std::filesystem::create_symlink(path("closed/d.xml"), path("open/out.xml"));
    std::filesystem::create_symlink(path("open/a.xml"), path("closed/in.xml"));
    std::filesystem::create_directory_symlink(path("closed"), path("open/up"));
    EXPECT_FALSE(opens(*files, path("open/out.xml")));
    EXPECT_FALSE(opens(*files, path("open/up/d.xml")));
    EXPECT_TRUE(opens(*files, path("closed/in.xml")));
}

TEST_F(RestrictedFilesTest, OnlyRegularFilesAreOpened) {
    ASSERT_EQ(::mkfifo(path("open/fifo").c_str(), 0600), 0);
    EXPECT_FALSE(opens(*files, path("open/fifo")));
    EXPECT_FALSE(opens(*files, path("open/deep")));
    EXPECT_FALSE(opens(*files, path("open")));
    EXPECT_FALSE(opens(*files, path("open/none.xml")));
    EXPECT_FALSE(opens(*files, ""));
}

TEST_F(RestrictedFilesTest, ADeviceIsNoRegularFile) {
    const auto everything = restrictedTo("/");
    EXPECT_TRUE(opens(*everything, path("closed/d.xml")));
    EXPECT_FALSE(opens(*everything, "/dev/zero"));
}

TEST_F(RestrictedFilesTest, WithoutAFolderNothingIsOpened) {
    const auto nothing = restrictedTo("");
    EXPECT_FALSE(opens(*nothing, path("open/a.xml")));
    EXPECT_FALSE(opens(*nothing, "/etc/passwd"));
}

TEST_F(RestrictedFilesTest, NothingIsOpenedToWrite) {
    const std::string name = path("open/a.xml");
    EXPECT_EQ(files->fileOpen(name.c_str(), true, memory), refused);
    EXPECT_EQ(std::filesystem::file_size(name), content.size());
    EXPECT_EQ(files->fileOpen(path("open/new.xml").c_str(), true, memory),
              refused);
    EXPECT_FALSE(std::filesystem::exists(path("open/new.xml")));
}

TEST_F(RestrictedFilesTest, StandardInputIsNotOpened) {
    EXPECT_EQ(files->openStdIn(memory), refused);
}

TEST_F(RestrictedFilesTest, AnOpenFileIsReadThroughWhatIsWrapped) {
    const xercesc::FileHandle file =
        files->fileOpen(path("open/a.xml").c_str(), false, memory);
    ASSERT_NE(file, refused);
    EXPECT_EQ(files->fileSize(file, memory), content.size());
    XMLByte buffer[10] = {};
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(files->curPos(file, memory), 0U);
        EXPECT_EQ(files->fileRead(file, sizeof buffer, buffer, memory), 4U);
        EXPECT_EQ(reinterpret_cast<char*>(buffer), content);
        EXPECT_EQ(files->curPos(file, memory), 4U);
        files->fileReset(file, memory);
    }
    files->fileClose(file, memory);
}

TEST_F(RestrictedFilesTest, AFileThatSomebodyElseOpenedToWriteIsWritten) {
    const std::string name = path("closed/new.xml");
    const xercesc::FileHandle file =
        XMLPlatformUtils::openFileToWrite(name.c_str(), memory);
    ASSERT_NE(file, refused);
    files->fileWrite(file, 4, reinterpret_cast<const XMLByte*>("text"), memory);
    files->fileClose(file, memory);
    EXPECT_EQ(std::filesystem::file_size(name), 4U);
}

TEST_F(RestrictedFilesTest, PathsAreMadeByWhatIsWrapped) {
    const auto here = std::filesystem::current_path();
    EXPECT_EQ(taken(files->getCurrentDirectory(memory)), here.string());
    EXPECT_EQ(taken(files->getFullPath(u".", memory)), here.string());
    EXPECT_TRUE(files->isRelative(u"a/b", memory));
    EXPECT_FALSE(files->isRelative(u"/a/b", memory));
}
