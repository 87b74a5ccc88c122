"""The judge of files that the reader of foreign formats opens, run inside Blender.

  blender -b --factory-startup --python blender_figures.py -- make SAMPLE.glb FOLDER
      exports the sample, with a morph added, in several ways; their names say how
  blender -b --factory-startup --python blender_figures.py -- all SAMPLE.glb FOLDER
      does so and judges them, to NAME.json beside each
  blender -b --factory-startup --python blender_figures.py -- store SAMPLE.glb exports
      exports the sample with few vertices and frames, judges that, and packs it: what is kept for where Blender is not
  blender -b --factory-startup --python blender_figures.py -- judge FILE FIGURES.json [FILE FIGURES.json...]
      writes what Blender sees in each: heads of bones, and of some vertices their weights, where they stand at rest, in
      five poses, in ten frames of the first clip and with each morph

Places are in metres, Y up, as glTF has them. A pose turns bones about their heads at rest by axes of the world, each in
the frame of its parent; what stands below goes along.
"""

import builtins
import json
import math
import os
import random
import struct
import sys
import tempfile
import zlib

import bpy
import numpy
from mathutils import Matrix, Quaternion, Vector

if "bool" not in numpy.__dict__:  # which the importer of glTF still says
    numpy.bool = bool

SAMPLES = 120
POSES = 5
FRAMES = 10
KEPT_POLYGONS = 800
KEPT_FRAMES = 19
FBX_WAYS = {
    "cm_leaves": {"add_leaf_bones": True},
    "cm_plain": {"add_leaf_bones": False},
    "m_leaves": {"add_leaf_bones": True, "apply_scale_options": "FBX_SCALE_UNITS"},
    "m_plain_z_up": {"add_leaf_bones": False, "apply_scale_options": "FBX_SCALE_ALL", "axis_up": "Z",
                     "axis_forward": "-Y"},
    "cm_plain_z_up": {"add_leaf_bones": False, "axis_up": "Z", "axis_forward": "Y"},
}
KEPT_FBX = ("cm_leaves", "cm_plain_z_up", "m_leaves", "m_plain_z_up")


def clear():
    bpy.ops.wm.read_factory_settings(use_empty=True)


def load(path):
    clear()
    ending = os.path.splitext(path)[1].lower()
    if ending == ".fbx":
        bpy.ops.import_scene.fbx(filepath=path, use_custom_props=False)
    elif ending == ".dae":
        bpy.ops.wm.collada_import(filepath=path)
    elif ending == ".bvh":
        # The importer opens with a mode that Python 3.11 does not know any more.
        plain = builtins.open
        builtins.open = lambda f, m="r", *a, **k: plain(f, m.replace("U", "") or "r", *a, **k)
        try:
            bpy.ops.import_anim.bvh(filepath=path, axis_forward="Y", axis_up="Z", update_scene_fps=True)
        finally:
            builtins.open = plain
    else:
        bpy.ops.import_scene.gltf(filepath=path, merge_vertices=True)


def place(v):
    """Blender's world to that of glTF."""
    return [round(float(v[0]), 7), round(float(v[2]), 7), round(-float(v[1]), 7)]


def armatures():
    return [each for each in bpy.data.objects if each.type == "ARMATURE"]


def skinned():
    """Meshes that an armature moves, each with its armature."""
    found = []
    for each in sorted(bpy.data.objects, key=lambda each: each.name):
        if each.type != "MESH":
            continue
        for modifier in each.modifiers:
            if modifier.type == "ARMATURE" and modifier.object:
                found.append((each, modifier.object))
                break
    return found


def shown(mesh, indices):
    bpy.context.view_layer.update()
    evaluated = mesh.evaluated_get(bpy.context.evaluated_depsgraph_get())
    points = evaluated.to_mesh()
    result = [place(evaluated.matrix_world @ points.vertices[i].co) for i in indices]
    evaluated.to_mesh_clear()
    return result


def rest():
    for armature in armatures():
        for bone in armature.pose.bones:
            bone.matrix_basis = Matrix.Identity(4)


def turn(armature, name, axis, degrees):
    bone = armature.pose.bones[name]
    frame = (armature.matrix_world @ armature.data.bones[name].matrix_local).to_3x3()
    frame = frame.to_quaternion().to_matrix()
    # From the axes of glTF to those of Blender.
    world = Quaternion(Vector((axis[0], -axis[2], axis[1])), math.radians(degrees)).to_matrix()
    bone.matrix_basis = (frame.inverted() @ world @ frame).to_4x4()


def influences(mesh, armature, vertex):
    bones = {bone.name for bone in armature.data.bones}
    weights = {}
    for group in vertex.groups:
        name = mesh.vertex_groups[group.group].name
        if name in bones and group.weight > 0:
            weights[name] = weights.get(name, 0.0) + group.weight
    total = sum(weights.values())
    return {name: round(weight / total, 6) for name, weight in weights.items()}


def judge(path):
    load(path)
    chance = random.Random(1)
    result = {"bones": [], "meshes": [], "poses": [], "frames": []}
    for armature in armatures():
        for bone in armature.data.bones:
            result["bones"].append({"name": bone.name, "parent": bone.parent.name if bone.parent else None,
                                    "head": place(armature.matrix_world @ bone.head_local)})
    actions = {}
    for each in list(armatures()) + [mesh for mesh, _ in skinned()]:
        if each.animation_data and each.animation_data.action:
            actions[each] = each.animation_data.action
        if each.animation_data:
            each.animation_data_clear()
    keys, values = {}, {}
    for mesh, _ in skinned():
        blocks = mesh.data.shape_keys
        if blocks and blocks.animation_data:
            keys[mesh] = blocks.animation_data.action
            blocks.animation_data_clear()
        for block in blocks.key_blocks[1:] if blocks else []:
            values[block] = block.value
            block.value = 0
    rest()
    chosen = {}
    for mesh, armature in skinned():
        count = len(mesh.data.vertices)
        indices = sorted(chance.sample(range(count), min(count, SAMPLES)))
        chosen[mesh] = indices
        blocks = mesh.data.shape_keys
        entry = {"name": mesh.name, "vertices": count, "polygons": len(mesh.data.polygons),
                 "rest": shown(mesh, indices),
                 "weights": [influences(mesh, armature, mesh.data.vertices[i]) for i in indices],
                 "poses": [], "frames": [], "morphs": {}}
        for block in blocks.key_blocks[1:] if blocks else []:
            block.value = 1
            entry["morphs"][block.name] = shown(mesh, indices)
            block.value = 0
        result["meshes"].append(entry)
    for _ in range(POSES if chosen else 0):
        pose = []
        rest()
        for armature in armatures():
            for name in chance.sample(sorted(bone.name for bone in armature.data.bones), min(8, len(armature.data.bones))):
                axis = Vector((chance.uniform(-1, 1), chance.uniform(-1, 1), chance.uniform(-1, 1))).normalized()
                pose.append({"bone": name, "axis": [round(x, 7) for x in axis], "degrees": chance.randint(-80, 80)})
                turn(armature, name, pose[-1]["axis"], pose[-1]["degrees"])
        result["poses"].append(pose)
        for (mesh, _), entry in zip(skinned(), result["meshes"]):
            entry["poses"].append(shown(mesh, chosen[mesh]))
    rest()
    for block, value in values.items():
        block.value = value
    if actions:
        judge_clip(result, actions, keys, chosen)
    return result


def judge_clip(result, actions, keys, chosen):
    for each, action in actions.items():
        each.animation_data_create().action = action
    for mesh, action in keys.items():
        mesh.data.shape_keys.animation_data_create().action = action
    scene = bpy.context.scene
    first = min(action.frame_range[0] for action in actions.values())
    last = max(action.frame_range[1] for action in actions.values())
    for i in range(FRAMES):
        frame = round(first + (last - first) * i / (FRAMES - 1))
        scene.frame_set(frame)
        bpy.context.view_layer.update()
        entry = {"time": (frame - first) * scene.render.fps_base / scene.render.fps, "heads": {}}
        for armature in armatures():
            for bone in armature.pose.bones:
                entry["heads"][bone.name] = place(armature.matrix_world @ bone.head)
        result["frames"].append(entry)
        for (mesh, _), of_mesh in zip(skinned(), result["meshes"]):
            of_mesh["frames"].append(shown(mesh, chosen[mesh]))


def prepare(sample):
    """The sample with one clip; its mesh and the clip's first and last frame."""
    load(sample)
    # The importer's shapes of bones, and all clips but one.
    shapes = {bone.custom_shape for armature in armatures() for bone in armature.pose.bones if bone.custom_shape}
    for each in shapes:
        bpy.data.objects.remove(each, do_unlink=True)
    armature = armatures()[0]
    wanted = sorted(bpy.data.actions, key=lambda each: each.name)[0]
    for track in list(armature.animation_data.nla_tracks):
        armature.animation_data.nla_tracks.remove(track)
    armature.animation_data.action = wanted
    for action in list(bpy.data.actions):
        if action is not wanted:
            bpy.data.actions.remove(action)
    scene = bpy.context.scene
    scene.frame_start, scene.frame_end = int(wanted.frame_range[0]), math.ceil(wanted.frame_range[1])
    return skinned()[0][0], scene


def thin(mesh, scene):
    """Few vertices and frames, for files that are kept."""
    modifier = mesh.modifiers.new("Thin", "DECIMATE")
    modifier.ratio = KEPT_POLYGONS / len(mesh.data.polygons)
    bpy.context.view_layer.objects.active = mesh
    bpy.ops.object.modifier_apply(modifier=modifier.name)
    scene.frame_end = scene.frame_start + KEPT_FRAMES - 1


def add_morph(mesh, scene):
    mesh.shape_key_add(name="Basis")
    morph = mesh.shape_key_add(name="Wide")
    for point in morph.data:
        point.co.x *= 1.25
    for frame, value in ((scene.frame_start, 0.0), (scene.frame_end, 1.0)):
        morph.value = value
        morph.keyframe_insert("value", frame=frame)


def make(sample, folder):
    mesh, scene = prepare(sample)
    add_morph(mesh, scene)
    for name in FBX_WAYS:
        export_fbx(folder, name)
    export_collada(folder, "z_up", scene)


def export_fbx(folder, name):
    bpy.ops.export_scene.fbx(filepath=os.path.join(folder, name + ".fbx"), bake_anim_use_all_actions=False,
                             bake_anim_use_nla_strips=False, bake_anim_simplify_factor=0, **FBX_WAYS[name])


def export_collada(folder, name, scene, unit=1.0):
    scene.unit_settings.scale_length = unit
    scene.frame_set((scene.frame_start + scene.frame_end) // 2)  # morphs stay as they are then: clips leave them alone
    bpy.ops.wm.collada_export(filepath=os.path.join(folder, name + ".dae"), include_shapekeys=True)
    scene.unit_settings.scale_length = 1.0


def transform(mesh, armature, turn, factor):
    """The figure itself, not its nodes."""
    for data in (mesh.data, armature.data):
        data.transform(turn @ Matrix.Scale(factor, 4), **({"shape_keys": True} if data is mesh.data else {}))
        data.update_tag()
    for curve in armature.animation_data.action.fcurves:
        if curve.data_path.endswith(".location"):
            for key in curve.keyframe_points:
                key.co.y *= factor
                key.handle_left.y *= factor
                key.handle_right.y *= factor


def replace_text(path, old, new):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    assert text.count(old) == 1
    with open(path, "w", encoding="utf-8") as file:
        file.write(text.replace(old, new))


def store(sample, folder):
    mesh, scene = prepare(sample)
    thin(mesh, scene)
    add_morph(mesh, scene)
    with tempfile.TemporaryDirectory() as made:
        for name in KEPT_FBX:
            export_fbx(made, name)
        armature = armatures()[0]
        bpy.context.view_layer.objects.active = armature
        bpy.ops.export_anim.bvh(filepath=os.path.join(made, "m_z_up.bvh"), frame_start=scene.frame_start,
                                frame_end=scene.frame_end)
        export_collada(made, "m_z_up", scene)
        # The same in centimetres. Blender writes no other axes: what stands so that Y points up is called so.
        transform(mesh, armature, Matrix.Rotation(math.radians(-90), 4, "X"), 100)
        export_collada(made, "cm_y_up", scene, unit=0.01)
        replace_text(os.path.join(made, "cm_y_up.dae"), "<up_axis>Z_UP<", "<up_axis>Y_UP<")
        for name in sorted(os.listdir(made)):
            source = os.path.join(made, name)
            with open(source, "rb") as file:
                content = file.read()
            with open(os.path.join(folder, name + ".z"), "wb") as out:  # the size first, as the toolkit unpacks it
                out.write(struct.pack(">I", len(content)) + zlib.compress(content, 9))
            write_figures(source, os.path.join(folder, name + ".json"))


def write_figures(source, target):
    with open(target, "w", encoding="utf-8") as out:
        json.dump(judge(source), out, separators=(",", ":"))
        out.write("\n")


def main():
    words = sys.argv[sys.argv.index("--") + 1:]
    if words[0] == "make":
        make(words[1], words[2])
        return
    if words[0] == "store":
        store(words[1], words[2])
        return
    pairs = list(zip(words[1::2], words[2::2]))
    if words[0] == "all":
        make(words[1], words[2])
        names = sorted(os.listdir(words[2]))
        pairs = [(os.path.join(words[2], name), os.path.join(words[2], name + ".json")) for name in names]
    for source, target in pairs:
        write_figures(source, target)


main()
