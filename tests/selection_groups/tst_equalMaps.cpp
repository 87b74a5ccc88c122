#include "support/RyTest.h"

#include "RyRandomFigure.h"
#include "compareBuilders.h"

#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/skin/bindToNearestBones.h"
#include "rycore/undo/RyUndoStack.h"

#include <QDir>

/// Counting, with any number of threads, gives what the plain implementation gives.
class EqualMapsTest : public QObject
{
    Q_OBJECT

    static std::vector<RyFigure *> boundFigures()
    {
        std::vector<RyFigure *> figures;
        for (RyNode *node : ryScene()->getNodes()) {
            auto *figure = qobject_cast<RyFigure *>(node);
            if (figure && figure->getSkinBinding())
                figures.push_back(figure);
        }
        return figures;
    }
    /// Bones that cannot be selected, groups along the list of facets, and pairs, so that all settings differ.
    static void makeUntidy(RyFigure *figure)
    {
        const std::vector<RyBone *> bones = figure->getAllBones();
        for (size_t i = 2; i < bones.size(); i += 3)
            bones[i]->setSelectable(false);
        auto *mesh = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure))->getFacetMesh();
        std::vector<int> groups;
        for (int i = 0; i < 9; ++i)
            mesh->createFaceGroup(QStringLiteral("part %1").arg(i));
        const int first = mesh->findFaceGroupIndex(QStringLiteral("part 0"));
        for (int i = 0; i < mesh->getNumFacets(); ++i)
            groups.push_back(first + int(qint64(i) * 8 / mesh->getNumFacets()));
        mesh->setGroupsOfFacets(groups);
        figure->setSelectionMap(new RySelectionMap);
        figure->getSelectionMap()->addPair(QStringLiteral("part 3"), bones.front(), false);
        figure->getSelectionMap()->addPair(QStringLiteral("gone"), bones.back(), false);
    }
    static void checkEqual(RyFigure *figure, int leastChanges)
    {
        const RyBuilderComparison comparison = compareBuilders(figure);
        QVERIFY2(comparison.faults.isEmpty(), qPrintable(comparison.faults.join('\n')));
        QVERIFY2(comparison.changes >= leastChanges, qPrintable(QString::number(comparison.changes)));
    }

private slots:
    void cleanup()
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
    }

    void randomFigures_data()
    {
        QTest::addColumn<int>("figures");
        QTest::addColumn<int>("bones");
        QTest::addColumn<int>("vertices");
        QTest::addColumn<int>("facets");
        QTest::newRow("small") << 60 << 12 << 60 << 60;
        QTest::newRow("medium") << 12 << 60 << 2000 << 3000;
        QTest::newRow("large") << 4 << 80 << 40000 << 60000;
    }

    void randomFigures()
    {
        QFETCH(int, figures);
        QFETCH(int, bones);
        QFETCH(int, vertices);
        QFETCH(int, facets);
        RyRandom random;
        int changes = 0;
        for (int i = 0; i < figures; ++i) {
            const RyRandomFigure made(random, bones, vertices, facets);
            const RyBuilderComparison comparison = compareBuilders(made.figure());
            QVERIFY2(comparison.faults.isEmpty(), qPrintable(comparison.faults.join('\n')));
            changes += comparison.changes;
        }
        QVERIFY2(changes >= 2 * figures, qPrintable(QString::number(changes)));
    }

    void characters_data()
    {
        QTest::addColumn<QString>("path");
        if (ryModelsPath().isEmpty())
            QSKIP("RY_MODELS names no folder of characters");
        const QDir folder(ryModelsPath());
        for (const QString &name : folder.entryList({"*.glb", "*.gltf"}, QDir::Files))
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }

    void characters()
    {
        QFETCH(QString, path);
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), path, &error), qPrintable(error));
        const std::vector<RyFigure *> figures = boundFigures();
        QVERIFY(!figures.empty());
        for (RyFigure *figure : figures) {
            checkEqual(figure, 4);
            makeUntidy(figure);
            checkEqual(figure, 4);
        }
    }

    void manyGroups_data()
    {
        QTest::addColumn<bool>("localMaps");
        QTest::newRow("local maps") << true;
        QTest::newRow("general maps") << false;
    }

    /// A mesh of 139 groups that becomes a figure with a few bones up its middle.
    void manyGroups()
    {
        QFETCH(bool, localMaps);
        const QString path = ryModel(QStringLiteral("mh_base.obj"));
        if (path.isEmpty())
            QSKIP("RY_MODELS has no mh_base.obj");
        QString error;
        QVERIFY2(RySceneFile::open(ryScene(), path, &error), qPrintable(error));
        QCOMPARE(int(ryScene()->getTopLevelNodes().size()), 1);
        RyFigure *figure = RyFigure::convertPropToFigure(ryScene()->getTopLevelNodes().front(), QStringLiteral("root"),
                                                         localMaps, false);
        QVERIFY(figure);
        const auto *mesh = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure))->getFacetMesh();
        QCOMPARE(mesh->getNumFaceGroups(), 139);
        checkEqual(figure, 4);
        const RyBox3 box = mesh->getBoundingBox();
        RyBone *last = figure->getAllBones().front();
        for (int i = 0; i < 12; ++i) {
            RyBone *parent = i % 3 == 2 ? figure->getAllBones().front() : last;
            const QString name = QStringLiteral("bone%1").arg(i);
            last = createChildBone(parent, name, name, RyRotationOrder());
            const auto at = [&](float t) {
                return RyVec3(float(i % 5 - 2) * 15.0f, box.getMin().y + t * (box.getMax().y - box.getMin().y), 0.0f);
            };
            last->setOrigin(at(float(i) / 12.0f), true);
            last->setEndPoint(at(float(i + 1) / 12.0f), true);
        }
        QVERIFY(bindToNearestBones(*figure->getSkinBinding()));
        QCOMPARE(figure->getSkinBinding()->hasLocalMaps(), localMaps);
        checkEqual(figure, 8);
        for (size_t i = 1; i < figure->getAllBones().size(); i += 2)
            figure->getAllBones()[i]->setSelectable(false);
        figure->setSelectionMap(new RySelectionMap);
        for (int i = 0; i < 139; i += 11)
            figure->getSelectionMap()->addPair(mesh->getFaceGroup(i)->getName(), nullptr, false);
        checkEqual(figure, 8);
    }
};

RY_TEST(EqualMapsTest)

#include "tst_equalMaps.moc"
