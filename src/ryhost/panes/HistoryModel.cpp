#include "ryhost/panes/HistoryModel.h"

#include "rycore/undo/RyUndoStack.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

HistoryModel::HistoryModel(RyUndoStack *stack, QObject *parent) : QAbstractTableModel(parent), m_stack(stack) {}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.steps.size()) + 1;
}

int HistoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

void HistoryModel::refresh(const SavedState &saved)
{
    const RyUndoHistory fresh(*m_stack);
    std::vector<RyUndoHistory::Step> &shown = m_shown.steps;
    size_t same = 0;
    while (same < std::min(fresh.steps.size(), shown.size()) && shown[same].number == fresh.steps[same].number)
        ++same;
    if (same < shown.size()) {
        beginRemoveRows(QModelIndex(), int(same) + 1, int(shown.size()));
        shown.resize(same);
        endRemoveRows();
    }
    if (same < fresh.steps.size()) {
        beginInsertRows(QModelIndex(), int(same) + 1, int(fresh.steps.size()));
        shown = fresh.steps;
        endInsertRows();
    }
    m_shown = fresh;
    m_saved = saved;
    emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

QString HistoryModel::stepText(int row) const
{
    return row == 0 ? tr("Beginning") : m_shown.steps[size_t(row - 1)].caption;
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
    const bool isSaved = row == m_shown.cleanIndex;
    const QDateTime time = isSaved ? m_saved.time : row == 0 ? QDateTime() : m_shown.steps[size_t(row - 1)].time;
    const QString text = time.isValid() ? timeTextOf(time) : QString();
    return isSaved ? tr("%1 %2").arg(savedWord(), text).trimmed() : text;
}

QString HistoryModel::spokenText(int row) const
{
    QStringList parts{stepText(row)};
    if (row == m_shown.index)
        parts.append(tr("the present state"));
    else if (row > m_shown.index)
        parts.append(tr("undone"));
    if (row == m_shown.cleanIndex)
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
        return index.row() == m_shown.index  ? tr("%1: the scene is here").arg(stepText(index.row()))
               : index.row() < m_shown.index ? tr("%1: undoes everything after it").arg(stepText(index.row()))
                                             : tr("%1: redoes up to here").arg(stepText(index.row()));
    case Qt::FontRole: {
        QFont font;
        font.setBold(index.row() == m_shown.index);
        return font;
    }
    case Qt::ForegroundRole:
        return index.row() > m_shown.index
                   ? QVariant(QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text))
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
