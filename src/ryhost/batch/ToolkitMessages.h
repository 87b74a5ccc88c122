#pragma once

/// What the toolkit says by itself: of folders that it chose, of windows that nobody sees.
namespace ToolkitMessages {

/// Keeps it out of standard error from now on; what plug-ins and scripts say, and what ends the program, is printed
/// still.
void hide();

} // namespace ToolkitMessages
