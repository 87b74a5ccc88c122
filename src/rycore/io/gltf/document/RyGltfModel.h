#pragma once

#include "rycore/math/RyAffine.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// The parts of a glTF 2.0 file that become a scene, in file units and as the file has them; -1 stands for "none".
/// Every index in it has been checked: it is -1 or valid, the node graph is a forest, accessors lie inside their
/// buffers.

/// A node's local transform. As the file gives it: either a matrix or translation, rotation and scale.
struct RyGltfTransform
{
    bool hasMatrix = false;
    std::array<double, 16> matrix{1, 0, 0, 0, 0, 1, 0, 0,
                                  0, 0, 1, 0, 0, 0, 0, 1}; // as stored: for row vectors row-major
    std::array<double, 3> translation{0, 0, 0};
    std::array<double, 4> rotation{0, 0, 0, 1}; // x, y, z, w of the file: a right-handed turn
    std::array<double, 3> scale{1, 1, 1};

    /// The map of row vectors from this node's space to its parent's.
    RyAffine toAffine() const;
};

struct RyGltfNode
{
    QString name; // empty when the file has none
    RyGltfTransform transform;
    int parent = -1;
    std::vector<int> children;
    int mesh = -1;
    int skin = -1;
    int camera = -1;
    std::vector<double> weights;
};

struct RyGltfPrimitive
{
    int mode = 4; // 4 triangles, 5 strip, 6 fan; others are kept, not edited
    int indices = -1;
    int material = -1;
    int positions = -1;
    int normals = -1;
    int texcoords = -1;
    int colors = -1;
    bool hasFans = false;            // its triangles are marked as the fans of polygons
    std::vector<int> joints;         // JOINTS_0, JOINTS_1, ... accessors
    std::vector<int> weights;        // in step
    std::vector<int> morphPositions; // POSITION accessor of each target, -1 for none
};

struct RyGltfMesh
{
    QString name;
    std::vector<RyGltfPrimitive> primitives;
    std::vector<double> weights;      // of the morph targets, where a node does not say others
    std::vector<QString> targetNames; // from the extras, as other programs do; an empty one where there is none

    /// Of morphs: as many as the primitive with most of them has.
    size_t targetCount() const;
};

struct RyGltfSkin
{
    QString name;
    std::vector<int> joints;
    int inverseBindMatrices = -1;
    int skeleton = -1;
};

struct RyGltfMaterial
{
    QString name;
    std::array<float, 4> baseColor{1, 1, 1, 1};
    int baseColorTexture = -1; // index of the image, -1 for none
    bool doubleSided = false;
};

struct RyGltfAccessor
{
    int bufferView = -1;
    std::uint64_t byteOffset = 0;
    int componentType = 0;  // 5120..5126
    int componentCount = 1; // 1, 2, 3, 4, 9, 16
    std::uint64_t count = 0;
    bool normalized = false;
    bool sparse = false;
};

struct RyGltfModel
{
    std::vector<RyGltfNode> nodes;
    std::vector<RyGltfMesh> meshes;
    std::vector<RyGltfSkin> skins;
    std::vector<RyGltfMaterial> materials;
    std::vector<RyGltfAccessor> accessors;
    std::vector<int> sceneRoots; // of the default scene; all parentless nodes where there is none
    std::vector<QString> animationNames;
    std::vector<std::vector<int>> animatedNodes; // per animation, the nodes its channels drive
};
