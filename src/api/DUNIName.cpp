#include <dunx/DUNIName.h>

// --- DUNINameImpl ------------------------------------------------------------------

DUNINameImpl::DUNINameImpl(const DUNXString& text) : DUNIObjectImpl("DUNIName"), m_Text(text) {}

DUNINameImpl::~DUNINameImpl() = default;

DUNIResult DUNINameImpl::GetName(DUNXString& text) const {
    text = m_Text;
    return DUNI_S_SUCCESS;
}

DUNIResult DUNINameImpl::SetName(const DUNXString& text) {
    m_Text = text;
    return DUNI_S_SUCCESS;
}

// --- DUNIName ------------------------------------------------------------------------

DUNIName::DUNIName(const char* text) : DUNIName("DUNIName", DUNXString(text)) {}

DUNIName::DUNIName(const char* typeName, const DUNXString& text) : DUNIObject(typeName) {
    SetData(new DUNINameImpl(text)); // count 1: this handle's reference
}

DUNIName& DUNIName::operator=(const DUNIName& other) = default;

DUNIName::~DUNIName() = default;

DUNIResult DUNIName::GetName(DUNXString& text) const {
    if (!GetData())
        return DUNI_E_INVALID_OBJECT;
    return static_cast<const DUNINameImpl*>(GetImpl())->GetName(text);
}

DUNXString DUNIName::GetText() const {
    DUNXString text;
    GetName(text);
    return text;
}

bool DUNIName::operator==(const DUNIName& other) const {
    return GetText().equals(other.GetText());
}

// --- Component, direction and representation names ------------------------------------

DUNIComponentName::DUNIComponentName(const char* text)
    : DUNIName("DUNIComponentName", DUNXString(text)) {}
DUNIComponentName& DUNIComponentName::operator=(const DUNIComponentName& other) = default;
DUNIComponentName::~DUNIComponentName() = default;

DUNIReaderWriterName::DUNIReaderWriterName(const char* text)
    : DUNIName("DUNIReaderWriterName", DUNXString(text)) {}
DUNIReaderWriterName& DUNIReaderWriterName::operator=(const DUNIReaderWriterName& other) = default;
DUNIReaderWriterName::~DUNIReaderWriterName() = default;

DUNIRepresentationName::DUNIRepresentationName(const char* text)
    : DUNIName("DUNIRepresentationName", DUNXString(text)) {}
DUNIRepresentationName&
DUNIRepresentationName::operator=(const DUNIRepresentationName& other) = default;
DUNIRepresentationName::~DUNIRepresentationName() = default;

const DUNIComponentName DUNIComponentName::Any("*");
const DUNIComponentName DUNIComponentName::Orvo("Orvo");
const DUNIComponentName DUNIComponentName::KestraV4("KestraV4");
const DUNIComponentName DUNIComponentName::KestraV5("KestraV5");
const DUNIComponentName DUNIComponentName::EBOM("EBOM");
const DUNIComponentName DUNIComponentName::Generic("Generic");
const DUNIComponentName DUNIComponentName::HSF("HSF");
const DUNIComponentName DUNIComponentName::IDEAS("IDEAS");
const DUNIComponentName DUNIComponentName::IGES("IGES");
const DUNIComponentName DUNIComponentName::JT("JT");
const DUNIComponentName DUNIComponentName::Brevant("Brevant");
const DUNIComponentName DUNIComponentName::Step("Step");
const DUNIComponentName DUNIComponentName::UG("UG");
const DUNIComponentName DUNIComponentName::Vda("Vda");
const DUNIComponentName DUNIComponentName::Proe("Proe");
const DUNIComponentName DUNIComponentName::Inventor("Inventor");

const DUNIReaderWriterName DUNIReaderWriterName::Any("*");
const DUNIReaderWriterName DUNIReaderWriterName::Reader("Reader");
const DUNIReaderWriterName DUNIReaderWriterName::Writer("Writer");

const DUNIRepresentationName DUNIRepresentationName::Any("*");
const DUNIRepresentationName DUNIRepresentationName::Assembly("Assembly");
const DUNIRepresentationName DUNIRepresentationName::BRep("BRep");
const DUNIRepresentationName DUNIRepresentationName::Mesh("Mesh");
const DUNIRepresentationName DUNIRepresentationName::Visualization("Visualization");
