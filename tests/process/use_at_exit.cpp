// Uses a connection at the very end of a thread or of the process:
//
//     use_at_exit PLACE [ended]
//
// PLACE is where: global, late_global (made after the transport was started),
// thread_local, other_thread_local, atexit, early_atexit, cancelled,
// cancelled_in_a_call, or key (the destructor of thread specific data). Every
// place puts one event as the client pump of the server plant. Ends with 0
// when all went well.
//
// With "ended" the transport was started with a heap of this program, used by
// several threads and ended before. Each place then makes calls that must be
// refused, and the heap is not called again: the program would end with 4.

#include <atomic>
#include <cstdint>
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

// Whether the transport was ended, and its heap must not be called any more.
std::atomic<bool> ended = false;

void* allocate(std::size_t size) {
    if (ended) {
        ::_exit(4);
    }
    return std::malloc(size);
}

void release(void* block) {
    if (ended) {
        ::_exit(4);
    }
    std::free(block);
}

void requireStatus(std::int32_t status, std::int32_t expected) {
    if (status != expected) {
        ::_exit(5);
    }
}

// Leaves the text of an error on the heap of this program, and a request.
void leaveBlocks() {
    const char* text = nullptr;
    requireStatus(OvMem_Receive(nullptr), -751);
    requireStatus(OvMem_GetLastError(&text), 0);
    requireStatus(OvMem_SendNoAck("half a header block"), 1);
}

void startUseAndEnd() {
    requireStatus(OvMem_Init(allocate, release), 0);
    leaveBlocks();
    std::atomic<bool> used = false;
    std::thread other([&used] {
        leaveBlocks();
        used = true;
        while (!ended) {
            std::this_thread::yield();
        }
    });
    while (!used) {
        std::this_thread::yield();
    }
    requireStatus(OvMem_Term(), 0);
    ended = true;
    other.join();
}

void callAfterTheEnd() {
    const char* text = nullptr;
    requireStatus(OvMem_SendNoAck("header"), -3016);
    requireStatus(OvMem_GetLastError(&text), 0);
    requireStatus(OvMem_SendEOF(), -3016);
    requireStatus(OvMem_Complete(), -3016);
    requireStatus(OvMem_Term(), 0);
}

void act() {
    if (ended) {
        callAfterTheEnd();
    } else {
        put();
    }
}

struct Late {
    bool armed = false;
    ~Late() {
        if (armed) {
            act();
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
            ~PutAtEnd() { act(); }
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
    ::pthread_key_create(&key, [](void*) { act(); });
    std::thread([key] {
        if (!ended) {
            std::string nothing, correlation = "first";
            std::vector<std::string> others;
            connection().putEvents(nothing, others, correlation);
        }
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
        std::atexit(act);
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
        std::atexit(act);
    }
    if (count > 2) {
        startUseAndEnd();
    } else {
        registerPump();
    }
    return arrange(place) ? 0 : 1;
}
