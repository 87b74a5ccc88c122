#pragma once

#include "rycore/ui/RyAction.h"

#include <functional>

/// An action that does what it is told.
class ToyAction : public RyAction
{
public:
    ToyAction(const QString &text, std::function<void()> work) : RyAction(text, QString()), m_work(std::move(work)) {}
    void executeAction() override { m_work(); }

private:
    std::function<void()> m_work;
};
