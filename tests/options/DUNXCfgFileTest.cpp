#include <dunx/DUNXCfgFile.h>

#include "support/ScopedLocale.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

long load(DUNXCfgFile& cfg, const std::string& bytes) {
    std::FILE* file = std::tmpfile();
    if (!file)
        return DUNI_U_UNDETERMINED;
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::rewind(file);
    const long result = cfg.Load(file);
    std::fclose(file);
    return result;
}

// All the file object holds: "[section]key=value|value|" for each section, then each message.
std::string dump(const DUNXCfgFile& cfg) {
    std::string all;
    for (int s = 0; s < cfg.GetSectionCount(); ++s) {
        all += "[" + std::string(cfg.GetSectionAt(s)->GetName()) + "]";
        for (int k = 0; k < cfg.GetSectionAt(s)->GetRowCount(); ++k) {
            const DUNXCfgFileKey* key = cfg.GetSectionAt(s)->GetKey(k);
            all += static_cast<const char*>(key->GetName()) + std::string("=");
            for (int v = 0; v < key->GetNumValues(); ++v)
                all += static_cast<const char*>(*key->GetValue(v)) + std::string("|");
        }
    }
    for (int i = 0; i < cfg.GetErrorCount(); ++i)
        all += "\n" + std::string(cfg.GetErrorMessage(i));
    return all;
}

std::string fault(long line, const std::string& text) {
    return "\nIncorrect syntax: line " + std::to_string(line) + ":" + text +
           (text[0] == '[' ? " *** \"[section name]' expected." : " *** \"key=value\" expected");
}

// What a file of letters, '=', ',', 0 bytes and line feeds holds, worked out from the lines
// that fgets into a 1,024-byte buffer gives: in the dump's form, for the unnamed section only.
std::string expectedDump(const std::string& bytes) {
    std::FILE* file = std::tmpfile();
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::rewind(file);
    std::string keys = "[]", faults;
    char buffer[1024];
    for (long number = 1; std::fgets(buffer, sizeof buffer, file); ++number) {
        std::string line(buffer); // up to the first 0 byte
        if (!line.empty() && line.back() == '\n')
            line.pop_back();
        const std::size_t separator = line.find('=');
        if (line.empty())
            continue;
        if (separator == std::string::npos || separator == 0 || separator + 1 == line.size()) {
            faults += ("\n" + fault(number, line).substr(1)).substr(0, 1024);
            continue;
        }
        keys += line.substr(0, separator) + "=";
        std::istringstream values(line.substr(separator + 1) + ",");
        for (std::string value; std::getline(values, value, ',');)
            keys += value + "|";
    }
    std::fclose(file);
    return keys + faults;
}

// `length` bytes of letters, '=', ',' and now and then a 0 byte, then a line feed.
std::string randomLine(std::mt19937& generator, std::size_t length) {
    std::string line(length, 'a');
    for (char& c : line)
        c = "abc=,abcdefgh=abcdefg\0"[generator() % 22];
    return line + "\n";
}

} // namespace

TEST(DUNXCfgFile, KeyLinesAreTrimmedAndCutIntoUntrimmedPiecesAtEveryComma) {
    // "text|what is read": '=' wins over an earlier ':'; only tab, blank, CR and LF are trimmed.
    // A section named again, or "[]", collects more keys; a repeated key is a key of its own.
    for (const std::string row :
         {"  key = value  |[]key=value|", "key: a, b|[]key=a| b|", "k=a,,b|[]k=a||b|",
          "k = a ,b |[]k=a |b|", "\tk\t=\tv\r|[]k=v|", "k=v\f|[]k=v\f|", "k==v|[]k==v|",
          "a:b=c|[]a:b=c|", "time: 12:30|[]time=12:30|", "k = \"x, y\"|[]k=\"x| y\"|", " \t\r|[]",
          "k=0\nk=1\n[ A ] trailing\nk=2\n[a]\n[\tB]x]\nk=3,4\n[A]\nk=5\n[]\nk=6|"
          "[]k=0|k=1|k=6|[A]k=2|k=5|[a][B]x]k=3|4|"}) {
        DUNXCfgFile cfg;
        EXPECT_EQ(load(cfg, row.substr(0, row.find('|')) + "\n"), DUNI_S_SUCCESS) << row;
        EXPECT_EQ(dump(cfg), row.substr(row.find('|') + 1));
    }
    // A longer line is read in pieces of 1,023 characters, each handled as a line of its own.
    const std::string x = "k0=" + std::string(1020, 'x'), y = "k1=" + std::string(1020, 'y');
    DUNXCfgFile cfg;
    EXPECT_EQ(load(cfg, x + y + std::string(1023, 'v') + "w\nbad\n"), DUNI_E_FAIL);
    const std::string cut = "\nIncorrect syntax: line 3:"; // messages are cut to 1,023 characters
    EXPECT_EQ(dump(cfg), "[]" + x + "|" + y + "|" + cut + std::string(1024 - cut.size(), 'v') +
                             fault(4, "w") + fault(5, "bad"));
    // Blanks count in those 1,023 characters and are trimmed from each piece: a piece that
    // ends in blanks, or a remainder of blanks alone, is no fault.
    const std::string z(1014, 'z'), u(1019, 'u');
    DUNXCfgFile indented;
    EXPECT_EQ(load(indented, "  \tk2=" + z + "   \n k3=" + u + "  \n"), DUNI_S_SUCCESS);
    EXPECT_EQ(dump(indented), "[]k2=" + z + "|k3=" + u + "|");
}

TEST(DUNXCfgFile, SyntaxFaultSkipsItsLineAndItsMessageOutlivesLaterLoads) {
    DUNXCfgFile cfg;
    std::string keys = "[]", said;
    for (std::string line : {"key=", "=value", "novalue", "key :", "=", "[Tools", "[Tools)"}) {
        // Comments are skipped but counted, after trimming; each load counts from line 1.
        EXPECT_EQ(load(cfg, "first=1\n  # note\n  " + line + "\t\n; x=1\n\nlast=2 # kept\n"),
                  DUNI_E_FAIL);
        EXPECT_EQ(dump(cfg), (keys += "first=1|last=2 # kept|") + (said += fault(3, line)));
    }
    EXPECT_EQ(load(cfg, "clean=1\n"), DUNI_E_FAIL); // the earlier faults remain
    EXPECT_EQ(long(DUNXCfgFile().Load(nullptr)), DUNI_E_FAIL);
}

TEST(DUNXCfgFile, GarbageLoadsWithoutCrashing) {
    std::mt19937 generator(20240611u);
    for (int round = 0; round < 8; ++round) {
        std::string bytes(std::size_t(2) << (4 * (round % 4)), '\0');
        for (char& c : bytes) // odd rounds draw from the characters the syntax gives meaning to
            c = round % 2 ? "=[],:#; \t\r\n\0ab"[generator() % 15] : char(generator() % 256);
        DUNXCfgFile cfg;
        const bool clean = load(cfg, bytes + "\n[End]\nlast=1\n") == DUNI_S_SUCCESS;
        EXPECT_EQ(clean, !cfg.GetErrorCount()) << round;
        EXPECT_NE(dump(cfg).find("[End]last=1|"), std::string::npos) << round;
    }
}

TEST(DUNXCfgFile, TypedGettersTakeExactTextsAndRecordWhatTheyRefuse) {
    // "text|bool|logical|int|double;": what each getter reads from the text, "-" when it refuses.
    // Missing values, keys and sections answer false without a message.
    std::istringstream rows(
        "true|1|-|-|-;false|0|-|-|-;TRUE|-|1|-|-;FALSE|-|0|-|-; true|-|-|-|-;"
        "1|-|1|1|1;0|-|0|0|0;2|-|-|2|2;-7|-|-|-7|-7; 12 |-|-|12|12;"
        "1.5|-|-|-|1.5;-2.5e3|-|-|-|-2500;2147483648|-|-|-|2.14748e+09;"
        "0x10|-|-|-|-;12abc|-|-|-|-;inf|-|-|-|-;1e|-|-|-|-;+5|-|-|5|5;+2.5|-|-|-|2.5;"
        "+-5|-|-|-|-;|-|-|-|-");
    const std::string refusals[] = {
        "bool value \"true\" or \"false\" expected.",
        "integer \"0\" or \"1\" or string \"TRUE\" or \"FALSE\" expected.",
        "integer value expected.", "double value expected."};
    for (std::string row; std::getline(rows, row, ';');) {
        const std::string text = row.substr(0, row.find('|'));
        DUNXCfgFile cfg; // value 1 of the first key in a section, so that its blanks stay
        ASSERT_EQ(load(cfg, "[S]\nWidth=x," + text + ",end\nWidth=y\n"), DUNI_S_SUCCESS);
        bool b = false;
        int l = 0, i = 0;
        double d = 0;
        const bool found[] = {cfg.GetBool("Width", b, 1, "S"), cfg.GetLogical("Width", l, 1, "S"),
                              cfg.GetInt("Width", i, 1, "S"), cfg.GetDouble("Width", d, 1, "S")};
        const double read[] = {double(b), double(l), double(i), d};
        std::ostringstream got;
        std::string said = "[][S]Width=x|" + text + "|end|Width=y|";
        for (int g = 0; g < 4; ++g) {
            (found[g] ? got << '|' << read[g] : got << "|-");
            said += found[g] ? "" : "\nIncorrect syntax: key:Width *** " + refusals[g];
        }
        EXPECT_EQ(text + got.str(), row);
        EXPECT_FALSE(cfg.GetBool("Width", b, 3, "S") || cfg.GetInt("Width", i, -1, "S") ||
                     cfg.GetLogical("Width", l, 0, nullptr) || cfg.GetDouble("width", d, 0, "S") ||
                     cfg.ExistKey("Width", "s") || cfg.GetArraySize("Width") != 0);
        DUNXString value;
        EXPECT_TRUE(cfg.GetString("Width", value, 1, "S") && value.equals(text.c_str()) &&
                    cfg.GetArraySize("Width", "S") == 3 && cfg.ExistKey("Width", "S"));
        EXPECT_EQ(dump(cfg), said) << row;
    }
}

TEST(DUNXCfgFile, ManySectionsKeepFileOrderAndARepeatedNameGathersItsKeys) {
    // Sections are found by name through an index: check it against the
    // order of the file on a file where names come back out of order.
    std::string text = "top=0\n";
    for (int i = 0; i < 300; ++i)
        text += "[S" + std::to_string(i * 7 % 100) + "]\nk" + std::to_string(i) + "=v\n";
    text += "[]\nunnamed=again\n[ S5 ] tail\nlast=5\n";
    DUNXCfgFile cfg;
    ASSERT_EQ(load(cfg, text), 0);
    ASSERT_EQ(cfg.GetSectionCount(), 101);
    EXPECT_EQ(std::string(cfg.GetSectionAt(1)->GetName()) + cfg.GetSectionAt(2)->GetName(), "S0S7");
    for (int n = 0; n < 100; ++n) {
        const std::string name = "S" + std::to_string(n);
        const DUNXCfgFileSection* section = cfg.GetSection(name.c_str());
        ASSERT_NE(section, nullptr) << name;
        EXPECT_EQ(section->GetName(), name);
        EXPECT_EQ(section->GetRowCount(), n == 5 ? 4 : 3) << name;
    }
    EXPECT_EQ(cfg.GetSection(nullptr), cfg.GetSection(""));
    EXPECT_EQ(cfg.GetSection(nullptr)->GetRowCount(), 2);
    EXPECT_EQ(cfg.GetSection("S100"), nullptr);
    const DUNXCfgFileSection* top = cfg.GetSectionAt(0);
    const DUNXCfgFileKey* key = top->GetKey(0);
    EXPECT_TRUE(cfg.GetSectionAt(-1) == nullptr && cfg.GetSectionAt(101) == nullptr &&
                top->GetKey(-1) == nullptr && top->GetKey(2) == nullptr &&
                key->GetValue(-1) == nullptr && key->GetValue(1) == nullptr)
        << "an index out of range finds nothing";
    EXPECT_EQ(cfg.GetSection("s5"), nullptr); // names are case-sensitive
    EXPECT_TRUE(cfg.ExistKey("last", "S5") && cfg.ExistKey("k5", "S35") &&
                !cfg.ExistKey("k5", "S5"));
}

TEST(DUNXCfgFile, LinesOfAroundAThousandCharactersSplitAsFgetsSplitsThem) {
    // A line of 1,022 characters and its line feed fill one piece; at 1,023 the line feed
    // is a piece (an empty line) of its own; at 1,024 the last character is. The same
    // without a final line feed, where the end of the file ends the piece.
    struct Row {
        std::size_t length;
        const char* end;
        std::string expected;
    };
    const std::string v(1020, 'v');
    const Row rows[] = {
        {1022, "\nbad\n", "[]k=" + v + "|" + fault(2, "bad")},
        {1023, "\nbad\n", "[]k=" + v + "v|" + fault(3, "bad")},
        {1024, "\nbad\n", "[]k=" + v + "v|" + fault(2, "v") + fault(3, "bad")},
        {1022, "", "[]k=" + v + "|"},
        {1023, "", "[]k=" + v + "v|"},
        {1024, "", "[]k=" + v + "v|" + fault(2, "v")},
    };
    for (const Row& row : rows) {
        const std::string text = "k=" + std::string(row.length - 2, 'v') + row.end;
        DUNXCfgFile cfg;
        load(cfg, text);
        EXPECT_EQ(dump(cfg), row.expected) << row.length << (*row.end ? " with" : " without");
        EXPECT_EQ(dump(cfg), expectedDump(text));
    }
}

TEST(DUNXCfgFile, LongLinesAcrossTheReadBlocksSplitAsFgetsSplitsThem) {
    // The loader reads 64 KiB at a time: long lines are put so that a block ends at or near
    // the start of a line, a line feed, and each 1,023-character piece, and a file ends
    // with and without a line feed. Random lines cross the later block ends anywhere.
    std::mt19937 generator(7u);
    const std::size_t block = 64 * 1024;
    for (const std::size_t before : {0, 1, 2, 1021, 1022, 1023, 1024, 1025, 2045, 2046, 2047}) {
        std::string text;
        while (text.size() + 1100 < block - before)
            text += randomLine(generator, 1 + generator() % 1000);
        text += randomLine(generator, block - before - text.size() - 1);
        for (const std::size_t length : {3070, 2046, 1023, 1022, 0, 1024, 3069})
            text += randomLine(generator, length);
        while (text.size() < 3 * block)
            text += randomLine(generator,
                               generator() % 2 ? 1021 + generator() % 5 : generator() % 3100);
        for (const bool lineFeedAtEnd : {true, false}) {
            if (!lineFeedAtEnd)
                text += randomLine(generator, 1500 + before).substr(0, 1500 + before);
            DUNXCfgFile cfg;
            load(cfg, text);
            ASSERT_EQ(dump(cfg), expectedDump(text)) << before << " " << lineFeedAtEnd;
        }
    }
}

TEST(DUNXCfgFile, ZeroByteEndsTheTextOfItsLine) {
    using namespace std::string_literals;
    DUNXCfgFile cfg;
    EXPECT_EQ(load(cfg, "k=a\0b,c\n\0k=v\nk\0=v\n#\0\nlast=1,\0\n"s), DUNI_E_FAIL);
    EXPECT_EQ(dump(cfg), "[]k=a|last=1||" + fault(3, "k"));
}

TEST(DUNXCfgFile, NonAsciiTextIsConvertedAsTheLocaleConvertsAnyText) {
    // Keys and values are what DUNXString makes of their bytes in the current locale:
    // characters in C.UTF-8, one unit per byte in "C" (and for invalid UTF-8).
    for (const char* locale : {"C.UTF-8", "C"}) {
        dunx::test::ScopedLocale scoped(locale);
        if (!scoped.isSet())
            continue;
        SCOPED_TRACE(locale);
        DUNXCfgFile cfg;
        ASSERT_EQ(load(cfg, "[Se\xC3\xA7\xC3\xA3o]\ncl\xC3\xA9 = na\xC3\xAFve, plain,\xFF\xFE,"
                            "\xE2\x82\xAC \xF0\x9F\x98\x80\nplain=caf\xC3\xA9\n"),
                  DUNI_S_SUCCESS);
        const DUNXCfgFileSection* section = cfg.GetSection("Se\xC3\xA7\xC3\xA3o");
        ASSERT_NE(section, nullptr);
        const DUNXCfgFileKey* key = section->findKey("cl\xC3\xA9");
        ASSERT_NE(key, nullptr);
        EXPECT_TRUE(key->GetName().equals(DUNXString("cl\xC3\xA9")));
        const char* values[] = {"na\xC3\xAFve", " plain", "\xFF\xFE",
                                "\xE2\x82\xAC \xF0\x9F\x98\x80"};
        ASSERT_EQ(key->GetNumValues(), 4);
        for (int i = 0; i < 4; ++i)
            EXPECT_TRUE(key->GetValue(i)->equals(DUNXString(values[i]))) << i;
        DUNXString text;
        EXPECT_TRUE(cfg.GetString("plain", text, 0, "Se\xC3\xA7\xC3\xA3o"));
        EXPECT_TRUE(text.equals(DUNXString("caf\xC3\xA9")));
        EXPECT_STREQ(static_cast<const char*>(text), "caf\xC3\xA9");
    }
}

TEST(DUNXCfgFile, TextCopiedOutOutlivesTheFile) {
    DUNXString value("earlier"), name;
    const char* narrow = value; // a target holding a narrow rendering takes the source's
    ASSERT_STREQ(narrow, "earlier");
    std::vector<DUNXCfgFileKey> keys;
    {
        DUNXCfgFile cfg;
        ASSERT_EQ(load(cfg, "k = first, second\nk2=x\n"), DUNI_S_SUCCESS);
        EXPECT_STREQ(static_cast<const char*>(*cfg.GetSection("")->GetKey(0)->GetValue(1)),
                     " second");
        ASSERT_TRUE(cfg.GetString("k", value, 1));
        name = cfg.GetSection("")->GetKey(0)->GetName();
        keys.push_back(*cfg.GetSection("")->GetKey(0));
        keys.push_back(*cfg.GetSection("")->GetKey(1));
    }
    keys.push_back(keys[0]); // the vector moves its keys: each copy owns its text
    EXPECT_STREQ(static_cast<const char*>(value), " second");
    EXPECT_STREQ(static_cast<const char*>(name), "k");
    for (const DUNXCfgFileKey& key : {keys[0], keys[2]}) {
        EXPECT_STREQ(static_cast<const char*>(key.GetName()), "k");
        EXPECT_STREQ(static_cast<const char*>(key.GetAllValues()), "first, second");
    }
    EXPECT_STREQ(static_cast<const char*>(*keys[1].GetValue(0)), "x");
}

TEST(DUNXCfgFile, PointersHandedOutStayValidThroughAppendsAndLaterLoads) {
    DUNXCfgFile cfg;
    ASSERT_EQ(load(cfg, "top=0\n[S]\nk0=v0,w0\nk1=v1\n"), DUNI_S_SUCCESS);
    DUNXCfgFileSection* top = cfg.GetSection("");
    DUNXCfgFileSection* section = cfg.GetSection("S");
    const DUNXCfgFileKey* first = section->GetKey(0);
    const DUNXString* value = first->GetValue(0);
    // Appended keys and a second load add to the same sections, after what is there.
    for (int i = 2; i < 100; ++i)
        section->AppendKey(DUNXString(16, "k%d", i))
            ->AppendValue(("v" + std::to_string(i)).c_str());
    std::string more = "[S]\n";
    for (int i = 100; i < 1000; ++i)
        more += "k" + std::to_string(i) + "=v" + std::to_string(i) + "\n";
    ASSERT_EQ(load(cfg, more + "[T]\n[]\nagain=1\n"), DUNI_S_SUCCESS);
    EXPECT_EQ(cfg.GetSection(""), top);
    EXPECT_EQ(cfg.GetSection("S"), section);
    EXPECT_EQ(section->GetKey(0), first);
    EXPECT_EQ(first->GetValue(0), value);
    EXPECT_STREQ(static_cast<const char*>(*value), "v0");
    EXPECT_EQ(std::string(cfg.GetSectionAt(2)->GetName()) + top->GetKey(1)->GetName().ToUtf8(),
              "Tagain");
    ASSERT_EQ(section->GetRowCount(), 1000);
    for (int i = 0; i < 1000; ++i) {
        const std::string name = "k" + std::to_string(i);
        const DUNXCfgFileKey* key = section->GetKey(i);
        ASSERT_EQ(key->GetName().ToUtf8(), name);
        ASSERT_EQ(section->findKey(name.c_str()), key);
        ASSERT_EQ(key->GetValue(0)->ToUtf8(), "v" + std::to_string(i));
    }
    EXPECT_EQ(section->GetKey(1000), nullptr);
    // A section or key of one's own holds keys and values as well.
    DUNXCfgFileSection own("own");
    DUNXCfgFileKey* key = own.AppendKey("a");
    key->AppendValue(nullptr);
    key->AppendValue("b");
    EXPECT_STREQ(static_cast<const char*>(own.findKey("a")->GetAllValues()), ",b");
}
