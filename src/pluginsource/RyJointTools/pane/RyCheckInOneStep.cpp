#include "pluginsource/RyJointTools/pane/RyCheckInOneStep.h"

#include "pluginsource/RyJointTools/pane/RySimpleSelectionMapModel.h"

#include "rycore/undo/RyUndoStackHold.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

RyCheckInOneStep::RyCheckInOneStep(const QString &caption, QObject *parent)
    : QStyledItemDelegate(parent), m_caption(caption)
{}

bool RyCheckInOneStep::asksForCheck(const QEvent &event, const QStyleOptionViewItem &option,
                                    const QModelIndex &index) const
{
    if (event.type() == QEvent::KeyPress) {
        const int key = static_cast<const QKeyEvent &>(event).key();
        return key == Qt::Key_Space || key == Qt::Key_Select;
    }
    if (event.type() != QEvent::MouseButtonRelease || index.column() != 0)
        return false;
    QStyleOptionViewItem item(option);
    initStyleOption(&item, index);
    const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    const QRect box = style->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &item, option.widget);
    const auto &mouse = static_cast<const QMouseEvent &>(event);
    return mouse.button() == Qt::LeftButton && box.contains(mouse.pos());
}

bool RyCheckInOneStep::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                   const QModelIndex &index)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::MouseButtonRelease)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    // Opening a hold is an event for whoever shows the scene.
    const auto *groups = qobject_cast<const RySimpleSelectionMapModel *>(model);
    if (!asksForCheck(*event, option, index) || !groups || !groups->changesPair(index.row()))
        return false;
    RyUndoStackHold hold;
    const bool isChecked = model->setData(index.sibling(index.row(), 0), Qt::Checked, Qt::CheckStateRole);
    if (isChecked)
        hold.accept(m_caption);
    return isChecked;
}
