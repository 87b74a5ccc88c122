#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <QPointer>

#include <memory>
#include <unordered_map>
#include <vector>

class RyNode;
class RyScene;

/// The nodes of a scene as a tree: label, and whether it is shown. Follows the scene: a few rows come and go where
/// nodes did, and the others stay; where many did, all rows are made anew.
class SceneModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column { LabelColumn = 0, VisibleColumn = 1, ColumnCount };
    /// What `data` knows beside the roles of Qt: the node (QPointer<RyNode>), whether it is selected in the scene.
    enum Role { NodeRole = Qt::UserRole, SelectedRole };
    explicit SceneModel(RyScene *scene, QObject *parent = nullptr);
    ~SceneModel() override;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    using QObject::parent;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Null for a row whose node was deleted since.
    RyNode *nodeAt(const QModelIndex &index) const;
    /// Invalid for a node that is not shown.
    QModelIndex indexOf(const RyNode *node) const;
    /// One undo step.
    void toggleHidden(RyNode *node);

public slots:
    /// Brings the rows up to date if the scene's nodes changed since.
    void followScene();

signals:
    void aboutToFollow();
    /// `fresh`: nodes whose rows are new.
    void followed(const std::vector<RyNode *> &fresh);

private:
    struct Row;
    void scheduleFollowing();
    bool isFarFromScene() const;
    void remake();
    void followRows();
    void followChildren(Row &row, const std::vector<RyNode *> &nodes);
    void removeStale(Row &row, const std::vector<RyNode *> &nodes);
    void insertMissing(Row &row, const std::vector<RyNode *> &nodes);
    void makeBranch(Row &parent, int at, RyNode *top);
    void dropBranch(Row &top);
    void numberChildren(Row &row, int from);
    void announceNode(const RyNode *node);
    QModelIndex indexOfRow(const Row &row, int column = LabelColumn) const;
    Row &rowAt(const QModelIndex &index) const;
    static QString toolTip(const RyNode &node);
    QVariant labelData(const RyNode &node, int role) const;
    QVariant visibleData(const RyNode &node, int role) const;
    QIcon icon(const QString &name) const;

    QPointer<RyScene> m_scene;
    std::unique_ptr<Row> m_root;
    std::unordered_map<const RyNode *, Row *> m_rows; // by node; may know nodes that were deleted
    std::vector<RyNode *> m_fresh;                    // while following
    mutable QHash<QString, QIcon> m_icons;
    bool m_stale = true;
};
