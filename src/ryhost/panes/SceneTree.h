#pragma once

#include <QTreeView>

class QTimer;

/// The view of a SceneModel. Names can be read at any depth: the column is as wide as they need, and the view moves
/// sideways along with the one that is looked for.
class SceneTree : public QTreeView
{
    Q_OBJECT
public:
    explicit SceneTree(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;
    /// All rows that can be seen by scrolling.
    void selectAll() override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    /// Selected is what the scene says. The view would ask the selection for each cell, which has a range for each
    /// level of a chain and looks all of them through.
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    /// The arrow of the row alone: the style has nothing to show for the levels above, and there may be thousands.
    void drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const override;

private:
    /// Measures the names when there is time.
    void scheduleMeasuring();
    void measure();
    void fitColumn();

    QTimer *m_measuring;
    int m_namesWidth = 0;
};
