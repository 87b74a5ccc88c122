#pragma once

#include "rycore/io/gltf/document/RyGltfDocument.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <vector>

/// A .glb file of limbs of ten joints each, which turn, and a first joint that walks. Each clip has key times of its
/// own, for all of its channels; every third joint turns in steps.
struct RyClipFile
{
    static constexpr int limb = 10;
    static constexpr int keys = 6;

    static bool write(const QString &path, int joints, int clips)
    {
        std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
        std::vector<int> nodes;
        std::vector<float> binds; // inverse ones
        for (int joint = 0; joint < joints; ++joint) {
            RyGltfTransform transform;
            const double angle = 0.37 * joint;
            transform.translation = {0.04 * std::cos(angle), 0.11, 0.04 * std::sin(angle)};
            const int parent = joint == 0 ? -1 : joint % limb == 1 ? 0 : joint - 1;
            nodes.push_back(document->addNode(QStringLiteral("joint%1").arg(joint), transform, parent));
            float bind[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
            for (size_t axis = 0; axis < 3; ++axis) {
                const float above = parent < 0 ? 0.0f : binds[size_t(parent) * 16 + 12 + axis];
                bind[12 + axis] = above - float(transform.translation[axis]);
            }
            binds.insert(binds.end(), bind, bind + 16);
        }
        document->addSkin(QStringLiteral("limbs"), nodes, document->addFloatAccessor(binds, 16, 0), -1);
        nlohmann::ordered_json animations = nlohmann::ordered_json::array();
        for (int clip = 0; clip < clips; ++clip)
            animations.push_back(clipOf(*document, nodes, clip));
        document->json()["animations"] = std::move(animations);
        return document->refresh(nullptr) && document->write(path, nullptr);
    }

    static int channelCount(int joints, int clips) { return clips * (joints + 1); }

private:
    using Json = nlohmann::ordered_json;

    static Json clipOf(RyGltfDocument &document, const std::vector<int> &nodes, int clip)
    {
        std::vector<float> times;
        for (int key = 0; key < keys; ++key)
            times.push_back(float(key) / 24.0f + 0.001f * float((clip + 3 * key) % 7));
        const int input = document.addFloatAccessor(times, 1, 0, true);
        Json result{{"name", "clip" + std::to_string(clip)}, {"channels", Json::array()}, {"samplers", Json::array()}};
        const auto add = [&](int node, const char *path, const char *kind, int output) {
            result["channels"].push_back(
                Json{{"sampler", result["samplers"].size()}, {"target", Json{{"node", node}, {"path", path}}}});
            result["samplers"].push_back(Json{{"input", input}, {"interpolation", kind}, {"output", output}});
        };
        std::vector<float> places;
        for (int key = 0; key < keys; ++key)
            places.insert(places.end(), {0.05f * float(key), 1.0f + 0.01f * float((clip + key) % 3), 0.0f});
        add(nodes.front(), "translation", "LINEAR", document.addFloatAccessor(places, 3, 0));
        for (size_t joint = 0; joint < nodes.size(); ++joint) {
            std::vector<float> turns;
            for (int key = 0; key < keys; ++key) {
                const float half = 0.15f * std::sin(0.7f * float(clip) + 0.9f * float(key) + 1.3f * float(joint));
                turns.insert(turns.end(), {0.6f * std::sin(half), 0.0f, 0.8f * std::sin(half), std::cos(half)});
            }
            add(nodes[joint], "rotation", joint % 3 == 2 ? "STEP" : "LINEAR", document.addFloatAccessor(turns, 4, 0));
        }
        return result;
    }
};
