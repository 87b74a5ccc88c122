#include "rycore/script/prototypes/RyScenePrototype.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
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

QString RyScenePrototype::getUniqueTopLevelName(const QString &name) const
{
    return RyScene::getUniqueTopLevelName(name);
}

QString RyScenePrototype::dump() const
{
    const RyScene *scene = self<RyScene>();
    return scene ? rySceneDump(*scene) : QString();
}
