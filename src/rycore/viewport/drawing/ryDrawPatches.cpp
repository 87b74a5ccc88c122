#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/ryDrawPatches.h"

#include "rycore/scene/RyNode.h"

void ryDrawPatches(const std::vector<RyNodePicker::Patch> &patches, const QColor &tint)
{
    if (patches.empty())
        return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnableClientState(GL_VERTEX_ARRAY);
    for (const RyNodePicker::Patch &patch : patches) {
        glPushMatrix();
        glMultMatrixf(patch.meshNode->worldMap().toMatrix4().data());
        glVertexPointer(3, GL_FLOAT, sizeof(RyVec3), patch.positions.data());
        // Depth first: the tint covers every pixel once.
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(1.0f, 1.0f);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        glDrawElements(GL_TRIANGLES, int(patch.triangles.size()), GL_UNSIGNED_INT, patch.triangles.data());
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glColor4f(float(tint.redF()), float(tint.greenF()), float(tint.blueF()), 0.13f);
        glDrawElements(GL_TRIANGLES, int(patch.triangles.size()), GL_UNSIGNED_INT, patch.triangles.data());
        glDisable(GL_POLYGON_OFFSET_FILL);
        glColor4f(float(tint.redF()), float(tint.greenF()), float(tint.blueF()), 0.75f);
        glDrawElements(GL_LINES, int(patch.border.size()), GL_UNSIGNED_INT, patch.border.data());
        glPopMatrix();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glPopAttrib();
    glClear(GL_DEPTH_BUFFER_BIT);
}
