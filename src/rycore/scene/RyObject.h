#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/scene/RyShapePoints.h"

#include <vector>

class RyModifier;
class RyNode;
class RyShape;

/// What a node shows: shapes, of which one is current, and the modifiers that deform it.
class RyObject : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyObject();
    ~RyObject() override;

    /// The node that has this object, null when none.
    RyNode *getNode() const { return m_node; }
    /// The first shape added becomes current. Does nothing for a shape that an object has. Undoable where a hold is
    /// open.
    void addShape(RyShape *shape);
    RyShape *getCurrentShape() const { return m_current; }
    const std::vector<RyShape *> &getShapes() const { return m_shapes; }

    /// Group of a node's public properties in which the values of the morphs stand.
    static constexpr const char *MorphGroup = "Morphs";

    /// Undoable where a hold is open.
    void addModifier(RyModifier *modifier);
    void removeModifier(RyModifier *modifier);
    const std::vector<RyModifier *> &getModifiers() const { return m_modifiers; }
    template<typename M>
    M *findModifier() const
    {
        for (RyModifier *modifier : m_modifiers) {
            if (M *found = dynamic_cast<M *>(modifier))
                return found;
        }
        return nullptr;
    }

    /// The current shape's positions after all modifiers, in figure space without the figure's own transform; one entry
    /// per vertex. Valid until the next call; empty without a shape.
    const std::vector<RyVec3> &getDeformedPositions();
    /// The same with normals, where the shape has some, and with what changed; from then on normals are carried along.
    /// Valid until the next call of either; all null without a shape.
    RyShapePoints getDeformedPoints();

signals:
    void modifiersChanged();
    void shapesChanged();
    /// Shapes, modifiers, or what is in them; once per finished edit, of modifiers also while one is open.
    void contentChanged();

private:
    friend class RyNodeGeometry;
    struct ModifierList;
    struct ShapeList;
    void insertShape(RyShape *shape, int index);
    void takeShape(RyShape *shape);
    void insertModifier(RyModifier *modifier, int index);
    void takeModifier(RyModifier *modifier);
    void placeMorphControls();

    RyNode *m_node = nullptr;
    std::vector<RyShape *> m_shapes;       // each counted once
    std::vector<RyModifier *> m_modifiers; // each counted once
    RyShape *m_current = nullptr;
    RyShapePoints deformedPoints();

    bool m_normalsWanted = false;
    const RyPointChanges *m_source = nullptr; // of the last points: compared, never followed
    quint64 m_sourceRevision = 0;             // since when they have come from there
};
