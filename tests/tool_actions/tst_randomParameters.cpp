#include "support/RyTest.h"

#include "RyParamSession.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "rycore/app/RyFitZonesToBoneAction.h"
#include "rycore/ui/RyScrubLabel.h"

#include <QMap>
#include <QPushButton>
#include <QTabWidget>

using Param = RyLegacyJointParam;

namespace {

struct Kind
{
    const char *name;
    int share; // how often, against the others
    void (*edit)(RyParamSession &);
};

void undoOrRedo(RyParamSession &s)
{
    for (int i = s.random.integer(1, 5); i > 0; --i) {
        const QString wrong = s.random.chance(0.6) ? s.undo() : s.redo();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
}

void select(RyParamSession &s)
{
    RyNode *others[] = {s.scene.lShin, s.scene.doll.figure, s.scene.prop};
    s.scene.select(s.random.chance(0.9) ? s.bone() : others[s.random.integer(0, 2)]);
}

void choose(RyParamSession &s)
{
    if (s.random.chance(0.5))
        s.scene.select(s.bone());
    s.scene.tool->setParam(s.random.chance(0.9) ? s.param(RyLegacyJoint::findJoint(s.scene.tool->currentNode()))
                                                : s.param(s.joint()));
}

void setAngle(RyParamSession &s)
{
    using Set = void (RyJointEditorTool::*)(float, int);
    const Set sets[] = {&RyJointEditorTool::setStaticA, &RyJointEditorTool::setDynamicB,
                        &RyJointEditorTool::setDynamicC, &RyJointEditorTool::setStaticD};
    const Set set = sets[s.random.integer(0, 3)];
    const auto radians = float(s.random.number(-4.0, 4.0));
    s.step([&] { (s.scene.tool->*set)(radians, s.random.integer(0, 2)); });
}

void typeController(RyParamSession &s)
{
    const auto index = size_t(s.random.integer(0, 7));
    const auto value = float(s.random.number(-200, 200));
    s.type(
        s.edited(),
        [&](const Param &param) { return index < param.controllers().size() ? param.controllers()[index] : nullptr; },
        value);
}

void typeSphere(RyParamSession &s)
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

void setFlags(RyParamSession &s)
{
    const auto flags = unsigned(s.random.integer(0, 63)) << 1;
    s.step([&] {
        for (Param *param : s.edited())
            param->setFlags(flags | (param->flags() & ~126u));
    });
}

void setSwitch(RyParamSession &s)
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

void dragFrom(RyParamSession &s, int id, const QPoint &from)
{
    const int index = ryUndoStack()->index();
    s.scene.press(id, from);
    QPoint place = from;
    for (int i = s.random.integer(0, 4); i > 0; --i) {
        place += QPoint(s.random.integer(-40, 40), s.random.integer(-40, 40));
        s.scene.move(place, s.random.chance(0.2) ? Qt::ControlModifier : Qt::NoModifier);
    }
    const bool isCancelled = s.random.chance(0.25);
    if (isCancelled && s.random.chance(0.5))
        s.scene.press(id, place, Qt::RightButton);
    else if (isCancelled)
        s.scene.tool->cancelDrag();
    else if (s.random.chance(0.1))
        s.scene.tool->setParam(s.param(RyLegacyJoint::findJoint(s.scene.tool->currentNode())));
    s.scene.release(place);
    QVERIFY(!isCancelled || ryUndoStack()->index() == index);
    if (ryUndoStack()->index() > index)
        s.draggedHandles.insert(id);
}

/// Of points, and of handles that the parameter need not have.
void drag(RyParamSession &s)
{
    const int points[] = {1, 2, 41, 42, 43, 44, 45, 46};
    const int id = s.scene.tool->currentParam() ? s.random.integer(5, 40) : points[s.random.integer(0, 7)];
    dragFrom(s, id, QPoint(s.random.integer(100, 700), s.random.integer(100, 500)));
}

bool hasHandle(const Param &param, RyHandle::Target target)
{
    switch (target) {
    case RyHandle::DynamicSphere:
    case RyHandle::StaticSphere:
        return true;
    case RyHandle::BendAngle:
        return param.type() == Param::Bend;
    case RyHandle::TwistZone:
        return param.type() == Param::Twist;
    default:
        return param.type() == Param::SmoothScale;
    }
}

/// Seen from anywhere, now and then along an axis: that shows some handles from their edge.
void dragHandle(RyParamSession &s)
{
    const Param *param = s.scene.tool->currentParam();
    if (!param || !param->getDriver())
        return;
    int id = 0;
    do
        id = s.random.integer(5, 40);
    while (!hasHandle(*param, RyHandleTable::find(id)->target));
    const RyVec3 place = param->getDriver()->getWSPos();
    const RyVec3 way = s.random.chance(0.1) ? RyVec3::axis(2) : s.random.vector(1.0);
    s.scene.viewport->getCamera()->lookAt(place + way.normalized() * float(s.random.number(30, 300)), place);
    dragFrom(s, id, s.scene.pixelOf(place) + QPoint(s.random.integer(-80, 80), s.random.integer(-80, 80)));
}

/// One of the fields that can be used as the pane stands, or null.
RyFloatPropertyWgt *fieldOf(RyParamSession &s)
{
    s.scene.find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(s.random.integer(0, 1));
    QList<RyFloatPropertyWgt *> fields = s.scene.pane->findChildren<RyFloatPropertyWgt *>();
    fields.erase(std::remove_if(fields.begin(), fields.end(),
                                [](const QWidget *field) { return !field->isVisible() || !field->isEnabled(); }),
                 fields.end());
    return fields.isEmpty() ? nullptr : fields[s.random.integer(0, int(fields.size()) - 1)];
}

void typeIntoField(RyParamSession &s)
{
    RyFloatPropertyWgt *field = fieldOf(s);
    if (!field)
        return;
    const bool isScale = field->objectName().contains(QLatin1String("Scale"));
    const double value = isScale ? s.random.number(0.2, 3) : s.random.number(-200, 200);
    if (s.random.chance(0.2))
        QTest::keyClick(field->numberField(), s.random.chance(0.5) ? Qt::Key_Up : Qt::Key_PageDown);
    else
        s.scene.type(field->objectName().toLatin1(), QString::number(value, 'f', 2));
}

void scrubField(RyParamSession &s)
{
    RyFloatPropertyWgt *field = fieldOf(s);
    if (!field)
        return;
    emit field->label()->scrubStarted();
    for (int i = s.random.integer(0, 3); i > 0; --i)
        emit field->label()->scrubbed(s.random.number(-60, 60));
    if (s.random.chance(0.2))
        s.scene.tool->setParam(nullptr);
    if (s.random.chance(0.2))
        s.scene.select(s.bone());
    emit field->label()->scrubFinished(s.random.chance(0.2));
}

void clickGroup(RyParamSession &s)
{
    s.scene.find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(s.random.integer(0, 1));
    QList<QGroupBox *> boxes = s.scene.pane->findChildren<QGroupBox *>();
    boxes.erase(std::remove_if(boxes.begin(), boxes.end(),
                               [](const QGroupBox *box) { return !box->isCheckable() || !box->isVisible(); }),
                boxes.end());
    if (!boxes.isEmpty())
        RyPaneScene::click(*boxes[s.random.integer(0, int(boxes.size()) - 1)]);
}

void resetMatrices(RyParamSession &s)
{
    s.scene.find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(1);
    auto *button = s.scene.find<QPushButton>("JointParamMatricesResetBtn");
    if (button->isVisible())
        QTest::mouseClick(button, Qt::LeftButton);
}

void chooseInPane(RyParamSession &s)
{
    const bool isSphere = s.random.chance(0.3);
    auto *combo = s.scene.find<QComboBox>(isSphere ? "JointParamMatricesActiveSphereCmb" : "JointEditorParameterCmb");
    s.scene.find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(1);
    if (!combo->isVisible() || !combo->isEnabled())
        return;
    combo->setFocus();
    const int wanted = s.random.integer(0, combo->count() - 1);
    for (int i = 0; i < combo->count() && combo->currentIndex() != wanted; ++i)
        QTest::keyClick(combo, combo->currentIndex() < wanted ? Qt::Key_Down : Qt::Key_Up);
    QCOMPARE(combo->currentIndex(), wanted);
}

void fitZones(RyParamSession &s)
{
    std::vector<RyNode *> nodes;
    for (int i = s.random.integer(1, 3); i > 0; --i)
        nodes.push_back(s.random.chance(0.9) ? static_cast<RyNode *>(s.bone()) : s.scene.prop);
    ryScene()->setSelection(nodes);
    RyFitZonesToBoneAction action;
    action.init();
    if (action.isEnabled())
        action.trigger();
}

void propagate(RyParamSession &s)
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

void changeOrder(RyParamSession &s)
{
    s.step([&] { s.scene.tool->changeRotationOrder(s.bone(), RyRotationOrder(s.random.integer(0, 5))); });
}

void chooseOrder(RyParamSession &s)
{
    auto *orders = s.scene.find<QComboBox>("JointEditorRotationOrderCmb");
    if (orders->isEnabled())
        QTest::keyClick(orders, s.random.chance(0.5) ? Qt::Key_Down : Qt::Key_Up);
}

/// Names and what the pane's check boxes show.
void changeNode(RyParamSession &s)
{
    RyNode *current = s.scene.tool->currentNode();
    RyNode *node = current && s.random.chance(0.7) ? current : s.bone();
    const bool on = s.random.chance(0.5);
    const QString name = QStringLiteral("n%1").arg(s.random.integer(0, 999));
    const std::function<void()> edits[] = {[&] { node->setName(name); }, [&] { node->setLabel(name); },
                                           [&] { node->setHidden(on); }, [&] { node->setInheritScale(on); },
                                           [&] { node->setPromoteSelection(on); }};
    s.step([&] { edits[s.random.integer(0, 4)](); });
}

void addParam(RyParamSession &s)
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

void removeParam(RyParamSession &s)
{
    RyLegacyJoint *joint = s.joint();
    if (Param *param = s.param(joint))
        s.step([&] { joint->removeJointParam(param); });
}

void removeJoint(RyParamSession &s)
{
    if (RyLegacyJoint *joint = s.joint())
        s.step([&] { joint->getBinding()->removeJoint(joint); });
}

void changeParam(RyParamSession &s)
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

void reparent(RyParamSession &s)
{
    RyNode *parent = s.random.chance(0.8) ? static_cast<RyNode *>(s.bone()) : s.scene.doll.figure;
    s.step([&] { parent->addNodeChild(s.bone()); });
}

void deleteOne(RyParamSession &s)
{
    if (s.scene.doll.figure->getAllBones().size() > 3)
        s.step([&] { deleteBone(s.bone()); });
}

void takeFigureAway(RyParamSession &s)
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
    QString wrong = s.wrongTool();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    wrong = s.undo();
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
        {"drag", 8, drag},
        {"drag a handle", 16, dragHandle},
        {"type into a field", 10, typeIntoField},
        {"drag a field's label", 4, scrubField},
        {"click a group", 6, clickGroup},
        {"reset the matrices", 4, resetMatrices},
        {"choose in the pane", 8, chooseInPane},
        {"fit zones", 4, fitZones},
        {"propagate", 4, propagate},
        {"change the rotation order", 3, changeOrder},
        {"choose a rotation order", 3, chooseOrder},
        {"change a node", 4, changeNode},
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
    RyParamSession session;
    session.scene.select(session.scene.doll.lHand);
    QString wrong = session.account();
    QMap<QString, int> stepsWithParam;
    // The edits changed parameters, or nothing was tested.
    const auto isTested = [&] {
        const auto changed = {"set an angle",  "type a value",  "type a sphere's value", "drag",
                              "drag a handle", "click a group", "type into a field",     "fit zones"};
        return session.draggedHandles.size() > 12 &&
               std::all_of(changed.begin(), changed.end(), [&](const char *name) { return stepsWithParam[name] > 2; });
    };
    constexpr int enough = 1000;
    for (int i = 0; i < enough || (i < 10 * enough && !isTested()); ++i) {
        const Kind &kind = pick(session.random);
        const bool hasParam = session.scene.tool->currentParam();
        const int index = ryUndoStack()->index();
        kind.edit(session);
        const int steps = ryUndoStack()->index() - index;
        QVERIFY2(steps <= 1 || kind.edit == undoOrRedo, kind.name);
        stepsWithParam[kind.name] += hasParam && steps == 1;
        if (QTest::currentTestFailed()) {
            qInfo("edit %d: %s", i, kind.name);
            return;
        }
        QCoreApplication::sendPostedEvents();
        wrong = session.account() + session.wrongTool();
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("edit %1, %2: %3").arg(i).arg(kind.name).arg(wrong)));
        // What leaves little to edit is taken back now and then.
        if (session.scene.doll.figure->getAllBones().size() <= 3 || !session.scene.doll.binding->joints().size() ||
            (session.isFigureAway() && session.random.chance(0.3))) {
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
    QVERIFY(isTested());
}

RY_TEST(RyRandomParametersTest)

#include "tst_randomParameters.moc"
