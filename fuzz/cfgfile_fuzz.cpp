// The configuration file loader and its typed getters over arbitrary text.
#include <dunx/DUNXCfgFile.h>

#include "FuzzInput.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dunx::fuzz::FuzzInput input(data, size);
    const std::string key = input.text(16);
    const std::string section = input.text(16);
    const std::string text = input.rest();
    auto load = [&text](DUNXCfgFile& into) {
        std::FILE* file =
            fmemopen(const_cast<char*>(text.data()), text.size() ? text.size() : 1, "r");
        if (!file)
            return false;
        into.Load(file);
        std::fclose(file);
        return true;
    };
    DUNXCfgFile config;
    if (!load(config))
        return 0;
    const int loadErrors = config.GetErrorCount(); // the typed getters below may add more
    for (int i = 0; i < config.GetErrorCount(); ++i)
        if (!config.GetErrorMessage(i))
            std::abort();
    if (config.GetErrorMessage(config.GetErrorCount()))
        std::abort(); // out of range must be null
    const char* sectionName = section.empty() ? nullptr : section.c_str();
    bool b = false;
    int n = 0;
    double d = 0;
    DUNXString s;
    for (int index = -1; index < 3; ++index) {
        config.GetBool(key.c_str(), b, index, sectionName);
        config.GetLogical(key.c_str(), n, index, sectionName);
        config.GetInt(key.c_str(), n, index, sectionName);
        config.GetDouble(key.c_str(), d, index, sectionName);
        config.GetString(key.c_str(), s, index, sectionName);
    }
    config.GetArraySize(key.c_str(), sectionName);
    config.ExistKey(key.c_str(), sectionName);
    for (int i = 0; i < config.GetSectionCount(); ++i) {
        DUNXCfgFileSection* each = config.GetSectionAt(i);
        for (int row = 0; each && row < each->GetRowCount(); ++row)
            if (DUNXCfgFileKey* entry = each->GetKey(row))
                entry->GetAllValues();
    }
    // A second load into the same object adds the same keys again after the
    // first ones, and text copied out of it outlives it.
    DUNXString copied;
    std::string copiedText;
    {
        DUNXCfgFile twice;
        if (!load(twice) || !load(twice))
            return 0;
        if (twice.GetSectionCount() != config.GetSectionCount() ||
            twice.GetErrorCount() != 2 * loadErrors)
            std::abort();
        for (int i = 0; i < config.GetSectionCount(); ++i) {
            const DUNXCfgFileSection* once = config.GetSectionAt(i);
            const DUNXCfgFileSection* both = twice.GetSectionAt(i);
            const int rows = once->GetRowCount();
            if (both->GetRowCount() != 2 * rows)
                std::abort();
            for (int row = 0; row < rows; ++row) {
                const DUNXCfgFileKey* first = both->GetKey(row);
                const DUNXCfgFileKey* again = both->GetKey(rows + row);
                if (!first->GetName().equals(again->GetName()) ||
                    !first->GetAllValues().equals(again->GetAllValues()) ||
                    !first->GetName().equals(once->GetKey(row)->GetName()))
                    std::abort();
                copied = *first->GetValue(first->GetNumValues() - 1);
                copiedText = copied.ToUtf8();
            }
        }
    }
    if (copied.ToUtf8() != copiedText)
        std::abort();
    return 0;
}
