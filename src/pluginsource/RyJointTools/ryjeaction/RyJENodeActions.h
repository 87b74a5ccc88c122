#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

// Actions that change names, parents and values of the selected nodes.

class RyJERenameNodeAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERenameNodeAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    /// Runs the host's rename script, which does all the work; nothing where there is none.
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJEReparentBoneAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEReparentBoneAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};

class RyJESelectedNodesAttributesEditAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJESelectedNodesAttributesEditAction();

public slots:
    void executeAction() override;
};
