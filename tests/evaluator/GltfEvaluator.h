#pragma once

#include "evaluator/GltfPrimitive.h"

#include <Eigen/Core>
#include <nlohmann/json_fwd.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

class GltfModel;
struct GltfTable;

/// What is changed of the pose that a file holds, by node index. A matrix in `local` takes the place of the node's own
/// local matrix; a turn in `turn` is appended to it, in the node's own axes: local * turn.
struct GltfPose
{
    std::map<int, Eigen::Matrix4d> local;
    std::map<int, Eigen::Matrix3d> turn;
    std::map<int, std::vector<double>> weights; ///< of morph targets, in place of those of node and mesh
};

/// One influence of a vertex: the joint's node index and its share; the shares of a vertex sum up to 1.
struct GltfInfluence
{
    int joint = -1;
    double weight = 0.0;
};

struct GltfCounts
{
    std::size_t vertices = 0; ///< POSITION entries of all instanced primitives
    std::size_t triangles = 0;
    std::size_t joints = 0;        ///< distinct joint nodes
    std::size_t maxInfluences = 0; ///< weights above zero at one vertex
};

/// Reads a .gltf or .glb file on its own and says what its format says a viewer has to show, in double precision and in
/// file units. It judges what the product writes, so it shares no code with it and favours plainness over speed.
///
/// Every function throws std::runtime_error with a reason where the file makes no sense.
class GltfEvaluator
{
public:
    explicit GltfEvaluator(const std::string &path);
    ~GltfEvaluator();
    GltfEvaluator(GltfEvaluator &&) noexcept;

    const nlohmann::json &tree() const;

    int nodeCount() const;
    /// Index of the only node of that name; throws when there is none or more than one.
    int node(const std::string &name) const;
    std::string nodeName(int node) const;
    /// -1 for a root.
    int parent(int node) const;
    /// The node's local matrix, for column vectors.
    Eigen::Matrix4d localMatrix(int node, const GltfPose &pose = {}) const;
    /// World matrices of all nodes, for column vectors.
    std::vector<Eigen::Matrix4d> worldMatrices(const GltfPose &pose = {}) const;
    Eigen::Vector3d worldPosition(int node, const GltfPose &pose = {}) const;

    int skinCount() const;
    const std::vector<int> &joints(int skin) const;
    /// One matrix for each joint, the identity where the skin has none.
    const std::vector<Eigen::Matrix4d> &inverseBindMatrices(int skin) const;

    /// Every primitive of every node with a mesh, in node order.
    const std::vector<GltfPrimitive> &primitives() const;
    /// Mesh space, as stored: where the vertices are at bind.
    std::vector<Eigen::Vector3d> restPositions(const GltfPrimitive &primitive) const;
    /// World space: morphed by the weights of the node or mesh, then skinned. Without a skin, moved by the node's world
    /// matrix; so is a vertex whose weights are all zero.
    std::vector<Eigen::Vector3d> positions(const GltfPrimitive &primitive, const GltfPose &pose = {}) const;
    /// World positions of all primitives, one after the other.
    std::vector<Eigen::Vector3d> allPositions(const GltfPose &pose = {}) const;
    std::vector<std::vector<GltfInfluence>> influences(const GltfPrimitive &primitive) const;
    std::vector<std::array<int, 3>> triangles(const GltfPrimitive &primitive) const;

    GltfCounts counts() const;

    /// What an accessor says, row by row.
    GltfTable accessorValues(int accessor) const;
    /// The elements of an accessor as they are stored, one after the other without gaps and without a sparse part.
    std::string accessorBytes(int accessor) const;
    /// The bytes of a whole buffer.
    std::string bufferBytes(int buffer) const;

private:
    std::unique_ptr<GltfModel> d;
};

/// The largest distance between two points of the same index; infinite when the counts differ.
double gltfMaxDistance(const std::vector<Eigen::Vector3d> &a, const std::vector<Eigen::Vector3d> &b);
