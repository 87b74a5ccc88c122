#pragma once

class RySkinBinding;

/// All kinds of maps: where the weights of a vertex have a sum, it becomes that of full weight. Records into an undo
/// hold that is open.
void normalizeWeights(RySkinBinding *skin);
