#pragma once

#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"
#include "rycore/io/gltf/document/RyGltfUnusedLooks.h"

#include <optional>
#include <set>

/// Accessors, buffer views and nodes that we made are marked in their extras: when nothing uses them any more, their
/// places and bytes can be used again; a node only once it hangs below what is marked as removed. Those that came with
/// the file keep place and bytes, since an extension that nobody here knows may name them. Meshes, materials, textures
/// and images that we made go as well.
class RyGltfSpares
{
public:
    using Json = nlohmann::ordered_json;

    /// Finds what is made by us and used by nothing; what only such accessors use counts as well.
    explicit RyGltfSpares(RyGltfDocument::Private &document);

    static void mark(Json &entry);
    static bool isMade(const Json &entry);
    static std::set<int> numbersInExtensions(const Json &tree);

    /// In ascending order.
    const std::vector<int> &accessors() const { return m_accessors; }
    const std::vector<int> &views() const { return m_views; }
    const std::vector<int> &nodes() const { return m_nodes; }
    bool isEmpty() const
    {
        return m_accessors.empty() && m_views.empty() && m_nodes.empty() && (!m_looks || m_looks->isEmpty());
    }
    /// Takes them away at the ends of their lists, leaves them empty elsewhere, and takes their bytes out of the
    /// buffers. The model does not follow.
    void drop();

private:
    void findAccessors(const std::set<int> &named);
    void findViews(std::set<int> named);
    void findNodes(const std::set<int> &named);
    std::vector<bool> findUsedNodes(const std::set<int> &named) const;
    void dropAccessors();
    void dropViews();
    void dropNodes();

    RyGltfDocument::Private &d;
    std::vector<int> m_accessors, m_views, m_nodes;
    std::optional<RyGltfUnusedLooks> m_looks;
};
