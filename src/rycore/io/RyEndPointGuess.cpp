#include "rycore/io/RyEndPointGuess.h"

#include <algorithm>
#include <cmath>

namespace {

/// The coordinate axis (with its sign) nearest to a direction.
RyVec3 nearestAxis(const RyVec3 &direction)
{
    int best = 0;
    for (int axis = 1; axis < 3; ++axis) {
        if (std::abs(direction[axis]) > std::abs(direction[best]))
            best = axis;
    }
    return RyVec3::axis(best) * (direction[best] < 0.0f ? -1.0f : 1.0f);
}

RyVec3 meanOf(const std::vector<int> &vertices, const std::vector<RyVec3> &positions)
{
    double sum[3] = {0, 0, 0};
    for (const int vertex : vertices) {
        for (int axis = 0; axis < 3; ++axis)
            sum[axis] += double(positions[size_t(vertex)][axis]);
    }
    const double count = vertices.empty() ? 1.0 : double(vertices.size());
    return {float(sum[0] / count), float(sum[1] / count), float(sum[2] / count)};
}

/// How far vertices reach from a point along a direction: the 98th percentile.
float reach(const std::vector<int> &vertices, const std::vector<RyVec3> &positions, const RyVec3 &from,
            const RyVec3 &direction)
{
    std::vector<float> distances;
    distances.reserve(vertices.size());
    for (const int vertex : vertices)
        distances.push_back((positions[size_t(vertex)] - from).dot(direction));
    if (distances.empty())
        return 0.0f;
    const size_t place = std::min(distances.size() - 1, size_t(0.98 * double(distances.size())));
    std::nth_element(distances.begin(), distances.begin() + long(place), distances.end());
    return distances[place];
}

RyVec3 leafEnd(const RyEndPointBone &leaf, const RyEndPointBone *parent, const RyVec3 &parentEnd,
               const std::vector<RyVec3> &positions, float figureHeight)
{
    const RyVec3 toVertices = leaf.vertices.empty() ? RyVec3() : meanOf(leaf.vertices, positions) - leaf.origin;
    RyVec3 axis(0, 1, 0);
    float distance = 0.1f * figureHeight;
    if (parent) {
        const RyVec3 inParent = parent->orientation.inverse().multVec(parentEnd - parent->origin);
        axis = nearestAxis(inParent);
        if (inParent.length() > 1e-4f * figureHeight)
            distance = inParent.length();
        const float toParent = (leaf.origin - parent->origin).length();
        if (toParent > 1e-4f * figureHeight)
            distance = toParent;
    } else if (!leaf.vertices.empty()) {
        axis = nearestAxis(leaf.orientation.inverse().multVec(toVertices));
    }
    RyVec3 direction = leaf.orientation.multVec(axis);
    // The parent's axis says along which line; the vertices say which way, and overrule it where they lie clearly off
    // it.
    if (!leaf.vertices.empty()) {
        const float along = toVertices.dot(direction);
        if (along < 0.35f * toVertices.length()) {
            direction = leaf.orientation.multVec(nearestAxis(leaf.orientation.inverse().multVec(toVertices)));
        }
    }
    float length = reach(leaf.vertices, positions, leaf.origin, direction);
    if (leaf.vertices.empty())
        length = 0.5f * distance;
    return leaf.origin + direction * std::clamp(length, 0.1f * distance, 3.0f * distance);
}

} // namespace

std::vector<RyVec3> ryGuessEndPoints(const std::vector<RyEndPointBone> &bones, const std::vector<RyVec3> &positions,
                                     float figureHeight)
{
    const size_t count = bones.size();
    std::vector<std::vector<int>> children(count);
    std::vector<int> subtree(count, 1);
    for (size_t i = count; i-- > 0;) {
        if (bones[i].parent >= 0)
            subtree[size_t(bones[i].parent)] += subtree[i];
    }
    for (size_t i = 0; i < count; ++i) {
        if (bones[i].parent >= 0)
            children[size_t(bones[i].parent)].push_back(int(i));
    }

    const float nowhere = 1e-5f * figureHeight;
    std::vector<RyVec3> ends(count);
    for (size_t i = 0; i < count; ++i) { // parents come first, so a leaf finds its parent's end
        const RyEndPointBone &bone = bones[i];
        const RyEndPointBone *parent = bone.parent >= 0 ? &bones[size_t(bone.parent)] : nullptr;
        const std::vector<int> &below = children[i];
        bool found = bone.hasEndMarker;
        if (found) {
            ends[i] = bone.endMarker;
        } else if (below.size() == 1) {
            ends[i] = bones[size_t(below[0])].origin;
            found = true;
        } else if (!below.empty()) {
            std::vector<int> bySize = below;
            std::stable_sort(bySize.begin(), bySize.end(),
                             [&](int a, int b) { return subtree[size_t(a)] > subtree[size_t(b)]; });
            if (double(subtree[size_t(bySize[0])]) > 1.5 * double(subtree[size_t(bySize[1])])) {
                ends[i] = bones[size_t(bySize[0])].origin;
            } else {
                RyVec3 sum;
                for (const int child : below)
                    sum += bones[size_t(child)].origin;
                ends[i] = sum / float(below.size());
            }
            found = true;
        }
        if (!found || (ends[i] - bone.origin).length() <= nowhere)
            ends[i] =
                leafEnd(bone, parent, bone.parent >= 0 ? ends[size_t(bone.parent)] : RyVec3(), positions, figureHeight);
    }
    return ends;
}
