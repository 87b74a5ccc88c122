#include "rycore/scene/RyShape.h"

#include "rycore/base/RyPlaceChange.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShapeNormals.h"

#include <algorithm>

struct RyShape::MorphList : RyListOf<RyShape, RyMorph>
{
    static bool mayMove(const RyShape &shape, const RyMorph &morph)
    {
        return !morph.getShape() || morph.getShape() == &shape;
    }
    static const auto &of(const RyShape &shape) { return shape.m_morphs; }
    static bool has(const RyShape &shape, const RyMorph &morph) { return morph.getShape() == &shape; }
    static void take(RyShape &shape, RyMorph *morph, int place) { shape.takeMorph(morph, place); }
    static void insert(RyShape &shape, RyMorph *morph, int index) { shape.insertMorph(morph, index); }
};

RyShape::~RyShape()
{
    for (RyMorph *morph : m_morphs) {
        disconnect(morph, nullptr, this, nullptr);
        morph->m_shape = nullptr;
        morph->unref();
    }
}

RyShape *RyShape::getCurrentShapeForNode(const RyNode *node)
{
    RyObject *object = node ? node->getObject() : nullptr;
    return object ? object->getCurrentShape() : nullptr;
}

const std::vector<RyVec3> &RyShape::getBasePositions() const
{
    static const std::vector<RyVec3> none;
    const RyVertexMesh *mesh = getGeometry();
    return mesh ? mesh->getPositions() : none;
}

const std::vector<RyVec3> &RyShape::getCurrentPositions() const
{
    const RyVertexMesh *mesh = getGeometry();
    return mesh ? m_positions.update(*mesh, m_morphs) : getBasePositions();
}

RyShapePoints RyShape::getCurrentPoints(bool withNormals)
{
    RyShapePoints points;
    if (!getGeometry())
        return points;
    points.positions = &getCurrentPositions();
    points.places = withNormals ? getNormals() : nullptr;
    if (points.places)
        points.normals = &points.places->normals();
    const quint64 positions = m_positions.changes().revision();
    const quint64 normals = points.places ? points.places->revision() : 0;
    const quint64 layout = points.places ? points.places->layoutRevision() : 0;
    const int count = int(points.normals ? points.normals->size() : points.positions->size());
    if (positions != m_positionsSeen || normals != m_normalsSeen || layout != m_layoutSeen) {
        if (layout != m_layoutSeen || count != m_countSeen || m_changes.revision() == 0) {
            m_changes.markAll(count);
        } else {
            m_changes.begin();
            for (const RyPointChanges::Range &range : m_positions.changes().since(m_positionsSeen))
                m_changes.mark(range.first, range.count);
            if (points.places && normals != m_normalsSeen) {
                for (const RyPointChanges::Range &range : points.places->changes().since(m_normalsSeen))
                    m_changes.mark(range.first, range.count);
            }
        }
        m_positionsSeen = positions;
        m_normalsSeen = normals;
        m_layoutSeen = layout;
        m_countSeen = count;
    }
    points.changes = &m_changes;
    return points;
}

// --- Morphs

void RyShape::addMorph(RyMorph *morph)
{
    if (!morph || morph->m_shape)
        return;
    const RyRef<RyMorph> guard(morph);
    RyPlaceChange<MorphList>::record(this, morph, -1);
    insertMorph(morph, int(m_morphs.size()));
}

void RyShape::removeMorph(RyMorph *morph)
{
    const auto place = std::find(m_morphs.begin(), m_morphs.end(), morph);
    if (place == m_morphs.end())
        return;
    const RyRef<RyMorph> guard(morph);
    const int index = int(place - m_morphs.begin());
    RyPlaceChange<MorphList>::record(this, morph, index);
    takeMorph(morph, index);
}

void RyShape::insertMorph(RyMorph *morph, int index)
{
    morph->ref();
    morph->m_shape = this;
    m_morphs.insert(m_morphs.begin() + std::min(index, int(m_morphs.size())), morph);
    connect(morph, &RyMorph::shownValueChanged, this, &RyShape::geometryChanged);
    connect(morph, &RyMorph::deltasChanged, this, &RyShape::announceDeltas);
    announceMorphs();
}

void RyShape::takeMorph(RyMorph *morph, int index)
{
    m_morphs.erase(m_morphs.begin() + index);
    disconnect(morph, nullptr, this, nullptr);
    morph->moveControl(nullptr);
    morph->m_shape = nullptr;
    announceMorphs();
    morph->unref();
}

void RyShape::announceMorphs()
{
    m_positions.forgetMorphs();
    emit morphsChanged();
    emit geometryChanged();
}

void RyShape::announceDeltas()
{
    m_positions.forgetMorphs();
    emit geometryChanged();
}
