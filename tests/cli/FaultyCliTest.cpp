#include "tests/cli/FaultyCliTest.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace OvMemTest {

namespace fs = std::filesystem;

namespace {

std::string numberedLines() {
    std::string lines;
    for (int i = 0; lines.size() < 300000; ++i) {
        lines += "event number " + std::to_string(i) + "\n";
    }
    return lines;
}

}  // namespace

FaultyCliTest::FaultyCliTest()
    : place((folder / "home/.local/state/ovmem").string()),
      manyEvents(numberedLines()) {
    fs::create_directory(folder / "temporary");
    fs::permissions(folder / "temporary", fs::perms::owner_all);
    ovmem.set("TMPDIR", folder.file("temporary"));
    ovmem.after("cd '" + folder.file("temporary") + "'");
}

Program FaultyCliTest::getterOf(const std::string& events) const {
    script(exchange("<r/>") + exchange(events) + exchange("<r/>"));
    return as("pump");
}

Program FaultyCliTest::getterOf(const std::string& events,
                                const std::string& faults) const {
    return withFaults(getterOf(events), faults);
}

Program FaultyCliTest::withFaults(Program program,
                                  const std::string& faults) const {
    const char* sanitizer = std::getenv("ASAN_OPTIONS");
    return program
        .set("ASAN_OPTIONS", (sanitizer == nullptr ? "" : sanitizer) +
                                 std::string(":verify_asan_link_order=0"))
        .set("LD_PRELOAD", OVMEM_FAILING_CALLS)
        .set("OVMEM_TEST_FAULTS", faults)
        .set("OVMEM_TEST_REACHED", folder.file("reached"))
        .set("OVMEM_TEST_GO", folder.file("go"));
}

void FaultyCliTest::waitForHang(RunningProgram& running) const {
    running.waitUntil([&] { return fs::exists(folder / "reached"); });
}

void FaultyCliTest::goOn() const {
    folder.write("go", "");
}

std::vector<std::string> FaultyCliTest::filesIn(
    const std::string& where) const {
    std::vector<std::string> files;
    std::error_code failed;
    for (const auto& entry : fs::directory_iterator(where, failed)) {
        files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> FaultyCliTest::savedFiles() const {
    return filesIn(place);
}

std::string FaultyCliTest::savedFile(const std::string& events) const {
    const std::vector<std::string> files = savedFiles();
    EXPECT_EQ(files.size(), 1u);
    if (files.size() != 1) {
        return "";
    }
    EXPECT_TRUE(readFile(files[0]) == events) << "other events were saved";
    return files[0];
}

std::string FaultyCliTest::saved(const std::string& events,
                                 const std::string& path) {
    return "ovmem: The service has handed them out and will not do so again. "
           "All of them (" +
           std::to_string(events.size()) +
           " bytes) are saved in this file: " + path + "\n";
}

}  // namespace OvMemTest
