#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RyTwoFigures.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/operations/transferRigging.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJERiggingActions.h"
#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/math/RyAffine.h"

#include <QMap>
#include <QStatusBar>

namespace {

/// Where a bone is drawn: its points and the ends of its axes, in the space of its figure.
struct Place
{
    explicit Place(const RyBone &bone)
    {
        const RyNode &figure = *bone.getSkeleton();
        const RyAffine toFigure = figure.worldMap().inverse();
        origin = toFigure.mapPoint(bone.getWSPos());
        endPoint = toFigure.mapPoint(bone.getWSEndPoint());
        const RyQuat turned = bone.getOrientation() * bone.getWSRot() * figure.getWSRot().inverse();
        for (int axis = 0; axis < 3; ++axis)
            axes[axis] = turned.multVec(RyVec3::axis(axis));
    }
    bool isRestOf(const RyBone &bone) const
    {
        const float near = 1e-5f * 200.0f; // the height
        bool isSame = ryIsNear(bone.getOrigin(), origin, near) && ryIsNear(bone.getEndPoint(), endPoint, near);
        for (int axis = 0; axis < 3; ++axis)
            isSame = isSame && ryIsNear(bone.getOrientation().multVec(RyVec3::axis(axis)), axes[axis], 1e-5f);
        return isSame;
    }

    RyVec3 origin, endPoint, axes[3];
};

QMap<QString, Place> placesOf(const RySkeleton *skeleton)
{
    QMap<QString, Place> places;
    for (const RyBone *bone : skeleton->getAllBones()) {
        if (bone->getSkeleton() == skeleton)
            places.insert(bone->getName(), Place(*bone));
    }
    return places;
}

/// The bones of a figure that are not at rest where a bone of that name was drawn.
QStringList elsewhere(const RySkeleton *skeleton, const QMap<QString, Place> &places)
{
    QStringList names;
    for (const RyBone *bone : skeleton->getAllBones()) {
        const auto place = places.find(bone->getName());
        if (bone->getSkeleton() == skeleton && (place == places.end() || !place->isRestOf(*bone)))
            names.append(bone->getName());
    }
    return names;
}

QString riggingOf(const RyNode *node, bool byDefault)
{
    QString text;
    for (const RyFloatProperty *each :
         {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(), node->getEndXControl(),
          node->getEndYControl(), node->getEndZControl(), node->getOrientXControl(), node->getOrientYControl(),
          node->getOrientZControl()})
        text += QString::number(double(byDefault ? each->getDefaultValue() : each->getValue()), 'g', 9) + ' ';
    return text;
}

QString defaultsOf(const RySkeleton *skeleton)
{
    QString text;
    for (const RyBone *bone : skeleton->getAllBones())
        text += riggingOf(bone, true);
    return text;
}

void addBulge(RyBoneBinding *binding, int axis, float value)
{
    auto *bulge = new RyBulgeBinding(axis);
    binding->setBulgeBinding(axis, bulge);
    bulge->adjustBulgeValues(value, value + 1, value + 2, value + 3);
}

QString bulgeText(const RyBulgeBinding *bulge)
{
    float v[4];
    bulge->getBulgeValues(v[0], v[1], v[2], v[3]);
    QString text;
    for (const float value : v)
        text += QString::number(double(value)) + ' ';
    return text.trimmed();
}

const QString box = QStringLiteral("information|Selection Error|Select a source figure, and then a target, to use this "
                                   "action.<br />Both figures must be based on Korvex<sup>TM</sup> technology.|Ok|Ok|"
                                   "Ok");

} // namespace

/// The rigging of one figure for the mesh of another.
class RyTransferRiggingTest : public QObject
{
    Q_OBJECT

private slots:
    void byHand();
    void namesakesLand_data();
    void namesakesLand();
    void equalFiguresLandWhole();
    void oneHangsOnTheOther_data();
    void oneHangsOnTheOther();
    void whereTheSourceStandsMakesNoDifference();
    void linkedTarget();
    void bulges();
    void sourceOfAnotherKind();
    void whichIsTheTarget();
    void refuses_data();
    void refuses();
};

/// A quarter turn about the hip, with numbers that can be followed with a pencil.
void RyTransferRiggingTest::byHand()
{
    RyWindowScene scene;
    auto *source = new RyFigure;
    RyBone *hip = RyToolScene::makeBone(source, "hip", {0, 10, 0}, {0, 20, 0});
    RyToolScene::makeBone(hip, "rThigh", {3, 10, 0}, {3, 4, 0});
    ryScene()->addNode(source);
    source->getXTransControl()->setValue(500.0f);
    source->getZRotControl()->setValue(77.0f);
    hip->getYRotControl()->setValue(90.0f); // +X goes to -Z
    hip->getYTransControl()->setValue(2.0f);
    const RyRiggingTransfer transfer = transferRigging(*source, *scene.figure);
    QCOMPARE(transfer.matched, 2);
    QCOMPARE(transfer.unmatched.join(' '), QStringLiteral("lThigh lShin lFoot"));
    QCOMPARE(transfer.sourceOnly, 0);
    QVERIFY(ryIsNear(scene.hip->getOrigin(), {0, 12, 0}, 1e-5f));
    QVERIFY(ryIsNear(scene.rThigh->getOrigin(), {0, 12, -3}, 1e-5f));
    QVERIFY(ryIsNear(scene.rThigh->getEndPoint(), {0, 6, -3}, 1e-5f));
    QVERIFY(ryIsNear(scene.rThigh->getOrientation().multVec({1, 0, 0}), {0, 0, -1}, 1e-6f));
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(11, 50, 2));
}

void RyTransferRiggingTest::namesakesLand_data()
{
    QTest::addColumn<int>("modes");
    for (int modes = 0; modes < 8; ++modes)
        QTest::newRow(qPrintable(QString::number(modes))) << modes;
}

void RyTransferRiggingTest::namesakesLand()
{
    QFETCH(int, modes);
    RyTwoFigures scene;
    scene.select(scene.lThigh);
    scene.tool->setPropagateTranslation(modes & 1);
    scene.tool->setAutoSnapEndPoints(modes & 2);
    scene.tool->setAutoAlign(modes & 4);
    ryScene()->setSelection({scene.otherShin, scene.lThigh});
    const QMap<QString, Place> places = placesOf(scene.other);
    const QString defaults = defaultsOf(scene.figure);
    const QStringList still = {riggingOf(scene.lFoot, false), riggingOf(scene.rThigh, false),
                               riggingOf(scene.figure, false)};
    const QString source = riggingOf(scene.otherThigh, false);
    const QString before = scene.dump();
    RyMessageLog::global().clear();
    RyJETransferWSRiggingAction action;
    QVERIFY(action.isEnabled());
    action.trigger();

    QCOMPARE(elsewhere(scene.figure, places).join(' '), QStringLiteral("lFoot rThigh"));
    QCOMPARE(
        QStringList({riggingOf(scene.lFoot, false), riggingOf(scene.rThigh, false), riggingOf(scene.figure, false)}),
        still);
    QCOMPARE(defaultsOf(scene.figure), defaults);
    QCOMPARE(riggingOf(scene.otherThigh, false), source);
    const QString text =
        QStringLiteral("Bones placed as in The giant: 3. In The giant alone: 2. Without a namesake there: 2. "
                       "lFoot, rThigh");
    QCOMPARE(scene.window->statusBar()->currentMessage(), text);
    QCOMPARE(RyMessageLog::global().messages(), QStringList(QStringLiteral("figure: ") + text));
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Transfer Rigging (Figure Space)"));
    checkLastStep(before);
}

void RyTransferRiggingTest::equalFiguresLandWhole()
{
    RyTwoFigures scene;
    scene.other->findBone("foot")->setName("lFoot");
    scene.other->findBone("tail")->setName("rThigh");
    const QMap<QString, Place> places = placesOf(scene.other);
    const RyRiggingTransfer transfer = transferRigging(*scene.other, *scene.figure);
    QCOMPARE(transfer.matched, 5);
    QCOMPARE(transfer.unmatched, QStringList());
    QCOMPARE(transfer.sourceOnly, 0);
    QCOMPARE(elsewhere(scene.figure, places), QStringList());
}

void RyTransferRiggingTest::oneHangsOnTheOther_data()
{
    QTest::addColumn<bool>("sourceHangs");
    QTest::newRow("target on source") << false;
    QTest::newRow("source on target") << true;
}

void RyTransferRiggingTest::oneHangsOnTheOther()
{
    QFETCH(bool, sourceHangs);
    RyTwoFigures scene;
    if (sourceHangs)
        scene.lThigh->addNodeChild(scene.other);
    else
        scene.otherThigh->addNodeChild(scene.figure);
    const QMap<QString, Place> places = placesOf(scene.other);
    const QString source = riggingOf(scene.otherHip, false) + riggingOf(scene.otherShin, false);
    ryScene()->setSelection({scene.otherHip, scene.hip});
    const QString before = scene.dump();
    RyMessageLog::global().clear();
    RyJETransferWSRiggingAction().trigger();
    QCOMPARE(elsewhere(scene.figure, places).join(' '), QStringLiteral("lFoot rThigh"));
    QCOMPARE(riggingOf(scene.otherHip, false) + riggingOf(scene.otherShin, false), source);
    QVERIFY(RyMessageLog::global().messages().value(0).endsWith(
        QStringLiteral("giant: 3. In The giant alone: 2. Without a namesake there: 2. lFoot, rThigh")));
    checkLastStep(before);
}

void RyTransferRiggingTest::whereTheSourceStandsMakesNoDifference()
{
    RyTwoFigures scene;
    transferRigging(*scene.other, *scene.figure);
    const QString moved = riggingOf(scene.lThigh, false) + riggingOf(scene.lShin, false);
    scene.other->clearPose();
    transferRigging(*scene.other, *scene.figure);
    QCOMPARE(riggingOf(scene.lThigh, false) + riggingOf(scene.lShin, false), moved);
}

/// What one of the target's values drives gets the value that it shall have, whatever the order.
void RyTransferRiggingTest::linkedTarget()
{
    RyTwoFigures scene;
    QVERIFY(RyERCLink::create(scene.lShin->getOriginYControl(), scene.hip->getOriginYControl()));
    QVERIFY(RyERCLink::create(scene.hip->getOriginYControl(), scene.lThigh->getEndYControl()));
    QVERIFY(RyERCLink::create(scene.hip->getEndZControl(), scene.rThigh->getXRotControl()));
    const QMap<QString, Place> places = placesOf(scene.other);
    checkUndoInHold([&] { transferRigging(*scene.other, *scene.figure); });
    QCOMPARE(elsewhere(scene.figure, places).join(' '), QStringLiteral("lFoot rThigh"));
}

void RyTransferRiggingTest::bulges()
{
    RyTwoFigures scene;
    auto *object = new RyObject;
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    scene.other->setObject(object);
    for (RyBone *bone : {scene.otherThigh, scene.otherShin}) {
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        skin->addBoneBinding(binding);
        addBulge(binding, 0, bone == scene.otherShin ? 4 : 10);
        addBulge(binding, 1, 20);
    }
    addBulge(scene.binding(scene.lShin), 0, 0);
    addBulge(scene.binding(scene.lShin), 2, 0);
    addBulge(scene.binding(scene.lFoot), 0, 0);
    scene.figure->getXScaleControl()->setValue(0.4f); // with 1.25 in general a half
    scene.figure->getYScaleControl()->setValue(3.0f);
    ryScene()->setSelection({scene.other, scene.figure});
    const QString before = scene.dump();
    RyJETransferWSRiggingAction().trigger();
    const RyBoneBinding *shin = scene.binding(scene.lShin);
    QCOMPARE(bulgeText(shin->getBulgeBinding(0)), QStringLiteral("2 2.5 3 3.5"));
    QCOMPARE(shin->getBulgeBinding(0)->getNegRightBulgeController()->getDefaultValue(), 0.0f);
    QCOMPARE(bulgeText(shin->getBulgeBinding(2)), QStringLiteral("0 1 2 3"));
    QCOMPARE(bulgeText(scene.binding(scene.lFoot)->getBulgeBinding(0)), QStringLiteral("0 1 2 3"));
    QCOMPARE(ryUndoStack()->count(), 1);
    checkLastStep(before);
}

/// The source may be any skeleton.
void RyTransferRiggingTest::sourceOfAnotherKind()
{
    RyTwoFigures scene;
    auto *source = new RyLegacyFigure;
    RyToolScene::makeBone(source, "lFoot", {1, 2, 3}, {4, 5, 6});
    ryScene()->addNode(source);
    ryScene()->setSelection({source, scene.figure});
    RyJETransferWSRiggingAction().trigger();
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(1, 2, 3));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(4, 5, 6));
}

void RyTransferRiggingTest::whichIsTheTarget()
{
    RyTwoFigures scene;
    // Others of the target's own count as little as things of no figure.
    ryScene()->setSelection({scene.prop, scene.lFoot, scene.otherHip, scene.other, scene.hip});
    const QMap<QString, Place> places = placesOf(scene.other);
    RyMessageBoxes boxes;
    RyJETransferWSRiggingAction().trigger();
    QCOMPARE(boxes.said, QStringList());
    QCOMPARE(elsewhere(scene.figure, places).join(' '), QStringLiteral("lFoot rThigh"));
}

void RyTransferRiggingTest::refuses_data()
{
    QTest::addColumn<QStringList>("selection");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("one figure") << QStringList("figure");
    QTest::newRow("two bones of one figure") << QStringList({"figure", "lFoot"});
    QTest::newRow("the source alone is a prop") << QStringList({"prop", "figure"});
    QTest::newRow("the target is a prop") << QStringList({"figure", "prop"});
    QTest::newRow("two sources") << QStringList({"giant", "third", "figure"});
    QTest::newRow("the target is parametric") << QStringList({"giant", "parametric"});
    QTest::newRow("the target is a plain skeleton") << QStringList({"giant", "third"});
}

void RyTransferRiggingTest::refuses()
{
    QFETCH(QStringList, selection);
    RyTwoFigures scene;
    RySkeleton *others[] = {new RySkeleton, new RyLegacyFigure};
    others[0]->setName("third");
    others[1]->setName("parametric");
    for (RySkeleton *each : others) {
        RyToolScene::makeBone(each, "hip", {1, 2, 3}, {4, 5, 6});
        ryScene()->addNode(each);
    }
    std::vector<RyNode *> nodes;
    for (const QString &name : selection)
        nodes.push_back(ryScene()->findNode(name));
    ryScene()->setSelection(nodes);
    const QString before = scene.dump();
    RyMessageBoxes boxes;
    RyJETransferWSRiggingAction().trigger();
    QCOMPARE(boxes.facts, QStringList(box));
    QCOMPARE(boxes.parents, QList<QWidget *>{scene.window.get()});
    QCOMPARE(scene.dump(), before);
    QCOMPARE(ryUndoStack()->count(), 0);
}

RY_TEST(RyTransferRiggingTest)

#include "tst_transferRigging.moc"
