#include "emulator/store/NamedFile.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace fs = std::filesystem;
using Orvane::Net::OvModelEventManager::Emulator::bearsName;

namespace {

class NamedFile : public testing::Test {
protected:
    OvMemTest::TemporaryFolder folder;
    const std::string path = folder.write("file", "");
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> open{
        std::fopen(path.c_str(), "r"), &std::fclose};
    const int file = ::fileno(open.get());
};

}  // namespace

TEST_F(NamedFile, BearsTheNameUnderWhichItWasOpened) {
    EXPECT_TRUE(bearsName(file, path));
}

TEST_F(NamedFile, BearsOnlyTheNewNameAfterItWasMoved) {
    fs::rename(path, folder.file("moved"));
    EXPECT_FALSE(bearsName(file, path));
    EXPECT_TRUE(bearsName(file, folder.file("moved")));
}

TEST_F(NamedFile, DoesNotBearANameThatAnotherFileHasTaken) {
    fs::rename(folder.write("other", ""), path);
    EXPECT_FALSE(bearsName(file, path));
}

TEST_F(NamedFile, DoesNotBearTheNameOfALinkToIt) {
    fs::create_symlink(path, folder.file("link"));
    EXPECT_FALSE(bearsName(file, folder.file("link")));
}

TEST_F(NamedFile, ThatIsNotOpenBearsNoName) {
    EXPECT_FALSE(bearsName(-1, path));
}
