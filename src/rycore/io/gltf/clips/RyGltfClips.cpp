#include "rycore/io/gltf/clips/RyGltfClips.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <optional>

using RyExtrasJson::find;
using Json = RyExtrasJson::Json;

const char *ryGltfPathName(RyGltfPath path)
{
    return path == RyGltfPath::Translation ? "translation" : path == RyGltfPath::Rotation ? "rotation" : "scale";
}

namespace {

std::string pathTextOf(const Json &target)
{
    const Json *path = find(target, "path");
    return path && path->is_string() ? path->get<std::string>() : std::string();
}

std::optional<RyGltfPath> pathOf(const Json &target)
{
    const std::string text = pathTextOf(target);
    for (const RyGltfPath each : ryGltfPaths) {
        if (text == ryGltfPathName(each))
            return each;
    }
    return std::nullopt;
}

/// The index below `limit` that a member holds, -1 for none.
int indexOf(const Json &object, const char *key, size_t limit)
{
    const Json *index = find(object, key);
    return index && RyGltfReferences::isIndex(*index) && index->get<double>() < double(limit) ? index->get<int>() : -1;
}

/// The part of a node's transform that a pointer names.
std::optional<RyGltfTarget> targetOfPointer(const Json &target, size_t nodeCount)
{
    const auto pointed = ryGltfPointedNode(target);
    if (!pointed || size_t(pointed->first) >= nodeCount)
        return std::nullopt;
    for (const RyGltfPath path : ryGltfPaths) {
        if (pointed->second == std::string("/") + ryGltfPathName(path))
            return RyGltfTarget(pointed->first, path);
    }
    return std::nullopt;
}

std::optional<RyGltfCurve::Kind> kindOf(const Json &sampler)
{
    const Json *kind = find(sampler, "interpolation");
    const std::string *name = kind ? kind->get_ptr<const std::string *>() : nullptr;
    if (!kind || (name && *name == "LINEAR"))
        return RyGltfCurve::Linear;
    if (!name || (*name != "STEP" && *name != "CUBICSPLINE"))
        return std::nullopt;
    return *name == "STEP" ? RyGltfCurve::Step : RyGltfCurve::Cubic;
}

RyGltfTarget targetOf(const RyGltfChannel &channel)
{
    return {channel.node, channel.path};
}

} // namespace

namespace {

std::optional<std::pair<int, std::string>> pointedIn(RyGltfList wanted, const Json &target)
{
    const Json *extensions = find(target, "extensions");
    const Json *extension = extensions ? find(*extensions, "KHR_animation_pointer") : nullptr;
    const Json *pointer = extension ? find(*extension, "pointer") : nullptr;
    RyGltfList list = RyGltfList::Scenes;
    int index = -1;
    std::string rest;
    if (!pointer || !pointer->is_string() ||
        !RyGltfReferences::splitPointer(pointer->get_ref<const std::string &>(), list, index, rest) || list != wanted)
        return std::nullopt;
    return std::pair(index, rest);
}

} // namespace

std::optional<std::pair<int, std::string>> ryGltfPointedNode(const Json &target)
{
    return pointedIn(RyGltfList::Nodes, target);
}

bool ryGltfDrivesWeights(const Json &target, int node, int mesh)
{
    const Json *path = find(target, "path");
    const Json *driven = find(target, "node");
    if (path && *path == "weights")
        return !driven || *driven == node;
    const auto isOfWeights = [](const auto &pointed, int index) {
        return pointed && pointed->first == index && pointed->second.rfind("/weights", 0) == 0;
    };
    return isOfWeights(pointedIn(RyGltfList::Nodes, target), node) ||
           isOfWeights(pointedIn(RyGltfList::Meshes, target), mesh);
}

const RyGltfChannel *RyGltfClip::find(int node, RyGltfPath path) const
{
    const auto found =
        std::lower_bound(byTarget.begin(), byTarget.end(), std::pair(node, path),
                         [this](size_t place, const auto &target) { return targetOf(channels[place]) < target; });
    const bool isThere = found != byTarget.end() && targetOf(channels[*found]) == std::pair(node, path);
    return isThere ? &channels[*found] : nullptr;
}

RyGltfClips::RyGltfClips(const RyGltfDocument &document) : m_document(&document)
{
    for (const Json &clip : RyGltfReferences::listIn(document.json(), "animations")) {
        RyGltfClip &result = m_clips.emplace_back();
        const Json *name = find(clip, "name");
        if (name && name->is_string())
            result.name = QString::fromStdString(name->get<std::string>());
        if (result.name.isEmpty())
            result.name = QStringLiteral("animation %1").arg(m_clips.size() - 1);
        readClip(clip, result);
    }
}

void RyGltfClips::readClip(const Json &clip, RyGltfClip &result)
{
    const size_t nodeCount = m_document->model().nodes.size();
    std::map<std::pair<int, RyGltfPath>, size_t> known; // places in `result.channels`
    const Json &channels = RyGltfReferences::listIn(clip, "channels");
    for (size_t place = 0; place < channels.size(); ++place) {
        const Json *target = find(channels[place], "target");
        if (!target)
            continue;
        RyGltfChannel channel;
        channel.place = place;
        channel.node = indexOf(*target, "node", nodeCount);
        const std::optional<RyGltfPath> path = pathOf(*target);
        if (channel.node >= 0 && pathTextOf(*target) == "weights") {
            if (readSampler(clip, channels[place], channel))
                result.weights.push_back({channel.node, channel.sampler});
            continue;
        }
        if (channel.node < 0 || !path) {
            if (const std::optional<RyGltfTarget> pointed = targetOfPointer(*target, nodeCount))
                result.unreadable.insert(*pointed);
            continue;
        }
        channel.path = *path;
        if (!readSampler(clip, channels[place], channel) ||
            !known.try_emplace(targetOf(channel), result.channels.size()).second)
            result.unreadable.insert({channel.node, *path});
        else {
            channel.number = m_channelCount++;
            result.channels.push_back(channel);
        }
    }
    for (const auto &[target, place] : known)
        result.byTarget.push_back(place);
}

bool RyGltfClips::readSampler(const Json &clip, const Json &channel, RyGltfChannel &result) const
{
    const Json &samplers = RyGltfReferences::listIn(clip, "samplers");
    const int place = indexOf(channel, "sampler", samplers.size());
    if (place < 0 || !samplers[size_t(place)].is_object())
        return false;
    const Json &sampler = samplers[size_t(place)];
    result.samplerPlace = size_t(place);
    const size_t accessors = m_document->model().accessors.size();
    result.sampler.input = indexOf(sampler, "input", accessors);
    result.sampler.output = indexOf(sampler, "output", accessors);
    const std::optional<RyGltfCurve::Kind> kind = kindOf(sampler);
    if (!kind)
        return false;
    result.sampler.kind = *kind;
    return result.sampler.input >= 0 && result.sampler.output >= 0;
}

std::shared_ptr<const RyGltfCurve> RyGltfClips::curve(const RyGltfSampler &sampler, RyGltfPath path) const
{
    const auto [known, isNew] = m_curves.try_emplace({sampler, path == RyGltfPath::Rotation});
    if (isNew)
        known->second = read(sampler, path);
    return known->second;
}

std::vector<std::shared_ptr<const RyGltfCurve>> RyGltfClips::weightCurves(const RyGltfSampler &sampler,
                                                                          size_t count) const
{
    const RyGltfAccessor &form = m_document->model().accessors[size_t(sampler.output)];
    const std::vector<float> &keys = times(sampler.input);
    const size_t rows = keys.size() * (sampler.kind == RyGltfCurve::Cubic ? 3 : 1);
    const bool isFloat = form.componentType == 5126;
    if (rows == 0 || form.componentCount != 1 || (!isFloat && !form.normalized) || form.count != rows * count ||
        (isFloat && !m_document->hasFiniteNumbers(sampler.output)))
        return {};
    const std::vector<float> numbers = m_document->readFloats(sampler.output);
    std::vector<std::shared_ptr<const RyGltfCurve>> curves;
    for (size_t morph = 0; morph < count; ++morph) {
        auto curve = std::make_shared<RyGltfCurve>();
        curve->kind = sampler.kind;
        curve->components = 1;
        curve->times = keys;
        for (size_t row = 0; row < rows; ++row)
            curve->values.push_back(double(numbers[row * count + morph]));
        curves.push_back(std::move(curve));
    }
    return curves;
}

void RyGltfClips::readCurves() const
{
    if (m_read.size() == m_channelCount)
        return;
    m_read.resize(m_channelCount);
    struct Unread
    {
        const RyGltfChannel *channel;
        std::shared_ptr<const RyGltfCurve> *curve;
    };
    std::vector<Unread> unread;
    std::vector<const std::shared_ptr<const RyGltfCurve> *> curves(m_channelCount);
    for (const RyGltfClip &clip : m_clips) {
        for (const RyGltfChannel &channel : clip.channels) {
            const auto [known, isNew] = m_curves.try_emplace({channel.sampler, channel.path == RyGltfPath::Rotation});
            if (isNew) {
                times(channel.sampler.input); // so that the threads find them
                unread.push_back({&channel, &known->second});
            }
            curves[channel.number] = &known->second;
        }
    }
    constexpr size_t Grain = 256;
    RyParallel::forRanges(unread.size(), Grain, [&](size_t from, size_t to) {
        for (size_t i = from; i < to; ++i)
            *unread[i].curve = read(unread[i].channel->sampler, unread[i].channel->path);
    });
    for (size_t i = 0; i < m_channelCount; ++i)
        m_read[i] = *curves[i];
}

const std::vector<float> &RyGltfClips::times(int accessor) const
{
    if (const auto known = m_times.find(accessor); known != m_times.end())
        return known->second;
    std::vector<float> &known = m_times[accessor];
    const RyGltfAccessor &form = m_document->model().accessors[size_t(accessor)];
    if (form.componentType != 5126 || form.componentCount != 1 || !m_document->hasFiniteNumbers(accessor))
        return known;
    std::vector<float> times = m_document->readFloats(accessor);
    const bool rises =
        std::adjacent_find(times.begin(), times.end(), [](float a, float b) { return !(a < b); }) == times.end();
    if (rises)
        known = std::move(times);
    return known;
}

std::shared_ptr<const RyGltfCurve> RyGltfClips::read(const RyGltfSampler &sampler, RyGltfPath path) const
{
    const std::vector<RyGltfAccessor> &accessors = m_document->model().accessors;
    const RyGltfAccessor &form = accessors[size_t(sampler.output)];
    auto curve = std::make_shared<RyGltfCurve>();
    curve->kind = sampler.kind;
    curve->components = path == RyGltfPath::Rotation ? 4 : 3;
    const bool isFloat = form.componentType == 5126;
    const bool isFormOf = form.componentCount == curve->components && (isFloat || form.normalized);
    const std::uint64_t values = accessors[size_t(sampler.input)].count * (sampler.kind == RyGltfCurve::Cubic ? 3 : 1);
    if (!isFormOf || form.count != values || (isFloat && !m_document->hasFiniteNumbers(sampler.output)))
        return nullptr;
    curve->times = times(sampler.input);
    if (curve->times.empty())
        return nullptr;
    const std::vector<float> numbers = m_document->readFloats(sampler.output);
    curve->values.assign(numbers.begin(), numbers.end());
    for (size_t i = 0; i < curve->keyCount() && curve->components == 4; ++i) {
        if (Eigen::Map<const Eigen::Vector4d>(curve->key(i)).squaredNorm() < 1e-12)
            return nullptr; // no rotation at all
    }
    return curve;
}
