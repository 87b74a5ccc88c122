#pragma once

class RyBone;
class RyLegacyJointParam;
struct RyVec3;

/// Where the spheres of joint parameters go. Current values alone; opens no undo hold.
namespace RyLegacySpheres {

/// Around a ball of surface: `center` in figure space, `size` across; the dynamic sphere has half of that as radius,
/// the static one three quarters.
void place(RyLegacyJointParam &param, const RyVec3 &center, float size);

/// Around the oriented box of the bone, of the size of its diagonal; where there is none, by the bone's length. `param`
/// may be driven by another bone.
void reset(RyLegacyJointParam &param, const RyBone &bone);
/// Those of its partner as well, as one edit.
void resetBoth(RyLegacyJointParam &param, const RyBone &bone);

} // namespace RyLegacySpheres
