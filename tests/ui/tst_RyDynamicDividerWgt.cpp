#include "support/RyTest.h"

#include "rycore/ui/RyDividerBar.h"
#include "rycore/ui/RyDynamicDividerWgt.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

class LayoutRequests : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::LayoutRequest;
        return false;
    }
};

} // namespace

class RyDynamicDividerWgtTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_first = new QWidget;
        m_first->setMinimumSize(100, 0);
        auto *stack = new QVBoxLayout(m_first);
        stack->addWidget(new QLabel(QStringLiteral("first")));
        m_second = new QWidget;
        auto *layout = new QVBoxLayout(m_second);
        layout->addWidget(new QLabel(QStringLiteral("second")));
        m_divider = std::make_unique<RyDynamicDividerWgt>(m_first, m_second);
        m_divider->setResizeType(RyDynamicDividerWgt::SecondKeeps);
        m_divider->setToggleDirection(RyDynamicDividerWgt::FoldsDown);
        m_divider->setPreferredExtent(120);
        m_divider->setBarMovesEnabled(false);
        m_divider->resize(200, 400);
        m_divider->show();
        m_divider->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_divider.get()));
    }
    void cleanup() { m_divider.reset(); }

    void theSecondKeepsItsExtent()
    {
        for (int height : {400, 300, 700}) {
            m_divider->resize(200, height);
            expectHeights(height - 120 - bar()->height(), 120);
        }
        QCOMPARE(bar()->geometry().bottom() + 1, m_second->geometry().top());
        QCOMPARE(m_first->geometry().bottom() + 1, bar()->geometry().top());
        m_divider->setResizeType(RyDynamicDividerWgt::FirstKeeps);
        expectHeights(120, 700 - 120 - bar()->height());
    }

    void theExtentIsNotLessThanWhatIsNeeded()
    {
        m_divider->setPreferredExtent(1);
        expectHeights(400 - bar()->height() - m_second->minimumSizeHint().height(),
                      m_second->minimumSizeHint().height());
        // Also when that grows.
        const int before = m_second->height();
        m_second->layout()->addWidget(new QLabel(QStringLiteral("more\nand\nmore")));
        QTRY_VERIFY(m_second->height() > before);
        QCOMPARE(m_second->height(), m_second->minimumSizeHint().height());
        QCOMPARE(m_divider->minimumSizeHint().height(),
                 m_first->minimumSizeHint().height() + bar()->height() + m_second->height());
    }

    /// Nobody is asked to lay out again what lies as it should: an idle window sleeps.
    void restsWhenArranged()
    {
        m_second->layout()->addWidget(new QLabel(QStringLiteral("more")));
        QTest::qWait(50);
        LayoutRequests requests;
        m_divider->installEventFilter(&requests);
        QTest::qWait(100);
        QCOMPARE(requests.count, 0);
        m_divider->setFolded(true);
        QTRY_VERIFY(requests.count > 0);
        QTest::qWait(50);
        requests.count = 0;
        QTest::qWait(100);
        QCOMPARE(requests.count, 0);
    }

    void aClickFoldsAndUnfolds()
    {
        const int wholeMinimum = m_divider->minimumSizeHint().height();
        QTest::mouseClick(bar(), Qt::LeftButton);
        QVERIFY(m_divider->isFolded());
        QVERIFY(m_second->isHidden());
        QTRY_COMPARE(m_first->height(), 400 - bar()->height());
        QCOMPARE(bar()->geometry().bottom() + 1, 400);
        QCOMPARE(m_divider->minimumSizeHint().height(), wholeMinimum - 120);
        QTest::mouseClick(bar(), Qt::LeftButton);
        QVERIFY(m_second->isVisible());
        expectHeights(400 - 120 - bar()->height(), 120);
    }

    void keysFoldIt()
    {
        QTest::keyClick(m_divider.get(), Qt::Key_Tab);
        QVERIFY(bar()->hasFocus());
        QTest::keyClick(bar(), Qt::Key_Space);
        QVERIFY(m_divider->isFolded());
        QVERIFY(bar()->hasFocus());
        QTest::keyClick(bar(), Qt::Key_Return);
        QVERIFY(!m_divider->isFolded());
        QTest::keyClick(bar(), Qt::Key_Up);
        expectHeights(400 - 120 - bar()->height(), 120);
    }

    void saysWhatItDoes()
    {
        const QString unfolded = bar()->accessibleName();
        QVERIFY(!unfolded.isEmpty());
        QCOMPARE(bar()->toolTip(), unfolded);
        m_divider->setFolded(true);
        QVERIFY(bar()->accessibleName() != unfolded);
        QVERIFY(bar()->isChecked());
    }

    void showsTheFocusAndTheWayOfTheBar()
    {
        bar()->clearFocus();
        const QImage without = bar()->grab().toImage();
        bar()->setFocus();
        QVERIFY(bar()->grab().toImage() != without);
        bar()->clearFocus();
        QCOMPARE(bar()->grab().toImage(), without);
        bar()->setChecked(true);
        QVERIFY(bar()->grab().toImage() != without);
    }

    void theFirstFoldsUpwards()
    {
        m_divider->setToggleDirection(RyDynamicDividerWgt::FoldsUp);
        m_divider->setFolded(true);
        QVERIFY(m_first->isHidden());
        QVERIFY(m_second->isVisible());
        // What is left takes all of the room.
        QTRY_COMPARE(m_second->height(), 400 - bar()->height());
        m_divider->setToggleDirection(RyDynamicDividerWgt::FoldsDown);
        QVERIFY(m_first->isVisible());
        QVERIFY(m_second->isHidden());
    }

    void theBarIsMovedWhereThatIsAllowed()
    {
        dragBar(-50);
        expectHeights(400 - 120 - bar()->height(), 120);
        QVERIFY(!m_divider->isFolded());
        m_divider->setBarMovesEnabled(true);
        dragBar(-50);
        QVERIFY(!m_divider->isFolded());
        expectHeights(400 - 170 - bar()->height(), 170);
        QTest::keyClick(bar(), Qt::Key_Down);
        expectHeights(400 - 160 - bar()->height(), 160);
        // Neither is made smaller than it can be.
        dragBar(-1000);
        QTRY_COMPARE(m_first->height(), m_first->minimumSizeHint().height());
        dragBar(1000);
        QTRY_COMPARE(m_second->height(), m_second->minimumSizeHint().height());
        QTest::mouseClick(bar(), Qt::LeftButton);
        QVERIFY(m_divider->isFolded());
    }

private:
    RyDividerBar *bar() const { return m_divider->getDividerBar(); }
    void expectHeights(int first, int second) const
    {
        QTRY_COMPARE(m_first->height(), first);
        QTRY_COMPARE(m_second->height(), second);
    }
    void dragBar(int pixels) const
    {
        const QPoint press(50, 5);
        const QPoint start = bar()->mapToGlobal(press);
        const auto send = [&](QEvent::Type type, int y, Qt::MouseButton button, Qt::MouseButtons buttons) {
            QMouseEvent event(type, press, start + QPoint(0, y), button, buttons, Qt::NoModifier);
            QCoreApplication::sendEvent(bar(), &event);
        };
        send(QEvent::MouseButtonPress, 0, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseMove, pixels / 2, Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseMove, pixels, Qt::NoButton, Qt::LeftButton);
        // Where it may not move, the press ends elsewhere.
        const QPointF place = m_divider->isFolded() || bar()->areMovesEnabled() ? QPointF(press) : QPointF(50, -40);
        QMouseEvent release(QEvent::MouseButtonRelease, place, start + QPoint(0, pixels), Qt::LeftButton, Qt::NoButton,
                            Qt::NoModifier);
        QCoreApplication::sendEvent(bar(), &release);
    }

    std::unique_ptr<RyDynamicDividerWgt> m_divider;
    QWidget *m_first = nullptr;
    QWidget *m_second = nullptr;
};

RY_TEST(RyDynamicDividerWgtTest)
#include "tst_RyDynamicDividerWgt.moc"
