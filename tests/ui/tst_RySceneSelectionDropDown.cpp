#include "support/RyTest.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyNodeListFilter.h"
#include "rycore/ui/RyNodeTreeWgt.h"
#include "rycore/ui/RyPopUpWidget.h"
#include "rycore/ui/RySceneSelectionDropDown.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStack.h"

#include <QLabel>
#include <QLineEdit>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

namespace {

/// Bones only; counts how often it was asked to look at the scene.
class BoneFilter : public RyNodeListFilter
{
public:
    explicit BoneFilter(int *refreshes) : m_refreshes(refreshes) {}
    void refresh() override { ++*m_refreshes; }
    bool accept(RyNode *node) override { return qobject_cast<RyBone *>(node) != nullptr; }

private:
    int *m_refreshes;
};

} // namespace

/// figure - hip - lThigh - lShin, and beside it a prop with a bone below
class RySceneSelectionDropDownTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_figure = add(new RySkeleton, nullptr, "figure");
        m_hip = add(new RyBone, m_figure, "hip");
        m_thigh = add(new RyBone, m_hip, "lThigh");
        m_thigh->setLabel(QStringLiteral("Left Upper Leg"));
        m_shin = add(new RyBone, m_thigh, "lShin");
        m_prop = add(new RyNode, nullptr, "hat & feather");
        m_nail = add(new RyBone, m_prop, "nail");
        ryScene()->setSelection({m_hip});
        make(nullptr);
    }
    void cleanup()
    {
        m_window.reset();
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void followsTheScene()
    {
        QCOMPARE(m_button->height(), RyStandardMetrics::DropDownHeight);
        QCOMPARE(m_button->accessibleName(), QStringLiteral("Node"));
        QCOMPARE(text(), QStringLiteral("hip"));
        ryScene()->setSelection({m_hip, m_thigh});
        QCOMPARE(text(), QStringLiteral("Left Upper Leg"));
        m_thigh->setLabel(QStringLiteral("Thigh"));
        QCOMPARE(text(), QStringLiteral("Thigh"));
        ryScene()->setSelection({m_shin});
        m_shin->setName(QStringLiteral("lCalf"));
        QCOMPARE(text(), QStringLiteral("lCalf"));
        m_thigh->setLabel(QStringLiteral("Left Upper Leg"));
        QCOMPARE(text(), QStringLiteral("lCalf"));
        ryScene()->removeNode(m_thigh);
        QCOMPARE(text(), QStringLiteral("None"));
        ryScene()->setSelection({m_prop});
        QCOMPARE(text(), QStringLiteral("hat & feather"));
        QCOMPARE(m_button->accessibleDescription(), QStringLiteral("hat & feather"));
    }

    void aClickOpensTheTree()
    {
        open();
        QCOMPARE(shown(), (QStringList{"figure", " hip*", "  Left Upper Leg", "   lShin", "hat & feather", " nail"}));
        QCOMPARE(popup()->width(), RyStandardMetrics::PopUpWidth);
        QCOMPARE(popup()->height(), RyStandardMetrics::PopUpHeight);
        QCOMPARE(popup()->pos(), m_button->mapToGlobal(QPoint(0, m_button->height())));
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, place("lShin"));
        QVERIFY(!popup());
        expectSelection({m_shin});
        QCOMPARE(ryUndoStack()->count(), 0);
        QTRY_VERIFY(m_button->hasFocus());
    }

    void choosesOneNodeAlone()
    {
        ryScene()->setSelection({m_prop, m_hip});
        open();
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, place("hip"));
        expectSelection({m_hip});
    }

    void aSecondClickCloses()
    {
        open();
        QTest::mouseClick(m_button, Qt::LeftButton);
        QVERIFY(!popup());
        expectSelection({m_hip});
    }

    void walksByKeyWhileClosed()
    {
        m_button->setFocus();
        QTest::keyClick(m_button, Qt::Key_Down);
        expectSelection({m_thigh});
        QTest::keyClick(m_button, Qt::Key_Up);
        QTest::keyClick(m_button, Qt::Key_Up);
        expectSelection({m_figure});
        QTest::keyClick(m_button, Qt::Key_Up);
        expectSelection({m_figure});
        ryScene()->setSelection({});
        QTest::keyClick(m_button, Qt::Key_Down);
        expectSelection({m_figure});
        QVERIFY(!popup());
    }

    void opensByKey_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("space") << int(Qt::Key_Space) << 0;
        QTest::newRow("return") << int(Qt::Key_Return) << 0;
        QTest::newRow("Alt+Down") << int(Qt::Key_Down) << int(Qt::AltModifier);
    }
    void opensByKey()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        m_button->setFocus();
        QTest::keyClick(m_button, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QVERIFY(popup());
        QTRY_VERIFY(search()->hasFocus());
        for (Qt::Key down : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up})
            QTest::keyClick(search(), down);
        expectSelection({m_hip});
        QTest::keyClick(search(), Qt::Key_Return);
        QVERIFY(!popup());
        expectSelection({m_thigh});
    }

    void escapeLeavesTheSelection()
    {
        open();
        QTest::keyClick(search(), Qt::Key_Down);
        QTest::keyClick(search(), Qt::Key_Escape);
        QVERIFY(!popup());
        expectSelection({m_hip});
        open();
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_Down);
        QTest::keyClick(tree(), Qt::Key_Escape);
        QVERIFY(!popup());
        expectSelection({m_hip});
    }

    void findsByText()
    {
        open();
        QTest::keyClicks(search(), QStringLiteral("upper"));
        QCOMPARE(shown(), (QStringList{"figure", " hip", "  Left Upper Leg*"}));
        QTest::keyClick(search(), Qt::Key_Return);
        expectSelection({m_thigh});
        // Without a hit there is nothing to choose.
        open();
        QTest::keyClicks(search(), QStringLiteral("nobody"));
        QTest::keyClick(search(), Qt::Key_Return);
        QVERIFY(popup());
        expectSelection({m_thigh});
    }

    void followsTheSceneWhileOpen()
    {
        open();
        m_hip->setLabel(QStringLiteral("Pelvis"));
        QCOMPARE(shown()[1], QStringLiteral(" Pelvis*"));
        m_shin->setName(QStringLiteral("lCalf"));
        QCOMPARE(shown(),
                 (QStringList{"figure", " Pelvis*", "  Left Upper Leg", "   lCalf", "hat & feather", " nail"}));
        ryScene()->removeNode(m_thigh);
        add(new RyBone, m_hip, "rThigh");
        QCOMPARE(shown(), (QStringList{"figure", " Pelvis*", "  rThigh", "hat & feather", " nail"}));
        ryScene()->setSelection({m_nail});
        QCOMPARE(shown(), (QStringList{"figure", " Pelvis", "  rThigh", "hat & feather", " nail*"}));
    }

    void offersWhatTheFilterAccepts()
    {
        int refreshes = 0;
        make(std::make_unique<BoneFilter>(&refreshes));
        QCOMPARE(m_button->offeredNodes(), (std::vector<RyNode *>{m_hip, m_thigh, m_shin, m_nail}));
        QCOMPARE(refreshes, 1);
        open();
        QCOMPARE(refreshes, 2);
        // What is no bone stands there for the bones below it, and cannot be chosen.
        QCOMPARE(shown(), (QStringList{"figure", " hip*", "  Left Upper Leg", "   lShin", "hat & feather", " nail"}));
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, Qt::NoModifier, place("hat & feather"));
        QVERIFY(popup());
        expectSelection({m_hip});
        QTest::keyClick(search(), Qt::Key_Escape);
        // Keys walk over it.
        ryScene()->setSelection({m_shin});
        QTest::keyClick(m_button, Qt::Key_Down);
        expectSelection({m_nail});
        ryScene()->removeNode(m_nail);
        open();
        QCOMPARE(shown(), (QStringList{"figure", " hip", "  Left Upper Leg", "   lShin"}));
    }

    void goesWithItsButton()
    {
        open();
        m_window->hide();
        QVERIFY(!popup());
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        open();
        m_button->setEnabled(false);
        QVERIFY(!popup());
    }

private:
    template<typename T>
    T *add(T *node, RyNode *parent, const char *name)
    {
        node->setName(QLatin1String(name));
        ryScene()->addNode(node);
        if (parent)
            parent->addNodeChild(node);
        return node;
    }
    void make(std::unique_ptr<RyNodeListFilter> filter)
    {
        m_window = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(m_window.get());
        auto *label = new QLabel(QStringLiteral("Node :"));
        m_button = new RySceneSelectionDropDown(std::move(filter));
        label->setBuddy(m_button);
        layout->addWidget(label);
        layout->addWidget(m_button);
        m_window->setGeometry(300, 300, 240, 90);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void open()
    {
        QVERIFY(!popup());
        QTest::mouseClick(m_button, Qt::LeftButton);
        QVERIFY(popup());
        QTRY_VERIFY(search()->hasFocus());
    }
    QString text() const { return m_button->toolTip(); }
    /// The one that is open.
    RyPopUpWidget *popup() const
    {
        for (auto *child : m_button->findChildren<RyPopUpWidget *>(QStringLiteral("SceneSelectionDropDownPopUpWgt"))) {
            if (child->isVisible())
                return child;
        }
        return nullptr;
    }
    QLineEdit *search() const
    {
        return popup()->findChild<QLineEdit *>(QStringLiteral("SceneSelectionDropDownSearchLEdit"));
    }
    RyNodeTreeWgt *tree() const
    {
        return popup()->findChild<RyNodeTreeWgt *>(QStringLiteral("SceneSelectionDropDownTree"));
    }
    /// One blank a level, a star for the one that is picked.
    QStringList shown() const
    {
        QStringList lines;
        for (QTreeWidgetItemIterator walk(tree(), QTreeWidgetItemIterator::NotHidden); *walk; ++walk) {
            int depth = 0;
            for (const QTreeWidgetItem *above = (*walk)->parent(); above; above = above->parent())
                ++depth;
            lines.append(QString(depth, QLatin1Char(' ')) + (*walk)->text(0) +
                         QLatin1String((*walk)->isSelected() ? "*" : ""));
        }
        return lines;
    }
    QPoint place(const char *label) const
    {
        const QList<QTreeWidgetItem *> items = tree()->findItems(QLatin1String(label), Qt::MatchRecursive);
        return items.isEmpty() ? QPoint() : tree()->visualItemRect(items.front()).center();
    }
    static void expectSelection(const std::vector<RyNode *> &nodes)
    {
        QCOMPARE(ryScene()->selectedNodeListIterator(), nodes);
    }

    std::unique_ptr<QWidget> m_window;
    RySceneSelectionDropDown *m_button = nullptr;
    RySkeleton *m_figure = nullptr;
    RyBone *m_hip = nullptr;
    RyBone *m_thigh = nullptr;
    RyBone *m_shin = nullptr;
    RyNode *m_prop = nullptr;
    RyBone *m_nail = nullptr;
};

RY_TEST(RySceneSelectionDropDownTest)
#include "tst_RySceneSelectionDropDown.moc"
