#include "pluginsource/RyJointTools/tool/drawing/RyParamDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/RyAngleDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyKeptBox.h"
#include "pluginsource/RyJointTools/tool/drawing/RySphereDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyZoneDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

#include <GL/gl.h>

#include <vector>

void RyParamDrawing::draw(const RyLegacyJointParam &param, const RyNode &node) const
{
    const RyParamSpace space = RyParamSpace::of(param, node);
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT | GL_POLYGON_BIT);
    glDisable(GL_LIGHTING);
    glShadeModel(GL_FLAT); // as bones have it
    if (m_context.pickPass)
        capLineWidth();
    drawSpheres(param, space);
    drawZones(param, node, space);
    drawAngles(param, space);
    glPopAttrib();
}

void RyParamDrawing::drawSpheres(const RyLegacyJointParam &param, const RyParamSpace &space) const
{
    if (!param.applyMatrices())
        return;
    std::vector<RySphereDrawing> spheres;
    if (m_context.display.matAVis)
        spheres.emplace_back(m_context, RyHandle::DynamicSphere, space, param.getDynamicMatrix());
    if (m_context.display.matBVis)
        spheres.emplace_back(m_context, RyHandle::StaticSphere, space, param.getStaticMatrix());
    for (const RySphereDrawing &sphere : spheres) {
        sphere.drawRings();
        sphere.drawBody();
    }
    if (!m_context.display.showManipulators)
        return;
    glPushAttrib(GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    for (const RySphereDrawing &sphere : spheres)
        sphere.drawHandles();
    glPopAttrib();
}

void RyParamDrawing::drawZones(const RyLegacyJointParam &param, const RyNode &node, const RyParamSpace &space) const
{
    const auto *twist = qobject_cast<const RyLegacyTwistParam *>(&param);
    const auto *smooth = qobject_cast<const RyLegacySmoothScale *>(&param);
    const auto drawing = [&] { return RyZoneDrawing(m_context, space, radiusAcross(node, param.getAxis())); };
    if (twist && m_context.display.twistVis && twist->applyBlend())
        drawing().draw(*twist);
    if (smooth && m_context.display.smoothVis && smooth->applyZones())
        drawing().draw(*smooth);
}

/// Half the diagonal of the node's vertices across an axis; a bone that has none gets a quarter of its length.
float RyParamDrawing::radiusAcross(const RyNode &node, int axis) const
{
    const RyBox3 &box = m_box.of(node, sceneRevision(m_context));
    if (box.isEmpty())
        return (node.getEndPoint() - node.getOrigin()).length() / 4.0f;
    RyVec3 extents = box.getExtents();
    extents[axis] = 0.0f;
    return extents.length() / 2.0f;
}

void RyParamDrawing::drawAngles(const RyLegacyJointParam &param, const RyParamSpace &space) const
{
    const auto *bend = qobject_cast<const RyLegacyBendParam *>(&param);
    if (!bend || !m_context.display.angleVis || !bend->applyAngles())
        return;
    glDisable(GL_DEPTH_TEST);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    RyAngleDrawing(m_context, space, param.getAxis()).draw(*bend);
}
