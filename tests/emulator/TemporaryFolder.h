#ifndef TESTS_EMULATOR_TEMPORARYFOLDER_H
#define TESTS_EMULATOR_TEMPORARYFOLDER_H

#include <filesystem>
#include <string>

namespace OvMemTest {

// An empty folder of its own, gone with its contents at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    // A path in the folder.
    std::string file(const std::string& name) const {
        return (folder / name).string();
    }

private:
    std::filesystem::path folder;
};

}  // namespace OvMemTest

#endif
