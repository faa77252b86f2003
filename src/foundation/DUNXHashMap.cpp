#include <dunx/DUNXHashMap.h>

#include <cwctype>

unsigned DUNXStringHashIgnoreCase::operator()(const DUNXString& text) const {
    unsigned hash = 0;
    for (int i = 0; i < text.length(); ++i)
        hash =
            hash * 33u + static_cast<unsigned short>(std::towlower(static_cast<wint_t>(text[i])));
    return hash;
}
