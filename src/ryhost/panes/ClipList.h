#pragma once

#include <QPointer>
#include <QTreeView>

#include <memory>
#include <vector>

class QSortFilterProxyModel;
class QStandardItem;
class QStandardItemModel;
class RyClip;
class RyNode;
class RyScene;

/// The clips of a scene, each below what it moves, with their lengths; the one that shows is marked. Follows the scene.
class ClipList : public QTreeView
{
    Q_OBJECT
public:
    using Clip = std::shared_ptr<const RyClip>;
    enum Column { NameColumn = 0, LengthColumn = 1 };
    explicit ClipList(RyScene *scene, QWidget *parent = nullptr);

    bool isEmpty() const { return m_rows.empty(); }
    /// That of the current row; without one the first of the selected figure, else the first. Null when there are none.
    Clip current() const;
    void setFilter(const QString &text);
    /// As high as its rows, within bounds.
    QSize sizeHint() const override;

signals:
    /// By mouse or key.
    void clipChosen(const Clip &clip);
    void escaped();
    /// There are clips where there were none, or the other way round.
    void emptyChanged();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    /// A clip below something that it moves.
    struct Row
    {
        RyNode *subject = nullptr; // compared, never followed
        Clip clip;
        bool operator==(const Row &) const = default;
    };
    void follow();
    void fill();
    void nameBranches();
    std::vector<Row> rowsOfScene() const;
    Clip clipAt(const QModelIndex &index) const;
    void choose(const QModelIndex &index);
    void markShown();

    QPointer<RyScene> m_scene;
    QStandardItemModel *m_model;
    QSortFilterProxyModel *m_proxy;
    std::vector<Row> m_rows;
    std::vector<QStandardItem *> m_items; // in step with the rows
    std::vector<std::pair<QPointer<RyNode>, QStandardItem *>> m_branches;
    bool m_isStale = false;
};
