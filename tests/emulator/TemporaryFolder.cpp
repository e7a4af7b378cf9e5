#include "tests/emulator/TemporaryFolder.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace OvMemTest {

TemporaryFolder::TemporaryFolder() {
    std::string name =
        (std::filesystem::temp_directory_path() / "ovmem-XXXXXX").string();
    if (!::mkdtemp(name.data())) {
        throw std::runtime_error("no temporary folder");
    }
    folder = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

}  // namespace OvMemTest
