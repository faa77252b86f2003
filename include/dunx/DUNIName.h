// Public names: the components, directions and representations that options address.
#pragma once

#include <dunx/DUNIObject.h>
#include <dunx/DUNIResult.h>
#include <dunx/DUNXExport.h>
#include <dunx/DUNXString.h>

/// The implementation of a name: its text. Type name "DUNIName".
class DUNX_EXPORT DUNINameImpl : public DUNIObjectImpl {
public:
    /// A name holding `text`.
    explicit DUNINameImpl(const DUNXString& text);
    ~DUNINameImpl() override;
    /// Copies the text into `text`; succeeds.
    DUNIResult GetName(DUNXString& text) const;
    /// Replaces the text; succeeds.
    DUNIResult SetName(const DUNXString& text);

private:
    DUNXString m_Text;
};

/// A public name. Copy construction is uncounted (see `DUNIObject`);
/// assignment shares the name safely.
///
///     DUNIName name("Healing");
///     name.GetName(text);          // text => "Healing"
class DUNX_EXPORT DUNIName : public DUNIObject {
public:
    /// A name holding `text` (null gives the null string).
    explicit DUNIName(const char* text);
    DUNIName(const DUNIName& other) = default;
    DUNIName& operator=(const DUNIName& other);
    ~DUNIName() override;

    /// Copies the name's text into `text`; `DUNI_E_INVALID_OBJECT` (and `text`
    /// untouched) for a name without implementation.
    DUNIResult GetName(DUNXString& text) const;
    /// The name's text; the null string for a name without implementation.
    DUNXString GetText() const;
    /// Same text (unit-wise); names without implementation equal each other.
    bool operator==(const DUNIName& other) const;
    bool operator!=(const DUNIName& other) const { return !(*this == other); }

protected:
    /// A name of another type name holding `text`.
    DUNIName(const char* typeName, const DUNXString& text);
};

/// The name of a component of the family (a format's reader and writer).
class DUNX_EXPORT DUNIComponentName : public DUNIName {
public:
    explicit DUNIComponentName(const char* text);
    DUNIComponentName(const DUNIComponentName& other) = default;
    DUNIComponentName& operator=(const DUNIComponentName& other);
    ~DUNIComponentName() override;

    static const DUNIComponentName Any; ///< "*": any component
    static const DUNIComponentName Orvo;
    static const DUNIComponentName KestraV4;
    static const DUNIComponentName KestraV5;
    static const DUNIComponentName EBOM;
    static const DUNIComponentName Generic;
    static const DUNIComponentName HSF;
    static const DUNIComponentName IDEAS;
    static const DUNIComponentName IGES;
    static const DUNIComponentName JT;
    static const DUNIComponentName Brevant;
    static const DUNIComponentName Step;
    static const DUNIComponentName UG;
    static const DUNIComponentName Vda;
    static const DUNIComponentName Proe;
    static const DUNIComponentName Inventor;
};

/// A direction: the reader or the writer of a component.
class DUNX_EXPORT DUNIReaderWriterName : public DUNIName {
public:
    explicit DUNIReaderWriterName(const char* text);
    DUNIReaderWriterName(const DUNIReaderWriterName& other) = default;
    DUNIReaderWriterName& operator=(const DUNIReaderWriterName& other);
    ~DUNIReaderWriterName() override;

    static const DUNIReaderWriterName Any; ///< "*": either direction
    static const DUNIReaderWriterName Reader;
    static const DUNIReaderWriterName Writer;
};

/// A representation of the data: assembly, boundary representation, mesh or visualisation.
class DUNX_EXPORT DUNIRepresentationName : public DUNIName {
public:
    explicit DUNIRepresentationName(const char* text);
    DUNIRepresentationName(const DUNIRepresentationName& other) = default;
    DUNIRepresentationName& operator=(const DUNIRepresentationName& other);
    ~DUNIRepresentationName() override;

    static const DUNIRepresentationName Any; ///< "*": any representation
    static const DUNIRepresentationName Assembly;
    static const DUNIRepresentationName BRep;
    static const DUNIRepresentationName Mesh;
    static const DUNIRepresentationName Visualization;
};
