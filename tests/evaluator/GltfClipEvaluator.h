#pragma once

#include "evaluator/GltfEvaluator.h"
#include "evaluator/GltfTransform.h"

#include <Eigen/Core>

#include <string>
#include <vector>

/// Plays one clip of a file in double precision from the numbers that stand there: STEP, LINEAR (rotations along the
/// shorter arc) and CUBICSPLINE (rotations normalised); before the first key and after the last one its value. What a
/// clip does not drive is the node's own. Of two channels on one property of a node the later one plays.
///
/// Targets of extensions are left aside. A channel that makes no sense is left out: see leftOut.
class GltfClipEvaluator
{
public:
    /// Throws std::runtime_error when there is no such clip.
    GltfClipEvaluator(const GltfEvaluator &file, int clip);

    /// Of all channels that play, rising, each once.
    std::vector<double> keyTimes() const;
    /// Where the driven nodes stand relative to their parents; `locals` holds a matrix for each node of the file.
    void play(double time, std::vector<Eigen::Matrix4d> &locals) const;
    GltfPose pose(double time) const;

    /// Channels that cannot be played, with the reason: key times that do not rise, counts that do not fit, numbers
    /// that are none, references into nowhere, a node that is given as a matrix.
    const std::vector<std::string> &leftOut() const { return m_leftOut; }

private:
    enum class Kind { Step, Linear, Cubic };
    struct Track
    {
        Kind kind = Kind::Linear;
        bool isRotation = false;
        std::vector<double> times;
        std::vector<Eigen::Vector4d> values; ///< three for each key of a cubic spline: tangent in, value, tangent out
    };
    struct DrivenNode
    {
        int node = -1;
        GltfTransform own;
        int translation = -1, rotation = -1, scale = -1; ///< tracks
    };

    /// All weights of a node's morphs.
    struct Weights
    {
        int node = -1;
        Kind kind = Kind::Linear;
        std::vector<double> times;
        std::vector<std::vector<double>> rows; ///< three for each key of a cubic spline: tangents in, values, out
    };

    static Kind kindOf(const nlohmann::json &sampler);
    static Weights readWeights(const GltfEvaluator &file, const nlohmann::json &sampler, int node);
    static std::vector<double> weightsAt(const Weights &weights, double time);
    Track readTrack(const GltfEvaluator &file, const nlohmann::json &sampler, const std::string &path) const;
    DrivenNode &drivenNode(const GltfEvaluator &file, int node);
    static Eigen::Vector4d valueAt(const Track &track, double time);
    static Eigen::Vector4d between(const Track &track, size_t key, double part);

    std::vector<Track> m_tracks;
    std::vector<DrivenNode> m_driven;
    std::vector<Weights> m_weights;
    std::vector<std::string> m_leftOut;
};

/// The key times and three times between any two neighbours, thinned evenly to `atMost`. Keys that stand closer than a
/// hundred-thousandth of a second tell a jump; there is nothing to see between them.
std::vector<double> gltfFrameTimes(const std::vector<double> &keyTimes, size_t atMost);
