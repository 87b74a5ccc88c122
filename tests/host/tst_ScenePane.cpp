#include "support/RyTest.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/ScenePane.h"

#include <QStyledItemDelegate>
#include <QTreeView>

/// The scene list with more rows than fit.
class ScenePaneTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void scrollsOnceToWhatIsSelected();
    void scrollsWhenItIsShown();

private:
    /// A view looks up the width of a name to bring it into sight, and of none otherwise.
    class CountingDelegate : public QStyledItemDelegate
    {
    public:
        using QStyledItemDelegate::QStyledItemDelegate;
        QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
        {
            ++asked;
            return QStyledItemDelegate::sizeHint(option, index);
        }
        mutable int asked = 0;
    };

    RyNode *bone(int number) const { return m_scene->findNode(QStringLiteral("bone%1").arg(number)); }
    QModelIndex rowOf(const RyNode *node) const;
    bool isInSight(const RyNode *node) const;
    /// How often the list scrolls while these are selected; all that waits for its turn happens.
    int scrollsOf(const std::vector<RyNode *> &nodes) const;

    std::unique_ptr<RyScene> m_scene;
    std::unique_ptr<ScenePane> m_pane;
    CountingDelegate *m_delegate = nullptr;
};

void ScenePaneTest::init()
{
    m_scene = std::make_unique<RyScene>();
    auto *figure = new RySkeleton;
    figure->setName(QStringLiteral("figure"));
    m_scene->addNode(figure);
    for (int i = 0; i < 80; ++i) {
        auto *each = new RyBone;
        each->setName(QStringLiteral("bone%1").arg(i));
        figure->addNodeChild(each);
        m_scene->addNode(each);
    }
    m_pane = std::make_unique<ScenePane>(m_scene.get());
    m_pane->resize(220, 300);
    m_delegate = new CountingDelegate(m_pane.get());
    m_pane->tree()->setItemDelegateForColumn(SceneModel::LabelColumn, m_delegate);
    m_pane->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
    QTest::qWait(10);
}

void ScenePaneTest::cleanup()
{
    m_pane.reset();
    m_scene.reset();
}

QModelIndex ScenePaneTest::rowOf(const RyNode *node) const
{
    const QAbstractItemModel *rows = m_pane->tree()->model();
    return rows
        ->match(rows->index(0, SceneModel::LabelColumn), Qt::DisplayRole, node->getLabel(), 1,
                Qt::MatchExactly | Qt::MatchRecursive)
        .value(0);
}

bool ScenePaneTest::isInSight(const RyNode *node) const
{
    const QRect row = m_pane->tree()->visualRect(rowOf(node));
    return !row.isEmpty() && m_pane->tree()->viewport()->rect().intersected(row).height() == row.height();
}

int ScenePaneTest::scrollsOf(const std::vector<RyNode *> &nodes) const
{
    m_delegate->asked = 0;
    m_scene->setSelection(nodes);
    QCoreApplication::processEvents();
    return m_delegate->asked;
}

void ScenePaneTest::scrollsOnceToWhatIsSelected()
{
    QVERIFY(!isInSight(bone(70)));
    QCOMPARE(scrollsOf({bone(70)}), 1);
    QVERIFY(isInSight(bone(70)));
    QCOMPARE(scrollsOf({bone(3), bone(5)}), 1);
    QVERIFY(isInSight(bone(5)));
    // Also where the row that is current was scrolled away meanwhile.
    m_pane->tree()->scrollToBottom();
    QVERIFY(!isInSight(bone(5)));
    QCOMPARE(scrollsOf({bone(5)}), 1);
    QVERIFY(isInSight(bone(5)));
    QCOMPARE(scrollsOf({}), 0);
}

void ScenePaneTest::scrollsWhenItIsShown()
{
    m_pane->hide();
    m_scene->setSelection({bone(70)});
    m_pane->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
    QCoreApplication::processEvents();
    QVERIFY(isInSight(bone(70)));
    QCOMPARE(m_pane->tree()->currentIndex(), rowOf(bone(70)));
}

RY_TEST(ScenePaneTest)
#include "tst_ScenePane.moc"
