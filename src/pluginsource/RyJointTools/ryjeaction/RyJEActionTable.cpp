#include "pluginsource/RyJointTools/ryjeaction/RyJEActionTable.h"

#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include <QtGlobal>

#include <cstring>

namespace {

constexpr bool command = false;
constexpr bool check = true;

constexpr const char *rotationOrderDescription =
    QT_TRANSLATE_NOOP("RyJEToolAction", "Modifies the rotation order of the selected node.");
constexpr const char *rotationOrderWords = QT_TRANSLATE_NOOP("RyJEToolAction", "euler rotation mode rotate order axis");

// clang-format off
constexpr RyJEActionRow rows[] = {
    {"RyJECustomColorsAction", "64DAE081-F3DB-4b45-860D-8570A55EC404", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Customize Drawing..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Customize Joint Editor Tool drawing styles."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "colors colours theme appearance style opacity preferences settings")},
    {"RyJECreateBoneAction", "E51D93DF-E66D-4378-A68E-69ED7F2D83B0", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Create Child Bone..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates a child bone to the target selected node in the scene."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "add new extrude insert joint")},
    {"RyJECreateSiblingBoneAction", "53278283-aa8f-42bc-a82b-9115b7989957", isBoneOfFigure, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Create Sibling Bone"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates a sibling bone of the currently selected."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "add new joint brother parallel")},
    {"RyJEDuplicateBonesAction", "A9C980D7-AE7A-4BB5-9DEE-4802F1434961", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Duplicate Bones"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates duplicate bones of the currently selected."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "copy clone")},
    {"RyJESplitBoneAction", "f04818b4-7a4a-48d7-aee7-3fd8ba528ff5", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Split Bone"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Splits the currently selected bone."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "subdivide divide cut insert add joint")},
    {"RyJETogglePropagateTranslationAction", "EF9A9D1A-DE0E-4DEA-AEEF-E50565461BAC", always, check,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Propagate Translations"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables the propagation of translation for origins and end points that "
                                         "exist further down the bone hierarchy."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "children follow descendants hierarchy affect")},
    {"RyJEToggleViewBoneCreationAction", "9DAC738E-DED9-41A5-8683-1C18FADA69E0", always, check,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Interactive Mode"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables interactive bone creation within the viewport. Hold Ctrl and "
                                         "click in the viewport to create a new child bone."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "draw add new extrude click joint create bone")},
    {"RyJEConvertPropToFigureAction", "AF132CA7-819D-4D33-8505-B0DA52B1F00D", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Convert Prop to Figure..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Converts the selected prop to a figure."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "rig bind skin armature skeleton character")},
    {"RyJEConvertFigureToPropAction", "947BF705-FBED-4703-A12D-297D375172AC", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Convert Figure to Prop..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Converts the selected figure to a prop."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "unrig unbind detach remove skeleton static mesh")},
    {"RyJERenameNodeAction", "91E05663-CA8F-4df4-BC0E-324AE10B6255", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Rename Node..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Rename the currently selected node."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "name label")},
    {"RyJEReparentBoneAction", "c5df7a66-368f-4759-84bf-034bb61533ce", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Reparent Bone..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Change the parent relationship of the selected bone."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "parent unparent attach detach connect disconnect hierarchy")},
    {"RyJEMirrorAction", "A82C5AE2-732A-437b-98FB-B3A46D9E3A54", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Mirror Joints..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Copies joint parameters from one side of the figure to the other."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "symmetrize symmetry flip left right copy side")},
    {"RyJEBakeRotationsAction", "72a79d2e-ba49-47b6-a8cc-f9edb0dbdf09", isOfFigure, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Bake Joint Rotations..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Bakes the current joint rotations of a single skin figure as the new "
                                         "geometry base, and replaces bones accordingly."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "freeze transformations apply pose as rest bind")},
    {"RyJEDeleteBoneAction", "FCCBC073-5E95-4be1-8BFE-5318EE7D96A6", isBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Delete Bone"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Removes the selected bone from the scene."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "remove dissolve erase joint")},
    {"RyJEDeleteUnusedBonesAction", "4AC8F0E0-B1F2-43C0-BDC9-BD28489CB71E", isOfFigure, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Delete Unused Bones..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Removes unused bones from the selected figure."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "remove clean up cleanup prune optimize optimise empty joints")},
    {"RyJERotationOrderXYZAction", "68D3BE80-1304-4764-B35D-7630C16685EF", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "XYZ"), rotationOrderDescription, rotationOrderWords},
    {"RyJERotationOrderXZYAction", "18B615FE-36E1-4CAC-A5F2-762E53C94115", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "XZY"), rotationOrderDescription, rotationOrderWords},
    {"RyJERotationOrderYXZAction", "7D4F3C90-5470-43FE-A643-6184C39AE002", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "YXZ"), rotationOrderDescription, rotationOrderWords},
    {"RyJERotationOrderYZXAction", "F7ADADCA-69BA-4A17-BBC8-95E8CF937510", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "YZX"), rotationOrderDescription, rotationOrderWords},
    {"RyJERotationOrderZXYAction", "2EACAF43-6009-4F59-A865-83F814B8AE15", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "ZXY"), rotationOrderDescription, rotationOrderWords},
    {"RyJERotationOrderZYXAction", "9CE30043-26EC-4632-BA24-5AB729308D04", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "ZYX"), rotationOrderDescription, rotationOrderWords},
    {"RyJEToggleAutoAlignNodeAction", "E2663E7C-6315-4551-ABC1-A944F0403C52", always, check,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Auto Align Node"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables automatic alignment of the center and end points of nodes."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "roll orient orientation automatic")},
    {"RyJEAlignNodeAction", "5E8048D7-7EDD-4DB6-854D-251EBBB15547", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Align Node"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Modifies the orientation of the selected node to align the first axis of "
                                         "the rotation order between the center and end points."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "roll recalculate orient joint orientation axis straighten")},
    {"RyJEAlignAllBonesAction", "09D3C843-1E65-435b-A2F0-C262687BE606", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Align All Bones"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Aligns all bones of the figure."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "roll recalculate orient joint orientation axis straighten")},
    {"RyJESnapCenterPointAction", "34C3E973-AD26-4BD5-A105-042B09ABCB2F", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Snap Center Point"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Snap the Center Point of the selected node to the End Point of the parent."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "head connect attach move to parent joint origin pivot")},
    {"RyJESnapEndPointAction", "A4D47052-9C0B-4C6C-A09A-3AA9C2C95E74", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Snap End Point"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Snap the End Point of the selected node to the Center Point of its "
                                         "children."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "tail tip connect move to child")},
    {"RyJEToggleAutoSnapEndPointsAction", "4CDA7A48-E784-45A2-B907-DFE2BEC17B29", always, check,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Auto Snap End Points"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Enables automatic snapping of End Points of bones to the Center Point of "
                                         "their respective children."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "tail tip connect keep connected automatic")},
    {"RyJEMemorizeFigureRiggingPropertiesAction", "7B3B3C16-624E-4C12-B305-312B78E1C245", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Memorize Figure Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Sets the current values of the rigging properties for each node of a "
                                         "figure as their default values."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "freeze apply rest pose bind pose default store save set zero")},
    {"RyJEMemorizeNodeRiggingPropertiesAction", "2e95c3a6-3772-4025-a757-7a884cd94542", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Memorize Selected Node(s) Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Sets the current values of the rigging properties for the selected node "
                                         "as the default values."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "freeze apply rest pose bind pose default store save set zero")},
    {"RyJERestoreFigureRiggingPropertiesAction", "B916F30C-9701-47D9-AFD3-2D08FCD9BD78", isSkeletonOrBone, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Restore Figure Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Restores the rigging properties for each node of a figure to their "
                                         "default values."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "reset revert default zero rest bind pose undo changes")},
    {"RyJERestoreNodeRiggingPropertiesAction", "c7dfb33c-d73a-4e93-9035-c73fbc3b1da5", isAnyNode, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Restore Selected Node(s) Rigging"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Restores the rigging properties for the selected nodes to their default "
                                         "values."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "reset revert default zero rest bind pose undo changes")},
    {"RyJETransferWSRiggingAction", "3dd85216-d77c-44a6-94fb-53485b4bff6e", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Transfer Rigging (Figure Space)"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Transfers the bone positions and orientations, in figure space "
                                         "coordinates, from the first selected figure to the second selected "
                                         "figure."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "copy skeleton retarget fit move bones")},
    {"RyJECreateDonorFigureAction", "CC213796-7484-4626-B024-04E1DA2239D3", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Extract Donor Figure"),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Extracts a duplicate of the selected weight mapped skeleton to act as "
                                         "donor for repositioning and transferring."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "template copy duplicate clone skeleton export")},
    {"RyJESelectedNodesAttributesEditAction", "127ADE47-07D1-44CB-90BF-978347FE3F9A", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Selected Node(s) Attributes..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Set the center, end, and orientation values of all selected nodes."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "numeric transform position coordinates head tail values batch edit type in")},
    {"RyJECreateControlBonesAction", "1165A48B-EC51-46B9-ABE7-E7420EA5361E", always, command,
     QT_TRANSLATE_NOOP("RyJEToolAction", "Create Control Bone(s)..."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "Creates one or more control bones."),
     QT_TRANSLATE_NOOP("RyJEToolAction", "add new controllers helper driver ghost follow rig")},
};
// clang-format on

} // namespace

std::span<const RyJEActionRow> ryJEActionRows()
{
    return rows;
}

const RyJEActionRow &ryJEActionRow(const char *className)
{
    for (const RyJEActionRow &row : rows) {
        if (std::strcmp(row.className, className) == 0)
            return row;
    }
    qFatal("The action table has no row for %s", className);
}
