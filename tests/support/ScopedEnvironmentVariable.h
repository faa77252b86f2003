// ScopedEnvironmentVariable: remembers one environment variable (or that it is unset) and restores
// exactly that on destruction. The two-argument form also sets it now; a null value unsets it.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "support/TestSystem.h"

namespace dunx::test {

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
    void apply(const char* value) { SetVariable(m_Name.c_str(), value); }

    std::string m_Name;
    std::optional<std::string> m_Previous;
};

} // namespace dunx::test
