#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

RyBindingToSelectionMapBuilder::RyBindingToSelectionMapBuilder()
{
    setObjectName(QStringLiteral("RyBindingToSelectionMapBuilder"));
}
