#include "ryforeign/RyForeignTree.h"

#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

RyForeignTree::RyForeignTree(const aiScene &scene, const QHash<QString, RyForeignPivot> &pivotOf)
{
    std::vector<std::pair<const aiNode *, int>> pending{{scene.mRootNode, -1}};
    while (!pending.empty()) {
        const auto [source, parent] = pending.back();
        pending.pop_back();
        const int place = int(nodes.size());
        Node node;
        node.source = source;
        node.parent = parent;
        node.name = ryForeignText(source->mName);
        node.pivot = pivotOf.value(node.name);
        node.local = ryForeignMap(source->mTransformation);
        if (node.pivot.hasPoints())
            node.local = node.pivot.placed(node.local);
        node.hasMesh = source->mNumMeshes > 0;
        nodes.push_back(node);
        m_placesOf[std::string(source->mName.data, source->mName.length)].push_back(place);
        for (unsigned child = source->mNumChildren; child > 0; --child)
            pending.emplace_back(source->mChildren[child - 1], place);
    }
    for (size_t i = nodes.size(); i-- > 1;) {
        if (nodes[i].hasMesh)
            nodes[size_t(nodes[i].parent)].hasMesh = true;
    }
    place(RyAffine());
}

void RyForeignTree::place(const RyAffine &top)
{
    for (Node &node : nodes)
        node.world = node.local * (node.parent < 0 ? top : nodes[size_t(node.parent)].world);
}

int RyForeignTree::find(const aiString &name, size_t number) const
{
    const auto found = m_placesOf.find(std::string(name.data, name.length));
    return found == m_placesOf.end() || number >= found->second.size() ? -1 : found->second[number];
}

void RyForeignTree::rename(const QHash<QString, QString> &nameOf)
{
    for (Node &node : nodes)
        node.name = nameOf.value(node.name, node.name);
}
