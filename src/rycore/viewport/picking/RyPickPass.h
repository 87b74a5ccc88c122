#pragma once

#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <QRect>

#include <memory>
#include <vector>

class Ry3DViewport;
class RyViewMatrices;
class RyViewTool;

/// Draws a tool in its colour code into a small picture of its own and decodes the ids.
///
/// The code has eight bits. Where the skeleton that the tool asks for its bones has more of them than that holds, and
/// only if the first picture shows a code that more than one thing can have, the tool is drawn again with the list of
/// bones in another order. A tool draws its bones in one sequence whatever their places in the list, and its handles
/// over them: the two codes of a bone tell it from all others, those of a handle are the same. Where a bone too has
/// the code of a handle in both orders, one more picture without bones tells which it is.
class RyPickPass
{
public:
    /// Bones have ids from here on; what is below is a handle.
    static constexpr int FirstBoneId = 47;
    /// The most bones that the colour code tells apart from each other and from the handles.
    static constexpr int CodedBones = 256 - FirstBoneId;

    /// Ids of the pixels of `area` (pixels of the view, y down), row by row from the top; the view has the size of
    /// `matrices`. The scissor box is that of the area, so that a tool can leave out what is beyond it.
    std::vector<int> ids(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices, const QRect &area);
    /// Passes drawn so far.
    int passes() const { return m_passes; }

    void release() { m_target.reset(); }
    void abandon();

private:
    struct View
    {
        Ry3DViewport *viewport;
        RyViewTool *tool;
        const RyViewMatrices &matrices;
        QRect area;
    };
    static constexpr int noCode = -1;

    void setState(const View &view) const;
    void draw(const View &view);
    std::vector<int> drawnCodes(const View &view);
    /// From codes to ids, in a skeleton of more bones than the code tells apart.
    void resolve(const View &view, int boneCount, std::vector<int> &codes);

    std::unique_ptr<RyFramebuffer> m_target;
    std::vector<unsigned char> m_pixels; // kept for its memory
    int m_passes = 0;
};
