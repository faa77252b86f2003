#include <dunx/DUNIFile.h>
#include <dunx/DUNIName.h>
#include <dunx/DUNIObject.h>
#include <dunx/DUNIOptionName.h>
#include <dunx/DUNXOptionName.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

// An implementation that counts its own destruction.
struct Probe : DUNIObjectImpl {
    explicit Probe(int& destroyed) : DUNIObjectImpl("Probe"), destroyed(destroyed) {}
    ~Probe() override { ++destroyed; }
    int& destroyed;
};

// A handle that exposes the counting members to the test.
struct Handle : DUNIObject {
    Handle() : DUNIObject("Handle") {}
    using DUNIObject::GetImpl;
    using DUNIObject::Ref;
    using DUNIObject::Unref;
};

std::string textOf(const DUNIName& name) {
    const DUNXString text = name.GetText();
    const char* narrow = text;
    return narrow ? narrow : "<null>";
}

} // namespace

TEST(DUNIObject, ImplementationsLiveWhileAHandleHoldsThem) {
    int destroyed = 0;
    auto* probe = new Probe(destroyed);
    {
        Handle first;
        EXPECT_FALSE(first.IsValid());
        EXPECT_EQ(first.Ref() + first.Unref(), 0) << "no data: both answer 0";
        first.SetData(probe);
        EXPECT_TRUE(first.IsValid());
        {
            Handle second;
            second.SetData(probe);
            second.SetData(probe); // the pointer already held: no count change
            EXPECT_EQ(second.Ref(), 3);
            EXPECT_EQ(second.Unref(), 2);
        }
        EXPECT_EQ(destroyed, 0) << "the first handle still holds it";
        Handle third;
        third = first; // assignment takes a reference
        third.SetData(nullptr);
        EXPECT_TRUE(destroyed == 0 && !third.IsValid());
    }
    EXPECT_EQ(destroyed, 1);

    // Replacing the data releases the old implementation.
    Handle handle;
    handle.SetData(new Probe(destroyed));
    handle.SetData(new Probe(destroyed));
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(handle.Unref(), 0);
    EXPECT_TRUE(destroyed == 3 && handle.GetData() == nullptr);

    // The uncounted copy shares the implementation without a reference: the
    // Ref below, which gives the copy its reference, answers 2, not 3.
    Handle source;
    source.SetData(new Probe(destroyed));
    const Handle copy(source);
    EXPECT_EQ(copy.GetData(), source.GetData());
    EXPECT_EQ(source.Ref(), 2);
}

TEST(DUNIObject, ImplementationsAreNamedAfterTheProcessWideCounter) {
    const int before = DUNIObjectImpl::_objectCounter;
    int destroyed = 0;
    Probe a(destroyed), b(destroyed);
    DUNIName name("x");
    EXPECT_STREQ(a.GetName(), ("Probe[" + std::to_string(before + 1) + "]").c_str());
    EXPECT_STREQ(b.GetName(), ("Probe[" + std::to_string(before + 2) + "]").c_str());
    EXPECT_STREQ(static_cast<DUNIObjectImpl*>(name.GetData())->GetName(),
                 ("DUNIName[" + std::to_string(before + 3) + "]").c_str());
    EXPECT_GT(before, 150) << "the constant names were made at load";
}

TEST(DUNIName, HoldsItsTextAndTheConstantsHoldTheirs) {
    const struct {
        const DUNIName& name;
        const char* text;
        const char* typeName;
    } rows[] = {
        {DUNIComponentName::Any, "*", "DUNIComponentName"},
        {DUNIComponentName::Orvo, "Orvo", "DUNIComponentName"},
        {DUNIComponentName::KestraV4, "KestraV4", "DUNIComponentName"},
        {DUNIComponentName::KestraV5, "KestraV5", "DUNIComponentName"},
        {DUNIComponentName::EBOM, "EBOM", "DUNIComponentName"},
        {DUNIComponentName::Generic, "Generic", "DUNIComponentName"},
        {DUNIComponentName::HSF, "HSF", "DUNIComponentName"},
        {DUNIComponentName::IDEAS, "IDEAS", "DUNIComponentName"},
        {DUNIComponentName::IGES, "IGES", "DUNIComponentName"},
        {DUNIComponentName::JT, "JT", "DUNIComponentName"},
        {DUNIComponentName::Brevant, "Brevant", "DUNIComponentName"},
        {DUNIComponentName::Step, "Step", "DUNIComponentName"},
        {DUNIComponentName::UG, "UG", "DUNIComponentName"},
        {DUNIComponentName::Vda, "Vda", "DUNIComponentName"},
        {DUNIComponentName::Proe, "Proe", "DUNIComponentName"},
        {DUNIComponentName::Inventor, "Inventor", "DUNIComponentName"},
        {DUNIReaderWriterName::Any, "*", "DUNIReaderWriterName"},
        {DUNIReaderWriterName::Reader, "Reader", "DUNIReaderWriterName"},
        {DUNIReaderWriterName::Writer, "Writer", "DUNIReaderWriterName"},
        {DUNIRepresentationName::Any, "*", "DUNIRepresentationName"},
        {DUNIRepresentationName::Assembly, "Assembly", "DUNIRepresentationName"},
        {DUNIRepresentationName::BRep, "BRep", "DUNIRepresentationName"},
        {DUNIRepresentationName::Mesh, "Mesh", "DUNIRepresentationName"},
        {DUNIRepresentationName::Visualization, "Visualization", "DUNIRepresentationName"},
        {DUNIOptionName::ThreeDCurvePref, "3DCurvePref", "DUNIOptionName"},
        {DUNIOptionName::ThreeDCurveRegen, "3DCurveRegen", "DUNIOptionName"},
        {DUNIOptionName::AcceptBadData, "AcceptBadData", "DUNIOptionName"},
        {DUNIOptionName::WriteLengthUnit, "WriteLengthUnit", "DUNIOptionName"},
        {DUNIOptionName::FaceGraphicalAttributes_NU, "FaceGraphicalAttributes_NU",
         "DUNIOptionName"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(textOf(row.name), row.text);
        EXPECT_STREQ(row.name.GetTypeName(), row.typeName);
        EXPECT_TRUE(row.name.IsValid());
    }
    EXPECT_TRUE(DUNIComponentName::Any == DUNIRepresentationName::Any &&
                DUNIComponentName::IGES != DUNIComponentName::JT);

    DUNIName name("Healing"), other("Other");
    DUNXString text("untouched");
    EXPECT_EQ(name.GetName(text), DUNI_S_SUCCESS);
    EXPECT_STREQ(static_cast<const char*>(text), "Healing");
    static_cast<DUNINameImpl*>(name.GetData())->SetName(DUNXString("Renamed"));
    other = name; // shares the implementation, counted
    EXPECT_EQ(textOf(other), "Renamed");
    EXPECT_EQ(textOf(DUNIName(nullptr)), "<null>");
    other.SetData(nullptr);
    text = DUNXString("untouched");
    EXPECT_EQ(other.GetName(text), DUNI_E_INVALID_OBJECT);
    EXPECT_STREQ(static_cast<const char*>(text), "untouched");
}

TEST(DUNIOptionName, EveryConstantIsItsOwnTextAndComposedNamesJoinWithDots) {
    int count = 0;
#define DUNI_CHECK_OPTION_NAME(name)                                                               \
    ++count;                                                                                       \
    EXPECT_EQ(textOf(DUNIOptionName::name), #name);
    DUNI_OPTION_NAMES(DUNI_CHECK_OPTION_NAME)
#undef DUNI_CHECK_OPTION_NAME
    EXPECT_EQ(count, 156) << "with the two 3D names, 158 public option names";

    using C = DUNIComponentName;
    using R = DUNIRepresentationName;
    using D = DUNIReaderWriterName;
    using O = DUNIOptionName;
    DUNIRepresentationName empty("");
    DUNIComponentName none("x");
    none.SetData(nullptr);
    EXPECT_EQ(textOf(O(C::IGES, R::BRep, D::Reader, O::Healing)), "IGES.BRep.Reader.Healing");
    EXPECT_EQ(textOf(O(C::JT, R::Assembly, D::Writer, C::KestraV5, O::Representation)),
              "JT.Assembly.Writer.KestraV5.Representation");
    EXPECT_EQ(textOf(O(C::Step, O::ThreeDCurvePref)), "Step.3DCurvePref");
    EXPECT_EQ(textOf(O(C::Any, R::Mesh, O::SewTolerance)), "*.Mesh.SewTolerance");
    EXPECT_EQ(textOf(O(none, empty, D::Any, O::Flavor)), "..*.Flavor");
    EXPECT_EQ(textOf(O("Free.Text")), "Free.Text");
}

TEST(DUNXOptionName, KeysConvertBackAndIdentifiersFollowTheirKeys) {
    const DUNXOptionName key("/XGeneric/ConvertToSpline.true/SplineAsRational");
    EXPECT_STREQ(static_cast<const char*>(key), "/XGeneric/ConvertToSpline.true/SplineAsRational");
    EXPECT_STREQ(static_cast<const char*>(DUNXOptionName::XStl_Import_Unit), "/XStl/Import/Unit");
    const struct {
        const char *identifier, *key;
        bool follows;
    } rows[] = {
        {"XGeneric_ConvertToSpline_true_SplineAsRational",
         "/XGeneric/ConvertToSpline.true/SplineAsRational", true},
        {"HealBodyPostProcess_XGeneric", "HealBodyPostProcess|XGeneric", true},
        {"XCore_Import_CallAtProductLevel", "/XCore/Import/CallAtProductLevel", true},
        {"Import_ExtendIfPCrvOutsideSrf", "Import|ExtendIfPCrvOutsideSrf", true},
        {"XIges_Export_Flag_Restricted", "/XIges/Export/Flag!Restricted", true},
        {"PlainKey", "PlainKey", true},
        {"_XCore_A", "//XCore/A", true}, // only the first '/' is dropped
        {"XCore_Import", "/XCore/Import/", false},
        {"XCore_Import_", "/XCore/Import", false},
        {"XCore.Import", "/XCore.Import", false},
        {"xcore_import", "/XCore/Import", false},
        {"", "", true},
        {nullptr, "/A", false},
        {"A", nullptr, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(DUNXOptionName::IsIdentifierOf(row.identifier, row.key), row.follows)
            << (row.identifier ? row.identifier : "<null>");
    // Every key the library declares follows the rule.
    const DUNXOptionKeyRow declared[] = {DUNX_LIBRARY_OPTION_KEYS(DUNX_OPTION_KEY_ROW)};
    for (const DUNXOptionKeyRow& row : declared)
        EXPECT_TRUE(DUNXOptionName::IsIdentifierOf(row.identifier, row.key)) << row.identifier;
}

TEST(DUNIFile, WrapsAFileByPathOrDescriptor) {
    const unsigned short widePath[] = {'d', '/', 'f', '.', 't', 'x', 't', 0};
    const DUNIFile narrow("dir/a.stl"), wide(widePath), byDescriptor(2), byFile(stdout, "w"),
        none(static_cast<const char*>(nullptr)), noFile(static_cast<std::FILE*>(nullptr), "r");
    DUNXFilePath path;
    ASSERT_TRUE(narrow.IsValid() && wide.IsValid() && byDescriptor.IsValid() && byFile.IsValid());
    EXPECT_FALSE(none.IsValid() || noFile.IsValid() || none.GetFileImpl());
    EXPECT_TRUE(narrow.GetFileImpl()->HasPath());
    EXPECT_EQ(narrow.GetFileImpl()->GetPath(path), DUNI_S_SUCCESS);
    EXPECT_TRUE(path.GetPath().equals("dir\\a.stl"));
    EXPECT_EQ(wide.GetFileImpl()->GetPath(path), DUNI_S_SUCCESS);
    EXPECT_TRUE(path.GetPath().equals("d\\f.txt"));
    EXPECT_FALSE(byDescriptor.GetFileImpl()->HasPath());
    EXPECT_EQ(byDescriptor.GetFileImpl()->GetPath(path), DUNI_E_FAIL);
    EXPECT_TRUE(path.GetPath().equals("d\\f.txt")) << "left untouched";
    EXPECT_EQ(byDescriptor.GetFileImpl()->GetFile()->GetDescriptor(), 2);
    EXPECT_EQ(byFile.GetFileImpl()->GetFile()->GetDescriptor(), 1);
    EXPECT_STREQ(byFile.GetFileImpl()->GetFile()->GetMode(), "w");
}
