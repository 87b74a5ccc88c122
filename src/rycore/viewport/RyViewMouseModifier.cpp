#include "rycore/viewport/RyViewMouseModifier.h"

RyViewMouseModifier ryViewMouseModifier(Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ControlModifier)
        return RyViewMouseModifier::Control;
    if (modifiers & Qt::ShiftModifier)
        return RyViewMouseModifier::Shift;
    if (modifiers & Qt::AltModifier)
        return RyViewMouseModifier::Alt;
    return RyViewMouseModifier::None;
}
