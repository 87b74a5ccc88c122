#pragma once

#include <QString>

/// Exit codes of the program. A run over several files ends with the highest of theirs; one that was killed by the
/// signal n counts as 128 + n, as shells have it.
enum class ExitCode { Done = 0, FileRefused = 1, WrongUse = 2, ActionRefused = 3, CannotWrite = 4, ScriptFailed = 5 };

/// Of a process that came to an end without saying how.
constexpr int EndedSilently = 128;

/// "done", "a file was refused", "killed by signal 9" and so on.
QString exitCodeText(int code);
