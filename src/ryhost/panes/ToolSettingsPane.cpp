#include "ryhost/panes/ToolSettingsPane.h"

#include "rycore/ui/RyMenu.h"
#include "rycore/viewport/RyViewTool.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>

#include <algorithm>

static constexpr int LeastWidth = 220;
static constexpr int MostLeastWidth = 350; // what needs more scrolls sideways

ToolSettingsPane::ToolSettingsPane(QWidget *parent)
    : QWidget(parent), m_header(new QWidget(this)), m_name(new QLabel(m_header)),
      m_menuButton(new QToolButton(m_header)), m_menu(new RyMenu(QString(), m_menuButton)),
      m_scroll(new QScrollArea(this))
{
    setObjectName(QStringLiteral("ToolSettingsPane"));
    setMinimumWidth(LeastWidth);
    m_name->setObjectName(QStringLiteral("ToolSettingsName"));
    QFont bold = m_name->font();
    bold.setBold(true);
    m_name->setFont(bold);
    m_menu->setObjectName(QStringLiteral("ToolSettingsMenu"));
    m_menuButton->setObjectName(QStringLiteral("ToolSettingsMenuButton"));
    m_menuButton->setText(tr("Options"));
    m_menuButton->setToolTip(tr("All commands of this tool"));
    m_menuButton->setAutoRaise(true);
    m_menuButton->setFocusPolicy(Qt::TabFocus);
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    m_menuButton->setMenu(m_menu);
    auto *line = new QHBoxLayout(m_header);
    line->setContentsMargins(9, 4, 4, 2);
    line->addWidget(m_name, 1);
    line->addWidget(m_menuButton);

    m_scroll->setObjectName(QStringLiteral("ToolSettingsScroll"));
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus); // what has the focus is scrolled into sight
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(m_scroll, 1);
    showTool(nullptr);
}

void ToolSettingsPane::showTool(RyViewTool *tool)
{
    showHeader(tool);
    showSettings(tool);
}

void ToolSettingsPane::showHeader(RyViewTool *tool)
{
    m_menu->clear();
    if (tool) {
        m_name->setText(tool->objectName());
        tool->addToolMenuItems(m_menu);
    }
    m_menuButton->setVisible(!m_menu->isEmpty());
    m_header->setVisible(tool != nullptr);
}

/// The hint of what is shown is a wish: what its parts need is less, and goes before. They have room side by side at
/// any height.
void ToolSettingsPane::giveRoom()
{
    if (!m_shown->layout())
        return;
    m_shown->setMinimumSize(m_shown->layout()->totalMinimumSize());
    const int bar = m_scroll->verticalScrollBar()->sizeHint().width();
    setMinimumWidth(std::clamp(m_shown->minimumWidth() + bar, LeastWidth, MostLeastWidth));
}

bool ToolSettingsPane::eventFilter(QObject *watched, QEvent *event)
{
    // Parts come and go.
    if (watched == m_shown && event->type() == QEvent::LayoutRequest)
        giveRoom();
    return QWidget::eventFilter(watched, event);
}

void ToolSettingsPane::showSettings(RyViewTool *tool)
{
    QWidget *wanted = tool ? tool->getSettingsWidget() : nullptr;
    if (m_shown && m_shown == wanted)
        return;
    // A pane belongs to its tool: it is taken out, hidden, and stays alive for the next time.
    if (m_shown) {
        m_shown->removeEventFilter(this);
        m_scroll->takeWidget();
        m_shown->setParent(nullptr);
        m_shown->hide();
    } else if (m_empty) {
        delete m_scroll->takeWidget();
    }
    m_shown = wanted;
    setMinimumWidth(LeastWidth);
    if (wanted) {
        wanted->installEventFilter(this);
        giveRoom();
        m_scroll->setWidget(wanted);
        wanted->show();
        return;
    }
    auto *label = new QLabel(tool ? tr("This tool has no settings.") : tr("No tool is active."));
    label->setObjectName(QStringLiteral("NoToolSettings"));
    label->setEnabled(false);
    label->setWordWrap(true);
    label->setMargin(10);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_empty = label;
    m_scroll->setWidget(label);
}
