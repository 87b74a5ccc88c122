#pragma once

#include "rycore/skin/RyNormalMap.h"
#include "rycore/skin/RySkinDeformer.h"
#include "support/RyTest.h"

#include <Eigen/LU>

#include <array>
#include <random>

/// Vertices with normals and influences, further normals, and maps; and what becomes of them in double precision.
struct NormalsCloud
{
    enum class Kind { Similar, Sheared };

    /// Each vertex has `influences` influences, or any number up to that.
    NormalsCloud(int vertexCount, int channelCount, int influences, bool anyNumber, Kind kind = Kind::Similar)
    {
        channels.resize(size_t(channelCount));
        for (int v = 0; v < vertexCount; ++v) {
            rest.push_back({number(-100, 100), number(-100, 100), number(-100, 100)});
            const int count = anyNumber ? int(random() % unsigned(influences + 1)) : influences;
            const size_t first = random() % channels.size();
            for (int k = 0; k < count; ++k) {
                RySkinDeformer::Channel &channel = channels[(first + size_t(k) * 3) % channels.size()];
                if (!channel.vertices.empty() && channel.vertices.back() == v)
                    continue;
                channel.vertices.push_back(v);
                channel.weights.push_back(number(0.1f, 0.9f) / float(count));
            }
            if (v % 7 == 3)
                further.push_back(v);
        }
        for (size_t i = 0; i < rest.size() + further.size(); ++i)
            normals.push_back(RyVec3(number(-1, 1), number(-1, 1), number(0.1f, 1)).normalized());
        // One without facets.
        normals[0] = RyVec3();
        for (int k = 0; k < channelCount; ++k) {
            maps.emplace_back();
            normalMaps.emplace_back();
            move(size_t(k), kind);
        }
    }

    float number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }

    void move(size_t channel, Kind kind)
    {
        const RyQuat turn(RyVec3(number(-1, 1), 1, number(-1, 1)), number(-2, 2));
        const double scale = number(0.6f, 1.6f);
        RyAffine map = RyAffine::fromScale(scale) * RyAffine::fromRotation(turn) *
                       RyAffine::fromTranslation(number(-20, 20), number(-20, 20), number(-20, 20));
        if (kind == Kind::Sheared)
            map = RyAffine::fromScale(number(0.5f, 2), number(0.5f, 2), number(0.5f, 2)) * map;
        maps[channel] = map;
        normalMaps[channel] = RyNormalMap::of(map);
    }

    int vertexOfPlace(size_t place) const { return place < rest.size() ? int(place) : further[place - rest.size()]; }

    RySkinNormals given() const { return {&normals, &normalMaps}; }

    std::unique_ptr<RySkinDeformer> deformer(RySkinDeformer::Path path) const
    {
        auto made = std::make_unique<RySkinDeformer>();
        made->setPath(path);
        made->setInfluences(int(rest.size()), channels);
        made->setFurtherNormals(further);
        return made;
    }
    void run(RySkinDeformer &deformer) const { deformer.deform(rest, maps, this, 1, given()); }

    /// The greatest distance from the plain evaluation, position by position and normal by normal.
    std::pair<double, double> apart(const std::vector<RyVec3> &positions, const std::vector<RyVec3> &results) const
    {
        using Row = Eigen::RowVector3d;
        const auto row = [](const RyVec3 &v) { return Row(v.x, v.y, v.z); };
        std::vector<Row> points;
        std::vector<Row> directions;
        for (const RyVec3 &p : rest)
            points.push_back(row(p));
        for (const RyVec3 &n : normals)
            directions.push_back(row(n));
        std::vector<std::vector<size_t>> placesOfVertex(rest.size());
        for (size_t place = 0; place < normals.size(); ++place)
            placesOfVertex[size_t(vertexOfPlace(place))].push_back(place);
        for (size_t k = 0; k < channels.size(); ++k) {
            Eigen::Matrix3d linear;
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j)
                    linear(i, j) = maps[k].m[i][j];
            }
            const Row moved(maps[k].m[3][0], maps[k].m[3][1], maps[k].m[3][2]);
            // The inverse transpose, as large as the map, which it is itself for a turn with an equal scale.
            Eigen::Matrix3d carrying = linear.inverse().transpose();
            carrying *= linear.norm() / carrying.norm();
            for (size_t i = 0; i < channels[k].vertices.size(); ++i) {
                const auto v = size_t(channels[k].vertices[i]);
                const double weight = double(channels[k].weights[i]);
                points[v] += weight * (row(rest[v]) * linear + moved - row(rest[v]));
                for (size_t place : placesOfVertex[v])
                    directions[place] += weight * (row(normals[place]) * carrying - row(normals[place]));
            }
        }
        double mostPoints = positions.size() == points.size() ? 0.0 : 1e30;
        double mostNormals = results.size() == directions.size() ? 0.0 : 1e30;
        for (size_t v = 0; v < points.size() && mostPoints < 1e30; ++v)
            mostPoints = std::max(mostPoints, (row(positions[v]) - points[v]).norm());
        for (size_t place = 0; place < directions.size() && mostNormals < 1e30; ++place)
            mostNormals = std::max(mostNormals, (row(results[place]) - directions[place]).norm());
        return {mostPoints, mostNormals};
    }

    std::mt19937 random{ryTestSeed()};
    std::vector<RyVec3> rest;
    std::vector<RyVec3> normals;
    std::vector<int> further;
    std::vector<RySkinDeformer::Channel> channels;
    std::vector<RyAffine> maps;
    std::vector<RyAffine> normalMaps;
};
