#pragma once

#include "rycore/scene/RyBone.h"

#include <QHash>

#include <vector>

/// The places of bones, and of what else moves bones, in a list; -1 for what is not in it.
class BonePlaces
{
public:
    explicit BonePlaces(const std::vector<RyNode *> &bones)
    {
        for (size_t i = 0; i < bones.size(); ++i)
            m_places.insert(bones[i], int(i));
    }
    int of(const RyNode *bone) const { return m_places.value(bone, -1); }
    int ofParent(const RyNode *bone) const
    {
        int place = -1;
        for (const RyNode *node = bone->getNodeParent(); node && place < 0; node = node->getNodeParent())
            place = of(node);
        return place;
    }

private:
    QHash<const RyNode *, int> m_places;
};
