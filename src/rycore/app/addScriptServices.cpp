#include "rycore/app/addScriptServices.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyScriptTools.h"
#include "rycore/automation/RyScriptActions.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyScriptForm.h"

#include <QScriptContext>

static QScriptValue makeForm(QScriptContext *context, QScriptEngine *engine)
{
    auto *form = new RyScriptForm(RyApp::getDialogParent());
    if (context->argumentCount() > 0)
        form->setTitle(context->argument(0).toString());
    return engine->newQObject(form, QScriptEngine::ScriptOwnership, QScriptEngine::ExcludeChildObjects);
}

void ryAddScriptServices(RyScriptEngine *engine, RyActionMgr *actions, RyViewportMgr *viewports)
{
    engine->setGlobal(QStringLiteral("Actions"), new RyScriptActions(actions, engine));
    engine->setGlobal(QStringLiteral("Tools"), new RyScriptTools(viewports, engine));
    engine->globalObject().setProperty(
        QStringLiteral("RyScriptForm"),
        engine->newQMetaObject(&RyScriptForm::staticMetaObject, engine->newFunction(makeForm)));
}
