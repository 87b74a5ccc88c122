#pragma once

#include "rycore/ui/RyAction.h"

class RyViewTool;

/// Activates the view tool of a class, which stays active when it was; checked while the tool is active. Its text is
/// the tool's object name.
class RyViewToolAction : public RyAction
{
    Q_OBJECT
public:
    explicit RyViewToolAction(const QString &toolClassName);

    void init() override;
    bool leavesSceneAlone() const override { return true; }
    const QString &getToolClassName() const { return m_toolClassName; }

public slots:
    void executeAction() override;

private slots:
    void toolChanged();

private:
    RyViewTool *findTool() const;

    QString m_toolClassName;
};
