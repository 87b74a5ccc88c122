#pragma once

class RyFigure;

/// Work on whole figures that scripts and actions ask for.
namespace RyTransferUtility {

/// Removes the bones that do nothing: those whose binding has no weight above 0 (or that have none), below which no bone is
/// used, and on which nothing but bones hangs. Their bindings and face group pairs go with them. A figure without a skin
/// keeps all its bones. Not undoable; older undo steps stay. Returns the number of bones that went.
int removeUnusedBones(RyFigure *figure);

} // namespace RyTransferUtility
