#include "OvMemCppBinding/platform/OvMemBinding.h"

#include <memory>
#include <new>
#include <string>

#include "emulator/OvMemBinding/Thread.h"
#include "emulator/OvMemBinding/Transport.h"
#include "emulator/OvMemBinding/WithoutCancellation.h"
#include "emulator/manager/EventManager.h"
#include "emulator/manager/Refusal.h"
#include "emulator/store/StoreError.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Emulator;

struct Statuses {  // for what is not a refusal
    int32_t unavailable = Status::unavailable;
    int32_t failure = Status::failure;
};

int32_t failed(Thread& thread, int32_t status, const char* text) noexcept {
    if (status != Status::outOfOrder) {
        thread.exchange.abandon();
    }
    thread.lastError.set(text);
    return status;
}

// Runs a call and turns what it throws into a status: the frames above are C.
template <typename Call>
int32_t guarded(Call call, Statuses statuses = {}) noexcept {
    const WithoutCancellation uncancelled;
    Thread* const thread = Thread::current();
    if (!thread) {
        return statuses.failure;
    }
    thread->lastError.clear();
    try {
        return call(*thread);
    } catch (const Refusal& refusal) {
        return failed(*thread, refusal.status, refusal.what());
    } catch (const StoreError& error) {
        return failed(*thread, statuses.unavailable, error.what());
    } catch (const std::bad_alloc&) {
        return failed(*thread, statuses.failure, nullptr);
    } catch (const std::exception& error) {
        return failed(*thread, statuses.failure, error.what());
    } catch (...) {
        return failed(
            *thread, statuses.failure,
            "The emulator failed for a reason that it does not "
            "know. Repeat the call, and report it if it fails again.");
    }
}

// The same for a call that needs the transport started.
template <typename Call>
int32_t guardedInSession(Call call) noexcept {
    return guarded([&call](Thread& thread) {
        const Transport::Use use(Transport::instance());
        const auto& session = use.session();
        if (!session) {
            throw Refusal(Status::outOfOrder,
                          "The transport is not started. Call OvMem_Init "
                          "before any other function.");
        }
        if (thread.session.lock() != session) {
            thread.exchange = Exchange(session->heap);
            thread.session = session;
        }
        return call(thread, *session);
    });
}

void requirePointer(const void* pointer, const char* function) {
    if (!pointer) {
        throw Refusal(Status::malformed,
                      std::string(function) +
                          " was given a null pointer. Give it the address of "
                          "a text or buffer.");
    }
}

}  // namespace

int32_t OvMem_Init(OvMemAllocate allocate, OvMemRelease release) {
    return guarded(
        [&](Thread&) {
            if (!allocate || !release) {
                throw Refusal(Status::initMalformed,
                              "OvMem_Init was given a null pointer. Give it "
                              "two heap functions, such as malloc and free.");
            }
            Transport::instance().start(allocate, release);
            return 0;
        },
        {Status::initUnavailable, Status::initFailure});
}

int32_t OvMem_Term(void) {
    return guarded([](Thread&) {
        Transport::instance().stop();
        return 0;
    });
}

int32_t OvMem_Send(const char* text) {
    return guardedInSession([&](Thread& thread, Session&) {
        requirePointer(text, "OvMem_Send");
        thread.exchange.send(text);
        return 0;
    });
}

int32_t OvMem_SendNoAck(const char* text) {
    return guardedInSession([&](Thread& thread, Session&) {
        requirePointer(text, "OvMem_SendNoAck");
        thread.exchange.sendPart(text);
        return 1;  // go on
    });
}

int32_t OvMem_SendEOF(void) {
    return guardedInSession([](Thread& thread, Session&) {
        thread.exchange.endOfSend();
        return 0;
    });
}

int32_t OvMem_Receive(char* buffer) {
    return guardedInSession([&](Thread& thread, Session& session) {
        requirePointer(buffer, "OvMem_Receive");
        EventManager manager(*session.store, thread.replies);
        return thread.exchange.receive(manager, buffer);
    });
}

int32_t OvMem_Complete(void) {
    return guardedInSession([](Thread& thread, Session& session) {
        EventManager manager(*session.store, thread.replies);
        thread.exchange.complete(manager);
        return 0;
    });
}

int32_t OvMem_GetLastError(const char** text) {
    const WithoutCancellation uncancelled;
    Thread* const thread = Thread::current();
    if (!thread) {
        if (text) {
            *text = nullptr;
        }
        return Status::failure;
    }
    if (!text) {
        thread->lastError.set(
            "OvMem_GetLastError was given a null pointer. Give it the address "
            "of a text pointer.");
        return Status::malformed;
    }
    *text = nullptr;
    try {
        const Transport::Use use(Transport::instance());
        *text = thread->lastError.handOut(use.session() ? &use.session()->heap
                                                        : nullptr);
        return 0;
    } catch (const std::exception&) {
        return Status::failure;
    }
}
