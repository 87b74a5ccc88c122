#include "FigureSketch.h"
#include "LinkedFile.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <cmath>

using json = nlohmann::json;

static constexpr double Slack = 5e-3; // of single precision, in centimetres

/// Links that files keep, and own shares of controlled values.
class LinksOfFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void comeBack()
    {
        LinkedFile linked(plain());
        linked.poseAndLink();
        const QString dump = rySceneDump(linked.scene());
        QCOMPARE(linked.save(path("saved")), QStringList());
        QVERIFY(linked.distanceTo(path("saved")) < Slack);

        LinkedFile again(path("saved"));
        QCOMPARE(again.character.messages, QStringList());
        QVERIFY(sameDumps(rySceneDump(again.scene()), dump));
        for (const char *node : {"root", "low", "high", "steer", "thing"}) {
            for (const char *name : {"xtran", "ztran", "xrot", "yrot", "zrot", "zscale"}) {
                QCOMPARE(again.value(node, name)->getRawValue(), linked.value(node, name)->getRawValue());
                QCOMPARE(again.value(node, name)->getValue(), linked.value(node, name)->getValue());
                QCOMPARE(again.value(node, name)->getDefaultValue(), linked.value(node, name)->getDefaultValue());
            }
        }
        QVERIFY(again.value("high", "xrot")->getRawValue() != again.value("high", "xrot")->getValue());
        QCOMPARE(again.value("high", "xrot")->getControllerLinks()[0]->getController(), again.value("thing", "zrot"));
        QCOMPARE(again.value("high", "xrot")->getControllerLinks()[1]->getController(), again.value("steer", "xrot"));
        QVERIFY(again.value("high", "xrot")->isClamped());
        QVERIFY(again.distanceTo(path("saved")) < Slack);

        again.save(path("twice"));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("saved")));
        const RyValidation valid = ryValidate(path("saved"));
        if (valid.available)
            QVERIFY2(valid.errors == 0, qPrintable(valid.report));
    }

    /// The controller takes what it controls along, before and after, and the file shows it.
    void posingTheController()
    {
        LinkedFile linked(plain());
        linked.poseAndLink();
        linked.save(path("saved"));
        LinkedFile again(path("saved"));
        for (LinkedFile *each : {&linked, &again}) {
            const float before = each->value("thing", "yrot")->getValue();
            each->value("steer", "xrot")->setValue(4.5f);
            QCOMPARE(each->value("thing", "yrot")->getValue(), before - 30.0f);
            each->value("thing", "zrot")->setValue(41);
        }
        QVERIFY(sameDumps(rySceneDump(again.scene()), rySceneDump(linked.scene())));
        linked.save(path("first"));
        again.save(path("second"));
        QVERIFY(again.distanceTo(path("second")) < Slack);
        QVERIFY(again.distanceTo(path("first")) < Slack);
        QVERIFY(again.distanceTo(path("saved")) > 1.0);
        LinkedFile third(path("second"));
        QVERIFY(sameDumps(rySceneDump(third.scene()), rySceneDump(linked.scene())));
    }

    /// A link that adds nothing is an edit all the same, and so is taking it away.
    void aLinkAloneIsAnEdit()
    {
        LinkedFile linked(plain());
        linked.save(path("without"));
        QVERIFY(!treeOf("without").contains("extras"));
        RyERCLink *link = RyERCLink::create(linked.value("steer", "yrot"), linked.value("high", "yrot"));
        linked.save(path("with"));
        QCOMPARE(linksOf("with").dump(),
                 std::string(R"([{"from":[{"node":4,"property":"yrot"}],"node":2,"property":"yrot"}])"));
        LinkedFile again(path("with"));
        RyERCLink::remove(again.value("high", "yrot")->getControllerLinks().front());
        again.save(path("removed"));
        QVERIFY(linksOf("removed").is_null());
        RyERCLink::remove(link);
        linked.save(path("taken"));
        QVERIFY(bytesOf(path("taken")) == bytesOf(path("without")));
    }

    /// An own share that others make up for is kept too.
    void theOwnShareOfAValueAtItsDefault()
    {
        LinkedFile linked(plain());
        linked.value("steer", "yrot")->setValue(30);
        linked.value("high", "yrot")->setValue(-30);
        linked.link(linked.value("steer", "yrot"), linked.value("high", "yrot"));
        QVERIFY(!linked.scene().findNode(QStringLiteral("high"))->isPosed());
        linked.save(path("saved"));
        LinkedFile again(path("saved"));
        QCOMPARE(again.value("high", "yrot")->getRawValue(), -30.0f);
        QCOMPARE(again.value("high", "yrot")->getValue(), 0.0f);
        again.value("steer", "yrot")->setValue(0);
        QCOMPARE(again.value("high", "yrot")->getValue(), -30.0f);
    }

    /// Defaults of pose controls are what links count from.
    void defaultsOfThePose()
    {
        LinkedFile linked(plain());
        float number = 25.3f;
        for (const char *name : {"xrot", "yrot", "zrot", "xtran", "zscale"}) {
            linked.value("high", name)->setDefaultValue(number *= 0.77f);
            linked.value("high", name)->setValue(number);
        }
        linked.value("thing", "xtran")->setDefaultValue(-5);
        linked.value("root", "ytran")->setDefaultValue(4);
        linked.save(path("saved"));
        LinkedFile again(path("saved"));
        QVERIFY(sameDumps(rySceneDump(again.scene()), rySceneDump(linked.scene())));
        for (const char *name : {"xrot", "yrot", "zrot", "xtran", "zscale"}) { // to the bit
            QVERIFY(again.value("high", name)->getDefaultValue() == linked.value("high", name)->getValue());
            QVERIFY(again.value("high", name)->getValue() == linked.value("high", name)->getValue());
        }
        QCOMPARE(again.value("thing", "xtran")->getDefaultValue(), -5.0f);
        QVERIFY(again.distanceTo(path("saved")) < Slack);
    }

    void bulges()
    {
        LinkedFile linked(plain());
        bulgeOf(linked)->getPosLeftBulgeController()->setDefaultValue(0.5f);
        bulgeOf(linked)->getNegRightBulgeController()->setValue(0.75f);
        linked.value("steer", "xrot")->setValue(2);
        linked.link(linked.value("steer", "xrot"), bulgeOf(linked)->getNegRightBulgeController());
        linked.link(bulgeOf(linked)->getPosLeftBulgeController(), linked.value("high", "zrot"));
        bulgeOf(linked)->getPosLeftBulgeController()->setValue(3.5f);
        linked.save(path("saved"));
        LinkedFile again(path("saved"));
        QVERIFY2(again.character.messages.isEmpty(), qPrintable(again.character.messages.join(QLatin1Char('\n'))));
        QVERIFY(sameDumps(rySceneDump(again.scene()), rySceneDump(linked.scene())));
        again.value("steer", "xrot")->setValue(5);
        QCOMPARE(bulgeOf(again)->getNegRightBulgeController()->getValue(), 5.75f);
        bulgeOf(again)->getPosLeftBulgeController()->setValue(0.5f);
        QCOMPARE(again.value("high", "zrot")->getValue(), 0.0f);
        again.save(path("twice"));
        LinkedFile third(path("twice"));
        QVERIFY(sameDumps(rySceneDump(third.scene()), rySceneDump(again.scene())));
    }

    /// What controls a value is gone, or was never in the file: the pose stays as it is drawn, and a message names
    /// both.
    void aControllerThatIsGone()
    {
        LinkedFile linked(plain());
        linked.value("steer", "xrot")->setValue(30);
        linked.value("low", "yrot")->setValue(11);
        linked.value("high", "xrot")->setValue(-4);
        linked.link(linked.value("steer", "xrot"), linked.value("high", "xrot"));
        linked.link(linked.value("low", "yrot"), linked.value("high", "xrot"));
        auto *camera = new RyCamera;
        camera->setName(QStringLiteral("eye"));
        linked.scene().addNode(camera);
        linked.link(camera->getYTransControl(), linked.value("low", "zrot"));
        const RyRef<RyNode> steer(linked.scene().findNode(QStringLiteral("steer")));
        {
            RyUndoStackHold hold;
            linked.scene().removeNode(steer.get());
            hold.accept("remove");
        }
        const QStringList said{
            QStringLiteral("The link from \"steer: X Rotate\" to \"high: X Rotate\" is not stored: the "
                           "first one has no place in the file"),
            QStringLiteral("The link from \"eye: Y Translate\" to \"low: Z Rotate\" is not stored: the "
                           "first one has no place in the file")};
        QStringList messages = linked.save(path("gone"));
        messages.sort();
        QCOMPARE(messages, QStringList({said[1], said[0]}));
        // Undo brings it back with what it controls.
        ryUndoStack()->undo();
        QCOMPARE(linked.save(path("back")), QStringList(said[1]));
        LinkedFile again(path("gone"));
        QCOMPARE(again.value("high", "xrot")->getValue(), 37.0f);
        QCOMPARE(again.value("high", "xrot")->getRawValue(), 26.0f);
        QCOMPARE(again.value("high", "xrot")->getControllerLinks().size(), size_t(1));
        QVERIFY(again.distanceTo(path("gone")) < Slack);

        LinkedFile back(path("back"));
        QCOMPARE(back.value("high", "xrot")->getRawValue(), -4.0f);
        QCOMPARE(back.value("high", "xrot")->getValue(), 37.0f);
    }

    void whatIsControlledIsGone()
    {
        LinkedFile linked(plain());
        linked.poseAndLink();
        linked.scene().removeNode(linked.scene().findNode(QStringLiteral("thing")));
        linked.save(path("saved"));
        for (const json &entry : linksOf("saved"))
            QVERIFY(entry.value("node", -1) != 5);
    }

    void undoneLinks()
    {
        LinkedFile linked(plain());
        {
            RyUndoStackHold hold;
            linked.poseAndLink();
            hold.accept("link");
        }
        const QString dump = rySceneDump(linked.scene());
        linked.save(path("linked"));
        ryUndoStack()->undo();
        linked.save(path("undone"));
        QVERIFY(!treeOf("undone").contains("extras"));
        ryUndoStack()->redo();
        QVERIFY(rySceneDump(linked.scene()) == dump);
        linked.save(path("redone"));
        QVERIFY(bytesOf(path("redone")) == bytesOf(path("linked")));
    }

    /// A stored link whose ends are not to be found, or that would close a circle, goes with a message that names both;
    /// the pose is what the file shows.
    void brokenEntries_data()
    {
        QTest::addColumn<QByteArray>("change"); // a merge patch of an entry
        QTest::addColumn<QString>("message");
        const QString left = QStringLiteral("The stored link from %1 to %2 is left out: %3");
        const QString high = QStringLiteral("\"high: X Rotate\"");
        const QString steer = QStringLiteral("\"steer: Y Rotate\"");
        QTest::newRow("no controller") << QByteArray(R"({"from": [{"node": 77, "property": "yrot"}]})")
                                       << left.arg("\"node 77: yrot\"", high,
                                                   "\"node 77\" does not stand in the scene");
        QTest::newRow("controller not shown")
            << QByteArray(R"({"from": [{"node": 0, "property": "yrot"}]})")
            << left.arg("\"root: yrot\"", high, "\"root\" does not stand in the scene");
        QTest::newRow("no figure") << QByteArray(R"({"from": [{"figure": 9, "property": "yrot"}]})")
                                   << left.arg("\"figure 9: yrot\"", high, "\"figure 9\" does not stand in the scene");
        QTest::newRow("no value of the controller")
            << QByteArray(R"({"from": [{"node": 4, "property": "wag"}]})")
            << left.arg("\"steer: wag\"", high, "\"steer\" has no value called \"wag\"");
        QTest::newRow("second value of a name")
            << QByteArray(R"({"from": [{"node": 4, "property": "yrot", "number": 1}]})")
            << left.arg("\"steer: yrot\"", high, "\"steer\" has no value called \"yrot\"");
        QTest::newRow("no controlled value")
            << QByteArray(R"({"property": "wag"})")
            << left.arg(steer, "\"high: wag\"", "\"high\" has no value called \"wag\"");
        QTest::newRow("no controlled node")
            << QByteArray(R"({"node": -3})")
            << left.arg(steer, "\"node -3: xrot\"", "\"node -3\" does not stand in the scene");
        QTest::newRow("itself") << QByteArray(R"({"from": [{"node": 2, "property": "xrot"}]})")
                                << left.arg(high, high, "it would close a circle");
        QTest::newRow("circle") << QByteArray(R"({"from": [{"node": 1, "property": "zrot"}]})")
                                << left.arg("\"low: Z Rotate\"", high, "it would close a circle");
        QTest::newRow("no number") << QByteArray(R"({"raw": "much"})") << QString();
        QTest::newRow("another share") << QByteArray(R"({"raw": 1e30})") << QString();
        QTest::newRow("no list") << QByteArray(R"({"from": 3})") << QString();
        QTest::newRow("nothing") << QByteArray(R"({"from": [7]})")
                                 << left.arg("\"nothing: \"", high, "\"nothing\" does not stand in the scene");
    }
    void brokenEntries()
    {
        QFETCH(QByteArray, change);
        QFETCH(QString, message);
        LinkedFile linked(plain());
        linked.value("steer", "yrot")->setValue(30);
        linked.value("high", "xrot")->setValue(-4);
        linked.link(linked.value("steer", "yrot"), linked.value("high", "xrot"));
        linked.link(linked.value("high", "xrot"), linked.value("low", "zrot"));
        linked.save(path("saved"));
        json tree = treeOf("saved");
        json &entries = tree["extras"]["RYHOST_rigging"]["links"];
        QCOMPARE(entries.size(), size_t(2));
        json &entry = entries[0]["node"] == 2 ? entries[0] : entries[1];
        entry.merge_patch(json::parse(change.constData()));
        write("broken", tree);

        LinkedFile broken(path("broken"));
        QCOMPARE(broken.character.messages, message.isEmpty() ? QStringList() : QStringList(message));
        QVERIFY(broken.distanceTo(path("saved")) < Slack);
        QCOMPARE(broken.value("high", "xrot")->getValue(), 26.0f);
        // What is saved then comes back as it is.
        broken.value("steer", "ztran")->setValue(1);
        broken.save(path("mended"));
        LinkedFile mended(path("mended"));
        QCOMPARE(mended.character.messages, QStringList());
        QVERIFY(sameDumps(rySceneDump(mended.scene()), rySceneDump(broken.scene())));
    }

    /// Where a stored link is left out a value may come back in another last digit: the file is not edited for that.
    void whatIsLeftOutIsNoEdit()
    {
        LinkedFile linked(plain());
        linked.value("low", "yrot")->setValue(-29.9f);
        linked.value("steer", "yrot")->setValue(30.1f);
        for (RyFloatProperty *controlled :
             {linked.value("high", "xrot"), linked.value("root", "xrot"), linked.value("thing", "xrot"),
              bulgeOf(linked)->getNegRightBulgeController()}) {
            controlled->setValue(0.1337f);
            linked.link(linked.value("low", "yrot"), controlled);
            linked.link(linked.value("steer", "yrot"), controlled);
        }
        linked.save(path("saved"));
        json tree = treeOf("saved");
        for (json &entry : tree["extras"]["RYHOST_rigging"]["links"])
            entry["from"][0]["node"] = 77;
        write("broken", tree);
        LinkedFile broken(path("broken"));
        QCOMPARE(broken.character.messages.size(), 4);
        const float before = linked.value("high", "xrot")->getValue();
        const float now = broken.value("high", "xrot")->getValue();
        QVERIFY(now != before && std::abs(now - before) < 1e-5f);
        broken.save(path("same"));
        QVERIFY(bytesOf(path("same")) == bytesOf(path("broken")));
    }

    /// Two values of a node may have one name; a file says which is meant.
    void severalValuesOfAName()
    {
        LinkedFile linked(plain());
        RyNode *figure = linked.scene().getSkeletons()[0];
        RyFloatProperty *second = figure->getPropertyGroups()
                                      ->addChild(QStringLiteral("More"))
                                      ->addProperty(std::make_unique<RyFloatProperty>(figure, QStringLiteral("xrot")));
        linked.link(second, linked.value("high", "xrot"));
        linked.link(linked.value("root", "xrot"), linked.value("high", "xrot"));
        linked.save(path("saved"));
        QCOMPARE(linksOf("saved").at(0).at("from").dump(),
                 std::string(R"([{"figure":0,"number":1,"property":"xrot"},{"figure":0,"property":"xrot"}])"));
        // Nothing makes the second one when the file is opened.
        LinkedFile again(path("saved"));
        QCOMPARE(again.character.messages,
                 QStringList(QStringLiteral("The stored link from \"root: xrot\" to \"high: X Rotate\" is left out: "
                                            "\"root\" has no value called \"xrot\"")));
        QCOMPARE(again.value("high", "xrot")->getControllerLinks().size(), size_t(1));
    }

    /// Another program turned the bone, or left our extras out: what the file shows is what results.
    void fileThatWasEditedElsewhere()
    {
        LinkedFile linked(plain());
        linked.poseAndLink();
        linked.save(path("saved"));
        json tree = treeOf("saved");
        tree["nodes"][2]["rotation"] = {0.0, 0.6, 0.0, 0.8};
        tree["nodes"][4]["translation"] = {0.1, 0.2, 0.9};
        write("turned", tree);
        LinkedFile turned(path("turned"));
        QVERIFY(turned.distanceTo(path("turned")) < Slack);
        RyFloatProperty *controlled = turned.value("high", "xrot");
        QCOMPARE(controlled->getControllerLinks().size(), size_t(2));
        const float before = controlled->getValue();
        turned.value("thing", "zrot")->setValue(60);
        QCOMPARE(controlled->getValue(), before + 10.0f);
    }

    /// A file of a program that stored no links: the values are those of the pose.
    void fileWithoutStoredLinks()
    {
        LinkedFile linked(plain());
        linked.poseAndLink();
        linked.save(path("saved"));
        json tree = treeOf("saved");
        tree["extras"]["RYHOST_rigging"].erase("links");
        write("older", tree);
        LinkedFile older(path("older"));
        QCOMPARE(older.character.messages, QStringList());
        QVERIFY(older.distanceTo(path("saved")) < Slack);
        for (const char *name : {"xrot", "zrot", "zscale"}) {
            QVERIFY(older.value("high", name)->getControllerLinks().empty());
            QCOMPARE(older.value("high", name)->getRawValue(), linked.value("high", name)->getValue());
        }
    }

    /// Lengths have another unit then, angles that control them do not.
    void openedInAnotherUnit()
    {
        LinkedFile linked(plain());
        linked.value("steer", "xrot")->setValue(30);
        linked.value("high", "xtran")->setValue(-10);
        linked.link(linked.value("steer", "xrot"), linked.value("high", "xtran"));
        linked.save(path("saved"));
        RyScene scene;
        RySceneFile::Options options;
        options.unit = 2.0 * linked.character.unit();
        QString error;
        QVERIFY2(RySceneFile::open(&scene, path("saved"), options, &error), qPrintable(error));
        const RyFloatProperty *controlled = scene.findNode(QStringLiteral("high"))->getXTransControl();
        QCOMPARE(controlled->getValue(), 40.0f);
        QCOMPARE(controlled->getRawValue(), 10.0f);
    }

    /// A scene that no file holds yet.
    void newFile()
    {
        LinkedFile linked(plain());
        linked.poseAndLink();
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::saveWithoutSource(&linked.scene(), path("new"), &error, &messages), qPrintable(error));
        QCOMPARE(messages, QStringList());
        LinkedFile again(path("new"));
        QCOMPARE(again.character.messages, QStringList());
        for (const char *name : {"xrot", "zscale", "endY"}) {
            QCOMPARE(again.value("high", name)->getRawValue(), linked.value("high", name)->getRawValue());
            QCOMPARE(again.value("high", name)->getControllerLinks().size(),
                     linked.value("high", name)->getControllerLinks().size());
        }
        QVERIFY(again.distanceTo(path("new")) < Slack);
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }
    QString plain() const { return LinkedFile::write(path("plain")); }
    json treeOf(const char *name) const { return json::parse(bytesOf(path(name)).constData()); }
    json linksOf(const char *name) const
    {
        return treeOf(name)
            .value("extras", json::object())
            .value("RYHOST_rigging", json::object())
            .value("links", json());
    }
    void write(const char *name, const json &tree) const { writeTree(tree, path(name)); }
    /// Of the bone "high" about Y; made where there is none.
    static RyBulgeBinding *bulgeOf(LinkedFile &linked)
    {
        RyBoneBinding *binding = RySkinBinding::findSkin(linked.scene().getSkeletons()[0])
                                     ->findBoneBinding(linked.scene().findNode(QStringLiteral("high")));
        if (!binding->getBulgeBinding(1))
            binding->setBulgeBinding(1, new RyBulgeBinding(1));
        return binding->getBulgeBinding(1);
    }

    QTemporaryDir m_folder;
};

RY_TEST(LinksOfFilesTest)
#include "tst_links.moc"
