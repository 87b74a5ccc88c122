#include "demo_session/FixStory.h"

#include "demo_session/boneAxis.h"
#include "rycore/app/RyApp.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/window/HostWindow.h"

#include <QComboBox>
#include <QPushButton>

#include <algorithm>
#include <cmath>

namespace {

const QString JointEditor = QStringLiteral("Joint Editor");
constexpr int CenterPointHandle = 1;
constexpr float Lowered = 40.0f; // degrees, as in the script
constexpr float Near = 0.5f;     // centimetres; a pixel of the window is 0.3

QString centimetres(float value)
{
    return QStringLiteral("%1 cm").arg(double(value), 0, 'f', 2);
}

} // namespace

void FixStory::play()
{
    if (!findArms())
        return;
    m_finished = m_elbow->getOrigin();
    const float angle = Lowered * float(M_PI) / 180.0f, c = std::cos(angle), s = std::sin(angle);
    const RyVec3 center = m_shoulder->getOrigin(), arm = m_finished - center;
    m_lowered = center + RyVec3(c * arm.x + s * arm.y, c * arm.y - s * arm.x, arm.z);
    m_clips = m_stage.window().getScene()->getClips().size();
    if (!makeUnfinished())
        return;
    look();
    lookAtTheElbow();
    bendElbow(QStringLiteral("fix-bent"));
    if (!moveElbow())
        return;
    bendElbow(QStringLiteral("fix-elbow"));
    if (mirror() && align() && raiseArms() && bake())
        saveAndReopen();
}

bool FixStory::findArms()
{
    RyNode *shoulder = m_stage.node(QStringLiteral("lShldr"));
    m_figure = shoulder ? qobject_cast<RyFigure *>(shoulder->getSkeleton()) : nullptr;
    m_shoulder = m_figure ? m_figure->findBone(QStringLiteral("lShldr")) : nullptr;
    m_elbow = m_figure ? m_figure->findBone(QStringLiteral("lForearm")) : nullptr;
    return m_stage.check(m_shoulder && m_elbow, QStringLiteral("the figure has a left arm"));
}

bool FixStory::makeUnfinished()
{
    const QString script = RyApp::getHomePath() + QStringLiteral("/../docs/examples/unfinished_figure.rsx");
    const bool asked = m_stage.withDialog(
        [this] {
            m_stage.chooseFromMenu({QStringLiteral("Scripts"), QStringLiteral("Run Script")});
        },
        [&](QWidget *dialog) {
            m_stage.pointer().key(dialog, QStringLiteral("ctrl+a"));
            m_stage.pointer().type(dialog, script);
            m_stage.pointer().key(dialog, QStringLiteral("Return"));
        });
    const float away = (m_elbow->getOrigin() - m_lowered).length();
    return asked &&
           m_stage.check(away > 5.0f && asymmetry() > 5.0f, QStringLiteral("its elbow is %1 off, its right arm %2")
                                                                .arg(centimetres(away), centimetres(asymmetry())));
}

void FixStory::look()
{
    m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Front")});
    m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Frame All")});
    m_stage.picture(QStringLiteral("fix-look"));
}

void FixStory::lookAtTheElbow()
{
    Ry3DViewport *viewport = m_stage.window().viewport();
    m_stage.selectInTree(m_elbow);
    viewport->setFocus();
    m_stage.pointer().key(viewport, QStringLiteral("f"));
    PointerDriver::wait(200);
    m_stage.pointer().wheelBack(viewport, viewport->rect().center(), 1);
}

void FixStory::bendElbow(const QString &pictureName)
{
    m_stage.typeInto(QStringLiteral("PoseZRotate"), QStringLiteral("70"));
    m_stage.check(m_elbow->isPosed(), QStringLiteral("the elbow bends"));
    m_stage.picture(pictureName);
    auto *restore = m_stage.window().findChild<QPushButton *>(QStringLiteral("ParametersRestore"));
    m_stage.pointer().click(restore, restore->rect().center());
    m_stage.check(!m_elbow->isPosed(), QStringLiteral("Restore stretches it"));
}

bool FixStory::moveElbow()
{
    Ry3DViewport *viewport = m_stage.window().viewport();
    if (!m_stage.chooseFromMenu({JointEditor, QStringLiteral("Snap"), QStringLiteral("Auto Snap End Points")}))
        return false;
    QPointF from, to;
    QPoint handle;
    if (!m_stage.check(viewport->project(m_elbow->getOrigin(), from) && viewport->project(m_lowered, to) &&
                           m_stage.findHandle(CenterPointHandle, from.toPoint(), handle),
                       QStringLiteral("the elbow has a handle on screen")))
        return false;
    m_stage.pointer().moveTo(viewport, handle - QPoint(20, 40));
    m_stage.pointer().moveTo(viewport, handle);
    m_stage.pointer().drag(viewport, handle, handle + (to - from).toPoint());
    const float away = (m_elbow->getOrigin() - m_lowered).length();
    m_stage.check(m_shoulder->getEndPoint() == m_elbow->getOrigin(),
                  QStringLiteral("the upper arm ends where the forearm begins"));
    return m_stage.check(away < Near,
                         QStringLiteral("dragging puts the elbow %1 beside its place").arg(centimetres(away)));
}

bool FixStory::mirror()
{
    m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Frame All")});
    const auto choose = [this](QWidget *dialog, const char *name, const QString &text) {
        auto *box = dialog->findChild<QComboBox *>(QString::fromLatin1(name));
        if (!m_stage.check(box && box->findText(text) >= 0, QStringLiteral("the dialog offers %1").arg(text)))
            return;
        m_stage.pointer().click(box, box->rect().center());
        PointerDriver::wait(200);
        for (int steps = box->findText(text) - box->currentIndex(); steps > 0; --steps)
            m_stage.pointer().key(box, QStringLiteral("Down"));
        m_stage.pointer().key(box, QStringLiteral("Return"));
        m_stage.check(box->currentText() == text, QStringLiteral("%1 is chosen").arg(text));
    };
    const bool asked = m_stage.withDialog(
        [this] {
            m_stage.chooseFromMenu({JointEditor, QStringLiteral("Edit"), QStringLiteral("Mirror Joints...")});
        },
        [&](QWidget *dialog) {
            choose(dialog, "JointEditorMirrorNodesCmb", QStringLiteral("Root Recursive"));
            choose(dialog, "JointEditorMirrorDirectionCmb", QStringLiteral("Left to Right"));
            m_stage.picture(QStringLiteral("fix-mirror"));
            m_stage.pointer().key(dialog, QStringLiteral("Return"));
        });
    PointerDriver::wait(200);
    const float away = asymmetry();
    return asked &&
           m_stage.check(away < 0.01f,
                         QStringLiteral("the right arm lies as the left one does, within %1").arg(centimetres(away)));
}

bool FixStory::align()
{
    if (!m_stage.chooseFromMenu({JointEditor, QStringLiteral("Align"), QStringLiteral("Align All Bones")}))
        return false;
    const std::vector<RyBone *> bones = m_figure->getAllBones();
    const auto along = std::count_if(bones.begin(), bones.end(), [](const RyBone *bone) { return isAxisAlong(*bone); });
    m_stage.picture(QStringLiteral("fix-aligned"));
    return m_stage.check(size_t(along) == bones.size(),
                         QStringLiteral("%1 of %2 bones have an axis along them").arg(along).arg(bones.size()));
}

bool FixStory::raiseArms()
{
    for (const auto &[name, degrees] : {std::pair("lShldr", Lowered), std::pair("rShldr", -Lowered)}) {
        RyBone *bone = m_figure->findBone(QString::fromLatin1(name));
        if (!bone || !m_stage.selectInTree(bone) ||
            !m_stage.typeInto(QStringLiteral("PoseZRotate"), QString::number(double(degrees))))
            return false;
    }
    float off = 0.0f;
    for (const char *name : {"lHand", "rHand"})
        off = std::max(
            off, std::abs(m_figure->findBone(QString::fromLatin1(name))->getWSPos().y - m_shoulder->getWSPos().y));
    return m_stage.check(
        off < 3.0f, QStringLiteral("both wrists are at the height of the shoulders, within %1").arg(centimetres(off)));
}

bool FixStory::bake()
{
    if (!m_stage.chooseFromMenu({JointEditor, QStringLiteral("Edit"), QStringLiteral("Bake Joint Rotations")}))
        return false;
    m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Frame All")});
    m_stage.picture(QStringLiteral("fix-done"));
    const float away = (m_elbow->getOrigin() - m_finished).length();
    return m_stage.check(!m_shoulder->isPosed() && away < Near && asymmetry() < 0.01f,
                         QStringLiteral("the T-pose is the rest, its elbow %1 beside that of the finished figure")
                             .arg(centimetres(away)));
}

void FixStory::saveAndReopen()
{
    const RyVec3 elbow = m_elbow->getOrigin();
    const QString path = m_stage.saveAs(QStringLiteral("fixed.glb"));
    if (path.isEmpty() ||
        !m_stage.check(m_stage.window().files()->openPath(path), QStringLiteral("the saved file opens")) || !findArms())
        return;
    const float away = (m_elbow->getOrigin() - elbow).length();
    m_stage.check(away < 1e-3f, QStringLiteral("its elbow is where it was put, within %1").arg(centimetres(away)));
    m_stage.check(asymmetry() < 0.01f, QStringLiteral("its arms are alike, within %1").arg(centimetres(asymmetry())));
    m_stage.check(m_clips > 0 && m_stage.window().getScene()->getClips().size() == m_clips,
                  QStringLiteral("it has its %1 clips").arg(m_clips));
}

float FixStory::asymmetry() const
{
    float farthest = 0.0f;
    for (const RyBone *left : m_figure->getAllBones()) {
        if (!left->getName().startsWith(QLatin1Char('l')))
            continue;
        const RyBone *right = m_figure->findBone(QLatin1Char('r') + left->getName().mid(1));
        const RyVec3 center = left->getOrigin(), end = left->getEndPoint();
        farthest = right ? std::max({farthest, (right->getOrigin() - RyVec3(-center.x, center.y, center.z)).length(),
                                     (right->getEndPoint() - RyVec3(-end.x, end.y, end.z)).length()})
                         : 1e9f;
    }
    return farthest;
}
