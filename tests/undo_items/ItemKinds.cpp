#include "ItemKinds.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyScene.h"

namespace {

using Rng = std::mt19937;

int pick(Rng &random, size_t below)
{
    return int(random() % unsigned(below));
}

template<typename T>
T *any(const std::vector<RyRef<T>> &list, Rng &random)
{
    return list[size_t(pick(random, list.size()))].get();
}

/// One of the list, or none, other than `now`.
template<typename T>
T *other(const std::vector<RyRef<T>> &list, T *now, Rng &random)
{
    for (;;) {
        const size_t i = size_t(pick(random, list.size() + 1));
        T *found = i < list.size() ? list[i].get() : nullptr;
        if (found != now)
            return found;
    }
}

/// Takes a part from its owner, or gives it to `next` where it has none.
template<typename Part, typename Owner, typename Take, typename Give>
void takeOrGive(Part *part, Owner *owner, Owner *next, Take take, Give give)
{
    if (owner)
        (owner->*take)(part);
    else
        (next->*give)(part);
}

RyNode *anyNode(const ItemFamily &family, Rng &random)
{
    const int i = pick(random, family.bones.size() + family.skeletons.size());
    if (i < int(family.bones.size()))
        return family.bones[size_t(i)];
    return family.skeletons[size_t(i) - family.bones.size()];
}

void editName(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *node = anyNode(family, random);
    const QString name = QStringLiteral("name%1").arg(pick(random, 4));
    if (name == node->getName())
        return;
    node->setName(name);
    recorded.values << family.id(node) + ".name";
}

void editLabel(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *node = anyNode(family, random);
    const int i = pick(random, 5);
    // No label of its own, an empty one, one that equals the name.
    const QString label = i == 0   ? QString()
                          : i == 1 ? QStringLiteral("")
                          : i == 2 ? node->getName()
                                   : QStringLiteral("label %1").arg(i);
    const QString now = node->hasOwnLabel() ? node->getLabel() : QString();
    if (label == now && label.isNull() == now.isNull())
        return;
    node->setLabel(label);
    recorded.values << family.id(node) + ".label";
}

void editProperty(ItemFamily &family, Rng &random, Recorded &recorded)
{
    const std::vector<RyFloatProperty *> controls = ItemFamily::controls(anyNode(family, random));
    RyFloatProperty *property = controls[size_t(pick(random, controls.size()))];
    const auto value = float(pick(random, 100)) + 0.5f;
    switch (pick(random, 4)) {
    case 0:
        property->setDefaultValue(property->getDefaultValue() + value);
        break;
    case 1:
        property->setMax(property->getMax() + value);
        break;
    case 2:
        property->setIsClamped(!property->isClamped());
        break;
    default:
        if (property->isClamped())
            return;
        property->setValue(property->getRawValue() + value);
        break;
    }
    recorded.values << family.id(property->getOwner()) + property->getName();
}

void editLink(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyFloatProperty *controller = any(family.bones, random)->getXRotControl();
    RyFloatProperty *controlled = any(family.bones, random)->getXRotControl();
    RyERCLink *link = nullptr;
    for (RyERCLink *each : controlled->getControllerLinks()) {
        if (each->getController() == controller)
            link = each;
    }
    if (link)
        RyERCLink::remove(link);
    else
        link = RyERCLink::create(controller, controlled);
    if (link)
        recorded.values << QStringLiteral("link%1").arg(quintptr(link));
}

void editPositions(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyFacetMesh *mesh = any(family.meshes, random);
    const int vertex = pick(random, ItemFamily::VertexCount);
    const RyVec3 position = mesh->getPositions()[size_t(vertex)] + RyVec3(0.5f, float(pick(random, 3)), 0);
    if (pick(random, 2)) {
        mesh->setVertex(vertex, position);
    } else {
        std::vector<RyVec3> positions = mesh->getPositions();
        positions[size_t(vertex)] = position;
        mesh->setPositions(std::move(positions));
    }
    recorded.values << family.id(mesh) + ".positions";
}

void editFacets(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyFacetMesh *mesh = any(family.meshes, random);
    std::vector<RyFacet> facets = mesh->getFacets();
    facets[size_t(pick(random, facets.size()))].vertices[0] = pick(random, ItemFamily::VertexCount);
    if (facets.size() > 3 && pick(random, 2))
        facets.pop_back();
    mesh->setFacets(std::move(facets));
    recorded.values << family.id(mesh) + ".facets";
}

void editGroups(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyFacetMesh *mesh = any(family.meshes, random);
    const QString name = QStringLiteral("group%1").arg(pick(random, 3));
    const int what = pick(random, 3);
    if (what == 0 && mesh->findFaceGroup(name)) {
        mesh->removeFaceGroup(name);
    } else if (what == 1 && mesh->getNumFaceGroups() > 0) {
        std::vector<int> groups;
        for (const RyFacet &facet : mesh->getFacets())
            groups.push_back(facet.group);
        int &group = groups[size_t(pick(random, groups.size()))];
        group = group == 0 ? -1 : 0;
        mesh->setGroupsOfFacets(groups);
    } else if (!mesh->findFaceGroup(name)) {
        mesh->createFaceGroup(name);
    } else {
        return;
    }
    recorded.values << family.id(mesh) + ".groups";
}

void editWeights(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyWeightMap *map = any(family.maps, random);
    const auto weight = quint16(random());
    if (pick(random, 4) == 0) {
        map->setNumWeights(ItemFamily::VertexCount);
    } else if (pick(random, 2)) {
        map->setAffected(ItemFamily::VertexCount, {1, pick(random, 10) + 2}, {weight, 7});
    } else {
        map->beginEdit();
        map->getWeights()[pick(random, size_t(map->getNumWeights()))] = weight;
        map->finishEdit();
    }
    recorded.values << family.id(map) + ".weights";
}

void editFlag(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *node = anyNode(family, random);
    const int flag = pick(random, 4);
    switch (flag) {
    case 0:
        node->setHidden(!node->isHidden());
        break;
    case 1:
        node->setSelectable(!node->isSelectable());
        break;
    case 2:
        node->setPromoteSelection(!node->isSelectionPromoted());
        break;
    default:
        node->setInheritScale(!node->inheritsScale());
        break;
    }
    recorded.values << family.id(node) + ".flag" + QString::number(flag);
}

void editOrder(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *node = anyNode(family, random);
    const RyRotationOrder order(pick(random, 6));
    if (order == node->getRotationOrder())
        return;
    node->setRotationOrder(order);
    recorded.values << family.id(node) + ".order";
}

void editParent(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *child = any(family.bones, random);
    RyNode *parent = anyNode(family, random);
    if (child->getNodeParent() && pick(random, 4) == 0)
        recorded.changes += child->getNodeParent()->removeNodeChild(child);
    else
        recorded.changes += parent->addNodeChild(child, false, pick(random, 3) - 1);
}

void editRegistration(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *node = any(family.bones, random);
    std::vector<RyNode *> nodes{node};
    node->getNodeChildren(nodes, true);
    const bool isThere = node->getScene() != nullptr;
    recorded.changes += int(std::count_if(nodes.begin(), nodes.end(),
                                          [&](RyNode *each) { return (each->getScene() != nullptr) == isThere; }));
    if (!isThere) {
        ryScene()->addNode(node);
        return;
    }
    recorded.changes += node->getNodeParent() != nullptr;
    ryScene()->removeNode(node);
}

void editObject(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyNode *node = family.skeletons[0];
    node->setObject(other(family.objects, node->getObject(), random));
    recorded.values << family.id(node) + ".object";
}

void editPairing(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RySkeleton *skeleton = any(family.skeletons, random);
    skeleton->setSelectionMap(other(family.pairings, skeleton->getSelectionMap(), random));
    recorded.values << family.id(skeleton) + ".pairing";
}

void editSkeletonFlags(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RySkeleton *skeleton = any(family.skeletons, random);
    if (pick(random, 2))
        skeleton->setDrawGLBones(!skeleton->drawsGLBones());
    else if (skeleton->getFollowTarget())
        skeleton->setFollowTarget(nullptr);
    else
        skeleton->setFollowTarget(family.skeletons[skeleton == family.skeletons[0] ? 1 : 0]);
    recorded.values << family.id(skeleton) + ".flags";
}

void editPairs(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RySelectionMap *pairs = any(family.pairings, random);
    const int what = pick(random, 3);
    if (what == 0 && pairs->getNumPairs() > 0)
        pairs->removePair(pick(random, size_t(pairs->getNumPairs())));
    else if (what == 1 && pairs->getNumPairs() > 0)
        pairs->clearAll();
    else
        pairs->addPair(QStringLiteral("group%1").arg(pick(random, 3)), anyNode(family, random), true);
    recorded.values << family.id(pairs) + ".pairs";
}

void editModifiers(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RySkinBinding *skin = any(family.skins, random);
    takeOrGive(skin, skin->getObject(), any(family.objects, random), &RyObject::removeModifier, &RyObject::addModifier);
    ++recorded.changes;
}

void editShapes(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyObject *object = any(family.objects, random);
    const size_t before = object->getShapes().size();
    object->addShape(any(family.shapes, random));
    recorded.changes += int(object->getShapes().size() - before);
}

void editMesh(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyFacetShape *shape = any(family.shapes, random);
    shape->setFacetMesh(other(family.meshes, shape->getFacetMesh(), random));
    recorded.values << family.id(shape) + ".mesh";
}

void editParts(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyFacetShape *shape = any(family.shapes, random);
    const auto &parts = family.parts[size_t(pick(random, family.parts.size()))];
    if (parts == shape->getParts())
        return;
    shape->setParts(parts);
    recorded.values << family.id(shape) + ".parts";
}

void editBindings(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyBoneBinding *binding = any(family.bindings, random);
    takeOrGive(binding, binding->getSkin(), any(family.skins, random), &RySkinBinding::removeBoneBinding,
               &RySkinBinding::addBoneBinding);
    ++recorded.changes;
}

void editKinds(ItemFamily &family, Rng &random, Recorded &recorded)
{
    // The third has no bindings, so that what was declared is what it says.
    RySkinBinding *skin = family.skins[2];
    if (skin->getNumBoneBindings() > 0)
        return;
    if (pick(random, 2))
        skin->setMapKinds(!skin->hasLocalMaps(), skin->hasGeneralMaps());
    else
        skin->setMapKinds(skin->hasLocalMaps(), !skin->hasGeneralMaps());
    recorded.values << family.id(skin) + ".kinds";
}

void editBulgeWeights(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyBulgeBinding *bulge = any(family.bulges, random);
    const int side = pick(random, 2);
    if (side == 0)
        bulge->setLeftWeights(other(family.maps, bulge->getLeftWeights(), random));
    else
        bulge->setRightWeights(other(family.maps, bulge->getRightWeights(), random));
    recorded.values << family.id(bulge) + ".weights" + QString::number(side);
}

void editBindingBone(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyBoneBinding *binding = any(family.bindings, random);
    binding->setBone(other(family.bones, binding->getBone(), random));
    recorded.values << family.id(binding) + ".bone";
}

void editBindingMap(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyBoneBinding *binding = any(family.bindings, random);
    const int slot = pick(random, 5);
    if (slot == 0)
        binding->setWeights(other(family.maps, binding->getWeights(), random));
    else if (slot == 1)
        binding->setScaleWeights(other(family.maps, binding->getScaleWeights(), random));
    else
        binding->setLocalWeights(other(family.maps, binding->getLocalWeights(slot - 2), random), slot - 2);
    recorded.values << family.id(binding) + ".map" + QString::number(slot);
}

void editBindingBulge(ItemFamily &family, Rng &random, Recorded &recorded)
{
    RyBoneBinding *binding = any(family.bindings, random);
    RyBulgeBinding *bulge = any(family.bulges, random);
    const int axis = bulge->getAxis();
    if (RyBoneBinding *owner = bulge->getBoneBinding()) {
        binding = owner;
        bulge = nullptr;
    }
    binding->setBulgeBinding(axis, bulge);
    recorded.values << family.id(binding) + ".bulge" + QString::number(axis);
}

} // namespace

const std::vector<ItemKind> &itemKinds()
{
    static const std::vector<ItemKind> kinds{
        {"name", false, editName},
        {"label", false, editLabel},
        {"property", false, editProperty},
        {"link", false, editLink},
        {"positions", false, editPositions},
        {"facets", false, editFacets},
        {"face groups", false, editGroups},
        {"weights", false, editWeights},
        {"node flags", false, editFlag},
        {"rotation order", false, editOrder},
        {"parent", false, editParent},
        {"registration", true, editRegistration},
        {"object", false, editObject},
        {"selection map", false, editPairing},
        {"skeleton flags", false, editSkeletonFlags},
        {"pairs", false, editPairs},
        {"modifiers", false, editModifiers},
        {"shapes", false, editShapes},
        {"mesh", false, editMesh},
        {"parts", false, editParts},
        {"bindings", false, editBindings},
        {"map kinds", false, editKinds},
        {"bulge weights", false, editBulgeWeights},
        {"bound bone", false, editBindingBone},
        {"bound map", false, editBindingMap},
        {"bound bulge", false, editBindingBulge},
    };
    return kinds;
}
