#include "demo_session/ChainStory.h"

#include "demo_session/boneAxis.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/window/HostWindow.h"

#include <QLineEdit>

#include <algorithm>

namespace {

const QString JointEditor = QStringLiteral("Joint Editor");
// From the crown up and back, in the plane through the middle of the figure.
const RyVec3 Ends[] = {{0.0f, 188.0f, -1.5f}, {0.0f, 200.0f, -6.0f}, {0.0f, 208.0f, -16.0f}};

} // namespace

void ChainStory::play()
{
    const RyNode *head = m_stage.node(QStringLiteral("head"));
    m_figure = head ? qobject_cast<RyFigure *>(head->getSkeleton()) : nullptr;
    if (!m_stage.check(m_figure, QStringLiteral("the head belongs to a figure")))
        return;
    if (!lookAtTheHead() || !turnInteractiveModeOn())
        return;
    if (!addBone(QStringLiteral("head2"), QStringLiteral("head"), Ends[0]))
        return;
    m_stage.picture(QStringLiteral("chain-first"));
    if (!renameFirstBone() || !addBone(QStringLiteral("antenna2"), QStringLiteral("antenna"), Ends[1]) ||
        !addBone(QStringLiteral("antenna3"), QStringLiteral("antenna2"), Ends[2]))
        return;
    m_stage.picture(QStringLiteral("chain"));
    alignBones();
    splitLastBone();
    deleteAndRestore();
    saveAndReopen();
    // The mode belongs to the window, and the next story wants none of it.
    m_stage.chooseFromMenu({JointEditor, QStringLiteral("Create"), QStringLiteral("Interactive Mode")});
}

bool ChainStory::lookAtTheHead()
{
    Ry3DViewport *viewport = m_stage.window().viewport();
    if (!m_stage.chooseFromMenu({QStringLiteral("View"), QStringLiteral("Side")}) ||
        !m_stage.selectInTree(m_stage.node(QStringLiteral("head"))))
        return false;
    viewport->setFocus();
    m_stage.pointer().key(viewport, QStringLiteral("f"));
    PointerDriver::wait(200);
    QPointF top;
    for (int turns = 0; turns < 20; ++turns) {
        if (viewport->project(Ends[2], top) && viewport->rect().adjusted(40, 90, -40, -40).contains(top.toPoint()))
            return true;
        m_stage.pointer().wheelBack(viewport, viewport->rect().center(), 1);
    }
    return m_stage.check(false, QStringLiteral("there is room above the head"));
}

bool ChainStory::turnInteractiveModeOn()
{
    return m_stage.chooseFromMenu({JointEditor, QStringLiteral("Create"), QStringLiteral("Interactive Mode")},
                                  QStringLiteral("chain-menu"));
}

RyBone *ChainStory::addBone(const QString &name, const QString &parentName, const RyVec3 &end)
{
    Ry3DViewport *viewport = m_stage.window().viewport();
    const RyNode *parent = m_stage.node(parentName);
    const size_t count = m_figure->getAllBones().size();
    QPointF place;
    if (!parent ||
        !m_stage.check(viewport->project(end, place), QStringLiteral("the place for %1 is on screen").arg(name)))
        return nullptr;
    m_stage.pointer().moveTo(viewport, place.toPoint() - QPoint(20, 0));
    m_stage.pointer().hold(Qt::ControlModifier);
    m_stage.pointer().click(viewport, place.toPoint());
    m_stage.pointer().hold(Qt::NoModifier);
    PointerDriver::wait(100);
    RyBone *bone = m_figure->findBone(name);
    if (!m_stage.check(bone && m_figure->getAllBones().size() == count + 1,
                       QStringLiteral("Ctrl+click makes the bone %1").arg(name)))
        return nullptr;
    m_stage.check(bone->getNodeParent() == parent && bone->getOrigin() == parent->getEndPoint() &&
                      (bone->getEndPoint() - end).length() < 1.0f,
                  QStringLiteral("%1 runs from the end of %2 to the mouse").arg(name, parentName));
    // The new bone is the only child: one step down from its parent.
    m_stage.pointer().key(viewport, QStringLiteral("Down"));
    const bool isSelected = m_stage.window().getScene()->getPrimarySelection() == bone;
    return m_stage.check(isSelected, QStringLiteral("the down arrow selects it")) ? bone : nullptr;
}

bool ChainStory::renameFirstBone()
{
    RyBone *bone = m_figure->findBone(QStringLiteral("head2"));
    const auto write = [this](QWidget *dialog, const char *field, const QString &text) {
        auto *edit = dialog->findChild<QLineEdit *>(QString::fromLatin1(field));
        if (!m_stage.check(edit, QStringLiteral("the form has a field %1").arg(QLatin1String(field))))
            return;
        m_stage.pointer().click(edit, edit->rect().center());
        m_stage.pointer().key(edit, QStringLiteral("ctrl+a"));
        m_stage.pointer().type(edit, text);
    };
    const bool opened = m_stage.withDialog(
        [this] {
            m_stage.chooseFromMenu({JointEditor, QStringLiteral("Edit"), QStringLiteral("Rename Node...")});
        },
        [&](QWidget *dialog) {
            write(dialog, "name", QStringLiteral("antenna"));
            write(dialog, "label", QStringLiteral("Antenna"));
            m_stage.picture(QStringLiteral("chain-rename"));
            m_stage.pointer().key(dialog, QStringLiteral("Return"));
        });
    m_stage.window().viewport()->setFocus();
    return opened &&
           m_stage.check(bone->getName() == QLatin1String("antenna") && bone->getLabel() == QLatin1String("Antenna"),
                         QStringLiteral("the bone is called %1, \"%2\"").arg(bone->getName(), bone->getLabel()));
}

void ChainStory::alignBones()
{
    for (const char *name : {"antenna", "antenna2", "antenna3"}) {
        const RyBone *bone = m_figure->findBone(QString::fromLatin1(name));
        if (m_stage.selectInTree(m_figure->findBone(QString::fromLatin1(name))) &&
            m_stage.chooseFromMenu({JointEditor, QStringLiteral("Align"), QStringLiteral("Align Node")}))
            m_stage.check(isAxisAlong(*bone), QStringLiteral("an axis of %1 lies along the bone").arg(bone->getName()));
    }
    m_stage.picture(QStringLiteral("chain-aligned"));
}

void ChainStory::splitLastBone()
{
    RyBone *bone = m_figure->findBone(QStringLiteral("antenna3"));
    const RyVec3 start = bone->getOrigin();
    const RyVec3 end = bone->getEndPoint();
    if (!m_stage.selectInTree(bone) ||
        !m_stage.chooseFromMenu({JointEditor, QStringLiteral("Create"), QStringLiteral("Split Bone")}))
        return;
    const RyBone *half = m_figure->findBone(QStringLiteral("antenna4"));
    const RyVec3 middle = (start + end) * 0.5f;
    m_stage.check(half && half->getNodeParent() == bone && (half->getOrigin() - middle).length() < 1e-3f &&
                      (bone->getEndPoint() - middle).length() < 1e-3f && half->getEndPoint() == end,
                  QStringLiteral("Split Bone makes two halves that meet in the middle"));
    checkWeights();
    m_stage.picture(QStringLiteral("chain-split"));
}

void ChainStory::deleteAndRestore()
{
    const QString before = dump();
    RyBone *bone = m_figure->findBone(QStringLiteral("antenna2"));
    if (!m_stage.selectInTree(bone) ||
        !m_stage.chooseFromMenu({JointEditor, QStringLiteral("Delete"), QStringLiteral("Delete Bone")}))
        return;
    const RyBone *next = m_figure->findBone(QStringLiteral("antenna3"));
    m_stage.check(!m_figure->findBone(QStringLiteral("antenna2")) && next &&
                      next->getNodeParent() == m_figure->findBone(QStringLiteral("antenna")),
                  QStringLiteral("Delete Bone leaves antenna3 at antenna"));
    checkWeights();
    m_stage.picture(QStringLiteral("chain-deleted"));
    if (!m_stage.chooseFromMenu({QStringLiteral("Edit"), QStringLiteral("Restore to before Delete Bone")},
                                QStringLiteral("chain-restore")))
        return;
    m_stage.picture(QStringLiteral("chain-restored"));
    m_stage.check(dump() == before, QStringLiteral("everything is as it was before Delete Bone"));
}

void ChainStory::saveAndReopen()
{
    const QString path = m_stage.saveAs(QStringLiteral("antenna.glb"));
    if (path.isEmpty())
        return;
    const QString before = dump();
    if (!m_stage.check(m_stage.window().files()->openPath(path), QStringLiteral("the saved file opens")))
        return;
    const RyNode *bone = m_stage.node(QStringLiteral("antenna"));
    m_figure = bone ? qobject_cast<RyFigure *>(bone->getSkeleton()) : nullptr;
    m_stage.check(dump() == before, QStringLiteral("it holds the same scene"));
    if (m_figure)
        checkWeights();
}

void ChainStory::checkWeights()
{
    const RySkinBinding *skin = m_figure->getSkinBinding();
    std::vector<int> sums;
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        const RyWeightMap *map = binding->getWeights();
        if (!map)
            continue;
        sums.resize(size_t(map->getNumWeights()));
        for (size_t v = 0; v < sums.size(); ++v)
            sums[v] += map->getWeight(int(v));
    }
    const auto whole = std::count(sums.begin(), sums.end(), RyWeightMap::FullWeight);
    m_stage.check(!sums.empty() && size_t(whole) == sums.size(),
                  QStringLiteral("all %1 vertices have their whole weight").arg(sums.size()));
}

QString ChainStory::dump()
{
    m_stage.window().getScene()->selectAllNodes(false);
    return rySceneDump(*m_stage.window().getScene());
}
