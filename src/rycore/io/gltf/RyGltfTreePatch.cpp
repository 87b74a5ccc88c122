#include "rycore/io/gltf/RyGltfTreePatch.h"

#include "rycore/io/gltf/RyGltfDocument.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

void RyGltfTreePatch::setSkinJoints(int skin, const std::vector<int> &joints)
{
    Json &json = m_document.json()["skins"][size_t(skin)];
    json["joints"] = joints;
    json.erase("skeleton"); // need not stand above the new joints
}

bool RyGltfTreePatch::finish(QString *error)
{
    return m_document.refresh(error);
}
