#include "ryhost/panes/SceneTree.h"

#include "ryhost/panes/SceneModel.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace {

constexpr int Indentation = 10;
constexpr int EyeWidth = 24;
constexpr int MostNameWidth = 320; // longer names are elided

class NameDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize hint = QStyledItemDelegate::sizeHint(option, index);
        return QSize(std::min(hint.width(), MostNameWidth), hint.height());
    }
};

} // namespace

SceneTree::SceneTree(QWidget *parent) : QTreeView(parent), m_measuring(new QTimer(this))
{
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIndentation(Indentation);
    setSelectionMode(ExtendedSelection);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollMode(ScrollPerPixel);
    setItemDelegateForColumn(SceneModel::LabelColumn, new NameDelegate(this));
    m_measuring->setSingleShot(true);
    connect(m_measuring, &QTimer::timeout, this, &SceneTree::measure);
    connect(this, &QTreeView::expanded, this, &SceneTree::scheduleMeasuring);
    connect(this, &QTreeView::collapsed, this, &SceneTree::scheduleMeasuring);
}

void SceneTree::setModel(QAbstractItemModel *model)
{
    QTreeView::setModel(model);
    setTreePosition(SceneModel::LabelColumn);
    // The eyes stand first, where sideways scrolling finds them again.
    header()->moveSection(header()->visualIndex(SceneModel::VisibleColumn), 0);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(EyeWidth);
    header()->setResizeContentsPrecision(-1);
    header()->setSectionResizeMode(QHeaderView::Fixed);
    header()->resizeSection(SceneModel::VisibleColumn, EyeWidth);
    connect(model, &QAbstractItemModel::dataChanged, this, &SceneTree::scheduleMeasuring);
    connect(model, &QAbstractItemModel::rowsInserted, this, &SceneTree::scheduleMeasuring);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &SceneTree::scheduleMeasuring);
    measure();
}

void SceneTree::scheduleMeasuring()
{
    m_measuring->start(0);
}

void SceneTree::measure()
{
    m_measuring->stop();
    m_namesWidth = sizeHintForColumn(SceneModel::LabelColumn);
    fitColumn();
}

void SceneTree::fitColumn()
{
    header()->resizeSection(SceneModel::LabelColumn, std::max(m_namesWidth, viewport()->width() - EyeWidth));
}

void SceneTree::selectAll()
{
    // The view itself would widen each range to rows and compare it with all others.
    QItemSelection all;
    std::vector<QModelIndex> open{rootIndex()};
    while (!open.empty()) {
        const QModelIndex parent = open.back();
        open.pop_back();
        const int rows = model()->rowCount(parent);
        if (rows > 0)
            all.append({model()->index(0, 0, parent), model()->index(rows - 1, SceneModel::VisibleColumn, parent)});
        for (int row = 0; row < rows; ++row) {
            const QModelIndex index = model()->index(row, 0, parent);
            if (isExpanded(index))
                open.push_back(index);
        }
    }
    selectionModel()->select(all, QItemSelectionModel::ClearAndSelect);
}

void SceneTree::resizeEvent(QResizeEvent *event)
{
    QTreeView::resizeEvent(event);
    fitColumn();
}

void SceneTree::drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    cell.showDecorationSelected = true;
    cell.viewItemPosition = QStyleOptionViewItem::OnlyOne;
    cell.state.setFlag(QStyle::State_Selected, index.data(SceneModel::SelectedRole).toBool());
    for (const SceneModel::Column column : {SceneModel::VisibleColumn, SceneModel::LabelColumn}) {
        const QModelIndex at = index.siblingAtColumn(column);
        cell.state.setFlag(QStyle::State_HasFocus, hasFocus() && at == currentIndex());
        cell.rect.setLeft(columnViewportPosition(column));
        cell.rect.setWidth(columnWidth(column));
        if (column == SceneModel::LabelColumn) {
            const QRect whole = cell.rect;
            cell.rect.setWidth(whole.width() - visualRect(at).width());
            if (isRightToLeft())
                cell.rect.moveRight(whole.right());
            if (style()->styleHint(QStyle::SH_ItemView_ShowDecorationSelected, nullptr, this))
                style()->drawPrimitive(QStyle::PE_PanelItemViewRow, &cell, painter, this);
            drawBranches(painter, cell.rect, index);
            const int indentation = cell.rect.width();
            cell.rect = isRightToLeft() ? whole.adjusted(0, 0, -indentation, 0) : whole.adjusted(indentation, 0, 0, 0);
        }
        itemDelegate(at)->paint(painter, cell, at);
    }
}

void SceneTree::drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const
{
    if (!model()->hasChildren(index))
        return;
    QStyleOptionViewItem option = viewOptions();
    option.rect = rect;
    if (isRightToLeft())
        option.rect.setRight(rect.left() + indentation() - 1);
    else
        option.rect.setLeft(rect.right() + 1 - indentation());
    option.state.setFlag(QStyle::State_Item);
    option.state.setFlag(QStyle::State_Children);
    option.state.setFlag(QStyle::State_Open, isExpanded(index));
    style()->drawPrimitive(QStyle::PE_IndicatorBranch, &option, painter, this);
}

void SceneTree::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (m_measuring->isActive())
        measure();
    QScrollBar *bar = horizontalScrollBar();
    const int before = bar->value();
    QTreeView::scrollTo(index, hint);
    // The view itself would bring the end of the column into sight, where short names leave nothing to see.
    bar->setValue(before);
    const QModelIndex label = index.siblingAtColumn(SceneModel::LabelColumn);
    const QRect place = visualRect(label);
    const int left = place.left() - indentation();
    const int right = place.left() + std::min(sizeHintForIndex(label).width(), place.width());
    bar->setValue(before + std::min(std::max(right - viewport()->width(), 0), left));
}
