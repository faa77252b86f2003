// The translation-stage events: a translation announced as a nest of tasks.
//
// Product
//   Conversion
//     Options, Source Document Preprocessing, Read File, Read Entities,
//     Translation (with Repair stages), Target Document Postprocessing, File Write
//
// Each task is opened by a start event and closed by the end event with the
// same task identifier, which carries the task's result. Loggers print the
// texts below; the timing logger pairs starts and ends by identifier.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXEvent.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXFilePath.h>
#include <dunx/DUNXOptions.h>
#include <dunx/DUNXString.h>

#include <memory>

class DUNXFileHeader;

/// A task event: an event with a task name and a task identifier, stamped by
/// the bus with clock and time when it is fired (`IsTimed` is true).
class DUNX_EXPORT DUNXTaskEvent : public DUNXEvent {
public:
    ~DUNXTaskEvent() override;

    /// True: the bus stamps every task event.
    bool IsTimed() const override;
    /// Copies the identifier into `identifier`; `DUNI_E_FAIL`, leaving it
    /// alone, when the event has none.
    virtual DUNIResult GetTaskIdentifier(DUNXString& identifier) const;
    /// True for the events that close a task.
    virtual bool IsEndTask() const = 0;

    /// Replaces the task name with a copy; a null or empty name keeps the old one.
    void SetTaskName(const char* name);
    /// Replaces the identifier with a copy; a null or empty one keeps the old one.
    void SetTaskIdentifier(const char* identifier);
    /// The task name, or null.
    const char* GetTaskName() const { return m_TaskName.get(); }
    /// The identifier, or null: the narrow form of `GetTaskIdentifier`.
    const char* GetTaskIdentifier() const { return m_TaskIdentifier.get(); }

protected:
    /// Event name and task name `name`, identifier `identifier` (each left
    /// unset when null or empty), at `level`.
    DUNXTaskEvent(const char* name, const char* identifier, DUNXEventLevel level);
    DUNXTaskEvent(const DUNXTaskEvent& other);

private:
    std::unique_ptr<char[]> m_TaskName;
    std::unique_ptr<char[]> m_TaskIdentifier;
};

/// Opens a task; writes no text.
class DUNX_EXPORT DUNXStartTaskEvent : public DUNXTaskEvent {
public:
    DUNXStartTaskEvent(const char* name, const char* identifier, DUNXEventLevel level);
    ~DUNXStartTaskEvent() override;
    /// False.
    bool IsEndTask() const override;
    /// Fires a start event of `name` and `identifier` at `level`.
    static void Fire(const char* name, const char* identifier, DUNXEventLevel level);
};

/// Closes a task and carries its result. Unless quiet it writes
///
///     --------------------------------------------------------------------------------
///     <event name> Result : <result message>
///     --------------------------------------------------------------------------------
class DUNX_EXPORT DUNXEndTaskEvent : public DUNXTaskEvent {
public:
    DUNXEndTaskEvent(const DUNIResult& result, const char* name, const char* identifier,
                     DUNXEventLevel level, bool quiet);
    ~DUNXEndTaskEvent() override;
    /// True.
    bool IsEndTask() const override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;

    /// Replaces the result.
    void setTaskResult(const DUNIResult& result) { m_Result = result; }
    /// The task's result.
    DUNIResult getTaskResult() const { return m_Result; }
    /// True when the event writes no text of its own.
    bool IsQuiet() const { return m_Quiet; }

    /// Fires an end event with these values.
    static void Fire(const DUNIResult& result, const char* name, const char* identifier,
                     DUNXEventLevel level, bool quiet);

protected:
    /// Writes the three lines above, whatever the quiet flag.
    void WriteResultLines(DUNXOutputStream* stream);

private:
    DUNIResult m_Result;
    bool m_Quiet;
};

// --- Product ----------------------------------------------------------------------

/// "Start Product", identifier "Product", level 50. Writes one field line per
/// non-empty name and per added option, then, when the environment variable
/// `DUNXTrace` contains "UserEnv", the whole process environment:
///
///     Product              : <product>
///     Application          : <application>
///     <option name>        : <value>
///     === Environment Variables ===
///     NAME=value ...
///     =============================
class DUNX_EXPORT DUNXStartProductEvent : public DUNXStartTaskEvent {
public:
    /// Null names are taken as empty.
    DUNXStartProductEvent(const char* product, const char* application);
    ~DUNXStartProductEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;

    /// Adds an option line (a string option; a later one of the same name
    /// replaces it). `DUNI_E_INVALID_ARGUMENT` for a null or empty name.
    DUNIResult AddOption(const char* name, const char* value);
    /// The product name ("" when none).
    const DUNXString& GetProductName() const { return m_Product; }
    /// The application name ("" when none).
    const DUNXString& GetApplicationName() const { return m_Application; }
    /// The options added, in the order they were added.
    const DUNXOptions& GetOptions() const { return m_Options; }

    /// Fires a start-of-product event without options.
    static void Fire(const char* product, const char* application);

private:
    DUNXString m_Product;
    DUNXString m_Application;
    DUNXOptions m_Options;
};

/// "Product End", identifier "Product", level 50. Writes
/// "Product Completed Successfully\n" for code 0, "Product Aborted\n" for
/// `DUNI_A_ABORTED`, else "Product Failed with code <code> (<message>)\n".
class DUNX_EXPORT DUNXEndProductEvent : public DUNXEndTaskEvent {
public:
    explicit DUNXEndProductEvent(const DUNIResult& result);
    ~DUNXEndProductEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    static void Fire(const DUNIResult& result);
};

// --- Conversion and options -----------------------------------------------------------

/// "DUNXStartConversionTaskEvent", identifier "Conversion", level 50; no text.
/// No class of its own closes it: fire `DUNXEndTaskEvent::Fire(result,
/// "Conversion", "Conversion", DUNXLevelInfo, true)`.
class DUNX_EXPORT DUNXStartConversionTaskEvent : public DUNXStartTaskEvent {
public:
    DUNXStartConversionTaskEvent();
    ~DUNXStartConversionTaskEvent() override;
    static void Fire();
};

/// "DUNXStartConversionStageEvent", no identifier (so never timed), level 50;
/// no text. Announces a stage of a conversion and its share of the work.
class DUNX_EXPORT DUNXStartConversionStageEvent : public DUNXStartTaskEvent {
public:
    /// `stageName` (null is taken as empty), the stage's index among its
    /// siblings, its share of the conversion in percent, and whether it has no
    /// stages of its own. Not finished yet.
    DUNXStartConversionStageEvent(const char* stageName, int stageIndex, double stagePercent,
                                  bool leaf);
    ~DUNXStartConversionStageEvent() override;

    const DUNXString& GetStageName() const { return m_StageName; }
    int GetStageIndex() const { return m_StageIndex; }
    double GetStagePercent() const { return m_StagePercent; }
    bool GetLeaf() const { return m_Leaf; }
    /// Marks the stage finished (a listener may do so).
    void SetFinished() { m_Finished = true; }
    bool GetFinished() const { return m_Finished; }

    static void Fire(const char* stageName, int stageIndex, double stagePercent, bool leaf);

private:
    DUNXString m_StageName;
    int m_StageIndex;
    double m_StagePercent;
    bool m_Leaf;
    bool m_Finished = false;
};

/// "DUNXStartOptionsTaskEvent", identifier "Options", level 50; no text.
class DUNX_EXPORT DUNXStartOptionsTaskEvent : public DUNXStartTaskEvent {
public:
    DUNXStartOptionsTaskEvent();
    ~DUNXStartOptionsTaskEvent() override;
    static void Fire();
};

/// "Options logging", identifier "Options", level 50; the end-of-task text.
class DUNX_EXPORT DUNXEndOptionsTaskEvent : public DUNXEndTaskEvent {
public:
    explicit DUNXEndOptionsTaskEvent(const DUNIResult& result);
    ~DUNXEndOptionsTaskEvent() override;
    static void Fire(const DUNIResult& result);
};

// --- Document preprocessing and postprocessing -------------------------------------------

/// "Start Source Document Preprocessing" (source) or "Start Target Document
/// Preprocessing", identifier "Source Document Preprocessing" or "Target
/// Document Preprocessing", level 50; no text.
class DUNX_EXPORT DUNXStartPreprocessDocumentEvent : public DUNXStartTaskEvent {
public:
    explicit DUNXStartPreprocessDocumentEvent(bool source);
    ~DUNXStartPreprocessDocumentEvent() override;
    static void Fire(bool source);
};

/// "Source Document Preprocessing" or "Target Document Preprocessing" as
/// event name and identifier, level 50; the end-of-task text.
class DUNX_EXPORT DUNXEndPreprocessDocumentEvent : public DUNXEndTaskEvent {
public:
    DUNXEndPreprocessDocumentEvent(const DUNIResult& result, bool source);
    ~DUNXEndPreprocessDocumentEvent() override;
    static void Fire(const DUNIResult& result, bool source);
};

/// "Start Target Document Postprocessing", identifier "Target Document
/// Postprocessing", level 50; no text.
class DUNX_EXPORT DUNXStartPostprocessDocumentEvent : public DUNXStartTaskEvent {
public:
    DUNXStartPostprocessDocumentEvent();
    ~DUNXStartPostprocessDocumentEvent() override;
    static void Fire();
};

/// "Target Document Postprocessing" as event name and identifier, level 50;
/// the end-of-task text.
class DUNX_EXPORT DUNXEndPostprocessDocumentEvent : public DUNXEndTaskEvent {
public:
    explicit DUNXEndPostprocessDocumentEvent(const DUNIResult& result);
    ~DUNXEndPostprocessDocumentEvent() override;
    static void Fire(const DUNIResult& result);
};

// --- Reading --------------------------------------------------------------------------

/// "DUNXStartReadFileTaskEvent", identifier "Read File", level 50; no text.
class DUNX_EXPORT DUNXStartReadFileTaskEvent : public DUNXStartTaskEvent {
public:
    /// The file about to be read (null is taken as empty).
    explicit DUNXStartReadFileTaskEvent(const char* fileName);
    explicit DUNXStartReadFileTaskEvent(const DUNXString& fileName);
    ~DUNXStartReadFileTaskEvent() override;
    /// The file name given.
    const DUNXString& GetFileName() const { return m_FileName; }
    static void Fire(const char* fileName);
    static void Fire(const DUNXString& fileName);

private:
    DUNXString m_FileName;
};

/// "File Reading", identifier "Read File", level 50. When `header` is given
/// and holds at least one entry over all its models it writes
///
///     -------------------------Source File Header Information-------------------------
///     Model 1                 (only when there are several models)
///     <that model's header text>
///     ...
///     --------------------------------------------------------------------------------
///
/// and nothing otherwise.
class DUNX_EXPORT DUNXEndReadFileTaskEvent : public DUNXEndTaskEvent {
public:
    /// `header` is not copied: it must outlive the dispatch (null: no header).
    DUNXEndReadFileTaskEvent(const DUNIResult& result, const DUNXFileHeader* header);
    ~DUNXEndReadFileTaskEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    /// The header given, or null.
    const DUNXFileHeader* GetFileHeader() const { return m_Header; }
    static void Fire(const DUNIResult& result, const DUNXFileHeader* header);

private:
    const DUNXFileHeader* m_Header;
};

/// "DUNXStarReadEntitiesTaskEvent" (the missing "t" is kept: listeners match
/// on it), identifier "Read Entities", level 50; no text.
class DUNX_EXPORT DUNXStartReadEntitiesTaskEvent : public DUNXStartTaskEvent {
public:
    DUNXStartReadEntitiesTaskEvent();
    ~DUNXStartReadEntitiesTaskEvent() override;
    static void Fire();
};

/// "Entity Reading", identifier "Read Entities", level 50; no text.
class DUNX_EXPORT DUNXEndReadEntitiesTaskEvent : public DUNXEndTaskEvent {
public:
    explicit DUNXEndReadEntitiesTaskEvent(const DUNIResult& result);
    ~DUNXEndReadEntitiesTaskEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    static void Fire(const DUNIResult& result);
};

// --- Translation ---------------------------------------------------------------------

/// "DUNXStartTranslateRepairEvent", identifier "Repair" (which the timing
/// logger never times), at the given level; no text. Announces one repair of
/// an entity during translation.
class DUNX_EXPORT DUNXStartTranslateRepairEvent : public DUNXStartTaskEvent {
public:
    /// The repair made, the entity repaired and the entity's number (null
    /// texts are taken as empty).
    DUNXStartTranslateRepairEvent(const char* repair, const char* entity, int entityNumber,
                                  DUNXEventLevel level);
    ~DUNXStartTranslateRepairEvent() override;
    const DUNXString& GetRepair() const { return m_Repair; }
    const DUNXString& GetEntity() const { return m_Entity; }
    int GetEntityNumber() const { return m_EntityNumber; }
    /// Fires one at level 30 (verbose).
    static void Fire(const char* repair, const char* entity, int entityNumber);

private:
    DUNXString m_Repair;
    DUNXString m_Entity;
    int m_EntityNumber;
};

/// "Translation" as event name and identifier, level 50. Writes
///
///     Finish Time : <asctime of the time the event was made>
///     <the end-of-task text>
///     Failed Entities : <count>        (result not a complete success, count not -1)
///     End Translation of Part Definition Document In Assembly   (when that flag is set)
class DUNX_EXPORT DUNXEndTranslationTaskEvent : public DUNXEndTaskEvent {
public:
    /// `partInAssembly`: the translated document is a part definition inside an
    /// assembly. `failedEntities` -1 means "not counted". The finish time is
    /// taken now.
    DUNXEndTranslationTaskEvent(const DUNIResult& result, bool partInAssembly, int failedEntities);
    ~DUNXEndTranslationTaskEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    bool GetPartInAssembly() const { return m_PartInAssembly; }
    int GetFailedEntities() const { return m_FailedEntities; }
    /// Calendar seconds at which the event was made.
    long long GetFinishTime() const { return m_FinishTime; }

    /// Fire one with the failed-entity count -1.
    static void Fire(const DUNIResult& result, bool partInAssembly);
    static void Fire(long resultCode, bool partInAssembly);

private:
    bool m_PartInAssembly;
    int m_FailedEntities;
    long long m_FinishTime;
};

// --- Writing -------------------------------------------------------------------------

/// "Writing File", identifier "File Write", level 50; no text.
class DUNX_EXPORT DUNXStartWriteFileTaskEvent : public DUNXStartTaskEvent {
public:
    explicit DUNXStartWriteFileTaskEvent(const DUNXFilePath& path);
    ~DUNXStartWriteFileTaskEvent() override;
    /// The path given.
    const DUNXFilePath& GetFilePath() const { return m_Path; }
    static void Fire(const DUNXFilePath& path);

private:
    DUNXFilePath m_Path;
};

/// "File Write" as event name and identifier, level 50. Writes
///
///     Output File "<name>" is Successfully Written      (code 0; no quoted name when empty)
///     Output File "<name>" Writting is Aborted           (DUNI_A_ABORTED)
///     Output File "<name>" Writting has Failed with code<code>
///     --------------------------------------------------------------------------------
///
/// "Writting" and the missing blank before the code are kept: log readers match them.
class DUNX_EXPORT DUNXEndWriteFileTaskEvent : public DUNXEndTaskEvent {
public:
    DUNXEndWriteFileTaskEvent(const DUNXString& fileName, const DUNIResult& result);
    ~DUNXEndWriteFileTaskEvent() override;
    void GetFormattedDescription(DUNXOutputStream* stream) override;
    const DUNXString& GetFileName() const { return m_FileName; }
    static void Fire(const DUNXString& fileName, const DUNIResult& result);

private:
    DUNXString m_FileName;
};

// --- Progress ------------------------------------------------------------------------

/// "DUNXThirdPartyProgressEvent", level 50, not timed, no text: the progress of
/// a third-party component working inside a translation.
class DUNX_EXPORT DUNXThirdPartyProgressEvent : public DUNXEvent {
public:
    explicit DUNXThirdPartyProgressEvent(double progress);
    ~DUNXThirdPartyProgressEvent() override;
    /// The progress value given.
    double GetProgress() const { return m_Progress; }
    /// Fires one carrying `progress`.
    static void Fire(double progress);

private:
    double m_Progress;
};
