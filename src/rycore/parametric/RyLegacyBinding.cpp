#include "rycore/parametric/RyLegacyBinding.h"

#include "rycore/base/RyPlaceChange.h"
#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyJointIndex.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RyShapeNormals.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>
#include <utility>

struct RyLegacyBinding::JointList : RyListOf<RyLegacyBinding, RyLegacyJoint>
{
    static bool mayMove(const RyLegacyBinding &binding, const RyLegacyJoint &joint)
    {
        return !joint.getBinding() || joint.getBinding() == &binding;
    }
    static const auto &of(const RyLegacyBinding &binding) { return binding.m_joints; }
    static bool has(const RyLegacyBinding &binding, const RyLegacyJoint &joint)
    {
        return joint.getBinding() == &binding;
    }
    static void take(RyLegacyBinding &binding, RyLegacyJoint *joint, int place) { binding.takeJoint(joint, place); }
    static void insert(RyLegacyBinding &binding, RyLegacyJoint *joint, int index) { binding.insertJoint(joint, index); }
};

RyLegacyBinding::RyLegacyBinding()
{
    connect(this, &RyLegacyBinding::bindingChanged, this, &RyModifier::modifierChanged);
}

RyLegacyBinding::~RyLegacyBinding()
{
    for (RyLegacyJoint *joint : m_joints) {
        disconnect(joint, nullptr, this, nullptr);
        RyLegacyJointIndex::remove(joint);
        joint->m_binding = nullptr;
        joint->unref();
    }
}

RyLegacyBinding *RyLegacyBinding::findBinding(const RySkeleton *skeleton)
{
    return findBinding(skeleton ? skeleton->getObject() : nullptr);
}

RyLegacyBinding *RyLegacyBinding::findBinding(const RyObject *object)
{
    return object ? object->findModifier<RyLegacyBinding>() : nullptr;
}

RyLegacyJoint *RyLegacyBinding::findJoint(const RyNode *bone) const
{
    const std::vector<RyLegacyJoint *> joints = RyLegacyJointIndex::jointsOf(bone);
    const auto isHere = [this](const RyLegacyJoint *joint) { return joint->getBinding() == this; };
    const auto found = std::find_if(joints.begin(), joints.end(), isHere);
    if (found == joints.end() || std::none_of(std::next(found), joints.end(), isHere))
        return found == joints.end() ? nullptr : *found;
    return *std::find_if(m_joints.begin(), m_joints.end(),
                         [bone](const RyLegacyJoint *joint) { return joint->getBone() == bone; });
}

bool RyLegacyBinding::isJoined(const RySkeleton &figure, const RyNode *bone)
{
    const RySkeleton *skeleton = bone ? bone->getSkeleton() : nullptr;
    if (!skeleton || skeleton == &figure || bone->getScene() != figure.getScene())
        return false;
    const RyNode *above = figure.getNodeParent();
    return figure.getFollowTarget() == skeleton || (above && above->getSkeleton() == skeleton);
}

RyLegacyBinding *RyLegacyBinding::bindingForChildOf(const RyNode *node)
{
    for (const RyNode *above = node; above && above != node->getSkeleton(); above = above->getNodeParent()) {
        if (const RyLegacyJoint *joint = RyLegacyJoint::findJoint(above))
            return joint->getBinding();
    }
    return findBinding(node ? node->getSkeleton() : nullptr);
}

RySkeleton *RyLegacyBinding::getFigure() const
{
    return getObject() ? qobject_cast<RySkeleton *>(getObject()->getNode()) : nullptr;
}

bool RyLegacyBinding::addJoint(RyLegacyJoint *joint)
{
    if (!joint || joint->m_binding)
        return false;
    const RyRef<RyLegacyJoint> guard(joint);
    RyPlaceChange<JointList>::record(this, joint, -1);
    insertJoint(joint, int(m_joints.size()));
    return true;
}

bool RyLegacyBinding::removeJoint(RyLegacyJoint *joint)
{
    const auto place = std::find(m_joints.begin(), m_joints.end(), joint);
    if (place == m_joints.end())
        return false;
    const RyRef<RyLegacyJoint> guard(joint);
    const int index = int(place - m_joints.begin());
    RyPlaceChange<JointList>::record(this, joint, index);
    takeJoint(joint, index);
    return true;
}

void RyLegacyBinding::insertJoint(RyLegacyJoint *joint, int index)
{
    joint->ref();
    joint->m_binding = this;
    m_joints.insert(m_joints.begin() + std::min(index, int(m_joints.size())), joint);
    RyLegacyJointIndex::insert(joint);
    connect(joint, &RyLegacyJoint::jointChanged, this, &RyLegacyBinding::announce);
    announce();
}

void RyLegacyBinding::takeJoint(RyLegacyJoint *joint, int index)
{
    for (RyLegacyJointParam *param : joint->params())
        emit param->aboutToBeRemoved();
    m_joints.erase(m_joints.begin() + index);
    disconnect(joint, nullptr, this, nullptr);
    RyLegacyJointIndex::remove(joint);
    joint->m_binding = nullptr;
    announce();
    joint->unref();
}

std::vector<const RyElement *> RyLegacyBinding::parts() const
{
    std::vector<const RyElement *> parts;
    for (const RyLegacyJoint *joint : m_joints) {
        for (const RyLegacyJointParam *param : joint->params())
            parts.insert(parts.end(), {param, param->getDynamicSphere(), param->getStaticSphere()});
    }
    return parts;
}

std::vector<RyNode *> RyLegacyBinding::bones() const
{
    const RySkeleton *figure = getFigure();
    return figure ? RyLegacyRig::bonesOf(this, *figure) : std::vector<RyNode *>();
}

RyVertexBones RyLegacyBinding::vertexBones(int vertexCount) const
{
    RyVertexBones lowest = RyModifier::vertexBones(vertexCount);
    if (m_deformer.getNumVertices() != vertexCount || m_deformer.rig().bones.size() != bones().size())
        return lowest;
    for (int vertex = 0; vertex < vertexCount; ++vertex)
        lowest.bones[size_t(vertex)] = m_deformer.leader(vertex);
    lowest.weights.assign(size_t(vertexCount), 1);
    return lowest;
}

std::vector<quint64> RyLegacyBinding::vertexBonesKey() const
{
    std::vector<quint64> key{quint64(m_deformer.groupBuilds())};
    for (const RyNode *bone : bones())
        key.push_back(quint64(quintptr(bone)));
    return key;
}

RyElement *RyLegacyBinding::doDuplicateElement(RyElementDuplicateContext *context)
{
    if (!context)
        return nullptr;
    auto *binding = new RyLegacyBinding;
    binding->setName(getName());
    if (hasOwnLabel())
        binding->setLabel(getLabel());
    context->addDuplicate(this, binding);
    for (RyLegacyJoint *joint : m_joints)
        binding->addJoint(static_cast<RyLegacyJoint *>(joint->doDuplicateElement(context)));
    return binding;
}

void RyLegacyBinding::announce()
{
    if (editLevel() > 0)
        m_touched = true;
    else
        emit bindingChanged();
}

void RyLegacyBinding::editFinished()
{
    if (std::exchange(m_touched, false))
        emit bindingChanged();
}

RyWeightMap *RyLegacyBinding::makeWeights(const RyLegacyJointParam &param, const RySkeleton *skeleton)
{
    const RySkeleton *figure = getFigure();
    const RyBone *bone = param.getJoint() ? param.getJoint()->getBone() : nullptr;
    if (figure && bone && bone->getSkeleton() == skeleton && isJoined(*figure, bone))
        skeleton = figure;
    const RyObject *object = skeleton ? skeleton->getObject() : nullptr;
    const RyShape *shape = object ? object->getCurrentShape() : nullptr;
    const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr;
    if (!mesh)
        return nullptr;
    auto *map = new RyWeightMap(param.getName());
    map->setNumWeights(mesh->getNumVertices());
    m_deformer.setRig(m_rig.of(*this, *skeleton), shape->getCurrentPositions());
    const int index = m_rig.indexOf(param);
    if (index < 0)
        return map;
    std::vector<int> vertices;
    std::vector<quint16> weights;
    const std::vector<float> exact = m_deformer.weights(index);
    for (size_t v = 0; v < exact.size(); ++v) {
        const auto weight = quint16(std::lround(double(exact[v]) * RyWeightMap::FullWeight));
        if (weight == 0)
            continue;
        vertices.push_back(int(v));
        weights.push_back(weight);
    }
    map->setAffected(int(exact.size()), std::move(vertices), std::move(weights));
    return map;
}

bool RyLegacyBinding::deform(RyShapePoints &points)
{
    const RyNode *node = getObject() ? getObject()->getNode() : nullptr;
    const RySkeleton *skeleton = node ? node->getSkeleton() : nullptr;
    if (!skeleton)
        return true;
    m_deformer.setRig(m_rig.of(*this, *skeleton), *points.positions);
    m_deformer.setFurtherNormals(points.places ? points.places->vertexOfFurther() : std::vector<int>());
    points.positions = &m_deformer.pose(RyLegacyRig::controlsOf(*skeleton), points.normals, points.revision());
    if (points.normals)
        points.normals = &m_deformer.normals();
    points.changes = &m_deformer.changes();
    return true;
}
