// DUNXOptions: the set of options handed to a reader or writer, by dotted name.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXHashMap.h>
#include <dunx/DUNXOption.h>
#include <dunx/DUNXString.h>

#include <cstdio>
#include <memory>
#include <vector>

class DUNXStreamFormatter;

/// Options addressed by dotted names ("Import.Mode.Assem"). Names are split
/// at every '.' into tokens; empty tokens are ignored ("A..B", ".A.B" and
/// "A.B." all name "A.B"). A stored token "*" matches any token at its level
/// when the exact token leads nowhere, so an option stored as "A.*.C" answers
/// "A.B.C"; the exact path is always preferred. Tokens compare case-sensitively.
///
/// Adding an option under a name already present replaces the stored option
/// (a configuration read after the defaults wins); enumeration visits options
/// in the order their names were first added. A name of more than 256 tokens
/// is refused. Looking up a name costs no allocation beyond splitting it.
class DUNX_EXPORT DUNXOptions {
public:
    DUNXOptions();
    DUNXOptions(const DUNXOptions& other);
    DUNXOptions& operator=(const DUNXOptions& other);
    virtual ~DUNXOptions();

    /// Adds a copy of `option` under its name. `DUNI_E_INVALID_ARGUMENT` for a
    /// null option or a name without tokens (or too many); the name's own
    /// failure (`DUNI_E_NO_VALUE` for an option without value) as it is.
    DUNIResult AddOption(const DUNXOption* option);
    DUNIResult AddOption(const DUNXOption& option);
    /// Builds an option of the value's type and adds it.
    DUNIResult AddOption(const char* name, const char* value);
    DUNIResult AddOption(const char* name, const DUNXString& value);
    DUNIResult AddOption(const char* name, int value);
    DUNIResult AddOption(const char* name, double value);
    DUNIResult AddOption(const char* name, bool value);
    /// Adds an option typed by its text: a decimal number (optional sign,
    /// fraction and exponent, blanks around allowed) becomes a double;
    /// Yes/True/On and No/False/Off (any case) a bool; any other text a string.
    DUNIResult AddOptionParseValue(const char* name, const DUNXString& text);
    /// Adds every option of `other`; with `replaceExisting` false, options
    /// whose name is already present are kept as they are.
    DUNIResult AddOptions(const DUNXOptions& other, bool replaceExisting = true);

    /// Finds the option for `name`, with the wildcard fallback.
    /// `DUNI_E_INVALID_ARGUMENT` for a name without tokens; `DUNI_E_FAIL` (and
    /// `option` untouched) when nothing answers.
    DUNIResult GetOption(const DUNXString& name, DUNXOption*& option) const;
    /// True when an option is stored under exactly `option`'s name (no wildcard).
    bool HasOption(const DUNXOption& option) const;

    /// Starts an enumeration; then call `GetNext` until it fails.
    void InitEnumeration() const;
    /// The next option; `DUNI_E_FAIL` after the last.
    DUNIResult GetNext(DUNXOption*& option) const;
    /// Number of options.
    int Size() const { return static_cast<int>(m_Options.size()); }
    /// Removes every option.
    void RemoveAll();

    /// Adds the keys of the unnamed section of the configuration file at
    /// `path` ('\' taken as '/'), each value typed as by `AddOptionParseValue`.
    /// `DUNI_E_FILE_OPEN` when it cannot be opened, otherwise as the FILE* form.
    DUNIResult ReadFromFile(const DUNXString& path);
    /// As above from an open file. `DUNI_E_INVALID_ARGUMENT` for null,
    /// `DUNI_E_FAIL` when the file has syntax faults (nothing is added);
    /// success also when there is no unnamed section. Other sections are not read.
    DUNIResult ReadFromFile(std::FILE* file);

    /// Prints `header` (if not null), one line per option, then `footer` (if not
    /// null), on the information channel. `lineFormat` receives the name and
    /// the value as two texts; a format that does not take exactly two "%s"
    /// texts is replaced by "%s = %s". Values: bools "true"/"false", ints "%d",
    /// doubles "%f", strings as they are.
    void Dump(const char* header, const char* lineFormat, const char* footer) const;
    /// Writes the set to `formatter`: a title line, a line of '=', then for
    /// each option: The Option "name" value is<tabs>=     value.
    void DumpOptions(DUNXStreamFormatter& formatter) const;

private:
    struct Node {
        DUNXHashMap<DUNXString, int, DUNXStringHash, DUNXStringEqual> children;
        int option = -1; // index into m_Options, -1 when none hangs here
    };
    // The table holds only hashes and places; each name's record in
    // m_ExactUnits is its length and option (two units each), then its units:
    // the table stays small, and the name's length and option sit beside the
    // units a lookup compares anyway.
    struct ExactEntry {
        unsigned hash;
        unsigned offset; // of the record in m_ExactUnits, kNoEntry for an empty entry
    };
    static constexpr unsigned kNoEntry = ~0u;
    int findExact(const DUNXString& name) const;
    void indexExact(const DUNXString& joinedName, int option);
    int findNode(const std::vector<DUNXString>& tokens, std::size_t level, int node) const;
    int exactNode(const std::vector<DUNXString>& tokens) const;
    DUNIResult store(const DUNXOption& option, bool replaceExisting);

    std::vector<Node> m_Nodes; // m_Nodes[0] is the root
    // Every stored name with its tokens joined by single dots, found by hash
    // in an open-addressed table of small entries: a present name costs one
    // hash and one comparison, and only other names walk the tree.
    std::vector<ExactEntry> m_ExactTable;     // a power of two long, at most half full
    std::vector<unsigned short> m_ExactUnits; // the names' records, one after another
    std::size_t m_ExactCount = 0;             // names in the index
    std::vector<std::unique_ptr<DUNXOption>> m_Options;
    mutable std::size_t m_Cursor = 0;
};
