// UTF-8 in and out of DUNXString, independent of the C locale.
#include <dunx/DUNXString.h>

#include <cstring>
#include <vector>

namespace {

constexpr unsigned short kReplacement = 0xFFFD;

bool continuation(unsigned char byte, unsigned char low = 0x80, unsigned char high = 0xBF) {
    return byte >= low && byte <= high;
}

void appendCodePoint(std::vector<unsigned short>& units, unsigned long codePoint) {
    if (codePoint < 0x10000) {
        units.push_back(static_cast<unsigned short>(codePoint));
        return;
    }
    codePoint -= 0x10000;
    units.push_back(static_cast<unsigned short>(0xD800 + (codePoint >> 10)));
    units.push_back(static_cast<unsigned short>(0xDC00 + (codePoint & 0x3FF)));
}

void appendUtf8(std::string& out, unsigned long codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

} // namespace

DUNXString DUNXString::FromUtf8(const char* bytes, int length) {
    if (!bytes)
        return DUNXString();
    const auto* text = reinterpret_cast<const unsigned char*>(bytes);
    const std::size_t size = length < 0 ? std::strlen(bytes) : static_cast<std::size_t>(length);
    std::vector<unsigned short> units;
    units.reserve(size);
    for (std::size_t i = 0; i < size;) {
        const unsigned char lead = text[i];
        if (lead < 0x80) {
            if (lead == 0)
                break; // the units end at a terminator, as every string's do
            units.push_back(lead);
            ++i;
            continue;
        }
        // The sequence length and the range its second byte must fall in; the
        // narrowed ranges refuse overlong forms, surrogates and values past U+10FFFF.
        int count = 0;
        unsigned char low = 0x80, high = 0xBF;
        if (lead >= 0xC2 && lead <= 0xDF)
            count = 2;
        else if (lead >= 0xE0 && lead <= 0xEF)
            count = 3, low = lead == 0xE0 ? 0xA0 : 0x80, high = lead == 0xED ? 0x9F : 0xBF;
        else if (lead >= 0xF0 && lead <= 0xF4)
            count = 4, low = lead == 0xF0 ? 0x90 : 0x80, high = lead == 0xF4 ? 0x8F : 0xBF;
        if (count == 0) {
            units.push_back(kReplacement);
            ++i;
            continue;
        }
        unsigned long codePoint = lead & (0xFF >> (count + 1));
        int taken = 1;
        for (; taken < count && i + taken < size; ++taken) {
            const unsigned char next = text[i + taken];
            if (taken == 1 ? !continuation(next, low, high) : !continuation(next))
                break;
            codePoint = (codePoint << 6) | (next & 0x3F);
        }
        if (taken < count) {
            units.push_back(kReplacement); // one for the whole maximal subpart
            i += taken;
            continue;
        }
        appendCodePoint(units, codePoint);
        i += count;
    }
    auto owned = std::make_unique<unsigned short[]>(units.size() + 1);
    if (!units.empty()) // an empty vector may hold no buffer at all
        std::memcpy(owned.get(), units.data(), units.size() * sizeof(unsigned short));
    owned[units.size()] = 0;
    return DUNXString(std::move(owned), static_cast<int>(units.size()));
}

std::string DUNXString::ToUtf8() const {
    std::string out;
    out.reserve(static_cast<std::size_t>(m_Length));
    for (int i = 0; i < m_Length; ++i) {
        const unsigned short unit = m_Units[i];
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < m_Length && m_Units[i + 1] >= 0xDC00 &&
            m_Units[i + 1] <= 0xDFFF) {
            appendUtf8(out, 0x10000 + ((unit - 0xD800UL) << 10) + (m_Units[i + 1] - 0xDC00UL));
            ++i;
        } else if (unit >= 0xD800 && unit <= 0xDFFF) {
            appendUtf8(out, kReplacement);
        } else {
            appendUtf8(out, unit);
        }
    }
    return out;
}
