#include "cli/RescueCommands.h"

#include <cstring>
#include <ctime>
#include <set>
#include <vector>

#include <sys/resource.h>

#include "cli/Count.h"
#include "cli/EventInput.h"
#include "cli/Failure.h"
#include "cli/JsonObject.h"
#include "cli/RescuePieces.h"
#include "cli/ShellWord.h"
#include "cli/StandardStreams.h"
#include "cli/TerminalText.h"

namespace ovmem::cli {

namespace {

const std::size_t OTHER_DESCRIPTORS = 16;

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
                 inUtc(file.when) + '\t' + escaped(file.path) + '\n';
    }
    return lines;
}

void refuseNul(const std::string& events, const std::string& name) {
    const std::size_t nul = events.find('\0');
    if (nul != std::string::npos) {
        throw hasNul(nul, name,
                     "Nothing was sent. 'ovmem rescue show' writes the events "
                     "as they are.");
    }
}

void requireRoom(const std::list<SavedEvents>& files) {
    std::size_t room = MAX_EVENT_BYTES;
    for (const SavedEvents& file : files) {
        if (file.bytes() > room) {
            throw tooManyBytes(
                "Nothing was sent. Put back fewer files at once; one that is "
                "too large alone can be written with 'ovmem rescue show' and "
                "put in several parts.");
        }
        room -= file.bytes();
    }
}

// Each file stays open, for its lock, while the transport needs some as well.
void requireDescriptors(std::size_t files) {
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 &&
        files + OTHER_DESCRIPTORS > limit.rlim_cur) {
        throw Failure{ExitCode::Usage,
                      "So many files (" + std::to_string(files) +
                          ") cannot be put back at once; ovmem may open " +
                          std::to_string(limit.rlim_cur) + ".",
                      "Nothing was sent. Name fewer files, or raise the limit "
                      "with 'ulimit -n'."};
    }
}

void openOnce(const std::vector<std::string>& names,
              std::list<SavedEvents>& files) {
    const SavedFiles all = listSavedFiles();
    std::set<SavedEvents::Identity> known;
    for (const std::string& name : names) {
        const SavedEvents& file = files.emplace_back(name, all);
        if (!known.insert(file.identity()).second) {
            throw Failure{ExitCode::Usage, file.name() + " is named twice.",
                          "Nothing was sent. Name each file once."};
        }
    }
}

}  // namespace

void listRescued(const Options& options, const Reporter& reporter) {
    const SavedFiles saved = listSavedFiles();
    const std::vector<SavedFile>& files = saved.files;
    writeOutput(options.json ? toJson(files) : toLines(files));
    requireComplete(saved);
    reporter.tell(files.empty()
                      ? "No events are saved."
                      : "Saved events: " + std::to_string(files.size()) + ".");
}

void showRescued(const Options& options, const Reporter& reporter) {
    const SavedFiles all = listSavedFiles();
    std::string events;
    for (const std::string& name : options.files) {
        events += SavedEvents(name, all).read();
    }
    if (options.json) {
        JsonObject object;
        object.add("command", "rescue show");
        object.add("bytes", static_cast<long long>(events.size()));
        object.add("events", events);
        writeOutput(object.line());
    } else {
        writeOutput(events);
    }
    reporter.tell("Wrote " + count(events.size(), "byte") +
                  "; nothing was removed.");
}

std::string claimRescued(const Options& options,
                         std::list<SavedEvents>& files) {
    requireDescriptors(options.files.size());
    openOnce(options.files, files);
    orderPieces(files);
    for (const SavedEvents& file : files) {
        file.claim();
        file.requireRemovable();
    }
    requireRoom(files);
    std::string events;
    for (const SavedEvents& file : files) {
        const std::string own = file.read();
        refuseNul(own, file.name());
        events += own;
    }
    return events;
}

void removeRescued(const std::list<SavedEvents>& files) {
    std::string stay;
    int failures = 0;
    for (const SavedEvents& file : files) {
        if (const int error = file.remove()) {
            stay += (failures++ == 0 ? "" : "; ") + shellWord(file.path()) +
                    ": " + std::strerror(error);
        }
    }
    if (failures > 0) {
        throw Failure{ExitCode::InputOutput, "Cannot remove " + stay + ".",
                      std::string("The events are put. Remove the ") +
                          (failures == 1 ? "file" : "files") +
                          ", or they may be put once more."};
    }
}

}  // namespace ovmem::cli
