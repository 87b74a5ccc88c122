#include "RandomEdits.h"

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <algorithm>

namespace {

constexpr int MostBones = 90;
constexpr int MostPoints = 40;
constexpr int DragHandles[] = {1, 2, 41, 42, 43, 44, 45, 46};
const char *const quietActions[] = {"RyJEAlignNodeAction",        "RyJEAlignAllBonesAction",
                                    "RyJESnapCenterPointAction",  "RyJESnapEndPointAction",
                                    "RyJERotationOrderXYZAction", "RyJERotationOrderXZYAction",
                                    "RyJERotationOrderYXZAction", "RyJERotationOrderYZXAction",
                                    "RyJERotationOrderZXYAction", "RyJERotationOrderZYXAction"};
const char *const quietParametricActions[] = {"RyFitZonesToBoneAction", "RyJEAlignNodeAction",
                                              "RyJERotationOrderXYZAction", "RyJERotationOrderYZXAction",
                                              "RyJERotationOrderZYXAction"};
const char *const switches[] = {"RyJETogglePropagateTranslationAction", "RyJEToggleViewBoneCreationAction",
                                "RyJEToggleAutoAlignNodeAction", "RyJEToggleAutoSnapEndPointsAction"};
const char *const attributeRows[] = {"CenterX", "CenterY", "CenterZ", "EndX", "EndY", "EndZ"};

bool hasParametricFigure()
{
    const std::vector<RySkeleton *> figures = ryScene()->getSkeletons();
    return std::any_of(figures.begin(), figures.end(),
                       [](const RySkeleton *figure) { return RyLegacyBinding::findBinding(figure) != nullptr; });
}

} // namespace

RandomEdits::RandomEdits(EditingStage &stage, unsigned seed) : m_stage(stage), m_random(seed)
{
    m_history.dumps = {content(m_stage.dump())};
    watch();
}

QString RandomEdits::content(const QString &dump)
{
    QStringList lines = dump.split(QLatin1Char('\n'));
    for (QString &line : lines) {
        if (line.startsWith(QLatin1String("selection")))
            line = QStringLiteral("selection");
    }
    return lines.join(QLatin1Char('\n'));
}

QString RandomEdits::firstDifference(const QString &expected, const QString &found)
{
    const QStringList a = expected.split(QLatin1Char('\n'));
    const QStringList b = found.split(QLatin1Char('\n'));
    for (int i = 0; i < qMax(a.size(), b.size()); ++i) {
        if (a.value(i) != b.value(i))
            return QStringLiteral("line %1:\n  expected %2\n  found    %3").arg(i + 1).arg(a.value(i), b.value(i));
    }
    return {};
}

QString RandomEdits::compareAt(int index, const QString &doing) const
{
    if (index < m_history.floor || index >= int(m_history.dumps.size()))
        return {};
    const QString difference = firstDifference(m_history.dumps[size_t(index)], content(m_stage.dump()));
    return difference.isEmpty() ? QString()
                                : QStringLiteral("%1, at step %2: %3").arg(doing).arg(index).arg(difference);
}

QString RandomEdits::selectSome()
{
    const std::vector<RyBone *> bones = m_stage.bones();
    std::vector<RyNode *> chosen;
    const int count = chance(70) ? 1 : 1 + pick(4);
    for (int i = 0; i < count && !bones.empty(); ++i)
        chosen.push_back(bones[size_t(pick(int(bones.size())))]);
    if (chance(8)) {
        const std::vector<RySkeleton *> skeletons = ryScene()->getSkeletons();
        if (!skeletons.empty())
            chosen.push_back(skeletons[size_t(pick(int(skeletons.size())))]);
    }
    if (chance(3))
        chosen.clear();
    m_stage.select(chosen);
    return QStringLiteral("select");
}

QString RandomEdits::runAction(const char *action, const EditingStage::Fields &fields,
                               const QHash<QString, QString> &answers)
{
    const QString refusal = m_stage.run(action, fields, answers);
    m_refused += refusal.isEmpty() ? 0 : 1;
    return QStringLiteral("%1%2").arg(
        QLatin1String(action), refusal.isEmpty() ? QString() : QStringLiteral(" (") + refusal + QLatin1Char(')'));
}

QString RandomEdits::dragSomething()
{
    std::vector<QPoint> path = {QPoint(100 + pick(600), 100 + pick(400))};
    const int moves = 1 + pick(4);
    for (int i = 0; i < moves; ++i)
        path.push_back(path.back() + QPoint(pick(81) - 40, pick(81) - 40));
    const int handle = DragHandles[size_t(pick(int(std::size(DragHandles))))];
    const Qt::KeyboardModifiers modifiers = chance(25) ? Qt::ControlModifier : Qt::NoModifier;
    const bool cancel = chance(15);
    m_stage.drag(handle, path, modifiers, cancel);
    return QStringLiteral("drag of handle %1%2").arg(handle).arg(cancel ? QStringLiteral(", cancelled") : QString());
}

bool RandomEdits::isCrowded() const
{
    return m_stage.bones().size() > size_t(MostBones);
}

QString RandomEdits::edit()
{
    const bool crowded = isCrowded();
    const int kind = pick(100);
    if (kind < 18)
        return selectSome();
    if (kind < 45)
        return dragSomething();
    if (kind >= 60 && kind < 65 && hasParametricFigure())
        return runAction(quietParametricActions[size_t(pick(int(std::size(quietParametricActions))))]);
    if (kind < 65)
        return runAction(quietActions[size_t(pick(int(std::size(quietActions))))]);
    if (kind < 69)
        return runAction(switches[size_t(pick(int(std::size(switches))))]);
    const QString name = freshName();
    if (kind < 73) {
        return runAction("RyJERenameNodeAction", {{QStringLiteral("name"), name}, {QStringLiteral("label"), name}});
    }
    if (kind < 78 || crowded) {
        expectToDelete(qobject_cast<RyBone *>(ryScene()->getPrimarySelection()));
        return runAction(chance(90) ? "RyJEDeleteBoneAction" : "RyJEDeleteUnusedBonesAction");
    }
    if (kind < 82)
        return runAction("RyJESplitBoneAction");
    if (kind < 85)
        return runAction("RyJECreateSiblingBoneAction");
    if (kind < 87)
        return runAction("RyJEDuplicateBonesAction");
    if (kind < 88) {
        return runAction("RyJECreateControlBonesAction",
                         {{QStringLiteral("JointEditorPrefixLEdit"), name},
                          {QStringLiteral("JointEditorControlBoneModeCmb"), QString::number(pick(2))}});
    }
    if (kind < 91) {
        return runAction("RyJECreateBoneAction",
                         {{QStringLiteral("JointEditorCreateBoneNameLEdit"), name},
                          {QStringLiteral("JointEditorCreateBoneLabelLEdit"), name},
                          {QStringLiteral("JointEditorCreateBoneRotationOrderCmb"), QString::number(pick(6))}});
    }
    if (kind < 94) {
        const std::vector<RyBone *> bones = m_stage.bones();
        if (bones.empty())
            return {};
        const RyBone *parent = bones[size_t(pick(int(bones.size())))];
        return runAction(
            "RyJEReparentBoneAction", {{QStringLiteral("NodeDlgTree"), parent->getName()}},
            {{QStringLiteral("Reparenting Warning"), chance(80) ? QStringLiteral("Ok") : QStringLiteral("Cancel")}});
    }
    if (kind < 97) {
        const QString row = QLatin1String(attributeRows[size_t(pick(int(std::size(attributeRows))))]);
        EditingStage::Fields fields = {
            {QStringLiteral("NodeAttributesEdit%1Cbx").arg(row), QStringLiteral("true")},
            {QStringLiteral("NodeAttributesEdit%1SBox").arg(row), QString::number(pick(900) / 10.0)}};
        if (chance(50))
            fields.emplace_back(QStringLiteral("NodeAttributesAdjustValueBtn"), QStringLiteral("true"));
        return runAction("RyJESelectedNodesAttributesEditAction", fields);
    }
    m_stage.controlClick(QPoint(pick(800), pick(600)));
    return QStringLiteral("Ctrl+click");
}

QString RandomEdits::account(const QString &doing)
{
    RyUndoStack *stack = ryUndoStack();
    const QString after = m_stage.dump();
    m_present = after;
    const int points = ryRestorePoints()->count();
    if (stack->isHoldOpen())
        return doing + QStringLiteral(" left a hold open");
    if (points > m_pointsBefore) {
        ++m_pointsTaken;
        m_points.push_back({m_before, m_indexBefore, m_history});
        m_history.floor = stack->index();
        m_history.dumps.assign(size_t(stack->index()) + 1, QString());
        m_history.dumps.back() = content(after);
        return {};
    }
    if (stack->index() == m_indexBefore) {
        const QString difference = firstDifference(content(m_before), content(after));
        return difference.isEmpty() ? QString()
                                    : QStringLiteral("%1 changed the scene and left neither step nor restore point: %2")
                                          .arg(doing, difference);
    }
    if (stack->index() != m_indexBefore + 1)
        return QStringLiteral("%1 led from step %2 to %3").arg(doing).arg(m_indexBefore).arg(stack->index());
    ++m_steps;
    m_history.dumps.resize(size_t(m_indexBefore) + 1);
    m_history.dumps.push_back(content(after));
    return {};
}

QString RandomEdits::moveInHistory()
{
    RyUndoStack *stack = ryUndoStack();
    const int count = 1 + pick(6);
    for (int i = 0; i < count; ++i) {
        if (stack->canUndo() && stack->index() > m_history.floor && chance(60)) {
            stack->undo();
            const QString wrong = compareAt(stack->index(), QStringLiteral("undo"));
            if (!wrong.isEmpty())
                return wrong;
        } else if (stack->canRedo()) {
            stack->redo();
            // A step from before a command that made none leads to a state that nobody has seen.
            if (stack->index() == int(m_history.dumps.size()))
                m_history.dumps.push_back(content(m_stage.dump()));
            const QString wrong = compareAt(stack->index(), QStringLiteral("redo"));
            if (!wrong.isEmpty())
                return wrong;
        }
    }
    return {};
}

QString RandomEdits::restore(int point)
{
    const Point target = m_points[size_t(point)];
    const Point present = {m_stage.dump(), ryUndoStack()->index(), m_history};
    const int index = int(m_points.size()) - 1 - point;
    const QString doing = ryRestorePoints()->text(index);
    if (!ryRestorePoints()->restore(index))
        return doing + QStringLiteral(" was refused");
    ++m_restored;
    const QString difference = firstDifference(target.dump, m_stage.dump());
    if (!difference.isEmpty())
        return QStringLiteral("%1: %2").arg(doing, difference);
    if (ryUndoStack()->index() != target.index)
        return QStringLiteral("%1 brings step %2 back, not %3")
            .arg(doing)
            .arg(ryUndoStack()->index())
            .arg(target.index);
    m_history = target.history;
    // The point is used up; the way back is the newest now.
    m_points.erase(m_points.begin() + point);
    m_points.push_back(present);
    if (ryRestorePoints()->count() != int(m_points.size()))
        return QStringLiteral("%1 leaves %2 restore points, not %3")
            .arg(doing)
            .arg(ryRestorePoints()->count())
            .arg(m_points.size());
    return {};
}

void RandomEdits::watch()
{
    const auto add = [this](QObject *object) {
        QPointer<QObject> &watched = m_watched[object];
        if (!watched) // new, or another one at the place of one that is gone
            watched = object;
    };
    for (RyNode *node : ryScene()->getNodes())
        add(node);
    for (const RySkeleton *skeleton : ryScene()->getSkeletons()) {
        const RySkinBinding *skin = RySkinBinding::findSkin(skeleton);
        for (RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
            add(binding);
            for (RyWeightMap *map : binding->getAllWeightMaps())
                add(map);
        }
        const RyLegacyBinding *legacy = RyLegacyBinding::findBinding(skeleton);
        for (RyLegacyJoint *joint : legacy ? legacy->joints() : std::vector<RyLegacyJoint *>()) {
            add(joint);
            for (RyLegacyJointParam *param : joint->params())
                add(param);
        }
    }
}

QStringList RandomEdits::stillAlive() const
{
    QStringList alive;
    for (const auto &[address, object] : m_watched) {
        if (object)
            alive.append(QStringLiteral("%1 \"%2\"")
                             .arg(QString::fromLatin1(object->metaObject()->className()), object->objectName()));
    }
    return alive;
}

QString RandomEdits::next()
{
    if (m_points.size() > size_t(MostPoints)) {
        ryRestorePoints()->clear();
        m_points.clear();
    }
    // Figures that became props, or lost most of their bones, come back before long.
    const bool isBare = m_stage.bones().size() < 4;
    if (chance(isBare ? 40 : 12)) {
        m_present.clear();
        return moveInHistory();
    }
    if (!m_points.empty() && isBare && chance(30)) {
        m_present.clear();
        return restore(0);
    }
    if (!m_points.empty() && chance(4)) {
        m_present.clear();
        return restore(pick(int(m_points.size())));
    }
    m_before = m_present.isEmpty() ? m_stage.dump() : m_present;
    m_indexBefore = ryUndoStack()->index();
    m_pointsBefore = ryRestorePoints()->count();
    const auto sums = RigChecks::allWeightSums(*ryScene());
    m_weightsMayGo = false;
    const QString doing = edit();
    watch();
    const QString wrong = account(doing);
    if (!wrong.isEmpty())
        return wrong;
    const QString broken = RigChecks::check(*ryScene(), m_weightsMayGo ? decltype(sums)() : sums);
    return broken.isEmpty() ? QString() : QStringLiteral("%1: %2").arg(doing, broken);
}

QString RandomEdits::run(int edits)
{
    for (int i = 0; i < edits; ++i) {
        QString wrong = next();
        for (const RySkeleton *figure : i % 20 == 0 ? ryScene()->getSkeletons() : std::vector<RySkeleton *>()) {
            if (wrong.isEmpty())
                wrong = RigChecks::deformsAsNew(*figure);
        }
        if (!wrong.isEmpty())
            return QStringLiteral("edit %1: %2").arg(i).arg(wrong);
    }
    return {};
}

QString RandomEdits::unwind()
{
    const auto undoAll = [this]() -> QString {
        while (ryUndoStack()->canUndo() && ryUndoStack()->index() > m_history.floor) {
            ryUndoStack()->undo();
            const QString wrong = compareAt(ryUndoStack()->index(), QStringLiteral("undo"));
            if (!wrong.isEmpty())
                return wrong;
        }
        return {};
    };
    QString wrong = undoAll();
    for (int point = int(m_points.size()) - 1; point >= 0 && wrong.isEmpty(); --point) {
        wrong = restore(point);
        if (wrong.isEmpty())
            wrong = undoAll();
    }
    return wrong;
}
