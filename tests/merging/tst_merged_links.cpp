#include "FigureSketch.h"
#include "MergedScene.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

using json = nlohmann::json;

/// Links between what came from several files, and figures that follow others.
class MergedLinksTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    /// Bones of one file by bones, figures and things of others, figures beside and on one another.
    void acrossFiles_data()
    {
        QTest::addColumn<bool>("hangs");
        QTest::newRow("beside") << false;
        QTest::newRow("on a bone") << true;
    }
    void acrossFiles()
    {
        QFETCH(bool, hangs);
        MergedScene merged(files());
        pose(merged);
        if (hangs)
            QVERIFY(merged.bones()[1]->addNodeChild(merged.figure(1)));
        linkAll(merged);
        QCOMPARE(merged.check(path("saved")), QString());
        QCOMPARE(merged.messages, QStringList());

        CharacterScene again(path("saved"));
        QCOMPARE(again.messages, QStringList());
        const auto find = [&again](const char *name) { return again.scene.findNode(QLatin1String(name)); };
        const RyFloatProperty *controlled = find("high")->getXRotControl();
        QCOMPARE(controlled->getControllerLinks().size(), size_t(2));
        QCOMPARE(controlled->getControllerLinks()[0]->getController(), find("high two")->getYRotControl());
        QCOMPARE(controlled->getControllerLinks()[1]->getController(), find("thing three")->getZRotControl());
        // The controller of one file takes along what another file had.
        MergedScene posed({path("saved")});
        posed.scene.findNode(QStringLiteral("high two"))->getYRotControl()->setValue(44);
        QCOMPARE(posed.scene.findNode(QStringLiteral("high"))->getXRotControl()->getValue(),
                 controlled->getValue() + 20);
        QCOMPARE(posed.check(path("posed")), QString());
    }

    /// A link whose other file is gone again goes with it, and comes back with it.
    void undoneMerge()
    {
        MergedScene merged({files()[0]});
        {
            RyUndoStackHold hold;
            RySceneFile::Options options;
            options.merge = true;
            QString error;
            QVERIFY2(RySceneFile::open(&merged.scene, files()[1], options, &error), qPrintable(error));
            merged.bones()[3]->getYRotControl()->setValue(17);
            link(merged.bones()[3]->getYRotControl(), merged.bones()[1]->getXRotControl());
            hold.accept("merge");
        }
        merged.save(path("merged"));
        ryUndoStack()->undo();
        QCOMPARE(merged.scene.getSkeletons().size(), size_t(1));
        QVERIFY(merged.bones()[1]->getXRotControl()->getControllerLinks().empty());
        merged.save(path("undone"));
        QCOMPARE(merged.messages, QStringList());
        QVERIFY(!bytesOf(path("undone")).contains("links"));
        ryUndoStack()->redo();
        QCOMPARE(merged.check(path("redone")), QString());
        QVERIFY(bytesOf(path("redone")) == bytesOf(path("merged")));
    }

    void followTargets()
    {
        MergedScene merged(files());
        pose(merged);
        merged.figure(1)->setFollowTarget(merged.figure(0));
        merged.figure(0)->setFollowTarget(merged.figure(1));
        QCOMPARE(merged.check(path("saved")), QString());
        MergedScene again({path("saved")});
        QCOMPARE(again.figure(1)->getFollowTarget(), again.figure(0));
        QCOMPARE(again.figure(0)->getFollowTarget(), again.figure(1));

        // It alone is an edit, and a file without it has no word of it.
        again.figure(0)->setFollowTarget(nullptr);
        again.figure(1)->setFollowTarget(nullptr);
        QCOMPARE(again.check(path("free")), QString());
        QVERIFY(bytesOf(path("free")) != bytesOf(path("saved")) && !bytesOf(path("free")).contains("follows"));
    }

    /// In a file of two figures, merged behind another one.
    void followTargetsOfAMergedFile()
    {
        MergedScene pair({files()[1], files()[2]});
        pair.figure(0)->setFollowTarget(pair.figure(1));
        link(pair.bones()[0]->getXRotControl(), pair.bones()[2]->getXRotControl());
        QCOMPARE(pair.check(path("pair")), QString());
        MergedScene merged({files()[0], path("pair")});
        QCOMPARE(merged.figure(1)->getFollowTarget(), merged.figure(2));
        QCOMPARE(merged.bones()[4]->getXRotControl()->getControllerLinks()[0]->getController(),
                 merged.bones()[2]->getXRotControl());
        QCOMPARE(merged.check(path("merged")), QString());
        MergedScene again({path("merged")});
        QCOMPARE(again.figure(1)->getFollowTarget(), again.figure(2));
        QVERIFY(!again.figure(0)->getFollowTarget() && !again.figure(2)->getFollowTarget());
        QCOMPARE(again.bones()[4]->getXRotControl()->getControllerLinks().size(), size_t(1));
    }

    void theFollowedFigureIsGone()
    {
        MergedScene merged(files());
        merged.figure(0)->setFollowTarget(merged.figure(1));
        {
            RyUndoStackHold hold;
            merged.scene.removeNode(merged.figure(1));
            hold.accept("remove");
        }
        merged.save(path("gone"));
        QCOMPARE(merged.messages,
                 QStringList("That \"root\" follows \"root2\" is not stored: the latter has no place in "
                             "the file"));
        ryUndoStack()->undo();
        merged.save(path("back"));
        QCOMPARE(merged.messages, QStringList());
        MergedScene again({path("back")});
        QCOMPARE(again.figure(0)->getFollowTarget(), again.figure(1));

        // Such a file, and one that names a figure that there is not.
        json tree = json::parse(bytesOf(path("back")).constData());
        for (const json &number : {json(77), json("one"), json(-1)}) {
            tree["extras"]["RYHOST_rigging"]["figures"][0]["follows"] = number;
            CharacterScene broken(writeTree(tree, path("broken")));
            QCOMPARE(broken.messages,
                     QStringList("\"root\" follows no figure any more: the stored one does not stand in "
                                 "the scene"));
            QVERIFY(!broken.scene.getSkeletons()[0]->getFollowTarget());
        }
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    /// Three figures, the last one with a thing beside it; of other sizes, turned.
    QStringList files() const
    {
        QStringList paths;
        const char *const suffixes[3] = {"", " two", " three"};
        for (size_t i = 0; i < 3; ++i) {
            FigureSketch sketch;
            auto &nodes = sketch.tree["nodes"];
            for (const size_t bone : {1u, 2u})
                nodes[bone]["name"] = nodes[bone]["name"].get<std::string>() + suffixes[i];
            if (i == 1) {
                nodes[0]["scale"] = {40, 40, 40};
                nodes[0]["rotation"] = {0.5, 0.5, 0.5, 0.5};
                sketch.addTurningClip(1);
            }
            if (i == 2) {
                auto mesh = sketch.tree["meshes"][0];
                mesh["primitives"][0]["attributes"].erase("JOINTS_0");
                mesh["primitives"][0]["attributes"].erase("WEIGHTS_0");
                sketch.tree["meshes"].push_back(mesh);
                nodes.push_back({{"name", "thing three"}, {"mesh", 1}, {"translation", {1, 0, 0.5}}});
                sketch.tree["scenes"][0]["nodes"].push_back(4);
            }
            paths.append(sketch.write(m_folder.filePath(QStringLiteral("file%1.gltf").arg(i))));
        }
        return paths;
    }

    static void pose(const MergedScene &merged)
    {
        float degrees = 10;
        for (RyBone *bone : merged.bones()) {
            bone->getYRotControl()->setDefaultValue(4);
            bone->getYRotControl()->setValue(degrees += 3.5f);
            bone->getZRotControl()->setValue(-degrees);
        }
        for (size_t i = 0; i < 3; ++i) {
            merged.figure(i)->getXTransControl()->setValue(float(30 * i) + 12);
            merged.figure(i)->getYRotControl()->setValue(35 - float(20 * i));
        }
        merged.figure(1)->getScaleControl()->setValue(1.25f);
    }

    static void link(RyFloatProperty *controller, RyFloatProperty *controlled)
    {
        QVERIFY(RyERCLink::create(controller, controlled));
    }

    static void linkAll(const MergedScene &merged)
    {
        const auto find = [&merged](const char *name) { return merged.scene.findNode(QLatin1String(name)); };
        find("high two")->getYRotControl()->setValue(24);
        find("thing three")->getZRotControl()->setValue(8);
        link(find("high two")->getYRotControl(), find("high")->getXRotControl());
        link(find("thing three")->getZRotControl(), find("high")->getXRotControl());
        link(find("high")->getXRotControl(), merged.figure(2)->getZRotControl());
        link(merged.figure(0)->getXTransControl(), find("low two")->getXRotControl());
        link(find("low three")->getYRotControl(), find("thing three")->getYTransControl());
        link(find("low three")->getYRotControl(), find("high two")->getOriginXControl());
    }

    QTemporaryDir m_folder;
};

RY_TEST(MergedLinksTest)
#include "tst_merged_links.moc"
