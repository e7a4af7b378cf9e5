#ifndef TESTS_SUPPORT_TEMPORARYFOLDER_H
#define TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <filesystem>
#include <string>
#include <string_view>

namespace OvMemTest {

// A new folder that is removed, with what is in it, at the end of its life.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // The path of something in the folder, which need not exist.
    std::filesystem::path operator/(const std::string& name) const;
    std::string file(const std::string& name) const;

    // Writes a file there and returns its path.
    std::string write(const std::string& name, std::string_view bytes) const;

private:
    const std::filesystem::path path;
};

// The whole content of a file; a test failure if it cannot be read.
std::string readFile(const std::filesystem::path& path);

}  // namespace OvMemTest

#endif
