#include <dunx/DUNXFilePath.h>

#include "support/EventRecorder.h"
#include "support/ScopedEnvironmentVariable.h"
#include "support/ScopedLocale.h"
#include "support/ScopedWorkingDirectory.h"
#include "support/TempDir.h"
#include "support/TestSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>

namespace {

// The units as narrow text, read without any locale; null and empty both read as "".
std::string textOf(const DUNXString& s) {
    std::string text;
    for (const unsigned short* units = s; units && *units; ++units)
        text += static_cast<char>(*units);
    return text;
}

// Every query: path|name|no extension|no last extension|last extension|dir[|absolute][|invalid]
std::string answers(const DUNXFilePath& p) {
    return textOf(p.GetPath()) + '|' + textOf(p.GetName()) + '|' +
           textOf(p.GetNameWithoutExtension()) + '|' + textOf(p.GetNameWithoutLastExtension()) +
           '|' + textOf(p.GetLastExtension()) + '|' + textOf(p.GetDirectory()) +
           (p.IsAbsolute() ? "|absolute" : "") + (p.IsValid() ? "" : "|invalid");
}

void setModificationTime(const std::string& file, long long seconds) {
    ASSERT_TRUE(dunx::test::SetModificationTime(file, seconds)) << file;
}

// A caller's path type that stores one text and shows another: copies must ask GetPath.
struct ShownPath : DUNXFilePath {
    ShownPath() : DUNXFilePath("stored") {}
    DUNXString GetPath() const override { return DUNXString("a/b/c.txt"); }
};

} // namespace

TEST(DUNXFilePath, AnswersEveryQueryFromTheNormalisedText) {
    const std::pair<const char*, const char*> cases[] = {
        {"C:/d/f.tar.gz", R"(C:\d\f.tar.gz|f.tar.gz|f|f.tar|gz|C:\d|absolute)"},
        {R"(C:\dir.v2\)", R"(C:\dir.v2\|||||C:\dir.v2|absolute)"},
        {R"(dir.d\file)", R"(dir.d\file|file|file|file||dir.d)"},
        {"a/b.c/d.e.f", R"(a\b.c\d.e.f|d.e.f|d|d.e|f|a\b.c)"},
        {R"(dir\.hidden)", R"(dir\.hidden|.hidden|||hidden|dir)"},
        {".hidden", ".hidden|.hidden|||hidden|"},
        {"..", "..|..||.||"},
        {"/x", R"(\x|x|x|x|||absolute)"},
        {"C:file", "C:file|C:file|C:file|C:file||"},
        {"C:", "C:|C:|C:|C:||"},
        {"", "||||||invalid"}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(answers(DUNXFilePath(text)), expected) << "path \"" << text << '"';
    const DUNXFilePath tarGz(R"(x.d\a.TAR.gz)");
    EXPECT_TRUE(tarGz.HasExtension("gz") && tarGz.HasExtension(".tar.GZ"));
    EXPECT_FALSE(tarGz.HasExtension("z") || tarGz.HasExtension("") ||
                 DUNXFilePath().HasExtension("gz") || DUNXFilePath("d.gz/").HasExtension("gz"));
    // The extension is glued on as given, so a '/' can lead the text and make it absolute.
    EXPECT_EQ(answers(DUNXFilePath("", "/x")), "/x|/x|/x|/x|||absolute");
}

TEST(DUNXFilePath, EveryConstructorNormalisesAndNullTextGivesAnEmptyPath) {
    const ShownPath shown;
    const DUNXFilePath& base = shown;
    DUNXFilePath assigned("old/name.a");
    EXPECT_EQ(&(assigned = base), &assigned);
    const auto* wide = reinterpret_cast<const unsigned short*>(u"a/b/c.txt");
    const DUNXFilePath paths[] = {
        DUNXFilePath(wide),  DUNXFilePath(DUNXString("a/b/c.txt")), DUNXFilePath(base),
        DUNXFilePath(&base), DUNXFilePath("a/b/c.old.log", ".txt"), assigned};
    for (const DUNXFilePath& path : paths)
        EXPECT_EQ(answers(path) + ' ' + static_cast<const char*>(path),
                  R"(a\b\c.txt|c.txt|c|c|txt|a\b a\b\c.txt)");
    EXPECT_EQ(answers(assigned), answers(paths[0]));

    dunx::test::EventRecorder recorder;
    EXPECT_FALSE(DUNXFilePath(static_cast<const char*>(nullptr)).IsValid() ||
                 DUNXFilePath(static_cast<const DUNXFilePath*>(nullptr)).IsValid() ||
                 DUNXFilePath(nullptr, ".x").IsValid() || DUNXFilePath("a.txt", nullptr).IsValid());
    EXPECT_EQ(answers(DUNXFilePath(static_cast<const unsigned short*>(nullptr))), "||||||invalid");
    EXPECT_EQ(recorder.texts(), "Assert : Invalid DUNXFilePath\n") << "only the wide form asserts";
    EXPECT_STREQ(static_cast<const char*>(DUNXFilePath("")), "") << "given text, if empty";
    EXPECT_EQ(static_cast<const char*>(DUNXFilePath()), nullptr) << "never given text";
}

TEST(DUNXFilePath, SelfAssignmentEmptiesAndAddExtensionLeavesTheCacheAsItWas) {
    DUNXFilePath path(R"(a\b)"), fresh, folder(R"(d\)"), dotted(R"(dir\a.b)");
    path = static_cast<const DUNXFilePath&>(path);
    // Emptied by assignment, every cached position is 0 rather than -1: the name
    // then starts at 0, which shows once AddExtension puts text behind the cache.
    path.AddExtension("x");
    fresh.AddExtension("txt");
    folder.AddExtension("txt");
    dotted.AddExtension(".c");
    EXPECT_EQ(answers(path), ".x|.x|||||invalid");
    EXPECT_EQ(answers(fresh), ".txt||||||invalid") << "a path never given text has no name start";
    EXPECT_EQ(answers(folder), R"(d\.txt|||||d)") << "a path ending with '\\' has no name start";
    EXPECT_EQ(answers(dotted), R"(dir\a.b..c|a.b..c|a|a|b|dir)") << "read up to the old length";
    EXPECT_TRUE(dotted.HasExtension("c")) << "HasExtension reads the whole text";
}

TEST(DUNXFilePath, BuildsDerivedPathsByTheirOwnRules) {
    // "+": operator+, "r": ReplaceLastExtension, "x": (text, extension), "@": ResolveAgainst.
    // clang-format off
    const char* const cases[][4] = {
        {"+", R"(C:\dir)", "f", R"(C:\dir\f)"},        {"+", R"(C:\dir\)", "f", R"(C:\dir\f)"},
        {"+", R"(C:\dir)", ".x", R"(C:\dir.x)"},       {"+", R"(\dir)", "f", R"(\dirf)"},
        {"+", R"(C:\d)", R"(\f)", R"(C:\d\\f)"},       {"+", "dir", "a/b", R"(dir\a\b)"},
        {"r", "a.tar.gz", "bz2", "a.tar.bz2"},         {"r", "a.txt", ".log", "a.log"},
        {"r", R"(d.old\f)", "e", R"(d.old\f.e)"},      {"x", "a.tar.gz", ".log", "a.log"},
        {"x", "a.txt", "log", "alog"},                 {"x", "C:/a.b/c", ".d", R"(C:\a.b\c.d)"},
        // The climb cuts dir to the index of the last '\' left in the relative text.
        {"@", R"(..\x)", R"(C:\a\b\c)", R"(C:\a\b\x)"}, {"@", R"(..\sub\x)", R"(C:\a\b\c)", R"(C:\sub\x)"},
        {"@", R"(..\..\x)", R"(C:\a\b\c)", R"(C:\x)"},  {"@", "../x", R"(C:\a\b\c)", R"(C:\a\b\x)"},
        {"@", R"(.\.\x)", R"(C:\a\f)", R"(C:\a\x)"},   {"@", ".cfg", R"(C:\a\f)", R"(C:\a\fg)"},
        {"@", R"(x\y)", R"(C:\a\)", R"(C:\a\x\y)"},    {"@", "y", "f", "y"},
        {"@", "/abs", R"(D:\o\f)", R"(\abs)"},         {"@", "", R"(C:\a\f)", R"(C:\a\)"}};
    // clang-format on
    for (const auto& [op, text, arg, expected] : cases) {
        DUNXFilePath path(text), base(arg);
        const DUNXFilePath derived = *op == '+'   ? path + DUNXString(arg)
                                     : *op == 'r' ? path.ReplaceLastExtension(arg)
                                     : *op == 'x' ? DUNXFilePath(text, arg)
                                                  : path.ResolveAgainst(base);
        EXPECT_EQ(answers(derived), answers(DUNXFilePath(expected))) << text << op << arg;
    }
    EXPECT_EQ(textOf(DUNXFilePath("a.txt", "/x").GetPath()), "a/x") << "extension not normalised";
}

TEST(DUNXFilePath, FileOperationsReachRealFilesThroughWideBackslashedNames) {
    // The Windows runtime has no UTF-8 locale; its narrow file calls read the ANSI code page.
    const char* const locale = dunx::test::kWindows ? ".1252" : "C.UTF-8";
    const dunx::test::ScopedLocale narrow(locale);
    ASSERT_TRUE(narrow.isSet()) << locale << " is not installed";
    dunx::test::TempDir dir;
    // Should a path reach the system mangled, whatever "wb" creates stays in here.
    const dunx::test::ScopedWorkingDirectory inside(dir.path());
    const std::string name = dunx::test::kWindows ? "\xE9t\xE9.txt"          // U+00E9 twice
                                                  : "\xC3\xA9t\xC3\xA9.txt"; // the same in UTF-8
    DUNXFilePath path(reinterpret_cast<const unsigned short*>(
        (std::u16string(dir.path().begin(), dir.path().end()) + u"\\\u00E9t\u00E9.txt").c_str()));
    std::FILE* out = path.OpenFile(DUNXString("wb"));
    ASSERT_NE(out, nullptr);
    std::fputs("written", out);
    std::fclose(out);
    EXPECT_EQ(dir.read(name), "written");
    EXPECT_TRUE(path.DoesFileExist());
    setModificationTime(dir.file(name), 4102444800LL); // after 2038: more than 32 bits
    long long time = -7;
    EXPECT_EQ(static_cast<long>(path.GetLastModificationDate(time)), DUNI_S_SUCCESS);
    EXPECT_EQ(time, 4102444800LL);
    EXPECT_TRUE(path.RemoveFile());
    for (DUNXFilePath absent : {path, DUNXFilePath()}) {
        EXPECT_EQ(static_cast<long>(absent.GetLastModificationDate(time)), DUNI_E_FAIL);
        EXPECT_FALSE(absent.DoesFileExist() || absent.RemoveFile() ||
                     absent.OpenFile(DUNXString("r")));
    }
    EXPECT_EQ(time, 4102444800LL) << "a failure must leave the time untouched";
    EXPECT_FALSE(DUNXFilePath(dir.path().c_str()).DoesFileExist() ||
                 DUNXFilePath((dir.path() + "/").c_str()).DoesFileExist())
        << "a folder counts as absent";
}

TEST(DUNXFilePath, FileOperationsSeeTheTextCutTo259Characters) {
    dunx::test::TempDir dir;
    ASSERT_LT(dir.path().size(), 250u) << "the temporary folder leaves no room";
    const std::string cut = dir.file(std::string(258 - dir.path().size(), 'n'));
    dir.write(cut.substr(dir.path().size() + 1), "cut");
    setModificationTime(cut, 1000000000);
    DUNXFilePath path((cut + std::string(300, 'x')).c_str());
    long long time = 0;
    EXPECT_TRUE(path.DoesFileExist());
    EXPECT_EQ(static_cast<long>(path.GetLastModificationDate(time)), DUNI_S_SUCCESS);
    EXPECT_EQ(time, 1000000000);
    EXPECT_TRUE(path.RemoveFile());
}

TEST(DUNXFilePath, GetCurrentWorkingDirectoryIsTheNormalisedFolderOrEmpty) {
    dunx::test::TempDir dir;
    ASSERT_TRUE(dunx::test::MakeFolder(dir.file("sub")));
    {
        const dunx::test::ScopedWorkingDirectory inner(dir.file("sub"));
        EXPECT_EQ(answers(DUNXFilePath::GetCurrentWorkingDirectory()),
                  answers(DUNXFilePath(std::filesystem::current_path().string().c_str())));
    }
    // POSIX only: Windows keeps the current folder under 260 characters and will not remove it.
    if (dunx::test::kWindows)
        return;
    std::string deep = dir.path();
    for (char level = 'a'; deep.size() <= 300; ++level)
        ASSERT_TRUE(dunx::test::MakeFolder(deep += '/' + std::string(40, level)));
    const dunx::test::ScopedWorkingDirectory outer(deep);
    EXPECT_FALSE(DUNXFilePath::GetCurrentWorkingDirectory().IsValid()) << "over 259 characters";
    const dunx::test::ScopedWorkingDirectory inner(dir.file("sub"));
    ASSERT_EQ(std::filesystem::remove(dir.file("sub")), true);
    EXPECT_FALSE(DUNXFilePath::GetCurrentWorkingDirectory().IsValid()) << "removed";
}

TEST(DUNXFilePath, GetTemporaryFilePathNamesAFileThatDoesNotExistYet) {
    dunx::test::TempDir dir;
    const dunx::test::ScopedWorkingDirectory inside(dir.path());
    // The Windows runtime's _tempnam prefers the folder in TMP to "./" and forms the name its own
    // way from the prefix (Wine keeps "DUN" and adds hex digits and ".tmp").
    const dunx::test::ScopedEnvironmentVariable tmp("TMP", dir.path().c_str());
    const std::string folder =
        dunx::test::kWindows ? textOf(DUNXFilePath(dir.path().c_str()).GetPath()) : ".";
    DUNXFilePath path("previous/text.txt");
    for (long taken = 0; taken < 20; ++taken) { // each name is then taken: later ones avoid it
        DUNXFilePath::GetTemporaryFilePath(path);
        const std::string name = textOf(path.GetName());
        EXPECT_TRUE(std::regex_match(
            name,
            std::regex(dunx::test::kWindows ? "DUN[A-Za-z0-9_.]+" : "DUNXTemp[A-Za-z0-9]{6}")))
            << name;
        // On Windows the path alone: the name has the runtime's form, an extension perhaps.
        EXPECT_EQ(dunx::test::kWindows ? textOf(path.GetPath()) : answers(path),
                  dunx::test::kWindows
                      ? folder + '\\' + name
                      : R"(.\)" + name + '|' + name + '|' + name + '|' + name + "||.");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), taken)
            << "only a name is handed out";
        ASSERT_FALSE(std::filesystem::exists(dir.file(name))) << name << " exists";
        dir.write(name, "taken");
    }
}
