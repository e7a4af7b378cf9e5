// Uses a connection at the very end of a thread or of the process:
//
//     use_at_exit PLACE
//
// PLACE is where: global, late_global (made after the transport was started),
// thread_local, other_thread_local, atexit, early_atexit, cancelled,
// cancelled_in_a_call, or key (the destructor of thread specific data). Every
// place puts one event as the client pump of the server plant. Ends with 0
// when all went well.

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/platform/OvMemBinding.h>
#include <pthread.h>
#include <unistd.h>

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

namespace {

// Never destroyed: what is tested is when it is used.
OvMEMConnection& connection() {
    static auto* const only = new OvMEMConnection;
    return *only;
}

void registerPump() {
    std::string server = "plant", client = "pump", locale;
    std::vector<std::string> others;
    connection().registerClient(server, client, locale, others);
}

void put() {
    try {
        std::string events = "last words", correlation = "end";
        std::vector<std::string> others;
        connection().putEvents(events, others, correlation);
    } catch (...) {
        ::_exit(3);
    }
}

struct Late {
    bool armed = false;
    ~Late() {
        if (armed) {
            put();
        }
    }
};

Late global;
thread_local Late ofThread;

void putInThreadLocal() {
    ofThread.armed = true;
}

void putWhenCancelled() {
    std::atomic<bool> waits = false;
    std::thread thread([&waits] {
        const struct PutAtEnd {
            ~PutAtEnd() { put(); }
        } last;
        waits = true;
        for (;;) {
            ::pause();
        }
    });
    while (!waits) {
        std::this_thread::yield();
    }
    ::pthread_cancel(thread.native_handle());
    thread.join();
}

// A thread that is cancelled in the middle of its calls.
void putUntilCancelled() {
    std::atomic<int> puts = 0;
    std::thread thread([&puts] {
        std::string server = "plant", client = "busy", locale;
        std::vector<std::string> others;
        // The first connection destroyed would end the XML platform.
        static auto& own = *new OvMEMConnection;
        own.registerClient(server, client, locale, others);
        for (;;) {
            std::string nothing, correlation = "busy";
            own.putEvents(nothing, others, correlation);
            ++puts;
            ::pthread_testcancel();
        }
    });
    while (puts < 20) {
        std::this_thread::yield();
    }
    ::pthread_cancel(thread.native_handle());
    thread.join();
    put();
}

void putByKey() {
    pthread_key_t key{};
    ::pthread_key_create(&key, [](void*) { put(); });
    std::thread([key] {
        std::string nothing, correlation = "first";
        std::vector<std::string> others;
        connection().putEvents(nothing, others, correlation);
        ::pthread_setspecific(key, &global);
    }).join();
}

bool arrange(const std::string& place) {
    if (place == "global") {
        global.armed = true;
    } else if (place == "late_global") {
        static Late late;
        late.armed = true;
    } else if (place == "thread_local") {
        putInThreadLocal();
    } else if (place == "other_thread_local") {
        std::thread(putInThreadLocal).join();
    } else if (place == "atexit") {
        std::atexit(put);
    } else if (place == "cancelled") {
        putWhenCancelled();
    } else if (place == "cancelled_in_a_call") {
        putUntilCancelled();
    } else if (place == "key") {
        putByKey();
    } else {
        return place == "early_atexit";
    }
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string place = count > 1 ? arguments[1] : "";
    if (place == "early_atexit") {
        std::atexit(put);
    }
    registerPump();
    return arrange(place) ? 0 : 1;
}
