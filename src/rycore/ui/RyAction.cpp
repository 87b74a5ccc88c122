#include "rycore/ui/RyAction.h"

RyAction::RyAction(const QString &text, const QString &description) : QAction(text, nullptr), m_description(description)
{
    setStatusTip(description);
    setToolTip(description.isEmpty() ? text : description);
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

void RyAction::executeAction() {}
