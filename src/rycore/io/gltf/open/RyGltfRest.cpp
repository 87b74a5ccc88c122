#include "rycore/io/gltf/open/RyGltfRest.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace {

RyAffine fromSixteen(const float *values)
{
    RyAffine map;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            map.m[row][column] = double(values[4 * row + column]);
    }
    return map;
}

bool isFinite(const RyAffine &map)
{
    for (const auto &row : map.m) {
        for (const double value : row) {
            if (!std::isfinite(value))
                return false;
        }
    }
    return true;
}

bool isIdentity(const RyAffine &map)
{
    return map == RyAffine();
}

/// Largest difference of two maps: linear parts as they are, translations in units of `length`.
double difference(const RyAffine &a, const RyAffine &b, double length)
{
    double scale = 0.0;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            scale = std::max({scale, std::abs(a.m[row][column]), std::abs(b.m[row][column])});
    }
    double largest = 0.0;
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row)
            largest = std::max(largest, std::abs(a.m[row][column] - b.m[row][column]) / std::max(scale, 1e-300));
        largest = std::max(largest, std::abs(a.m[3][column] - b.m[3][column]) / std::max(length, 1e-300));
    }
    return largest;
}

std::vector<RyAffine> readInverseBinds(const RyGltfDocument &document, const RyGltfSkin &skin)
{
    std::vector<RyAffine> result(skin.joints.size());
    if (skin.inverseBindMatrices < 0)
        return result;
    const std::vector<float> values = document.readFloats(skin.inverseBindMatrices);
    for (size_t i = 0; i < result.size() && 16 * i + 16 <= values.size(); ++i)
        result[i] = fromSixteen(values.data() + 16 * i);
    return result;
}

/// Why the inverse bind matrices of a skin cannot be used; empty when they can.
QString whyUnusable(const RyGltfSkin &skin, const std::vector<RyAffine> &inverseBinds)
{
    if (skin.inverseBindMatrices < 0)
        return QStringLiteral("has no inverse bind matrices");
    if (skin.joints.size() > 1 && std::all_of(inverseBinds.begin(), inverseBinds.end(), isIdentity))
        return QStringLiteral("has only identities as inverse bind matrices");
    for (size_t i = 0; i < inverseBinds.size(); ++i) {
        RyAffine inverse;
        if (!isFinite(inverseBinds[i]) || !inverseBinds[i].invert(inverse))
            return QStringLiteral("has an inverse bind matrix that cannot be inverted (joint %1)").arg(i);
    }
    return {};
}

} // namespace

RyGltfRest ryGltfFindRest(const RyGltfDocument &document, const RyGltfJointSet &set,
                          const std::vector<RyAffine> &worldMaps, const RyGltfRestOf &restOf)
{
    const RyGltfModel &model = document.model();
    const size_t boneCount = set.bones.size();
    RyGltfRest rest;
    std::map<int, int> boneOfNode;
    for (size_t i = 0; i < boneCount; ++i)
        boneOfNode[set.bones[i]] = int(i);

    rest.bind.resize(boneCount);
    rest.localPose.resize(boneCount);
    std::vector<bool> known(boneCount, false);
    double reach = 0.0; // how far the joints stand apart and from the world's origin, by which positions are compared
    for (size_t i = 0; i < boneCount; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            const double place = worldMaps[size_t(set.bones[i])].m[3][axis];
            reach =
                std::max({reach, std::abs(place - worldMaps[size_t(set.bones[0])].m[3][axis]), 0.01 * std::abs(place)});
        }
    }

    const auto localOf = [&](size_t bone) { return model.nodes[size_t(set.bones[bone])].transform.toAffine(); };
    // Bind of a bone that no skin binds: as the file's node stands to its parent.
    const auto derive = [&](size_t bone) {
        std::vector<size_t> chain;
        int at = int(bone);
        for (; at >= 0 && !known[size_t(at)]; at = set.parents[size_t(at)])
            chain.push_back(size_t(at));
        for (; !chain.empty(); chain.pop_back()) {
            const size_t next = chain.back();
            const int parent = set.parents[next];
            rest.bind[next] =
                parent < 0 ? worldMaps[size_t(set.bones[next])] : localOf(next) * rest.bind[size_t(parent)];
            if (restOf)
                rest.bind[next] = restOf(set.bones[next], rest.bind[next]);
            known[next] = true;
        }
    };

    const auto byAnchor = [&](size_t s) {
        // The joint by which the skin finds its place: the topmost whose bind is known, otherwise the topmost of all.
        const RyGltfSkin &skin = model.skins[size_t(set.skins[s])];
        size_t anchor = 0;
        bool anchorKnown = false;
        int anchorPlace = std::numeric_limits<int>::max();
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            const int bone = boneOfNode.at(skin.joints[j]);
            if (std::make_pair(!known[size_t(bone)], bone) < std::make_pair(!anchorKnown, anchorPlace)) {
                anchor = j;
                anchorKnown = known[size_t(bone)];
                anchorPlace = bone;
            }
        }
        derive(size_t(anchorPlace));
        return rest.inverseBinds[s][anchor] * rest.bind[size_t(anchorPlace)];
    };

    rest.isStored = !set.skins.empty();
    for (size_t s = 0; s < set.skins.size() && !rest.rebound; ++s) {
        const RyGltfSkin &skin = model.skins[size_t(set.skins[s])];
        rest.inverseBinds.push_back(readInverseBinds(document, skin));
        const std::vector<RyAffine> &inverseBinds = rest.inverseBinds.back();
        const QString why = whyUnusable(skin, inverseBinds);
        const QString skinName = skin.name.isEmpty() ? QStringLiteral("skin %1").arg(set.skins[s])
                                                     : QStringLiteral("skin \"%1\"").arg(skin.name);
        if (!why.isEmpty()) {
            rest.rebound = true;
            rest.reason = skinName + QLatin1Char(' ') + why;
            break;
        }
        RyAffine toFigure;
        if (!RyTreeExtras::findToFigure(document, set.skins[s], toFigure)) {
            toFigure = byAnchor(s);
            rest.isStored = false;
        }
        rest.toFigure.push_back(toFigure);
        // The bones that this call of derive made known on the way keep their place.
        std::vector<bool> seen(boneCount, false);
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            const size_t bone = size_t(boneOfNode.at(skin.joints[j]));
            const RyAffine bind = inverseBinds[j].inverse() * toFigure;
            if (known[bone] && !seen[bone]) {
                if (difference(bind, rest.bind[bone], reach) > 1e-3) {
                    rest.rebound = true;
                    rest.reason = QStringLiteral("%1 binds the joint \"%2\" elsewhere than another skin does")
                                      .arg(skinName, model.nodes[size_t(skin.joints[j])].name);
                    break;
                }
            } else if (!seen[bone]) {
                rest.bind[bone] = bind;
            }
            known[bone] = true;
            seen[bone] = true;
        }
    }

    if (rest.rebound) {
        rest.isStored = false;
        rest.inverseBinds.clear();
        rest.toFigure.assign(set.skins.size(), RyAffine());
        for (const int skin : set.skins)
            rest.inverseBinds.push_back(readInverseBinds(document, model.skins[size_t(skin)]));
        for (size_t i = 0; i < boneCount; ++i)
            rest.bind[i] = worldMaps[size_t(set.bones[i])];
        return rest;
    }
    for (size_t i = 0; i < boneCount; ++i) {
        if (!known[i])
            derive(i);
    }
    for (size_t i = 0; i < boneCount; ++i) {
        const int parent = set.parents[i];
        rest.localPose[i] = rest.bind[i].inverse() *
                            (parent < 0 ? worldMaps[size_t(set.bones[i])] : localOf(i) * rest.bind[size_t(parent)]);
    }
    return rest;
}
