#pragma once

#include "tool/RyToolScene.h"

#include <vector>

/// The ids of a whole view by the plainest way: one picture of 24 bits, one colour for each bone and handle, everything
/// drawn in its own space and nothing left out. It knows nodes and knows nothing of how the tool draws.
class RyPlainPass
{
public:
    /// Bones of the list in its order, then the handles of the node; `density` is that of the balls.
    RyPlainPass(Ry3DViewport &viewport, const std::vector<RyBone *> &bones, const RyNode &current, int density);

    int idAt(const QPoint &pixel) const;
    /// Whether the id is that of the pixel or of one beside it.
    bool isNear(const QPoint &pixel, int id) const;

private:
    int m_width;
    int m_height;
    std::vector<int> m_ids; // row by row from the top
};
