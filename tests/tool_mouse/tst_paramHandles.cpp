#include "support/RyTest.h"

#include "RyMouseStage.h"

#include <QCursor>

/// The handles of a joint parameter under the real mouse: what is drawn is caught, and what was pressed stays under the
/// cursor.
class RyParamHandlesTest : public QObject
{
    Q_OBJECT

private slots:
    void staysUnderTheCursor_data();
    void staysUnderTheCursor();
    void scaledFigure_data();
    void scaledFigure();
    void toolTipsAndCursors_data();
    void toolTipsAndCursors();

private:
    static void addIds()
    {
        QTest::addColumn<int>("id");
        for (int id = 5; id <= 40; ++id)
            QTest::addRow("%d", id) << id;
    }
    static QVector<float> valuesOf(const RyLegacyJointParam &param)
    {
        QVector<float> values;
        for (const RyFloatProperty *property : param.controllers())
            values.append(property->getValue());
        for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
            for (const RyFloatProperty *property : sphere->controls())
                values.append(property->getValue());
        }
        return values;
    }
    /// Of a smooth-scale the zones of its partner are told from the other end.
    static QVector<float> asPartnerSays(const RyLegacyJointParam &partner)
    {
        QVector<float> values = valuesOf(partner);
        if (partner.type() == RyLegacyJointParam::SmoothScale) {
            std::swap(values[0], values[3]);
            std::swap(values[1], values[2]);
        }
        return values;
    }
    /// What the handle changes, as one number.
    static float valueOf(const RyLegacyJointParam &param, int id)
    {
        const RyHandle &handle = *RyHandleTable::find(id);
        const auto &sphere =
            handle.target == RyHandle::DynamicSphere ? *param.getDynamicSphere() : *param.getStaticSphere();
        switch (handle.kind) {
        case RyHandle::AxisArrow:
            return sphere.controls()[size_t(handle.axis)]->getValue();
        case RyHandle::ScaleCube:
            return sphere.controls()[size_t(7 + handle.axis)]->getValue();
        case RyHandle::GeneralCube:
            return sphere.getYScaleControl()->getValue();
        case RyHandle::AngleRay:
            return param.controllers()[size_t(handle.value - RyHandle::AngleA)]->getValue();
        case RyHandle::Zone:
            return param
                .controllers()[(handle.target == RyHandle::LowZone ? 2u : 0u) +
                               (handle.value == RyHandle::Start ? 0u : 1u)]
                ->getValue();
        default:
            return 0.0f;
        }
    }
    static void dragsAndUndoes(RyMouseStage &stage, int id, const RyMouseStage::Grip &grip);
    static void isTakenBack(RyMouseStage &stage, const RyMouseStage::Grip &grip);
};

void RyParamHandlesTest::staysUnderTheCursor_data()
{
    addIds();
}

void RyParamHandlesTest::staysUnderTheCursor()
{
    QFETCH(int, id);
    // Every two of the three: the sphere's general scale, a posed bone, a turned figure.
    for (const int config : {0, 3, 5, 6}) {
        RyMouseStage stage(1.0f, config & 1 ? 2.0f : 1.0f, config & 2, config & 4);
        if (RyMouseStage::isOffscreen() && !stage.isShown())
            QSKIP("no window is shown here");
        QVERIFY(stage.isShown());
        stage.editFor(id);
        const auto grip = stage.findGrip(id);
        QVERIFY2(grip, qPrintable(QString("cannot be caught, %1").arg(config)));
        dragsAndUndoes(stage, id, *grip);
        if (!QTest::currentTestFailed())
            isTakenBack(stage, *grip);
        if (QTest::currentTestFailed())
            return;
    }
}

void RyParamHandlesTest::dragsAndUndoes(RyMouseStage &stage, int id, const RyMouseStage::Grip &grip)
{
    const RyLegacyJointParam &param = *stage.tool->currentParam();
    const bool stays = RyHandleTable::find(id)->kind == RyHandle::GeneralCube;
    const QString before = stage.dump();
    const float valueBefore = valueOf(param, id);
    stage.mouse.move(grip.pixel);
    QCOMPARE(stage.tool->hoveredId(), id);
    stage.mouse.press(grip.pixel);
    QCOMPARE(stage.tool->hoveredId(), id);
    int seen = 0;
    for (const double share : {0.1, 0.45, 1.0, -0.4, -0.8}) {
        const QPoint cursor = stage.cursorAt(grip, share);
        stage.mouse.move(cursor);
        const double error = RyMouseStage::distance(stage.pixelOf(grip.now()), stays ? grip.pixel : cursor);
        QVERIFY2(error <= 1.0, qPrintable(QString("%1 of the way: %2 px").arg(share).arg(error)));
        QCOMPARE(asPartnerSays(*stage.counterpart()), valuesOf(param));
        if (stays)
            QCOMPARE(valueOf(param, id) > valueBefore, share > 0.0);
        seen += stage.view.pickOnGizmo(stays ? grip.pixel : cursor) == id;
    }
    // Other handles may lie over it at some of the places.
    QVERIFY(seen > 0);
    const QString after = stage.dump();
    stage.mouse.release(grip.pixel);
    QCOMPARE(stage.dump(), after);
    QVERIFY(after != before);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Joint Edit"));
    ryUndoStack()->undo();
    QCOMPARE(stage.dump(), before);
}

void RyParamHandlesTest::isTakenBack(RyMouseStage &stage, const RyMouseStage::Grip &grip)
{
    const QString before = stage.dump();
    const QPoint cursor = stage.cursorAt(grip, 1.0);
    stage.mouse.press(grip.pixel);
    stage.mouse.move(cursor);
    QVERIFY(stage.tool->isDragging());
    QVERIFY(stage.dump() != before);
    stage.mouse.press(cursor, Qt::RightButton);
    QCOMPARE(stage.dump(), before);
    stage.mouse.release(cursor, Qt::RightButton);
    stage.mouse.release(cursor);
    QCOMPARE(stage.dump(), before);
    QCOMPARE(stage.tool->currentParam()->editLevel(), 0);
    QCOMPARE(stage.counterpart()->editLevel(), 0);
}

void RyParamHandlesTest::scaledFigure_data()
{
    addIds();
}

void RyParamHandlesTest::scaledFigure()
{
    QFETCH(int, id);
    RyMouseStage stage(2.0f, 1.0f, true, true);
    if (RyMouseStage::isOffscreen() && !stage.isShown())
        QSKIP("no window is shown here");
    QVERIFY(stage.isShown());
    RyLegacyJointParam *param = stage.editFor(id);
    const auto grip = stage.findGrip(id);
    QVERIFY(grip);
    const QString before = stage.dump();
    stage.mouse.press(grip->pixel);
    float last = 0.0f;
    float direction = 0.0f;
    for (int i = 0; i < 6; ++i) {
        stage.mouse.move(stage.cursorAt(*grip, 0.15 * (i + 1)));
        const float now = valueOf(*param, id);
        if (i == 1)
            direction = now - last;
        if (i > 0)
            QVERIFY((now - last) * direction >= 0.0f);
        last = now;
        QCOMPARE(asPartnerSays(*stage.counterpart()), valuesOf(*param));
    }
    QVERIFY(RyHandleTable::find(id)->kind == RyHandle::Ring || direction != 0.0f);
    const QString after = stage.dump();
    QVERIFY(after != before);
    stage.mouse.release(grip->pixel);
    ryUndoStack()->undo();
    QCOMPARE(stage.dump(), before);
    ryUndoStack()->redo();
    QCOMPARE(stage.dump(), after);
}

void RyParamHandlesTest::toolTipsAndCursors_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("toolTip");
    const char *axes[] = {"X", "Y", "Z"};
    for (int i = 0; i < 3; ++i) {
        QTest::addRow("%d", 5 + i) << 5 + i << QString("Rotate Dynamic Sphere on the %1 axis").arg(axes[i]);
        QTest::addRow("%d", 8 + i) << 8 + i << QString("Rotate Static Sphere on the %1 axis").arg(axes[i]);
        QTest::addRow("%d", 11 + i) << 11 + i << QString("Translate Dynamic Sphere on the %1 axis.").arg(axes[i]);
        QTest::addRow("%d", 14 + i) << 14 + i << QString("Translate Static Sphere on the %1 axis.").arg(axes[i]);
    }
    for (int id = 17; id <= 28; ++id)
        QTest::addRow("%d", id) << id
                                << QString("Scale %1 Sphere from this point").arg(id <= 22 ? "Dynamic" : "Static");
    QTest::addRow("29") << 29 << "Static A Angle";
    QTest::addRow("30") << 30 << "Dynamic B Angle";
    QTest::addRow("31") << 31 << "Dynamic C Angle";
    QTest::addRow("32") << 32 << "Static D Angle";
    QTest::addRow("33") << 33 << "Translate Twist start on its axis";
    QTest::addRow("34") << 34 << "Translate Twist end on its axis";
    QTest::addRow("35") << 35 << "Translate High start of the smooth zone on its axis";
    QTest::addRow("36") << 36 << "Translate High end of the smooth zone on its axis";
    QTest::addRow("37") << 37 << "Translate Low end of the smooth zone on its axis";
    QTest::addRow("38") << 38 << "Translate Low start of the smooth zone on its axis";
    QTest::addRow("39") << 39 << "General Scale for the Static Sphere.";
    QTest::addRow("40") << 40 << "General Scale for the Dynamic Sphere.";
}

void RyParamHandlesTest::toolTipsAndCursors()
{
    QFETCH(int, id);
    QFETCH(QString, toolTip);
    for (const bool restricts : {false, true}) {
        RyMouseStage stage(1.0f, 1.0f, true, true);
        if (RyMouseStage::isOffscreen() && !stage.isShown())
            QSKIP("no window is shown here");
        QVERIFY(stage.isShown());
        stage.tool->setRestrictRotationAxes(restricts);
        stage.editFor(id);
        const auto grip = stage.findGrip(id);
        QVERIFY(grip);
        stage.mouse.move(QPoint(2, 2));
        QCOMPARE(stage.tool->hoveredId(), 0);
        QCOMPARE(stage.view.cursor().shape(), Qt::ArrowCursor);
        stage.mouse.move(grip->pixel);
        QCOMPARE(stage.tool->hoveredId(), id);
        QCOMPARE(stage.view.toolTip, toolTip);
        QCOMPARE(stage.view.cursor().shape(), restricts && id <= 10 ? Qt::ForbiddenCursor : Qt::PointingHandCursor);
        stage.mouse.press(grip->pixel);
        QCOMPARE(stage.tool->getStatusText().contains("while rotation axes are restricted"), restricts && id <= 10);
        stage.mouse.release(grip->pixel);
        stage.mouse.move(QPoint(2, 2));
        QCOMPARE(stage.tool->hoveredId(), 0);
        QCOMPARE(stage.view.toolTip, QString());
        QCOMPARE(stage.view.cursor().shape(), Qt::ArrowCursor);
    }
}

RY_TEST(RyParamHandlesTest)

#include "tst_paramHandles.moc"
