#include "cli/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

using ovmem::cli::Descriptor;

namespace {

bool isOpen(int number) {
    return ::fcntl(number, F_GETFD) != -1;
}

int openSomething() {
    return ::open("/dev/null", O_RDWR | O_CLOEXEC);
}

}  // namespace

TEST(Descriptor, ItIsClosedAtTheEndOfItsOwner) {
    const int number = openSomething();
    {
        const Descriptor owner(number);
        EXPECT_EQ(owner.get(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, OnceItIsClosedItsOwnerHasNone) {
    const int number = openSomething();
    Descriptor owner(number);
    EXPECT_TRUE(owner.close());
    EXPECT_EQ(owner.get(), -1);
    EXPECT_FALSE(isOpen(number));
    EXPECT_TRUE(owner.close()) << "closing nothing does not fail";
}

TEST(Descriptor, AFailureToCloseIsReported) {
    const int number = openSomething();
    Descriptor owner(number);
    ::close(number);
    EXPECT_FALSE(owner.close());
}
