#include "support/RyTest.h"

#include "rycore/automation/RyDialogDriver.h"
#include "rycore/automation/RyWidgetFilling.h"
#include "rycore/ui/RyColorWgt.h"
#include "rycore/ui/RyIntSlider.h"

#include <QAbstractButton>
#include <QColorDialog>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>

/// The widgets for a percentage and for a colour.
class RyValueWidgetsTest : public QObject
{
    Q_OBJECT
private slots:
    void percentage()
    {
        RyIntSlider wgt;
        QSignalSpy changes(&wgt, SIGNAL(valueChanged(int)));
        auto *slider = wgt.findChild<QSlider *>();
        auto *field = wgt.findChild<QSpinBox *>();
        QCOMPARE(wgt.value(), 0);
        wgt.setValue(17);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.takeFirst().at(0).toInt(), 17);
        QCOMPARE(slider->value(), 17);
        QCOMPARE(field->text(), QStringLiteral("17 %"));
        wgt.setValue(17);
        QCOMPARE(changes.count(), 0);
        for (const auto &[given, expected] : {std::pair(101, 100), {-1, 0}, {100, 100}, {0, 0}}) {
            wgt.setValue(given);
            QCOMPARE(wgt.value(), expected);
        }
        changes.clear();
        // By hand, in either part, and the other shows it before anybody hears of it.
        QString seen;
        connect(&wgt, &RyIntSlider::valueChanged, this,
                [&] { seen = QStringLiteral("%1 %2").arg(slider->value()).arg(field->value()); });
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(seen, QStringLiteral("1 1"));
        QTest::keyClick(slider, Qt::Key_PageUp);
        QCOMPARE(seen, QStringLiteral("11 11"));
        QTest::keyClick(field, Qt::Key_Up);
        QCOMPARE(seen, QStringLiteral("12 12"));
        QCOMPARE(changes.count(), 3);
        wgt.setSpokenName(QStringLiteral("Opacity"));
        QCOMPARE(field->accessibleName(), QStringLiteral("Opacity"));
    }

    void percentageByTheDriver()
    {
        RyIntSlider wgt;
        QString error;
        QVERIFY(ryFillWidget(&wgt, QStringLiteral("42"), &error));
        QCOMPARE(wgt.value(), 42);
        QVERIFY(!ryFillWidget(&wgt, QStringLiteral("half"), &error));
        QCOMPARE(wgt.value(), 42);
    }

    void color()
    {
        RyColorWgt wgt;
        QSignalSpy changes(&wgt, &RyColorWgt::colorChanged);
        QCOMPARE(wgt.getColor(), QColor(255, 255, 255));
        wgt.setColor(QColor(255, 128, 0, 7));
        QCOMPARE(wgt.getColor(), QColor(255, 128, 0, 255));
        QCOMPARE(text(wgt), QStringLiteral("#ff8000"));
        QCOMPARE(changes.count(), 1);
        wgt.setColor(QColor(255, 128, 0));
        wgt.setColor(QColor());
        QCOMPARE(changes.count(), 1);
        QCOMPARE(wgt.getColor(), QColor(255, 128, 0));
    }

    void colorTyped_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("hex") << "#102030"
                             << "#102030";
        QTest::newRow("no mark") << "a0b0c0"
                                 << "#a0b0c0";
        QTest::newRow("short") << "#f00"
                               << "#ff0000";
        QTest::newRow("name") << " red "
                              << "#ff0000";
        QTest::newRow("nonsense") << "reddish"
                                  << "#808080";
        QTest::newRow("nothing") << ""
                                 << "#808080";
        QTest::newRow("not opaque") << "transparent"
                                    << "#808080";
    }
    void colorTyped()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        RyColorWgt wgt;
        wgt.setColor(QColor(128, 128, 128));
        QSignalSpy changes(&wgt, &RyColorWgt::colorChanged);
        auto *field = wgt.findChild<QLineEdit *>();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, typed);
        QCOMPARE(changes.count(), 0);
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(wgt.getColor().name(), expected);
        QCOMPARE(field->text(), expected);
        QCOMPARE(changes.count(), expected == QLatin1String("#808080") ? 0 : 1);
    }

    void colorPickedInTheDialog()
    {
        for (bool accepts : {true, false}) {
            RyColorWgt wgt;
            wgt.setColor(QColor(10, 20, 30));
            wgt.setSpokenName(QStringLiteral("Static Color"));
            QStringList seen;
            connect(&wgt, &RyColorWgt::colorChanged, this, [&](const QColor &color) { seen.append(color.name()); });
            RyDialogDriver driver;
            connect(&driver, &RyDialogDriver::opened, this, [&](QDialog *dialog) {
                auto *colors = qobject_cast<QColorDialog *>(dialog);
                QVERIFY(colors);
                QCOMPARE(colors->windowTitle(), QStringLiteral("Static Color"));
                QCOMPARE(colors->currentColor(), QColor(10, 20, 30));
                colors->setCurrentColor(QColor(1, 2, 3));
                // Shown at once.
                QCOMPARE(wgt.getColor(), QColor(1, 2, 3));
                if (!accepts)
                    colors->reject();
            });
            wgt.findChild<QAbstractButton *>(QStringLiteral("Swatch"))->click();
            QCOMPARE(driver.records().size(), size_t(1));
            QCOMPARE(wgt.getColor(), accepts ? QColor(1, 2, 3) : QColor(10, 20, 30));
            QCOMPARE(seen, accepts ? QStringList{"#010203"} : (QStringList{"#010203", "#0a141e"}));
            QVERIFY(!wgt.findChild<QColorDialog *>());
        }
    }

    void theColorWidgetMayGoWhileItsDialogIsOpen()
    {
        QPointer<RyColorWgt> wgt = new RyColorWgt;
        RyDialogDriver driver;
        connect(&driver, &RyDialogDriver::opened, this, [&] { delete wgt; });
        wgt->findChild<QAbstractButton *>(QStringLiteral("Swatch"))->click();
        QVERIFY(!wgt);
    }

    void colorByTheDriver()
    {
        RyColorWgt wgt;
        QString error;
        QVERIFY(ryFillWidget(&wgt, QStringLiteral("#123456"), &error));
        QCOMPARE(wgt.getColor().name(), QStringLiteral("#123456"));
        QVERIFY(!ryFillWidget(&wgt, QStringLiteral("no color"), &error));
        QCOMPARE(wgt.getColor().name(), QStringLiteral("#123456"));
    }

private:
    static QString text(const RyColorWgt &wgt) { return wgt.findChild<QLineEdit *>()->text(); }
};

RY_TEST(RyValueWidgetsTest)
#include "tst_RyValueWidgets.moc"
