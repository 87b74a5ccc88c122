#include "rycore/scene/RyScene.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPlaceChange.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyRestoreKeeper.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/RyUniqueNames.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <algorithm>

namespace {

RyScene *g_scene = nullptr;

} // namespace

RyScene *ryScene()
{
    if (!g_scene)
        g_scene = new RyScene;
    return g_scene;
}

void ryDestroyScene()
{
    delete g_scene;
    g_scene = nullptr;
}

/// The nodes that are in the scene.
struct RyScene::NodeList : RyListOf<RyScene, RyNode>
{
    static const auto &of(const RyScene &scene) { return scene.m_nodes; }
    static bool has(const RyScene &scene, const RyNode &node) { return node.m_scene == &scene; }
    static void take(RyScene &scene, RyNode *node, int place)
    {
        emit node->aboutToBeRemoved();
        scene.selectNode(node, false);
        scene.unregisterNode(node, place);
    }
    static void insert(RyScene &scene, RyNode *node, int index)
    {
        scene.registerNode(node, std::min(index, int(scene.m_nodes.size())));
    }
    static void moved(RyScene &scene) { emit scene.nodeListChanged(); }
};

RyScene::RyScene(QObject *parent)
    : QObject(parent), m_keeper(std::make_unique<RyRestoreKeeper>(this)),
      m_player(std::make_unique<RyClipPlayer>(*this))
{
    if (RyRestorePoints *points = ryRestorePoints())
        points->addKeeper(m_keeper.get());
}

RyScene::~RyScene()
{
    if (RyRestorePoints *points = ryRestorePoints())
        points->removeKeeper(m_keeper.get());
    clear();
}

// --- Nodes

void RyScene::registerNode(RyNode *node, int index)
{
    node->ref();
    node->m_scene = this;
    m_nodes.insert(m_nodes.begin() + index, node);
    emit nodeAdded(node);
}

void RyScene::unregisterNode(RyNode *node, int expected)
{
    auto place = m_nodes.begin() + std::clamp(expected, 0, int(m_nodes.size()));
    if (place == m_nodes.end() || *place != node)
        place = std::find(m_nodes.begin(), m_nodes.end(), node);
    if (place == m_nodes.end())
        return;
    m_nodes.erase(place);
    if (m_selected.remove(node)) {
        const bool wasPrimary = m_selection.back() == node;
        m_selection.erase(std::find(m_selection.begin(), m_selection.end(), node));
        emit nodeSelectionListChanged();
        if (wasPrimary)
            emit primarySelectionChanged(getPrimarySelection());
    }
    node->m_scene = nullptr;
    emit nodeRemoved(node);
    node->unref();
}

RyError RyScene::addNode(RyNode *node)
{
    if (!node)
        return RyError::InvalidArgument;
    std::vector<RyNode *> subtree{node};
    node->getNodeChildren(subtree, true);
    bool changed = false;
    for (RyNode *each : subtree) {
        if (each->m_scene == this)
            continue;
        RyPlaceChange<NodeList>::record(this, each, -1);
        registerNode(each, int(m_nodes.size()));
        changed = true;
    }
    if (changed)
        emit nodeListChanged();
    return RyError::Success;
}

RyError RyScene::removeNode(RyNode *node)
{
    if (!node || node->m_scene != this)
        return RyError::NotFound;
    const RyRef<RyNode> guard(node);
    std::vector<RyNode *> subtree{node};
    node->getNodeChildren(subtree, true);
    for (RyNode *each : subtree)
        emit each->aboutToBeRemoved();
    const QSet<const RyNode *> going(subtree.begin(), subtree.end());
    std::vector<RyNode *> selection = m_selection;
    std::erase_if(selection, [&going](const RyNode *each) { return going.contains(each); });
    changeSelection(std::move(selection));
    if (RyNode *parent = node->getNodeParent())
        parent->removeNodeChild(node);
    // From the end, so that none changes the place of one that goes after it.
    for (int place = int(m_nodes.size()) - 1; place >= 0; --place) {
        if (place >= int(m_nodes.size()) || !going.contains(m_nodes[size_t(place)]))
            continue;
        RyNode *each = m_nodes[size_t(place)];
        RyPlaceChange<NodeList>::record(this, each, place);
        unregisterNode(each, place);
    }
    emit nodeListChanged();
    emit drawnDataChanged();
    return RyError::Success;
}

std::vector<RyNode *> RyScene::getTopLevelNodes() const
{
    std::vector<RyNode *> tops;
    std::copy_if(m_nodes.begin(), m_nodes.end(), std::back_inserter(tops),
                 [](const RyNode *node) { return !node->getNodeParent(); });
    return tops;
}

std::vector<RyNode *> RyScene::getNodesInTreeOrder() const
{
    std::vector<RyNode *> list;
    list.reserve(m_nodes.size());
    for (RyNode *top : getTopLevelNodes()) {
        list.push_back(top);
        top->getNodeChildren(list, true);
    }
    return list;
}

std::vector<RySkeleton *> RyScene::getSkeletons() const
{
    std::vector<RySkeleton *> skeletons;
    for (RyNode *node : m_nodes) {
        if (auto *skeleton = qobject_cast<RySkeleton *>(node))
            skeletons.push_back(skeleton);
    }
    return skeletons;
}

RyNode *RyScene::findNode(const QString &name) const
{
    for (RyNode *node : getNodesInTreeOrder()) {
        if (node->getName() == name)
            return node;
    }
    return nullptr;
}

void RyScene::clear()
{
    m_riggingEdits.finishAll();
    if (RyRestorePoints *points = ryRestorePoints())
        points->clear();
    if (m_nodes.empty() && m_origins.empty())
        return;
    const std::vector<RyNode *> tops = getTopLevelNodes();
    for (RyNode *node : std::vector<RyNode *>(m_nodes))
        emit node->aboutToBeRemoved();
    changeSelection({});
    {
        const RyERCLink::Deletion deletion;
        while (!m_nodes.empty())
            unregisterNode(m_nodes.back(), int(m_nodes.size()) - 1);
    }
    setOrigins({});
    emit nodeListChanged();
    emit drawnDataChanged();
}

// --- Selection

RyNode *RyScene::getPrimarySelection() const
{
    return m_selection.empty() ? nullptr : m_selection.back();
}

bool RyScene::isSelected(const RyNode *node) const
{
    return m_selected.contains(node);
}

void RyScene::selectNode(RyNode *node, bool onOff)
{
    const bool isSelectedNow = isSelected(node);
    if (!onOff && !isSelectedNow)
        return;
    std::vector<RyNode *> selection = m_selection;
    if (isSelectedNow)
        std::erase(selection, node);
    if (onOff)
        selection.push_back(node);
    changeSelection(std::move(selection));
}

void RyScene::selectAllNodes(bool onOff)
{
    changeSelection(onOff ? getNodesInTreeOrder() : std::vector<RyNode *>());
}

void RyScene::setSelection(const std::vector<RyNode *> &nodes)
{
    // A node that comes twice stands where it comes last.
    std::vector<RyNode *> selection;
    QSet<const RyNode *> taken;
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
        if (!*node || (*node)->m_scene != this || taken.contains(*node))
            continue;
        taken.insert(*node);
        selection.push_back(*node);
    }
    std::reverse(selection.begin(), selection.end());
    changeSelection(std::move(selection));
}

void RyScene::changeSelection(std::vector<RyNode *> selection)
{
    if (selection == m_selection)
        return;
    const RyNode *oldPrimary = getPrimarySelection();
    m_selection = std::move(selection);
    m_selected = QSet<const RyNode *>(m_selection.begin(), m_selection.end());
    emit nodeSelectionListChanged();
    if (getPrimarySelection() != oldPrimary)
        emit primarySelectionChanged(getPrimarySelection());
    emit drawnDataChanged();
}

void RyScene::setTime(const RyTime &time)
{
    if (int(time) == int(m_time))
        return;
    m_time = time;
    emit timeChanged();
}

void RyScene::setOrigins(Origins origins)
{
    m_origins = std::move(origins);
    emit originChanged();
}

void RyScene::addOrigin(std::shared_ptr<RySceneOrigin> origin)
{
    m_origins.push_back(std::move(origin));
    emit originChanged();
}

RyScene::Clips RyScene::getClips() const
{
    Clips clips;
    for (const auto &origin : m_origins) {
        for (auto &clip : origin->clips()) {
            if (!clip->subjects(*this).empty())
                clips.push_back(std::move(clip));
        }
    }
    return clips;
}

// --- Names

namespace {

int numberStart(const QString &text)
{
    int start = text.size();
    while (start > 0 && text.at(start - 1) >= QLatin1Char('0') && text.at(start - 1) <= QLatin1Char('9'))
        --start;
    return start == 0 ? text.size() : start; // a text of digits alone has no number
}

QString withoutTrailingBlanks(QString text)
{
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text;
}

QString uniqueText(const QString &text, const RyNode *ignore, QString (RyNode::*read)() const, RyUniqueNames::Kind kind)
{
    RyUniqueNames names(kind);
    for (const RyNode *node : ryScene()->getTopLevelNodes()) {
        if (node != ignore)
            names.add((node->*read)());
    }
    return names.find(text);
}

} // namespace

QString RyScene::getNameNumber(const QString &name)
{
    return name.mid(numberStart(name));
}

QString RyScene::stripNameNumber(const QString &name)
{
    const int start = numberStart(name);
    return start == name.size() ? name : withoutTrailingBlanks(name.left(start));
}

QString RyScene::stripLabelNumber(const QString &label)
{
    if (label.endsWith(QLatin1Char(')'))) {
        const QString inner = label.left(label.size() - 1);
        const int start = numberStart(inner);
        if (start < inner.size() && start > 0 && inner.at(start - 1) == QLatin1Char('(')) {
            const QString stem = withoutTrailingBlanks(inner.left(start - 1));
            if (!stem.isEmpty())
                return stem;
        }
    }
    return stripNameNumber(label);
}

QString RyScene::getUniqueTopLevelName(const QString &name, const RyNode *ignore)
{
    return uniqueText(name, ignore, &RyNode::getName, RyUniqueNames::Names);
}

QString RyScene::getUniqueTopLevelLabel(const QString &label, const RyNode *ignore)
{
    return uniqueText(label, ignore, &RyNode::getLabel, RyUniqueNames::Labels);
}
