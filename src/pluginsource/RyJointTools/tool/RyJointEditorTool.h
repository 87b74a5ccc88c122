#pragma once

#include "pluginsource/RyJointTools/tool/RyParamFollowUp.h"
#include "pluginsource/RyJointTools/tool/RyPointFollowUp.h"
#include "pluginsource/RyJointTools/tool/RyToolParam.h"
#include "pluginsource/RyJointTools/tool/RyToolSelection.h"
#include "pluginsource/RyJointTools/tool/display/RyToolDisplay.h"
#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"
#include "pluginsource/RyJointTools/tool/joint/RyToolOptions.h"
#include "pluginsource/RyJointTools/tool/pointer/RyToolPointer.h"

#include "rycore/math/RyQuat.h"
#include "rycore/math/RyRotationOrder.h"
#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyNode.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyPickTool.h"

#include <QColor>
#include <QPointer>
#include <QVariantMap>
#include <QWidget>

class RyJointEditorToolFrame;
class RyLegacyJointParam;
class RyLegacyJointSphere;

/// The viewport tool of the joint editor. While it is active it follows the scene's primary selection, draws the
/// rigging of that node with handles to drag, and owns the tool settings pane. Setters bring values out of range back
/// into it; values that are kept from run to run are written at once, and what shows asks for a redraw.
///
/// It is a switchboard: its parts below do the work. The order of signals and slots is part of the interface: scripts
/// and panes find them by it.
class RyJointEditorTool : public RyPickTool
{
    Q_OBJECT
    Q_PROPERTY(RyNode *currentNode READ currentNode NOTIFY nodeChanged)
    Q_PROPERTY(RyLegacyJointParam *currentParam READ currentParam WRITE setParam NOTIFY paramChanged)
public:
    enum EditMode { CenterEndMode = 0, ParamMode = 1 };
    Q_ENUM(EditMode)
    enum BoneDrawMode {
        NoBones = RyJointToolDisplay::NoBones,
        SelectedBone = RyJointToolDisplay::SelectedBone,
        SelectedBoneAndFamily = RyJointToolDisplay::SelectedBoneAndFamily,
        EntireFigure = RyJointToolDisplay::EntireFigure
    };
    Q_ENUM(BoneDrawMode)

    RyJointEditorTool();
    ~RyJointEditorTool() override;

    // --- The host's tool interface.
    bool event(QEvent *event) override;
    void activated() override;
    void deactivated() override;
    void draw(Ry3DViewport *viewport, const RyDrawStyle &style) override;
    bool needsDepth() const override;
    bool mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    bool mouseMove(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    bool mouseRelease(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseLeave(Ry3DViewport *viewport) override;
    void cancelDrag() override;
    void finishDrag() override;
    QWidget *getSettingsWidget() override;
    QWidget *getDividerBar() override;
    int getToolPriority() const override;
    void addToolMenuItems(RyMenu *menu) override;
    void fillToolOptionsMenu(RyActionMenu *menu) override;
    QString getStatusText() const override;

    // --- State.
    RyNode *currentNode() const { return m_joint.node; }
    RyNode *currentNodeParent() const { return m_joint.parent; }
    RyLegacyJointParam *currentParam() const { return m_joint.param.get(); }
    RyLegacyJointParam *partnerParam() const { return m_joint.partner.get(); }
    RyLegacyJointParam *bendPartnerParam() const { return m_joint.bendPartner.get(); }
    /// The one that is edited with the current parameter, null without one.
    RyLegacyJointParam *editedPartnerParam() const { return m_joint.editedPartner(); }
    RyVec3 cachedOrigin() const { return m_joint.cachedOrigin; }
    bool paramDrivenByParent() const { return m_joint.paramDrivenByParent; }
    int rememberedAxis() const { return m_joint.rememberedAxis; }
    int rememberedType() const { return m_joint.rememberedType; }
    float cachedAngleA() const { return m_joint.angleA; }
    float cachedAngleB() const { return m_joint.angleB; }
    float cachedAngleC() const { return m_joint.angleC; }
    float cachedAngleD() const { return m_joint.angleD; }
    const RyJointToolDisplay &display() const { return m_display.values(); }
    EditMode editMode() const { return EditMode(display().editMode); }
    BoneDrawMode boneDrawMode() const { return BoneDrawMode(display().boneDrawMode); }
    bool pushNeighborAngles() const { return m_options.pushNeighborAngles; }
    bool propagationEnabled() const { return m_options.propagationEnabled; }
    bool propagateTranslation() const { return m_options.propagateTranslation; }
    bool propagateOrientation() const { return m_options.propagateOrientation; }
    bool isSelectionEventPending() const { return m_selection.isPending(); }
    /// The handle or bone under the mouse or being dragged, 0 for none.
    int hoveredId() const { return m_pointer.hoveredId(); }
    bool isDragging() const { return m_pointer.isDragging(); }
    /// The viewport of the press that has not been released, and its camera's world rotation at the last press.
    Ry3DViewport *pressViewport() const { return m_pointer.pressViewport(); }
    RyQuat pressCameraRotation() const { return m_pointer.pressCameraRotation(); }
    const RyBoneIndex &bones() const { return m_drawing.bones(); }
    RyJointEditorToolFrame *frame() const;

    bool autoAlign() const { return m_options.autoAlign; }
    void setAutoAlign(bool onOff);
    bool autoSnapEndPoints() const { return m_options.autoSnapEndPoints; }
    void setAutoSnapEndPoints(bool onOff);

    /// See operations/changeRotationOrder.h; announces the current node anew when it is that one. Nothing for null or
    /// the same order.
    void changeRotationOrder(RyNode *node, const RyRotationOrder &order);

    /// See operations/mirrorNode.h; false where bulges were left out. Announces the current node anew where it got
    /// another rotation order.
    bool mirrorNode(RyNode *source, RyNode *target, int axis);
    /// Which bones of the selected figure are opposites along an axis (0 to 2), without any change: `pairs`, each with
    /// `first`, `second` and `stage` ("prefix", "name" or "place"), and `alone`, the bones without an opposite.
    Q_INVOKABLE QVariantMap mirrorPairs(int axis) const;

signals:
    void nodeChanged(RyNode *node);
    void paramChanged(RyLegacyJointParam *param);
    void editModeChanged(RyJointEditorTool::EditMode mode);
    void matAVisChanged(bool onOff);
    void matBVisChanged(bool onOff);
    void boneDrawModeChanged(RyJointEditorTool::BoneDrawMode mode);

public slots:
    void setEditMode(EditMode mode);
    /// A parameter that is not one of the current node's joint selects none.
    void setParam(RyLegacyJointParam *param);
    void setWeightVis(bool onOff);
    void setAngleVis(bool onOff);
    void setTwistVis(bool onOff);
    void setSmoothVis(bool onOff);
    void setMatAVis(bool onOff);
    void setMatBVis(bool onOff);
    void setBoneDrawMode(BoneDrawMode mode);
    void setStaticColor(QColor color);
    void setDynamicColor(QColor color);
    void setSelectedColor(QColor color);
    void setBoundaryColor(QColor color);
    void setHandleDrawing(int val);
    void setSphereDrawing(int val);
    void setSphereOpacity(int val);
    void setSphereLineDensity(int val);
    void setWeightMapMode(int val);
    void setWeightOpacity(int val);
    void setDrawMeshBoundaries(bool onOff);
    void setGhostBones(bool onOff);
    void setShowManipulators(bool onOff);
    void setBoundaryStyle(int val);
    void setPushNeighborAngles(bool onOff);
    void setShowBoneHierarchy(bool onOff);
    void setBoneColoringStyle(int val);
    void setRestrictRotationAxes(bool onOff);
    void setPropagationEnabled(bool onOff);
    void setPropagateTranslation(bool onOff);
    void setPropagateOrientation(bool onOff);

    // Edits carried on to what hangs below a node: see operations/propagateEdits.h and moveParams.h. They run in the
    // caller's undo hold.
    void performTransPropagation(RyNode *node, RyVec3 origin, RyVec3 newOrigin);
    void performOrientPropagation(RyNode *node, RyQuat delta);
    void translateParam(RyLegacyJointParam *param, RyVec3 delta);
    void rotateParam(RyLegacyJointParam *param, RyQuat delta);
    void performRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool includeGeom);
    void performChildRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool includeGeom,
                                    RyVec3 &origin);
    void performScalePropagation(RyNode *node, int axis, float factor, bool recursive, bool includeGeom);
    void performTransPropagation(RyNode *node, int axis, float delta, bool recursive, bool includeGeom);
    void propagateParamTranslation(RyNode *node, RyLegacyJointParam *param, float value, int axis);
    void propagateSphereTranslation(RyLegacyJointSphere *sphere, float value, int axis);

    // Bend angles in radians; `origin` says who asks: 0 the viewport, 1 the pane, 2 propagation.
    void setStaticA(float angle, int origin);
    void setDynamicB(float angle, int origin);
    void setDynamicC(float angle, int origin);
    void setStaticD(float angle, int origin);

    void setBoneCreationActive(bool onOff);
    bool boneCreationActive();

    /// By position in a list that begins with the entire figure and ends with none; others count as the nearest end.
    void setBoneMode(int index);

private slots:
    void updateSelection(RyNode *node);
    void nodeRemoved();
    void centerPointChange();
    void endPointChange();
    void updateParamConnections();
    void removeParamConnections();
    void dynamicMatrixChange();
    void staticMatrixChange();
    void validateAngleChange();
    void postSelectionChangeEvent();

private:
    /// Sets an option that menus or pages show.
    void setMenuOption(bool RyToolOptions::*option, bool onOff);

    RyJointState m_joint;
    RyToolOptions m_options;
    RyToolDisplay m_display{*this};
    RyToolDrawing m_drawing;
    RyToolPointer m_pointer;
    RyPointFollowUp m_followUp{m_joint, m_options, m_pointer};
    RyParamFollowUp m_paramFollowUp{*this, m_joint, m_options, m_display.values()};
    RyToolParam m_param{*this, m_joint, m_paramFollowUp, m_pointer};
    RyToolSelection m_selection{*this, m_joint, m_param, m_followUp, m_pointer};

    QPointer<QWidget> m_toolFrame;
    QPointer<QWidget> m_dividerBar;
};
