#include "pluginsource/RyJointTools/pane/RyCheckInOneStep.h"

#include "rycore/undo/RyUndoStackHold.h"

#include <QEvent>

RyCheckInOneStep::RyCheckInOneStep(const QString &caption, QObject *parent)
    : QStyledItemDelegate(parent), m_caption(caption)
{}

bool RyCheckInOneStep::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                   const QModelIndex &index)
{
    // A hold is opened for what may check a row only: opening one is an event for whoever shows the scene.
    const QModelIndex row = event->type() == QEvent::KeyPress ? index.sibling(index.row(), 0) : index;
    const bool mayCheck = event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonRelease;
    if (!mayCheck || row.data(Qt::CheckStateRole).toInt() == Qt::Checked)
        return QStyledItemDelegate::editorEvent(event, model, option, row);
    RyUndoStackHold hold;
    const bool isChecked = QStyledItemDelegate::editorEvent(event, model, option, row);
    if (isChecked && row.data(Qt::CheckStateRole).toInt() == Qt::Checked)
        hold.accept(m_caption);
    else
        hold.cancel();
    return isChecked;
}
