#pragma once

#include <vector>

class RyAssetLoadScope;

/// Keeps account of running loads. Every scope it opens is finished, at the latest by its destructor.
class RyAssetIOMgr
{
public:
    RyAssetIOMgr() = default;
    virtual ~RyAssetIOMgr();
    RyAssetIOMgr(const RyAssetIOMgr &) = delete;
    RyAssetIOMgr &operator=(const RyAssetIOMgr &) = delete;

    /// Opens the scope. `isolated`: with a list of assets of its own; otherwise it adds to the list of the scope opened
    /// last, where there is one. A scope that is open already stays as it is.
    virtual void doScopedLoad(RyAssetLoadScope &scope, bool isolated);
    int getNumOpenScopes() const { return int(m_open.size()); }

protected:
    /// Ends the scope: called once for each that was opened, before its own assets go.
    virtual void loadFinished(RyAssetLoadScope &) {}

private:
    friend class RyAssetLoadScope;
    void finishScopedLoad(RyAssetLoadScope &scope);

    std::vector<RyAssetLoadScope *> m_open;
};
