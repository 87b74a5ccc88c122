#pragma once

#include <QPointer>
#include <QTreeWidget>

#include <vector>

class RyNode;
class RyNodeListFilter;
class RyNodeTreeItem;
class RyScene;

/// The tree of the nodes below a root or of a whole scene, for picking. Other nodes than the wanted ones are shown only
/// on the way to these and cannot be picked. Nodes selected in the scene are written in bold. Follows the scene: nodes
/// that go leave the tree, and labels change.
class RyNodeTreeWgt : public QTreeWidget
{
    Q_OBJECT
public:
    explicit RyNodeTreeWgt(QWidget *parent = nullptr);

    /// Shows the descendants of the root that inherit the class; the root above them with `showRoot`. The place of the
    /// scene's primary selection becomes current, picked it is not.
    void setRoot(RyNode *root, const QString &className, bool showRoot);
    /// Shows all nodes that the filter accepts, and follows the selection too: its primary node is picked. The filter
    /// is refreshed before each look at the scene and must live as long as the tree.
    void setScene(RyScene *scene, RyNodeListFilter *filter);
    /// Leaves the nodes whose label or name contains the text, and faintly, those above them; an empty text shows all
    /// and leaves the pick. A text picks the best hit (a node called so, else the first), but never in place of several
    /// picked nodes. False without a hit.
    bool filter(const QString &text);
    /// The picked nodes in tree order.
    std::vector<RyNode *> getPickedNodes() const;

signals:
    void pickChanged();

private:
    void follow(RyScene *scene);
    void rebuild();
    void addBranch(RyNode *top, bool showTop);
    void makePrimaryCurrent(QItemSelectionModel::SelectionFlags flags);
    bool isWanted(RyNode *node) const;
    /// Null for a branch without a wanted node.
    RyNodeTreeItem *makeBranch(RyNode *node);
    bool filterBranch(QTreeWidgetItem *branch);
    bool isHit(const QTreeWidgetItem *item) const;
    QTreeWidgetItem *bestHit() const;
    std::vector<RyNodeTreeItem *> allItems() const;

    QPointer<RyNode> m_root;
    QPointer<RyScene> m_scene;                // of the root when it was set
    RyNodeListFilter *m_nodeFilter = nullptr; // of a whole scene
    QByteArray m_className;
    QString m_filter;
    bool m_showRoot = true;
    bool m_rebuilding = false;
};
