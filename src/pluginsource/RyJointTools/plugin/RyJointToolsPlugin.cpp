#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEConversionActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDrawingActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEEditActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJENodeActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERotationOrderActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEToggleActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJointEditorToolAction.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/app/RyMVCCageAdjustRigToShapeAction.h"
#include "rycore/base/RyPlugin.h"
#include "rycore/base/RyTClassFactory.h"
#include "rycore/figure/RyShapeRiggingAdjuster.h"

// What the host learns of this library. All objects here are made when the library is loaded, in the order in which
// they stand, and go in reverse order when it is unloaded. The host lists the classes in this order and
// tells them apart by their identifiers: neither may change.

namespace {

RyPlugin plugin(QLatin1String("Joint Editor Tool"), QString(), QString(), 0, 0, 0, 0);

const bool described = [] {
    plugin.setAuthor(QLatin1String("Joint Tools Developers"));
    plugin.setVersion(1, 15, 0, 15);
    plugin.setDescription(QLatin1String(
        "This plug-in provides a viewport tool that allows the manipulation of Joint Parameters on figures and props "
        "in the scene. Joint Parameters can be accessed in the viewport with mouse interactions or by numeric entry "
        "via properties in the Tool Settings pane."));
    return true;
}();

/// Adds the factory of one class and makes pointers to the class a meta-type.
template<typename T>
class Registration
{
public:
    explicit Registration(const char *guid, QScriptEngine::ValueOwnership ownership = QScriptEngine::QtOwnership)
        : m_factory(&T::staticMetaObject, RyGuid::fromString(QLatin1String(guid)))
    {
        const QByteArray pointerName = QByteArray(T::staticMetaObject.className()) + '*';
        qRegisterMetaType<T *>(pointerName.constData());
        m_factory.setScriptOwnership(ownership);
        plugin.addClassFactory(&m_factory);
    }

private:
    RyTClassFactory<T> m_factory;
};

// clang-format off
Registration<RyJointEditorTool> jointEditorTool("F84E42A0-A219-4ca5-9863-850B40E01DA8");
Registration<RyJointEditorToolAction> jointEditorToolAction("D2E00EE9-B6BE-4714-9F55-C78632BB4DF4");
Registration<RyJECustomColorsAction> jeCustomColorsAction("64DAE081-F3DB-4b45-860D-8570A55EC404");
Registration<RyJECreateBoneAction> jeCreateBoneAction("E51D93DF-E66D-4378-A68E-69ED7F2D83B0");
Registration<RyJECreateSiblingBoneAction> jeCreateSiblingBoneAction("53278283-aa8f-42bc-a82b-9115b7989957");
Registration<RyJEDuplicateBonesAction> jeDuplicateBonesAction("A9C980D7-AE7A-4BB5-9DEE-4802F1434961");
Registration<RyJESplitBoneAction> jeSplitBoneAction("f04818b4-7a4a-48d7-aee7-3fd8ba528ff5");
Registration<RyJETogglePropagateTranslationAction> jeTogglePropagateTranslationAction(
    "EF9A9D1A-DE0E-4DEA-AEEF-E50565461BAC");
Registration<RyJEToggleViewBoneCreationAction> jeToggleViewBoneCreationAction("9DAC738E-DED9-41A5-8683-1C18FADA69E0");
Registration<RyJEConvertPropToFigureAction> jeConvertPropToFigureAction("AF132CA7-819D-4D33-8505-B0DA52B1F00D");
Registration<RyJEConvertFigureToPropAction> jeConvertFigureToPropAction("947BF705-FBED-4703-A12D-297D375172AC");
Registration<RyJERenameNodeAction> jeRenameNodeAction("91E05663-CA8F-4df4-BC0E-324AE10B6255");
Registration<RyJEReparentBoneAction> jeReparentBoneAction("c5df7a66-368f-4759-84bf-034bb61533ce");
Registration<RyJEMirrorAction> jeMirrorAction("A82C5AE2-732A-437b-98FB-B3A46D9E3A54");
Registration<RyJEBakeRotationsAction> jeBakeRotationsAction("72a79d2e-ba49-47b6-a8cc-f9edb0dbdf09");
Registration<RyJEDeleteBoneAction> jeDeleteBoneAction("FCCBC073-5E95-4be1-8BFE-5318EE7D96A6");
Registration<RyJEDeleteUnusedBonesAction> jeDeleteUnusedBonesAction("4AC8F0E0-B1F2-43C0-BDC9-BD28489CB71E");
Registration<RyJERotationOrderXYZAction> jeRotationOrderXYZAction("68D3BE80-1304-4764-B35D-7630C16685EF");
Registration<RyJERotationOrderXZYAction> jeRotationOrderXZYAction("18B615FE-36E1-4CAC-A5F2-762E53C94115");
Registration<RyJERotationOrderYXZAction> jeRotationOrderYXZAction("7D4F3C90-5470-43FE-A643-6184C39AE002");
Registration<RyJERotationOrderYZXAction> jeRotationOrderYZXAction("F7ADADCA-69BA-4A17-BBC8-95E8CF937510");
Registration<RyJERotationOrderZXYAction> jeRotationOrderZXYAction("2EACAF43-6009-4F59-A865-83F814B8AE15");
Registration<RyJERotationOrderZYXAction> jeRotationOrderZYXAction("9CE30043-26EC-4632-BA24-5AB729308D04");
Registration<RyJEToggleAutoAlignNodeAction> jeToggleAutoAlignNodeAction("E2663E7C-6315-4551-ABC1-A944F0403C52");
Registration<RyJEAlignNodeAction> jeAlignNodeAction("5E8048D7-7EDD-4DB6-854D-251EBBB15547");
Registration<RyJEAlignAllBonesAction> jeAlignAllBonesAction("09D3C843-1E65-435b-A2F0-C262687BE606");
Registration<RyJESnapCenterPointAction> jeSnapCenterPointAction("34C3E973-AD26-4BD5-A105-042B09ABCB2F");
Registration<RyJESnapEndPointAction> jeSnapEndPointAction("A4D47052-9C0B-4C6C-A09A-3AA9C2C95E74");
Registration<RyJEToggleAutoSnapEndPointsAction> jeToggleAutoSnapEndPointsAction("4CDA7A48-E784-45A2-B907-DFE2BEC17B29");
Registration<RyJEMemorizeFigureRiggingPropertiesAction> jeMemorizeFigureRiggingPropertiesAction(
    "7B3B3C16-624E-4C12-B305-312B78E1C245");
Registration<RyJEMemorizeNodeRiggingPropertiesAction> jeMemorizeNodeRiggingPropertiesAction(
    "2e95c3a6-3772-4025-a757-7a884cd94542");
Registration<RyJERestoreFigureRiggingPropertiesAction> jeRestoreFigureRiggingPropertiesAction(
    "B916F30C-9701-47D9-AFD3-2D08FCD9BD78");
Registration<RyJERestoreNodeRiggingPropertiesAction> jeRestoreNodeRiggingPropertiesAction(
    "c7dfb33c-d73a-4e93-9035-c73fbc3b1da5");
Registration<RyJETransferWSRiggingAction> jeTransferWSRiggingAction("3dd85216-d77c-44a6-94fb-53485b4bff6e");
Registration<RyJECreateDonorFigureAction> jeCreateDonorFigureAction("CC213796-7484-4626-B024-04E1DA2239D3");
Registration<RyMVCCageAdjustRigToShapeAction> mVCCageAdjustRigToShapeAction("12FD5B52-AD10-421E-B3D9-6FBCE97D83B5");
Registration<RyShapeRiggingAdjuster> shapeRiggingAdjuster(
    "681E490E-BFDE-4592-BA6E-BB23C1787590", QScriptEngine::AutoOwnership);
Registration<RyJESelectedNodesAttributesEditAction> jeSelectedNodesAttributesEditAction(
    "127ADE47-07D1-44CB-90BF-978347FE3F9A");
Registration<RyJECreateControlBonesAction> jeCreateControlBonesAction("1165A48B-EC51-46B9-ABE7-E7420EA5361E");
Registration<RyBindingToSelectionMapBuilder> bindingToSelectionMapBuilder(
    "AFB4161D-C008-4CC7-AA0B-B2D90E0BE2D4", QScriptEngine::AutoOwnership);
// clang-format on

} // namespace

extern "C" {

/// The version of the host's interface that this library was built against.
Q_DECL_EXPORT RyVersion getSDKVersion()
{
    return RyVersion(4, 22, 0, 7);
}

Q_DECL_EXPORT RyPlugin *getPluginDefinition()
{
    return &plugin;
}

} // extern "C"
