#pragma once

#include "ryhost/commands/SavedState.h"

#include <QAbstractTableModel>

#include <vector>

class RyUndoStack;

/// The steps of the undo history as rows: row n is the state in which n steps are done, so that the first is the
/// beginning. Undone ones are pale, the present one is bold, and the saved one says so beside its time.
class HistoryModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { StepColumn, TimeColumn, ColumnCount };
    HistoryModel(RyUndoStack *stack, QObject *parent);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Takes over what became of the stack, and how its saved state came to be. Rows that are still there stay.
    void refresh(const SavedState &saved);

private:
    struct Step
    {
        QString caption;
        QDateTime time;
        quint64 number = 0;
    };
    QString stepText(int row) const;
    QString timeText(int row) const;
    QString savedWord() const;
    /// For screen readers, which see neither bold nor pale.
    QString spokenText(int row) const;

    RyUndoStack *m_stack;
    std::vector<Step> m_steps;
    int m_index = 0;      // how many of them are done
    int m_cleanIndex = 0; // how many are in the saved state; -1 when none of them leads there
    SavedState m_saved;
};
