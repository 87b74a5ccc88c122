#pragma once

#include "rycore/io/gltf/document/RyGltfDocument.h"

/// Reads everything that a reader of the scene would look at; a wrong range would be read here. Fails the running test
/// where a number is none.
void readAll(const RyGltfDocument &document);
