#include <dunx/DUNXCfgFile.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <sstream>
#include <string>

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
    std::istringstream rows("true|1|-|-|-;false|0|-|-|-;TRUE|-|1|-|-;FALSE|-|0|-|-; true|-|-|-|-;"
                            "1|-|1|1|1;0|-|0|0|0;2|-|-|2|2;-7|-|-|-7|-7; 12 |-|-|12|12;"
                            "1.5|-|-|-|1.5;-2.5e3|-|-|-|-2500;2147483648|-|-|-|2.14748e+09;"
                            "0x10|-|-|-|-;12abc|-|-|-|-;inf|-|-|-|-;1e|-|-|-|-;|-|-|-|-");
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
