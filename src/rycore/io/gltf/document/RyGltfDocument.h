#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"

#include <nlohmann/json_fwd.hpp>

#include <QString>
#include <QStringList>

#include <memory>
#include <set>
#include <span>

/// A glTF 2.0 file (.gltf with its buffers, .glb): the parsed tree and the buffers are kept whole and patched, so that
/// what nobody edits comes out as it went in: unknown extensions, extras, materials, images, clips, buffers byte for
/// byte, the order of members and the values of the numbers.
///
/// What stands in other files: buffers and images beside a .gltf are found by relative URIs that stay in its folder,
/// and are never changed (patches go to a buffer of our own). Written to the folder it came from, a .gltf goes on
/// naming them; written elsewhere it takes them in as data URIs, so that it is whole there. A .glb has one binary chunk
/// with all buffers, and takes images in when it was a .gltf or came from another folder.
class RyGltfDocument
{
public:
    /// What is ours in extras stands below this key.
    static constexpr const char *ExtrasKey = "RYHOST_rigging";
    static constexpr int ExtrasVersion = 1;

    /// Reads and checks a file. Null with a message that names what is wrong and where ("skins[0].joints[3]: node 99
    /// does not exist") when it must be refused; `warnings` gets what was repaired.
    static std::unique_ptr<RyGltfDocument> read(const QString &path, QString *error, QStringList *warnings = nullptr);
    /// The same for bytes that a file at `path` would hold; an empty path for none.
    static std::unique_ptr<RyGltfDocument> fromBytes(const QString &path, const QByteArray &bytes, QString *error,
                                                     QStringList *warnings);
    /// The same. Throws RyGltfError, and what the library of the tree throws, where `read` would refuse.
    static std::unique_ptr<RyGltfDocument> parse(const QString &path, const QByteArray &bytes, QStringList *warnings);
    /// An empty document with asset, one scene and no nodes.
    static std::unique_ptr<RyGltfDocument> create();
    ~RyGltfDocument();
    std::unique_ptr<RyGltfDocument> clone() const;
    /// The document, to be patched and then written anew. What stays behind has the model and the numbers as they are,
    /// and no tree.
    std::unique_ptr<RyGltfDocument> moveTree();
    /// Absolute path of the file that was read; empty for a document made here.
    QString path() const;

    const RyGltfModel &model() const;
    /// The scene that is shown; -1 in a file without scenes, where every node without a parent is shown.
    int shownScene() const;
    /// Reads the model anew from the tree. False with a message, and the model as it was, when the tree is not valid;
    /// buffers must not be added or removed in the tree.
    bool refresh(QString *error);
    /// The same for what clips drive, where nothing of the tree but their channels and samplers was changed.
    void refreshClips();
    /// The tree itself, for what has no accessor here (extras). Unknown to `model()` until `refresh`.
    nlohmann::ordered_json &json();
    const nlohmann::ordered_json &json() const;
    /// The clips in the tree, for other samplers and channels. Where bytes stand and who shares them stays known.
    nlohmann::ordered_json &clips();

    // Reading an accessor into a flat array of count * componentCount numbers. Sparse accessors are resolved; a missing
    // bufferView reads as zeros. Normalised integers become floats in [0,1] or [-1,1] by readFloats.
    std::vector<float> readFloats(int accessor) const;
    std::vector<std::uint32_t> readUints(int accessor) const;
    /// Whether every number of a float accessor, sparse ones included, is finite; `readFloats` gives 0 for the others.
    bool hasFiniteNumbers(int accessor) const;
    /// The accessor's bytes where they lie tightly packed in a buffer (no stride, not sparse); empty otherwise. For
    /// fast readers.
    std::span<const unsigned char> packedBytes(int accessor) const;
    /// Bytes of an image and its MIME type; empty when it cannot be read.
    QByteArray imageBytes(int image, QString *mimeType = nullptr) const;

    // Patching. Indices returned are those of the tree; model() follows.
    /// Writes the node's transform as translation, rotation, scale or as a matrix; parts that are the identity are left
    /// out. Numbers that come out as they were are left untouched. A transform with a number that is not finite is
    /// passed over.
    void setNodeTransform(int node, const RyGltfTransform &transform);
    void setNodeName(int node, const QString &name);
    int addNode(const QString &name, const RyGltfTransform &transform, int parent); // parent -1: a root of the scene
    int addMesh(const QString &name);
    /// `attributes`: names to accessors.
    void addPrimitive(int mesh, const std::vector<std::pair<std::string, int>> &attributes, int indices, int material);
    /// Accessor -1 removes the attribute.
    void setPrimitiveAttribute(int mesh, int primitive, const std::string &name, int accessor);
    /// Morph targets in the place of those that the primitive has: attributes and accessors of each.
    void setTargets(int mesh, int primitive, const std::vector<std::vector<std::pair<std::string, int>>> &targets);
    /// Puts these attributes in the place of all JOINTS_n and WEIGHTS_n, of those too that no reader takes: one without
    /// the other, or behind a gap.
    void setInfluences(int mesh, int primitive, const std::vector<std::pair<std::string, int>> &attributes);
    /// Says of a primitive that its triangles are the fans of polygons.
    void markFans(int mesh, int primitive);
    /// An image of a type that needs no extension (PNG, JPEG); -1 where there is no room for it.
    int addImage(const QString &name, const QByteArray &bytes, const QString &mimeType);
    /// With the name, base color, image (-1 for none) and sides of `material`; nothing of it shines.
    int addMaterial(const RyGltfMaterial &material);
    int addSkin(const QString &name, const std::vector<int> &joints, int inverseBindMatrices, int skeleton);
    void setNodeMeshAndSkin(int node, int mesh, int skin);
    void setSkinInverseBindMatrices(int skin, int accessor);
    /// New accessors, each with data appended to the document's last embedded buffer (or a new one) and a bufferView of
    /// its own. `withBounds` writes min and max, as positions need them. Targets: 34962 vertices, 34963 indices, 0
    /// none. -1 for a component count or type there is no accessor for, or when a buffer would pass two gigabytes.
    int addFloatAccessor(std::span<const float> values, int componentCount, int target, bool withBounds = false);
    /// Component types 5121, 5123 and 5125; numbers must fit.
    int addUintAccessor(std::span<const std::uint32_t> values, int componentCount, int componentType, int target,
                        bool normalized = false);
    /// Overwrites a float accessor's numbers in place when nothing else reads those bytes (same count; its own range of
    /// its buffer, no other accessor overlapping, no more users of the accessor than the `users` that are to get the
    /// numbers); otherwise adds a new accessor and returns its index. Bounds that the accessor has are kept right.
    int replaceFloats(int accessor, std::span<const float> values, int users = 1);
    /// Gives a float accessor any number of values; it keeps its place and its view, and the bytes stand at the end of
    /// a buffer. False where anything else reads its bytes or its view. Bounds that it has are kept right.
    bool resizeFloats(int accessor, std::span<const float> values, int users = 1);
    /// Likewise groups of four 16-bit numbers of vertices; an accessor of another kind, or -1, gives a new one.
    int replaceUints(int accessor, std::span<const std::uint32_t> values, bool normalized, int users = 1);

    /// New accessors take the places of those that we made once and nothing uses any more. Before patching.
    void reuseSpares();
    /// Every whole number that stands in an extension: it may be the place of anything.
    std::set<int> numbersInExtensions() const;
    /// Those of the accessors that nothing uses any more, and their views, are as good as made by us.
    void releaseUnused(const std::vector<int> &accessors);
    /// The place of a node that we made once and that is gone, to be filled with a new one; -1 for none.
    int takeSpareNode();
    /// Takes away what we made and nothing uses any more, with its bytes where nothing lies behind them that came with
    /// the file. Last before writing: it may move bytes, and the model does not know of it.
    void dropUnused();

    /// Bytes of the document in the form of the ending (.glb: one binary chunk; .gltf: buffers embedded as data URIs
    /// when they came so or were made here, otherwise external files keep their names). Two calls give identical bytes.
    /// A document that nobody patched and that is written in its own form gives the bytes that were read where
    /// possible.
    QByteArray toBytes(const QString &ending, QString *error = nullptr) const;
    /// Writes safely: a temporary file in the same folder, flushed, then renamed. On failure the old file stays and the
    /// message names what and why. Reading and writing external buffers beside the target included.
    bool write(const QString &path, QString *error) const;

private:
    friend class RyGltfAppender;
    friend class RyGltfWriter;
    friend class RyGltfGaps;
    friend class RyGltfSpares;
    RyGltfDocument();
    struct Private;
    std::unique_ptr<Private> d;
};
