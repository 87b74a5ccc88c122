#include "RyCenterEndPageScene.h"

/// The page of centre and end point beside its node: switches, a node that goes, operations on it.
class RyCenterEndNodesTest : public QObject
{
    Q_OBJECT

private slots:
    void switchesWrite()
    {
        RyCenterEndPageScene scene;
        scene.select(scene.prop);
        const auto click = [](QCheckBox &box) {
            QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box.height() / 2));
        };
        QVERIFY(scene.prop->inheritsScale());
        click(scene.inherit());
        QVERIFY(!scene.prop->inheritsScale());
        const bool promoted = scene.prop->isSelectionPromoted();
        click(scene.promote());
        QCOMPARE(scene.prop->isSelectionPromoted(), !promoted);
        click(scene.hidden());
        QVERIFY(scene.prop->isHidden());
        click(scene.hidden());
        QVERIFY(!scene.prop->isHidden());
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void switchesFollowTheNode()
    {
        RyCenterEndPageScene scene;
        scene.select(scene.prop);
        QSignalSpy clicks(&scene.inherit(), &QCheckBox::stateChanged);
        QSignalSpy promotions(&scene.promote(), &QCheckBox::stateChanged);
        QSignalSpy hidings(&scene.hidden(), &QCheckBox::stateChanged);
        for (bool onOff : {false, true, false}) {
            scene.prop->setInheritScale(onOff);
            scene.prop->setPromoteSelection(onOff);
            scene.prop->setHidden(onOff);
            QCOMPARE(scene.inherit().isChecked(), onOff);
            QCOMPARE(scene.promote().isChecked(), onOff);
            QCOMPARE(scene.hidden().isChecked(), onOff);
        }
        scene.lShin->setHidden(true);
        scene.lShin->setInheritScale(false);
        scene.prop->setInheritScale(true);
        scene.select(scene.lShin);
        QVERIFY(scene.hidden().isChecked() && !scene.inherit().isChecked());
        // The page left the other one.
        scene.prop->setHidden(true);
        scene.prop->setHidden(false);
        QVERIFY(scene.hidden().isChecked());
        QCOMPARE(clicks.count() + promotions.count() + hidings.count(), 0);
    }

    void promotionIsNotForBones()
    {
        RyCenterEndPageScene scene;
        QVERIFY(!scene.promote().isEnabled());
        scene.lShin->setPromoteSelection(true);
        QVERIFY(scene.promote().isChecked() && !scene.promote().isEnabled());
        for (RyNode *node : {static_cast<RyNode *>(scene.figure), scene.prop}) {
            scene.select(node);
            QVERIFY(scene.promote().isEnabled());
        }
    }

    void aNodeThatGoes()
    {
        RyCenterEndPageScene scene;
        {
            RyUndoStackHold hold;
            scene.lShin->getNodeParent()->removeNodeChild(scene.lShin);
            ryScene()->removeNode(scene.lShin);
            hold.accept("Remove");
        }
        for (const RyCenterEndRow &row : centerEndRows)
            QVERIFY(!scene.field(widgetOf(row))->getFirstProperty());
        QVERIFY(scene.inherit().isChecked());
        ryUndoStack()->undo();
        scene.select(scene.lShin);
        QCOMPARE(scene.field("JointEditorOriginXWgt")->getFirstProperty(), scene.lShin->getOriginXControl());
    }

    /// The edit is finished before the node goes, and stays the node's own.
    void removalDuringAnEdit_data()
    {
        QTest::addColumn<bool>("types");
        QTest::addColumn<bool>("inHold");
        QTest::addColumn<QStringList>("captions");
        const QString change = QStringLiteral("Change End Point X Position");
        QTest::newRow("scrubbed") << false << false << QStringList{change};
        QTest::newRow("scrubbed, in a hold") << false << true << QStringList{change, "Remove"};
        QTest::newRow("typed") << true << false << QStringList{change};
        QTest::newRow("typed, in a hold") << true << true << QStringList{"Remove"};
    }

    void removalDuringAnEdit()
    {
        QFETCH(bool, types);
        QFETCH(bool, inHold);
        RyCenterEndPageScene scene;
        const RyRef<RyNode> kept(scene.lShin);
        const QString before = RyCenterEndPageScene::wholeDump();
        const float value = scene.lShin->getEndXControl()->getValue();
        RyNumberField *number = scene.field("JointEditorEndPointXWgt")->numberField();
        if (types) {
            number->setFocus();
            number->selectAll();
            QTest::keyClicks(number, QStringLiteral("42"));
        } else {
            scene.startScrubbing();
            QVERIFY(scene.lShin->getEndXControl()->getValue() > value + 10);
        }
        const float edited = types ? 42.0f : scene.lShin->getEndXControl()->getValue();
        const auto remove = [&] { ryScene()->removeNode(scene.lShin); };
        if (inHold) {
            RyUndoStackHold hold;
            remove();
            hold.accept("Remove");
        } else {
            remove();
        }
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(kept->editLevel(), 0);
        QCOMPARE(kept->getEndXControl()->getValue(), edited);
        for (const RyCenterEndRow &row : centerEndRows)
            QVERIFY(!scene.field(widgetOf(row))->getFirstProperty());
        QCOMPARE(number->text(), QString());
        QStringList captions;
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            captions.append(ryUndoStack()->caption(i));
        QTEST(captions, "captions");
        if (!types)
            scene.mouse(QEvent::MouseButtonRelease, 40);
        QCOMPARE(ryUndoStack()->count(), captions.size());
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        QCOMPARE(kept->getEndXControl()->getValue(), value);
        if (!inHold)
            return;
        scene.select(scene.lShin); // no step holds that
        QCOMPARE(RyCenterEndPageScene::wholeDump(), before);
    }

    void leavesTheNodeOfBefore()
    {
        RyCenterEndPageScene scene;
        const std::pair<const char *, const char *> links[] = {
            {SIGNAL(aboutToBeRemoved()), SLOT(nodeRemoved())},
            {SIGNAL(riggingChanged()), SLOT(refresh())},
            {SIGNAL(inheritScaleChanged()), SLOT(updateInheritScaleFromNode())},
            {SIGNAL(promoteSelectionChanged(bool)), SLOT(updatePromoteSelectionFromNode())},
            {SIGNAL(hiddenChanged(bool)), SLOT(updateHiddenFromNode())}};
        scene.select(scene.rThigh);
        for (const auto &[signal, slot] : links) {
            QVERIFY2(!QObject::disconnect(scene.lShin, signal, &scene.page, slot), signal);
            QVERIFY2(QObject::disconnect(scene.rThigh, signal, &scene.page, slot), signal);
        }
    }

    void aNodeThatGoesWhileItIsEdited()
    {
        RyCenterEndPageScene scene;
        scene.startScrubbing();
        emit scene.lShin->aboutToBeRemoved();
        QCOMPARE(scene.lShin->editLevel(), 0);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(ryUndoStack()->count(), 1);
        QVERIFY(!scene.field("JointEditorEndPointXWgt")->isEnabled());
        scene.mouse(QEvent::MouseButtonRelease, 40);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void operations_data()
    {
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<QString>("caption");
        QTest::newRow("align") << QByteArray("align") << QStringLiteral("Align");
        QTest::newRow("center") << QByteArray("snapCenter") << QStringLiteral("Snap Center to End");
        QTest::newRow("end") << QByteArray("snapEnd") << QStringLiteral("Snap End to Center");
    }

    void operations()
    {
        QFETCH(QByteArray, slot);
        QFETCH(QString, caption);
        RyCenterEndPageScene scene;
        scene.lFoot->setOrigin({9, 7, -2});
        const QString before = RyCenterEndPageScene::wholeDump();
        const RyQuat orientation = scene.lShin->getOrientation();
        scene.call(slot);
        if (slot == "align")
            QVERIFY(!(scene.lShin->getOrientation() == orientation));
        else
            QCOMPARE(scene.lShin->getOrientation(), orientation);
        if (slot == "snapCenter")
            QCOMPARE(scene.lShin->getOrigin(), scene.lThigh->getEndPoint());
        if (slot == "snapEnd")
            QCOMPARE(scene.lShin->getEndPoint(), scene.lFoot->getOrigin());
        RyCenterEndPageScene::checkStep(before, caption);
    }

    void anOperationThatFails()
    {
        RyCenterEndPageScene scene;
        scene.select(scene.prop);
        scene.call("snapCenter"); // it has no parent
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(!ryUndoStack()->isHoldOpen());
    }

    void snappingTheEndAligns()
    {
        RyCenterEndPageScene scene;
        scene.lFoot->setOrigin({9, 7, -2});
        scene.select(scene.lShin);
        QVERIFY(QMetaObject::invokeMethod(&scene.page, "setAutoAlign", Q_ARG(bool, true)));
        QVERIFY(scene.tool->autoAlign());
        // What the tool itself aligns when points move is not what is asked about.
        scene.lShin->setEndPoint(scene.lFoot->getOrigin());
        scene.lShin->setOrientation(RyQuat({1, 2, 3}, 0.4f));
        ryUndoStack()->clearAll();
        scene.call("snapEnd");
        const RyQuat aligned = scene.lShin->getOrientation();
        scene.call("align");
        QCOMPARE(scene.lShin->getOrientation(), aligned);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Snap End to Center"));
    }

    void flagsOfTheTool()
    {
        RyCenterEndPageScene scene;
        for (bool onOff : {true, false}) {
            QVERIFY(QMetaObject::invokeMethod(&scene.page, "setAutoAlign", Q_ARG(bool, onOff)));
            QVERIFY(QMetaObject::invokeMethod(&scene.page, "setAutoSnapEndPoints", Q_ARG(bool, !onOff)));
            QCOMPARE(scene.tool->autoAlign(), onOff);
            QCOMPARE(scene.tool->autoSnapEndPoints(), !onOff);
        }
    }
};

RY_TEST(RyCenterEndNodesTest)

#include "tst_centerEndNodes.moc"
