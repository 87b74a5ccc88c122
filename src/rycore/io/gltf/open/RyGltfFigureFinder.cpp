#include "rycore/io/gltf/open/RyGltfFigureFinder.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace {

class DisjointSets
{
public:
    explicit DisjointSets(size_t count) : m_above(count) { std::iota(m_above.begin(), m_above.end(), 0); }
    int find(int item)
    {
        while (m_above[size_t(item)] != item) {
            m_above[size_t(item)] = m_above[size_t(m_above[size_t(item)])];
            item = m_above[size_t(item)];
        }
        return item;
    }
    void unite(int a, int b) { m_above[size_t(find(a))] = find(b); }

private:
    std::vector<int> m_above;
};

} // namespace

std::vector<RyGltfJointSet> ryGltfFindJointSets(const RyGltfModel &model, const std::vector<int> &preOrder,
                                                const std::vector<bool> &isLeftOut)
{
    const size_t count = model.nodes.size();
    std::vector<bool> isWalked(count, false);
    for (const int node : preOrder)
        isWalked[size_t(node)] = true;
    const auto leftOut = [&](size_t skin) {
        const std::vector<int> &joints = model.skins[skin].joints;
        return (skin < isLeftOut.size() && isLeftOut[skin]) ||
               std::none_of(joints.begin(), joints.end(), [&](int joint) { return isWalked[size_t(joint)]; });
    };
    std::vector<bool> isJoint(count, false);
    std::vector<bool> isBone(count, false);
    DisjointSets sets(count);
    for (size_t s = 0; s < model.skins.size(); ++s) {
        const RyGltfSkin &skin = model.skins[s];
        for (const int joint : leftOut(s) ? std::vector<int>() : skin.joints) {
            isJoint[size_t(joint)] = isBone[size_t(joint)] = true;
            sets.unite(joint, skin.joints.front());
        }
    }
    // The nearest joint above each node, in one walk down.
    std::vector<int> jointAbove(count, -1);
    for (const int node : preOrder) {
        const int parent = model.nodes[size_t(node)].parent;
        if (parent >= 0)
            jointAbove[size_t(node)] = isJoint[size_t(parent)] ? parent : jointAbove[size_t(parent)];
        if (!isJoint[size_t(node)] || jointAbove[size_t(node)] < 0)
            continue;
        sets.unite(node, jointAbove[size_t(node)]);
        for (int between = parent; between >= 0 && !isBone[size_t(between)];
             between = model.nodes[size_t(between)].parent) {
            isBone[size_t(between)] = true;
            sets.unite(between, node);
        }
    }

    std::vector<RyGltfJointSet> result;
    std::map<int, size_t> setOfRoot;
    std::vector<int> placeInSet(count, -1);
    for (const int node : preOrder) {
        if (!isBone[size_t(node)])
            continue;
        const auto [entry, isNew] = setOfRoot.try_emplace(sets.find(node), result.size());
        if (isNew)
            result.emplace_back();
        RyGltfJointSet &set = result[entry->second];
        placeInSet[size_t(node)] = int(set.bones.size());
        set.bones.push_back(node);
        const int parent = model.nodes[size_t(node)].parent;
        set.parents.push_back(parent >= 0 && isBone[size_t(parent)] ? placeInSet[size_t(parent)] : -1);
    }
    std::vector<std::pair<int, int>> skinOrder; // topmost joint's place, skin
    for (size_t skin = 0; skin < model.skins.size(); ++skin) {
        if (leftOut(skin))
            continue;
        int top = int(count);
        for (const int joint : model.skins[skin].joints) {
            if (placeInSet[size_t(joint)] >= 0)
                top = std::min(top, placeInSet[size_t(joint)]);
        }
        skinOrder.emplace_back(top, int(skin));
    }
    std::sort(skinOrder.begin(), skinOrder.end());
    for (const auto &[top, skin] : skinOrder) {
        const int joint = model.skins[size_t(skin)].joints.front();
        result[setOfRoot.at(sets.find(joint))].skins.push_back(skin);
    }
    return result;
}
