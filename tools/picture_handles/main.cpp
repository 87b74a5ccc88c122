// picture_handles FOLDER: writes the pictures of docs/parametric-joints.md that show how an elbow is fitted by hand.
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyRenderOptions.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int width = 800;
constexpr int height = 560;

/// The parametric sample figure with the tool on its left forearm.
class Elbow
{
public:
    explicit Elbow(const QDir &folder) : m_folder(folder), m_manager(ryScene()), m_viewport(&m_manager)
    {
        m_viewport.resize(width, height);
        RyRenderOptions options = m_viewport.renderOptions();
        options.seeThrough = true;
        options.showGrid = false; // its lines would run through the handles
        m_viewport.setRenderOptions(options);
        m_manager.addTool(m_tool);
        m_manager.setActiveTool(m_tool);
        m_tool->setBoneDrawMode(RyJointEditorTool::SelectedBoneAndFamily);
        m_tool->setDrawMeshBoundaries(false);
        m_tool->setHandleDrawing(1);
        m_tool->setWeightVis(false);
    }
    bool open()
    {
        QString error;
        if (!RySceneFile::open(ryScene(), QStringLiteral(RY_RESOURCES_DIR "/samples/parametric.glb"), &error))
            return false;
        m_arm = qobject_cast<RyBone *>(ryScene()->findNode(QStringLiteral("lForearm")));
        if (!m_arm || !RyLegacyJoint::findJoint(m_arm))
            return false;
        ryScene()->setSelection({m_arm});
        QCoreApplication::sendPostedEvents();
        return true;
    }
    bool drawRays()
    {
        auto *bend = take<RyLegacyBendParam>(2);
        if (!bend)
            return false;
        lookAtElbow(310.0f);
        return save("elbow-rays");
    }
    bool drawWeights()
    {
        if (!take<RyLegacyBendParam>(2))
            return false;
        m_tool->setWeightVis(true);
        lookAtElbow(110.0f);
        const bool isSaved = save("elbow-weights");
        m_tool->setWeightVis(false);
        return isSaved;
    }
    bool drawSpheres()
    {
        auto *bend = take<RyLegacyBendParam>(2);
        if (!bend)
            return false;
        bend->setApplyMatrices(true);
        placeSphere(*bend->getDynamicSphere(), 15.0f, 7.0f);
        placeSphere(*bend->getStaticSphere(), 22.0f, 12.0f);
        lookAtElbow(110.0f);
        m_tool->setAngleVis(false);
        m_tool->setSphereDrawing(1);
        const bool isSaved = save("elbow-spheres");
        m_tool->setSphereDrawing(0);
        bend->setApplyMatrices(false);
        return isSaved;
    }
    bool drawTwist()
    {
        auto *twist = take<RyLegacyTwistParam>(0);
        if (!twist)
            return false;
        const float start = m_arm->getOrigin().x;
        twist->setApplyBlend(true);
        twist->setStart(start + 2.0f);
        twist->setEnd(start + 0.85f * (m_arm->getEndPoint().x - start));
        lookAtElbow(110.0f);
        return save("elbow-twist");
    }
    bool drawSmoothZones()
    {
        auto *smooth = take<RyLegacySmoothScale>(0);
        if (!smooth)
            return false;
        const float elbow = smooth->getDriver()->getEndPoint().x;
        smooth->setApplyZones(true);
        smooth->setHiStart(elbow - 7.0f);
        smooth->setHiEnd(elbow + 7.0f);
        lookAtElbow(110.0f);
        return save("elbow-smooth");
    }

private:
    /// The first of the kind and axis on the forearm's own side of the joint; makes it the current one.
    template<typename P>
    P *take(int axis)
    {
        for (RyLegacyJointParam *param : RyLegacyJoint::findJoint(m_arm)->params()) {
            auto *found = qobject_cast<P *>(param);
            const bool isOwn = param->getDriver() == m_arm || param->getDriver() == m_arm->getNodeParent();
            if (!found || !isOwn || param->getAxis() != axis)
                continue;
            m_tool->setParam(param);
            return found;
        }
        return nullptr;
    }
    /// As far from the elbow as the rays are long, or nearer.
    void lookAtElbow(float distance)
    {
        const RyVec3 elbow = m_arm->getWSPos();
        m_viewport.getCamera()->lookAt(elbow + RyVec3(0.25f, 0.2f, 1.0f).normalized() * distance, elbow);
    }
    void placeSphere(const RyLegacyJointSphere &sphere, float along, float across) const
    {
        const RyVec3 center = m_arm->getOrigin();
        const float values[10] = {center.x, center.y, center.z, 0, 0, 0, across, along / across, 1, 1};
        for (size_t i = 0; i < 10; ++i)
            sphere.controls()[i]->setValue(values[i]);
    }
    bool save(const char *name)
    {
        return m_viewport.grabPicture(width, height).save(m_folder.filePath(QLatin1String(name) + ".png"));
    }

    QDir m_folder;
    RyViewportMgr m_manager;
    Ry3DViewport m_viewport;
    RyJointEditorTool *m_tool = new RyJointEditorTool; // the manager's
    RyBone *m_arm = nullptr;
};

bool drawAll(const QString &folder)
{
    Elbow elbow{QDir(folder)};
    return elbow.open() && elbow.drawRays() && elbow.drawWeights() && elbow.drawSpheres() && elbow.drawTwist() &&
           elbow.drawSmoothZones();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("Usage: picture_handles FOLDER\n", stderr);
        return 2;
    }
    const QTemporaryDir settings; // nobody's own
    RyAppSettings::setSettingsPath(settings.path());
    const bool isDrawn = drawAll(QApplication::arguments().at(1));
    RyUndoStack::destroyGlobal();
    ryDestroyScene();
    return isDrawn ? 0 : 1;
}
