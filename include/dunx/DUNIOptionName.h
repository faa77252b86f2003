// DUNIOptionName: the public option names, and their composition from component names.
#pragma once

#include <dunx/DUNIName.h>
#include <dunx/DUNXExport.h>

// Every public option name whose text is its own identifier, one X(name) each.
// ThreeDCurvePref ("3DCurvePref") and ThreeDCurveRegen ("3DCurveRegen") are
// declared apart: an identifier cannot begin with a digit.
// clang-format off
#define DUNI_OPTION_NAMES(X) \
    X(AcceptBadData) X(AddMultBodiesInSamePart) X(AllowNonManifoldTopology) X(AngleUnit) \
    X(AssemblySaveType) X(AttachFaceId) X(AuthorName) X(ClassVIAsTrimStitch) X(CleanModel) \
    X(ClubAllSheets) X(ClubAllWires) X(ConfigFile) X(ConvertAnalyticalCurvesToSpline) \
    X(ConvertAnalyticalSurfacesAndCurvesToSpline) X(ConvertAnalyticalSurfacesToSpline) \
    X(ConvertAttributes) X(ConvTrimToClassIIIWires) X(ConvTrimToClassIVFaces) \
    X(CopiousToManyCurves) X(CopiousToStraightCurves) X(CreateMultiLumpBody) X(DateFormat) \
    X(DateTimeStamp) X(DoCheckOrvoModel) X(DoSplineResurface) X(ElementNameOption) \
    X(EnableCurveSimplification) X(EnableMultiLumpBody) X(EnableSurfaceSimplification) \
    X(EndOfLineCharLength) X(ExplodeClassIIWires) X(ExplodeIfFailed) X(ExportDittoBodies) \
    X(FaceGraphicalAttributes_BoundaryPickable) X(FaceGraphicalAttributes_IsoparamsPickable) \
    X(FaceGraphicalAttributes_NU) X(FaceGraphicalAttributes_NV) X(FileDescription) \
    X(FileLineIncrement) X(FileLineLength) X(FileName) X(FileTolerance) \
    X(FixFaceFaceInconsistency) X(Flatten) X(Flavor) X(FreePlaneBound) X(Healing) \
    X(ImplementationLevel) X(ImportSolidAsSolide) X(InterpretAngleAsDegree) X(MajorVersion) \
    X(MapLumpToRegion) X(MaskEntitiesByDE) X(MaskEntitiesByID) X(MaskInclusive) \
    X(MaxLineWeightGradations) X(MaxLineWeightWidth) X(MaxSewingTol) X(MergeC1Edges) \
    X(MinSewingTol) X(ModellerStart) X(NoShowSurfaceThickness) X(OrganizationName) \
    X(OutPutOnlyValidParts) X(OverrideFaceColorWithBodyColor) X(PreProcessorVersion) \
    X(ProductDefBasedRead) X(ProgramName) X(ReadProduct1stField) X(ReadScaleFactor) \
    X(ReceivingSystemName) X(RecordingSession) X(Regenerate3DCurves) X(Representation) \
    X(RollbackSewOnError) X(SaveMode) X(SaveVersion) X(SchemaName) X(SendingSystemName) \
    X(ServerName) X(SetAuthorName) X(SetLanguage) X(SetMinorVersion) X(SetModelDimension) \
    X(SetModelName) X(SewSheetBodies) X(SewTolerance) X(SourceUnitAsAttrib) \
    X(SplitAtG1Discontinuities) X(SplitPeriodic) X(StartSection) X(StepFileStartLineNumber) \
    X(StringentChecks) X(TempDirectory) X(TimeStamp) X(TranslateAllClass2SheetsInSingleBody) \
    X(TranslateAnnotationsAsGeometry) X(TranslateAsAp214Format) X(TranslateAssemblies) \
    X(TranslateAssemblyFeatures) X(TranslateAttributes) X(TranslateClassIIFaces) \
    X(TranslateClassIIIWires) X(TranslateClassIIWires) X(TranslateClassIVAsTrim) \
    X(TranslateClassIVFaces) X(TranslateClassVFacetedSolid) X(TranslateClassVISolid) \
    X(TranslateExtraEntities) X(TranslateFreeAsAssembly) X(TranslateFreeCurves) \
    X(TranslateFreePoints) X(TranslateFreeSurfaces) X(TranslateFromWorkBench) \
    X(TranslateGroupAsAssemblies) X(TranslateGroupEntities) X(TranslateHiddenEntities) \
    X(TranslateLayersAndFilters) X(TranslateNoPicks) X(TranslateOnlyMasterWorkSpace) \
    X(TranslateOnlyRootEntities) X(TranslatePlanarSheetsAsBoundedPlanes) X(TranslatePlaneAsSweep) \
    X(TranslateSelectionSets) X(TranslateSheetAsClassIISurface) \
    X(TranslateSheetAsNonManifoldSurface) X(TranslateSheetBodies) \
    X(TranslateSheetsAsBoundedSurface) X(TranslateSheetsOnly) X(TranslateSolidAsClassIISurface) \
    X(TranslateSolidAsClassIIWires) X(TranslateSolidAsClassIV) X(TranslateSolidAsFaces) \
    X(TranslateSolidAsNonManifoldSurface) X(TranslateSolidAsSheets) X(TranslateSolidAsSolid) \
    X(TranslateSolidAsWires) X(TranslateSolidBodies) X(TranslateSolidSurfsAsParametricSurf) \
    X(TranslateStepClassI) X(TranslateSuppressedInstances) X(TranslateTopEntities) \
    X(TranslateWireAsClassIIIWires) X(TranslateWireAsClassIIWires) X(TranslateWireAsCopious) \
    X(TranslateWorkPlanes) X(TrimCurveReadPreference) X(TrimCurveWritePreference) X(Use3DCurves) \
    X(UseAnalyticSurfaceDef) X(WriteAnalytics) X(WriteAssemAsCtxtDepShapeRep) X(WriteLengthUnit) \
    X(WriteShortName) X(WriteSolidClass3) X(WriteTolerance)
// clang-format on

/// A public option name, alone or scoped by the component, representation and
/// direction it applies to. Composed names join their parts' texts with '.';
/// a part without implementation adds an empty text, its '.' all the same:
///
///     DUNIOptionName(DUNIComponentName::IGES, DUNIRepresentationName::BRep,
///                    DUNIReaderWriterName::Reader, DUNIOptionName::Healing)
///         => "IGES.BRep.Reader.Healing"
///     DUNIOptionName(DUNIComponentName::JT, DUNIRepresentationName::Assembly,
///                    DUNIReaderWriterName::Writer, DUNIComponentName::KestraV5,
///                    DUNIOptionName::Representation)
///         => "JT.Assembly.Writer.KestraV5.Representation"
///
/// Copy construction is uncounted, as for every public handle (see `DUNIObject`).
class DUNX_EXPORT DUNIOptionName : public DUNIName {
public:
    /// The name `text`.
    explicit DUNIOptionName(const char* text);
    /// "component.option".
    DUNIOptionName(const DUNIComponentName& component, const DUNIName& option);
    /// "component.representation.option".
    DUNIOptionName(const DUNIComponentName& component, const DUNIRepresentationName& representation,
                   const DUNIName& option);
    /// "component.representation.direction.option".
    DUNIOptionName(const DUNIComponentName& component, const DUNIRepresentationName& representation,
                   const DUNIReaderWriterName& direction, const DUNIName& option);
    /// "component.representation.direction.source.option": an option that
    /// applies when the data comes from the `source` component's format.
    DUNIOptionName(const DUNIComponentName& component, const DUNIRepresentationName& representation,
                   const DUNIReaderWriterName& direction, const DUNIComponentName& source,
                   const DUNIName& option);
    DUNIOptionName(const DUNIOptionName& other) = default;
    DUNIOptionName& operator=(const DUNIOptionName& other);
    ~DUNIOptionName() override;

#define DUNI_DECLARE_OPTION_NAME(name) static const DUNIOptionName name;
    DUNI_OPTION_NAMES(DUNI_DECLARE_OPTION_NAME)
#undef DUNI_DECLARE_OPTION_NAME
    static const DUNIOptionName ThreeDCurvePref;  ///< "3DCurvePref"
    static const DUNIOptionName ThreeDCurveRegen; ///< "3DCurveRegen"
};
