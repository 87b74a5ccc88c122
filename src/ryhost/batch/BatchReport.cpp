#include "ryhost/batch/BatchReport.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/batch/JsonText.h"

#include <QFileInfo>
#include <QJsonValue>

namespace {

using Key = QLatin1String;

// Keys are written in the order of the alphabet.

void addVector(JsonText &json, Key key, const RyVec3 &v)
{
    json.key(key);
    json.beginArray();
    for (int axis = 0; axis < 3; ++axis)
        json.add(double(v[axis]));
    json.endArray();
}

void addTexts(JsonText &json, Key key, const QStringList &texts)
{
    json.key(key);
    json.beginArray();
    for (const QString &text : texts)
        json.add(text);
    json.endArray();
}

void addBones(JsonText &json, const RySkeleton &skeleton)
{
    json.key(Key("bones"));
    json.beginArray();
    for (const RyBone *bone : skeleton.getAllBones()) {
        json.beginObject();
        addVector(json, Key("endPoint"), bone->getEndPoint());
        json.add(Key("name"), bone->getName());
        addVector(json, Key("origin"), bone->getOrigin());
        json.add(Key("parent"), bone->getNodeParent()->getName());
        json.add(Key("rotationOrder"), bone->getRotationOrder().name());
        json.endObject();
    }
    json.endArray();
}

/// A figure or a prop.
void addNode(JsonText &json, const RyNode &node)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    json.beginObject();
    if (const auto *skeleton = qobject_cast<const RySkeleton *>(&node))
        addBones(json, *skeleton);
    if (mesh) {
        QStringList groups;
        for (int g = 0; g < mesh->getNumFaceGroups(); ++g)
            groups.append(mesh->getFaceGroup(g)->getName());
        addTexts(json, Key("faceGroups"), groups);
        json.add(Key("facets"), mesh->getNumFacets());
    }
    if (mesh && shape->getParts()) {
        int split = 0;
        for (const RyMeshPart &part : shape->getParts()->parts)
            split += int(part.vertexOfSplit.size());
        json.add(Key("fileVertices"), split);
    }
    json.add(Key("name"), node.getName());
    json.add(Key("path"), RyNodeLookup::pathOf(&node));
    if (mesh) {
        addVector(json, Key("size"), mesh->getBoundingBox().getExtents());
        json.add(Key("vertices"), mesh->getNumVertices());
    }
    json.endObject();
}

void addNodes(JsonText &json, Key key, const std::vector<const RyNode *> &nodes)
{
    json.key(key);
    json.beginArray();
    for (const RyNode *node : nodes)
        addNode(json, *node);
    json.endArray();
}

} // namespace

QByteArray batchReport(const RyScene &scene, const BatchEvents &events)
{
    std::vector<const RyNode *> figures, props;
    for (const RyNode *node : scene.getNodesInTreeOrder()) {
        if (qobject_cast<const RySkeleton *>(node))
            figures.push_back(node);
        else if (node->getObject())
            props.push_back(node);
    }
    QStringList selection, steps;
    for (const RyNode *node : scene.selectedNodeListIterator())
        selection.append(RyNodeLookup::pathOf(node));
    for (int step = 0; step < ryUndoStack()->count(); ++step)
        steps.append(ryUndoStack()->caption(step));
    const RySceneOrigin *origin = scene.getOrigin();
    JsonText json;
    json.beginObject();
    json.add(Key("boxes"), QJsonValue::fromVariant(events.boxes));
    addNodes(json, Key("figures"), figures);
    if (origin)
        json.add(Key("file"), QFileInfo(origin->path()).fileName());
    if (!events.fits.isEmpty())
        json.add(Key("fits"), QJsonValue::fromVariant(events.fits));
    addTexts(json, Key("messages"), events.messages);
    addNodes(json, Key("props"), props);
    json.add(Key("runs"), QJsonValue::fromVariant(events.runs));
    addTexts(json, Key("selection"), selection);
    json.add(Key("undoIndex"), ryUndoStack()->index());
    addTexts(json, Key("undoSteps"), steps);
    if (origin)
        json.add(Key("unit"), origin->unitFactor());
    json.add(Key("unsaved"), !ryUndoStack()->isClean());
    json.endObject();
    return json.takeText();
}
