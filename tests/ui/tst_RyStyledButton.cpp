#include "support/RyTest.h"

#include "rycore/ui/RyStyledButton.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>

namespace {

/// Its text is set from within.
class NamedButton : public RyStyledButton
{
public:
    using RyStyledButton::RyStyledButton;
    using RyStyledButton::showText;
};

int differentPixels(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < qMin(a.height(), b.height()); ++y) {
        for (int x = 0; x < qMin(a.width(), b.width()); ++x)
            count += a.pixel(x, y) != b.pixel(x, y);
    }
    return count;
}

} // namespace

class RyStyledButtonTest : public QObject
{
    Q_OBJECT
private slots:
    void isAsWideAsItsText()
    {
        RyStyledButton button;
        button.setText(QStringLiteral("short"));
        const int shortWidth = button.sizeHint().width();
        QCOMPARE(button.minimumSizeHint(), button.sizeHint());
        button.setText(QStringLiteral("a text that is much longer"));
        QVERIFY(button.sizeHint().width() > shortWidth);
        button.setElideText(true);
        QVERIFY(button.minimumSizeHint().width() <= shortWidth);
        QVERIFY(button.sizeHint().width() > shortWidth);
        // Then the room is that of one text, whatever is shown.
        button.setMinimumWidthText(QStringLiteral("mmmmmmmm"));
        const QSize room = button.sizeHint();
        QVERIFY(room.width() > button.fontMetrics().horizontalAdvance(QStringLiteral("mmmmmmmm")));
        QCOMPARE(button.minimumSizeHint(), room);
        button.setText(QStringLiteral("x"));
        QCOMPARE(button.sizeHint(), room);
        button.setShowArrow(true);
        QVERIFY(button.sizeHint().width() > room.width());
    }

    void cutsItsTextInTheMiddle()
    {
        RyStyledButton button;
        button.resize(120, 24);
        button.setText(QStringLiteral("left hand with a very long name, first finger"));
        const QImage clipped = button.grab().toImage();
        button.setElideText(true);
        const QImage elided = button.grab().toImage();
        QVERIFY(differentPixels(clipped, elided) > 30);
        // What fits is shown whole.
        button.setText(QStringLiteral("hand"));
        const QImage whole = button.grab().toImage();
        button.setElideText(false);
        QCOMPARE(button.grab().toImage(), whole);
        button.setShowArrow(true);
        QVERIFY(differentPixels(button.grab().toImage(), whole) > 30);
    }

    void looksLikeTheComboBoxBesideIt()
    {
        RyStyledButton button;
        QComboBox combo;
        combo.addItem(QStringLiteral("hip & thigh"));
        for (QWidget *widget : {static_cast<QWidget *>(&button), static_cast<QWidget *>(&combo)})
            widget->resize(160, 24);
        button.setShowArrow(true);
        button.setElideText(true);
        button.setText(QStringLiteral("hip && thigh"));
        QCOMPARE(button.grab().toImage(), combo.grab().toImage());
    }

    void showsTheFocus()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *other = new QPushButton(&window);
        auto *button = new RyStyledButton(&window);
        layout->addWidget(other);
        layout->addWidget(button);
        button->setText(QStringLiteral("hip"));
        for (bool arrow : {false, true}) {
            button->setShowArrow(arrow);
            window.show();
            window.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&window));
            other->setFocus();
            const QImage without = button->grab().toImage();
            QTest::keyClick(other, Qt::Key_Tab);
            QVERIFY(button->hasFocus());
            QVERIFY(differentPixels(button->grab().toImage(), without) > 30);
            QSignalSpy clicks(button, &QAbstractButton::clicked);
            QTest::keyClick(button, Qt::Key_Space);
            QCOMPARE(clicks.count(), 1);
        }
    }

    void takesItsNameFromItsLabel()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *label = new QLabel(QStringLiteral("&Node :"), &window);
        auto *button = new NamedButton(&window);
        label->setBuddy(button);
        layout->addWidget(label);
        layout->addWidget(button);
        button->showText(QStringLiteral("left & right"));
        window.show();
        QCOMPARE(button->accessibleName(), QStringLiteral("Node"));
        QCOMPARE(button->accessibleDescription(), QStringLiteral("left & right"));
        QCOMPARE(button->toolTip(), QStringLiteral("left & right"));
        QCOMPARE(button->text(), QStringLiteral("left && right"));
        // One of its own stays.
        button->setAccessibleName(QStringLiteral("Joint"));
        window.hide();
        window.show();
        QCOMPARE(button->accessibleName(), QStringLiteral("Joint"));
    }
};

RY_TEST(RyStyledButtonTest)
#include "tst_RyStyledButton.moc"
