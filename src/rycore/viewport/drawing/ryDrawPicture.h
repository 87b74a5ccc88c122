#pragma once

/// Covers the bound frame buffer's viewport with a texture, through the blending that is set and without depth. Leaves
/// identity matrices.
void ryDrawPicture(unsigned texture);
