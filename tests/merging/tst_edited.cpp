#include "MergedScene.h"
#include "RigEdits.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// Random edits of the bones of merged scenes, and of figures that hang on turned and scaled bones.
class EditedMergeTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void edited_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<bool>("hangs");
        const QStringList names = characterNames();
        for (int i = 0; i < names.size(); ++i) {
            const QString &second = names[(i + 1) % names.size()];
            for (const bool hangs : {false, true})
                QTest::addRow("%s, %s%s", qPrintable(names[i]), qPrintable(second), hangs ? ", on a bone" : "")
                    << names[i] << second << hangs;
        }
    }
    void edited()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(bool, hangs);
        if (ryModel(first).isEmpty() || ryModel(second).isEmpty())
            QSKIP("the character is not here");
        MergedScene merged({ryModel(first), ryModel(second)});
        RySkeleton *figure = merged.scene.getSkeletons().back();
        if (hangs) {
            RyBone *bone = RigEdits::pick(merged.scene.getSkeletons().front()->getAllBones(), m_random);
            QVERIFY(bone->addNodeChild(figure));
            bone->getYRotControl()->setValue(35.0f);
            bone->getScaleControl()->setValue(1.4f);
        }
        figure->getXTransControl()->setValue(60.0f);
        figure->getZRotControl()->setValue(-70.0f);
        figure->getScaleControl()->setValue(0.6f);
        for (int i = 0; i < Edits; ++i)
            RigEdits::editAtRandom(merged.scene, merged.bones(), m_random);
        QCOMPARE(merged.check(m_folder.filePath(QStringLiteral("edited.glb")), 5e-5), QString());
    }

private:
    static constexpr int Edits = 10;

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(EditedMergeTest)
#include "tst_edited.moc"
