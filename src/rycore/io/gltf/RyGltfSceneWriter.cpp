#include "rycore/io/gltf/RyGltfSceneWriter.h"

#include "rycore/io/gltf/RyGltfFigureFinder.h"
#include "rycore/io/gltf/RyGltfSceneExporter.h"
#include "rycore/io/gltf/RyRiggingExtras.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

namespace {

RyAffine scaleBy(double factor)
{
    return RyAffine::fromScale(factor, factor, factor);
}

const RyFacetShape *shapeOf(const RyNode *node)
{
    return qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
}

} // namespace

void ryGltfAppendMatrix(const RyAffine &map, std::vector<float> &values)
{
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            values.push_back(float(map.m[row][column]));
        values.push_back(row == 3 ? 1.0f : 0.0f);
    }
}

RyGltfTransform ryGltfTransformOf(const RyAffine &local, bool asMatrix, bool *exact)
{
    RyGltfTransform transform;
    if (asMatrix) {
        transform.hasMatrix = true;
        for (size_t row = 0; row < 4; ++row) {
            for (size_t column = 0; column < 3; ++column)
                transform.matrix[4 * row + column] = local.m[row][column];
            transform.matrix[4 * row + 3] = row == 3 ? 1.0 : 0.0;
        }
        if (exact)
            *exact = true;
        return transform;
    }
    RyAffine stretch;
    RyQuat rotation;
    local.decomposePolar(stretch, rotation);
    transform.translation = {local.m[3][0], local.m[3][1], local.m[3][2]};
    // The file's quaternion turns right-handed, ours by minus its angle.
    transform.rotation = {-double(rotation.x), -double(rotation.y), -double(rotation.z), double(rotation.w)};
    transform.scale = {stretch.m[0][0], stretch.m[1][1], stretch.m[2][2]};
    double size = 0.0;
    double shear = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            (i == j ? size : shear) = std::max(i == j ? size : shear, std::abs(stretch.m[i][j]));
        if (std::abs(transform.scale[size_t(i)] - 1.0) < 1e-6)
            transform.scale[size_t(i)] = 1.0;
    }
    if (exact)
        *exact = shear <= 1e-5 * size;
    return transform;
}

bool RyGltfSceneWriter::isEdited(const RyScene &) const
{
    if (!newNodes().empty())
        return true;
    for (const RyGltfNodeSource &source : m_source.nodes) {
        if (source.sceneNode && (!source.sceneNode->getScene() ||
                                 !(RyNodeValues::of(*source.sceneNode) == source.loaded) ||
                                 RyRiggingExtras::nodeText(*source.sceneNode) != source.riggingText)) {
            return true;
        }
    }
    for (const RyGltfFigureSource &figure : m_source.figures) {
        const RyNode *node = figure.sceneNode;
        if (!node)
            continue;
        const RyFacetShape *shape = shapeOf(node);
        if ((qobject_cast<const RySkeleton *>(node) && !(RyNodeValues::of(*node) == figure.loaded)) ||
            (shape && shape->getFacetMesh() &&
             RyRiggingExtras::groupsText(*shape->getFacetMesh()) != figure.groupsText) ||
            RyRiggingExtras::selectionText(*node) != figure.selectionText) {
            return true;
        }
    }
    const double stored = RyRiggingExtras::storedUnit(*m_source.document);
    return m_source.unitWasChosen && m_source.unit != stored;
}

std::unique_ptr<RyGltfDocument> RyGltfSceneWriter::patch(const RyScene &scene, QStringList *messages)
{
    m_messages = messages;
    m_document = m_source.document->clone();
    reportMeshes();
    if (!isEdited(scene))
        return std::move(m_document);
    m_isAnimated.assign(m_document->model().nodes.size(), false);
    for (const std::vector<int> &nodes : m_document->model().animatedNodes) {
        for (const int node : nodes)
            m_isAnimated[size_t(node)] = true;
    }
    collectEdits();
    writeNodes();
    addNewNodes();
    for (const RyGltfFigureSource &figure : m_source.figures) {
        if (!figure.sceneNode || figure.skins.empty())
            continue;
        if (figure.skins.front().rebound)
            writeRebound(figure);
        else
            writeInverseBinds(figure);
    }
    storeExtras(*m_document);
    reportClips();
    return std::move(m_document);
}

void RyGltfSceneWriter::collectEdits()
{
    for (const RyGltfNodeSource &source : m_source.nodes) {
        if (!source.sceneNode)
            continue;
        Edit edit;
        edit.source = &source;
        edit.now = RyNodeValues::of(*source.sceneNode);
        edit.bind = source.bind;
        if (source.isBone) {
            const bool turned = !edit.now.sameOrientation(source.loaded);
            const bool moved = !edit.now.sameOrigin(source.loaded);
            if (turned) {
                edit.bind = source.stretch * RyAffine::fromRotation(source.sceneNode->getOrientation());
                for (int axis = 0; axis < 3; ++axis)
                    edit.bind.m[3][axis] = source.bind.m[3][axis];
            }
            const RyVec3 origin = source.sceneNode->getOrigin();
            for (int axis = 0; axis < 3 && moved; ++axis)
                edit.bind.m[3][axis] = double(origin[axis]);
            edit.restChanged = turned || moved;
        }
        edit.poseChanged = !edit.now.samePose(source.loaded);
        m_edits[source.node] = edit;
        if (!source.sceneNode->getScene() && m_messages) {
            m_messages->append(QStringLiteral("\"%1\" was removed from the scene; the file keeps it")
                                   .arg(source.sceneNode->getName()));
        }
    }
    // A node that does not inherit scale holds its parent's against it: it changes with every pose above it.
    for (auto &[index, edit] : m_edits) {
        if (edit.source->sceneNode->inheritsScale())
            continue;
        for (const auto &[otherIndex, other] : m_edits) {
            if (other.poseChanged && edit.source->sceneNode->isDescendantOf(other.source->sceneNode))
                edit.poseChanged = true;
        }
    }
}

RyAffine RyGltfSceneWriter::localPoseNow(const Edit &edit) const
{
    const RyNode &node = *edit.source->sceneNode;
    if (!edit.poseChanged)
        return edit.source->localPose;
    if (node.inheritsScale() || !node.getNodeParent())
        return node.getLocalMap();
    return node.figureMap() * node.getNodeParent()->figureMap().inverse();
}

void RyGltfSceneWriter::writeNodes()
{
    for (const int index : ryGltfPreOrder(m_source.document->model())) { // what stands above is written first
        const auto found = m_edits.find(index);
        if (found == m_edits.end())
            continue;
        const Edit &edit = found->second;
        writeNode(edit);
        if (edit.now.name != edit.source->loaded.name)
            m_document->setNodeName(index, edit.now.name);
        if (edit.restChanged || edit.now.rigging != edit.source->loaded.rigging)
            writeUnlistedChildren(edit);
    }
}

void RyGltfSceneWriter::writeNode(const Edit &edit)
{
    const RyNode &node = *edit.source->sceneNode;
    const int fileParent = m_source.document->model().nodes[size_t(edit.source->node)].parent;
    const auto above = m_edits.find(fileParent);
    if (above != m_edits.end() && above->second.source->sceneNode == node.getNodeParent()) {
        if (!edit.restChanged && !edit.poseChanged && !above->second.restChanged)
            return;
        RyAffine toParent;
        if (above->second.bind.invert(toParent))
            setLocal(edit.source->node, edit.bind * localPoseNow(edit) * toParent);
        else
            keepSingular(node);
        return;
    }
    // A root, or a node that hangs elsewhere in the scene than in the file: it is put where the scene has it in the
    // world, the figure's own transform included.
    const bool hangsElsewhere = above != m_edits.end() && above->second.source->isBone && edit.source->isBone;
    const RyNode *parent = node.getNodeParent();
    const RyAffine own = parent ? parent->worldMap() : RyAffine();
    RyAffine parentWorld;
    bool parentWasWritten = false;
    for (int at = fileParent; at >= 0; at = m_document->model().nodes[size_t(at)].parent) {
        parentWorld = parentWorld * m_document->model().nodes[size_t(at)].transform.toAffine();
        parentWasWritten |= std::find(m_rewritten.begin(), m_rewritten.end(), at) != m_rewritten.end();
    }
    if (!edit.restChanged && !edit.poseChanged && !hangsElsewhere && !parentWasWritten && own == RyAffine())
        return;
    RyAffine toParent;
    if (parentWorld.invert(toParent))
        setLocal(edit.source->node, edit.bind * localPoseNow(edit) * own * scaleBy(1.0 / m_source.unit) * toParent);
    else
        keepSingular(node);
}

void RyGltfSceneWriter::keepSingular(const RyNode &node)
{
    if (m_messages) {
        m_messages->append(QStringLiteral("\"%1\" hangs in the file on a node that is scaled to nothing; its place there "
                                          "stays as it was")
                               .arg(node.getName()));
    }
}

void RyGltfSceneWriter::writeUnlistedChildren(const Edit &edit)
{
    // Nodes of the file below a joint that do not stand in the scene keep their place; a node that marks the bone's end follows it.
    const RyGltfModel &model = m_source.document->model();
    for (const int child : model.nodes[size_t(edit.source->node)].children) {
        if (m_edits.count(child) || model.nodes[size_t(child)].skin >= 0)
            continue;
        const QString &name = model.nodes[size_t(child)].name;
        RyAffine local = model.nodes[size_t(child)].transform.toAffine() * edit.source->bind * edit.bind.inverse();
        if (name.endsWith(QLatin1String("_end"), Qt::CaseInsensitive) || name.endsWith(QLatin1String("Nub")) ||
            name.endsWith(QLatin1String("End Site"))) {
            const RyVec3 end = edit.source->sceneNode->getEndPoint();
            const double at[3] = {end.x, end.y, end.z};
            edit.bind.inverse().mapPoint(at, local.m[3]);
        } else if (!edit.restChanged) {
            continue;
        }
        setLocal(child, local);
    }
}

void RyGltfSceneWriter::setLocal(int node, const RyAffine &local)
{
    const RyGltfTransform &before = m_source.document->model().nodes[size_t(node)].transform;
    m_rewritten.push_back(node);
    bool exact = true;
    RyGltfTransform transform = ryGltfTransformOf(local, before.hasMatrix, &exact);
    if (!exact && !m_isAnimated[size_t(node)]) {
        transform = ryGltfTransformOf(local, true);
    } else if (!exact && m_messages) {
        m_messages->append(QStringLiteral("\"%1\" is animated and cannot hold the shear that its new place needs; the nearest "
                                          "translation, rotation and scale were written")
                               .arg(m_source.document->model().nodes[size_t(node)].name));
    }
    m_document->setNodeTransform(node, transform);
}

void RyGltfSceneWriter::writeInverseBinds(const RyGltfFigureSource &figure)
{
    const RyGltfModel &model = m_source.document->model();
    for (const RyGltfSkinSource &skinSource : figure.skins) {
        const RyGltfSkin &skin = model.skins[size_t(skinSource.skin)];
        const int accessorNow = m_document->model().skins[size_t(skinSource.skin)].inverseBindMatrices;
        std::vector<float> values = m_document->readFloats(accessorNow);
        bool changed = false;
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            const auto edit = m_edits.find(skin.joints[j]);
            if (edit == m_edits.end() || !edit->second.restChanged || 16 * j + 16 > values.size())
                continue;
            std::vector<float> sixteen;
            ryGltfAppendMatrix(skinSource.toFigure * edit->second.bind.inverse(), sixteen);
            std::copy(sixteen.begin(), sixteen.end(), values.begin() + long(16 * j));
            changed = true;
        }
        if (!changed)
            continue;
        const int accessor = m_document->replaceFloats(accessorNow, values);
        if (accessor != accessorNow)
            m_document->setSkinInverseBindMatrices(skinSource.skin, accessor);
    }
}

void RyGltfSceneWriter::writeRebound(const RyGltfFigureSource &figure)
{
    // The file's bind matrices could not be used. Once a joint was edited, the vertices are written where the scene has
    // them, in figure space, with bind matrices that say so.
    const bool edited = std::any_of(m_edits.begin(), m_edits.end(), [&](const auto &entry) {
        return (entry.second.restChanged || entry.second.poseChanged) &&
               entry.second.source->sceneNode->getSkeleton() == figure.sceneNode.data();
    });
    const RyFacetShape *shape = shapeOf(figure.sceneNode);
    if (!edited || !shape || !shape->getParts())
        return;
    const RyGltfModel &model = m_source.document->model();
    const std::vector<RyVec3> &positions = shape->getFacetMesh()->getPositions();
    const std::vector<RyVec3> normals = shape->getFacetMesh()->computeNormals(positions);
    std::map<std::pair<int, int>, int> uses;
    for (const RyGltfPartSource &part : figure.parts)
        ++uses[{part.mesh, part.primitive}];
    for (const auto &[meshAndPrimitive, count] : uses) {
        if (count == 1)
            continue;
        if (m_messages) {
            m_messages->append(QStringLiteral("The mesh \"%1\" is used by several skins whose bind matrices cannot be used; "
                                              "its vertices and bind matrices stay as the file has them")
                                   .arg(model.meshes[size_t(meshAndPrimitive.first)].name));
        }
        return;
    }
    for (size_t p = 0; p < figure.parts.size(); ++p) {
        const RyGltfPartSource &part = figure.parts[p];
        const RyGltfPrimitive &primitive = model.meshes[size_t(part.mesh)].primitives[size_t(part.primitive)];
        std::vector<float> points, directions;
        for (const int vertex : shape->getParts()->parts[p].vertexOfSplit) {
            for (int axis = 0; axis < 3; ++axis) {
                points.push_back(float(double(positions[size_t(vertex)][axis]) / m_source.unit));
                directions.push_back(normals[size_t(vertex)][axis]);
            }
        }
        m_document->setPrimitiveAttribute(part.mesh, part.primitive, "POSITION",
                                          m_document->addFloatAccessor(points, 3, 34962, true));
        if (primitive.normals >= 0) {
            m_document->setPrimitiveAttribute(part.mesh, part.primitive, "NORMAL",
                                              m_document->addFloatAccessor(directions, 3, 34962));
        }
    }
    for (const RyGltfSkinSource &skinSource : figure.skins) {
        // New bones have their matrices behind those of the file's joints.
        const int accessor = m_document->model().skins[size_t(skinSource.skin)].inverseBindMatrices;
        std::vector<float> values = accessor < 0 ? std::vector<float>() : m_document->readFloats(accessor);
        const std::vector<int> &joints = model.skins[size_t(skinSource.skin)].joints;
        values.resize(std::max(values.size(), 16 * joints.size()), 0.0f);
        for (size_t j = 0; j < joints.size(); ++j) {
            const auto edit = m_edits.find(joints[j]);
            std::vector<float> sixteen;
            ryGltfAppendMatrix(edit == m_edits.end() ? RyAffine() : scaleBy(m_source.unit) * edit->second.bind.inverse(),
                               sixteen);
            std::copy(sixteen.begin(), sixteen.end(), values.begin() + long(16 * j));
        }
        m_document->setSkinInverseBindMatrices(skinSource.skin, m_document->addFloatAccessor(values, 16, 0));
    }
}

std::map<const RyNode *, const RyNode *> RyGltfSceneWriter::findAnchors() const
{
    std::map<const RyNode *, const RyNode *> anchors;
    for (const RyGltfFigureSource &figure : m_source.figures) {
        for (const RyGltfSkinSource &skinSource : figure.skins) {
            const std::vector<int> &joints = m_source.document->model().skins[size_t(skinSource.skin)].joints;
            std::vector<const RyNode *> bones; // topmost first
            for (const RyGltfNodeSource &source : m_source.nodes) {
                if (source.sceneNode && std::find(joints.begin(), joints.end(), source.node) != joints.end())
                    bones.push_back(source.sceneNode);
            }
            if (bones.empty())
                continue;
            const auto known = std::find_if(bones.begin(), bones.end(),
                                            [&anchors](const RyNode *bone) { return anchors.count(bone) > 0; });
            const RyNode *anchor = known == bones.end() ? bones.front() : anchors[*known];
            for (const RyNode *bone : bones)
                anchors.emplace(bone, anchor);
        }
    }
    return anchors;
}

void RyGltfSceneWriter::storeExtras(RyGltfDocument &document, const RyGltfSceneExporter *added)
{
    const std::map<const RyNode *, const RyNode *> anchors = findAnchors();
    const auto anchorOf = [&anchors](const RyNode &bone) -> const RyNode * {
        // A bone that was made here became a joint of the skin of those above it.
        for (const RyNode *node = &bone; node; node = node->getNodeParent()) {
            const auto found = anchors.find(node);
            if (found != anchors.end())
                return found->second;
        }
        return &bone;
    };
    std::vector<int> nodes;
    std::vector<const RyNode *> sceneNodes;
    for (const RyGltfNodeSource &source : m_source.nodes) {
        if (!source.sceneNode)
            continue;
        const RyVec3 place = source.bind.translation();
        RyRiggingExtras::storeNode(document, source.node, *source.sceneNode, anchorOf, source.isBone ? nullptr : &place);
        nodes.push_back(source.node);
        sceneNodes.push_back(source.sceneNode);
    }
    for (const auto &[node, index] : m_added) {
        RyRiggingExtras::storeNode(document, index, *node, anchorOf);
        nodes.push_back(index);
        sceneNodes.push_back(node);
    }
    // In the order in which they will be read: all figures with skins, then all props.
    std::vector<const RyNode *> figures, props;
    for (const RyGltfFigureSource &figure : m_source.figures)
        (figure.skins.empty() ? props : figures).push_back(figure.sceneNode);
    if (added) {
        added->storeNodes();
        for (const auto &[node, index] : added->nodes()) {
            nodes.push_back(index);
            sceneNodes.push_back(node);
        }
        for (const RyNode *figure : added->figures())
            (qobject_cast<const RySkeleton *>(figure) ? figures : props).push_back(figure);
    }
    figures.insert(figures.end(), props.begin(), props.end());
    RyRiggingExtras::storeFile(document, m_source.unit, figures, nodes, sceneNodes);
}

void RyGltfSceneWriter::reportMeshes()
{
    for (const RyGltfFigureSource &figure : m_source.figures) {
        const RyNode *node = figure.sceneNode;
        if (node && m_messages &&
            (ryPositionsHash(*node) != figure.positionsHash || ryWeightsHash(*node) != figure.weightsHash)) {
            m_messages->append(QStringLiteral("The vertices or weights of \"%1\" were changed; the file keeps its own")
                                   .arg(node->getName()));
        }
    }
}

void RyGltfSceneWriter::reportClips()
{
    const RyGltfModel &model = m_source.document->model();
    QStringList names;
    for (size_t clip = 0; clip < model.animatedNodes.size(); ++clip) {
        const std::vector<int> &driven = model.animatedNodes[clip];
        const bool touched = std::any_of(m_rewritten.begin(), m_rewritten.end(), [&](int node) {
            return std::find(driven.begin(), driven.end(), node) != driven.end();
        });
        if (touched) {
            const QString &name = model.animationNames[clip];
            names.append(name.isEmpty() ? QStringLiteral("animation %1").arg(clip) : name);
        }
    }
    if (names.isEmpty() || !m_messages)
        return;
    const int shown = 6;
    QString list = names.mid(0, shown).join(QStringLiteral(", "));
    if (names.size() > shown)
        list += QStringLiteral(" and %1 more").arg(names.size() - shown);
    m_messages->append(QStringLiteral("Clips are kept as they were and still say the old rest of edited joints: %1").arg(list));
}
