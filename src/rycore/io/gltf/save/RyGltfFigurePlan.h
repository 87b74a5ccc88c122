#pragma once

#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include <memory>
#include <vector>

class RyBone;
class RyFacetMesh;
struct RyMeshParts;

/// What is to become of a skin of the file.
struct RyGltfSkinPlan
{
    const RyGltfSkinSource *source = nullptr;
    std::vector<int> joints;
    bool isOther = false;   // not the file's list
    bool isShifted = false; // joints have other places than in the file
};

/// What is to become of a figure of the file: of its skins, and of the meshes that they bind.
struct RyGltfFigurePlan
{
    const RyGltfFigureSource *source = nullptr;
    const RyFacetMesh *mesh = nullptr;
    std::shared_ptr<const RyMeshParts> parts;
    std::vector<RyBone *> bones;
    std::vector<RyGltfSkinPlan> skins; // in step with the source's
    std::unique_ptr<RyGltfInfluences> influences;
    std::vector<bool> isDirty; // parts whose influences are written
    std::vector<int> meshes;   // where parts are written
    bool isRebuilt = false;    // vertices and bind matrices are written anew
    bool isMoved = false;      // vertices of the scene are elsewhere than the file's

    /// From the mesh space of a skin's meshes to figure space in centimetres, as it will be written; `unit`:
    /// centimetres per file unit.
    RyAffine meshToFigure(const RyGltfSkinPlan &skin, double unit) const
    {
        return isRebuilt || skin.source->rebound ? RyAffine::fromScale(unit) : skin.source->toFigure;
    }
};
