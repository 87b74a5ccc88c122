#include "FigureSketch.h"

#include <Eigen/LU>

#include <QByteArray>
#include <QFile>

#include <cstdint>
#include <cstring>
#include <map>
#include <stdexcept>

using nlohmann::json;

FigureSketch::FigureSketch()
{
    tree = {{"asset", {{"version", "2.0"}}}, {"scene", 0}, {"scenes", {{{"nodes", {0, 3}}}}}};
    tree["nodes"] = {{{"name", "root"}, {"children", {1}}},
                     {{"name", "low"}, {"children", {2}}},
                     {{"name", "high"}, {"translation", {0, 1, 0}}},
                     {{"name", "strip"}, {"mesh", 0}, {"skin", 0}}};
    std::vector<float> points, weights;
    std::vector<std::uint8_t> joints;
    std::vector<std::uint16_t> indices;
    constexpr int Rows = 9;
    for (int row = 0; row < Rows; ++row) {
        const float y = 0.25f * float(row);
        const float upper = row < 3 ? 0.0f : row > 5 ? 1.0f : 0.25f * float(row - 2);
        for (const float x : {-0.2f, 0.2f}) {
            points.insert(points.end(), {x, y, 0.1f * x});
            joints.insert(joints.end(), {0, 1, 0, 0});
            weights.insert(weights.end(), {1.0f - upper, upper, 0.0f, 0.0f});
        }
    }
    for (int row = 0; row + 1 < Rows; ++row) {
        const auto at = std::uint16_t(2 * row);
        for (const int corner : {0, 1, 2, 2, 1, 3})
            indices.push_back(std::uint16_t(at + corner));
    }
    const int position = add<float>(points, 5126, "VEC3");
    tree["accessors"].back()["min"] = {-0.2f, 0.0f, 0.1f * -0.2f};
    tree["accessors"].back()["max"] = {0.2f, 2.0f, 0.1f * 0.2f};
    const int joint = add<std::uint8_t>(joints, 5121, "VEC4");
    const int weight = add<float>(weights, 5126, "VEC4");
    const int index = add<std::uint16_t>(indices, 5123, "SCALAR");
    tree["meshes"] = {{{"name", "strip"},
                       {"primitives",
                        {{{"attributes", {{"POSITION", position}, {"JOINTS_0", joint}, {"WEIGHTS_0", weight}}},
                          {"indices", index}}}}}};
    Eigen::Matrix4d high = Eigen::Matrix4d::Identity();
    high(1, 3) = 1.0;
    const int binds = addBinds({Eigen::Matrix4d::Identity(), high});
    tree["skins"] = {{{"name", "skin"}, {"joints", {1, 2}}, {"inverseBindMatrices", binds}}};
}

int FigureSketch::addBinds(const std::vector<Eigen::Matrix4d> &binds)
{
    std::vector<float> numbers;
    for (const Eigen::Matrix4d &bind : binds) {
        const Eigen::Matrix4d inverse = bind.inverse();
        for (int i = 0; i < 16; ++i)
            numbers.push_back(float(inverse.data()[i]));
    }
    return add<float>(numbers, 5126, "MAT4");
}

void FigureSketch::addTurningClip(int node)
{
    const int times = add<float>({0.0f, 1.0f}, 5126, "SCALAR");
    tree["accessors"].back()["min"] = {0.0};
    tree["accessors"].back()["max"] = {1.0};
    const int turns = add<float>({0, 0, 0, 1, 0, 1, 0, 0}, 5126, "VEC4");
    tree["animations"] = {{{"samplers", {{{"input", times}, {"output", turns}}}},
                           {"channels", {{{"sampler", 0}, {"target", {{"node", node}, {"path", "rotation"}}}}}}}};
}

int FigureSketch::addBytes(const std::string &bytes, size_t numbers, int componentType, const std::string &type)
{
    while (m_data.size() % 4)
        m_data.push_back('\0');
    static const std::map<std::string, size_t> sizes = {
        {"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4}, {"MAT4", 16}};
    tree["bufferViews"].push_back({{"buffer", 0}, {"byteOffset", m_data.size()}, {"byteLength", bytes.size()}});
    tree["accessors"].push_back({{"bufferView", tree["bufferViews"].size() - 1},
                                 {"componentType", componentType},
                                 {"count", numbers / sizes.at(type)},
                                 {"type", type}});
    m_data += bytes;
    return int(tree["accessors"].size()) - 1;
}

void FigureSketch::set(int accessor, size_t number, float value)
{
    const json &view = tree["bufferViews"][tree["accessors"][size_t(accessor)]["bufferView"].get<size_t>()];
    std::memcpy(&m_data[view["byteOffset"].get<size_t>() + number * sizeof value], &value, sizeof value);
}

QString FigureSketch::write(const QString &path) const
{
    json copy = tree;
    const QByteArray encoded = QByteArray::fromStdString(m_data).toBase64();
    copy["buffers"] = {
        {{"byteLength", m_data.size()}, {"uri", "data:application/octet-stream;base64," + encoded.toStdString()}}};
    return writeTree(copy, path);
}

QString writeTree(const nlohmann::json &tree, const QString &path)
{
    QFile file(path);
    const std::string text = tree.dump();
    if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), qint64(text.size())) != qint64(text.size()))
        throw std::runtime_error("cannot write the file of the test");
    return path;
}
