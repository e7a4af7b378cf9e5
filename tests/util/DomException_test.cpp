#include "OvMemCppBinding/util/DomException.h"

#include <exception>
#include <type_traits>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/Exceptions.h"

namespace {

using Orvane::Net::OvModelEventManager::Client::Exception;
using Orvane::Net::OvModelEventManager::Util::DomException;
using namespace std::string_literals;

static_assert(std::has_virtual_destructor_v<DomException>);
static_assert(!std::is_base_of_v<std::exception, DomException>);
static_assert(!std::is_base_of_v<Exception, DomException>);

TEST(DomException, HasNoMessageUnlessGivenOne) {
    EXPECT_EQ(DomException().getMessage(), "");
}

TEST(DomException, KeepsItsMessageByteForByte) {
    const std::string text = "Fatal Error:\nMessage: \0\xFF\n\n"s;
    EXPECT_EQ(DomException(text).getMessage(), text);
}

TEST(DomException, TakesANewMessage) {
    DomException exception("old");
    exception.setMessage("new\n");
    EXPECT_EQ(exception.getMessage(), "new\n");
    exception.setMessage("");
    EXPECT_EQ(exception.getMessage(), "");
}

TEST(DomException, TakesItsOwnMessage) {
    DomException exception("a message too long for a small string buffer");
    exception.setMessage(exception.getMessage());
    EXPECT_EQ(exception.getMessage(),
              "a message too long for a small string buffer");
}

TEST(DomException, LendsItsMessage) {
    DomException exception("old");
    const std::string& message = exception.getMessage();
    exception.setMessage("new");
    EXPECT_EQ(message, "new");
    EXPECT_EQ(&message, &exception.getMessage());
}

TEST(DomException, ACopyHasAMessageOfItsOwn) {
    DomException original("original");
    DomException copy(original);
    DomException assigned;
    assigned = original;
    original.setMessage("changed");
    EXPECT_EQ(copy.getMessage(), "original");
    EXPECT_EQ(assigned.getMessage(), "original");
}

TEST(DomException, IsThrownByValueAndCaughtByReference) {
    try {
        throw DomException("thrown\n");
    } catch (DomException& exception) {
        EXPECT_EQ(exception.getMessage(), "thrown\n");
    }
}

TEST(DomException, IsCaughtByNoOtherFamily) {
    std::string caughtAs;
    try {
        throw DomException("thrown");
    } catch (const Exception&) {
        caughtAs = "client exception";
    } catch (const std::exception&) {
        caughtAs = "standard exception";
    } catch (DomException&) {
        caughtAs = "DomException";
    }
    EXPECT_EQ(caughtAs, "DomException");
}

// A class derived from it may answer in its own words.
TEST(DomException, ItsOperationsAreVirtual) {
    class Loud : public DomException {
    public:
        explicit Loud(bool* ended) : end(ended) {}
        ~Loud() override { *end = true; }
        void setMessage(const std::string& text) override {
            DomException::setMessage(text + "!");
        }
        const std::string& getMessage() override { return loud; }

    private:
        bool* end;
        std::string loud = "LOUD";
    };
    bool ended = false;
    DomException* exception = new Loud(&ended);
    exception->setMessage("a");
    EXPECT_EQ(exception->getMessage(), "LOUD");
    EXPECT_EQ(exception->DomException::getMessage(), "a!");
    delete exception;
    EXPECT_TRUE(ended);
}

}  // namespace
