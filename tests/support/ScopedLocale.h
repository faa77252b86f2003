// ScopedLocale: sets every category of the C locale to `name` and restores the previous locale on
// destruction. A locale that is not installed leaves the current one in place: check isSet().
#pragma once

#include <clocale>
#include <string>

namespace dunx::test {

class ScopedLocale {
public:
    explicit ScopedLocale(const char* name)
        : m_Previous(std::setlocale(LC_ALL, nullptr)),
          m_IsSet(std::setlocale(LC_ALL, name) != nullptr) {}
    ~ScopedLocale() { std::setlocale(LC_ALL, m_Previous.c_str()); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

    bool isSet() const { return m_IsSet; }

private:
    std::string m_Previous;
    bool m_IsSet = false;
};

} // namespace dunx::test
