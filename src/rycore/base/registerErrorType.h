#pragma once

class QScriptEngine;

/// Makes error codes numbers in scripts.
void registerErrorType(QScriptEngine *engine);
