#pragma once

#include "rycore/scene/assets/RyAssetList.h"

class RyAssetIOMgr;

/// The time in which assets are made: opened by `RyAssetIOMgr::doScopedLoad`, ended by `finishLoad` or the destructor.
class RyAssetLoadScope
{
public:
    RyAssetLoadScope() = default;
    ~RyAssetLoadScope() { finishLoad(); }
    RyAssetLoadScope(const RyAssetLoadScope &) = delete;
    RyAssetLoadScope &operator=(const RyAssetLoadScope &) = delete;

    bool isOpen() const { return m_manager != nullptr; }
    /// What was made in this scope so far. Null while the scope is not open.
    RyAssetList *getAssets() const { return isOpen() ? m_assets : nullptr; }
    /// What nothing else holds by now goes. Does nothing unless the scope is open.
    void finishLoad();

private:
    friend class RyAssetIOMgr;
    RyAssetIOMgr *m_manager = nullptr;
    RyAssetList *m_assets = nullptr;
    RyAssetList m_own;
};
