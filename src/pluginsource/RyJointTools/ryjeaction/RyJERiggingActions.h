#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include <vector>

class RyNode;

// Actions that memorize and restore riggings and take them to another figure.

class RyJEMemorizeFigureRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMemorizeFigureRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJEMemorizeNodeRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJEMemorizeNodeRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

class RyJERestoreFigureRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERestoreFigureRiggingPropertiesAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }
};

/// Works on the selection, or, where a node is set as the action's data (a `QObject *`), on that node and all below it.
/// Does nothing when that node has left the scene since.
class RyJERestoreNodeRiggingPropertiesAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJERestoreNodeRiggingPropertiesAction();

public slots:
    void executeAction() override;
    void selectionChanged() { followRule(); }

private:
    void followData();
    void forget(const QObject *gone);
    /// False when there is nothing to work on.
    bool findNodes(std::vector<RyNode *> &nodes) const;
};

/// The skeleton of the primary selection is the target; the other selected nodes must be of one other skeleton.
class RyJETransferWSRiggingAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJETransferWSRiggingAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};

class RyJECreateDonorFigureAction : public RyJEToolAction
{
    Q_OBJECT
public:
    RyJECreateDonorFigureAction() : RyJEToolAction(staticMetaObject) {}

public slots:
    void executeAction() override;
};
