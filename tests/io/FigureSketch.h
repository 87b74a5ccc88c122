#pragma once

#include <nlohmann/json.hpp>

#include <Eigen/Core>

#include <QString>

#include <string>
#include <vector>

/// Writes the text of a .gltf file; gives its path.
QString writeTree(const nlohmann::json &tree, const QString &path);

/// A small figure made by hand: a strip of points along +Y, two metres high, and two joints, `low` at the ground and
/// `high` one metre above it. Points below follow low, points above high, those between both. Tests change the tree
/// before writing it.
class FigureSketch
{
public:
    nlohmann::json tree;

    /// The tree's nodes: 0 root, 1 low, 2 high, 3 the mesh.
    FigureSketch();

    /// A new accessor; `type` as the format calls it.
    template<typename T>
    int add(const std::vector<T> &values, int componentType, const std::string &type)
    {
        return addBytes(std::string(reinterpret_cast<const char *>(values.data()), values.size() * sizeof(T)),
                        values.size(), componentType, type);
    }
    /// Where joints stand at bind, in mesh space, for column vectors; gives the skin's accessor of inverse matrices.
    int addBinds(const std::vector<Eigen::Matrix4d> &binds);

    /// Overwrites one float of an accessor.
    void set(int accessor, size_t number, float value);

    /// The only clip: it turns a node.
    void addTurningClip(int node);

    /// Writes a .gltf file with the data inside.
    QString write(const QString &path) const;

private:
    int addBytes(const std::string &bytes, size_t numbers, int componentType, const std::string &type);
    std::string m_data;
};
