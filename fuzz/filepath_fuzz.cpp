// DUNXFilePath from arbitrary text: queries, joins and extension changes (no file-system calls).
#include <dunx/DUNXFilePath.h>

#include "FuzzInput.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dunx::fuzz::FuzzInput input(data, size);
    const std::string text = input.text(300), other = input.text(300), ext = input.text(12);
    DUNXFilePath path(text.c_str()), base(other.c_str());
    path.GetPath();
    path.GetName();
    path.GetNameWithoutExtension();
    path.GetNameWithoutLastExtension();
    path.GetLastExtension();
    path.GetDirectory();
    path.IsValid();
    path.IsAbsolute();
    path.HasExtension(DUNXString(ext.c_str()));
    path.ReplaceLastExtension(ext.c_str()).GetPath();
    path.ResolveAgainst(base).GetPath();
    (path + DUNXString(other.c_str())).GetName();
    DUNXFilePath copy(path);
    copy.AddExtension(DUNXString(ext.c_str()));
    char narrow[300];
    unsigned short wide[300];
    copy.GetChars(narrow, input.below(300));
    copy.GetChars(wide, input.below(300));
    return 0;
}
