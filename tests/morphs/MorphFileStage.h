#pragma once

#include "MorphFile.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

#include <QFileInfo>
#include <QTemporaryDir>

constexpr double Near = 2e-5; // of the height

/// A file with morphs in a folder of its own, and what tests of files need.
class MorphFileStage
{
public:
    MorphFileStage() : file(ryTestSeed()), path(folder.filePath("face.gltf")) { file.sketch.write(path); }

    static RyNode *nodeCalled(const RyScene &scene, const QString &name)
    {
        for (RyNode *node : scene.getNodes()) {
            if (node->getName() == name)
                return node;
        }
        return nullptr;
    }
    static RySkeleton *figureOf(const RyScene &scene) { return scene.getSkeletons().front(); }
    static const std::vector<RyMorph *> &morphsOf(const RyNode &node)
    {
        return RyShape::getCurrentShapeForNode(&node)->getMorphs();
    }
    static RyMorph *morphCalled(const RyNode &node, const QString &name)
    {
        for (RyMorph *morph : morphsOf(node)) {
            if (morph->getName() == name)
                return morph;
        }
        return nullptr;
    }
    /// Some values of all morphs of the scene, one step.
    static void changeValues(RyScene &scene, std::mt19937 &random)
    {
        RyUndoStackHold hold;
        for (RyNode *node : scene.getNodes()) {
            if (!RyShape::getCurrentShapeForNode(node) || !node->getObject())
                continue;
            for (RyMorph *morph : morphsOf(*node)) {
                if (random() % 3 == 0)
                    morph->getValueControl()->setValue(float(random() % 1000) / 1000.0f);
            }
        }
        hold.accept("values");
    }
    QString save(RyScene &scene, const char *name)
    {
        QString error;
        const QString to = folder.filePath(name);
        if (!RySceneFile::save(&scene, to, &error))
            throw std::runtime_error(error.toStdString());
        return to;
    }
    /// What `saved` opened as shows what the file says, is told as what was saved, and is saved as the same bytes.
    void checkReopened(CharacterScene &again, const QString &saved, const QString &dump)
    {
        QVERIFY2(apart(again) < Near, qPrintable(QString::number(apart(again))));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        const QString ending = QFileInfo(saved).suffix();
        QCOMPARE(bytesOf(save(again.scene, qPrintable("second." + ending))), bytesOf(saved));
    }
    /// Bind matrices that place the joints at two places: the rest is the node pose then.
    void useTwoBinds()
    {
        nlohmann::json skin = file.sketch.tree["skins"][0];
        Eigen::Matrix4d low = Eigen::Matrix4d::Identity(), high = low;
        low(0, 3) = 0.5;
        high(1, 3) = 0.25;
        skin["inverseBindMatrices"] = file.sketch.addBinds({low, high});
        file.sketch.tree["skins"].push_back(skin);
        file.sketch.tree["nodes"][4]["skin"] = 1;
        file.sketch.write(path);
    }
    /// How far what is shown lies from what the file shows, in heights of the figure.
    static double apart(const CharacterScene &character)
    {
        const CharacterScene::Positions shown = character.shown();
        CharacterScene::Positions said = positionsOf(character.file, character.unit());
        std::erase_if(said, [&](const auto &each) { return !shown.count(each.first); }); // of nodes that hang nowhere
        return largestDistance(shown, said) / character.height;
    }

    QTemporaryDir folder;
    MorphFile file;
    QString path;
};
