#include "rycore/io/gltf/document/RyGltfNodeWalk.h"

#include <QRegularExpression>

std::vector<int> ryGltfPreOrder(const RyGltfModel &model)
{
    std::vector<int> order;
    order.reserve(model.nodes.size());
    std::vector<bool> seen(model.nodes.size(), false);
    const auto visit = [&](int root) {
        std::vector<int> pending{root};
        while (!pending.empty()) {
            const int node = pending.back();
            pending.pop_back();
            if (seen[size_t(node)])
                continue;
            seen[size_t(node)] = true;
            order.push_back(node);
            const std::vector<int> &children = model.nodes[size_t(node)].children;
            pending.insert(pending.end(), children.rbegin(), children.rend());
        }
    };
    for (const int root : model.sceneRoots)
        visit(root);
    for (size_t node = 0; node < model.nodes.size(); ++node) {
        if (model.nodes[node].parent < 0)
            visit(int(node));
    }
    return order;
}

std::vector<RyAffine> ryGltfWorldMaps(const RyGltfModel &model, const std::vector<int> &preOrder)
{
    std::vector<RyAffine> maps(model.nodes.size());
    for (const int index : preOrder) {
        const RyGltfNode &node = model.nodes[size_t(index)];
        maps[size_t(index)] = node.transform.toAffine();
        if (node.parent >= 0)
            maps[size_t(index)] = maps[size_t(index)] * maps[size_t(node.parent)];
    }
    return maps;
}

std::vector<bool> ryGltfRelatedNodes(const RyGltfModel &model, const std::vector<bool> &isMarked)
{
    const std::vector<int> order = ryGltfPreOrder(model);
    std::vector<bool> isBelow = isMarked, isAbove = isMarked;
    for (const int node : order) {
        const int parent = model.nodes[size_t(node)].parent;
        if (parent >= 0 && isBelow[size_t(parent)])
            isBelow[size_t(node)] = true;
    }
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const int parent = model.nodes[size_t(*node)].parent;
        if (parent >= 0 && isAbove[size_t(*node)])
            isAbove[size_t(parent)] = true;
    }
    for (size_t node = 0; node < isBelow.size(); ++node)
        isBelow[node] = isBelow[node] || isAbove[node];
    return isBelow;
}

bool ryGltfMarksEnd(const QString &name)
{
    // Numbered where several have one name. Whole names are written in small letters too, "headnub", but a snub is
    // none.
    static const QRegularExpression marks(
        QStringLiteral("(_end|(?<!^s|[^a-z]s|(?-i:[a-z]S))nub|end site)[._ ]?[0-9]*$"),
        QRegularExpression::CaseInsensitiveOption);
    return marks.match(name).hasMatch();
}
