#include "support/RyTest.h"

#include "RyFilledAttributesDialog.h"
#include "RyUntidyScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJEAlignActions.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <functional>

namespace {

constexpr int neighbors = RyUntidyScene::Snap | RyUntidyScene::Align;
constexpr int all = RyUntidyScene::AllModes;

/// Something that places bones.
struct Operation
{
    const char *name;
    std::function<void(RyUntidyScene &)> run;
    QStringList own;      // what it changes by itself
    int followedBy = 0;   // the modes that have something to do after it
    bool isEdit = false;  // a rig edit by itself
    QString caption = {}; // of the step that it makes; empty: none
};

std::vector<Operation> operations()
{
    return {
        {"align all",
         [](RyUntidyScene &) { RyJEAlignAllBonesAction().trigger(); },
         {"hip orient", "lThigh orient", "lShin orient", "lFoot orient", "rThigh orient"},
         0,
         true,
         QStringLiteral("Align All Bones")},
        {"attributes",
         [](RyUntidyScene &) {
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
         [](RyUntidyScene &scene) {
             scene.tool->performTransPropagation(scene.lThigh, {1, 2, 3}, {3, 5, -1});
         },
         RyUntidyScene::belowThigh(), neighbors, true},
        {"propagated translation on an axis",
         [](RyUntidyScene &scene) { scene.tool->performTransPropagation(scene.lThigh, 1, 2.5f, true, false); },
         RyUntidyScene::belowThigh(), neighbors, true},
        {"propagated orientation",
         [](RyUntidyScene &scene) {
             scene.tool->performOrientPropagation(scene.hip, RyQuat({0, 0, 1}, 0.4f));
         },
         {"lThigh orient", "lShin orient", "lFoot orient", "rThigh orient"},
         0,
         true},
        {"propagated rotation",
         [](RyUntidyScene &scene) { scene.tool->performRotPropagation(scene.lThigh, 0, 0.5f, true, false); },
         RyUntidyScene::belowThigh() + QStringList({"lThigh orient", "lShin orient", "lFoot orient"}), neighbors, true},
        {"propagated rotation about a point",
         [](RyUntidyScene &scene) {
             RyVec3 center(4, 90, 7);
             scene.tool->performChildRotPropagation(scene.lThigh, 2, 0.3f, false, false, center);
         },
         {"lThigh origin", "lThigh end", "lThigh orient"},
         neighbors,
         true},
        {"propagated rotation about the end point",
         [](RyUntidyScene &scene) {
             RyVec3 center = scene.lThigh->getEndPoint();
             scene.tool->performChildRotPropagation(scene.lThigh, 2, 0.3f, false, false, center);
         },
         {"lThigh origin", "lThigh orient"},
         neighbors,
         true},
        {"propagated scale",
         [](RyUntidyScene &scene) { scene.tool->performScalePropagation(scene.lThigh, 1, 1.5f, true, false); },
         RyUntidyScene::belowThigh(), neighbors, true},
        {"snapped center point",
         [](RyUntidyScene &) { RyJESnapCenterPointAction().trigger(); },
         {"lThigh origin"},
         all,
         false,
         QStringLiteral("Snap Center Point")},
        {"snapped end point",
         [](RyUntidyScene &) { RyJESnapEndPointAction().trigger(); },
         {"lThigh end"},
         neighbors,
         false,
         QStringLiteral("Snap End Point")},
        {"typed center point",
         [](RyUntidyScene &scene) {
             scene.lThigh->setOrigin({20, 90, -8});
         },
         {"lThigh origin"},
         all},
        {"typed end point",
         [](RyUntidyScene &scene) {
             scene.lThigh->setEndPoint({20, 55, -8});
         },
         {"lThigh end"},
         neighbors},
    };
}

/// What changes when the modes do their work after an operation.
QStringList withFollowUp(const Operation &operation, int modes)
{
    QStringList changed = operation.own;
    modes &= operation.followedBy;
    if (modes & RyUntidyScene::Propagate)
        changed += RyUntidyScene::belowThigh();
    if (modes & RyUntidyScene::Snap)
        changed += QStringLiteral("hip end");
    if (modes & RyUntidyScene::Align)
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
};

void RyRiggingEditActionsTest::whatMoves_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("modes");
    QTest::addColumn<bool>("inside");
    const std::vector<Operation> rows = operations();
    for (int number = 0; number < int(rows.size()); ++number) {
        for (int modes = 0; modes <= all; ++modes) {
            for (const bool inside : {false, true}) {
                QTest::addRow("%s%s%s%s%s", rows[size_t(number)].name,
                              modes & RyUntidyScene::Propagate ? ", propagate" : "",
                              modes & RyUntidyScene::Snap ? ", snap" : "",
                              modes & RyUntidyScene::Align ? ", align" : "", inside ? ", inside" : "")
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
    RyUntidyScene scene(modes);
    const QString before = scene.dump();
    const RyUntidyScene::Values valuesBefore = scene.values();
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
    const QStringList changed = scene.changesSince(valuesBefore);
    QCOMPARE(changed, inside ? own : withFollowUp(operation, modes));
    QCOMPARE(QStringList(announced.keys()), nodesOf(changed));
    const bool isFollowed = (operation.followedBy & modes) != 0;
    if (inside || (operation.isEdit && !isFollowed)) {
        for (auto node = announced.begin(); node != announced.end(); ++node)
            QVERIFY2(node.value() == 1, qPrintable(node.key() + QString::number(node.value())));
        QCOMPARE(scene.valuesOutside, 0);
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
    RyUntidyScene scene(all);
    operations()[1].run(scene);
    for (const RyNode *node : {scene.lThigh, scene.lShin}) {
        QCOMPARE(node->getOriginXControl()->getValue(), 21.5f);
        QCOMPARE(node->getEndYControl()->getValue(), 33.25f);
        QCOMPARE(node->getOrientZControl()->getValue(), 40.0f);
    }
    QCOMPARE(scene.lShin->getEndXControl()->getValue(), 10.0f);
}

RY_TEST(RyRiggingEditActionsTest)

#include "tst_riggingEdit.moc"
