#pragma once

#include "rycore/skin/RySkinDeformer.h"

class RyBone;
class RyBoneBinding;

/// The stages of a binding with local maps (see RySkinBinding): five channels of the deformer, in the order parent,
/// rotation about X, about Y, about Z, scale.
namespace RyLocalStages {

constexpr int Count = 5;

void appendChannels(const RyBoneBinding &binding, std::vector<RySkinDeformer::Channel> &channels);
/// The identity plus what each stage adds; all identities without a bone. Their shares add up to the bone's full map. A
/// stage that does nothing adds exactly nothing. While a clip moves the bone the first one is all of its map.
/// `normalMaps` gets the same of the maps that carry normals.
void fillMaps(const RyBone *bone, RyAffine maps[Count], RyAffine normalMaps[Count]);

} // namespace RyLocalStages
