#include <dunx/DUNXTaskEvent.h>

#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXEventBus.h>
#include <dunx/DUNXFileHeader.h>
#include <dunx/DUNXStreamFormatter.h>

#include "internal/Text.h"
#include "platform/Platform.h"

#include <cstdio>
#include <ctime>
#include <utility>

using dunx::internal::CopyName;

namespace {

constexpr int kSideNameSize = 128; // the "Source"/"Target" names are made in a buffer this big

// "Source" when `source` is true, "Target" otherwise, put into `pattern`.
struct SideName {
    SideName(const char* pattern, bool source) {
        std::snprintf(text, sizeof text, pattern, source ? "Source" : "Target");
    }
    char text[kSideNameSize];
};

void writeRule(DUNXStreamFormatter& out) {
    static const char rule[] = "----------------------------------------"
                               "----------------------------------------";
    static_assert(sizeof rule == 81, "a rule is 80 dashes");
    out << rule << DUNXLineEnd();
}

void writeField(DUNXStreamFormatter& out, const char* label, const DUNXString& value) {
    out << DUNXStreamFormatter::format("%-20s : ", label) << value << DUNXLineEnd();
}

DUNXString textOrEmpty(const char* text) {
    return DUNXString(text ? text : "");
}

template <class Event, class... Args> void send(Args&&... args) {
    Event event(std::forward<Args>(args)...);
    DUNXEventBus::GetEventBus().Send(event);
}

} // namespace

// --- DUNXTaskEvent -------------------------------------------------------------

DUNXTaskEvent::DUNXTaskEvent(const char* name, const char* identifier, DUNXEventLevel level)
    : DUNXEvent(nullptr, level) {
    SetEventName(name);
    SetTaskName(name);
    SetTaskIdentifier(identifier);
}

DUNXTaskEvent::DUNXTaskEvent(const DUNXTaskEvent& other)
    : DUNXEvent(other), m_TaskName(CopyName(other.m_TaskName.get())),
      m_TaskIdentifier(CopyName(other.m_TaskIdentifier.get())) {}

DUNXTaskEvent::~DUNXTaskEvent() = default;

bool DUNXTaskEvent::IsTimed() const {
    return true;
}

DUNIResult DUNXTaskEvent::GetTaskIdentifier(DUNXString& identifier) const {
    if (!m_TaskIdentifier)
        return DUNI_E_FAIL;
    identifier = DUNXString(m_TaskIdentifier.get());
    return DUNI_S_SUCCESS;
}

void DUNXTaskEvent::SetTaskName(const char* name) {
    if (name && *name)
        m_TaskName = CopyName(name);
}

void DUNXTaskEvent::SetTaskIdentifier(const char* identifier) {
    if (identifier && *identifier)
        m_TaskIdentifier = CopyName(identifier);
}

// --- DUNXStartTaskEvent / DUNXEndTaskEvent -----------------------------------------

DUNXStartTaskEvent::DUNXStartTaskEvent(const char* name, const char* identifier,
                                       DUNXEventLevel level)
    : DUNXTaskEvent(name, identifier, level) {}

DUNXStartTaskEvent::~DUNXStartTaskEvent() = default;

bool DUNXStartTaskEvent::IsEndTask() const {
    return false;
}

void DUNXStartTaskEvent::Fire(const char* name, const char* identifier, DUNXEventLevel level) {
    send<DUNXStartTaskEvent>(name, identifier, level);
}

DUNXEndTaskEvent::DUNXEndTaskEvent(const DUNIResult& result, const char* name,
                                   const char* identifier, DUNXEventLevel level, bool quiet)
    : DUNXTaskEvent(name, identifier, level), m_Result(result), m_Quiet(quiet) {}

DUNXEndTaskEvent::~DUNXEndTaskEvent() = default;

bool DUNXEndTaskEvent::IsEndTask() const {
    return true;
}

void DUNXEndTaskEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    if (!m_Quiet)
        WriteResultLines(stream);
}

void DUNXEndTaskEvent::WriteResultLines(DUNXOutputStream* stream) {
    DUNXStreamFormatter out(stream);
    const char* name = GetEventName();
    writeRule(out);
    out << (name ? name : "") << " Result : " << m_Result.GetMessage() << DUNXLineEnd();
    writeRule(out);
}

void DUNXEndTaskEvent::Fire(const DUNIResult& result, const char* name, const char* identifier,
                            DUNXEventLevel level, bool quiet) {
    send<DUNXEndTaskEvent>(result, name, identifier, level, quiet);
}

// --- Product -----------------------------------------------------------------------

DUNXStartProductEvent::DUNXStartProductEvent(const char* product, const char* application)
    : DUNXStartTaskEvent("Start Product", "Product", DUNXLevelInfo),
      m_Product(textOrEmpty(product)), m_Application(textOrEmpty(application)) {}

DUNXStartProductEvent::~DUNXStartProductEvent() = default;

DUNIResult DUNXStartProductEvent::AddOption(const char* name, const char* value) {
    if (!name || !*name)
        return DUNI_E_INVALID_ARGUMENT;
    return m_Options.AddOption(name, value ? value : "");
}

void DUNXStartProductEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    DUNXStreamFormatter out(stream);
    if (m_Product.length() > 0)
        writeField(out, "Product", m_Product);
    if (m_Application.length() > 0)
        writeField(out, "Application", m_Application);
    m_Options.InitEnumeration();
    for (DUNXOption* option = nullptr; m_Options.GetNext(option).IsSuccess();) {
        DUNXValue value;
        DUNXString text;
        if (option->GetValue(value).IsSuccess())
            value.GetValue(text);
        writeField(out, dunx::internal::NarrowOrEmpty(option->GetNameText()), text);
    }
    DUNXString trace;
    if (DUNXEnvironment::GetVariable("DUNXTrace", trace).IsSuccess() &&
        trace.indexOf(DUNXString("UserEnv")) >= 0) {
        out << "=== Environment Variables ===" << DUNXLineEnd();
        for (char** variable = dunx::platform::EnvironmentBlock(); variable && *variable;
             ++variable)
            out << *variable << DUNXLineEnd();
        out << "=============================" << DUNXLineEnd();
    }
}

void DUNXStartProductEvent::Fire(const char* product, const char* application) {
    send<DUNXStartProductEvent>(product, application);
}

DUNXEndProductEvent::DUNXEndProductEvent(const DUNIResult& result)
    : DUNXEndTaskEvent(result, "Product End", "Product", DUNXLevelInfo, false) {}

DUNXEndProductEvent::~DUNXEndProductEvent() = default;

void DUNXEndProductEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    DUNXStreamFormatter out(stream);
    const DUNIResult result = getTaskResult();
    if (result == DUNI_S_SUCCESS)
        out << "Product Completed Successfully\n";
    else if (result == DUNI_A_ABORTED)
        out << "Product Aborted\n";
    else
        out << "Product Failed with code " << static_cast<long>(result) << " ("
            << result.GetMessage() << ")\n";
}

void DUNXEndProductEvent::Fire(const DUNIResult& result) {
    send<DUNXEndProductEvent>(result);
}

// --- Conversion and options ----------------------------------------------------------

DUNXStartConversionTaskEvent::DUNXStartConversionTaskEvent()
    : DUNXStartTaskEvent("DUNXStartConversionTaskEvent", "Conversion", DUNXLevelInfo) {}

DUNXStartConversionTaskEvent::~DUNXStartConversionTaskEvent() = default;

void DUNXStartConversionTaskEvent::Fire() {
    send<DUNXStartConversionTaskEvent>();
}

DUNXStartConversionStageEvent::DUNXStartConversionStageEvent(const char* stageName, int stageIndex,
                                                             double stagePercent, bool leaf)
    : DUNXStartTaskEvent("DUNXStartConversionStageEvent", nullptr, DUNXLevelInfo),
      m_StageName(textOrEmpty(stageName)), m_StageIndex(stageIndex), m_StagePercent(stagePercent),
      m_Leaf(leaf) {}

DUNXStartConversionStageEvent::~DUNXStartConversionStageEvent() = default;

void DUNXStartConversionStageEvent::Fire(const char* stageName, int stageIndex, double stagePercent,
                                         bool leaf) {
    send<DUNXStartConversionStageEvent>(stageName, stageIndex, stagePercent, leaf);
}

DUNXStartOptionsTaskEvent::DUNXStartOptionsTaskEvent()
    : DUNXStartTaskEvent("DUNXStartOptionsTaskEvent", "Options", DUNXLevelInfo) {}

DUNXStartOptionsTaskEvent::~DUNXStartOptionsTaskEvent() = default;

void DUNXStartOptionsTaskEvent::Fire() {
    send<DUNXStartOptionsTaskEvent>();
}

DUNXEndOptionsTaskEvent::DUNXEndOptionsTaskEvent(const DUNIResult& result)
    : DUNXEndTaskEvent(result, "Options logging", "Options", DUNXLevelInfo, false) {}

DUNXEndOptionsTaskEvent::~DUNXEndOptionsTaskEvent() = default;

void DUNXEndOptionsTaskEvent::Fire(const DUNIResult& result) {
    send<DUNXEndOptionsTaskEvent>(result);
}

// --- Document preprocessing and postprocessing ---------------------------------------

DUNXStartPreprocessDocumentEvent::DUNXStartPreprocessDocumentEvent(bool source)
    : DUNXStartTaskEvent(SideName("Start %s Document Preprocessing", source).text,
                         SideName("%s Document Preprocessing", source).text, DUNXLevelInfo) {}

DUNXStartPreprocessDocumentEvent::~DUNXStartPreprocessDocumentEvent() = default;

void DUNXStartPreprocessDocumentEvent::Fire(bool source) {
    send<DUNXStartPreprocessDocumentEvent>(source);
}

DUNXEndPreprocessDocumentEvent::DUNXEndPreprocessDocumentEvent(const DUNIResult& result,
                                                               bool source)
    : DUNXEndTaskEvent(result, SideName("%s Document Preprocessing", source).text,
                       SideName("%s Document Preprocessing", source).text, DUNXLevelInfo, false) {}

DUNXEndPreprocessDocumentEvent::~DUNXEndPreprocessDocumentEvent() = default;

void DUNXEndPreprocessDocumentEvent::Fire(const DUNIResult& result, bool source) {
    send<DUNXEndPreprocessDocumentEvent>(result, source);
}

DUNXStartPostprocessDocumentEvent::DUNXStartPostprocessDocumentEvent()
    : DUNXStartTaskEvent("Start Target Document Postprocessing", "Target Document Postprocessing",
                         DUNXLevelInfo) {}

DUNXStartPostprocessDocumentEvent::~DUNXStartPostprocessDocumentEvent() = default;

void DUNXStartPostprocessDocumentEvent::Fire() {
    send<DUNXStartPostprocessDocumentEvent>();
}

DUNXEndPostprocessDocumentEvent::DUNXEndPostprocessDocumentEvent(const DUNIResult& result)
    : DUNXEndTaskEvent(result, "Target Document Postprocessing", "Target Document Postprocessing",
                       DUNXLevelInfo, false) {}

DUNXEndPostprocessDocumentEvent::~DUNXEndPostprocessDocumentEvent() = default;

void DUNXEndPostprocessDocumentEvent::Fire(const DUNIResult& result) {
    send<DUNXEndPostprocessDocumentEvent>(result);
}

// --- Reading -------------------------------------------------------------------------

DUNXStartReadFileTaskEvent::DUNXStartReadFileTaskEvent(const char* fileName)
    : DUNXStartReadFileTaskEvent(textOrEmpty(fileName)) {}

DUNXStartReadFileTaskEvent::DUNXStartReadFileTaskEvent(const DUNXString& fileName)
    : DUNXStartTaskEvent("DUNXStartReadFileTaskEvent", "Read File", DUNXLevelInfo),
      m_FileName(fileName) {}

DUNXStartReadFileTaskEvent::~DUNXStartReadFileTaskEvent() = default;

void DUNXStartReadFileTaskEvent::Fire(const char* fileName) {
    send<DUNXStartReadFileTaskEvent>(fileName);
}

void DUNXStartReadFileTaskEvent::Fire(const DUNXString& fileName) {
    send<DUNXStartReadFileTaskEvent>(fileName);
}

DUNXEndReadFileTaskEvent::DUNXEndReadFileTaskEvent(const DUNIResult& result,
                                                   const DUNXFileHeader* header)
    : DUNXEndTaskEvent(result, "File Reading", "Read File", DUNXLevelInfo, false),
      m_Header(header) {}

DUNXEndReadFileTaskEvent::~DUNXEndReadFileTaskEvent() = default;

void DUNXEndReadFileTaskEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    if (!m_Header || m_Header->GetTotalEntryCount() < 1)
        return;
    DUNXStreamFormatter out(stream);
    out << "-------------------------Source File Header Information-------------------------"
        << DUNXLineEnd();
    const int models = m_Header->GetModelCount();
    for (int model = 0; model < models; ++model) {
        if (models > 1)
            out << "Model " << model + 1 << DUNXLineEnd();
        out << m_Header->GetHeaderText(model);
    }
    writeRule(out);
}

void DUNXEndReadFileTaskEvent::Fire(const DUNIResult& result, const DUNXFileHeader* header) {
    send<DUNXEndReadFileTaskEvent>(result, header);
}

DUNXStartReadEntitiesTaskEvent::DUNXStartReadEntitiesTaskEvent()
    : DUNXStartTaskEvent("DUNXStarReadEntitiesTaskEvent", "Read Entities", DUNXLevelInfo) {}

DUNXStartReadEntitiesTaskEvent::~DUNXStartReadEntitiesTaskEvent() = default;

void DUNXStartReadEntitiesTaskEvent::Fire() {
    send<DUNXStartReadEntitiesTaskEvent>();
}

DUNXEndReadEntitiesTaskEvent::DUNXEndReadEntitiesTaskEvent(const DUNIResult& result)
    : DUNXEndTaskEvent(result, "Entity Reading", "Read Entities", DUNXLevelInfo, false) {}

DUNXEndReadEntitiesTaskEvent::~DUNXEndReadEntitiesTaskEvent() = default;

void DUNXEndReadEntitiesTaskEvent::GetFormattedDescription(DUNXOutputStream*) {}

void DUNXEndReadEntitiesTaskEvent::Fire(const DUNIResult& result) {
    send<DUNXEndReadEntitiesTaskEvent>(result);
}

// --- Translation -----------------------------------------------------------------------

DUNXStartTranslateRepairEvent::DUNXStartTranslateRepairEvent(const char* repair, const char* entity,
                                                             int entityNumber, DUNXEventLevel level)
    : DUNXStartTaskEvent("DUNXStartTranslateRepairEvent", "Repair", level),
      m_Repair(textOrEmpty(repair)), m_Entity(textOrEmpty(entity)), m_EntityNumber(entityNumber) {}

DUNXStartTranslateRepairEvent::~DUNXStartTranslateRepairEvent() = default;

void DUNXStartTranslateRepairEvent::Fire(const char* repair, const char* entity, int entityNumber) {
    send<DUNXStartTranslateRepairEvent>(repair, entity, entityNumber, DUNXLevelVerbose);
}

DUNXEndTranslationTaskEvent::DUNXEndTranslationTaskEvent(const DUNIResult& result,
                                                         bool partInAssembly, int failedEntities)
    : DUNXEndTaskEvent(result, "Translation", "Translation", DUNXLevelInfo, false),
      m_PartInAssembly(partInAssembly), m_FailedEntities(failedEntities),
      m_FinishTime(dunx::platform::CurrentTime()) {}

DUNXEndTranslationTaskEvent::~DUNXEndTranslationTaskEvent() = default;

void DUNXEndTranslationTaskEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    {
        DUNXStreamFormatter out(stream);
        const std::time_t finish = static_cast<std::time_t>(m_FinishTime);
        const std::tm* local = std::localtime(&finish);
        // asctime's text ends with its own newline.
        out << "Finish Time : " << (local ? std::asctime(local) : "\n");
    }
    DUNXEndTaskEvent::GetFormattedDescription(stream);
    DUNXStreamFormatter out(stream);
    if (!getTaskResult().IsCompleteSuccess() && m_FailedEntities != -1)
        out << "Failed Entities : " << m_FailedEntities << DUNXLineEnd();
    if (m_PartInAssembly)
        out << "End Translation of Part Definition Document In Assembly" << DUNXLineEnd();
}

void DUNXEndTranslationTaskEvent::Fire(const DUNIResult& result, bool partInAssembly) {
    send<DUNXEndTranslationTaskEvent>(result, partInAssembly, -1);
}

void DUNXEndTranslationTaskEvent::Fire(long resultCode, bool partInAssembly) {
    send<DUNXEndTranslationTaskEvent>(DUNIResult(resultCode), partInAssembly, -1);
}

// --- Writing -------------------------------------------------------------------------

DUNXStartWriteFileTaskEvent::DUNXStartWriteFileTaskEvent(const DUNXFilePath& path)
    : DUNXStartTaskEvent("Writing File", "File Write", DUNXLevelInfo), m_Path(path) {}

DUNXStartWriteFileTaskEvent::~DUNXStartWriteFileTaskEvent() = default;

void DUNXStartWriteFileTaskEvent::Fire(const DUNXFilePath& path) {
    send<DUNXStartWriteFileTaskEvent>(path);
}

DUNXEndWriteFileTaskEvent::DUNXEndWriteFileTaskEvent(const DUNXString& fileName,
                                                     const DUNIResult& result)
    : DUNXEndTaskEvent(result, "File Write", "File Write", DUNXLevelInfo, false),
      m_FileName(fileName) {}

DUNXEndWriteFileTaskEvent::~DUNXEndWriteFileTaskEvent() = default;

void DUNXEndWriteFileTaskEvent::GetFormattedDescription(DUNXOutputStream* stream) {
    DUNXStreamFormatter out(stream);
    out << "Output File ";
    if (m_FileName.length() > 0)
        out << "\"" << m_FileName << "\" ";
    const DUNIResult result = getTaskResult();
    if (result == DUNI_S_SUCCESS)
        out << "is Successfully Written\n";
    else if (result == DUNI_A_ABORTED)
        out << "Writting is Aborted\n";
    else
        out << "Writting has Failed with code" << static_cast<long>(result) << DUNXLineEnd();
    writeRule(out);
}

void DUNXEndWriteFileTaskEvent::Fire(const DUNXString& fileName, const DUNIResult& result) {
    send<DUNXEndWriteFileTaskEvent>(fileName, result);
}

// --- Progress ------------------------------------------------------------------------

DUNXThirdPartyProgressEvent::DUNXThirdPartyProgressEvent(double progress)
    : DUNXEvent("DUNXThirdPartyProgressEvent", DUNXLevelInfo), m_Progress(progress) {}

DUNXThirdPartyProgressEvent::~DUNXThirdPartyProgressEvent() = default;

void DUNXThirdPartyProgressEvent::Fire(double progress) {
    send<DUNXThirdPartyProgressEvent>(progress);
}
