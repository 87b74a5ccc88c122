#include "ClipSessions.h"
#include "ClipSketch.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>

using nlohmann::json;

/// Clips whose numbers are sound one by one and lead out of what floats can say.
class WildNumbersTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_random.seed(ryTestSeed());
        m_sketch = std::make_unique<ClipSketch>(m_random);
        m_sketch->bind();
    }
    void cleanup() { ryUndoStack()->clearAll(); }

    /// A bone hangs elsewhere, on one that a clip scales to nothing: no frame of it can be held against that.
    void vanishingParent_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("isAlways");
        for (const char *kind : {"STEP", "LINEAR"}) {
            QTest::addRow("%s, at times", kind) << QString::fromLatin1(kind) << false;
            QTest::addRow("%s, always", kind) << QString::fromLatin1(kind) << true;
        }
    }
    void vanishingParent()
    {
        QFETCH(QString, kind);
        QFETCH(bool, isAlways);
        const size_t clip = m_sketch->addClip("hides");
        m_sketch->driveAll(clip, "LINEAR");
        const float size = isAlways ? 0.0f : 1.0f;
        const int values = m_sketch->addValues("scale", {size, size, size, 0.0f, 0.0f, 0.0f, size, size, size});
        const int times = m_sketch->addTimes({0.1f, 0.5f, 0.9f});
        m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, values, kind.toStdString()), ClipSketch::RightArm,
                             "scale");
        CharacterScene character(write());
        boneOf(character, ClipSketch::RightArm)->addNodeChild(boneOf(character, ClipSketch::LeftHand), true);
        const QStringList messages = save(character);
        QVERIFY2(messages.filter(QStringLiteral("hides")).size() == 1, qPrintable(messages.join(QLatin1Char('\n'))));
        holdsFiniteNumbers();
        const QByteArray first = bytesOf(m_saved);
        save(character);
        QVERIFY(bytesOf(m_saved) == first);
    }

    /// The same where the node itself stands so, and no clip says otherwise.
    void vanishedParent()
    {
        m_sketch->drive(m_sketch->addClip("hidden"), ClipSketch::Spine, "rotation", "LINEAR");
        m_sketch->drive(m_sketch->addClip("hidden hand"), ClipSketch::LeftHand, "rotation", "LINEAR");
        m_sketch->drive(m_sketch->addClip("elsewhere"), ClipSketch::Empty, "rotation", "LINEAR");
        m_sketch->node(ClipSketch::RightArm)["scale"] = {0, 0, 0};
        CharacterScene character(write());
        boneOf(character, ClipSketch::RightArm)->addNodeChild(boneOf(character, ClipSketch::LeftHand), true);
        const QStringList messages = save(character).filter(QStringLiteral(": hidden, hidden hand"));
        QCOMPARE(messages.size(), 1);
        holdsFiniteNumbers();
        QCOMPARE(changedChannel(character.file, GltfEvaluator(m_saved.toStdString())), QString());
        for (const json &clip : GltfEvaluator(m_saved.toStdString()).tree()["animations"])
            QCOMPARE(clip["channels"].size(), size_t(1));
        const QByteArray first = bytesOf(m_saved);
        save(character);
        QVERIFY(bytesOf(m_saved) == first);
    }

    /// Sums of what fits into a float may not.
    void largestFloats()
    {
        const size_t clip = m_sketch->addClip("far away");
        std::vector<float> values;
        for (int i = 0; i < 9; ++i)
            values.push_back(i % 2 ? -3e38f : 3.2e38f);
        for (const int joint : {ClipSketch::LeftArm, ClipSketch::RightArm, ClipSketch::LeftHand}) {
            const int output = m_sketch->addValues("translation", values);
            m_sketch->addChannel(clip,
                                 m_sketch->addSampler(clip, m_sketch->addTimes({0.0f, 0.5f, 1.0f}), output, "LINEAR"),
                                 joint, "translation");
            m_sketch->drive(clip, joint, "rotation", "LINEAR");
        }
        CharacterScene character(write());
        ClipEdits::turnAtRandom(character.bones(), m_random);
        ClipEdits::moveOrigins(character.bones(), 9.0, m_random);
        save(character);
        holdsFiniteNumbers();
    }

    /// What a view says of its use may be anything; it keeps nobody from saving.
    void strangeTargets()
    {
        const size_t clip = m_sketch->addClip("shared");
        const int times = m_sketch->addTimes(m_sketch->someTimes(3));
        const int turns =
            m_sketch->addValues("rotation", m_sketch->someValues(ClipSketch::LeftArm, "rotation", "LINEAR", 3));
        for (const int joint : {ClipSketch::LeftArm, ClipSketch::RightArm})
            m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, turns, "LINEAR"), joint, "rotation");
        const json targets[] = {"text", nullptr, json::array(), 0.5};
        for (json &view : m_sketch->tree["bufferViews"])
            view["target"] = targets[m_random() % std::size(targets)];
        CharacterScene character(write());
        ClipEdits::turnAtRandom({boneOf(character, ClipSketch::LeftArm)}, m_random);
        save(character);
        holdsFiniteNumbers();
    }

    /// Extensions may read the same bytes as whole views: those have no stride.
    void overlappingViews()
    {
        m_sketch->driveAll(m_sketch->addClip("all"), "LINEAR");
        json &views = m_sketch->tree["bufferViews"];
        views[0]["extensions"]["X_unknown"] = json::object();
        const json again = views[0];
        views.push_back(again);
        CharacterScene character(write());
        ClipEdits::turnAtRandom(character.bones(), m_random);
        save(character);
        holdsFiniteNumbers();
    }

    /// Such curves never come near their tolerance; what they get must stay in proportion to their keys.
    void longWildCurves()
    {
        constexpr size_t Keys = 2000;
        const size_t clip = m_sketch->addClip("wild");
        std::vector<float> moments;
        for (size_t i = 0; i < Keys; ++i)
            moments.push_back(float(i) / 30.0f);
        const int times = m_sketch->addTimes(moments);
        for (const int joint : ClipSketch::joints()) {
            std::vector<float> scales;
            for (size_t i = 0; i < 3 * Keys; ++i)
                scales.push_back(float(std::pow(10.0, m_sketch->number(0.0, 20.0))));
            const int output = m_sketch->addValues("scale", scales);
            m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, output, "LINEAR"), joint, "scale");
            const int turns = m_sketch->addValues("rotation", m_sketch->someValues(joint, "rotation", "LINEAR", Keys));
            m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, turns, "LINEAR"), joint, "rotation");
        }
        CharacterScene character(write());
        ClipEdits::moveOrigins(character.bones(), 9.0, m_random);
        QElapsedTimer clock;
        clock.start();
        save(character);
        QVERIFY2(clock.elapsed() < 30000, qPrintable(QString::number(clock.elapsed())));
        QVERIFY2(QFileInfo(m_saved).size() < 20 * QFileInfo(path()).size(),
                 qPrintable(QString::number(QFileInfo(m_saved).size())));
    }

private:
    QString path() const { return m_folder.filePath(QStringLiteral("sketch.gltf")); }
    QString write() const { return m_sketch->write(path()); }

    QStringList save(CharacterScene &character)
    {
        m_saved = m_folder.filePath(QStringLiteral("saved.gltf"));
        QString error;
        QStringList messages;
        if (!RySceneFile::save(&character.scene, m_saved, &error, &messages))
            throw std::runtime_error(error.toStdString());
        return messages;
    }

    void holdsFiniteNumbers() const
    {
        const GltfEvaluator file(m_saved.toStdString());
        for (const json &clip : file.tree()["animations"]) {
            for (const json &sampler : clip["samplers"]) {
                for (const char *place : {"input", "output"}) {
                    const std::string bytes = file.accessorBytes(sampler[place].get<int>());
                    std::vector<float> numbers(bytes.size() / sizeof(float));
                    std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(float));
                    for (const float number : numbers)
                        QVERIFY(std::isfinite(number));
                }
            }
        }
    }

    static RyBone *boneOf(const CharacterScene &character, int node)
    {
        for (RyBone *bone : character.bones()) {
            if (character.nodeOf(bone) == node)
                return bone;
        }
        throw std::runtime_error("no such bone");
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
    std::unique_ptr<ClipSketch> m_sketch;
    QString m_saved;
};

RY_TEST(WildNumbersTest)
#include "tst_wild_numbers.moc"
