#include "rycore/io/gltf/open/RyGltfRest.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include <algorithm>
#include <cmath>

namespace {

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
        result[i] = ryGltfMatrixAt(values, i);
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

QString nameOf(const RyGltfModel &model, int skin)
{
    const QString &name = model.skins[size_t(skin)].name;
    return name.isEmpty() ? QStringLiteral("skin %1").arg(skin) : QStringLiteral("skin \"%1\"").arg(name);
}

/// Finds the rest of one set of joints. Skins are taken one after the other: the first says where its joints rest, each
/// later one finds its place by what is known then, and must agree with it.
class RestFinder
{
public:
    RestFinder(const RyGltfDocument &document, const RyGltfJointSet &set, const std::vector<RyAffine> &nodeToWorld,
               const RyGltfRestOf &restOf);
    RyGltfRest find();

private:
    const RyAffine &nodeToWorld(size_t bone) const { return m_nodeToWorld[size_t(m_set.bones[bone])]; }
    RyAffine posedToFigure(size_t bone) const;
    double findReach() const;
    bool addSkin(size_t place);
    bool bindJoints(size_t place);
    RyAffine meshToFigureByAnchor(size_t place);
    void derive(size_t bone);
    void fallBackToNodePose();
    void findLocalPoses();

    const RyGltfDocument &m_document;
    const RyGltfModel &m_model;
    const RyGltfJointSet &m_set;
    const std::vector<RyAffine> &m_nodeToWorld; // per node of the file
    const RyGltfRestOf &m_restOf;
    RyGltfRest m_rest;
    std::vector<bool> m_isKnown; // per bone, whether its bind is final
    double m_reach = 0.0;        // file units
};

RestFinder::RestFinder(const RyGltfDocument &document, const RyGltfJointSet &set,
                       const std::vector<RyAffine> &nodeToWorld, const RyGltfRestOf &restOf)
    : m_document(document), m_model(document.model()), m_set(set), m_nodeToWorld(nodeToWorld), m_restOf(restOf),
      m_isKnown(set.bones.size(), false), m_reach(findReach())
{
    m_rest.bind.resize(set.bones.size());
    m_rest.localPose.resize(set.bones.size());
}

RyGltfRest RestFinder::find()
{
    m_rest.isStored = !m_set.skins.empty();
    for (size_t place = 0; place < m_set.skins.size(); ++place) {
        if (!addSkin(place)) {
            fallBackToNodePose();
            return std::move(m_rest);
        }
    }
    for (size_t bone = 0; bone < m_set.bones.size(); ++bone)
        derive(bone);
    findLocalPoses();
    return std::move(m_rest);
}

/// From the joint's space, as the file's node stands to its parent, to figure space with the parent at rest.
RyAffine RestFinder::posedToFigure(size_t bone) const
{
    const int parent = m_set.parents[bone];
    return parent < 0 ? nodeToWorld(bone)
                      : m_model.nodes[size_t(m_set.bones[bone])].transform.toAffine() * m_rest.bind[size_t(parent)];
}

/// How far the joints stand apart and from the world's origin: positions of a large figure, or of one that stands far
/// out, cannot agree to the same length as those of a small one.
double RestFinder::findReach() const
{
    double reach = 0.0;
    for (size_t bone = 0; bone < m_set.bones.size(); ++bone) {
        for (int axis = 0; axis < 3; ++axis) {
            const double place = nodeToWorld(bone).m[3][axis];
            reach = std::max({reach, std::abs(place - nodeToWorld(0).m[3][axis]), 0.01 * std::abs(place)});
        }
    }
    return reach;
}

/// False with a reason when the rest cannot be had from the skins.
bool RestFinder::addSkin(size_t place)
{
    const int index = m_set.skins[place];
    const RyGltfSkin &skin = m_model.skins[size_t(index)];
    m_rest.inverseBinds.push_back(readInverseBinds(m_document, skin));
    const QString why = whyUnusable(skin, m_rest.inverseBinds.back());
    if (!why.isEmpty()) {
        m_rest.reason = nameOf(m_model, index) + QLatin1Char(' ') + why;
        return false;
    }
    RyAffine meshToFigure;
    if (!RyTreeExtras::findToFigure(m_document, index, meshToFigure)) {
        meshToFigure = meshToFigureByAnchor(place);
        m_rest.isStored = false;
    }
    m_rest.toFigure.push_back(meshToFigure);
    return bindJoints(place);
}

/// Joints that an earlier skin bound, or that were derived from such, keep their place; this skin must agree.
bool RestFinder::bindJoints(size_t place)
{
    const RyGltfSkin &skin = m_model.skins[size_t(m_set.skins[place])];
    std::vector<bool> isBoundHere(m_set.bones.size(), false);
    for (size_t j = 0; j < skin.joints.size(); ++j) {
        const size_t bone = size_t(m_set.boneOf(skin.joints[j]));
        const RyAffine bind = m_rest.inverseBinds[place][j].inverse() * m_rest.toFigure[place];
        if (isBoundHere[bone])
            continue;
        if (!m_isKnown[bone]) {
            m_rest.bind[bone] = bind;
        } else if (difference(bind, m_rest.bind[bone], m_reach) > 1e-3) {
            m_rest.reason = QStringLiteral("%1 binds the joint \"%2\" elsewhere than another skin does")
                                .arg(nameOf(m_model, m_set.skins[place]), m_model.nodes[size_t(skin.joints[j])].name);
            return false;
        }
        m_isKnown[bone] = isBoundHere[bone] = true;
    }
    return true;
}

/// A file says where joints are and how vertices follow them, not where a mesh space lies: the skin is put where one
/// joint of it stands, the topmost whose bind is known, otherwise the topmost of all.
RyAffine RestFinder::meshToFigureByAnchor(size_t place)
{
    const std::vector<int> bones = m_set.bonesOf(m_model.skins[size_t(m_set.skins[place])]);
    const auto isBefore = [this](int a, int b) {
        return std::make_pair(!m_isKnown[size_t(a)], a) < std::make_pair(!m_isKnown[size_t(b)], b);
    };
    const auto anchor = std::min_element(bones.begin(), bones.end(), isBefore);
    derive(size_t(*anchor));
    return m_rest.inverseBinds[place][size_t(anchor - bones.begin())] * m_rest.bind[size_t(*anchor)];
}

/// Bind of a bone that no skin binds, and of those above it: as the file's node stands to its parent.
void RestFinder::derive(size_t bone)
{
    std::vector<size_t> chain;
    for (int at = int(bone); at >= 0 && !m_isKnown[size_t(at)]; at = m_set.parents[size_t(at)])
        chain.push_back(size_t(at));
    for (; !chain.empty(); chain.pop_back()) {
        const size_t next = chain.back();
        m_rest.bind[next] = posedToFigure(next);
        if (m_restOf)
            m_rest.bind[next] = m_restOf(m_set.bones[next], m_rest.bind[next]);
        m_isKnown[next] = true;
    }
}

/// Without usable matrices the nodes are all that the file says: they become the rest, unposed.
void RestFinder::fallBackToNodePose()
{
    m_rest.rebound = true;
    m_rest.isStored = false;
    m_rest.inverseBinds.clear();
    for (const int skin : m_set.skins)
        m_rest.inverseBinds.push_back(readInverseBinds(m_document, m_model.skins[size_t(skin)]));
    m_rest.toFigure.assign(m_set.skins.size(), RyAffine());
    for (size_t bone = 0; bone < m_set.bones.size(); ++bone)
        m_rest.bind[bone] = nodeToWorld(bone);
}

void RestFinder::findLocalPoses()
{
    for (size_t bone = 0; bone < m_set.bones.size(); ++bone)
        m_rest.localPose[bone] = m_rest.bind[bone].inverse() * posedToFigure(bone);
}

} // namespace

RyGltfRest ryGltfFindRest(const RyGltfDocument &document, const RyGltfJointSet &set,
                          const std::vector<RyAffine> &nodeToWorld, const RyGltfRestOf &restOf)
{
    return RestFinder(document, set, nodeToWorld, restOf).find();
}
