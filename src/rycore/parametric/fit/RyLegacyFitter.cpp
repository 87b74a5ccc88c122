#include "rycore/parametric/fit/RyLegacyFitter.h"

#include "rycore/math/RyBox3.h"
#include "rycore/mesh/RyWeightQuantizer.h"
#include "rycore/parametric/RyLegacyDeformer.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/fit/RyLegacyFitStage.h"
#include "rycore/parametric/fit/RyLegacyWeightSolver.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <cmath>
#include <set>

struct RyLegacyFitter::Vertex
{
    int number = 0;
    RyLegacyFitVertex moved;
    std::vector<quint16> weights; // of its candidates
    double squares = 0.0;         // of the distances in all poses, cm²
    double farthest = 0.0;        // cm²
    int farthestPose = -1;
};

RyLegacyFitter::RyLegacyFitter(RyLegacyFitInput input) : m_input(std::move(input))
{
    findVertices();
}

RyLegacyFitter::~RyLegacyFitter() = default;

void RyLegacyFitter::findVertices()
{
    RyLegacyDeformer deformer;
    deformer.setRig(m_input.rig, m_input.rest);
    m_vertices.resize(m_input.rest.size());
    RyParallel::forRanges(m_vertices.size(), 256, [&](size_t first, size_t last) {
        for (size_t i = first; i < last; ++i) {
            m_vertices[i].number = int(i);
            m_vertices[i].moved = {m_input.rig, m_input.rig.owners[i], deformer.parts(int(i))};
        }
    });
    std::set<int> drivers;
    for (const Vertex &vertex : m_vertices)
        drivers.insert(vertex.moved.partly.begin(), vertex.moved.partly.end());
    m_drivers.assign(drivers.begin(), drivers.end());
}

namespace {

/// Whole numbers with the sum of full weight; what would round to nothing goes first.
std::vector<quint16> quantized(std::vector<double> weights)
{
    double sum = 0.0;
    for (double &weight : weights)
        sum += weight = weight * RyWeightMap::FullWeight < 1.0 ? 0.0 : weight;
    std::vector<quint16> result(weights.size());
    RyWeightQuantizer::spreadRest(weights.data(), int(weights.size()), sum, result.data());
    return result;
}

std::vector<double> asShares(const std::vector<quint16> &weights)
{
    std::vector<double> shares;
    for (const quint16 weight : weights)
        shares.push_back(double(weight) / RyWeightMap::FullWeight);
    return shares;
}

} // namespace

void RyLegacyFitter::solve(const RyLegacyFitStage &stage, Vertex &vertex) const
{
    const size_t count = vertex.moved.bones.size();
    RyLegacyWeightSolver solver(count);
    std::vector<double> images(3 * count);
    double target[3];
    for (const int pose : stage.posesFor(vertex.moved, false)) {
        stage.stand(vertex.moved, m_input.rest[size_t(vertex.number)], pose, images.data(), target);
        solver.addPose(images.data(), target);
    }
    const std::vector<quint16> fitted = quantized(solver.solve(vertex.moved.plain));
    if (solver.error(asShares(fitted)) < solver.error(asShares(vertex.weights)))
        vertex.weights = fitted;
}

void RyLegacyFitter::measure(const RyLegacyFitStage &stage, Vertex &vertex) const
{
    const std::vector<double> weights = asShares(vertex.weights);
    std::vector<double> images(3 * weights.size());
    double target[3];
    for (const int pose : stage.posesFor(vertex.moved, true)) {
        stage.stand(vertex.moved, m_input.rest[size_t(vertex.number)], pose, images.data(), target);
        double square = 0.0;
        for (size_t k = 0; k < 3; ++k) {
            double off = -target[k];
            for (size_t i = 0; i < weights.size(); ++i)
                off += weights[i] * images[3 * i + k];
            square += off * off;
        }
        vertex.squares += square;
        if (square > vertex.farthest) {
            vertex.farthest = square;
            vertex.farthestPose = pose;
        }
    }
}

/// In blocks, between which the progress is told; false when it was cancelled.
bool RyLegacyFitter::forAll(const std::function<void(Vertex &)> &work, const Progress &progress, double from, double to)
{
    constexpr size_t Block = 4096;
    for (size_t begin = 0; begin < m_vertices.size(); begin += Block) {
        if (progress && !progress(from + (to - from) * double(begin) / double(m_vertices.size())))
            return false;
        const size_t count = std::min(Block, m_vertices.size() - begin);
        RyParallel::forRanges(count, 64, [&](size_t first, size_t last) {
            for (size_t i = first; i < last; ++i) {
                if (m_vertices[begin + i].moved.isPartly())
                    work(m_vertices[begin + i]);
            }
        });
    }
    return true;
}

std::shared_ptr<RyLegacyFit> RyLegacyFitter::fit(const Progress &progress)
{
    return make(progress, true);
}

std::shared_ptr<RyLegacyFit> RyLegacyFitter::plain()
{
    return make(Progress(), false);
}

std::shared_ptr<RyLegacyFit> RyLegacyFitter::make(const Progress &progress, bool isFitted)
{
    auto result = std::make_shared<RyLegacyFit>();
    for (Vertex &vertex : m_vertices) {
        vertex.weights = quantized(vertex.moved.plain);
        vertex.squares = vertex.farthest = 0.0;
    }
    const RyLegacyFitStage stage(m_input, m_drivers);
    const auto solveIt = [&](Vertex &vertex) { solve(stage, vertex); };
    const auto measureIt = [&](Vertex &vertex) { measure(stage, vertex); };
    if (!isFitted || forAll(solveIt, progress, 0.0, 0.7)) {
        result->isPlain = !isFitted;
        if (forAll(measureIt, isFitted ? progress : Progress(), 0.7, 1.0))
            result->report = report(stage);
        result->report.bulges = bulges(stage);
    } else {
        for (Vertex &vertex : m_vertices)
            vertex.weights = quantized(vertex.moved.plain);
        result->isPlain = true;
    }
    result->bones = boneWeights();
    result->input = m_input;
    return result;
}

std::vector<RyLegacyFit::Bone> RyLegacyFitter::boneWeights() const
{
    std::vector<RyLegacyFit::Bone> bones(m_input.rig.bones.size());
    for (const Vertex &vertex : m_vertices) {
        for (size_t i = 0; i < vertex.weights.size(); ++i) {
            if (vertex.weights[i] == 0)
                continue;
            RyLegacyFit::Bone &bone = bones[size_t(vertex.moved.bones[i])];
            bone.vertices.push_back(vertex.number);
            bone.weights.push_back(vertex.weights[i]);
        }
    }
    return bones;
}

/// As of a figure that stands: its extent upwards, unless it is flat.
double RyLegacyFitter::height() const
{
    RyBox3 box;
    for (const RyVec3 &point : m_input.rest)
        box.include(point);
    const RyVec3 size = box.getExtents();
    const float largest = std::max({size.x, size.y, size.z});
    return double(size.y > 0.01f * largest ? size.y : largest);
}

RyLegacyFitReport RyLegacyFitter::report(const RyLegacyFitStage &stage) const
{
    RyLegacyFitReport report;
    report.poses = int(stage.poses().size());
    const Vertex *worst = nullptr;
    double squares = 0.0;
    size_t partly = 0;
    for (const Vertex &vertex : m_vertices) {
        partly += vertex.moved.isPartly();
        squares += vertex.squares;
        if (vertex.farthest > (worst ? worst->farthest : 0.0))
            worst = &vertex;
    }
    const double percent = height() > 0.0 ? 100.0 / height() : 0.0;
    const auto rmsOf = [&](size_t vertices) {
        return vertices > 0 ? percent * std::sqrt(squares / double(vertices) / report.poses) : 0.0;
    };
    if (!worst)
        return report;
    report.rms = rmsOf(m_vertices.size());
    report.rmsPartly = rmsOf(partly);
    report.max = percent * std::sqrt(worst->farthest);
    report.bone = QString::fromStdString(m_input.names[size_t(m_input.rig.owners[size_t(worst->number)])]);
    report.pose = stage.poses()[size_t(worst->farthestPose)].name;
    return report;
}

/// What bulges move, over all poses: no weights can say it, and the fit leaves it out.
double RyLegacyFitter::bulges(const RyLegacyFitStage &stage) const
{
    RyLegacyRig rig = m_input.rig;
    const auto isBulging = [](const RyLegacyRig::Param &param) {
        return param.type == RyLegacyJointParam::Bend && param.flags & RyLegacyJointParam::ApplyBulges;
    };
    if (std::none_of(rig.params.begin(), rig.params.end(), isBulging) || !(height() > 0.0) || m_vertices.empty())
        return 0.0;
    RyLegacyDeformer with, without;
    with.setRig(rig, m_input.rest);
    for (RyLegacyRig::Param &param : rig.params) {
        if (isBulging(param))
            param.flags &= ~unsigned(RyLegacyJointParam::ApplyBulges);
    }
    without.setRig(rig, m_input.rest);
    double squares = 0.0;
    std::vector<RyVec3> bulged, plain;
    for (const RyLegacyFitPose &pose : stage.poses()) {
        with.deform(m_input.rest, pose.controls, bulged);
        without.deform(m_input.rest, pose.controls, plain);
        for (size_t vertex = 0; vertex < plain.size(); ++vertex) {
            const double moved = (bulged[vertex] - plain[vertex]).length();
            squares += moved * moved;
        }
    }
    return 100.0 / height() * std::sqrt(squares / double(m_vertices.size()) / double(stage.poses().size()));
}
