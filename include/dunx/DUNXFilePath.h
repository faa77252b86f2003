// DUNXFilePath: a file-system path kept with backslash separators.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <cstdio>
#include <string>

/// A path value. Every '/' becomes '\' when text is set (constructors,
/// assignment, `GetTemporaryFilePath`); the positions of the last separator
/// and of the dots of the final component are cached, and every query reads
/// the cache. File operations hand the text to the system with each '\'
/// turned back into '/', cut to 259 characters (a 260-character buffer).
///
///     "C:/dir/file.tar.gz" => GetPath "C:\dir\file.tar.gz", GetName "file.tar.gz",
///         GetNameWithoutExtension "file", GetNameWithoutLastExtension "file.tar",
///         GetLastExtension "gz", GetDirectory "C:\dir", IsAbsolute true
///     "dir.d\file" => no extension;  "C:\dir\" => name "", directory "C:\dir"
///
/// Kept as they always were, and relied on: `AddExtension` leaves the cache
/// as it was; assigning a valid path to itself empties it; `operator+` inserts
/// no separator after a path that begins with '\'; `ResolveAgainst` climbs by
/// its own rule (see there).
class DUNX_EXPORT DUNXFilePath {
public:
    /// An empty path (not valid).
    DUNXFilePath();
    /// A copy of `other.GetPath()`.
    DUNXFilePath(const DUNXFilePath& other);
    /// A copy of `other->GetPath()`; null gives an empty path.
    explicit DUNXFilePath(const DUNXFilePath* other);
    /// The path `text`, normalised.
    DUNXFilePath(const DUNXString& text);
    /// The path `text`, normalised; null is announced as "Invalid DUNXFilePath"
    /// on the assertion channel and gives an empty path.
    DUNXFilePath(const unsigned short* text);
    /// The path `text`, normalised; null gives an empty path silently.
    DUNXFilePath(const char* text);
    /// `text` with every extension of its name replaced by `extension` (which
    /// brings its own dot): ("a.tar.gz", ".log") => "a.log". Null for either
    /// gives an empty path.
    DUNXFilePath(const char* text, const char* extension);
    /// Empties this path if valid (cache set to 0), then takes `other`'s text if
    /// `other` is valid. No self-assignment test: `p = p` empties a valid `p`.
    DUNXFilePath& operator=(const DUNXFilePath& other);
    /// Clears the cache.
    virtual ~DUNXFilePath();

    /// A copy of the stored text.
    virtual DUNXString GetPath() const;
    /// The final component ("" when the path ends with '\' or is empty).
    virtual DUNXString GetName() const;
    /// The final component up to its first dot: "a.tar.gz" => "a", ".cfg" => "".
    virtual DUNXString GetNameWithoutExtension() const;
    /// The final component up to its last dot: "a.tar.gz" => "a.tar".
    virtual DUNXString GetNameWithoutLastExtension() const;
    /// The text after the last dot of the final component: "a.tar.gz" => "gz", "name." => "".
    virtual DUNXString GetLastExtension() const;
    /// Everything before the last separator: "C:\dir\file" => "C:\dir", "\file" => "".
    virtual DUNXString GetDirectory() const;
    /// True when the path has text.
    virtual bool IsValid() const;
    /// True for "\x", "/x", "C:\x" and "C:/x"; false for "C:", "C:file" and an empty path.
    virtual bool IsAbsolute() const;
    /// True when the text ends with `ext` (a '.' is put in front when missing),
    /// ignoring case: "x.TXT" has "txt", "a.tar.gz" has "tar.gz"; "" is never an extension.
    virtual bool HasExtension(const DUNXString& ext) const;
    /// Appends "." + `ext` to the text WITHOUT updating the cache: queries other
    /// than `GetName` and `GetPath` still answer for the old text.
    virtual void AddExtension(const DUNXString& ext);
    /// A new path with the last extension replaced by `ext` (a '.' put in front
    /// when missing), or `ext` appended when there is none: "dir.old\file" => "dir.old\file.e".
    virtual DUNXFilePath ReplaceLastExtension(const char* ext) const;
    /// This path when absolute; otherwise `base`'s directory joined with this
    /// path after its leading "." and ".." steps. Each ".." (with the separator
    /// behind it) is dropped and the directory cut to as many characters as the
    /// index of the last '\' in the remaining relative text, when that index is
    /// 1 or more; a leading "." drops two characters. Against "C:\a\b\c.txt":
    /// "..\x" => "C:\a\b\x", "..\sub\x" => "C:\sub\x", "..\..\x" => "C:\x".
    virtual DUNXFilePath ResolveAgainst(DUNXFilePath& base) const;
    /// True when the file can be opened for reading (a folder counts as absent).
    virtual bool DoesFileExist() const;
    /// The modification time (seconds since 1970 UTC) into `time`; `DUNI_E_FAIL`
    /// with `time` untouched for an empty path or a file that cannot be examined.
    virtual DUNIResult GetLastModificationDate(long long& time);
    /// Opens the file with the C `fopen` mode `mode` (e.g. u"rb"); the caller
    /// closes the stream. Null on failure.
    virtual std::FILE* OpenFile(const unsigned short* mode) const;
    /// Deletes the file; true when it was deleted.
    virtual bool RemoveFile() const;
    /// Copies the first `count` characters and a terminator (`count` + 1 units).
    virtual void GetChars(unsigned short* buffer, int count) const;
    /// Copies at most `count` bytes of the narrow text and a terminator.
    virtual void GetChars(char* buffer, int count) const;

    /// `text` glued on after a '.', after a path ending or BEGINNING with '\',
    /// otherwise behind a '\': "C:\dir" + "f" => "C:\dir\f", "\dir" + "f" => "\dirf",
    /// "C:\dir" + ".x" => "C:\dir.x".
    DUNXFilePath operator+(const DUNXString& text) const;
    /// The narrow text (null for a path that was never given text).
    operator const char*() const { return m_Path; }

    /// The current working directory; an empty path when it cannot be read or
    /// is longer than 259 characters.
    static DUNXFilePath GetCurrentWorkingDirectory();
    /// A name for a temporary file that does not exist yet, ".\DUNXTemp" and
    /// six letters or digits; should none be found, the first of "DUNXTemp_1" ...
    /// "DUNXTemp_25" that cannot be opened (the last one regardless). No file is created.
    static void GetTemporaryFilePath(DUNXFilePath& out);

protected:
    /// Recomputes the cached positions from the text.
    virtual void Initialize();
    /// Turns every '/' of `text` into '\' and sets the separator to '\'.
    virtual void FixSeparator(DUNXString& text);

private:
    void setText(const DUNXString& text);
    // The text cut into a 260-character buffer, in narrow form for the system.
    std::string systemPath() const;

    DUNXString m_Path;
    unsigned short m_Separator = ' ';
    int m_Length = 0;
    int m_LastSeparator = -1;
    int m_NameStart = -1;
    int m_FirstDot = -1;
    int m_LastDot = -1;
};
