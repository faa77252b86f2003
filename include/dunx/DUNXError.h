// DUNXError, the error object carried by error events, and DUNXErrorTracker.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXDynamicArray.h>
#include <dunx/DUNXEvent.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

class DUNXOutputStream;

/// An error: a type code (0 means no error), a description and the source
/// position that reported it. Copied freely; error events refer to one.
class DUNX_EXPORT DUNXError {
public:
    /// The shared empty error (type 0) that error events built from a message refer to.
    static const DUNXError FAIL_ERROR;

    /// No error (type 0).
    constexpr DUNXError() = default;
    /// An error of `type` without description.
    explicit DUNXError(long type);
    /// An error of `type` described by `description`.
    DUNXError(long type, const DUNXString& description);
    virtual ~DUNXError();
    DUNXError(const DUNXError&) = default;
    DUNXError& operator=(const DUNXError&) = default;

    /// Replaces the description. Succeeds.
    virtual DUNIResult SetDescription(const DUNXString& description);
    /// Copies the description into `description`. Succeeds.
    virtual DUNIResult GetDescription(DUNXString& description) const;
    /// Writes nothing for type 0; otherwise the line "Error Description : " and
    /// the description, or "Error " and the type when there is no description.
    virtual void GetFormattedDescription(DUNXOutputStream* stream) const;

    /// The type code.
    long GetErrorType() const { return m_Type; }
    /// Records where the error was reported.
    void SetSourceFileInfo(const char* file, int line);
    /// The source file recorded (null string when none).
    const DUNXString& GetSourceFile() const { return m_SourceFile; }
    /// The source line recorded (0 when none).
    int GetSourceLine() const { return m_SourceLine; }

    /// Formats into a 1,024-byte buffer (longer text is cut) and fires an error
    /// event with it; a null `format` does nothing. The text is read a second
    /// time as a format with no arguments, so "%%" surviving the first pass
    /// prints as "%"; callers printing user text double its percent signs.
    /// (Any other conversion left after the first pass is printed as it stands.)
    static void Printf(const char* format, ...) DUNX_PRINTF_LIKE(1, 2);
    /// The last error kept by the tracker, or null (no tracker, or none kept).
    static const DUNXError* GetLastError();
    /// Number of errors kept by the tracker; 0 when there is no tracker.
    static int GetErrorCount();

private:
    long m_Type = 0;
    DUNXString m_Description;
    DUNXString m_SourceFile;
    int m_SourceLine = 0;
};

/// Keeps a copy of the error of every error event fired while it exists.
/// There is at most one, made by `Initialize`.
class DUNX_EXPORT DUNXErrorTracker : public DUNXEventListener {
public:
    /// Makes the tracker and registers it on the bus, unless there is one
    /// already. Succeeds either way.
    static DUNIResult Initialize();
    /// The tracker, or null before `Initialize` and after it was destroyed.
    static DUNXErrorTracker* GetInstance();
    /// Forgets the tracker's errors, if there is a tracker. Succeeds.
    static DUNIResult Reset();

    /// Takes a copy of the error of a "DUNXErrorEvent"; ignores other events.
    void HandleEvent(DUNXEvent& event) override;
    /// The `index`-th error kept, in firing order, or null when out of range.
    const DUNXError* GetError(int index) const;
    /// The last error kept, or null.
    const DUNXError* GetLastError() const;
    /// Number of errors kept.
    int GetErrorCount() const { return m_Errors.Size(); }
    /// Forgets every error kept.
    void ClearErrorList();

    /// Takes the tracker off the bus and clears `GetInstance()` (whichever
    /// tracker object is destroyed), then frees the list. `delete
    /// DUNXErrorTracker::GetInstance()` ends tracking; `Initialize` starts it anew.
    ~DUNXErrorTracker() override;

private:
    DUNXErrorTracker();
    DUNXDynamicArray<DUNXError> m_Errors;
};
