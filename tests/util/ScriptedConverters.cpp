#include "tests/util/ScriptedConverters.h"

#include <utility>

#include <dlfcn.h>

// The name that a function of ICU bears in its library.
#define OVMEM_TEXT(symbol) #symbol
#define OVMEM_SYMBOL(function) OVMEM_TEXT(function)

namespace OvMemTest {

namespace {

ScriptedConverters* current = nullptr;

template <typename Function>
Function* next(const char* symbol) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

UConverter* openNext(const char* name, UErrorCode* error) {
    static auto* const function =
        next<UConverter*(const char*, UErrorCode*)>(OVMEM_SYMBOL(ucnv_open));
    return function(name, error);
}

void closeNext(UConverter* converter) {
    static auto* const function =
        next<void(UConverter*)>(OVMEM_SYMBOL(ucnv_close));
    function(converter);
}

}  // namespace

ScriptedConverters::ScriptedConverters(std::string codePage)
    : defaultCodePage(std::move(codePage)),
      failing(-1),
      failure(U_ZERO_ERROR),
      converting(U_ZERO_ERROR),
      opened(0) {
    current = this;
}

ScriptedConverters::~ScriptedConverters() {
    current = nullptr;
}

void ScriptedConverters::failOpening(int number, UErrorCode error) {
    failing = number;
    failure = error;
}

void ScriptedConverters::failConverting(UErrorCode error) {
    converting = error;
}

const ScriptedConverters::Calls& ScriptedConverters::calls() const {
    return record;
}

UConverter* ScriptedConverters::open(const char* name, UErrorCode* error) {
    record.push_back(std::string("open ") +
                     (name == nullptr ? "default" : name));
    if (opened++ == failing) {
        *error = failure;
        return nullptr;
    }
    return openNext(name == nullptr ? defaultCodePage.c_str() : name, error);
}

void ScriptedConverters::close(UConverter* converter) {
    UErrorCode error = U_ZERO_ERROR;
    record.push_back(std::string("close ") + ucnv_getName(converter, &error));
    closeNext(converter);
}

}  // namespace OvMemTest

extern "C" {

__attribute__((visibility("default"))) UConverter* ucnv_open(
    const char* name, UErrorCode* error) {
    return OvMemTest::current != nullptr ? OvMemTest::current->open(name, error)
                                         : OvMemTest::openNext(name, error);
}

__attribute__((visibility("default"))) void ucnv_close(UConverter* converter) {
    if (OvMemTest::current != nullptr)
        OvMemTest::current->close(converter);
    else
        OvMemTest::closeNext(converter);
}

__attribute__((visibility("default"))) int32_t ucnv_fromUChars(
    UConverter* converter, char* target, int32_t capacity, const UChar* source,
    int32_t length, UErrorCode* error) {
    using Function = int32_t(UConverter*, char*, int32_t, const UChar*, int32_t,
                             UErrorCode*);
    static auto* const function =
        OvMemTest::next<Function>(OVMEM_SYMBOL(ucnv_fromUChars));
    if (OvMemTest::current != nullptr &&
        U_FAILURE(OvMemTest::current->convertingError())) {
        *error = OvMemTest::current->convertingError();
        return 0;
    }
    return function(converter, target, capacity, source, length, error);
}
}
