#include "demo_session/ClipStory.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/panes/ClipList.h"
#include "ryhost/panes/ClipPane.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/window/HostWindow.h"

#include <QSpinBox>

#include <algorithm>

namespace {

const QString Elbow = QStringLiteral("lForearm");
const QString Clip = QStringLiteral("wave");
constexpr int Frame = 22; // the arm is up
constexpr double ElbowAt = 36.0;

} // namespace

void ClipStory::play()
{
    if (!findFigure() || !m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Front")}) ||
        !m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Frame All")}))
        return;
    if (!watchClip(QStringLiteral("clip-before")))
        return;
    m_before = m_figure->getObject()->getDeformedPositions();
    if (moveElbow() && saveAndReopen() && watchClip(QStringLiteral("clip-after")))
        compareFrames();
}

bool ClipStory::findFigure()
{
    const RyNode *elbow = m_stage.node(Elbow);
    m_figure = elbow ? qobject_cast<RyFigure *>(elbow->getSkeleton()) : nullptr;
    return m_stage.check(m_figure && m_figure->getObject(), QStringLiteral("the elbow belongs to a figure"));
}

bool ClipStory::watchClip(const QString &pictureName)
{
    HostWindow &window = m_stage.window();
    PointerDriver::wait(100); // the list follows a new file in its own time
    ClipList *list = window.scenePane()->clips()->list();
    const QModelIndexList rows = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, Clip, 1,
                                                      Qt::MatchExactly | Qt::MatchRecursive);
    if (!m_stage.check(!rows.isEmpty(), QStringLiteral("the scene list has the clip %1").arg(Clip)))
        return false;
    m_stage.pointer().click(list->viewport(), list->visualRect(rows.front()).center());
    PointerDriver::wait(700);
    const RyClipPlayer *player = window.getScene()->getClipPlayer();
    if (!m_stage.check(player->isPlaying() && player->time() > player->clip()->start(),
                       QStringLiteral("a click on %1 plays it").arg(Clip)))
        return false;
    m_stage.pointer().click(list->viewport(), list->visualRect(rows.front()).center());
    auto *frame = window.findChild<QSpinBox *>(QStringLiteral("ClipFrameFld"));
    m_stage.pointer().click(frame, frame->rect().center());
    m_stage.pointer().key(frame, QStringLiteral("ctrl+a"));
    m_stage.pointer().type(frame, QString::number(Frame));
    m_stage.pointer().key(frame, QStringLiteral("Return"));
    const bool stands = !player->isPlaying() && player->isShowing() && frame->value() == Frame;
    // The elbow's handles show where they are in the clip.
    m_stage.selectInTree(m_stage.node(Elbow));
    PointerDriver::wait(600); // until the picture is refined
    m_stage.picture(pictureName);
    return m_stage.check(stands && player->isShowing(), QStringLiteral("it stands at frame %1").arg(Frame));
}

bool ClipStory::moveElbow()
{
    HostWindow &window = m_stage.window();
    const RyNode *elbow = m_stage.node(Elbow);
    if (!elbow || !m_stage.typeInto(QStringLiteral("JointEditorOriginXWgt"), QString::number(ElbowAt)))
        return false;
    m_stage.check(!window.getScene()->getClipPlayer()->isShowing(), QStringLiteral("the edit puts the clip away"));
    return m_stage.check(elbow->getOrigin().x == float(ElbowAt), QStringLiteral("the elbow stands at %1").arg(ElbowAt));
}

bool ClipStory::saveAndReopen()
{
    const QString path = m_stage.saveAs(QStringLiteral("elbow.glb"));
    return !path.isEmpty() &&
           m_stage.check(m_stage.window().files()->openPath(path), QStringLiteral("the saved file opens")) &&
           findFigure() &&
           m_stage.check(m_stage.node(Elbow)->getOrigin().x == float(ElbowAt),
                         QStringLiteral("the elbow is where it was put"));
}

void ClipStory::compareFrames()
{
    const std::vector<RyVec3> &after = m_figure->getObject()->getDeformedPositions();
    constexpr double Tolerance = 1e-5; // of the figure's height
    double farthest = m_before.size() == after.size() ? 0.0 : 1e9;
    float low = 1e9f, high = -1e9f;
    for (size_t v = 0; v < std::min(m_before.size(), after.size()); ++v) {
        farthest = std::max(farthest, double((after[v] - m_before[v]).length()));
        low = std::min(low, after[v].y);
        high = std::max(high, after[v].y);
    }
    m_stage.check(farthest <= Tolerance * double(high - low),
                  QStringLiteral("no vertex of the frame moved by more than %1 cm").arg(farthest, 0, 'g', 2));
}
