#include "CharacterScene.h"
#include "FigureSketch.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

#include <functional>

using EditOfBone = std::function<void(RyBone &)>;
Q_DECLARE_METATYPE(EditOfBone)

/// A save that writes nothing but what one value says, which glTF has no place for.
class SingleValuesTest : public QObject
{
    Q_OBJECT

    using Edit = EditOfBone;

private slots:
    void isSavedAlone_data()
    {
        QTest::addColumn<Edit>("edit");
        const auto row = [](const char *name, const Edit &edit) { QTest::newRow(name) << edit; };
        row("label", [](RyBone &bone) { bone.setLabel(QStringLiteral("The arm")); });
        row("hidden", [](RyBone &bone) { bone.setHidden(true); });
        row("selectable", [](RyBone &bone) { bone.setSelectable(false); });
        row("promoted", [](RyBone &bone) { bone.setPromoteSelection(true); });
        row("least", [](RyBone &bone) { bone.poseControls()[4]->setMin(-30.0f); });
        row("most", [](RyBone &bone) { bone.poseControls()[4]->setMax(30.0f); });
        row("clamped", [](RyBone &bone) { bone.poseControls()[4]->setIsClamped(true); });
        row("default of a pose", [](RyBone &bone) { bone.poseControls()[4]->setDefaultValue(3.0f); });
        row("bones are drawn", [](RyBone &bone) {
            RySkeleton *figure = bone.getSkeleton();
            figure->setDrawGLBones(!figure->drawsGLBones());
        });
        row("default of an end", [](RyBone &bone) { bone.riggingControls()[4]->setDefaultValue(3.0f); });
    }

    void isSavedAlone()
    {
        QFETCH(Edit, edit);
        const QString path = m_folder.filePath(QStringLiteral("single.gltf"));
        CharacterScene scene(FigureSketch().write(m_folder.filePath(QStringLiteral("plain.gltf"))));
        const QString before = rySceneDump(scene.scene);
        edit(*scene.bones()[1]);
        const QString dump = rySceneDump(scene.scene);
        QVERIFY(dump != before);
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, path, &error), qPrintable(error));
        const CharacterScene again(path);
        QCOMPARE(rySceneDump(again.scene), dump);
    }

private:
    QTemporaryDir m_folder;
};

RY_TEST(SingleValuesTest)
#include "tst_single_values.moc"
