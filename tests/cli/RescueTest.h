#ifndef TESTS_CLI_RESCUETEST_H
#define TESTS_CLI_RESCUETEST_H

#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

#include "tests/cli/FaultyCliTest.h"

namespace OvMemTest {

inline const std::string FIRST =
    "events-not-delivered-20240501T120000.000001Z-17";
inline const std::string SECOND =
    "events-not-delivered-20240501T120000.000002Z-4";
inline const std::string THIRD =
    "events-not-delivered-20240502T120000.000000Z-9";

// A reply by which another client receives the events.
inline const std::string VALVE =
    exchange("<r><sharedClients>valve</sharedClients></r>");

// Tests of the commands for saved events, of which there are two.
class RescueTest : public FaultyCliTest {
protected:
    RescueTest() {
        std::filesystem::create_directories(place);
        write(place + "/" + SECOND, "second;");
        write(place + "/" + FIRST, "first;");
    }

    // As of noon on the first of May.
    void write(const std::string& path, const std::string& events) const {
        const std::filesystem::path written = path;
        folder.write(written.lexically_relative(folder / "").string(), events);
        const timespec noon[2] = {{1714564800, 0}, {1714564800, 0}};
        EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), noon, 0), 0);
    }

    std::string line(const std::string& name, const std::string& bytes,
                     const std::string& where) const {
        return name + "\t" + bytes + "\t2024-05-01T12:00:00Z\t" + where + "/" +
               name + "\n";
    }

    static Outcome unknown(const std::string& name) {
        return {1, "", "ovmem: usage: " + unknownText(name)};
    }

    // A name of ovmem's own: the file may have been there.
    static Outcome gone(const std::string& name) {
        return {9, "", "ovmem: input/output: " + unknownText(name)};
    }

    static std::string unknownText(const std::string& name) {
        return "No saved events are named '" + name +
               "'.\n"
               "ovmem: 'ovmem rescue list' names those there are.\n";
    }
};

}  // namespace OvMemTest

#endif
