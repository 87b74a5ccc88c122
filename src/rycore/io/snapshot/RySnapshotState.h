#pragma once

#include <QByteArray>

#include <vector>

class RyNode;
class RyScene;

/// What a scene holds to the last digit, and a file only nearly, since there it goes through matrices and other units;
/// and the selection, which files know nothing of.
namespace RySnapshotState {

/// All values of all nodes in tree order, with the names of the nodes.
QByteArray valuesOf(const RyScene &scene);
/// Writes them to the nodes of a scene that was read back and is not shown yet. Nodes of other names and other numbers
/// of values are passed over; gives how many there were.
int applyValues(const QByteArray &values, const std::vector<RyNode *> &nodes);

/// Places in tree order.
QByteArray selectionOf(const RyScene &scene);
void applySelection(const QByteArray &selection, RyScene &scene);

/// The vertices of the node's mesh, in centimetres, three floats each; empty without one.
QByteArray positionsOf(const RyNode &node);
/// Nothing where the mesh has another number of vertices.
void applyPositions(const QByteArray &positions, const RyNode &node);

} // namespace RySnapshotState
