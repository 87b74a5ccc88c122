#pragma once

#include "rycore/skin/RySkinDeformer.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

/// A cloud of vertices with normals, each with the same number of influences, and two poses of its bones. Neighbouring
/// vertices follow neighbouring bones, as on a body.
struct RySkinWorkload
{
    static constexpr int Bones = 100;

    RySkinWorkload(int vertices, int influences) : vertexCount(vertices), influenceCount(influences)
    {
        std::uniform_real_distribution<float> number(-1.0f, 1.0f);
        for (int v = 0; v < vertices; ++v) {
            positions.push_back({40 * number(random), 90 * number(random), 20 * number(random)});
            normals.push_back(RyVec3(number(random), number(random), number(random) + 0.01f).normalized());
            addInfluences(int(qint64(v) * (Bones - 2 * influences - 8) / vertices));
        }
        for (int pose = 0; pose < 2; ++pose) {
            for (int bone = 0; bone < Bones; ++bone)
                addMap(pose, number);
        }
    }

    std::vector<RySkinDeformer::Channel> channels() const
    {
        std::vector<RySkinDeformer::Channel> result(Bones);
        for (size_t entry = 0; entry < bones.size(); ++entry) {
            result[bones[entry]].vertices.push_back(int(entry / size_t(influenceCount)));
            result[bones[entry]].weights.push_back(weights[entry]);
        }
        return result;
    }

    int vertexCount;
    int influenceCount;
    std::vector<RyVec3> positions;
    std::vector<RyVec3> normals;
    std::vector<quint16> bones; // one entry for each influence of each vertex
    std::vector<float> weights;
    std::vector<RyAffine> maps[2];
    std::vector<Eigen::Matrix4f, Eigen::aligned_allocator<Eigen::Matrix4f>> matrices[2]; // the same, for columns

private:
    void addInfluences(int base)
    {
        const int step = 1 + int(random() % 2u);
        const size_t first = weights.size();
        int bone = base + int(random() % 8u);
        float sum = 0.0f;
        for (int k = 0; k < influenceCount; ++k, bone += step) {
            bones.push_back(quint16(bone));
            weights.push_back(0.05f + float(random() % 1000u) / 1000.0f);
            sum += weights.back();
        }
        for (size_t i = first; i < weights.size(); ++i)
            weights[i] /= sum;
    }

    void addMap(int pose, std::uniform_real_distribution<float> &number)
    {
        const Eigen::Vector3f axis(number(random), number(random), number(random) + 0.01f);
        Eigen::Affine3f map(Eigen::Translation3f(10 * number(random), 10 * number(random), 10 * number(random)));
        map.rotate(Eigen::AngleAxisf(number(random), axis.normalized()));
        matrices[pose].push_back(map.matrix());
        RyAffine &added = maps[pose].emplace_back();
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 3; ++column)
                added.m[row][column] = double(map.matrix()(column, row));
        }
    }

    std::mt19937 random{1234};
};
