#pragma once

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySelectionMap.h"

#include <QPair>
#include <QStringList>

#include <optional>
#include <vector>

/// All that building a selection map may change of a figure: pairs, face groups and who is in them, selected facets.
struct RySelectionState
{
    explicit RySelectionState(const RyFigure *figure)
    {
        if (const RySelectionMap *map = figure->getSelectionMap()) {
            pairs.emplace();
            for (int i = 0; i < map->getNumPairs(); ++i)
                pairs->push_back({map->getPairGroup(i), map->getPairNode(i)});
        }
        const RyFacetMesh *mesh = meshOf(figure);
        for (int g = 0; mesh && g < mesh->getNumFaceGroups(); ++g) {
            groups.append(mesh->getFaceGroup(g)->getName());
            members.push_back(mesh->getFaceGroup(g)->getFacets());
        }
        for (int f = 0; mesh && f < mesh->getNumFacets(); ++f) {
            groupOfFacet.push_back(mesh->getFacet(f).group);
            isSelected.push_back(mesh->isFacetSelected(f));
        }
    }
    static RyFacetMesh *meshOf(const RyFigure *figure)
    {
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
        return shape ? shape->getFacetMesh() : nullptr;
    }
    bool operator==(const RySelectionState &) const = default;

    /// Empty where they are equal; otherwise what is the first to differ.
    QString difference(const RySelectionState &other) const
    {
        if (pairs.has_value() != other.pairs.has_value())
            return QStringLiteral("a map and none");
        const size_t pairCount = pairs ? std::min(pairs->size(), other.pairs->size()) : 0;
        for (size_t i = 0; i < pairCount; ++i) {
            if ((*pairs)[i] != (*other.pairs)[i])
                return QStringLiteral("pair %1: %2 %3, %4 %5")
                    .arg(QString::number(i), (*pairs)[i].first, nameOf((*pairs)[i].second), (*other.pairs)[i].first,
                         nameOf((*other.pairs)[i].second));
        }
        if (pairs && pairs->size() != other.pairs->size())
            return QStringLiteral("%1 and %2 pairs").arg(pairs->size()).arg(other.pairs->size());
        if (groups != other.groups)
            return QStringLiteral("groups: %1; %2").arg(groups.join(' '), other.groups.join(' '));
        for (size_t f = 0; f < std::min(groupOfFacet.size(), other.groupOfFacet.size()); ++f) {
            if (groupOfFacet[f] != other.groupOfFacet[f])
                return QStringLiteral("facet %1 is in group %2, %3")
                    .arg(f)
                    .arg(groupOfFacet[f])
                    .arg(other.groupOfFacet[f]);
        }
        if (isSelected != other.isSelected)
            return QStringLiteral("selected facets");
        return *this == other ? QString() : QStringLiteral("members of groups");
    }

    std::optional<std::vector<QPair<QString, const RyNode *>>> pairs; // none without a map
    QStringList groups;
    std::vector<RyIndexList> members;
    std::vector<int> groupOfFacet;
    std::vector<bool> isSelected;

private:
    static QString nameOf(const RyNode *node) { return node ? node->getName() : QStringLiteral("nobody"); }
};
