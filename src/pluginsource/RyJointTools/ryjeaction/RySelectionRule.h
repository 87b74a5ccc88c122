#pragma once

class RyNode;

/// Of the primary selection, which may be null.
using RyNodePredicate = bool (*)(const RyNode *primary);

template<RyNodePredicate... Predicates>
bool allOf([[maybe_unused]] const RyNode *primary)
{
    return (Predicates(primary) && ...);
}

template<RyNodePredicate... Predicates>
bool anyOf([[maybe_unused]] const RyNode *primary)
{
    return (Predicates(primary) || ...);
}

/// What an action needs of the primary selection to be enabled.
struct RySelectionRule
{
    RyNodePredicate holds;
    const char *reason; // what to do where it does not hold: source text of the context RyJEToolAction, null for none
    bool looksAtSelection = true;

    bool operator()(const RyNode *primary) const { return holds(primary); }
};
