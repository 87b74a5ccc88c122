#include "rycore/parametric/RyLegacyRigCache.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacyBonePlaces.h"
#include "rycore/parametric/RyLegacyOwners.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

namespace {

RyLegacyRig::Bone boneOf(const RyNode &bone, const BonePlaces &places)
{
    RyLegacyRig::Bone result;
    result.parent = places.ofParent(&bone);
    result.origin = bone.getOrigin();
    result.end = bone.getEndPoint();
    result.orientation = bone.getOrientation();
    result.order = bone.getRotationOrder();
    result.inheritsScale = bone.inheritsScale();
    return result;
}

/// The figure's own first bone; where all have joined another skeleton, that of the first joint.
int firstBone(const RyLegacyBinding &binding, const RySkeleton &skeleton, const std::vector<RyNode *> &bones,
              const BonePlaces &places)
{
    if (bones.empty() || bones.front()->getSkeleton() == &skeleton)
        return bones.empty() ? -1 : 0;
    for (const RyLegacyJoint *joint : binding.joints()) {
        if (places.of(joint->getBone()) >= 0)
            return places.of(joint->getBone());
    }
    return 0;
}

void readParam(const RyLegacyJointParam &param, RyLegacyRig::Param &result)
{
    result.type = param.type();
    result.flags = param.flags();
    result.axis = param.getAxis();
    result.dynamicMatrix = param.getDynamicMatrix();
    result.staticMatrix = param.getStaticMatrix();
    result.values.clear();
    for (const RyFloatProperty *controller : param.controllers())
        result.values.push_back(controller->getValue());
}

} // namespace

RyLegacyRigCache::OwnersKey RyLegacyRigCache::ownersKey(const RySkeleton &skeleton, const std::vector<RyNode *> &bones)
{
    OwnersKey key;
    const RyObject *object = skeleton.getObject();
    const RyShape *shape = object ? object->getCurrentShape() : nullptr;
    const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr;
    const auto *facets = qobject_cast<const RyFacetMesh *>(mesh);
    key.mesh = mesh;
    key.meshRevision = mesh ? mesh->revision() : 0;
    key.groupRevision = facets ? facets->groupRevision() : 0;
    const RySelectionMap *map = skeleton.getSelectionMap();
    for (int i = 0; map && i < map->getNumPairs(); ++i)
        key.pairs.emplace_back(map->getPairGroup(i), map->getPairNode(i));
    key.bones.assign(bones.begin(), bones.end());
    return key;
}

const RyLegacyRig &RyLegacyRigCache::of(const RyLegacyBinding &binding, const RySkeleton &skeleton)
{
    const std::vector<RyNode *> bones = RyLegacyRig::bonesOf(&binding, skeleton);
    const BonePlaces places(bones);
    std::vector<RyLegacyRig::Bone> rigBones;
    for (const RyNode *bone : bones)
        rigBones.push_back(boneOf(*bone, places));
    OwnersKey key = ownersKey(skeleton, bones);
    for (const RyLegacyRig::Bone &bone : rigBones)
        key.parents.push_back(bone.parent);
    key.firstBone = firstBone(binding, skeleton, bones, places);
    const bool sameOwners = key.mesh && key == m_ownersKey;
    for (size_t i = 0; sameOwners && i < bones.size(); ++i)
        rigBones[i].hasGroup = m_rig.bones[i].hasGroup;
    m_rig.bones = std::move(rigBones);
    if (!sameOwners)
        RyLegacyOwners::fill(skeleton, bones, key.firstBone, m_rig);
    m_ownersKey = std::move(key);

    size_t count = 0;
    for (const RyLegacyJoint *joint : binding.joints()) {
        for (const RyLegacyJointParam *param : joint->params()) {
            if (count == m_params.size()) {
                m_params.emplace_back();
                m_rig.params.emplace_back();
            }
            ParamSource &source = m_params[count];
            RyLegacyRig::Param &target = m_rig.params[count++];
            if (source.param != param || source.revision != param->revision())
                readParam(*param, target);
            source = {param, param->revision()};
            target.bone = places.of(joint->getBone());
            target.driver = places.of(param->getDriver());
        }
    }
    m_params.resize(count);
    m_rig.params.resize(count);
    return m_rig;
}

int RyLegacyRigCache::indexOf(const RyLegacyJointParam &param) const
{
    const auto found = std::find_if(m_params.begin(), m_params.end(),
                                    [&param](const ParamSource &source) { return source.param == &param; });
    return found == m_params.end() ? -1 : int(found - m_params.begin());
}
