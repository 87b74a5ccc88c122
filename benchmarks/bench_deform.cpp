// The blend of a skin: our deformer beside Ogre's software skinning and a plain Eigen loop, beside what the memory
// gives, beside itself when one bone of many moved, and a posed picture beside positions blended and normals made anew
// from the triangles. Results are compared before anything is timed. The argument --short takes small meshes and one
// turn, which checks the results and judges no time.
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>

#include "RyOgrePeer.h"
#include "RyRoundRobin.h"
#include "RySkinPeers.h"
#include "RyTriad.h"
#include "RyTwoStepSkin.h"

#include <cstdio>
#include <cstring>

namespace {

bool isShort = false;
bool allGood = true;

int turns(int wanted)
{
    return isShort ? 1 : wanted;
}

int sized(int vertices)
{
    return isShort ? vertices / 50 : vertices;
}

/// Runs what is timed with so many threads of the thread library.
auto withThreads(size_t threads)
{
    return [threads](const RyRoundRobin::Work &timed) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        timed();
    };
}

/// Says how a ratio stands to what is asked of it.
void tell(const char *what, double ratio, double wanted, bool atLeast = true)
{
    const bool good = atLeast ? ratio >= wanted : ratio <= wanted;
    std::printf("  => %-52s %6.3f  (%s %.2f%s)\n", what, ratio, atLeast ? "at least" : "at most", wanted,
                isShort || good ? "" : ", MISSED");
}

/// A deformer that poses a workload anew at each call.
struct OurDeformer
{
    OurDeformer(const RySkinWorkload &itsWork, RySkinDeformer::Path path) : work(itsWork)
    {
        deformer.setInfluences(work.vertexCount, work.channels());
        deformer.setPath(path);
    }
    void blend() { blend(pose = 1 - pose); }
    void blend(int which) { deformer.deform(work.positions, work.maps[which], &work, 1, {&work.normals, nullptr}); }

    const RySkinWorkload &work;
    RySkinDeformer deformer;
    int pose = 0;
};

double farthest(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b, bool asUnits)
{
    double most = a.size() == b.size() ? 0.0 : 1e30;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const RyVec3 apart = asUnits ? a[i].normalized() - b[i].normalized() : a[i] - b[i];
        most = std::max(most, double(apart.length()));
    }
    return most;
}

void check(const char *name, const std::vector<RyVec3> &positions, const std::vector<RyVec3> &normals,
           const RySkinPeer &right)
{
    const double p = farthest(positions, right.positions, false);
    const double n = farthest(normals, right.normals, true);
    if (p < 1e-3 && n < 1e-4)
        return;
    std::printf("  %s: WRONG RESULT, positions by %g cm, normals by %g\n", name, p, n);
    allGood = false;
}

/// Beside the peers, one thread.
void besidePeers(int vertices, int influences)
{
    const RySkinWorkload work(sized(vertices), influences);
    OurDeformer best(work, RySkinDeformer::Path::Best);
    OurDeformer plain(work, RySkinDeformer::Path::Plain);
    RySkinPeer eigen(work);
    RyOgrePeer ogre(work);
    const bool withOgre = RyOgrePeer::isThere() && influences <= 4;
    for (int pose = 0; pose < 2; ++pose) {
        eigen.blendWithEigen(work, pose);
        best.blend(pose);
        check("ours", best.deformer.deform(work.positions, work.maps[pose], &work, 1, {&work.normals, nullptr}),
              best.deformer.normals(), eigen);
        plain.blend(pose);
        check("ours without AVX2",
              plain.deformer.deform(work.positions, work.maps[pose], &work, 1, {&work.normals, nullptr}),
              plain.deformer.normals(), eigen);
        if (withOgre) {
            ogre.blend(pose);
            check("Ogre", ogre.result().positions, ogre.result().normals, eigen);
        }
    }
    std::printf("\n%d vertices with %d influences, positions and normals, one thread, AVX2 %s\n", work.vertexCount,
                influences, RySkinDeformer::hasAvx2() ? "yes" : "no");
    RyRoundRobin ways;
    int pose = 0;
    const size_t ours = ways.add(
        "ours", [&] { best.blend(); }, withThreads(1));
    const size_t oursPlain = ways.add(
        "ours without AVX2", [&] { plain.blend(); }, withThreads(1));
    const size_t loop = ways.add("Eigen loop", [&] { eigen.blendWithEigen(work, pose = 1 - pose); });
    const size_t peer = withOgre ? ways.add("Ogre", [&] { ogre.blend(pose = 1 - pose); }) : loop;
    ways.run(turns(21), 2.0);
    ways.print();
    const bool avx2 = RySkinDeformer::hasAvx2();
    if (influences == 4 && withOgre) {
        tell("speed of Ogre, without AVX2", ways.ratio(peer, oursPlain), 0.95);
        if (avx2)
            tell("speed of Ogre, with AVX2", ways.ratio(peer, ours), 1.5);
    } else if (influences == 4) {
        tell("speed of the Eigen loop, without AVX2", ways.ratio(loop, oursPlain), 1.3);
        if (avx2)
            tell("speed of the Eigen loop, with AVX2", ways.ratio(loop, ours), 2.4);
    } else if (influences == 1 && withOgre) {
        tell("speed of Ogre", ways.ratio(peer, ours), 0.95);
    } else if (influences == 8 && avx2) {
        tell("speed of the Eigen loop", ways.ratio(loop, ours), 1.8);
    }
}

/// Beside what the memory gives: indices of 2 bytes, weights of 4, and 48 bytes of points.
void besideMemory(int vertices)
{
    constexpr int influences = 4;
    const RySkinWorkload work(sized(vertices), influences);
    OurDeformer ours(work, RySkinDeformer::Path::Best);
    RyTwoStepSkin positionsOnly(work, {});
    RySkinPeer eigen(work);
    eigen.blendWithEigen(work, 1);
    ours.blend(1);
    check("ours", ours.deformer.deform(work.positions, work.maps[1], &work, 1, {&work.normals, nullptr}),
          ours.deformer.normals(), eigen);
    positionsOnly.blendPositions(1);
    check("positions alone", positionsOnly.positions(), eigen.normals, eigen);
    constexpr size_t bytesOfVertex = influences * (2 + 4) + 48;
    RyTriad triad(size_t(work.vertexCount) * bytesOfVertex);
    const auto runTriad = [&triad](size_t threads, auto part) {
        const size_t half = triad.count() / threads / 64 * 64;
        tbb::parallel_for(size_t(0), threads,
                          [&](size_t i) { part(i * half, i + 1 == threads ? triad.count() : (i + 1) * half); });
    };
    std::printf("\n%d vertices with %d influences, %zu bytes each\n", work.vertexCount, influences, bytesOfVertex);
    RyRoundRobin ways;
    size_t numbers[2][4];
    for (size_t threads = 1; threads <= 2; ++threads) {
        const auto around = withThreads(threads);
        size_t *its = numbers[threads - 1];
        const std::string name = threads == 1 ? ", one thread" : ", two threads";
        its[0] = ways.add(
            "triad" + name, [&, threads] { runTriad(threads, [&](size_t from, size_t to) { triad.run(from, to); }); },
            around);
        its[1] = ways.add(
            "triad past the cache" + name,
            [&, threads] { runTriad(threads, [&](size_t from, size_t to) { triad.runPastCache(from, to); }); }, around);
        its[2] = ways.add(
            "ours" + name, [&] { ours.blend(); }, around);
        its[3] = ways.add(
            "positions alone, with lists" + name, [&] { positionsOnly.blendPositions(1); }, around);
    }
    ways.run(turns(15), 0.0);
    ways.print();
    for (const auto &its : numbers) {
        const double triadTime = std::min(ways.median(its[0]), ways.median(its[1]));
        tell(&its == &numbers[0] ? "share of the triad, one thread" : "share of the triad, two threads",
             triadTime / ways.median(its[2]), &its == &numbers[0] ? 0.4 : 0.5);
    }
}

/// One bone moves a tenth of the vertices: the first ones, or here and there.
void oneBoneMoved(int vertices, bool scattered)
{
    const RySkinWorkload work(sized(vertices), 4);
    std::vector<RySkinDeformer::Channel> channels = work.channels();
    RySkinDeformer::Channel &moving = channels[RySkinWorkload::Bones - 1];
    moving = {};
    std::mt19937 random(5);
    for (int v = 0; v < work.vertexCount; ++v) {
        if (scattered ? random() % 10 == 0 : v < work.vertexCount / 10) {
            moving.vertices.push_back(v);
            moving.weights.push_back(0.5f);
        }
    }
    RySkinDeformer deformer;
    deformer.setInfluences(work.vertexCount, channels);
    std::vector<RyAffine> maps = work.maps[0];
    const auto blend = [&](RySkinDeformer &its) {
        its.deform(work.positions, maps, &work, 1, {&work.normals, nullptr});
    };
    const auto moveBone = [&] { maps.back().m[3][0] += 0.25; };
    const auto moveAll = [&] {
        for (RyAffine &map : maps)
            map.m[3][1] += 0.25;
    };
    blend(deformer);
    moveBone();
    blend(deformer);
    const qint64 touched = deformer.lastTouched();
    RySkinDeformer fresh;
    fresh.setInfluences(work.vertexCount, channels);
    blend(fresh);
    const std::vector<RyVec3> positions = fresh.deform(work.positions, maps, &work, 1, {&work.normals, nullptr});
    if (deformer.deform(work.positions, maps, &work, 1, {&work.normals, nullptr}) != positions ||
        deformer.normals() != fresh.normals() || touched < qint64(moving.vertices.size())) {
        std::printf("  WRONG RESULT after one bone moved\n");
        allGood = false;
    }
    std::printf("\n%d vertices, one bone moves %zu of them, %s: %lld touched\n", work.vertexCount,
                moving.vertices.size(), scattered ? "here and there" : "one run", static_cast<long long>(touched));
    RyRoundRobin ways;
    const size_t all = ways.add(
        "all bones moved",
        [&] {
            moveAll();
            blend(deformer);
        },
        withThreads(1));
    const size_t one = ways.add(
        "one bone moved",
        [&] {
            moveBone();
            blend(deformer);
        },
        withThreads(1));
    const size_t allThreads = ways.add("all bones moved, all threads", [&] {
        moveAll();
        blend(deformer);
    });
    const size_t oneThreads = ways.add("one bone moved, all threads", [&] {
        moveBone();
        blend(deformer);
    });
    ways.run(turns(21), 2.0);
    ways.print();
    tell("one bone to all, one thread", ways.ratio(one, all), scattered ? 0.4 : 0.2, false);
    std::printf("  => one bone to all, all threads: %.3f\n", ways.ratio(oneThreads, allThreads));
}

/// A grid of triangles over the vertices.
std::vector<unsigned> gridTriangles(int vertices)
{
    const auto side = unsigned(std::sqrt(double(vertices)));
    std::vector<unsigned> triangles;
    for (unsigned y = 0; y + 1 < side; ++y) {
        for (unsigned x = 0; x + 1 < side; ++x) {
            const unsigned a = y * side + x;
            triangles.insert(triangles.end(), {a, a + 1, a + side, a + 1, a + side + 1, a + side});
        }
    }
    return triangles;
}

/// A posed picture: positions and normals, put together for the upload in memory.
void posedPicture(int vertices)
{
    const RySkinWorkload work(sized(vertices), 4);
    OurDeformer ours(work, RySkinDeformer::Path::Best);
    RyTwoStepSkin twoSteps(work, gridTriangles(work.vertexCount));
    std::vector<RyVec3> buffer(2 * work.positions.size());
    const auto oursToBuffer = [&](int pose) {
        const auto &positions =
            ours.deformer.deform(work.positions, work.maps[pose], &work, 1, {&work.normals, nullptr});
        std::memcpy(buffer.data(), positions.data(), positions.size() * sizeof(RyVec3));
        std::memcpy(buffer.data() + positions.size(), ours.deformer.normals().data(),
                    positions.size() * sizeof(RyVec3));
    };
    std::vector<RyVec3> otherBuffer(buffer.size());
    const auto twoStepsToBuffer = [&](int pose) {
        twoSteps.makePicture(pose);
        std::memcpy(otherBuffer.data(), twoSteps.picture().data(), buffer.size() * sizeof(RyVec3));
    };
    oursToBuffer(1);
    twoStepsToBuffer(1);
    double most = 0.0;
    for (size_t v = 0; v < work.positions.size(); ++v)
        most = std::max(most, double((buffer[v] - otherBuffer[2 * v]).length()));
    if (!(most < 1e-3)) {
        std::printf("  posed picture: WRONG RESULT by %g cm\n", most);
        allGood = false;
    }
    std::printf("\nPosed picture of %d vertices and %d triangles: deform, normals, upload (a copy in memory)\n",
                work.vertexCount, int(gridTriangles(work.vertexCount).size() / 3));
    RyRoundRobin ways;
    int pose = 0;
    const size_t us = ways.add("ours", [&] { oursToBuffer(pose = 1 - pose); });
    const size_t other = ways.add("two steps, normals from triangles", [&] { twoStepsToBuffer(pose = 1 - pose); });
    ways.run(turns(21), 2.0);
    ways.print();
    tell("ours to two steps", ways.ratio(us, other), 0.7, false);
}

} // namespace

int main(int argc, char **argv)
{
    isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    // The library makes room for as many threads as it may have when it is first used.
    tbb::parallel_for(0, 1000, [](int) {});
    besidePeers(100000, 4);
    besidePeers(100000, 1);
    besidePeers(100000, 8);
    besideMemory(1000000);
    oneBoneMoved(100000, false);
    oneBoneMoved(100000, true);
    posedPicture(214000);
    return allGood ? 0 : 1;
}
