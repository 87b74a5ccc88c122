#pragma once

#include <QString>

/// Opening a foreign file as a whole, as a user of the program waits for it, against the importers' library alone
/// reading it in a process of its own. Both sides start a process, load that library in it and read; ours also writes
/// the glTF document, reads it here and builds the scene. The peer's process links nothing but that library. Each
/// opening is timed in a process of its own that has opened the sample, as the program does when it starts.
namespace RyForeignOpening {

/// Whether the first argument says that this process is such a one.
bool isWay(const char *argument);
/// Does it once and prints what it took.
int runWay(const char *way, const QString &path);
/// Prints medians of so many turns and their ratios; false when a file cannot be opened.
bool compare(const QString &path, int turns);

} // namespace RyForeignOpening
