#include "rycore/app/RyScriptTools.h"

#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <QCoreApplication>
#include <QScriptContext>
#include <QScriptEngine>

RyScriptTools::RyScriptTools(RyViewportMgr *viewports, QObject *parent) : QObject(parent), m_viewports(viewports) {}

QStringList RyScriptTools::names() const
{
    QStringList list;
    for (const RyViewTool *tool : m_viewports ? m_viewports->getTools() : std::vector<RyViewTool *>())
        list.append(QLatin1String(tool->metaObject()->className()));
    return list;
}

RyViewTool *RyScriptTools::toolOf(const QString &className) const
{
    RyViewTool *tool = m_viewports ? m_viewports->findTool(className) : nullptr;
    if (!tool)
        context()->throwError(
            tr("There is no tool called \"%1\". There are: %2.").arg(className, names().join(QStringLiteral(", "))));
    return tool;
}

QScriptValue RyScriptTools::toScript(RyViewTool *tool) const
{
    if (!tool)
        return QScriptValue(QScriptValue::NullValue);
    return engine()->newQObject(tool, QScriptEngine::QtOwnership,
                                QScriptEngine::PreferExistingWrapperObject | QScriptEngine::ExcludeChildObjects |
                                    QScriptEngine::ExcludeDeleteLater);
}

QScriptValue RyScriptTools::find(const QString &className) const
{
    return toScript(toolOf(className));
}

QScriptValue RyScriptTools::getActive() const
{
    return toScript(m_viewports ? m_viewports->getActiveTool() : nullptr);
}

QScriptValue RyScriptTools::activate(const QString &className) const
{
    RyViewTool *tool = toolOf(className);
    if (tool && m_viewports->getActiveTool() != tool)
        m_viewports->setActiveTool(tool);
    // It takes a new selection by an event.
    if (tool)
        QCoreApplication::sendPostedEvents(tool);
    return toScript(tool);
}
