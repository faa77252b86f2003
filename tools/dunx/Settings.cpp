#include "Settings.h"

#include "System.h"

#include <dunx/DUNXCfgFile.h>
#include <dunx/DUNXEnvironment.h>
#include <dunx/DUNXOption.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>

// The module folder of an installed dunx relative to its own folder; "." where the
// modules are installed beside the program.
#ifndef DUNX_MODULE_FOLDER
#define DUNX_MODULE_FOLDER "."
#endif

namespace dunx::driver {
namespace {

bool isRegularFile(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isFolder(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

DUNIResult readConfigFile(const std::string& path, DUNXOptions& options,
                          ConfigFileFindings& findings, std::string& error) {
    struct stat info;
    if (::stat(path.c_str(), &info) != 0) {
        error = path + ": cannot read the configuration file: " + std::strerror(errno);
        return errno == ENOENT ? DUNI_E_FILE_NOT_FOUND : DUNI_E_FILE_OPEN;
    }
    if (S_ISDIR(info.st_mode)) {
        error = path + ": cannot read the configuration file: it is a folder";
        return DUNI_E_FILE_OPEN;
    }
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) {
        error = path + ": cannot read the configuration file: " + std::strerror(errno);
        return DUNI_E_FILE_OPEN;
    }
    DUNXCfgFile config;
    config.Load(file);
    std::fclose(file);

    for (int i = 0; i < config.GetErrorCount(); ++i)
        findings.syntaxErrors.push_back(config.GetErrorMessage(i));
    // The keys of the unnamed section, typed as DUNXOptions::ReadFromFile types
    // them; read here so that the valid lines count even when others are faulty.
    for (int s = 0; s < config.GetSectionCount(); ++s) {
        const DUNXCfgFileSection* section = config.GetSectionAt(s);
        for (int k = 0; k < section->GetRowCount(); ++k) {
            const DUNXCfgFileKey* key = section->GetKey(k);
            const std::string name = key->GetName().ToUtf8();
            if (section->GetName()[0] == '\0')
                options.AddOptionParseValue(name.c_str(), key->GetAllValues());
            else
                findings.ignoredKeys.push_back("[" + std::string(section->GetName()) + "] " + name);
        }
    }
    if (findings.syntaxErrors.empty())
        return DUNI_S_SUCCESS;
    error = path + ": " + findings.syntaxErrors.front();
    if (findings.syntaxErrors.size() > 1)
        error += " (and " + std::to_string(findings.syntaxErrors.size() - 1) +
                 " more; see dunx check-config " + path + ")";
    return DUNI_E_INVALID_FILE;
}

// Spellings people use that DUNIUnit does not know, mapped to ones it does.
struct Alias {
    const char* text;
    const char* unit;
};
constexpr Alias kUnitAliases[] = {
    {"millimetre", "mm"},  {"millimetres", "mm"}, {"millimeters", "mm"}, {"centimetre", "cm"},
    {"centimetres", "cm"}, {"centimeters", "cm"}, {"metre", "m"},        {"metres", "m"},
    {"meters", "m"},       {"kilometre", "km"},   {"kilometres", "km"},  {"kilometers", "km"},
    {"um", "micr"},        {"micron", "micr"},    {"microns", "micr"},   {"micrometre", "micr"},
    {"dm", "deci"},        {"inches", "in"},      {"feet", "ft"},        {"miles", "mile"},
    {"mil", "milliinch"},  {"thou", "milliinch"},
};

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) {
        return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    });
    return text;
}

} // namespace

DUNIResult BuildOptions(const CommandLine& line, DUNXOptions& options, ConfigFileFindings& findings,
                        std::string& error) {
    DUNIResult result = DUNI_S_SUCCESS;
    options.AddOption(kUnitOption, "millimeter");
    if (!line.configFile.empty()) {
        std::string configError;
        const DUNIResult read = readConfigFile(line.configFile, options, findings, configError);
        if (read.IsFailure() && error.empty()) {
            result = read;
            error = configError;
        }
    }
    for (const std::string& assignment : line.optionAssignments) {
        const std::size_t equal = assignment.find('=');
        const std::string name = assignment.substr(0, equal);
        if (equal == std::string::npos || name.find_first_not_of(" \t.") == std::string::npos) {
            if (error.empty()) {
                error = "option -O '" + assignment + "' is not NAME=VALUE";
                result = DUNI_E_INVALID_ARGUMENT;
            }
            continue;
        }
        options.AddOptionParseValue(name.c_str(),
                                    DUNXString::FromUtf8(assignment.c_str() + equal + 1));
    }
    if (!line.unit.empty())
        options.AddOption(kUnitOption, DUNXString::FromUtf8(line.unit.c_str()));
    return result;
}

std::string OptionText(const DUNXOption& option, bool useEnvironment) {
    DUNXValue::DUNXValueType type = DUNXValue::TypeUnknown;
    if (option.GetValueType(type).IsFailure())
        return "";
    char buffer[64];
    switch (type) {
    case DUNXValue::TypeBool: {
        bool value = false;
        option.GetValue(value, useEnvironment);
        return value ? "true" : "false";
    }
    case DUNXValue::TypeInt: {
        int value = 0;
        option.GetValue(value, useEnvironment);
        std::snprintf(buffer, sizeof buffer, "%d", value);
        return buffer;
    }
    case DUNXValue::TypeDouble: {
        double value = 0;
        option.GetValue(value, useEnvironment);
        std::snprintf(buffer, sizeof buffer, "%.17g", value);
        // The shortest text that reads back to the same double.
        for (int precision = 1; precision < 17; ++precision) {
            char shorter[64];
            std::snprintf(shorter, sizeof shorter, "%.*g", precision, value);
            if (std::strtod(shorter, nullptr) == value) {
                std::memcpy(buffer, shorter, sizeof shorter);
                break;
            }
        }
        return buffer;
    }
    default: {
        DUNXString value;
        option.GetValue(value, useEnvironment);
        return value.ToUtf8();
    }
    }
}

DUNIResult ResolveOutputUnit(const DUNXOptions& options, DUNIUnitValue& unit, std::string& name,
                             std::string& error) {
    DUNXOption* option = nullptr;
    if (options.GetOption(DUNXString(kUnitOption), option).IsFailure() || !option) {
        unit = DUNIUnitMillimeter;
        name = "millimeter";
        return DUNI_S_SUCCESS;
    }
    const std::string text = OptionText(*option, true);
    std::string lookup = lowerCase(text);
    for (const Alias& alias : kUnitAliases)
        if (lookup == alias.text)
            lookup = alias.unit;
    const DUNIUnit parsed(lookup.c_str());
    const DUNIUnitValue value = parsed;
    if (value == DUNIUnitUnknown || value == DUNIUnitModel) {
        DUNXString variable;
        const bool fromEnvironment =
            DUNXEnvironment::GetVariable(DUNXString(("DUNX" + std::string(kUnitOption)).c_str()),
                                         variable)
                .IsSuccess();
        error = "unknown unit '" + text + "' for " + kUnitOption +
                (fromEnvironment ? " (from the environment variable DUNXWriteLengthUnit)" : "") +
                "; use one of mm, cm, m, km, in, ft, mile, nm, micr, deci, milliinch, microinch";
        return DUNI_E_BAD_WRITE_UNIT;
    }
    unit = value;
    name = static_cast<const char*>(parsed);
    return DUNI_S_SUCCESS;
}

std::string ProgramFolder() {
    const std::string path = system::ProgramPath();
    const std::size_t slash = path.find_last_of(system::kPathSeparators);
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::vector<std::string> ModuleFolders() {
    const std::string program = ProgramFolder();
    if (program.empty())
        return {};
    std::vector<std::string> folders;
    const std::string installed = program + "/" + DUNX_MODULE_FOLDER;
    if (std::string(DUNX_MODULE_FOLDER) != "." && isFolder(installed))
        folders.push_back(system::ResolvedPath(installed));
    folders.push_back(program);
    return folders;
}

DUNIResult LocateTranslator(const std::string& request, std::string& path, std::string& error) {
    const std::string wanted = request.empty() ? kDefaultTranslator : request;
    if (wanted.find_first_of(system::kPathSeparators) != std::string::npos) {
        if (isRegularFile(wanted)) {
            path = system::ResolvedPath(wanted);
            return DUNI_S_SUCCESS;
        }
        error = "unknown translator '" + wanted + "': no such module file";
        return DUNI_E_INVALID_ARGUMENT;
    }
    const std::vector<std::string> folders = ModuleFolders();
    const std::string suffix = system::kModuleSuffix;
    for (const std::string& folder : folders)
        for (const std::string& candidate : {"lib" + wanted + suffix, wanted + suffix, wanted}) {
            if (isRegularFile(folder + "/" + candidate)) {
                path = folder + "/" + candidate;
                return DUNI_S_SUCCESS;
            }
        }
    // Name the modules that are there, so the user can pick one.
    std::vector<std::string> found;
    for (const std::string& folder : folders) {
        DIR* dir = ::opendir(folder.c_str());
        if (!dir)
            continue;
        while (const dirent* entry = ::readdir(dir)) {
            std::string file = entry->d_name;
            if (file.size() > suffix.size() &&
                file.compare(file.size() - suffix.size(), suffix.size(), suffix) == 0) {
                file.resize(file.size() - suffix.size());
                if (file == "DUNXBase")
                    continue;
                if (file.compare(0, 3, "lib") == 0 && file != "libDUNXBase")
                    found.push_back(file.substr(3));
                else if (file.compare(0, 3, "lib") != 0)
                    found.push_back(file);
            }
        }
        ::closedir(dir);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::string where;
    for (const std::string& folder : folders)
        where += (where.empty() ? "" : " or ") + folder;
    error = "unknown translator '" + wanted + "': no lib" + wanted + suffix + " in " +
            (where.empty() ? std::string("the program's folder") : where);
    if (!found.empty()) {
        error += " (available:";
        for (const std::string& name : found)
            error += " " + name;
        error += ")";
    }
    return DUNI_E_INVALID_ARGUMENT;
}

} // namespace dunx::driver
