#include <dunx/DUNXFilePath.h>

#include <dunx/DUNXTrace.h>

#include "internal/Text.h"
#include "platform/Platform.h"

#include <cstdio>
#include <cstring>

using dunx::internal::NarrowOrEmpty;

namespace {

constexpr unsigned short kBackslash = '\\';
constexpr unsigned short kSlash = '/';
constexpr unsigned short kDot = '.';
constexpr int kPathBufferSize = 260; // characters, terminator included
constexpr int kTemporaryNameTries = 25;

bool startsWithUnit(const DUNXString& text, unsigned short unit) {
    return text.length() > 0 && text[0] == unit;
}

DUNXString emptyText() {
    return DUNXString("");
}

} // namespace

DUNXFilePath::DUNXFilePath() = default;

DUNXFilePath::DUNXFilePath(const DUNXFilePath& other) {
    setText(other.GetPath());
}

DUNXFilePath::DUNXFilePath(const DUNXFilePath* other) {
    if (other)
        setText(other->GetPath());
}

DUNXFilePath::DUNXFilePath(const DUNXString& text) {
    setText(text);
}

DUNXFilePath::DUNXFilePath(const unsigned short* text) {
    if (!text) {
        DUNXAssert::Printf("Invalid DUNXFilePath");
        return;
    }
    // Character texts are normalised even when empty: the separator becomes '\'.
    DUNXString copy(text);
    FixSeparator(copy);
    m_Path = copy;
    Initialize();
}

DUNXFilePath::DUNXFilePath(const char* text) {
    if (!text)
        return;
    DUNXString copy(text);
    FixSeparator(copy);
    m_Path = copy;
    Initialize();
}

DUNXFilePath::DUNXFilePath(const char* text, const char* extension) {
    if (!text || !extension)
        return;
    DUNXString copy(text);
    FixSeparator(copy);
    const int lastBackslash = copy.lastIndexOf(kBackslash);
    const int firstDot = copy.indexOf(kDot, lastBackslash < 0 ? 0 : lastBackslash);
    const DUNXString stem = firstDot < 0 ? copy : copy.substring(0, firstDot);
    // The extension is glued on as given: not normalised, no dot inserted.
    m_Path = (firstDot == 0 ? emptyText() : stem) + DUNXString(extension);
    Initialize();
}

DUNXFilePath& DUNXFilePath::operator=(const DUNXFilePath& other) {
    // Kept in this order on purpose: assigning a valid path to itself empties it.
    if (IsValid()) {
        m_Path = emptyText();
        m_Length = m_LastSeparator = m_NameStart = m_FirstDot = m_LastDot = 0;
    }
    if (other.IsValid()) {
        DUNXString text = other.GetPath();
        FixSeparator(text);
        m_Path = text;
        Initialize();
    }
    return *this;
}

DUNXFilePath::~DUNXFilePath() {
    m_Length = m_LastSeparator = m_NameStart = m_FirstDot = m_LastDot = 0;
}

void DUNXFilePath::setText(const DUNXString& text) {
    // Texts given as strings or paths are normalised only when not empty.
    DUNXString copy(text);
    if (copy.length() > 0)
        FixSeparator(copy);
    m_Path = copy;
    Initialize();
}

void DUNXFilePath::FixSeparator(DUNXString& text) {
    m_Separator = kBackslash;
    if (m_Separator == kBackslash)
        text = text.replace(kSlash, kBackslash);
    else if (m_Separator == kSlash) // never taken: the separator was just set to '\'
        text = text.replace(kBackslash, kSlash);
    if (text.length() == 0 && !static_cast<const unsigned short*>(text))
        text = emptyText(); // replace() gives null for an empty text; keep it allocated
}

void DUNXFilePath::Initialize() {
    m_Length = m_Path.length();
    m_LastSeparator = m_Path.lastIndexOf(m_Separator);
    m_NameStart = m_LastSeparator + 1 < m_Length ? m_LastSeparator + 1 : -1;
    if (m_LastSeparator < 0) {
        m_FirstDot = m_Path.indexOf(kDot);
        m_LastDot = m_Path.lastIndexOf(kDot);
    } else {
        m_FirstDot = m_Path.indexOf(kDot, m_LastSeparator);
        m_LastDot = m_Path.lastIndexOfAfter(kDot, m_LastSeparator);
    }
}

DUNXString DUNXFilePath::GetPath() const {
    return m_Path;
}

DUNXString DUNXFilePath::GetName() const {
    return m_NameStart < 0 ? emptyText() : m_Path.substring(m_NameStart);
}

DUNXString DUNXFilePath::GetNameWithoutExtension() const {
    if (m_NameStart < 0)
        return emptyText();
    if (m_FirstDot < 0)
        return GetName();
    return m_FirstDot > m_NameStart ? m_Path.substring(m_NameStart, m_FirstDot) : emptyText();
}

DUNXString DUNXFilePath::GetNameWithoutLastExtension() const {
    if (m_NameStart < 0)
        return emptyText();
    if (m_LastDot < 0)
        return GetName();
    return m_LastDot > m_NameStart ? m_Path.substring(m_NameStart, m_LastDot) : emptyText();
}

DUNXString DUNXFilePath::GetLastExtension() const {
    if (m_LastDot < 0 || m_LastDot + 1 >= m_Length)
        return emptyText();
    return m_Path.substring(m_LastDot + 1, m_Length);
}

DUNXString DUNXFilePath::GetDirectory() const {
    if (m_LastSeparator <= 0)
        return emptyText();
    return m_Path.substring(0, m_LastSeparator);
}

bool DUNXFilePath::IsValid() const {
    return m_Length > 0;
}

bool DUNXFilePath::IsAbsolute() const {
    if (!IsValid())
        return false;
    const unsigned short first = m_Path.charAt(0);
    if (first == kSlash || first == kBackslash)
        return true;
    const unsigned short third = m_Path.charAt(2);
    return m_Path.charAt(1) == ':' && (third == kBackslash || third == kSlash);
}

bool DUNXFilePath::HasExtension(const DUNXString& ext) const {
    if (ext.length() == 0)
        return false;
    const DUNXString dotted = startsWithUnit(ext, kDot) ? ext : DUNXString(".") + ext;
    return m_Path.endsWithIgnoreCase(dotted);
}

void DUNXFilePath::AddExtension(const DUNXString& ext) {
    // The cache is left as it was on purpose; callers rebuild a path for new positions.
    m_Path = m_Path + DUNXString(".") + ext;
}

DUNXFilePath DUNXFilePath::ReplaceLastExtension(const char* ext) const {
    const DUNXString given(ext ? ext : "");
    const DUNXString dotted = startsWithUnit(given, kDot) ? given : DUNXString(".") + given;
    const DUNXString stem = m_LastDot < 0   ? m_Path
                            : m_LastDot > 0 ? m_Path.substring(0, m_LastDot)
                                            : emptyText();
    return DUNXFilePath(stem + dotted);
}

DUNXFilePath DUNXFilePath::ResolveAgainst(DUNXFilePath& base) const {
    if (IsAbsolute())
        return DUNXFilePath(*this);
    DUNXString dir = base.GetDirectory();
    DUNXString rel = m_Path;
    for (;;) {
        if (rel.startsWith(DUNXString(".."))) {
            rel = rel.length() > 3 ? rel.substring(3) : emptyText();
            // Kept exactly so: the cut comes from the last '\' of the remaining
            // relative text, not from the directory.
            const int k = rel.lastIndexOf(kBackslash);
            if (k >= 1)
                dir = k < dir.length() ? dir.substring(0, k) : dir;
        } else if (startsWithUnit(rel, kDot)) {
            rel = rel.length() > 2 ? rel.substring(2) : emptyText();
        } else {
            break;
        }
    }
    if (dir.length() > 0 && !dir.endsWith(kBackslash))
        dir = dir + DUNXString("\\");
    return DUNXFilePath(dir + rel);
}

std::string DUNXFilePath::systemPath() const {
    unsigned short units[kPathBufferSize];
    GetChars(units, kPathBufferSize - 1);
    const DUNXString cut(static_cast<const unsigned short*>(units));
    return NarrowOrEmpty(cut);
}

bool DUNXFilePath::DoesFileExist() const {
    return IsValid() && dunx::platform::CanReadFile(systemPath().c_str());
}

DUNIResult DUNXFilePath::GetLastModificationDate(long long& time) {
    if (!IsValid())
        return DUNI_E_FAIL;
    char narrow[kPathBufferSize];
    GetChars(narrow, kPathBufferSize - 1);
    long long modified = 0;
    if (!dunx::platform::ModificationTime(narrow, modified))
        return DUNI_E_FAIL;
    time = modified;
    return DUNI_S_SUCCESS;
}

std::FILE* DUNXFilePath::OpenFile(const unsigned short* mode) const {
    const DUNXString modeText(mode);
    const char* narrowMode = modeText;
    if (!IsValid() || !narrowMode)
        return nullptr;
    return dunx::platform::OpenFile(systemPath().c_str(), narrowMode);
}

bool DUNXFilePath::RemoveFile() const {
    return IsValid() && dunx::platform::RemoveFile(systemPath().c_str());
}

void DUNXFilePath::GetChars(unsigned short* buffer, int count) const {
    m_Path.getChars(0, count, buffer, 0);
}

void DUNXFilePath::GetChars(char* buffer, int count) const {
    m_Path.getChars(0, count, buffer, 0);
}

DUNXFilePath DUNXFilePath::operator+(const DUNXString& text) const {
    if (startsWithUnit(text, kDot))
        return DUNXFilePath(m_Path + text);
    // A path that begins with '\' gets no separator: kept as it always was.
    if (m_Path.endsWith(kBackslash) || startsWithUnit(m_Path, kBackslash))
        return DUNXFilePath(m_Path + text);
    return DUNXFilePath(m_Path + DUNXString("\\") + text);
}

DUNXFilePath DUNXFilePath::GetCurrentWorkingDirectory() {
    const std::string directory = dunx::platform::CurrentDirectory(kPathBufferSize);
    if (directory.empty())
        return DUNXFilePath();
    return DUNXFilePath(static_cast<const unsigned short*>(DUNXString(directory.c_str())));
}

void DUNXFilePath::GetTemporaryFilePath(DUNXFilePath& out) {
    char name[kPathBufferSize] = {};
    const std::string unique = dunx::platform::UniqueFileName("./", "DUNXTemp");
    std::snprintf(name, sizeof name, "%s", unique.c_str());
    for (long i = 1; name[0] == '\0' && i <= kTemporaryNameTries; ++i) {
        char candidate[32];
        std::snprintf(candidate, sizeof candidate, "DUNXTemp_%ld", i);
        if (i == kTemporaryNameTries || !dunx::platform::CanReadFile(candidate))
            std::snprintf(name, sizeof name, "%s", candidate);
    }
    out = DUNXFilePath(static_cast<const char*>(name));
}
