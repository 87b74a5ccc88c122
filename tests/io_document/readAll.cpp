#include "readAll.h"

#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"

#include <QtTest/QtTest>

#include <cmath>

void readAll(const RyGltfDocument &document)
{
    const RyGltfModel &model = document.model();
    double sum = 0.0;
    for (int i = 0; i < int(model.accessors.size()); ++i) {
        for (const float value : document.readFloats(i))
            sum += double(value);
        for (const std::uint32_t value : document.readUints(i))
            sum += value;
        for (const unsigned char byte : document.packedBytes(i))
            sum += byte;
    }
    RyGltfMeshBuilder builder({std::shared_ptr<void>(), &document});
    for (size_t mesh = 0; mesh < model.meshes.size(); ++mesh) {
        for (size_t primitive = 0; primitive < model.meshes[mesh].primitives.size(); ++primitive)
            builder.addPart(int(mesh), int(primitive), QString(), {0, 1}, RyAffine(), int(mesh));
    }
    sum += double(builder.positions.size());
    for (const RyGltfNode &node : model.nodes)
        sum += node.transform.toAffine().m[3][0];
    for (int i = 0; i < 4; ++i)
        sum += document.imageBytes(i).size();
    QVERIFY(!std::isnan(sum));
}
