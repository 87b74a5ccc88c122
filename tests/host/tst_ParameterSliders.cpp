#include "host/FaceProp.h"
#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

/// The sliders of pose and morphs: how they are filled, what a key does, and how one value goes back.
class ParameterSlidersTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        m_face = std::make_unique<FaceProp>(m_scene);
        m_face->addMorph(QStringLiteral("smile"));
        ryUndoStack()->clearAll();
        settle();
    }
    void cleanup()
    {
        m_face.reset();
        close();
    }

    void filledFromZero_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<float>("value");
        QTest::addColumn<bool>("dark");
        for (bool dark : {true, false}) {
            const char *look = dark ? "dark" : "light";
            for (float value : {0.0f, 90.0f, -90.0f, 180.0f, -180.0f, 60.0f}) {
                QTest::newRow(qPrintable(QStringLiteral("%1, turn of %2").arg(QLatin1String(look)).arg(double(value))))
                    << QStringLiteral("PoseXRotate") << value << dark;
            }
            QTest::newRow(qPrintable(QStringLiteral("%1, morph at 0").arg(QLatin1String(look))))
                << QStringLiteral("Morph smile") << 0.0f << dark;
            QTest::newRow(qPrintable(QStringLiteral("%1, morph at half").arg(QLatin1String(look))))
                << QStringLiteral("Morph smile") << 0.5f << dark;
            QTest::newRow(qPrintable(QStringLiteral("%1, scale").arg(QLatin1String(look))))
                << QStringLiteral("PoseXScale") << 1.0f << dark;
        }
    }
    void filledFromZero()
    {
        QFETCH(QString, row);
        QFETCH(float, value);
        QFETCH(bool, dark);
        m_window->setDark(dark);
        RyFloatPropertyWgt *widget = rowOf(row);
        widget->getFirstProperty()->setValue(value);
        QSlider *slider = widget->slider();
        const double least = row == QLatin1String("PoseXRotate") ? -180.0 : 0.0;
        const double most = row == QLatin1String("PoseXRotate")  ? 180.0
                            : row == QLatin1String("PoseXScale") ? 2.0
                                                                 : 1.0;
        const int zero = pixelOf(*slider, (0.0 - least) / (most - least));
        const int here = pixelOf(*slider, (double(value) - least) / (most - least));
        const std::vector<int> filled = filledPixels(*slider);
        if (value == 0.0f) {
            QVERIFY2(filled.empty(), "zero is empty");
            return;
        }
        const auto [left, right] = std::minmax(zero, here);
        // The handle hides what lies below it.
        const int handle = slider->style()->pixelMetric(QStyle::PM_SliderLength, nullptr, slider) / 2 + 2;
        for (int x = left + 1; x < right - 1; ++x) {
            if (std::abs(x - here) > handle)
                QVERIFY2(std::binary_search(filled.begin(), filled.end(), x), qPrintable(QString::number(x)));
        }
        for (int x : filled)
            QVERIFY2(x >= left - 1 && x <= right + 1, qPrintable(QString::number(x)));
        QVERIFY(filled.size() > 5);
    }

    void aKeyIsOneDegreeOrOnePercent_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<float>("start");
        QTest::addColumn<float>("step");
        QTest::newRow("turn") << QStringLiteral("PoseYRotate") << 12.25f << 1.0f;
        QTest::newRow("translation") << QStringLiteral("PoseZTranslate") << -3.5f << 1.0f;
        QTest::newRow("scale") << QStringLiteral("PoseScale") << 1.25f << 0.01f;
        QTest::newRow("scale of an axis") << QStringLiteral("PoseYScale") << 0.75f << 0.01f;
        QTest::newRow("morph") << QStringLiteral("Morph smile") << 0.25f << 0.01f;
    }
    void aKeyIsOneDegreeOrOnePercent()
    {
        QFETCH(QString, row);
        QFETCH(float, start);
        QFETCH(float, step);
        RyFloatPropertyWgt *widget = rowOf(row);
        RyFloatProperty *property = widget->getFirstProperty();
        property->setValue(start);
        ryUndoStack()->clearAll();
        QSlider *slider = widget->slider();
        slider->setFocus();
        const QString before = dump();
        struct
        {
            Qt::Key key;
            Qt::KeyboardModifier modifier;
            float steps;
        } const keys[] = {{Qt::Key_Right, Qt::NoModifier, 1},     {Qt::Key_Up, Qt::NoModifier, 2},
                          {Qt::Key_Left, Qt::NoModifier, 1},      {Qt::Key_Down, Qt::NoModifier, 0},
                          {Qt::Key_PageUp, Qt::NoModifier, 10},   {Qt::Key_PageDown, Qt::NoModifier, 0},
                          {Qt::Key_Right, Qt::ShiftModifier, 10}, {Qt::Key_Left, Qt::ControlModifier, 9.9f}};
        int count = 0;
        for (const auto &each : keys) {
            QTest::keyClick(slider, each.key, each.modifier);
            QVERIFY2(std::abs(property->getValue() - (start + each.steps * step)) < 2e-5f,
                     qPrintable(QString::number(double(property->getValue()))));
            QCOMPARE(ryUndoStack()->count(), ++count);
        }
        const QString after = dump();
        for (int i = 0; i < count; ++i)
            ryUndoStack()->undo();
        QCOMPARE(dump(), before);
        for (int i = 0; i < count; ++i)
            ryUndoStack()->redo();
        QCOMPARE(dump(), after);
    }

    /// Steps end where the slider does; a value that was typed beyond is not drawn in.
    void stepsEndAtTheEnds()
    {
        RyFloatPropertyWgt *widget = rowOf(QStringLiteral("PoseXRotate"));
        RyFloatProperty *property = widget->getFirstProperty();
        property->setValue(179.5f);
        widget->slider()->setFocus();
        QTest::keyClick(widget->slider(), Qt::Key_Right);
        QCOMPARE(property->getValue(), 180.0f);
        ryUndoStack()->clearAll();
        QTest::keyClick(widget->slider(), Qt::Key_Right);
        QCOMPARE(property->getValue(), 180.0f);
        QCOMPARE(ryUndoStack()->count(), 0);
        property->setValue(200);
        QTest::keyClick(widget->slider(), Qt::Key_Right);
        QCOMPARE(property->getValue(), 200.0f);
        QTest::keyClick(widget->slider(), Qt::Key_Left);
        QCOMPARE(property->getValue(), 199.0f);
    }

    void theWheelStepsWithTheFocusOnly()
    {
        RyFloatPropertyWgt *widget = rowOf(QStringLiteral("PoseXRotate"));
        RyFloatProperty *property = widget->getFirstProperty();
        m_window->setFocus();
        wheel(widget->slider(), 120);
        QCOMPARE(property->getValue(), 0.0f);
        widget->slider()->setFocus();
        wheel(widget->slider(), 120);
        QCOMPARE(property->getValue(), 1.0f);
        for (int i = 0; i < 4; ++i)
            wheel(widget->slider(), -60);
        QCOMPARE(property->getValue(), -1.0f);
    }

    void aDoubleClickRestoresOneValue_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("where");
        for (const char *row : {"PoseXRotate", "PoseXScale", "Morph smile"}) {
            for (const char *where : {"handle", "groove", "label", "key"}) {
                QTest::newRow(qPrintable(QStringLiteral("%1, %2").arg(QLatin1String(row), QLatin1String(where))))
                    << QString::fromLatin1(row) << QString::fromLatin1(where);
            }
        }
    }
    void aDoubleClickRestoresOneValue()
    {
        QFETCH(QString, row);
        QFETCH(QString, where);
        RyFloatPropertyWgt *widget = rowOf(row);
        RyFloatProperty *property = widget->getFirstProperty();
        m_face->node()->getYRotControl()->setValue(33);
        m_face->node()->getYScaleControl()->setValue(1.5f);
        {
            RyUndoStackHold hold;
            property->setValue(0.4f);
            hold.accept(QStringLiteral("Earlier"));
        }
        const QString before = dump();
        restore(*widget, where);
        QCOMPARE(property->getValue(), property->getDefaultValue());
        QCOMPARE(m_face->node()->getYRotControl()->getValue(), 33.0f);
        QCOMPARE(m_face->node()->getYScaleControl()->getValue(), 1.5f);
        QCOMPARE(ryUndoStack()->count(), 2);
        QVERIFY2(ryUndoStack()->undoText().startsWith(QStringLiteral("Restore ")),
                 qPrintable(ryUndoStack()->undoText()));
        const QString after = dump();
        ryUndoStack()->undo();
        QCOMPARE(dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(dump(), after);
        // What is at its default already leaves no step behind.
        restore(*widget, where);
        QCOMPARE(dump(), after);
        QCOMPARE(ryUndoStack()->index(), 2);
        QCOMPARE(ryUndoStack()->count(), 2);
        // Nor does it take away what can be redone.
        ryUndoStack()->undo();
        ryUndoStack()->undo();
        const QString rest = dump();
        restore(*widget, where);
        QCOMPARE(dump(), rest);
        QCOMPARE(ryUndoStack()->index(), 0);
        QCOMPARE(ryUndoStack()->count(), 2);
        ryUndoStack()->redo();
        ryUndoStack()->redo();
        QCOMPARE(dump(), after);
    }

    /// A default of its own, as memorized rigging has.
    void theDefaultNeedNotBeZero()
    {
        RyFloatPropertyWgt *widget = rowOf(QStringLiteral("PoseXRotate"));
        RyFloatProperty *property = widget->getFirstProperty();
        property->setDefaultValue(15);
        property->setValue(40);
        QVERIFY2(widget->slider()->toolTip().endsWith(QStringLiteral("back to 15°")),
                 qPrintable(widget->slider()->toolTip()));
        restore(*widget, QStringLiteral("handle"));
        QCOMPARE(property->getValue(), 15.0f);
    }

private:
    RyFloatPropertyWgt *rowOf(const QString &name) const
    {
        auto *row = m_window->findChild<RyFloatPropertyWgt *>(name);
        row->ensurePolished();
        return row;
    }
    QString dump() const { return rySceneDump(*m_scene); }
    static QRect handleOf(const QSlider &slider, int position)
    {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = Qt::Horizontal;
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = option.sliderValue = position;
        option.subControls = QStyle::SC_All;
        return slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider);
    }
    static int pixelOf(const QSlider &slider, double share)
    {
        return handleOf(slider, int(share * slider.maximum())).center().x();
    }
    /// Columns in which the slider shows the colour of what is filled, ascending.
    static std::vector<int> filledPixels(QSlider &slider)
    {
        slider.clearFocus();
        const QImage picture = slider.grab().toImage();
        const QColor fill = slider.palette().color(QPalette::Highlight);
        std::vector<int> filled;
        for (int x = 0; x < picture.width(); ++x) {
            for (int y = 0; y < picture.height(); ++y) {
                const QColor pixel = picture.pixelColor(x, y);
                if (std::abs(pixel.red() - fill.red()) + std::abs(pixel.green() - fill.green()) +
                        std::abs(pixel.blue() - fill.blue()) <
                    60) {
                    filled.push_back(x);
                    break;
                }
            }
        }
        return filled;
    }
    static void doubleClick(QWidget *widget, const QPoint &place)
    {
        // As a hand does it; a test's own double click would leave out the first one.
        QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(widget, Qt::LeftButton, Qt::NoModifier, place);
    }
    static void restore(RyFloatPropertyWgt &row, const QString &where)
    {
        QSlider *slider = row.slider();
        if (where == QLatin1String("handle")) {
            doubleClick(slider, handleOf(*slider, slider->value()).center());
        } else if (where == QLatin1String("groove")) {
            doubleClick(slider, QPoint(slider->width() - 4, slider->height() / 2));
        } else if (where == QLatin1String("label")) {
            doubleClick(row.label(), row.label()->rect().center());
        } else {
            slider->setFocus();
            QTest::keyClick(slider, Qt::Key_Delete);
        }
    }
    static void wheel(QWidget *widget, int delta)
    {
        const QPointF place = widget->rect().center();
        QWheelEvent event(place, widget->mapToGlobal(place.toPoint()), QPoint(), QPoint(0, delta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &event);
    }

    std::unique_ptr<FaceProp> m_face;
};

RY_TEST(ParameterSlidersTest)
#include "tst_ParameterSliders.moc"
