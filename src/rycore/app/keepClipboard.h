#pragma once

/// Gives what this program has on the clipboard, and what is selected, data of their own: texts may lie in the data of
/// a library that is unloaded before the display server lets go of them.
void keepClipboard();
