#include <dunx/DUNXEnvironment.h>

#include <dunx/DUNXTrace.h>

#include "internal/MessageFormat.h"
#include "internal/Text.h"
#include "platform/Platform.h"

#include <cstring>
#include <string>

using dunx::internal::FormatWithoutArguments;
using dunx::internal::WordValue;

namespace {

bool isAsciiLetter(unsigned char c) {
    return c < 0x80;
}

unsigned char asciiLower(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}

// Compares the name part of `entry` (up to its '=' at `nameLength`) with
// `name`, ignoring case. ASCII names, the usual case, are compared in place;
// others through the same unit-wise rule as DUNXString.
bool sameName(const char* entry, std::size_t nameLength, const DUNXString& name,
              const char* narrowName) {
    bool ascii = narrowName != nullptr && std::strlen(narrowName) == nameLength;
    for (std::size_t i = 0; ascii && i < nameLength; ++i) {
        const auto a = static_cast<unsigned char>(entry[i]);
        const auto b = static_cast<unsigned char>(narrowName[i]);
        if (!isAsciiLetter(a) || !isAsciiLetter(b))
            ascii = false;
        else if (asciiLower(a) != asciiLower(b))
            return false;
    }
    if (ascii)
        return true;
    return DUNXString(std::string(entry, nameLength).c_str()).equalsIgnoreCase(name);
}

} // namespace

DUNXEnvironment::DUNXEnvironment() = default;
DUNXEnvironment::DUNXEnvironment(const DUNXEnvironment& other) = default;
DUNXEnvironment::~DUNXEnvironment() = default;

const DUNXEnvironment* DUNXEnvironment::GetEnv() {
    static const DUNXEnvironment snapshot = [] {
        DUNXEnvironment environment;
        for (char** entry = dunx::platform::EnvironmentBlock(); entry && *entry; ++entry)
            environment.Set(DUNXString(*entry));
        return environment;
    }();
    return &snapshot;
}

DUNIResult DUNXEnvironment::GetVariable(const DUNXString& name, DUNXString& value) {
    const char* narrowName = name;
    for (char** entry = dunx::platform::EnvironmentBlock(); entry && *entry; ++entry) {
        const char* equals = std::strchr(*entry, '=');
        if (!equals)
            continue;
        if (sameName(*entry, static_cast<std::size_t>(equals - *entry), name, narrowName)) {
            value = DUNXString(equals + 1);
            return DUNI_S_SUCCESS;
        }
    }
    return DUNI_E_FAIL;
}

DUNIResult DUNXEnvironment::GetVariable(const DUNXString& name, bool& value) {
    DUNXString text;
    const DUNIResult result = GetVariable(name, text);
    value = result.IsSuccess() && WordValue(text) == 1;
    return result;
}

DUNIResult DUNXEnvironment::PutVariable(const DUNXString& name, const DUNXString& value) {
    const DUNXString built = name + DUNXString("=") + value;
    const char* text = built;
    DUNXInfo::Printf("Environment variable: %s\n", text ? text : "");
    // The text was always read as a format; "%%" therefore sets one '%'.
    const std::string formatted = FormatWithoutArguments(text);
    const std::size_t equals = formatted.find('=');
    if (equals == std::string::npos)
        return DUNI_E_FAIL;
    return dunx::platform::SetEnvironmentVariable(formatted.substr(0, equals).c_str(),
                                                  formatted.c_str() + equals + 1)
               ? DUNI_S_SUCCESS
               : DUNI_E_FAIL;
}
