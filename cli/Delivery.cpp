#include "cli/Delivery.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>

#include <unistd.h>

#include "cli/Failure.h"
#include "cli/RescueFile.h"
#include "cli/ShellWord.h"
#include "cli/StandardStreams.h"
#include "cli/StopSignal.h"

namespace ovmem::cli {

namespace {

struct Writing {
    Written written;
    std::size_t size;  // of the output
};

// By making it once more; without memory for that, the least that it can be.
std::size_t sizeOf(const std::string& events, const TextSource& output) {
    if (!output) {
        return events.size();
    }
    std::size_t size = 0;
    try {
        output([&size](std::string_view piece) {
            size += piece.size();
            return true;
        });
        return size;
    } catch (const std::bad_alloc&) {
        return events.size();
    }
}

Written write(const std::string& events, const TextSource& output,
              const SignalWatch& watch) {
    const auto isOver = [&watch] { return watch.isOver(); };
    Written written = output ? tryWriteOutput(output, isOver)
                             : tryWriteOutput(events, isOver);
    if (written.error == 0) {
        written.error = drainOutput(isOver);
    }
    return written;
}

std::string reasonOf(const Writing& writing, const SignalWatch& watch) {
    const std::string start =
        watch.isOver() ? "Stopped by " + nameOfSignal(watch.signal()) +
                             "; standard output has taken "
                       : "Cannot write the events to standard output: " +
                             std::string(std::strerror(writing.written.error)) +
                             "; it has taken ";
    return start + std::to_string(writing.written.bytes) + " of " +
           std::to_string(writing.size) + " bytes.";
}

// What is said of events that were all written, to a terminal that may not have
// shown them.
std::string reasonOfDoubt(const Writing& writing, const SignalWatch& watch,
                          int signal) {
    const std::string start =
        watch.signal() == 0
            ? "Standard"
            : "Stopped by " + nameOfSignal(watch.signal()) + "; standard";
    return start + " output has taken all " + std::to_string(writing.size) +
           " bytes, but at " + nameOfSignal(signal) +
           " the terminal may have dropped some of them.";
}

std::string fateOf(const std::string& events, const Rescue& rescue) {
    if (events.empty()) {
        return "No events were waiting; nothing is lost.";
    }
    const std::string all = std::to_string(events.size());
    std::string fate =
        "The service has handed them out and will not do so again. ";
    if (rescue.files.empty()) {
        return fate + "They could not be saved in a file either and are lost.";
    }
    const bool several = rescue.files.size() > 1;
    fate += rescue.complete ? "All of them (" + all + " bytes) are saved in "
                            : "They could not be saved either: the first " +
                                  std::to_string(rescue.bytes) + " of " + all +
                                  " bytes, perhaps damaged, are in ";
    fate += several ? "these files, in this order:" : "this file:";
    for (const std::string& file : rescue.files) {
        fate += ' ' + shellWord(file);
    }
    return fate;
}

}  // namespace

void deliver(const std::string& events, const TextSource& output,
             SignalWatch& watch) {
    watch.enter(SignalWatch::Phase::Delivering);
    const Written result = write(events, output, watch);
    const bool written = result.error == 0;
    const int dropped = isatty(STDOUT_FILENO) != 0 ? watch.droppedAt() : 0;
    if (written && dropped == 0) {
        return;
    }
    watch.enter(SignalWatch::Phase::Saving);
    const Rescue rescue = events.empty() ? Rescue() : saveToRescueFile(events);
    // Only now: it may take a while.
    const Writing writing = {result, sizeOf(events, output)};
    const std::string reason = written ? reasonOfDoubt(writing, watch, dropped)
                                       : reasonOf(writing, watch);
    const bool stopped = written ? watch.signal() != 0 : watch.isOver();
    throw Failure{
        stopped ? exitCodeOfSignal(watch.signal()) : ExitCode::InputOutput,
        reason, fateOf(events, rescue)};
}

}  // namespace ovmem::cli
