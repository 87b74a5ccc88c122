#include "ClipSessions.h"
#include "ClipSketch.h"

#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// Files made at random, edited at random. RY_RANDOM_CLIPS says how many.
class RandomClipsTest : public QObject
{
    Q_OBJECT

public:
    /// Bones that get a share of the weights of others.
    enum Bones {
        Apart,         ///< know of whom, and come in other sessions than those where bones are hung elsewhere
        HungElsewhere, ///< in the same ones
        Unknown,       ///< as the first, and do not know of whom
    };
    Q_ENUM(Bones)

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void files_data()
    {
        QTest::addColumn<unsigned>("seed");
        QTest::addColumn<Bones>("bones");
        bool given = false;
        const unsigned wanted = qEnvironmentVariable("RY_RANDOM_CLIPS").toUInt(&given);
        for (unsigned number = 0; number < (given ? wanted : FilesByDefault); ++number) {
            QTest::addRow("file %u", number) << ryTestSeed() + number << Apart;
            if (number % 3 == 0)
                QTest::addRow("file %u, hung elsewhere", number) << ryTestSeed() + number << HungElsewhere;
        }
        // Splits and siblings of bones that weigh the same vertices: who gave which weights to whom.
        for (const unsigned seed : {95320u, 2489093038u})
            QTest::addRow("seed %u, told by the weights", seed) << seed << Unknown;
        for (const unsigned seed : {95320u, 2489093038u, 880691u, 2432424084u})
            QTest::addRow("seed %u", seed) << seed << Apart;
    }
    void files()
    {
        QFETCH(unsigned, seed);
        QFETCH(Bones, bones);
        s_bones = bones;
        m_random.seed(seed);
        ClipSketch sketch(m_random);
        const bool isPosed = chance(3);
        const bool isUneven = chance(5);
        dress(sketch, isPosed, isUneven);
        ClipChoice choice;
        choice.frames = 120;
        ClipSessions sessions(m_random);
        sessions.mayTell = isUneven;
        // Where bones that are posed are hung elsewhere, other controls hold the pose, and clips follow those; and
        // shear is no transform.
        const ClipEdits::Kind some{"some", ClipEdits::Keeps::Frames, isPosed || isUneven ? editRest : editAnything};
        const QString path = sketch.write(m_folder.filePath(QStringLiteral("random.gltf")));
        const QString failure = sessions.check(path, some, choice);
        QVERIFY2(failure.isEmpty(), qPrintable(failure));
    }

private:
    static constexpr unsigned FilesByDefault = 30;

    bool chance(size_t of) { return m_random() % of == 0; }

    void dress(ClipSketch &sketch, bool isPosed, bool isUneven)
    {
        for (const int node : {ClipSketch::Armature, ClipSketch::Spine, ClipSketch::RightHand}) {
            const double factor = sketch.number(0.5, 2.0);
            if (chance(3))
                sketch.node(node)["scale"] = {factor, factor, factor};
        }
        // A stretch that the nodes do not have is a pose.
        sketch.bind(Eigen::Vector3d::Constant(isPosed && chance(2) ? 1.2 : 1.0));
        if (chance(3))
            sketch.addSecondSkin();
        if (isPosed)
            sketch.pose();
        for (size_t clip = 0, count = 1 + sketch.below(3); clip < count; ++clip)
            driveAtRandom(sketch, sketch.addClip("clip " + std::to_string(clip)), isUneven);
    }

    void driveAtRandom(ClipSketch &sketch, size_t clip, bool isUneven)
    {
        static const char *const kinds[] = {"STEP", "LINEAR", "LINEAR", "CUBICSPLINE"};
        std::vector<int> nodes = ClipSketch::joints();
        nodes.insert(nodes.end(), {ClipSketch::Prop, ClipSketch::Empty});
        for (const int node : nodes) {
            for (const char *path : {"rotation", "translation", "scale"}) {
                const bool isScale = *path == 's';
                // Three factors stay with what hangs on no joint's place.
                const bool isOwn = isUneven && (node == ClipSketch::LeftHand || node == ClipSketch::Spine);
                if (chance(isScale ? 4 : 2) && (!isScale || node != ClipSketch::Prop))
                    sketch.drive(clip, node, path, kinds[sketch.below(4)], isScale && isOwn);
            }
        }
        // A clip leaves the pose alone of what it neither drives nor carries: all of it hangs on the armature.
        sketch.drive(clip, ClipSketch::Armature, "rotation", kinds[sketch.below(4)]);
    }

    static void editRest(CharacterScene &character, std::mt19937 &random, ClipChoice &choice)
    {
        edit(character, random, choice, false);
    }
    static void editAnything(CharacterScene &character, std::mt19937 &random, ClipChoice &choice)
    {
        edit(character, random, choice, true);
    }
    static void edit(CharacterScene &character, std::mt19937 &random, ClipChoice &choice, bool withTree)
    {
        std::vector<ClipEdits::Kind> kinds = ClipEdits::ofTheRest();
        if (withTree)
            kinds.insert(kinds.end(), ClipEdits::ofTheTree().begin(), ClipEdits::ofTheTree().end());
        // The numbers of a pose mean something else in another order.
        std::erase_if(kinds, [](const ClipEdits::Kind &kind) { return qstrcmp(kind.name, "rotation orders") == 0; });
        // By its weights alone a bone beside another is known where it stands: none comes where some hang elsewhere.
        const std::vector<std::string> others = random() % 2 ? std::vector<std::string>{"sibling", "tree and rest"}
                                                             : std::vector<std::string>{"hang higher"};
        std::erase_if(kinds, [&others](const ClipEdits::Kind &kind) {
            return s_bones != HungElsewhere && std::find(others.begin(), others.end(), kind.name) != others.end();
        });
        const size_t count = 1 + random() % 4;
        for (size_t i = 0; i < count; ++i) {
            const ClipEdits::Kind &kind = kinds[random() % kinds.size()];
            qInfo("%s", kind.name);
            kind.edit(character, random, choice);
        }
        if (s_bones == Unknown) {
            for (RyBone *bone : character.bones())
                bone->setWeightGiver(nullptr);
        }
    }

    static inline Bones s_bones = Apart;
    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(RandomClipsTest)
#include "tst_random_clips.moc"
