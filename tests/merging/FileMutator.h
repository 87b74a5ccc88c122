#pragma once

#include <nlohmann/json.hpp>

#include <QByteArray>

#include <random>
#include <vector>

/// Changes a glTF file at random: values of its tree (indices, kinds, members that are missing or stand elsewhere, what
/// our key in extras says), and bytes.
class FileMutator
{
public:
    /// `bytes`: of a .gltf or .glb file.
    FileMutator(const QByteArray &bytes, std::mt19937 &random);

    void mutateTree();
    /// One value below a place of the tree; none where there is no such place.
    void mutateBelow(const nlohmann::json::json_pointer &place);
    /// The file with a few of its bytes changed when `damaged`.
    QByteArray bytes(bool damaged);
    /// Those into a file.
    void write(const QString &path, bool damaged);

private:
    using Json = nlohmann::json;
    using Pointer = Json::json_pointer;

    size_t below(size_t limit) { return m_random() % std::max(limit, size_t(1)); }
    Pointer pickPlace();
    Json otherValue(const Json &value);
    Json otherNumber(const Json &number);
    void markAtRandom();
    void change(Json &parent, const std::string &step);

    std::mt19937 &m_random;
    Json m_tree;
    QByteArray m_chunk; // what follows the JSON of a container
    bool m_isContainer = false;
};
