#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXFileHeader.h>
#include <dunx/DUNXOutputStream.h>
#include <dunx/DUNXTaskEvent.h>

#include "support/ScopedEnvironmentVariable.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <regex>
#include <string>
#include <vector>

using namespace dunx::test;

namespace {

const std::string kRule(80, '-');

// What a listener sees of one event.
struct Seen {
    std::string name, identifier;
    int level;
    bool timed, end, stamped;
    std::string text;
};

class TaskRecorder : public DUNXEventListener {
public:
    TaskRecorder() { DUNXEventBus::GetEventBus().AddListener(this); }
    ~TaskRecorder() override { DUNXEventBus::GetEventBus().RemoveListener(this); }
    void HandleEvent(DUNXEvent& event) override {
        DUNXStringOutputStream text;
        event.GetFormattedDescription(&text);
        const auto* task = dynamic_cast<const DUNXTaskEvent*>(&event);
        long long time = 0;
        const char* name = event.GetEventName();
        const char* identifier = task ? task->GetTaskIdentifier() : nullptr;
        seen.push_back({name ? name : "<null>", identifier ? identifier : "<null>",
                        event.GetLevel(), event.IsTimed(), task && task->IsEndTask(),
                        event.GetTime(time).IsSuccess() != 0, text.GetText()});
    }
    std::vector<Seen> seen;
};

std::string textOf(DUNXEvent& event) {
    DUNXStringOutputStream text;
    event.GetFormattedDescription(&text);
    return text.GetText();
}

} // namespace

TEST(DUNXTaskEvent, EveryStageFiresItsNameIdentifierLevelAndText) {
    ScopedEnvironmentVariable trace("DUNXTrace", nullptr);
    DUNXFileHeader emptyHeader;
    struct Row {
        std::function<void()> fire;
        const char *name, *identifier;
        int level;
        bool end;
        std::string text;
    };
    const std::string failure = kRule + "\nTarget Document Preprocessing Result : Failure\n",
                      written = "Output File \"a.obj\" is Successfully Written\n";
    // clang-format off
    const Row rows[] = {
        {[] { DUNXStartProductEvent::Fire("Part", "dunx"); }, "Start Product", "Product", 50, false,
         "Product              : Part\nApplication          : dunx\n"},
        {[] { DUNXStartProductEvent::Fire(nullptr, ""); }, "Start Product", "Product", 50, false,
         ""},
        {[] { DUNXStartProductEvent::Fire("P", ""); }, "Start Product", "Product", 50, false,
         "Product              : P\n"},
        {[] { DUNXEndProductEvent::Fire(DUNI_S_SUCCESS); }, "Product End", "Product", 50, true,
         "Product Completed Successfully\n"},
        {[] { DUNXEndProductEvent::Fire(DUNI_A_ABORTED); }, "Product End", "Product", 50, true,
         "Product Aborted\n"},
        {[] { DUNXEndProductEvent::Fire(DUNI_E_FILE_OPEN); }, "Product End", "Product", 50, true,
         "Product Failed with code 16777230 (File Open Error)\n"},
        {[] { DUNXEndProductEvent::Fire(DUNI_S_PARTIAL_SUCCESS); }, "Product End", "Product", 50,
         true, "Product Failed with code 1 (Partial Success)\n"},
        {[] { DUNXStartConversionTaskEvent::Fire(); }, "DUNXStartConversionTaskEvent",
         "Conversion", 50, false, ""},
        {[] { DUNXStartConversionStageEvent::Fire("Faces", 2, 40.0, true); },
         "DUNXStartConversionStageEvent", "<null>", 50, false, ""},
        {[] { DUNXStartOptionsTaskEvent::Fire(); }, "DUNXStartOptionsTaskEvent", "Options", 50,
         false, ""},
        {[] { DUNXEndOptionsTaskEvent::Fire(DUNI_S_SUCCESS); }, "Options logging", "Options", 50,
         true, kRule + "\nOptions logging Result : Success\n" + kRule + "\n"},
        {[] { DUNXStartPreprocessDocumentEvent::Fire(true); },
         "Start Source Document Preprocessing", "Source Document Preprocessing", 50, false, ""},
        {[] { DUNXStartPreprocessDocumentEvent::Fire(false); },
         "Start Target Document Preprocessing", "Target Document Preprocessing", 50, false, ""},
        {[] { DUNXEndPreprocessDocumentEvent::Fire(DUNI_E_FAIL, false); },
         "Target Document Preprocessing", "Target Document Preprocessing", 50, true,
         failure + kRule + "\n"},
        {[] { DUNXStartReadFileTaskEvent::Fire("in.stl"); }, "DUNXStartReadFileTaskEvent",
         "Read File", 50, false, ""},
        {[] { DUNXStartReadFileTaskEvent::Fire(DUNXString("in.stl")); },
         "DUNXStartReadFileTaskEvent", "Read File", 50, false, ""},
        {[] { DUNXEndReadFileTaskEvent::Fire(DUNI_S_SUCCESS, nullptr); }, "File Reading",
         "Read File", 50, true, ""},
        {[&] { DUNXEndReadFileTaskEvent::Fire(DUNI_E_FAIL, &emptyHeader); }, "File Reading",
         "Read File", 50, true, ""},
        {[] { DUNXStartReadEntitiesTaskEvent::Fire(); }, "DUNXStarReadEntitiesTaskEvent",
         "Read Entities", 50, false, ""},
        {[] { DUNXEndReadEntitiesTaskEvent::Fire(DUNI_E_ERROR); }, "Entity Reading",
         "Read Entities", 50, true, ""},
        {[] { DUNXStartTranslateRepairEvent::Fire("Sew", "Face", 7); },
         "DUNXStartTranslateRepairEvent", "Repair", 30, false, ""},
        {[] { DUNXStartTranslateRepairEvent e("Sew", "Face", 7, DUNXLevelDebug);
              DUNXEventBus::Fire(e); }, "DUNXStartTranslateRepairEvent", "Repair", 10, false, ""},
        {[] { DUNXStartTaskEvent::Fire("Translation", "Translation", DUNXLevelInfo); },
         "Translation", "Translation", 50, false, ""},
        {[] { DUNXStartPostprocessDocumentEvent::Fire(); },
         "Start Target Document Postprocessing", "Target Document Postprocessing", 50, false, ""},
        {[] { DUNXEndPostprocessDocumentEvent::Fire(DUNI_S_NO_ENTITY); },
         "Target Document Postprocessing", "Target Document Postprocessing", 50, true,
         kRule + "\nTarget Document Postprocessing Result : No Entity to Translate\n" + kRule +
             "\n"},
        {[] { DUNXStartWriteFileTaskEvent::Fire(DUNXFilePath("out/a.obj")); }, "Writing File",
         "File Write", 50, false, ""},
        {[] { DUNXEndWriteFileTaskEvent::Fire(DUNXString("a.obj"), DUNI_S_SUCCESS); },
         "File Write", "File Write", 50, true, written + kRule + "\n"},
        {[] { DUNXEndWriteFileTaskEvent::Fire(DUNXString(""), DUNI_S_SUCCESS); }, "File Write",
         "File Write", 50, true, "Output File is Successfully Written\n" + kRule + "\n"},
        {[] { DUNXEndWriteFileTaskEvent::Fire(DUNXString(), DUNI_A_ABORTED); }, "File Write",
         "File Write", 50, true, "Output File Writting is Aborted\n" + kRule + "\n"},
        {[] { DUNXEndWriteFileTaskEvent::Fire(DUNXString("b"), DUNI_E_FILE_SAVE); }, "File Write",
         "File Write", 50, true,
         "Output File \"b\" Writting has Failed with code16777231\n" + kRule + "\n"},
        {[] { DUNXEndTaskEvent::Fire(DUNI_E_FAIL, "Conversion", "Conversion", DUNXLevelInfo,
                                     true); },
         "Conversion", "Conversion", 50, true, ""},
        {[] { DUNXEndTaskEvent::Fire(DUNI_E_FAIL, "Step", "Id", DUNXLevelVerbose, false); }, "Step",
         "Id", 30, true, kRule + "\nStep Result : Failure\n" + kRule + "\n"},
        {[] { DUNXStartTaskEvent::Fire("", nullptr, DUNXLevelError); }, "<null>", "<null>", 80,
         false, ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows);
        TaskRecorder recorder;
        row.fire();
        ASSERT_EQ(recorder.seen.size(), 1u);
        const Seen& seen = recorder.seen[0];
        EXPECT_EQ(seen.name, row.name);
        EXPECT_EQ(seen.identifier, row.identifier);
        EXPECT_EQ(seen.level, row.level);
        EXPECT_TRUE(seen.timed && seen.stamped) << "task events are stamped by the bus";
        EXPECT_EQ(seen.end, row.end);
        EXPECT_EQ(seen.text, row.text);
    }
    TaskRecorder recorder;
    DUNXThirdPartyProgressEvent::Fire(0.25);
    ASSERT_EQ(recorder.seen.size(), 1u);
    EXPECT_EQ(recorder.seen[0].name + recorder.seen[0].text, "DUNXThirdPartyProgressEvent");
    EXPECT_EQ(recorder.seen[0].level, 50);
    EXPECT_FALSE(recorder.seen[0].timed || recorder.seen[0].stamped);
    EXPECT_EQ(DUNXThirdPartyProgressEvent(0.25).GetProgress(), 0.25);
}

TEST(DUNXTaskEvent, NamesAndIdentifiersAreCopiedAndOnlyReplacedByNonEmptyText) {
    DUNXEndTaskEvent event(DUNI_E_FAIL, "", nullptr, DUNXLevelInfo, false);
    DUNXString identifier("untouched");
    EXPECT_EQ(event.GetTaskIdentifier(identifier), DUNI_E_FAIL);
    EXPECT_STREQ(static_cast<const char*>(identifier), "untouched");
    EXPECT_TRUE(!event.GetEventName() && !event.GetTaskName() && !event.GetTaskIdentifier());
    char name[] = "Step";
    event.SetTaskName(name);
    event.SetTaskIdentifier(name);
    name[0] = 'X'; // the event holds copies
    event.SetTaskName("");
    event.SetTaskIdentifier(nullptr);
    EXPECT_EQ(event.GetTaskIdentifier(identifier), DUNI_S_SUCCESS);
    EXPECT_STREQ(static_cast<const char*>(identifier), "Step");
    EXPECT_STREQ(event.GetTaskName(), "Step");
    EXPECT_EQ(event.GetEventName(), nullptr); // the task name is not the event name
    event.setTaskResult(DUNI_S_PARTIAL_SUCCESS);
    EXPECT_EQ(event.getTaskResult(), DUNI_S_PARTIAL_SUCCESS);

    DUNXStartConversionStageEvent stage(nullptr, 3, 12.5, false);
    EXPECT_TRUE(stage.GetStageName().equals("") && stage.GetStageIndex() == 3 &&
                stage.GetStagePercent() == 12.5 && !stage.GetLeaf() && !stage.GetFinished());
    stage.SetFinished();
    EXPECT_TRUE(stage.GetFinished());
    DUNXStartTranslateRepairEvent repair("Sew", nullptr, 9, DUNXLevelInfo);
    EXPECT_TRUE(repair.GetRepair().equals("Sew") && repair.GetEntity().equals("") &&
                repair.GetEntityNumber() == 9);
    EXPECT_TRUE(DUNXStartReadFileTaskEvent(nullptr).GetFileName().equals(""));
    EXPECT_TRUE(DUNXStartWriteFileTaskEvent(DUNXFilePath("a/b.obj"))
                    .GetFilePath()
                    .GetPath()
                    .equals("a\\b.obj"));
}

TEST(DUNXTaskEvent, StartProductListsOptionsInOrderAndTheEnvironmentOnRequest) {
    ScopedEnvironmentVariable trace("DUNXTrace", "Files,UserEnv");
    ScopedEnvironmentVariable marker("DUNX_TASK_EVENT_MARKER", "a=b");
    DUNXStartProductEvent event("", "Viewer");
    EXPECT_EQ(event.AddOption("Write.Units", "mm"), DUNI_S_SUCCESS);
    EXPECT_EQ(event.AddOption("A", nullptr), DUNI_S_SUCCESS);
    EXPECT_EQ(event.AddOption("Write.Units", "inch"), DUNI_S_SUCCESS); // replaces, keeps its place
    EXPECT_EQ(event.AddOption("", "x"), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(event.AddOption(nullptr, "x"), DUNI_E_INVALID_ARGUMENT);
    const std::string text = textOf(event);
    const std::string head = "Application          : Viewer\n"
                             "Write.Units          : inch\n"
                             "A                    : \n"
                             "=== Environment Variables ===\n";
    EXPECT_EQ(text.substr(0, head.size()), head);
    EXPECT_NE(text.find("\nDUNX_TASK_EVENT_MARKER=a=b\n"), std::string::npos);
    EXPECT_NE(text.find("\nDUNXTrace=Files,UserEnv\n"), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - 31), "\n=============================\n");

    ScopedEnvironmentVariable plain("DUNXTrace", "userenv"); // the word is case-sensitive
    EXPECT_EQ(textOf(event), head.substr(0, head.size() - 30));
}

TEST(DUNXTaskEvent, EndOfTranslationAddsFinishTimeFailedEntitiesAndTheAssemblyLine) {
    const std::regex finish("Finish Time : [A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] "
                            "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] ([0-9]{4})\n");
    const std::string failure = kRule + "\nTranslation Result : Failure\n" + kRule + "\n";
    const struct {
        DUNIResult result;
        bool partInAssembly;
        int failed;
        std::string after; // the text after the finish time
    } rows[] = {
        {DUNI_S_SUCCESS, false, 4, kRule + "\nTranslation Result : Success\n" + kRule + "\n"},
        {DUNI_E_FAIL, false, 4, failure + "Failed Entities : 4\n"},
        {DUNI_E_FAIL, false, -1, failure},
        {DUNI_S_PARTIAL_SUCCESS, true, 0,
         kRule + "\nTranslation Result : Partial Success\n" + kRule +
             "\nFailed Entities : 0\nEnd Translation of Part Definition Document In Assembly\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const std::time_t before = std::time(nullptr);
        DUNXEndTranslationTaskEvent event(row.result, row.partInAssembly, row.failed);
        EXPECT_TRUE(event.GetFinishTime() >= before && event.GetFinishTime() <= std::time(nullptr));
        const std::string text = textOf(event);
        std::smatch match;
        ASSERT_TRUE(std::regex_search(text, match, finish)) << text;
        EXPECT_EQ(match.position(0), 0);
        EXPECT_EQ(std::stoi(match[1]), 1900 + std::localtime(&before)->tm_year);
        EXPECT_EQ(match.suffix().str(), row.after);
    }
    TaskRecorder recorder;
    DUNXEndTranslationTaskEvent::Fire(DUNI_E_FAIL, true);
    DUNXEndTranslationTaskEvent::Fire(DUNI_E_FAIL, false); // a long code: the count stays -1
    ASSERT_EQ(recorder.seen.size(), 2u);
    EXPECT_EQ(std::regex_replace(recorder.seen[0].text, finish, ""),
              failure + "End Translation of Part Definition Document In Assembly\n");
    EXPECT_EQ(std::regex_replace(recorder.seen[1].text, finish, ""), failure);
}

TEST(DUNXTaskEvent, EndOfReadingPrintsTheSourceHeaderPerModel) {
    const std::string banner =
        "-------------------------Source File Header Information-------------------------\n";
    DUNXFileHeader header;
    EXPECT_EQ(header.AddEntry(0, "Author", "x"), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(header.AddModel(), 0);
    DUNXEndReadFileTaskEvent event(DUNI_S_SUCCESS, &header);
    EXPECT_EQ(textOf(event), ""); // a model without entries prints nothing
    header.AddEntry(0, "Author", "J. Smith");
    header.AddEntry(0, "A label longer than twenty", "v");
    const std::string first = "Author               : J. Smith\n"
                              "A label longer than twenty : v\n";
    EXPECT_EQ(textOf(event), banner + first + kRule + "\n");
    EXPECT_EQ(header.AddModel(), 1);
    EXPECT_EQ(textOf(event), banner + "Model 1\n" + first + "Model 2\n" + kRule + "\n");
    header.AddEntry(1, "System", "CAD");
    EXPECT_EQ(textOf(event), banner + "Model 1\n" + first +
                                 "Model 2\nSystem               : CAD\n" + kRule + "\n");
    DUNXString label, value;
    EXPECT_EQ(header.GetEntry(1, 0, label, value), DUNI_S_SUCCESS);
    EXPECT_TRUE(label.equals("System") && value.equals("CAD"));
    EXPECT_EQ(header.GetEntry(1, 1, label, value), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(header.GetEntry(2, 0, label, value), DUNI_E_INVALID_ARGUMENT);
    EXPECT_EQ(header.GetEntryCount(0) + 10 * header.GetEntryCount(5) +
                  100 * header.GetTotalEntryCount(),
              302);
    EXPECT_TRUE(header.GetHeaderText(-1).equals(""));
    header.Clear();
    EXPECT_EQ(textOf(event), "");
}
