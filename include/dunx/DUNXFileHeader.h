// DUNXFileHeader: what a reader found in the header of a source file.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <vector>

/// The header of a source file as labelled entries, per model (a file may hold
/// several). The read-file end event prints it into the log.
///
///     DUNXFileHeader header;
///     int model = header.AddModel();
///     header.AddEntry(model, "Author", "J. Smith");
///     header.GetHeaderText(model);   // => "Author               : J. Smith\n"
class DUNX_EXPORT DUNXFileHeader {
public:
    DUNXFileHeader();
    ~DUNXFileHeader();

    /// Adds a model without entries and returns its index (from 0).
    int AddModel();
    /// Adds an entry to `model`; `DUNI_E_INVALID_ARGUMENT` when `model` is out of range.
    DUNIResult AddEntry(int model, const DUNXString& label, const DUNXString& value);

    /// Number of models.
    int GetModelCount() const { return static_cast<int>(m_Models.size()); }
    /// Number of entries of `model`; 0 when out of range.
    int GetEntryCount(int model) const;
    /// Number of entries over all models.
    int GetTotalEntryCount() const;
    /// The `index`-th entry of `model`; `DUNI_E_INVALID_ARGUMENT` (outputs
    /// untouched) when either is out of range.
    DUNIResult GetEntry(int model, int index, DUNXString& label, DUNXString& value) const;
    /// The entries of `model`, one line each: the label left-aligned in 20
    /// columns, " : ", the value and "\n". "" when out of range.
    DUNXString GetHeaderText(int model) const;
    /// Removes every model.
    void Clear() { m_Models.clear(); }

private:
    struct Entry {
        DUNXString label;
        DUNXString value;
    };
    std::vector<std::vector<Entry>> m_Models;
};
