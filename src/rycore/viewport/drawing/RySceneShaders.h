#pragma once

/// Sources of the shaders that draw the scene. Those that cover the view hand their fragments two numbers called
/// `place` and nothing else, and use both: a software renderer compiles code for each set of inputs, anew in each run.
namespace RySceneShaders {
extern const char *const BackgroundVertex;
extern const char *const BackgroundFragment;
extern const char *const PictureVertex;
extern const char *const PictureFragment;
extern const char *const GridVertex;
extern const char *const GridFragment;
extern const char *const SurfaceVertex;
extern const char *const SurfaceFragment;
} // namespace RySceneShaders
