#include "foreign_reader/MadeFigure.h"

#include "foreign/FbxRecord.h"

#include <cmath>
#include <limits>

namespace {

constexpr int Rings = 3;
constexpr double RingStep = 80.0;

enum Id { Geometry = 1, Mesh, Skin, Material, Camera, CameraShape, Light, LightShape, Bones = 100 };
constexpr int Attributes = 200, Clusters = 300, Textures = 400, Videos = 500;

QByteArray named(const QByteArray &name, const char *kind)
{
    return name + QByteArray("\0\1", 2) + kind;
}

FbxRecord object(const char *kind, int id, const QByteArray &name, const char *sort, const char *type)
{
    FbxRecord made(kind);
    made.id(id).text(named(name, sort)).text(type);
    made.add(FbxRecord("Version").number(100)); // readers want something in it
    return made;
}

FbxRecord whole(const char *name, int value)
{
    return FbxRecord("P").text(name).text("int").text("Integer").text("").number(value);
}

FbxRecord number(const char *name, double value)
{
    return FbxRecord("P").text(name).text("double").text("Number").text("").real(value);
}

FbxRecord three(const char *name, const RyVec3 &v)
{
    return FbxRecord("P")
        .text(name)
        .text(name)
        .text("")
        .text("A")
        .real(double(v.x))
        .real(double(v.y))
        .real(double(v.z));
}

FbxRecord list(const std::vector<FbxRecord> &all)
{
    FbxRecord made("Properties70");
    for (const FbxRecord &each : all)
        made.add(each);
    return made;
}

FbxRecord layerElement(const char *name, int number)
{
    return FbxRecord("LayerElement").add(FbxRecord("Type").text(name)).add(FbxRecord("TypedIndex").number(number));
}

FbxRecord word(const char *name, const char *value)
{
    return FbxRecord(name).text(value);
}

} // namespace

std::vector<RyVec3> MadeFigure::vertices() const
{
    std::vector<RyVec3> all;
    for (int ring = 0; ring < Rings; ++ring) {
        for (int side = 0; side < Sides; ++side) {
            const double angle = 6.283185307179586 * side / Sides;
            all.emplace_back(float(mirrored * (7.0 + 20.0 * std::cos(angle))), float(RingStep * ring),
                             float(3.0 - 20.0 * std::sin(angle)));
        }
    }
    return all;
}

RyVec3 MadeFigure::bone(int number) const
{
    return number < 2 ? RyVec3(7, float(RingStep * number), 3) : RyVec3(float(7 + number), float(RingStep), 3);
}

QByteArray MadeFigure::bytes() const
{
    // From centimetres with Y up to what the file counts in.
    const auto inFile = [this](const RyVec3 &v) {
        const float s = float(1.0 / unit);
        return isZUp ? RyVec3(v.x * s, -v.z * s, v.y * s) : v * s;
    };
    std::vector<double> points;
    for (RyVec3 vertex : vertices()) {
        vertex.x *= float(mirrored); // the node puts it where it is
        const RyVec3 at = inFile(vertex);
        points.insert(points.end(), {double(at.x), double(at.y), double(at.z)});
    }
    if (hasStrange)
        points[4] = std::numeric_limits<double>::quiet_NaN();
    std::vector<qint32> polygons;
    const auto close = [&polygons] { polygons.back() = ~polygons.back(); };
    for (int ring = 0; ring + 1 < Rings; ++ring) {
        for (int side = 0; side < Sides; ++side) {
            const int a = ring * Sides + side, b = ring * Sides + (side + 1) % Sides;
            polygons.insert(polygons.end(), {a, b, b + Sides, a + Sides});
            close();
        }
    }
    for (int side = 0; side < Sides; ++side)
        polygons.push_back((Rings - 1) * Sides + side);
    close();
    for (int side = Sides; side-- > 0;)
        polygons.push_back(side);
    close();
    std::vector<double> uvs;
    for (size_t i = 0; i < polygons.size(); ++i) {
        const int vertex = polygons[i] < 0 ? ~polygons[i] : polygons[i];
        uvs.insert(uvs.end(), {0.1 * (vertex % Sides), 0.4 * (vertex / Sides)}); // NOLINT: whole rings
    }
    if (hasLine) {
        polygons.insert(polygons.end(), {0, ~7});
        uvs.insert(uvs.end(), {0, 0, 0, 0});
    }
    if (hasStrange)
        uvs[0] = uvs[9] = std::numeric_limits<double>::infinity();

    FbxRecord geometry = object("Geometry", Geometry, "prism", "Geometry", "Mesh");
    geometry.add(FbxRecord("Vertices").reals(points)).add(FbxRecord("PolygonVertexIndex").numbers(polygons));
    for (int set = 0; set < 2; ++set) {
        std::vector<double> own = uvs;
        for (double &part : own)
            part += 0.05 * set;
        geometry.add(FbxRecord("LayerElementUV")
                         .number(set)
                         .add(FbxRecord("Version").number(101))
                         .add(word("Name", set == 0 ? "first" : "second"))
                         .add(word("MappingInformationType", "ByPolygonVertex"))
                         .add(word("ReferenceInformationType", "Direct"))
                         .add(FbxRecord("UV").reals(own)));
    }
    geometry.add(FbxRecord("LayerElementMaterial")
                     .number(0)
                     .add(word("Name", ""))
                     .add(word("MappingInformationType", "AllSame"))
                     .add(word("ReferenceInformationType", "IndexToDirect"))
                     .add(FbxRecord("Materials").numbers({0})));
    geometry.add(FbxRecord("Layer")
                     .number(0)
                     .add(layerElement("LayerElementUV", 0))
                     .add(layerElement("LayerElementMaterial", 0)));
    geometry.add(FbxRecord("Layer").number(1).add(layerElement("LayerElementUV", 1)));

    FbxRecord objects("Objects"), links("Connections");
    const auto link = [&links](int from, int to) { links.add(FbxRecord("C").text("OO").id(from).id(to)); };
    objects.add(geometry);
    objects.add(object("Model", Mesh, "prism", "Model", "Mesh")
                    .add(list({three("Lcl Scaling", RyVec3(float(mirrored), 1, 1))})));
    link(Mesh, 0);
    link(Geometry, Mesh);
    objects.add(object("Material", Material, "paint", "Material", "")
                    .add(word("ShadingModel", "phong"))
                    .add(list({number("Opacity", opacity)})));
    link(Material, Mesh);
    for (size_t i = 0; i < pictures.size(); ++i) {
        const Picture &picture = pictures[i];
        const QByteArray path = QByteArray::fromStdString(picture.path);
        objects.add(object("Texture", Textures + int(i), "texture", "Texture", "")
                        .add(FbxRecord("FileName").text(path))
                        .add(FbxRecord("RelativeFilename").text(path))
                        .add(FbxRecord("ModelUVTranslation").real(picture.offset[0]).real(picture.offset[1]))
                        .add(FbxRecord("ModelUVScaling").real(picture.scale[0]).real(picture.scale[1]))
                        .add(list({FbxRecord("P").text("UVSet").text("KString").text("").text("").text(
                            QByteArray::fromStdString(picture.uvSet))})));
        links.add(FbxRecord("C").text("OP").id(Textures + int(i)).id(Material).text(picture.property.c_str()));
        if (!picture.isEmbedded)
            continue;
        objects.add(object("Video", Videos + int(i), "video", "Video", "Clip")
                        .add(word("Type", "Clip"))
                        .add(FbxRecord("FileName").text(path))
                        .add(FbxRecord("RelativeFilename").text(path))
                        .add(FbxRecord("Content").data(picture.content)));
        link(Videos + int(i), Textures + int(i));
    }
    const auto addLimb = [&](int place, const QByteArray &name, const RyVec3 &from, int parent) {
        objects.add(object("NodeAttribute", Attributes + place, "", "NodeAttribute", "LimbNode")
                        .add(word("TypeFlags", "Skeleton")));
        objects.add(object("Model", Bones + place, name, "Model", "LimbNode")
                        .add(list({three("Lcl Translation", inFile(from))})));
        link(Bones + place, parent);
        link(Attributes + place, Bones + place);
    };
    for (int place = 0; hasSkin && place < clusters; ++place) {
        const int parent = place == 0 ? -1 : place == 1 ? 0 : 1;
        addLimb(place, "bone" + QByteArray::number(place), parent < 0 ? bone(place) : bone(place) - bone(parent),
                parent < 0 ? 0 : Bones + parent);
    }
    if (hasSkin && hasLeaf)
        addLimb(99, leaf, RyVec3(0, float(RingStep), 0), Bones + 1);
    if (hasSkin) {
        objects.add(object("Deformer", Skin, "", "Deformer", "Skin"));
        link(Skin, Geometry);
    }
    const int count = int(points.size() / 3);
    for (int place = 0; hasSkin && place < clusters; ++place) {
        std::vector<qint32> indices;
        std::vector<double> weights;
        for (int vertex = 0; vertex + int(hasFree) < count; ++vertex) {
            // The lowest ring by the first alone, the next by all, the highest by the last ones.
            const int ring = vertex / Sides;
            const int users = ring == 0 ? 1 : ring == 1 ? clusters : clusters - 1;
            if ((ring == 0 && place != 0) || (ring == 2 && place == 0))
                continue;
            indices.push_back(vertex);
            weights.push_back(weightSum / users);
        }
        const RyVec3 at = inFile(bone(place));
        const double x = double(at.x), y = double(at.y), z = double(at.z);
        objects.add(object("Deformer", Clusters + place, "", "SubDeformer", "Cluster")
                        .add(FbxRecord("Indexes").numbers(indices))
                        .add(FbxRecord("Weights").reals(weights))
                        .add(FbxRecord("Transform").reals({mirrored, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -x, -y, -z, 1}))
                        .add(FbxRecord("TransformLink").reals({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1})));
        link(Clusters + place, Skin);
        link(Bones + place, Clusters + place);
    }
    if (hasExtras) {
        objects.add(object("NodeAttribute", CameraShape, "", "NodeAttribute", "Camera"));
        objects.add(object("Model", Camera, "camera", "Model", "Camera"));
        objects.add(object("NodeAttribute", LightShape, "", "NodeAttribute", "Light"));
        objects.add(object("Model", Light, "light", "Model", "Light"));
        link(Camera, 0);
        link(CameraShape, Camera);
        link(Light, 0);
        link(LightShape, Light);
    }
    const FbxRecord settings =
        FbxRecord("GlobalSettings")
            .add(FbxRecord("Version").number(1000))
            .add(list({whole("UpAxis", isZUp ? 2 : 1), whole("UpAxisSign", 1), whole("FrontAxis", isZUp ? 1 : 2),
                       whole("FrontAxisSign", isZUp ? -1 : 1), whole("CoordAxis", 0), whole("CoordAxisSign", 1),
                       number("UnitScaleFactor", unit)}));
    const FbxRecord head = FbxRecord("FBXHeaderExtension")
                               .add(FbxRecord("FBXHeaderVersion").number(1003))
                               .add(FbxRecord("FBXVersion").number(7400));
    QByteArray all = FbxRecord::header(7400);
    for (const FbxRecord &each : {head, settings, objects, links})
        all += each.bytes(all.size());
    return all + FbxRecord::end();
}
