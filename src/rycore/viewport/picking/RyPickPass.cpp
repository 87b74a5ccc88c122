#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/picking/RyPickPass.h"

#include "rycore/scene/RyBoneListOrder.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/RyViewTool.h"

#include <algorithm>
#include <array>

namespace {

constexpr unsigned char CodeBlue = 128;
/// Wide enough to catch thin handles; tools cap it as they see fit.
constexpr float PickLineWidth = 12.0f;

constexpr bool isHandle(int code)
{
    return code > 0 && code < RyPickPass::FirstBoneId;
}

/// The column of all bones that have a code while they are listed as in the tree.
constexpr int columnOf(int code)
{
    return (code - RyPickPass::FirstBoneId) & 0xff;
}

/// The bone that has `code` in the order of the tree and `otherCode` by columns; -1 for none.
int findBone(int code, int otherCode, int boneCount)
{
    const int column = columnOf(code);
    if (otherCode < 0)
        return -1;
    const int row = columnOf(otherCode - RyBoneListOrder::columnStart(column, boneCount));
    return row < RyBoneListOrder::columnLength(column, boneCount) ? row * RyBoneListOrder::ColumnCount + column : -1;
}

} // namespace

void RyPickPass::abandon()
{
    if (m_target)
        m_target->abandon();
    m_target.reset();
}

std::vector<int> RyPickPass::ids(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices,
                                 const QRect &area)
{
    const View view{viewport, tool, matrices, area};
    GLint previous = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previous);
    if (!m_target || m_target->width() != area.width() || m_target->height() != area.height())
        m_target = std::make_unique<RyFramebuffer>(area.width(), area.height(), 0);
    m_target->bind();
    glPushAttrib(GL_ALL_ATTRIB_BITS);

    std::vector<int> ids;
    int boneCount = 0;
    {
        const RyBoneListOrder order(RyBoneListOrder::Tree);
        ids = drawnCodes(view);
        boneCount = order.longestList();
    }
    if (boneCount > CodedBones)
        resolve(view, boneCount, ids);
    std::replace(ids.begin(), ids.end(), noCode, 0);

    glPopAttrib();
    matrices.load();
    glBindFramebuffer(GL_FRAMEBUFFER, GLuint(previous));
    return ids;
}

void RyPickPass::resolve(const View &view, int boneCount, std::vector<int> &codes)
{
    std::array<bool, 256> isSeen{};
    for (const int code : codes) {
        if (code != noCode)
            isSeen[size_t(code)] = true;
    }
    bool isAmbiguous = false;
    bool isHandleAmbiguous = false; // in both orders
    for (int code = 0; code < 256; ++code) {
        const int bones = isSeen[size_t(code)] ? RyBoneListOrder::columnLength(columnOf(code), boneCount) : 0;
        isAmbiguous = isAmbiguous || bones + isHandle(code) > 1;
        isHandleAmbiguous = isHandleAmbiguous || (bones > 0 && isHandle(code) && findBone(code, code, boneCount) >= 0);
    }
    std::vector<int> otherCodes = codes;
    std::vector<int> handles;
    if (isAmbiguous && boneCount > RyBoneListOrder::ColumnCount) {
        const RyBoneListOrder order(RyBoneListOrder::Columns);
        otherCodes = drawnCodes(view);
    }
    if (isHandleAmbiguous) {
        const RyBoneListOrder order(RyBoneListOrder::Nothing);
        handles = drawnCodes(view);
    }
    if (isAmbiguous) {
        // The tool's own list is to be that of the tree again, which no pixel is needed for.
        glScissor(0, 0, 0, 0);
        draw(view);
    }
    for (size_t i = 0; i < codes.size(); ++i) {
        if (codes[i] == noCode)
            continue;
        const bool keepsCode = isHandle(codes[i]) && codes[i] == otherCodes[i];
        const bool isDrawnHandle = keepsCode && (handles.empty() || handles[i] == codes[i]);
        if (isDrawnHandle)
            continue;
        const int bone = isAmbiguous ? findBone(codes[i], otherCodes[i], boneCount) : columnOf(codes[i]);
        codes[i] = bone < 0 ? noCode : bone + FirstBoneId;
    }
}

void RyPickPass::setState(const View &view) const
{
    const int width = int(view.matrices.width());
    const int height = int(view.matrices.height());
    glViewport(-view.area.left(), view.area.bottom() + 1 - height, width, height);
    for (GLenum capability : {GL_LIGHTING, GL_BLEND, GL_DITHER, GL_TEXTURE_2D, GL_MULTISAMPLE, GL_LINE_SMOOTH,
                              GL_POINT_SMOOTH, GL_POLYGON_SMOOTH, GL_FOG, GL_CULL_FACE, GL_ALPHA_TEST, GL_LINE_STIPPLE})
        glDisable(capability);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, view.area.width(), view.area.height());
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glLineWidth(PickLineWidth);
    glClearColor(0, 0, 0, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
}

void RyPickPass::draw(const View &view)
{
    ++m_passes;
    view.matrices.load();
    view.tool->draw(view.viewport, RyDrawStyle(RyDrawStyle::PickPass));
}

std::vector<int> RyPickPass::drawnCodes(const View &view)
{
    setState(view);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    draw(view);
    const int columns = view.area.width();
    const int rows = view.area.height();
    m_pixels.resize(size_t(4 * columns * rows));
    glReadPixels(0, 0, columns, rows, GL_RGBA, GL_UNSIGNED_BYTE, m_pixels.data());

    std::vector<int> codes;
    codes.reserve(size_t(columns * rows));
    for (int row = rows - 1; row >= 0; --row) {
        const unsigned char *pixel = &m_pixels[size_t(4 * row * columns)];
        for (int column = 0; column < columns; ++column, pixel += 4)
            codes.push_back(pixel[2] == CodeBlue ? pixel[0] : noCode);
    }
    return codes;
}
