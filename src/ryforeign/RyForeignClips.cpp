#include "ryforeign/RyForeignClips.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "ryforeign/RyForeignMorphs.h"
#include "ryforeign/RyForeignText.h"

#include <nlohmann/json.hpp>

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace {

/// The library calls what a morph's clip drives after its node and, behind a star, the number of its mesh.
aiString nodeNameOf(const aiMeshMorphAnim &channel)
{
    const std::string name(channel.mName.data, channel.mName.length);
    const size_t star = name.rfind('*');
    return aiString(star == std::string::npos ? name : name.substr(0, star));
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

/// Keys that are not finite, or not later than the one before, make no curve.
void RyForeignClips::Keys::add(double time, std::initializer_list<double> numbers)
{
    const auto isFinite = [](double number) { return std::isfinite(number); };
    if (!isFinite(time) || !std::all_of(numbers.begin(), numbers.end(), isFinite))
        return;
    if (!times.empty() && !(float(time) > times.back()))
        return;
    times.push_back(float(time));
    for (const double number : numbers)
        values.push_back(float(number));
}

bool RyForeignClips::Keys::isConstant() const
{
    for (size_t i = size_t(components); i < values.size(); ++i) {
        if (values[i] != values[i % size_t(components)])
            return false;
    }
    return true;
}

std::vector<bool> RyForeignClips::drivenNodes(const RyForeignInput &input, const RyForeignTree &tree)
{
    std::vector<bool> isDriven(tree.nodes.size(), false);
    for (unsigned a = 0; a < input.scene->mNumAnimations; ++a) {
        const aiAnimation &clip = *input.scene->mAnimations[a];
        for (unsigned c = 0; c < clip.mNumChannels; ++c) {
            if (const int node = tree.find(clip.mChannels[c]->mNodeName); node >= 0)
                isDriven[size_t(node)] = true;
        }
    }
    return isDriven;
}

void RyForeignClips::write()
{
    for (unsigned a = 0; a < m_input.scene->mNumAnimations; ++a)
        writeClip(*m_input.scene->mAnimations[a], int(a));
    if (m_input.scene->mNumAnimations > 0 && m_input.kind != RyForeignInput::Bvh)
        m_input.say(QStringLiteral("The curves of clips were read as their keys, with straight lines between them"));
    if (!m_unknown.isEmpty()) {
        m_unknown.removeDuplicates();
        m_input.say(QStringLiteral("Clips drive what is not in the file; these channels are left out: %1")
                        .arg(QStringList(m_unknown.mid(0, 10)).join(QLatin1String(", "))));
    }
}

void RyForeignClips::writeClip(const aiAnimation &clip, int number)
{
    m_ticks = clip.mTicksPerSecond > 0.0 && std::isfinite(clip.mTicksPerSecond) ? clip.mTicksPerSecond : 25.0;
    m_start = firstTime(clip) / m_ticks; // the format knows no time before 0
    m_times.clear();
    QString name = ryForeignText(clip.mName);
    if (name.isEmpty())
        name = QStringLiteral("Clip %1").arg(number + 1);
    Json entry{{"name", name.toStdString()}, {"channels", Json::array()}, {"samplers", Json::array()}};
    m_clip = &entry;
    for (unsigned c = 0; c < clip.mNumChannels; ++c)
        writeNode(*clip.mChannels[c]);
    for (unsigned c = 0; c < clip.mNumMorphMeshChannels; ++c)
        writeMorphs(*clip.mMorphMeshChannels[c]);
    m_clip = nullptr;
    if (entry["channels"].empty()) {
        m_input.say(QStringLiteral("The clip \"%1\" drives nothing and is left out").arg(name));
        return;
    }
    m_document.clips().push_back(std::move(entry));
}

void RyForeignClips::writeNode(const aiNodeAnim &channel)
{
    const int place = m_tree.find(channel.mNodeName);
    const int node = place < 0 ? -1 : m_nodeOf[size_t(place)];
    if (node < 0) {
        m_unknown.append(ryForeignText(channel.mNodeName));
        return;
    }
    Keys positions{3, {}, {}}, rotations{4, {}, {}}, scales{3, {}, {}};
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
    addChannel(node, "translation", std::move(positions));
    addChannel(node, "rotation", std::move(rotations));
    addChannel(node, "scale", std::move(scales));
}

void RyForeignClips::writeMorphs(const aiMeshMorphAnim &channel)
{
    const int place = m_tree.find(nodeNameOf(channel));
    const int node = place < 0 ? -1 : m_nodeOf[size_t(place)];
    const aiNode *source = place < 0 ? nullptr : m_tree.nodes[size_t(place)].source;
    if (node < 0 || source->mNumMeshes == 0) {
        m_unknown.append(ryForeignText(channel.mName));
        return;
    }
    const aiMesh &mesh = *m_input.scene->mMeshes[source->mMeshes[0]];
    const QStringList names = RyForeignMorphs::namesOf(m_input, *source);
    if (names.isEmpty())
        return;
    Keys keys{int(names.size()), {}, {}};
    for (unsigned k = 0; k < channel.mNumKeys; ++k) {
        const aiMeshMorphKey &key = channel.mKeys[k];
        const double time = seconds(key.mTime);
        if (!std::isfinite(time) || (!keys.times.empty() && !(float(time) > keys.times.back())))
            continue;
        keys.times.push_back(float(time));
        const size_t first = keys.values.size();
        keys.values.resize(first + size_t(names.size()), 0.0f);
        for (unsigned i = 0; i < key.mNumValuesAndWeights; ++i) {
            if (key.mValues[i] >= mesh.mNumAnimMeshes || !std::isfinite(key.mWeights[i]))
                continue;
            keys.values[first + size_t(names.indexOf(RyForeignMorphs::nameOf(mesh, key.mValues[i])))] =
                float(key.mWeights[i]);
        }
    }
    addChannel(node, "weights", std::move(keys));
}

/// Numbers that stay the same need two keys, or one, however many the library made.
void RyForeignClips::addChannel(int node, const char *path, Keys keys)
{
    if (keys.times.empty())
        return;
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
}

int RyForeignClips::timesAccessor(const std::vector<float> &times)
{
    const auto [known, isNew] = m_times.emplace(times, -1);
    if (isNew)
        known->second = m_document.addFloatAccessor(times, 1, 0, true);
    return known->second;
}
