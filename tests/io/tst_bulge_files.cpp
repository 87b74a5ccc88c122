#include "FigureSketch.h"
#include "LinkedFile.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyBulgeBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyMapOf.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <cmath>
#include <set>

using nlohmann::json;

namespace {

constexpr const char *Bindings = "/extras/RYHOST_rigging/figures/0/maps/bindings";

RyBoneBinding *bindingOf(const RyScene &scene, const char *bone)
{
    const RyNode *node = scene.findNode(QLatin1String(bone));
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(node);
    return skin ? skin->findBoneBinding(node) : nullptr;
}

/// Weights of any vertices, more at one end.
RyWeightMap *mapFor(const RyScene &scene, int first, const char *name)
{
    std::vector<quint16> weights(size_t(bindingOf(scene, "high")->getWeights()->getNumWeights()), 0);
    for (size_t vertex = size_t(first); vertex < weights.size(); vertex += 2)
        weights[vertex] = quint16(1000 + 3000 * vertex);
    return ryMapOf(weights, QLatin1String(name));
}

RyBulgeBinding *addBulge(const RyScene &scene, const char *bone, int axis)
{
    auto *bulge = new RyBulgeBinding(axis);
    bindingOf(scene, bone)->setBulgeBinding(axis, bulge);
    bulge->adjustBulgeValues(0.125f, -0.3f, 0.7f, 0.01f);
    bulge->getPosLeftBulgeController()->setDefaultValue(0.25f);
    bulge->getNegRightBulgeController()->setMin(-3);
    bulge->getNegRightBulgeController()->setMax(0.5f);
    bulge->getNegRightBulgeController()->setIsClamped(true);
    return bulge;
}

/// The posed figure with bulges of two bones, about several axes.
struct Bulged : LinkedFile
{
    explicit Bulged(const QString &path) : LinkedFile(write(path))
    {
        poseAndLink();
        addBulge(scene(), "high", 0)->setLeftWeights(mapFor(scene(), 1, "inner"));
        scene().findNode(QStringLiteral("high"))->getXRotControl()->setValue(-35);
        RyBulgeBinding *bulge = addBulge(scene(), "low", 2);
        bulge->setRightWeights(mapFor(scene(), 0, ""));
        bulge->setLeftWeights(mapFor(scene(), 3, "outer \"side\""));
        addBulge(scene(), "low", 1)->updatePropertyNames();
    }
};

std::vector<RyVec3> shown(const RyScene &scene)
{
    return scene.getSkeletons()[0]->getObject()->getDeformedPositions();
}

} // namespace

/// Bulges that are kept in files.
class BulgeFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void savedAndOpenedAgain()
    {
        Bulged bulged(path("plain"));
        const std::vector<RyVec3> before = shown(bulged.scene());
        RyBulgeBinding *bulge = bindingOf(bulged.scene(), "high")->getBulgeBinding(0);
        bulge->adjustBulgeValues(0, 0, 0, 0);
        QVERIFY(!(shown(bulged.scene()) == before));
        bulge->adjustBulgeValues(0.125f, -0.3f, 0.7f, 0.01f);
        QVERIFY(shown(bulged.scene()) == before);
        const QString dump = rySceneDump(bulged.scene());
        QVERIFY(dump.contains(QStringLiteral("\"inner\"")));
        const QStringList messages = bulged.save(path("saved"));
        QCOMPARE(messages.filter(QStringLiteral("bulge")),
                 QStringList("2 bones of \"root\" bulge; other programs do not see that"));

        LinkedFile again(path("saved"));
        QVERIFY2(again.character.messages.isEmpty(), qPrintable(again.character.messages.join('\n')));
        QVERIFY(sameDumps(rySceneDump(again.scene()), dump));
        const std::vector<RyVec3> opened = shown(again.scene());
        QCOMPARE(opened.size(), before.size());
        for (size_t i = 0; i < opened.size(); ++i)
            QVERIFY((opened[i] - before[i]).length() < 1e-3f);
        again.save(path("twice"));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("saved")));
        QString error;
        QVERIFY2(RySceneFile::saveWithoutSource(&again.scene(), path("alone"), &error), qPrintable(error));
        QVERIFY(sameDumps(rySceneDump(CharacterScene(path("alone")).scene), dump));

        // An edit of a value or of a map's name alone is saved.
        bindingOf(again.scene(), "low")->getBulgeBinding(2)->getPosRightBulgeController()->setDefaultValue(0.9f);
        again.save(path("default"));
        LinkedFile third(path("default"));
        QVERIFY(sameDumps(rySceneDump(third.scene()), rySceneDump(again.scene())));
        bindingOf(third.scene(), "high")->getBulgeBinding(0)->getLeftWeights()->setName(QStringLiteral("other"));
        third.save(path("name"));
        QCOMPARE(bindingOf(LinkedFile(path("name")).scene(), "high")->getBulgeBinding(0)->getLeftWeights()->getName(),
                 QString("other"));
    }

    /// Only what a turn can show is told.
    void messages()
    {
        Bulged bulged(path("plain"));
        bindingOf(bulged.scene(), "low")->getBulgeBinding(2)->adjustBulgeValues(0, 0, 0, 0);
        QCOMPARE(bulged.save(path("one")).filter(QStringLiteral("bulge")),
                 QStringList("1 bone of \"root\" bulges; other programs do not see that"));
        bindingOf(bulged.scene(), "high")->getBulgeBinding(0)->setLeftWeights(nullptr);
        QCOMPARE(bulged.save(path("none")).filter(QStringLiteral("bulge")), QStringList());
    }

    /// The names of the properties are kept as they are, after the bone or not.
    void namesOfProperties()
    {
        Bulged bulged(path("plain"));
        RyBulgeBinding *bulge = bindingOf(bulged.scene(), "high")->getBulgeBinding(0);
        bulge->updatePropertyNames();
        bulged.scene().findNode(QStringLiteral("high"))->setName(QStringLiteral("upper"));
        bulged.save(path("saved"));
        LinkedFile again(path("saved"));
        QVERIFY(sameDumps(rySceneDump(again.scene()), rySceneDump(bulged.scene())));
        QCOMPARE(bindingOf(again.scene(), "upper")->getBulgeBinding(0)->getNegLeftBulgeController()->getName(),
                 QString("high_bulgeXNegLeft"));
        QCOMPARE(bindingOf(again.scene(), "low")->getBulgeBinding(2)->getNegLeftBulgeController()->getName(),
                 QString("bulgeZNegLeft"));
        again.save(path("twice"));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("saved")));
    }

    /// Whatever stands where bulges are stored: they are read as they are or left out with a message.
    void damaged()
    {
        Bulged bulged(path("plain"));
        bulged.save(path("saved"));
        const json tree = LinkedFile(path("saved")).character.file.tree();
        const json values[] = {
            nullptr, -1, 1e30, 1e300, "x", json::array(), json::object(), 0.5, 1e18, true, json::array({1, 2}), "AAAA"};
        int kept = 0, dropped = 0;
        // The values themselves and all that hold them.
        const json flat = json(tree.at(json::json_pointer(Bindings))).flatten();
        std::set<std::string> places;
        for (const auto &entry : flat.items()) {
            for (json::json_pointer at(entry.key()); !at.empty(); at = at.parent_pointer())
                places.insert(at.to_string());
        }
        for (const std::string &place : places) {
            const json::json_pointer at(place);
            for (size_t value = 0; value <= std::size(values); ++value) {
                json changed = tree;
                json &stored = changed[json::json_pointer(Bindings)];
                if (value < std::size(values))
                    stored[at] = values[value];
                else if (stored[at.parent_pointer()].is_object())
                    stored[at.parent_pointer()].erase(at.back());
                else
                    stored[at.parent_pointer()].erase(size_t(std::stoul(at.back())));
                openDamaged(changed, kept, dropped);
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QString("%1, value %2").arg(QString::fromStdString(place)).arg(value)));
            }
        }
        // A number that a value cannot be.
        json changed = tree;
        for (const auto &entry : flat.items()) {
            if (QString::fromStdString(entry.key()).contains(QStringLiteral("/values/0/")) && entry.value().is_number())
                changed[json::json_pointer(Bindings)][json::json_pointer(entry.key())] = 1e300;
        }
        const int before = dropped;
        openDamaged(changed, kept, dropped);
        QCOMPARE(dropped, before + 1);
        QVERIFY(!m_messages.filter(QStringLiteral("bulge maps")).isEmpty());
        // Bulges that are no object.
        for (auto &binding : (changed = tree)[json::json_pointer(Bindings)])
            binding["bulges"] = "x";
        openDamaged(changed, kept, dropped);
        QVERIFY(!m_messages.filter(QStringLiteral("bulge maps")).isEmpty());
        QVERIFY2(kept > 50 && dropped > 300, qPrintable(QString("%1 kept, %2 dropped").arg(kept).arg(dropped)));
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    void openDamaged(const json &tree, int &kept, int &dropped)
    {
        writeTree(tree, path("damaged"));
        RyScene scene;
        QString error;
        m_messages.clear();
        QVERIFY2(RySceneFile::open(&scene, path("damaged"), &error, &m_messages), qPrintable(error));
        const bool isKept = bindingOf(scene, "high")->hasBulgeWeights() || bindingOf(scene, "low")->hasBulgeWeights();
        ++(isKept ? kept : dropped);
        QVERIFY(isKept || !m_messages.filter(QStringLiteral("bulge maps")).isEmpty() ||
                tree.at(json::json_pointer(Bindings)).dump().find("left") == std::string::npos);
        for (const RyVec3 &at : shown(scene))
            QVERIFY(std::isfinite(at.x) && std::isfinite(at.y) && std::isfinite(at.z));
        if (kept % 40 != 1)
            return;
        QVERIFY2(RySceneFile::save(&scene, path("again"), &error), qPrintable(error));
        RyScene again;
        QVERIFY2(RySceneFile::open(&again, path("again"), &error), qPrintable(error));
        QVERIFY2(RySceneFile::save(&again, path("twice"), &error), qPrintable(error));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("again")));
    }

    QTemporaryDir m_folder;
    QStringList m_messages; // of what was opened last
};

RY_TEST(BulgeFilesTest)
#include "tst_bulge_files.moc"
