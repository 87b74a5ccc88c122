#include "support/RyTest.h"

#include "rycore/ui/RyPopUpWidget.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

class RyPopUpWidgetTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_button = new QPushButton(QStringLiteral("open"), m_window.get());
        m_button->setGeometry(20, 20, 120, 24);
        m_window->setGeometry(200, 200, 300, 300);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_button->setFocus();
        QCursor::setPos(m_window->mapToGlobal(QPoint(290, 290)));
        m_popup = new RyPopUpWidget(m_button);
        m_field = new QLineEdit(m_popup);
        auto *layout = new QVBoxLayout(m_popup);
        layout->addWidget(m_field);
        m_popup->setFixedSize(200, 150);
    }
    void cleanup() { m_window.reset(); }

    void liesBeside_data()
    {
        QTest::addColumn<QRect>("anchor");
        QTest::addColumn<QPoint>("expected");
        const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
        const int right = room.right(), bottom = room.bottom();
        QTest::newRow("below") << QRect(100, 100, 80, 24) << QPoint(100, 124);
        QTest::newRow("above") << QRect(100, bottom - 60, 80, 24) << QPoint(100, bottom - 60 - 150);
        QTest::newRow("just room below") << QRect(100, bottom - 150 - 24 + 1, 80, 24) << QPoint(100, bottom - 150 + 1);
        QTest::newRow("no room below") << QRect(100, bottom - 150 - 24 + 2, 80, 24)
                                       << QPoint(100, bottom - 150 - 24 + 2 - 150);
        QTest::newRow("at the right") << QRect(right - 50, 100, 80, 24) << QPoint(right - 199, 124);
        QTest::newRow("at the left") << QRect(-30, 100, 80, 24) << QPoint(0, 124);
        QTest::newRow("room nowhere") << QRect(100, 100, 80, bottom - 150) << QPoint(100, bottom - 149);
    }
    void liesBeside()
    {
        QFETCH(QRect, anchor);
        QFETCH(QPoint, expected);
        m_popup->positionPopUp(anchor);
        QCOMPARE(m_popup->geometry(), QRect(expected, QSize(200, 150)));
    }

    void takesTheKeyboardAndGivesItBack()
    {
        open();
        QSignalSpy closed(m_popup, &RyPopUpWidget::closed);
        QTest::keyClick(m_field, Qt::Key_Escape);
        QVERIFY(m_popup->isHidden());
        QCOMPARE(closed.count(), 1);
        QTRY_VERIFY(m_button->hasFocus());
    }

    void otherKeysStay()
    {
        open();
        for (Qt::Key key : {Qt::Key_A, Qt::Key_Return, Qt::Key_Down})
            QTest::keyClick(m_field, key);
        QVERIFY(m_popup->isVisible());
        QCOMPARE(m_field->text(), QStringLiteral("a"));
    }

    void goesWhenAnotherWindowIsUsed()
    {
        open();
        m_window->activateWindow();
        QTRY_VERIFY(m_popup->isHidden());
    }

    void goesAlsoWhenTheMouseRestsOnItsControl()
    {
        open();
        QCursor::setPos(m_button->mapToGlobal(QPoint(5, 5)));
        m_window->activateWindow();
        QTRY_VERIFY(m_popup->isHidden());
    }

    void aClickOnItsControlIsLeftToThat()
    {
        bool wasOpen = false;
        connect(m_button, &QAbstractButton::clicked, this, [&] { wasOpen = m_popup->isVisible(); });
        open();
        QCursor::setPos(m_button->mapToGlobal(QPoint(5, 5)));
        m_window->activateWindow();
        QTRY_VERIFY(m_button->hasFocus());
        QTest::mouseClick(m_button, Qt::LeftButton);
        QVERIFY(wasOpen);
    }

    void knowsTheMouse()
    {
        open();
        QVERIFY(!m_popup->isMouseOver());
        QCursor::setPos(m_popup->geometry().center());
        QTRY_VERIFY(m_popup->isMouseOver());
        QSignalSpy leaves(m_popup, &RyPopUpWidget::mouseLeave);
        QTest::qWait(50);
        QCursor::setPos(m_popup->geometry().bottomRight() + QPoint(30, 30));
        QTRY_COMPARE(leaves.count(), 1);
        QVERIFY(!m_popup->isMouseOver());
        QCursor::setPos(m_popup->geometry().center());
        m_popup->hide();
        QVERIFY(!m_popup->isMouseOver());
    }

private:
    void open()
    {
        m_popup->positionPopUp(QRect(m_button->mapToGlobal(QPoint(0, 0)), m_button->size()));
        m_popup->open(m_field);
        QTRY_VERIFY(m_field->hasFocus());
    }

    std::unique_ptr<QWidget> m_window;
    QPushButton *m_button = nullptr;
    RyPopUpWidget *m_popup = nullptr;
    QLineEdit *m_field = nullptr;
};

RY_TEST(RyPopUpWidgetTest)
#include "tst_RyPopUpWidget.moc"
