#include "support/RyTest.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/panes/SceneTree.h"

#include <QProxyStyle>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTreeView>

/// The list of a scene of its own: a spine with ribs.
class SceneModelTest : public QObject
{
    Q_OBJECT
private:
    RyBone *makeBone(RyNode *parent, const QString &name, int index = -1)
    {
        auto *bone = new RyBone;
        bone->setName(name);
        parent->addNodeChild(bone, false, index);
        m_scene->addNode(bone);
        return bone;
    }

    /// The tree of names as the model shows it: "a(b c(d))".
    static QString shown(const QAbstractItemModel &model, const QModelIndex &parent = {})
    {
        QStringList rows;
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex index = model.index(row, SceneModel::LabelColumn, parent);
            if (index.parent() != parent)
                return QStringLiteral("wrong parent");
            const QString below = shown(model, index);
            rows.append(index.data().toString() + (below.isEmpty() ? QString() : QLatin1Char('(') + below + ')'));
        }
        return rows.join(QLatin1Char(' '));
    }

    std::unique_ptr<RyScene> m_scene;
    std::unique_ptr<SceneModel> m_model;
    RySkeleton *m_figure = nullptr;
    RyBone *m_a = nullptr;
    RyBone *m_b = nullptr;
    RyBone *m_c = nullptr;

private slots:
    void init()
    {
        m_scene = std::make_unique<RyScene>();
        m_figure = new RySkeleton;
        m_figure->setName(QStringLiteral("figure"));
        m_scene->addNode(m_figure);
        m_a = makeBone(m_figure, QStringLiteral("a"));
        m_b = makeBone(m_a, QStringLiteral("b"));
        m_c = makeBone(m_a, QStringLiteral("c"));
        m_model = std::make_unique<SceneModel>(m_scene.get());
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(b c))"));
    }

    void parametricFiguresSaySo()
    {
        auto *parametric = new RyLegacyFigure;
        parametric->setName(QStringLiteral("old"));
        auto *weighted = new RyFigure;
        weighted->setName(QStringLiteral("new"));
        m_scene->addNode(parametric);
        m_scene->addNode(weighted);
        QTest::qWait(1);
        const auto tip = [this](const RyNode *node) { return m_model->indexOf(node).data(Qt::ToolTipRole).toString(); };
        QCOMPARE(tip(parametric), QStringLiteral("old, a parametric figure"));
        parametric->setLabel(QStringLiteral("Old"));
        QCOMPARE(tip(parametric), QStringLiteral("Old (name: old), a parametric figure"));
        QCOMPARE(tip(weighted), QStringLiteral("new"));
        QCOMPARE(tip(m_a), QStringLiteral("a"));
    }

    void cleanup()
    {
        m_model.reset();
        m_scene.reset();
    }

    void oneNodeMakesOneRow()
    {
        const QSignalSpy inserted(m_model.get(), &QAbstractItemModel::rowsInserted);
        const QSignalSpy removed(m_model.get(), &QAbstractItemModel::rowsRemoved);
        const QSignalSpy reset(m_model.get(), &QAbstractItemModel::modelReset);
        RyBone *fresh = makeBone(m_a, QStringLiteral("fresh"), 1);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(b fresh c))"));
        QCOMPARE(m_model->nodeAt(m_model->indexOf(fresh)), fresh);
        QCOMPARE(inserted.size(), 1);
        m_scene->removeNode(fresh);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(b c))"));
        QVERIFY(!m_model->indexOf(fresh).isValid());
        QCOMPARE(removed.size(), 1);
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(reset.size(), 0);
    }

    void nodesThatMoveTakeTheirBranchAlong()
    {
        makeBone(m_c, QStringLiteral("d"));
        m_model->followScene();
        m_b->addNodeChild(m_c);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(b(c(d))))"));
        m_figure->addNodeChild(m_c, false, 0);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(c(d) a(b))"));
        m_c->setName(QStringLiteral("renamed"));
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(renamed(d) a(b))"));
        QCOMPARE(m_model->indexOf(m_c).row(), 0);
        QCOMPARE(m_model->indexOf(m_a).row(), 1);
    }

    void anotherOrderIsShown()
    {
        m_a->addNodeChild(m_b);
        RyBone *fresh = makeBone(m_a, QStringLiteral("fresh"), 0);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(fresh c b))"));
        m_a->addNodeChild(fresh);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(c b fresh))"));
    }

    void namesAreToldOnce()
    {
        m_b->addNodeChild(m_c);
        m_model->followScene();
        QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
        m_c->setHidden(true);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(m_model->nodeAt(changed.at(0).at(0).toModelIndex()), m_c);
    }

    void manyNodesMakeAllRowsAnew()
    {
        const QSignalSpy inserted(m_model.get(), &QAbstractItemModel::rowsInserted);
        const QSignalSpy reset(m_model.get(), &QAbstractItemModel::modelReset);
        for (int i = 0; i < 100; ++i)
            makeBone(m_b, QStringLiteral("x%1").arg(i));
        m_model->followScene();
        QCOMPARE(m_model->rowCount(m_model->indexOf(m_b)), 100);
        QCOMPARE(inserted.size(), 0);
        QCOMPARE(reset.size(), 1);
        m_scene->removeNode(m_figure);
        m_model->followScene();
        QCOMPARE(shown(*m_model), QString());
    }

    void aRowOutlivesItsNode()
    {
        const QModelIndex index = m_model->indexOf(m_c);
        delete m_c;
        QVERIFY(!m_model->nodeAt(index));
        QVERIFY(!index.data().isValid());
        RyBone *fresh = makeBone(m_a, QStringLiteral("fresh"));
        m_model->followScene();
        QCOMPARE(shown(*m_model), QStringLiteral("figure(a(b fresh))"));
        QCOMPARE(m_model->nodeAt(m_model->indexOf(fresh)), fresh);
    }

    void whatWasClosedStaysClosed()
    {
        ScenePane pane(m_scene.get());
        const auto indexOf = [&pane](const RyNode *node) {
            const auto found = pane.tree()->model()->match(pane.tree()->model()->index(0, 0), Qt::DisplayRole,
                                                           node->getName(), 1, Qt::MatchExactly | Qt::MatchRecursive);
            return found.value(0);
        };
        QVERIFY(pane.tree()->isExpanded(indexOf(m_a)));
        RyBone *below = makeBone(m_b, QStringLiteral("below"));
        pane.model()->followScene();
        QVERIFY(pane.tree()->isExpanded(indexOf(m_b)));
        pane.tree()->collapse(indexOf(m_a));
        makeBone(below, QStringLiteral("deeper"));
        pane.model()->followScene();
        QVERIFY(!pane.tree()->isExpanded(indexOf(m_a)));
        QVERIFY(pane.tree()->isExpanded(indexOf(below)));
        for (int i = 0; i < 100; ++i)
            makeBone(m_c, QStringLiteral("many%1").arg(i));
        pane.model()->followScene();
        QVERIFY(!pane.tree()->isExpanded(indexOf(m_a)));
        QVERIFY(pane.tree()->isExpanded(indexOf(m_c)));
    }

    void theSelectionIsShownInRowsThatFollowOneAnother()
    {
        ScenePane pane(m_scene.get());
        const QItemSelectionModel *selection = pane.tree()->selectionModel();
        for (int i = 0; i < 30; ++i)
            makeBone(m_b, QStringLiteral("x%1").arg(i));
        pane.model()->followScene();
        const std::vector<RyNode *> ribs = m_b->nodeChildrenIterator();
        m_scene->setSelection(ribs);
        QCOMPARE(selection->selection().size(), 1);
        QCOMPARE(selection->selectedRows().size(), 30);
        m_scene->setSelection({ribs[3], ribs[1], ribs[2], m_a, ribs[9]});
        QCOMPARE(selection->selection().size(), 3);
        QCOMPARE(selection->selectedRows().size(), 5);
        m_scene->setSelection({});
        QVERIFY(!selection->hasSelection());
        pane.tree()->selectAll();
        QCOMPARE(m_scene->getNumSelectedNodes(), int(m_scene->getNodes().size()));
        pane.tree()->collapse(pane.tree()->model()->index(0, 0));
        pane.tree()->selectAll();
        QCOMPARE(m_scene->selectedNodeListIterator(), std::vector<RyNode *>{m_figure});
    }

    /// Each row with rows below has its arrow beside the name, open or closed, and no level above it costs anything.
    void arrows()
    {
        RyBone *deep = m_c;
        for (int i = 0; i < 300; ++i)
            deep = makeBone(deep, QStringLiteral("level%1").arg(i));
        ScenePane pane(m_scene.get());
        QTreeView &tree = *pane.tree();
        Arrows arrows;
        tree.setStyle(&arrows);
        pane.resize(300, 400);
        tree.collapse(tree.model()->match(tree.model()->index(0, 0), Qt::DisplayRole, QStringLiteral("level200"), 1,
                                          Qt::MatchExactly | Qt::MatchRecursive)[0]);
        for (const char *in : {"figure", "level200"}) {
            tree.verticalScrollBar()->setValue(*in == 'f' ? 0 : tree.verticalScrollBar()->maximum());
            arrows.drawn.clear();
            tree.viewport()->grab();
            std::vector<std::pair<QRect, bool>> wanted;
            const int column = tree.treePosition();
            for (QModelIndex row = tree.indexAt({0, 0});
                 row.isValid() && tree.visualRect(row).top() < tree.viewport()->height(); row = tree.indexBelow(row)) {
                const QRect name = tree.visualRect(row.siblingAtColumn(column));
                if (tree.model()->hasChildren(row.siblingAtColumn(0)))
                    wanted.push_back({{name.left() - tree.indentation(), name.top(), tree.indentation(), name.height()},
                                      tree.isExpanded(row.siblingAtColumn(0))});
            }
            QVERIFY(wanted.size() > 5);
            QVERIFY(arrows.drawn == wanted);
        }
        tree.setStyle(nullptr);
    }

    /// As the view itself would draw it.
    void rows_data()
    {
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("focused");
        QTest::newRow("plain") << false << true << false;
        QTest::newRow("from the right") << true << true << false;
        QTest::newRow("disabled") << false << false << false;
        QTest::newRow("with the keyboard") << false << true << true;
        QTest::newRow("from the right, with the keyboard") << true << true << true;
    }
    void rows()
    {
        QFETCH(bool, rightToLeft);
        QFETCH(bool, enabled);
        QFETCH(bool, focused);
        m_a->setHidden(true);
        SceneModel model(m_scene.get());
        SceneTree tree;
        PlainTree plain;
        std::vector<QImage> pictures;
        for (SceneTree *each : {&tree, static_cast<SceneTree *>(&plain)}) {
            each->setModel(&model);
            each->expandAll();
            each->collapse(model.indexOf(m_b));
            each->resize(200, 150);
            each->setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            each->setEnabled(enabled);
            each->show();
            QVERIFY(QTest::qWaitForWindowExposed(each));
            const QImage none = pictureOf(*each);
            m_scene->setSelection({m_figure, m_b});
            for (const RyNode *node : {static_cast<RyNode *>(m_figure), static_cast<RyNode *>(m_b)})
                each->selectionModel()->select(model.indexOf(node),
                                               QItemSelectionModel::Select | QItemSelectionModel::Rows);
            each->selectionModel()->setCurrentIndex(model.indexOf(m_b), QItemSelectionModel::NoUpdate);
            if (focused) {
                each->activateWindow();
                each->setFocus();
                QTRY_VERIFY(each->hasFocus());
            }
            pictures.push_back(pictureOf(*each));
            QVERIFY(pictures.back() != none);
            each->hide();
            m_scene->setSelection({});
        }
        QVERIFY(pictures[0] == pictures[1]);
    }

    /// What is asked of the model for a picture does not grow with the selection.
    void rowsOfADeepSelection()
    {
        std::vector<int> parentsAsked;
        RyBone *deep = m_c;
        for (const int levels : {100, 900}) {
            for (int i = 0; i < levels; ++i)
                deep = makeBone(deep, QStringLiteral("level%1_%2").arg(levels).arg(i));
            CountingModel model(m_scene.get());
            SceneTree tree;
            tree.setModel(&model);
            tree.expandAll();
            tree.resize(200, 150);
            m_scene->selectAllNodes(true);
            tree.selectAll();
            tree.scrollTo(model.indexOf(deep));
            tree.viewport()->grab();
            model.parentsAsked = 0;
            tree.viewport()->grab();
            parentsAsked.push_back(model.parentsAsked);
        }
        QVERIFY2(parentsAsked[1] <= parentsAsked[0] + 10,
                 qPrintable(QStringLiteral("%1 and %2").arg(parentsAsked[0]).arg(parentsAsked[1])));
    }

private:
    class PlainTree : public SceneTree
    {
        void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
        {
            QTreeView::drawRow(painter, option, index);
        }
    };
    class CountingModel : public SceneModel
    {
    public:
        using SceneModel::SceneModel;
        QModelIndex parent(const QModelIndex &index) const override
        {
            ++parentsAsked;
            return SceneModel::parent(index);
        }
        mutable int parentsAsked = 0;
    };
    static QImage pictureOf(QTreeView &tree)
    {
        QImage picture(tree.viewport()->size(), QImage::Format_RGB32);
        tree.viewport()->render(&picture);
        return picture;
    }

    class Arrows : public QProxyStyle
    {
    public:
        void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                           const QWidget *widget) const override
        {
            if (element == PE_IndicatorBranch)
                drawn.push_back({option->rect, bool(option->state & State_Open)});
            QProxyStyle::drawPrimitive(element, option, painter, widget);
        }
        mutable std::vector<std::pair<QRect, bool>> drawn;
    };
};

RY_TEST(SceneModelTest)
#include "tst_SceneModel.moc"
