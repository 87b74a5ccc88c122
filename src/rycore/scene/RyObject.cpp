#include "rycore/scene/RyObject.h"

#include "rycore/base/RyPlaceChange.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RyShapeNormals.h"

#include <algorithm>

struct RyObject::ModifierList : RyListOf<RyObject, RyModifier>
{
    static const auto &of(const RyObject &object) { return object.m_modifiers; }
    static void take(RyObject &object, RyModifier *modifier, int) { object.takeModifier(modifier); }
    static void insert(RyObject &object, RyModifier *modifier, int index) { object.insertModifier(modifier, index); }
};

struct RyObject::ShapeList : RyListOf<RyObject, RyShape>
{
    static const auto &of(const RyObject &object) { return object.m_shapes; }
    static void take(RyObject &object, RyShape *shape, int) { object.takeShape(shape); }
    static void insert(RyObject &object, RyShape *shape, int index) { object.insertShape(shape, index); }
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
    RyPlaceChange<ShapeList>::record(this, shape, -1);
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
    RyPlaceChange<ModifierList>::record(this, modifier, -1);
    insertModifier(modifier, int(m_modifiers.size()));
}

void RyObject::removeModifier(RyModifier *modifier)
{
    const auto place = std::find(m_modifiers.begin(), m_modifiers.end(), modifier);
    if (place == m_modifiers.end())
        return;
    const RyRef<RyModifier> guard(modifier);
    RyPlaceChange<ModifierList>::record(this, modifier, int(place - m_modifiers.begin()));
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
    const RyShapePoints points = deformedPoints();
    return points.positions ? *points.positions : none;
}

RyShapePoints RyObject::getDeformedPoints()
{
    m_normalsWanted = true;
    return deformedPoints();
}

RyShapePoints RyObject::restPoints()
{
    RyShapePoints points;
    RyVertexMesh *mesh = m_current ? m_current->getGeometry() : nullptr;
    if (!mesh)
        return points;
    points.positions = &mesh->getPositions();
    points.places = m_normalsWanted ? m_current->getNormals() : nullptr;
    if (points.places)
        points.normals = &points.places->normals();
    const quint64 normals = points.places ? points.places->revision() : 0;
    if (mesh != m_restMesh || mesh->revision() != m_restRevision || normals != m_restNormals) {
        m_restMesh = mesh;
        m_restRevision = mesh->revision();
        m_restNormals = normals;
        m_restChanges.markAll(int(points.normals ? points.normals->size() : points.positions->size()));
    }
    points.changes = &m_restChanges;
    return points;
}

RyShapePoints RyObject::deformedPoints()
{
    RyShapePoints points = restPoints();
    for (RyModifier *modifier : m_modifiers) {
        if (points.positions)
            modifier->deform(points);
    }
    if (points.changes != m_source) {
        m_source = points.changes;
        m_sourceRevision = RyPointChanges::nextRevision();
    }
    points.sourceRevision = m_sourceRevision;
    return points;
}
