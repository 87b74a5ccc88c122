#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/parametric/RyLegacyMotion.h"

#include <vector>

/// All bones of a parametric figure in one pose, and how the motions that reach a point are put together, from the
/// leaves up:
///
///     g(D, v) = W_D(v)(v + sum over the children c of D of (g(c, v) - v)),  result = v + sum over the roots likewise
///
/// Siblings are added, so that their order means nothing. A bone c that does not inherit scale takes its own points out
/// of the scale of the bones above, up to and including the first one that does not inherit either: there a point x
/// goes to `W_D(x) - f (x - c') (L_D - L_D without scale)`, f the scale fraction of c and c' where the origin of c has
/// come to, which itself goes through W_D.
class RyLegacyPose
{
public:
    /// A bone that moves a point, by these fractions.
    struct Part
    {
        int bone = -1;
        RyLegacyFractions by;
    };
    RyLegacyPose(const RyLegacyRig &rig, const std::vector<RyLegacyControls> &controls);

    const RyLegacyMotion &motion(int bone) const { return m_motions[size_t(bone)]; }
    bool isAtRest() const { return m_isAtRest; }
    /// How the turn of a bend's driver pushes vertices away from the driver's line, from origin to end point: by their
    /// distance times the factor of their side times their share of the bulge. The factors are those of the
    /// controllers at a quarter turn, and grow with the turn.
    struct Bulge
    {
        double origin[3] = {};
        double line[3] = {};   // unit vector
        double factor[2] = {}; // on the side of A, of D
        bool isNone() const { return factor[0] == 0.0 && factor[1] == 0.0; }
        void push(double share, const double rest[3], double point[3]) const;
    };
    Bulge bulgeOf(const RyLegacyRig::Param &bend) const;
    /// Whether the bone is scaled and some bone below is taken out of that.
    bool isScaledForItself(int bone) const;
    /// `parts`: all bones that move the point, children before parents.
    void mapPoint(const std::vector<Part> &parts, const double in[3], double out[3]) const;
    /// The same for a normal, by the linear parts.
    void mapNormal(const std::vector<Part> &parts, const double in[3], double out[3]) const;
    /// The map of points for fractions that are the same everywhere.
    RyAffine mapOf(const std::vector<Part> &parts) const;
    /// The linear map of normals for the same.
    RyAffine normalMapOf(const std::vector<Part> &parts) const;
    /// Whether any of these bones is taken out of the scale of another one of them.
    bool keepsScaleApart(const std::vector<Part> &parts) const;

private:
    template<bool Normals>
    void map(const std::vector<Part> &parts, const double in[3], double out[3]) const;

    const RyLegacyRig *m_rig;
    std::vector<RyLegacyMotion> m_motions;
    std::vector<std::vector<int>> m_keptApart; // bones that are taken out of the scale of each
    bool m_isAtRest = true;
};
