#ifndef ENVIRONMENT_VARIABLE_H
#define ENVIRONMENT_VARIABLE_H

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace TevTest {

/// Sets an environment variable, or takes it away, while it lives.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string variableName, const std::optional<std::string>& value)
        : name(std::move(variableName)) {
        if (const char* const present = std::getenv(name.c_str())) {
            before = present;
        }
        set(value);
    }
    ~EnvironmentVariable() { set(before); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }

    std::string name;
    std::optional<std::string> before;
};

}  // namespace TevTest

#endif
