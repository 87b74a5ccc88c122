#include "pluginsource/RyJointTools/operations/restoreRigging.h"

#include "pluginsource/RyJointTools/operations/listRiggingProperties.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/adjustValues.h"
#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/scene/RyNode.h"

void restoreRigging(const std::vector<RyNode *> &nodes)
{
    std::vector<RyWantedValue> defaults;
    for (const RyNode *node : nodes) {
        if (!node)
            continue;
        for (RyFloatProperty *property : listRiggingProperties(*node))
            defaults.push_back({property, property->getDefaultValue()});
    }
    const RyExactRiggingEdit edit;
    adjustValues(defaults);
}
