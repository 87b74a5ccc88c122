#include "pluginsource/RyJointTools/ryjeaction/RyJEActionTable.h"

#include <QtGlobal>

#include <cstring>

static const char *const rotationOrderDescription =
    QT_TRANSLATE_NOOP("RyJEToolAction", "Modifies the rotation order of the selected node.");
static const char *const rotationOrderWords =
    QT_TRANSLATE_NOOP("RyJEToolAction", "euler rotation mode rotate order axis");

static const RyJEActionText actionTexts[] = {
    {"RyJECustomColorsAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Customize Drawing..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Customize Joint Editor Tool drawing styles."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "colors colours theme appearance style opacity preferences settings")},
    {"RyJECreateBoneAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Create Child Bone..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates a child bone to the target selected node in the scene."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "add new extrude insert joint")},
    {"RyJECreateSiblingBoneAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Create Sibling Bone"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates a sibling bone of the currently selected."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "add new joint brother parallel")},
    {"RyJEDuplicateBonesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Duplicate Bones"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates duplicate bones of the currently selected."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "copy clone")},
    {"RyJESplitBoneAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Split Bone"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Splits the currently selected bone."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "subdivide divide cut insert add joint")},
    {"RyJETogglePropagateTranslationAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Propagate Translations"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables the propagation of translation for origins and end points that "
                                         "exist further down the bone hierarchy."),
     true, QT_TRANSLATE_NOOP("RyJEToolAction", "children follow descendants hierarchy affect")},
    {"RyJEToggleViewBoneCreationAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Interactive Mode"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables interactive bone creation within the viewport. Hold Ctrl and "
                                         "click in the viewport to create a new child bone."),
     true, QT_TRANSLATE_NOOP("RyJEToolAction", "draw add new extrude click joint create bone")},
    {"RyJEConvertPropToFigureAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Convert Prop to Figure..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Converts the selected prop to a figure."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "rig bind skin armature skeleton character")},
    {"RyJEConvertFigureToPropAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Convert Figure to Prop..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Converts the selected figure to a prop."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "unrig unbind detach remove skeleton static mesh")},
    {"RyJERenameNodeAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Rename Node..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Rename the currently selected node."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "name label")},
    {"RyJEReparentBoneAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Reparent Bone..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Change the parent relationship of the selected bone."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "parent unparent attach detach connect disconnect hierarchy")},
    {"RyJEMirrorAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Mirror Joints..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Copies joint parameters from one side of the figure to the other."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "symmetrize symmetry flip left right copy side")},
    {"RyJEBakeRotationsAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Bake Joint Rotations..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Bakes the current joint rotations of a single skin figure as the new "
                                         "geometry base, and replaces bones accordingly."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "freeze transformations apply pose as rest bind")},
    {"RyJEDeleteBoneAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Delete Bone"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Removes the selected bone from the scene."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "remove dissolve erase joint")},
    {"RyJEDeleteUnusedBonesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Delete Unused Bones..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Removes unused bones from the selected figure."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "remove clean up cleanup prune optimize optimise empty joints")},
    {"RyJERotationOrderXYZAction", QT_TRANSLATE_NOOP("RyJEToolAction", "XYZ"), rotationOrderDescription, false,
     rotationOrderWords},
    {"RyJERotationOrderXZYAction", QT_TRANSLATE_NOOP("RyJEToolAction", "XZY"), rotationOrderDescription, false,
     rotationOrderWords},
    {"RyJERotationOrderYXZAction", QT_TRANSLATE_NOOP("RyJEToolAction", "YXZ"), rotationOrderDescription, false,
     rotationOrderWords},
    {"RyJERotationOrderYZXAction", QT_TRANSLATE_NOOP("RyJEToolAction", "YZX"), rotationOrderDescription, false,
     rotationOrderWords},
    {"RyJERotationOrderZXYAction", QT_TRANSLATE_NOOP("RyJEToolAction", "ZXY"), rotationOrderDescription, false,
     rotationOrderWords},
    {"RyJERotationOrderZYXAction", QT_TRANSLATE_NOOP("RyJEToolAction", "ZYX"), rotationOrderDescription, false,
     rotationOrderWords},
    {"RyJEToggleAutoAlignNodeAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Auto Align Node"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables automatic alignment of the center and end points of nodes."), true,
     QT_TRANSLATE_NOOP("RyJEToolAction", "roll orient orientation automatic")},
    {"RyJEAlignNodeAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Align Node"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Modifies the orientation of the selected node to align the first axis of "
                                         "the rotation order between the center and end points."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "roll recalculate orient joint orientation axis straighten")},
    {"RyJEAlignAllBonesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Align All Bones"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Aligns all bones of the figure."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "roll recalculate orient joint orientation axis straighten")},
    {"RyJESnapCenterPointAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Snap Center Point"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Snap the Center Point of the selected node to the End Point of the parent."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "head connect attach move to parent joint origin pivot")},
    {"RyJESnapEndPointAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Snap End Point"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Snap the End Point of the selected node to the Center Point of its "
                                         "children."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "tail tip connect move to child")},
    {"RyJEToggleAutoSnapEndPointsAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Auto Snap End Points"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables automatic snapping of End Points of bones to the Center Point of "
                                         "their respective children."),
     true, QT_TRANSLATE_NOOP("RyJEToolAction", "tail tip connect keep connected automatic")},
    {"RyJEMemorizeFigureRiggingPropertiesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Memorize Figure Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Sets the current values of the rigging properties for each node of a "
                                         "figure as their default values."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "freeze apply rest pose bind pose default store save set zero")},
    {"RyJEMemorizeNodeRiggingPropertiesAction",
     QT_TRANSLATE_NOOP("RyJEToolAction", "Memorize Selected Node(s) Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Sets the current values of the rigging properties for the selected node "
                                         "as the default values."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "freeze apply rest pose bind pose default store save set zero")},
    {"RyJERestoreFigureRiggingPropertiesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Restore Figure Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Restores the rigging properties for each node of a figure to their "
                                         "default values."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "reset revert default zero rest bind pose undo changes")},
    {"RyJERestoreNodeRiggingPropertiesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Restore Selected Node(s) Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Restores the rigging properties for the selected nodes to their default "
                                         "values."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "reset revert default zero rest bind pose undo changes")},
    {"RyJETransferWSRiggingAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Transfer Rigging (Figure Space)"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Transfers the bone positions and orientations, in figure space "
                                         "coordinates, from the first selected figure to the second selected "
                                         "figure."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "copy skeleton retarget fit move bones")},
    {"RyJECreateDonorFigureAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Extract Donor Figure"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Extracts a duplicate of the selected weight mapped skeleton to act as "
                                         "donor for repositioning and transferring."),
     false, QT_TRANSLATE_NOOP("RyJEToolAction", "template copy duplicate clone skeleton export")},
    {"RyJESelectedNodesAttributesEditAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Selected Node(s) Attributes..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Set the center, end, and orientation values of all selected nodes."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "numeric transform position coordinates head tail values batch edit type in")},
    {"RyJECreateControlBonesAction", QT_TRANSLATE_NOOP("RyJEToolAction", "Create Control Bone(s)..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates one or more control bones."), false,
     QT_TRANSLATE_NOOP("RyJEToolAction", "add new controllers helper driver ghost follow rig")},
};

const RyJEActionText &ryJEActionText(const char *className)
{
    for (const RyJEActionText &row : actionTexts) {
        if (std::strcmp(row.className, className) == 0)
            return row;
    }
    qFatal("No texts for the action %s", className);
}
