#include "rycore/ui/RyNodeTreeWgt.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyNodeListFilter.h"

#include <QTreeWidgetItemIterator>

#include <algorithm>
#include <memory>

class RyNodeTreeItem : public QTreeWidgetItem
{
public:
    explicit RyNodeTreeItem(RyNode *forNode) : node(forNode) {}
    QPointer<RyNode> node;
};

RyNodeTreeWgt::RyNodeTreeWgt(QWidget *parent) : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(false);
    connect(this, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!m_rebuilding)
            emit pickChanged();
    });
}

void RyNodeTreeWgt::setRoot(RyNode *root, const QString &className, bool showRoot)
{
    m_root = root;
    m_nodeFilter = nullptr;
    m_className = className.toLatin1();
    m_showRoot = showRoot;
    follow(root ? root->getScene() : nullptr);
    makePrimaryCurrent(QItemSelectionModel::NoUpdate);
}

void RyNodeTreeWgt::setScene(RyScene *scene, RyNodeListFilter *filter)
{
    m_root.clear();
    m_nodeFilter = filter;
    follow(scene);
    const auto pickPrimary = [this] { makePrimaryCurrent(QItemSelectionModel::ClearAndSelect); };
    if (scene) {
        connect(scene, &RyScene::nodeSelectionListChanged, this, &RyNodeTreeWgt::rebuild);
        connect(scene, &RyScene::nodeSelectionListChanged, this, pickPrimary);
    }
    pickPrimary();
}

void RyNodeTreeWgt::follow(RyScene *scene)
{
    if (m_scene)
        disconnect(m_scene, nullptr, this, nullptr);
    m_scene = scene;
    clear();
    if (m_scene)
        connect(m_scene, &RyScene::nodeListChanged, this, &RyNodeTreeWgt::rebuild);
    rebuild();
}

void RyNodeTreeWgt::makePrimaryCurrent(QItemSelectionModel::SelectionFlags flags)
{
    const RyNode *primary = m_scene ? m_scene->getPrimarySelection() : nullptr;
    for (RyNodeTreeItem *item : allItems()) {
        if (primary && item->node == primary)
            setCurrentItem(item, 0, flags);
    }
}

void RyNodeTreeWgt::addBranch(RyNode *top, bool showTop)
{
    std::unique_ptr<RyNodeTreeItem> branch(makeBranch(top));
    if (branch && showTop)
        addTopLevelItem(branch.release());
    else if (branch)
        addTopLevelItems(branch->takeChildren());
}

void RyNodeTreeWgt::rebuild()
{
    const std::vector<RyNode *> picked = getPickedNodes();
    const auto *currentNodeItem = static_cast<RyNodeTreeItem *>(currentItem());
    const QPointer<RyNode> current = currentNodeItem ? currentNodeItem->node : nullptr;
    m_rebuilding = true;
    clear();
    if (m_nodeFilter && m_scene) {
        m_nodeFilter->refresh();
        for (RyNode *top : m_scene->getTopLevelNodes())
            addBranch(top, true);
    } else if (m_root && m_root->getScene() == m_scene) { // a root that left its scene is as good as gone
        addBranch(m_root, m_showRoot);
    }
    expandAll();
    for (RyNodeTreeItem *item : allItems()) {
        connect(item->node, &QObject::destroyed, this, &RyNodeTreeWgt::rebuild, Qt::UniqueConnection);
        connect(item->node, &RyElement::labelChanged, this, &RyNodeTreeWgt::rebuild, Qt::UniqueConnection);
        if (current && item->node == current)
            setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
        item->setSelected(std::find(picked.begin(), picked.end(), item->node) != picked.end());
    }
    filterBranch(invisibleRootItem());
    m_rebuilding = false;
    emit pickChanged();
}

bool RyNodeTreeWgt::isWanted(RyNode *node) const
{
    return m_nodeFilter ? m_nodeFilter->accept(node) : node->inherits(m_className.constData());
}

RyNodeTreeItem *RyNodeTreeWgt::makeBranch(RyNode *node)
{
    auto item = std::make_unique<RyNodeTreeItem>(node);
    item->setText(0, node->getLabel());
    item->setToolTip(0, node->getName());
    QFont itemFont = font();
    itemFont.setBold(node->isSelected());
    item->setFont(0, itemFont);
    const bool wanted = isWanted(node);
    item->setFlags(wanted ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::ItemIsEnabled);
    for (RyNode *child : node->nodeChildrenIterator()) {
        if (RyNodeTreeItem *branch = makeBranch(child))
            item->addChild(branch);
    }
    return wanted || item->childCount() > 0 ? item.release() : nullptr;
}

bool RyNodeTreeWgt::filter(const QString &text)
{
    m_filter = text.trimmed();
    filterBranch(invisibleRootItem());
    QTreeWidgetItem *best = bestHit();
    const bool keepsPick = selectionMode() != SingleSelection && !selectedItems().isEmpty();
    if (!m_filter.isEmpty() && selectionMode() != NoSelection && !keepsPick) {
        if (best)
            setCurrentItem(best, 0, QItemSelectionModel::ClearAndSelect);
        else
            clearSelection();
    }
    if (currentItem())
        scrollToItem(currentItem());
    return best != nullptr;
}

bool RyNodeTreeWgt::filterBranch(QTreeWidgetItem *branch)
{
    const bool isNode = branch != invisibleRootItem();
    const bool hits = isNode && isHit(branch);
    bool isShown = m_filter.isEmpty() || hits;
    for (int i = 0; i < branch->childCount(); ++i)
        isShown = filterBranch(branch->child(i)) || isShown;
    branch->setHidden(!isShown);
    if (isNode)
        branch->setData(0, Qt::ForegroundRole, hits ? QVariant() : palette().color(QPalette::Disabled, QPalette::Text));
    return isShown;
}

bool RyNodeTreeWgt::isHit(const QTreeWidgetItem *item) const
{
    const RyNode *node = static_cast<const RyNodeTreeItem *>(item)->node;
    return node && item->flags().testFlag(Qt::ItemIsSelectable) &&
           (node->getLabel().contains(m_filter, Qt::CaseInsensitive) ||
            node->getName().contains(m_filter, Qt::CaseInsensitive));
}

QTreeWidgetItem *RyNodeTreeWgt::bestHit() const
{
    QTreeWidgetItem *first = nullptr;
    for (RyNodeTreeItem *item : allItems()) {
        if (!isHit(item))
            continue;
        if (item->node->getName().compare(m_filter, Qt::CaseInsensitive) == 0 ||
            item->node->getLabel().compare(m_filter, Qt::CaseInsensitive) == 0)
            return item;
        if (!first)
            first = item;
    }
    return first;
}

std::vector<RyNodeTreeItem *> RyNodeTreeWgt::allItems() const
{
    std::vector<RyNodeTreeItem *> items;
    for (int i = 0; i < topLevelItemCount(); ++i) {
        for (QTreeWidgetItemIterator walk(topLevelItem(i)); *walk; ++walk)
            items.push_back(static_cast<RyNodeTreeItem *>(*walk));
    }
    return items;
}

std::vector<RyNode *> RyNodeTreeWgt::getPickedNodes() const
{
    std::vector<RyNode *> nodes;
    for (const RyNodeTreeItem *item : allItems()) {
        if (item->isSelected() && item->node)
            nodes.push_back(item->node);
    }
    return nodes;
}
