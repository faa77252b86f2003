// DUNXEnvironment: the process environment, read live or as a snapshot.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXProperties.h>
#include <dunx/DUNXString.h>

/// Reads and sets environment variables. Every switch of the library is an
/// environment variable read through here. Names compare without regard to case.
class DUNX_EXPORT DUNXEnvironment : public DUNXProperties {
public:
    /// A snapshot of the whole environment, made on the first call and never
    /// refreshed: later `PutVariable` calls do not show in it.
    static const DUNXEnvironment* GetEnv();

    /// Reads the live environment: the first variable whose name equals `name`
    /// ignoring case gives its text to `value`. `DUNI_E_FAIL`, with `value`
    /// untouched, when there is none.
    static DUNIResult GetVariable(const DUNXString& name, DUNXString& value);
    /// Reads the variable as a boolean: "True", "Yes", "On" (any case) are
    /// true; every other text, and an absent variable, is false. `value` is
    /// always written; the result is the lookup's (`DUNI_E_FAIL` when absent),
    /// so "maybe" is success with false.
    static DUNIResult GetVariable(const DUNXString& name, bool& value);
    /// Sets `name` to `value` and announces "Environment variable: NAME=value"
    /// on the information channel. The built text is read as a printf format
    /// without arguments, so "%%" sets a single '%' (other conversions stay as
    /// written). Each variable keeps its own value whatever is set later.
    /// `DUNI_E_FAIL` when the system refuses (an empty name, '=' in the name).
    static DUNIResult PutVariable(const DUNXString& name, const DUNXString& value);

    DUNXEnvironment(const DUNXEnvironment& other);
    ~DUNXEnvironment() override;

private:
    DUNXEnvironment();
};
