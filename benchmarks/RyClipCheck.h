#pragma once

#include "rycore/io/gltf/clips/RyGltfMotion.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

/// Compares what the clips of two files do to what is skinned, straight from their channels.
class RyClipCheck
{
public:
    RyClipCheck(const RyGltfDocument &before, const RyGltfDocument &after) : m_before(before), m_after(after) {}

    /// How far points about a joint that follow it are from where they were, at most, at some times of all clips and of
    /// the joints that both files have, in heights of the figure; infinite where there is nothing to compare.
    double worst() const
    {
        const size_t clips = m_before.clips.clips().size();
        if (m_after.clips.clips().size() != clips || m_before.binds.empty())
            return std::numeric_limits<double>::infinity();
        double result = 0.0;
        for (size_t clip = 0; clip < clips; ++clip) {
            const double end = m_before.end(clip);
            for (const double share : {0.0, 0.31, 0.5, 0.87})
                result = std::max(result, apart(clip, float(share * end)));
        }
        return result;
    }

    /// How many channels of the second file's clips say something else than those of the first, and how many it has
    /// less.
    int differences() const
    {
        int result = 0;
        for (size_t clip = 0; clip < m_after.clips.clips().size(); ++clip) {
            const auto &before = m_before.clips.clips()[clip].channels, &after = m_after.clips.clips()[clip].channels;
            result += int(before.size()) - int(std::min(before.size(), after.size()));
            for (const RyGltfChannel &channel : after) {
                const RyGltfChannel *old = m_before.clips.clips()[clip].find(channel.node, channel.path);
                const auto now = m_after.clips.curve(channel.sampler, channel.path);
                const auto then = old ? m_before.clips.curve(old->sampler, channel.path) : nullptr;
                result += !now || !then || now->kind != then->kind || now->times != then->times ||
                          now->values != then->values;
            }
        }
        return result;
    }

private:
    struct File
    {
        explicit File(const RyGltfDocument &document)
            : model(document.model()), clips(document), order(ryGltfPreOrder(model))
        {
            for (const RyGltfSkin &skin : model.skins) {
                std::vector<float> numbers;
                if (skin.inverseBindMatrices >= 0)
                    numbers = document.readFloats(skin.inverseBindMatrices);
                for (size_t i = 0; i < skin.joints.size(); ++i) {
                    Eigen::Matrix4d bind = Eigen::Matrix4d::Identity();
                    if (!numbers.empty())
                        bind = Eigen::Map<const Eigen::Matrix4f>(numbers.data() + 16 * i).cast<double>();
                    binds[skin.joints[i]] = bind;
                }
            }
            double low = std::numeric_limits<double>::infinity(), high = -low;
            for (const auto &[joint, bind] : binds) {
                const double at = bind.inverse()(1, 3);
                low = std::min(low, at);
                high = std::max(high, at);
            }
            for (const RyGltfNode &node : model.nodes) {
                if (node.mesh >= 0 && node.skin >= 0)
                    includeVertices(document, model.meshes[size_t(node.mesh)], low, high);
            }
            height = high - low;
        }

        /// What is skinned stands in the space of the joints' rest.
        static void includeVertices(const RyGltfDocument &document, const RyGltfMesh &mesh, double &low, double &high)
        {
            for (const RyGltfPrimitive &primitive : mesh.primitives) {
                const std::vector<float> positions =
                    primitive.positions >= 0 ? document.readFloats(primitive.positions) : std::vector<float>();
                for (size_t i = 1; i < positions.size(); i += 3) {
                    low = std::min(low, double(positions[i]));
                    high = std::max(high, double(positions[i]));
                }
            }
        }

        double end(size_t clip) const
        {
            float last = 0.0f;
            for (const RyGltfChannel &channel : clips.clips()[clip].channels)
                last = std::max(last, clips.curve(channel.sampler, channel.path)->times.back());
            return double(last);
        }

        std::vector<Eigen::Matrix4d> worlds(size_t clip, float time) const
        {
            std::vector<RyGltfMotion> motions(model.nodes.size());
            for (const RyGltfChannel &channel : clips.clips()[clip].channels) {
                motions[size_t(channel.node)].curves[size_t(channel.path)] = clips.curve(channel.sampler, channel.path);
            }
            std::vector<Eigen::Matrix4d> result(model.nodes.size());
            for (const int node : order) {
                const RyGltfNode &each = model.nodes[size_t(node)];
                motions[size_t(node)].rest = RyGltfParts::of(each.transform);
                // Of a piece that ends behind the time no key lies between its ends.
                const RyGltfMotionPiece piece(motions[size_t(node)], time, std::nextafter(time, 1e9f));
                const Eigen::Matrix4d local = piece.map(double(time)).matrix();
                result[size_t(node)] = each.parent < 0 ? local : Eigen::Matrix4d(result[size_t(each.parent)] * local);
            }
            return result;
        }

        const RyGltfModel &model;
        RyGltfClips clips;
        std::vector<int> order;
        std::map<int, Eigen::Matrix4d> binds; // inverse ones, of the joints of all skins
        double height = 0.0;                  // of joints and vertices
    };

    double apart(size_t clip, float time) const
    {
        const std::vector<Eigen::Matrix4d> before = m_before.worlds(clip, time), after = m_after.worlds(clip, time);
        double result = 0.0;
        size_t found = 0;
        for (const auto &[joint, bind] : m_after.binds) {
            const auto old = m_before.binds.find(joint);
            if (old == m_before.binds.end())
                continue;
            ++found;
            const Eigen::Matrix4d difference = after[size_t(joint)] * bind - before[size_t(joint)] * old->second;
            const Eigen::Vector4d origin = old->second.inverse().col(3);
            for (int axis = 0; axis < 3; ++axis) {
                const Eigen::Vector4d point = origin + 0.1 * m_before.height * Eigen::Vector4d::Unit(axis);
                result = std::max(result, (difference * point).norm());
            }
        }
        return found == 0 ? std::numeric_limits<double>::infinity() : result / m_before.height;
    }

    File m_before, m_after;
};
