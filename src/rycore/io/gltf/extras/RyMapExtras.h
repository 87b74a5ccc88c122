#pragma once

#include "rycore/io/gltf/extras/RyGltfNodeIndex.h"

#include <nlohmann/json_fwd.hpp>

#include <QStringList>

#include <map>
#include <string>
#include <vector>

class RyBone;
class RySkinBinding;

/// The weight maps that a file has no place for: local and scale maps, and those of bulges with their controllers. Each
/// is kept as compressed text, and read back only where the file's own weights are those that were written with them.
namespace RyMapExtras {

/// A number that tells the influences of a file from others, whatever their order.
class Fingerprint
{
public:
    void add(int node, int vertex, int weight);
    /// As it stands in a file.
    std::string text() const { return QString::number(m_value, 16).toStdString(); }

private:
    quint64 m_value = 0;
};

/// Null when the skin has only general maps. `nodeOf`: nodes of bones.
nlohmann::ordered_json toJson(const RySkinBinding &skin, int vertexCount, const RyGltfNodeIndex &nodeOf);
/// Gives the bindings their maps. False, and nothing done, when something does not fit.
bool apply(const nlohmann::ordered_json &stored, const Fingerprint &influences, int vertexCount,
           const RyGltfNodeIndex &nodeOf, RySkinBinding &skin);
/// All maps of a skin that has no mesh, general ones too, with its bindings in their order. `nodeOf`: nodes of bones.
nlohmann::ordered_json skinToJson(const RySkinBinding &skin, const RyGltfNodeIndex &nodeOf);
/// Makes its bindings. `bones`: by their nodes. False, and nothing done, when something does not fit.
bool readSkin(const nlohmann::ordered_json &stored, const std::map<int, RyBone *> &bones, RySkinBinding &skin);

/// Says how many bones bulge, which only we show.
void reportBulges(const RySkinBinding &skin, QStringList *messages);
/// What is stored of a skin with a mesh, as a text, to see whether it was edited; empty without such maps.
QString text(const RySkinBinding *skin);

} // namespace RyMapExtras
