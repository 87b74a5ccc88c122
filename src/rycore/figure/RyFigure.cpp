#include "rycore/figure/RyFigure.h"

#include "rycore/skin/RySkinBinding.h"

RyFigure::RyFigure() = default;

RySkinBinding *RyFigure::getSkinBinding() const
{
    return RySkinBinding::findSkinFromNode(this);
}
