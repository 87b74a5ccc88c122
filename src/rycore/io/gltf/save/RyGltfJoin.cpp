#include "rycore/io/gltf/save/RyGltfJoin.h"

#include "rycore/io/gltf/document/RyGltfAppender.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyParametricExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMeshPart.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

bool isThere(const RyNode *node)
{
    return node && node->getScene();
}

using MeshParts = std::set<const RyMeshParts *>;

MeshParts partsIn(const RyScene &scene)
{
    MeshParts parts;
    for (const RyNode *node : scene.getNodes()) {
        if (const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(node)))
            parts.insert(shape->getParts().get());
    }
    return parts;
}

/// Whether a node of the file stands in the scene, or a mesh of it does on another node (a prop that became a figure).
bool isLive(const RyGltfOrigin &origin, const MeshParts &shown)
{
    return std::any_of(origin.nodes.begin(), origin.nodes.end(),
                       [](const RyGltfNodeSource &source) { return isThere(source.sceneNode); }) ||
           std::any_of(origin.figures.begin(), origin.figures.end(), [&shown](const RyGltfFigureSource &source) {
               return isThere(source.sceneNode) || (source.meshParts && shown.count(source.meshParts.get()));
           });
}

} // namespace

std::vector<const RyGltfOrigin *> RyGltfJoin::liveOrigins(const RyScene &scene)
{
    std::vector<const RyGltfOrigin *> live;
    const MeshParts shown = partsIn(scene);
    for (const std::shared_ptr<RySceneOrigin> &each : scene.getOrigins()) {
        const auto *origin = dynamic_cast<const RyGltfOrigin *>(each.get());
        if (origin && isLive(*origin, shown))
            live.push_back(origin);
    }
    return live;
}

RyGltfJoin::RyGltfJoin(const RyGltfOrigin &first) : m_joined(std::make_unique<RyGltfOrigin>())
{
    m_joined->filePath = first.filePath;
    m_joined->unit = first.unit;
    m_joined->unitWasChosen = first.unitWasChosen;
    m_joined->document = first.document->clone();
    m_joined->nodes = first.nodes;
    m_joined->figures = first.figures;
}

bool RyGltfJoin::add(const RyGltfOrigin &other, QString *error)
{
    RyGltfDocument &document = *m_joined->document;
    RyGltfAppender appender(document, *other.document, nodesToLeaveOut(other));
    const std::vector<int> roots = appender.append(QFileInfo(other.filePath).completeBaseName(), error);
    if (roots.empty())
        return false;
    m_losses.append(appender.losses());
    const double ratio = other.unit / m_joined->unit;
    for (const int root : roots) {
        RyExtrasJson::store(document.json()["nodes"][size_t(root)], {}); // what stood there of the whole file
        RyGltfTransform transform;
        transform.scale = {ratio, ratio, ratio};
        document.setNodeTransform(root, transform);
    }
    addSources(other, appender.places());
    nameNodes(other, appender.places());
    if (const RyGltfFigureSource *figure = onlyFigure(other))
        addCarrier(*figure, roots.front(), other.unit);
    return true;
}

/// Nodes of the trees that are marked as removed and were not read for that: all of them, whatever they hold.
std::vector<bool> RyGltfJoin::findPassedOver(const RyGltfOrigin &origin, const std::vector<int> &preOrder)
{
    const RyGltfModel &model = origin.document->model();
    std::vector<int> tops(model.nodes.size(), -1);
    for (const int node : preOrder) {
        const int parent = model.nodes[size_t(node)].parent;
        tops[size_t(node)] = parent >= 0 ? tops[size_t(parent)] : node;
    }
    std::vector<bool> wasRead(model.nodes.size(), false);
    for (const RyGltfNodeSource &source : origin.nodes)
        wasRead[size_t(tops[size_t(source.node)])] = true;
    std::vector<bool> result(model.nodes.size(), false);
    for (const int node : preOrder) {
        const int top = tops[size_t(node)];
        result[size_t(node)] = node == top
                                   ? !wasRead[size_t(top)] && RyTreeExtras::isRemoved(*origin.document, "nodes", top)
                                   : result[size_t(top)];
    }
    return result;
}

/// Nodes of figures and props that are gone, with what only they hold.
std::set<int> RyGltfJoin::nodesToLeaveOut(const RyGltfOrigin &origin)
{
    const RyGltfModel &model = origin.document->model();
    enum State {
        Plain, // goes with what it hangs on
        Gone,
        Stays
    };
    std::vector<State> states(model.nodes.size(), Plain);
    const std::vector<int> order = ryGltfPreOrder(model);
    const std::vector<bool> isPassedOver = findPassedOver(origin, order);
    for (size_t node = 0; node < model.nodes.size(); ++node) {
        const auto &json = std::as_const(*origin.document).json()["nodes"][node];
        if (isPassedOver[node])
            states[node] = Gone;
        else if (json.contains("mesh") || json.contains("camera") || json.contains("extensions"))
            states[node] = Stays;
    }
    for (const RyGltfFigureSource &figure : origin.figures) {
        for (const RyGltfPartSource &part : figure.parts)
            states[size_t(part.node)] = isThere(figure.sceneNode) ? Stays : Gone;
    }
    for (const RyGltfNodeSource &source : origin.nodes) {
        const bool isOfFigure = source.isBone && isThere(origin.figures[size_t(source.figure)].sceneNode);
        states[size_t(source.node)] = isThere(source.sceneNode) || isOfFigure ? Stays : Gone;
    }
    std::vector<bool> isBelowGone(model.nodes.size(), false), stays(model.nodes.size(), false);
    for (const int node : order) {
        const int parent = model.nodes[size_t(node)].parent;
        const bool above = parent >= 0 && isBelowGone[size_t(parent)];
        isBelowGone[size_t(node)] = states[size_t(node)] == Plain ? above : states[size_t(node)] == Gone;
    }
    std::set<int> leftOut;
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const std::vector<int> &children = model.nodes[size_t(*node)].children;
        const auto childStays = [&stays](int child) { return bool(stays[size_t(child)]); };
        const bool holdsSomething = std::any_of(children.begin(), children.end(), childStays);
        // A plain node that held nothing but what is gone goes as well.
        const bool held = !children.empty() && !holdsSomething && states[size_t(*node)] == Plain;
        stays[size_t(*node)] =
            holdsSomething || states[size_t(*node)] == Stays || (!isBelowGone[size_t(*node)] && !held);
        if (!stays[size_t(*node)])
            leftOut.insert(*node);
    }
    return leftOut;
}

/// The figure that all of a file's nodes in the scene belong to; null when there is more.
const RyGltfFigureSource *RyGltfJoin::onlyFigure(const RyGltfOrigin &origin)
{
    const RyGltfFigureSource *only = nullptr;
    for (const RyGltfFigureSource &figure : origin.figures) {
        if (!isThere(figure.sceneNode) || figure.skins.empty())
            continue;
        if (only)
            return nullptr;
        only = &figure;
    }
    for (const RyGltfNodeSource &source : origin.nodes) {
        if (!only || !isThere(source.sceneNode))
            continue;
        if (source.sceneNode == only->sceneNode || !source.sceneNode->isDescendantOf(only->sceneNode))
            return nullptr; // it has a carrier, or there is something beside it
    }
    return only;
}

void RyGltfJoin::addSources(const RyGltfOrigin &other, const RyGltfPlaces &places)
{
    const auto node = [&places](int index) { return places.at(RyGltfList::Nodes, index); };
    std::vector<int> placeOfFigure;
    for (const RyGltfFigureSource &each : other.figures) {
        placeOfFigure.push_back(isThere(each.sceneNode) ? int(m_joined->figures.size()) : -1);
        if (!isThere(each.sceneNode))
            continue;
        RyGltfFigureSource figure = each;
        for (RyGltfSkinSource &skin : figure.skins)
            skin.skin = places.at(RyGltfList::Skins, skin.skin);
        for (RyGltfPartSource &part : figure.parts) {
            part.node = node(part.node);
            part.mesh = places.at(RyGltfList::Meshes, part.mesh);
            part.skin = places.at(RyGltfList::Skins, part.skin);
        }
        for (RyGltfMorphSource &morph : figure.morphs) {
            for (RyGltfMorphSource::Target &target : morph.targets) {
                target.node = node(target.node);
                target.mesh = places.at(RyGltfList::Meshes, target.mesh);
            }
        }
        figure.firstRoot = node(figure.firstRoot);
        if (!figure.keptParametric.isEmpty())
            figure.keptParametric = RyParametricExtras::renumbered(figure.keptParametric, node);
        m_joined->figures.push_back(std::move(figure));
    }
    for (const RyGltfNodeSource &each : other.nodes) {
        RyGltfNodeSource source = each;
        source.node = node(each.node);
        source.parent = node(each.parent);
        source.figure = each.isBone ? placeOfFigure[size_t(each.figure)] : -1;
        if (source.node >= 0 && (!each.isBone || source.figure >= 0))
            m_joined->nodes.push_back(std::move(source));
    }
}

/// A node without a name is called after its place, which is another now.
void RyGltfJoin::nameNodes(const RyGltfOrigin &other, const RyGltfPlaces &places)
{
    for (const RyGltfNodeSource &source : other.nodes) {
        const int node = places.at(RyGltfList::Nodes, source.node);
        if (node >= 0 && isThere(source.sceneNode) && other.document->model().nodes[size_t(source.node)].name.isEmpty())
            m_joined->document->setNodeName(node, source.sceneNode->getName());
    }
}

/// A node of the document becomes what carries the figure: its topmost bones stay where they are below it.
void RyGltfJoin::addCarrier(const RyGltfFigureSource &figure, int node, double unit)
{
    RyGltfNodeSource carrier;
    carrier.node = node;
    carrier.sceneNode = figure.sceneNode;
    carrier.loaded = figure.loaded;
    carrier.riggingState = figure.riggingState;
    RyAffine place; // of the figure, as it was read
    for (RyGltfNodeSource &source : m_joined->nodes) {
        if (!source.isBone || source.sceneParent != figure.sceneNode)
            continue;
        place = source.figureToWorld;
        source.parent = node;
    }
    carrier.bind = RyAffine::fromScale(unit) * place.inverse();
    carrier.localPose = place;
    m_joined->nodes.push_back(std::move(carrier));
}
