#include "SketchTest.h"

#include "ClipSessions.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <stdexcept>

using nlohmann::json;

void SketchTest::begin()
{
    m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u)));
    m_sketch = std::make_unique<ClipSketch>(m_random);
}

void SketchTest::open()
{
    m_character = std::make_unique<CharacterScene>(m_sketch->write(path()));
}

std::string SketchTest::save()
{
    m_saved = m_folder.filePath(QStringLiteral("saved.gltf"));
    m_messages.clear();
    QString error;
    if (!RySceneFile::save(&m_character->scene, m_saved, &error, &m_messages))
        throw std::runtime_error(error.toStdString());
    return m_saved.toStdString();
}

RyBone *SketchTest::boneOf(int node) const
{
    for (RyBone *bone : m_character->bones()) {
        if (m_character->nodeOf(bone) == node)
            return bone;
    }
    throw std::runtime_error("no such bone");
}

void SketchTest::editBoth(int node)
{
    ClipEdits::moveOrigins({boneOf(node)}, 6.0, m_random);
    ClipEdits::turnAtRandom({boneOf(node)}, m_random);
}

const json &SketchTest::samplerOf(const GltfEvaluator &file, size_t clip, size_t channel)
{
    const json &animation = file.tree()["animations"][clip];
    return animation["samplers"][animation["channels"][channel]["sampler"].get<size_t>()];
}

void SketchTest::showsTheSame(const GltfEvaluator &after, const std::set<int> &otherClips) const
{
    ClipChoice choice;
    choice.frames = 300;
    choice.otherClips = otherClips;
    choice.steadyNodes = nodesBesideBones(*m_character);
    const ClipDifference difference = largestClipDifference(m_character->file, after, choice);
    QVERIFY2(difference.distance <= ClipSessions::Tolerance, qPrintable(difference.text()));
}

void SketchTest::isValid() const
{
    const RyValidation before = ryValidate(path());
    const RyValidation after = ryValidate(m_saved);
    if (before.available)
        QVERIFY2(after.errors <= before.errors, qPrintable(after.report));
}
