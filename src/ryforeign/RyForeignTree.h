#pragma once

#include "ryforeign/RyForeignPivot.h"

#include <QHash>
#include <QString>

#include <string>
#include <unordered_map>
#include <vector>

struct aiNode;
struct aiScene;
struct aiString;

/// The nodes of a foreign file in pre-order.
class RyForeignTree
{
public:
    struct Node
    {
        const aiNode *source = nullptr;
        int parent = -1;
        QString name; // as it is written
        RyAffine local;
        RyAffine world; // node space to the world of the file that is written
        RyForeignPivot pivot;
        bool isJoint = false;
        bool isEnd = false;   // marks the end of the joint above it
        bool hasMesh = false; // itself or below it
    };

    /// `pivotOf`: by the names that the importers' library uses.
    explicit RyForeignTree(const aiScene &scene, const QHash<QString, RyForeignPivot> &pivotOf);

    std::vector<Node> nodes;
    /// Of what a node shows, to the world.
    RyAffine meshToWorld(size_t node) const { return nodes[node].pivot.geometric * nodes[node].world; }
    /// Places all nodes in the world; `top`: from the space above the tree.
    void place(const RyAffine &top);
    /// Names to be written in the place of those that the importers' library uses.
    void rename(const QHash<QString, QString> &nameOf);
    /// By the name that the importers' library uses, of several so many later; -1 for none.
    int find(const aiString &name, size_t number = 0) const;

private:
    std::unordered_map<std::string, std::vector<int>> m_placesOf;
};
