#pragma once

/// Sources of the shaders that draw the scene.
namespace RySceneShaders {
extern const char *const BackgroundVertex;
extern const char *const BackgroundFragment;
extern const char *const GridVertex;
extern const char *const GridFragment;
extern const char *const SurfaceVertex;
extern const char *const SurfaceFragment;
} // namespace RySceneShaders
