#include "support/RyTest.h"

#include "rycore/ui/RyExtendedTabWidget.h"

#include <QTabBar>
#include <QWheelEvent>

class RyExtendedTabWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_tabs = std::make_unique<RyExtendedTabWidget>();
        for (const char *title : {"General", "Bulges", "Matrices"})
            m_tabs->addTab(new QWidget, QString::fromLatin1(title));
        m_tabs->setCurrentIndex(1);
    }

    void comesBackWhenEnabledAgain()
    {
        m_tabs->setTabEnabled(1, false);
        QVERIFY(m_tabs->currentIndex() != 1);
        m_tabs->setTabEnabled(1, false);
        m_tabs->setTabEnabled(2, false);
        m_tabs->setTabEnabled(2, true);
        QVERIFY(m_tabs->currentIndex() != 1);
        m_tabs->setTabEnabled(1, true);
        QCOMPARE(m_tabs->currentIndex(), 1);
    }

    void anotherOneMayBeChosenMeanwhile()
    {
        m_tabs->setTabEnabled(1, false);
        m_tabs->setCurrentIndex(m_tabs->currentIndex() == 0 ? 2 : 0);
        const int chosen = m_tabs->currentIndex();
        m_tabs->setTabEnabled(1, true);
        QCOMPARE(m_tabs->currentIndex(), chosen);
    }

    void aPageThatGoesIsForgotten()
    {
        m_tabs->setTabEnabled(1, false);
        delete m_tabs->widget(1);
        QCOMPARE(m_tabs->count(), 2);
        m_tabs->setCurrentIndex(0);
        m_tabs->setTabEnabled(1, true);
        QCOMPARE(m_tabs->currentIndex(), 0);
    }

    void theWheelPassesBy()
    {
        QWheelEvent event(QPointF(5, 5), QPointF(5, 5), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_tabs->tabBar(), &event);
        QCOMPARE(m_tabs->currentIndex(), 1);
        QVERIFY(!event.isAccepted());
    }

    void needsNoMoreWidthThanItsPages()
    {
        m_tabs->widget(0)->setMinimumWidth(120);
        for (int i = 0; i < 6; ++i)
            m_tabs->addTab(new QWidget, QStringLiteral("A tab with a long title"));
        QVERIFY(m_tabs->minimumSizeHint().width() >= 120);
        QVERIFY(m_tabs->minimumSizeHint().width() < 200);
    }

private:
    std::unique_ptr<RyExtendedTabWidget> m_tabs;
};

RY_TEST(RyExtendedTabWidgetTest)
#include "tst_RyExtendedTabWidget.moc"
