#pragma once

class RyFigure;

/// Work on whole figures that scripts and actions ask for.
namespace RyTransferUtility {

/// Removes the bones of the figure that do nothing: those that no skin of the figure, or of one that hangs on it, binds
/// with a weight above 0, below which no bone is used, and on which nothing but bones hangs. Their bindings and face
/// group pairs go with them. Bones of figures that hang on it are not its own and stay. A figure without a skin keeps
/// all its bones. Not undoable; older undo steps stay. Returns the number of bones that went.
int removeUnusedBones(RyFigure *figure);

} // namespace RyTransferUtility
