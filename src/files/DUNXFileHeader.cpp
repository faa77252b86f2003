#include <dunx/DUNXFileHeader.h>

#include <string>

DUNXFileHeader::DUNXFileHeader() = default;

DUNXFileHeader::~DUNXFileHeader() = default;

int DUNXFileHeader::AddModel() {
    m_Models.emplace_back();
    return GetModelCount() - 1;
}

DUNIResult DUNXFileHeader::AddEntry(int model, const DUNXString& label, const DUNXString& value) {
    if (model < 0 || model >= GetModelCount())
        return DUNI_E_INVALID_ARGUMENT;
    m_Models[static_cast<std::size_t>(model)].push_back({label, value});
    return DUNI_S_SUCCESS;
}

int DUNXFileHeader::GetEntryCount(int model) const {
    if (model < 0 || model >= GetModelCount())
        return 0;
    return static_cast<int>(m_Models[static_cast<std::size_t>(model)].size());
}

int DUNXFileHeader::GetTotalEntryCount() const {
    int total = 0;
    for (const auto& entries : m_Models)
        total += static_cast<int>(entries.size());
    return total;
}

DUNIResult DUNXFileHeader::GetEntry(int model, int index, DUNXString& label,
                                    DUNXString& value) const {
    if (index < 0 || index >= GetEntryCount(model))
        return DUNI_E_INVALID_ARGUMENT;
    const Entry& entry = m_Models[static_cast<std::size_t>(model)][static_cast<std::size_t>(index)];
    label = entry.label;
    value = entry.value;
    return DUNI_S_SUCCESS;
}

DUNXString DUNXFileHeader::GetHeaderText(int model) const {
    constexpr int kLabelWidth = 20; // as the other field lines of a log
    DUNXString text("");
    for (int i = 0; i < GetEntryCount(model); ++i) {
        const Entry& entry = m_Models[static_cast<std::size_t>(model)][static_cast<std::size_t>(i)];
        const int padding = kLabelWidth - entry.label.length();
        text = text + entry.label + std::string(padding > 0 ? padding : 0, ' ').c_str() + " : " +
               entry.value + "\n";
    }
    return text;
}
