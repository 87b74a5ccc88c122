#pragma once

class RyGltfOrigin;

/// Gives figures that stand or hang elsewhere than in their file, or on which something hangs, a node of their own in
/// its tree, above their topmost bones: it carries the place, and the bones keep their transforms, which clips may
/// drive. Such a node is a source of the origin, with the figure as its node of the scene. Changes the origin's
/// document.
void ryGltfAddCarriers(RyGltfOrigin &origin);
