#pragma once

#include "ryforeign/RyForeignInput.h"
#include "ryforeign/RyForeignKeys.h"
#include "ryforeign/RyForeignTree.h"

#include <nlohmann/json_fwd.hpp>

#include <map>
#include <set>

struct aiAnimation;
struct aiMeshMorphAnim;
struct aiNodeAnim;
class RyGltfDocument;

/// Writes the clips: the keys that the importers' library gives, straight lines between them.
class RyForeignClips
{
public:
    /// Of the document by those of the tree, -1 for none: `nodeOf` nodes, `shownBy` nodes that show their meshes.
    RyForeignClips(const RyForeignInput &input, const RyForeignTree &tree, const std::vector<int> &nodeOf,
                   const std::vector<int> &shownBy, RyGltfDocument &document)
        : m_input(input), m_tree(tree), m_nodeOf(nodeOf), m_shownBy(shownBy), m_document(document)
    {}

    void write();
    /// Nodes of the tree that a clip drives.
    static std::vector<bool> drivenNodes(const RyForeignInput &input, const RyForeignTree &tree);

private:
    using Json = nlohmann::ordered_json;

    void writeClip(const aiAnimation &clip, int number);
    /// Of each channel; -1 for none. Channels of a BVH file come in the order of its joints, which may share names.
    static std::vector<int> targetsOf(const RyForeignInput &input, const RyForeignTree &tree, const aiAnimation &clip);
    void writeNode(const aiNodeAnim &channel, int place);
    void readMorphs(const aiMeshMorphAnim &channel);
    void writeMorphs(int place, const std::vector<RyForeignKeys> &curves);
    /// False when something drives it already: the format wants one channel for what is driven.
    bool addChannel(int node, const char *path, RyForeignKeys keys);
    double seconds(double ticks) const { return ticks / m_ticks - m_start; }
    int timesAccessor(const std::vector<float> &times);

    const RyForeignInput &m_input;
    const RyForeignTree &m_tree;
    const std::vector<int> &m_nodeOf;
    const std::vector<int> &m_shownBy;
    RyGltfDocument &m_document;
    double m_ticks = 1.0; // a second, of the clip at hand
    double m_start = 0.0; // seconds that it begins before 0
    Json *m_clip = nullptr;
    std::map<int, std::vector<RyForeignKeys>>
        m_morphs; // of the clip at hand: by nodes of the tree, of each of their morphs
    std::set<std::pair<int, std::string>> m_driven; // of the clip at hand: nodes of the document and what of them
    std::map<std::vector<float>, int> m_times;      // accessors, of the clip at hand
    QStringList m_unknown;                          // what is driven and is not there
    QStringList m_twice;                            // what is driven twice, as far as the names say
};
