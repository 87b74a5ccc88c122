#include "ryhost/window/ToolStrip.h"

#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/look/HostIcons.h"

#include <QActionGroup>

namespace {

QString iconName(const RyViewTool *tool)
{
    // "Joint Editor" has "joint-editor.svg".
    const QString name = tool->objectName().toLower().replace(QLatin1Char(' '), QLatin1Char('-'));
    return HostIcons::exists(name) ? name : QStringLiteral("tool");
}

} // namespace

ToolStrip::ToolStrip(RyViewportMgr *viewports, QWidget *parent)
    : QToolBar(tr("Tools"), parent), m_viewports(viewports), m_group(new QActionGroup(this))
{
    setObjectName(QStringLiteral("ToolStrip"));
    setIconSize(QSize(24, 24));
    setOrientation(Qt::Vertical);
    connect(viewports, &RyViewportMgr::toolListChanged, this, &ToolStrip::refresh);
    connect(viewports, &RyViewportMgr::activeToolChanged, this, &ToolStrip::showActiveTool);
    refresh();
}

void ToolStrip::refresh()
{
    const QList<QAction *> old = m_group->actions();
    clear();
    for (QAction *action : old) {
        m_group->removeAction(action);
        action->deleteLater();
    }
    if (!m_viewports)
        return;
    for (RyViewTool *tool : m_viewports->getTools()) {
        QAction *action = addAction(HostIcons::icon(iconName(tool)), tool->objectName());
        const QString className = QString::fromLatin1(tool->metaObject()->className());
        action->setObjectName(QStringLiteral("Tool_") + className);
        action->setData(className);
        action->setCheckable(true);
        m_group->addAction(action);
        connect(action, &QAction::triggered, this, [this, className] {
            if (m_viewports)
                m_viewports->setActiveTool(m_viewports->findTool(className));
        });
    }
    showActiveTool();
}

void ToolStrip::showActiveTool()
{
    const RyViewTool *tool = m_viewports ? m_viewports->getActiveTool() : nullptr;
    for (QAction *action : m_group->actions())
        action->setChecked(tool && action->data().toString() == QLatin1String(tool->metaObject()->className()));
}
