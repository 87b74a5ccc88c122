#pragma once

#include <vector>

class RyBone;
class RySkinBinding;

/// The skins that have a binding of the bone: that of its parent's skeleton first, then that of its own, then those of
/// other figures in the scene. A figure may be moved by a bone of the skeleton that it hangs on.
std::vector<RySkinBinding *> findSkinsThatBind(const RyBone *bone);
