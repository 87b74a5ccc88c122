#pragma once

#include <QtGlobal>

/// Milliseconds for which threads of this process have waited until what they wrote was on the disk, those of calls
/// that have not come back yet too. Linked in, it stands between the program and the system's fsync.
qint64 diskWaits();
