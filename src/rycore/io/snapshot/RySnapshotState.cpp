#include "rycore/io/snapshot/RySnapshotState.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyBulgeBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <QDataStream>

#include <cstring>
#include <unordered_map>

namespace {

using Properties = std::vector<RyFloatProperty *>;

void addGroup(const RyPropertyGroup *group, Properties &properties)
{
    for (; group; group = group->getNextSibling()) {
        addGroup(group->getFirstChild(), properties);
        for (int i = 0; i < group->getNumProperties(); ++i) {
            if (auto *property = qobject_cast<RyFloatProperty *>(group->getProperty(i)))
                properties.push_back(property);
        }
    }
}

/// Of the muscles and joints of a figure: by its skin and not by its bones, which may be those of another figure.
void addModifiers(const RyNode &node, Properties &properties)
{
    if (const RySkinBinding *skin = RySkinBinding::findSkin(qobject_cast<const RySkeleton *>(&node))) {
        for (const RyBoneBinding *binding : skin->bindings()) {
            for (int axis = 0; axis < 3; ++axis) {
                if (const RyBulgeBinding *bulge = binding->getBulgeBinding(axis))
                    properties.insert(properties.end(), bulge->controllers().begin(), bulge->controllers().end());
            }
        }
    }
    const RyLegacyBinding *joints = RyLegacyBinding::findBinding(qobject_cast<const RySkeleton *>(&node));
    for (const RyLegacyJoint *joint : joints ? joints->joints() : std::vector<RyLegacyJoint *>()) {
        for (const RyLegacyJointParam *param : joint->params()) {
            for (RyFloatProperty *each : param->controllers())
                properties.push_back(each);
            for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
                for (RyFloatProperty *each : sphere->controls())
                    properties.push_back(each);
            }
        }
    }
}

/// In the order in which snapshots have them, those of earlier programs too.
Properties propertiesOf(const RyNode &node)
{
    Properties properties;
    addGroup(node.getPrivatePropertyGroups(), properties);
    addGroup(node.getPropertyGroups(), properties);
    if (node.getObject())
        addModifiers(node, properties);
    return properties;
}

struct Value
{
    float raw, byDefault, min, max;
    bool clamped;
    bool operator==(const Value &) const = default;
};

Value valueOf(const RyFloatProperty &property)
{
    return {property.getRawValue(), property.getDefaultValue(), property.getMin(), property.getMax(),
            property.isClamped()};
}

void write(const Value &value, RyFloatProperty &property)
{
    property.setIsClamped(false);
    property.setMin(value.min);
    property.setMax(value.max);
    property.setDefaultValue(value.byDefault);
    property.setValue(value.raw);
    property.setIsClamped(value.clamped);
}

void prepare(QDataStream &stream)
{
    stream.setVersion(QDataStream::Qt_5_15);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
}

RyFacetMesh *meshOf(const RyNode &node)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    return shape ? shape->getFacetMesh() : nullptr;
}

} // namespace

QByteArray RySnapshotState::valuesOf(const RyScene &scene)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream);
    for (const RyNode *node : scene.getNodesInTreeOrder()) {
        const Properties properties = propertiesOf(*node);
        stream << node->getName() << quint32(properties.size());
        for (const RyFloatProperty *property : properties) {
            const Value value = valueOf(*property);
            stream << value.raw << value.byDefault << value.min << value.max << value.clamped;
        }
    }
    return bytes;
}

int RySnapshotState::applyValues(const QByteArray &values, const std::vector<RyNode *> &nodes)
{
    QDataStream stream(values);
    prepare(stream);
    int passedOver = 0;
    for (const RyNode *node : nodes) {
        QString name;
        quint32 count = 0;
        stream >> name >> count;
        const Properties properties = propertiesOf(*node);
        const bool fits = stream.status() == QDataStream::Ok && name == node->getName() && count == properties.size();
        passedOver += fits ? 0 : 1;
        for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
            Value value{};
            stream >> value.raw >> value.byDefault >> value.min >> value.max >> value.clamped;
            if (fits && stream.status() == QDataStream::Ok && !(valueOf(*properties[i]) == value))
                write(value, *properties[i]);
        }
    }
    return passedOver;
}

QByteArray RySnapshotState::selectionOf(const RyScene &scene)
{
    std::unordered_map<const RyNode *, int> places;
    for (const RyNode *node : scene.getNodesInTreeOrder())
        places.emplace(node, int(places.size()));
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream);
    for (const RyNode *node : scene.selectedNodeListIterator()) {
        if (const auto place = places.find(node); place != places.end())
            stream << qint32(place->second);
    }
    return bytes;
}

void RySnapshotState::applySelection(const QByteArray &selection, RyScene &scene)
{
    const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
    std::vector<RyNode *> selected;
    QDataStream stream(selection);
    prepare(stream);
    while (!stream.atEnd()) {
        qint32 place = -1;
        stream >> place;
        if (stream.status() != QDataStream::Ok)
            break;
        if (place >= 0 && size_t(place) < nodes.size())
            selected.push_back(nodes[size_t(place)]);
    }
    scene.setSelection(selected);
}

QByteArray RySnapshotState::positionsOf(const RyNode &node)
{
    static_assert(sizeof(RyVec3) == 3 * sizeof(float));
    const RyFacetMesh *mesh = meshOf(node);
    if (!mesh)
        return {};
    const std::vector<RyVec3> &positions = mesh->getPositions();
    return {reinterpret_cast<const char *>(positions.data()), int(positions.size() * sizeof(RyVec3))};
}

void RySnapshotState::applyPositions(const QByteArray &positions, const RyNode &node)
{
    RyFacetMesh *mesh = meshOf(node);
    if (!mesh || positions.isEmpty() || size_t(positions.size()) != mesh->getPositions().size() * sizeof(RyVec3))
        return;
    std::vector<RyVec3> exact(mesh->getPositions().size());
    std::memcpy(static_cast<void *>(exact.data()), positions.constData(), size_t(positions.size()));
    if (std::memcmp(exact.data(), mesh->getPositions().data(), size_t(positions.size())) != 0)
        mesh->setPositions(std::move(exact));
}
