#pragma once

class RyActionMenu;
class RyMenu;

// The menus of the tool. Both are made of one description: the tool's menu alone has the rotation orders, which the
// pane offers at hand, and the context menu alone the attributes of the selected nodes.

void fillToolMenu(RyMenu &menu);
void fillContextMenu(RyActionMenu &menu);
