#ifndef TESTS_EMULATOR_ENVIRONMENT_H
#define TESTS_EMULATOR_ENVIRONMENT_H

#include <map>
#include <optional>
#include <string>

namespace OvMemTest {

// Changes environment variables and puts them back at the end.
class Environment {
public:
    Environment() = default;
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment();

    void set(const std::string& name, const std::string& value);
    void unset(const std::string& name);

private:
    void keep(const std::string& name);

    std::map<std::string, std::optional<std::string>> before;
};

}  // namespace OvMemTest

#endif
