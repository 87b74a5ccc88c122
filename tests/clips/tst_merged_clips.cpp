#include "ClipSessions.h"
#include "MergedScene.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// Two characters, the second one on a bone of the first, and joints of both moved: the clips of both files show what
/// they showed before.
class MergedClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void pairs_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        const auto add = [](const char *first, const char *second) {
            QTest::addRow("%s on %s", second, first) << QString::fromLatin1(first) << QString::fromLatin1(second);
        };
        add("CesiumMan.glb", "Fox.glb");
        add("Fox.glb", "RiggedSimple.gltf");
        add("RiggedSimple.gltf", "CesiumMan.glb");
    }
    void pairs()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        if (ryModel(first).isEmpty() || ryModel(second).isEmpty())
            QSKIP("the character is not here");
        const QString hung = m_folder.filePath(QStringLiteral("hung.glb"));
        const QString edited = m_folder.filePath(QStringLiteral("edited.glb"));
        const GltfEvaluator alone(ryModel(first).toStdString());
        ClipChoice part;
        part.isPart = true;
        part.frames = 60;
        QStringList messages;
        {
            MergedScene merged({ryModel(first), ryModel(second)});
            hang(merged);
            merged.save(hung);
            compare(alone, GltfEvaluator(hung.toStdString()), part);
            const double size = 0.03 * CharacterScene(ryModel(first)).height;
            ClipEdits::moveOrigins(merged.bones(), size, m_random);
            ClipEdits::turnAtRandom(merged.bones(), m_random);
            merged.save(edited);
            messages = merged.messages;
        }
        // Moved before they were saved together, and after.
        compare(alone, GltfEvaluator(edited.toStdString()), part);
        ClipChoice all;
        all.frames = 60;
        compare(GltfEvaluator(hung.toStdString()), GltfEvaluator(edited.toStdString()), all);
        QVERIFY2(messages.filter(QStringLiteral("clip"), Qt::CaseInsensitive).isEmpty(),
                 qPrintable(messages.join(QLatin1Char('\n'))));
        ClipSessions sessions{m_random};
        QCOMPARE(sessions.check(hung, ClipEdits::named("origins and orientations"), all), QString());
    }

private:
    void hang(MergedScene &merged)
    {
        const std::vector<RyBone *> bones = merged.figure(0)->getAllBones();
        QVERIFY(bones[bones.size() / 2]->addNodeChild(merged.figure(1)));
    }
    static void compare(const GltfEvaluator &before, const GltfEvaluator &after, const ClipChoice &choice)
    {
        const ClipDifference difference = largestClipDifference(before, after, choice);
        QVERIFY2(difference.distance <= ClipSessions::Tolerance, qPrintable(difference.text()));
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(MergedClipsTest)
#include "tst_merged_clips.moc"
