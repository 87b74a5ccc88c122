#include "rycore/ui/RyAction.h"

RyAction::RyAction(const QString &text, const QString &description) : QAction(text, nullptr), m_description(description)
{
    updateTips();
    connect(this, &QAction::changed, this, &RyAction::updateTips);
    // Qt lets code and scripts trigger a disabled action.
    connect(this, &QAction::triggered, this, [this] {
        if (isEnabled())
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
