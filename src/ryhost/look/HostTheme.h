#pragma once

#include "rycore/viewport/RyRenderOptions.h"

/// The look of the program: Fusion in neutral greys with one accent colour, dark or light.
namespace HostTheme {

void apply(bool dark);
QColor accent();
/// Colours of the viewport for a theme, everything else as in `options`.
RyRenderOptions viewportOptions(bool dark, RyRenderOptions options);

} // namespace HostTheme
