#pragma once

#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"

#include <array>
#include <random>

class RyFacetMesh;

/// A parametric figure of 170 centimetres: a post, and an arm of 78 that stands out from it along +X, with joints at
/// the elbow and the wrist. Bends have the angles of new joints.
class LegacyArm
{
public:
    explicit LegacyArm(bool hasTwistZone = false);
    ~LegacyArm();

    /// Everything a file has to keep is other than on a new figure: axes are turned, current values differ from
    /// defaults, figure and bones are posed and scaled, parameters of all kinds have all kinds of values, two are
    /// linked.
    void makeUntidy();
    /// Turns elbow and wrist at random, up to 60, 45 and 110 degrees.
    void poseAtRandom(std::mt19937 &random);
    void pose(RyBone &bone, const std::array<float, 3> &degrees);

    static RyLegacyFigure *figureOf(const RyScene &scene);
    static RyLegacyBinding *bindingOf(const RyScene &scene);
    /// What the dump of a scene says of the joints of parametric figures.
    static QString dump(const RyScene &scene);

    static constexpr double Height = 170.0;

    RyScene scene;
    RyLegacyFigure *figure = nullptr;
    RyLegacyBinding *binding = nullptr;
    RyFacetMesh *mesh = nullptr;
    RyBone *body = nullptr;
    RyBone *upper = nullptr;
    RyBone *fore = nullptr;
    RyBone *hand = nullptr;

private:
    RyBone *addBone(const char *name, RyNode *parent, const RyVec3 &origin, const RyVec3 &end);
    void buildMesh();
    RyLegacyJoint *addJoint(RyBone *bone);
    void addParams(RyBone *bone, bool hasAngles, bool hasTwistZone);
};
