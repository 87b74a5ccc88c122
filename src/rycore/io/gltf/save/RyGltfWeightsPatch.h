#pragma once

#include "rycore/io/gltf/save/RyGltfScenePatch.h"

#include <nlohmann/json_fwd.hpp>

class RyShape;

/// A mesh of the file that another node shows now, with all morphs of its shape.
struct RyGltfMovedMesh
{
    const RyGltfFigureSource *source = nullptr;
    const RyShape *shape = nullptr;
    int node = -1; // of the patched document
};

/// Lets clips that drive the morphs of such meshes drive them where these stand. What drives morphs of meshes that
/// stand nowhere any more goes, since the format knows no weights for a node without a mesh.
class RyGltfWeightsPatch
{
public:
    RyGltfWeightsPatch(RyGltfScenePatch &patch, const std::vector<RyGltfMovedMesh> &moved)
        : m_patch(patch), m_moved(moved)
    {}

    /// After clips and meshes were written.
    void apply();

private:
    using Json = nlohmann::ordered_json;
    /// A channel of a clip.
    struct Driven
    {
        size_t place = 0;
        int node = -1; // that had the mesh
    };

    /// What channels with the same key times drive a mesh by.
    struct Numbers
    {
        size_t rows = 0; // of cubic splines three for each key
        bool isCubic = false;
        std::map<int, std::vector<float>> ofNodes; // row by row
    };

    int nodeOf(const Json &target) const;
    const RyGltfMovedMesh *movedFrom(int node) const;
    bool moveAll(Json &clip);
    bool move(Json &clip, const RyGltfMovedMesh &mesh, const std::vector<Driven> &channels);
    Numbers numbersOf(const Json &clip, const std::vector<Driven> &channels) const;
    static std::vector<float> valuesOf(const Numbers &numbers, const RyGltfMovedMesh &mesh);

    RyGltfScenePatch &m_patch;
    const std::vector<RyGltfMovedMesh> &m_moved;
};
