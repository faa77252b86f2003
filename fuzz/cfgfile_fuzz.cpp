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
    std::FILE* file = fmemopen(const_cast<char*>(text.data()), text.size() ? text.size() : 1, "r");
    if (!file)
        return 0;
    DUNXCfgFile config;
    config.Load(file);
    std::fclose(file);
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
    return 0;
}
