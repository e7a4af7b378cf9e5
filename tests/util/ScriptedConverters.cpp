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
}
