#include <dunx/DUNXArchive.h>

#include <dunx/DUNXInputStream.h>

#include <algorithm>
#include <cstring>
#include <vector>

// Values are copied into their destination as the stream delivers them: the
// archive is little-endian, as are the hosts the library is built for.

namespace {

constexpr std::uint32_t kUtf16Mark = 0xFFFFFFFFu; // string length: UTF-16 text follows
constexpr std::uint16_t kWideLengthWord = 0xFFFE; // 2-byte length word standing for that mark
constexpr std::uint16_t kLongCountWord = 0xFFFF;  // a 4-byte count or length follows
constexpr std::uint16_t kNewClassTag = 0xFFFF;    // schema, name length and name follow
constexpr std::uint16_t kLongTag = 0x7FFF;        // the full 32-bit tag follows
constexpr std::uint32_t kClassBit = 0x80000000u;  // set for classes, clear for objects
constexpr std::uint16_t kLongestClassName = 63;   // longer names are refused unread

// A string's bytes are fetched in pieces that start small and double with
// what has arrived, so a corrupt length never costs more memory than the data
// really holds; the cap keeps every piece within one `int` stream call.
constexpr std::uint64_t kFirstPieceBytes = 64 * 1024;
constexpr std::uint64_t kLargestPieceBytes = 1u << 30;

constexpr std::uint32_t kFloatExponent = 0x7F800000u;
constexpr std::uint32_t kLargestFiniteFloat = 0x7F7FFFFFu;
constexpr std::uint64_t kDoubleExponent = 0x7FF0000000000000u;
constexpr std::uint64_t kDoubleMantissa = 0x000FFFFFFFFFFFFFu;

[[noreturn]] void Throw(eDUNXArchiveException code) {
    throw new DUNXArchiveException(code);
}

// Floats and doubles differ on purpose: an infinite or NaN float becomes the
// largest finite float without a fault, while a NaN double is a fault (and an
// infinite double passes).
float FiniteFloat(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    if ((bits & kFloatExponent) != kFloatExponent)
        return value;
    std::memcpy(&value, &kLargestFiniteFloat, sizeof value);
    return value;
}

// Tested on the bits, so that no floating-point mode can hide a NaN.
bool IsNaN(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return (bits & kDoubleExponent) == kDoubleExponent && (bits & kDoubleMantissa) != 0;
}

} // namespace

DUNXArchive::DUNXArchive(DUNXInputStream* stream) : m_Stream(stream) {}

DUNXArchive::~DUNXArchive() = default;

void DUNXArchive::ReadExactly(void* destination, int count) {
    const int delivered = m_Stream ? m_Stream->read(static_cast<char*>(destination), count) : 0;
    // A fault (-1) delivers nothing; a stream claiming more than asked is not believed.
    if (delivered > 0 && delivered <= count)
        m_BytesRead += static_cast<std::uint32_t>(delivered);
    if (delivered != count)
        Throw(DUNXArchiveShortRead);
}

void DUNXArchive::ReadBlock(void* destination, std::uint64_t size) {
    char* next = static_cast<char*>(destination);
    while (size > 0) {
        const std::uint64_t piece = std::min(size, kLargestPieceBytes);
        ReadExactly(next, static_cast<int>(piece));
        next += piece;
        size -= piece;
    }
}

template <class Value> Value DUNXArchive::ReadValue() {
    Value value;
    ReadExactly(&value, sizeof value);
    return value;
}

template <class Value> int DUNXArchive::ReadArray(Value* values, int count) {
    if (count < 0) // not left to the stream: the byte size would wrap to an enormous block
        Throw(DUNXArchiveShortRead);
    ReadBlock(values, static_cast<std::uint64_t>(count) * sizeof(Value));
    return count;
}

template <class Unit> DUNXString DUNXArchive::ReadText(std::uint64_t units) {
    std::vector<Unit> text;
    std::uint64_t done = 0;
    while (done < units) {
        const std::uint64_t pieceBytes =
            std::min(std::max(kFirstPieceBytes, done * sizeof(Unit)), kLargestPieceBytes);
        const std::uint64_t piece = std::min(units - done, pieceBytes / sizeof(Unit));
        text.resize(static_cast<std::size_t>(done + piece));
        ReadExactly(text.data() + done, static_cast<int>(piece * sizeof(Unit)));
        done += piece;
    }
    text.push_back(0);
    return DUNXString(text.data());
}

int DUNXArchive::Read(char* buffer, int count) {
    ReadExactly(buffer, count); // a stream delivers nothing for a negative count
    return count;
}

int DUNXArchive::Read(short* values, int count) {
    return ReadArray(values, count);
}

int DUNXArchive::Read(unsigned short* values, int count) {
    return ReadArray(values, count);
}

int DUNXArchive::Read(int* values, int count) {
    return ReadArray(values, count);
}

int DUNXArchive::Read(unsigned int* values, int count) {
    return ReadArray(values, count);
}

int DUNXArchive::Read(float* values, int count) {
    ReadArray(values, count);
    std::transform(values, values + count, values, FiniteFloat);
    return count;
}

int DUNXArchive::Read(double* values, int count) {
    ReadArray(values, count);
    if (std::any_of(values, values + count, IsNaN))
        Throw(DUNXArchiveNaN);
    return count;
}

DUNXArchive& DUNXArchive::operator>>(char& value) {
    value = ReadValue<char>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(unsigned char& value) {
    value = ReadValue<unsigned char>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(short& value) {
    value = ReadValue<std::int16_t>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(unsigned short& value) {
    value = ReadValue<std::uint16_t>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(int& value) {
    value = ReadValue<std::int32_t>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(unsigned int& value) {
    value = ReadValue<std::uint32_t>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(long& value) {
    value = ReadValue<std::int32_t>();
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(float& value) {
    value = FiniteFloat(ReadValue<float>());
    return *this;
}

DUNXArchive& DUNXArchive::operator>>(double& value) {
    const double read = ReadValue<double>();
    if (IsNaN(read))
        Throw(DUNXArchiveNaN);
    value = read;
    return *this;
}

std::uint32_t DUNXArchive::RestoreCount() {
    const std::uint16_t word = ReadValue<std::uint16_t>();
    return word == kLongCountWord ? ReadValue<std::uint32_t>() : word;
}

std::uint32_t DUNXArchive::GetCStringLength() {
    const unsigned char byte = ReadValue<unsigned char>();
    if (byte != 0xFF)
        return byte;
    const std::uint16_t word = ReadValue<std::uint16_t>();
    if (word == kWideLengthWord)
        return kUtf16Mark;
    return word == kLongCountWord ? ReadValue<std::uint32_t>() : word;
}

void DUNXArchive::RestoreCString(DUNXString& text) {
    // The text is assigned only once it is whole, so a short read leaves `text` as it was.
    const std::uint32_t length = GetCStringLength();
    if (length != kUtf16Mark)
        text = ReadText<char>(length);
    else
        text = ReadText<unsigned short>(GetCStringLength());
}

DUNIResult DUNXArchive::RestoreClassObject(DUNXString& className, unsigned short* tag) {
    const std::uint16_t word = ReadValue<std::uint16_t>();
    if (tag)
        *tag = word;
    // A 2-byte tag keeps the class flag in bit 15; the 32-bit form has it in bit 31.
    const std::uint32_t fullTag =
        word == kLongTag ? ReadValue<std::uint32_t>()
                         : (static_cast<std::uint32_t>(word & 0x8000u) << 16) | (word & 0x7FFFu);
    if (!(fullTag & kClassBit))
        return DUNI_E_FAIL;
    if (word != kNewClassTag)
        return DUNI_S_SUCCESS; // a class read before, or a 32-bit class tag

    ReadValue<std::uint16_t>(); // schema number: the reader has no use for it
    const std::uint16_t nameLength = ReadValue<std::uint16_t>();
    if (nameLength > kLongestClassName)
        return DUNI_E_FAIL;
    char name[kLongestClassName + 1];
    ReadExactly(name, nameLength);
    name[nameLength] = '\0';
    if (className.length() == 0) {
        className = DUNXString(name);
        return DUNI_S_SUCCESS;
    }
    const char* expected = className;
    return expected && std::strcmp(name, expected) == 0 ? DUNI_S_SUCCESS : DUNI_E_FAIL;
}

DUNIResult DUNXArchive::RestoreClassObject(const char* const className, unsigned short* tag) {
    DUNXString expected(className);
    return RestoreClassObject(expected, tag);
}
