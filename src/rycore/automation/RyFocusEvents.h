#pragma once

class QWidget;

/// What a widget without keyboard focus misses when it is filled: the start and the end of the input.
namespace RyFocusEvents {

void enter(QWidget *widget);
void leave(QWidget *widget);

} // namespace RyFocusEvents
