#include "tests/emulator/Environment.h"

#include <cstdlib>

namespace OvMemTest {

Environment::~Environment() {
    for (const auto& [name, value] : before) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }
}

void Environment::set(const std::string& name, const std::string& value) {
    keep(name);
    ::setenv(name.c_str(), value.c_str(), 1);
}

void Environment::unset(const std::string& name) {
    keep(name);
    ::unsetenv(name.c_str());
}

void Environment::keep(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    before.try_emplace(
        name, value ? std::optional<std::string>(value) : std::nullopt);
}

}  // namespace OvMemTest
