#pragma once

#include "rycore/io/gltf/document/RyGltfDocumentPrivate.h"

#include <set>

/// Accessors and buffer views that we made are marked in their extras: when nothing uses them any more, their places
/// and bytes can be used again. Those that came with the file keep place and bytes, since an extension that nobody here
/// knows may name them.
class RyGltfSpares
{
public:
    using Json = nlohmann::ordered_json;

    explicit RyGltfSpares(RyGltfDocument::Private &document) : d(document) {}

    static void mark(Json &entry);
    static bool isMade(const Json &entry);

    /// Made by us and used by nothing, in ascending order; what only such accessors use counts as well.
    std::vector<int> accessors() const;
    std::vector<int> views() const;
    /// Takes them away at the ends of their lists, leaves them empty elsewhere, and closes up what we made at the end
    /// of the last buffer. The model does not follow.
    void drop();

private:
    std::set<int> namedByExtensions() const;
    void dropAccessors(const std::vector<int> &unused);
    void dropViews(const std::vector<int> &unused);
    std::uint64_t endOfOthers(int buffer) const;
    void closeUp(const std::vector<int> &unused);

    RyGltfDocument::Private &d;
};
