#include "host/WindowStage.h"
#include "support/RyTest.h"

#include "ryhost/window/GuideWindow.h"

#include <QAction>
#include <QTextBlock>
#include <QTextBrowser>

/// The guide in the window, and the pages to which it leads.
class GuideWindowTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        action("HelpGuide")->trigger();
        m_text = m_window->findChild<QTextBrowser *>(QStringLiteral("GuideText"));
        QVERIFY(m_text && m_text->isVisible());
    }
    void cleanup() { close(); }

    void opensOnce()
    {
        QCOMPARE(title(), QStringLiteral("Guide"));
        action("HelpGuide")->trigger();
        QCOMPARE(m_window->findChildren<GuideWindow *>().size(), 1);
    }

    void leadsToTheWalkThroughsAndBack()
    {
        QVERIFY(follow(QStringLiteral("walkthroughs.md")));
        QCOMPARE(title(), QStringLiteral("Walk-throughs"));
        QVERIFY2(m_text->toPlainText().contains(QStringLiteral("Fix a character in ten minutes")), "the page is empty");
        QVERIFY(follow(QStringLiteral("guide.md")));
        QCOMPARE(title(), QStringLiteral("Guide"));
    }

private:
    QString title() const { return m_text->document()->firstBlock().text(); }
    /// As a click on the first link to that page does; false without one.
    bool follow(const QString &page)
    {
        for (QTextBlock block = m_text->document()->begin(); block.isValid(); block = block.next()) {
            for (auto part = block.begin(); !part.atEnd(); ++part) {
                if (part.fragment().charFormat().anchorHref() != page)
                    continue;
                QTextCursor cursor(m_text->document());
                cursor.setPosition(part.fragment().position() + 1);
                m_text->setTextCursor(cursor);
                m_text->ensureCursorVisible();
                settle();
                QTest::mouseClick(m_text->viewport(), Qt::LeftButton, Qt::NoModifier,
                                  m_text->cursorRect(cursor).center() + QPoint(2, 0));
                return true;
            }
        }
        return false;
    }

    QTextBrowser *m_text = nullptr;
};

RY_TEST(GuideWindowTest)
#include "tst_GuideWindow.moc"
