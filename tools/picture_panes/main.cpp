// picture_panes FOLDER dark|light: writes the pictures of docs/guide.md that show the settings pane of the joint editor
// in that look. QT_SCALE_FACTOR gives the scale.
#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/base/RyAppSettings.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/look/HostTheme.h"

#include <QApplication>
#include <QDir>
#include <QTabWidget>
#include <QTemporaryDir>

#include <cstdio>

namespace {

class Pane
{
public:
    explicit Pane(const QDir &folder) : m_folder(folder), m_manager(ryScene())
    {
        m_manager.addTool(m_tool);
        m_manager.setActiveTool(m_tool);
        m_frame = m_tool->frame();
        m_frame->resize(350, 960);
        m_frame->show();
    }
    bool drawAll()
    {
        return open("mannequin") && select(nullptr) && save("pane-nothing") && selectSkeleton() &&
               save("pane-figure") && select("lForearm") && save("pane-bone") && addBulge() &&
               turn("JointEditorParameterTabWgt", 1) && save("pane-bulges") && open("parametric") &&
               select("lForearm") && takeBend() && save("pane-angles") && turn("JointEditorParamTabWgt", 1) &&
               save("pane-matrices");
    }

private:
    static bool open(const char *sample)
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
        QString error;
        const QString path = QStringLiteral(RY_RESOURCES_DIR "/samples/%1.glb").arg(QLatin1String(sample));
        return RySceneFile::open(ryScene(), path, &error);
    }
    static bool take(const std::vector<RyNode *> &nodes)
    {
        ryScene()->setSelection(nodes);
        QCoreApplication::sendPostedEvents();
        return true;
    }
    /// Null selects nothing.
    static bool select(const char *name)
    {
        RyNode *node = name ? ryScene()->findNode(QString::fromLatin1(name)) : nullptr;
        return take(node ? std::vector<RyNode *>{node} : std::vector<RyNode *>()) && bool(node) == bool(name);
    }
    static bool selectSkeleton() { return take({ryScene()->getSkeletons().front()}); }
    /// With its own weights as the map of a muscle.
    bool addBulge() const
    {
        auto *bone = qobject_cast<RyBone *>(m_tool->currentNode());
        const RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
        RyBoneBinding *binding = skin ? skin->findBoneBinding(bone) : nullptr;
        const RyWeightMap *weights = binding ? binding->getWeights() : nullptr;
        if (!weights)
            return false;
        const auto copy = [weights](const char *name) {
            auto *map = new RyWeightMap(QString::fromLatin1(name));
            const int count = weights->getNumAffected();
            map->setAffected(weights->getNumWeights(),
                             {weights->getAffectedIndices(), weights->getAffectedIndices() + count},
                             {weights->getAffectedWeights(), weights->getAffectedWeights() + count});
            return map;
        };
        auto *bulge = new RyBulgeBinding(1);
        bulge->setLeftWeights(copy("flexor"));
        bulge->setRightWeights(copy("extensor"));
        bulge->adjustBulgeValues(0.12f, 0.0f, 0.05f, -0.02f);
        binding->setBulgeBinding(1, bulge);
        QCoreApplication::sendPostedEvents();
        return true;
    }
    bool takeBend() const
    {
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(m_tool->currentNode());
        for (RyLegacyJointParam *param : joint ? joint->params() : std::vector<RyLegacyJointParam *>()) {
            if (param->type() == RyLegacyJointParam::Bend && param->getDriver() == m_tool->currentNode()) {
                m_tool->setParam(param);
                return true;
            }
        }
        return false;
    }
    bool turn(const char *tabs, int page) const
    {
        auto *widget = m_frame->findChild<QTabWidget *>(QString::fromLatin1(tabs));
        if (!widget || !widget->isTabEnabled(page))
            return false;
        widget->setCurrentIndex(page);
        return true;
    }
    bool save(const char *name) const
    {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        return m_frame->grab().save(m_folder.filePath(QLatin1String(name) + ".png"));
    }

    QDir m_folder;
    RyViewportMgr m_manager;
    RyJointEditorTool *m_tool = new RyJointEditorTool; // the manager's
    QFrame *m_frame;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("Usage: picture_panes FOLDER dark|light\n", stderr);
        return 2;
    }
    const QTemporaryDir settings; // nobody's own
    RyAppSettings::setSettingsPath(settings.path());
    HostTheme::apply(arguments.at(2) == QLatin1String("dark"));
    const bool isDrawn = Pane(QDir(arguments.at(1))).drawAll();
    if (!isDrawn)
        std::fputs("picture_panes: a picture is missing\n", stderr);
    RyUndoStack::destroyGlobal();
    ryDestroyScene();
    return isDrawn ? 0 : 1;
}
