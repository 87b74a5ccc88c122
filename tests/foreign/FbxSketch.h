#pragma once

#include "foreign/FbxRecord.h"

#include <map>

/// A small FBX file, object by object.
class FbxSketch
{
public:
    using Properties = std::vector<FbxRecord>;
    using Deltas = std::vector<double>;

    static FbxRecord vector(const char *name, double x, double y, double z);
    static FbxRecord wholeNumber(const char *name, int value, const char *type = "int");

    /// A limb of a skeleton; `parent` 0: the scene.
    qint64 addLimb(const char *name, qint64 parent, const Properties &properties);
    /// A node that shows a square of 160 units from the origin up and right.
    qint64 addSquare(const char *name, qint64 parent, const Properties &properties = {});
    /// A node that shows a mesh of its own; the last corner of a polygon is written as its complement.
    qint64 addMesh(const char *name, qint64 parent, const Properties &properties, const std::vector<double> &points,
                   const std::vector<qint32> &corners, const std::vector<FbxRecord> &layers = {});
    /// Of the node's square, which the first of its shapes makes a deformer for.
    qint64 addMorph(qint64 node, const char *name, double percent);
    /// One shape of a morph: what is added to the last corner of the square, and to its normal.
    void addShape(qint64 morph, const char *name, const Deltas &delta, const Deltas &normal = {0, 0, 0});
    /// Binds all corners of a square to a limb that stands, at bind, `height` up.
    void bind(qint64 node, qint64 limb, double height, const std::vector<qint32> &corners = {0, 1, 2, 3});
    /// The same by matrices, as the file has them: of the limb's space to the world, and of the node's to the limb's.
    void bind(qint64 node, qint64 limb, const Deltas &link, const Deltas &toLimb, const std::vector<qint32> &corners,
              const std::vector<double> &weights = {});
    /// A curve of straight lines through numbers at seconds; `path`: "Lcl Rotation" and "d|X" and the like.
    void addCurve(qint64 target, const char *property, const char *part, const std::vector<double> &seconds,
                  const std::vector<float> &numbers);

    /// The curves that follow are of another clip. `range`: its first and last second, where the file says them.
    void startClip(const char *name, const std::vector<double> &range = {});
    void addConstraint(const char *name);
    /// A property that somebody added to a node.
    static FbxRecord ownProperty(const char *name, double value);

    /// In binary form.
    QByteArray bytes(qint32 version = 7400, const FbxRecord::Form &form = FbxRecord::Form()) const;
    QByteArray text() const;

private:
    qint64 add(const char *kind, const char *name, const char *label, const char *type,
               const std::vector<FbxRecord> &inside);
    std::vector<FbxRecord> records(qint32 version) const;
    void connect(qint64 from, qint64 to) { m_connections.add(FbxRecord("C").text("OO").id(from).id(to)); }

    FbxRecord m_objects{"Objects"};
    FbxRecord m_connections{"Connections"};
    qint64 m_last = 0;
    qint64 m_layer = 0;
    QByteArray m_clip = "Clip";
    std::vector<double> m_range;
    std::map<std::pair<qint64, QByteArray>, qint64> m_curveNodes;            // of the clip at hand
    std::vector<std::pair<qint64, qint64>> m_geometries, m_shapers, m_skins; // of nodes
};
