#include "ryhost/batch/BatchReport.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/undo/RyUndoStack.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace {

QJsonArray vector(const RyVec3 &v)
{
    return {double(v.x), double(v.y), double(v.z)};
}

void addMesh(QJsonObject &entry, const RyNode &node)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh)
        return;
    entry[QStringLiteral("vertices")] = mesh->getNumVertices();
    entry[QStringLiteral("facets")] = mesh->getNumFacets();
    if (shape->getParts()) {
        int split = 0;
        for (const RyMeshPart &part : shape->getParts()->parts)
            split += int(part.vertexOfSplit.size());
        entry[QStringLiteral("fileVertices")] = split;
    }
    QJsonArray groups;
    for (int g = 0; g < mesh->getNumFaceGroups(); ++g)
        groups.append(mesh->getFaceGroup(g)->getName());
    entry[QStringLiteral("faceGroups")] = groups;
    entry[QStringLiteral("size")] = vector(mesh->getBoundingBox().getExtents());
}

} // namespace

QJsonObject batchReport(const RyScene &scene, const BatchEvents &events)
{
    QJsonArray figures, props;
    for (const RyNode *node : scene.getNodesInTreeOrder()) {
        const auto *skeleton = qobject_cast<const RySkeleton *>(node);
        if (!skeleton && !node->getObject())
            continue;
        QJsonObject entry{{QStringLiteral("name"), node->getName()},
                          {QStringLiteral("path"), RyNodeLookup::pathOf(node)}};
        if (skeleton) {
            addMesh(entry, *node);
            QJsonArray bones;
            for (const RyBone *bone : skeleton->getAllBones()) {
                bones.append(QJsonObject{{QStringLiteral("name"), bone->getName()},
                                         {QStringLiteral("parent"), bone->getNodeParent()->getName()},
                                         {QStringLiteral("origin"), vector(bone->getOrigin())},
                                         {QStringLiteral("endPoint"), vector(bone->getEndPoint())},
                                         {QStringLiteral("rotationOrder"), bone->getRotationOrder().name()}});
            }
            entry[QStringLiteral("bones")] = bones;
            figures.append(entry);
        } else {
            addMesh(entry, *node);
            props.append(entry);
        }
    }
    QJsonArray selection, steps;
    for (const RyNode *node : scene.selectedNodeListIterator())
        selection.append(RyNodeLookup::pathOf(node));
    for (int step = 0; step < ryUndoStack()->count(); ++step)
        steps.append(ryUndoStack()->caption(step));
    QJsonObject report{
        {QStringLiteral("figures"), figures},
        {QStringLiteral("props"), props},
        {QStringLiteral("selection"), selection},
        {QStringLiteral("undoSteps"), steps},
        {QStringLiteral("undoIndex"), ryUndoStack()->index()},
        {QStringLiteral("unsaved"), !ryUndoStack()->isClean()},
        {QStringLiteral("messages"), QJsonArray::fromStringList(events.messages)},
        {QStringLiteral("runs"), QJsonArray::fromVariantList(events.runs)},
        {QStringLiteral("boxes"), QJsonArray::fromVariantList(events.boxes)},
    };
    if (!events.fits.isEmpty())
        report[QStringLiteral("fits")] = QJsonArray::fromVariantList(events.fits);
    if (const RySceneOrigin *origin = scene.getOrigin()) {
        report[QStringLiteral("file")] = QFileInfo(origin->path()).fileName();
        report[QStringLiteral("unit")] = origin->unitFactor();
    }
    return report;
}
