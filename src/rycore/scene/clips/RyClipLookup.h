#pragma once

#include "rycore/scene/clips/RyClip.h"

/// Finds clips of a scene by what they move, and by what a person writes.
namespace RyClipLookup {

using Clips = std::vector<std::shared_ptr<const RyClip>>;

/// Those that move a figure, or a prop; see RyClip::subjects.
Clips clipsOf(const RyScene &scene, const RyNode &subject);
/// "FIGURE/NAME" or "FIGURE/NUMBER", which counts the clips of a figure from 1; a name counts first. Null with a
/// message that lists what there is when none or more than one is meant.
std::shared_ptr<const RyClip> findClip(const RyScene &scene, const QString &text, QString *error);

} // namespace RyClipLookup
