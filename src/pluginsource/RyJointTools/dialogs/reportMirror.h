#pragma once

struct MirrorReport;

/// Says in the status line how many bones were mirrored, and in the log which ones, how their opposites were found, and
/// which have none; also where the pairs do not stand on either side of the plane.
void reportMirror(const MirrorReport &report);
