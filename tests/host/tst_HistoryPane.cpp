#include "host/WindowStage.h"
#include "support/RyTest.h"
#include "support/ToyAction.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/timeText.h"
#include "ryhost/panes/HistoryModel.h"
#include "ryhost/panes/HistoryPane.h"
#include "ryhost/panes/UnsavedButton.h"

#include <QAbstractItemModelTester>
#include <QDockWidget>
#include <QLabel>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTreeView>

/// The list of undo steps, the star's tip, and what both say of the saved state.
class HistoryPaneTest : public QObject, private WindowStage
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(open());
        QVERIFY(!dock()->isVisible());
        dock()->toggleViewAction()->trigger();
        settle();
        QVERIFY2(!list()->viewport()->visibleRegion().isEmpty(), "it stands behind another pane");
    }
    void cleanup() { close(); }

    void aClickGoesThere()
    {
        QStringList states{dump()};
        for (int i = 1; i <= 4; ++i) {
            bend(float(10 * i));
            states.append(dump());
        }
        QCOMPARE(list()->model()->rowCount(), 5);
        QCOMPARE(text(0), QStringLiteral("Beginning"));
        QCOMPARE(text(2), QStringLiteral("Bend to 20"));
        for (int row : {1, 4, 0, 3, 3}) {
            click(row);
            QCOMPARE(ryUndoStack()->index(), row);
            QCOMPARE(dump(), states[row]);
            checkPresent(row);
        }
        QCOMPARE(ryUndoStack()->count(), 4);
    }

    void keysGoThere()
    {
        for (int i = 1; i <= 4; ++i)
            bend(float(10 * i));
        list()->setFocus();
        const std::pair<Qt::Key, int> keys[] = {
            {Qt::Key_Up, 3}, {Qt::Key_Up, 2}, {Qt::Key_Down, 3}, {Qt::Key_Home, 0}, {Qt::Key_End, 4}};
        for (const auto &[key, row] : keys) {
            QTest::keyClick(list(), key);
            QCOMPARE(ryUndoStack()->index(), row);
            QCOMPARE(forearm()->getZRotControl()->getValue(), float(10 * row));
            checkPresent(row);
        }
        // Undo from elsewhere moves the list along, and the list moves nothing.
        ryUndoStack()->undo();
        checkPresent(3);
        QCOMPARE(ryUndoStack()->index(), 3);
    }

    void rowsFollowTheStack()
    {
        QAbstractItemModelTester tester(list()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (int i = 1; i <= 3; ++i)
            bend(float(10 * i));
        ryUndoStack()->undo();
        ryUndoStack()->undo();
        bend(77);
        QCOMPARE(list()->model()->rowCount(), 3);
        QCOMPARE(text(2), QStringLiteral("Bend to 77"));
        checkPresent(2);
        const QString before = dump();
        ryUndoStack()->clearAll();
        QCOMPARE(list()->model()->rowCount(), 1);
        QCOMPARE(dump(), before);
    }

    /// A history that went and came back has other rows, and showing them goes nowhere.
    void anotherHistory()
    {
        bend(10);
        bend(20);
        ToyAction command(QStringLiteral("Hide"), [this] {
            ryUndoStack()->clearAll();
            forearm()->setHidden(true);
        });
        command.trigger();
        bend(30);
        bend(40);
        const QString after = dump();
        QCOMPARE(list()->model()->rowCount(), 3);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(text(2), QStringLiteral("Bend to 20"));
        QCOMPARE(ryUndoStack()->index(), 2);
        QCOMPARE(forearm()->getZRotControl()->getValue(), 20.0f);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(text(2), QStringLiteral("Bend to 40"));
        QCOMPARE(dump(), after);
    }

    void whileSomethingIsDragged()
    {
        bend(10);
        bend(20);
        {
            RyUndoStackHold hold;
            forearm()->getZRotControl()->setValue(33);
            click(0);
            QCOMPARE(forearm()->getZRotControl()->getValue(), 33.0f);
            QCOMPARE(m_window->statusBar()->currentMessage(),
                     QStringLiteral("Finish what the mouse is dragging first."));
            settle();
            checkPresent(2);
        }
        checkPresent(2);
    }

    /// A long history costs nobody anything who does not look at it, and a way through it is one change.
    void nothingIsListedUnseen()
    {
        bend(10);
        dock()->close();
        QSignalSpy listed(list()->model(), &QAbstractItemModel::dataChanged);
        QSignalSpy inserted(list()->model(), &QAbstractItemModel::rowsInserted);
        for (int i = 2; i <= 30; ++i)
            bend(float(i * 3));
        ryUndoStack()->undo();
        QCOMPARE(listed.size(), 0);
        QCOMPARE(inserted.size(), 0);
        dock()->toggleViewAction()->trigger();
        settle();
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(list()->model()->rowCount(), 31);
        QCOMPARE(state().left(9), QStringLiteral("29 edits "));
        checkPresent(29);
        listed.clear();
        click(3);
        QCOMPARE(ryUndoStack()->index(), 3);
        QCOMPARE(listed.size(), 1);
        QCOMPARE(inserted.size(), 1);
        checkPresent(3);
    }

    void theSavedStateIsMarked()
    {
        QVERIFY(time(0).startsWith(QStringLiteral("as opened ")));
        QCOMPARE(state(), QStringLiteral("Nothing has changed since the opening at %1.").arg(savedTime()));
        bend(10);
        QVERIFY(time(0).startsWith(QStringLiteral("as opened ")));
        QCOMPARE(state(), QStringLiteral("1 edit since the opening at %1: Bend to 10.").arg(savedTime()));
        QVERIFY(files()->savePath(file(QStringLiteral("hero.glb"))));
        QCOMPARE(time(0), QString());
        QCOMPARE(time(1), QStringLiteral("saved ") + savedTime());
        QCOMPARE(spoken(1), QStringLiteral("Bend to 10, the present state, saved"));
        bend(20);
        bend(20.5);
        bend(30);
        QCOMPARE(state(),
                 QStringLiteral("3 edits since the save of %1: Bend to 20 (2 times), Bend to 30.").arg(savedTime()));
        ryUndoStack()->undo();
        QCOMPARE(spoken(4), QStringLiteral("Bend to 30, undone"));
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        QCOMPARE(state(), QStringLiteral("1 edit taken back since the save of %1: Bend to 10.").arg(savedTime()));
        bend(50);
        QCOMPARE(
            state(),
            QStringLiteral("1 edit since the save of %1: Bend to 50. No undo step leads back to it.").arg(savedTime()));
        // A save of what is saved already is one too: a script may have changed the file.
        QVERIFY(files()->savePath(file(QStringLiteral("hero.glb"))));
        QVERIFY(files()->savePath(file(QStringLiteral("other.glb"))));
        QCOMPARE(state(), QStringLiteral("Nothing has changed since the save of %1.").arg(savedTime()));
        forearm()->setHidden(true);
        QCOMPARE(state(), QStringLiteral("Changed since the save of %1 by what leaves no undo step.").arg(savedTime()));
    }

    void manyStepsAreCutShort()
    {
        for (int i = 1; i <= 8; ++i)
            bend(float(10 * i));
        QCOMPARE(state(), QStringLiteral("8 edits since the opening at %1: 3 earlier, Bend to 40, Bend to 50, Bend to "
                                         "60, Bend to 70, Bend to 80.")
                              .arg(savedTime()));
    }

    void theStarHasATip()
    {
        auto *star = m_window->findChild<UnsavedButton *>(QStringLiteral("UnsavedStatus"));
        QVERIFY(star && !star->isVisible());
        bend(10);
        bend(20);
        QVERIFY(star->isVisible());
        QCOMPARE(star->text(), QStringLiteral("* 2 edits"));
        const QString changes =
            QStringLiteral("2 edits since the opening at %1: Bend to 10, Bend to 20.").arg(savedTime());
        QCOMPARE(star->toolTip(), changes + QStringLiteral("\nClick to see the history."));
        QCOMPARE(star->accessibleDescription(), changes);
        dock()->close();
        QTest::mouseClick(star, Qt::LeftButton);
        QVERIFY(dock()->isVisible());
        QVERIFY(list()->hasFocus());
        QVERIFY(files()->savePath(file(QStringLiteral("hero.glb"))));
        QVERIFY(!star->isVisible());
        ryUndoStack()->undo();
        QCOMPARE(star->text(), QStringLiteral("* 1 edit taken back"));
        ryUndoStack()->redo();
        forearm()->setHidden(true);
        QCOMPARE(star->text(), QStringLiteral("* changed"));
    }

    /// An old time says its day.
    void times()
    {
        QLocale::setDefault(QLocale::c());
        const QDateTime today(QDate::currentDate(), QTime(14, 5, 33));
        QCOMPARE(timeTextOf(today), QStringLiteral("14:05"));
        const QDateTime before = today.addDays(-3);
        QCOMPARE(timeTextOf(before),
                 QLocale().toString(before.date(), QLocale::ShortFormat) + QStringLiteral(", 14:05"));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(timeTextOf(today), QStringLiteral("2:05 PM"));
        QLocale::setDefault(QLocale::system());
    }

private:
    HostFiles *files() const { return m_window->files(); }
    QDockWidget *dock() const { return m_window->findChild<QDockWidget *>(QStringLiteral("HistoryDock")); }
    QTreeView *list() const { return m_window->findChild<QTreeView *>(QStringLiteral("HistoryList")); }
    QString state() const { return m_window->findChild<QLabel *>(QStringLiteral("HistoryState"))->text(); }
    QString savedTime() const { return timeTextOf(files()->file().savedState().time); }
    QModelIndex at(int row, int column) const { return list()->model()->index(row, column); }
    QString text(int row) const { return at(row, HistoryModel::StepColumn).data().toString(); }
    QString time(int row) const { return at(row, HistoryModel::TimeColumn).data().toString(); }
    QString spoken(int row) const { return at(row, HistoryModel::StepColumn).data(Qt::AccessibleTextRole).toString(); }
    void click(int row) const
    {
        list()->scrollTo(at(row, HistoryModel::StepColumn));
        const QPoint place = list()->visualRect(at(row, HistoryModel::StepColumn)).center();
        QVERIFY(list()->viewport()->rect().contains(place));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }
    QString dump() const { return rySceneDump(*m_scene); }
    void bend(float degrees)
    {
        RyUndoStackHold hold;
        forearm()->getZRotControl()->setValue(degrees);
        hold.accept(QStringLiteral("Bend to %1").arg(int(degrees)));
    }
    /// The list stands on that row and shows it as the present one, and those behind it as undone.
    void checkPresent(int present)
    {
        QCOMPARE(list()->currentIndex().row(), present);
        QCOMPARE(list()->selectionModel()->selectedRows().value(0).row(), present);
        const QBrush pale = QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        for (int row = 0; row < list()->model()->rowCount(); ++row) {
            const QModelIndex index = at(row, HistoryModel::StepColumn);
            QCOMPARE(index.data(Qt::FontRole).value<QFont>().bold(), row == present);
            QCOMPARE(index.data(Qt::ForegroundRole).value<QBrush>() == pale, row > present);
        }
    }
};

RY_TEST(HistoryPaneTest)
#include "tst_HistoryPane.moc"
