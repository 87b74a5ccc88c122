#include "rycore/scene/assets/RyAssetLoadScope.h"

#include "rycore/scene/assets/RyAssetIOMgr.h"

void RyAssetLoadScope::finishLoad()
{
    if (m_manager)
        m_manager->finishScopedLoad(*this);
}
