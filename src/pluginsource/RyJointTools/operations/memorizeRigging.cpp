#include "pluginsource/RyJointTools/operations/memorizeRigging.h"

#include "pluginsource/RyJointTools/operations/listRiggingProperties.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/adjustValues.h"
#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/scene/RyNode.h"

void memorizeRigging(const std::vector<RyNode *> &nodes)
{
    // All values first: links count from defaults, so a default that is written moves what hangs on its property.
    std::vector<RyWantedValue> values;
    for (const RyNode *node : nodes) {
        if (!node)
            continue;
        for (RyFloatProperty *property : listRiggingProperties(*node))
            values.push_back({property, property->getValue()});
    }
    const RyExactRiggingEdit edit;
    for (const RyWantedValue &each : values) {
        if (each.property)
            each.property->setDefaultValue(each.value);
    }
    adjustValues(values);
}
