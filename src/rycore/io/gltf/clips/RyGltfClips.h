#pragma once

#include "rycore/io/gltf/clips/RyGltfCurve.h"

#include <nlohmann/json_fwd.hpp>

#include <QString>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

class RyGltfDocument;

/// What a channel of a clip drives.
enum class RyGltfPath { Translation, Rotation, Scale };
constexpr std::array<RyGltfPath, 3> ryGltfPaths{RyGltfPath::Translation, RyGltfPath::Rotation, RyGltfPath::Scale};
const char *ryGltfPathName(RyGltfPath path);

/// The accessors of key times and values.
struct RyGltfSampler
{
    int input = -1;
    int output = -1;
    RyGltfCurve::Kind kind = RyGltfCurve::Linear;

    auto operator<=>(const RyGltfSampler &) const = default;
};

struct RyGltfChannel
{
    size_t number = 0; ///< among those of all clips here
    size_t place = 0;  ///< in the clip's list of channels
    size_t samplerPlace = 0;
    RyGltfSampler sampler;
    int node = -1;
    RyGltfPath path = RyGltfPath::Translation;
};

/// A channel of the values of all morphs of a node's mesh.
struct RyGltfWeightsChannel
{
    int node = -1;
    RyGltfSampler sampler;
};

/// A part of a node's transform.
using RyGltfTarget = std::pair<int, RyGltfPath>;

struct RyGltfClip
{
    QString name;                        ///< "animation 3" where the file has none
    std::vector<RyGltfChannel> channels; ///< those of nodes' transforms that are well formed
    /// What is driven in a way nobody here can follow: by a damaged channel, by two channels, or through an extension.
    std::set<RyGltfTarget> unreadable;
    std::vector<RyGltfWeightsChannel> weights; ///< those that are well formed

    std::vector<size_t> byTarget; ///< places in `channels`, by node and path

    const RyGltfChannel *find(int node, RyGltfPath path) const;
};

/// The clips of a file as they are in its tree. Channels that say nothing usable are told, never evaluated.
class RyGltfClips
{
public:
    /// Without clips.
    RyGltfClips() = default;
    /// The document must outlive it; it reads accessors when they are first asked for.
    explicit RyGltfClips(const RyGltfDocument &document);

    const std::vector<RyGltfClip> &clips() const { return m_clips; }
    /// Null for a damaged one: other counts than the interpolation needs, numbers that are not finite, times that do
    /// not rise, rotations of no length.
    std::shared_ptr<const RyGltfCurve> curve(const RyGltfSampler &sampler, RyGltfPath path) const;
    /// One number each, in the order of a mesh with so many morphs; none for a damaged one, as above.
    std::vector<std::shared_ptr<const RyGltfCurve>> weightCurves(const RyGltfSampler &sampler, size_t count) const;
    /// Reads the curves of all channels of transforms, which can then be looked up, from several threads as well.
    void readCurves() const;
    const std::shared_ptr<const RyGltfCurve> &curve(const RyGltfChannel &channel) const
    {
        return m_read[channel.number];
    }

private:
    void readClip(const nlohmann::ordered_json &clip, RyGltfClip &result);
    bool readSampler(const nlohmann::ordered_json &clip, const nlohmann::ordered_json &channel,
                     RyGltfChannel &result) const;
    std::shared_ptr<const RyGltfCurve> read(const RyGltfSampler &sampler, RyGltfPath path) const;
    const std::vector<float> &times(int accessor) const;

    const RyGltfDocument *m_document = nullptr;
    std::vector<RyGltfClip> m_clips;
    size_t m_channelCount = 0;
    mutable std::map<std::pair<RyGltfSampler, bool>, std::shared_ptr<const RyGltfCurve>> m_curves; // by "rotation"
    mutable std::map<int, std::vector<float>> m_times;              // by accessor; empty for unusable ones
    mutable std::vector<std::shared_ptr<const RyGltfCurve>> m_read; // by number of a channel
};

/// The node that a pointer of KHR_animation_pointer like "/nodes/7/translation" goes to, and what follows it; none for
/// any other target.
std::optional<std::pair<int, std::string>> ryGltfPointedNode(const nlohmann::ordered_json &target);
/// Whether a target is the weights of a node, or of its mesh, or one of them, by whatever way.
bool ryGltfDrivesWeights(const nlohmann::ordered_json &target, int node, int mesh);
