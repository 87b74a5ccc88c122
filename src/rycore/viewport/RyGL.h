#pragma once

// The GL functions beyond 1.1 as prototypes. Must be included before any Qt header that brings its own GL header.
#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <qopengl.h>
