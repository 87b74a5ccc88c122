"""The clips of the sample figure: it waves, and walks on the spot.

A clip is a table of poses. A pose turns joints about the axes of the figure (X to its left, Y up, Z ahead), in degrees,
about X first, then Y, then Z, and may move the hip, in metres. Poses stand at equal times, and the last one is the first.
"""

import math

ARMS_DOWN = {"lShldr": (0, 0, -70), "rShldr": (0, 0, 70), "lForearm": (0, -12, 0), "rForearm": (0, 12, 0)}


def quaternion(degrees):
    """x, y, z, w of the turns about X, then Y, then Z."""
    x, y, z = (math.radians(angle) / 2.0 for angle in degrees)
    cx, sx, cy, sy, cz, sz = math.cos(x), math.sin(x), math.cos(y), math.sin(y), math.cos(z), math.sin(z)
    return (sx * cy * cz - cx * sy * sz, cx * sy * cz + sx * cy * sz, cx * cy * sz - sx * sy * cz,
            cx * cy * cz + sx * sy * sz)


def wave():
    up = {**ARMS_DOWN, "lCollar": (0, 0, 12), "lShldr": (0, -15, 18), "lForearm": (0, 0, 62), "lHand": (0, 0, 8),
          "neck": (0, 6, 3), "head": (0, 8, 5)}
    out = {**up, "lForearm": (0, 0, 96), "lHand": (0, 0, -14)}
    home = {**up, "lForearm": (0, 0, 36), "lHand": (0, 0, 16)}
    rest = dict(ARMS_DOWN)
    return [rest, rest, up, out, home, out, home, out, up, rest, rest]


def walk():
    def step(thigh, shin, foot):
        return {"Thigh": (thigh, 0, 0), "Shin": (shin, 0, 0), "Foot": (foot, 0, 0)}
    # One leg through a whole stride, ahead with the heel down first.
    leg = [step(-26, 8, -6), step(-18, 20, 2), step(0, 10, 0), step(18, 8, -2), step(26, 22, 10), step(12, 58, 14),
           step(-10, 62, 4), step(-26, 28, -4)]
    drop = [0.030, 0.022, 0.004, 0.012, 0.030, 0.022, 0.004, 0.012]
    poses = []
    for i in range(9):
        left, right = leg[i % 8], leg[(i + 4) % 8]
        pose = {"l" + name: turn for name, turn in left.items()}
        pose.update({"r" + name: turn for name, turn in right.items()})
        swing = math.cos(2.0 * math.pi * i / 8.0)
        pose["lShldr"] = (0, -24.0 * swing, -72)
        pose["rShldr"] = (0, -24.0 * swing, 72)
        pose["lForearm"] = (0, -20.0 + 10.0 * swing, 0)
        pose["rForearm"] = (0, 20.0 + 10.0 * swing, 0)
        pose["abdomen"] = (2, -5.0 * swing, 0)
        pose["chest"] = (1, 9.0 * swing, 0)
        pose["head"] = (-2, -4.0 * swing, 0)
        pose["hip"] = (0, 0, 0)
        pose["hip moved"] = (0.0, -drop[i % 8], 0.0)
        poses.append(pose)
    return poses


CLIPS = [("wave", 2.5, wave), ("walk", 1.0, walk)]  # name, seconds, poses


def add_clips(gltf, buffer):
    """Appends the clips; names of joints are those of the nodes."""
    place = {node["name"]: i for i, node in enumerate(gltf["nodes"])}
    gltf["animations"] = []
    for name, seconds, poses_of in CLIPS:
        poses = poses_of()
        times = [(round(seconds * i / (len(poses) - 1), 6),) for i in range(len(poses))]
        buffer.add("f", 5126, "SCALAR", times, limits=True)
        time_accessor = len(buffer.accessors) - 1
        clip = {"name": name, "channels": [], "samplers": []}

        def drive(joint, path, fmt, kind, rows):
            buffer.add(fmt, 5126, kind, rows)
            clip["channels"].append({"sampler": len(clip["samplers"]), "target": {"node": place[joint], "path": path}})
            clip["samplers"].append({"input": time_accessor, "interpolation": "LINEAR",
                                     "output": len(buffer.accessors) - 1})

        for joint in sorted({key for pose in poses for key in pose if key in place}, key=place.get):
            drive(joint, "rotation", "4f", "VEC4", [quaternion(pose.get(joint, (0, 0, 0))) for pose in poses])
        if any("hip moved" in pose for pose in poses):
            rest = gltf["nodes"][place["hip"]]["translation"]
            drive("hip", "translation", "3f", "VEC3",
                  [tuple(r + m for r, m in zip(rest, pose["hip moved"])) for pose in poses])
        gltf["animations"].append(clip)
