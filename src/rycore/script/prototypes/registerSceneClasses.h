#pragma once

class RyScriptEngine;

/// Tells scripts of the scene: pointers to its classes, what their objects can do, `Undo` and `RestorePoints`.
void ryRegisterSceneClasses(RyScriptEngine *engine);
