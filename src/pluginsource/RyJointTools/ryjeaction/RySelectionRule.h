#pragma once

class RyNode;

/// What an action needs of the primary selection to be enabled.
struct RySelectionRule
{
    bool (*holds)(const RyNode *primary);
    const char *reason; // what to do where it does not hold: source text of the context RyJEToolAction

    /// Of the primary selection, which may be null.
    bool operator()(const RyNode *primary) const { return holds(primary); }
};
