#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEActionTable.h"
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

#include <cstring>

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

/// The rows of the action table that types were registered for.
size_t takenRows = 0;

/// The types and the table are two lists of the same classes in the same order.
const RyJEActionRow &takeRow(const char *className)
{
    const std::span<const RyJEActionRow> rows = ryJEActionRows();
    if (takenRows == rows.size() || std::strcmp(rows[takenRows].className, className) != 0)
        qFatal("The action table has no row for %s at place %d", className, int(takenRows));
    return rows[takenRows++];
}

/// The same for one class of the action table.
template<typename T>
class ActionRegistration : public Registration<T>
{
public:
    ActionRegistration() : Registration<T>(takeRow(T::staticMetaObject.className()).guid) {}
};

Registration<RyJointEditorTool> jointEditorTool("F84E42A0-A219-4ca5-9863-850B40E01DA8");
Registration<RyJointEditorToolAction> jointEditorToolAction("D2E00EE9-B6BE-4714-9F55-C78632BB4DF4");
ActionRegistration<RyJECustomColorsAction> jeCustomColorsAction;
ActionRegistration<RyJECreateBoneAction> jeCreateBoneAction;
ActionRegistration<RyJECreateSiblingBoneAction> jeCreateSiblingBoneAction;
ActionRegistration<RyJEDuplicateBonesAction> jeDuplicateBonesAction;
ActionRegistration<RyJESplitBoneAction> jeSplitBoneAction;
ActionRegistration<RyJETogglePropagateTranslationAction> jeTogglePropagateTranslationAction;
ActionRegistration<RyJEToggleViewBoneCreationAction> jeToggleViewBoneCreationAction;
ActionRegistration<RyJEConvertPropToFigureAction> jeConvertPropToFigureAction;
ActionRegistration<RyJEConvertFigureToPropAction> jeConvertFigureToPropAction;
ActionRegistration<RyJERenameNodeAction> jeRenameNodeAction;
ActionRegistration<RyJEReparentBoneAction> jeReparentBoneAction;
ActionRegistration<RyJEMirrorAction> jeMirrorAction;
ActionRegistration<RyJEBakeRotationsAction> jeBakeRotationsAction;
ActionRegistration<RyJEDeleteBoneAction> jeDeleteBoneAction;
ActionRegistration<RyJEDeleteUnusedBonesAction> jeDeleteUnusedBonesAction;
ActionRegistration<RyJERotationOrderXYZAction> jeRotationOrderXYZAction;
ActionRegistration<RyJERotationOrderXZYAction> jeRotationOrderXZYAction;
ActionRegistration<RyJERotationOrderYXZAction> jeRotationOrderYXZAction;
ActionRegistration<RyJERotationOrderYZXAction> jeRotationOrderYZXAction;
ActionRegistration<RyJERotationOrderZXYAction> jeRotationOrderZXYAction;
ActionRegistration<RyJERotationOrderZYXAction> jeRotationOrderZYXAction;
ActionRegistration<RyJEToggleAutoAlignNodeAction> jeToggleAutoAlignNodeAction;
ActionRegistration<RyJEAlignNodeAction> jeAlignNodeAction;
ActionRegistration<RyJEAlignAllBonesAction> jeAlignAllBonesAction;
ActionRegistration<RyJESnapCenterPointAction> jeSnapCenterPointAction;
ActionRegistration<RyJESnapEndPointAction> jeSnapEndPointAction;
ActionRegistration<RyJEToggleAutoSnapEndPointsAction> jeToggleAutoSnapEndPointsAction;
ActionRegistration<RyJEMemorizeFigureRiggingPropertiesAction> jeMemorizeFigureRiggingPropertiesAction;
ActionRegistration<RyJEMemorizeNodeRiggingPropertiesAction> jeMemorizeNodeRiggingPropertiesAction;
ActionRegistration<RyJERestoreFigureRiggingPropertiesAction> jeRestoreFigureRiggingPropertiesAction;
ActionRegistration<RyJERestoreNodeRiggingPropertiesAction> jeRestoreNodeRiggingPropertiesAction;
ActionRegistration<RyJETransferWSRiggingAction> jeTransferWSRiggingAction;
ActionRegistration<RyJECreateDonorFigureAction> jeCreateDonorFigureAction;
Registration<RyMVCCageAdjustRigToShapeAction> mVCCageAdjustRigToShapeAction("12FD5B52-AD10-421E-B3D9-6FBCE97D83B5");
Registration<RyShapeRiggingAdjuster> shapeRiggingAdjuster("681E490E-BFDE-4592-BA6E-BB23C1787590",
                                                          QScriptEngine::AutoOwnership);
ActionRegistration<RyJESelectedNodesAttributesEditAction> jeSelectedNodesAttributesEditAction;
ActionRegistration<RyJECreateControlBonesAction> jeCreateControlBonesAction;
Registration<RyBindingToSelectionMapBuilder> bindingToSelectionMapBuilder("AFB4161D-C008-4CC7-AA0B-B2D90E0BE2D4",
                                                                          QScriptEngine::AutoOwnership);

const bool complete = [] {
    if (takenRows != ryJEActionRows().size())
        qFatal("No class is registered for %s", ryJEActionRows()[takenRows].className);
    return true;
}();

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
