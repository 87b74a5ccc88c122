#include "rycore/scene/RyObject.h"

#include "rycore/base/RyPlaceChange.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyShape.h"

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
    for (RyShape *shape : m_shapes) {
        shape->m_object = nullptr;
        shape->unref();
    }
}

void RyObject::addShape(RyShape *shape)
{
    if (!shape || shape->m_object)
        return;
    const RyRef<RyShape> guard(shape);
    RyPlaceChange<ShapeList>::record(this, shape, -1);
    insertShape(shape, int(m_shapes.size()));
}

void RyObject::insertShape(RyShape *shape, int index)
{
    shape->ref();
    shape->m_object = this;
    m_shapes.insert(m_shapes.begin() + std::min(index, int(m_shapes.size())), shape);
    if (!m_current)
        m_current = shape;
    connect(shape, &RyShape::geometryChanged, this, &RyObject::contentChanged);
    connect(shape, &RyShape::morphsChanged, this, &RyObject::placeMorphControls);
    placeMorphControls();
    emit shapesChanged();
    emit contentChanged();
}

void RyObject::takeShape(RyShape *shape)
{
    m_shapes.erase(std::find(m_shapes.begin(), m_shapes.end(), shape));
    disconnect(shape, nullptr, this, nullptr);
    shape->m_object = nullptr;
    for (RyMorph *morph : shape->getMorphs())
        morph->moveControl(nullptr);
    placeMorphControls();
    if (m_current == shape)
        m_current = m_shapes.empty() ? nullptr : m_shapes.front();
    emit shapesChanged();
    emit contentChanged();
    shape->unref();
}

/// The controls of all morphs stand in one group of the node, in the order of shapes and morphs.
void RyObject::placeMorphControls()
{
    std::vector<RyMorph *> morphs;
    for (const RyShape *shape : m_shapes)
        morphs.insert(morphs.end(), shape->getMorphs().begin(), shape->getMorphs().end());
    std::for_each(morphs.rbegin(), morphs.rend(), [](RyMorph *morph) { morph->moveControl(nullptr); });
    if (!m_node)
        return;
    const QLatin1String name(MorphGroup);
    RyPropertyGroup *group = m_node->getPropertyGroups()->getFirstChild();
    while (group && group->getName() != name)
        group = group->getNextSibling();
    if (!group && !morphs.empty())
        group = m_node->getPropertyGroups()->addChild(name);
    for (RyMorph *morph : morphs)
        morph->moveControl(group);
    if (group)
        emit m_node->morphsChanged();
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
    connect(modifier, &RyModifier::modifierChanging, this, &RyObject::contentChanged);
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

RyShapePoints RyObject::deformedPoints()
{
    RyShapePoints points = m_current ? m_current->getCurrentPoints(m_normalsWanted) : RyShapePoints();
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
