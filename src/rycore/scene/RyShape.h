#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/scene/RyMorphedPositions.h"
#include "rycore/scene/RyShapePoints.h"

class RyMorph;
class RyNode;
class RyObject;
class RyShapeNormals;
class RyVertexMesh;

/// Geometry of an object, with its morphs.
class RyShape : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyShape() = default;
    ~RyShape() override;

    /// The object that has this shape; null when none.
    RyObject *getObject() const { return m_object; }
    virtual RyVertexMesh *getGeometry() const = 0;
    /// The geometry's own: as bound. Empty without geometry.
    const std::vector<RyVec3> &getBasePositions() const;
    /// With the morphs as far as they are shown, before anything else deforms them; those of the base while no morph
    /// is. Valid until the next call and until the shape changes.
    const std::vector<RyVec3> &getCurrentPositions() const;
    /// What the current positions cost, and whether any morph is shown in them.
    const RyMorphedPositions &morphedPositions() const { return m_positions; }
    /// Smooth normals of the current positions, valid until the shape changes; null for a shape without facets.
    virtual const RyShapeNormals *getNormals() const { return nullptr; }
    /// The current positions, with normals where they are wanted and there are some, and with what changed.
    RyShapePoints getCurrentPoints(bool withNormals);

    // --- Morphs, in the order in which they were added.
    const std::vector<RyMorph *> &getMorphs() const { return m_morphs; }
    /// Does nothing for null and for a morph that is in a shape. Takes ownership; undoable where a hold is open.
    void addMorph(RyMorph *morph);
    /// The morph is deleted unless something else (an undo step) holds it.
    void removeMorph(RyMorph *morph);

    /// The current shape of the node's object; null for null, without object and without shape.
    static RyShape *getCurrentShapeForNode(const RyNode *node);

signals:
    /// Other geometry, the geometry's content changed, or the morphs shown in it; once per finished edit.
    void geometryChanged();
    /// Morphs came or went.
    void morphsChanged();

private:
    friend class RyObject;
    struct MorphList;
    void insertMorph(RyMorph *morph, int index);
    void takeMorph(RyMorph *morph, int index);
    void announceMorphs();
    void announceDeltas();

    RyObject *m_object = nullptr;
    std::vector<RyMorph *> m_morphs; // each counted once
    mutable RyMorphedPositions m_positions;
    // Of positions and normals together, by places; up to these revisions of each.
    RyPointChanges m_changes;
    quint64 m_positionsSeen = 0;
    quint64 m_normalsSeen = 0;
    quint64 m_layoutSeen = 0;
    int m_countSeen = 0;
};
