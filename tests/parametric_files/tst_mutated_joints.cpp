#include "LegacyArm.h"

#include "CharacterScene.h"
#include "FileMutator.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyObject.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <cmath>

using nlohmann::json;

/// Files whose stored joints were changed at random: what opens is edited, saved and opened again, and the second save
/// has the bytes of the first. RY_MUTATED_PARAMETRIC says how many.
class MutatedJointsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { ryUndoStack()->clearAll(); }
    void files_data();
    void files();
    void cleanupTestCase();

private:
    static constexpr unsigned FilesByDefault = 200;

    size_t below(size_t limit) { return m_random() % std::max(limit, size_t(1)); }
    void spoil(json &tree);
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    std::mt19937 m_random;
    QTemporaryDir m_folder;
    json m_tree;
    int m_refused = 0;
    int m_parametric = 0;
    int m_mapped = 0;
};

void MutatedJointsTest::initTestCase()
{
    LegacyArm arm(true);
    arm.makeUntidy();
    QString error;
    QVERIFY2(RySceneFile::save(&arm.scene, path("arm.gltf"), &error), qPrintable(error));
    m_tree = json::parse(bytesOf(path("arm.gltf")).toStdString());
}

void MutatedJointsTest::files_data()
{
    QTest::addColumn<unsigned>("number");
    bool given = false;
    const unsigned wanted = qEnvironmentVariable("RY_MUTATED_PARAMETRIC").toUInt(&given);
    for (unsigned number = 0; number < (given ? wanted : FilesByDefault); ++number)
        QTest::newRow(qPrintable(QString::number(number))) << number;
}

/// Members of the stored joints that only somebody who knows them would think of.
void MutatedJointsTest::spoil(json &tree)
{
    const json values[] = {
        nullptr,          -1,   1e30, 1e300, "x", json::array(), json::object(), 0.5, 9007199254740993.0,
        json::array({1}), true, 3};
    const json &value = values[below(std::size(values))];
    json &parametric = tree["extras"]["RYHOST_rigging"]["figures"][0]["parametric"];
    json &joints = parametric["joints"];
    if (!joints.is_array() || joints.empty())
        return;
    json &joint = joints[below(joints.size())];
    const bool hasParams = joint.is_object() && joint.contains("params") && joint["params"].is_array();
    if (!hasParams || joint["params"].empty())
        return;
    json &param = joint["params"][below(joint["params"].size())];
    if (!param.is_object())
        return;
    const char *ofParam[] = {"type",    "name",  "label",   "axis",   "driver",
                             "flipped", "flags", "dynamic", "static", "values"};
    switch (below(9)) {
    case 0:
        param[ofParam[below(std::size(ofParam))]] = value;
        break;
    case 1:
        param.erase(ofParam[below(std::size(ofParam))]);
        break;
    case 2:
        for (const char *group : {"dynamic", "static", "values", "flags"}) {
            if (param.contains(group) && param[group].is_object() && !param[group].empty())
                std::next(param[group].begin(), std::ptrdiff_t(below(param[group].size()))).value() = value;
        }
        break;
    case 3:
        param["values"] = {{"staticA", {value, value}}, {"start", {1, 2, value, 4, value}}, {"hiStart", value}};
        break;
    case 4:
        joint["bone"] = value;
        break;
    case 5:
        joints.push_back(joint);
        break;
    case 6:
        joint["params"].push_back(param);
        break;
    case 7:
        parametric["fit"] = below(2) == 0 ? value : json{{"fingerprint", value}};
        break;
    default:
        if (parametric["fit"].is_object())
            parametric["fit"].update(json{{"plain", value}, {"rms", value}});
    }
}

void MutatedJointsTest::files()
{
    QFETCH(unsigned, number);
    m_random.seed(ryTestSeed() + number);
    json tree = m_tree;
    for (size_t i = below(4); i > 0; --i)
        spoil(tree);
    FileMutator mutator(QByteArray::fromStdString(tree.dump()), m_random);
    for (size_t i = below(3); i > 0; --i)
        mutator.mutateBelow(json::json_pointer("/extras/RYHOST_rigging/figures"));
    const QString mutated = path("mutated.gltf");
    mutator.write(mutated, below(8) == 0);
    RyScene scene;
    QString error;
    if (!RySceneFile::open(&scene, mutated, &error)) {
        QVERIFY2(error.contains(mutated) && error.size() > mutated.size() + 10, qPrintable(error));
        ++m_refused;
        return;
    }
    RyLegacyBinding *binding = LegacyArm::bindingOf(scene);
    ++(binding ? m_parametric : m_mapped);
    for (const RyNode *node : scene.getNodes()) {
        if (!node->getObject())
            continue;
        for (const RyVec3 &point : node->getObject()->getDeformedPositions())
            QVERIFY(!std::isnan(point.x) && !std::isnan(point.y) && !std::isnan(point.z));
    }
    if (binding && !binding->joints().empty() && !binding->joints()[0]->params().empty()) {
        RyLegacyJointParam &param = *binding->joints()[0]->params()[0];
        if (!param.controllers().empty())
            param.controllers()[0]->setValue(12.5f);
    }
    const QString dump = LegacyArm::dump(scene);
    QVERIFY2(RySceneFile::save(&scene, path("saved.gltf"), &error), qPrintable(error));
    RyScene again;
    QStringList messages;
    QVERIFY2(RySceneFile::open(&again, path("saved.gltf"), &error, &messages), qPrintable(error));
    if (binding)
        QCOMPARE(LegacyArm::dump(again), dump);
    QVERIFY2(RySceneFile::save(&again, path("twice.gltf"), &error), qPrintable(error));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("saved.gltf")));
}

void MutatedJointsTest::cleanupTestCase()
{
    qInfo("%d refused, %d parametric, %d weight mapped", m_refused, m_parametric, m_mapped);
    if (m_refused + m_parametric + m_mapped >= int(FilesByDefault)) {
        QVERIFY(m_parametric > m_refused);
        QVERIFY(m_mapped > 0);
    }
}

RY_TEST(MutatedJointsTest)
#include "tst_mutated_joints.moc"
