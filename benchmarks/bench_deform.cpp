// The linear blend of a skin: 100,000 vertices with four influences each, our deformer beside a plain loop over Eigen
// transforms. Both run in this process with the same flags; their results are compared before anything is timed.
#include "rycore/skin/RySkinDeformer.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr int Vertices = 100000;
constexpr int Bones = 80;
constexpr int Influences = 4;
constexpr int Runs = 61;

struct Influence
{
    int bone;
    float weight;
};

struct Scene
{
    std::vector<RyVec3> rest;
    std::vector<RySkinDeformer::Channel> channels{Bones};
    std::vector<RyAffine> maps{Bones};
    std::vector<Eigen::Vector3f> peerRest;
    std::vector<Influence> peerInfluences; // four per vertex
    std::vector<Eigen::Affine3f> peerMaps{Bones};
};

Scene makeScene()
{
    Scene scene;
    std::mt19937 random(1234);
    std::uniform_real_distribution<float> number(0.0f, 1.0f);
    for (int v = 0; v < Vertices; ++v) {
        // Neighbouring vertices follow neighbouring bones, as on a body.
        const RyVec3 p(number(random) * 80 - 40, 180.0f * float(v) / Vertices, number(random) * 40 - 20);
        scene.rest.push_back(p);
        scene.peerRest.emplace_back(p.x, p.y, p.z);
        float weights[Influences];
        float sum = 0.0f;
        for (float &weight : weights)
            sum += weight = 0.05f + number(random);
        const int first = int(random() % 4u) + (Bones - 8) * (v / 100) / (Vertices / 100);
        for (int k = 0; k < Influences; ++k) {
            const int bone = first + k;
            scene.channels[size_t(bone)].vertices.push_back(v);
            scene.channels[size_t(bone)].weights.push_back(weights[k] / sum);
            scene.peerInfluences.push_back({bone, weights[k] / sum});
        }
    }
    return scene;
}

/// Another pose for every run, so that nothing can be kept from the last one.
void pose(Scene &scene, int run)
{
    for (int k = 0; k < Bones; ++k) {
        const float angle = 0.02f * float(run) + 0.1f * float(k);
        const Eigen::Affine3f map = Eigen::Translation3f(float(k) * 0.1f, 1.0f, 0.01f * float(run)) *
                                    Eigen::AngleAxisf(angle, Eigen::Vector3f(1.0f, 0.3f, float(k % 5)).normalized());
        scene.peerMaps[size_t(k)] = map;
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 3; ++column)
                scene.maps[size_t(k)].m[row][column] = map(column, row);
        }
    }
}

void peerDeform(const Scene &scene, std::vector<Eigen::Vector3f> &out)
{
    for (size_t v = 0; v < scene.peerRest.size(); ++v) {
        Eigen::Vector3f sum = Eigen::Vector3f::Zero();
        for (size_t k = 0; k < Influences; ++k) {
            const Influence &influence = scene.peerInfluences[Influences * v + k];
            sum += influence.weight * (scene.peerMaps[size_t(influence.bone)] * scene.peerRest[v]);
        }
        out[v] = sum;
    }
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

template<typename Work>
double milliseconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main()
{
    Scene scene = makeScene();
    RySkinDeformer deformer;
    const double build = milliseconds([&] { deformer.setInfluences(Vertices, scene.channels); });
    RySkinDeformer scalar;
    scalar.setPath(RySkinDeformer::Path::Plain);
    scalar.setInfluences(Vertices, scene.channels);
    std::vector<Eigen::Vector3f> peer(Vertices);

    for (int run = 0; run < 3; ++run) {
        pose(scene, run);
        peerDeform(scene, peer);
        const std::vector<RyVec3> &ours = deformer.deform(scene.rest, scene.maps, &scene, 1);
        const std::vector<RyVec3> &plain = scalar.deform(scene.rest, scene.maps, &scene, 1);
        double most = 0.0;
        for (size_t v = 0; v < peer.size(); ++v) {
            for (int j = 0; j < 3; ++j) {
                most = std::max(most, double(std::fabs(ours[v][j] - peer[v][j])));
                most = std::max(most, double(std::fabs(plain[v][j] - peer[v][j])));
            }
        }
        if (!(most < 1e-3)) {
            std::printf("results differ by %g cm\n", most);
            return 1;
        }
        if (run == 0)
            std::printf("results agree within %.2g cm\n", most);
    }

    std::vector<double> ourTimes, scalarTimes, peerTimes;
    for (int run = 0; run < Runs; ++run) {
        pose(scene, 10 + run);
        ourTimes.push_back(milliseconds([&] { deformer.deform(scene.rest, scene.maps, &scene, 1); }));
        peerTimes.push_back(milliseconds([&] { peerDeform(scene, peer); }));
        scalarTimes.push_back(milliseconds([&] { scalar.deform(scene.rest, scene.maps, &scene, 1); }));
    }
    const double ours = median(ourTimes);
    const double theirs = median(peerTimes);
    std::printf("vertices %d, influences %d, bones %d, AVX2 %s\n", Vertices, Influences, Bones,
                RySkinDeformer::hasAvx2() ? "yes" : "no");
    std::printf("building the flat arrays  %8.3f ms (once per change of weights)\n", build);
    std::printf("our deformer              %8.3f ms\n", ours);
    std::printf("our deformer without AVX2 %8.3f ms\n", median(scalarTimes));
    std::printf("plain Eigen loop          %8.3f ms\n", theirs);
    std::printf("ratio                     %8.2f\n", theirs / ours);
    return 0;
}
