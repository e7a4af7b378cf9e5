#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace OvMemTest {

namespace fs = std::filesystem;

namespace {

fs::path makeFolder() {
    std::string name = (fs::temp_directory_path() / "ovmem-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make the folder " + name);
    }
    return name;
}

}  // namespace

TemporaryFolder::TemporaryFolder() : path(makeFolder()) {}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

fs::path TemporaryFolder::operator/(const std::string& name) const {
    return path / name;
}

std::string TemporaryFolder::file(const std::string& name) const {
    return (path / name).string();
}

std::string TemporaryFolder::write(const std::string& name,
                                   std::string_view bytes) const {
    const std::string written = file(name);
    std::ofstream(written, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return written;
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << "cannot read " << path;
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

}  // namespace OvMemTest
