#include "support/RyTest.h"

#include "EditingStage.h"
#include "io/CharacterScene.h"
#include "support/checkUndo.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace {

/// The only node with an object.
RyNode *carrier()
{
    RyNode *found = nullptr;
    for (RyNode *node : ryScene()->getNodesInTreeOrder()) {
        if (node->getObject() && found)
            return nullptr;
        if (node->getObject())
            found = node;
    }
    return found;
}

std::vector<RyVec3> shownInWorld(const RyNode *node)
{
    std::vector<RyVec3> points = node->getObject()->getDeformedPositions();
    for (RyVec3 &point : points)
        point = node->worldMap().mapPoint(point);
    return points;
}

QByteArray savedBytes()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.glb"));
    QString error;
    return RySceneFile::save(ryScene(), path, &error) ? bytesOf(path) : error.toUtf8();
}

} // namespace

/// Props become figures of each kind and props again, with the built plug-in: with all that a file holds of them.
class ConversionsTest : public QObject
{
    Q_OBJECT

private slots:
    void thereAndBack_data();
    void thereAndBack();
};

void ConversionsTest::thereAndBack_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("rigging");
    QStringList files = {QStringLiteral(RY_SOURCE_DIR "/resources/samples/hand.obj"),
                         QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"),
                         QStringLiteral(RY_SOURCE_DIR "/resources/samples/parametric.glb")};
    for (const char *name : {"blob_17_groups.obj", "mh_base.obj", "CesiumMan.glb", "Fox.glb", "mh_default_rig.glb"})
        files.append(ryModel(QLatin1String(name)).isEmpty() ? QLatin1String(name) : ryModel(QLatin1String(name)));
    for (const QString &path : qAsConst(files)) {
        for (const char *rigging : {"Korvex", "General", "Legacy"})
            QTest::addRow("%s, %s", qPrintable(QFileInfo(path).fileName()), rigging) << path << rigging;
    }
}

/// Figures are made props first.
void ConversionsTest::thereAndBack()
{
    QFETCH(QString, path);
    QFETCH(QString, rigging);
    if (!QFileInfo::exists(path))
        QSKIP("This machine does not have the file.");
    EditingStage stage(path);
    RyNode *prop = carrier();
    QVERIFY(prop);
    if (qobject_cast<RySkeleton *>(prop)) {
        stage.select({prop});
        QCOMPARE(stage.run("RyJEConvertFigureToPropAction"), QString());
        prop = carrier();
    }
    QVERIFY(prop && !qobject_cast<RySkeleton *>(prop));
    auto *shelf = new RyNode;
    shelf->setName(QStringLiteral("shelf"));
    shelf->getYTransControl()->setValue(70.0f);
    shelf->getZRotControl()->setValue(20.0f);
    ryScene()->addNode(shelf);
    shelf->addNodeChild(prop);
    prop->getXTransControl()->setValue(-30.0f);
    prop->getYRotControl()->setValue(50.0f);
    prop->getScaleControl()->setValue(1.25f);
    prop->setOrigin(prop->getOrigin() + RyVec3(3, 4, 5));
    stage.select({prop});
    ryUndoStack()->clearAll();
    ryUndoStack()->setClean();
    const int points = ryRestorePoints()->count();
    const QString asProp = stage.dump();
    const QByteArray file = savedBytes();
    const std::vector<RyVec3> shown = shownInWorld(prop);

    const EditingStage::Fields fields = {
        {QStringLiteral("ConvertPropToFigureInheritParentSkeletonCbx"), QStringLiteral("false")},
        {QStringLiteral("ConvertPropToFigureRootBoneLEdit"), QStringLiteral("root")},
        {QStringLiteral("ConvertPropToFigure%1RBtn").arg(rigging), QStringLiteral("true")}};
    QCOMPARE(stage.run("RyJEConvertPropToFigureAction", fields), QString());
    auto *figure = qobject_cast<RySkeleton *>(carrier());
    QVERIFY(figure && figure->findBone(QStringLiteral("root")));
    QCOMPARE(figure->inherits("RyLegacyFigure"), rigging == QLatin1String("Legacy"));
    QVERIFY(shownInWorld(figure) == shown);
    QCOMPARE(ryUndoStack()->count(), 1);
    QCOMPARE(ryRestorePoints()->count(), points); // undo takes back all of it
    checkLastStep(asProp);
    ryUndoStack()->undo();
    QVERIFY(ryUndoStack()->isClean());
    ryUndoStack()->redo();

    figure->findBone(QStringLiteral("root"))->getXRotControl()->setValue(35.0f); // it goes back to its rest
    stage.select({figure->findBone(QStringLiteral("root"))});
    const QString posed = stage.dump();
    QVERIFY(shownInWorld(figure) != shown);
    QCOMPARE(stage.run("RyJEConvertFigureToPropAction"), QString());
    QVERIFY(!qobject_cast<RySkeleton *>(carrier()));
    QVERIFY(shownInWorld(carrier()) == shown);
    QCOMPARE(ryUndoStack()->count(), 2);
    QCOMPARE(ryRestorePoints()->count(), points);
    checkLastStep(posed);
    ryScene()->setSelection({carrier()});
    QCOMPARE(stage.dump(), asProp);
    QVERIFY(savedBytes() == file);
}

RY_TEST(ConversionsTest)

#include "tst_conversions.moc"
