#include "OvMemCppBinding/client/Exceptions.h"

#include <exception>
#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/Utf8ConversionException.h"
#include "OvMemCppBinding/util/DomException.h"
#include "tests/support/PrivateAccess.h"
#include "tests/support/Thrown.h"

namespace Orvane::Net::OvModelEventManager::Client {

using OvMemTest::reservedOf;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using Util::DomException;

namespace {

// The last type of the list that `thrower` is caught as, by reference, when
// the handlers stand in order of the list; 0 is a handler for anything.
template <typename First, typename Second, typename Third>
int handlerOf(void (*thrower)()) {
    try {
        thrower();
    } catch (const First&) {
        return 1;
    } catch (const Second&) {
        return 2;
    } catch (const Third&) {
        return 3;
    } catch (...) {
        return 0;
    }
    return -1;
}

template <typename Handler>
bool catches(void (*thrower)()) {
    try {
        thrower();
    } catch (Handler) {
        return true;
    } catch (...) {
    }
    return false;
}

void throwPointer() {
    static OvMEMProtocolException thrown(-2, "by pointer");
    throw &thrown;
}

struct Name {
    const std::type_info& type;
    const char* text;
};

const Name names[] = {
    {typeid(Exception), "Exception"},
    {typeid(OvMEMException), "OvMEMException"},
    {typeid(OvMEMConnectionException), "OvMEMConnectionException"},
    {typeid(OvMEMProtocolException), "OvMEMProtocolException"},
    {typeid(OvMEMRuntimeException), "OvMEMRuntimeException"},
    {typeid(OvMEMUnrecognisedException), "OvMEMUnrecognisedException"},
    {typeid(Utf8ConversionException), "Utf8ConversionException"},
};

std::string typeName(const std::type_info& type) {
    for (const Name& name : names) {
        if (name.type == type) {
            return name.text;
        }
    }
    return "unknown";
}

const std::string texts[] = {
    "",
    "one line",
    "two\nlines\n",
    std::string("a NUL \0 inside", 14),
    "\xC3\xA9 and \xFF",
    std::string(100000, 'x'),
};

const int types[] = {0, -1, -2, 1, 2147483647, -2147483647 - 1};

}  // namespace

// Every class of the family behaves alike.
template <typename Class>
class Exceptions : public ::testing::Test {};

using Family =
    ::testing::Types<Exception, OvMEMException, OvMEMConnectionException,
                     OvMEMProtocolException, OvMEMRuntimeException,
                     OvMEMUnrecognisedException, Utf8ConversionException>;
TYPED_TEST_SUITE(Exceptions, Family);

TYPED_TEST(Exceptions, TypeAndMessageAreStoredAsGiven) {
    for (const std::string& text : texts) {
        for (const int type : types) {
            const TypeParam exception(type, text);
            EXPECT_EQ(exception.getType(), type);
            EXPECT_EQ(exception.getMessage(), text);
        }
    }
}

TYPED_TEST(Exceptions, AMessageAloneGivesTypeZero) {
    for (const std::string& text : texts) {
        const TypeParam exception(text);
        EXPECT_EQ(exception.getType(), 0);
        EXPECT_EQ(exception.getMessage(), text);
    }
}

TYPED_TEST(Exceptions, ACopyHasTheSameTypeAndMessage) {
    for (const std::string& text : texts) {
        const TypeParam original(-2, text);
        const TypeParam copy(original);
        EXPECT_EQ(copy.getType(), -2);
        EXPECT_EQ(copy.getMessage(), text);
        EXPECT_NE(&copy.getMessage(), &original.getMessage());
    }
}

TYPED_TEST(Exceptions, AssignmentReplacesTypeAndMessage) {
    const TypeParam source(-1, "new");
    TypeParam target(-2, "a message much longer than the one to come");
    TypeParam& result = target = source;
    EXPECT_EQ(&result, &target);
    EXPECT_EQ(target.getType(), -1);
    EXPECT_EQ(target.getMessage(), "new");
    EXPECT_EQ(source.getMessage(), "new");
}

TYPED_TEST(Exceptions, SelfAssignmentLeavesTheMessageUntouched) {
    TypeParam exception(-2, std::string(100, 'm'));
    TypeParam& same = exception;
    exception = same;
    EXPECT_EQ(exception.getType(), -2);
    EXPECT_EQ(exception.getMessage(), std::string(100, 'm'));
}

TYPED_TEST(Exceptions, TheMessageReferenceStaysTheSame) {
    const TypeParam exception("text");
    EXPECT_EQ(&exception.getMessage(), &exception.getMessage());
}

TYPED_TEST(Exceptions, TheReservedFieldStartsAtZeroAndIsCopied) {
    TypeParam exception(-2, "text");
    EXPECT_EQ(reservedOf(exception), 0);
    reservedOf(exception) = 7;
    TypeParam copy(exception);
    EXPECT_EQ(reservedOf(copy), 7);
    TypeParam assigned("other");
    EXPECT_EQ(reservedOf(assigned), 0);
    assigned = exception;
    EXPECT_EQ(reservedOf(assigned), 7);
}

TYPED_TEST(Exceptions, ItIsThrownAsItsOwnClass) {
    EXPECT_EQ(thrownBy([] { throw TypeParam(-2, "text"); }),
              (Thrown{typeName(typeid(TypeParam)), -2, "text"}));
}

TYPED_TEST(Exceptions, TheOwnClassAndEveryBaseCatchIt) {
    const auto thrower = [] { throw TypeParam("text"); };
    EXPECT_TRUE(catches<const TypeParam&>(thrower));
    EXPECT_TRUE(catches<const Exception&>(thrower));
    constexpr bool plain = std::is_same_v<TypeParam, Exception>;
    EXPECT_EQ(catches<const OvMEMException&>(thrower), !plain);
}

TYPED_TEST(Exceptions, NoOtherFamilyCatchesIt) {
    const auto thrower = [] { throw TypeParam("text"); };
    EXPECT_EQ((handlerOf<std::exception, DomException, Exception>(thrower)), 3);
    EXPECT_FALSE(catches<Exception*>(thrower));
    EXPECT_FALSE(catches<void*>(thrower));
}

TYPED_TEST(Exceptions, NoSiblingCatchesIt) {
    const auto thrower = [] { throw TypeParam("text"); };
    int catching = catches<const OvMEMConnectionException&>(thrower) ? 1 : 0;
    catching += catches<const OvMEMProtocolException&>(thrower) ? 1 : 0;
    catching += catches<const OvMEMRuntimeException&>(thrower) ? 1 : 0;
    catching += catches<const OvMEMUnrecognisedException&>(thrower) ? 1 : 0;
    catching += catches<const Utf8ConversionException&>(thrower) ? 1 : 0;
    constexpr bool leaf = !std::is_same_v<TypeParam, Exception> &&
                          !std::is_same_v<TypeParam, OvMEMException>;
    EXPECT_EQ(catching, leaf ? 1 : 0);
}

TYPED_TEST(Exceptions, ThereIsNoVirtualFunctionNoStandardBaseAndNoField) {
    static_assert(!std::is_polymorphic_v<TypeParam>);
    static_assert(!std::has_virtual_destructor_v<TypeParam>);
    static_assert(!std::is_base_of_v<std::exception, TypeParam>);
    static_assert(std::is_base_of_v<Exception, TypeParam>);
    EXPECT_EQ(sizeof(TypeParam), 2 * sizeof(int) + sizeof(std::string));
}

TYPED_TEST(Exceptions, OnlyTheRuntimeExceptionCanBeMadeOfNothing) {
    EXPECT_EQ(std::is_default_constructible_v<TypeParam>,
              (std::is_same_v<TypeParam, OvMEMRuntimeException>));
}

TEST(OvMEMRuntimeExceptionAlone, WithoutAMessageTypeIsZeroAndTheMessageEmpty) {
    const OvMEMRuntimeException exception;
    EXPECT_EQ(exception.getType(), 0);
    EXPECT_EQ(exception.getMessage(), "");
}

TEST(ExceptionHandlers, AHandlerForTheBaseCatchesEveryLeafButNotThePlainOne) {
    EXPECT_FALSE(catches<const OvMEMException&>([] { throw Exception("x"); }));
    EXPECT_TRUE(catches<const OvMEMException&>(
        [] { throw OvMEMUnrecognisedException("x"); }));
}

TEST(ExceptionHandlers, ACopyAsThePlainExceptionIsCaughtAsThatOnly) {
    const auto thrower = [] {
        const OvMEMConnectionException original(-1, "text");
        throw Exception(original);
    };
    EXPECT_EQ((handlerOf<OvMEMConnectionException, OvMEMException, Exception>(
                  thrower)),
              3);
    EXPECT_EQ(thrownBy(thrower), (Thrown{"Exception", -1, "text"}));
}

// docs/irregularities.md#pointer-throw
TEST(ExceptionHandlers, PointerThrowIsCaughtByPointersToTheClassAndItsBases) {
    EXPECT_TRUE(catches<OvMEMProtocolException*>(throwPointer));
    EXPECT_TRUE(catches<OvMEMException*>(throwPointer));
    EXPECT_TRUE(catches<Exception*>(throwPointer));
    EXPECT_TRUE(catches<void*>(throwPointer));
    EXPECT_FALSE(catches<OvMEMConnectionException*>(throwPointer));
}

// docs/irregularities.md#pointer-throw
TEST(ExceptionHandlers, PointerThrowIsNotCaughtByReferences) {
    EXPECT_EQ((handlerOf<OvMEMProtocolException, OvMEMException, Exception>(
                  throwPointer)),
              0);
}

TEST(ExceptionHandlers, TheClientFamilyDoesNotCatchADomException) {
    const auto thrower = [] { throw DomException("text\n"); };
    EXPECT_EQ((handlerOf<Exception, std::exception, DomException>(thrower)), 3);
    EXPECT_EQ(thrownBy(thrower), (Thrown{"DomException", 0, "text\n"}));
}

}  // namespace Orvane::Net::OvModelEventManager::Client
