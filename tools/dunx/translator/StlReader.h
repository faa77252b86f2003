// Reading STL files, binary and ASCII, into welded parts.
#pragma once

#include "DunxTranslator.h"
#include "TranslationError.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace dunx::translator {

/// What a file holds, judged from its size and its first bytes.
enum class FileKind {
    BinaryStl, ///< 84 + 50·n bytes for the n of its count, or bytes that are not text
    AsciiStl,  ///< text that begins with "solid" (not counting blanks)
    Text,      ///< other text: an assembly file, or nothing a translator reads
};

/// The kind of the file at `path` and its size in bytes. A binary file whose
/// header begins with "solid" is binary: its size matches its count, or its
/// count (a 0 byte in any file below 16 million triangles) is not text.
/// Throws `TranslationError` when the file cannot be opened or is empty.
FileKind ProbeFile(const std::string& path, std::uint64_t& size);

/// The kind of a file of `size` bytes that begins with `head` (its first
/// bytes, up to 512). Empty files are text.
FileKind ClassifyBytes(const std::string& head, std::uint64_t size);

/// An STL file as read.
struct StlData {
    bool binary = false;
    std::string header;              ///< binary: the 80-byte header as printable text
    std::uint32_t declaredCount = 0; ///< binary: the triangle count the file states
    long long triangles = 0;         ///< triangles in the file, the dropped ones included
    std::vector<Part> solids;        ///< one for a binary file, one per solid for ASCII
    std::vector<Note> notes;         ///< what deserves a warning: drops, count, leftovers
};

/// Called with the bytes of the file read so far, every few thousand
/// triangles: it may report progress and throw to stop the read.
using ProgressFunction = std::function<void(std::uint64_t bytesRead)>;

/// Reads the STL file at `path`, binary or ASCII as `ProbeFile` judges it.
/// Each solid becomes a part named after the solid, or after the file (without
/// folder and extension) for a binary file or a solid without name; `unit` is
/// stored in each. Throws `TranslationError` for a file that cannot be read, a
/// binary file cut inside a triangle, or ASCII text that is not STL (with the
/// line number).
StlData ReadStl(const std::string& path, DUNIUnitValue unit, const ProgressFunction& progress);

/// The file name without folder and extension: "parts/wheel.stl" => "wheel".
std::string FileStem(const std::string& path);

} // namespace dunx::translator
