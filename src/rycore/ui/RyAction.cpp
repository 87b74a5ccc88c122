#include "rycore/ui/RyAction.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/script/RyScriptEngine.h"
#include "rycore/ui/RyPlainText.h"
#include "rycore/ui/RyRunningAction.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

#include <QPointer>

namespace {

/// Tells the script engine that steps are an action's own while it lives.
class ActionOfScript
{
public:
    ActionOfScript() : m_scripts(RyScriptEngine::current())
    {
        if (m_scripts)
            m_scripts->beginAction();
    }
    ~ActionOfScript()
    {
        if (m_scripts)
            m_scripts->endAction();
    }
    ActionOfScript(const ActionOfScript &) = delete;
    ActionOfScript &operator=(const ActionOfScript &) = delete;

private:
    QPointer<RyScriptEngine> m_scripts;
};

/// Without the dots that announce a dialog.
QString captionOf(const QAction *action)
{
    QString text = ryPlainText(action->text());
    while (text.endsWith(QLatin1Char('.')) || text.endsWith(QChar(0x2026)))
        text.chop(1);
    return text.trimmed();
}

} // namespace

RyAction::RyAction(const QString &text, const QString &description) : QAction(text, nullptr), m_description(description)
{
    updateTips();
    connect(this, &QAction::changed, this, &RyAction::updateTips);
    // Qt lets code and scripts trigger a disabled action.
    connect(this, &QAction::triggered, this, [this] {
        if (!isEnabled())
            return;
        if (!leavesSceneAlone())
            ryScene()->getClipPlayer()->stop();
        // What undo does not take back can be gone back to before.
        const RyRunningAction running;
        const ActionOfScript script;
        const RyRestoreSpan span(RyRestoreSpan::Scope::Command, captionOf(this));
        executeAction();
    });
}

RyAction::~RyAction() = default;

void RyAction::init() {}

QString RyAction::getActionGroup() const
{
    return {};
}

QString RyAction::getDefaultMenuPath() const
{
    return {};
}

QKeySequence RyAction::getDefaultAccel() const
{
    return {};
}

QString RyAction::unavailableReason() const
{
    return isEnabled() ? QString() : m_reason;
}

void RyAction::setDescription(const QString &description)
{
    m_description = description;
    updateTips();
}

void RyAction::setUnavailableReason(const QString &reason)
{
    m_reason = reason;
    updateTips();
}

void RyAction::updateTips()
{
    const QString reason = unavailableReason();
    const QString tip = m_description.isEmpty() ? text() : m_description;
    setStatusTip(reason.isEmpty() ? m_description : reason);
    setToolTip(reason.isEmpty() ? tip : tip + QLatin1Char('\n') + reason);
}

void RyAction::executeAction() {}
