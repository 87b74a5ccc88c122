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

std::vector<RyBone *> ownBones(const RySkeleton &skeleton)
{
    std::vector<RyBone *> bones = skeleton.getAllBones();
    std::erase_if(bones, [&skeleton](const RyBone *bone) { return bone->getSkeleton() != &skeleton; });
    return bones;
}

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
        want(map.mapPoint(source.getOrigin()), bone.getOriginXControl(), bone.getOriginYControl(),
             bone.getOriginZControl());
        want(map.mapPoint(source.getEndPoint()), bone.getEndXControl(), bone.getEndYControl(), bone.getEndZControl());
        want(posedOrientation(source).toEulerXYZ(), bone.getOrientXControl(), bone.getOrientYControl(),
             bone.getOrientZControl());
        const RyBoneBinding *from = m_sourceSkin ? m_sourceSkin->findBoneBinding(&source) : nullptr;
        const RyBoneBinding *to = m_skin ? m_skin->findBoneBinding(&bone) : nullptr;
        for (int axis = 0; from && to && axis < 3; ++axis) {
            if (from->getBulgeBinding(axis) && to->getBulgeBinding(axis))
                takeBulges(*from->getBulgeBinding(axis), *to->getBulgeBinding(axis));
        }
    }
    const std::vector<RyWantedValue> &wanted() const { return m_wanted; }

private:
    void want(const RyVec3 &v, RyFloatProperty *x, RyFloatProperty *y, RyFloatProperty *z)
    {
        m_wanted.insert(m_wanted.end(), {{x, v.x}, {y, v.y}, {z, v.z}});
    }
    void takeBulges(const RyBulgeBinding &from, const RyBulgeBinding &to)
    {
        float posLeft, negLeft, posRight, negRight;
        from.getBulgeValues(posLeft, negLeft, posRight, negRight);
        m_wanted.push_back({to.getPosLeftBulgeController(), posLeft * m_bulgeFactor});
        m_wanted.push_back({to.getNegLeftBulgeController(), negLeft * m_bulgeFactor});
        m_wanted.push_back({to.getPosRightBulgeController(), posRight * m_bulgeFactor});
        m_wanted.push_back({to.getNegRightBulgeController(), negRight * m_bulgeFactor});
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
    const std::vector<RyBone *> sourceBones = ownBones(source);
    const std::vector<RyBone *> bones = ownBones(target);
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
