#include "ryhost/panes/HistoryModel.h"

#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/timeText.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

HistoryModel::HistoryModel(RyUndoStack *stack, QObject *parent) : QAbstractTableModel(parent), m_stack(stack) {}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_steps.size()) + 1;
}

int HistoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

void HistoryModel::refresh(const SavedState &saved)
{
    int same = 0;
    while (same < std::min(m_stack->count(), int(m_steps.size())) &&
           m_steps[size_t(same)].number == m_stack->number(same))
        ++same;
    if (same < int(m_steps.size())) {
        beginRemoveRows(QModelIndex(), same + 1, int(m_steps.size()));
        m_steps.resize(size_t(same));
        endRemoveRows();
    }
    if (same < m_stack->count()) {
        beginInsertRows(QModelIndex(), same + 1, m_stack->count());
        for (int step = same; step < m_stack->count(); ++step)
            m_steps.push_back({m_stack->caption(step), m_stack->time(step), m_stack->number(step)});
        endInsertRows();
    }
    m_index = m_stack->index();
    m_cleanIndex = m_stack->cleanIndex();
    m_saved = saved;
    emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

QString HistoryModel::stepText(int row) const
{
    return row == 0 ? tr("Beginning") : m_steps[size_t(row - 1)].caption;
}

QString HistoryModel::savedWord() const
{
    switch (m_saved.kind) {
    case SavedState::Started:
        return tr("empty scene");
    case SavedState::Opened:
        return tr("as opened");
    case SavedState::Imported:
        return tr("as read");
    case SavedState::Recovered:
        return tr("as recovered");
    case SavedState::Saved:
        break;
    }
    return tr("saved");
}

QString HistoryModel::timeText(int row) const
{
    const bool isSaved = row == m_cleanIndex;
    const QDateTime time = isSaved ? m_saved.time : row == 0 ? QDateTime() : m_steps[size_t(row - 1)].time;
    const QString text = time.isValid() ? timeTextOf(time) : QString();
    return isSaved ? tr("%1 %2").arg(savedWord(), text).trimmed() : text;
}

QString HistoryModel::spokenText(int row) const
{
    QStringList parts{stepText(row)};
    if (row == m_index)
        parts.append(tr("the present state"));
    else if (row > m_index)
        parts.append(tr("undone"));
    if (row == m_cleanIndex)
        parts.append(savedWord());
    return parts.join(QStringLiteral(", "));
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == StepColumn ? stepText(index.row()) : timeText(index.row());
    case Qt::AccessibleTextRole:
        return index.column() == StepColumn ? spokenText(index.row()) : timeText(index.row());
    case Qt::ToolTipRole:
        return index.row() == m_index  ? tr("%1: the scene is here").arg(stepText(index.row()))
               : index.row() < m_index ? tr("%1: undoes everything after it").arg(stepText(index.row()))
                                       : tr("%1: redoes up to here").arg(stepText(index.row()));
    case Qt::FontRole: {
        QFont font;
        font.setBold(index.row() == m_index);
        return font;
    }
    case Qt::ForegroundRole:
        return index.row() > m_index ? QVariant(QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text))
                                     : QVariant();
    default:
        return {};
    }
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == StepColumn ? tr("Step") : tr("When");
}
