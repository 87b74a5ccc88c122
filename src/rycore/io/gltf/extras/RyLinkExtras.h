#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QStringList>

#include <map>
#include <set>
#include <vector>

class RyFloatProperty;
class RyGltfDocument;
class RyGltfNodeIndex;
class RyNode;

/// Links between values of nodes, in the extras of a file. A controlled value has an entry: its node or, for a figure,
/// the place of that among the stored figures; its name; its own share where links make it another than the file's
/// number; and its controllers in their order. The values of joint parameters stand with these, without what links add.
namespace RyLinkExtras {

/// A link as it stands in a scene, to see whether links were edited.
struct Link
{
    const RyFloatProperty *controlled;
    const RyFloatProperty *controller;
    float ownShare; // of the controlled value
    bool operator==(const Link &) const = default;
};
std::vector<Link> linksOf(const std::vector<const RyNode *> &nodes);

/// Null without links. `figures`: in the order in which they are stored, null for one that is gone. What has no place
/// in the file is left out with a message.
nlohmann::ordered_json toJson(const std::vector<const RyNode *> &figures, const RyGltfNodeIndex &nodeOf,
                              QStringList *messages);

/// Where a file's nodes stand in the scene that is being read.
struct Places
{
    std::vector<RyNode *> nodeAt;    // by the file's list, null for those that stand nowhere
    std::map<int, RyNode *> figures; // by their stored entries
};
/// Makes the stored links of a file whose nodes have the values that the file says: these stay what results. A link
/// goes with a message where one of its ends is missing or it would close a circle. Gives the nodes with controlled
/// values.
std::set<const RyNode *> apply(const RyGltfDocument &document, const Places &places, QStringList *messages);

} // namespace RyLinkExtras
