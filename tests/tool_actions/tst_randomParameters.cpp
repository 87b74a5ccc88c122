#include "support/RyRandom.h"
#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QMap>

#include <algorithm>
#include <functional>

using Param = RyLegacyJointParam;

namespace {

/// A figure, a tool, and what every state of the history looks like. Fixture and random numbers for the edits below.
class Session
{
public:
    Session()
    {
        QObject::connect(ryUndoStack(), &RyUndoStack::changed, &m_listener, [this] { forgetWhatWasUndone(); });
    }
    ~Session() { QObject::disconnect(ryUndoStack(), nullptr, &m_listener, nullptr); }

    RyBone *bone()
    {
        const std::vector<RyBone *> bones = scene.doll.figure->getAllBones();
        return bones.empty() ? nullptr : bones[size_t(random.integer(0, int(bones.size()) - 1))];
    }
    Param *param(const RyLegacyJoint *joint)
    {
        const int last = joint ? int(joint->params().size()) - 1 : -1;
        return last < 0 ? nullptr : joint->params()[size_t(random.integer(0, last))];
    }
    RyLegacyJoint *joint() { return RyLegacyJoint::findJoint(bone()); }
    /// The tool's parameter and the one whose values go with it.
    std::vector<Param *> edited() const
    {
        Param *current = scene.tool->currentParam();
        if (!current)
            return {};
        Param *partner =
            current->type() == Param::SmoothScale ? scene.tool->bendPartnerParam() : scene.tool->partnerParam();
        return partner ? std::vector<Param *>{current, partner} : std::vector<Param *>{current};
    }
    /// Writes a control of all these parameters as a field of the pane does: as one step.
    void type(const std::vector<Param *> &params, const std::function<RyFloatProperty *(const Param &)> &control,
              float value)
    {
        step([&] {
            for (const Param *param : params) {
                if (RyFloatProperty *property = control(*param))
                    property->adjustValue(value);
            }
        });
    }
    void step(const std::function<void()> &edit)
    {
        RyUndoStackHold hold;
        edit();
        hold.accept(QStringLiteral("Edit"));
    }

    /// Says what is wrong afterwards.
    QString undo() { return move(&RyUndoStack::undo); }
    QString redo() { return move(&RyUndoStack::redo); }

    /// Keeps the state of a step that was made; empty when the history is as it must be.
    QString account()
    {
        const RyUndoStack &stack = *ryUndoStack();
        const QString dump = scene.wholeDump();
        if (stack.isHoldOpen())
            return QStringLiteral("a hold is open");
        const auto index = size_t(stack.index());
        m_dumps.resize(std::max(m_dumps.size(), index + 1));
        if (m_dumps[index].isEmpty())
            m_dumps[index] = content(dump);
        return m_dumps[index] == content(dump) ? QString() : difference(m_dumps[index], content(dump));
    }
    QString compareNow() const
    {
        const size_t index = size_t(ryUndoStack()->index());
        if (index >= m_dumps.size() || m_dumps[index].isEmpty())
            return {};
        const QString dump = content(scene.wholeDump());
        return m_dumps[index] == dump ? QString() : difference(m_dumps[index], dump);
    }
    /// What the tool points at, looked for without it.
    QString wrongPointer() const
    {
        const RyJointEditorTool &tool = *scene.tool;
        const RyNode *node = tool.currentNode();
        const Param *param = tool.currentParam();
        if (node != ryScene()->getPrimarySelection())
            return QStringLiteral("another node is selected");
        if (node && tool.currentNodeParent() != node->getNodeParent())
            return QStringLiteral("the parent is another one");
        if (!param) {
            return tool.partnerParam() || tool.bendPartnerParam() ? QStringLiteral("partners of nothing")
                                                                  : wrongAngles(nullptr);
        }
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(node);
        if (!joint || param->getJoint() != joint)
            return QStringLiteral("the parameter is none of the node's");
        if (param->editLevel() != 0)
            return QStringLiteral("an edit is open");
        if (tool.partnerParam() != find(RyLegacyJoint::findJoint(node->getNodeParent()), [&](const Param &other) {
                return other.getDriver() == node && other.getAxis() == param->getAxis();
            }))
            return QStringLiteral("another partner");
        const RyLegacyJoint *drivers =
            param->type() == Param::SmoothScale ? RyLegacyJoint::findJoint(param->getDriver()) : nullptr;
        if (tool.bendPartnerParam() != find(drivers, [&](const Param &other) {
                return other.getDriver() == node && other.type() == Param::SmoothScale;
            }))
            return QStringLiteral("another bend partner");
        return wrongAngles(dynamic_cast<const RyLegacyBendParam *>(param));
    }

    RyParametricToolScene scene;
    RyRandom random;

private:
    QString move(void (RyUndoStack::*way)())
    {
        m_isMoving = true;
        (ryUndoStack()->*way)();
        m_isMoving = false;
        QCoreApplication::sendPostedEvents();
        return compareNow() + wrongPointer();
    }
    void forgetWhatWasUndone()
    {
        const int index = ryUndoStack()->index();
        if (!m_isMoving && index > m_index)
            m_dumps.resize(std::min(m_dumps.size(), size_t(m_index) + 1));
        m_index = index;
    }
    static const Param *find(const RyLegacyJoint *joint, const std::function<bool(const Param &)> &fits)
    {
        for (const Param *param : joint ? joint->params() : std::vector<Param *>()) {
            if (fits(*param))
                return param;
        }
        return nullptr;
    }
    QString wrongAngles(const RyLegacyBendParam *bend) const
    {
        const RyJointEditorTool &tool = *scene.tool;
        const bool same =
            bend ? tool.cachedAngleA() == bend->getStaticA() && tool.cachedAngleB() == bend->getDynamicB() &&
                       tool.cachedAngleC() == bend->getDynamicC() && tool.cachedAngleD() == bend->getStaticD()
                 : tool.cachedAngleA() == 0.0f && tool.cachedAngleD() == 0.0f;
        return same ? QString() : QStringLiteral("other angles are cached");
    }
    /// Without the selection, which is no part of a step.
    static QString content(const QString &dump)
    {
        QStringList lines = dump.split(QLatin1Char('\n'));
        for (QString &line : lines) {
            if (line.startsWith(QLatin1String("selection")))
                line = QStringLiteral("selection");
        }
        return lines.join(QLatin1Char('\n'));
    }
    static QString difference(const QString &expected, const QString &found)
    {
        const QStringList a = expected.split(QLatin1Char('\n'));
        const QStringList b = found.split(QLatin1Char('\n'));
        for (int i = 0; i < qMax(a.size(), b.size()); ++i) {
            if (a.value(i) != b.value(i))
                return QStringLiteral("expected %1\n  found    %2").arg(a.value(i), b.value(i));
        }
        return {};
    }

    QObject m_listener;
    int m_index = 0; // of the stack when it last told
    bool m_isMoving = false;
    std::vector<QString> m_dumps; // by index of the stack; empty where nobody has seen the state
};

struct Kind
{
    const char *name;
    int share; // how often, against the others
    std::function<void(Session &)> edit;
};

void undoOrRedo(Session &s)
{
    for (int i = s.random.integer(1, 5); i > 0; --i) {
        const QString wrong = s.random.chance(0.6) ? s.undo() : s.redo();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
}

void select(Session &s)
{
    RyNode *others[] = {s.scene.lShin, s.scene.doll.figure, s.scene.prop};
    s.scene.select(s.random.chance(0.9) ? s.bone() : others[s.random.integer(0, 2)]);
}

void choose(Session &s)
{
    if (s.random.chance(0.5))
        s.scene.select(s.bone());
    s.scene.tool->setParam(s.random.chance(0.9) ? s.param(RyLegacyJoint::findJoint(s.scene.tool->currentNode()))
                                                : s.param(s.joint()));
}

void setAngle(Session &s)
{
    using Set = void (RyJointEditorTool::*)(float, int);
    const Set sets[] = {&RyJointEditorTool::setStaticA, &RyJointEditorTool::setDynamicB,
                        &RyJointEditorTool::setDynamicC, &RyJointEditorTool::setStaticD};
    const Set set = sets[s.random.integer(0, 3)];
    const auto radians = float(s.random.number(-4.0, 4.0));
    s.step([&] { (s.scene.tool->*set)(radians, s.random.integer(0, 2)); });
}

void typeController(Session &s)
{
    const auto index = size_t(s.random.integer(0, 7));
    const auto value = float(s.random.number(-200, 200));
    s.type(
        s.edited(),
        [&](const Param &param) { return index < param.controllers().size() ? param.controllers()[index] : nullptr; },
        value);
}

void typeSphere(Session &s)
{
    const auto index = size_t(s.random.integer(0, 9));
    const bool dynamic = s.random.chance(0.5);
    const auto value = float(index >= 6 ? s.random.number(0.2, 3) : s.random.number(-90, 90));
    s.type(
        s.edited(),
        [&](const Param &param) {
            return (dynamic ? param.getDynamicSphere() : param.getStaticSphere())->controls()[index];
        },
        value);
}

void setFlags(Session &s)
{
    const auto flags = unsigned(s.random.integer(0, 63)) << 1;
    s.step([&] {
        for (Param *param : s.edited())
            param->setFlags(flags | (param->flags() & ~126u));
    });
}

void setSwitch(Session &s)
{
    RyJointEditorTool &tool = *s.scene.tool;
    const bool on = s.random.chance(0.5);
    const std::function<void()> switches[] = {
        [&] { tool.setPushNeighborAngles(on); },   [&] { tool.setRestrictRotationAxes(on); },
        [&] { tool.setPropagateTranslation(on); }, [&] { tool.setAutoAlign(on); },
        [&] { tool.setAutoSnapEndPoints(on); },
    };
    switches[s.random.integer(0, 4)]();
}

void drag(Session &s)
{
    const QPoint from(s.random.integer(100, 700), s.random.integer(100, 500));
    // Points where no parameter is chosen; whatever handles a parameter has otherwise.
    const int points[] = {1, 2, 41, 42, 43, 44, 45, 46};
    const int id = s.scene.tool->currentParam() ? s.random.integer(5, 40) : points[s.random.integer(0, 7)];
    s.scene.press(id, from);
    QPoint place = from;
    for (int i = s.random.integer(0, 4); i > 0; --i) {
        place += QPoint(s.random.integer(-40, 40), s.random.integer(-40, 40));
        s.scene.move(place, s.random.chance(0.2) ? Qt::ControlModifier : Qt::NoModifier);
    }
    if (s.random.chance(0.15))
        s.scene.press(id, place, Qt::RightButton);
    else if (s.random.chance(0.1))
        s.scene.tool->setParam(s.param(RyLegacyJoint::findJoint(s.scene.tool->currentNode())));
    s.scene.release(place);
}

void propagate(Session &s)
{
    RyJointEditorTool &tool = *s.scene.tool;
    RyBone *bone = s.bone();
    const RyVec3 way = s.random.vector(3.0);
    const int axis = s.random.integer(0, 2);
    const std::function<void()> edits[] = {
        [&] { tool.performTransPropagation(bone, {}, way); },
        [&] { tool.performTransPropagation(bone, axis, way.x, s.random.chance(0.5), true); },
        [&] { tool.performRotPropagation(bone, axis, way.y * 0.1f, true, true); },
        [&] { tool.performOrientPropagation(bone, RyQuat(RyVec3::axis(axis), way.z * 0.1f)); },
        [&] { tool.propagateParamTranslation(bone, s.param(RyLegacyJoint::findJoint(bone)), way.x, axis); },
    };
    s.step([&] { edits[s.random.integer(0, 4)](); });
}

void changeOrder(Session &s)
{
    s.step([&] { s.scene.tool->changeRotationOrder(s.bone(), RyRotationOrder(s.random.integer(0, 5))); });
}

void addParam(Session &s)
{
    RyLegacyJoint *joint = s.joint();
    RyBone *driver = s.random.chance(0.9) ? s.bone() : nullptr;
    const int axis = s.random.integer(0, 2);
    Param *params[] = {new RyLegacyBendParam("more", axis, driver), new RyLegacySmoothScale("more", axis, driver),
                       new RyLegacyTwistParam("more", axis, driver)};
    std::vector<RyRef<Param>> held(std::begin(params), std::end(params));
    s.step([&] {
        if (joint)
            joint->addJointParam(params[s.random.integer(0, 2)]);
    });
}

void removeParam(Session &s)
{
    RyLegacyJoint *joint = s.joint();
    if (Param *param = s.param(joint))
        s.step([&] { joint->removeJointParam(param); });
}

void removeJoint(Session &s)
{
    if (RyLegacyJoint *joint = s.joint())
        s.step([&] { joint->getBinding()->removeJoint(joint); });
}

void changeParam(Session &s)
{
    if (Param *param = s.param(s.joint())) {
        s.step([&] {
            if (s.random.chance(0.5))
                param->setDriver(s.random.chance(0.8) ? s.bone() : nullptr);
            else
                param->setAxis(s.random.integer(0, 2));
        });
    }
}

void reparent(Session &s)
{
    RyNode *parent = s.random.chance(0.8) ? static_cast<RyNode *>(s.bone()) : s.scene.doll.figure;
    s.step([&] { parent->addNodeChild(s.bone()); });
}

void deleteOne(Session &s)
{
    if (s.scene.doll.figure->getAllBones().size() > 3)
        s.step([&] { deleteBone(s.bone()); });
}

void takeFigureAway(Session &s)
{
    RyObject *object = s.scene.doll.figure->getObject();
    s.step([&] {
        if (s.random.chance(0.5))
            ryScene()->removeNode(s.scene.doll.figure);
        else
            object->removeModifier(s.scene.doll.binding);
    });
    QCoreApplication::sendPostedEvents();
    QVERIFY(!s.scene.tool->currentParam());
    const QString wrong = s.undo();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

/// One row for each kind of edit.
const std::vector<Kind> &kinds()
{
    static const std::vector<Kind> all = {
        {"undo or redo", 16, undoOrRedo},
        {"select", 8, select},
        {"choose", 18, choose},
        {"set an angle", 8, setAngle},
        {"type a value", 8, typeController},
        {"type a sphere's value", 8, typeSphere},
        {"set flags", 3, setFlags},
        {"set a switch", 4, setSwitch},
        {"drag", 14, drag},
        {"propagate", 4, propagate},
        {"change the rotation order", 3, changeOrder},
        {"add a parameter", 3, addParam},
        {"remove a parameter", 3, removeParam},
        {"remove a joint", 1, removeJoint},
        {"change a parameter", 3, changeParam},
        {"reparent", 2, reparent},
        {"delete a bone", 1, deleteOne},
        {"take the figure away", 1, takeFigureAway},
    };
    return all;
}

const Kind &pick(RyRandom &random)
{
    int all = 0;
    for (const Kind &kind : kinds())
        all += kind.share;
    int left = random.integer(0, all - 1);
    for (const Kind &kind : kinds()) {
        if ((left -= kind.share) < 0)
            return kind;
    }
    return kinds().front();
}

} // namespace

/// A thousand edits at random around the tool's parameter: every undo brings the whole scene back, and the tool points
/// at nothing that is gone.
class RyRandomParametersTest : public QObject
{
    Q_OBJECT

private slots:
    void everyUndoIsExact();
};

void RyRandomParametersTest::everyUndoIsExact()
{
    Session session;
    session.scene.select(session.scene.doll.lHand);
    QString wrong = session.account();
    QMap<QString, int> withParam;
    for (int i = 0; i < 1000; ++i) {
        const Kind &kind = pick(session.random);
        withParam[kind.name] += session.scene.tool->currentParam() ? 1 : 0;
        kind.edit(session);
        if (QTest::currentTestFailed()) {
            qInfo("edit %d: %s", i, kind.name);
            return;
        }
        QCoreApplication::sendPostedEvents();
        wrong = session.account() + session.wrongPointer();
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("edit %1, %2: %3").arg(i).arg(kind.name).arg(wrong)));
        // What leaves few bones is taken back now and then, so that there is always something to edit.
        if (session.scene.doll.figure->getAllBones().size() <= 3 || !session.scene.doll.binding->joints().size()) {
            while (ryUndoStack()->canUndo()) {
                wrong = session.undo();
                QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
            }
        }
    }
    while (ryUndoStack()->canUndo()) {
        wrong = session.undo();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
    // The edits met parameters, or nothing was tested.
    for (const char *name : {"set an angle", "type a value", "type a sphere's value", "drag", "undo or redo"})
        QVERIFY2(withParam[name] > 3, name);
}

RY_TEST(RyRandomParametersTest)

#include "tst_randomParameters.moc"
