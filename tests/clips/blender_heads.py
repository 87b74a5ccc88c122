"""Where the heads of bones stand in Blender while clips play.

  blender -b --factory-startup --python-exit-code 1 --python blender_heads.py -- FILE OUT CLIP TIME... [-- CLIP TIME...]

Writes JSON: by clip, for each time in seconds the heads by bone in the axes of the file.
"""
import json
import sys

import bpy
import numpy

# The add-on for this format still says numpy.bool, which newer versions of numpy lack.
if "bool" not in numpy.__dict__:
    numpy.bool = bool


def clips_of(arguments):
    clip = []
    for argument in arguments + ["--"]:
        if argument != "--":
            clip.append(argument)
        elif clip:
            yield clip[0], [float(time) for time in clip[1:]]
            clip = []


def play(clip):
    """Of all objects the action of the clip alone, without the tracks that it came in."""
    found = 0
    for thing in bpy.data.objects:
        data = thing.animation_data
        if not data:
            continue
        actions = [s.action for t in data.nla_tracks if t.name == clip for s in t.strips]
        data.use_nla = False
        data.action = actions[0] if actions else None
        found += len(actions)
    return found


def heads():
    result = {}
    for armature in (thing for thing in bpy.data.objects if thing.type == "ARMATURE"):
        for bone in armature.pose.bones:
            x, y, z = armature.matrix_world @ bone.head
            result[bone.name] = [x, z, -y]
    return result


def main():
    arguments = sys.argv[sys.argv.index("--") + 1:]
    bpy.ops.wm.read_factory_settings(use_empty=True)
    bpy.ops.import_scene.gltf(filepath=arguments[0])
    scene = bpy.context.scene
    report = {}
    for clip, times in clips_of(arguments[2:]):
        if not play(clip):
            raise SystemExit("no clip " + clip + " among " +
                             str([t.name for o in bpy.data.objects if o.animation_data for t in o.animation_data.nla_tracks]))
        report[clip] = []
        for time in times:
            frame = time * scene.render.fps
            scene.frame_set(int(frame), subframe=frame - int(frame))
            report[clip].append(heads())
    with open(arguments[1], "w") as out:
        json.dump(report, out)


main()
