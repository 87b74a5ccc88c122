#pragma once

#include <Qt>
#include <QtGlobal>

/// The one modifier that a view tool hears of with the mouse.
enum class RyViewMouseModifier { None = 0, Shift = 1, Alt = 2, Control = 3 };

/// Control wins over Shift, Shift over Alt.
RyViewMouseModifier ryViewMouseModifier(Qt::KeyboardModifiers modifiers);
