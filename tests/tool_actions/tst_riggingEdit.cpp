#include "support/RyTest.h"

#include "RyFilledAttributesDialog.h"
#include "tool/RyToolScene.h"

#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QMap>

#include <functional>
#include <stdexcept>

namespace {

enum Mode { Propagate = 1, Snap = 2, Align = 4, AllModes = 7 };

using Values = QMap<QString, RyVec3>;

/// A figure that has been worked on: moved, turned, scaled and bent, with current values that are no defaults, bones
/// that neither end where the next one begins nor lie along their axes. Its left shin and thigh are selected; the thigh
/// is the tool's node.
struct UntidyScene : RyToolScene
{
    explicit UntidyScene(int modes = 0)
    {
        pose();
        figure->getScaleControl()->setValue(1.25f);
        lThigh->getXScaleControl()->setValue(0.7f);
        hip->setOrigin({2, 101, -3});
        hip->setEndPoint({3, 109, 4});
        lThigh->setOrigin({12, 93, 4});
        lThigh->setEndPoint({13, 53, -3});
        lThigh->getOrientYControl()->setValue(33.0f);
        lThigh->setRotationOrder(RyRotationOrder(3));
        lShin->setOrigin({10, 49, 5});
        lShin->getOrientZControl()->setValue(-20.0f);
        lFoot->setEndPoint({14, 3, 15});
        for (RyNode *node : nodes()) {
            connections.append(
                QObject::connect(node, &RyNode::riggingChanged, [this, node] { ++announced[node->getName()]; }));
        }
        setModes(modes);
        select(lThigh);
        // The child first, so that a change of the parent could take along what stands already.
        ryScene()->setSelection({lShin, lThigh});
        announced.clear();
    }
    ~UntidyScene()
    {
        for (const QMetaObject::Connection &connection : connections)
            QObject::disconnect(connection);
    }

    void setModes(int modes) const
    {
        tool->setPropagateTranslation(modes & Propagate);
        tool->setAutoSnapEndPoints(modes & Snap);
        tool->setAutoAlign(modes & Align);
    }
    std::vector<RyNode *> nodes() const { return {figure, hip, lThigh, lShin, lFoot, rThigh, prop}; }
    /// By the name of the node and of what it is.
    Values values() const
    {
        Values values;
        for (const RyNode *node : nodes()) {
            values[node->getName() + " origin"] = node->getOrigin();
            values[node->getName() + " end"] = node->getEndPoint();
            values[node->getName() + " orient"] = {node->getOrientXControl()->getValue(),
                                                   node->getOrientYControl()->getValue(),
                                                   node->getOrientZControl()->getValue()};
        }
        return values;
    }

    QMap<QString, int> announced; // by node
    QList<QMetaObject::Connection> connections;
};

QStringList changesBetween(const Values &before, const Values &after)
{
    QStringList changed;
    for (auto value = before.begin(); value != before.end(); ++value) {
        if (after[value.key()] != value.value())
            changed.append(value.key());
    }
    return changed;
}

const QStringList belowThigh{"lThigh end", "lShin origin", "lShin end", "lFoot origin", "lFoot end"};

/// Something that places bones.
struct Operation
{
    const char *name;
    std::function<void(UntidyScene &)> run;
    QStringList own;      // what it changes by itself
    int followedBy = 0;   // the modes that have something to do after it
    bool isEdit = false;  // a rig edit by itself
    QString caption = {}; // of the step that it makes; empty: none
};

std::vector<Operation> operations()
{
    return {
        {"align all",
         [](UntidyScene &) { RyJEAlignAllBonesAction().trigger(); },
         {"hip orient", "lThigh orient", "lShin orient", "lFoot orient", "rThigh orient"},
         0,
         true,
         QStringLiteral("Align All Bones")},
        {"attributes",
         [](UntidyScene &) {
             RyFilledAttributesDialog dialog;
             dialog.fill(0, 21.5);
             dialog.fill(4, 33.25);
             dialog.fill(8, 40);
             dialog.accept();
         },
         {"lThigh origin", "lThigh end", "lThigh orient", "lShin origin", "lShin end", "lShin orient"},
         0,
         true},
        {"propagated translation",
         [](UntidyScene &scene) {
             scene.tool->performTransPropagation(scene.lThigh, {1, 2, 3}, {3, 5, -1});
         },
         belowThigh, Snap | Align, true},
        {"propagated translation on an axis",
         [](UntidyScene &scene) { scene.tool->performTransPropagation(scene.lThigh, 1, 2.5f, true, false); },
         belowThigh, Snap | Align, true},
        {"propagated orientation",
         [](UntidyScene &scene) {
             scene.tool->performOrientPropagation(scene.hip, RyQuat({0, 0, 1}, 0.4f));
         },
         {"lThigh orient", "lShin orient", "lFoot orient", "rThigh orient"},
         0,
         true},
        {"propagated rotation",
         [](UntidyScene &scene) { scene.tool->performRotPropagation(scene.lThigh, 0, 0.5f, true, false); },
         belowThigh + QStringList({"lThigh orient", "lShin orient", "lFoot orient"}), Snap | Align, true},
        {"propagated rotation about a point",
         [](UntidyScene &scene) {
             RyVec3 center(4, 90, 7);
             scene.tool->performChildRotPropagation(scene.lThigh, 2, 0.3f, false, false, center);
         },
         {"lThigh origin", "lThigh end", "lThigh orient"},
         Snap | Align,
         true},
        {"propagated scale",
         [](UntidyScene &scene) { scene.tool->performScalePropagation(scene.lThigh, 1, 1.5f, true, false); },
         belowThigh, Snap | Align, true},
        {"snapped center point",
         [](UntidyScene &) { RyJESnapCenterPointAction().trigger(); },
         {"lThigh origin"},
         AllModes,
         false,
         QStringLiteral("Snap Center Point")},
        {"snapped end point",
         [](UntidyScene &) { RyJESnapEndPointAction().trigger(); },
         {"lThigh end"},
         Snap | Align,
         false,
         QStringLiteral("Snap End Point")},
        {"typed center point",
         [](UntidyScene &scene) {
             scene.lThigh->setOrigin({20, 90, -8});
         },
         {"lThigh origin"},
         AllModes},
        {"typed end point",
         [](UntidyScene &scene) {
             scene.lThigh->setEndPoint({20, 55, -8});
         },
         {"lThigh end"},
         Snap | Align},
    };
}

/// What changes when the modes do their work after an operation.
QStringList withFollowUp(const Operation &operation, int modes)
{
    QStringList changed = operation.own;
    modes &= operation.followedBy;
    if (modes & Propagate)
        changed += belowThigh;
    if (modes & Snap)
        changed += QStringLiteral("hip end");
    if (modes & Align)
        changed += {"hip orient", "lThigh orient"};
    changed.removeDuplicates();
    changed.sort();
    return changed;
}

QStringList nodesOf(const QStringList &changed)
{
    QStringList nodes;
    for (const QString &each : changed)
        nodes.append(each.section(QLatin1Char(' '), 0, 0));
    nodes.removeDuplicates();
    nodes.sort();
    return nodes;
}

} // namespace

/// What moves along with work on bones, in rig edits and out of them, and how often it is announced.
class RyRiggingEditActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void whatMoves_data();
    void whatMoves();
    void attributesAreAsTyped();
    void nextChangeStartsWhereTheEditEnded();
    void nestedEdits();
    void propagationWithinALargerEdit();
    void selectionChangesMeanwhile();
    void dragsInAnEdit_data();
    void dragsInAnEdit();
    void endPointDragIsOneEdit();
    void exceptionBringsTheModesBack();
    void leftOpenUntilTheSceneIsCleared();
    void undoWithinAnEdit();
};

void RyRiggingEditActionsTest::whatMoves_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("modes");
    QTest::addColumn<bool>("inside");
    const std::vector<Operation> all = operations();
    for (int number = 0; number < int(all.size()); ++number) {
        for (int modes = 0; modes <= AllModes; ++modes) {
            for (const bool inside : {false, true}) {
                QTest::addRow("%s%s%s%s%s", all[size_t(number)].name, modes & Propagate ? ", propagate" : "",
                              modes & Snap ? ", snap" : "", modes & Align ? ", align" : "", inside ? ", inside" : "")
                    << number << modes << inside;
            }
        }
    }
}

void RyRiggingEditActionsTest::whatMoves()
{
    QFETCH(int, number);
    QFETCH(int, modes);
    QFETCH(bool, inside);
    const Operation operation = operations().at(size_t(number));
    UntidyScene scene(modes);
    const QString before = scene.dump();
    const Values valuesBefore = scene.values();
    QMap<QString, int> announced;
    {
        std::unique_ptr<RyUndoStackHold> hold;
        if (inside || operation.caption.isEmpty())
            hold = std::make_unique<RyUndoStackHold>();
        {
            const std::unique_ptr<RyRiggingEdit> edit(inside ? new RyRiggingEdit : nullptr);
            operation.run(scene);
            if (inside)
                QCOMPARE(scene.announced, announced);
        }
        if (hold)
            hold->accept(QStringLiteral("Around it"));
    }
    announced = scene.announced;
    const QString after = scene.dump();

    QStringList own = operation.own;
    own.sort();
    const QStringList changed = changesBetween(valuesBefore, scene.values());
    QCOMPARE(changed, inside ? own : withFollowUp(operation, modes));
    QCOMPARE(QStringList(announced.keys()), nodesOf(changed));
    const bool isFollowed = (operation.followedBy & modes) != 0;
    if (inside || (operation.isEdit && !isFollowed)) {
        for (auto node = announced.begin(); node != announced.end(); ++node)
            QVERIFY2(node.value() == 1, qPrintable(node.key() + QString::number(node.value())));
    }
    QVERIFY(!ryScene()->isInRiggingEdit());
    for (const RyNode *node : scene.nodes())
        QCOMPARE(node->editLevel(), 0);

    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0),
             inside || operation.caption.isEmpty() ? QStringLiteral("Around it") : operation.caption);
    for (int round = 0; round < 2; ++round) {
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
    }
}

void RyRiggingEditActionsTest::attributesAreAsTyped()
{
    UntidyScene scene(AllModes);
    operations()[1].run(scene);
    for (const RyNode *node : {scene.lThigh, scene.lShin}) {
        QCOMPARE(node->getOriginXControl()->getValue(), 21.5f);
        QCOMPARE(node->getEndYControl()->getValue(), 33.25f);
        QCOMPARE(node->getOrientZControl()->getValue(), 40.0f);
    }
    QCOMPARE(scene.lShin->getEndXControl()->getValue(), 10.0f);
}

void RyRiggingEditActionsTest::nextChangeStartsWhereTheEditEnded()
{
    UntidyScene scene(Propagate);
    {
        const RyRiggingEdit edit;
        scene.lThigh->setOrigin({40, 50, 60});
    }
    QCOMPARE(scene.tool->cachedOrigin(), RyVec3(40, 50, 60));
    const RyVec3 foot = scene.lFoot->getEndPoint();
    scene.lThigh->setOrigin({41, 52, 63});
    QCOMPARE(scene.lFoot->getEndPoint(), foot + RyVec3(1, 2, 3));
}

void RyRiggingEditActionsTest::nestedEdits()
{
    UntidyScene scene(AllModes);
    const Values before = scene.values();
    {
        const RyRiggingEdit edit;
        {
            const RyRiggingEdit inner;
            scene.lThigh->setOrigin({20, 90, -8});
        }
        scene.lThigh->setOrigin({21, 91, -9});
        scene.lThigh->setEndPoint({20, 55, -8});
        QCOMPARE(int(scene.announced.size()), 0);
    }
    QCOMPARE(changesBetween(before, scene.values()), QStringList({"lThigh end", "lThigh origin"}));
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}}));
    scene.lThigh->setOrigin({20, 90, -8});
    QVERIFY(changesBetween(before, scene.values()).contains(QStringLiteral("hip end")));
}

void RyRiggingEditActionsTest::propagationWithinALargerEdit()
{
    UntidyScene scene(AllModes);
    Values expected = scene.values();
    {
        const RyRiggingEdit edit;
        scene.tool->performTransPropagation(scene.lThigh, {0, 0, 0}, {2, -3, 4});
        scene.tool->performTransPropagation(scene.lShin, 0, 5, true, false);
    }
    for (const QString &name : belowThigh)
        expected[name] += RyVec3(2, -3, 4);
    for (const char *name : {"lShin end", "lFoot origin", "lFoot end"})
        expected[name] += RyVec3(5, 0, 0);
    QCOMPARE(changesBetween(expected, scene.values()), QStringList());
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}, {"lShin", 1}, {"lFoot", 1}}));
}

void RyRiggingEditActionsTest::selectionChangesMeanwhile()
{
    UntidyScene scene(AllModes);
    const Values before = scene.values();
    {
        const RyRiggingEdit edit;
        scene.lShin->setOrigin({1, 2, 3});
        scene.select(scene.lShin);
        scene.lShin->setOrigin({4, 5, 6});
    }
    QCOMPARE(scene.tool->currentNode(), scene.lShin);
    QCOMPARE(changesBetween(before, scene.values()), QStringList("lShin origin"));
    const RyVec3 foot = scene.lFoot->getEndPoint();
    scene.lShin->setOrigin({5, 5, 6});
    QCOMPARE(scene.lFoot->getEndPoint(), foot + RyVec3(1, 0, 0));
}

void RyRiggingEditActionsTest::dragsInAnEdit_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("moved");
    QTest::newRow("origin") << 1 << "lThigh origin";
    QTest::newRow("end point") << 2 << "lThigh end";
}

void RyRiggingEditActionsTest::dragsInAnEdit()
{
    QFETCH(int, id);
    QFETCH(QString, moved);
    UntidyScene scene(AllModes);
    const Values before = scene.values();
    {
        const RyRiggingEdit edit;
        scene.drag(id, {400, 300}, {440, 330});
    }
    QCOMPARE(changesBetween(before, scene.values()), QStringList(moved));
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}}));
}

void RyRiggingEditActionsTest::endPointDragIsOneEdit()
{
    UntidyScene scene(Propagate);
    scene.press(2, {400, 300});
    scene.move({410, 310});
    scene.announced.clear();
    scene.move({440, 330});
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lShin", 1}, {"lFoot", 1}}));
    scene.release();
    QCOMPARE(scene.announced, (QMap<QString, int>{{"lThigh", 1}, {"lShin", 1}, {"lFoot", 1}}));
}

void RyRiggingEditActionsTest::exceptionBringsTheModesBack()
{
    UntidyScene scene(AllModes);
    const QString before = scene.dump();
    try {
        RyUndoStackHold hold;
        const RyRiggingEdit edit;
        scene.lThigh->setOrigin({40, 50, 60});
        scene.hip->setOrigin({4, 5, 6});
        throw std::runtime_error("in the middle");
    } catch (const std::runtime_error &) {
    }
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
    const Values values = scene.values();
    scene.lThigh->setOrigin({20, 90, -8});
    QStringList expected = belowThigh + QStringList({"hip end", "hip orient", "lThigh orient", "lThigh origin"});
    expected.sort();
    QCOMPARE(changesBetween(values, scene.values()), expected);
}

void RyRiggingEditActionsTest::leftOpenUntilTheSceneIsCleared()
{
    UntidyScene scene(AllModes);
    ryScene()->beginRiggingEdit();
    scene.lThigh->setOrigin({40, 50, 60});
    const Values before = scene.values();
    scene.drag(1, {400, 300}, {440, 330});
    scene.tool->performTransPropagation(scene.lShin, 0, 5, true, false);
    QStringList changed{"lThigh origin", "lShin end", "lFoot origin", "lFoot end"};
    changed.sort();
    QCOMPARE(changesBetween(before, scene.values()), changed);
    ryScene()->clear();
    QCoreApplication::sendPostedEvents();

    auto *figure = new RyFigure;
    RyBone *upper = RyToolScene::makeBone(figure, "upper", {0, 50, 0}, {3, 30, 1});
    RyBone *lower = RyToolScene::makeBone(upper, "lower", {1, 28, 2}, {0, 8, -1});
    RyBone *tip = RyToolScene::makeBone(lower, "tip", {2, 9, 1}, {3, 1, -1});
    ryScene()->addNode(figure);
    scene.select(lower);
    lower->setOrigin({4, 29, 0});
    QCOMPARE(upper->getEndPoint(), RyVec3(4, 29, 0));
    QCOMPARE(tip->getOrigin(), RyVec3(5, 10, -1));
    QVERIFY(lower->getOrientation() != RyQuat());
}

void RyRiggingEditActionsTest::undoWithinAnEdit()
{
    UntidyScene scene(AllModes);
    const QString before = scene.dump();
    {
        RyUndoStackHold hold;
        scene.lThigh->setOrigin({20, 90, -8});
        hold.accept(QStringLiteral("Move"));
    }
    const QString after = scene.dump();
    {
        const RyRiggingEdit edit;
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
    }
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.tool->cachedOrigin(), scene.lThigh->getOrigin());
    ryUndoStack()->redo();
    QCOMPARE(scene.dump(), after);
}

RY_TEST(RyRiggingEditActionsTest)

#include "tst_riggingEdit.moc"
