#pragma once

class RyNode;

/// Says which nodes a list offers; this one offers all.
class RyNodeListFilter
{
public:
    virtual ~RyNodeListFilter() = default;

    /// Called before a list is filled: the time to look at the scene.
    virtual void refresh() {}
    virtual bool accept(RyNode *node) { return node != nullptr; }
};
