#include "rycore/script/prototypes/RyScenePrototype.h"

#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipLookup.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/scene/node/RyNodeLookup.h"

RyNode *RyScenePrototype::find(const QString &nameOrPath) const
{
    const RyScene *scene = self<RyScene>();
    QString error;
    RyNode *node = scene ? RyNodeLookup::findNode(*scene, nameOrPath, &error) : nullptr;
    if (scene && !node)
        fail(error);
    return node;
}

QScriptValue RyScenePrototype::getNodes() const
{
    const RyScene *scene = self<RyScene>();
    return toArray(scene ? scene->getNodesInTreeOrder() : std::vector<RyNode *>());
}

QScriptValue RyScenePrototype::getTopLevelNodes() const
{
    const RyScene *scene = self<RyScene>();
    return toArray(scene ? scene->getTopLevelNodes() : std::vector<RyNode *>());
}

QScriptValue RyScenePrototype::getSkeletons() const
{
    const RyScene *scene = self<RyScene>();
    return toArray(scene ? scene->getSkeletons() : std::vector<RySkeleton *>());
}

QScriptValue RyScenePrototype::getSelectedNodes() const
{
    const RyScene *scene = self<RyScene>();
    return toArray(scene ? scene->selectedNodeListIterator() : std::vector<RyNode *>());
}

void RyScenePrototype::setSelection(const QScriptValue &nodes) const
{
    RyScene *scene = self<RyScene>();
    if (!scene)
        return;
    if (!nodes.isArray()) {
        fail(tr("setSelection takes an array of nodes, names or paths."));
        return;
    }
    std::vector<RyNode *> chosen;
    const quint32 count = nodes.property(QStringLiteral("length")).toUInt32();
    for (quint32 i = 0; i < count; ++i) {
        const QScriptValue entry = nodes.property(i);
        QString error = tr("Entry %1 of the selection is no node.").arg(i);
        RyNode *node = entry.isString() ? RyNodeLookup::findNode(*scene, entry.toString(), &error)
                                        : qobject_cast<RyNode *>(entry.toQObject());
        if (!node) {
            fail(error);
            return;
        }
        chosen.push_back(node);
    }
    scene->setSelection(chosen);
}

QScriptValue RyScenePrototype::clipObject(const RyClip &clip) const
{
    QScriptValue object = engine()->newObject();
    object.setProperty(QStringLiteral("name"), clip.name());
    object.setProperty(QStringLiteral("figures"), toArray(clip.subjects(*self<RyScene>())));
    object.setProperty(QStringLiteral("start"), clip.start());
    object.setProperty(QStringLiteral("end"), clip.end());
    return object;
}

QScriptValue RyScenePrototype::getClips() const
{
    const RyScene *scene = self<RyScene>();
    QScriptValue array = engine()->newArray();
    quint32 count = 0;
    for (const auto &clip : scene ? scene->getClips() : RyScene::Clips())
        array.setProperty(count++, clipObject(*clip));
    return array;
}

std::shared_ptr<const RyClip> RyScenePrototype::findClip(const QString &text) const
{
    const RyScene *scene = self<RyScene>();
    QString error;
    auto clip = scene ? RyClipLookup::findClip(*scene, text, &error) : nullptr;
    if (scene && !clip)
        fail(error);
    return clip;
}

void RyScenePrototype::showClip(const QString &figureAndName) const
{
    if (const auto clip = findClip(figureAndName))
        self<RyScene>()->getClipPlayer()->show(clip, clip->start());
}

void RyScenePrototype::showClip(const QString &figureAndName, double seconds) const
{
    if (const auto clip = findClip(figureAndName))
        self<RyScene>()->getClipPlayer()->show(clip, seconds);
}

QScriptValue RyScenePrototype::getShownClip() const
{
    const RyScene *scene = self<RyScene>();
    if (!scene || !scene->getClipPlayer()->isShowing())
        return engine()->nullValue();
    QScriptValue object = clipObject(*scene->getClipPlayer()->clip());
    object.setProperty(QStringLiteral("time"), scene->getClipPlayer()->time());
    return object;
}

void RyScenePrototype::setClipTime(double seconds) const
{
    const RyScene *scene = self<RyScene>();
    if (scene && !scene->getClipPlayer()->isShowing())
        fail(tr("No clip is shown."));
    else if (scene)
        scene->getClipPlayer()->setTime(seconds);
}

void RyScenePrototype::stopClip() const
{
    if (const RyScene *scene = self<RyScene>())
        scene->getClipPlayer()->stop();
}

bool RyScenePrototype::isSymmetricEditing() const
{
    RyScene *scene = self<RyScene>();
    return scene && RySymmetricEditing::of(*scene).isOn();
}

void RyScenePrototype::setSymmetricEditing(bool onOff) const
{
    if (RyScene *scene = self<RyScene>())
        RySymmetricEditing::of(*scene).setOn(onOff);
}

QString RyScenePrototype::getUniqueTopLevelName(const QString &name) const
{
    return RyScene::getUniqueTopLevelName(name);
}

QString RyScenePrototype::dump() const
{
    const RyScene *scene = self<RyScene>();
    return scene ? rySceneDump(*scene) : QString();
}
