// ScopedEnvironmentVariable: changes one environment variable for the life of one object.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace dunx::test {

/// Remembers the value of `name` (or that it is not set) and restores exactly
/// that on destruction, whatever the code under test did to the variable in
/// between. The two-argument form also sets the variable now; a null `value`
/// removes it.
///
///     dunx::test::ScopedEnvironmentVariable level("DUNXLogLevel", "3");
class ScopedEnvironmentVariable {
public:
    explicit ScopedEnvironmentVariable(const char* name) : m_Name(name) {
        if (const char* previous = std::getenv(name))
            m_Previous = previous;
    }
    ScopedEnvironmentVariable(const char* name, const char* value)
        : ScopedEnvironmentVariable(name) {
        apply(value);
    }
    ~ScopedEnvironmentVariable() { apply(m_Previous ? m_Previous->c_str() : nullptr); }
    ScopedEnvironmentVariable(const ScopedEnvironmentVariable&) = delete;
    ScopedEnvironmentVariable& operator=(const ScopedEnvironmentVariable&) = delete;

private:
    void apply(const char* value) {
        if (value)
            ::setenv(m_Name.c_str(), value, 1);
        else
            ::unsetenv(m_Name.c_str());
    }

    std::string m_Name;
    std::optional<std::string> m_Previous;
};

} // namespace dunx::test
