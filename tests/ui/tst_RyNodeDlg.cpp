#include "support/RyTest.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyNodeDlg.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

/// Picking nodes: figure - hip - lThigh - lShin
///                            - hat (no bone) - feather
///                      - thighRig
class RyNodeDlgTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_scene = std::make_unique<RyScene>();
        m_figure = add(new RySkeleton, nullptr, "figure");
        m_hip = add(new RyBone, m_figure, "hip");
        m_thigh = add(new RyBone, m_hip, "lThigh");
        m_thigh->setLabel(QStringLiteral("Left Upper Leg"));
        m_shin = add(new RyBone, m_thigh, "lShin");
        m_hat = add(new RyNode, m_hip, "hat");
        m_feather = add(new RyBone, m_hat, "feather");
        m_rig = add(new RyBone, m_figure, "thighRig");
    }
    void cleanup()
    {
        m_dialog.reset();
        ryUndoStack()->clearAll();
        m_scene.reset();
    }

    void showsTheTree()
    {
        make();
        QVERIFY(m_dialog->isModal());
        QCOMPARE(m_dialog->objectName(), QStringLiteral("NodeDlg"));
        QCOMPARE(shown(),
                 (QStringList{"figure", " hip", "  Left Upper Leg", "   lShin", "  hat", "   feather", " thighRig"}));
        QCOMPARE(item("Left Upper Leg")->toolTip(0), QStringLiteral("lThigh"));
        for (QTreeWidgetItemIterator walk(tree()); *walk; ++walk)
            QVERIFY((*walk)->isExpanded() || (*walk)->childCount() == 0);
        expectPick({});
        // The root may be left out, and it need not be a root of the scene.
        make("RyNode", false);
        QCOMPARE(shown(), (QStringList{"hip", " Left Upper Leg", "  lShin", " hat", "  feather", "thighRig"}));
        m_dialog = std::make_unique<RyNodeDlg>(nullptr, m_thigh, QStringLiteral("RyNode"), true, true, false);
        QCOMPARE(shown(), (QStringList{"Left Upper Leg", " lShin"}));
    }

    void filtersByClass()
    {
        make("RyBone");
        // What is no bone stands there for the bones below it, and cannot be picked.
        QCOMPARE(shown(),
                 (QStringList{"figure", " hip", "  Left Upper Leg", "   lShin", "  hat", "   feather", " thighRig"}));
        for (const char *text : {"figure", "hat"}) {
            click(text);
            expectPick({});
        }
        click("feather");
        expectPick({m_feather});
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, place("hat"));
        QVERIFY(m_dialog->isVisible());
        m_scene->removeNode(m_feather);
        QVERIFY(!shown().contains(QStringLiteral("  hat")));
        make("RySkeleton");
        QCOMPARE(shown(), QStringList{"figure"});
        make("RyCamera");
        QCOMPARE(label(), QStringLiteral("There is no node to choose."));
    }

    void aClickPicks()
    {
        make();
        click("hip");
        expectPick({m_hip});
        click("Left Upper Leg");
        expectPick({m_thigh});
        QCOMPARE(label(), QStringLiteral("Left Upper Leg (lThigh)"));
        QTest::mouseClick(button(), Qt::LeftButton);
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(m_dialog->getNode(), m_thigh);
    }

    void aDoubleClickAccepts()
    {
        make();
        click("lShin");
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, place("lShin"));
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(m_dialog->getNode(), m_shin);
    }

    void cancelPicksNothing()
    {
        make();
        click("hip");
        QTest::keyClick(search(), Qt::Key_Escape);
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        QCOMPARE(m_dialog->getNode(), nullptr);
    }

    void typingFindsAndEnterTakes()
    {
        make();
        QCOMPARE(m_dialog->focusWidget(), search());
        QTest::keyClick(search(), Qt::Key_Return);
        QVERIFY(m_dialog->isVisible());
        QTest::keyClicks(search(), QStringLiteral("THIGH"));
        QCOMPARE(shown(), (QStringList{"figure", " hip", "  Left Upper Leg", " thighRig"}));
        // What is only on the way is written faintly.
        QVERIFY(item("hip")->data(0, Qt::ForegroundRole).isValid());
        QVERIFY(!item("Left Upper Leg")->data(0, Qt::ForegroundRole).isValid());
        expectPick({m_thigh});
        QTest::keyClick(search(), Qt::Key_Down);
        expectPick({m_rig});
        QCOMPARE(m_dialog->focusWidget(), search());
        QTest::keyClick(search(), Qt::Key_Return);
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(m_dialog->getNode(), m_rig);
    }

    void searchesLabelsAndNames()
    {
        make();
        search()->setText(QStringLiteral("upper"));
        expectPick({m_thigh});
        search()->setText(QStringLiteral("lthigh "));
        expectPick({m_thigh});
        search()->setText(QStringLiteral("nobody"));
        QCOMPARE(shown(), QStringList());
        QCOMPARE(label(), QStringLiteral("No node is called so."));
        expectPick({});
        search()->setText(QStringLiteral("hi"));
        expectPick({m_hip});
        search()->clear();
        QCOMPARE(shown().size(), 7);
        expectPick({m_hip});
        m_dialog->reject();
        QCOMPARE(label(), QStringLiteral("Nothing chosen yet."));
    }

    void aWholeNameWins()
    {
        add(new RyBone, m_figure, "shin");
        make();
        search()->setText(QStringLiteral("shi"));
        expectPick({m_shin});
        search()->setText(QStringLiteral("SHIN"));
        QCOMPARE(m_dialog->getNode()->getName(), QStringLiteral("shin"));
    }

    void theSceneSelectionIsShownNotPicked()
    {
        m_hip->select(true);
        m_thigh->select(true);
        make();
        QVERIFY(item("hip")->font(0).bold());
        QVERIFY(item("Left Upper Leg")->font(0).bold());
        QVERIFY(!item("lShin")->font(0).bold());
        expectPick({});
        // The arrow keys begin at the primary selection.
        QTest::keyClick(search(), Qt::Key_Down);
        expectPick({m_shin});
    }

    void severalAtOnce()
    {
        make("RyNode", true, true, true);
        click("thighRig");
        click("hip", Qt::ControlModifier);
        expectPick({m_hip, m_rig});
        QCOMPARE(label(), QStringLiteral("2 nodes chosen"));
        // A search leaves what is picked, and more can be added.
        search()->setText(QStringLiteral("shin"));
        expectPick({m_hip, m_rig});
        click("lShin", Qt::ControlModifier);
        expectPick({m_hip, m_shin, m_rig});
        m_dialog->accept();
        QCOMPARE(m_dialog->getNode(), m_hip);
    }

    void onlyToLookAt()
    {
        make("RyNode", true, false);
        click("hip");
        search()->setText(QStringLiteral("shin"));
        expectPick({});
        QVERIFY(!button()->isVisible());
        m_dialog->accept();
        QVERIFY(m_dialog->isVisible());
    }

    void nodesMayVanish()
    {
        make();
        click("lShin");
        // Deleted outright, without anybody being told.
        m_scene->removeNode(m_thigh);
        expectPick({});
        QCOMPARE(shown(), (QStringList{"figure", " hip", "  hat", "   feather", " thighRig"}));
        // Removed, but kept alive by an undo step.
        click("feather");
        {
            RyUndoStackHold hold;
            m_scene->removeNode(m_feather);
            hold.accept(QStringLiteral("Remove"));
        }
        expectPick({});
        ryUndoStack()->undo();
        QVERIFY(shown().contains(QStringLiteral("   feather")));
        // A change elsewhere leaves the pick and the search alone.
        search()->setText(QStringLiteral("feat"));
        expectPick({m_feather});
        add(new RyBone, m_figure, "tail");
        expectPick({m_feather});
        QCOMPARE(shown(), (QStringList{"figure", " hip", "  hat", "   feather"}));
        m_scene->removeNode(m_figure);
        expectPick({});
        QCOMPARE(shown(), QStringList());
    }

    void aTreeOutsideAnySceneMayVanish()
    {
        auto *root = new RyNode;
        auto *child = new RyNode;
        root->setName(QStringLiteral("root"));
        child->setName(QStringLiteral("child"));
        root->addNodeChild(child);
        m_dialog = std::make_unique<RyNodeDlg>(nullptr, root, QStringLiteral("RyNode"), true, true, false);
        show();
        click("child");
        expectPick({child});
        delete root;
        expectPick({});
        QCOMPARE(shown(), QStringList());
    }

    void livesWithoutRoot()
    {
        m_dialog = std::make_unique<RyNodeDlg>(nullptr, nullptr, QStringLiteral("RyNode"), true, true, false);
        show();
        expectPick({});
        search()->setText(QStringLiteral("x"));
        m_dialog->accept();
        QVERIFY(m_dialog->isVisible());
    }

private:
    template<typename T>
    T *add(T *node, RyNode *parent, const char *name)
    {
        node->setName(QLatin1String(name));
        m_scene->addNode(node);
        if (parent)
            parent->addNodeChild(node);
        return node;
    }
    void make(const char *className = "RyNode", bool showRoot = true, bool allowSelection = true, bool several = false)
    {
        m_dialog =
            std::make_unique<RyNodeDlg>(nullptr, m_figure, QLatin1String(className), showRoot, allowSelection, several);
        show();
    }
    void show()
    {
        m_dialog->show();
        m_dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get())); // which may move the focus
    }
    QLineEdit *search() const { return m_dialog->findChild<QLineEdit *>(QStringLiteral("NodeDlgSearchLEdit")); }
    QTreeWidget *tree() const { return m_dialog->findChild<QTreeWidget *>(QStringLiteral("NodeDlgTree")); }
    QString label() const { return m_dialog->findChild<QLabel *>(QStringLiteral("NodeDlgPickLbl"))->text(); }
    QPushButton *button() const { return m_dialog->findChild<QPushButton *>(QStringLiteral("BasicDialogOkBtn")); }
    QTreeWidgetItem *item(const char *text) const
    {
        return tree()->findItems(QLatin1String(text), Qt::MatchExactly | Qt::MatchRecursive).value(0);
    }
    QPoint place(const char *text) const { return tree()->visualItemRect(item(text)).center(); }
    void click(const char *text, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, modifiers, place(text));
    }
    /// The visible items, each after a blank for every level.
    QStringList shown() const
    {
        QStringList texts;
        for (QTreeWidgetItemIterator walk(tree(), QTreeWidgetItemIterator::NotHidden); *walk; ++walk) {
            QString text = (*walk)->text(0);
            for (QTreeWidgetItem *parent = (*walk)->parent(); parent; parent = parent->parent())
                text.prepend(' ');
            texts.append(text);
        }
        return texts;
    }
    void expectPick(const std::vector<RyNode *> &nodes)
    {
        QCOMPARE(m_dialog->getNodes().size(), nodes.size());
        QVERIFY(m_dialog->getNodes() == nodes);
        QCOMPARE(m_dialog->getNode(), nodes.empty() ? nullptr : nodes.front());
        QCOMPARE(m_dialog->isAcceptEnabled(), !nodes.empty());
    }

    std::unique_ptr<RyScene> m_scene;
    std::unique_ptr<RyNodeDlg> m_dialog;
    RyNode *m_figure = nullptr;
    RyNode *m_hip = nullptr;
    RyNode *m_thigh = nullptr;
    RyNode *m_shin = nullptr;
    RyNode *m_hat = nullptr;
    RyNode *m_feather = nullptr;
    RyNode *m_rig = nullptr;
};

RY_TEST(RyNodeDlgTest)
#include "tst_RyNodeDlg.moc"
