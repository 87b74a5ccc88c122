#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyPickPass.h"

#include "rycore/scene/RyBoneListSlice.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/RyViewTool.h"

namespace {

constexpr unsigned char CodeBlue = 128;
/// Wide enough to catch thin handles; tools cap it as they see fit.
constexpr float PickLineWidth = 12.0f;

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
    std::vector<int> ids;
    int boneCount = 0;
    {
        const RyBoneListSlice listener;
        ids = pass(viewport, tool, matrices, area);
        boneCount = listener.longestList();
    }
    return boneCount > CodedBones ? slicedIds(viewport, tool, matrices, area, boneCount) : ids;
}

std::vector<int> RyPickPass::slicedIds(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices,
                                       const QRect &area, int boneCount)
{
    std::vector<int> handles;
    {
        const RyBoneListSlice none(0, 0);
        handles = pass(viewport, tool, matrices, area);
    }
    std::vector<std::vector<int>> slices;
    for (int first = 0; first < boneCount; first += SliceLength) {
        const RyBoneListSlice slice(first, SliceLength);
        slices.push_back(pass(viewport, tool, matrices, area));
    }
    // The complete pass comes last, so that the tool's own list is complete again. It also says, by the cut-off id,
    // which of the slices holds the bone on top.
    const std::vector<int> complete = pass(viewport, tool, matrices, area);
    std::vector<int> ids(complete.size(), 0);
    for (size_t i = 0; i < ids.size(); ++i) {
        if (handles[i] > 0 && handles[i] < FirstBoneId) {
            ids[i] = handles[i];
            continue;
        }
        bool matched = false;
        for (size_t slice = 0; slice < slices.size(); ++slice) {
            if (slices[slice][i] < FirstBoneId)
                continue;
            const int id = slices[slice][i] + int(slice) * SliceLength;
            const bool matches = (id & 0xff) == complete[i];
            if (matches || !matched)
                ids[i] = id;
            matched = matched || matches;
        }
    }
    return ids;
}

std::vector<int> RyPickPass::pass(Ry3DViewport *viewport, RyViewTool *tool, const RyViewMatrices &matrices,
                                  const QRect &area)
{
    ++m_passes;
    GLint previous = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previous);
    if (!m_target || m_target->width() != area.width() || m_target->height() != area.height())
        m_target = std::make_unique<RyFramebuffer>(area.width(), area.height(), 0);
    m_target->bind();

    glPushAttrib(GL_ALL_ATTRIB_BITS);
    const auto width = int(matrices.width());
    const auto height = int(matrices.height());
    glViewport(-area.left(), area.bottom() + 1 - height, width, height);
    for (GLenum capability :
         {GL_LIGHTING, GL_BLEND, GL_DITHER, GL_TEXTURE_2D, GL_MULTISAMPLE, GL_LINE_SMOOTH, GL_POINT_SMOOTH,
          GL_POLYGON_SMOOTH, GL_FOG, GL_SCISSOR_TEST, GL_CULL_FACE, GL_ALPHA_TEST, GL_LINE_STIPPLE})
        glDisable(capability);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glLineWidth(PickLineWidth);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    matrices.load();
    tool->draw(viewport, RyDrawStyle(RyDrawStyle::PickPass));

    const int columns = area.width();
    const int rows = area.height();
    std::vector<unsigned char> pixels(size_t(4 * columns * rows));
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, columns, rows, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glPopAttrib();
    matrices.load();
    glBindFramebuffer(GL_FRAMEBUFFER, GLuint(previous));

    std::vector<int> ids(size_t(columns * rows), 0);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const unsigned char *pixel = &pixels[size_t(4 * ((rows - 1 - row) * columns + column))];
            if (pixel[2] == CodeBlue)
                ids[size_t(row * columns + column)] = pixel[0];
        }
    }
    return ids;
}
