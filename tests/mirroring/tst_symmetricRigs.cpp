#include "support/RyTest.h"

#include "RySymmetricScene.h"

#include "pluginsource/RyJointTools/dialogs/RyJESelectedNodesAttributesEditDlg.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "support/checkUndo.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QRadioButton>

namespace {

template<typename Edit>
void step(const Edit &edit)
{
    RyUndoStackHold hold;
    edit();
    hold.accept("Edit");
}

} // namespace

/// Symmetric editing of rigs that are not plain: with links, with figures that hang on others, while they change.
class RySymmetricRigsTest : public QObject
{
    Q_OBJECT

private slots:
    void linkedSides_data();
    void linkedSides();
    void editsEnd_data();
    void editsEnd();
    void deletedOpposite();
    void hungFigure();
    void oppositeOfAnother();
    void oneAboveTheOther();
    void otherDefaults();
    void rigEditOfTwoFigures();
    void outsideOfSteps();
    void attributesDialog();
    void attributesOfBothSides_data();
    void attributesOfBothSides();
    void snapsToBothSides_data();
    void snapsToBothSides();
    void besideThePlane_data();
    void besideThePlane();
};

void RySymmetricRigsTest::linkedSides_data()
{
    QTest::addColumn<int>("driver"); // among the controls of the bone that is edited or its opposite
    QTest::addColumn<int>("driven");
    QTest::addColumn<bool>("editsDriven");
    QTest::addColumn<bool>("inRigEdit");
    for (int driver : {0, 1}) {
        for (int driven : {0, 1}) {
            for (int mode = 0; mode < 4; ++mode)
                QTest::addRow("%d %d %d", driver, driven, mode) << driver << driven << bool(mode & 1) << bool(mode & 2);
        }
    }
}

/// A value of the one side drives one of the other: what is edited stays as it was written, and its opposite follows.
void RySymmetricRigsTest::linkedSides()
{
    QFETCH(int, driver);
    QFETCH(int, driven);
    QFETCH(bool, editsDriven);
    QFETCH(bool, inRigEdit);
    SymmetricScene scene;
    RyNode *edited = editsDriven ? scene.rShin : scene.lShin;
    QVERIFY(RyERCLink::create(riggingOf(scene.lShin)[size_t(driver)], riggingOf(scene.rShin)[size_t(driven)]));
    const int control = editsDriven ? driven : driver;
    const float wanted = edited->getOrigin()[control] + 3.0f;
    const QString before = scene.dump();
    scene.after([&] {
        const auto write = [&] { riggingOf(edited)[size_t(control)]->adjustValue(wanted); };
        if (inRigEdit) {
            const RyRiggingEdit edit;
            write();
        } else {
            write();
        }
    });
    QVERIFY(std::abs(edited->getOrigin()[control] - wanted) < 1e-4f);
    const RyVec3 left = scene.lShin->getOrigin(), right = scene.rShin->getOrigin();
    QVERIFY(std::abs(left[control] - (control == 0 ? -right[control] : right[control])) < 1e-4f);
    checkLastStep(before);
}

void RySymmetricRigsTest::editsEnd_data()
{
    QTest::addColumn<int>("modes"); // 1: propagate, 2: snap, 4: align, 8: the current node is the opposite
    for (int modes = 0; modes < 16; ++modes)
        QTest::addRow("%d", modes) << modes;
}

/// What a listener makes of the opposite comes back to a bone that is being edited.
void RySymmetricRigsTest::editsEnd()
{
    QFETCH(int, modes);
    SymmetricScene scene;
    scene.tool->setPropagateTranslation(modes & 1);
    scene.tool->setAutoSnapEndPoints(modes & 2);
    scene.tool->setAutoAlign(modes & 4);
    scene.select(modes & 8 ? scene.rShin : scene.lShin);
    scene.after([&] {
        scene.lShin->beginEdit();
        scene.lShin->adjustOrigin({9, 52, 4});
        scene.rShin->adjustEndPoint({-9, 9, 3});
        scene.lShin->finishEdit();
    });
    for (const RyNode *node : scene.bones())
        QCOMPARE(node->editLevel(), 0);
}

/// Nobody removes it from the scene before.
void RySymmetricRigsTest::deletedOpposite()
{
    SymmetricScene scene;
    step([&] { scene.lFoot->setOrigin({3, 2, 1}); });
    delete scene.rFoot;
    step([&] { scene.lFoot->setOrigin({5, 2, 1}); });
    scene.rFoot = scene.makeBone(scene.rShin, "rFoot", {-9, 9, 0}, {-9, 1, 10});
    step([&] { scene.lFoot->setOrigin({7, 3, 4}); });
    QCOMPARE(scene.rFoot->getOrigin(), RyVec3(-7, 3, 4));
}

/// A second figure below a hand, whose bones have names with the same stems and come before those of the legs.
void RySymmetricRigsTest::hungFigure()
{
    SymmetricScene scene;
    auto *suit = new RyFigure;
    suit->setName("suit");
    scene.hip->addNodeChild(suit, false, 0);
    ryScene()->addNode(suit);
    RyNode *left = scene.makeBone(suit, "leftThigh", {20, 90, 0}, {20, 50, 0});
    RyNode *right = scene.makeBone(suit, "rightThigh", {-20, 90, 0}, {-20, 50, 0});
    const RyBonePairing pairing(*scene.figure, 0);
    QCOMPARE(pairing.oppositeOf(scene.lThigh), static_cast<RyNode *>(scene.rThigh));
    QCOMPARE(pairing.oppositeOf(scene.rThigh), static_cast<RyNode *>(scene.lThigh));
    QCOMPARE(pairing.oppositeOf(left), right);
    QCOMPARE(pairing.oppositeOf(right, RySide::Right), left);
    const std::vector<float> before = valuesOf(right);
    COMPARE_SYMMETRIC(scene.after([&] { scene.lThigh->setOrigin({11, 88, 2}); }));
    QCOMPARE(valuesOf(right), before);
    COMPARE_SYMMETRIC(scene.after([&] { left->setOrigin({22, 91, 1}); }));
    QCOMPARE(right->getOrigin(), RyVec3(-22, 91, 1));
}

/// Of bones that have the same opposite only one is followed; the other is told of as one without.
void RySymmetricRigsTest::oppositeOfAnother()
{
    SymmetricScene scene;
    RyNode *second = scene.makeBone(scene.hip, "leftThigh", {20, 90, 0}, {20, 50, 0});
    QStringList told;
    QObject listener;
    QObject::connect(&scene.editing(), &RySymmetricEditing::unmatchedEdited, &listener,
                     [&](const RyNode *node) { told << node->getName(); });
    COMPARE_SYMMETRIC(scene.after([&] { second->setOrigin({22, 91, 1}); }));
    QCOMPARE(told, QStringList("leftThigh"));
}

/// Such as the marks of a tail in two pieces.
void RySymmetricRigsTest::oneAboveTheOther()
{
    SymmetricScene scene;
    scene.lThigh->setName("tail_L");
    scene.lShin->setName("tail_R");
    const RyVec3 before = scene.lShin->getOrigin();
    step([&] { scene.lThigh->setOrigin({11, 88, 2}); });
    QCOMPARE(scene.lShin->getOrigin(), before);
    QCOMPARE(scene.lThigh->getOrigin(), RyVec3(11, 88, 2));
}

void RySymmetricRigsTest::otherDefaults()
{
    SymmetricScene scene;
    step([&] { scene.hip->setOrigin({4, 95, 2}); });
    QCOMPARE(scene.hip->getOrigin(), RyVec3(0, 95, 2));
    step([&] { scene.hip->getOriginXControl()->setDefaultValue(6.0f); });
    step([&] { scene.hip->setOrigin({4, 96, 2}); });
    QCOMPARE(scene.hip->getOrigin(), RyVec3(4, 96, 2));
    ryUndoStack()->undo();
    ryUndoStack()->undo();
    step([&] { scene.hip->setOrigin({4, 97, 2}); });
    QCOMPARE(scene.hip->getOrigin(), RyVec3(0, 97, 2));
}

/// The one figure has both sides placed, which says nothing of the other.
void RySymmetricRigsTest::rigEditOfTwoFigures()
{
    SymmetricScene scene;
    auto *second = new RyFigure;
    second->setName("second");
    ryScene()->addNode(second);
    RyNode *middle = scene.makeBone(second, "spine", {0, 90, 0}, {0, 100, 0});
    RyNode *left = scene.makeBone(middle, "lArm", {20, 90, 0}, {20, 50, 0});
    RyNode *right = scene.makeBone(middle, "rArm", {-20, 90, 0}, {-20, 50, 0});
    int announced = 0;
    QObject::connect(right, &RyNode::riggingChanged, scene.tool, [&] { ++announced; });
    step([&] {
        const RyRiggingEdit edit;
        scene.lShin->setOrigin({8, 49, 2});
        scene.rShin->setOrigin({-20, 33, 1});
        scene.hip->setOrigin({2, 97, 1});
        middle->setOrigin({2, 97, 1});
        left->setOrigin({21, 91, 1});
        left->setEndPoint({21, 51, 1});
    });
    QCOMPARE(scene.rShin->getOrigin(), RyVec3(-20, 33, 1));
    QCOMPARE(scene.hip->getOrigin(), RyVec3(2, 97, 1));
    QCOMPARE(middle->getOrigin(), RyVec3(0, 97, 1));
    QCOMPARE(right->getOrigin(), RyVec3(-21, 91, 1));
    QCOMPARE(right->getEndPoint(), RyVec3(-21, 51, 1));
    QCOMPARE(announced, 1);
}

void RySymmetricRigsTest::outsideOfSteps()
{
    SymmetricScene scene;
    scene.lShin->setOrigin({9, 52, 4});
    const RyVec3 before = scene.rShin->getOrigin();
    {
        const RySymmetricEditing::WithoutSteps followed;
        const RyRiggingEdit edit;
        scene.lShin->setEndPoint({9, 12, 4});
    }
    QCOMPARE(scene.rShin->getEndPoint(), RyVec3(-9, 12, 4));
    QCOMPARE(scene.rShin->getOrigin(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

void RySymmetricRigsTest::attributesDialog()
{
    SymmetricScene scene;
    scene.select(scene.lShin);
    RyJESelectedNodesAttributesEditDlg dialog;
    dialog.findChild<QCheckBox *>("NodeAttributesEditCenterYCbx")->setChecked(true);
    dialog.findChild<QDoubleSpinBox *>("NodeAttributesEditCenterYSBox")->setValue(66.0);
    dialog.accept();
    QCOMPARE(scene.lShin->getOrigin()[1], 66.0f);
    QCOMPARE(scene.rShin->getOrigin()[1], 66.0f);
}

void RySymmetricRigsTest::attributesOfBothSides_data()
{
    QTest::addColumn<bool>("leftFirst");
    QTest::addColumn<bool>("adjusts");
    for (int row = 0; row < 4; ++row)
        QTest::addRow("%d", row) << bool(row & 1) << bool(row & 2);
}

/// Where both sides are selected each gets what was entered, and a bone of one side alone takes its opposite along.
void RySymmetricRigsTest::attributesOfBothSides()
{
    QFETCH(bool, leftFirst);
    QFETCH(bool, adjusts);
    SymmetricScene scene;
    if (leftFirst)
        ryScene()->setSelection({scene.lShin, scene.rShin, scene.lFoot});
    else
        ryScene()->setSelection({scene.rShin, scene.lFoot, scene.lShin});
    const float left = scene.lShin->getOrigin()[0], right = scene.rShin->getOrigin()[0];
    const float foot = scene.lFoot->getOrigin()[0];
    const RyVec3 end = scene.rShin->getEndPoint();
    RyJESelectedNodesAttributesEditDlg dialog;
    dialog.findChild<QRadioButton *>(adjusts ? "NodeAttributesAdjustValueBtn" : "NodeAttributesSetValueBtn")
        ->setChecked(true);
    dialog.findChild<QCheckBox *>("NodeAttributesEditCenterXCbx")->setChecked(true);
    dialog.findChild<QDoubleSpinBox *>("NodeAttributesEditCenterXSBox")->setValue(7.5);
    dialog.accept();
    QCOMPARE(scene.lShin->getOrigin()[0], adjusts ? left + 7.5f : 7.5f);
    QCOMPARE(scene.rShin->getOrigin()[0], adjusts ? right + 7.5f : 7.5f);
    QCOMPARE(scene.rFoot->getOrigin()[0], adjusts ? -(foot + 7.5f) : -7.5f);
    QCOMPARE(scene.rShin->getEndPoint(), end);
}

void RySymmetricRigsTest::snapsToBothSides_data()
{
    QTest::addColumn<bool>("selectsFirst");
    QTest::addColumn<bool>("drags");
    for (int row = 0; row < 4; ++row)
        QTest::addRow("%d", row) << bool(row & 1) << bool(row & 2);
}

/// Whoever of the tool and symmetric editing hears of a change first.
void RySymmetricRigsTest::snapsToBothSides()
{
    QFETCH(bool, selectsFirst);
    QFETCH(bool, drags);
    SymmetricScene scene;
    scene.tool->setAutoSnapEndPoints(true);
    scene.editing().setOn(false);
    if (selectsFirst)
        scene.select(scene.lThigh);
    scene.editing().setOn(true);
    step([&] { scene.lFoot->setOrigin({3, 2, 1}); });
    scene.select(scene.lThigh);
    if (drags) {
        const QPoint from = scene.pixelOf(scene.lThigh->getWSPos());
        scene.drag(1, from, from + QPoint(37, -22));
    } else {
        step([&] { scene.lThigh->setOrigin({13, 88, 4}); });
    }
    const RyVec3 mean = (scene.lThigh->getOrigin() + scene.rThigh->getOrigin() + scene.jaw->getOrigin()) / 3.0f;
    const RyVec3 end = scene.hip->getEndPoint();
    QVERIFY(std::abs(end[1] - mean[1]) < 1e-3f);
    QVERIFY(std::abs(end[2] - mean[2]) < 1e-3f);
    QCOMPARE(end[0], 0.0f);
}

void RySymmetricRigsTest::besideThePlane_data()
{
    QTest::addColumn<int>("kind");
    for (int kind = 0; kind < 3; ++kind)
        QTest::addRow("%d", kind) << kind;
}

/// A bone that stands beside the plane by less than counts goes into it, and what hangs below does not go along.
void RySymmetricRigsTest::besideThePlane()
{
    QFETCH(int, kind);
    SymmetricScene scene;
    scene.tool->setPropagateTranslation(true);
    scene.hip->setOrigin({0.05f, 101, -3});
    scene.hip->setEndPoint({0.05f, 110, -1});
    scene.select(scene.hip);
    const RyVec3 jaw = scene.jaw->getOrigin();
    if (kind == 2) {
        step([&] { scene.hip->setOrigin({0.07f, 105, -3}); });
    } else {
        const QPoint from = scene.pixelOf(kind == 0 ? scene.hip->getWSPos() : scene.hip->getWSEndPoint());
        scene.drag(kind == 0 ? 1 : 2, from, from + QPoint(37, -22));
    }
    QVERIFY((scene.jaw->getOrigin() - jaw).length() > 1.0f);
    QVERIFY(std::abs(scene.jaw->getOrigin()[0] - jaw[0]) < 1e-4f);
}

RY_TEST(RySymmetricRigsTest)
#include "tst_symmetricRigs.moc"
