#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyRandom.h"

#include <Eigen/Geometry>

#include <array>
#include <vector>

/// What a chain of nodes does to a point, evaluated in double precision with column vectors and right-handed turns,
/// without any function of the library: only the numbers that stand in the controls are read.
namespace PlainChain {

using Vec = Eigen::Vector3d;
using Mat = Eigen::Matrix3d;

constexpr int Cases = 10000;

inline Vec vec(const RyVec3 &v)
{
    return {double(v.x), double(v.y), double(v.z)};
}

/// The matrix of a linear map for columns, from the images of the unit axes.
inline Mat columns(const RyMatrix3 &m)
{
    Mat result;
    for (int k = 0; k < 3; ++k)
        result.col(k) = vec(RyVec3(m[k][0], m[k][1], m[k][2]));
    return result;
}

inline Mat turn(int axis, double degrees)
{
    return Eigen::AngleAxisd(degrees * M_PI / 180.0, Vec::Unit(axis)).toRotationMatrix();
}

/// Three turns, the first of `order` acting first.
inline Mat turns(const Vec &degrees, const std::array<int, 3> &order)
{
    return turn(order[2], degrees[order[2]]) * turn(order[1], degrees[order[1]]) * turn(order[0], degrees[order[0]]);
}

inline std::array<int, 3> axesOf(int code)
{
    static const std::array<std::array<int, 3>, 6> axes = {
        {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}}};
    return axes[size_t(code)];
}

/// The numbers of one node.
struct Values
{
    Vec origin, end, orientation, translation, rotation, scale;
    double generalScale = 1.0;
    int order = 0;
    bool inherits = true;

    static Values of(const RyNode &node, bool byDefault = false)
    {
        const auto read = [byDefault](const RyFloatProperty *p) {
            return double(byDefault ? p->getDefaultValue() : p->getValue());
        };
        Values v;
        v.origin = {read(node.getOriginXControl()), read(node.getOriginYControl()), read(node.getOriginZControl())};
        v.end = {read(node.getEndXControl()), read(node.getEndYControl()), read(node.getEndZControl())};
        v.orientation = {read(node.getOrientXControl()), read(node.getOrientYControl()),
                         read(node.getOrientZControl())};
        v.translation = {read(node.getXTransControl()), read(node.getYTransControl()), read(node.getZTransControl())};
        v.rotation = {read(node.getXRotControl()), read(node.getYRotControl()), read(node.getZRotControl())};
        v.scale = {read(node.getXScaleControl()), read(node.getYScaleControl()), read(node.getZScaleControl())};
        v.generalScale = read(node.getScaleControl());
        v.order = node.getRotationOrder().order();
        v.inherits = node.inheritsScale();
        return v;
    }

    Mat orientationMatrix() const { return turns(orientation, {0, 1, 2}); }
    /// The turn of the pose in figure axes.
    Mat localRotation() const
    {
        const Mat o = orientationMatrix();
        return o * turns(rotation, axesOf(order)) * o.transpose();
    }
    Mat localScale() const
    {
        const Mat o = orientationMatrix();
        return o * Vec(scale * generalScale).asDiagonal() * o.transpose();
    }
};

/// Where a node's space has come to: x goes to linear * x + offset; `rotation` is the product of the turns alone.
struct Map
{
    Mat linear = Mat::Identity();
    Vec offset = Vec::Zero();
    Mat rotation = Mat::Identity();

    Vec operator()(const Vec &p) const { return linear * p + offset; }

    /// The map of a node below this one.
    Map below(const Values &v) const
    {
        Map child;
        const Mat own = v.localRotation() * v.localScale(); // scale acts first
        child.linear = (v.inherits ? linear : rotation) * own;
        child.rotation = rotation * v.localRotation();
        child.offset = (*this)(v.origin + v.translation) - child.linear * v.origin;
        return child;
    }
};

/// The map of the last node of a chain, the topmost first.
inline Map mapOf(const std::vector<RyNode *> &chain)
{
    Map map;
    for (const RyNode *node : chain)
        map = map.below(Values::of(*node));
    return map;
}

class Random : public RyRandom
{
public:
    RyQuat rotation()
    {
        const Eigen::Quaterniond q = Eigen::Quaterniond(Eigen::AngleAxisd(number(-M_PI, M_PI), direction()));
        return {float(q.x()), float(q.y()), float(q.z()), float(q.w())};
    }
    Vec direction()
    {
        for (;;) {
            const Vec v(number(-1, 1), number(-1, 1), number(-1, 1));
            if (v.norm() > 0.1)
                return v.normalized();
        }
    }

    /// Random numbers in all controls of a node; `defaults`: in their defaults too.
    void fill(RyNode &node, bool defaults)
    {
        RyFloatProperty *const points[6] = {node.getOriginXControl(), node.getOriginYControl(),
                                            node.getOriginZControl(), node.getEndXControl(),
                                            node.getEndYControl(),    node.getEndZControl()};
        RyFloatProperty *const angles[6] = {node.getOrientXControl(), node.getOrientYControl(),
                                            node.getOrientZControl(), node.getXRotControl(),
                                            node.getYRotControl(),    node.getZRotControl()};
        RyFloatProperty *const ways[3] = {node.getXTransControl(), node.getYTransControl(), node.getZTransControl()};
        RyFloatProperty *const scales[4] = {node.getScaleControl(), node.getXScaleControl(), node.getYScaleControl(),
                                            node.getZScaleControl()};
        const auto write = [&](RyFloatProperty *p, double low, double high) {
            p->setValue(float(number(low, high)));
            if (defaults)
                p->setDefaultValue(float(number(low, high)));
        };
        for (RyFloatProperty *p : points)
            write(p, -100, 100);
        for (RyFloatProperty *p : angles)
            write(p, -180, 180);
        for (RyFloatProperty *p : ways)
            write(p, -20, 20);
        for (RyFloatProperty *p : scales)
            write(p, 0.7, 1.4);
        node.setRotationOrder(RyRotationOrder(integer(0, 5)));
        node.setInheritScale(chance(0.7));
    }
};

/// A skeleton, sometimes below a prop, with bones down to a random depth, made anew every few cases; numbers change
/// every case, those of single nodes more often than of all, so that what is kept between calls is put to the test too.
class RandomChain
{
public:
    Random random;
    std::vector<RyNode *> nodes; // topmost first
    size_t skeleton = 0;

    void next()
    {
        if (m_case++ % 40 == 0) {
            build();
            for (RyNode *node : nodes)
                random.fill(*node, true);
        } else {
            random.fill(*nodes[size_t(random.integer(0, int(nodes.size()) - 1))], true);
        }
    }
    RyNode *last() const { return nodes.back(); }
    std::vector<RyNode *> above() const { return {nodes.begin(), nodes.end() - 1}; }

private:
    void build()
    {
        m_top = RyRef<RyNode>();
        nodes.clear();
        skeleton = random.chance(0.3) ? 1 : 0;
        if (skeleton)
            nodes.push_back(new RyNode);
        nodes.push_back(new RySkeleton);
        for (int depth = random.integer(1, 8); depth > 0; --depth)
            nodes.push_back(new RyBone);
        m_top = RyRef<RyNode>(nodes.front());
        for (size_t i = 1; i < nodes.size(); ++i)
            nodes[i - 1]->addNodeChild(nodes[i]);
    }

    RyRef<RyNode> m_top;
    int m_case = 0;
};

} // namespace PlainChain
