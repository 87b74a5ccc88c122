#pragma once

class RyNode;

/// The yes and no values of a node, each with its undo and what it announces.
class RyNodeFlags
{
public:
    enum Flag { Hidden, Selectable, PromotesSelection, InheritsScale };

    explicit RyNodeFlags(RyNode &node) : m_node(node) {}
    bool has(Flag flag) const { return m_values[flag]; }
    void set(Flag flag, bool value);
    /// Neither the node nor an ancestor is hidden.
    bool isVisible() const;

private:
    struct FlagValue;

    void apply(Flag flag, bool value);

    RyNode &m_node;
    bool m_values[4] = {false, true, false, true};
};
