#pragma once

#include "ryforeign/RyForeignInput.h"
#include "ryforeign/RyForeignTree.h"

/// Names of nodes below scaled ones that the file means to take on that scale otherwise than every node does, at rest
/// or while a clip plays. Before the tree is renamed; the names are the file's own.
QStringList ryScaledOtherwise(const RyForeignInput &input, const RyForeignTree &tree);
