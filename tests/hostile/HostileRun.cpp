#include "tests/hostile/HostileRun.h"

#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <vector>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include "OvMemCppBinding/util/LimitedMemory.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/hostile/NoFilesNoSockets.h"
#include "tests/hostile/Registration.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

using Orvane::Net::OvModelEventManager::Util::LimitedMemory;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

namespace {

constexpr rlim_t mayGrow = 256 << 20;
constexpr rlim_t seconds = 20;

// Of this process, in pages: the address space and what of it is in memory.
struct Pages {
    Pages() { std::ifstream("/proc/self/statm") >> reserved >> resident; }

    rlim_t reserved = 0;
    rlim_t resident = 0;
};

void limit(int resource, rlim_t value) {
    const rlimit both{value, value};
    if (::setrlimit(resource, &both) != 0) {
        std::perror("setrlimit");
        std::_Exit(1);
    }
}

// What was needed before the reply comes hides nothing of what it takes: free
// blocks go back to the kernel, and the peak of the process begins again;
// where the kernel does not let it, what is measured is too much.
void forgetThePeak() {
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

double peakMebibytes() {
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

// In the child. It leaves without looking for leaks, which takes files.
int play(const HostileReply& reply, bool guarded) {
    std::setlocale(LC_ALL, "C.UTF-8");
    std::optional<XmlPlatformGuard> guard;
    if (guarded) {
        guard.emplace(memoryLimit);
    }
    Registration registration;
    // So that whatever is loaded with the first parse is there.
    registration.script({{identifier("first")}});
    registration.run();
    registration.shared.clear();
    registration.script(reply.pieces);

    const auto held = LimitedMemory::instance().held();
    forgetThePeak();
    const Pages before;
    const auto pageSize = static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    limit(RLIMIT_AS, before.reserved * pageSize + mayGrow);
#endif
    limit(RLIMIT_CPU, seconds);
    const NoFilesNoSockets watch;
    const std::clock_t start = std::clock();
    const Thrown thrown = registration.run();
    const std::clock_t end = std::clock();

    std::ostringstream result;
    result << static_cast<double>(end - start) / CLOCKS_PER_SEC << " "
           << peakMebibytes() -
                  static_cast<double>(before.resident * pageSize >> 20)
           << " " << watch.files() << " " << watch.sockets() << " "
           << static_cast<long long>(LimitedMemory::instance().held() - held)
           << " " << thrown.type << "\n"
           << inWords(registration.shared) << "\n"
           << thrown.message;
    std::cout << result.str() << std::flush;
    std::_Exit(0);
}

}  // namespace

HostileRun::HostileRun(const HostileReply& reply, bool guarded) {
    ChildProcess child([&] { return play(reply, guarded); });
    if (!child.awaitEnd(std::chrono::seconds(100))) {
        failure = "still running";
    } else if (child.signal()) {
        failure = "ended by signal " + std::to_string(*child.signal());
    } else if (child.exitStatus() != 0) {
        failure = "ended with " + std::to_string(*child.exitStatus()) + ": " +
                  child.errors();
    } else {
        std::istringstream output(child.output());
        output >> processorTime >> growth >> outcome.files >> outcome.sockets >>
            loss >> type;
        output.get();
        std::getline(output, outcome.identifiers);
        std::getline(output, outcome.text, '\0');
    }
}

}  // namespace OvMemTest
