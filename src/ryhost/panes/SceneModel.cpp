#include "ryhost/panes/SceneModel.h"

#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/look/HostIcons.h"

#include <QTimer>

#include <algorithm>
#include <utility>

Q_DECLARE_METATYPE(QPointer<RyNode>)

namespace {

QString iconName(const RyNode &node)
{
    if (qobject_cast<const RySkeleton *>(&node))
        return QStringLiteral("figure");
    if (qobject_cast<const RyBone *>(&node))
        return QStringLiteral("bone");
    if (qobject_cast<const RyCamera *>(&node))
        return QStringLiteral("camera");
    return node.getObject() ? QStringLiteral("mesh") : QStringLiteral("node");
}

} // namespace

/// Rows own those below them only by pointers: files hold chains of thousands of nodes, which must not nest.
struct SceneModel::Row
{
    QPointer<RyNode> node; // null for the root
    const RyNode *key = nullptr;
    Row *parent = nullptr;
    int place = 0; // in the parent
    std::vector<Row *> children;
};

SceneModel::SceneModel(RyScene *scene, QObject *parent)
    : QAbstractItemModel(parent), m_scene(scene), m_root(std::make_unique<Row>())
{
    connect(scene, &RyScene::nodeListChanged, this, &SceneModel::scheduleFollowing);
    followScene();
}

SceneModel::~SceneModel()
{
    for (Row *top : m_root->children)
        dropBranch(*top);
}

// --- Following the scene

void SceneModel::scheduleFollowing()
{
    if (m_stale)
        return;
    m_stale = true;
    QTimer::singleShot(0, this, &SceneModel::followScene);
}

void SceneModel::followScene()
{
    if (!m_stale || !m_scene)
        return;
    m_stale = false;
    m_fresh.clear();
    emit aboutToFollow();
    if (isFarFromScene())
        remake();
    else
        followRows();
    emit followed(m_fresh);
}

/// Many rows cost less when they are all made anew: for each row that goes, whoever holds indexes looks them all
/// through.
bool SceneModel::isFarFromScene() const
{
    constexpr qint64 MostRowByRow = 50;
    const std::vector<RyNode *> &nodes = m_scene->getNodes();
    const qint64 fresh =
        std::count_if(nodes.begin(), nodes.end(), [this](const RyNode *node) { return !indexOf(node).isValid(); });
    const qint64 gone = qint64(m_rows.size()) + fresh - qint64(nodes.size());
    return fresh + gone > MostRowByRow;
}

void SceneModel::remake()
{
    beginResetModel();
    const std::vector<Row *> gone = std::exchange(m_root->children, {});
    for (Row *top : gone)
        dropBranch(*top);
    const std::vector<RyNode *> tops = m_scene->getTopLevelNodes();
    m_root->children.resize(tops.size());
    for (size_t place = 0; place < tops.size(); ++place)
        makeBranch(*m_root, int(place), tops[place]);
    endResetModel();
}

void SceneModel::followRows()
{
    followChildren(*m_root, m_scene->getTopLevelNodes());
    std::vector<Row *> pending(m_root->children.rbegin(), m_root->children.rend());
    while (!pending.empty()) {
        Row &row = *pending.back();
        pending.pop_back();
        followChildren(row, row.node->nodeChildrenIterator());
        pending.insert(pending.end(), row.children.rbegin(), row.children.rend());
    }
}

void SceneModel::followChildren(Row &row, const std::vector<RyNode *> &nodes)
{
    if (std::equal(row.children.begin(), row.children.end(), nodes.begin(), nodes.end(),
                   [](const Row *child, const RyNode *node) { return child->node == node; })) {
        return;
    }
    removeStale(row, nodes);
    insertMissing(row, nodes);
}

/// Takes out what is no child any more, and what stands in another order than before.
void SceneModel::removeStale(Row &row, const std::vector<RyNode *> &nodes)
{
    QHash<const RyNode *, int> places;
    for (const RyNode *node : nodes)
        places.insert(node, places.size());
    std::vector<bool> stays;
    int last = -1;
    for (const Row *child : row.children) {
        const int place = child->node ? places.value(child->node, -1) : -1;
        stays.push_back(place > last);
        last = std::max(last, place);
    }
    for (int end = int(stays.size()); end > 0;) {
        int begin = end - 1;
        while (begin > 0 && stays[size_t(begin - 1)] == stays[size_t(end - 1)])
            --begin;
        if (!stays[size_t(begin)]) {
            beginRemoveRows(indexOfRow(row), begin, end - 1);
            const std::vector<Row *> gone(row.children.begin() + begin, row.children.begin() + end);
            row.children.erase(row.children.begin() + begin, row.children.begin() + end);
            numberChildren(row, begin);
            endRemoveRows();
            for (Row *branch : gone)
                dropBranch(*branch);
        }
        end = begin;
    }
}

void SceneModel::insertMissing(Row &row, const std::vector<RyNode *> &nodes)
{
    for (size_t begin = 0; begin < nodes.size(); ++begin) {
        const RyNode *next = begin < row.children.size() ? row.children[begin]->node.data() : nullptr;
        if (nodes[begin] == next)
            continue;
        size_t end = begin + 1;
        while (end < nodes.size() && nodes[end] != next)
            ++end;
        beginInsertRows(indexOfRow(row), int(begin), int(end) - 1);
        row.children.insert(row.children.begin() + std::ptrdiff_t(begin), end - begin, nullptr);
        for (size_t place = begin; place < end; ++place)
            makeBranch(row, int(place), nodes[place]);
        numberChildren(row, int(end));
        endInsertRows();
        begin = end;
    }
}

void SceneModel::makeBranch(Row &parent, int at, RyNode *top)
{
    struct Wanted
    {
        Row *parent;
        int place;
        RyNode *node;
    };
    std::vector<Wanted> pending{{&parent, at, top}};
    while (!pending.empty()) {
        const Wanted wanted = pending.back();
        pending.pop_back();
        RyNode *node = wanted.node;
        auto *row = new Row{node, node, wanted.parent, wanted.place, {}};
        row->children.resize(size_t(node->getNumNodeChildren()));
        wanted.parent->children[size_t(wanted.place)] = row;
        disconnect(node, nullptr, this, nullptr);
        const auto announce = [this, node] { announceNode(node); };
        connect(node, &RyBase::nameChanged, this, announce);
        connect(node, &RyElement::labelChanged, this, announce);
        connect(node, &RyNode::hiddenChanged, this, announce);
        m_rows[node] = row;
        m_fresh.push_back(node);
        for (int i = node->getNumNodeChildren() - 1; i >= 0; --i)
            pending.push_back({row, i, node->getNodeChild(i)});
    }
}

/// A node that stands elsewhere has a newer row there already.
void SceneModel::dropBranch(Row &top)
{
    std::vector<Row *> pending{&top};
    while (!pending.empty()) {
        Row *row = pending.back();
        pending.pop_back();
        pending.insert(pending.end(), row->children.begin(), row->children.end());
        const auto known = m_rows.find(row->key);
        if (known != m_rows.end() && known->second == row) {
            m_rows.erase(known);
            if (row->node)
                disconnect(row->node, nullptr, this, nullptr);
        }
        delete row;
    }
}

void SceneModel::numberChildren(Row &row, int from)
{
    for (int place = from; place < int(row.children.size()); ++place)
        row.children[size_t(place)]->place = place;
}

void SceneModel::announceNode(const RyNode *node)
{
    const auto row = m_rows.find(node);
    if (row != m_rows.end())
        emit dataChanged(indexOfRow(*row->second), indexOfRow(*row->second, VisibleColumn));
}

// --- What views ask

SceneModel::Row &SceneModel::rowAt(const QModelIndex &index) const
{
    return index.isValid() ? *static_cast<Row *>(index.internalPointer()) : *m_root;
}

QModelIndex SceneModel::indexOfRow(const Row &row, int column) const
{
    return &row == m_root.get() ? QModelIndex() : createIndex(row.place, column, const_cast<Row *>(&row));
}

QModelIndex SceneModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, rowAt(parent).children[size_t(row)]);
}

QModelIndex SceneModel::parent(const QModelIndex &index) const
{
    return index.isValid() ? indexOfRow(*rowAt(index).parent) : QModelIndex();
}

int SceneModel::rowCount(const QModelIndex &parent) const
{
    return parent.column() > LabelColumn ? 0 : int(rowAt(parent).children.size());
}

int SceneModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

Qt::ItemFlags SceneModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QVariant SceneModel::data(const QModelIndex &index, int role) const
{
    RyNode *node = nodeAt(index);
    if (!node)
        return {};
    if (role == NodeRole)
        return QVariant::fromValue(QPointer<RyNode>(node));
    if (role == SelectedRole)
        return node->isSelected();
    return index.column() == LabelColumn ? labelData(*node, role) : visibleData(*node, role);
}

QString SceneModel::toolTip(const RyNode &node)
{
    const QString text =
        node.getLabel() == node.getName() ? node.getName() : tr("%1 (name: %2)").arg(node.getLabel(), node.getName());
    return qobject_cast<const RyLegacyFigure *>(&node) ? tr("%1, a parametric figure").arg(text) : text;
}

QVariant SceneModel::labelData(const RyNode &node, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return node.getLabel();
    case Qt::DecorationRole:
        return icon(iconName(node));
    case Qt::ToolTipRole:
        return toolTip(node);
    default:
        return {};
    }
}

QVariant SceneModel::visibleData(const RyNode &node, int role) const
{
    switch (role) {
    case Qt::DecorationRole:
        return icon(node.isHidden() ? QStringLiteral("eye-off") : QStringLiteral("eye"));
    case Qt::ToolTipRole:
        return node.isHidden() ? tr("Hidden. Click to show it.") : tr("Shown. Click to hide it.");
    case Qt::AccessibleTextRole:
        return node.isHidden() ? tr("hidden") : tr("shown");
    default:
        return {};
    }
}

/// Each is read from its file once.
QIcon SceneModel::icon(const QString &name) const
{
    auto known = m_icons.find(name);
    if (known == m_icons.end())
        known = m_icons.insert(name, HostIcons::icon(name));
    return *known;
}

RyNode *SceneModel::nodeAt(const QModelIndex &index) const
{
    return rowAt(index).node;
}

QModelIndex SceneModel::indexOf(const RyNode *node) const
{
    const auto row = m_rows.find(node);
    return row != m_rows.end() && row->second->node ? indexOfRow(*row->second) : QModelIndex();
}

void SceneModel::toggleHidden(RyNode *node)
{
    if (!node)
        return;
    const RyClipPlayer::Stay stay;
    RyUndoStackHold hold;
    node->setHidden(!node->isHidden());
    hold.accept(node->isHidden() ? tr("Hide %1").arg(node->getLabel()) : tr("Show %1").arg(node->getLabel()));
}
