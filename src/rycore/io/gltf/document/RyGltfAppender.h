#pragma once

#include "rycore/io/gltf/document/RyGltfReferences.h"

#include <nlohmann/json.hpp>

#include <QStringList>

#include <array>
#include <set>
#include <vector>

class RyGltfDocument;

/// Where the entries of an appended document stand, by list; -1 for what was left out.
struct RyGltfPlaces
{
    std::array<std::vector<int>, ryGltfListCount> of;

    /// -1 stays -1.
    int at(RyGltfList list, int index) const { return index < 0 ? -1 : of[size_t(list)][size_t(index)]; }
};

/// Appends a document to another with all that belongs to it: nodes, meshes with every attribute, skins, materials,
/// textures, pictures, clips, extras, and the extensions whose references are known. Entries of the other keep their
/// places; bytes are copied, never made anew. What only nodes that are left out use is left out as well.
class RyGltfAppender
{
public:
    /// `leftOut`: nodes that are not brought over, with all below them; skins of which a joint is left out go too.
    RyGltfAppender(RyGltfDocument &target, const RyGltfDocument &from, const std::set<int> &leftOut);

    /// What the document's scene shows comes below one new node of the target's scene; what it does not show below
    /// another that hangs nowhere. Gives the places of these nodes; none with a reason when the result would not be
    /// valid.
    std::vector<int> append(const QString &name, QString *error);
    const RyGltfPlaces &places() const { return m_places; }
    /// What could not be brought over, and why.
    const QStringList &losses() const { return m_losses; }

private:
    using Json = RyGltfReferences::Json;
    using Marks = std::array<std::vector<bool>, ryGltfListCount>;

    void dropNodes(const std::set<int> &leftOut);
    void pruneAnimations();
    bool isDriven(const Json &channel) const;
    void dropUnused();
    void leaveOutUnknown(Json &value);
    void countPlaces();
    void renumber(RyGltfList list, Json &entry) const;
    void renumberPointers(Json &animation) const;
    void copyBuffers();
    std::vector<std::uint64_t> compactBuffer(std::size_t buffer, QByteArray &bytes) const;
    void copyEntries();
    std::vector<int> addRoots(const QString &name);
    Json rootOf(const QString &name, const Json &children);
    void copySceneExtensions();
    void uniteExtensionLists();
    void takeInPictures();
    void lose(const QString &what);
    bool isDropped(RyGltfList list, std::size_t index) const;
    const Json &listOf(RyGltfList list) const;

    RyGltfDocument &m_target;
    const RyGltfDocument &m_from;
    Json m_tree; // a copy of what is appended, without what is left out
    Marks m_isDropped;
    RyGltfPlaces m_places;
    std::vector<std::vector<std::uint64_t>> m_viewOffsets; // per buffer that is compacted, of its views
    std::set<std::string> m_unknown;                       // extensions that were left out
    QStringList m_losses;
};
