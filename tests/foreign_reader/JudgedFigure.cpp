#include "foreign_reader/JudgedFigure.h"

#include "evaluator/GltfClipEvaluator.h"
#include "evaluator/GltfFileReader.h"
#include "foreign_reader/ConvertedFile.h"
#include "io/CharacterScene.h"
#include "rycore/scene/RyBone.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <fstream>

using Json = nlohmann::json;

JudgedFigure::JudgedFigure(const QString &figures, const ConvertedFile &file)
    : m_file(file), m_height(file.character->height / 100.0)
{
    std::ifstream text(figures.toStdString());
    m_figures = Json::parse(text);
    for (const RyBone *bone : file.character->bones()) {
        m_bones[bone->getName().toStdString()] = bone;
        m_boneOf[file.character->nodeOf(bone)] = bone;
    }
    const GltfEvaluator &judged = file.character->file;
    const CharacterScene::Positions rest = file.character->atRest();
    for (const GltfPrimitive &primitive : judged.primitives()) {
        m_influences.push_back(judged.influences(primitive));
        m_rest.push_back(rest.at({primitive.node, primitive.primitive}));
        for (Vector &point : m_rest.back())
            point /= 100.0;
    }
    if (m_rest.empty()) { // the skeleton alone says how high it is
        float low = 1e30f, high = -1e30f;
        for (const RyBone *bone : file.character->bones()) {
            low = std::min({low, bone->getOrigin().y, bone->getEndPoint().y});
            high = std::max({high, bone->getOrigin().y, bone->getEndPoint().y});
        }
        m_height = double(high - low) / 100.0;
    }
}

JudgedFigure::Vector JudgedFigure::vectorOf(const Json &numbers)
{
    return {numbers.at(0).get<double>(), numbers.at(1).get<double>(), numbers.at(2).get<double>()};
}

JudgedFigure::Differences JudgedFigure::compare()
{
    Differences differences;
    compareBones(differences);
    for (const Json &mesh : m_figures.at("meshes"))
        compareMesh(mesh, differences);
    compareFrames(differences);
    compareMorphs(differences);
    return differences;
}

void JudgedFigure::compareBones(Differences &differences)
{
    const auto distance = [this](const RyVec3 &ours, const Json &judged) {
        return (Vector(ours.x, ours.y, ours.z) / 100.0 - vectorOf(judged)).norm() / m_height;
    };
    for (const Json &judged : m_figures.at("bones")) {
        const std::string name = judged.at("name").get<std::string>();
        if (const auto ours = m_bones.find(name); ours != m_bones.end()) {
            differences.heads = std::max(differences.heads, distance(ours->second->getOrigin(), judged.at("head")));
            ++bonesCompared;
            continue;
        }
        const Json &parent = judged.at("parent");
        const auto above = parent.is_string() ? m_bones.find(parent.get<std::string>()) : m_bones.end();
        if (above != m_bones.end() && name == above->first + "_end")
            differences.ends = std::max(differences.ends, distance(above->second->getEndPoint(), judged.at("head")));
        else
            missing.append(QString::fromStdString(name));
    }
}

double JudgedFigure::weightDifference(const Match &match, const Json &weights) const
{
    std::map<std::string, double> left;
    for (const auto &[name, weight] : weights.items())
        left[name] = weight.get<double>();
    for (const GltfInfluence &influence : m_influences[match.primitive][match.vertex])
        left[m_boneOf.at(influence.joint)->getName().toStdString()] -= influence.weight;
    double worst = 0.0;
    for (const auto &[name, difference] : left)
        worst = std::max(worst, std::abs(difference));
    return weights.empty() ? 0.0 : worst; // a vertex that follows nothing is held by the first joint
}

bool JudgedFigure::findMatch(const Vector &place, const Json &weights, Match &match, double &difference) const
{
    difference = 1e300;
    for (size_t primitive = 0; primitive < m_rest.size(); ++primitive) {
        if (m_file.character->file.primitives()[primitive].skin < 0)
            continue;
        for (size_t vertex = 0; vertex < m_rest[primitive].size(); ++vertex) {
            if ((m_rest[primitive][vertex] - place).norm() > 2e-5 * m_height)
                continue;
            const double here = weightDifference({primitive, vertex}, weights);
            if (here < difference) {
                difference = here;
                match = {primitive, vertex};
            }
        }
    }
    return difference < 1e300;
}

/// Turns bones about their heads at rest, each in the frame of its parent, and blends.
JudgedFigure::Vector JudgedFigure::posed(const Match &match, const Json &pose) const
{
    const auto mapOf = [&](const RyBone *bone) {
        Eigen::Affine3d map = Eigen::Affine3d::Identity();
        for (const RyNode *at = bone; qobject_cast<const RyBone *>(at); at = at->getNodeParent()) {
            for (const Json &turn : pose) {
                if (turn.at("bone").get<std::string>() != at->getName().toStdString())
                    continue;
                const RyVec3 origin = at->getOrigin() * 0.01f;
                const Eigen::Translation3d head(origin.x, origin.y, origin.z);
                const double angle = turn.at("degrees").get<double>() * M_PI / 180.0;
                map = head * Eigen::AngleAxisd(angle, vectorOf(turn.at("axis")).normalized()) * head.inverse() * map;
            }
        }
        return map;
    };
    Vector sum = Vector::Zero();
    for (const GltfInfluence &influence : m_influences[match.primitive][match.vertex])
        sum += influence.weight * (mapOf(m_boneOf.at(influence.joint)) * restOf(match));
    return sum;
}

void JudgedFigure::compareMesh(const Json &mesh, Differences &differences)
{
    const Json &rest = mesh.at("rest");
    for (size_t sample = 0; sample < rest.size(); ++sample) {
        Match match{};
        double difference = 0.0;
        if (!findMatch(vectorOf(rest[sample]), mesh.at("weights")[sample], match, difference)) {
            differences.rest = 1.0;
            differences.farthest = QStringLiteral("no vertex at sample %1").arg(sample);
            continue;
        }
        ++verticesCompared;
        m_chosen.push_back({match, &mesh, sample});
        differences.weights = std::max(differences.weights, difference);
        differences.rest = std::max(differences.rest, (restOf(match) - vectorOf(rest[sample])).norm() / m_height);
        if (mesh.at("weights")[sample].empty())
            continue;
        for (size_t pose = 0; pose < mesh.at("poses").size(); ++pose) {
            const Vector ours = posed(match, m_figures.at("poses")[pose]);
            differences.poses =
                std::max(differences.poses, (ours - vectorOf(mesh.at("poses")[pose][sample])).norm() / m_height);
        }
    }
}

void JudgedFigure::compareFrames(Differences &differences)
{
    const GltfEvaluator &judged = m_file.character->file;
    const Json &clips = judged.tree().value("animations", Json::array());
    const Json &frames = m_figures.at("frames");
    if (clips.empty() || frames.empty())
        return;
    const GltfClipEvaluator clip(judged, 0);
    const double start = clip.keyTimes().front();
    for (size_t frame = 0; frame < frames.size(); ++frame) {
        const GltfPose pose = clip.pose(start + frames[frame].at("time").get<double>());
        ++framesCompared;
        std::map<size_t, std::vector<Vector>> shown;
        for (const Chosen &chosen : m_chosen) {
            if (!shown.count(chosen.match.primitive))
                shown[chosen.match.primitive] = judged.positions(judged.primitives()[chosen.match.primitive], pose);
            const Vector &ours = shown[chosen.match.primitive][chosen.match.vertex];
            const Vector theirs = vectorOf(chosen.mesh->at("frames")[frame][chosen.sample]);
            differences.frames = std::max(differences.frames, (ours - theirs).norm() / m_height);
        }
        const std::vector<Eigen::Matrix4d> worlds = judged.worldMatrices(pose);
        for (const auto &[name, place] : frames[frame].at("heads").items()) {
            const auto ours = m_bones.find(name);
            if (ours == m_bones.end())
                continue;
            const Vector at = worlds[size_t(m_file.character->nodeOf(ours->second))].block<3, 1>(0, 3);
            differences.frames = std::max(differences.frames, (at - vectorOf(place)).norm() / m_height);
        }
    }
}

/// At rest, each morph wholly.
void JudgedFigure::compareMorphs(Differences &differences)
{
    const GltfEvaluator &judged = m_file.character->file;
    const std::vector<Eigen::Matrix4d> worlds = judged.worldMatrices();
    for (const Chosen &chosen : m_chosen) {
        const GltfPrimitive &primitive = judged.primitives()[chosen.match.primitive];
        for (const auto &[name, places] : chosen.mesh->at("morphs").items()) {
            const Json &mesh = judged.tree()["meshes"][size_t(primitive.mesh)];
            const Json names = mesh.value("extras", Json::object()).value("targetNames", Json::array());
            const auto found = std::find(names.begin(), names.end(), name);
            if (found == names.end()) {
                differences.morphs = 1.0;
                continue;
            }
            const Json &target =
                mesh["primitives"][size_t(primitive.primitive)]["targets"][size_t(found - names.begin())];
            const int accessor = target["POSITION"].get<int>();
            if (!m_deltas.count(accessor))
                m_deltas[accessor] = judged.accessorValues(accessor).values;
            const double *delta = &m_deltas[accessor][3 * chosen.match.vertex];
            const Vector moved =
                worlds[size_t(primitive.node)].topLeftCorner<3, 3>() * Vector(delta[0], delta[1], delta[2]);
            const Vector theirs = vectorOf(places[chosen.sample]);
            differences.morphs =
                std::max(differences.morphs, (restOf(chosen.match) + moved - theirs).norm() / m_height);
            ++morphsCompared;
        }
    }
}
