#include "foreign/ForeignSketch.h"

#include "foreign/FbxRecord.h"

namespace {

enum Id {
    Geometry = 1,
    Mesh,
    UpperAttribute,
    LowerAttribute,
    Upper,
    Lower,
    Skin,
    UpperCluster,
    LowerCluster,
    Stack,
    Layer,
    CurveNode,
    Curve
};

QByteArray named(const char *name, const char *kind)
{
    return QByteArray(name) + QByteArray("\0\1", 2) + kind;
}

FbxRecord record(const char *kind, qint64 id, const QByteArray &name, const char *type)
{
    FbxRecord made(kind);
    made.id(id).text(name).text(type);
    return made;
}

FbxRecord properties(const std::vector<FbxRecord> &all)
{
    FbxRecord list("Properties70");
    for (const FbxRecord &each : all)
        list.add(each);
    return list;
}

FbxRecord wholeNumber(const char *name, int value)
{
    return FbxRecord("P").text(name).text("int").text("Integer").text("").number(value);
}

FbxRecord vector(const char *name, double x, double y, double z)
{
    return FbxRecord("P").text(name).text(name).text("").text("A").real(x).real(y).real(z);
}

FbxRecord child(const char *name, qint32 value)
{
    return FbxRecord(name).number(value);
}

FbxRecord limb(qint64 id, const char *name, double x, double y, double z)
{
    return record("Model", id, named(name, "Model"), "LimbNode")
        .add(child("Version", 232))
        .add(properties({vector("Lcl Translation", x, y, z)}));
}

std::vector<double> moved(double y)
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, y, 0, 1};
}

FbxRecord cluster(qint64 id, const std::vector<qint32> &vertices, const std::vector<double> &weights, double y)
{
    return record("Deformer", id, named("", "SubDeformer"), "Cluster")
        .add(child("Version", 100))
        .add(FbxRecord("Indexes").numbers(vertices))
        .add(FbxRecord("Weights").reals(weights))
        .add(FbxRecord("Transform").reals(moved(-y)))
        .add(FbxRecord("TransformLink").reals(moved(y)));
}

FbxRecord globalSettings()
{
    return FbxRecord("GlobalSettings")
        .add(child("Version", 1000))
        .add(properties({wholeNumber("UpAxis", 1), wholeNumber("UpAxisSign", 1), wholeNumber("FrontAxis", 2),
                         wholeNumber("FrontAxisSign", 1), wholeNumber("CoordAxis", 0), wholeNumber("CoordAxisSign", 1),
                         FbxRecord("P").text("UnitScaleFactor").text("double").text("Number").text("").real(1.0)}));
}

/// A bar of two boxes on one another, 80 high.
FbxRecord geometry()
{
    std::vector<double> points;
    for (const double y : {0.0, 40.0, 80.0}) {
        for (const double x : {-5.0, 5.0}) {
            points.insert(points.end(), {x, y, x});
            points.insert(points.end(), {x, y, -x});
        }
    }
    // The last corner of a polygon is written as its complement.
    return record("Geometry", Geometry, named("bar", "Geometry"), "Mesh")
        .add(FbxRecord("Vertices").reals(points))
        .add(FbxRecord("PolygonVertexIndex").numbers({0, 1, 5, ~4, 1, 2, 6, ~5, 4, 5, 9, ~8, 5, 6, 10, ~9, 8, 9, ~10}))
        .add(child("GeometryVersion", 124));
}

FbxRecord objects()
{
    constexpr qint64 Second = 46186158000; // of the format's clock
    FbxRecord all("Objects");
    all.add(geometry());
    all.add(record("Model", Mesh, named("bar", "Model"), "Mesh").add(child("Version", 232)));
    for (const qint64 id : {qint64(UpperAttribute), qint64(LowerAttribute)})
        all.add(record("NodeAttribute", id, named("", "NodeAttribute"), "LimbNode")
                    .add(FbxRecord("TypeFlags").text("Skeleton")));
    all.add(limb(Upper, "upper", 0, 0, 0));
    all.add(limb(Lower, "lower", 0, 40, 0));
    all.add(record("Deformer", Skin, named("", "Deformer"), "Skin").add(child("Version", 101)));
    all.add(cluster(UpperCluster, {0, 1, 2, 3, 4, 5, 6, 7}, {1, 1, 1, 1, 0.5, 0.5, 0.5, 0.5}, 0));
    all.add(cluster(LowerCluster, {4, 5, 6, 7, 8, 9, 10, 11}, {0.5, 0.5, 0.5, 0.5, 1, 1, 1, 1}, 40));
    all.add(record("AnimationStack", Stack, named("Bend", "AnimStack"), ""));
    all.add(record("AnimationLayer", Layer, named("Base", "AnimLayer"), ""));
    all.add(record("AnimationCurveNode", CurveNode, named("R", "AnimCurveNode"), ""));
    all.add(record("AnimationCurve", Curve, named("", "AnimCurve"), "")
                .add(FbxRecord("Default").real(0.0))
                .add(child("KeyVer", 4008))
                .add(FbxRecord("KeyTime").ids({0, Second / 2, Second}))
                .add(FbxRecord("KeyValueFloat").floats({0.0f, 45.0f, 0.0f})));
    return all;
}

FbxRecord connections()
{
    FbxRecord all("Connections");
    const std::pair<int, int> pairs[] = {{Mesh, 0},
                                         {Geometry, Mesh},
                                         {Upper, 0},
                                         {Lower, Upper},
                                         {UpperAttribute, Upper},
                                         {LowerAttribute, Lower},
                                         {Skin, Geometry},
                                         {UpperCluster, Skin},
                                         {LowerCluster, Skin},
                                         {Upper, UpperCluster},
                                         {Lower, LowerCluster},
                                         {Layer, Stack},
                                         {CurveNode, Layer}};
    for (const auto &[from, to] : pairs)
        all.add(FbxRecord("C").text("OO").id(from).id(to));
    all.add(FbxRecord("C").text("OP").id(CurveNode).id(Lower).text("Lcl Rotation"));
    all.add(FbxRecord("C").text("OP").id(Curve).id(CurveNode).text("d|X"));
    return all;
}

QByteArray fileOf(qint32 version, const std::vector<FbxRecord> &records)
{
    QByteArray bytes = FbxRecord::header(version);
    for (const FbxRecord &each : records)
        bytes += each.bytes(bytes.size());
    return bytes + FbxRecord::end();
}

FbxRecord head(qint32 version)
{
    return FbxRecord("FBXHeaderExtension").add(child("FBXHeaderVersion", 1003)).add(child("FBXVersion", version));
}

} // namespace

QByteArray ForeignSketch::fbx()
{
    return fileOf(7400, {head(7400), globalSettings(), objects(), connections()});
}

QByteArray ForeignSketch::oldFbx()
{
    return fileOf(6100, {head(6100), objects(), connections()});
}

QByteArray ForeignSketch::textFbx()
{
    return R"(; FBX 7.4.0 project file
FBXHeaderExtension:  {
	FBXHeaderVersion: 1003
	FBXVersion: 7400
}
GlobalSettings:  {
	Version: 1000
	Properties70:  {
		P: "UpAxis", "int", "Integer", "",1
		P: "UnitScaleFactor", "double", "Number", "",1
	}
}
Objects:  {
	Model: 5, "Model::upper", "LimbNode" {
		Version: 232
		Properties70:  {
			P: "Lcl Translation", "Lcl Translation", "", "A",0,0,0
		}
	}
	Model: 6, "Model::lower", "LimbNode" {
		Version: 232
		Properties70:  {
			P: "Lcl Translation", "Lcl Translation", "", "A",0,40,0
		}
	}
	NodeAttribute: 3, "NodeAttribute::", "LimbNode" {
		TypeFlags: "Skeleton"
	}
	NodeAttribute: 4, "NodeAttribute::", "LimbNode" {
		TypeFlags: "Skeleton"
	}
	Model: 2, "Model::bar", "Mesh" {
		Version: 232
	}
	Geometry: 1, "Geometry::bar", "Mesh" {
		Vertices: *9 {
			a: 0,0,0,10,0,0,0,80,0
		}
		PolygonVertexIndex: *3 {
			a: 0,1,-3
		}
		GeometryVersion: 124
	}
	Deformer: 7, "Deformer::", "Skin" {
		Version: 101
	}
	Deformer: 8, "SubDeformer::", "Cluster" {
		Version: 100
		Indexes: *2 {
			a: 0,1
		}
		Weights: *2 {
			a: 1,1
		}
		Transform: *16 {
			a: 1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1
		}
		TransformLink: *16 {
			a: 1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1
		}
	}
	Deformer: 9, "SubDeformer::", "Cluster" {
		Version: 100
		Indexes: *1 {
			a: 2
		}
		Weights: *1 {
			a: 1
		}
		Transform: *16 {
			a: 1,0,0,0,0,1,0,0,0,0,1,0,0,-40,0,1
		}
		TransformLink: *16 {
			a: 1,0,0,0,0,1,0,0,0,0,1,0,0,40,0,1
		}
	}
}
Connections:  {
	C: "OO",2,0
	C: "OO",1,2
	C: "OO",5,0
	C: "OO",6,5
	C: "OO",3,5
	C: "OO",4,6
	C: "OO",7,1
	C: "OO",8,7
	C: "OO",9,7
	C: "OO",5,8
	C: "OO",6,9
}
)";
}

QByteArray ForeignSketch::bvh()
{
    return R"(HIERARCHY
ROOT hip
{
	OFFSET 0.0 90.0 0.0
	CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation
	JOINT thigh
	{
		OFFSET 10.0 -5.0 0.0
		CHANNELS 3 Zrotation Xrotation Yrotation
		JOINT shin
		{
			OFFSET 0.0 -42.0 1.0
			CHANNELS 3 Zrotation Xrotation Yrotation
			End Site
			{
				OFFSET 0.0 -41.0 0.0
			}
		}
	}
}
MOTION
Frames: 3
Frame Time: 0.0333333
0.0 90.0 0.0 0.0 0.0 0.0 5.0 10.0 0.0 0.0 20.0 0.0
0.5 90.5 1.0 1.0 0.0 2.0 6.0 12.0 0.0 0.0 25.0 0.0
1.0 91.0 2.0 2.0 0.0 4.0 7.0 14.0 0.0 0.0 30.0 0.0
)";
}

QByteArray ForeignSketch::collada()
{
    return R"(<?xml version="1.0" encoding="utf-8"?>
<COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset><unit name="meter" meter="1"/><up_axis>Y_UP</up_axis></asset>
<library_geometries><geometry id="bar" name="bar"><mesh>
<source id="bar-points"><float_array id="bar-points-array" count="18">-0.1 0 0 0.1 0 0 -0.1 0.8 0 0.1 0.8 0 -0.1 1.6 0 0.1 1.6 0</float_array>
<technique_common><accessor source="#bar-points-array" count="6" stride="3"><param name="X" type="float"/><param name="Y" type="float"/><param name="Z" type="float"/></accessor></technique_common></source>
<vertices id="bar-vertices"><input semantic="POSITION" source="#bar-points"/></vertices>
<polylist count="2"><input semantic="VERTEX" source="#bar-vertices" offset="0"/><vcount>4 4</vcount><p>0 1 3 2 2 3 5 4</p></polylist>
</mesh></geometry></library_geometries>
<library_controllers><controller id="bar-skin"><skin source="#bar">
<bind_shape_matrix>1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1</bind_shape_matrix>
<source id="skin-joints"><Name_array id="skin-joints-array" count="2">upper lower</Name_array>
<technique_common><accessor source="#skin-joints-array" count="2" stride="1"><param name="JOINT" type="name"/></accessor></technique_common></source>
<source id="skin-binds"><float_array id="skin-binds-array" count="32">1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 1 0 0 0 0 1 0 -0.8 0 0 1 0 0 0 0 1</float_array>
<technique_common><accessor source="#skin-binds-array" count="2" stride="16"><param name="TRANSFORM" type="float4x4"/></accessor></technique_common></source>
<source id="skin-weights"><float_array id="skin-weights-array" count="2">1 0.5</float_array>
<technique_common><accessor source="#skin-weights-array" count="2" stride="1"><param name="WEIGHT" type="float"/></accessor></technique_common></source>
<joints><input semantic="JOINT" source="#skin-joints"/><input semantic="INV_BIND_MATRIX" source="#skin-binds"/></joints>
<vertex_weights count="6"><input semantic="JOINT" source="#skin-joints" offset="0"/><input semantic="WEIGHT" source="#skin-weights" offset="1"/>
<vcount>1 1 2 2 1 1</vcount><v>0 0 0 0 0 1 1 1 0 1 1 1 1 0 1 0</v></vertex_weights>
</skin></controller></library_controllers>
<library_animations><animation id="lower-bend">
<source id="bend-times"><float_array id="bend-times-array" count="2">0 1</float_array>
<technique_common><accessor source="#bend-times-array" count="2" stride="1"><param name="TIME" type="float"/></accessor></technique_common></source>
<source id="bend-angles"><float_array id="bend-angles-array" count="2">0 45</float_array>
<technique_common><accessor source="#bend-angles-array" count="2" stride="1"><param name="ANGLE" type="float"/></accessor></technique_common></source>
<source id="bend-kinds"><Name_array id="bend-kinds-array" count="2">LINEAR LINEAR</Name_array>
<technique_common><accessor source="#bend-kinds-array" count="2" stride="1"><param name="INTERPOLATION" type="name"/></accessor></technique_common></source>
<sampler id="bend-sampler"><input semantic="INPUT" source="#bend-times"/><input semantic="OUTPUT" source="#bend-angles"/><input semantic="INTERPOLATION" source="#bend-kinds"/></sampler>
<channel source="#bend-sampler" target="lower/turn.ANGLE"/>
</animation></library_animations>
<library_visual_scenes><visual_scene id="scene" name="scene">
<node id="upper" sid="upper" name="upper" type="JOINT"><translate sid="place">0 0 0</translate>
<node id="lower" sid="lower" name="lower" type="JOINT"><translate sid="place">0 0.8 0</translate><rotate sid="turn">1 0 0 0</rotate></node></node>
<node id="bar-node" name="bar"><instance_controller url="#bar-skin"><skeleton>#upper</skeleton></instance_controller></node>
</visual_scene></library_visual_scenes>
<scene><instance_visual_scene url="#scene"/></scene>
</COLLADA>
)";
}
