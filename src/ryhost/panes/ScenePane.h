#pragma once

#include <QPointer>
#include <QSet>
#include <QWidget>

class QLineEdit;
class QSortFilterProxyModel;
class QTreeView;
class RyNode;
class RyScene;
class SceneModel;
class SceneTree;

/// The tree of nodes with a filter. Selection goes both ways; the eye beside a name hides the node.
class ScenePane : public QWidget
{
    Q_OBJECT
public:
    explicit ScenePane(RyScene *scene, QWidget *parent = nullptr);

    QTreeView *tree() const;
    QLineEdit *filter() const { return m_filter; }
    SceneModel *model() const { return m_model; }

private:
    void showSelection();
    void takeSelection();
    void rememberExpansion();
    void restoreExpansion();
    void setFilter(const QString &text);

    QPointer<RyScene> m_scene;
    SceneModel *m_model;
    QSortFilterProxyModel *m_proxy;
    QLineEdit *m_filter;
    SceneTree *m_tree;
    QSet<const RyNode *> m_collapsed;
    bool m_syncing = false;
    bool m_isFiltered = false;
};
