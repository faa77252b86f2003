#include <dunx/DUNXCfgFile.h>

#include "foundation/UnitConversion.h"
#include "internal/MessageFormat.h"
#include "internal/Text.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <functional>
#include <utility>

using dunx::internal::BorrowedUnits;
using dunx::internal::FormatMessage;
using dunx::internal::MessageBuffer;
using dunx::internal::NarrowOrEmpty;
using dunx::internal::ParseWholeDouble;
using dunx::internal::ParseWholeInt;
using dunx::internal::WidenAscii;

namespace dunx::internal {

// Makes strings refer to units that the configuration file keeps in its text
// blocks, for as long as the file lives.
class BorrowedUnits {
public:
    // `target` refers to the `length` units at `units`, which end in a 0.
    static void Refer(DUNXString& target, const unsigned short* units, int length) {
        target.m_Owned.reset();
        target.m_Narrow.reset();
        target.m_Units = units;
        target.m_Length = length;
    }
};

} // namespace dunx::internal

namespace {

// A line is read as fgets into a buffer of 1,024 bytes reads it: at most
// 1,023 characters at a time, so a longer line is handled in pieces.
constexpr std::size_t kPieceSize = 1023;
// The file is read this many bytes at a time, and cut into lines here.
constexpr std::size_t kReadBlockSize = 64 * 1024;
// The text blocks (in units) start small, for the many short files, and
// double five times, up to 64 Ki units.
constexpr std::size_t kFirstTextBlock = 2 * 1024;
constexpr std::size_t kTextDoublings = 5;
// Slots in a section's first chunk of keys; each later chunk doubles.
constexpr std::size_t kFirstKeyChunk = 8;
// The index of sections starts with this many places and doubles.
constexpr std::size_t kFirstIndexSize = 16;
constexpr const char* kWhiteSpace = "\t \r\n";

bool isWhiteSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

const char* skipWhiteSpace(const char* begin, const char* end) {
    while (begin < end && isWhiteSpace(*begin))
        ++begin;
    return begin;
}

const char* dropWhiteSpace(const char* begin, const char* end) {
    while (end > begin && isWhiteSpace(end[-1]))
        --end;
    return end;
}

const char* find(const char* begin, const char* end, char c) {
    return static_cast<const char*>(std::memchr(begin, c, static_cast<std::size_t>(end - begin)));
}

std::size_t hashName(std::string_view name) {
    return std::hash<std::string_view>()(name);
}

// The chunk that holds key number `index`, and the key's place in it.
std::pair<std::size_t, std::size_t> locateKey(std::size_t index) {
    std::size_t chunk = 0, first = 0;
    while (index - first >= kFirstKeyChunk << chunk) {
        first += kFirstKeyChunk << chunk;
        ++chunk;
    }
    return {chunk, index - first};
}

} // namespace

// --- DUNXCfgFileKey ---------------------------------------------------------------

DUNXCfgFileKey::DUNXCfgFileKey(const DUNXString& name) : m_Name(name) {}
DUNXCfgFileKey::DUNXCfgFileKey(Unnamed) {}
DUNXCfgFileKey::~DUNXCfgFileKey() = default;

const DUNXString* DUNXCfgFileKey::GetValue(int index) const {
    if (index < 0 || index >= m_NumValues)
        return nullptr;
    return index == 0 ? &m_FirstValue : &m_MoreValues[static_cast<std::size_t>(index - 1)];
}

DUNXString DUNXCfgFileKey::GetAllValues() const {
    std::string joined;
    for (int i = 0; i < m_NumValues; ++i) {
        if (i > 0)
            joined += ',';
        joined += NarrowOrEmpty(*GetValue(i));
    }
    return DUNXString(joined.c_str());
}

void DUNXCfgFileKey::AppendValue(const char* value) {
    appendValue() = DUNXString(value ? value : "");
}

DUNXString& DUNXCfgFileKey::appendValue() {
    ++m_NumValues;
    if (m_NumValues == 1)
        return m_FirstValue;
    return m_MoreValues.emplace_back();
}

// --- DUNXCfgFileSection -------------------------------------------------------------

DUNXCfgFileSection::DUNXCfgFileSection(const char* name) : m_Name(name ? name : "") {}
DUNXCfgFileSection::~DUNXCfgFileSection() = default;

DUNXCfgFileKey* DUNXCfgFileSection::findKey(const char* name) const {
    if (!name)
        return nullptr;
    const DUNXString wanted(name);
    std::size_t left = static_cast<std::size_t>(m_NumKeys);
    for (std::size_t chunk = 0; left > 0; ++chunk) {
        const std::size_t size = std::min(left, kFirstKeyChunk << chunk);
        for (std::size_t k = 0; k < size; ++k)
            if (m_KeyChunks[chunk][k]->GetName().equals(wanted))
                return &*m_KeyChunks[chunk][k];
        left -= size;
    }
    return nullptr;
}

DUNXCfgFileKey* DUNXCfgFileSection::GetKey(int index) const {
    if (index < 0 || index >= m_NumKeys)
        return nullptr;
    const auto [chunk, place] = locateKey(static_cast<std::size_t>(index));
    return &*m_KeyChunks[chunk][place];
}

DUNXCfgFileKey* DUNXCfgFileSection::AppendKey(const DUNXString& name) {
    KeySlot& slot = nextSlot();
    slot.emplace(name);
    ++m_NumKeys;
    return &*slot;
}

DUNXCfgFileSection::KeySlot& DUNXCfgFileSection::nextSlot() {
    const auto [chunk, place] = locateKey(static_cast<std::size_t>(m_NumKeys));
    if (!m_KeyChunks[chunk])
        m_KeyChunks[chunk] = std::make_unique<KeySlot[]>(kFirstKeyChunk << chunk);
    return m_KeyChunks[chunk][place];
}

DUNXCfgFileKey& DUNXCfgFileSection::appendUnnamedKey() {
    KeySlot& slot = nextSlot();
    slot.emplace(DUNXCfgFileKey::Unnamed());
    ++m_NumKeys;
    return *slot;
}

// --- DUNXCfgFile ------------------------------------------------------------------

DUNXCfgFile::DUNXCfgFile() = default;
DUNXCfgFile::~DUNXCfgFile() = default;

DUNIResult DUNXCfgFile::Load(std::FILE* file) {
    DUNXCfgFileSection* current = createSection("");
    if (!file)
        return DUNI_E_FAIL;
    // The file is read in large blocks and cut into the pieces fgets into a
    // 1,024-byte buffer would give: up to and including a line feed, or 1,023
    // characters when no line feed comes sooner. A piece cut by the end of a
    // block is moved to the front and completed by the next read.
    std::vector<char> block(kReadBlockSize);
    const bool failedBefore = std::ferror(file) != 0;
    std::size_t held = 0;
    long number = 0;
    for (;;) {
        const std::size_t wanted = block.size() - held;
        const std::size_t got = std::fread(block.data() + held, 1, wanted, file);
        held += got;
        const bool atEnd = got < wanted;
        // fgets gives nothing of a line that a read error cuts short.
        const bool lastIsWhole = atEnd && (failedBefore || !std::ferror(file));
        const char* piece = block.data();
        const char* const end = piece + held;
        while (piece < end) {
            const std::size_t left = static_cast<std::size_t>(end - piece);
            const char* next = find(piece, piece + std::min(left, kPieceSize), '\n');
            if (next)
                ++next;
            else if (left >= kPieceSize)
                next = piece + kPieceSize;
            else if (lastIsWhole)
                next = end;
            else
                break;
            readLine(piece, next, ++number, current);
            piece = next;
        }
        if (atEnd)
            break;
        held = static_cast<std::size_t>(end - piece);
        std::memmove(block.data(), piece, held);
    }
    return m_Errors.empty() ? DUNI_S_SUCCESS : DUNI_E_FAIL;
}

void DUNXCfgFile::readLine(const char* begin, const char* end, long number,
                           DUNXCfgFileSection*& current) {
    // The text of a line ends at its first 0 byte, as a C string would.
    if (const char* zero = find(begin, end, '\0'))
        end = zero;
    begin = skipWhiteSpace(begin, end);
    end = dropWhiteSpace(begin, end);
    if (begin == end || *begin == '#' || *begin == ';')
        return;
    if (*begin == '[') {
        const char* close = end;
        while (close > begin && close[-1] != ']')
            --close;
        if (close == begin) {
            // The mismatched quotes of this message are the library's own.
            flagError("Incorrect syntax: line %ld:%s *** \"[section name]' expected.", number,
                      std::string(begin, end).c_str());
            return;
        }
        const char* name = skipWhiteSpace(begin + 1, close - 1);
        current = sectionNamed(std::string_view(
            name, static_cast<std::size_t>(dropWhiteSpace(name, close - 1) - name)));
        return;
    }
    const char* separator = find(begin, end, '=');
    if (!separator)
        separator = find(begin, end, ':');
    // The line is trimmed, so the key is empty exactly when the separator
    // leads, and the value exactly when it ends the line.
    if (!separator || separator == begin || separator + 1 == end) {
        flagError("Incorrect syntax: line %ld:%s *** \"key=value\" expected", number,
                  std::string(begin, end).c_str());
        return;
    }
    DUNXCfgFileKey& key = current->appendUnnamedKey();
    keepText(begin, static_cast<std::size_t>(dropWhiteSpace(begin, separator) - begin), key.m_Name);
    // Cut at every ',' and keep each piece as it stands: "a, b" gives "a" and " b".
    const char* piece = skipWhiteSpace(separator + 1, end);
    if (const auto commas = std::count(piece, end, ','))
        key.m_MoreValues.reserve(static_cast<std::size_t>(commas));
    for (;;) {
        const char* comma = find(piece, end, ',');
        const char* pieceEnd = comma ? comma : end;
        keepText(piece, static_cast<std::size_t>(pieceEnd - piece), key.appendValue());
        if (!comma)
            return;
        piece = comma + 1;
    }
}

void DUNXCfgFile::keepText(const char* text, std::size_t size, DUNXString& into) {
    if (m_TextLeft < size + 1) {
        // What is left of the current block is given up: less than one line.
        const std::size_t doublings = std::min<std::size_t>(m_TextBlocks.size(), kTextDoublings);
        const std::size_t blockSize = std::max(size + 1, kFirstTextBlock << doublings);
        m_TextBlocks.push_back(std::make_unique<unsigned short[]>(blockSize));
        m_TextFree = m_TextBlocks.back().get();
        m_TextLeft = blockSize;
    }
    // ASCII reads alike in every locale; anything else is converted as any
    // narrow text is, so that it gives exactly what the locale makes of it.
    if (!WidenAscii(text, size, m_TextFree)) {
        into = DUNXString(std::string(text, size).c_str());
        return;
    }
    m_TextFree[size] = 0;
    BorrowedUnits::Refer(into, m_TextFree, static_cast<int>(size));
    m_TextFree += size + 1;
    m_TextLeft -= size + 1;
}

DUNXCfgFileSection* DUNXCfgFile::createSection(const char* name) {
    return sectionNamed(name ? name : "");
}

DUNXCfgFileSection* DUNXCfgFile::sectionNamed(std::string_view name) {
    const std::size_t hash = hashName(name);
    if (DUNXCfgFileSection* existing = findSection(name, hash))
        return existing;
    m_Sections.push_back(std::make_unique<DUNXCfgFileSection>(std::string(name).c_str()));
    DUNXCfgFileSection* section = m_Sections.back().get();
    if (m_Sections.size() * 2 > m_SectionsByName.size()) {
        // Twice as many places, each section moved to its place in the new table.
        std::vector<std::pair<std::size_t, DUNXCfgFileSection*>> old(
            std::max(kFirstIndexSize, m_SectionsByName.size() * 2));
        old.swap(m_SectionsByName);
        for (const auto& entry : old)
            if (entry.second)
                placeSection(entry.first, entry.second);
    }
    placeSection(hash, section);
    return section;
}

void DUNXCfgFile::placeSection(std::size_t hash, DUNXCfgFileSection* section) {
    const std::size_t mask = m_SectionsByName.size() - 1;
    std::size_t place = hash & mask;
    while (m_SectionsByName[place].second)
        place = (place + 1) & mask;
    m_SectionsByName[place] = {hash, section};
}

DUNXCfgFileSection* DUNXCfgFile::findSection(std::string_view name, std::size_t hash) const {
    if (m_SectionsByName.empty())
        return nullptr;
    const std::size_t mask = m_SectionsByName.size() - 1;
    // The table is never more than half full, so the search meets an empty place.
    for (std::size_t place = hash & mask; m_SectionsByName[place].second;
         place = (place + 1) & mask) {
        const auto& [placed, section] = m_SectionsByName[place];
        if (placed == hash && section->m_Name == name)
            return section;
    }
    return nullptr;
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
    const std::string_view wanted = name ? name : "";
    return findSection(wanted, hashName(wanted));
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
