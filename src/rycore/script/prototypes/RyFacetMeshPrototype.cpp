#include "rycore/script/prototypes/RyFacetMeshPrototype.h"

#include "rycore/mesh/RyFacetMesh.h"

#include <optional>

int RyFacetMeshPrototype::numVertices(const RyFacetMesh *mesh)
{
    return mesh ? mesh->getNumVertices() : 0;
}

int RyFacetMeshPrototype::numFacets(const RyFacetMesh *mesh)
{
    return mesh ? mesh->getNumFacets() : 0;
}

QStringList RyFacetMeshPrototype::faceGroupNames(const RyFacetMesh *mesh)
{
    QStringList names;
    for (int i = 0; mesh && i < mesh->getNumFaceGroups(); ++i)
        names.append(mesh->getFaceGroup(i)->getName());
    return names;
}

int RyFacetMeshPrototype::getNumVertices() const
{
    return numVertices(self<RyFacetMesh>());
}

int RyFacetMeshPrototype::getNumFacets() const
{
    return numFacets(self<RyFacetMesh>());
}

QScriptValue RyFacetMeshPrototype::getVertex(int index) const
{
    const RyFacetMesh *mesh = self<RyFacetMesh>();
    if (!mesh)
        return {};
    if (index < 0 || index >= mesh->getNumVertices()) {
        fail(tr("There is no vertex %1: the mesh has %2.").arg(index).arg(mesh->getNumVertices()));
        return {};
    }
    return toObject(mesh->getPositions()[size_t(index)]);
}

QScriptValue RyFacetMeshPrototype::getFacetVertices(int index) const
{
    const RyFacetMesh *mesh = self<RyFacetMesh>();
    if (!mesh)
        return {};
    if (index < 0 || index >= mesh->getNumFacets()) {
        fail(tr("There is no facet %1: the mesh has %2.").arg(index).arg(mesh->getNumFacets()));
        return {};
    }
    const RyFacet &facet = mesh->getFacet(index);
    QScriptValue corners = engine()->newArray(uint(facet.count()));
    for (int i = 0; i < facet.count(); ++i)
        corners.setProperty(quint32(i), facet.vertices[i]);
    return corners;
}

QStringList RyFacetMeshPrototype::getFaceGroupNames() const
{
    return faceGroupNames(self<RyFacetMesh>());
}

QScriptValue RyFacetMeshPrototype::getFaceGroup(const QString &name) const
{
    const RyFacetMesh *mesh = self<RyFacetMesh>();
    const RyFaceGroup *group = mesh ? mesh->findFaceGroup(name) : nullptr;
    if (!group) {
        fail(tr("The mesh has no face group called \"%1\".").arg(name));
        return {};
    }
    const RyIndexList &facets = group->getFacets();
    QScriptValue array = engine()->newArray(uint(facets.count()));
    for (int i = 0; i < facets.count(); ++i)
        array.setProperty(quint32(i), facets.getIndex(i));
    return array;
}

/// The numbers of an array, each from 0 below `end`; none where something else is in it, or it is no array.
static std::optional<std::vector<int>> numbersBelow(int end, const QScriptValue &array)
{
    if (!array.isArray())
        return {};
    std::vector<int> numbers(array.property(QStringLiteral("length")).toUInt32());
    for (size_t i = 0; i < numbers.size(); ++i) {
        const QScriptValue each = array.property(quint32(i));
        numbers[i] = each.toInt32();
        if (!each.isNumber() || numbers[i] != each.toNumber() || numbers[i] < 0 || numbers[i] >= end)
            return {};
    }
    return numbers;
}

void RyFacetMeshPrototype::setFaceGroup(const QString &name, const QScriptValue &facets) const
{
    RyFacetMesh *mesh = self<RyFacetMesh>();
    if (!mesh)
        return;
    const std::optional<std::vector<int>> members = numbersBelow(mesh->getNumFacets(), facets);
    if (name.isEmpty() || !members) {
        fail(name.isEmpty()
                 ? tr("A face group needs a name.")
                 : tr("The facets of a group are an array of numbers from 0 to %1.").arg(mesh->getNumFacets() - 1));
        return;
    }
    mesh->createFaceGroup(name);
    const int group = mesh->findFaceGroupIndex(name);
    std::vector<int> groupOfFacet;
    groupOfFacet.reserve(size_t(mesh->getNumFacets()));
    for (const RyFacet &facet : mesh->getFacets())
        groupOfFacet.push_back(facet.group == group ? -1 : facet.group);
    for (const int facet : *members)
        groupOfFacet[size_t(facet)] = group;
    mesh->setGroupsOfFacets(groupOfFacet);
}
