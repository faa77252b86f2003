#include <dunx/DUNXOptions.h>

#include <dunx/DUNXCfgFile.h>
#include <dunx/DUNXStreamFormatter.h>
#include <dunx/DUNXTrace.h>

#include "internal/Compiler.h"
#include "internal/Text.h"
#include "platform/Platform.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using dunx::internal::NarrowOrEmpty;
using dunx::internal::ParseWholeDouble;
using dunx::internal::WordValue;

namespace {

constexpr std::size_t kMaxTokens = 256;

// Units before a name's own in its index record: its length and its option.
constexpr int kRecordHead = 2 * sizeof(int) / sizeof(unsigned short);

// Splits at '.', dropping empty tokens. Stops one past `limit` tokens, which
// is enough to know that a name is too long.
std::vector<DUNXString> splitName(const DUNXString& name, std::size_t limit) {
    std::vector<DUNXString> tokens;
    const int length = name.length();
    std::size_t pieces = 1;
    for (int i = 0; i < length; ++i)
        pieces += name[i] == '.' ? 1 : 0;
    tokens.reserve(std::min(pieces, limit + 1)); // one allocation for the list
    int start = 0;
    for (int i = 0; i <= length && tokens.size() <= limit; ++i) {
        if (i == length || name[i] == '.') {
            if (i > start)
                tokens.push_back(name.substring(start, i));
            start = i + 1;
        }
    }
    return tokens;
}

// True when `name` is its tokens joined by single dots (no empty token), the
// form the exact-name index is keyed by.
bool isJoinedTokens(const DUNXString& name) {
    const int length = name.length();
    if (length == 0 || name[0] == '.' || name[length - 1] == '.')
        return false;
    for (int i = 1; i < length; ++i)
        if (name[i] == '.' && name[i - 1] == '.')
            return false;
    return true;
}

DUNXString joinTokens(const std::vector<DUNXString>& tokens) {
    DUNXString joined = tokens.front();
    for (std::size_t i = 1; i < tokens.size(); ++i)
        joined = joined + DUNXString(static_cast<unsigned short>('.')) + tokens[i];
    return joined;
}

// Four units of a name as one 64-bit word, in whatever order the machine
// keeps them: the same on both sides of every comparison.
std::uint64_t fourUnits(const unsigned short* units) {
    std::uint64_t word;
    std::memcpy(&word, units, sizeof word);
    return word;
}

// The last one to three units, zero-extended.
std::uint64_t lastUnits(const unsigned short* units, int count) {
    std::uint64_t word = 0;
    for (int i = 0; i < count; ++i)
        word |= static_cast<std::uint64_t>(units[i]) << (16 * i);
    return word;
}

// The index's own hash, eight units per step in two independent chains (the
// products of one step do not wait for each other), with MurmurHash3's final
// mixing so that names differing only in their last units do not crowd
// neighbouring entries. Never stored outside this index, so it may change freely.
DUNX_ALWAYS_INLINE unsigned nameHash(const unsigned short* units, int length) {
    constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15u, kSecond = 0xC2B2AE3D27D4EB4Fu;
    std::uint64_t first = static_cast<std::uint64_t>(length), second = 0;
    int i = 0;
    for (; i + 8 <= length; i += 8) {
        first = (first + fourUnits(units + i)) * kFirst;
        second = (second + fourUnits(units + i + 4)) * kSecond;
    }
    if (i + 4 <= length) {
        first = (first + fourUnits(units + i)) * kFirst;
        i += 4;
    }
    // The last zero to three units: from a name of four units or more they are
    // the top of its last four, read at once and shifted down, with no loop
    // whose length changes from name to name.
    const int rest = length - i;
    std::uint64_t tail;
    if (length >= 4)
        tail = rest == 0 ? 0 : fourUnits(units + length - 4) >> (64 - 16 * rest);
    else
        tail = lastUnits(units, length);
    second = (second + tail) * kSecond;
    std::uint64_t hash = first ^ (second >> 32 | second << 32);
    hash ^= hash >> 33;
    hash *= 0xFF51AFD7ED558CCDu;
    hash ^= hash >> 33;
    return static_cast<unsigned>(hash);
}

// Inline rather than memcmp: index names are short, and a call to memcmp
// cost more than the comparison itself.
DUNX_ALWAYS_INLINE bool sameUnits(const unsigned short* a, const unsigned short* b, int length) {
    if (length < 4)
        return lastUnits(a, length) == lastUnits(b, length);
    // Whole words up to the last one, then the last four units, which may
    // overlap the word before them: no loop over a tail of one to three units.
    for (int i = 0; i + 4 < length; i += 4)
        if (fourUnits(a + i) != fourUnits(b + i))
            return false;
    return fourUnits(a + length - 4) == fourUnits(b + length - 4);
}

bool isWildcard(const DUNXString& token) {
    return token.length() == 1 && token[0] == '*';
}

// True when `format` takes exactly two "%s" texts (flags, width and precision
// allowed) and nothing else but "%%".
bool takesTwoTexts(const char* format) {
    int texts = 0;
    for (const char* p = format; p && *p; ++p) {
        if (*p != '%')
            continue;
        if (*++p == '%')
            continue;
        p += std::strspn(p, "-+ #0123456789.");
        if (*p != 's')
            return false;
        ++texts;
    }
    return format && texts == 2;
}

DUNXString valueText(const DUNXOption& option) {
    DUNXValue value;
    option.GetValue(value);
    DUNXValue::DUNXValueType type = DUNXValue::TypeUnknown;
    value.GetValueType(type);
    bool flag = false;
    int number = 0;
    double real = 0.0;
    DUNXString text;
    switch (type) {
    case DUNXValue::TypeBool:
        value.GetValue(flag);
        return DUNXString::valueOf(flag);
    case DUNXValue::TypeInt:
        value.GetValue(number);
        return DUNXString::valueOf(number);
    case DUNXValue::TypeDouble:
        value.GetValue(real);
        return DUNXString::valueOf(real);
    case DUNXValue::TypeString:
        value.GetValue(text);
        return text;
    default:
        return DUNXString("");
    }
}

} // namespace

DUNXOptions::DUNXOptions() : m_Nodes(1) {}

DUNXOptions::DUNXOptions(const DUNXOptions& other) : m_Nodes(1) {
    AddOptions(other, true);
}

DUNXOptions& DUNXOptions::operator=(const DUNXOptions& other) {
    if (this != &other) {
        RemoveAll();
        AddOptions(other, true);
    }
    return *this;
}

DUNXOptions::~DUNXOptions() = default;

DUNIResult DUNXOptions::AddOption(const DUNXOption* option) {
    if (!option)
        return DUNI_E_INVALID_ARGUMENT;
    return store(*option, true);
}

DUNIResult DUNXOptions::AddOption(const DUNXOption& option) {
    return store(option, true);
}

DUNIResult DUNXOptions::AddOption(const char* name, const char* value) {
    return AddOption(DUNXOption(DUNXOptionName(name), value));
}

DUNIResult DUNXOptions::AddOption(const char* name, const DUNXString& value) {
    return AddOption(DUNXOption(DUNXOptionName(name), value));
}

DUNIResult DUNXOptions::AddOption(const char* name, int value) {
    return AddOption(DUNXOption(DUNXOptionName(name), value));
}

DUNIResult DUNXOptions::AddOption(const char* name, double value) {
    return AddOption(DUNXOption(DUNXOptionName(name), value));
}

DUNIResult DUNXOptions::AddOption(const char* name, bool value) {
    return AddOption(DUNXOption(DUNXOptionName(name), value));
}

DUNIResult DUNXOptions::AddOptionParseValue(const char* name, const DUNXString& text) {
    double number = 0.0;
    if (ParseWholeDouble(NarrowOrEmpty(text), number))
        return AddOption(name, number);
    const int word = WordValue(text);
    if (word >= 0)
        return AddOption(name, word == 1);
    return AddOption(name, text);
}

DUNIResult DUNXOptions::AddOptions(const DUNXOptions& other, bool replaceExisting) {
    if (&other == this)
        return DUNI_S_SUCCESS;
    DUNIResult result = DUNI_S_SUCCESS;
    for (const auto& option : other.m_Options)
        result &= store(*option, replaceExisting);
    return result;
}

DUNIResult DUNXOptions::store(const DUNXOption& option, bool replaceExisting) {
    DUNXString name;
    const DUNIResult named = option.GetName(name);
    if (named.IsFailure())
        return named;
    const std::vector<DUNXString> tokens = splitName(name, kMaxTokens);
    if (tokens.empty() || tokens.size() > kMaxTokens)
        return DUNI_E_INVALID_ARGUMENT;
    int node = 0;
    for (const DUNXString& token : tokens) {
        if (const int* child = m_Nodes[static_cast<std::size_t>(node)].children.Find(token)) {
            node = *child;
            continue;
        }
        const int created = static_cast<int>(m_Nodes.size());
        m_Nodes[static_cast<std::size_t>(node)].children.Set(token, created);
        m_Nodes.emplace_back();
        node = created;
    }
    int& slot = m_Nodes[static_cast<std::size_t>(node)].option;
    if (slot >= 0) {
        if (replaceExisting)
            *m_Options[static_cast<std::size_t>(slot)] = option;
        return DUNI_S_SUCCESS;
    }
    slot = static_cast<int>(m_Options.size());
    m_Options.push_back(std::make_unique<DUNXOption>(option));
    indexExact(isJoinedTokens(name) ? name : joinTokens(tokens), slot);
    return DUNI_S_SUCCESS;
}

DUNX_ALWAYS_INLINE int DUNXOptions::findExact(const DUNXString& name) const {
    if (m_ExactTable.empty())
        return -1;
    const unsigned short* units = name;
    const int length = name.length();
    const unsigned hash = nameHash(units, length);
    const std::size_t mask = m_ExactTable.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const ExactEntry& entry = m_ExactTable[i];
        if (entry.offset == kNoEntry)
            return -1; // at most half full: an empty entry ends every chain
        if (entry.hash != hash)
            continue;
        const unsigned short* record = m_ExactUnits.data() + entry.offset;
        int stored[2]; // length, option
        std::memcpy(stored, record, sizeof stored);
        if (stored[0] == length && sameUnits(record + kRecordHead, units, length))
            return stored[1];
    }
}

void DUNXOptions::indexExact(const DUNXString& joinedName, int option) {
    auto place = [](std::vector<ExactEntry>& table, const ExactEntry& entry) {
        const std::size_t mask = table.size() - 1;
        std::size_t i = entry.hash & mask;
        while (table[i].offset != kNoEntry)
            i = (i + 1) & mask;
        table[i] = entry;
    };
    // Every record in one block, the next right after: a lookup reads memory
    // near the other names instead of a heap block of its own. Entries hold
    // offsets, which stay valid when the block grows.
    const unsigned short* units = joinedName;
    const int length = joinedName.length();
    const auto offset = static_cast<unsigned>(m_ExactUnits.size());
    const int head[2] = {length, option};
    m_ExactUnits.resize(m_ExactUnits.size() + kRecordHead);
    std::memcpy(m_ExactUnits.data() + offset, head, sizeof head);
    m_ExactUnits.insert(m_ExactUnits.end(), units, units + length);
    ++m_ExactCount;
    if (2 * m_ExactCount > m_ExactTable.size()) {
        std::vector<ExactEntry> grown(std::max<std::size_t>(16, 2 * m_ExactTable.size()),
                                      ExactEntry{0, kNoEntry});
        for (const ExactEntry& entry : m_ExactTable)
            if (entry.offset != kNoEntry)
                place(grown, entry);
        m_ExactTable.swap(grown);
    }
    place(m_ExactTable, ExactEntry{nameHash(units, length), offset});
}

int DUNXOptions::findNode(const std::vector<DUNXString>& tokens, std::size_t level,
                          int node) const {
    // Each node sits at one depth, so a lookup visits every node at most once
    // however many wildcards the tree holds.
    if (level == tokens.size())
        return m_Nodes[static_cast<std::size_t>(node)].option >= 0 ? node : -1;
    const auto& children = m_Nodes[static_cast<std::size_t>(node)].children;
    if (const int* child = children.Find(tokens[level])) {
        const int found = findNode(tokens, level + 1, *child);
        if (found >= 0)
            return found;
    }
    if (!isWildcard(tokens[level])) {
        static const DUNXString wildcard("*");
        if (const int* child = children.Find(wildcard))
            return findNode(tokens, level + 1, *child);
    }
    return -1;
}

int DUNXOptions::exactNode(const std::vector<DUNXString>& tokens) const {
    int node = 0;
    for (const DUNXString& token : tokens) {
        const int* child = m_Nodes[static_cast<std::size_t>(node)].children.Find(token);
        if (!child)
            return -1;
        node = *child;
    }
    return node;
}

DUNIResult DUNXOptions::GetOption(const DUNXString& name, DUNXOption*& option) const {
    // A stored name is what the tree walk finds too: it tries the exact token
    // before the wildcard at every level, so the exact path wins when it
    // exists. The index holds only names in their joined form, so a name
    // found there needs no splitting.
    if (const int slot = findExact(name); slot >= 0) {
        option = m_Options[static_cast<std::size_t>(slot)].get();
        return DUNI_S_SUCCESS;
    }
    // A name longer than the deepest stored one cannot match: stop splitting there.
    const std::vector<DUNXString> tokens = splitName(name, kMaxTokens);
    if (tokens.empty())
        return DUNI_E_INVALID_ARGUMENT;
    if (tokens.size() > kMaxTokens)
        return DUNI_E_FAIL;
    const int node = findNode(tokens, 0, 0);
    if (node < 0)
        return DUNI_E_FAIL;
    option =
        m_Options[static_cast<std::size_t>(m_Nodes[static_cast<std::size_t>(node)].option)].get();
    return DUNI_S_SUCCESS;
}

bool DUNXOptions::HasOption(const DUNXOption& option) const {
    const std::vector<DUNXString> tokens = splitName(option.GetNameText(), kMaxTokens);
    if (tokens.empty() || tokens.size() > kMaxTokens)
        return false;
    const int node = exactNode(tokens);
    return node >= 0 && m_Nodes[static_cast<std::size_t>(node)].option >= 0;
}

void DUNXOptions::InitEnumeration() const {
    m_Cursor = 0;
}

DUNIResult DUNXOptions::GetNext(DUNXOption*& option) const {
    if (m_Cursor >= m_Options.size())
        return DUNI_E_FAIL;
    option = m_Options[m_Cursor++].get();
    return DUNI_S_SUCCESS;
}

void DUNXOptions::RemoveAll() {
    m_Options.clear();
    m_Nodes.assign(1, Node());
    m_ExactTable.clear();
    m_ExactUnits.clear();
    m_ExactCount = 0;
    m_Cursor = 0;
}

DUNIResult DUNXOptions::ReadFromFile(const DUNXString& path) {
    std::FILE* file = dunx::platform::OpenFile(path, "r");
    if (!file)
        return DUNI_E_FILE_OPEN;
    const DUNIResult result = ReadFromFile(file);
    std::fclose(file);
    return result;
}

DUNIResult DUNXOptions::ReadFromFile(std::FILE* file) {
    if (!file)
        return DUNI_E_INVALID_ARGUMENT;
    DUNXCfgFile config;
    if (config.Load(file).IsFailure())
        return DUNI_E_FAIL;
    const DUNXCfgFileSection* unnamed = config.GetSection("");
    for (int i = 0; unnamed && i < unnamed->GetRowCount(); ++i) {
        const DUNXCfgFileKey* key = unnamed->GetKey(i);
        AddOptionParseValue(NarrowOrEmpty(key->GetName()), key->GetAllValues());
    }
    return DUNI_S_SUCCESS;
}

void DUNXOptions::Dump(const char* header, const char* lineFormat, const char* footer) const {
    if (header)
        DUNXInfo::Printf("%s", header);
    const char* format = takesTwoTexts(lineFormat) ? lineFormat : "%s = %s";
    for (const auto& option : m_Options) {
        const DUNXString value = valueText(*option);
        DUNXInfo::Printf(format, NarrowOrEmpty(option->GetNameText()), NarrowOrEmpty(value));
    }
    if (footer)
        DUNXInfo::Printf("%s", footer);
}

void DUNXOptions::DumpOptions(DUNXStreamFormatter& formatter) const {
    // "there" is the library's own spelling and is kept.
    formatter << "Options currently present and there values are given below : " << DUNXLineEnd()
              << "============================================================= " << DUNXLineEnd();
    for (const auto& option : m_Options) {
        DUNXValue value;
        option->GetValue(value);
        formatter << "The Option \"" << option->GetNameText() << "\" value is\t\t=     " << value
                  << DUNXLineEnd();
    }
}
