#pragma once

#include "pluginsource/RyJointTools/tool/RyBoneIndex.h"
#include "pluginsource/RyJointTools/tool/RyJointToolDisplay.h"
#include "pluginsource/RyJointTools/tool/drags/RyDragFrame.h"
#include "pluginsource/RyJointTools/tool/drawing/RyBoundaryDrawing.h"

#include "rycore/math/RyQuat.h"
#include "rycore/math/RyRotationOrder.h"
#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyNode.h"
#include "rycore/viewport/RyPickTool.h"

#include <QColor>
#include <QPointer>
#include <QWidget>

#include <memory>

class RyHandleDrag;
class RyJointEditorToolFrame;
class RyLegacyJointParam;
class RyLegacyJointSphere;

/// The viewport tool of the joint editor. While it is active it follows the scene's primary selection, draws the
/// rigging of that node with handles to drag, and owns the tool settings pane. Setters bring values out of range back
/// into it; values that are kept from run to run are written at once, and what shows asks for a redraw.
///
/// The order of signals and slots is part of the interface: scripts and panes find them by it.
class RyJointEditorTool : public RyPickTool
{
    Q_OBJECT
public:
    enum EditMode { CenterEndMode = 0, ParamMode = 1 };
    Q_ENUM(EditMode)
    enum BoneDrawMode { NoBones = 0, SelectedBone = 1, SelectedBoneAndFamily = 2, EntireFigure = 3 };
    Q_ENUM(BoneDrawMode)

    RyJointEditorTool();
    ~RyJointEditorTool() override;

    // --- The host's tool interface.
    bool event(QEvent *event) override;
    void activated() override;
    void deactivated() override;
    void draw(Ry3DViewport *viewport, const RyDrawStyle &style) override;
    bool mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    bool mouseMove(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    bool mouseRelease(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier) override;
    void mouseLeave(Ry3DViewport *viewport) override;
    void cancelDrag() override;
    QWidget *getSettingsWidget() override;
    QWidget *getDividerBar() override;
    int getToolPriority() const override;
    void addToolMenuItems(RyMenu *menu) override;
    void fillToolOptionsMenu(RyActionMenu *menu) override;
    QString getStatusText() const override;

    // --- State.
    RyNode *currentNode() const { return m_node; }
    RyNode *currentNodeParent() const { return m_parent; }
    RyLegacyJointParam *currentParam() const { return m_param; }
    RyLegacyJointParam *partnerParam() const { return m_partner; }
    RyLegacyJointParam *bendPartnerParam() const { return m_bendPartner; }
    RyVec3 cachedOrigin() const { return m_cachedOrigin; }
    const RyJointToolDisplay &display() const { return m_display; }
    EditMode editMode() const { return m_editMode; }
    BoneDrawMode boneDrawMode() const { return BoneDrawMode(m_display.boneDrawMode); }
    bool pushNeighborAngles() const { return m_pushNeighborAngles; }
    bool propagationEnabled() const { return m_propagationEnabled; }
    bool propagateTranslation() const { return m_propagateTranslation; }
    bool propagateOrientation() const { return m_propagateOrientation; }
    bool paramDrivenByParent() const { return m_paramDrivenByParent; }
    int rememberedAxis() const { return m_rememberedAxis; }
    int rememberedType() const { return m_rememberedType; }
    float cachedAngleA() const { return m_angleA; }
    float cachedAngleB() const { return m_angleB; }
    float cachedAngleC() const { return m_angleC; }
    float cachedAngleD() const { return m_angleD; }
    bool isSelectionEventPending() const { return m_selectionEventPending; }
    /// The handle or bone under the mouse or being dragged, 0 for none.
    int hoveredId() const { return m_hoveredId; }
    bool isDragging() const { return m_dragging; }
    const RyDragFrame &dragFrame() const { return m_frame; }
    const RyBoneIndex &bones() const { return m_bones; }
    RyJointEditorToolFrame *frame() const;

    bool autoAlign() const { return m_autoAlign; }
    void setAutoAlign(bool onOff);
    bool autoSnapEndPoints() const { return m_autoSnapEndPoints; }
    void setAutoSnapEndPoints(bool onOff);

    /// Gives the node another rotation order and announces the current node anew. Nothing for null or the same order.
    void changeRotationOrder(RyNode *node, const RyRotationOrder &order);

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

    // Edits carried on to what hangs below a node: see operations/propagateEdits.h. They run in the caller's undo hold.
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

    /// By position in a list that begins with the entire figure and ends with none.
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
    void connectNode(RyNode *node);
    void disconnectNode(RyNode *node);
    void followPointChange(RyNode *node);
    /// Whether a click with Ctrl creates a bone, whatever is under the mouse.
    bool createsBones() const { return !m_param && m_node && m_boneCreationActive; }
    void setHoveredId(int id);
    void hideToolTip();
    /// Ends a press or drag: what it has changed so far is kept as one step. Nothing without one.
    void finishDrag();
    /// Ends a press or drag without a trace.
    void dropDrag();
    /// Runs an edit of points during which changes of the current node's points are only noted; the follow-up to them
    /// comes once, after it.
    template<typename Edit>
    void placePoints(const Edit &edit);
    RyLine3 pressViewportRay(const QPoint &point) const;
    template<typename T>
    bool changeDisplay(T RyJointToolDisplay::*value, T newValue);

    RyJointToolDisplay m_display;
    EditMode m_editMode = CenterEndMode;
    QPointer<RyNode> m_node;
    QPointer<RyNode> m_parent;
    RyVec3 m_cachedOrigin;
    RyLegacyJointParam *m_param = nullptr;
    RyLegacyJointParam *m_partner = nullptr;     // on the parent's joint
    RyLegacyJointParam *m_bendPartner = nullptr; // on the driver's joint
    int m_rememberedAxis = -1;
    int m_rememberedType = 0;
    bool m_paramDrivenByParent = false;
    float m_angleA = 0.0f;
    float m_angleB = 0.0f;
    float m_angleC = 0.0f;
    float m_angleD = 0.0f;

    bool m_autoSnapEndPoints = false;
    bool m_autoAlign = false;
    bool m_pushNeighborAngles = true;
    bool m_reserved = true; // read by nobody
    bool m_propagationEnabled = false;
    bool m_propagateTranslation = false;
    bool m_propagateOrientation = false;
    bool m_boneCreationActive = false;
    bool m_selectionEventPending = false;
    bool m_placingPoints = false; // the tool itself moves points
    bool m_pointsPlaced = false;  // and has moved some of the current node's

    int m_hoveredId = 0;
    bool m_dragging = false;
    RyDragFrame m_frame;
    std::unique_ptr<RyHandleDrag> m_drag;     // holds the undo step of the drag
    QPointer<Ry3DViewport> m_toolTipViewport; // the one that shows a handle's tool tip
    RyBoneIndex m_bones;
    RyBoundaryEdges m_boundaryEdges;

    QPointer<QWidget> m_toolFrame;
    QPointer<QWidget> m_dividerBar;
};
