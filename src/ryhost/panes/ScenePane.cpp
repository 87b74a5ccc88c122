#include "ryhost/panes/ScenePane.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "ryhost/look/clearButton.h"
#include "ryhost/panes/ClipList.h"
#include "ryhost/panes/ClipPane.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/SceneTree.h"

#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

ScenePane::ScenePane(RyScene *scene, QWidget *parent)
    : QWidget(parent), m_scene(scene), m_model(new SceneModel(scene, this)), m_proxy(new QSortFilterProxyModel(this)),
      m_filter(new QLineEdit(this)), m_tree(new SceneTree(this)), m_clips(new ClipPane(scene, this))
{
    setObjectName(QStringLiteral("ScenePane"));
    m_filter->setObjectName(QStringLiteral("SceneFilter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter of the scene list"));
    giveClearButton(m_filter);
    m_tree->setObjectName(QStringLiteral("SceneTree"));
    m_tree->setAccessibleName(tr("Scene"));
    m_proxy->setSourceModel(m_model);
    m_proxy->setRecursiveFilteringEnabled(true);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_proxy->setFilterKeyColumn(SceneModel::LabelColumn);
    m_tree->setModel(m_proxy);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 0);
    layout->setSpacing(4);
    layout->addWidget(m_filter);
    auto *parts = new QSplitter(Qt::Vertical, this);
    parts->setObjectName(QStringLiteral("SceneSplitter"));
    parts->setChildrenCollapsible(false);
    parts->addWidget(m_tree);
    parts->addWidget(m_clips);
    parts->setStretchFactor(0, 1); // the tree alone grows with the pane
    layout->addWidget(parts);

    connect(m_filter, &QLineEdit::textChanged, this, &ScenePane::setFilter);
    connect(m_tree->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ScenePane::takeSelection);
    connect(m_tree, &QTreeView::clicked, this, [this](const QModelIndex &index) {
        if (index.column() == SceneModel::VisibleColumn)
            m_model->toggleHidden(m_model->nodeAt(m_proxy->mapToSource(index)));
    });
    auto *hide = new QShortcut(QKeySequence(Qt::Key_H), m_tree, nullptr, nullptr, Qt::WidgetShortcut);
    connect(hide, &QShortcut::activated, this,
            [this] { m_model->toggleHidden(m_model->nodeAt(m_proxy->mapToSource(m_tree->currentIndex()))); });
    connect(m_model, &SceneModel::aboutToFollow, this, [this] { m_syncing = true; });
    connect(m_model, &SceneModel::followed, this, &ScenePane::openRows);
    connect(m_tree, &QTreeView::collapsed, this, [this](const QModelIndex &index) { noteCollapsed(index, true); });
    connect(m_tree, &QTreeView::expanded, this, [this](const QModelIndex &index) { noteCollapsed(index, false); });
    connect(scene, &RyScene::nodeSelectionListChanged, this, &ScenePane::showSelection);
    restoreExpansion();
}

QTreeView *ScenePane::tree() const
{
    return m_tree;
}

QModelIndex ScenePane::indexOf(const RyNode *node) const
{
    return m_proxy->mapFromSource(m_model->indexOf(node));
}

void ScenePane::noteCollapsed(const QModelIndex &index, bool collapsed)
{
    if (m_syncing || m_isFiltered)
        return;
    const RyNode *node = m_model->nodeAt(m_proxy->mapToSource(index));
    if (collapsed)
        m_collapsed.insert(node);
    else
        m_collapsed.remove(node);
}

void ScenePane::openRows(const std::vector<RyNode *> &fresh)
{
    // One by one they cost more than all at once.
    constexpr size_t MostOneByOne = 50;
    for (auto node = m_collapsed.begin(); node != m_collapsed.end();)
        node = m_model->indexOf(*node).isValid() ? std::next(node) : m_collapsed.erase(node);
    if (m_isFiltered || fresh.size() > MostOneByOne) {
        restoreExpansion();
        return;
    }
    m_syncing = true;
    for (const RyNode *node : fresh) {
        const QModelIndex index = indexOf(node);
        if (m_proxy->hasChildren(index))
            m_tree->expand(index);
        // The first row below one that had none opens it.
        if (index.parent().isValid() && m_proxy->rowCount(index.parent()) == 1)
            m_tree->expand(index.parent());
    }
    m_syncing = false;
    showSelection();
}

void ScenePane::restoreExpansion()
{
    m_syncing = true;
    m_tree->expandAll();
    if (!m_isFiltered) {
        for (const RyNode *node : qAsConst(m_collapsed))
            m_tree->collapse(indexOf(node));
    }
    m_syncing = false;
    showSelection();
}

void ScenePane::setFilter(const QString &text)
{
    m_isFiltered = !text.isEmpty();
    // Rows that go take their selection along; that is not what was selected in the scene.
    m_syncing = true;
    m_proxy->setFilterFixedString(text);
    m_clips->list()->setFilter(text);
    restoreExpansion();
}

void ScenePane::showSelection()
{
    if (m_syncing || !m_scene)
        return;
    const QScopedValueRollback<bool> guard(m_syncing, true);
    m_model->followScene();
    m_syncing = true;
    // The selection model compares an old selection with a new one range by range, and with none at once; it does the
    // same to widen ranges to rows, which these are already. Without updates the view looks up no rectangles of rows
    // that changed.
    const bool wasUpdated = m_tree->updatesEnabled();
    m_tree->setUpdatesEnabled(false);
    m_tree->selectionModel()->clearSelection();
    m_tree->selectionModel()->select(rowsOf(m_scene->selectedNodeListIterator()), QItemSelectionModel::Select);
    m_tree->setUpdatesEnabled(wasUpdated);
    if (RyNode *primary = m_scene->getPrimarySelection()) {
        const QModelIndex index = indexOf(primary);
        if (index.isValid()) {
            // A view that can be seen moves to a row that becomes current.
            const bool movesByItself = m_tree->isVisible() && m_tree->currentIndex() != index;
            m_tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
            if (!movesByItself)
                m_tree->scrollTo(index);
        }
    }
}

/// All columns; siblings that follow one another make one range.
QItemSelection ScenePane::rowsOf(const std::vector<RyNode *> &nodes) const
{
    std::vector<QModelIndex> rows;
    rows.reserve(nodes.size());
    for (const RyNode *node : nodes) {
        const QModelIndex index = indexOf(node);
        if (index.isValid())
            rows.push_back(index);
    }
    // The proxy gives the children of one parent one id.
    std::sort(rows.begin(), rows.end(), [](const QModelIndex &a, const QModelIndex &b) {
        return std::make_pair(a.internalId(), a.row()) < std::make_pair(b.internalId(), b.row());
    });
    QItemSelection selection;
    for (size_t first = 0; first < rows.size();) {
        size_t last = first;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last].siblingAtRow(rows[last].row() + 1))
            ++last;
        selection.append(QItemSelectionRange(rows[first], rows[last].siblingAtColumn(SceneModel::VisibleColumn)));
        first = last + 1;
    }
    return selection;
}

void ScenePane::takeSelection()
{
    if (m_syncing || !m_scene)
        return;
    const QScopedValueRollback<bool> guard(m_syncing, true);
    std::vector<RyNode *> nodes;
    for (const QItemSelectionRange &range : m_tree->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const QModelIndex index = m_proxy->index(row, SceneModel::LabelColumn, range.parent());
            RyNode *node = m_model->nodeAt(m_proxy->mapToSource(index));
            if (node && node->getScene())
                nodes.push_back(node);
        }
    }
    // The one clicked last is primary.
    RyNode *current = m_model->nodeAt(m_proxy->mapToSource(m_tree->currentIndex()));
    const auto place = std::find(nodes.begin(), nodes.end(), current);
    if (place != nodes.end())
        std::rotate(place, place + 1, nodes.end());
    m_scene->setSelection(nodes);
}
