#include "tests/emulator/StoreModel.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreVerification.h"
#include "tests/emulator/RandomSteps.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

// Random steps with a store, every answer compared with that of a model. What
// failed is repeated with the command that the failure names.

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::ChildProcess;
using OvMemTest::RandomSteps;
using OvMemTest::StoreModel;
using OvMemTest::StoreStep;

namespace {

using Kind = StoreStep::Kind;

constexpr std::size_t portion = 10000;
constexpr const char* seedVariable = "OVMEM_MODEL_SEED";
constexpr const char* stepsVariable = "OVMEM_MODEL_STEPS";

// What the suite needs to know of each kind of store.

struct StepsInMemory {
    static constexpr bool outlivesProcesses = false;

    MemoryStore store{{.portion = portion}};

    EventStore& any(std::size_t /*which*/) { return store; }
    void reopen(std::size_t /*which*/) {}
    std::vector<std::string> findings() { return {}; }
};

// Two of them over one file, as two processes have it, and any of them may be
// closed and opened again.
struct StepsInSqlite {
    static constexpr bool outlivesProcesses = true;

    OvMemTest::TemporaryFolder folder;
    const SqliteOptions options{folder.file("events.db"), Synchronous::normal,
                                10000, Access::owner, portion};
    std::unique_ptr<SqliteStore> first = std::make_unique<SqliteStore>(options);
    std::unique_ptr<SqliteStore> second;

    EventStore& any(std::size_t which) {
        std::unique_ptr<SqliteStore>& store = which % 2 == 0 ? first : second;
        if (!store) {
            store = std::make_unique<SqliteStore>(options);
        }
        return *store;
    }
    void reopen(std::size_t which) {
        (which % 2 == 0 ? first : second).reset();
    }
    std::vector<std::string> findings() { return verifyStore(options); }
};

std::string textOf(const ClientList& clients) {
    if (!clients) {
        return "none";
    }
    std::string text;
    for (const std::string& client : *clients) {
        text += "[" + client + "]";
    }
    return text;
}

// The gets of which the model knows, too.
using Gets = std::deque<std::pair<Identity, std::int64_t>>;

std::string answer(EventStore& store, const StoreStep& step, Gets& gets) {
    const Identity caller{step.server, step.client};
    switch (step.kind) {
        case Kind::registerClient:
            return textOf(store.registerClient(caller));
        case Kind::unregisterClient:
            return textOf(store.unregisterClient(caller));
        case Kind::sharedClients:
            return textOf(store.sharedClients(caller));
        case Kind::put:
            return textOf(store.putEvents(caller, step.events));
        case Kind::complete:
            store.consume(gets.at(step.get).first, gets.at(step.get).second);
            return "completed";
        default:
            break;
    }
    const auto got = store.getEvents(caller);
    gets.emplace_back(caller, got ? got->upto : 0);
    if (got && step.kind == Kind::getComplete) {
        store.consume(caller, got->upto);
    }
    return got ? got->text : "none";
}

template <typename Place>
class Run {
public:
    Run(std::uint64_t seedOfRun, std::size_t count)
        : seed(seedOfRun), steps(count), random(seedOfRun) {}

    // True if every answer was right.
    bool go() {
        for (done = 0; done < steps; ++done) {
            const std::size_t chance = random.below(1000);
            const bool right = chance < 5    ? forkAndAct()
                               : chance < 15 ? reopen()
                                             : act();
            if (!right) {
                return false;
            }
        }
        return fetchAll() && isWhole();
    }

private:
    bool act() {
        const StoreStep step = random.next(model.gets());
        return agrees(answer(place.any(random.below(2)), step, gets), step);
    }

    bool agrees(const std::string& answered, const StoreStep& step) {
        const std::string expected = model.answer(step);
        if (answered == expected) {
            return true;
        }
        return failed("kind " + std::to_string(static_cast<int>(step.kind)) +
                      " of '" + step.client + "' at '" + step.server +
                      "':\nanswered " + testing::PrintToString(answered) +
                      "\nexpected " + testing::PrintToString(expected));
    }

    bool reopen() {
        place.reopen(random.below(2));
        return random.below(10) > 0 || isWhole();
    }

    // A forked process does some steps and ends in one of several ways: with
    // the store of its parent, or one of its own.
    bool forkAndAct() {
        std::vector<StoreStep> acts(1 + random.below(4));
        for (StoreStep& step : acts) {
            step = random.nextWithoutComplete();
        }
        StoreModel after = model;
        std::string expected;
        for (const StoreStep& step : acts) {
            expected += after.answer(step) + "\n";
        }
        const std::size_t which = random.below(2);
        const std::size_t end = random.below(3);
        ChildProcess child([&] {
            Gets own;
            for (const StoreStep& step : acts) {
                std::cout << answer(place.any(which), step, own) << '\n';
            }
            std::cout.flush();
            if (end == 0) {
                ::_exit(0);
            }
            return end == 1 ? 0 : std::raise(SIGKILL);
        });
        if (!child.awaitEnd(std::chrono::minutes(1)) ||
            child.output() != expected) {
            return failed("forked:\nanswered " +
                          testing::PrintToString(child.output()) +
                          "\nexpected " + testing::PrintToString(expected) +
                          "\n" + child.errors());
        }
        if constexpr (Place::outlivesProcesses) {
            const std::size_t known = model.gets();
            model = after;
            // Nobody completes the child's gets any more.
            model.forgetGetsAfter(known);
            gets.resize(model.gets());
        }
        return true;
    }

    bool fetchAll() {
        for (const char* server : {"plant", "", "pier \xC3\xA4"}) {
            for (const char* client :
                 {"pump", "valve", "", "a\x01", "a\x02", "motor"}) {
                StoreStep step{Kind::getComplete, server, client, "", 0};
                std::string got;
                do {
                    got = answer(place.any(0), step, gets);
                    if (!agrees(got, step)) {
                        return false;
                    }
                } while (!got.empty() && got != "none");
            }
        }
        return true;
    }

    bool isWhole() {
        const auto findings = place.findings();
        return findings.empty() || failed("the store is damaged:\n" +
                                          testing::PrintToString(findings));
    }

    bool failed(const std::string& what) {
        const std::string test =
            testing::UnitTest::GetInstance()->current_test_suite()->name();
        ADD_FAILURE() << "seed " << seed << ", step " << done << ", " << what
                      << "\nTo repeat: " << seedVariable << "=" << seed << " "
                      << stepsVariable << "=" << done + 1
                      << " build/dev/bin/ovmem_emulator_test --gtest_filter='"
                      << test << ".*'";
        return false;
    }

    const std::uint64_t seed;
    const std::size_t steps;
    std::size_t done = 0;
    RandomSteps random;
    Place place;
    StoreModel model{portion};
    Gets gets;
};

std::uint64_t number(const char* variable, std::uint64_t otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

// So many runs, or the one that the environment asks for.
template <typename Place>
void runMany(std::uint64_t seeds, std::size_t steps) {
    const std::uint64_t only = number(seedVariable, 0);
    const std::size_t count = number(stepsVariable, steps);
    for (std::uint64_t seed = 1; seed <= (only ? 1 : seeds); ++seed) {
        if (!Run<Place>(only ? only : seed, count).go()) {
            return;
        }
    }
}

template <typename Place>
class StoreSteps : public testing::Test {};
template <typename Place>
class LongStoreSteps : public testing::Test {};

using Places = testing::Types<StepsInMemory, StepsInSqlite>;
TYPED_TEST_SUITE(StoreSteps, Places);
TYPED_TEST_SUITE(LongStoreSteps, Places);

}  // namespace

TYPED_TEST(StoreSteps, AreAnsweredAsTheModelAnswersThem) {
    runMany<TypeParam>(3, 2000);
}

TYPED_TEST(LongStoreSteps, AreAnsweredAsTheModelAnswersThem) {
    runMany<TypeParam>(20, 20000);
}
