#include <dunx/DUNXCfgFile.h>

#include "internal/MessageFormat.h"
#include "internal/Text.h"

#include <cstdarg>
#include <cstring>

using dunx::internal::FormatMessage;
using dunx::internal::MessageBuffer;
using dunx::internal::NarrowOrEmpty;
using dunx::internal::ParseWholeDouble;
using dunx::internal::ParseWholeInt;

namespace {

constexpr int kLineBufferSize = 1024;
constexpr const char* kWhiteSpace = "\t \r\n";

} // namespace

// --- DUNXCfgFileKey ---------------------------------------------------------------

DUNXCfgFileKey::DUNXCfgFileKey(const DUNXString& name) : m_Name(name) {}
DUNXCfgFileKey::~DUNXCfgFileKey() = default;

const DUNXString* DUNXCfgFileKey::GetValue(int index) const {
    if (index < 0 || index >= GetNumValues())
        return nullptr;
    return &m_Values[static_cast<std::size_t>(index)];
}

DUNXString DUNXCfgFileKey::GetAllValues() const {
    std::string joined;
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        if (i > 0)
            joined += ',';
        joined += NarrowOrEmpty(m_Values[i]);
    }
    return DUNXString(joined.c_str());
}

void DUNXCfgFileKey::AppendValue(const char* value) {
    m_Values.emplace_back(value ? value : "");
}

// --- DUNXCfgFileSection -------------------------------------------------------------

DUNXCfgFileSection::DUNXCfgFileSection(const char* name) : m_Name(name ? name : "") {}
DUNXCfgFileSection::~DUNXCfgFileSection() = default;

DUNXCfgFileKey* DUNXCfgFileSection::findKey(const char* name) const {
    if (!name)
        return nullptr;
    const DUNXString wanted(name);
    for (const auto& key : m_Keys)
        if (key->GetName().equals(wanted))
            return key.get();
    return nullptr;
}

DUNXCfgFileKey* DUNXCfgFileSection::GetKey(int index) const {
    if (index < 0 || index >= GetRowCount())
        return nullptr;
    return m_Keys[static_cast<std::size_t>(index)].get();
}

DUNXCfgFileKey* DUNXCfgFileSection::AppendKey(const DUNXString& name) {
    m_Keys.push_back(std::make_unique<DUNXCfgFileKey>(name));
    return m_Keys.back().get();
}

// --- DUNXCfgFile ------------------------------------------------------------------

DUNXCfgFile::DUNXCfgFile() = default;
DUNXCfgFile::~DUNXCfgFile() = default;

DUNIResult DUNXCfgFile::Load(std::FILE* file) {
    DUNXCfgFileSection* current = createSection("");
    if (!file)
        return DUNI_E_FAIL;
    char line[kLineBufferSize];
    long number = 0;
    while (std::fgets(line, sizeof line, file))
        readLine(line, ++number, current);
    return m_Errors.empty() ? DUNI_S_SUCCESS : DUNI_E_FAIL;
}

void DUNXCfgFile::readLine(char* line, long number, DUNXCfgFileSection*& current) {
    removeWhiteSpaces(line);
    if (line[0] == '\0' || line[0] == '#' || line[0] == ';')
        return;
    if (line[0] == '[') {
        char* close = std::strrchr(line, ']');
        if (!close) {
            // The mismatched quotes of this message are the library's own.
            flagError("Incorrect syntax: line %ld:%s *** \"[section name]' expected.", number,
                      line);
            return;
        }
        *close = '\0';
        removeWhiteSpaces(line + 1);
        current = createSection(line + 1);
        return;
    }
    char* separator = std::strchr(line, '=');
    if (!separator)
        separator = std::strchr(line, ':');
    // The line is trimmed, so the key is empty exactly when the separator leads.
    const bool complete = separator && separator != line &&
                          separator[1 + std::strspn(separator + 1, kWhiteSpace)] != '\0';
    if (!complete) {
        flagError("Incorrect syntax: line %ld:%s *** \"key=value\" expected", number, line);
        return;
    }
    *separator = '\0';
    char* value = separator + 1;
    removeWhiteSpaces(line);
    removeWhiteSpaces(value);
    DUNXCfgFileKey* key = current->AppendKey(DUNXString(static_cast<const char*>(line)));
    // Cut at every ',' and keep each piece as it stands: "a, b" gives "a" and " b".
    for (char* piece = value;;) {
        char* comma = std::strchr(piece, ',');
        if (comma)
            *comma = '\0';
        key->AppendValue(piece);
        if (!comma)
            return;
        piece = comma + 1;
    }
}

DUNXCfgFileSection* DUNXCfgFile::createSection(const char* name) {
    if (DUNXCfgFileSection* existing = GetSection(name))
        return existing;
    m_Sections.push_back(std::make_unique<DUNXCfgFileSection>(name));
    DUNXCfgFileSection* section = m_Sections.back().get();
    m_SectionsByName.emplace(section->GetName(), section);
    return section;
}

void DUNXCfgFile::flagError(const char* format, ...) {
    MessageBuffer buffer;
    va_list args;
    va_start(args, format);
    FormatMessage(buffer, format, args);
    va_end(args);
    m_Errors.emplace_back(buffer.text);
}

void DUNXCfgFile::removeWhiteSpaces(char* text) {
    if (!text)
        return;
    const std::size_t start = std::strspn(text, kWhiteSpace);
    std::size_t end = std::strlen(text);
    while (end > start && std::strchr(kWhiteSpace, text[end - 1]))
        --end;
    std::memmove(text, text + start, end - start);
    text[end - start] = '\0';
}

DUNXCfgFileSection* DUNXCfgFile::GetSection(const char* name) const {
    const auto found = m_SectionsByName.find(name ? name : "");
    return found == m_SectionsByName.end() ? nullptr : found->second;
}

DUNXCfgFileSection* DUNXCfgFile::GetSectionAt(int index) const {
    if (index < 0 || index >= GetSectionCount())
        return nullptr;
    return m_Sections[static_cast<std::size_t>(index)].get();
}

const char* DUNXCfgFile::GetErrorMessage(int i) const {
    if (i < 0 || i >= GetErrorCount())
        return nullptr;
    return m_Errors[static_cast<std::size_t>(i)].c_str();
}

const DUNXString* DUNXCfgFile::findValue(const char* key, int index, const char* section) const {
    const DUNXCfgFileSection* found = GetSection(section);
    const DUNXCfgFileKey* entry = found ? found->findKey(key) : nullptr;
    return entry ? entry->GetValue(index) : nullptr;
}

bool DUNXCfgFile::GetBool(const char* key, bool& value, int index, const char* section) {
    const DUNXString* text = findValue(key, index, section);
    if (!text)
        return false;
    const char* narrow = NarrowOrEmpty(*text);
    if (std::strcmp(narrow, "true") == 0 || std::strcmp(narrow, "false") == 0) {
        value = narrow[0] == 't';
        return true;
    }
    flagError("Incorrect syntax: key:%s *** bool value \"true\" or \"false\" expected.", key);
    return false;
}

bool DUNXCfgFile::GetLogical(const char* key, int& value, int index, const char* section) {
    const DUNXString* text = findValue(key, index, section);
    if (!text)
        return false;
    const char* narrow = NarrowOrEmpty(*text);
    if (std::strcmp(narrow, "1") == 0 || std::strcmp(narrow, "TRUE") == 0) {
        value = 1;
        return true;
    }
    if (std::strcmp(narrow, "0") == 0 || std::strcmp(narrow, "FALSE") == 0) {
        value = 0;
        return true;
    }
    flagError("Incorrect syntax: key:%s *** integer \"0\" or \"1\" or string \"TRUE\" or "
              "\"FALSE\" expected.",
              key);
    return false;
}

bool DUNXCfgFile::GetInt(const char* key, int& value, int index, const char* section) {
    const DUNXString* text = findValue(key, index, section);
    if (!text)
        return false;
    if (ParseWholeInt(NarrowOrEmpty(*text), value))
        return true;
    flagError("Incorrect syntax: key:%s *** integer value expected.", key);
    return false;
}

bool DUNXCfgFile::GetDouble(const char* key, double& value, int index, const char* section) {
    const DUNXString* text = findValue(key, index, section);
    if (!text)
        return false;
    if (ParseWholeDouble(NarrowOrEmpty(*text), value))
        return true;
    flagError("Incorrect syntax: key:%s *** double value expected.", key);
    return false;
}

bool DUNXCfgFile::GetString(const char* key, DUNXString& value, int index,
                            const char* section) const {
    const DUNXString* text = findValue(key, index, section);
    if (!text)
        return false;
    value = *text;
    return true;
}

int DUNXCfgFile::GetArraySize(const char* key, const char* section) const {
    const DUNXCfgFileSection* found = GetSection(section);
    const DUNXCfgFileKey* entry = found ? found->findKey(key) : nullptr;
    return entry ? entry->GetNumValues() : 0;
}

bool DUNXCfgFile::ExistKey(const char* key, const char* section) const {
    const DUNXCfgFileSection* found = GetSection(section);
    return found && found->findKey(key);
}
