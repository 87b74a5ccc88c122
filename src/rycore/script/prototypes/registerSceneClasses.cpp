#include "rycore/script/prototypes/registerSceneClasses.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/script/RyScriptPointer.h"
#include "rycore/script/prototypes/RyBoneBindingPrototype.h"
#include "rycore/script/prototypes/RyBulgeBindingPrototype.h"
#include "rycore/script/prototypes/RyFacetMeshPrototype.h"
#include "rycore/script/prototypes/RyLegacyBindingPrototype.h"
#include "rycore/script/prototypes/RyLegacyJointParamPrototype.h"
#include "rycore/script/prototypes/RyLegacyJointPrototype.h"
#include "rycore/script/prototypes/RyNodePrototype.h"
#include "rycore/script/prototypes/RyRestoreScripting.h"
#include "rycore/script/prototypes/RyScenePrototype.h"
#include "rycore/script/prototypes/RySkeletonPrototype.h"
#include "rycore/script/prototypes/RySkinPrototype.h"
#include "rycore/script/prototypes/RyUndoScripting.h"
#include "rycore/script/prototypes/RyWeightMapPrototype.h"

/// Objects of a class, and of classes that derive from it and have no prototype of their own, get the prototype.
template<typename T>
static void add(QScriptEngine *engine, const QScriptValue &prototype)
{
    ryRegisterScriptPointer<T>(engine);
    engine->setDefaultPrototype(qMetaTypeId<T *>(), prototype);
}

void ryRegisterSceneClasses(RyScriptEngine *engine)
{
    const auto make = [engine](QObject *prototype,
                               QScriptEngine::QObjectWrapOptions hidden = QScriptEngine::ExcludeSuperClassContents) {
        return engine->newQObject(prototype, QScriptEngine::QtOwnership, hidden | QScriptEngine::ExcludeDeleteLater);
    };
    // What a prototype has from RyValuesPrototype shows as well.
    const auto makeWithValues = [&make](RyValuesPrototype *prototype) {
        return make(prototype, QScriptEngine::ExcludeSuperClassProperties);
    };
    const QScriptValue nodes = makeWithValues(new RyNodePrototype(engine));
    QScriptValue skeletons = make(new RySkeletonPrototype(engine));
    skeletons.setPrototype(nodes);
    add<RyNode>(engine, nodes);
    add<RyBone>(engine, nodes);
    add<RyCamera>(engine, nodes);
    add<RySkeleton>(engine, skeletons);
    add<RyFigure>(engine, skeletons);
    add<RyLegacyFigure>(engine, skeletons);
    add<RyScene>(engine, make(new RyScenePrototype(engine)));
    add<RyFacetMesh>(engine, make(new RyFacetMeshPrototype(engine)));
    add<RySkinBinding>(engine, make(new RySkinPrototype(engine)));
    add<RyBoneBinding>(engine, make(new RyBoneBindingPrototype(engine)));
    add<RyBulgeBinding>(engine, makeWithValues(new RyBulgeBindingPrototype(engine)));
    add<RyLegacyBinding>(engine, make(new RyLegacyBindingPrototype(engine)));
    add<RyLegacyJoint>(engine, make(new RyLegacyJointPrototype(engine)));
    add<RyLegacyJointParam>(engine, makeWithValues(new RyLegacyJointParamPrototype(engine)));
    add<RyWeightMap>(engine, make(new RyWeightMapPrototype(engine)));
    engine->globalObject().setProperty(QStringLiteral("Undo"), make(new RyUndoScripting(engine)));
    engine->globalObject().setProperty(QStringLiteral("RestorePoints"), make(new RyRestoreScripting(engine)));
}
