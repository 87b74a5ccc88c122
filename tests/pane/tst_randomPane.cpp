#include "RyPaneSession.h"
#include "support/RyTest.h"

#include "pluginsource/RyJointTools/pane/RyBoneFaceGroupSelectionDropDown.h"
#include "rycore/ui/RyScrubLabel.h"

#include <QMap>
#include <QTabBar>
#include <QTreeView>

#include <algorithm>

namespace {

using Session = RyPaneSession;

struct Kind
{
    const char *name;
    int share; // how often, against the others
    void (*edit)(Session &);
};

void undoOrRedo(Session &s)
{
    const bool back = s.random.chance(0.6);
    for (int i = s.random.integer(1, 5); i > 0; --i) {
        QString wrong = back ? s.states.undo() : s.states.redo();
        wrong += s.wrongPane();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
}

void select(Session &s)
{
    std::vector<RyNode *> nodes;
    for (int i = s.random.chance(0.1) ? 0 : s.random.integer(1, 3); i > 0; --i)
        nodes.push_back(s.node());
    ryScene()->setSelection(nodes);
}

void stepNode(Session &s)
{
    auto *button = s.scene.find<QPushButton>("JointEditorNodeBtn");
    button->setFocus();
    const Qt::Key key = s.random.chance(0.7) ? Qt::Key_Down : Qt::Key_Up;
    for (int i = s.random.integer(1, 6); i > 0; --i)
        QTest::keyClick(button, key);
}

void chooseParam(Session &s)
{
    s.scene.select(s.oneOf(s.scene.doll.figure->getAllBones()));
    s.pickRow(*s.scene.find<QComboBox>("JointEditorParameterCmb"));
}

void chooseOrder(Session &s)
{
    auto *orders = s.scene.find<QComboBox>("JointEditorRotationOrderCmb");
    if (orders->isEnabled())
        QTest::keyClick(orders, s.random.chance(0.5) ? Qt::Key_Down : Qt::Key_Up);
}

void turnPage(Session &s)
{
    auto *tabs = s.usable<QTabWidget>();
    const int page = tabs ? s.random.integer(0, tabs->count() - 1) : 0;
    if (tabs && tabs->isTabEnabled(page))
        QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(page).center());
}

/// In sight as far as the pane's own lists let it be.
RyFloatPropertyWgt *field(Session &s)
{
    return s.usable<RyFloatPropertyWgt>();
}

void typeIntoField(Session &s)
{
    RyFloatPropertyWgt *number = field(s);
    if (!number)
        return;
    const bool isScale = number->objectName().contains(QLatin1String("Scale"));
    const double value = isScale ? s.random.number(0.2, 3) : s.random.number(-200, 200);
    if (s.random.chance(0.2)) {
        QTest::keyClick(number->numberField(), s.random.chance(0.5) ? Qt::Key_Up : Qt::Key_PageDown);
        return;
    }
    number->numberField()->setFocus();
    number->numberField()->selectAll();
    QTest::keyClicks(number->numberField(), QString::number(value, 'f', 2));
    QTest::keyClick(number->numberField(), s.random.chance(0.9) ? Qt::Key_Return : Qt::Key_Escape);
}

void typeBulge(Session &s)
{
    s.scene.select(s.random.chance(0.7) ? s.scene.lThigh : s.scene.hip);
    s.scene.tool->setParam(nullptr);
    auto *tabs = s.scene.find<QTabWidget>("JointEditorParameterTabWgt");
    if (tabs->isTabEnabled(1)) {
        tabs->setCurrentIndex(1);
        typeIntoField(s);
    }
}

void scrubField(Session &s)
{
    const QPointer<RyFloatPropertyWgt> number = field(s);
    if (!number)
        return;
    emit number->label()->scrubStarted();
    for (int i = s.random.integer(0, 3); i > 0; --i)
        emit number->label()->scrubbed(s.random.number(-60, 60));
    if (s.random.chance(0.2))
        s.scene.select(s.node());
    if (number)
        emit number->label()->scrubFinished(s.random.chance(0.2));
}

/// The switches of the node make no step, and so are put back.
void switchNode(Session &s)
{
    auto *box = s.usable<QCheckBox>([&s](const QCheckBox &each) {
        return s.scene.find<QGroupBox>("JointEditorTransformGrpBox")->isAncestorOf(&each);
    });
    if (!box)
        return;
    const QString before = RyStepStates::now();
    for (int i = 0; i < 2; ++i) {
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Space);
        QCOMPARE(RyStepStates::now() == before, i == 1);
        const QString wrong = s.wrongPane();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
}

/// Few pages have a group that can be switched.
void clickGroup(Session &s)
{
    const auto find = [&s] { return s.usable<QGroupBox>([](const QGroupBox &each) { return each.isCheckable(); }); };
    QGroupBox *box = find();
    for (int page = 0; !box && page < 4; ++page) {
        chooseParam(s);
        box = find();
    }
    if (box)
        RyPaneScene::click(*box);
}

void switchDisplay(Session &s)
{
    const auto *group = s.scene.find<QGroupBox>("JointEditorDisplayGrpBox");
    if (s.random.chance(0.2)) {
        s.pickRow(*s.scene.find<QComboBox>("JointEditorVisibleBonesCmb"));
    } else if (s.random.chance(0.2)) {
        s.scene.tool->setMatAVis(s.random.chance(0.5));
        s.scene.tool->setMatBVis(s.random.chance(0.5));
        s.scene.tool->setBoneDrawMode(RyJointEditorTool::BoneDrawMode(s.random.integer(0, 3)));
    } else if (auto *box = s.usable<QCheckBox>([group](const QCheckBox &each) { return group->isAncestorOf(&each); })) {
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Space);
    }
}

/// The list of groups says whose each one is; its keys choose one.
void chooseGroup(Session &s)
{
    s.scene.select(s.oneOf((s.random.chance(0.8) ? s.scene.figure : s.scene.stick)->getAllBones()));
    auto *button = s.scene.find<RyBoneFaceGroupSelectionDropDown>("JointEditorSelectionGroupBtn");
    if (!button->isEnabled())
        return;
    button->showPopup();
    auto *view = button->findChild<QTreeView *>(QStringLiteral("BoneFaceGroupSelectionDropDownListView"));
    QVERIFY(view);
    const RySelectionMap *map = s.scene.tool->currentNode()->getSkeleton()->getSelectionMap();
    for (int row = 0; row < view->model()->rowCount(); ++row) {
        const QModelIndex index = view->model()->index(row, 0);
        const QString group = row > 0 ? index.data().toString() : QString();
        const int pair = map ? map->findPair(group) : -1;
        const RyNode *node = pair >= 0 ? map->getPairNode(pair) : nullptr;
        const QString wanted = row == 0 ? QStringLiteral("None") : pair < 0 ? QStringLiteral("-") : QString();
        QCOMPARE(index.sibling(row, 1).data().toString(), node ? node->getLabel() : wanted);
        const QString own = map ? map->findGroupForNode(s.scene.tool->currentNode()) : QString();
        QCOMPARE(index.data(Qt::CheckStateRole).toInt() == Qt::Checked, own == group);
    }
    for (int i = s.random.integer(0, 4); i > 0; --i)
        QTest::keyClick(view, s.random.chance(0.5) ? Qt::Key_Down : Qt::Key_Up);
    if (s.random.chance(0.8))
        QTest::keyClick(view, Qt::Key_Space);
    button->hidePopup();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// What other parts of the program do to the groups and bulges that the pane shows.
void changeGroups(Session &s)
{
    RyBone *bone = s.oneOf(s.scene.figure->getAllBones());
    RySkeleton *figures[] = {s.scene.figure, s.scene.figure, s.scene.stick, s.scene.doll.figure};
    RySkeleton *figure = figures[s.random.integer(0, 3)];
    RySelectionMap *map = figure->getSelectionMap();
    const std::function<void()> edits[] = {
        [&] {
            if (map)
                map->addPair(QStringLiteral("Pelvis"), bone, true);
        },
        [&] {
            if (map && map->getNumPairs() > 0)
                map->removePair(s.random.integer(0, map->getNumPairs() - 1));
        },
        [&] { figure->setSelectionMap(map ? nullptr : new RySelectionMap); },
    };
    s.step([&] { edits[s.random.integer(0, 2)](); });
}

void changeBulges(Session &s)
{
    RyBone *bone = s.oneOf(s.scene.figure->getAllBones());
    RyBoneBinding *binding = s.scene.skin->findBoneBinding(bone);
    const int axis = s.random.integer(0, 2);
    RyBulgeBinding *bulge = binding ? binding->getBulgeBinding(axis) : nullptr;
    RyObject *object = s.scene.figure->getObject();
    if (!binding || !object)
        return;
    s.step([&] {
        if (s.random.chance(0.1) && s.scene.skin->getObject())
            object->removeModifier(s.scene.skin);
        else if (!s.scene.skin->getObject())
            object->addModifier(s.scene.skin);
        else if (bulge && s.random.chance(0.3))
            binding->setBulgeBinding(axis, nullptr);
        else if (bulge && s.random.chance(0.6))
            bulge->adjustBulgeValues(0.5f, float(s.random.number(-2, 2)), 1.0f, -0.25f);
        else if (bulge)
            bulge->setLeftWeights(s.random.chance(0.5) ? nullptr : ryMapOf({9, 8, 7, 6, 5, 4}, "other"));
        else
            binding->setBulgeBinding(axis, RyMixedPaneScene::makeBulge(axis, "new left", "new right"));
    });
}

/// Names, switches and places, by the host or by a script; a script that throws leaves nothing.
void changeNode(Session &s)
{
    RyNode *node = s.random.chance(0.7) && s.scene.tool->currentNode() ? s.scene.tool->currentNode() : s.node();
    const bool on = s.random.chance(0.5);
    const QString name = QStringLiteral("n%1").arg(++s.names);
    const std::function<void()> edits[] = {
        [&] { node->setName(name); },           [&] { node->setLabel(name); },
        [&] { node->setHidden(on); },           [&] { node->setInheritScale(on); },
        [&] { node->setPromoteSelection(on); }, [&] { node->setEndPoint(node->getEndPoint() + s.random.vector(4)); }};
    s.step([&] { edits[s.random.integer(0, 5)](); });
}

void runScript(Session &s)
{
    RyNode *node = s.random.chance(0.7) && s.scene.tool->currentNode() ? s.scene.tool->currentNode() : s.node();
    const char *values[] = {"originX", "originY", "originZ", "endX", "endY", "endZ", "orientX", "orientY", "orientZ"};
    const QString number = QString::number(s.random.number(-90, 90), 'f', 3);
    const QString name = QStringLiteral("n%1").arg(++s.names);
    const QString edits[] = {
        QStringLiteral("node.setValue('%1', %2);").arg(QLatin1String(values[s.random.integer(0, 8)]), number),
        QStringLiteral("node.setName('%1');").arg(name),
        QStringLiteral("node.setLabel('%1');").arg(name),
        QStringLiteral("node.setRotationOrder('%1');").arg(RyRotationOrder(s.random.integer(0, 5)).name()),
    };
    QString body = edits[1 + s.random.integer(0, 1)]; // changes something, as a step of a script must
    for (int i = s.random.integer(0, 2); i > 0; --i)
        body += edits[s.random.integer(0, 3)];
    const bool throws = s.random.chance(0.2);
    const QString program = QStringLiteral("var node = Scene.find('%1'), other = Scene.find('%2');"
                                           "Undo.step('Script', function () { %3 %4 }); %5")
                                .arg(node->getName(), s.node()->getName(), body,
                                     throws ? QStringLiteral("throw new Error('no');") : QString(),
                                     s.random.chance(0.3) ? QStringLiteral("Scene.setSelection([other]);") : QString());
    const QScriptValue result = s.run(program);
    QVERIFY2(result.isError() == throws, qPrintable(result.toString() + program));
}

void selectByScript(Session &s)
{
    const QScriptValue result =
        s.run(s.random.chance(0.2) ? QStringLiteral("Scene.selectAllNodes(%1);").arg(s.random.integer(0, 1))
                                   : QStringLiteral("Scene.setSelection([Scene.find('%1'), Scene.find('%2')]);")
                                         .arg(s.node()->getName(), s.node()->getName()));
    QVERIFY2(!result.isError(), qPrintable(result.toString()));
}

void reparent(Session &s)
{
    const std::vector<RyBone *> bones = s.scene.figure->getAllBones();
    RyBone *bone = s.oneOf(bones);
    s.step([&] { s.oneOf(bones)->addNodeChild(bone); });
}

/// With what is current, perhaps.
void takeAway(Session &s)
{
    RyNode *nodes[] = {s.scene.prop, s.scene.stick, s.scene.doll.figure, s.scene.figure, s.scene.lShin};
    RyNode *node = nodes[s.random.integer(0, 4)];
    if (!node->getScene())
        return;
    s.step([&] {
        if (RyNode *parent = node->getNodeParent())
            parent->removeNodeChild(node);
        else
            ryScene()->removeNode(node);
    });
    QCoreApplication::sendPostedEvents();
    QString wrong = s.states.account() + s.wrongPane();
    wrong += s.states.undo() + s.wrongPane();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

/// What a redo took away again: otherwise all later edits would be of what is left.
void bringBack(Session &s)
{
    const RyNode *nodes[] = {s.scene.prop, s.scene.stick, s.scene.doll.figure, s.scene.figure, s.scene.lShin};
    const auto isAway = [](const RyNode *node) { return !node->getScene(); };
    const auto isOneAway = [&] {
        return std::any_of(std::begin(nodes), std::end(nodes), isAway) || !s.scene.lShin->getNodeParent();
    };
    while (isOneAway() && ryUndoStack()->canUndo()) {
        const QString wrong = s.states.undo() + s.wrongPane();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
}

/// One row for each kind of edit.
const std::vector<Kind> kinds = {
    {"undo or redo", 12, undoOrRedo},
    {"select", 8, select},
    {"step through the nodes", 6, stepNode},
    {"choose a parameter", 10, chooseParam},
    {"choose a rotation order", 5, chooseOrder},
    {"turn a page", 5, turnPage},
    {"type into a field", 12, typeIntoField},
    {"type a bulge", 8, typeBulge},
    {"drag a field's label", 6, scrubField},
    {"switch the node", 4, switchNode},
    {"click a group", 6, clickGroup},
    {"switch what is drawn", 8, switchDisplay},
    {"choose a face group", 10, chooseGroup},
    {"change face groups", 6, changeGroups},
    {"change bulges", 8, changeBulges},
    {"change a node", 6, changeNode},
    {"run a script", 8, runScript},
    {"select by a script", 4, selectByScript},
    {"reparent", 2, reparent},
    {"take a node away", 2, takeAway},
    {"bring back", 8, bringBack},
};

const Kind &pick(RyRandom &random)
{
    int all = 0;
    for (const Kind &kind : kinds)
        all += kind.share;
    int left = random.integer(0, all - 1);
    for (const Kind &kind : kinds) {
        if ((left -= kind.share) < 0)
            return kind;
    }
    return kinds.front();
}

} // namespace

/// A thousand edits at random, in the pane and beside it, of figures with weights and bulges, with joint parameters and
/// with neither: the pane shows what the scene holds, and each edit that changes the scene is one step.
class RyRandomPaneTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheSceneAndMakesItsSteps();
};

void RyRandomPaneTest::showsTheSceneAndMakesItsSteps()
{
    RyPaneSession session;
    QString wrong = session.states.account() + session.wrongPane();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    QMap<QString, int> steps;
    QString before = session.states.current();
    for (int i = 0; i < 1000; ++i) {
        const Kind &kind = pick(session.random);
        const int index = ryUndoStack()->index();
        kind.edit(session);
        QCoreApplication::sendPostedEvents();
        wrong = session.states.account() + session.wrongPane();
        const int made = ryUndoStack()->index() - index;
        const bool changes = kind.edit != undoOrRedo && session.states.current() != before;
        if (made > (changes ? 1 : 0) && kind.edit != undoOrRedo)
            wrong += QStringLiteral("%1 steps").arg(made);
        before = session.states.current();
        steps[kind.name] += made > 0;
        if (QTest::currentTestFailed() || !wrong.isEmpty())
            QFAIL(qPrintable(QStringLiteral("edit %1, %2: %3").arg(i).arg(QLatin1String(kind.name), wrong)));
    }
    while (ryUndoStack()->canUndo()) {
        wrong = session.states.undo() + session.wrongPane();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
    // The edits changed the scene, or nothing was tested.
    for (const char *name : {"choose a rotation order", "type into a field", "type a bulge", "drag a field's label",
                             "click a group", "choose a face group", "change bulges", "change a node", "run a script"})
        QVERIFY2(steps[name] > 2, name);
}

RY_TEST(RyRandomPaneTest)

#include "tst_randomPane.moc"
