#include "ryhost/panes/ScenePane.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/SceneTree.h"

#include <QItemSelectionModel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>

#include <algorithm>

ScenePane::ScenePane(RyScene *scene, QWidget *parent)
    : QWidget(parent), m_scene(scene), m_model(new SceneModel(scene, this)), m_proxy(new QSortFilterProxyModel(this)),
      m_filter(new QLineEdit(this)), m_tree(new SceneTree(this))
{
    setObjectName(QStringLiteral("ScenePane"));
    m_filter->setObjectName(QStringLiteral("SceneFilter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter of the scene list"));
    m_filter->setClearButtonEnabled(true);
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
    layout->addWidget(m_tree);

    connect(m_filter, &QLineEdit::textChanged, this, &ScenePane::setFilter);
    connect(m_tree->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ScenePane::takeSelection);
    connect(m_tree, &QTreeView::clicked, this, [this](const QModelIndex &index) {
        if (index.column() == SceneModel::VisibleColumn)
            m_model->toggleHidden(m_model->nodeAt(m_proxy->mapToSource(index)));
    });
    auto *hide = new QShortcut(QKeySequence(Qt::Key_H), m_tree, nullptr, nullptr, Qt::WidgetShortcut);
    connect(hide, &QShortcut::activated, this,
            [this] { m_model->toggleHidden(m_model->nodeAt(m_proxy->mapToSource(m_tree->currentIndex()))); });
    connect(m_model, &SceneModel::aboutToRebuild, this, &ScenePane::rememberExpansion);
    connect(m_model, &SceneModel::rebuilt, this, &ScenePane::restoreExpansion);
    connect(scene, &RyScene::nodeSelectionListChanged, this, &ScenePane::showSelection);
    restoreExpansion();
}

QTreeView *ScenePane::tree() const
{
    return m_tree;
}

void ScenePane::rememberExpansion()
{
    // What was left open stays open; new branches open.
    m_syncing = true;
    if (m_isFiltered || !m_scene)
        return;
    m_collapsed.clear();
    for (RyNode *node : m_scene->getNodes()) {
        const QModelIndex index = m_proxy->mapFromSource(m_model->indexOf(node));
        if (index.isValid() && m_proxy->hasChildren(index) && !m_tree->isExpanded(index))
            m_collapsed.insert(node);
    }
}

void ScenePane::restoreExpansion()
{
    m_syncing = true;
    m_tree->expandAll();
    if (!m_isFiltered) {
        for (RyNode *node : m_scene->getNodes()) {
            if (m_collapsed.contains(node))
                m_tree->collapse(m_proxy->mapFromSource(m_model->indexOf(node)));
        }
    }
    m_syncing = false;
    showSelection();
}

void ScenePane::setFilter(const QString &text)
{
    if (!m_isFiltered)
        rememberExpansion();
    m_isFiltered = !text.isEmpty();
    // Rows that go take their selection along; that is not what was selected in the scene.
    m_syncing = true;
    m_proxy->setFilterFixedString(text);
    restoreExpansion();
}

void ScenePane::showSelection()
{
    if (m_syncing || !m_scene)
        return;
    const QScopedValueRollback<bool> guard(m_syncing, true);
    m_model->rebuildIfNeeded();
    m_syncing = true;
    QItemSelection selection;
    for (RyNode *node : m_scene->selectedNodeListIterator()) {
        const QModelIndex index = m_proxy->mapFromSource(m_model->indexOf(node));
        if (index.isValid())
            selection.select(index, index);
    }
    m_tree->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (RyNode *primary = m_scene->getPrimarySelection()) {
        const QModelIndex index = m_proxy->mapFromSource(m_model->indexOf(primary));
        if (index.isValid()) {
            m_tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
            m_tree->scrollTo(index);
        }
    }
}

void ScenePane::takeSelection()
{
    if (m_syncing || !m_scene)
        return;
    const QScopedValueRollback<bool> guard(m_syncing, true);
    std::vector<RyNode *> nodes;
    for (const QModelIndex &index : m_tree->selectionModel()->selectedRows()) {
        RyNode *node = m_model->nodeAt(m_proxy->mapToSource(index));
        if (node && node->getScene())
            nodes.push_back(node);
    }
    // The one clicked last is primary.
    RyNode *current = m_model->nodeAt(m_proxy->mapToSource(m_tree->currentIndex()));
    const auto place = std::find(nodes.begin(), nodes.end(), current);
    if (place != nodes.end())
        std::rotate(place, place + 1, nodes.end());
    m_scene->setSelection(nodes);
}
