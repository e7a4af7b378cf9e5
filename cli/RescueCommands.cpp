#include "cli/RescueCommands.h"

#include <ctime>
#include <vector>

#include "cli/Failure.h"
#include "cli/JsonObject.h"
#include "cli/StandardStreams.h"

namespace ovmem::cli {

namespace {

std::string inUtc(std::time_t when) {
    tm utc = {};
    gmtime_r(&when, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

std::string toJson(const std::vector<SavedFile>& files) {
    std::vector<JsonObject> list;
    for (const SavedFile& file : files) {
        JsonObject entry;
        entry.add("name", file.name);
        entry.add("bytes", static_cast<long long>(file.bytes));
        entry.add("when", inUtc(file.when));
        entry.add("path", file.path);
        list.push_back(entry);
    }
    JsonObject object;
    object.add("command", "rescue list");
    object.add("files", list);
    return object.line();
}

std::string toLines(const std::vector<SavedFile>& files) {
    std::string lines;
    for (const SavedFile& file : files) {
        lines += file.name + '\t' + std::to_string(file.bytes) + '\t' +
                 inUtc(file.when) + '\t' + file.path + '\n';
    }
    return lines;
}

void refuseNul(const std::string& events, const std::string& name) {
    const std::size_t nul = events.find('\0');
    if (nul != std::string::npos) {
        throw Failure{ExitCode::Usage,
                      "The byte at offset " + std::to_string(nul) + " of " +
                          name +
                          " is NUL; the transport carries texts and would "
                          "drop what follows it.",
                      "Nothing was sent. 'ovmem rescue show' writes the events "
                      "as they are."};
    }
}

}  // namespace

void listRescued(const Options& options, const Reporter& reporter) {
    const std::vector<SavedFile> files = listSavedFiles();
    writeOutput(options.json ? toJson(files) : toLines(files));
    reporter.tell(files.empty()
                      ? "No events are saved."
                      : "Saved events: " + std::to_string(files.size()) + ".");
}

void showRescued(const Options& options, const Reporter& reporter) {
    std::string events;
    for (const std::string& name : options.files) {
        events += SavedEvents(name).read();
    }
    const auto size = static_cast<long long>(events.size());
    if (options.json) {
        JsonObject object;
        object.add("command", "rescue show");
        object.add("bytes", size);
        object.add("events", events);
        writeOutput(object.line());
    } else {
        writeOutput(events);
    }
    reporter.tell("Wrote " + std::to_string(size) + " bytes; nothing was " +
                  "removed.");
}

std::string claimRescued(const Options& options,
                         std::list<SavedEvents>& files) {
    std::string events;
    for (const std::string& name : options.files) {
        const SavedEvents& file = files.emplace_back(name);
        file.claim();
        const std::string own = file.read();
        refuseNul(own, file.name());
        events += own;
    }
    return events;
}

}  // namespace ovmem::cli
