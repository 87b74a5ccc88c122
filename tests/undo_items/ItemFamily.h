#pragma once

#include "SignalLog.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

#include <QMap>

/// Two figures with one of everything that undo knows, untidy as figures are: posed, scaled, turned, current rigging
/// other than the default, values of each kind to choose from. It holds what it has by a count.
class ItemFamily
{
public:
    /// All ids begin with `name`.
    explicit ItemFamily(const QString &name);
    ~ItemFamily();
    ItemFamily(const ItemFamily &) = delete;

    QString name() const { return m_name; }
    /// Everything is deleted, whoever still holds it.
    void destroy();
    /// Every value of every object, by the object's id; other objects of the family are named by their ids.
    QMap<QString, QString> state() const;
    QString id(const QObject *object) const { return m_ids.value(object, QStringLiteral("-")); }
    /// All objects and properties, by name without that of the family.
    void watch(SignalLog &log) const;
    /// The rigging and pose controls.
    static std::vector<RyFloatProperty *> controls(const RyNode *node);

    static constexpr int VertexCount = 12;
    std::vector<RyRef<RySkeleton>> skeletons; // the first is the figure
    std::vector<RyRef<RyBone>> bones;
    std::vector<RyRef<RyObject>> objects;
    std::vector<RyRef<RyFacetShape>> shapes;
    std::vector<RyRef<RyFacetMesh>> meshes;
    std::vector<RyRef<RySkinBinding>> skins;
    std::vector<RyRef<RyBoneBinding>> bindings;
    std::vector<RyRef<RyBulgeBinding>> bulges; // each for its axis
    std::vector<RyRef<RyWeightMap>> maps;
    std::vector<RyRef<RySelectionMap>> pairings;
    std::vector<std::shared_ptr<const RyMeshParts>> parts;

private:
    void makeNodes();
    void makeGeometry();
    void makeSkins();
    void addObject(const QObject *object, const QString &kind, size_t index);
    QString ownText(const QObject *object) const;
    QString nodeText(const RyNode *node) const;
    QString meshText(const RyFacetMesh *mesh) const;
    QString propertyText(const RyFloatProperty *property) const;

    QString m_name;
    QHash<const QObject *, QString> m_ids;
    std::vector<QPointer<QObject>> m_all;
};
