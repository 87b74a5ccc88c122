#pragma once

#include "skin/BulgedFigure.h"

/// Points and normals as they are drawn.
struct ShownFigure
{
    explicit ShownFigure(const BulgedFigure &figure)
    {
        const RyShapePoints points = figure.skeleton->getObject()->getDeformedPoints();
        positions = *points.positions;
        normals = *points.normals;
        revision = points.revision();
        changes = *points.changes;
    }
    bool operator==(const ShownFigure &o) const { return positions == o.positions && normals == o.normals; }
    /// Whether all that differs from an earlier picture lies in what is said to have changed since.
    bool tellsWhatDiffersFrom(const ShownFigure &before) const
    {
        std::vector<char> told(normals.size(), 0);
        for (const RyPointChanges::Range &range : changes.since(before.revision))
            std::fill_n(told.begin() + range.first, range.count, 1);
        for (size_t place = 0; place < normals.size(); ++place) {
            const bool isVertex = place < positions.size();
            if (!told[place] && (!(normals[place] == before.normals[place]) ||
                                 (isVertex && !(positions[place] == before.positions[place]))))
                return false;
        }
        return true;
    }

    std::vector<RyVec3> positions;
    std::vector<RyVec3> normals;
    quint64 revision = 0;
    RyPointChanges changes;
};

/// What a skin that knows nothing of before makes of the figure: all maps are announced anew.
inline ShownFigure shownAnew(BulgedFigure &figure)
{
    RyObject *object = figure.skeleton->getObject();
    const RyRef<RySkinBinding> old(figure.skin);
    auto *anew = new RySkinBinding;
    object->removeModifier(old.get());
    for (const RyBoneBinding *binding : old->bindings())
        anew->addBoneBinding(binding->copyFor(binding->getBone()));
    object->addModifier(anew);
    const ShownFigure shown(figure);
    object->removeModifier(anew);
    object->addModifier(old.get());
    return shown;
}
