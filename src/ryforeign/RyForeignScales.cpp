#include "ryforeign/RyForeignScales.h"

#include <assimp/scene.h>

#include <cmath>

QStringList ryScaledOtherwise(const RyForeignInput &input, const RyForeignTree &tree)
{
    if (input.scalingOf.isEmpty())
        return {};
    std::vector<bool> isScaled(tree.nodes.size(), false), isUneven = isScaled;
    const auto note = [&](int node, double x, double y, double z) {
        const auto differ = [](double a, double b) { return std::abs(std::abs(a) - std::abs(b)) > 1e-4 * std::abs(b); };
        if (differ(x, 1.0) || differ(y, 1.0) || differ(z, 1.0))
            isScaled[size_t(node)] = true;
        if (differ(y, x) || differ(z, x))
            isUneven[size_t(node)] = true;
    };
    for (size_t i = 0; i < tree.nodes.size(); ++i) {
        const auto &axes = tree.nodes[i].local.m;
        const auto length = [&axes](int axis) { return std::hypot(axes[axis][0], axes[axis][1], axes[axis][2]); };
        note(int(i), length(0), length(1), length(2));
    }
    for (unsigned a = 0; a < input.scene->mNumAnimations; ++a) {
        const aiAnimation &clip = *input.scene->mAnimations[a];
        for (unsigned c = 0; c < clip.mNumChannels; ++c) {
            const aiNodeAnim &channel = *clip.mChannels[c];
            const int node = tree.find(channel.mNodeName);
            for (unsigned k = 0; node >= 0 && k < channel.mNumScalingKeys; ++k) {
                const aiVector3D &scale = channel.mScalingKeys[k].mValue;
                note(node, scale.x, scale.y, scale.z);
            }
        }
    }
    QStringList names;
    for (size_t i = 0; i < tree.nodes.size(); ++i) {
        const RyForeignTree::Node &node = tree.nodes[i];
        if (node.parent < 0)
            continue;
        const bool isBelowUneven = isUneven[size_t(node.parent)]; // where all axes are alike it comes to the same
        const RyForeignScaling scaling = input.scalingOf.value(node.name, RyForeignScaling::Usual);
        if ((scaling == RyForeignScaling::Apart && isBelowUneven) ||
            (scaling == RyForeignScaling::NotOfParent && isScaled[size_t(node.parent)]))
            names.append(input.nameOf.value(node.name, node.name));
        if (isBelowUneven)
            isUneven[i] = true;
    }
    return names;
}
