#pragma once

#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <QRect>

#include <memory>
#include <vector>

class Ry3DViewport;
class RyViewMatrices;
class RyViewTool;

/// Draws a tool in its colour code into a small picture of its own and decodes the ids. Where the skeleton that the
/// tool asks for its bones has more of them than the code can hold, the bones are drawn slice by slice.
class RyPickPass
{
public:
    /// Bones have ids from here on; what is below is a handle.
    static constexpr int FirstBoneId = 47;
    /// The most bones that the colour code tells apart from each other and from the handles.
    static constexpr int CodedBones = 256 - FirstBoneId;
    static constexpr int SliceLength = 200;

    /// Ids of the pixels of `area` (pixels of the view, y down), row by row from the top; the view has the size of
    /// `matrices`.
    std::vector<int> ids(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices, const QRect &area);
    /// Passes drawn so far.
    int passes() const { return m_passes; }

    void release() { m_target.reset(); }
    void abandon();

private:
    std::vector<int> pass(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices, const QRect &area);
    std::vector<int> slicedIds(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices,
                               const QRect &area, int boneCount);

    std::unique_ptr<RyFramebuffer> m_target;
    int m_passes = 0;
};
