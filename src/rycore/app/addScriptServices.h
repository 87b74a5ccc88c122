#pragma once

class RyActionMgr;
class RyScriptEngine;

/// Gives scripts `Actions` and the class `RyScriptForm`: `new RyScriptForm("Title")`.
void ryAddScriptServices(RyScriptEngine *engine, RyActionMgr *actions);
