#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/support/ScriptedPlatformTest.h"

// A program of its own: every array of bytes stands between marks, which are
// looked at when it is freed.

namespace {

constexpr std::size_t markSize = 16;  // keeps what is between them aligned
constexpr char mark = '\x5A';

int overwritten = 0;

struct Front {
    std::uint64_t size;
    char marks[markSize - sizeof(std::uint64_t)];
};
static_assert(sizeof(Front) == markSize);

bool isWhole(const char* marks, std::size_t count) {
    for (std::size_t at = 0; at < count; ++at) {
        if (marks[at] != mark)
            return false;
    }
    return true;
}

}  // namespace

void* operator new[](std::size_t size) {
    auto* const front = static_cast<Front*>(std::malloc(size + 2 * markSize));
    if (front == nullptr)
        throw std::bad_alloc();
    front->size = size;
    std::memset(front->marks, mark, sizeof front->marks);
    char* const bytes = reinterpret_cast<char*>(front + 1);
    std::memset(bytes + size, mark, markSize);
    return bytes;
}

void operator delete[](void* bytes) noexcept {
    if (bytes == nullptr)
        return;
    auto* const front = static_cast<Front*>(bytes) - 1;
    const char* const behind = static_cast<char*>(bytes) + front->size;
    if (!isWhole(front->marks, sizeof front->marks) ||
        !isWhole(behind, markSize))
        ++overwritten;
    std::free(front);
}

void operator delete[](void* bytes, std::size_t) noexcept {
    ::operator delete[](bytes);
}

namespace OvMemTest {

using Orvane::Net::OvModelEventManager::Client::OvMEMRequest;

class OvMEMRequestBlocks : public ScriptedPlatformTest {
protected:
    OvMEMRequestBlocks() { overwritten = 0; }
};

TEST_F(OvMEMRequestBlocks, AStreamedBodyStaysWithinTheBlocksOfItsChunks) {
    for (const std::size_t length : {0U, 1U, 4097U, 4098U, 4099U, 8196U}) {
        std::istringstream stream(std::string(length, 'e'));
        OvMEMRequest request;
        request.setRequestStream(&stream);
        transport.receive(19).receive(20).reply("answer");
        EXPECT_EQ(request.sendAndReceive(), "answer");
        transport.takeCalls();
        EXPECT_EQ(overwritten, 0) << length;
    }
}

TEST_F(OvMEMRequestBlocks, AConversionStaysWithinItsBuffers) {
    for (const std::size_t length : {0U, 1U, 20479U, 20480U, 20481U, 50000U}) {
        OvMEMRequest request;
        request.setHeader("Name", std::string(length, '\xE9').c_str());
        std::istringstream stream;
        request.setRequestStream(&stream);
        transport.receive(20).reply("answer");
        EXPECT_EQ(request.sendAndReceive(), "answer");
        transport.takeCalls();
        EXPECT_EQ(overwritten, 0) << length;
    }
}

}  // namespace OvMemTest
