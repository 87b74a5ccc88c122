#pragma once

#include "rycore/io/gltf/document/RyGltfCursor.h"
#include "rycore/io/gltf/document/RyGltfModel.h"
#include "rycore/io/gltf/file/RyGltfStorage.h"
#include "rycore/io/gltf/file/RyGltfWarnings.h"

/// Meshes and materials of the tree. Attributes of a primitive have the same count and a type that makes sense, and
/// its indices stay below that count; what does not matter for the shape is left out with a warning.
class RyGltfMeshReader
{
public:
    /// A file may name the same bytes many times over; what it would unfold to is limited.
    static constexpr std::uint64_t maximumVertices = 100'000'000;

    RyGltfMeshReader(const RyGltfCursor &root, const RyGltfStorage &storage, RyGltfWarnings &warnings)
        : m_root(root), m_storage(storage), m_warnings(warnings)
    {}

    void readMaterials(RyGltfModel &model) const;
    /// Accessors and materials must have been read.
    void readMeshes(RyGltfModel &model) const;

private:
    RyGltfPrimitive readPrimitive(const RyGltfCursor &cursor, const RyGltfModel &model) const;
    static void readTargets(const RyGltfCursor &cursor, RyGltfMesh &mesh);
    int readAttribute(const RyGltfCursor &attributes, const char *name, const RyGltfModel &model) const;
    int readOptional(const RyGltfCursor &attributes, const char *name, const RyGltfModel &model, int least, int most,
                     std::uint64_t count) const;
    void readInfluences(const RyGltfCursor &attributes, const RyGltfModel &model, std::uint64_t count,
                        RyGltfPrimitive &primitive) const;
    void checkIndices(const RyGltfCursor &cursor, const RyGltfModel &model, const RyGltfPrimitive &primitive,
                      std::uint64_t count) const;

    const RyGltfCursor &m_root;
    const RyGltfStorage &m_storage;
    RyGltfWarnings &m_warnings;
};
