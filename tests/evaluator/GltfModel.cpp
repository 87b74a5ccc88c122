#include "evaluator/GltfModel.h"

#include "evaluator/GltfTransform.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

using nlohmann::json;

namespace {

[[noreturn]] void fail(const std::string &reason)
{
    throw std::runtime_error(reason);
}

Eigen::Matrix4d columnMajor(const double *values)
{
    return Eigen::Map<const Eigen::Matrix4d>(values);
}

} // namespace

GltfModel::GltfModel(const std::string &path)
{
    try {
        file = readGltfFile(path);
        readParents();
        checkTree();
        readSkins();
        readPrimitives();
    } catch (const json::exception &error) {
        fail(path + ": " + error.what());
    }
}

const json &GltfModel::listOf(const json &object, const char *key)
{
    static const json empty = json::array();
    const auto found = object.find(key);
    return found == object.end() ? empty : *found;
}

const json &GltfModel::node(int index) const
{
    const json &nodes = listOf(file.json, "nodes");
    if (index < 0 || std::size_t(index) >= nodes.size())
        fail("there is no node " + std::to_string(index));
    return nodes[std::size_t(index)];
}

const json &GltfModel::primitive(const GltfPrimitive &which) const
{
    return file.json.at("meshes").at(std::size_t(which.mesh)).at("primitives").at(std::size_t(which.primitive));
}

Eigen::Matrix4d GltfModel::localMatrix(int index) const
{
    const json &node = this->node(index);
    if (node.contains("matrix")) {
        const auto values = node["matrix"].get<std::vector<double>>();
        if (values.size() != 16)
            fail("a node's matrix has not sixteen numbers");
        return columnMajor(values.data());
    }
    return GltfTransform::ofNode(node).matrix();
}

void GltfModel::readParents()
{
    const json &nodes = listOf(file.json, "nodes");
    parents.assign(nodes.size(), -1);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const json &child : listOf(nodes[i], "children")) {
            const auto index = child.get<std::size_t>();
            if (index >= nodes.size())
                fail("node " + std::to_string(i) + " has a child that does not exist");
            if (parents[index] != -1)
                fail("node " + std::to_string(index) + " has two parents");
            parents[index] = int(i);
        }
    }
}

void GltfModel::checkTree() const
{
    const json &nodes = listOf(file.json, "nodes");
    // Whoever is not reached from a root stands in a circle.
    std::vector<int> open;
    for (std::size_t i = 0; i < parents.size(); ++i) {
        if (parents[i] == -1)
            open.push_back(int(i));
    }
    std::size_t reached = 0;
    while (!open.empty()) {
        const int index = open.back();
        open.pop_back();
        ++reached;
        for (const json &child : listOf(nodes[std::size_t(index)], "children"))
            open.push_back(child.get<int>());
    }
    if (reached != nodes.size())
        fail("nodes are their own ancestors");
}

void GltfModel::readSkins()
{
    for (const json &skin : listOf(file.json, "skins")) {
        Skin read;
        read.joints = skin.at("joints").get<std::vector<int>>();
        for (int joint : read.joints)
            node(joint);
        read.inverseBinds.assign(read.joints.size(), Eigen::Matrix4d::Identity());
        if (skin.contains("inverseBindMatrices")) {
            const GltfTable table = readGltfAccessor(file, skin["inverseBindMatrices"].get<int>());
            if (table.components != 16 || table.count < read.joints.size())
                fail("a skin has too few inverse bind matrices");
            for (std::size_t i = 0; i < read.joints.size(); ++i)
                read.inverseBinds[i] = columnMajor(table.row(i));
        }
        skins.push_back(std::move(read));
    }
}

void GltfModel::readPrimitives()
{
    const json &nodes = listOf(file.json, "nodes");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (!nodes[i].contains("mesh"))
            continue;
        const int mesh = nodes[i]["mesh"].get<int>();
        const int skin = nodes[i].value("skin", -1);
        if (skin >= int(skins.size()))
            fail("there is no skin " + std::to_string(skin));
        const json &found = file.json.at("meshes").at(std::size_t(mesh));
        for (std::size_t p = 0; p < found.at("primitives").size(); ++p)
            primitives.push_back({int(i), mesh, int(p), skin, found.value("name", std::string())});
    }
}
