// DUNXArchive: reads values from a little-endian binary serialised byte stream.
#pragma once

#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

#include <cstdint>

class DUNXInputStream;

/// Why an archive read failed.
enum eDUNXArchiveException {
    DUNXArchiveShortRead =
        1,              ///< the stream delivered fewer bytes than asked (or there is no stream)
    DUNXArchiveNaN = 2, ///< a double read from the stream is a NaN
};

/// The fault a `DUNXArchive` read throws. It is thrown as a pointer to a new
/// object: the handler that catches `DUNXArchiveException*` owns it and must
/// delete it.
///
///     try { archive >> value; }
///     catch (DUNXArchiveException* e) { code = e->GetCode(); delete e; }
class DUNX_EXPORT DUNXArchiveException {
public:
    /// Holds `code`; a bare code converts, so `e = DUNXArchiveNaN` assigns it.
    DUNXArchiveException(eDUNXArchiveException code) : m_Code(code) {}
    /// The code given at construction or by the last assignment.
    eDUNXArchiveException GetCode() const { return m_Code; }

private:
    eDUNXArchiveException m_Code;
};

/// Reads numbers, counts, strings and class tags from a `DUNXInputStream` that
/// the caller keeps alive (the archive does not own it). Every multi-byte value
/// is stored little-endian. It only reads; nothing in the library writes archives.
///
/// Faults are thrown, never returned: a read that gets fewer bytes than it asks
/// for throws `DUNXArchiveException*` with `DUNXArchiveShortRead` (also for a
/// null stream, which delivers nothing, and for a stream read fault); a NaN
/// double throws `DUNXArchiveNaN`. The catcher deletes the exception. A failed
/// read still counts the bytes that the stream did deliver in `GetBytesRead()`.
///
/// A scalar read asks the stream once for the value's bytes; the array reads
/// ask for whole blocks, so memory streams run at copy speed. Lengths read from
/// the data are never trusted for an allocation: a string's bytes are fetched
/// in bounded pieces, so a corrupt 4 GB length in a short file fails as a short
/// read after allocating about as much as the file holds.
class DUNX_EXPORT DUNXArchive {
public:
    /// Reads from `stream` (not owned; null makes every read throw
    /// `DUNXArchiveShortRead`), with no bytes read yet.
    explicit DUNXArchive(DUNXInputStream* stream);
    /// Copies the stream pointer and the byte count: both archives then read
    /// from the same stream, each counting its own bytes.
    DUNXArchive(const DUNXArchive& other) = default;
    /// Copies the stream pointer and the byte count.
    DUNXArchive& operator=(const DUNXArchive& other) = default;
    /// Leaves the stream alone.
    virtual ~DUNXArchive();

    /// The stream read from (null when there is none).
    DUNXInputStream* GetStream() const { return m_Stream; }
    /// Bytes the stream has delivered to this archive, including those of a
    /// read that then failed; counts modulo 2^32.
    std::uint32_t GetBytesRead() const { return m_BytesRead; }

    /// Reads `count` raw bytes into `buffer` with one stream call and returns
    /// `count` (0 reads nothing). Throws `DUNXArchiveShortRead` when fewer come
    /// (the bytes that did come stay in `buffer`) or when `count` is negative.
    int Read(char* buffer, int count);
    /// Reads `count` 2-byte values into `values` in blocks and returns `count`.
    /// Throws `DUNXArchiveShortRead` when the data ends or `count` is negative;
    /// `values` then holds whatever was delivered.
    int Read(short* values, int count);
    /// As `Read(short*, int)`, for unsigned 2-byte values.
    int Read(unsigned short* values, int count);
    /// As `Read(short*, int)`, for 4-byte values.
    int Read(int* values, int count);
    /// As `Read(short*, int)`, for unsigned 4-byte values.
    int Read(unsigned int* values, int count);
    /// As `Read(short*, int)`, for 4-byte floats, each with the rule of
    /// `operator>>(float&)`: infinities and NaNs become the largest finite float.
    int Read(float* values, int count);
    /// As `Read(short*, int)`, for 8-byte doubles. Throws `DUNXArchiveNaN` after
    /// the whole block is read when one of them is a NaN (`values` keeps them).
    int Read(double* values, int count);

    /// Reads 1 byte. Throws `DUNXArchiveShortRead` at the end of the data; the
    /// destination of every `operator>>` is then left unchanged.
    DUNXArchive& operator>>(char& value);
    /// Reads 1 byte; throws `DUNXArchiveShortRead` at the end of the data.
    DUNXArchive& operator>>(unsigned char& value);
    /// Reads 2 bytes; throws `DUNXArchiveShortRead` when fewer are left.
    DUNXArchive& operator>>(short& value);
    /// Reads 2 bytes; throws `DUNXArchiveShortRead` when fewer are left.
    DUNXArchive& operator>>(unsigned short& value);
    /// Reads 4 bytes; throws `DUNXArchiveShortRead` when fewer are left.
    DUNXArchive& operator>>(int& value);
    /// Reads 4 bytes; throws `DUNXArchiveShortRead` when fewer are left.
    DUNXArchive& operator>>(unsigned int& value);
    /// Reads 4 bytes (not `sizeof(long)`), sign-extended: FF FF FF FF => -1.
    /// Throws `DUNXArchiveShortRead` when fewer are left.
    DUNXArchive& operator>>(long& value);
    /// Reads a 4-byte IEEE single. Infinities and NaNs (exponent bits all ones)
    /// become the largest finite float, 0x7f7fffff, whatever their sign; this
    /// is not a fault. Throws `DUNXArchiveShortRead` when fewer bytes are left.
    DUNXArchive& operator>>(float& value);
    /// Reads an 8-byte IEEE double. Infinities pass unchanged; a NaN throws
    /// `DUNXArchiveNaN` and leaves `value` unchanged. Throws
    /// `DUNXArchiveShortRead` when fewer bytes are left.
    DUNXArchive& operator>>(double& value);

    /// Reads a count: a 2-byte word below 0xFFFF is the count itself, 0xFFFF is
    /// followed by the 4-byte count. 05 00 => 5; FF FF 10 27 00 00 => 10000.
    /// Throws `DUNXArchiveShortRead` when the data ends.
    std::uint32_t RestoreCount();

    /// Reads a length-prefixed string into `text` (see `GetCStringLength`):
    /// narrow text converted through the current locale, or, after the 0xFFFFFFFF
    /// mark, a second length and that many UTF-16LE units. The text ends at its
    /// first 0 byte or unit; an empty string gives the allocated empty string,
    /// not the null one. 03 'a' 'b' 'c' => "abc". Throws `DUNXArchiveShortRead`
    /// when the data ends, leaving `text` unchanged.
    void RestoreCString(DUNXString& text);

    /// Reads a class tag and tells whether it introduces a class rather than an
    /// object. Stores the first 2-byte word in `*tag` when `tag` is not null.
    /// - 0xFFFF, a new class: a 2-byte schema (ignored), a 2-byte name length
    ///   and the name follow. Succeeds when `className` is empty (it then
    ///   receives the name) or equals the name byte for byte (case counts).
    ///   Fails, without reading the name, when the name is 64 bytes or longer.
    /// - 0x7FFF: the full 32-bit tag follows; succeeds when its bit 31 is set.
    /// - any other word: succeeds when bit 15 is set (a class read before).
    /// Returns `DUNI_S_SUCCESS` or `DUNI_E_FAIL`; throws only
    /// `DUNXArchiveShortRead`, when the data ends (`className` is then unchanged).
    DUNIResult RestoreClassObject(DUNXString& className, unsigned short* tag);
    /// As above with the expected name given as narrow text; null or "" accepts
    /// any name (the name read is not returned).
    DUNIResult RestoreClassObject(const char* const className, unsigned short* tag);

protected:
    /// Reads a string length: a byte below 0xFF is the length; 0xFF is followed
    /// by a 2-byte word that is the length when below 0xFFFE, the UTF-16 mark
    /// 0xFFFFFFFF when 0xFFFE, and announces the 4-byte length when 0xFFFF.
    /// FF FE FF => 0xFFFFFFFF; FF FF FF FE FF 00 00 => 0xFFFE. Throws
    /// `DUNXArchiveShortRead` when the data ends.
    std::uint32_t GetCStringLength();

private:
    // Asks the stream once for `count` bytes; counts what came and throws unless all did.
    void ReadExactly(void* destination, int count);
    // Reads `size` bytes that the caller has room for, in pieces a stream call can take.
    void ReadBlock(void* destination, std::uint64_t size);
    template <class Value> Value ReadValue();
    template <class Value> int ReadArray(Value* values, int count);
    template <class Unit> DUNXString ReadText(std::uint64_t units);

    DUNXInputStream* m_Stream;
    std::uint32_t m_BytesRead = 0;
};
