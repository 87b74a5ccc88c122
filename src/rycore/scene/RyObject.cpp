#include "rycore/scene/RyObject.h"

#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyShape.h"
#include "rycore/undo/RyUndoStack.h"

#include <algorithm>

/// A modifier's place in an object: -1 for none.
class RyModifierChange : public RyUndoItem
{
public:
    RyModifierChange(RyObject *object, RyModifier *modifier, int index)
        : m_object(object), m_modifier(modifier), m_index(index)
    {}
    void swap() override
    {
        RyModifier *modifier = m_modifier.get();
        if (!m_object || !modifier)
            return;
        const std::vector<RyModifier *> &list = m_object->getModifiers();
        const auto place = std::find(list.begin(), list.end(), modifier);
        const int now = place == list.end() ? -1 : int(place - list.begin());
        if (now >= 0)
            m_object->takeModifier(modifier);
        if (m_index >= 0)
            m_object->insertModifier(modifier, m_index);
        m_index = now;
    }

private:
    QPointer<RyObject> m_object;
    RyRef<RyModifier> m_modifier;
    int m_index;
};

/// A shape's place in an object: -1 for none.
class RyShapeChange : public RyUndoItem
{
public:
    RyShapeChange(RyObject *object, RyShape *shape, int index) : m_object(object), m_shape(shape), m_index(index) {}
    void swap() override
    {
        RyShape *shape = m_shape.get();
        if (!m_object || !shape)
            return;
        const std::vector<RyShape *> &list = m_object->getShapes();
        const auto place = std::find(list.begin(), list.end(), shape);
        const int now = place == list.end() ? -1 : int(place - list.begin());
        if (now >= 0)
            m_object->takeShape(shape);
        if (m_index >= 0)
            m_object->insertShape(shape, m_index);
        m_index = now;
    }

private:
    QPointer<RyObject> m_object;
    RyRef<RyShape> m_shape;
    int m_index;
};

RyObject::RyObject() = default;

RyObject::~RyObject()
{
    for (RyModifier *modifier : m_modifiers) {
        modifier->m_object = nullptr;
        modifier->unref();
    }
    for (RyShape *shape : m_shapes)
        shape->unref();
}

void RyObject::addShape(RyShape *shape)
{
    if (!shape || std::find(m_shapes.begin(), m_shapes.end(), shape) != m_shapes.end())
        return;
    const RyRef<RyShape> guard(shape);
    ryUndoStack()->record<RyShapeChange>({}, this, shape, -1);
    insertShape(shape, int(m_shapes.size()));
}

void RyObject::insertShape(RyShape *shape, int index)
{
    shape->ref();
    m_shapes.insert(m_shapes.begin() + std::min(index, int(m_shapes.size())), shape);
    if (!m_current)
        m_current = shape;
    connect(shape, &RyShape::geometryChanged, this, &RyObject::contentChanged);
    emit shapesChanged();
    emit contentChanged();
}

void RyObject::takeShape(RyShape *shape)
{
    m_shapes.erase(std::find(m_shapes.begin(), m_shapes.end(), shape));
    disconnect(shape, nullptr, this, nullptr);
    if (m_current == shape)
        m_current = m_shapes.empty() ? nullptr : m_shapes.front();
    emit shapesChanged();
    emit contentChanged();
    shape->unref();
}

void RyObject::addModifier(RyModifier *modifier)
{
    if (!modifier || modifier->m_object)
        return;
    const RyRef<RyModifier> guard(modifier);
    ryUndoStack()->record<RyModifierChange>({}, this, modifier, -1);
    insertModifier(modifier, int(m_modifiers.size()));
}

void RyObject::removeModifier(RyModifier *modifier)
{
    const auto place = std::find(m_modifiers.begin(), m_modifiers.end(), modifier);
    if (place == m_modifiers.end())
        return;
    const RyRef<RyModifier> guard(modifier);
    ryUndoStack()->record<RyModifierChange>({}, this, modifier, int(place - m_modifiers.begin()));
    takeModifier(modifier);
}

void RyObject::insertModifier(RyModifier *modifier, int index)
{
    modifier->ref();
    modifier->m_object = this;
    m_modifiers.insert(m_modifiers.begin() + std::min(index, int(m_modifiers.size())), modifier);
    connect(modifier, &RyModifier::modifierChanged, this, &RyObject::contentChanged);
    emit modifiersChanged();
    emit contentChanged();
}

void RyObject::takeModifier(RyModifier *modifier)
{
    m_modifiers.erase(std::find(m_modifiers.begin(), m_modifiers.end(), modifier));
    modifier->m_object = nullptr;
    disconnect(modifier, nullptr, this, nullptr);
    emit modifiersChanged();
    emit contentChanged();
    modifier->unref();
}

const std::vector<RyVec3> &RyObject::getDeformedPositions()
{
    static const std::vector<RyVec3> none;
    const RyVertexMesh *mesh = m_current ? m_current->getGeometry() : nullptr;
    if (!mesh)
        return none;
    const std::vector<RyVec3> *positions = &mesh->getPositions();
    int next = 0;
    for (RyModifier *modifier : m_modifiers) {
        if (modifier->deform(*positions, m_positions[next])) {
            positions = &m_positions[next];
            next = 1 - next;
        }
    }
    return *positions;
}
