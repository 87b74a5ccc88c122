#include "ryforeign/RyForeignPlace.h"

#include "rycore/io/RyUnitFactor.h"
#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace {

/// Lowest and highest place along each axis.
struct Extent
{
    double low[3] = {1e300, 1e300, 1e300};
    double high[3] = {-1e300, -1e300, -1e300};

    void include(const double *place)
    {
        for (int axis = 0; axis < 3; ++axis) {
            if (!std::isfinite(place[axis]))
                continue;
            low[axis] = std::min(low[axis], place[axis]);
            high[axis] = std::max(high[axis], place[axis]);
        }
    }
    double size(int axis) const { return std::max(0.0, high[axis] - low[axis]); }
    double height() const { return ryFigureHeight(size(0), size(1), size(2)); }
};

int stated(const aiScene &scene, const char *key, int otherwise)
{
    int value = otherwise;
    if (scene.mMetaData)
        scene.mMetaData->Get(key, value);
    return value;
}

/// To Y up and Z front; a left-handed statement is taken by its first two axes.
RyAffine axesOf(const aiScene &scene)
{
    const int up = stated(scene, "UpAxis", 1), right = stated(scene, "CoordAxis", 0);
    if (up < 0 || up > 2 || right < 0 || right > 2 || up == right)
        return RyAffine();
    const int front = 3 - up - right;
    RyAffine map;
    for (auto &row : map.m)
        std::fill(row, row + 3, 0.0);
    map.m[right][0] = stated(scene, "CoordAxisSign", 1) < 0 ? -1.0 : 1.0;
    map.m[up][1] = stated(scene, "UpAxisSign", 1) < 0 ? -1.0 : 1.0;
    map.m[front][2] = 1.0;
    if (map.determinant() < 0.0)
        map.m[front][2] = -1.0;
    return map;
}

/// Of the skinned meshes; without any, of the joints and their ends.
Extent extentOf(const RyForeignInput &input, const RyForeignTree &tree, const RyAffine &top)
{
    Extent ofMeshes, ofJoints;
    for (const RyForeignTree::Node &node : tree.nodes) {
        const RyAffine map = node.world * top, shown = node.pivot.geometric * map;
        if (node.isJoint || node.isEnd)
            ofJoints.include(map.m[3]);
        for (unsigned m = 0; m < node.source->mNumMeshes; ++m) {
            const aiMesh &mesh = *input.scene->mMeshes[node.source->mMeshes[m]];
            const int joint = mesh.mNumBones > 0 ? tree.find(mesh.mBones[0]->mName) : -1;
            // Collada binds a mesh where its skin says.
            const RyAffine bound =
                input.kind == RyForeignInput::Collada && joint >= 0
                    ? ryForeignMap(mesh.mBones[0]->mOffsetMatrix) * tree.nodes[size_t(joint)].world * top
                    : shown;
            const unsigned step = 1 + mesh.mNumVertices / 10000; // a sample is enough for a height
            for (unsigned v = 0; mesh.mNumBones > 0 && v < mesh.mNumVertices; v += step) {
                const double from[3] = {mesh.mVertices[v].x, mesh.mVertices[v].y, mesh.mVertices[v].z};
                double at[3];
                bound.mapPoint(from, at);
                ofMeshes.include(at);
            }
        }
    }
    return ofMeshes.height() > 0.0 ? ofMeshes : ofJoints;
}

/// A format without axes: skeletons of programs in which Z points up lie on their backs.
RyAffine guessedAxes(const RyForeignInput &input, const RyForeignTree &tree)
{
    const Extent extent = extentOf(input, tree, RyAffine());
    if (extent.size(2) <= 2.0 * extent.size(1))
        return RyAffine();
    input.say(QStringLiteral("The skeleton is more than twice as long along Z as along Y, so that Z was taken to point "
                             "up"));
    RyAffine map;
    map.m[1][1] = map.m[2][2] = 0.0;
    map.m[2][1] = 1.0;
    map.m[1][2] = -1.0;
    return map;
}

double statedUnit(const RyForeignInput &input)
{
    if (input.kind != RyForeignInput::Fbx)
        return input.kind == RyForeignInput::Collada ? 100.0 : 1.0;
    // Kept as the file has it, in one precision or the other.
    double unit = 1.0;
    float single = 1.0f;
    if (input.scene->mMetaData && !input.scene->mMetaData->Get("UnitScaleFactor", unit) &&
        input.scene->mMetaData->Get("UnitScaleFactor", single)) {
        unit = double(single);
    }
    return std::isfinite(unit) && unit > 0.0 ? unit : 1.0;
}

} // namespace

RyAffine ryForeignTop(const RyForeignInput &input, const RyForeignTree &tree, double unit)
{
    const RyAffine axes = input.kind == RyForeignInput::Fbx   ? axesOf(*input.scene)
                          : input.kind == RyForeignInput::Bvh ? guessedAxes(input, tree)
                                                              : RyAffine();
    const double nominal = statedUnit(input);
    const double height = extentOf(input, tree, axes).height();
    const double factor = unit > 0.0 ? unit : ryUnitFactor(nominal, height);
    if (unit <= 0.0 && factor != nominal) {
        input.say(QStringLiteral("With the unit of the file the largest figure would be %1 cm high; it was taken to be "
                                 "%2 cm high")
                      .arg(nominal * height, 0, 'g', 3)
                      .arg(factor * height, 0, 'g', 3));
    }
    return axes * RyAffine::fromScale(factor / 100.0);
}
