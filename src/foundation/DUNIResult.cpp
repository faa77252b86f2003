#include <dunx/DUNIResult.h>

namespace {

constexpr uint32_t kCriticityMask = 0x0F000000u;

struct MessageEntry {
    int32_t code;
    const char* text;
};

// DUNI_E_NO_VALUE is left out on purpose: it reads "Unknown Result".
constexpr MessageEntry kMessages[] = {
    {DUNI_S_SUCCESS, "Success"},
    {DUNI_S_PARTIAL_SUCCESS, "Partial Success"},
    {DUNI_S_NO_ENTITY, "No Entity to Translate"},
    {DUNI_S_NO_GEOMETRY, "No translatable geometry"},
    {DUNI_E_FAIL, "Failure"},
    {DUNI_E_ERROR, "Error Encountered"},
    {DUNI_E_NOT_SUPPORTED, "Not supported"},
    {DUNI_E_NOT_IMPLEMENTED, "Method is not implemented"},
    {DUNI_E_UNEXPECTED, "Unexpected Error"},
    {DUNI_E_INVALID_COMPONENT, "Invalid Component"},
    {DUNI_E_INVALID_OBJECT, "Invalid Object"},
    {DUNI_E_INVALID_ARGUMENT, "Invalid Argument"},
    {DUNI_E_FILE_NOT_FOUND, "File Not Found"},
    {DUNI_E_FILE_OPEN, "File Open Error"},
    {DUNI_E_FILE_SAVE, "File Save Error"},
    {DUNI_E_FILE_ENCRYPTED, "File is encrypted"},
    {DUNI_E_MODEL_TOO_LARGE, "Model size exceeds valid box"},
    {DUNI_E_MODEL_TOO_SMALL, "Model size is smaller than the valid box"},
    {DUNI_E_BAD_WRITE_UNIT, "File write unit is invalid"},
    {DUNI_E_VERSION_NOT_SUPPORTED, "File version is not supported"},
    {DUNI_E_INVALID_FILE, "Invalid file"},
    {DUNI_A_ABORTED, "Aborted"},
    {DUNI_U_UNDETERMINED, "Undetermined"},
};

// The four classes the combining operators reason about.
enum class Outcome { CompleteSuccess, Partial, Undetermined, DeterminedFailure };

Outcome classify(const DUNIResult& r) {
    if (r.IsPartialSuccess())
        return Outcome::Partial;
    if (r.IsSuccess())
        return Outcome::CompleteSuccess;
    if (r.IsUndetermined())
        return Outcome::Undetermined;
    return Outcome::DeterminedFailure;
}

} // namespace

const DUNIResult DUNIResult::E_FAIL_RESULT(DUNI_E_FAIL);

unsigned DUNIResult::GetCriticity() const {
    return (static_cast<uint32_t>(m_Code) & kCriticityMask) >> 24;
}

unsigned DUNIResult::GetDomain() const {
    return (static_cast<uint32_t>(m_Code) >> 16) & 0xFFu;
}

unsigned DUNIResult::GetNumber() const {
    return static_cast<uint32_t>(m_Code) & 0xFFFFu;
}

int DUNIResult::IsSuccess() const {
    return (static_cast<uint32_t>(m_Code) & kCriticityMask) == 0;
}

int DUNIResult::IsPartialSuccess() const {
    return m_Code == DUNI_S_PARTIAL_SUCCESS;
}

int DUNIResult::IsCompleteSuccess() const {
    return IsSuccess() && m_Code != DUNI_S_PARTIAL_SUCCESS;
}

int DUNIResult::IsFailure() const {
    return !IsSuccess();
}

int DUNIResult::IsUndetermined() const {
    return m_Code == DUNI_U_UNDETERMINED;
}

int DUNIResult::IsDeterminedFailure() const {
    return IsFailure() && !IsUndetermined();
}

const char* DUNIResult::GetMessage() const {
    for (const MessageEntry& entry : kMessages)
        if (entry.code == m_Code)
            return entry.text;
    return "Unknown Result";
}

int DUNIResult::GetReturnCode() const {
    if (IsSuccess())
        return 0;
    return GetDomain() != 0 ? 1 : static_cast<int>(GetNumber());
}

int DUNIResult::GetReturnCode(bool flag) {
    return flag ? 1 : 0;
}

const char* DUNIResult::GetOKKOString(bool ok) {
    return ok ? "OK" : "KO";
}

DUNIResult DUNIResult::operator&=(DUNIResult other) {
    switch (classify(*this)) {
    case Outcome::CompleteSuccess:
        if (classify(other) != Outcome::CompleteSuccess)
            m_Code = other.m_Code;
        else if (other.m_Code == DUNI_S_NO_ENTITY && m_Code != DUNI_S_NO_GEOMETRY)
            m_Code = DUNI_S_NO_ENTITY; // no translatable geometry outranks no entity
        else if (other.m_Code == DUNI_S_NO_GEOMETRY)
            m_Code = DUNI_S_NO_GEOMETRY;
        break;
    case Outcome::Partial:
    case Outcome::Undetermined:
        if (other.IsFailure())
            m_Code = other.m_Code;
        break;
    case Outcome::DeterminedFailure:
        // A step that is merely not implemented never spoils the combined result.
        if (m_Code == DUNI_E_NOT_IMPLEMENTED)
            m_Code = other.m_Code;
        break;
    }
    return *this;
}

DUNIResult DUNIResult::operator|=(DUNIResult other) {
    const Outcome theirs = classify(other);
    switch (classify(*this)) {
    case Outcome::CompleteSuccess:
        if (theirs != Outcome::CompleteSuccess)
            m_Code = DUNI_S_PARTIAL_SUCCESS;
        break;
    case Outcome::DeterminedFailure:
        if (other.IsSuccess())
            m_Code = DUNI_S_PARTIAL_SUCCESS;
        break;
    case Outcome::Partial:
        break;
    case Outcome::Undetermined:
        // Kept asymmetric: undetermined with partial stays undetermined, while
        // undetermined with a complete success becomes partial.
        if (theirs == Outcome::CompleteSuccess)
            m_Code = DUNI_S_PARTIAL_SUCCESS;
        else if (theirs == Outcome::DeterminedFailure)
            m_Code = other.m_Code;
        break;
    }
    return *this;
}
