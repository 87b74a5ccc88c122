#pragma once

#include "evaluator/GltfEvaluator.h"

#include <QString>

#include <set>

/// Whether the second file has the clips of the first in all but numbers: their order, names and members, and their
/// channels in order, without those of nodes that are gone. Channels may come behind them; a clip that drove nothing
/// else than gone nodes may be gone. Empty, or what differs.
QString lostOfClips(const GltfEvaluator &before, const GltfEvaluator &after);

/// Accessors that samplers of clips read.
std::set<int> accessorsOfClips(const GltfEvaluator &file);
