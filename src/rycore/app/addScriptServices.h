#pragma once

class RyActionMgr;
class RyScriptEngine;
class RyViewportMgr;

/// Gives scripts `Actions`, `Tools` and the class `RyScriptForm`: `new RyScriptForm("Title")`.
void ryAddScriptServices(RyScriptEngine *engine, RyActionMgr *actions, RyViewportMgr *viewports);
