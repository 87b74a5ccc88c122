#include "foreign/ForeignSketch.h"

#include "foreign/FbxSketch.h"

namespace {

/// A bar of two boxes on one another, 80 high.
FbxSketch arm()
{
    std::vector<double> points;
    for (const double y : {0.0, 40.0, 80.0}) {
        for (const double x : {-5.0, 5.0}) {
            points.insert(points.end(), {x, y, x});
            points.insert(points.end(), {x, y, -x});
        }
    }
    const auto moved = [](double y) { return FbxSketch::Deltas{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, y, 0, 1}; };
    FbxSketch sketch;
    const qint64 bar = sketch.addMesh("bar", 0, {FbxSketch::vector("GeometricTranslation", 0, 0, 1)}, points,
                                      {0, 1, 5, ~4, 1, 2, 6, ~5, 4, 5, 9, ~8, 5, 6, 10, ~9, 8, 9, ~10});
    const qint64 upper = sketch.addLimb("upper", 0, {FbxSketch::vector("Lcl Translation", 0, 0, 0)});
    const qint64 lower = sketch.addLimb(
        "lower", upper,
        {FbxSketch::vector("Lcl Translation", 0, 40, 0), FbxSketch::vector("RotationPivot", 1, 2, 3),
         FbxSketch::vector("PostRotation", 0, 90, 5), FbxSketch::wholeNumber("RotationActive", 1, "bool")});
    sketch.bind(bar, upper, moved(0), moved(0), {0, 1, 2, 3, 4, 5, 6, 7}, {1, 1, 1, 1, 0.5, 0.5, 0.5, 0.5});
    sketch.bind(bar, lower, moved(40), moved(-40), {4, 5, 6, 7, 8, 9, 10, 11}, {0.5, 0.5, 0.5, 0.5, 1, 1, 1, 1});
    sketch.startClip("Bend", {0.0, 1.0});
    sketch.addCurve(lower, "Lcl Rotation", "d|X", {0.0, 0.5, 1.0}, {0.0f, 45.0f, 0.0f});
    return sketch;
}

} // namespace

QByteArray ForeignSketch::fbx()
{
    return arm().bytes();
}

QByteArray ForeignSketch::packedFbx()
{
    return arm().bytes(7700, {true, true});
}

QByteArray ForeignSketch::oldFbx()
{
    return arm().bytes(6100);
}

QByteArray ForeignSketch::textFbx()
{
    return arm().text();
}

QByteArray ForeignSketch::textFbxWithoutLineEnds()
{
    QByteArray text = textFbx();
    return text.remove(0, text.indexOf('\n') + 1).replace('\n', ' '); // a comment would take the line
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
