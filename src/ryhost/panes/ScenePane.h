#pragma once

#include <QItemSelection>
#include <QPointer>
#include <QSet>
#include <QWidget>

#include <vector>

class ClipPane;
class QLineEdit;
class QSortFilterProxyModel;
class QTreeView;
class RyNode;
class RyScene;
class SceneModel;
class SceneTree;

/// The tree of nodes with a filter, and the clips below it. Selection goes both ways; the eye beside a name hides the
/// node.
class ScenePane : public QWidget
{
    Q_OBJECT
public:
    explicit ScenePane(RyScene *scene, QWidget *parent = nullptr);

    QTreeView *tree() const;
    QLineEdit *filter() const { return m_filter; }
    SceneModel *model() const { return m_model; }
    ClipPane *clips() const { return m_clips; }

private:
    void showSelection();
    void takeSelection();
    void restoreExpansion();
    /// New rows are open, unless they were closed before.
    void openRows(const std::vector<RyNode *> &fresh);
    void noteCollapsed(const QModelIndex &index, bool collapsed);
    QItemSelection rowsOf(const std::vector<RyNode *> &nodes) const;
    QModelIndex indexOf(const RyNode *node) const;
    void setFilter(const QString &text);

    QPointer<RyScene> m_scene;
    SceneModel *m_model;
    QSortFilterProxyModel *m_proxy;
    QLineEdit *m_filter;
    SceneTree *m_tree;
    ClipPane *m_clips;
    QSet<const RyNode *> m_collapsed; // while nothing is filtered
    bool m_syncing = false;
    bool m_isFiltered = false;
};
