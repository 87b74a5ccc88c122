#include "rycore/scene/RyAssetLoadScope.h"

#include "rycore/scene/RyAssetIOMgr.h"

void RyAssetLoadScope::finishLoad()
{
    if (m_manager)
        m_manager->finishScopedLoad(*this);
}
