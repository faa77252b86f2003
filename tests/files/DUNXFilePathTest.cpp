#include <dunx/DUNXFilePath.h>

#include "support/EventRecorder.h"
#include "support/ScopedLocale.h"
#include "support/ScopedWorkingDirectory.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

using dunx::test::EventRecorder;
using dunx::test::ScopedLocale;
using dunx::test::ScopedWorkingDirectory;
using dunx::test::TempDir;

namespace {

// The units of `s` as narrow text, read straight from the units so that no
// locale is involved; the null and the empty string both read as "".
std::string textOf(const DUNXString& s) {
    const unsigned short* units = s;
    std::string text;
    for (int i = 0; units && units[i] != 0; ++i)
        text += static_cast<char>(units[i]);
    return text;
}

const unsigned short* wide(const char16_t* text) {
    return reinterpret_cast<const unsigned short*>(text);
}

// The way a Windows caller writes the same path.
std::string withBackslashes(std::string path) {
    for (char& c : path)
        if (c == '/')
            c = '\\';
    return path;
}

void setModificationTime(const std::string& file, long long seconds) {
    const timeval times[2] = {{static_cast<time_t>(seconds), 0}, {static_cast<time_t>(seconds), 0}};
    ASSERT_EQ(::utimes(file.c_str(), times), 0) << file;
}

std::set<std::string> entriesOf(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

// A caller's path type: the copy constructor and assignment must take the text
// through the virtual GetPath, so whatever a subclass answers is what is copied.
class RenamedPath : public DUNXFilePath {
public:
    RenamedPath() : DUNXFilePath("stored") {}
    DUNXString GetPath() const override { return DUNXString("shown/by.override"); }
};

} // namespace

TEST(DUNXFilePath, AnswersEveryQueryFromTheNormalisedText) {
    struct Case {
        const char* path;
        const char* stored;
        const char* name;
        const char* withoutExtension;
        const char* withoutLastExtension;
        const char* lastExtension;
        const char* directory;
        bool absolute;
        bool valid;
    };
    const Case cases[] = {
        {"C:/dir/file.tar.gz", R"(C:\dir\file.tar.gz)", "file.tar.gz", "file", "file.tar", "gz",
         R"(C:\dir)", true, true},
        {R"(C:\dir\)", R"(C:\dir\)", "", "", "", "", R"(C:\dir)", true, true},
        {"file", "file", "file", "file", "file", "", "", false, true},
        {R"(dir.d\file)", R"(dir.d\file)", "file", "file", "file", "", "dir.d", false, true},
        {"a/b.c/d.e.f", R"(a\b.c\d.e.f)", "d.e.f", "d", "d.e", "f", R"(a\b.c)", false, true},
        {"a.tar.gz", "a.tar.gz", "a.tar.gz", "a", "a.tar", "gz", "", false, true},
        {".cfg", ".cfg", ".cfg", "", "", "cfg", "", false, true},
        {R"(dir\.hidden)", R"(dir\.hidden)", ".hidden", "", "", "hidden", "dir", false, true},
        {"name.", "name.", "name.", "name", "name", "", "", false, true},
        {"..", "..", "..", "", ".", "", "", false, true},
        {R"(C:\dir.v2\)", R"(C:\dir.v2\)", "", "", "", "", R"(C:\dir.v2)", true, true},
        {R"(C:\file)", R"(C:\file)", "file", "file", "file", "", "C:", true, true},
        {"C:/", R"(C:\)", "", "", "", "", "C:", true, true},
        {R"(\file)", R"(\file)", "file", "file", "file", "", "", true, true},
        {"/x", R"(\x)", "x", "x", "x", "", "", true, true},
        {R"(\\server\share\f.txt)", R"(\\server\share\f.txt)", "f.txt", "f", "f", "txt",
         R"(\\server\share)", true, true},
        {"C:file", "C:file", "C:file", "C:file", "C:file", "", "", false, true},
        {"C:", "C:", "C:", "C:", "C:", "", "", false, true},
        {"C", "C", "C", "C", "C", "", "", false, true},
        {"", "", "", "", "", "", "", false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string("path \"") + c.path + '"');
        const DUNXFilePath path(c.path);
        EXPECT_EQ(textOf(path.GetPath()), c.stored);
        EXPECT_EQ(textOf(path.GetName()), c.name);
        EXPECT_EQ(textOf(path.GetNameWithoutExtension()), c.withoutExtension);
        EXPECT_EQ(textOf(path.GetNameWithoutLastExtension()), c.withoutLastExtension);
        EXPECT_EQ(textOf(path.GetLastExtension()), c.lastExtension);
        EXPECT_EQ(textOf(path.GetDirectory()), c.directory);
        EXPECT_EQ(path.IsAbsolute(), c.absolute);
        EXPECT_EQ(path.IsValid(), c.valid);
    }
}

TEST(DUNXFilePath, EveryConstructorNormalisesItsText) {
    const DUNXFilePath original("a/b/c.txt");
    const DUNXFilePath paths[] = {
        DUNXFilePath("a/b/c.txt"),
        DUNXFilePath(wide(u"a/b/c.txt")),
        DUNXFilePath(DUNXString("a/b/c.txt")),
        DUNXFilePath(original),
        DUNXFilePath(&original),
        DUNXFilePath("a/b/c.old.log", ".txt"),
    };
    for (const DUNXFilePath& path : paths) {
        SCOPED_TRACE(textOf(path.GetPath()));
        EXPECT_EQ(textOf(path.GetPath()), R"(a\b\c.txt)");
        EXPECT_EQ(textOf(path.GetDirectory()), R"(a\b)");
        EXPECT_EQ(textOf(path.GetLastExtension()), "txt");
        const char* narrow = path;
        ASSERT_NE(narrow, nullptr);
        EXPECT_STREQ(narrow, R"(a\b\c.txt)");
    }
}

TEST(DUNXFilePath, NullTextGivesAnEmptyPathAndOnlyTheWideFormAsserts) {
    EventRecorder recorder;
    EXPECT_FALSE(DUNXFilePath(static_cast<const char*>(nullptr)).IsValid());
    EXPECT_FALSE(DUNXFilePath(static_cast<const DUNXFilePath*>(nullptr)).IsValid());
    EXPECT_FALSE(DUNXFilePath(nullptr, ".x").IsValid());
    EXPECT_FALSE(DUNXFilePath("a.txt", nullptr).IsValid());
    EXPECT_FALSE(DUNXFilePath(wide(u"")).IsValid()) << "empty is not null";
    EXPECT_TRUE(recorder.entries().empty()) << "narrow and pointer forms fail silently";
    EXPECT_EQ(static_cast<const char*>(DUNXFilePath()), nullptr) << "never given text";

    const DUNXFilePath path(static_cast<const unsigned short*>(nullptr));
    EXPECT_FALSE(path.IsValid());
    EXPECT_EQ(textOf(path.GetPath()), "");
    ASSERT_EQ(recorder.entries().size(), 1u);
    EXPECT_EQ(recorder.entries()[0].name, "DUNXAssertEvent");
    EXPECT_EQ(recorder.entries()[0].text, "Assert : Invalid DUNXFilePath\n");
}

TEST(DUNXFilePath, TwoArgumentConstructorDropsEveryExtensionOfTheName) {
    const struct {
        const char* text;
        const char* extension;
        const char* expected;
    } cases[] = {
        {"a.tar.gz", ".log", "a.log"},
        {"a", ".log", "a.log"},
        {"a.txt", "log", "alog"},            // no dot is inserted
        {"C:/a.b/c", ".d", R"(C:\a.b\c.d)"}, // dots of directories do not count
        {R"(d.x\f.a.b)", ".c", R"(d.x\f.c)"},
        {"a.txt", "/x", "a/x"}, // the extension is not normalised
        {"", ".x", ".x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " with " + c.extension);
        EXPECT_EQ(textOf(DUNXFilePath(c.text, c.extension).GetPath()), c.expected);
    }
}

TEST(DUNXFilePath, CopyAndAssignmentTakeTheTextThroughTheVirtualGetPath) {
    const RenamedPath renamed;
    const DUNXFilePath& base = renamed;
    EXPECT_EQ(textOf(DUNXFilePath(base).GetPath()), R"(shown\by.override)");
    EXPECT_EQ(textOf(DUNXFilePath(&base).GetPath()), R"(shown\by.override)");
    DUNXFilePath assigned("old/name.a");
    EXPECT_EQ(&(assigned = base), &assigned);
    EXPECT_EQ(textOf(assigned.GetPath()), R"(shown\by.override)");
    EXPECT_EQ(textOf(assigned.GetLastExtension()), "override");
}

TEST(DUNXFilePath, SelfAssignmentEmptiesAValidPath) {
    DUNXFilePath path(R"(a\b)");
    const DUNXFilePath& alias = path; // the same object under another name
    path = alias;
    EXPECT_FALSE(path.IsValid());
    EXPECT_EQ(textOf(path.GetPath()), "");
    EXPECT_EQ(textOf(path.GetName()), "");
    EXPECT_EQ(textOf(path.GetDirectory()), "");
}

TEST(DUNXFilePath, AssigningAnEmptyPathSetsTheCacheToZero) {
    // Emptied by assignment, every position is 0 rather than -1: the name then
    // starts at 0, which shows once AddExtension puts text behind the cache.
    DUNXFilePath assigned("dir/file.txt");
    assigned = DUNXFilePath();
    EXPECT_FALSE(assigned.IsValid());
    EXPECT_EQ(textOf(assigned.GetPath()), "");
    assigned.AddExtension("x");
    EXPECT_EQ(textOf(assigned.GetName()), ".x");

    DUNXFilePath fresh;
    fresh.AddExtension("x");
    EXPECT_EQ(textOf(fresh.GetName()), "") << "a path never given text has no name start";
}

TEST(DUNXFilePath, AddExtensionLeavesTheCacheAsItWas) {
    DUNXFilePath empty;
    empty.AddExtension("txt");
    EXPECT_EQ(textOf(empty.GetPath()), ".txt");
    EXPECT_FALSE(empty.IsValid());

    DUNXFilePath plain("a");
    plain.AddExtension("txt");
    EXPECT_EQ(textOf(plain.GetPath()), "a.txt");
    EXPECT_EQ(textOf(plain.GetName()), "a.txt");
    EXPECT_EQ(textOf(plain.GetLastExtension()), "");

    DUNXFilePath dotted(R"(dir\a.b)");
    dotted.AddExtension("c");
    EXPECT_EQ(textOf(dotted.GetPath()), R"(dir\a.b.c)");
    EXPECT_EQ(textOf(dotted.GetName()), "a.b.c");
    EXPECT_EQ(textOf(dotted.GetLastExtension()), "b") << "read up to the old length";
    EXPECT_EQ(textOf(dotted.GetNameWithoutLastExtension()), "a");
    EXPECT_EQ(textOf(dotted.GetDirectory()), "dir");
    EXPECT_TRUE(dotted.HasExtension("c")) << "HasExtension reads the whole text";
    EXPECT_EQ(textOf(DUNXFilePath(dotted.GetPath()).GetLastExtension()), "c");

    DUNXFilePath doubled("a");
    doubled.AddExtension(".txt");
    EXPECT_EQ(textOf(doubled.GetPath()), "a..txt");
}

TEST(DUNXFilePath, HasExtensionComparesTheEndWithoutCase) {
    const struct {
        const char* path;
        const char* extension;
        bool expected;
    } cases[] = {
        {"a.txt", "TXT", true},      {"a.txt", ".txt", true},      {"x.TXT", "txt", true},
        {"xtxt", "txt", false},      {"a.tar.gz", "tar.gz", true}, {"a.tar.gz", "gz", true},
        {"a.tar.gz", ".GZ", true},   {"a.tar.gz", "z", false},     {"a.txt", "", false},
        {"a.txt", "a.txt", false},   {"", "txt", false},           {R"(d\.txt)", "txt", true},
        {R"(d.txt\)", "txt", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " has " + c.extension);
        EXPECT_EQ(DUNXFilePath(c.path).HasExtension(c.extension), c.expected);
    }
}

TEST(DUNXFilePath, ReplaceLastExtensionBuildsANewNormalisedPath) {
    const struct {
        const char* path;
        const char* extension;
        const char* expected;
    } cases[] = {
        {"a.txt", "log", "a.log"},
        {"a.txt", ".log", "a.log"},
        {"a.tar.gz", "bz2", "a.tar.bz2"},
        {"a", "x", "a.x"},
        {R"(dir.old\file)", "e", R"(dir.old\file.e)"},
        {"name.", "x", "name.x"},
        {"a.txt", "", "a."},
        {"a.b", "c/d", R"(a.c\d)"},
        {"", "x", ".x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " to " + c.extension);
        const DUNXFilePath replaced = DUNXFilePath(c.path).ReplaceLastExtension(c.extension);
        EXPECT_EQ(textOf(replaced.GetPath()), c.expected);
        EXPECT_EQ(textOf(replaced.GetLastExtension()),
                  textOf(DUNXFilePath(c.expected).GetLastExtension()));
    }
}

TEST(DUNXFilePath, PlusInsertsASeparatorOnlyBetweenTwoNames) {
    const struct {
        const char* path;
        const char* text;
        const char* expected;
    } cases[] = {
        {R"(C:\dir)", "f", R"(C:\dir\f)"},
        {R"(C:\dir\)", "f", R"(C:\dir\f)"},
        {R"(C:\dir)", ".x", R"(C:\dir.x)"},
        {R"(dir\)", ".x", R"(dir\.x)"},
        {R"(\dir)", "f", R"(\dirf)"}, // a path beginning with '\' gets no separator
        {R"(\\server\share)", "f", R"(\\server\sharef)"},
        {R"(C:\d)", R"(\f)", R"(C:\d\\f)"}, // the appended text is not examined
        {"dir", "a/b", R"(dir\a\b)"},       // the joined text is normalised
        {"", "f", R"(\f)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " + " + c.text);
        const DUNXFilePath joined = DUNXFilePath(c.path) + DUNXString(c.text);
        EXPECT_EQ(textOf(joined.GetPath()), c.expected);
        EXPECT_EQ(textOf(joined.GetDirectory()), textOf(DUNXFilePath(c.expected).GetDirectory()));
    }
}

TEST(DUNXFilePath, ResolveAgainstClimbsByTheRemainingRelativeText) {
    const struct {
        const char* path;
        const char* base;
        const char* expected;
    } cases[] = {
        {R"(..\x)", R"(C:\a\b\c.txt)", R"(C:\a\b\x)"},     // no '\' left in "x": dir kept
        {R"(..\sub\x)", R"(C:\a\b\c.txt)", R"(C:\sub\x)"}, // cut to 3 characters
        {R"(..\..\x)", R"(C:\a\b\c.txt)", R"(C:\x)"},
        {"../x", R"(C:\a\b\c.txt)", R"(C:\a\b\x)"},
        {R"(..\a\b\x)", R"(C:\d1\d2\f)", R"(C:\a\b\x)"},
        {R"(.\x)", R"(C:\a\f)", R"(C:\a\x)"},
        {R"(.\.\x)", R"(C:\a\f)", R"(C:\a\x)"},
        {".cfg", R"(C:\a\b\c.txt)", R"(C:\a\b\fg)"}, // a leading dot drops two characters
        {"..cfg", R"(C:\a\b\c.txt)", R"(C:\a\b\fg)"},
        {R"(x\y)", R"(C:\a\b\c.txt)", R"(C:\a\b\x\y)"},
        {"x", R"(C:\a\)", R"(C:\a\x)"},
        {"x", R"(C:\f)", R"(C:\x)"},
        {"x", R"(d\f)", R"(d\x)"},
        {"y", "f", "y"},
        {R"(C:\abs\p.txt)", R"(D:\other\f)", R"(C:\abs\p.txt)"},
        {"/abs", R"(D:\other\f)", R"(\abs)"},
        {"", R"(C:\a\b\c.txt)", R"(C:\a\b\)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.path) + " against " + c.base);
        DUNXFilePath base(c.base);
        const DUNXFilePath resolved = DUNXFilePath(c.path).ResolveAgainst(base);
        EXPECT_EQ(textOf(resolved.GetPath()), c.expected);
        EXPECT_EQ(textOf(resolved.GetName()), textOf(DUNXFilePath(c.expected).GetName()));
        EXPECT_EQ(textOf(base.GetPath()), textOf(DUNXFilePath(c.base).GetPath()));
    }
}

TEST(DUNXFilePath, GetCharsCopiesAtMostCountCharactersAndATerminator) {
    const DUNXFilePath path("ab/cdef");
    for (const int count : {0, 3, 7, 20}) {
        SCOPED_TRACE(count);
        const std::string expected = std::string(R"(ab\cdef)").substr(0, count);
        unsigned short units[32];
        char bytes[32];
        for (int i = 0; i < 32; ++i) {
            units[i] = '#';
            bytes[i] = '#';
        }
        path.GetChars(units, count);
        path.GetChars(bytes, count);
        EXPECT_EQ(textOf(DUNXString(units)), expected);
        EXPECT_EQ(std::string(bytes), expected);
        const std::size_t end = expected.size() + 1; // nothing behind the terminator
        EXPECT_EQ(units[end], '#');
        EXPECT_EQ(bytes[end], '#');
    }
}

TEST(DUNXFilePath, DoesFileExistFindsReadableFilesOnly) {
    TempDir dir;
    dir.write("a.txt", "a");
    ASSERT_EQ(::mkdir(dir.file("folder").c_str(), 0700), 0);
    const struct {
        const char* what;
        std::string path;
        bool expected;
    } cases[] = {
        {"file", dir.file("a.txt"), true},
        {"file written with backslashes", withBackslashes(dir.file("a.txt")), true},
        {"missing file", dir.file("missing.txt"), false},
        {"folder", dir.file("folder"), false},
        {"folder with a trailing separator", dir.file("folder") + "\\", false},
        {"empty path", "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(DUNXFilePath(c.path.c_str()).DoesFileExist(), c.expected);
    }
}

TEST(DUNXFilePath, FileOperationsConvertAWideNameThroughTheLocale) {
    const ScopedLocale utf8("C.UTF-8");
    if (!utf8.isSet())
        GTEST_SKIP() << "C.UTF-8 is not installed";
    TempDir dir;
    const std::string name = "\xC3\xA9t\xC3\xA9.txt"; // two U+00E9 in UTF-8
    dir.write(name, "x");
    setModificationTime(dir.file(name), 1500000000);
    std::u16string text(dir.path().begin(), dir.path().end());
    text += u"\\\u00E9t\u00E9.txt";
    DUNXFilePath path(wide(text.c_str()));
    EXPECT_TRUE(path.DoesFileExist());
    long long time = 0;
    EXPECT_EQ(static_cast<long>(path.GetLastModificationDate(time)), DUNI_S_SUCCESS);
    EXPECT_EQ(time, 1500000000);
    EXPECT_TRUE(path.RemoveFile());
    EXPECT_FALSE(std::filesystem::exists(dir.file(name)));
}

TEST(DUNXFilePath, GetLastModificationDateReadsTheFileTime) {
    TempDir dir;
    dir.write("a.txt", "a");
    // One time before 2038 and one after, which no longer fits 32 bits.
    for (const long long seconds : {1234567890LL, 4102444800LL}) {
        SCOPED_TRACE(seconds);
        setModificationTime(dir.file("a.txt"), seconds);
        for (const std::string& path : {dir.file("a.txt"), withBackslashes(dir.file("a.txt"))}) {
            SCOPED_TRACE(path);
            DUNXFilePath file(path.c_str());
            long long time = -7;
            EXPECT_EQ(static_cast<long>(file.GetLastModificationDate(time)), DUNI_S_SUCCESS);
            EXPECT_EQ(time, seconds);
        }
    }
}

TEST(DUNXFilePath, GetLastModificationDateFailureLeavesTheTimeUntouched) {
    TempDir dir;
    const std::string missing = dir.file("missing.txt");
    DUNXFilePath paths[] = {DUNXFilePath(missing.c_str()), DUNXFilePath(), DUNXFilePath("")};
    for (DUNXFilePath& path : paths) {
        SCOPED_TRACE(textOf(path.GetPath()));
        long long time = -7;
        EXPECT_EQ(static_cast<long>(path.GetLastModificationDate(time)), DUNI_E_FAIL);
        EXPECT_EQ(time, -7);
    }
}

TEST(DUNXFilePath, OpenFileUsesTheWideModeAndHandsTheStreamOver) {
    TempDir dir;
    // Should the path reach the system mangled, whatever "wb" creates stays in here.
    const ScopedWorkingDirectory inside(dir.path());
    const DUNXFilePath path(withBackslashes(dir.file("out.bin")).c_str());
    std::FILE* out = path.OpenFile(wide(u"wb"));
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(std::fputs("written", out), 1);
    EXPECT_EQ(std::fclose(out), 0);
    EXPECT_EQ(dir.read("out.bin"), "written");

    std::FILE* in = path.OpenFile(wide(u"r"));
    ASSERT_NE(in, nullptr);
    char text[16] = {};
    EXPECT_NE(std::fgets(text, sizeof text, in), nullptr);
    EXPECT_STREQ(text, "written");
    std::fclose(in);

    EXPECT_EQ(DUNXFilePath(dir.file("missing.bin").c_str()).OpenFile(wide(u"r")), nullptr);
    EXPECT_EQ(DUNXFilePath(dir.file("no/such/dir.bin").c_str()).OpenFile(wide(u"w")), nullptr);
}

TEST(DUNXFilePath, RemoveFileSucceedsOnceThenFails) {
    TempDir dir;
    dir.write("a.txt", "a");
    const DUNXFilePath path(withBackslashes(dir.file("a.txt")).c_str());
    EXPECT_TRUE(path.RemoveFile());
    EXPECT_FALSE(std::filesystem::exists(dir.file("a.txt")));
    EXPECT_FALSE(path.RemoveFile());
    EXPECT_FALSE(DUNXFilePath().RemoveFile());
}

TEST(DUNXFilePath, FileOperationsSeeTheTextCutTo259Characters) {
    // The file is named so that its whole path is exactly 259 characters long.
    TempDir dir;
    const std::size_t kept = 259;
    const std::size_t nameLength = kept - std::min(kept, dir.path().size() + 1);
    if (nameLength < 1 || nameLength > 255)
        GTEST_SKIP() << "the temporary folder's name leaves no room for such a file";
    const std::string name(nameLength, 'n');
    const std::string cut = dir.file(name);
    ASSERT_EQ(cut.size(), kept);
    dir.write(name, "cut");
    setModificationTime(cut, 1000000000);

    // Whatever follows the 259th character never reaches the system.
    for (const std::string& tail : {std::string("x"), std::string(300, 'x')}) {
        SCOPED_TRACE(tail.size());
        DUNXFilePath path((cut + tail).c_str());
        EXPECT_TRUE(path.DoesFileExist());
        long long time = 0;
        EXPECT_EQ(static_cast<long>(path.GetLastModificationDate(time)), DUNI_S_SUCCESS);
        EXPECT_EQ(time, 1000000000);
        std::FILE* file = path.OpenFile(wide(u"rb"));
        ASSERT_NE(file, nullptr);
        char text[8] = {};
        EXPECT_EQ(std::fread(text, 1, 3, file), 3u);
        EXPECT_STREQ(text, "cut");
        std::fclose(file);
    }
    EXPECT_TRUE(DUNXFilePath((cut + "x").c_str()).RemoveFile());
    EXPECT_FALSE(std::filesystem::exists(cut));
}

TEST(DUNXFilePath, GetCurrentWorkingDirectoryIsTheNormalisedDirectory) {
    TempDir dir;
    ASSERT_EQ(::mkdir(dir.file("sub").c_str(), 0700), 0);
    const ScopedWorkingDirectory cwd(dir.file("sub"));
    char expected[4096];
    ASSERT_NE(::getcwd(expected, sizeof expected), nullptr);
    const DUNXFilePath path = DUNXFilePath::GetCurrentWorkingDirectory();
    EXPECT_EQ(textOf(path.GetPath()), withBackslashes(expected));
    EXPECT_EQ(textOf(path.GetName()), "sub");
    EXPECT_TRUE(path.IsAbsolute());
}

TEST(DUNXFilePath, GetCurrentWorkingDirectoryIsEmptyWhenItCannotBeRead) {
    TempDir dir;
    {
        SCOPED_TRACE("longer than 259 characters");
        std::string deep = dir.path();
        for (int level = 0; deep.size() <= 300; ++level) {
            deep += "/" + std::string(40, static_cast<char>('a' + level));
            ASSERT_EQ(::mkdir(deep.c_str(), 0700), 0) << deep;
        }
        const ScopedWorkingDirectory inside(deep);
        EXPECT_FALSE(DUNXFilePath::GetCurrentWorkingDirectory().IsValid());
    }
    {
        SCOPED_TRACE("removed");
        const std::string gone = dir.file("gone");
        ASSERT_EQ(::mkdir(gone.c_str(), 0700), 0);
        const ScopedWorkingDirectory inside(gone);
        ASSERT_EQ(::rmdir(gone.c_str()), 0);
        EXPECT_FALSE(DUNXFilePath::GetCurrentWorkingDirectory().IsValid());
    }
}

TEST(DUNXFilePath, GetTemporaryFilePathNamesAFileThatDoesNotExistYet) {
    TempDir dir;
    const ScopedWorkingDirectory inside(dir.path());
    // Each name handed out is then taken, so every later one must avoid it.
    std::set<std::string> taken;
    DUNXFilePath path("previous/text.txt");
    for (int i = 0; i < 20; ++i) {
        DUNXFilePath::GetTemporaryFilePath(path);
        const std::string text = textOf(path.GetPath());
        SCOPED_TRACE(text);
        ASSERT_EQ(text.size(), 16u);
        EXPECT_EQ(text.substr(0, 10), R"(.\DUNXTemp)");
        for (const char c : text.substr(10))
            EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(c)));
        EXPECT_EQ(textOf(path.GetDirectory()), ".");
        EXPECT_FALSE(path.DoesFileExist());
        EXPECT_EQ(entriesOf(dir.path()), taken) << "only a name is handed out";
        EXPECT_TRUE(taken.insert(text.substr(2)).second) << "repeated";
        dir.write(text.substr(2), "taken");
    }
}
