// DUNXCfgFile: a configuration file of [sections] and key=value lines, read into memory.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// One key of a section: a name and the comma-separated pieces of its value,
/// kept untrimmed ("key: a, b" gives "a" and " b"; "a,,b" gives "a", "", "b").
/// A copy of a key owns all its text and may outlive the file it came from.
class DUNX_EXPORT DUNXCfgFileKey {
    // The argument of the constructor by which sections make the keys that
    // the file object then names and fills; no one else can make one.
    class Unnamed {
        Unnamed() {}
        friend class DUNXCfgFileSection;
    };

public:
    /// A key named `name` (a copy of it), without values.
    explicit DUNXCfgFileKey(const DUNXString& name);
    /// A key without name or values, made by sections alone (its argument
    /// cannot be made elsewhere).
    explicit DUNXCfgFileKey(Unnamed);
    /// Frees the key's own text.
    ~DUNXCfgFileKey();

    /// The key's name.
    const DUNXString& GetName() const { return m_Name; }
    /// Value number `index` (from 0), or null when out of range. Value 0 stays
    /// where it is for as long as the key lives; `AppendValue` may move the others.
    const DUNXString* GetValue(int index) const;
    /// Number of values.
    int GetNumValues() const { return m_NumValues; }
    /// All values joined with "," (the value text as it stood in the file).
    DUNXString GetAllValues() const;
    /// Appends one value (null is taken as "").
    void AppendValue(const char* value);

private:
    friend class DUNXCfgFile;
    friend class DUNXCfgFileSection;
    DUNXString& appendValue();

    // Most keys have one value: it is kept here rather than in a heap block of its own.
    DUNXString m_Name;
    DUNXString m_FirstValue;
    std::vector<DUNXString> m_MoreValues;
    int m_NumValues = 0;
};

/// A section: a name and its keys in file order. The unnamed section ("")
/// holds the keys that stand before the first section line.
class DUNX_EXPORT DUNXCfgFileSection {
public:
    /// An empty section named `name` (null is taken as "").
    explicit DUNXCfgFileSection(const char* name);
    /// Frees the section's keys.
    ~DUNXCfgFileSection();
    /// Not copyable: its keys are handed out by address.
    DUNXCfgFileSection(const DUNXCfgFileSection&) = delete;
    /// Not assignable, for the same reason.
    DUNXCfgFileSection& operator=(const DUNXCfgFileSection&) = delete;

    /// The section's name ("" for the unnamed section).
    const char* GetName() const { return m_Name.c_str(); }
    /// The first key named exactly `name` (case-sensitive), or null.
    DUNXCfgFileKey* findKey(const char* name) const;
    /// Key number `index` in file order, or null when out of range.
    DUNXCfgFileKey* GetKey(int index) const;
    /// Number of keys (a repeated key counts each time it appears).
    int GetRowCount() const { return m_NumKeys; }
    /// Appends a key named `name` (a copy) and returns it. Keys never move:
    /// pointers to them stay valid for as long as the section lives.
    DUNXCfgFileKey* AppendKey(const DUNXString& name);

private:
    friend class DUNXCfgFile;
    using KeySlot = std::optional<DUNXCfgFileKey>;
    KeySlot& nextSlot();
    DUNXCfgFileKey& appendUnnamedKey();

    // Keys live in chunks of 8, 16, 32 ... slots, so that appending moves no
    // key and n keys take about log2(n) allocations; 29 chunks hold more keys
    // than an int counts.
    static constexpr int kKeyChunks = 29;
    std::string m_Name;
    int m_NumKeys = 0;
    std::unique_ptr<KeySlot[]> m_KeyChunks[kKeyChunks];
};

/// Reads a configuration file: "[section]" lines, "key=value" (or "key:value")
/// lines, and comment lines starting with '#' or ';'. Lines are trimmed of tabs,
/// blanks, CR and LF first. A line longer than 1,023 characters is read in
/// pieces, each handled as a line. Syntax faults skip the line and are recorded
/// with their line number; they never stop the load. The error list survives
/// later loads, so a second load on an object holding errors reports failure.
/// A second load adds its sections and keys to those already there. Sections
/// and keys never move: the pointers this object hands out stay valid for as
/// long as it lives, through later loads and appends.
///
/// Typed reading: `GetBool` takes exactly "true" or "false"; `GetLogical`
/// exactly "0", "1", "TRUE" or "FALSE" (upper case, as its message says);
/// `GetInt` a whole decimal integer within int range and `GetDouble` a whole
/// decimal number with optional fraction and exponent (no hex, inf or nan),
/// each with optional blanks around it. Any other text records a message and
/// answers false. A missing section or key answers false silently.
class DUNX_EXPORT DUNXCfgFile {
public:
    /// An empty file object: no section until the first load.
    DUNXCfgFile();
    /// Frees every section, key and text of the object.
    virtual ~DUNXCfgFile();
    DUNXCfgFile(const DUNXCfgFile&) = delete;
    DUNXCfgFile& operator=(const DUNXCfgFile&) = delete;

    /// Reads `file` to its end (the caller keeps it open and closes it).
    /// `DUNI_E_FAIL` when the error list is not empty afterwards (or `file` is null).
    DUNIResult Load(std::FILE* file);

    /// Value `index` of `key` in `section` (null: the unnamed section), as a bool.
    bool GetBool(const char* key, bool& value, int index = 0, const char* section = nullptr);
    /// ... as 0 or 1 from "0", "1", "TRUE", "FALSE".
    bool GetLogical(const char* key, int& value, int index = 0, const char* section = nullptr);
    /// ... as an int.
    bool GetInt(const char* key, int& value, int index = 0, const char* section = nullptr);
    /// ... as a double.
    bool GetDouble(const char* key, double& value, int index = 0, const char* section = nullptr);
    /// ... as text.
    bool GetString(const char* key, DUNXString& value, int index = 0,
                   const char* section = nullptr) const;
    /// Number of values of `key` (0 when missing).
    int GetArraySize(const char* key, const char* section = nullptr) const;
    /// True when `section` has `key`.
    bool ExistKey(const char* key, const char* section = nullptr) const;

    /// The section named exactly `name` (case-sensitive; null means ""), or null.
    DUNXCfgFileSection* GetSection(const char* name) const;
    /// Number of sections, the unnamed one included once a load has run.
    int GetSectionCount() const { return static_cast<int>(m_Sections.size()); }
    /// Section number `index` in file order, or null.
    DUNXCfgFileSection* GetSectionAt(int index) const;
    /// Number of recorded syntax messages.
    int GetErrorCount() const { return static_cast<int>(m_Errors.size()); }
    /// Message number `i` (from 0), or null when out of range.
    const char* GetErrorMessage(int i) const;

protected:
    /// The section named `name`, appended when there is none.
    DUNXCfgFileSection* createSection(const char* name);
    /// Formats a message into a 1,024-byte buffer (longer is cut) and records it.
    void flagError(const char* format, ...) DUNX_PRINTF_LIKE(2, 3);
    /// Trims tab, blank, CR and LF from both ends of `text`, in place.
    static void removeWhiteSpaces(char* text);

private:
    const DUNXString* findValue(const char* key, int index, const char* section) const;
    DUNXCfgFileSection* sectionNamed(std::string_view name);
    DUNXCfgFileSection* findSection(std::string_view name, std::size_t hash) const;
    void placeSection(std::size_t hash, DUNXCfgFileSection* section);
    void readLine(const char* begin, const char* end, long number, DUNXCfgFileSection*& current);
    void keepText(const char* text, std::size_t size, DUNXString& into);

    // The units of the keys and values loaded from files, in large blocks that
    // live as long as the file object; the strings of those keys refer to them
    // without owning them. Declared first, so that it goes last.
    std::vector<std::unique_ptr<unsigned short[]>> m_TextBlocks;
    unsigned short* m_TextFree = nullptr;
    std::size_t m_TextLeft = 0;

    std::vector<std::unique_ptr<DUNXCfgFileSection>> m_Sections;
    // Each section by its name, in an open-addressed table of (hash, section)
    // at most half full, so that a file of many sections is not searched once
    // per section line and a name not there costs one look into the table.
    std::vector<std::pair<std::size_t, DUNXCfgFileSection*>> m_SectionsByName;
    std::vector<std::string> m_Errors;
};
