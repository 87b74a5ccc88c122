#include "RyGroupedScene.h"
#include "support/RyTest.h"
#include "support/checkUndo.h"

#include "pluginsource/RyJointTools/pane/RySimpleSelectionMapModel.h"

class RySimpleSelectionMapModelTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_scene = std::make_unique<RyGroupedScene>();
        m_model = std::make_unique<RySimpleSelectionMapModel>();
    }
    void cleanup()
    {
        m_model.reset();
        m_scene.reset();
    }

    void rowsAndColumns()
    {
        fillFor(m_scene->lThigh);
        QCOMPARE(m_model->rowCount(), 5);
        QCOMPARE(m_model->columnCount(), 2);
        QCOMPARE(rows(),
                 (QStringList{" None|None", " Pelvis|hip", "*lThigh|Left Upper Leg", " free patch|-", " nobody's|"}));
        QCOMPARE(m_model->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Face Group"));
        QCOMPARE(m_model->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Assigned Bone"));
        QVERIFY(!m_model->headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
        for (int role = 0; role < 30; ++role) {
            QCOMPARE(m_model->index(2, 0).data(role).isValid(), role == Qt::DisplayRole || role == Qt::CheckStateRole);
            QCOMPARE(m_model->index(2, 1).data(role).isValid(), role == Qt::DisplayRole);
        }
        QVERIFY(m_model->index(1, 0).flags().testFlag(Qt::ItemIsUserCheckable));
        QVERIFY(!m_model->index(1, 1).flags().testFlag(Qt::ItemIsUserCheckable));
    }

    void fillsForTheSelection()
    {
        QCOMPARE(m_model->rowCount(), 0);
        fillFor(m_scene->lFoot);
        QCOMPARE(rows().front(), QStringLiteral("*None|None"));
        fillFor(m_scene->figure);
        QCOMPARE(m_model->rowCount(), 5);
        QCOMPARE(m_model->currentRow(), 0);
        fillFor(m_scene->prop);
        QCOMPARE(m_model->rowCount(), 0);
        fillFor(nullptr);
        QCOMPARE(m_model->rowCount(), 0);
        // A group that the mesh has no more is no row.
        m_scene->map->addPair(QStringLiteral("gone"), m_scene->rThigh, true);
        fillFor(m_scene->rThigh);
        QCOMPARE(m_model->currentRow(), 0);
        m_scene->figure->setSelectionMap(nullptr);
        fillFor(m_scene->hip);
        QCOMPARE(rows(), (QStringList{"*None|None", " Pelvis|-", " lThigh|-", " free patch|-", " nobody's|-"}));
        m_scene->figure->setObject(new RyObject);
        fillFor(m_scene->hip);
        QCOMPARE(m_model->rowCount(), 0);
    }

    void checkingPairs()
    {
        fillFor(m_scene->lThigh);
        checkUndoInHold([&] { QVERIFY(check(3)); });
        QCOMPARE(rows(),
                 (QStringList{" None|None", " Pelvis|hip", " lThigh|-", "*free patch|Left Upper Leg", " nobody's|"}));
        // A group that another bone has goes over.
        checkUndoInHold([&] { QVERIFY(check(1)); });
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QStringLiteral("Pelvis"));
        QCOMPARE(m_scene->groupOf(m_scene->hip), QString());
        checkUndoInHold([&] { QVERIFY(check(0)); });
        QCOMPARE(m_scene->groupOf(m_scene->lThigh), QString());
        QCOMPARE(m_model->currentRow(), 0);
        QVERIFY(check(0));
        QCOMPARE(ryUndoStack()->count(), 3);
    }

    void makesAMap()
    {
        for (int row : {2, 0}) {
            m_scene->figure->setSelectionMap(nullptr);
            fillFor(m_scene->lShin);
            RyUndoStackHold hold;
            QVERIFY(check(row));
            hold.accept(QStringLiteral("Check"));
            for (int turn = 0; turn < 2; ++turn) {
                QVERIFY(m_scene->figure->getSelectionMap());
                QCOMPARE(m_scene->figure->getSelectionMap()->getNumPairs(), row == 0 ? 0 : 1);
                QCOMPARE(m_model->currentRow(), row);
                ryUndoStack()->undo();
                QVERIFY(!m_scene->figure->getSelectionMap());
                QCOMPARE(m_model->currentRow(), 0);
                ryUndoStack()->redo();
            }
        }
    }

    void refusesEverythingElse()
    {
        fillFor(m_scene->lThigh);
        const QString before = m_scene->dump();
        QVERIFY(!m_model->setData(m_model->index(3, 0), Qt::Unchecked, Qt::CheckStateRole));
        QVERIFY(!m_model->setData(m_model->index(2, 0), Qt::Unchecked, Qt::CheckStateRole));
        QVERIFY(!m_model->setData(m_model->index(3, 0), QStringLiteral("hand"), Qt::EditRole));
        QVERIFY(!m_model->setData(QModelIndex(), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(m_scene->dump(), before);
        QPersistentModelIndex row(m_model->index(3, 0));
        ryScene()->removeNode(m_scene->lThigh);
        ryUndoStack()->clearAll();
        const QString without = m_scene->dump();
        QVERIFY(!m_model->setData(row, Qt::Checked, Qt::CheckStateRole));
        ryScene()->removeNode(m_scene->figure);
        QCOMPARE(m_model->setData(row, Qt::Checked, Qt::CheckStateRole), false);
        QVERIFY(without != before);
    }

    void tellsOnce()
    {
        fillFor(m_scene->lThigh);
        QStringList told;
        connect(m_model.get(), &RySimpleSelectionMapModel::selectionChanged, this,
                [&] { told.append(QStringLiteral("selection %1").arg(m_model->currentRow())); });
        connect(m_model.get(), &QAbstractItemModel::dataChanged, this,
                [&](const QModelIndex &first, const QModelIndex &last) {
                    told.append(QStringLiteral("%1,%2 to %3,%4")
                                    .arg(first.row())
                                    .arg(first.column())
                                    .arg(last.row())
                                    .arg(last.column()));
                });
        const QStringList expected = {"selection 3", "0,0 to 4,2"};
        RyUndoStackHold hold;
        check(3);
        hold.accept(QStringLiteral("Check"));
        QCOMPARE(told, expected);
        // Also what comes from elsewhere is followed.
        ryUndoStack()->undo();
        QCOMPARE(told.mid(2), (QStringList{"selection 2", "0,0 to 4,2"}));
        m_scene->figure->setSelectionMap(nullptr);
        QCOMPARE(told.mid(4), (QStringList{"selection 0", "0,0 to 4,2"}));
    }

private:
    void fillFor(RyNode *node)
    {
        ryScene()->setSelection(node ? std::vector<RyNode *>{m_scene->prop, node} : std::vector<RyNode *>());
        m_model->fill();
    }
    bool check(int row) { return m_model->setData(m_model->index(row, 0), Qt::Checked, Qt::CheckStateRole); }
    /// "*" for the checked row, group, "|", bone.
    QStringList rows() const
    {
        QStringList rows;
        for (int i = 0; i < m_model->rowCount(); ++i) {
            const QModelIndex group = m_model->index(i, 0);
            rows.append(QLatin1String(group.data(Qt::CheckStateRole).toInt() == Qt::Checked ? "*" : " ") +
                        group.data().toString() + '|' + m_model->index(i, 1).data().toString());
        }
        return rows;
    }

    std::unique_ptr<RyGroupedScene> m_scene;
    std::unique_ptr<RySimpleSelectionMapModel> m_model;
};

RY_TEST(RySimpleSelectionMapModelTest)
#include "tst_RySimpleSelectionMapModel.moc"
