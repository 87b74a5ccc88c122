#pragma once

#include <QStyledItemDelegate>

/// Checks rows of a RySimpleSelectionMapModel, each one as one undo step: by a click on the box, or by the space bar in
/// whatever column.
class RyCheckInOneStep : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit RyCheckInOneStep(const QString &caption, QObject *parent = nullptr);

    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    bool asksForCheck(const QEvent &event, const QStyleOptionViewItem &option, const QModelIndex &index) const;

    QString m_caption;
};
