#include <dunx/DUNIOptionName.h>

#include <initializer_list>

namespace {

// The parts' texts joined with '.'; a part without text adds "" and its '.' all the same.
DUNXString joined(std::initializer_list<const DUNIName*> parts) {
    DUNXString text("");
    bool first = true;
    for (const DUNIName* part : parts) {
        if (!first)
            text = text + ".";
        text = text + part->GetText();
        first = false;
    }
    return text;
}

} // namespace

DUNIOptionName::DUNIOptionName(const char* text) : DUNIName("DUNIOptionName", DUNXString(text)) {}

DUNIOptionName::DUNIOptionName(const DUNIComponentName& component, const DUNIName& option)
    : DUNIName("DUNIOptionName", joined({&component, &option})) {}

DUNIOptionName::DUNIOptionName(const DUNIComponentName& component,
                               const DUNIRepresentationName& representation, const DUNIName& option)
    : DUNIName("DUNIOptionName", joined({&component, &representation, &option})) {}

DUNIOptionName::DUNIOptionName(const DUNIComponentName& component,
                               const DUNIRepresentationName& representation,
                               const DUNIReaderWriterName& direction, const DUNIName& option)
    : DUNIName("DUNIOptionName", joined({&component, &representation, &direction, &option})) {}

DUNIOptionName::DUNIOptionName(const DUNIComponentName& component,
                               const DUNIRepresentationName& representation,
                               const DUNIReaderWriterName& direction,
                               const DUNIComponentName& source, const DUNIName& option)
    : DUNIName("DUNIOptionName",
               joined({&component, &representation, &direction, &source, &option})) {}

DUNIOptionName& DUNIOptionName::operator=(const DUNIOptionName& other) = default;

DUNIOptionName::~DUNIOptionName() = default;

#define DUNI_DEFINE_OPTION_NAME(name) const DUNIOptionName DUNIOptionName::name(#name);
DUNI_OPTION_NAMES(DUNI_DEFINE_OPTION_NAME)
#undef DUNI_DEFINE_OPTION_NAME
const DUNIOptionName DUNIOptionName::ThreeDCurvePref("3DCurvePref");
const DUNIOptionName DUNIOptionName::ThreeDCurveRegen("3DCurveRegen");
