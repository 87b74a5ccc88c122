#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/math/RyBox3.h"
#include "rycore/math/RyTime.h"
#include "rycore/scene/node/RyNodeEdit.h"
#include "rycore/scene/node/RyNodeFlags.h"
#include "rycore/scene/node/RyNodeGeometry.h"
#include "rycore/scene/node/RyNodeMaps.h"
#include "rycore/scene/node/RyNodePose.h"
#include "rycore/scene/node/RyNodeRigging.h"
#include "rycore/scene/node/RyNodeTree.h"

#include <memory>
#include <vector>

class RyFloatProperty;
class RyObject;
class RyScene;
class RySkeleton;

/// A node of the scene: parent, ordered children, rigging values (default and current), pose controls, an object.
///
/// Origin and end point are absolute points in figure space (the rest space of the figure), in centimetres. The
/// orientation maps bone axes to figure axes: bone axis k points along `orientation.multVec(e_k)`. Pose controls turn
/// about the bone axes, in degrees, right-handed. Nodes live on the heap and are counted: parents, the scene and undo
/// steps hold them.
class RyNode : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    enum class Rigging { None, Full };
    explicit RyNode(Rigging rigging = Rigging::Full);
    ~RyNode() override;

    // --- Tree. Children keep the order in which they were added.
    RyNode *getNodeParent() const { return m_tree.parent(); }
    int getNumNodeChildren() const { return int(m_tree.children().size()); }
    /// Null outside the range.
    RyNode *getNodeChild(int index) const;
    /// A copy of the list of children: stable against changes during a walk.
    std::vector<RyNode *> nodeChildrenIterator() const { return m_tree.children(); }
    /// Direct children, or all descendants in pre-order; the node itself is not included.
    void getNodeChildren(std::vector<RyNode *> &list, bool recursive) const;
    /// Detaches the child from its old parent and appends it (or inserts it at `index`). Refuses null, itself and a
    /// cycle. `keepWorld` rewrites the child's pose controls so that it stays in the world as far as they can say it.
    bool addNodeChild(RyNode *child, bool keepWorld = false, int index = -1);
    bool removeNodeChild(RyNode *child, bool keepWorld = false);
    bool isDescendantOf(const RyNode *node) const;
    /// The node itself when it is a skeleton, else the nearest skeleton above it, else null.
    RySkeleton *getSkeleton() const;
    RyScene *getScene() const { return m_scene; }

    // --- Selection and visibility.
    /// True appends to the selection and makes primary (selecting again moves to the end); false removes.
    void select(bool onOff);
    bool isSelected() const;
    bool isHidden() const { return m_flags.has(RyNodeFlags::Hidden); }
    void setHidden(bool hidden);
    /// Neither the node nor an ancestor is hidden.
    bool isVisible() const;
    bool isSelectable() const { return m_flags.has(RyNodeFlags::Selectable); }
    void setSelectable(bool selectable);
    bool isSelectionPromoted() const { return m_flags.has(RyNodeFlags::PromotesSelection); }
    void setPromoteSelection(bool promote);
    bool inheritsScale() const { return m_flags.has(RyNodeFlags::InheritsScale); }
    void setInheritScale(bool inherit);

    // --- Rigging. `byDefault` reads the default (rest) value instead of the current one. (0,0,0) and the identity
    // without rigging.
    RyVec3 getOrigin(bool byDefault = false) const;
    RyVec3 getEndPoint(bool byDefault = false) const;
    RyQuat getOrientation(bool byDefault = false) const;
    /// `asDefault`: default := v and current := v; otherwise current := v.
    void setOrigin(const RyVec3 &v, bool asDefault = false);
    void setEndPoint(const RyVec3 &v, bool asDefault = false);
    void setOrientation(const RyQuat &q, bool asDefault = false);
    /// The resulting current value becomes v, also where links add to it; defaults stay; children are not moved.
    void adjustOrigin(const RyVec3 &v);
    void adjustEndPoint(const RyVec3 &v);
    void adjustOrientation(const RyQuat &q);
    /// The float property or null. Orientation in degrees, fixed XYZ whatever the rotation order.
    RyFloatProperty *getOriginXControl() const { return m_rigging.control(0); }
    RyFloatProperty *getOriginYControl() const { return m_rigging.control(1); }
    RyFloatProperty *getOriginZControl() const { return m_rigging.control(2); }
    RyFloatProperty *getEndXControl() const { return m_rigging.control(3); }
    RyFloatProperty *getEndYControl() const { return m_rigging.control(4); }
    RyFloatProperty *getEndZControl() const { return m_rigging.control(5); }
    RyFloatProperty *getOrientXControl() const { return m_rigging.control(6); }
    RyFloatProperty *getOrientYControl() const { return m_rigging.control(7); }
    RyFloatProperty *getOrientZControl() const { return m_rigging.control(8); }
    /// Those nine in this order, all null without rigging.
    const RyNodeRigging::Controls &riggingControls() const { return m_rigging.controls(); }

    // --- Pose.
    RyFloatProperty *getXTransControl() const { return m_pose.control(0); }
    RyFloatProperty *getYTransControl() const { return m_pose.control(1); }
    RyFloatProperty *getZTransControl() const { return m_pose.control(2); }
    RyFloatProperty *getXRotControl() const { return m_pose.control(3); }
    RyFloatProperty *getYRotControl() const { return m_pose.control(4); }
    RyFloatProperty *getZRotControl() const { return m_pose.control(5); }
    RyFloatProperty *getScaleControl() const { return m_pose.control(6); }
    RyFloatProperty *getXScaleControl() const { return m_pose.control(7); }
    RyFloatProperty *getYScaleControl() const { return m_pose.control(8); }
    RyFloatProperty *getZScaleControl() const { return m_pose.control(9); }
    /// Those ten in this order.
    const RyNodePose::Controls &poseControls() const { return m_pose.controls(); }
    /// The one that turns about bone axis 0 (X), 1 (Y) or 2 (Z).
    RyFloatProperty *rotationControl(int axis) const { return m_pose.control(RyNodePose::Rotation + axis); }
    RyRotationOrder getRotationOrder() const { return m_pose.order(); }
    /// Undoable. Centre, end, orientation and the numbers of the pose controls stay.
    void setRotationOrder(const RyRotationOrder &order);
    /// All pose controls at their defaults.
    void clearPose();
    bool isPosed() const;

    /// orientation^-1 * pose * orientation.
    RyQuat getLocalRot() const;
    /// M(orientation^-1) * diag(scale * general scale) * M(orientation).
    RyMatrix3 getLocalScale() const;
    void getLocalTransform(RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale, float &generalScale) const;
    /// Sets the own share of all pose controls, within their limits; what links add comes on top. `scale` is taken
    /// without the general scale.
    void setLocalTransform(const RyVec3 &position, const RyQuat &rotation, const RyMatrix3 &scale, float generalScale);
    /// The same for the resulting values: the inverse of `getLocalTransform`, also where links add to them.
    void adjustLocalTransform(const RyVec3 &position, const RyQuat &rotation, const RyMatrix3 &scale,
                              float generalScale);
    /// Adjusts the pose controls so that `getLocalMap` becomes `local`, as far as they can say it.
    void adjustLocalMap(const RyAffine &local);

    // --- World.
    /// Maps `p - origin` (figure axes, p in figure space) to the world: T(origin) * X. Unposed it is T(origin).
    RyMatrix4 getWSTransform() const;
    /// The same in parts: position, rotation and scale with `linear = scale * M(rotation)`.
    void getWSTransform(RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale) const;
    /// At a time; with `defaultPose` default origin and orientation and pose controls at their defaults, a skeleton's
    /// own transform kept.
    RyMatrix4 getWSTransform(const RyTime &time, bool defaultPose) const;
    RyVec3 getWSPos() const;
    RyQuat getWSRot() const;
    /// X: maps points of figure space (rest) to the world.
    const RyAffine &worldMap() const;
    /// The same without the transform of the node's skeleton (and what is above it): figure space to figure space.
    const RyAffine &figureMap() const;
    /// T(-origin) * linear * T(origin + translation): from figure space to figure space, relative to the parent.
    RyAffine getLocalMap() const;
    /// While a clip shows: stands for `figureMap` of a bone of a skeleton, and for `getLocalMap` in the maps of
    /// anything else. Null gives the place back to the pose, which stays as it is. Announces nothing.
    void setPlayedMap(const RyAffine *map) { RyNodeMaps::play(*this, map); }
    bool isPlayed() const { return m_maps.isPlayed(); }
    /// Grows whenever figureMap may have changed, whether somebody asked for that or not.
    quint64 mapRevision() const;
    /// The posed end point in the world: `(endPoint - origin) * getWSTransform()`.
    RyVec3 getWSEndPoint() const;

    /// Box in figure space, pose not applied: the vertices of the node's face group when its skeleton's selection map
    /// pairs one with it, otherwise those of the whole object; empty without geometry.
    virtual RyBox3 getBoundingBox() const;
    virtual RyOrientedBox3 getOrientedBoundingBox() const;

    /// Null when the node has none. Setting takes a reference.
    RyObject *getObject() const { return m_geometry.object(); }
    void setObject(RyObject *object);

    /// Same class as far as the host knows it, name, label, flags, rotation order, rigging, pose and limits, below the
    /// parent that the context says; its children as the context's options say. Objects are not copied.
    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override;

    void propertyChanged(RyFloatProperty *property) override;
    void propertyDefaultChanged(RyFloatProperty *property) override;

signals:
    void aboutToBeRemoved();
    /// Once per outermost finishEdit, and after each set or adjust call outside an edit; in a rig edit of the scene
    /// once at its end.
    void riggingChanged();
    /// A pose control, the rotation order or scale inheritance changed.
    void poseChanged();
    void hiddenChanged(bool hidden);
    void promoteSelectionChanged(bool promote);
    void inheritScaleChanged();
    void rotationOrderChanged();
    void childrenChanged();
    /// Values of morphs came into the node's public properties, or went.
    void morphsChanged();

protected:
    /// The vertices of `getBoundingBox` in bone axes about the origin, `orientation^-1 (p - origin) + origin`.
    RyBox3 boxInParameterSpace() const { return m_geometry.boxInParameterSpace(); }
    /// Tells the scene, where the node is in one, that something drawn changed.
    void announceDrawn();
    void nameHasChanged() override;
    /// An empty node of the same kind, which a duplicate starts as.
    virtual RyNode *makeSameKind() const;
    void editBegun() override;
    void editFinished() override;
    void editCancelled() override;

private:
    friend class RyNodeFlags;
    friend class RyNodeGeometry;
    friend class RyNodeMaps;
    friend class RyNodeTree;
    friend class RyRiggingEdits;
    friend class RyScene;
    struct OrderValue;

    void applyRotationOrder(const RyRotationOrder &order);
    void writeRigging(RyNodeRigging::Triple triple, const RyVec3 &v, RyNodeRigging::Write how);
    /// Announces a change of a rigging value, unless the end of an edit does.
    void riggingHasChanged();
    /// At the end of the rig edit while the scene is in one.
    void announceRigging();
    const RyNodeMaps &validMaps() const;
    void invalidateMaps() { RyNodeMaps::invalidate(*this); }

    RyNodeTree m_tree{*this};
    RyScene *m_scene = nullptr;
    RyNodeRigging m_rigging;
    RyNodePose m_pose;
    RyNodeEdit m_edit;
    mutable RyNodeMaps m_maps;
    RyNodeFlags m_flags{*this};
    RyNodeGeometry m_geometry{*this};
};
