#pragma once

#include "FigureSketch.h"

#include <Eigen/Core>

#include <random>
#include <string>
#include <vector>

/// A figure with arms made by hand, about two metres high: a chain of joints with two branches below a node that is no
/// joint, a mesh with blended weights around them, and a camera, an empty node and a mesh without a skin on joints.
/// Tests change the tree, bind it, pose it, and give it clips.
class ClipSketch : public FigureSketch
{
public:
    enum Node { Armature, Hips, Spine, LeftArm, LeftHand, RightArm, RightHand, Body, Camera, Empty, Prop };
    static const std::vector<int> &joints();

    explicit ClipSketch(std::mt19937 &random);

    nlohmann::json &node(int index) { return tree["nodes"][size_t(index)]; }
    /// The mesh and the skin for the joints as they stand in the tree; `stretch` (of the axes of each joint) goes to
    /// the bind matrices beyond that.
    void bind(const Eigen::Vector3d &stretch = Eigen::Vector3d::Ones());
    /// A second mesh whose skin has some of the same joints in another order, bound to the same places.
    void addSecondSkin();
    /// Turns and shifts some joints away from where they were bound.
    void pose();

    size_t addClip(const std::string &name);
    int addTimes(const std::vector<float> &times);
    size_t addSampler(size_t clip, int input, int output, const std::string &interpolation);
    void addChannel(size_t clip, size_t sampler, int node, const std::string &path);
    /// Key times at random, rising, within two seconds.
    std::vector<float> someTimes(size_t count);
    /// Values at random around those of the node: `count` of them, or three times as many for a cubic spline. Scales
    /// have one factor unless `uneven`.
    std::vector<float> someValues(int node, const std::string &path, const std::string &interpolation, size_t count,
                                  bool uneven = false);
    /// A channel of its own with keys at random.
    void drive(size_t clip, int node, const std::string &path, const std::string &interpolation, bool uneven = false);
    /// Rotations and some translations of all joints and of what stands above them.
    void driveAll(size_t clip, const std::string &interpolation);
    int addValues(const std::string &path, const std::vector<float> &values);

    double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(m_random); }
    size_t below(size_t limit) { return m_random() % limit; }

private:
    Eigen::Matrix4d worldOf(int node) const;
    std::vector<Eigen::Matrix4d> stretched(std::vector<Eigen::Matrix4d> worlds) const;
    nlohmann::json makeMesh(const std::vector<Eigen::Matrix4d> &worlds);
    int parentOf(int node) const;

    std::mt19937 &m_random;
    Eigen::Vector3d m_stretch = Eigen::Vector3d::Ones();
};
