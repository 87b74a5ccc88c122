#include "pluginsource/RyJointTools/operations/transferRigging.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/adjustValues.h"
#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/math/RyAffine.h"
#include "rycore/scene/RyBone.h"
#include "rycore/skin/RySkinBinding.h"

#include <QHash>

#include <algorithm>

namespace {

/// Of several bones of one name the first.
QHash<QString, const RyBone *> byName(const std::vector<RyBone *> &bones)
{
    QHash<QString, const RyBone *> names;
    for (const RyBone *bone : bones) {
        if (!names.contains(bone->getName()))
            names.insert(bone->getName(), bone);
    }
    return names;
}

/// From the axes of the posed bone to those of figure space.
RyQuat posedOrientation(const RyBone &bone)
{
    RyQuat orientation = bone.getOrientation();
    const RyNode *figure = bone.getSkeleton();
    for (const RyNode *node = &bone; node && node != figure; node = node->getNodeParent())
        orientation = orientation * node->getLocalRot();
    return orientation;
}

class Transfer
{
public:
    Transfer(const RySkeleton &source, const RyFigure &target)
        : m_sourceSkin(RySkinBinding::findSkinFromNode(&source)), m_skin(RySkinBinding::findSkinFromNode(&target)),
          m_bulgeFactor(target.getLocalScale()[0][0])
    {}

    void take(const RyBone &source, const RyBone &bone)
    {
        const RyAffine &map = source.figureMap();
        const RyNodeRigging::Controls &controls = bone.riggingControls();
        want(map.mapPoint(source.getOrigin()), &controls[RyNodeRigging::Origin]);
        want(map.mapPoint(source.getEndPoint()), &controls[RyNodeRigging::End]);
        want(posedOrientation(source).toEulerXYZ(), &controls[RyNodeRigging::Orientation]);
        const RyBoneBinding *from = m_sourceSkin ? m_sourceSkin->findBoneBinding(&source) : nullptr;
        const RyBoneBinding *to = m_skin ? m_skin->findBoneBinding(&bone) : nullptr;
        for (int axis = 0; from && to && axis < 3; ++axis) {
            if (from->getBulgeBinding(axis) && to->getBulgeBinding(axis))
                takeBulges(*from->getBulgeBinding(axis), *to->getBulgeBinding(axis));
        }
    }
    const std::vector<RyWantedValue> &wanted() const { return m_wanted; }

private:
    void want(const RyVec3 &v, RyFloatProperty *const *triple)
    {
        for (int axis = 0; axis < 3; ++axis)
            m_wanted.push_back({triple[axis], v[axis]});
    }
    void takeBulges(const RyBulgeBinding &from, const RyBulgeBinding &to)
    {
        for (size_t i = 0; i < from.controllers().size(); ++i)
            m_wanted.push_back({to.controllers()[i], from.controllers()[i]->getValue() * m_bulgeFactor});
    }

    const RySkinBinding *m_sourceSkin;
    const RySkinBinding *m_skin;
    float m_bulgeFactor;
    std::vector<RyWantedValue> m_wanted;
};

} // namespace

RyRiggingTransfer transferRigging(const RySkeleton &source, const RyFigure &target)
{
    RyRiggingTransfer report;
    Transfer transfer(source, target);
    const std::vector<RyBone *> sourceBones = source.ownBones();
    const std::vector<RyBone *> bones = target.ownBones();
    const QHash<QString, const RyBone *> namesakes = byName(sourceBones);
    for (const RyBone *bone : bones) {
        if (const RyBone *namesake = namesakes.value(bone->getName())) {
            transfer.take(*namesake, *bone);
            ++report.matched;
        } else {
            report.unmatched.append(bone->getName());
        }
    }
    const QHash<QString, const RyBone *> known = byName(bones);
    report.sourceOnly = int(std::count_if(sourceBones.begin(), sourceBones.end(),
                                          [&known](const RyBone *bone) { return !known.contains(bone->getName()); }));
    const RyExactRiggingEdit edit;
    adjustValues(transfer.wanted());
    return report;
}
