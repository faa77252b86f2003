// DUNXCfgFile: a configuration file of [sections] and key=value lines, read into memory.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// One key of a section: a name and the comma-separated pieces of its value,
/// kept untrimmed ("key: a, b" gives "a" and " b"; "a,,b" gives "a", "", "b").
class DUNX_EXPORT DUNXCfgFileKey {
public:
    explicit DUNXCfgFileKey(const DUNXString& name);
    ~DUNXCfgFileKey();

    /// The key's name.
    const DUNXString& GetName() const { return m_Name; }
    /// Value number `index` (from 0), or null when out of range.
    const DUNXString* GetValue(int index) const;
    /// Number of values.
    int GetNumValues() const { return static_cast<int>(m_Values.size()); }
    /// All values joined with "," (the value text as it stood in the file).
    DUNXString GetAllValues() const;
    /// Appends one value (null is taken as "").
    void AppendValue(const char* value);

private:
    DUNXString m_Name;
    std::vector<DUNXString> m_Values;
};

/// A section: a name and its keys in file order. The unnamed section ("")
/// holds the keys that stand before the first section line.
class DUNX_EXPORT DUNXCfgFileSection {
public:
    explicit DUNXCfgFileSection(const char* name);
    ~DUNXCfgFileSection();

    /// The section's name ("" for the unnamed section).
    const char* GetName() const { return m_Name.c_str(); }
    /// The first key named exactly `name` (case-sensitive), or null.
    DUNXCfgFileKey* findKey(const char* name) const;
    /// Key number `index` in file order, or null when out of range.
    DUNXCfgFileKey* GetKey(int index) const;
    /// Number of keys (a repeated key counts each time it appears).
    int GetRowCount() const { return static_cast<int>(m_Keys.size()); }
    /// Appends a key named `name` and returns it.
    DUNXCfgFileKey* AppendKey(const DUNXString& name);

private:
    std::string m_Name;
    std::vector<std::unique_ptr<DUNXCfgFileKey>> m_Keys;
};

/// Reads a configuration file: "[section]" lines, "key=value" (or "key:value")
/// lines, and comment lines starting with '#' or ';'. Lines are trimmed of tabs,
/// blanks, CR and LF first. A line longer than 1,023 characters is read in
/// pieces, each handled as a line. Syntax faults skip the line and are recorded
/// with their line number; they never stop the load. The error list survives
/// later loads, so a second load on an object holding errors reports failure.
///
/// Typed reading: `GetBool` takes exactly "true" or "false"; `GetLogical`
/// exactly "0", "1", "TRUE" or "FALSE" (upper case, as its message says);
/// `GetInt` a whole decimal integer within int range and `GetDouble` a whole
/// decimal number with optional fraction and exponent (no hex, inf or nan),
/// each with optional blanks around it. Any other text records a message and
/// answers false. A missing section or key answers false silently.
class DUNX_EXPORT DUNXCfgFile {
public:
    DUNXCfgFile();
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
    void readLine(char* line, long number, DUNXCfgFileSection*& current);

    std::vector<std::unique_ptr<DUNXCfgFileSection>> m_Sections;
    // Each section by its name (a view of the section's own, unchanging
    // text), so that a file of many sections is not searched once per line.
    std::unordered_map<std::string_view, DUNXCfgFileSection*> m_SectionsByName;
    std::vector<std::string> m_Errors;
};
