#include "rycore/io/gltf/open/RyGltfSceneReader.h"

#include "rycore/io/gltf/extras/RyMeshExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>
#include <set>

// Props: meshes without a skin, and the nodes that hold them on a bone.

/// Children stand in the order of the file: bones, props and figures alike.
int RyGltfSceneReader::placeBelow(const RyNode &above, int node) const
{
    const std::vector<RyNode *> children = above.nodeChildrenIterator();
    const auto isBefore = [this](const RyNode *child, int place) { return m_placeOf.at(child) < place; };
    return int(std::lower_bound(children.begin(), children.end(), m_placeInOrder[size_t(node)], isBefore) -
               children.begin());
}

void RyGltfSceneReader::setPropPose(RyGltfNodeSource &source) const
{
    RyAffine stored;
    const RyAffine posed =
        RyRiggingExtras::findStoredPose(*m_origin->document, source.node, m_origin->unit, stored) ? stored : RyAffine();
    const RyNode *above = source.sceneNode->getNodeParent();
    const double unit = m_origin->unit;
    const RyAffine shown = m_nodeToWorld[size_t(source.node)] * RyAffine::fromScale(unit);
    const RyAffine said = source.bind * posed * (above ? above->worldMap() : RyAffine());
    double size = 0.0;
    double difference = 0.0;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column) {
            size = std::max(size, std::abs(shown.m[row][column]));
            difference = std::max(difference, std::abs(shown.m[row][column] - said.m[row][column]));
        }
    }
    if (difference > 1e-4 * size ||
        !RyRiggingExtras::applyPose(*m_origin->document, source.node, unit, posed, 1e-3f, *source.sceneNode)) {
        return;
    }
    source.localPose = source.sceneNode->getLocalMap();
}

/// Nodes with a mesh of their own, and the nodes between them and a bone that hold them. A mesh whose skin lost its
/// bones is shown as it lay in its figure.
std::vector<bool> RyGltfSceneReader::findProps() const
{
    const RyGltfModel &model = m_origin->document->model();
    std::set<int> shownSkins;
    std::vector<bool> isTaken(model.nodes.size(), false); // by a figure
    for (const Figure &figure : m_figures) {
        shownSkins.insert(figure.joints.skins.begin(), figure.joints.skins.end());
        for (const int bone : figure.joints.bones)
            isTaken[size_t(bone)] = true;
        if (figure.carrier >= 0)
            isTaken[size_t(figure.carrier)] = true;
    }
    std::vector<bool> isProp(model.nodes.size(), false);
    for (auto node = m_preOrder.rbegin(); node != m_preOrder.rend(); ++node) {
        const RyGltfNode &each = model.nodes[size_t(*node)];
        if (isTaken[size_t(*node)] || shownSkins.count(each.skin))
            continue;
        isProp[size_t(*node)] = each.mesh >= 0;
        for (const int child : each.children)
            isProp[size_t(*node)] = isProp[size_t(*node)] || isProp[size_t(child)];
    }
    return isProp;
}

void RyGltfSceneReader::buildProp(int index)
{
    const RyGltfModel &model = m_origin->document->model();
    const RyGltfNode &node = model.nodes[size_t(index)];
    RyNode *above = sceneNodeAbove(index);
    if (node.mesh < 0 && !above)
        return; // a plain node above props stays in the file's tree alone
    RyGltfNodeSource source = propSource(index, above);
    auto *prop = new RyNode;
    prop->setName(namesBeside(above).take(node.name.isEmpty() ? QStringLiteral("node%1").arg(index) : node.name));
    RyQuat orientation;
    source.bind.decomposePolar(source.stretch, orientation);
    prop->setOrigin(source.bind.translation(), true);
    prop->setOrientation(orientation, true);
    source.sceneNode = prop;
    hangProp(*prop, above, index);
    if (node.mesh >= 0)
        buildPropMesh(source);
    finishProp(source);
    addSource(std::move(source));
}

/// Where the file shows the node, unposed.
RyGltfNodeSource RyGltfSceneReader::propSource(int index, const RyNode *above) const
{
    const RyGltfModel &model = m_origin->document->model();
    const RyGltfNode &node = model.nodes[size_t(index)];
    const RyAffine toCentimetres = RyAffine::fromScale(m_origin->unit);
    RyAffine posed = m_nodeToWorld[size_t(index)] * toCentimetres;
    RyAffine toFigure;
    if (node.mesh >= 0 && node.skin >= 0 && RyTreeExtras::findToFigure(*m_origin->document, node.skin, toFigure)) {
        posed = toFigure * toCentimetres * (above ? above->worldMap().inverse() : RyAffine());
    } else if (above && ryDropsScale(*above)) {
        posed = posed * above->worldMap().inverse();
    } else if (above) {
        // By what lies between, not by the world: the same numbers wherever the figure stands or hangs.
        posed = node.transform.toAffine();
        int at = node.parent;
        for (; m_sourceOf[size_t(at)] < 0; at = model.nodes[size_t(at)].parent)
            posed = posed * model.nodes[size_t(at)].transform.toAffine();
        posed = posed * m_origin->nodes[size_t(m_sourceOf[size_t(at)])].bind;
    }
    RyGltfNodeSource source;
    source.node = index;
    source.bind = RyRiggingExtras::restOf(*m_origin->document, index, m_origin->unit, posed);
    return source;
}

void RyGltfSceneReader::hangProp(RyNode &prop, RyNode *above, int index)
{
    noteNode(index, prop);
    if (above)
        above->addNodeChild(&prop, false, placeBelow(*above, index));
    else
        m_tops.emplace_back(&prop);
}

void RyGltfSceneReader::buildPropMesh(const RyGltfNodeSource &source)
{
    const RyGltfModel &model = m_origin->document->model();
    const int meshIndex = model.nodes[size_t(source.node)].mesh;
    RyGltfMeshBuilder builder(m_origin->document);
    RyGltfFigureSource figure;
    figure.sceneNode = source.sceneNode;
    const std::vector<RyGltfPrimitive> &primitives = model.meshes[size_t(meshIndex)].primitives;
    for (size_t p = 0; p < primitives.size(); ++p) {
        builder.addPart(meshIndex, int(p), partName(meshIndex, int(p)), {}, source.bind, 0);
        figure.parts.push_back({source.node, meshIndex, int(p), -1});
    }
    const int entry = m_entries->find({source.node}, int(m_figures.size() + m_origin->figures.size()));
    RyFigureExtras::applyFacetOrder(*m_origin->document, entry, builder.facets, builder.polygons, builder.parts,
                                    m_messages);
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(std::move(builder.positions));
    mesh->setFacets(std::move(builder.facets), std::move(builder.polygons));
    auto parts = std::make_shared<RyMeshParts>(std::move(builder.parts));
    fillLooks(*parts);
    if (!RyFigureExtras::applyFaceGroups(*m_origin->document, entry, *mesh, m_messages))
        addPartGroups(*mesh, *parts);
    auto *shape = new RyFacetShape(mesh);
    shape->setParts(parts);
    auto *object = new RyObject;
    object->setName(RyFigureExtras::objectName(*m_origin->document, entry, *source.sceneNode));
    object->addShape(shape);
    figure.meshParts = parts;
    readMorphs(figure, *shape, entry, source.bind);
    source.sceneNode->setObject(object);
    figure.positionsHash = ryPositionsHash(*source.sceneNode);
    figure.vertexCount = mesh->getNumVertices();
    figure.groupsText = RyMeshExtras::groupsText(*mesh);
    m_origin->figures.push_back(std::move(figure));
}

/// The end point of a prop is the middle of its mesh, unless an earlier save stored another.
void RyGltfSceneReader::finishProp(RyGltfNodeSource &source)
{
    RyNode &prop = *source.sceneNode;
    const RyShape *shape = RyShape::getCurrentShapeForNode(&prop);
    const RyVertexMesh *mesh = shape ? shape->getGeometry() : nullptr;
    const RyVec3 end = mesh ? mesh->getBoundingBox().getCenter() : prop.getOrigin();
    prop.setEndPoint(end, true);
    // Far from the origin, and below turned bones, single precision says less.
    const float size = std::max({1.0f, (end - prop.getOrigin()).length(), 0.1f * prop.getOrigin().length()});
    RyRiggingExtras::applyToNode(*m_origin->document, source.node, m_origin->unit, 1e-4f * size, source.bind, prop,
                                 m_messages);
    setPropPose(source);
    RyRiggingExtras::applyLimits(*m_origin->document, source.node, m_origin->unit, prop);
    source.loaded = RyNodeValues::of(prop);
    source.riggingState = RyRiggingExtras::nodeState(prop);
}
