#include "LegacyArm.h"

#include "CharacterScene.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/fit/RyLegacyFit.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShape.h"
#include "rycore/skin/RySkinBinding.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

using nlohmann::ordered_json;

/// Joints of parametric figures in files: what is kept, what is left out and said.
class SavedJointsTest : public QObject
{
    Q_OBJECT

private slots:
    void everyValueComesBack();
    void newValuesAreLeftOut();
    void fitIsKept();
    void otherUnit();
    void otherWeights();
    void boneIsGone();
    void damagedEntry();
    void cancelledFit();
    void figureOfOneBone();
    void propOfAFile();
    void unfitFigureIsMerged();
    void figureHangsOnIt();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    /// Fails the running test when the scene cannot be saved; gives the messages.
    QStringList save(RyScene &scene, const QString &to)
    {
        QString error;
        QStringList messages;
        if (!RySceneFile::save(&scene, to, &error, &messages))
            QTest::qFail(qPrintable(error), __FILE__, __LINE__);
        return messages;
    }
    static ordered_json read(const QString &from) { return ordered_json::parse(bytesOf(from).toStdString()); }
    static ordered_json &figureEntry(ordered_json &tree) { return tree["extras"]["RYHOST_rigging"]["figures"][0]; }
    static void write(const ordered_json &tree, const QString &to)
    {
        QFile out(to);
        if (!out.open(QIODevice::WriteOnly) || out.write(QByteArray::fromStdString(tree.dump(1))) < 0)
            QTest::qFail("cannot write", __FILE__, __LINE__);
    }

    QTemporaryDir m_folder;
};

void SavedJointsTest::everyValueComesBack()
{
    LegacyArm arm(true);
    arm.makeUntidy();
    const QString dump = LegacyArm::dump(arm.scene);
    const std::vector<RyVec3> shown = arm.figure->getObject()->getDeformedPositions();
    save(arm.scene, path("arm.gltf"));

    CharacterScene again(path("arm.gltf"));
    QVERIFY2(again.messages.isEmpty(), qPrintable(again.messages.join('\n')));
    RyLegacyFigure *figure = LegacyArm::figureOf(again.scene);
    QVERIFY(figure);
    QVERIFY(!RySkinBinding::findSkin(figure));
    QCOMPARE(LegacyArm::dump(again.scene), dump);
    const std::vector<RyVec3> now = figure->getObject()->getDeformedPositions();
    QCOMPARE(now.size(), shown.size());
    for (size_t v = 0; v < now.size(); ++v)
        QVERIFY2((now[v] - shown[v]).length() < 1e-2f, qPrintable(QString::number(v)));

    save(again.scene, path("twice.gltf"));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("arm.gltf")));
    QString error;
    QVERIFY2(RySceneFile::saveWithoutSource(&again.scene, path("alone.gltf"), &error), qPrintable(error));
    QCOMPARE(LegacyArm::dump(CharacterScene(path("alone.gltf")).scene), dump);
    const RyValidation valid = ryValidate(path("arm.gltf"));
    if (valid.available)
        QVERIFY2(valid.errors == 0, qPrintable(valid.report));

    // An edit goes into the file, and nothing else becomes another.
    LegacyArm::bindingOf(again.scene)->joints()[1]->params()[1]->setLabel(QStringLiteral("Other"));
    const QString other = LegacyArm::dump(again.scene);
    QVERIFY(other != dump);
    save(again.scene, path("other.gltf"));
    CharacterScene edited(path("other.gltf"));
    QCOMPARE(LegacyArm::dump(edited.scene), other);
    save(edited.scene, path("twice.gltf"));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("other.gltf")));
}

void SavedJointsTest::newValuesAreLeftOut()
{
    LegacyArm arm;
    save(arm.scene, path("new.gltf"));
    ordered_json tree = read(path("new.gltf"));
    for (const ordered_json &joint : figureEntry(tree)["parametric"]["joints"]) {
        for (const ordered_json &param : joint["params"]) {
            for (const char *member : {"values", "dynamic", "static", "label", "labels"})
                QVERIFY2(!param.contains(member), param.dump().c_str());
        }
    }
}

/// A fit takes long: it is made again only when something that it was made from is another.
void SavedJointsTest::fitIsKept()
{
    LegacyArm arm;
    save(arm.scene, path("kept.gltf"));
    const RyLegacyFit *fit = arm.binding->keptFit().get();
    QVERIFY(fit && !fit->isPlain);
    arm.pose(*arm.fore, {0, 20, 30});
    arm.fore->setLabel(QStringLiteral("Posed"));
    save(arm.scene, path("kept.gltf"));
    QCOMPARE(arm.binding->keptFit().get(), fit);

    CharacterScene again(path("kept.gltf"));
    RyLegacyBinding &binding = *LegacyArm::bindingOf(again.scene);
    const RyLegacyFit *loaded = binding.keptFit().get();
    again.bones()[1]->setLabel(QStringLiteral("Again"));
    save(again.scene, path("again.gltf"));
    QCOMPARE(binding.keptFit().get(), loaded);
    QCOMPARE(loaded->report.poses, fit->report.poses);

    binding.joints()[1]->params()[2]->controllers()[0]->setValue(120);
    save(again.scene, path("again.gltf"));
    QVERIFY(binding.keptFit().get() != loaded);
    const GltfEvaluator file(path("again.gltf").toStdString());
    const GltfEvaluator before(path("kept.gltf").toStdString());
    QVERIFY(file.accessorBytes(file.tree()["meshes"][0]["primitives"][0]["attributes"]["WEIGHTS_0"]) !=
            before.accessorBytes(before.tree()["meshes"][0]["primitives"][0]["attributes"]["WEIGHTS_0"]));
}

/// Lengths go with the unit in which a file is opened; zones that nobody has put in place stay out of reach.
void SavedJointsTest::otherUnit()
{
    LegacyArm arm(true);
    RyLegacyJointParam *unset = arm.binding->findJoint(arm.hand)->params()[0];
    RyLegacyJointParam *twist = arm.binding->findJoint(arm.fore)->params()[0];
    twist->getStaticSphere()->getYTransControl()->setValue(8);
    save(arm.scene, path("metres.gltf"));
    RyScene scene;
    QString error;
    RySceneFile::Options options;
    options.unit = 10.0;
    QVERIFY2(RySceneFile::open(&scene, path("metres.gltf"), options, &error), qPrintable(error));
    const RyLegacyBinding &binding = *LegacyArm::bindingOf(scene);
    const RyLegacyJointParam *now = binding.joints()[1]->params()[0];
    QCOMPARE(now->getName(), twist->getName());
    for (size_t i = 0; i < 2; ++i) {
        QCOMPARE(now->controllers()[i]->getValue(), 0.1f * twist->controllers()[i]->getValue());
        QCOMPARE(binding.joints()[2]->params()[0]->controllers()[i]->getValue(), unset->controllers()[i]->getValue());
    }
    QCOMPARE(now->getStaticSphere()->getYTransControl()->getValue(), 0.8f);
    QCOMPARE(now->getDynamicSphere()->getScaleControl()->getValue(), 0.1f);
}

/// Another program changed the weights: the joints do not say any more how the figure moves.
void SavedJointsTest::otherWeights()
{
    LegacyArm arm;
    save(arm.scene, path("arm.gltf"));
    ordered_json tree = read(path("arm.gltf"));
    const ordered_json entry = figureEntry(tree)["parametric"];
    std::swap(tree["skins"][0]["joints"][2], tree["skins"][0]["joints"][3]); // elbow and wrist
    write(tree, path("weights.gltf"));

    CharacterScene again(path("weights.gltf"));
    QVERIFY(!LegacyArm::figureOf(again.scene));
    auto *figure = qobject_cast<RyFigure *>(again.scene.findNode(QStringLiteral("figure")));
    QVERIFY(figure && RySkinBinding::findSkin(figure));
    QVERIFY2(again.messages.join('\n').contains(QStringLiteral("weight mapped")),
             qPrintable(again.messages.join('\n')));

    save(again.scene, path("unedited.gltf"));
    QVERIFY(bytesOf(path("unedited.gltf")) == bytesOf(path("weights.gltf")));
    // Something beside the figure changes the file, not what it says of the figure's joints.
    auto *prop = new RyNode;
    prop->setName(QStringLiteral("beside"));
    again.scene.addNode(prop);
    QVERIFY(!save(again.scene, path("beside.gltf")).join('\n').contains(QStringLiteral("joint parameters")));
    tree = read(path("beside.gltf"));
    QVERIFY(figureEntry(tree)["parametric"] == entry);
    // The figure itself is saved over.
    again.bones()[1]->setOrigin(again.bones()[1]->getOrigin() + RyVec3(0, 1, 0));
    QVERIFY(save(again.scene, path("over.gltf")).join('\n').contains(QStringLiteral("joint parameters")));
    tree = read(path("over.gltf"));
    QVERIFY(!figureEntry(tree).contains("parametric"));
}

void SavedJointsTest::boneIsGone()
{
    LegacyArm arm;
    save(arm.scene, path("arm.gltf"));
    ordered_json tree = read(path("arm.gltf"));
    int hand = -1;
    for (size_t node = 0; node < tree["nodes"].size(); ++node) {
        if (tree["nodes"][node].value("name", std::string()) == "hand")
            hand = int(node);
    }
    // The numbers of a node that is none of the figure's.
    for (ordered_json &joint : figureEntry(tree)["parametric"]["joints"]) {
        if (joint["bone"] == hand)
            joint["bone"] = 99;
        for (ordered_json &param : joint["params"]) {
            if (param["driver"] == hand)
                param["driver"] = 99;
        }
    }
    write(tree, path("gone.gltf"));
    CharacterScene again(path("gone.gltf"));
    const RyLegacyBinding *binding = LegacyArm::bindingOf(again.scene);
    QVERIFY(binding);
    QCOMPARE(binding->joints().size(), size_t(2));
    for (const RyLegacyJoint *joint : binding->joints()) {
        for (const RyLegacyJointParam *param : joint->params())
            QVERIFY(param->getDriver() && param->getDriver()->getName() != QStringLiteral("hand"));
    }
    const QString said = again.messages.join('\n');
    QVERIFY2(said.contains(QStringLiteral("hand_jointz")) && said.contains(QStringLiteral("bones are gone: hand")),
             qPrintable(said));
    save(again.scene, path("once.gltf"));
    CharacterScene once(path("once.gltf"));
    QVERIFY2(once.messages.isEmpty(), qPrintable(once.messages.join('\n')));
    save(once.scene, path("twice.gltf"));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("once.gltf")));
}

void SavedJointsTest::damagedEntry()
{
    LegacyArm arm;
    save(arm.scene, path("arm.gltf"));
    ordered_json tree = read(path("arm.gltf"));
    ordered_json &params = figureEntry(tree)["parametric"]["joints"][1]["params"];
    params[0]["type"] = "wheel";
    params[1]["values"] = {{"staticA", "wide"}, {"dynamicB", {10, 20}}, {"nothing", {1, 2}}, {"staticD", {1e300, 0}}};
    params[2]["axis"] = 7;
    write(tree, path("damaged.gltf"));
    CharacterScene again(path("damaged.gltf"));
    const RyLegacyBinding *binding = LegacyArm::bindingOf(again.scene);
    QVERIFY(binding);
    QCOMPARE(binding->joints()[1]->params().size(), arm.binding->joints()[1]->params().size() - 1);
    const RyLegacyJointParam &bend = *binding->joints()[1]->params()[0];
    QCOMPARE(bend.controllers()[0]->getValue(), 90.0f);
    QCOMPARE(bend.controllers()[1]->getValue(), 10.0f);
    QCOMPARE(bend.controllers()[1]->getDefaultValue(), 20.0f);
    QCOMPARE(bend.controllers()[3]->getValue(), -90.0f);
    QVERIFY2(again.messages.join('\n').contains(QStringLiteral("5 stored values")),
             qPrintable(again.messages.join('\n')));

    figureEntry(tree)["parametric"]["joints"] = "none";
    write(tree, path("damaged.gltf"));
    CharacterScene none(path("damaged.gltf"));
    QVERIFY(!LegacyArm::figureOf(none.scene));
    QVERIFY(none.messages.join('\n').contains(QStringLiteral("damaged")));
}

/// Plain averages are written then; the next save tries again.
void SavedJointsTest::cancelledFit()
{
    LegacyArm arm;
    QString error;
    QStringList messages;
    std::vector<RyFigureFits::Fit> fits;
    RySceneFile::SaveOptions options;
    options.fits = &fits;
    double told = -1.0;
    options.progress = [&told](const QString &figure, double done) {
        told = figure == QStringLiteral("figure") ? done : -1.0;
        return false;
    };
    QVERIFY2(RySceneFile::save(&arm.scene, path("plain.gltf"), options, &error, &messages), qPrintable(error));
    QVERIFY(told >= 0.0);
    QCOMPARE(fits.size(), size_t(1));
    QVERIFY(fits[0].isPlain);
    QVERIFY2(messages.join('\n').contains(QStringLiteral("plain averages")), qPrintable(messages.join('\n')));
    CharacterScene again(path("plain.gltf"));
    QVERIFY(LegacyArm::bindingOf(again.scene)->keptFit()->isPlain);
    const GltfEvaluator plain(path("plain.gltf").toStdString());
    options.progress = nullptr;
    QVERIFY2(RySceneFile::save(&again.scene, path("fitted.gltf"), options, &error, &messages), qPrintable(error));
    QVERIFY(!fits[0].isPlain && fits[0].report.rms > 0.0 && fits[0].report.poses > 20);
    const GltfEvaluator fitted(path("fitted.gltf").toStdString());
    const auto weights = [](const GltfEvaluator &file) {
        return file.accessorBytes(file.tree()["meshes"][0]["primitives"][0]["attributes"]["WEIGHTS_0"]);
    };
    QVERIFY(weights(plain) != weights(fitted));
    QCOMPARE(LegacyArm::dump(CharacterScene(path("fitted.gltf")).scene), LegacyArm::dump(arm.scene));
}

/// A converted prop: a joint, no other bone, no face group but that of the whole.
void SavedJointsTest::figureOfOneBone()
{
    LegacyArm arm;
    save(arm.scene, path("arm.gltf"));
    RyScene scene;
    QString error;
    auto *figure = new RyLegacyFigure;
    figure->setName(QStringLiteral("empty"));
    scene.addNode(figure);
    auto *bone = new RyBone;
    bone->setName(QStringLiteral("only"));
    figure->addNodeChild(bone);
    auto *object = new RyObject;
    object->addModifier(new RyLegacyBinding);
    figure->setObject(object);
    auto *joint = new RyLegacyJoint;
    joint->setBone(bone, true);
    RyLegacyBinding::findBinding(figure)->addJoint(joint);
    const QString dump = LegacyArm::dump(scene);
    QVERIFY2(RySceneFile::save(&scene, path("empty.gltf"), &error), qPrintable(error));
    CharacterScene again(path("empty.gltf"));
    QVERIFY(LegacyArm::figureOf(again.scene));
    QCOMPARE(LegacyArm::dump(again.scene), dump);
    save(again.scene, path("twice.gltf"));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("empty.gltf")));
}

/// The mesh of a file's prop goes on with a parametric figure.
void SavedJointsTest::propOfAFile()
{
    LegacyArm arm(true);
    {
        LegacyArm other;
        auto *prop = new RyNode;
        prop->setName(QStringLiteral("prop"));
        const RyRef<RyObject> object(other.figure->getObject());
        other.figure->setObject(nullptr);
        object->removeModifier(other.binding);
        prop->setObject(object.get());
        RyScene scene;
        scene.addNode(prop);
        save(scene, path("prop.gltf"));
    }
    QString error;
    RySceneFile::Options options;
    options.merge = true;
    QVERIFY2(RySceneFile::open(&arm.scene, path("prop.gltf"), options, &error), qPrintable(error));
    RyNode *prop = arm.scene.findNode(QStringLiteral("prop"));
    QVERIFY(prop);
    const RyRef<RyObject> object(prop->getObject());
    prop->setObject(nullptr);
    arm.scene.removeNode(prop);
    const RyRef<RyLegacyBinding> binding(arm.binding);
    arm.figure->getObject()->removeModifier(arm.binding);
    object->setName(arm.figure->getName());
    arm.figure->setObject(object.get());
    object->addModifier(arm.binding);
    arm.pose(*arm.fore, {10, 20, 70});
    const QString dump = LegacyArm::dump(arm.scene);
    const std::vector<RyVec3> shown = arm.figure->getObject()->getDeformedPositions();
    save(arm.scene, path("figure.gltf"));

    CharacterScene again(path("figure.gltf"));
    QVERIFY(!again.scene.findNode(QStringLiteral("prop")));
    QCOMPARE(LegacyArm::dump(again.scene), dump);
    const std::vector<RyVec3> now = LegacyArm::figureOf(again.scene)->getObject()->getDeformedPositions();
    QCOMPARE(now.size(), shown.size());
    double farthest = 0.0;
    for (size_t v = 0; v < now.size(); ++v)
        farthest = std::max(farthest, double((now[v] - shown[v]).length()));
    QVERIFY2(farthest < 1e-2, qPrintable(QString::number(farthest)));
    const GltfEvaluator file(path("figure.gltf").toStdString());
    const GltfEvaluator before(path("prop.gltf").toStdString());
    const auto positionsOf = [](const GltfEvaluator &each) {
        return each.accessorBytes(each.tree()["meshes"].back()["primitives"][0]["attributes"]["POSITION"]);
    };
    QVERIFY(positionsOf(file) == positionsOf(before));
    save(again.scene, path("twice.gltf"));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("figure.gltf")));
    const RyValidation valid = ryValidate(path("figure.gltf"));
    if (valid.available)
        QVERIFY2(valid.errors == 0, qPrintable(valid.report));
}

/// The nodes of a merged file have other places; what stays of its figure's joints says these.
void SavedJointsTest::unfitFigureIsMerged()
{
    LegacyArm arm;
    save(arm.scene, path("arm.gltf"));
    ordered_json tree = read(path("arm.gltf"));
    std::swap(tree["skins"][0]["joints"][2], tree["skins"][0]["joints"][3]);
    write(tree, path("unfit.gltf"));
    const ordered_json before = figureEntry(tree)["parametric"];
    CharacterScene scene(path("arm.gltf"));
    QString error;
    RySceneFile::Options options;
    options.merge = true;
    QVERIFY2(RySceneFile::open(&scene.scene, path("unfit.gltf"), options, &error), qPrintable(error));
    save(scene.scene, path("both.gltf"));
    tree = read(path("both.gltf"));
    const ordered_json &figures = tree["extras"]["RYHOST_rigging"]["figures"];
    QCOMPARE(figures.size(), size_t(2));
    QVERIFY(figures[0]["parametric"] == before);
    const ordered_json &moved = figures[1]["parametric"];
    QCOMPARE(moved["joints"].size(), before["joints"].size());
    for (size_t joint = 0; joint < moved["joints"].size(); ++joint) {
        const auto nameOf = [&tree](const ordered_json &node) { return tree["nodes"][node.get<size_t>()]["name"]; };
        QVERIFY(moved["joints"][joint]["bone"] != before["joints"][joint]["bone"]);
        QVERIFY(nameOf(moved["joints"][joint]["bone"]) == nameOf(before["joints"][joint]["bone"]));
        for (size_t i = 0; i < moved["joints"][joint]["params"].size(); ++i)
            QVERIFY(nameOf(moved["joints"][joint]["params"][i]["driver"]) ==
                    nameOf(before["joints"][joint]["params"][i]["driver"]));
    }
}

/// The bones of a figure that hangs on a bone belong to that figure alone.
void SavedJointsTest::figureHangsOnIt()
{
    LegacyArm arm;
    auto *hat = new RyFigure;
    hat->setName(QStringLiteral("hat"));
    arm.hand->addNodeChild(hat);
    auto *brim = new RyBone;
    brim->setName(QStringLiteral("brim"));
    hat->addNodeChild(brim);
    arm.scene.addNode(hat);
    arm.scene.addNode(brim);
    const QString dump = LegacyArm::dump(arm.scene);
    save(arm.scene, path("hat.gltf"));
    CharacterScene again(path("hat.gltf"));
    QCOMPARE(again.scene.getSkeletons().size(), size_t(2));
    QCOMPARE(LegacyArm::dump(again.scene), dump);
    const RyLegacyFit *fit = LegacyArm::bindingOf(again.scene)->keptFit().get();
    save(again.scene, path("twice.gltf"));
    QVERIFY(bytesOf(path("twice.gltf")) == bytesOf(path("hat.gltf")));
    QCOMPARE(LegacyArm::bindingOf(again.scene)->keptFit().get(), fit);
    QCOMPARE(again.file.joints(0).size() + again.file.joints(1).size(), size_t(5));
}

RY_TEST(SavedJointsTest)
#include "tst_saved_joints.moc"
