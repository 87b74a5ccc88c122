#include "RyGroupedScene.h"
#include "support/RyTest.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/pane/RyBoneFaceGroupSelectionDropDown.h"
#include "rycore/ui/RyPopUpButton.h"
#include "rycore/ui/RyPopUpWidget.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QComboBox>
#include <QHeaderView>
#include <QStyleOptionComboBox>
#include <QTreeView>
#include <QVBoxLayout>

class RyBoneFaceGroupSelectionDropDownTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_scene = std::make_unique<RyGroupedScene>();
        m_scene->select(m_scene->lThigh);
        m_window = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(m_window.get());
        m_button = new RyBoneFaceGroupSelectionDropDown(m_window.get());
        layout->addWidget(m_button);
        m_window->setGeometry(300, 300, 240, 60);
        QCursor::setPos(m_window->mapToGlobal(QPoint(120, 30)));
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup()
    {
        m_window.reset();
        m_scene.reset();
    }

    void showsTheGroup_data()
    {
        QTest::addColumn<QString>("primary");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("paired") << "hip"
                                << "Pelvis" << true;
        QTest::newRow("not paired") << "lFoot"
                                    << "None" << true;
        QTest::newRow("figure") << "figure"
                                << "figure" << false;
        QTest::newRow("prop") << "prop"
                              << "prop" << false;
        QTest::newRow("nothing") << ""
                                 << "None" << false;
    }
    void showsTheGroup()
    {
        QFETCH(QString, primary);
        RyNode *node = ryScene()->findNode(primary);
        ryScene()->setSelection(node ? std::vector<RyNode *>{node} : std::vector<RyNode *>());
        QTEST(m_button->text(), "text");
        QTEST(m_button->toolTip(), "text");
        QTEST(m_button->isEnabled(), "enabled");
    }

    void showsTheNameWithoutAMap()
    {
        m_scene->figure->setSelectionMap(nullptr);
        QCOMPARE(m_button->text(), QStringLiteral("lThigh"));
        QVERIFY(m_button->isEnabled());
        m_scene->figure->setSelectionMap(new RySelectionMap);
        QCOMPARE(m_button->text(), QStringLiteral("None"));
        m_scene->figure->getSelectionMap()->addPair(QStringLiteral("Pelvis"), m_scene->lThigh, true);
        QCOMPARE(m_button->text(), QStringLiteral("Pelvis"));
        ryScene()->removeNode(m_scene->lThigh);
        QCOMPARE(m_button->text(), QStringLiteral("None"));
    }

    void isNotRefreshedWhileHidden()
    {
        m_window->hide();
        m_scene->select(m_scene->hip);
        QCOMPARE(m_button->text(), QStringLiteral("lThigh"));
        m_window->show();
        QCOMPARE(m_button->text(), QStringLiteral("Pelvis"));
    }

    void keepsTheKeyboardOverARefresh()
    {
        m_button->setFocus();
        m_scene->select(m_scene->hip);
        QVERIFY(m_button->hasFocus());
    }

    void looks()
    {
        QCOMPARE(m_button->height(), RyStandardMetrics::DropDownHeight);
        open();
        QCOMPARE(popup()->objectName(), QStringLiteral("SceneSelectionPopUpWgt"));
        QCOMPARE(popup()->pos(), m_button->mapToGlobal(QPoint(0, m_button->height())));
        QCOMPARE(popup()->size(), QSize(RyStandardMetrics::PopUpWidth, RyStandardMetrics::PopUpHeight));
        QVERIFY(!view()->isHeaderHidden());
        QVERIFY(!view()->rootIsDecorated());
        QVERIFY(!view()->selectionModel()->hasSelection());
        QCOMPARE(view()->currentIndex().row(), 2);
        auto *layout = qobject_cast<QVBoxLayout *>(popup()->layout());
        QCOMPARE(layout->spacing(), RyStandardMetrics::Spacing);
        QCOMPARE(layout->contentsMargins().left(), RyStandardMetrics::Spacing);
        QCOMPARE(layout->stretch(0), 100);
        QTest::mouseClick(m_button, Qt::LeftButton);
        QVERIFY(!popup());
        m_window->resize(400, 60);
        QTRY_VERIFY(m_button->width() > RyStandardMetrics::PopUpWidth);
        open();
        QCOMPARE(popup()->width(), m_button->width());
    }

    void aCheckIsOneStep_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("byKey");
        QTest::addColumn<QString>("group");
        for (bool byKey : {false, true}) {
            const char *way = byKey ? "key" : "mouse";
            QTest::addRow("none, by %s", way) << 0 << byKey << "";
            QTest::addRow("of another bone, by %s", way) << 1 << byKey << "Pelvis";
            QTest::addRow("free, by %s", way) << 3 << byKey << "free patch";
        }
    }
    void aCheckIsOneStep()
    {
        QFETCH(int, row);
        QFETCH(bool, byKey);
        QFETCH(QString, group);
        open();
        const QString before = m_scene->dump();
        if (byKey)
            checkByKey(row);
        else
            QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier, checkBox(row));
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), group);
        QCOMPARE(m_button->text(), group.isEmpty() ? QStringLiteral("None") : group);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Selection Group"));
        QVERIFY(popup());
        checkLastStep(before);
        ryUndoStack()->undo();
        QCOMPARE(m_button->text(), QStringLiteral("lThigh"));
        QCOMPARE(view()->model()->index(2, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    }

    void theFirstCheckMakesTheMapInItsStep()
    {
        m_scene->figure->setSelectionMap(nullptr);
        ryUndoStack()->clearAll();
        open();
        const QString before = m_scene->dump();
        checkByKey(3);
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QStringLiteral("free patch"));
        QCOMPARE(ryUndoStack()->count(), 1);
        checkLastStep(before);
        ryUndoStack()->undo();
        QVERIFY(!m_scene->figure->getSelectionMap());
        QCOMPARE(m_button->text(), QStringLiteral("lThigh"));
    }

    void whatIsCheckedStaysSo()
    {
        open();
        QSignalSpy holds(ryUndoStack(), &RyUndoStack::aboutToChange);
        QTest::keyClick(view(), Qt::Key_Space);
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier, checkBox(2));
        QTest::mouseMove(view()->viewport(), checkBox(1));
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QStringLiteral("lThigh"));
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(holds.count(), 0);
        // A click beside the box only goes there; from there the space bar checks, in whatever column.
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          view()->visualRect(view()->model()->index(1, 1)).center());
        QCOMPARE(ryUndoStack()->count(), 0);
        QTest::keyClick(view(), Qt::Key_Space);
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QStringLiteral("Pelvis"));
        QCOMPARE(ryUndoStack()->count(), 1);
    }

    void clicksElsewhereDisturbNobody()
    {
        open();
        QSignalSpy holds(ryUndoStack(), &RyUndoStack::aboutToChange);
        const QRect group = view()->visualRect(view()->model()->index(1, 0));
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier, group.center());
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          view()->visualRect(view()->model()->index(3, 1)).center());
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(view()->columnWidth(0) + checkBox(3).x(), checkBox(3).y()));
        QTest::mouseClick(view()->viewport(), Qt::RightButton, Qt::NoModifier, checkBox(1));
        QTest::keyClick(view(), Qt::Key_A);
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QStringLiteral("lThigh"));
        QCOMPARE(holds.count(), 0);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    /// "None" is shown as checked, and checking it is all that can be done about the pair.
    void aGroupThatTheMeshHasNot_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("mouse") << false;
        QTest::newRow("key") << true;
    }
    void aGroupThatTheMeshHasNot()
    {
        QFETCH(bool, byKey);
        m_scene->map->addPair(QStringLiteral("gone"), m_scene->rThigh, true);
        m_scene->select(m_scene->rThigh);
        open();
        QCOMPARE(view()->model()->index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QCOMPARE(m_button->text(), QStringLiteral("gone"));
        const QString before = m_scene->dump();
        for (int turn = 0; turn < 2; ++turn) { // the second time there is nothing left
            if (byKey)
                QTest::keyClick(view(), Qt::Key_Space);
            else
                QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier, checkBox(0));
            QCOMPARE(m_scene->groupOf(m_scene->rThigh), QString());
            QCOMPARE(m_button->text(), QStringLiteral("None"));
            QCOMPARE(ryUndoStack()->count(), 1);
        }
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Selection Group"));
        checkLastStep(before);
    }

    void theOpenListFollowsThePrimaryBone()
    {
        open();
        m_scene->select(m_scene->hip);
        QVERIFY(popup());
        QCOMPARE(view()->currentIndex().row(), 1);
        QCOMPARE(view()->model()->index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QVERIFY(!view()->selectionModel()->hasSelection());
        checkByKey(3);
        QCOMPARE(m_scene->groupOf(m_scene->hip), QStringLiteral("free patch"));
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QStringLiteral("lThigh"));
        QCOMPARE(m_button->text(), QStringLiteral("free patch"));
    }

    void aLongListShowsTheCurrentRow()
    {
        auto *mesh = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(m_scene->figure))->getFacetMesh();
        for (int i = mesh->getNumFaceGroups(); i < 100; ++i)
            mesh->createFaceGroup(QStringLiteral("group %1").arg(i));
        m_scene->map->addPair(QStringLiteral("group 89"), m_scene->lThigh, true);
        m_scene->map->addPair(QStringLiteral("group 40"), m_scene->rThigh, true);
        const auto shows = [this](int row) {
            const QRect place = view()->visualRect(view()->model()->index(row, 0));
            return view()->currentIndex().row() == row && place.isValid() && view()->viewport()->rect().contains(place);
        };
        open();
        QCOMPARE(view()->model()->rowCount(), 101);
        QTRY_VERIFY(shows(90));
        m_scene->select(m_scene->rThigh);
        QTRY_VERIFY(shows(41));
    }

    /// A name that has no room is cut in the middle, left of an arrow as that of a combo box.
    void arrowAndElision()
    {
        const auto picture = [](QWidget &widget) {
            return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
        };
        QComboBox combo;
        combo.addItem(m_button->text());
        const QSize size(180, RyStandardMetrics::DropDownHeight);
        combo.resize(size);
        m_button->clearFocus();
        m_button->parentWidget()->layout()->setEnabled(false);
        m_button->setGeometry(10, 10, size.width(), size.height());
        QCursor::setPos(0, 0);
        QTRY_VERIFY(!m_button->underMouse());
        combo.setAttribute(Qt::WA_DontShowOnScreen);
        combo.show();
        combo.clearFocus();
        QCOMPARE(picture(*m_button), picture(combo));
        const QString longName(QStringLiteral("a name that is longer than the room beside the arrow: left thigh"));
        QVERIFY(m_button->fontMetrics().horizontalAdvance(longName) > size.width());
        m_scene->map->addPair(longName, m_scene->lThigh, true);
        QCOMPARE(m_button->text(), longName);
        QStyleOptionComboBox option;
        option.initFrom(m_button);
        const int room = m_button->style()
                             ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, m_button)
                             .width();
        combo.setItemText(0, m_button->fontMetrics().elidedText(longName, Qt::ElideMiddle, room - 2));
        QVERIFY(combo.currentText() != longName);
        QCOMPARE(picture(*m_button), picture(combo));
        QCOMPARE(m_button->sizeHint().width(), m_button->minimumSizeHint().width());
    }

    void opensByKeyAndClosesByEscape()
    {
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Down}) {
            m_button->setFocus();
            QTest::keyClick(m_button, key);
            QVERIFY(popup());
            QTRY_VERIFY(view()->hasFocus());
            QTest::keyClick(view(), Qt::Key_Escape);
            QVERIFY(!popup());
            QTRY_VERIFY(m_button->hasFocus());
        }
        open();
        QTest::keyClick(m_button, Qt::Key_Escape);
        QVERIFY(!popup());
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void goesWithTheMouse()
    {
        open();
        // From the button to the list and about in it.
        leaveTo(popup()->geometry().center());
        QVERIFY(popup());
        emit popup()->mouseLeave();
        QVERIFY(popup());
        QCursor::setPos(m_button->mapToGlobal(QPoint(5, 5)));
        emit popup()->mouseLeave();
        QVERIFY(popup());
        leaveTo(popup()->geometry().bottomRight() + QPoint(40, 40));
        QVERIFY(!popup());
        open();
        QCursor::setPos(popup()->geometry().bottomRight() + QPoint(40, 40));
        emit popup()->mouseLeave();
        QVERIFY(!popup());
    }

    void goesWithItsButton()
    {
        open();
        m_scene->select(m_scene->prop);
        QVERIFY(!popup());
        m_scene->select(m_scene->hip);
        open();
        QPointer<RyPopUpWidget> shown = popup();
        m_button->hidePopup();
        QVERIFY(shown->isHidden());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!shown);
    }

    void slotsAreFoundByName()
    {
        const QMetaObject *meta = m_button->metaObject();
        // Those of a push button are not meant.
        for (const char *slot : {"showPopup()", "hidePopup()"})
            QVERIFY2(meta->indexOfSlot(slot) >= RyPopUpButton::staticMetaObject.methodOffset(), slot);
        for (const char *slot : {"updateText()", "mouseLeave()"})
            QVERIFY2(meta->indexOfSlot(slot) >= meta->methodOffset(), slot);
    }

private:
    void open()
    {
        QVERIFY(!popup());
        QCursor::setPos(m_button->mapToGlobal(QPoint(5, 5)));
        QTest::mouseClick(m_button, Qt::LeftButton);
        QVERIFY(popup());
        QTRY_VERIFY(view()->hasFocus());
    }
    void leaveTo(const QPoint &place)
    {
        QCursor::setPos(place);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(m_button, &leave);
    }
    /// The one that is open.
    RyPopUpWidget *popup() const
    {
        for (auto *child : m_button->findChildren<RyPopUpWidget *>()) {
            if (child->isVisible())
                return child;
        }
        return nullptr;
    }
    QTreeView *view() const
    {
        return popup()->findChild<QTreeView *>(QStringLiteral("BoneFaceGroupSelectionDropDownListView"));
    }
    QPoint checkBox(int row) const
    {
        const QModelIndex index = view()->model()->index(row, 0);
        QStyleOptionViewItem option;
        option.initFrom(view());
        option.rect = view()->visualRect(index);
        option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
        option.text = index.data().toString();
        return view()->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view()).center();
    }
    void checkByKey(int row) const
    {
        QTest::keyClick(view(), Qt::Key_Home);
        for (int i = 0; i < row; ++i)
            QTest::keyClick(view(), Qt::Key_Down);
        QCOMPARE(ryUndoStack()->count(), 0);
        QTest::keyClick(view(), Qt::Key_Space);
    }

    std::unique_ptr<RyGroupedScene> m_scene;
    std::unique_ptr<QWidget> m_window;
    RyBoneFaceGroupSelectionDropDown *m_button = nullptr;
};

RY_TEST(RyBoneFaceGroupSelectionDropDownTest)
#include "tst_RyBoneFaceGroupSelectionDropDown.moc"
