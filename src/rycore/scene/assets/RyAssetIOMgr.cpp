#include "rycore/scene/assets/RyAssetIOMgr.h"

#include "rycore/scene/assets/RyAssetLoadScope.h"

RyAssetIOMgr::~RyAssetIOMgr()
{
    for (RyAssetLoadScope *scope : m_open)
        scope->m_manager = nullptr;
}

void RyAssetIOMgr::doScopedLoad(RyAssetLoadScope &scope, bool isolated)
{
    if (scope.isOpen())
        return;
    scope.m_assets = isolated || m_open.empty() ? &scope.m_own : m_open.back()->m_assets;
    scope.m_manager = this;
    m_open.push_back(&scope);
}

void RyAssetIOMgr::finishScopedLoad(RyAssetLoadScope &scope)
{
    loadFinished(scope);
    std::erase(m_open, &scope);
    // A scope that ends before one that adds to its list leaves the list to nobody: the other goes on with its own.
    for (RyAssetLoadScope *other : m_open) {
        if (other->m_assets == &scope.m_own)
            other->m_assets = &other->m_own;
    }
    scope.m_manager = nullptr;
    scope.m_assets = nullptr;
    scope.m_own.clear();
}
