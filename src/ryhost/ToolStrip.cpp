#include "ryhost/ToolStrip.h"

#include "rycore/viewport/RyViewTool.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/HostIcons.h"

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
    connect(viewports, &RyViewportMgr::activeToolChanged, this, &ToolStrip::refresh);
    refresh();
}

void ToolStrip::refresh()
{
    qDeleteAll(m_group->actions());
    clear();
    if (!m_viewports)
        return;
    for (RyViewTool *tool : m_viewports->getTools()) {
        QAction *action = addAction(HostIcons::icon(iconName(tool)), tool->objectName());
        action->setObjectName(QStringLiteral("Tool_") + QString::fromLatin1(tool->metaObject()->className()));
        action->setCheckable(true);
        action->setChecked(tool == m_viewports->getActiveTool());
        m_group->addAction(action);
        const QPointer<RyViewTool> guard(tool);
        // The list is made again while the action's signal is still on its way.
        connect(action, &QAction::triggered, this, [this, guard] {
            if (guard && m_viewports)
                m_viewports->setActiveTool(guard);
        }, Qt::QueuedConnection);
    }
}
