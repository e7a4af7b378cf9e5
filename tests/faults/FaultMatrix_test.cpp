#include <iostream>
#include <optional>
#include <string>

#include <xercesc/util/PlatformUtils.hpp>

#include "tests/faults/FaultCases.h"
#include "tests/faults/MatrixConnection.h"
#include "tests/support/Quoted.h"
#include "tests/support/ScriptedPlatformTest.h"

// Every status, at every call of the transport, in every operation, with every
// answer of OvMem_GetLastError: what the library does is compared with what the
// model does. Cases without an end are in EndlessHandshake_test.cpp.

namespace OvMemTest {

namespace {

// Holds the XML platform, so that it is started once and not for each case.
class XmlPlatform : public ::testing::Environment {
public:
    void SetUp() override { xercesc::XMLPlatformUtils::Initialize(); }
    void TearDown() override { xercesc::XMLPlatformUtils::Terminate(); }
};

const auto* const xmlPlatform =
    ::testing::AddGlobalTestEnvironment(new XmlPlatform);

struct CaseCounts {
    std::size_t positions = 0;
    std::size_t cases = 0;
    std::size_t withoutEnd = 0;
};

// The four answers of OvMem_GetLastError make one case where it is not called.
std::vector<LastError> answersThatMatter(const Expectation& expected) {
    const auto& all = lastErrors();
    return expected.transport.askedForLastError() ? all
                                                  : std::vector{all.front()};
}

// Shows `visit` every fault, with what the model does on the first answer of
// OvMem_GetLastError.
template <typename Visit>
CaseCounts forEachFault(const FaultyOperation& operation, const Visit& visit) {
    CaseCounts counts;
    counts.positions = positionsOf(operation);
    for (std::size_t position = 0; position < counts.positions; ++position) {
        for (const std::int32_t status : faultyStatuses()) {
            const TransportFault fault{position, status};
            const Expectation expected =
                expectationOf(operation, fault, lastErrors().front());
            if (expected.endlessStatus) {
                ++counts.withoutEnd;
            } else {
                counts.cases += answersThatMatter(expected).size();
                visit(fault, expected);
            }
        }
    }
    return counts;
}

std::string nameOf(const ::testing::TestParamInfo<FaultyOperation>& info) {
    return info.param.name;
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const ConnectionState& state) {
    return stream << inQuotes(state.serverId) << " " << inQuotes(state.clientId)
                  << " " << inQuotes(state.locale) << " started "
                  << state.ovMemStarted << " reserved " << state.reserved;
}

std::ostream& operator<<(std::ostream& stream, const CallerValues& values) {
    for (const std::string* text :
         {&values.serverId, &values.clientId, &values.locale, &values.events,
          &values.correlation, &values.reply}) {
        stream << inQuotes(*text) << " ";
    }
    for (const std::string& id : values.sharedClients) {
        stream << inQuotes(id) << " ";
    }
    return stream << values.status;
}

std::ostream& operator<<(std::ostream& stream,
                         const FaultyOperation& operation) {
    return stream << operation.name;
}

class FaultMatrix : public ScriptedPlatformTest,
                    public ::testing::WithParamInterface<FaultyOperation> {
protected:
    void run(const std::optional<TransportFault>& fault,
             const LastError& lastError);

    std::size_t ran = 0;
};

// Runs one case, and leaves its mark on the test.
void FaultMatrix::run(const std::optional<TransportFault>& fault,
                      const LastError& lastError) {
    SCOPED_TRACE((fault ? "status " + std::to_string(fault->status) +
                              " at call " + std::to_string(fault->position)
                        : "no fault") +
                 ", last error " + std::to_string(lastError.status) + " " +
                 lastError.text.value_or("without a text"));
    const FaultyOperation& operation = GetParam();
    const Expectation expected = expectationOf(operation, fault, lastError);
    MatrixConnection connection(operation.state);
    CallerValues caller = operation.caller;
    expected.transport.script(transport);
    EXPECT_EQ(thrownBy([&] { operation.library(connection.get(), caller); }),
              expected.thrown);
    EXPECT_EQ(transport.takeCalls(), expected.transport.takenCalls());
    EXPECT_EQ(connection.state(), expected.state);
    EXPECT_EQ(caller, expected.caller);
    transport.verify();
    ++ran;
}

TEST_P(FaultMatrix, WithoutAFaultTheOperationSucceeds) {
    const Expectation expected =
        expectationOf(GetParam(), {}, lastErrors().front());
    EXPECT_EQ(expected.thrown, nothingThrown);
    EXPECT_FALSE(expected.endlessStatus);
    run({}, lastErrors().front());
}

TEST_P(FaultMatrix, EveryStatusAtEveryCallEndsAsTheRulesSay) {
    const CaseCounts counts = forEachFault(
        GetParam(),
        [this](const TransportFault& fault, const Expectation& expected) {
            for (const LastError& lastError : answersThatMatter(expected)) {
                if (!HasFailure()) {
                    run(fault, lastError);
                }
            }
        });
    RecordProperty("cases", std::to_string(ran));
    std::cout << GetParam().name << ": " << counts.positions << " calls, "
              << ran << " cases" << std::endl;
    EXPECT_EQ(ran, counts.cases);
    EXPECT_GT(ran, 0U);
}

INSTANTIATE_TEST_SUITE_P(Of, FaultMatrix,
                         ::testing::ValuesIn(faultyOperations()), nameOf);

TEST(FaultMatrixSize, HasMoreThanFiveThousandCases) {
    CaseCounts total;
    for (const FaultyOperation& operation : faultyOperations()) {
        const CaseCounts counts = forEachFault(operation, [](auto&&...) {});
        total.positions += counts.positions;
        total.cases += counts.cases;
        total.withoutEnd += counts.withoutEnd;
    }
    std::cout << faultyOperations().size() << " operations, " << total.positions
              << " calls, " << faultyStatuses().size() << " statuses, "
              << lastErrors().size()
              << " answers of OvMem_GetLastError: " << total.cases
              << " cases, and " << total.withoutEnd << " without an end"
              << std::endl;
    EXPECT_GT(total.cases, 5000U);
}

}  // namespace OvMemTest
