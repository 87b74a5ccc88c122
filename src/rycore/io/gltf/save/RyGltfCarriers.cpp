#include "rycore/io/gltf/save/RyGltfCarriers.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/save/RyGltfTreePatch.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"

#include <algorithm>
#include <set>
#include <utility>

namespace {

class Carriers
{
public:
    explicit Carriers(RyGltfOrigin &origin) : m_origin(origin) {}

    void addAll();

private:
    const RyGltfNodeSource *rootOf(const RyGltfFigureSource &figure) const;
    bool needsOne(const RyGltfFigureSource &figure) const;
    std::vector<bool> findOthers(const RyGltfFigureSource &figure) const;
    std::set<int> topsOf(const RyGltfFigureSource &figure) const;
    void add(const RyGltfFigureSource &figure, const std::set<int> &tops);
    static std::vector<int> replaced(const std::vector<int> &list, const std::set<int> &tops, int carrier);

    RyGltfOrigin &m_origin;
};

void Carriers::addAll()
{
    for (const RyGltfFigureSource &figure : m_origin.figures) {
        if (!figure.sceneNode || !figure.sceneNode->getScene() || !needsOne(figure))
            continue;
        const std::set<int> tops = topsOf(figure);
        if (!tops.empty())
            add(figure, tops);
    }
}

/// A topmost bone that the file has.
const RyGltfNodeSource *Carriers::rootOf(const RyGltfFigureSource &figure) const
{
    const auto found = std::find_if(m_origin.nodes.begin(), m_origin.nodes.end(), [&](const RyGltfNodeSource &source) {
        return source.isBone && source.sceneParent == figure.sceneNode;
    });
    return found == m_origin.nodes.end() ? nullptr : &*found;
}

/// A figure stands elsewhere than in its file, or holds more than its bones.
bool Carriers::needsOne(const RyGltfFigureSource &figure) const
{
    const RyGltfNodeSource *root = rootOf(figure);
    if (!root || m_origin.findSource(figure.sceneNode))
        return false;
    const std::vector<RyNode *> children = figure.sceneNode->nodeChildrenIterator();
    return figure.sceneNode->getNodeParent() || !(figure.sceneNode->worldMap() == root->figureToWorld) ||
           std::any_of(children.begin(), children.end(), [](const RyNode *child) {
               return !qobject_cast<const RyBone *>(child) && !qobject_cast<const RyCamera *>(child);
           });
}

/// Nodes that hold something which does not move with the figure, and all above them.
std::vector<bool> Carriers::findOthers(const RyGltfFigureSource &figure) const
{
    const RyGltfModel &model = m_origin.document->model();
    const RyGltfTreePatch tree(*m_origin.document);
    std::vector<bool> isOther(model.nodes.size(), false);
    for (size_t node = 0; node < model.nodes.size(); ++node)
        isOther[node] = tree.hasContent(int(node));
    for (const RyGltfPartSource &part : figure.parts)
        isOther[size_t(part.node)] = false;
    for (const RyGltfNodeSource &source : m_origin.nodes) {
        const bool isBelow = source.sceneNode && source.sceneNode->isDescendantOf(figure.sceneNode);
        isOther[size_t(source.node)] = source.sceneNode && source.sceneNode->getScene() && !isBelow;
    }
    const std::vector<int> order = ryGltfPreOrder(model);
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const int parent = model.nodes[size_t(*node)].parent;
        if (parent >= 0 && isOther[size_t(*node)])
            isOther[size_t(parent)] = true;
    }
    return isOther;
}

/// The highest nodes above its topmost bones that hold nothing else; none where they do not stand beside one another.
std::set<int> Carriers::topsOf(const RyGltfFigureSource &figure) const
{
    const RyGltfModel &model = m_origin.document->model();
    const std::vector<bool> isOther = findOthers(figure);
    std::set<int> tops, parents;
    for (const RyGltfNodeSource &source : m_origin.nodes) {
        if (!source.isBone || source.sceneParent != figure.sceneNode)
            continue;
        int top = source.node;
        while (model.nodes[size_t(top)].parent >= 0 && !isOther[size_t(model.nodes[size_t(top)].parent)])
            top = model.nodes[size_t(top)].parent;
        tops.insert(top);
        parents.insert(model.nodes[size_t(top)].parent);
    }
    return parents.size() == 1 ? tops : std::set<int>();
}

std::vector<int> Carriers::replaced(const std::vector<int> &list, const std::set<int> &tops, int carrier)
{
    std::vector<int> result;
    for (const int node : list) {
        if (!tops.count(node))
            result.push_back(node);
        else if (carrier >= 0)
            result.push_back(std::exchange(carrier, -1));
    }
    return result;
}

void Carriers::add(const RyGltfFigureSource &figure, const std::set<int> &tops)
{
    const RyGltfModel &model = m_origin.document->model();
    const int parent = model.nodes[size_t(*tops.begin())].parent;
    RyAffine parentToWorld;
    for (int at = parent; at >= 0; at = model.nodes[size_t(at)].parent)
        parentToWorld = parentToWorld * model.nodes[size_t(at)].transform.toAffine();
    const RyAffine place = rootOf(figure)->figureToWorld;

    RyGltfTreePatch tree(*m_origin.document);
    const int carrier = tree.addNode(figure.sceneNode->getName());
    if (parent >= 0)
        tree.setChildren(parent, replaced(model.nodes[size_t(parent)].children, tops, carrier));
    for (int scene = 0; scene < tree.sceneCount(); ++scene) {
        const std::vector<int> before = tree.sceneRoots(scene);
        const std::vector<int> now = replaced(before, tops, carrier);
        if (parent < 0 && now != before)
            tree.setSceneRoots(scene, now);
    }
    tree.setChildren(carrier, {tops.begin(), tops.end()});
    QString error;
    tree.finish(&error); // what has been checked, in another order

    for (RyGltfNodeSource &source : m_origin.nodes) {
        if (source.isBone && source.sceneParent == figure.sceneNode)
            source.parent = carrier;
    }
    RyGltfNodeSource source;
    source.node = carrier;
    source.sceneNode = figure.sceneNode;
    source.loaded = figure.loaded;
    source.riggingState = figure.riggingState;
    source.bind = parentToWorld * RyAffine::fromScale(m_origin.unit) * place.inverse();
    source.localPose = place;
    m_origin.addNode(std::move(source));
}

} // namespace

void ryGltfAddCarriers(RyGltfOrigin &origin)
{
    Carriers(origin).addAll();
}
