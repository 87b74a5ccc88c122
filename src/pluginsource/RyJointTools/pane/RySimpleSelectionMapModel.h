#pragma once

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RySelectionMap.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QStringList>

/// The face groups of a figure's mesh and the bones that they select, below a row "None". The row of the current bone
/// is checked; checking another one gives the bone that group, or none. Edits open no undo hold.
class RySimpleSelectionMapModel : public QAbstractListModel
{
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;

    /// Reads the scene: the figure of the primary selection and, as the current bone, that selection itself. Without a
    /// figure that has facets there are no rows.
    void fill();
    /// Null when it is gone.
    RyNode *bone() const { return m_bone; }
    int currentRow() const { return m_currentRow; }
    /// Whether checking that row would change a pair. "None" is checked for a bone whose group the mesh has not, and
    /// then takes that away.
    bool changesPair(int row) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    /// Another row is current, by an edit here or elsewhere.
    void selectionChanged();

private:
    void followFigure();
    void followMap();
    QString bonesLabel(const QString &group) const;
    void pair(int row);

    QPointer<RyFigure> m_figure;
    QPointer<RySelectionMap> m_map;
    QPointer<RyNode> m_bone;
    QStringList m_groups;
    int m_currentRow = 0;
    bool m_isEditing = false;
};
