#include "ryforeign/RyForeignClips.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "ryforeign/RyForeignMorphPlan.h"
#include "ryforeign/RyForeignText.h"

#include <nlohmann/json.hpp>

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

/// The library calls what a morph's clip drives after its node and, behind a star, the number of its geometry.
std::pair<aiString, unsigned> targetOf(const aiMeshMorphAnim &channel)
{
    const std::string name(channel.mName.data, channel.mName.length);
    const size_t star = name.rfind('*');
    if (star == std::string::npos)
        return {aiString(name), 0};
    return {aiString(name.substr(0, star)), unsigned(std::strtoul(name.c_str() + star + 1, nullptr, 10))};
}

double firstTime(const aiAnimation &clip)
{
    double first = 0.0;
    const auto look = [&first](const auto *keys, unsigned count) {
        if (count > 0 && std::isfinite(keys[0].mTime))
            first = std::min(first, keys[0].mTime);
    };
    for (unsigned c = 0; c < clip.mNumChannels; ++c) {
        look(clip.mChannels[c]->mPositionKeys, clip.mChannels[c]->mNumPositionKeys);
        look(clip.mChannels[c]->mRotationKeys, clip.mChannels[c]->mNumRotationKeys);
        look(clip.mChannels[c]->mScalingKeys, clip.mChannels[c]->mNumScalingKeys);
    }
    for (unsigned c = 0; c < clip.mNumMorphMeshChannels; ++c)
        look(clip.mMorphMeshChannels[c]->mKeys, clip.mMorphMeshChannels[c]->mNumKeys);
    return first;
}

} // namespace

std::vector<bool> RyForeignClips::drivenNodes(const RyForeignInput &input, const RyForeignTree &tree)
{
    std::vector<bool> isDriven(tree.nodes.size(), false);
    for (unsigned a = 0; a < input.scene->mNumAnimations; ++a) {
        for (const int node : targetsOf(input, tree, *input.scene->mAnimations[a])) {
            if (node >= 0)
                isDriven[size_t(node)] = true;
        }
    }
    return isDriven;
}

std::vector<int> RyForeignClips::targetsOf(const RyForeignInput &input, const RyForeignTree &tree,
                                           const aiAnimation &clip)
{
    std::map<std::string, size_t> counts; // of the channels so far, by what they drive
    std::vector<int> targets;
    for (unsigned c = 0; c < clip.mNumChannels; ++c) {
        const aiString &name = clip.mChannels[c]->mNodeName;
        const size_t number = input.kind == RyForeignInput::Bvh ? counts[name.C_Str()]++ : 0;
        targets.push_back(tree.find(name, number));
    }
    return targets;
}

void RyForeignClips::write()
{
    for (unsigned a = 0; a < m_input.scene->mNumAnimations; ++a)
        writeClip(*m_input.scene->mAnimations[a], int(a));
    if (m_input.scene->mNumAnimations > 0 && m_input.kind != RyForeignInput::Bvh)
        m_input.say(QStringLiteral("The curves of clips were read as their keys, with straight lines between them"));
    const auto sayOf = [this](QStringList &names, const QString &text) {
        names.removeDuplicates();
        if (!names.isEmpty())
            m_input.say(text.arg(QStringList(names.mid(0, 10)).join(QLatin1String(", "))));
    };
    sayOf(m_unknown, QStringLiteral("Clips drive what is not in the file; these channels are left out: %1"));
    sayOf(m_twice,
          QStringLiteral("A clip drives these more than once, as nodes that share a name do; the first channel "
                         "of each was taken: %1"));
}

void RyForeignClips::writeClip(const aiAnimation &clip, int number)
{
    m_ticks = clip.mTicksPerSecond > 0.0 && std::isfinite(clip.mTicksPerSecond) ? clip.mTicksPerSecond : 25.0;
    m_start = firstTime(clip) / m_ticks; // the format knows no time before 0
    m_times.clear();
    m_morphs.clear();
    m_driven.clear();
    QString name = ryForeignText(clip.mName);
    if (name.isEmpty())
        name = QStringLiteral("Clip %1").arg(number + 1);
    Json entry{{"name", name.toStdString()}, {"channels", Json::array()}, {"samplers", Json::array()}};
    m_clip = &entry;
    const std::vector<int> targets = targetsOf(m_input, m_tree, clip);
    for (unsigned c = 0; c < clip.mNumChannels; ++c)
        writeNode(*clip.mChannels[c], targets[c]);
    for (unsigned c = 0; c < clip.mNumMorphMeshChannels; ++c)
        readMorphs(*clip.mMorphMeshChannels[c]);
    for (const auto &[place, curves] : m_morphs)
        writeMorphs(place, curves);
    m_clip = nullptr;
    if (entry["channels"].empty()) {
        m_input.say(QStringLiteral("The clip \"%1\" drives nothing and is left out").arg(name));
        return;
    }
    m_document.clips().push_back(std::move(entry));
}

void RyForeignClips::writeNode(const aiNodeAnim &channel, int place)
{
    const int node = place < 0 ? -1 : m_nodeOf[size_t(place)];
    if (node < 0) {
        m_unknown.append(ryForeignText(channel.mNodeName));
        return;
    }
    RyForeignKeys positions{3, {}, {}}, rotations{4, {}, {}}, scales{3, {}, {}};
    for (unsigned k = 0; k < channel.mNumPositionKeys; ++k) {
        const aiVectorKey &key = channel.mPositionKeys[k];
        positions.add(seconds(key.mTime), {key.mValue.x, key.mValue.y, key.mValue.z});
    }
    for (unsigned k = 0; k < channel.mNumRotationKeys; ++k) {
        const aiQuatKey &key = channel.mRotationKeys[k];
        const aiQuaternion &q = key.mValue;
        const double length = std::sqrt(double(q.x) * q.x + double(q.y) * q.y + double(q.z) * q.z + double(q.w) * q.w);
        if (length > 1e-6)
            rotations.add(seconds(key.mTime), {q.x / length, q.y / length, q.z / length, q.w / length});
    }
    for (unsigned k = 0; k < channel.mNumScalingKeys; ++k) {
        const aiVectorKey &key = channel.mScalingKeys[k];
        scales.add(seconds(key.mTime), {key.mValue.x, key.mValue.y, key.mValue.z});
    }
    if (const RyForeignTree::Node &driven = m_tree.nodes[size_t(place)]; driven.pivot.hasPoints()) {
        aiVector3D position, scale;
        aiQuaternion rotation;
        driven.source->mTransformation.Decompose(scale, rotation, position);
        positions.addIfNone({position.x, position.y, position.z});
        rotations.addIfNone({rotation.x, rotation.y, rotation.z, rotation.w});
        scales.addIfNone({scale.x, scale.y, scale.z});
        positions = ryPivotedKeys(driven.pivot, positions, rotations, scales);
    }
    bool isFirst = addChannel(node, "translation", std::move(positions));
    isFirst = addChannel(node, "rotation", std::move(rotations)) && isFirst;
    isFirst = addChannel(node, "scale", std::move(scales)) && isFirst;
    if (!isFirst)
        m_twice.append(m_tree.nodes[size_t(place)].name);
}

/// A key names the morphs only that have one at its time, so that each morph gets a curve of its own.
void RyForeignClips::readMorphs(const aiMeshMorphAnim &channel)
{
    const auto [name, geometry] = targetOf(channel);
    const int place = m_tree.find(name);
    if (place < 0 || m_shownBy[size_t(place)] < 0) {
        m_unknown.append(ryForeignText(channel.mName));
        return;
    }
    const RyForeignMorphPlan plan(m_input, *m_tree.nodes[size_t(place)].source);
    if (plan.morphs.empty())
        return;
    std::vector<RyForeignKeys> &curves = m_morphs[place];
    curves.resize(plan.morphs.size(), RyForeignKeys{1, {}, {}});
    for (unsigned k = 0; k < channel.mNumKeys; ++k) {
        const aiMeshMorphKey &key = channel.mKeys[k];
        for (unsigned i = 0; i < key.mNumValuesAndWeights; ++i) {
            if (const int morph = plan.morphOf(geometry, key.mValues[i]); morph >= 0)
                curves[size_t(morph)].add(seconds(key.mTime), {key.mWeights[i]});
        }
    }
}

/// All morphs of a mesh are one channel: at all times at which one of them has a key.
void RyForeignClips::writeMorphs(int place, const std::vector<RyForeignKeys> &curves)
{
    const RyForeignMorphPlan plan(m_input, *m_tree.nodes[size_t(place)].source);
    std::set<float> times;
    for (const RyForeignKeys &curve : curves)
        times.insert(curve.times.begin(), curve.times.end());
    RyForeignKeys keys{int(curves.size()), {times.begin(), times.end()}, {}};
    for (const float time : keys.times) {
        for (size_t morph = 0; morph < curves.size(); ++morph)
            keys.values.push_back(curves[morph].times.empty() ? float(plan.morphs[morph].value)
                                                              : float(curves[morph].at(time)[0]));
    }
    addChannel(m_shownBy[size_t(place)], "weights", std::move(keys));
}

/// Numbers that stay the same need two keys, or one, however many the library made.
bool RyForeignClips::addChannel(int node, const char *path, RyForeignKeys keys)
{
    if (keys.times.empty())
        return true;
    if (!m_driven.emplace(node, path).second)
        return false;
    if (keys.times.size() > 2 && keys.isConstant()) {
        keys.times = {keys.times.front(), keys.times.back()};
        keys.values.resize(2 * size_t(keys.components));
    }
    const bool isMorph = std::string_view(path) == "weights"; // whose numbers stand one by one
    Json sampler;
    sampler["input"] = timesAccessor(keys.times);
    sampler["interpolation"] = "LINEAR";
    sampler["output"] = m_document.addFloatAccessor(keys.values, isMorph ? 1 : keys.components, 0);
    Json &samplers = (*m_clip)["samplers"];
    (*m_clip)["channels"].push_back(
        Json{{"sampler", samplers.size()}, {"target", Json{{"node", node}, {"path", path}}}});
    samplers.push_back(std::move(sampler));
    return true;
}

int RyForeignClips::timesAccessor(const std::vector<float> &times)
{
    const auto [known, isNew] = m_times.emplace(times, -1);
    if (isNew)
        known->second = m_document.addFloatAccessor(times, 1, 0, true);
    return known->second;
}
