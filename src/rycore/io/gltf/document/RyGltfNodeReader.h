#pragma once

#include "rycore/io/gltf/document/RyGltfCursor.h"
#include "rycore/io/gltf/document/RyGltfModel.h"
#include "rycore/io/gltf/file/RyGltfWarnings.h"

/// Nodes, skins, the default scene and what the clips drive. The nodes of the result are a forest.
class RyGltfNodeReader
{
public:
    RyGltfNodeReader(const RyGltfCursor &root, RyGltfModel &model, RyGltfWarnings &warnings)
        : m_root(root), m_model(model), m_warnings(warnings)
    {}

    /// Accessors and meshes must have been read.
    void read();
    /// What clips drive, anew. Nodes must have been read.
    void readAnimations();

private:
    void readNodes();
    void readChildren();
    void refuseCycles() const;
    void readSkins();
    void readSceneRoots();
    std::vector<int> topmostNodes() const;

    const RyGltfCursor &m_root;
    RyGltfModel &m_model;
    RyGltfWarnings &m_warnings;
};
