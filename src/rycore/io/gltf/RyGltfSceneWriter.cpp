#include "rycore/io/gltf/RyGltfSceneWriter.h"

#include "rycore/io/gltf/RyGltfFigureFinder.h"
#include "rycore/io/gltf/RyGltfSceneExporter.h"
#include "rycore/io/gltf/RyRiggingExtras.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <cmath>

namespace {

RyAffine scaleBy(double factor)
{
    return RyAffine::fromScale(factor, factor, factor);
}

void appendSixteen(const RyAffine &map, std::vector<float> &values)
{
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            values.push_back(float(map.m[row][column]));
        values.push_back(row == 3 ? 1.0f : 0.0f);
    }
}

const RyFacetShape *shapeOf(const RyNode *node)
{
    return qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
}

} // namespace

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
    for (const RyGltfNodeSource &source : m_source.nodes) {
        if (source.sceneNode && (!(RyNodeValues::of(*source.sceneNode) == source.loaded) ||
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
            (shape && RyRiggingExtras::groupsText(*shape->getFacetMesh()) != figure.groupsText) ||
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
    if (!isEdited(scene))
        return std::move(m_document);
    m_isAnimated.assign(m_document->model().nodes.size(), false);
    for (const std::vector<int> &nodes : m_document->model().animatedNodes) {
        for (const int node : nodes)
            m_isAnimated[size_t(node)] = true;
    }
    collectEdits();
    writeNodes();
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
    for (const auto &[index, edit] : m_edits) {
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
    if (above != m_edits.end()) {
        if (!edit.restChanged && !edit.poseChanged && !above->second.restChanged)
            return;
        setLocal(edit.source->node, edit.bind * localPoseNow(edit) * above->second.bind.inverse());
        return;
    }
    // A root: what the figure's own transform adds comes in here.
    const RyNode *parent = node.getNodeParent();
    const RyAffine own = parent ? parent->worldMap() : RyAffine();
    if (!edit.restChanged && !edit.poseChanged && own == RyAffine())
        return;
    RyAffine parentWorld;
    for (int at = fileParent; at >= 0; at = m_source.document->model().nodes[size_t(at)].parent)
        parentWorld = parentWorld * m_source.document->model().nodes[size_t(at)].transform.toAffine();
    setLocal(edit.source->node,
             edit.bind * localPoseNow(edit) * own * scaleBy(1.0 / m_source.unit) * parentWorld.inverse());
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
        std::vector<float> values = m_source.document->readFloats(skin.inverseBindMatrices);
        bool changed = false;
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            const auto edit = m_edits.find(skin.joints[j]);
            if (edit == m_edits.end() || !edit->second.restChanged || 16 * j + 16 > values.size())
                continue;
            std::vector<float> sixteen;
            appendSixteen(skinSource.toFigure * edit->second.bind.inverse(), sixteen);
            std::copy(sixteen.begin(), sixteen.end(), values.begin() + long(16 * j));
            changed = true;
        }
        if (!changed)
            continue;
        const int accessor = m_document->replaceFloats(skin.inverseBindMatrices, values);
        if (accessor != skin.inverseBindMatrices)
            m_document->setSkinInverseBindMatrices(skinSource.skin, accessor);
    }
}

void RyGltfSceneWriter::writeRebound(const RyGltfFigureSource &figure)
{
    // The file's bind matrices could not be used. Once a joint's rest was edited, the vertices are written where the scene
    // has them, in figure space, with bind matrices that say so.
    const bool edited = std::any_of(m_edits.begin(), m_edits.end(), [&](const auto &entry) {
        return entry.second.restChanged && entry.second.source->sceneNode->getSkeleton() == figure.sceneNode.data();
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
    for (size_t p = 0; p < figure.parts.size(); ++p) {
        const RyGltfPartSource &part = figure.parts[p];
        if (uses[{part.mesh, part.primitive}] > 1) {
            if (m_messages) {
                m_messages->append(QStringLiteral("The mesh \"%1\" is used by several skins whose bind matrices cannot be "
                                                  "used; its vertices stay as the file has them")
                                       .arg(model.meshes[size_t(part.mesh)].name));
            }
            continue;
        }
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
        std::vector<float> values;
        for (const int joint : model.skins[size_t(skinSource.skin)].joints) {
            const auto edit = m_edits.find(joint);
            appendSixteen(edit == m_edits.end() ? RyAffine() : scaleBy(m_source.unit) * edit->second.bind.inverse(),
                          values);
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
    const auto anchorOf = [&anchors](const RyNode &bone) {
        const auto found = anchors.find(&bone);
        return found == anchors.end() ? &bone : found->second;
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
