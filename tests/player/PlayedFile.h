#pragma once

#include "CharacterScene.h"
#include "evaluator/GltfClipEvaluator.h"

#include <Eigen/Geometry>

#include <set>

/// Compares what a scene shows of a clip with what another reader makes of a file.
class PlayedFile
{
public:
    /// Of the height.
    static constexpr double Tolerance = 1e-5;

    /// `clips`: the file that says what is to be seen; its nodes have the numbers of the origin's file.
    PlayedFile(const RyScene &scene, const RyGltfOrigin &origin, const GltfEvaluator &clips)
        : m_scene(scene), m_origin(origin), m_clips(clips), m_height(heightOf(positionsOf(clips, origin.unit)))
    {}

    Eigen::Affine3d toScene = Eigen::Affine3d::Identity(); ///< from the world of the file, centimetres
    std::set<int> goneNodes;                               ///< vertices that one of these pulls are left aside
    bool comparesHeads = true;
    bool comparesVertices = true;
    int frames = 20; ///< of each clip

    /// Empty when all vertices and heads of bones stand in all frames of all clips where they should.
    QString check() const;
    /// The same for what shows now, at a time of a clip of the file.
    QString checkFrame(int clip, double time) const;

private:
    double vertexDistance(const GltfPose &pose) const;
    double headDistance(const GltfPose &pose) const;
    Eigen::Vector3d placed(const Eigen::Vector3d &fileUnits) const { return toScene * (fileUnits * m_origin.unit); }

    const RyScene &m_scene;
    const RyGltfOrigin &m_origin;
    const GltfEvaluator &m_clips;
    const double m_height; // centimetres
};
