#pragma once

#include "evaluator/GltfEvaluator.h"

#include <Eigen/Core>
#include <nlohmann/json.hpp>

#include <QStringList>

#include <map>
#include <vector>

class ConvertedFile;
class RyBone;

/// Figures that a judge wrote of a foreign file (`blender_figures.py`), held against what our reading of it says.
class JudgedFigure
{
public:
    JudgedFigure(const QString &figures, const ConvertedFile &file);

    /// Largest differences; places as shares of the height.
    struct Differences
    {
        double heads = 0.0;
        double ends = 0.0; // of bones whose end a bone of the judge marks
        double weights = 0.0;
        double rest = 0.0;
        double poses = 0.0;
        double frames = 0.0; // of vertices, of joints where there is no mesh
        double morphs = 0.0;
        QString farthest; // what, of the last of these that is above its bound
    };
    Differences compare();

    int bonesCompared = 0;
    int verticesCompared = 0;
    int framesCompared = 0;
    int morphsCompared = 0;
    QStringList missing; // bones that the judge sees and we do not

private:
    using Vector = Eigen::Vector3d;

    /// A vertex of ours that is the judge's sample.
    struct Match
    {
        size_t primitive;
        size_t vertex;
    };

    void compareBones(Differences &differences);
    void compareMesh(const nlohmann::json &mesh, Differences &differences);
    bool findMatch(const Vector &place, const nlohmann::json &weights, Match &match, double &weightDifference) const;
    double weightDifference(const Match &match, const nlohmann::json &weights) const;
    Vector posed(const Match &match, const nlohmann::json &pose) const;
    void compareFrames(Differences &differences);
    void compareMorphs(Differences &differences);
    Vector restOf(const Match &match) const { return m_rest[match.primitive][match.vertex]; }
    static Vector vectorOf(const nlohmann::json &numbers);

    const ConvertedFile &m_file;
    nlohmann::json m_figures;
    double m_height = 1.0; // metres
    std::map<std::string, const RyBone *> m_bones;
    std::map<int, const RyBone *> m_boneOf;  // by nodes of the file
    std::vector<std::vector<Vector>> m_rest; // by primitives
    std::vector<std::vector<std::vector<GltfInfluence>>> m_influences;
    std::map<int, std::vector<double>> m_deltas; // by accessors
    struct Chosen
    {
        Match match;
        const nlohmann::json *mesh;
        size_t sample;
    };
    std::vector<Chosen> m_chosen;
};
