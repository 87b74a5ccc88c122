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

/// Finds the connected sets of one file: joints are united along their skins and along what stands between them, then
/// the sets are listed in the order of the file.
class Finder
{
public:
    Finder(const RyGltfModel &model, const std::vector<int> &preOrder, const RyGltfFigureMarks &marks);
    std::vector<RyGltfJointSet> find();

private:
    void leaveOut(const std::vector<bool> &isLeftOut);
    void uniteSkins();
    void uniteWithJointsAbove();
    void boneAllBetween(int joint, int above);
    void listBones();
    void listSkins();

    const RyGltfModel &m_model;
    const std::vector<int> &m_preOrder;
    std::vector<bool> m_isLeftOut; // per skin
    // Per node of the file.
    std::vector<bool> m_carries;
    DisjointSets m_united;
    std::vector<bool> m_isJoint;
    std::vector<bool> m_isBone;
    std::vector<int> m_placeInSet;
    std::map<int, size_t> m_setOfRoot; // by what stands for a united set
    std::vector<RyGltfJointSet> m_result;
};

Finder::Finder(const RyGltfModel &model, const std::vector<int> &preOrder, const RyGltfFigureMarks &marks)
    : m_model(model), m_preOrder(preOrder), m_carries(marks.carries), m_united(model.nodes.size()),
      m_isJoint(model.nodes.size(), false), m_isBone(model.nodes.size(), false), m_placeInSet(model.nodes.size(), -1)
{
    m_carries.resize(model.nodes.size(), false);
    leaveOut(marks.isLeftOut);
}

std::vector<RyGltfJointSet> Finder::find()
{
    uniteSkins();
    uniteWithJointsAbove();
    listBones();
    listSkins();
    return std::move(m_result);
}

/// A skin none of whose joints is walked is of what was removed: no node would be there for its bones.
void Finder::leaveOut(const std::vector<bool> &isLeftOut)
{
    std::vector<bool> isWalked(m_model.nodes.size(), false);
    for (const int node : m_preOrder)
        isWalked[size_t(node)] = true;
    for (size_t skin = 0; skin < m_model.skins.size(); ++skin) {
        const std::vector<int> &joints = m_model.skins[skin].joints;
        m_isLeftOut.push_back(
            (skin < isLeftOut.size() && isLeftOut[skin]) ||
            std::none_of(joints.begin(), joints.end(), [&](int joint) { return isWalked[size_t(joint)]; }));
    }
}

void Finder::uniteSkins()
{
    for (size_t skin = 0; skin < m_model.skins.size(); ++skin) {
        if (m_isLeftOut[skin])
            continue;
        const std::vector<int> &joints = m_model.skins[skin].joints;
        for (const int joint : joints) {
            m_isJoint[size_t(joint)] = m_isBone[size_t(joint)] = true;
            m_united.unite(joint, joints.front());
        }
    }
}

/// Skins whose joints stand above one another move together. One walk down: the nearest joint above a node is its
/// parent or the parent's nearest.
void Finder::uniteWithJointsAbove()
{
    std::vector<int> jointAbove(m_model.nodes.size(), -1);
    for (const int node : m_preOrder) {
        const int parent = m_model.nodes[size_t(node)].parent;
        if (parent >= 0 && !m_carries[size_t(node)])
            jointAbove[size_t(node)] = m_isJoint[size_t(parent)] ? parent : jointAbove[size_t(parent)];
        if (m_isJoint[size_t(node)] && jointAbove[size_t(node)] >= 0)
            boneAllBetween(node, jointAbove[size_t(node)]);
    }
}

/// A plain node between two joints carries what stands below it, as a bone does.
void Finder::boneAllBetween(int joint, int above)
{
    m_united.unite(joint, above);
    for (int node = m_model.nodes[size_t(joint)].parent; node >= 0 && !m_isBone[size_t(node)];
         node = m_model.nodes[size_t(node)].parent) {
        m_isBone[size_t(node)] = true;
        m_united.unite(node, joint);
    }
}

void Finder::listBones()
{
    for (const int node : m_preOrder) {
        if (!m_isBone[size_t(node)])
            continue;
        const auto [entry, isNew] = m_setOfRoot.try_emplace(m_united.find(node), m_result.size());
        if (isNew)
            m_result.emplace_back();
        const int parent = m_model.nodes[size_t(node)].parent;
        const bool hasBoneAbove = parent >= 0 && m_isBone[size_t(parent)];
        m_placeInSet[size_t(node)] =
            m_result[entry->second].addBone(node, hasBoneAbove ? m_placeInSet[size_t(parent)] : -1);
    }
}

/// In order of their topmost joint, so that the order does not depend on how the file lists its skins.
void Finder::listSkins()
{
    std::vector<std::pair<int, int>> order; // topmost joint's place, skin
    for (size_t skin = 0; skin < m_model.skins.size(); ++skin) {
        if (m_isLeftOut[skin])
            continue;
        int top = int(m_model.nodes.size());
        for (const int joint : m_model.skins[skin].joints) {
            if (m_placeInSet[size_t(joint)] >= 0)
                top = std::min(top, m_placeInSet[size_t(joint)]);
        }
        order.emplace_back(top, int(skin));
    }
    std::sort(order.begin(), order.end());
    for (const auto &[top, skin] : order) {
        const int joint = m_model.skins[size_t(skin)].joints.front();
        m_result[m_setOfRoot.at(m_united.find(joint))].skins.push_back(skin);
    }
}

} // namespace

std::vector<RyGltfJointSet> ryGltfFindJointSets(const RyGltfModel &model, const std::vector<int> &preOrder,
                                                const RyGltfFigureMarks &marks)
{
    return Finder(model, preOrder, marks).find();
}
