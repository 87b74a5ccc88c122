#pragma once

#include <QStyledItemDelegate>

/// Checks rows as the view has it, each one as one undo step. The space bar checks a row in whatever column.
class RyCheckInOneStep : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit RyCheckInOneStep(const QString &caption, QObject *parent = nullptr);

    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    QString m_caption;
};
