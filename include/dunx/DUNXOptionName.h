// DUNXOptionName: the key an option is created under.
#pragma once

#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

// Option keys are declared once, as a list of KEY(identifier, "key") lines
// that a component expands wherever it needs them:
//
//     #define XSTL_OPTION_KEYS(KEY) KEY(XStl_Import_Units, "/XStl/Import/Units") ...
//
//     struct StlKeys { XSTL_OPTION_KEYS(DUNX_DECLARE_OPTION_KEY) };        // header
//     #define STL_KEY(identifier, key) DUNX_DEFINE_OPTION_KEY(StlKeys, identifier, key)
//     XSTL_OPTION_KEYS(STL_KEY)                                             // one source file
//     const DUNXOptionKeyRow rows[] = {XSTL_OPTION_KEYS(DUNX_OPTION_KEY_ROW)};  // for the check
//
// The identifier of a key is the key without its leading '/', with every
// '/', '.', '|' and '!' turned into '_' (`DUNXOptionName::IsIdentifierOf`):
//     "/XCore/Import/CallAtProductLevel"   => XCore_Import_CallAtProductLevel
//     "/XGeneric/ConvertToSpline.true/X"   => XGeneric_ConvertToSpline_true_X
//     "HealBodyPostProcess|XGeneric"       => HealBodyPostProcess_XGeneric

/// Declares the constant `identifier` for `key` inside a class body.
#define DUNX_DECLARE_OPTION_KEY(identifier, key) static const DUNXOptionName identifier;
/// Defines the constant `Scope::identifier` for `key`, in one source file.
#define DUNX_DEFINE_OPTION_KEY(Scope, identifier, key) const DUNXOptionName Scope::identifier(key);
/// One `DUNXOptionKeyRow` of a list, for checking identifiers against keys.
#define DUNX_OPTION_KEY_ROW(identifier, key) {#identifier, key},

/// The keys that this library and the dunx translation driver read: the length
/// unit of STL parts, which carry none of their own.
#define DUNX_LIBRARY_OPTION_KEYS(KEY) KEY(XStl_Import_Unit, "/XStl/Import/Unit")

/// An identifier and the key it stands for.
struct DUNXOptionKeyRow {
    const char* identifier;
    const char* key;
};

/// Holds one option key. Options are built from option names so that the
/// family's keys are named constants rather than free text.
class DUNX_EXPORT DUNXOptionName {
public:
    /// The key `key`.
    explicit DUNXOptionName(const DUNXString& key);
    /// The key converted from narrow `key` (null gives the null string).
    explicit DUNXOptionName(const char* key);
    DUNXOptionName(const DUNXOptionName& other);
    DUNXOptionName& operator=(const DUNXOptionName& other);
    ~DUNXOptionName();

    /// The key.
    operator DUNXString() const { return m_Key; }
    /// The narrow key, identical to the text it was built from.
    operator const char*() const { return m_Key; }
    /// The key, without a copy.
    const DUNXString& GetKey() const { return m_Key; }

    /// True when `identifier` is `key` without its leading '/' and with every
    /// '/', '.', '|' and '!' turned into '_'; false when either is null.
    static bool IsIdentifierOf(const char* identifier, const char* key);

    DUNX_LIBRARY_OPTION_KEYS(DUNX_DECLARE_OPTION_KEY)

private:
    DUNXString m_Key;
};
