#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"

// Calls a fuzz target with every file of some folders: no fuzzer is needed for
// that. The input at work is named, should the target end the process.

namespace {

std::vector<std::filesystem::path> filesOf(const std::string& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

void replay(const std::filesystem::path& path) {
    std::printf("%s\n", path.filename().c_str());
    std::fflush(stdout);
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(stream), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                           bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const std::filesystem::path& path : filesOf(argv[i])) {
            replay(path);
            ++count;
        }
    }
    std::printf("%zu inputs replayed\n", count);
    return count == 0 ? 1 : 0;
}
