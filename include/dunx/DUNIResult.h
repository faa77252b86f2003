// DUNIResult: the status value that nearly every DUNXBase operation returns.
#pragma once

#include <dunx/DUNXExport.h>

#include <cstdint>

/// Result codes. Layout: number in bits 0-15, domain in bits 16-23, criticity
/// in bits 24-27 (0 success, 1 failure, 2 aborted, 3 undetermined); bits 28-31
/// are ignored by every test. Usable wherever a `long` code is expected.
inline constexpr long DUNI_S_SUCCESS = 0x00000000L;
inline constexpr long DUNI_S_PARTIAL_SUCCESS = 0x00000001L;
inline constexpr long DUNI_S_NO_ENTITY = 0x00000002L;
inline constexpr long DUNI_S_NO_GEOMETRY = 0x00000003L;
inline constexpr long DUNI_E_FAIL = 0x01000001L;
inline constexpr long DUNI_E_ERROR = 0x01000002L;
inline constexpr long DUNI_E_NOT_SUPPORTED = 0x01000004L;
inline constexpr long DUNI_E_NOT_IMPLEMENTED = 0x01000005L;
inline constexpr long DUNI_E_UNEXPECTED = 0x01000007L;
/// Returned by value accessors when the stored value has no type. Deliberately
/// absent from the message table: its message is "Unknown Result".
inline constexpr long DUNI_E_NO_VALUE = 0x01000008L;
inline constexpr long DUNI_E_INVALID_COMPONENT = 0x01000009L;
inline constexpr long DUNI_E_INVALID_OBJECT = 0x0100000AL;
inline constexpr long DUNI_E_INVALID_ARGUMENT = 0x0100000BL;
inline constexpr long DUNI_E_FILE_NOT_FOUND = 0x0100000DL;
inline constexpr long DUNI_E_FILE_OPEN = 0x0100000EL;
inline constexpr long DUNI_E_FILE_SAVE = 0x0100000FL;
inline constexpr long DUNI_E_FILE_ENCRYPTED = 0x01000010L;
inline constexpr long DUNI_E_MODEL_TOO_LARGE = 0x01000011L;
inline constexpr long DUNI_E_MODEL_TOO_SMALL = 0x01000012L;
inline constexpr long DUNI_E_BAD_WRITE_UNIT = 0x01000013L;
inline constexpr long DUNI_E_VERSION_NOT_SUPPORTED = 0x01000014L;
inline constexpr long DUNI_E_INVALID_FILE = 0x01000015L;
inline constexpr long DUNI_A_ABORTED = 0x02000003L;
inline constexpr long DUNI_U_UNDETERMINED = 0x03000006L;

/// A 32-bit result code with tests for the classes of outcome, a fixed message
/// table and two operators that fold the results of several steps into one.
/// A plain value: copy it freely.
///
///     DUNIResult r;                 // undetermined until set
///     r = DUNI_S_SUCCESS;
///     r &= step();                  // the worse outcome wins
///     if (r.IsFailure()) puts(r.GetMessage());
class DUNX_EXPORT DUNIResult {
public:
    /// `DUNI_E_FAIL` as a result object.
    static const DUNIResult E_FAIL_RESULT;

    /// Wraps `code` (only its low 32 bits are kept). The default is
    /// `DUNI_U_UNDETERMINED`, not success: a result built step by step must be set.
    constexpr DUNIResult(long code = DUNI_U_UNDETERMINED) : m_Code(static_cast<int32_t>(code)) {}
    /// Copies the code.
    constexpr DUNIResult(const DUNIResult& other) = default;
    /// Copies the code.
    DUNIResult& operator=(const DUNIResult& other) = default;
    /// Sets the code (low 32 bits); returns nothing.
    void operator=(long code) { m_Code = static_cast<int32_t>(code); }

    /// The raw code, sign-extended from 32 bits.
    operator long() const { return m_Code; }

    /// 1 when all 32 bits equal `code`'s low 32 bits, else 0.
    int operator==(long code) { return m_Code == static_cast<int32_t>(code) ? 1 : 0; }
    /// 1 when any of the 32 bits differs from `code`'s low 32 bits, else 0.
    int operator!=(long code) { return m_Code != static_cast<int32_t>(code) ? 1 : 0; }
    /// As the `long` form; spares `r == 0` the choice between it and the conversion to `long`.
    int operator==(int code) { return operator==(static_cast<long>(code)); }
    /// As the `long` form, for plain `int` codes.
    int operator!=(int code) { return operator!=(static_cast<long>(code)); }
    /// As the `long` form, for unsigned literals such as 0x81000000.
    int operator==(unsigned code) { return operator==(static_cast<long>(code)); }
    /// As the `long` form, for unsigned literals.
    int operator!=(unsigned code) { return operator!=(static_cast<long>(code)); }

    /// Bits 24-27 (0 success, 1 failure, 2 aborted, 3 undetermined); the top nibble is ignored.
    unsigned GetCriticity() const;
    /// Bits 16-23; 0 for every code the library defines.
    unsigned GetDomain() const;
    /// Bits 0-15.
    unsigned GetNumber() const;

    /// 1 when the criticity bits are 0: Success, Partial Success, No Entity,
    /// No Geometry and any other criticity-0 code.
    int IsSuccess() const;
    /// 1 for `DUNI_S_PARTIAL_SUCCESS` only.
    int IsPartialSuccess() const;
    /// 1 for a success other than Partial Success (No Entity and No Geometry included).
    int IsCompleteSuccess() const;
    /// 1 when any criticity bit is set: failures, Aborted and Undetermined.
    int IsFailure() const;
    /// 1 for `DUNI_U_UNDETERMINED` only.
    int IsUndetermined() const;
    /// 1 for a failure other than Undetermined (Aborted included).
    int IsDeterminedFailure() const;

    /// Fixed English text of the code, e.g. "Invalid Argument"; "Unknown Result"
    /// for any code outside the table (`DUNI_E_NO_VALUE` included). Never null.
    const char* GetMessage() const;

    /// Process exit code: 0 for any success; for a failure, 1 when its domain is
    /// non-zero, else its number ("Failure" 1, "Aborted" 3, "Undetermined" 6).
    int GetReturnCode() const;
    /// 1 when `flag` is true, 0 when false.
    static int GetReturnCode(bool flag);
    /// "OK" when `ok` is true, "KO" when false.
    static const char* GetOKKOString(bool ok);

    /// All steps must succeed: folds `other` in so that the worse outcome wins.
    /// Success &= No Entity gives No Entity, but No Geometry outranks No Entity;
    /// a kept failure stays, except "Method is not implemented", which always
    /// takes `other` so that a missing step never spoils the whole.
    /// Returns a copy of the new value.
    DUNIResult operator&=(DUNIResult other);
    /// Some step succeeded: success mixed with failure gives Partial Success;
    /// Undetermined |= success gives Partial Success, Undetermined |= a failure
    /// gives that failure, Undetermined |= Partial or Undetermined stays
    /// Undetermined. Returns a copy of the new value.
    DUNIResult operator|=(DUNIResult other);

private:
    int32_t m_Code;
};
