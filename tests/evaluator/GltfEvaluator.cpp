#include "evaluator/GltfEvaluator.h"

#include "evaluator/GltfModel.h"

#include <nlohmann/json.hpp>

#include <Eigen/Geometry>

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>

using nlohmann::json;

namespace {

[[noreturn]] void fail(const std::string &reason)
{
    throw std::runtime_error(reason);
}

} // namespace

GltfEvaluator::GltfEvaluator(const std::string &path) : d(std::make_unique<GltfModel>(path)) {}

GltfEvaluator::~GltfEvaluator() = default;
GltfEvaluator::GltfEvaluator(GltfEvaluator &&) noexcept = default;

const json &GltfEvaluator::tree() const
{
    return d->file.json;
}

int GltfEvaluator::nodeCount() const
{
    return int(d->parents.size());
}

int GltfEvaluator::node(const std::string &name) const
{
    int found = -1;
    for (int i = 0; i < nodeCount(); ++i) {
        if (nodeName(i) != name)
            continue;
        if (found != -1)
            fail("two nodes are called " + name);
        found = i;
    }
    if (found == -1)
        fail("no node is called " + name);
    return found;
}

std::string GltfEvaluator::nodeName(int node) const
{
    return d->node(node).value("name", std::string());
}

int GltfEvaluator::parent(int node) const
{
    return d->parents.at(std::size_t(node));
}

Eigen::Matrix4d GltfEvaluator::localMatrix(int node, const GltfPose &pose) const
{
    const auto replaced = pose.local.find(node);
    Eigen::Matrix4d local = replaced != pose.local.end() ? replaced->second : d->localMatrix(node);
    const auto turned = pose.turn.find(node);
    if (turned != pose.turn.end()) {
        Eigen::Matrix4d turn = Eigen::Matrix4d::Identity();
        turn.topLeftCorner<3, 3>() = turned->second;
        local = (local * turn).eval();
    }
    return local;
}

std::vector<Eigen::Matrix4d> GltfEvaluator::worldMatrices(const GltfPose &pose) const
{
    std::vector<Eigen::Matrix4d> worlds(std::size_t(nodeCount()), Eigen::Matrix4d::Identity());
    std::vector<int> open;
    for (int i = 0; i < nodeCount(); ++i) {
        if (parent(i) == -1)
            open.push_back(i);
    }
    while (!open.empty()) {
        const int node = open.back();
        open.pop_back();
        const Eigen::Matrix4d local = localMatrix(node, pose);
        worlds[std::size_t(node)] = parent(node) == -1 ? local : (worlds[std::size_t(parent(node))] * local).eval();
        for (const json &child : GltfModel::listOf(d->node(node), "children"))
            open.push_back(child.get<int>());
    }
    return worlds;
}

Eigen::Vector3d GltfEvaluator::worldPosition(int node, const GltfPose &pose) const
{
    return worldMatrices(pose).at(std::size_t(node)).topRightCorner<3, 1>();
}

int GltfEvaluator::skinCount() const
{
    return int(d->skins.size());
}

const std::vector<int> &GltfEvaluator::joints(int skin) const
{
    return d->skins.at(std::size_t(skin)).joints;
}

const std::vector<Eigen::Matrix4d> &GltfEvaluator::inverseBindMatrices(int skin) const
{
    return d->skins.at(std::size_t(skin)).inverseBinds;
}

const std::vector<GltfPrimitive> &GltfEvaluator::primitives() const
{
    return d->primitives;
}

std::vector<Eigen::Vector3d> GltfEvaluator::restPositions(const GltfPrimitive &primitive) const
{
    const GltfTable table =
        readGltfAccessor(d->file, d->primitive(primitive).at("attributes").at("POSITION").get<int>());
    if (table.components != 3)
        fail("positions have not three numbers");
    std::vector<Eigen::Vector3d> points(table.count);
    for (std::size_t i = 0; i < table.count; ++i)
        points[i] = Eigen::Map<const Eigen::Vector3d>(table.row(i));
    return points;
}

std::vector<std::vector<GltfInfluence>> GltfEvaluator::influences(const GltfPrimitive &primitive) const
{
    const json &attributes = d->primitive(primitive).at("attributes");
    const std::size_t count = restPositions(primitive).size();
    std::vector<std::vector<GltfInfluence>> result(count);
    if (primitive.skin < 0)
        return result;
    const std::vector<int> &joints = this->joints(primitive.skin);
    for (int set = 0; attributes.contains("JOINTS_" + std::to_string(set)); ++set) {
        const std::string number = std::to_string(set);
        const GltfTable places = readGltfAccessor(d->file, attributes["JOINTS_" + number].get<int>());
        const GltfTable weights = readGltfAccessor(d->file, attributes.at("WEIGHTS_" + number).get<int>());
        if (places.count != count || weights.count != count || places.components != 4 || weights.components != 4)
            fail("joints, weights and positions differ in count");
        for (std::size_t v = 0; v < count; ++v) {
            for (std::size_t k = 0; k < 4; ++k) {
                const double weight = weights.row(v)[k];
                if (!(weight > 0.0))
                    continue;
                const auto place = std::size_t(places.row(v)[k]);
                if (place >= joints.size())
                    fail("vertex " + std::to_string(v) + " uses a joint that the skin does not have");
                result[v].push_back({joints[place], weight});
            }
        }
    }
    for (auto &vertex : result) {
        double sum = 0.0;
        for (const GltfInfluence &influence : vertex)
            sum += influence.weight;
        for (GltfInfluence &influence : vertex)
            influence.weight /= sum;
    }
    return result;
}

std::vector<Eigen::Vector3d> GltfEvaluator::positions(const GltfPrimitive &primitive, const GltfPose &pose) const
{
    std::vector<Eigen::Vector3d> points = restPositions(primitive);
    const json &source = d->primitive(primitive);
    const json &targets = GltfModel::listOf(source, "targets");
    if (!targets.empty()) {
        const json &mesh = d->file.json.at("meshes").at(std::size_t(primitive.mesh));
        std::vector<double> amounts = mesh.value("weights", std::vector<double>(targets.size(), 0.0));
        amounts = d->node(primitive.node).value("weights", amounts);
        if (const auto other = pose.weights.find(primitive.node); other != pose.weights.end())
            amounts = other->second;
        for (std::size_t t = 0; t < targets.size() && t < amounts.size(); ++t) {
            if (amounts[t] == 0.0 || !targets[t].contains("POSITION"))
                continue;
            const GltfTable table = readGltfAccessor(d->file, targets[t]["POSITION"].get<int>());
            if (table.count != points.size() || table.components != 3)
                fail("a morph target differs in count");
            for (std::size_t v = 0; v < points.size(); ++v)
                points[v] += amounts[t] * Eigen::Map<const Eigen::Vector3d>(table.row(v));
        }
    }

    const std::vector<Eigen::Matrix4d> worlds = worldMatrices(pose);
    const Eigen::Matrix4d &own = worlds[std::size_t(primitive.node)];
    std::map<int, Eigen::Matrix4d> jointMatrices;
    if (primitive.skin >= 0) {
        const std::vector<int> &joints = this->joints(primitive.skin);
        for (std::size_t i = 0; i < joints.size(); ++i)
            jointMatrices.insert({joints[i], worlds[std::size_t(joints[i])] * inverseBindMatrices(primitive.skin)[i]});
    }
    const auto shares = influences(primitive);
    for (std::size_t v = 0; v < points.size(); ++v) {
        const Eigen::Vector4d point = points[v].homogeneous();
        if (shares[v].empty()) {
            points[v] = (own * point).head<3>();
            continue;
        }
        Eigen::Vector4d sum = Eigen::Vector4d::Zero();
        for (const GltfInfluence &influence : shares[v])
            sum += influence.weight * (jointMatrices.at(influence.joint) * point);
        points[v] = sum.head<3>();
    }
    return points;
}

std::vector<Eigen::Vector3d> GltfEvaluator::allPositions(const GltfPose &pose) const
{
    std::vector<Eigen::Vector3d> all;
    for (const GltfPrimitive &primitive : primitives()) {
        const auto points = positions(primitive, pose);
        all.insert(all.end(), points.begin(), points.end());
    }
    return all;
}

std::vector<std::array<int, 3>> GltfEvaluator::triangles(const GltfPrimitive &primitive) const
{
    const json &source = d->primitive(primitive);
    std::vector<int> corners;
    const std::size_t count = restPositions(primitive).size();
    if (source.contains("indices")) {
        for (double value : readGltfAccessor(d->file, source["indices"].get<int>()).values) {
            if (value >= double(count))
                fail("a triangle uses a vertex that does not exist");
            corners.push_back(int(value));
        }
    } else {
        for (std::size_t i = 0; i < count; ++i)
            corners.push_back(int(i));
    }
    std::vector<std::array<int, 3>> result;
    const int mode = source.value("mode", 4);
    if (mode == 4) {
        for (std::size_t i = 0; i + 2 < corners.size(); i += 3)
            result.push_back({corners[i], corners[i + 1], corners[i + 2]});
    } else if (mode == 5 || mode == 6) {
        for (std::size_t i = 0; i + 2 < corners.size(); ++i) {
            if (mode == 5)
                result.push_back({corners[i], corners[i + 1 + i % 2], corners[i + 2 - i % 2]});
            else
                result.push_back({corners[i + 1], corners[i + 2], corners[0]});
        }
    }
    return result;
}

GltfCounts GltfEvaluator::counts() const
{
    GltfCounts counts;
    for (const GltfPrimitive &primitive : primitives()) {
        counts.vertices += restPositions(primitive).size();
        counts.triangles += triangles(primitive).size();
        for (const auto &vertex : influences(primitive))
            counts.maxInfluences = std::max(counts.maxInfluences, vertex.size());
    }
    std::set<int> distinct;
    for (const GltfModel::Skin &skin : d->skins)
        distinct.insert(skin.joints.begin(), skin.joints.end());
    counts.joints = distinct.size();
    return counts;
}

GltfTable GltfEvaluator::accessorValues(int accessor) const
{
    return readGltfAccessor(d->file, accessor);
}

std::string GltfEvaluator::accessorBytes(int accessor) const
{
    return readGltfAccessorBytes(d->file, accessor);
}

std::string GltfEvaluator::bufferBytes(int buffer) const
{
    return d->file.buffers.at(std::size_t(buffer));
}

double gltfMaxDistance(const std::vector<Eigen::Vector3d> &a, const std::vector<Eigen::Vector3d> &b)
{
    if (a.size() != b.size())
        return std::numeric_limits<double>::infinity();
    double largest = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double distance = (a[i] - b[i]).norm();
        if (!(distance <= largest)) // also where it is no number
            largest = distance == distance ? distance : std::numeric_limits<double>::infinity();
    }
    return largest;
}
