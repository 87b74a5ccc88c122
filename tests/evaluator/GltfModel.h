#pragma once

#include "evaluator/GltfFileReader.h"
#include "evaluator/GltfPrimitive.h"

#include <Eigen/Core>

#include <string>
#include <vector>

/// What stands in a file: its tree, checked as far as everything else relies on it.
///
/// Every function throws std::runtime_error with a reason where the file makes no sense.
class GltfModel
{
public:
    struct Skin
    {
        std::vector<int> joints;
        std::vector<Eigen::Matrix4d> inverseBinds; ///< one for each joint
    };

    explicit GltfModel(const std::string &path);

    const nlohmann::json &node(int index) const;
    const nlohmann::json &primitive(const GltfPrimitive &which) const;
    /// As the node says it, for column vectors.
    Eigen::Matrix4d localMatrix(int index) const;
    /// A list below `object`, empty where there is none.
    static const nlohmann::json &listOf(const nlohmann::json &object, const char *key);

    GltfFileData file;
    std::vector<int> parents; ///< -1 for a root
    std::vector<Skin> skins;
    std::vector<GltfPrimitive> primitives; ///< in node order

private:
    void readParents();
    void checkTree() const;
    void readSkins();
    void readPrimitives();
};
