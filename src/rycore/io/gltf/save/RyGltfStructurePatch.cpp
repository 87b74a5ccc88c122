#include "rycore/io/gltf/save/RyGltfStructurePatch.h"

#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

namespace {

bool isThere(const RyNode *node)
{
    return node && node->getScene();
}

} // namespace

bool RyGltfStructurePatch::isEdited(const RyGltfOrigin &source)
{
    std::vector<const RyNode *> order;
    for (const QPointer<RyNode> &top : source.tops) {
        if (!isThere(top))
            return true;
        std::vector<RyNode *> below;
        top->getNodeChildren(below, true);
        order.push_back(top);
        order.insert(order.end(), below.begin(), below.end());
    }
    if (order.size() != source.order.size())
        return true;
    for (size_t i = 0; i < order.size(); ++i) {
        if (order[i] != source.order[i].first || order[i]->getNodeParent() != source.order[i].second)
            return true;
    }
    return std::any_of(source.nodes.begin(), source.nodes.end(),
                       [](const RyGltfNodeSource &node) { return !isThere(node.sceneNode); });
}

bool RyGltfStructurePatch::apply(const RyScene &scene, QString *error)
{
    RyPointerTable<const RyGltfNodeSource *> sources;
    for (const RyGltfNodeSource &source : m_patch.source.nodes) {
        if (isThere(source.sceneNode))
            sources.insertNew(source.sceneNode, &source);
    }
    for (const RyNode *top : scene.getTopLevelNodes())
        walk(*top, sources);
    for (const RyGltfNodeSource &source : m_patch.source.nodes) {
        if (!m_patch.edits.count(source.node))
            m_patch.removed.insert(source.node);
    }
    const RyGltfModel &model = m_patch.document.model();
    const auto count = size_t(m_tree.nodeCount());
    m_firstJoined = int(count);
    m_parents.assign(count, -1);
    m_isManaged.assign(count, false);
    m_hangsNowhere.assign(count, false);
    for (size_t node = 0; node < model.nodes.size(); ++node)
        m_parents[node] = model.nodes[node].parent;
    m_topsBefore = RyGltfTops(m_parents);
    for (const RyNode *node : m_order)
        m_isManaged[size_t(m_patch.nodeOf.of(node))] = true;
    findRemoved();
    placeNodes();
    m_tops = RyGltfTops(m_parents);
    for (const RyGltfFigureSource &figure : m_patch.source.figures) {
        if (!isThere(figure.sceneNode))
            dropFigure(figure);
        else if (!figure.skins.empty())
            gatherRoots(figure);
    }
    writeLists();
    return !m_tree.isChanged() || m_tree.finish(error);
}

void RyGltfStructurePatch::walk(const RyNode &top, const RyPointerTable<const RyGltfNodeSource *> &sources)
{
    std::vector<RyNode *> nodes;
    top.getNodeChildren(nodes, true);
    nodes.insert(nodes.begin(), const_cast<RyNode *>(&top));
    for (const RyNode *node : nodes) {
        const RyGltfNodeSource *const *known = sources.find(node);
        // A figure at the top that no node of the file carries has only its bones there.
        const bool isPlaceless =
            !known && node == &top && m_patch.source.findFigureSource(node) && qobject_cast<const RySkeleton *>(node);
        if (!node->getScene() || isPlaceless || qobject_cast<const RyCamera *>(node))
            continue;
        if (known) {
            const RyGltfNodeSource &source = **known;
            m_patch.nodeOf.add(node, source.node);
            m_patch.edits[source.node] = {node, &source, source.bind, false, false, false, false, {}};
        } else {
            const int index = m_tree.addNodeInPlace(node->getName());
            m_patch.nodeOf.add(node, index);
            m_patch.added.emplace_back(node, index);
            m_patch.edits[index] = {node, nullptr, RyAffine(), true, true, true, false, {}};
        }
        m_order.push_back(node);
    }
}

void RyGltfStructurePatch::findRemoved()
{
    // What is gone keeps its place only for what hangs below it, or on it, that the scene does not show.
    const RyGltfModel &model = m_patch.document.model();
    std::set<int> props;
    for (const RyGltfNodeSource &source : m_patch.source.nodes) {
        if (!source.isBone)
            props.insert(source.node);
    }
    // A skin is drawn only where its joints are: those of a figure that has no bones left stay for its mesh.
    std::set<int> stillDrawn;
    for (const RyGltfFigureSource &figure : m_patch.source.figures) {
        if (!isThere(figure.sceneNode) || ryFirstOwnBone(*figure.sceneNode))
            continue;
        for (const RyGltfSkinSource &skin : figure.skins) {
            const std::vector<int> &joints = model.skins[size_t(skin.skin)].joints;
            stillDrawn.insert(joints.begin(), joints.end());
            RyTreeExtras::markRemoved(m_patch.document, "skins", skin.skin);
        }
    }
    std::vector<bool> carries(model.nodes.size(), false);
    const std::vector<int> order = ryGltfPreOrder(model);
    for (auto at = order.rbegin(); at != order.rend(); ++at) {
        if (!m_patch.removed.count(*at))
            continue;
        const RyGltfNode &node = model.nodes[size_t(*at)];
        carries[size_t(*at)] =
            props.count(*at) ? node.camera >= 0 : m_tree.hasContent(*at) || stillDrawn.count(*at) > 0;
        for (const int child : node.children) {
            const RyGltfNode &below = model.nodes[size_t(child)];
            const bool isMark = ryGltfMarksEnd(below.name) && below.children.empty() && !m_tree.hasContent(child);
            const bool isPlain = !m_isManaged[size_t(child)] && !m_patch.removed.count(child) && !isMark;
            carries[size_t(*at)] = carries[size_t(*at)] || isPlain || carries[size_t(child)];
        }
    }
    for (const int node : m_patch.removed) {
        if (carries[size_t(node)] && props.count(node))
            m_tree.setNodeMesh(node, -1, -1);
        const int parent = model.nodes[size_t(node)].parent;
        const bool isTop = parent < 0 || !m_patch.removed.count(parent) || carries[size_t(parent)];
        m_hangsNowhere[size_t(node)] = !carries[size_t(node)] && isTop;
    }
}

int RyGltfStructurePatch::survivingAbove(int node) const
{
    while (node >= 0 && m_patch.removed.count(node))
        node = m_patch.document.model().nodes[size_t(node)].parent;
    return node;
}

int RyGltfStructurePatch::homeOf(const RyNode *figure) const
{
    // Where the topmost bones of the figure hang in the file.
    const RyGltfModel &model = m_patch.document.model();
    for (const RyGltfFigureSource &source : m_patch.source.figures) {
        if (source.sceneNode == figure && source.firstRoot >= 0)
            return survivingAbove(model.nodes[size_t(source.firstRoot)].parent);
    }
    return -1;
}

int RyGltfStructurePatch::parentNow(const RyNode &node, int index) const
{
    const RyGltfNodeSource *source = m_patch.edits.at(index).source;
    const RyNode *above = node.getNodeParent();
    const int wanted = m_patch.nodeOf.of(above);
    if (source && wanted == source->parent && above == source->sceneParent) {
        const int before = m_patch.document.model().nodes[size_t(index)].parent;
        return wanted >= 0 ? before : survivingAbove(before);
    }
    if (!above)
        return -1;
    // Siblings may stand below a node that the scene does not show: a new one goes in there where it stands between
    // them, and a topmost bone beside the one before it in any case.
    const std::vector<RyNode *> siblings = above->nodeChildrenIterator();
    const auto here = std::find(siblings.begin(), siblings.end(), &node);
    const auto isKnown = [this](const RyNode *sibling) { return m_patch.nodeOf.of(sibling) >= 0; };
    const auto previous = std::find_if(std::make_reverse_iterator(here), siblings.rend(), isKnown);
    if (previous == siblings.rend())
        return wanted >= 0 ? wanted : homeOf(above);
    const int beside = m_parents[size_t(m_patch.nodeOf.of(*previous))];
    const bool isBetween = std::any_of(here + 1, siblings.end(), [&](const RyNode *sibling) {
        return isKnown(sibling) && m_parents[size_t(m_patch.nodeOf.of(sibling))] == beside;
    });
    return wanted < 0 || isBetween ? beside : wanted;
}

void RyGltfStructurePatch::placeNodes()
{
    for (const RyNode *node : m_order) {
        const int index = m_patch.nodeOf.of(node);
        const int parent = parentNow(*node, index);
        RyGltfScenePatch::Edit &edit = m_patch.edits.at(index);
        edit.moved = !edit.source || parent != m_parents[size_t(index)];
        m_parents[size_t(index)] = parent;
    }
}

void RyGltfStructurePatch::join(int a, int b, const QString &name)
{
    a = m_tops.of(a);
    b = m_tops.of(b);
    if (a == b)
        return;
    int above = std::max(a, b);
    if (above < m_firstJoined) {
        above = m_tree.addNode(name);
        m_parents.push_back(-1);
        m_tops.add();
        m_isManaged.push_back(false);
        m_hangsNowhere.push_back(false);
    }
    for (const int top : {a, b}) {
        if (top == above)
            continue;
        m_parents[size_t(top)] = above;
        m_tops.hang(top, above);
    }
}

void RyGltfStructurePatch::gatherRoots(const RyGltfFigureSource &figure)
{
    int previous = -1;
    for (const RyNode *node : m_order) {
        if (node->getNodeParent() != figure.sceneNode.data() || !qobject_cast<const RyBone *>(node))
            continue;
        const int index = m_patch.nodeOf.of(node);
        if (previous >= 0 && (m_patch.edits.at(index).moved || m_patch.edits.at(previous).moved))
            join(previous, index, figure.sceneNode->getName());
        previous = index;
    }
    for (const RyGltfSkinSource &skin : figure.skins) {
        int first = -1;
        int firstTopBefore = -1;
        for (const int joint : m_patch.document.model().skins[size_t(skin.skin)].joints) {
            if (!m_isManaged[size_t(joint)])
                continue;
            const int top = m_topsBefore.of(joint);
            if (first >= 0 && top == firstTopBefore)
                join(first, joint, figure.sceneNode->getName());
            else if (first < 0)
                firstTopBefore = top;
            first = first < 0 ? joint : first;
        }
    }
}

void RyGltfStructurePatch::dropFigure(const RyGltfFigureSource &figure)
{
    for (const RyGltfPartSource &part : figure.parts) {
        if (part.skin >= 0 && !m_isManaged[size_t(part.node)])
            m_tree.setNodeMesh(part.node, -1, -1);
    }
    for (const RyGltfSkinSource &skin : figure.skins)
        RyTreeExtras::markRemoved(m_patch.document, "skins", skin.skin);
}

std::vector<int> RyGltfStructurePatch::newOrder(const std::vector<int> &before, int parent) const
{
    // What the scene orders takes the places that such nodes had; what it does not know keeps its own.
    const std::set<int> there(before.begin(), before.end());
    std::map<const RyNode *, std::vector<int>> wanted; // by parent in the scene
    std::vector<const RyNode *> groups;
    const std::vector<RyGltfNode> &nodes = m_patch.document.model().nodes;
    const auto below = m_below.find(parent);
    for (const int index : below == m_below.end() ? std::vector<int>() : below->second) {
        // A root that another scene of the file shows, or none, does not come into this one.
        const bool wasRoot = m_patch.edits.at(index).source && nodes[size_t(index)].parent < 0;
        if (parent < 0 && wasRoot && !there.count(index))
            continue;
        const auto [group, isNew] = wanted.try_emplace(m_patch.edits.at(index).node->getNodeParent());
        if (isNew)
            groups.push_back(group->first);
        group->second.push_back(index);
    }
    std::map<const RyNode *, size_t> used;
    std::vector<int> result;
    const auto firstMade = size_t(m_firstJoined);
    std::set<int> made;
    for (const int node : before) {
        const int above = m_parents[size_t(node)];
        if (above >= int(firstMade) && m_parents[size_t(above)] == parent && made.insert(above).second)
            result.push_back(above); // a node made above what stood here
        if (m_hangsNowhere[size_t(node)] || m_parents[size_t(node)] != parent)
            continue;
        if (!m_isManaged[size_t(node)]) {
            result.push_back(node);
            continue;
        }
        const RyNode *group = m_patch.edits.at(node).node->getNodeParent();
        result.push_back(wanted[group][used[group]++]);
    }
    for (size_t node = 0; node < m_parents.size() && parent >= int(firstMade); ++node) {
        if (m_parents[node] == parent && !m_isManaged[node])
            result.push_back(int(node));
    }
    for (const RyNode *group : groups) {
        const std::vector<int> &list = wanted[group];
        result.insert(result.end(), list.begin() + long(used[group]), list.end());
    }
    for (size_t node = firstMade; node < m_parents.size(); ++node) {
        if (m_parents[node] == parent && parent < int(firstMade) && made.insert(int(node)).second)
            result.push_back(int(node));
    }
    return result;
}

/// The place in the scene of the first of its nodes that a node holds, itself included; by node, -1 for none.
std::vector<int> RyGltfStructurePatch::findFirstHeld() const
{
    std::vector<int> firstHeld(m_parents.size(), -1);
    for (size_t place = 0; place < m_order.size(); ++place) {
        for (int at = m_patch.nodeOf.of(m_order[place]); at >= 0 && firstHeld[size_t(at)] < 0;
             at = m_parents[size_t(at)])
            firstHeld[size_t(at)] = int(place);
    }
    return firstHeld;
}

/// Siblings are read in the order of what they hold. One that holds nothing of the scene stays behind the one before
/// it.
void RyGltfStructurePatch::sortSiblings(std::vector<int> &siblings, const std::vector<int> &firstHeld)
{
    std::vector<std::pair<int, int>> ranked; // rank and node
    int rank = -1;
    for (const int node : siblings) {
        rank = firstHeld[size_t(node)] >= 0 ? firstHeld[size_t(node)] : rank;
        ranked.emplace_back(rank, node);
    }
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    std::transform(ranked.begin(), ranked.end(), siblings.begin(), [](const auto &each) { return each.second; });
}

void RyGltfStructurePatch::writeLists()
{
    const RyGltfModel &model = m_patch.document.model();
    for (const RyNode *node : m_order) {
        const int index = m_patch.nodeOf.of(node);
        m_below[m_parents[size_t(index)]].push_back(index);
    }
    const std::vector<int> firstHeld = findFirstHeld();
    std::set<int> touched; // parents that may have other children now
    for (size_t node = 0; node < m_parents.size(); ++node) {
        const bool isOld = node < model.nodes.size();
        const int before = isOld ? model.nodes[node].parent : -2;
        if (before != m_parents[node] || m_hangsNowhere[node] || m_isManaged[node]) {
            touched.insert(before);
            touched.insert(m_parents[node]);
        }
    }
    for (const int parent : touched) {
        if (parent < 0)
            continue;
        const bool isOld = size_t(parent) < model.nodes.size();
        const std::vector<int> before = isOld ? model.nodes[size_t(parent)].children : std::vector<int>();
        std::vector<int> now = newOrder(before, parent);
        sortSiblings(now, firstHeld);
        if (now != before)
            m_tree.setChildren(parent, now);
    }
    for (int scene = 0; scene < m_tree.sceneCount(); ++scene) {
        const std::vector<int> before = m_tree.sceneRoots(scene);
        std::vector<int> now;
        if (scene == m_patch.document.shownScene()) {
            now = newOrder(before, -1);
            sortSiblings(now, firstHeld);
        } else {
            std::copy_if(before.begin(), before.end(), std::back_inserter(now),
                         [this](int node) { return !m_hangsNowhere[size_t(node)] && m_parents[size_t(node)] < 0; });
        }
        if (now != before)
            m_tree.setSceneRoots(scene, now);
    }
    for (size_t node = 0; node < model.nodes.size(); ++node) {
        if (m_hangsNowhere[node])
            RyTreeExtras::markRemoved(m_patch.document, "nodes", int(node));
    }
}
