#include "rycore/viewport/RyGL.h"

#include "pluginsource/RyJointTools/tool/drawing/RyWeightDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyBone.h"
#include "rycore/viewport/RyGLContext.h"

#include <QCoreApplication>

#include <utility>

namespace {

enum Mode { Points = 0, Lines = 1, Solid = 2 };

} // namespace

static float pointSize(float distance)
{
    return distance <= 100.0f ? 12.0f : distance <= 200.0f ? 9.0f : distance <= 300.0f ? 6.0f : 3.0f;
}

static GLenum polygonMode(int mode)
{
    return mode == Points ? GL_POINT : mode == Lines ? GL_LINE : GL_FILL;
}

void RyWeightDrawing::draw(const RyDrawContext &context, const RyJointState &joint)
{
    const int mode = context.display.weightMapMode;
    if (context.pickPass)
        return;
    if (!context.display.weightVis || mode < Points || mode > Solid || !joint.param.get()) {
        m_told = {};
        releasePicture();
    } else if (update(context, joint)) {
        OfContext &here = m_contexts[RyGLContext::currentNumber()];
        here.picture.show(m_content, [&] { drawSides(here); });
    } else {
        releasePicture();
    }
}

void RyWeightDrawing::releasePicture()
{
    const auto here = m_contexts.find(RyGLContext::currentNumber());
    if (here != m_contexts.end())
        here->second.picture.release();
}

bool RyWeightDrawing::update(const RyDrawContext &context, const RyJointState &joint)
{
    const RyJointToolDisplay &display = context.display;
    m_colors.set(display.staticColor, display.dynamicColor, display.weightOpacity);
    Stamp stamp;
    stamp.mode = display.weightMapMode;
    if (stamp.mode == Lines)
        glGetFloatv(GL_LINE_WIDTH, &stamp.lineWidth);
    const std::array<RyWeightSide, 2> sides = RyWeightSide::of(joint);
    for (size_t i = 0; i < sides.size(); ++i) {
        RyKeptWeights &kept = m_kept[i];
        if (!kept.update(sides[i], m_colors, stamp.mode == Lines))
            continue;
        stamp.sides[i] = {true, kept.facetsRevision(), kept.positionsRevision(), kept.colorsRevision(), kept.toWorld()};
        if (stamp.mode == Points)
            stamp.pointSize = pointSize(distanceFromCamera(context, kept.firstVertex()));
    }
    tellMissingGroups(sides);
    if (stamp != m_stamp)
        ++m_content;
    m_stamp = stamp;
    return stamp.sides[0].isShown || stamp.sides[1].isShown;
}

void RyWeightDrawing::tellMissingGroups(const std::array<RyWeightSide, 2> &sides)
{
    QStringList missing;
    for (size_t i = 0; i < sides.size(); ++i) {
        if (!m_kept[i].missingGroup().isEmpty())
            missing.append(
                QCoreApplication::translate(
                    "RyWeightDrawing", "The vertex weights of %1 are not drawn: the mesh has no face group \"%2\".")
                    .arg(sides[i].param->getJoint()->getBone()->getLabel(), m_kept[i].missingGroup()));
    }
    const std::pair<const void *, QStringList> told(missing.isEmpty() ? nullptr : sides[0].param, missing);
    if (std::exchange(m_told, told) == told || missing.isEmpty())
        return;
    // Widgets are left alone while one of them paints. By name, since the message may outlive the library.
    if (RyMainWindow *window = RyApp::getInterface())
        QMetaObject::invokeMethod(window, "showMessage", Qt::QueuedConnection,
                                  Q_ARG(QString, missing.join(QLatin1Char(' '))));
}

void RyWeightDrawing::drawSides(OfContext &here) const
{
    for (size_t i = 0; i < m_kept.size(); ++i) {
        if (m_stamp.sides[i].isShown)
            here.buffers[i].update(m_kept[i]);
    }
    // Where both sides have the same facets, the current parameter's own is drawn last and covers its partner's.
    const auto drawAll = [&](bool withColors) {
        for (size_t i = m_kept.size(); i-- > 0;) {
            if (m_stamp.sides[i].isShown)
                here.buffers[i].draw(m_kept[i], withColors);
        }
    };
    glShadeModel(GL_SMOOTH);
    glDisable(GL_LINE_STIPPLE);
    if (m_stamp.mode != Solid) {
        // The surface hides what lies behind it, and must not cut into what lies on it: as far as a point or a line
        // goes, so far it is tilted away.
        const float reach = m_stamp.mode == Points ? m_stamp.pointSize : m_stamp.lineWidth;
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(0.5f * reach + 1.0f, 1.0f);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        drawAll(false);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glDisable(GL_POLYGON_OFFSET_FILL);
        glPointSize(std::max(m_stamp.pointSize, 1.0f));
    }
    glPolygonMode(GL_FRONT_AND_BACK, polygonMode(m_stamp.mode));
    drawAll(true);
}

int RyWeightDrawing::uploads() const
{
    int sum = 0;
    for (const auto &[number, here] : m_contexts)
        sum += here.buffers[0].uploads() + here.buffers[1].uploads();
    return sum;
}

int RyWeightDrawing::paints() const
{
    int sum = 0;
    for (const auto &[number, here] : m_contexts)
        sum += here.picture.paints();
    return sum;
}
