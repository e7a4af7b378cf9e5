#include "tests/faults/AllocationSweep.h"

#include <algorithm>
#include <iostream>

#include <gtest/gtest.h>

// Each request for memory of each operation is refused once, alone and with
// all that follow. AllocationSweep.h says what must not happen.

namespace OvMemTest {

namespace {

struct Sweep {
    SweptOperation operation;
    bool andAllAfter;
};

std::vector<Sweep> sweeps(const std::vector<SweptOperation>& operations) {
    std::vector<Sweep> all;
    for (const SweptOperation& operation : operations) {
        all.push_back({operation, false});
        all.push_back({operation, true});
    }
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<Sweep>& info) {
    return info.param.operation.name +
           (info.param.andAllAfter ? "AndAllThatFollow" : "");
}

std::ostream& operator<<(std::ostream& stream, const Sweep& sweep) {
    return stream << sweep.operation.name;
}

void print(const std::string& name, const SweepResult& result) {
    std::cout << name << ": " << result.positions << " positions;";
    for (const auto& [type, count] : result.outcomes) {
        std::cout << " " << count << " " << type;
    }
    std::cout << "; the XML library loses memory in " << result.lossyRuns
              << " runs";
    for (const auto& [loser, count] : result.lostBlocks) {
        std::cout << ", " << count << " blocks in " << loser;
    }
    std::cout << std::endl;
}

void add(SweepResult& total, const SweepResult& result) {
    total.positions += result.positions;
    total.lossyRuns += result.lossyRuns;
    for (const auto& [type, count] : result.outcomes) {
        total.outcomes[type] += count;
    }
    for (const auto& [loser, count] : result.lostBlocks) {
        total.lostBlocks[loser] += count;
    }
}

}  // namespace

class AllocationSweep : public ::testing::TestWithParam<Sweep> {
protected:
    static void SetUpTestSuite() { total = {}; }
    static void TearDownTestSuite() { print("all of these sweeps", total); }

    void sweepAll() {
        const auto& [operation, andAllAfter] = GetParam();
        const SweepResult result = sweepAllocations(operation, andAllAfter);
        for (std::size_t i = 0;
             i < std::min<std::size_t>(result.complaints.size(), 20); ++i) {
            ADD_FAILURE() << result.complaints[i];
        }
        EXPECT_EQ(result.complaints.size(), 0U);
        std::uint64_t runs = 0;
        for (const auto& [type, count] : result.outcomes) {
            runs += count;
        }
        EXPECT_GT(result.positions, 0U);
        EXPECT_EQ(runs, result.positions);
        RecordProperty("positions", std::to_string(result.positions));
        print(operation.name, result);
        add(total, result);
    }

private:
    inline static SweepResult total;
};

TEST_P(AllocationSweep, NothingCrashesOrIsLostOrLies) {
    sweepAll();
}

INSTANTIATE_TEST_SUITE_P(Of, AllocationSweep,
                         ::testing::ValuesIn(sweeps(sweptOperations())),
                         nameOf);

class LongAllocationSweep : public AllocationSweep {};

TEST_P(LongAllocationSweep, NothingCrashesOrIsLostOrLies) {
    sweepAll();
}

INSTANTIATE_TEST_SUITE_P(Of, LongAllocationSweep,
                         ::testing::ValuesIn(sweeps(longSweptOperations())),
                         nameOf);

}  // namespace OvMemTest
