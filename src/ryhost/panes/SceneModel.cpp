#include "ryhost/panes/SceneModel.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/look/HostIcons.h"

#include <QTimer>

Q_DECLARE_METATYPE(QPointer<RyNode>)

namespace {

QString iconName(const RyNode *node)
{
    if (qobject_cast<const RySkeleton *>(node))
        return QStringLiteral("figure");
    if (qobject_cast<const RyBone *>(node))
        return QStringLiteral("bone");
    if (qobject_cast<const RyCamera *>(node))
        return QStringLiteral("camera");
    return node->getObject() ? QStringLiteral("mesh") : QStringLiteral("node");
}

} // namespace

SceneModel::SceneModel(RyScene *scene, QObject *parent) : QStandardItemModel(parent), m_scene(scene)
{
    setColumnCount(2);
    connect(scene, &RyScene::nodeListChanged, this, &SceneModel::scheduleRebuild);
    rebuildIfNeeded();
}

void SceneModel::scheduleRebuild()
{
    if (m_stale)
        return;
    m_stale = true;
    QTimer::singleShot(0, this, &SceneModel::rebuildIfNeeded);
}

void SceneModel::rebuildIfNeeded()
{
    if (!m_stale || !m_scene)
        return;
    m_stale = false;
    emit aboutToRebuild();
    for (RyNode *node : m_scene->getNodes())
        disconnect(node, nullptr, this, nullptr);
    m_items.clear();
    removeRows(0, rowCount());
    for (RyNode *node : m_scene->getTopLevelNodes())
        addBranch(invisibleRootItem(), node);
    emit rebuilt();
}

void SceneModel::addBranch(QStandardItem *parent, RyNode *top)
{
    // Without recursion: files hold chains of thousands of nodes.
    std::vector<std::pair<QStandardItem *, RyNode *>> pending{{parent, top}};
    while (!pending.empty()) {
        const auto [above, node] = pending.back();
        pending.pop_back();
        auto *label = new QStandardItem;
        auto *visible = new QStandardItem;
        label->setEditable(false);
        visible->setEditable(false);
        label->setData(QVariant::fromValue(QPointer<RyNode>(node)), Qt::UserRole);
        visible->setData(QVariant::fromValue(QPointer<RyNode>(node)), Qt::UserRole);
        above->appendRow({label, visible});
        m_items.insert(node, label);
        refreshNode(node);
        connect(node, &RyBase::nameChanged, this, [this, node] { refreshNode(node); });
        connect(node, &RyElement::labelChanged, this, [this, node] { refreshNode(node); });
        connect(node, &RyNode::hiddenChanged, this, [this, node] { refreshNode(node); });
        for (int i = node->getNumNodeChildren() - 1; i >= 0; --i)
            pending.emplace_back(label, node->getNodeChild(i));
    }
}

void SceneModel::refreshNode(RyNode *node)
{
    QStandardItem *item = m_items.value(node);
    if (!item)
        return;
    item->setText(node->getLabel());
    item->setIcon(HostIcons::icon(iconName(node)));
    item->setToolTip(node->getLabel() == node->getName() ? node->getName()
                                                         : tr("%1 (name: %2)").arg(node->getLabel(), node->getName()));
    QStandardItem *above = item->parent() ? item->parent() : invisibleRootItem();
    QStandardItem *visible = above->child(item->row(), VisibleColumn);
    if (!visible)
        return;
    visible->setIcon(HostIcons::icon(node->isHidden() ? QStringLiteral("eye-off") : QStringLiteral("eye")));
    visible->setToolTip(node->isHidden() ? tr("Hidden. Click to show it.") : tr("Shown. Click to hide it."));
    visible->setData(node->isHidden() ? tr("hidden") : tr("shown"), Qt::AccessibleTextRole);
}

RyNode *SceneModel::nodeAt(const QModelIndex &index) const
{
    return index.data(Qt::UserRole).value<QPointer<RyNode>>();
}

QModelIndex SceneModel::indexOf(RyNode *node) const
{
    const QStandardItem *item = m_items.value(node);
    return item ? item->index() : QModelIndex();
}

void SceneModel::toggleHidden(RyNode *node)
{
    if (!node)
        return;
    RyUndoStackHold hold;
    node->setHidden(!node->isHidden());
    hold.accept(node->isHidden() ? tr("Hide %1").arg(node->getLabel()) : tr("Show %1").arg(node->getLabel()));
}
