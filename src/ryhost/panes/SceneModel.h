#pragma once

#include <QHash>
#include <QPointer>
#include <QStandardItemModel>

class RyNode;
class RyScene;

/// The nodes of a scene as a tree: label, and whether it is shown. Follows the scene.
class SceneModel : public QStandardItemModel
{
    Q_OBJECT
public:
    enum Column { LabelColumn = 0, VisibleColumn = 1 };
    explicit SceneModel(RyScene *scene, QObject *parent = nullptr);

    RyNode *nodeAt(const QModelIndex &index) const;
    /// Invalid for a node that is not shown.
    QModelIndex indexOf(RyNode *node) const;
    /// One undo step.
    void toggleHidden(RyNode *node);

public slots:
    /// Builds the tree again if the scene's nodes changed since.
    void rebuildIfNeeded();

signals:
    void aboutToRebuild();
    void rebuilt();

private:
    void scheduleRebuild();
    void addBranch(QStandardItem *parent, RyNode *node);
    void refreshNode(RyNode *node);

    QPointer<RyScene> m_scene;
    QHash<const RyNode *, QStandardItem *> m_items;
    bool m_stale = true;
};
