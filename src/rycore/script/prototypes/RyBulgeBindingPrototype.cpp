#include "rycore/script/prototypes/RyBulgeBindingPrototype.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShape.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <map>

namespace {

constexpr const char *ShortNames[4] = {"posLeft", "negLeft", "posRight", "negRight"};

int vertexCountOf(const RyBulgeBinding &bulge)
{
    const RySkinBinding *skin = bulge.getBoneBinding() ? bulge.getBoneBinding()->getSkin() : nullptr;
    const RyShape *shape = skin && skin->getObject() ? skin->getObject()->getCurrentShape() : nullptr;
    return shape ? int(shape->getBasePositions().size()) : 0;
}

} // namespace

int RyBulgeBindingPrototype::getAxis() const
{
    const RyBulgeBinding *bulge = self<RyBulgeBinding>();
    return bulge ? bulge->getAxis() : 0;
}

RyWeightMap *RyBulgeBindingPrototype::getLeftWeights() const
{
    const RyBulgeBinding *bulge = self<RyBulgeBinding>();
    return bulge ? bulge->getLeftWeights() : nullptr;
}

RyWeightMap *RyBulgeBindingPrototype::getRightWeights() const
{
    const RyBulgeBinding *bulge = self<RyBulgeBinding>();
    return bulge ? bulge->getRightWeights() : nullptr;
}

void RyBulgeBindingPrototype::setLeftWeights(const QScriptValue &vertices, const QScriptValue &weights,
                                             const QString &name) const
{
    setWeights(&RyBulgeBinding::setLeftWeights, vertices, weights, name);
}

void RyBulgeBindingPrototype::setRightWeights(const QScriptValue &vertices, const QScriptValue &weights,
                                              const QString &name) const
{
    setWeights(&RyBulgeBinding::setRightWeights, vertices, weights, name);
}

void RyBulgeBindingPrototype::setWeights(Setter setter, const QScriptValue &vertices, const QScriptValue &weights,
                                         const QString &name) const
{
    RyBulgeBinding *bulge = self<RyBulgeBinding>();
    if (!bulge)
        return;
    if (vertices.isNull()) {
        (bulge->*setter)(nullptr);
        return;
    }
    const quint32 count = vertices.property(QStringLiteral("length")).toUInt32();
    if (!vertices.isArray() || !weights.isArray() || weights.property(QStringLiteral("length")).toUInt32() != count) {
        fail(tr("A map is a list of vertices and one of as many weights."));
        return;
    }
    const int vertexCount = vertexCountOf(*bulge);
    std::map<int, quint16> entries;
    for (quint32 i = 0; i < count; ++i) {
        const double vertex = vertices.property(i).toNumber();
        const double weight = weights.property(i).toNumber();
        if (!(vertex >= 0) || vertex >= vertexCount || vertex != int(vertex)) {
            fail(tr("There is no vertex %1: the mesh has %2.").arg(vertices.property(i).toString()).arg(vertexCount));
            return;
        }
        if (!(weight >= 0) || weight > RyWeightMap::FullWeight) {
            fail(tr("A weight is a number from 0 to 65535, not %1.").arg(weights.property(i).toString()));
            return;
        }
        entries[int(vertex)] = quint16(weight);
    }
    std::vector<int> indices;
    std::vector<quint16> numbers;
    for (const auto &[vertex, weight] : entries) {
        indices.push_back(vertex);
        numbers.push_back(weight);
    }
    auto *map = new RyWeightMap(name);
    map->setAffected(vertexCount, std::move(indices), std::move(numbers));
    (bulge->*setter)(map);
}

std::vector<RyFloatProperty *> RyBulgeBindingPrototype::values() const
{
    const RyBulgeBinding *bulge = self<RyBulgeBinding>();
    if (!bulge)
        return {};
    return std::vector<RyFloatProperty *>(bulge->controllers().begin(), bulge->controllers().end());
}

RyFloatProperty *RyBulgeBindingPrototype::value(const QString &name) const
{
    const std::vector<RyFloatProperty *> all = values();
    for (size_t i = 0; i < all.size(); ++i) {
        if (name == QLatin1String(ShortNames[i]) || name == all[i]->getName())
            return all[i];
    }
    if (!all.empty())
        fail(tr("A bulge has no value \"%1\".").arg(name));
    return nullptr;
}
