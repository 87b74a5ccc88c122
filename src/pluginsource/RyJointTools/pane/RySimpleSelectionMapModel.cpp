#include "pluginsource/RyJointTools/pane/RySimpleSelectionMapModel.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"

enum Column { GroupColumn = 0, BoneColumn = 1, ColumnCount = 2 };

static RyFigure *figureOf(RyNode *node)
{
    RyNode *root = qobject_cast<RyBone *>(node) ? node->getSkeleton() : node;
    return qobject_cast<RyFigure *>(root);
}

static RyFacetMesh *meshOf(const RyFigure *figure)
{
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
    return shape ? shape->getFacetMesh() : nullptr;
}

void RySimpleSelectionMapModel::fill()
{
    beginResetModel();
    if (m_figure)
        disconnect(m_figure, nullptr, this, nullptr);
    m_figure.clear();
    m_groups.clear();
    m_bone = ryScene()->getPrimarySelection();
    RyFigure *figure = figureOf(m_bone);
    if (const RyFacetMesh *mesh = meshOf(figure)) {
        m_figure = figure;
        for (int i = 0; i < mesh->getNumFaceGroups(); ++i)
            m_groups.append(mesh->getFaceGroup(i)->getName());
        connect(m_figure, &RySkeleton::selectionMapChanged, this, &RySimpleSelectionMapModel::followFigure);
    }
    followFigure();
    endResetModel();
}

void RySimpleSelectionMapModel::followFigure()
{
    if (m_map)
        disconnect(m_map, nullptr, this, nullptr);
    m_map = m_figure ? m_figure->getSelectionMap() : nullptr;
    if (m_map)
        connect(m_map, &RySelectionMap::mapChanged, this, &RySimpleSelectionMapModel::followMap);
    followMap();
}

void RySimpleSelectionMapModel::followMap()
{
    const QString group = m_map ? m_map->findGroupForNode(m_bone) : QString();
    m_currentRow = group.isEmpty() ? 0 : 1 + m_groups.indexOf(group);
    // An edit of its own is told when all of it is done.
    if (m_isEditing || !m_figure)
        return;
    emit selectionChanged();
    // One column more than there are: views then draw all anew.
    emit dataChanged(createIndex(0, GroupColumn), createIndex(rowCount() - 1, ColumnCount));
}

int RySimpleSelectionMapModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || !m_figure ? 0 : 1 + m_groups.size();
}

int RySimpleSelectionMapModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QString RySimpleSelectionMapModel::bonesLabel(const QString &group) const
{
    const int pair = m_map ? m_map->findPair(group) : -1;
    if (pair < 0)
        return QStringLiteral("-");
    const RyNode *node = m_map->getPairNode(pair);
    return node ? node->getLabel() : QString();
}

QVariant RySimpleSelectionMapModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return QVariant();
    if (role == Qt::CheckStateRole && index.column() == GroupColumn)
        return int(index.row() == m_currentRow ? Qt::Checked : Qt::Unchecked);
    if (role != Qt::DisplayRole || index.column() > BoneColumn)
        return QVariant();
    if (index.row() == 0)
        return tr("None");
    const QString &group = m_groups.at(index.row() - 1);
    return index.column() == GroupColumn ? group : bonesLabel(group);
}

bool RySimpleSelectionMapModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    // Some row is always checked, so that one can only be checked in place of another.
    if (role != Qt::CheckStateRole || value.toInt() != Qt::Checked)
        return false;
    if (!index.isValid() || index.row() >= rowCount() || !m_figure || !m_bone)
        return false;
    m_isEditing = true;
    pair(index.row());
    m_isEditing = false;
    followMap();
    return true;
}

bool RySimpleSelectionMapModel::changesPair(int row) const
{
    return row != m_currentRow || (row == 0 && m_map && m_map->findPair(m_bone) >= 0);
}

void RySimpleSelectionMapModel::pair(int row)
{
    if (!m_map)
        m_figure->setSelectionMap(new RySelectionMap);
    if (row > 0)
        m_map->addPair(m_groups.at(row - 1), m_bone, true);
    else
        m_map->removePair(m_map->findPair(m_bone));
}

QVariant RySimpleSelectionMapModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    return section == GroupColumn ? tr("Face Group") : section == BoneColumn ? tr("Assigned Bone") : QVariant();
}

Qt::ItemFlags RySimpleSelectionMapModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags all = QAbstractListModel::flags(index);
    return index.isValid() && index.column() == GroupColumn ? all | Qt::ItemIsUserCheckable : all;
}
