#include "support/RyTest.h"
#include "support/ToyAction.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

#include <deque>
#include <functional>
#include <random>

/// Restore points of whole figures: the dump of the scene, its selection included, and the steps of the history.
class RestoredFiguresTest : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ryUndoStack()->clearAll();
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"), &error),
                 qPrintable(error));
        ryRestorePoints()->setMost(8);
        m_random.seed(ryTestSeed());
        m_number = 0;
    }
    void cleanup()
    {
        ryRestorePoints()->setMost(0);
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }

    void everyBoneComesBack()
    {
        std::vector<RyBone *> bones = figure()->getAllBones();
        for (RyBone *bone : bones) {
            ryScene()->setSelection({bones.front(), bone});
            const QString before = dump();
            ToyAction action(QStringLiteral("Delete"), [bone] {
                RyUndoStackLock lock;
                ryUndoStack()->clearAll();
                deleteBone(bone);
            });
            action.trigger();
            const QString after = dump();
            QVERIFY(after != before);
            QCOMPARE(ryRestorePoints()->captions(), QStringList{QStringLiteral("Delete")});
            QVERIFY(ryRestorePoints()->restore(0));
            QCOMPARE(dump(), before);
            QVERIFY(ryRestorePoints()->restore(0));
            QCOMPARE(dump(), after);
            QVERIFY(ryRestorePoints()->restore(0));
            QCOMPARE(dump(), before);
            ryRestorePoints()->clear();
        }
        QCOMPARE(figure()->getAllBones(), bones);
    }

    void allBonesOneAfterTheOther()
    {
        ryRestorePoints()->setMost(1000);
        QStringList states;
        while (!figure()->getAllBones().empty()) {
            std::vector<RyBone *> bones = figure()->getAllBones();
            RyBone *bone = bones[m_random() % bones.size()];
            bone->select(true);
            states.prepend(dump());
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("Delete"));
            RyUndoStackLock lock;
            deleteBone(bone);
        }
        const int count = int(states.size());
        QCOMPARE(ryRestorePoints()->count(), count);
        // The oldest first, over all others; then some of the others, over the ways back.
        for (int i = 0; i < 8; ++i) {
            QVERIFY(ryRestorePoints()->restore(count - 1));
            QCOMPARE(dump(), states.takeLast());
            QCOMPARE(ryRestorePoints()->count(), count);
        }
    }

    void deletingTheFigureItself()
    {
        figure()->getAllBones().back()->select(true);
        const QString before = dump();
        ToyAction action(QStringLiteral("Delete"), [this] { ryScene()->removeNode(figure()); });
        action.trigger();
        QVERIFY(ryScene()->getNodes().empty());
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(dump(), before);
    }

    /// A step is redone and undone where its lists have lost members; with these back, it puts all where it did.
    void placesOfAStepOutliveShorterLists()
    {
        RyBone *parent = figure()->findBone(QStringLiteral("chest"));
        const std::vector<RyNode *> siblings = parent->nodeChildrenIterator();
        QVERIFY(siblings.size() > 1);
        {
            RyUndoStackHold hold;
            addBoundBone(parent);
            hold.accept(QStringLiteral("Add"));
        }
        const QString added = dump();
        ryUndoStack()->undo();
        const QString before = dump();
        ToyAction action(QStringLiteral("Delete"), [&siblings] {
            RyUndoStackLock lock;
            for (RyNode *sibling : siblings) {
                std::vector<RyNode *> nodes{sibling};
                sibling->getNodeChildren(nodes, true);
                for (RyNode *node : nodes)
                    skin()->removeBoneBinding(skin()->findBoneBinding(node));
                ryScene()->removeNode(sibling);
            }
        });
        action.trigger();
        ryUndoStack()->redo();
        ryUndoStack()->undo();
        QCOMPARE(ryRestorePoints()->count(), 1);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(dump(), before);
        ryUndoStack()->redo();
        QCOMPARE(dump(), added);
    }

    /// What came to stand behind the members of a step stays behind them.
    void placesOfAStepAmongOthersThatCame()
    {
        RyBone *parent = figure()->findBone(QStringLiteral("chest"));
        const std::vector<RyNode *> siblings = parent->nodeChildrenIterator();
        {
            RyUndoStackHold hold;
            addBoundBone(parent);
            hold.accept(QStringLiteral("Add"));
        }
        ryUndoStack()->undo();
        {
            RyUndoStackLock lock;
            ryScene()->removeNode(siblings.front());
        }
        ryUndoStack()->redo();
        {
            RyUndoStackLock lock;
            addBoundBone(parent);
        }
        const QString state = dump();
        ryUndoStack()->undo();
        ryUndoStack()->redo();
        QCOMPARE(dump(), state);
    }

    void randomCommands();

private:
    static QString dump()
    {
        QString text = rySceneDump(*ryScene());
        for (int i = 0; i < ryUndoStack()->count(); ++i)
            text += QLatin1Char('\n') + ryUndoStack()->caption(i);
        return text + QStringLiteral("\nat %1").arg(ryUndoStack()->index());
    }
    static RySkeleton *figure() { return ryScene()->getSkeletons().at(0); }
    static RySkinBinding *skin() { return RySkinBinding::findSkinFromNode(figure()); }
    RyBone *someBone()
    {
        const std::vector<RyBone *> bones = figure()->getAllBones();
        return bones[m_random() % bones.size()];
    }
    RyWeightMap *someMap()
    {
        const auto &bindings = skin()->bindings();
        return bindings[m_random() % bindings.size()]->getWeights();
    }
    void addBoundBone(RyBone *parent)
    {
        auto *fresh = new RyBone;
        fresh->setName(QStringLiteral("fresh%1").arg(++m_number));
        parent->addNodeChild(fresh);
        ryScene()->addNode(fresh);
        auto *binding = new RyBoneBinding;
        binding->setBone(fresh);
        binding->setWeights(someMap()->copy());
        skin()->addBoneBinding(binding);
        skin()->normalize(0, RySkinBinding::GeneralWeights, false);
    }
    void editValues();
    void editStructure();

    std::mt19937 m_random;
    int m_number = 0;
};

void RestoredFiguresTest::editValues()
{
    RyBone *bone = someBone();
    switch (m_random() % 8) {
    case 0:
        bone->setName(QStringLiteral("bone%1").arg(++m_number));
        break;
    case 1:
        bone->setLabel(QStringLiteral("Bone %1").arg(++m_number));
        break;
    case 2:
        bone->setHidden(!bone->isHidden());
        break;
    case 3:
        bone->setInheritScale(!bone->inheritsScale());
        break;
    case 4:
        bone->setRotationOrder(RyRotationOrder(int(m_random() % 6)));
        break;
    case 5:
        bone->getZRotControl()->setValue(float(m_random() % 90));
        break;
    case 6:
        bone->setOrigin(bone->getOrigin() + RyVec3(float(m_random() % 5), 1, 0), true);
        break;
    case 7:
        bone->getXRotControl()->setMax(float(100 + m_random() % 90));
        break;
    }
}

void RestoredFiguresTest::editStructure()
{
    RyBone *bone = someBone();
    switch (m_random() % 6) {
    case 0:
        if (figure()->getAllBones().size() > 4)
            deleteBone(bone);
        break;
    case 1:
        addBoundBone(bone);
        break;
    case 2: {
        RyBone *other = someBone();
        if (other != bone && !other->isDescendantOf(bone))
            other->addNodeChild(bone, true);
        break;
    }
    case 3: {
        RyWeightMap *map = someMap();
        map->beginEdit();
        quint16 *weights = map->getWeights();
        for (int i = 0; i < 50; ++i)
            weights[m_random() % unsigned(map->getNumWeights())] = quint16(m_random() % 65536);
        map->finishEdit();
        break;
    }
    case 4: {
        auto *shape = static_cast<RyFacetShape *>(figure()->getObject()->getCurrentShape());
        RyFacetMesh *mesh = shape->getFacetMesh();
        const QString name = QStringLiteral("group%1").arg(++m_number);
        mesh->createFaceGroup(name);
        mesh->deselectAllFacets();
        RyIndexList facets;
        for (int i = 0; i < 40; ++i)
            facets.append(int(m_random() % unsigned(mesh->getNumFacets())));
        mesh->selectFacetsByIndexList(facets, true);
        mesh->addSelectedFacetsToGroup(name);
        std::vector<RyVec3> positions = mesh->getPositions();
        positions[m_random() % positions.size()] += RyVec3(0, 1, 0);
        mesh->setPositions(std::move(positions));
        break;
    }
    case 5:
        if (!figure()->getSelectionMap())
            figure()->setSelectionMap(new RySelectionMap);
        figure()->getSelectionMap()->addPair(QStringLiteral("pair%1").arg(m_random() % 5), bone, true);
        break;
    }
}

void RestoredFiguresTest::randomCommands()
{
    RyRestorePoints *points = ryRestorePoints();
    std::deque<QString> states; // newest first, as the points
    int restored = 0, kept = 0;
    const auto remember = [&](const QString &state) {
        states.push_front(state);
        if (int(states.size()) > points->most())
            states.pop_back();
    };
    for (int op = 0; op < 250; ++op) {
        const QByteArray where = QByteArray::number(op);
        if (m_random() % 3 == 0)
            ryScene()->setSelection({someBone(), someBone()});
        const QString before = dump();
        const unsigned kind = m_random() % 10;
        if (kind < 2) {
            ToyAction action(QStringLiteral("Clearing"), [this] {
                RyUndoStackLock lock;
                ryUndoStack()->clearAll();
                editStructure();
                editValues();
            });
            const int count = points->count();
            int seen = 0;
            const auto connection = connect(points, &RyRestorePoints::taken, this, [&] { ++seen; });
            action.trigger();
            disconnect(connection);
            if (seen)
                remember(before);
            else
                QCOMPARE(points->count(), count);
            kept += seen;
        } else if (kind < 6) {
            ToyAction action(QStringLiteral("Undoable"), [this, op] {
                RyUndoStackHold hold;
                editStructure();
                editValues();
                if (op % 5)
                    hold.accept(QStringLiteral("Step %1").arg(op));
            });
            action.trigger();
        } else if (kind < 7) {
            ryUndoStack()->undo();
        } else if (kind < 8) {
            ryUndoStack()->redo();
        } else if (!states.empty()) {
            const int which = int(m_random() % states.size());
            QVERIFY2(points->restore(which), where.constData());
            QVERIFY2(dump() == states[size_t(which)], where.constData());
            states.erase(states.begin() + which);
            remember(before);
            ++restored;
        }
        QVERIFY2(points->count() == int(states.size()), where.constData());
    }
    QVERIFY2(restored >= 10 && kept >= 10, qPrintable(QStringLiteral("%1 %2").arg(restored).arg(kept)));
}

RY_TEST(RestoredFiguresTest)
#include "tst_restoredFigures.moc"
