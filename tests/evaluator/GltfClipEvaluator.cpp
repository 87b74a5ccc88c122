#include "evaluator/GltfClipEvaluator.h"

#include "evaluator/GltfFileReader.h"
#include "evaluator/GltfModel.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>

using nlohmann::json;

namespace {

[[noreturn]] void fail(const std::string &reason)
{
    throw std::runtime_error(reason);
}

Eigen::Vector4d unitQuaternion(const Eigen::Vector4d &q)
{
    const double length = q.norm();
    return length > 0 ? Eigen::Vector4d(q / length) : Eigen::Vector4d(0, 0, 0, 1);
}

/// Along the shorter arc; two turns that are equally far both ways keep their signs.
Eigen::Vector4d turnBetween(const Eigen::Vector4d &from, const Eigen::Vector4d &to, double part)
{
    const Eigen::Vector4d a = unitQuaternion(from);
    Eigen::Vector4d b = unitQuaternion(to);
    if (a.dot(b) < 0)
        b = -b;
    // Twice the arc tangent stays exact where the arc cosine of a number near one does not.
    const double angle = 2.0 * std::atan2((a - b).norm(), (a + b).norm());
    if (angle < 1e-12)
        return unitQuaternion(a + part * (b - a));
    return (std::sin((1 - part) * angle) * a + std::sin(part * angle) * b) / std::sin(angle);
}

} // namespace

GltfClipEvaluator::GltfClipEvaluator(const GltfEvaluator &file, int clip)
{
    const json &clips = GltfModel::listOf(file.tree(), "animations");
    if (clip < 0 || size_t(clip) >= clips.size())
        fail("there is no clip " + std::to_string(clip));
    const json &source = clips[size_t(clip)];
    const json &channels = GltfModel::listOf(source, "channels");
    for (size_t c = 0; c < channels.size(); ++c) {
        try {
            const json &target = channels[c].at("target");
            const std::string path = target.at("path").get<std::string>();
            if (path == "weights" && target.contains("node")) {
                m_weights.push_back(readWeights(file, source.at("samplers").at(channels[c].at("sampler").get<size_t>()),
                                                target["node"].get<int>()));
                continue;
            }
            const bool isPlace = path == "translation" || path == "rotation" || path == "scale";
            if (!isPlace || !target.contains("node"))
                continue;
            const Track track =
                readTrack(file, source.at("samplers").at(channels[c].at("sampler").get<size_t>()), path);
            DrivenNode &driven = drivenNode(file, target["node"].get<int>());
            int &slot = path == "translation" ? driven.translation : track.isRotation ? driven.rotation : driven.scale;
            slot = int(m_tracks.size());
            m_tracks.push_back(track);
        } catch (const std::exception &error) {
            m_leftOut.push_back("channel " + std::to_string(c) + ": " + error.what());
        }
    }
}

GltfClipEvaluator::Kind GltfClipEvaluator::kindOf(const json &sampler)
{
    const std::string kind = sampler.value("interpolation", "LINEAR");
    if (kind != "STEP" && kind != "LINEAR" && kind != "CUBICSPLINE")
        fail("unknown interpolation " + kind);
    return kind == "STEP" ? Kind::Step : kind == "LINEAR" ? Kind::Linear : Kind::Cubic;
}

GltfClipEvaluator::Weights GltfClipEvaluator::readWeights(const GltfEvaluator &file, const json &sampler, int node)
{
    Weights weights;
    weights.node = node;
    weights.kind = kindOf(sampler);
    weights.times = file.accessorValues(sampler.at("input").get<int>()).values;
    const std::vector<double> numbers = file.accessorValues(sampler.at("output").get<int>()).values;
    const size_t rows = weights.times.size() * (weights.kind == Kind::Cubic ? 3 : 1);
    if (rows == 0 || numbers.empty() || numbers.size() % rows != 0)
        fail("the counts of times and weights do not fit");
    const auto width = std::ptrdiff_t(numbers.size() / rows);
    for (auto at = numbers.begin(); at != numbers.end(); at += width)
        weights.rows.emplace_back(at, at + width);
    return weights;
}

std::vector<double> GltfClipEvaluator::weightsAt(const Weights &weights, double time)
{
    const bool isCubic = weights.kind == Kind::Cubic;
    const auto row = [&](size_t key, size_t part) { return weights.rows[isCubic ? 3 * key + part : key]; };
    size_t key = 0;
    while (key + 1 < weights.times.size() && weights.times[key + 1] <= time)
        ++key;
    std::vector<double> result = row(key, 1);
    if (weights.kind == Kind::Step || time <= weights.times[key] || key + 1 == weights.times.size())
        return result;
    const double span = weights.times[key + 1] - weights.times[key];
    const double t = (time - weights.times[key]) / span;
    const std::vector<double> next = row(key + 1, 1), out = row(key, 2), in = row(key + 1, 0);
    for (size_t i = 0; i < result.size(); ++i) {
        const double a = result[i], b = next[i];
        result[i] = isCubic ? (1 + 2 * t) * (1 - t) * (1 - t) * a + t * (1 - t) * (1 - t) * span * out[i] +
                                  t * t * (3 - 2 * t) * b + t * t * (t - 1) * span * in[i]
                            : (1 - t) * a + t * b;
    }
    return result;
}

GltfClipEvaluator::Track GltfClipEvaluator::readTrack(const GltfEvaluator &file, const json &sampler,
                                                      const std::string &path) const
{
    Track track;
    track.isRotation = path == "rotation";
    track.kind = kindOf(sampler);
    const GltfTable times = file.accessorValues(sampler.at("input").get<int>());
    const GltfTable values = file.accessorValues(sampler.at("output").get<int>());
    const size_t rows = track.kind == Kind::Cubic ? 3 : 1;
    if (times.count == 0 || times.components != 1)
        fail("no key times");
    if (values.components != (track.isRotation ? 4 : 3) || values.count != rows * times.count)
        fail("the counts of times and values do not fit");
    track.times = times.values;
    for (size_t i = 0; i < track.times.size(); ++i) {
        if (!std::isfinite(track.times[i]) || (i > 0 && track.times[i] <= track.times[i - 1]))
            fail("key times do not rise");
    }
    for (size_t i = 0; i < values.count; ++i) {
        Eigen::Vector4d value = Eigen::Vector4d::Zero();
        std::copy_n(values.row(i), values.components, value.data());
        if (!value.allFinite())
            fail("a value is no number");
        track.values.push_back(value);
    }
    return track;
}

GltfClipEvaluator::DrivenNode &GltfClipEvaluator::drivenNode(const GltfEvaluator &file, int node)
{
    const auto found =
        std::find_if(m_driven.begin(), m_driven.end(), [node](const DrivenNode &each) { return each.node == node; });
    if (found != m_driven.end())
        return *found;
    if (node < 0 || node >= file.nodeCount())
        fail("there is no node " + std::to_string(node));
    const json &source = file.tree()["nodes"][size_t(node)];
    if (source.contains("matrix"))
        fail("node " + std::to_string(node) + " is given as a matrix");
    DrivenNode driven;
    driven.node = node;
    driven.own = GltfTransform::ofNode(source);
    m_driven.push_back(driven);
    return m_driven.back();
}

std::vector<double> GltfClipEvaluator::keyTimes() const
{
    std::vector<double> all;
    for (const Track &track : m_tracks)
        all.insert(all.end(), track.times.begin(), track.times.end());
    for (const Weights &weights : m_weights)
        all.insert(all.end(), weights.times.begin(), weights.times.end());
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

void GltfClipEvaluator::play(double time, std::vector<Eigen::Matrix4d> &locals) const
{
    for (const DrivenNode &driven : m_driven) {
        GltfTransform transform = driven.own;
        if (driven.translation >= 0)
            transform.translation = valueAt(m_tracks[size_t(driven.translation)], time).head<3>();
        if (driven.rotation >= 0)
            transform.rotation = valueAt(m_tracks[size_t(driven.rotation)], time);
        if (driven.scale >= 0)
            transform.scale = valueAt(m_tracks[size_t(driven.scale)], time).head<3>();
        locals[size_t(driven.node)] = transform.matrix();
    }
}

GltfPose GltfClipEvaluator::pose(double time) const
{
    int last = -1;
    for (const DrivenNode &driven : m_driven)
        last = std::max(last, driven.node);
    std::vector<Eigen::Matrix4d> locals(size_t(last + 1), Eigen::Matrix4d::Identity());
    play(time, locals);
    GltfPose pose;
    for (const DrivenNode &driven : m_driven)
        pose.local[driven.node] = locals[size_t(driven.node)];
    for (const Weights &weights : m_weights)
        pose.weights[weights.node] = weightsAt(weights, time);
    return pose;
}

Eigen::Vector4d GltfClipEvaluator::valueAt(const Track &track, double time)
{
    const size_t rows = track.kind == Kind::Cubic ? 3 : 1;
    const auto valueOf = [&track, rows](size_t key) { return track.values[rows * key + rows / 2]; };
    const auto after = std::upper_bound(track.times.begin(), track.times.end(), time);
    if (after == track.times.begin())
        return valueOf(0);
    const auto key = size_t(after - track.times.begin()) - 1;
    if (track.kind == Kind::Step || after == track.times.end() || time == track.times[key])
        return valueOf(key);
    return between(track, key, (time - track.times[key]) / (track.times[key + 1] - track.times[key]));
}

/// `part` of the way from a key to the next one.
Eigen::Vector4d GltfClipEvaluator::between(const Track &track, size_t key, double part)
{
    if (track.kind == Kind::Linear) {
        const Eigen::Vector4d &a = track.values[key];
        const Eigen::Vector4d &b = track.values[key + 1];
        return track.isRotation ? turnBetween(a, b, part) : Eigen::Vector4d((1 - part) * a + part * b);
    }
    // Hermite's polynomials; the file's tangents are per second.
    const double seconds = track.times[key + 1] - track.times[key];
    const double square = part * part;
    const double cube = square * part;
    const Eigen::Vector4d *from = &track.values[3 * key];
    const Eigen::Vector4d *to = from + 3;
    return (2 * cube - 3 * square + 1) * from[1] + seconds * (cube - 2 * square + part) * from[2] +
           (3 * square - 2 * cube) * to[1] + seconds * (cube - square) * to[0];
}

std::vector<double> gltfFrameTimes(const std::vector<double> &keyTimes, size_t atMost)
{
    constexpr double Jump = 1e-5;
    std::vector<double> all;
    for (size_t i = 0; i < keyTimes.size(); ++i) {
        all.push_back(keyTimes[i]);
        if (i + 1 == keyTimes.size() || keyTimes[i + 1] - keyTimes[i] < Jump)
            continue;
        for (const double part : {0.25, 0.5, 0.75})
            all.push_back(keyTimes[i] + part * (keyTimes[i + 1] - keyTimes[i]));
    }
    if (all.size() <= atMost)
        return all;
    // One of each of `atMost` equal pieces, at another place in each: every fourth frame is a key.
    std::vector<double> some;
    for (size_t i = 0; i < atMost; ++i) {
        const double whole = 0.6180339887498949 * double(i);
        const double place = (double(i) + whole - std::floor(whole)) * double(all.size()) / double(atMost);
        some.push_back(all[std::min(size_t(place), all.size() - 1)]);
    }
    return some;
}
