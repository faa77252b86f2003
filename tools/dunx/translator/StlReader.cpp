#include "StlReader.h"

#include "MeshBuilder.h"

#include <dunx/DUNXArchive.h>
#include <dunx/DUNXInputStream.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace dunx::translator {
namespace {

constexpr std::size_t kHeaderBytes = 80;
constexpr std::uint64_t kRecordBytes = 50;
constexpr std::uint64_t kFirstRecord = 84;
// Records per archive read: a 200 KB block, and a progress report and abort
// poll between blocks.
constexpr std::uint64_t kRecordsPerBlock = 4096;

std::string quantity(unsigned long long count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

TranslationError invalid(const std::string& kind, const std::string& message) {
    return TranslationError(DUNI_E_INVALID_FILE, kind, message);
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<std::FILE, FileCloser>;

// Opens a regular file for reading and gives its size; any failure says why.
FilePointer openInput(const std::string& path, std::uint64_t& size) {
    FilePointer file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        const int error = errno;
        throw TranslationError(error == ENOENT ? DUNI_E_FILE_NOT_FOUND : DUNI_E_FILE_OPEN,
                               error == ENOENT ? "missing file" : "unreadable file",
                               path + ": cannot open: " + std::strerror(error));
    }
    struct stat info;
    if (::fstat(::fileno(file.get()), &info) != 0)
        throw TranslationError(DUNI_E_FILE_OPEN, "unreadable file",
                               path + ": cannot read: " + std::strerror(errno));
    if (S_ISDIR(info.st_mode))
        throw TranslationError(DUNI_E_FILE_OPEN, "unreadable file",
                               path + ": cannot read: it is a folder");
    if (!S_ISREG(info.st_mode))
        throw TranslationError(DUNI_E_FILE_OPEN, "unreadable file",
                               path + ": cannot read: not a regular file");
    size = static_cast<std::uint64_t>(info.st_size);
    return file;
}

std::string readHead(std::FILE* file, std::uint64_t size) {
    std::string head(static_cast<std::size_t>(std::min<std::uint64_t>(size, 512)), '\0');
    head.resize(std::fread(head.data(), 1, head.size(), file));
    std::rewind(file);
    return head;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

bool startsWithWord(std::string_view text, std::string_view word) {
    if (text.size() < word.size())
        return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(text[i])) != word[i])
            return false;
    return text.size() == word.size() || isBlank(text[word.size()]);
}

std::uint32_t loadUint32(const char* bytes) {
    // Little-endian whatever the host: the compiler makes this one load.
    const auto* b = reinterpret_cast<const unsigned char*>(bytes);
    return std::uint32_t(b[0]) | std::uint32_t(b[1]) << 8 | std::uint32_t(b[2]) << 16 |
           std::uint32_t(b[3]) << 24;
}

float loadFloat(const char* bytes) {
    const std::uint32_t bits = loadUint32(bytes);
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void noteDrops(StlData& data, const std::string& path, long long nonFinite, long long degenerate) {
    if (nonFinite > 0)
        data.notes.push_back({"non-finite coordinates", nonFinite,
                              path + ": dropped " + quantity(nonFinite, "triangle", "triangles") +
                                  " with an infinite or NaN coordinate"});
    if (degenerate > 0)
        data.notes.push_back(
            {"degenerate triangles", degenerate,
             path + ": dropped " +
                 quantity(degenerate, "degenerate triangle", "degenerate triangles") +
                 " (two corners at one position, or all three in a line)"});
}

// --- Binary ----------------------------------------------------------------------------

std::string printableHeader(const char* header) {
    std::string text(header, strnlen(header, kHeaderBytes));
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) == 0x7F)
            c = ' ';
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

// Reads exactly `count` bytes through the archive; a short read means the file
// changed or failed under us.
void readThrough(DUNXArchive& archive, char* buffer, std::uint64_t count, const std::string& path) {
    try {
        archive.Read(buffer, static_cast<int>(count));
    } catch (DUNXArchiveException* fault) {
        delete fault;
        throw invalid("truncated STL", path + ": truncated: the data ends before the " +
                                           std::to_string(count) + " bytes it should still hold");
    }
}

StlData readBinary(const std::string& path, std::FILE* file, std::uint64_t size, DUNIUnitValue unit,
                   const ProgressFunction& progress) {
    StlData data;
    data.binary = true;
    if (size < kFirstRecord)
        throw invalid("truncated STL",
                      path + ": too short for an STL file: " + quantity(size, "byte", "bytes") +
                          ", where a binary header and count take 84");
    DUNXFileInputStream stream(file);
    DUNXArchive archive(&stream);
    char header[kHeaderBytes];
    readThrough(archive, header, kHeaderBytes, path);
    unsigned int declared = 0;
    try {
        archive >> declared;
    } catch (DUNXArchiveException* fault) {
        delete fault;
        throw invalid("truncated STL", path + ": truncated inside the triangle count");
    }
    data.header = printableHeader(header);
    data.declaredCount = declared;

    // The size is what the file holds; the count is what an exporter claimed.
    const std::uint64_t room = (size - kFirstRecord) / kRecordBytes;
    const std::uint64_t rest = (size - kFirstRecord) % kRecordBytes;
    std::uint64_t count = room;
    if (rest == 0) {
        if (declared != room)
            data.notes.push_back({"triangle count", 1,
                                  path + ": the header states " +
                                      quantity(declared, "triangle", "triangles") +
                                      " but the file size holds " + std::to_string(room) +
                                      "; reading " + std::to_string(room)});
    } else if (declared <= room) {
        if (declared != 0)
            count = declared;
        data.notes.push_back(
            {"trailing bytes", 1,
             path + ": ignored " +
                 quantity(size - kFirstRecord - count * kRecordBytes, "byte", "bytes") +
                 " after the last of " + quantity(count, "triangle", "triangles")});
    } else {
        throw invalid("truncated STL", path + ": truncated: it states " +
                                           quantity(declared, "triangle", "triangles") + " (" +
                                           std::to_string(kFirstRecord + kRecordBytes * declared) +
                                           " bytes) but has " + std::to_string(size) +
                                           " bytes, which end inside triangle " +
                                           std::to_string(room + 1));
    }

    Part part;
    part.name = FileStem(path);
    part.file = path;
    part.unit = unit;
    MeshBuilder builder(part, static_cast<std::size_t>(count));
    std::vector<char> block(static_cast<std::size_t>(kRecordBytes * kRecordsPerBlock));
    for (std::uint64_t done = 0; done < count;) {
        const std::uint64_t records = std::min(kRecordsPerBlock, count - done);
        readThrough(archive, block.data(), records * kRecordBytes, path);
        for (std::uint64_t r = 0; r < records; ++r) {
            // 12 bytes of normal (recomputed by whoever needs it), 36 of corners, 2 of attribute.
            const char* corners = block.data() + r * kRecordBytes + 12;
            float xyz[9];
            for (int i = 0; i < 9; ++i)
                xyz[i] = loadFloat(corners + 4 * i);
            builder.AddTriangle(xyz);
        }
        done += records;
        progress(kFirstRecord + done * kRecordBytes);
    }
    data.triangles = static_cast<long long>(count);
    noteDrops(data, path, builder.NonFinite(), builder.Degenerate());
    data.solids.push_back(std::move(part));
    return data;
}

// --- ASCII -----------------------------------------------------------------------------

// Splits text into blank-separated words, block by block, counting lines.
class WordScanner {
public:
    WordScanner(std::FILE* file, const std::string& path, const ProgressFunction& progress)
        : m_Stream(file), m_Path(path), m_Progress(progress), m_Buffer(kBlock) {}

    // The next word, valid until the next call; false at the end of the text.
    bool Next(std::string_view& word) {
        for (;;) {
            while (m_Position < m_End && isBlank(m_Buffer[m_Position]))
                if (m_Buffer[m_Position++] == '\n')
                    ++m_Line;
            if (m_Position < m_End || !refill())
                break;
        }
        if (m_Position == m_End)
            return false;
        std::size_t end = m_Position;
        for (;;) {
            while (end < m_End && !isBlank(m_Buffer[end]))
                ++end;
            if (end < m_End || m_AtEnd)
                break;
            if (end - m_Position > kLongestWord)
                throw invalid("not STL", where() + "a word of more than " +
                                             std::to_string(kLongestWord) +
                                             " characters: this is not STL text");
            const std::size_t offset = end - m_Position;
            refill();
            end = m_Position + offset;
        }
        word = std::string_view(m_Buffer.data() + m_Position, end - m_Position);
        m_Position = end;
        return true;
    }

    // The rest of the current line without its surrounding blanks.
    std::string RestOfLine() {
        std::string text;
        for (;;) {
            const char* begin = m_Buffer.data() + m_Position;
            const char* end = m_Buffer.data() + m_End;
            const char* newline = std::find(begin, end, '\n');
            text.append(begin, newline);
            m_Position = static_cast<std::size_t>(newline - m_Buffer.data());
            if (newline != end || !refill())
                break;
            if (text.size() > kLongestWord)
                break; // a name this long is cut; the words after it still count
        }
        const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
        const auto last = std::find_if_not(text.rbegin(), text.rend(), isBlank).base();
        return first < last ? std::string(first, last) : std::string();
    }

    // "path: line N: " for a message about the current word.
    std::string where() const { return m_Path + ": line " + std::to_string(m_Line) + ": "; }

private:
    static constexpr std::size_t kBlock = 1 << 18;
    static constexpr std::size_t kLongestWord = 4096;

    // Keeps the unread bytes, appends the next block; false when nothing came.
    bool refill() {
        if (m_AtEnd)
            return false;
        std::copy(m_Buffer.begin() + m_Position, m_Buffer.begin() + m_End, m_Buffer.begin());
        m_End -= m_Position;
        m_Position = 0;
        if (m_Buffer.size() - m_End < kBlock / 2)
            m_Buffer.resize(m_Buffer.size() * 2);
        const int room = static_cast<int>(m_Buffer.size() - m_End);
        const int got = m_Stream.read(m_Buffer.data() + m_End, room);
        if (got < 0)
            throw TranslationError(DUNI_E_FILE_OPEN, "unreadable file",
                                   m_Path + ": read error: " + std::strerror(errno));
        m_BytesRead += static_cast<std::uint64_t>(got);
        if (got == 0)
            m_AtEnd = true;
        m_End += static_cast<std::size_t>(got);
        m_Progress(m_BytesRead);
        return got > 0;
    }

    DUNXFileInputStream m_Stream;
    const std::string& m_Path;
    const ProgressFunction& m_Progress;
    std::vector<char> m_Buffer;
    std::size_t m_Position = 0;
    std::size_t m_End = 0;
    std::uint64_t m_BytesRead = 0;
    long m_Line = 1;
    bool m_AtEnd = false;
};

bool isWord(std::string_view word, std::string_view keyword) {
    return word.size() == keyword.size() && startsWithWord(word, keyword);
}

class AsciiParser {
public:
    AsciiParser(WordScanner& scanner, const std::string& path, DUNIUnitValue unit)
        : m_Scanner(scanner), m_Path(path), m_Unit(unit) {}

    void Parse(StlData& data) {
        std::string_view word;
        long long nonFinite = 0, degenerate = 0;
        while (m_Scanner.Next(word)) {
            if (!isWord(word, "solid")) {
                if (data.solids.empty())
                    expected("solid", word);
                data.notes.push_back({"text after the last solid", 1,
                                      m_Scanner.where() +
                                          "ignored the text after the last "
                                          "endsolid, from '" +
                                          shown(word) + "'"});
                break;
            }
            Part part;
            part.name = m_Scanner.RestOfLine();
            part.file = m_Path;
            part.unit = m_Unit;
            MeshBuilder builder(part);
            data.triangles += parseSolid(builder);
            nonFinite += builder.NonFinite();
            degenerate += builder.Degenerate();
            data.solids.push_back(std::move(part));
        }
        if (data.solids.empty())
            throw invalid("not STL", m_Path + ": no solid in the file (it holds only blanks)");
        noteDrops(data, m_Path, nonFinite, degenerate);
    }

private:
    // The facets of one solid up to its endsolid; returns how many triangles it had.
    long long parseSolid(MeshBuilder& builder) {
        long long triangles = 0;
        std::string_view word;
        std::vector<float> corners;
        for (;;) {
            if (!m_Scanner.Next(word))
                throw invalid("truncated STL",
                              m_Scanner.where() + "the file ends inside a solid (no endsolid)");
            if (isWord(word, "endsolid")) {
                m_Scanner.RestOfLine();
                return triangles;
            }
            if (!isWord(word, "facet"))
                expected("facet' or 'endsolid", word);
            next(word);
            if (isWord(word, "normal")) {
                float ignored;
                for (int i = 0; i < 3; ++i)
                    number(ignored);
                next(word);
            }
            if (!isWord(word, "outer"))
                expected("outer", word);
            keyword("loop");
            corners.clear();
            for (next(word); isWord(word, "vertex"); next(word)) {
                float xyz[3];
                for (float& value : xyz)
                    number(value);
                corners.insert(corners.end(), xyz, xyz + 3);
            }
            if (!isWord(word, "endloop"))
                expected(corners.size() < 9 ? "vertex" : "vertex' or 'endloop", word);
            if (corners.size() < 9)
                throw invalid("not STL", m_Scanner.where() + "a facet with " +
                                             quantity(corners.size() / 3, "vertex", "vertices") +
                                             "; a facet needs three");
            keyword("endfacet");
            // A facet of more than three corners, which some exporters write, is a fan.
            for (std::size_t k = 2; 3 * k < corners.size(); ++k) {
                float triangle[9];
                std::copy(corners.begin(), corners.begin() + 3, triangle);
                std::copy(corners.begin() + 3 * (k - 1), corners.begin() + 3 * (k + 1),
                          triangle + 3);
                builder.AddTriangle(triangle);
                ++triangles;
            }
        }
    }

    void next(std::string_view& word) {
        if (!m_Scanner.Next(word))
            throw invalid("truncated STL",
                          m_Scanner.where() + "the file ends inside a facet: truncated");
    }

    void keyword(std::string_view wanted) {
        std::string_view word;
        next(word);
        if (!isWord(word, wanted))
            expected(std::string(wanted).c_str(), word);
    }

    void number(float& value) {
        std::string_view word;
        next(word);
        const char* first = word.data();
        const char* last = first + word.size();
        if (first != last && *first == '+')
            ++first;
        std::from_chars_result parsed = std::from_chars(first, last, value);
        if (parsed.ec == std::errc::result_out_of_range) {
            // Beyond float's range: as a double, it becomes infinite or zero as a float would.
            double wide = 0;
            parsed = std::from_chars(first, last, wide);
            if (parsed.ec == std::errc::result_out_of_range) {
                // Beyond double's range too: a negative exponent made it tiny, else huge.
                const std::string_view text(first, static_cast<std::size_t>(last - first));
                const std::size_t exponent = text.find_first_of("eE");
                const bool tiny = exponent != std::string_view::npos &&
                                  exponent + 1 < text.size() && text[exponent + 1] == '-';
                wide = tiny ? 0.0 : HUGE_VAL;
                if (text[0] == '-')
                    wide = -wide;
                parsed.ec = std::errc();
            }
            value = static_cast<float>(wide);
        }
        if (parsed.ec != std::errc() || parsed.ptr != last)
            throw invalid("not STL", m_Scanner.where() + "'" + shown(word) + "' is not a number");
    }

    [[noreturn]] void expected(const char* wanted, std::string_view word) {
        throw invalid("not STL", m_Scanner.where() + "expected '" + wanted + "' but found '" +
                                     shown(word) + "'");
    }

    static std::string shown(std::string_view word) {
        std::string text(word.substr(0, 40));
        for (char& c : text)
            if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) == 0x7F)
                c = '?';
        return word.size() > 40 ? text + "..." : text;
    }

    WordScanner& m_Scanner;
    const std::string& m_Path;
    DUNIUnitValue m_Unit;
};

} // namespace

FileKind ClassifyBytes(const std::string& head, std::uint64_t size) {
    if (size >= kFirstRecord && head.size() >= kFirstRecord) {
        const std::uint32_t declared = loadUint32(head.data() + kHeaderBytes);
        if (kFirstRecord + kRecordBytes * std::uint64_t(declared) == size)
            return FileKind::BinaryStl;
    }
    // Text has no control characters but blanks; bytes above 127 may be UTF-8.
    const bool text = std::none_of(head.begin(), head.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && !isBlank(c)) || byte == 0x7F;
    });
    if (!text)
        return FileKind::BinaryStl;
    const auto first = std::find_if_not(head.begin(), head.end(), isBlank);
    return startsWithWord(std::string_view(&*head.begin() + (first - head.begin()),
                                           static_cast<std::size_t>(head.end() - first)),
                          "solid")
               ? FileKind::AsciiStl
               : FileKind::Text;
}

FileKind ProbeFile(const std::string& path, std::uint64_t& size) {
    FilePointer file = openInput(path, size);
    if (size == 0)
        throw invalid("empty file", path + ": the file is empty");
    return ClassifyBytes(readHead(file.get(), size), size);
}

StlData ReadStl(const std::string& path, DUNIUnitValue unit, const ProgressFunction& progress) {
    std::uint64_t size = 0;
    FilePointer file = openInput(path, size);
    if (size == 0)
        throw invalid("empty file", path + ": the file is empty");
    const FileKind kind = ClassifyBytes(readHead(file.get(), size), size);
    if (kind == FileKind::Text)
        throw invalid("not STL", path + ": not an STL file: text that does not begin with 'solid'");
    if (kind == FileKind::BinaryStl)
        return readBinary(path, file.get(), size, unit, progress);

    StlData data;
    WordScanner scanner(file.get(), path, progress);
    AsciiParser(scanner, path, unit).Parse(data);
    for (std::size_t i = 0; i < data.solids.size(); ++i)
        if (data.solids[i].name.empty())
            data.solids[i].name =
                FileStem(path) + (data.solids.size() > 1 ? "_" + std::to_string(i + 1) : "");
    return data;
}

std::string FileStem(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::size_t dot = name.find_last_of('.');
    if (dot != std::string::npos && dot > 0)
        name.resize(dot);
    return name.empty() ? "part" : name;
}

} // namespace dunx::translator
