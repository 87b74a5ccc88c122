#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyFirstPlaces.h"
#include "rycore/base/RyRefCounted.h"

#include <QPointer>

#include <vector>

class RyNode;

/// Ordered pairs of a face group's name and a node (which may be null). Edits are undoable where a hold is open.
class RySelectionMap : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RySelectionMap();

    int getNumPairs() const { return int(m_pairs.size()); }
    QString getPairGroup(int index) const { return m_pairs[size_t(index)].group; }
    RyNode *getPairNode(int index) const;
    /// Index of the first pair, -1 when there is none.
    int findPair(const QString &group) const;
    int findPair(const RyNode *node) const;
    /// Name of the group paired with the node, empty when there is none.
    QString findGroupForNode(const RyNode *node) const;
    /// `takeOver` drops the pairs of that group and of that node first; otherwise the pair is appended, and refused
    /// (false) when the group has one.
    bool addPair(const QString &group, RyNode *node, bool takeOver);
    bool removePair(int index);
    void clearAll();

signals:
    void mapChanged();

private:
    struct Pair
    {
        QString group;
        QPointer<RyNode> node;
    };
    struct PairsValue;
    void recordPairs();
    void forgetPlaces();
    auto groupAt() const
    {
        return [this](int pair) -> const QString & { return m_pairs[size_t(pair)].group; };
    }
    auto nodeAt() const
    {
        return [this](int pair) { return m_pairs[size_t(pair)].node.data(); };
    }

    std::vector<Pair> m_pairs;
    RyFirstPlaces<QString> m_placesOfGroups;
    RyFirstPlaces<const RyNode *> m_placesOfNodes;
};
