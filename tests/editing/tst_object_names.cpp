#include "support/RyTest.h"

#include "io/CharacterScene.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"

#include <QTemporaryDir>

/// A node and the object that it shows have names of their own from the first edit of one of them on.
class ObjectNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void renamedNodesKeepTheNamesOfTheirObjects_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("weight mapped") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
        QTest::newRow("parametric") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb");
        QTest::newRow("prop") << QStringLiteral(RY_SOURCE_DIR "/resources/samples/hand.obj");
    }
    void renamedNodesKeepTheNamesOfTheirObjects();
};

void ObjectNamesTest::renamedNodesKeepTheNamesOfTheirObjects()
{
    QFETCH(QString, path);
    const QTemporaryDir folder;
    const QString first = folder.filePath(QStringLiteral("first.glb")), renamed = folder.filePath("renamed.glb"),
                  again = folder.filePath("again.glb"), back = folder.filePath("back.glb");
    QString error;
    RyScene origin, scene;
    QVERIFY2(RySceneFile::open(&origin, path, &error), qPrintable(error));
    QVERIFY2(RySceneFile::save(&origin, first, &error), qPrintable(error));
    QVERIFY(!bytesOf(first).contains("\"object\""));
    QVERIFY2(RySceneFile::open(&scene, first, &error), qPrintable(error));
    std::vector<RyNode *> carriers;
    for (RyNode *node : scene.getNodesInTreeOrder()) {
        if (node->getObject())
            carriers.push_back(node);
    }
    QVERIFY(!carriers.empty());
    const QString name = carriers.front()->getName();
    QCOMPARE(carriers.front()->getObject()->getName(), name);
    carriers.front()->setName(QStringLiteral("somebody"));
    QVERIFY2(RySceneFile::save(&scene, renamed, &error), qPrintable(error));

    RyScene reopened;
    QVERIFY2(RySceneFile::open(&reopened, renamed, &error), qPrintable(error));
    QVERIFY(rySceneDump(reopened).contains(QStringLiteral("  object \"%1\"").arg(name)));
    QVERIFY(sameDumps(rySceneDump(reopened), rySceneDump(scene)));
    RyNode *node = reopened.findNode(QStringLiteral("somebody"));
    QVERIFY(node);
    QVERIFY2(RySceneFile::save(&reopened, again, &error), qPrintable(error));
    QVERIFY(bytesOf(again) == bytesOf(renamed));
    // Called alike again they need no second name.
    node->setName(name);
    QVERIFY2(RySceneFile::save(&reopened, back, &error), qPrintable(error));
    QVERIFY(!bytesOf(back).contains("\"object\""));
}

RY_TEST(ObjectNamesTest)

#include "tst_object_names.moc"
