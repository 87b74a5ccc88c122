#include "RyShownField.h"

Q_DECLARE_METATYPE(std::function<void()>)

/// Drags of the slider and the label of a field, what they announce, and how they end.
class RyFieldDragsTest : public QObject, private RyShownField
{
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void aSliderDragIsOneStep()
    {
        m_widget->setSliderRange(-100, 100);
        QSlider *slider = m_widget->slider();
        QVERIFY(slider->isVisible());
        slider->setSliderDown(true);
        for (int place = 1000; place <= 1500; place += 50)
            slider->setValue(place);
        QCOMPARE(m_first->getValue(), 50.0f);
        slider->setSliderDown(false);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->entryCount(0), 2);
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 0.0f);
    }

    void scrubbingTheLabelIsOneStepAndCanBeCancelled()
    {
        drag({4, 8, 20, 40});
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        drag({4, 8, 20, 40}, true);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        // A press without motion is no edit.
        QTest::mouseClick(m_widget->label(), Qt::LeftButton);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void announcesEveryEdit_data()
    {
        QTest::addColumn<std::function<void()>>("edit");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<int>("steps");
        const auto add = [](const char *name, const std::function<void()> &edit, const QStringList &expected,
                            int steps = 1) { QTest::newRow(name) << edit << expected << steps; };
        const QStringList one = {"started 5", "changed 1"};
        add("typed", [this] { type("7"); }, {"started 5", "changed 1"});
        add(
            "confirmed", [this] { type("5"); }, {}, 0);
        add(
            "nonsense", [this] { type("five"); }, {}, 0);
        add(
            "arrow key", [this] { key(Qt::Key_Up); }, one);
        add(
            "page", [this] { key(Qt::Key_PageDown); }, one);
        add(
            "wheel", [this] { wheel(120); }, one);
        add(
            "label",
            [this] {
                drag({8, 16, 40});
            },
            one);
        add(
            "label, cancelled",
            [this] {
                drag({8, 16, 40}, true);
            },
            {"started 5", "changed 0"}, 0);
        add(
            "label, back again",
            [this] {
                drag({8, 16, 0});
            },
            {"started 5", "changed 0"}, 0);
        add(
            "slider",
            [this] {
                dragSlider({0.6, 0.7, 0.8});
            },
            one);
        add(
            "slider by key", [this] { QTest::keyClick(m_widget->slider(), Qt::Key_Right); }, one);
    }

    void announcesEveryEdit()
    {
        QFETCH(std::function<void()>, edit);
        QFETCH(QStringList, expected);
        QFETCH(int, steps);
        m_widget->setSliderRange(-100, 100);
        setBoth(5);
        QStringList told;
        connect(m_widget.get(), &RyFloatPropertyWgt::editStarted, this,
                [&] { told.append(QStringLiteral("started %1").arg(double(m_first->getValue()))); });
        connect(m_widget.get(), &RyFloatPropertyWgt::editFinished, this, [&](bool changed) {
            QCOMPARE(m_first->getValue() != 5.0f, changed);
            told.append(QStringLiteral("changed %1").arg(changed));
            // What listeners write belongs to the step.
            m_bone->getEndYControl()->setValue(changed ? 1 : 0);
        });
        edit();
        QCOMPARE(told, expected);
        QCOMPARE(ryUndoStack()->count(), steps);
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 5.0f);
        QCOMPARE(m_bone->getEndYControl()->getValue(), 0.0f);
    }

    void aNodeThatGoesEndsTheEdit()
    {
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        emit m_widget->label()->scrubStarted();
        emit m_widget->label()->scrubbed(40);
        QCOMPARE(m_first->getValue(), 20.0f);
        m_widget->clearProperties();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QCOMPARE(m_first->getValue(), 0.0f);
        emit m_widget->label()->scrubFinished(false);
        QCOMPARE(finished.count(), 1);
    }

    void finishingEndsADragAsItsRelease()
    {
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        m_widget->finishEdit();
        QCOMPARE(finished.count(), 0);
        emit m_widget->label()->scrubStarted();
        emit m_widget->label()->scrubbed(40);
        m_widget->finishEdit();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), true);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
        emit m_widget->label()->scrubbed(80);
        emit m_widget->label()->scrubFinished(false);
        QCOMPARE(m_first->getValue(), 20.0f);
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void aDragEndsWithItsField_data()
    {
        QTest::addColumn<std::function<void()>>("end");
        const auto add = [](const char *name, const std::function<void()> &end) { QTest::newRow(name) << end; };
        add("disabled", [this] { m_widget->setEnabled(false); });
        add("hidden", [this] { m_widget->hide(); });
        add("the other property goes", [this] { m_other.reset(); });
    }

    void aDragEndsWithItsField()
    {
        QFETCH(std::function<void()>, end);
        setBoth(5);
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        press();
        move(8);
        move(40);
        QVERIFY(ryUndoStack()->isHoldOpen());
        const float dragged = m_first->getValue();
        QVERIFY(dragged > 10.0f);
        end();
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), true);
        // The button that is still down drags nothing, also of a field that is back.
        m_widget->setEnabled(true);
        m_widget->show();
        move(80);
        release(80);
        QCOMPARE(m_first->getValue(), dragged);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 5.0f);
    }

    void aDragEndsWithItsOnlyProperty()
    {
        m_widget->clearProperties();
        m_widget->addProperty(m_second);
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        press();
        move(40);
        QVERIFY(ryUndoStack()->isHoldOpen());
        m_other.reset();
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(!m_widget->isEnabled());
    }

    void aPressEndsWithItsField()
    {
        press();
        m_widget->setEnabled(false);
        m_widget->setEnabled(true);
        move(40);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(m_first->getValue(), 0.0f);
    }

    void whatChangesNothingLeavesNoStep_data()
    {
        QTest::addColumn<std::function<void()>>("edit");
        const auto add = [](const char *name, const std::function<void()> &edit) { QTest::newRow(name) << edit; };
        add("key", [this] { key(Qt::Key_Up); });
        add("wheel", [this] { wheel(120); });
        add("typed", [this] { type("50"); });
    }

    void whatChangesNothingLeavesNoStep()
    {
        QFETCH(std::function<void()>, edit);
        for (RyFloatProperty *property : {m_first, m_second}) {
            property->setIsClamped(true);
            property->setMin(-2);
            property->setMax(2);
            property->setValue(1.5f);
        }
        type("2");
        type("1");
        ryUndoStack()->undo();
        QCOMPARE(m_first->getValue(), 2.0f);
        QSignalSpy finished(m_widget.get(), &RyFloatPropertyWgt::editFinished);
        edit();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QCOMPARE(field()->text(), QStringLiteral("2"));
        QCOMPARE(m_second->getValue(), 2.0f);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(ryUndoStack()->index(), 1);
        QCOMPARE(ryUndoStack()->count(), 2);
        ryUndoStack()->redo();
        QCOMPARE(m_first->getValue(), 1.0f);
    }
};

RY_TEST(RyFieldDragsTest)
#include "tst_fieldDrags.moc"
