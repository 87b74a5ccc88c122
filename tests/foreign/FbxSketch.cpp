#include "foreign/FbxSketch.h"

namespace {

FbxRecord propertiesOf(const FbxSketch::Properties &all)
{
    FbxRecord list("Properties70");
    for (const FbxRecord &each : all)
        list.add(each);
    return list;
}

qint64 clockTime(double seconds)
{
    return qint64(seconds * 46186158000.0);
}

qint64 of(const std::vector<std::pair<qint64, qint64>> &pairs, qint64 key)
{
    for (const auto &[node, object] : pairs) {
        if (node == key)
            return object;
    }
    return 0;
}

} // namespace

FbxRecord FbxSketch::vector(const char *name, double x, double y, double z)
{
    const bool isOwnType = QByteArray(name).startsWith("Lcl"); // a type of its own
    return FbxRecord("P")
        .text(name)
        .text(isOwnType ? name : "Vector3D")
        .text(isOwnType ? "" : "Vector")
        .text(isOwnType ? "A" : "")
        .real(x)
        .real(y)
        .real(z);
}

FbxRecord FbxSketch::wholeNumber(const char *name, int value, const char *type)
{
    return FbxRecord("P").text(name).text(type).text(QByteArray(type) == "int" ? "Integer" : "").text("").number(value);
}

qint64 FbxSketch::add(const char *kind, const char *name, const char *label, const char *type,
                      const std::vector<FbxRecord> &inside)
{
    FbxRecord record(kind);
    record.id(++m_last).text(QByteArray(name) + QByteArray("\0\1", 2) + label).text(type);
    for (const FbxRecord &each : inside)
        record.add(each);
    m_objects.add(record);
    return m_last;
}

qint64 FbxSketch::addLimb(const char *name, qint64 parent, const Properties &properties)
{
    const qint64 limb =
        add("Model", name, "Model", "LimbNode", {FbxRecord("Version").number(232), propertiesOf(properties)});
    const qint64 attribute =
        add("NodeAttribute", "", "NodeAttribute", "LimbNode", {FbxRecord("TypeFlags").text("Skeleton")});
    connect(limb, parent);
    connect(attribute, limb);
    return limb;
}

qint64 FbxSketch::addSquare(const char *name, qint64 parent, const Properties &properties)
{
    const FbxRecord normals = FbxRecord("LayerElementNormal")
                                  .number(0)
                                  .add(FbxRecord("Version").number(101))
                                  .add(FbxRecord("Name").text(""))
                                  .add(FbxRecord("MappingInformationType").text("ByVertice"))
                                  .add(FbxRecord("ReferenceInformationType").text("Direct"))
                                  .add(FbxRecord("Normals").reals({0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}));
    const FbxRecord layer = FbxRecord("Layer")
                                .number(0)
                                .add(FbxRecord("Version").number(100))
                                .add(FbxRecord("LayerElement")
                                         .add(FbxRecord("Type").text("LayerElementNormal"))
                                         .add(FbxRecord("TypedIndex").number(0)));
    return addMesh(name, parent, properties, {0, 0, 0, 160, 0, 0, 160, 160, 0, 0, 160, 0}, {0, 1, 2, ~3},
                   {normals, layer});
}

qint64 FbxSketch::addMesh(const char *name, qint64 parent, const Properties &properties,
                          const std::vector<double> &points, const std::vector<qint32> &corners,
                          const std::vector<FbxRecord> &layers)
{
    const qint64 node =
        add("Model", name, "Model", "Mesh", {FbxRecord("Version").number(232), propertiesOf(properties)});
    std::vector<FbxRecord> inside{FbxRecord("Vertices").reals(points), FbxRecord("PolygonVertexIndex").numbers(corners),
                                  FbxRecord("GeometryVersion").number(124)};
    inside.insert(inside.end(), layers.begin(), layers.end());
    const qint64 geometry = add("Geometry", name, "Geometry", "Mesh", inside);
    connect(node, parent);
    connect(geometry, node);
    m_geometries.emplace_back(node, geometry);
    return node;
}

qint64 FbxSketch::addMorph(qint64 node, const char *name, double percent)
{
    if (of(m_shapers, node) == 0) {
        m_shapers.emplace_back(node, add("Deformer", "", "Deformer", "BlendShape", {FbxRecord("Version").number(100)}));
        connect(m_shapers.back().second, of(m_geometries, node));
    }
    const qint64 morph = add("Deformer", name, "SubDeformer", "BlendShapeChannel",
                             {FbxRecord("Version").number(100), FbxRecord("DeformPercent").real(percent),
                              FbxRecord("FullWeights").reals({100.0})});
    connect(morph, of(m_shapers, node));
    return morph;
}

void FbxSketch::addShape(qint64 morph, const char *name, const Deltas &delta, const Deltas &normal)
{
    const qint64 shape = add("Geometry", name, "Geometry", "Shape",
                             {FbxRecord("Version").number(100), FbxRecord("Indexes").numbers({3}),
                              FbxRecord("Vertices").reals(delta), FbxRecord("Normals").reals(normal)});
    connect(shape, morph);
}

void FbxSketch::bind(qint64 node, qint64 limb, double height, const std::vector<qint32> &corners)
{
    bind(node, limb, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, height, 0, 1},
         {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -height, 0, 1}, corners);
}

void FbxSketch::bind(qint64 node, qint64 limb, const Deltas &link, const Deltas &toLimb,
                     const std::vector<qint32> &corners, const std::vector<double> &weights)
{
    if (of(m_skins, node) == 0) {
        m_skins.emplace_back(node, add("Deformer", "", "Deformer", "Skin", {FbxRecord("Version").number(101)}));
        connect(m_skins.back().second, of(m_geometries, node));
    }
    const qint64 cluster =
        add("Deformer", "", "SubDeformer", "Cluster",
            {FbxRecord("Version").number(100), FbxRecord("Indexes").numbers(corners),
             FbxRecord("Weights").reals(weights.empty() ? std::vector<double>(corners.size(), 1.0) : weights),
             FbxRecord("Transform").reals(toLimb), FbxRecord("TransformLink").reals(link)});
    connect(cluster, of(m_skins, node));
    connect(limb, cluster);
}

void FbxSketch::addCurve(qint64 target, const char *property, const char *part, const std::vector<double> &seconds,
                         const std::vector<float> &numbers)
{
    if (m_layer == 0) {
        Properties properties;
        const char *names[] = {"LocalStart", "LocalStop"};
        for (size_t i = 0; i < m_range.size(); ++i)
            properties.push_back(
                FbxRecord("P").text(names[i]).text("KTime").text("Time").text("").id(clockTime(m_range[i])));
        const qint64 stack = add("AnimationStack", m_clip.constData(), "AnimStack", "",
                                 {FbxRecord("Version").number(100), propertiesOf(properties)});
        m_layer = add("AnimationLayer", "Base", "AnimLayer", "", {FbxRecord("Version").number(100)});
        connect(m_layer, stack);
    }
    const bool isFirst = m_curveNodes.count({target, property}) == 0;
    qint64 &node = m_curveNodes[{target, property}];
    if (isFirst) {
        node = add("AnimationCurveNode", "N", "AnimCurveNode", "", {FbxRecord("Version").number(100)});
        connect(node, m_layer);
        m_connections.add(FbxRecord("C").text("OP").id(node).id(target).text(property));
    }
    std::vector<qint64> times;
    for (const double second : seconds)
        times.push_back(clockTime(second));
    const qint64 curve =
        add("AnimationCurve", "", "AnimCurve", "",
            {FbxRecord("Default").real(0.0), FbxRecord("KeyVer").number(4008), FbxRecord("KeyTime").ids(times),
             FbxRecord("KeyValueFloat").floats(numbers), FbxRecord("KeyAttrFlags").numbers({4}),
             FbxRecord("KeyAttrDataFloat").floats({0, 0, 0, 0}),
             FbxRecord("KeyAttrRefCount").numbers({qint32(seconds.size())})});
    m_connections.add(FbxRecord("C").text("OP").id(curve).id(node).text(part));
}

void FbxSketch::startClip(const char *name, const std::vector<double> &range)
{
    m_clip = name;
    m_range = range;
    m_curveNodes.clear();
    m_layer = 0;
}

void FbxSketch::addConstraint(const char *name)
{
    add("Constraint", name, "Constraint", "Parent-Child", {FbxRecord("Type").text("Parent-Child")});
}

FbxRecord FbxSketch::ownProperty(const char *name, double value)
{
    return FbxRecord("P").text(name).text("Number").text("").text("A+U").real(value);
}

std::vector<FbxRecord> FbxSketch::records(qint32 version) const
{
    const FbxRecord head = FbxRecord("FBXHeaderExtension")
                               .add(FbxRecord("FBXHeaderVersion").number(1003))
                               .add(FbxRecord("FBXVersion").number(version));
    const FbxRecord settings =
        FbxRecord("GlobalSettings")
            .add(FbxRecord("Version").number(1000))
            .add(propertiesOf(
                {wholeNumber("UpAxis", 1), wholeNumber("UpAxisSign", 1), wholeNumber("FrontAxis", 2),
                 wholeNumber("FrontAxisSign", 1), wholeNumber("CoordAxis", 0), wholeNumber("CoordAxisSign", 1),
                 FbxRecord("P").text("UnitScaleFactor").text("double").text("Number").text("").real(1.0)}));
    return {head, settings, m_objects, m_connections};
}

QByteArray FbxSketch::bytes(qint32 version, const FbxRecord::Form &form) const
{
    QByteArray all = FbxRecord::header(version);
    for (const FbxRecord &each : records(version))
        all += each.bytes(all.size(), form);
    return all + FbxRecord::end(form);
}

QByteArray FbxSketch::text() const
{
    QByteArray all = "; FBX 7.4.0 project file\n";
    for (const FbxRecord &each : records(7400))
        all += each.textForm();
    return all;
}
