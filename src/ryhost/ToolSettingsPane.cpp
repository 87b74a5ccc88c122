#include "ryhost/ToolSettingsPane.h"

#include "rycore/viewport/RyViewTool.h"

#include <QLabel>
#include <QScrollBar>

ToolSettingsPane::ToolSettingsPane(QWidget *parent) : QScrollArea(parent)
{
    setObjectName(QStringLiteral("ToolSettingsPane"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    showTool(nullptr);
}

void ToolSettingsPane::showTool(RyViewTool *tool)
{
    QWidget *wanted = tool ? tool->getSettingsWidget() : nullptr;
    if (m_shown && m_shown == wanted)
        return;
    // A pane belongs to its tool: it is taken out, hidden, and stays alive for the next time.
    if (m_shown) {
        takeWidget();
        m_shown->setParent(nullptr);
        m_shown->hide();
    } else if (m_empty) {
        delete takeWidget();
    }
    m_shown = wanted;
    if (wanted) {
        setWidget(wanted);
        wanted->show();
        setMinimumWidth(wanted->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width() + 2);
        return;
    }
    auto *label = new QLabel(tool ? tr("This tool has no settings.") : tr("No tool is active."));
    label->setObjectName(QStringLiteral("NoToolSettings"));
    label->setEnabled(false);
    label->setWordWrap(true);
    label->setMargin(10);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_empty = label;
    setWidget(label);
}
