#!/usr/bin/env python3
"""Makes the sample figure resources/samples/mannequin.glb.

A plain humanoid of 1.75 m in a T-pose, Y up, facing +Z, its own left at +X, with 51 joints that have no rotation. A cage
of quads is laid out ring by ring, subdivided twice by Catmull and Clark's rule, and bound to the joints: every face goes
to one bone, these hard weights are then spread along the surface, so that limbs that only lie close never mix.
It can wave and walk, see sample_clips.py. The result depends on nothing but these two files and quad_cage.py.

    tools/make_sample.py [OUT]
"""

import json
import math
import os
import struct
import sys

from quad_cage import Cage, cross, dot, orient, shrink, sub, subdivide, unit, volume
from sample_clips import add_clips

# ---------------------------------------------------------------------------------------------------- the joints

FINGERS = {
    # name: the three joints and the tip, in metres, of the left hand
    "Thumb": [(0.700, 1.393, 0.020), (0.727, 1.386, 0.048), (0.754, 1.381, 0.069), (0.781, 1.377, 0.089)],
    "Index": [(0.772, 1.401, 0.031), (0.810, 1.400, 0.0335), (0.834, 1.398, 0.035), (0.858, 1.396, 0.0365)],
    "Mid": [(0.775, 1.402, 0.010), (0.816, 1.401, 0.0105), (0.843, 1.399, 0.011), (0.870, 1.397, 0.0115)],
    "Ring": [(0.770, 1.401, -0.011), (0.808, 1.400, -0.0125), (0.834, 1.398, -0.0135), (0.860, 1.396, -0.0145)],
    "Pinky": [(0.762, 1.399, -0.031), (0.791, 1.398, -0.0345), (0.813, 1.396, -0.037), (0.834, 1.394, -0.0395)],
}
FINGER_RADIUS = {"Thumb": 0.0105, "Index": 0.0088, "Mid": 0.0092, "Ring": 0.0088, "Pinky": 0.0076}


def joint_table():
    """(name, parent's name, position) in depth-first order."""
    table = [
        ("hip", None, (0.0, 0.965, -0.005)),
        ("abdomen", "hip", (0.0, 1.065, -0.005)),
        ("chest", "abdomen", (0.0, 1.205, -0.010)),
        ("neck", "chest", (0.0, 1.465, -0.015)),
        ("head", "neck", (0.0, 1.540, -0.005)),
    ]
    arm = [("Collar", "chest", (0.030, 1.415, -0.010)), ("Shldr", "Collar", (0.176, 1.402, -0.018)),
           ("Forearm", "Shldr", (0.435, 1.402, -0.020)), ("Hand", "Forearm", (0.682, 1.402, -0.006))]
    leg = [("Thigh", "hip", (0.092, 0.915, 0.0)), ("Shin", "Thigh", (0.095, 0.500, 0.004)),
           ("Foot", "Shin", (0.096, 0.085, -0.028)), ("Toe", "Foot", (0.101, 0.026, 0.112))]
    for side, sign in (("l", 1.0), ("r", -1.0)):
        def add(name, parent, position):
            if parent not in ("chest", "hip"):
                parent = side + parent
            table.append((side + name, parent, (sign * position[0], position[1], position[2])))
        for row in arm:
            add(*row)
        for finger, points in FINGERS.items():
            parent = "Hand"
            for number in (1, 2, 3):
                add(f"{finger}{number}", parent, points[number - 1])
                parent = f"{finger}{number}"
    for side, sign in (("l", 1.0), ("r", -1.0)):
        for name, parent, position in leg:
            table.append((side + name, parent if parent == "hip" else side + parent,
                          (sign * position[0], position[1], position[2])))
    return table


# ------------------------------------------------------------------------------------------------------ the cage

TORSO_RING = 14  # vertex 0 in front, 7 behind, the side in the middle between 3 and 4
TUBE_RING = 10  # arms and legs


def oval(angle, width, front, back, squareness=1.0):
    """A point (sideways, forwards) of an oval; squareness below 1 makes its corners fuller."""
    s, c = math.sin(angle), math.cos(angle)
    s = math.copysign(abs(s) ** squareness, s)
    c = math.copysign(abs(c) ** squareness, c)
    return width * s, (front if c > 0 else back) * c


def torso_rings():
    """From the hips to the crown: height, half width, front, back, middle's z, squareness, offsets {vertex: (x, y, z)}."""
    return [
        (0.925, 0.166, 0.098, 0.128, 0.000, 0.90, {5: (0.0, 0.0, -0.010), 6: (0.0, 0.0, -0.006), 7: (0, 0, 0.014)}),
        (0.968, 0.164, 0.098, 0.116, 0.000, 0.90, {6: (0.0, 0.0, -0.006), 7: (0.0, 0.0, 0.006)}),
        (1.016, 0.154, 0.097, 0.095, 0.000, 0.92, {}),
        (1.065, 0.142, 0.093, 0.080, 0.000, 0.92, {7: (0.0, 0.0, 0.008)}),
        (1.120, 0.138, 0.092, 0.076, 0.000, 0.92, {7: (0.0, 0.0, 0.008)}),
        (1.175, 0.144, 0.098, 0.084, 0.000, 0.92, {7: (0.0, 0.0, 0.008)}),
        (1.230, 0.157, 0.108, 0.096, 0.000, 0.92, {7: (0.0, 0.0, 0.010)}),
        (1.285, 0.172, 0.119, 0.106, 0.000, 0.90, {0: (0.0, 0.0, -0.006), 7: (0.0, 0.0, 0.012)}),
        (1.338, 0.182, 0.123, 0.112, -0.004, 0.86, {0: (0.0, 0.0, -0.010), 7: (0.0, 0.0, 0.012)}),
        (1.400, 0.180, 0.102, 0.110, -0.010, 0.86, {0: (0.0, 0.0, -0.004), 7: (0.0, 0.0, 0.012)}),
        (1.455, 0.158, 0.072, 0.088, -0.016, 0.86, {3: (0.0, 0.003, 0.0), 4: (0.0, 0.005, 0.0)}),
        (1.482, 0.086, 0.058, 0.074, -0.016, 0.95, {0: (0.0, -0.014, 0.0), 7: (0.0, 0.008, 0.0)}),
        (1.505, 0.061, 0.055, 0.062, -0.014, 1.0, {}),
        (1.528, 0.058, 0.056, 0.060, -0.010, 1.0, {}),
        (1.544, 0.058, 0.088, 0.069, -0.006, 1.0, {0: (0.0, -0.004, 0.006)}),
        (1.568, 0.065, 0.104, 0.084, 0.000, 0.96, {0: (0.0, 0.0, 0.004)}),
        (1.602, 0.073, 0.104, 0.097, 0.000, 0.96, {0: (0.0, -0.004, 0.004)}),
        (1.622, 0.077, 0.103, 0.103, 0.000, 0.96, {0: (0.0, -0.006, 0.020)}),
        (1.648, 0.080, 0.103, 0.107, 0.000, 0.97, {0: (0.0, 0.0, 0.004)}),
        (1.685, 0.080, 0.104, 0.107, 0.000, 0.98, {}),
        (1.720, 0.070, 0.090, 0.094, 0.000, 1.0, {}),
        (1.745, 0.046, 0.058, 0.062, -0.002, 1.0, {}),
    ]


ARM_HOLE_BELOW, ARM_HOLE_MIDDLE, ARM_HOLE_ABOVE = 8, 9, 10
ARM_COLUMNS = (2, 3, 4)
HEAD_FROM_RING = 14


def build_torso(cage):
    rings = []
    grow = 1.0 / shrink(TORSO_RING)
    for height, width, front, back, middle, squareness, offsets in torso_rings():
        points = []
        for k in range(TORSO_RING):
            x, z = oval(2.0 * math.pi * k / TORSO_RING, width * grow, front * grow, back * grow, squareness)
            mirrored = k > TORSO_RING // 2
            offset = offsets.get(TORSO_RING - k if mirrored else k, (0.0, 0.0, 0.0))
            points.append((x - offset[0] if mirrored else x + offset[0], height + offset[1], middle + z + offset[2]))
        rings.append(cage.ring(points))
    holes = [k for k in ARM_COLUMNS] + [TORSO_RING - 1 - k for k in ARM_COLUMNS]
    for i in range(len(rings) - 1):
        part = "head" if i >= HEAD_FROM_RING - 1 else "neck" if i > ARM_HOLE_ABOVE else "torso"
        in_arm = ARM_HOLE_BELOW <= i < ARM_HOLE_ABOVE
        first = len(cage.quads)
        cage.bridge(rings[i], rings[i + 1], part, holes if in_arm else ())
        # The collars lie around the upper half of the arms' holes.
        if ARM_HOLE_MIDDLE <= i <= ARM_HOLE_ABOVE:
            columns = [k for k in range(TORSO_RING) if not (in_arm and k in holes)]
            for quad, k in enumerate(columns, first):
                if k in range(1, 6) or k in range(8, 13):
                    cage.parts[quad] = ("l" if k < 7 else "r") + "Collar"
    top = rings[-1]
    cage.cap([top[(k - 2) % TORSO_RING] for k in range(TORSO_RING)], 4, 3, "head", (0.0, 0.013, 0.0))
    return rings


def leg_rings():
    """height or centre, in the order thigh to toes: centre, half width, front, back, turn forwards in degrees."""
    return [
        ((0.088, 0.800, -0.004), 0.083, 0.086, 0.092, 0),
        ((0.090, 0.735, -0.002), 0.080, 0.084, 0.085, 0),
        ((0.092, 0.665, 0.000), 0.073, 0.079, 0.077, 0),
        ((0.094, 0.600, 0.002), 0.066, 0.073, 0.068, 0),
        ((0.095, 0.545, 0.003), 0.059, 0.064, 0.058, 0),
        ((0.095, 0.500, 0.004), 0.056, 0.060, 0.052, 0),
        ((0.095, 0.455, 0.002), 0.053, 0.053, 0.054, 0),
        ((0.095, 0.395, -0.004), 0.056, 0.049, 0.064, 0),
        ((0.095, 0.325, -0.010), 0.054, 0.046, 0.062, 0),
        ((0.095, 0.255, -0.016), 0.045, 0.041, 0.049, 0),
        ((0.095, 0.185, -0.022), 0.036, 0.037, 0.037, 0),
        ((0.096, 0.130, -0.026), 0.034, 0.037, 0.036, 0),
        ((0.096, 0.094, -0.026), 0.037, 0.044, 0.052, 18),
        ((0.096, 0.074, -0.020), 0.039, 0.050, 0.080, 40),
        ((0.097, 0.060, -0.004), 0.040, 0.049, 0.070, 62),
        ((0.099, 0.050, 0.030), 0.042, 0.040, 0.050, 82),
        ((0.101, 0.038, 0.072), 0.045, 0.030, 0.038, 90),
        ((0.102, 0.029, 0.112), 0.047, 0.024, 0.029, 90),
        ((0.103, 0.023, 0.146), 0.043, 0.019, 0.023, 90),
        ((0.104, 0.019, 0.172), 0.032, 0.014, 0.018, 90),
    ]


FOOT_FROM_RING = 12


def build_leg(cage, side, hips, crotch):
    """hips: the lowest torso ring; crotch: the two vertices between the legs, front and back."""
    sign = 1.0 if side == "l" else -1.0
    part = side + "Leg"
    below = [hips[k if side == "l" else -k] for k in range(8)] + [crotch[1], crotch[0]]
    grow = 1.0 / shrink(TUBE_RING)
    for number, (centre, width, front, back, turn) in enumerate(leg_rings()):
        if number == FOOT_FROM_RING:
            part = side + "Foot"
        turn = math.radians(turn)
        points = []
        for k in range(TUBE_RING):
            x, v = oval(2.0 * math.pi * (k - 1) / TUBE_RING, width * grow, front * grow, back * grow, 0.97)
            points.append((sign * (centre[0] + x), centre[1] + v * math.sin(turn), centre[2] + v * math.cos(turn)))
        ring = cage.ring(points)
        cage.bridge(below, ring, part)
        below = ring
    # The toes: the grid's long side lies across the foot, from the inner top corner outwards.
    cage.cap(below, 3, 2, part, (0.0, 0.0, 0.006))


def arm_rings():
    """Along x: centre, half height, half depth, degrees by which the ring is turned about the arm."""
    return [
        ((0.204, 1.404, -0.016), 0.064, 0.065, 0),
        ((0.250, 1.403, -0.017), 0.056, 0.058, 0),
        ((0.300, 1.402, -0.018), 0.048, 0.050, 0),
        ((0.355, 1.402, -0.019), 0.045, 0.046, 0),
        ((0.400, 1.402, -0.020), 0.041, 0.042, 0),
        ((0.435, 1.402, -0.020), 0.040, 0.040, 0),
        ((0.470, 1.402, -0.019), 0.041, 0.042, 2),
        ((0.525, 1.402, -0.016), 0.041, 0.042, 6),
        ((0.580, 1.402, -0.012), 0.036, 0.038, 10),
        ((0.635, 1.402, -0.008), 0.028, 0.032, 14),
        ((0.672, 1.402, -0.006), 0.0225, 0.029, 18),
    ]


# Along x: the hand's sections with their front and back edge, middle height and half thickness.
HAND_SECTIONS = [
    (0.700, 0.035, -0.036, 1.401, 0.0175),
    (0.728, 0.0425, -0.0415, 1.401, 0.0165),
    (0.752, 0.0435, -0.0430, 1.401, 0.0145),
]
HAND_END = (0.777, 0.7825, 0.784, 0.7815, 0.774)  # x of the five borders of the fingers, from the index finger on
HAND_BORDERS = (0.0435, 0.0212, -0.0004, -0.0222, -0.0430)
THUMB_SECTION = 1  # the thumb grows out of the quad in front between this section and the one before


def build_arm(cage, side, torso):
    sign = 1.0 if side == "l" else -1.0

    def of(ring, k):
        return torso[ring][k if side == "l" else -k]

    low, middle, high = ARM_HOLE_BELOW, ARM_HOLE_MIDDLE, ARM_HOLE_ABOVE
    below = ([of(middle, 2)] + [of(high, k) for k in (2, 3, 4, 5)] + [of(middle, 5)] +
             [of(low, k) for k in (5, 4, 3, 2)])
    grow = 1.0 / shrink(TUBE_RING)
    for centre, height, depth, turn in arm_rings():
        points = []
        for k in range(TUBE_RING):
            angle = 2.0 * math.pi * k / TUBE_RING + math.radians(turn)
            points.append((sign * centre[0], centre[1] + height * grow * math.sin(angle),
                           centre[2] + depth * grow * math.cos(angle)))
        ring = cage.ring(points)
        cage.bridge(below, ring, side + "Arm")
        below = ring

    def section(xs, zs, middle_y, thickness):
        """Five vertices on top from front to back, five below from back to front."""
        bow = (-0.15, 0.05, 0.1, 0.05, -0.25)
        top = [(sign * x, middle_y + thickness * (1 + b), z) for x, z, b in zip(xs, zs, bow)]
        bottom = [(sign * x, middle_y - thickness * (1 + min(b, 0.0)), z) for x, z, b in zip(xs, zs, bow)]
        return cage.ring(top + bottom[::-1])

    sections = [below]
    for x, front, back, middle_y, thickness in HAND_SECTIONS:
        zs = [front + (back - front) * i / 4.0 for i in range(5)]
        sections.append(section([x] * 5, zs, middle_y, thickness))
    sections.append(section(HAND_END, HAND_BORDERS, 1.4005, 0.0125))
    thumb_row = 1 + THUMB_SECTION
    front_column = TUBE_RING - 1  # between the last vertex below and the first on top
    for i in range(len(sections) - 1):
        cage.bridge(sections[i], sections[i + 1], side + "Hand", (front_column,) if i + 1 == thumb_row else ())

    end = sections[-1]
    for number, finger in enumerate(("Index", "Mid", "Ring", "Pinky")):
        base = [end[number], end[number + 1], end[8 - number], end[9 - number]]
        build_finger(cage, sign, side, finger, base, (0.0, 1.0, 0.0))
    near, far = sections[thumb_row - 1], sections[thumb_row]
    build_finger(cage, sign, side, "Thumb", [near[0], far[0], far[9], near[9]], (-0.1, 1.0, 0.25))


def build_finger(cage, sign, side, finger, base, up):
    """A tube of four sides along the finger's joints; base: front top, back top, back bottom, front bottom."""
    joints = FINGERS[finger]
    radius = FINGER_RADIUS[finger] / 0.93
    if finger == "Thumb":
        stations = [(0, 0.62, 1.22), (1, 0.0, 1.02), (1, 0.5, 0.97), (2, 0.0, 0.96), (2, 0.5, 0.97), (2, 0.86, 0.78)]
    else:
        stations = [(0, 0.46, 1.03), (0, 0.72, 0.99), (1, 0.0, 0.99), (1, 0.5, 0.94), (2, 0.0, 0.93), (2, 0.5, 0.90),
                    (2, 0.88, 0.70)]
    along = unit(sub(joints[3], joints[0]))
    sideways = unit(cross(along, up))
    up = cross(sideways, along)
    if dot(sideways, (0.0, 0.0, 1.0)) < 0.0:
        sideways = tuple(-v for v in sideways)
    below = base
    for bone, t, scale in stations:
        centre = tuple(a + (b - a) * t for a, b in zip(joints[bone], joints[bone + 1]))
        r = radius * scale
        points = []
        for s, u in ((1, 1), (-1, 1), (-1, -1), (1, -1)):
            p = tuple(c + r * (s * a + u * b) for c, a, b in zip(centre, sideways, up))
            points.append((sign * p[0], p[1], p[2]))
        ring = cage.ring(points)
        cage.bridge(below, ring, side + finger)
        below = ring
    cage.cap(below, 1, 1, side + finger)


def build_cage():
    cage = Cage()
    torso = build_torso(cage)
    crotch = cage.ring([(0.0, 0.822, 0.030), (0.0, 0.822, -0.050)])
    hips = torso[0]
    # The lowest ring follows the crease of the groin: low in the middle, high at the sides.
    for k in range(TORSO_RING):
        x, y, z = cage.points[hips[k]]
        drop = 1.0 - abs(math.sin(2.0 * math.pi * k / TORSO_RING))
        inward = 0.35 if k in (0, 7) else 0.0
        cage.points[hips[k]] = (x, y - 0.075 * drop, z * (1.0 - inward))
    for side in ("l", "r"):
        build_leg(cage, side, hips, crotch)
        build_arm(cage, side, torso)
    # Inner vertices of the arm holes are not used.
    used = sorted({v for q in cage.quads for v in q})
    number = {v: i for i, v in enumerate(used)}
    cage.points = [cage.points[v] for v in used]
    cage.quads = [[number[v] for v in q] for q in cage.quads]
    return cage


def mirror_partners(points):
    """For each vertex the one at the other side; a vertex of the middle is its own."""
    place = {}
    for v, p in enumerate(points):
        place[(round(p[0], 7) + 0.0, round(p[1], 7), round(p[2], 7))] = v
    partners = []
    for v, p in enumerate(points):
        # Values on the border of two roundings are looked up in both.
        found = None
        for dx in (0.0, 1e-7, -1e-7):
            for dy in (0.0, 1e-7, -1e-7):
                for dz in (0.0, 1e-7, -1e-7):
                    key = (round(-p[0] + dx, 7) + 0.0, round(p[1] + dy, 7), round(p[2] + dz, 7))
                    if found is None and key in place:
                        found = place[key]
        if found is None:
            raise ValueError(f"no mirrored vertex for {p}")
        partners.append(found)
    return partners


# ---------------------------------------------------------------------------------------------------- the binding

def bone_of_face(part, centre, joint):
    """The bone whose face group a face belongs to."""
    x, y, z = centre
    x = abs(x)
    if part in ("head", "neck"):
        return part
    if part == "torso":
        for name, end in (("hip", joint["abdomen"][1] - 0.02), ("abdomen", joint["chest"][1])):
            if y < end:
                return name
        return "chest"
    side, limb = part[0], part[1:]
    if limb in ("Collar", "Hand"):
        return part
    if limb == "Leg":
        return side + ("Thigh" if y > joint["lShin"][1] else "Shin")
    if limb == "Foot":
        return side + ("Toe" if z > joint["lToe"][2] else "Foot")
    if limb == "Arm":
        for name, end in (("Shldr", joint["lForearm"][0]), ("Forearm", 0.675)):
            if x < end:
                return side + name
        return side + "Hand"
    points = FINGERS[limb]
    along = unit(sub(points[3], points[0]))
    reach = dot(sub((x, y, z), points[0]), along)
    if limb == "Thumb" and reach < 0.002:
        return side + "Hand"
    for number in (2, 1):
        if reach > dot(sub(points[number], points[0]), along):
            return f"{side}{limb}{number + 1}"
    return f"{side}{limb}1"


SPREAD_STEPS = 9
INFLUENCES = 4


def spread_weights(count, quads, bones):
    """Hard weights of the faces, averaged at the vertices and spread along the surface; the four largest remain."""
    weights = [{} for _ in range(count)]
    neighbours = [set() for _ in range(count)]
    for q, bone in zip(quads, bones):
        for k in range(4):
            weights[q[k]][bone] = weights[q[k]].get(bone, 0.0) + 1.0
            neighbours[q[k]].update((q[k - 1], q[(k + 1) % 4]))
    neighbours = [sorted(n) for n in neighbours]
    weights = [normalized(w) for w in weights]
    for _ in range(SPREAD_STEPS):
        following = []
        for v in range(count):
            mixed = {bone: 0.5 * w for bone, w in weights[v].items()}
            share = 0.5 / len(neighbours[v])
            for n in neighbours[v]:
                for bone, w in weights[n].items():
                    mixed[bone] = mixed.get(bone, 0.0) + share * w
            following.append({bone: w for bone, w in mixed.items() if w > 1e-5})
        weights = following
    result = []
    for w in weights:
        largest = sorted(w.items(), key=lambda item: (-item[1], item[0]))[:INFLUENCES]
        result.append(normalized({bone: value for bone, value in largest if value > 0.004}))
    return result


def normalized(weights):
    total = sum(weights.values())
    return {bone: w / total for bone, w in weights.items()}


def to_65535(weights):
    """Whole numbers that sum up to exactly 65535; the largest takes what rounding leaves."""
    values = {bone: int(round(w * 65535)) for bone, w in weights.items()}
    largest = max(sorted(values), key=lambda bone: values[bone])
    values[largest] += 65535 - sum(values.values())
    return sorted(values.items(), key=lambda item: (-item[1], item[0]))


# ------------------------------------------------------------------------------------------------------- the file

def single(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


class Buffer:
    def __init__(self):
        self.data = bytearray()
        self.views = []
        self.accessors = []

    def add(self, fmt, component, kind, rows, target=None, limits=False):
        while len(self.data) % 4:
            self.data.append(0)
        start = len(self.data)
        packer = struct.Struct("<" + fmt)
        for row in rows:
            self.data += packer.pack(*row)
        view = {"buffer": 0, "byteOffset": start, "byteLength": len(self.data) - start}
        if target:
            view["target"] = target
        self.views.append(view)
        accessor = {"bufferView": len(self.views) - 1, "componentType": component, "count": len(rows), "type": kind}
        if limits:
            accessor["min"] = [min(column) for column in zip(*rows)]
            accessor["max"] = [max(column) for column in zip(*rows)]
        self.accessors.append(accessor)
        return accessor


def write_glb(path, gltf, data):
    text = json.dumps(gltf, separators=(",", ":")).encode()
    text += b" " * (-len(text) % 4)
    data = bytes(data) + b"\0" * (-len(data) % 4)
    with open(path, "wb") as out:
        out.write(struct.pack("<4sII", b"glTF", 2, 12 + 8 + len(text) + 8 + len(data)))
        out.write(struct.pack("<I4s", len(text), b"JSON") + text)
        out.write(struct.pack("<I4s", len(data), b"BIN\0") + data)


def make():
    table = joint_table()
    joint = {name: position for name, _, position in table}
    order = {name: i for i, (name, _, _) in enumerate(table)}

    cage = build_cage()
    points, quads, parts = cage.points, cage.quads, cage.parts
    orient(quads)
    if volume(points, quads) < 0:
        quads = [q[::-1] for q in quads]
    for _ in range(2):
        points, quads, parts = subdivide(points, quads, parts)

    # Stand on the ground, with exactly the same two halves.
    ground = min(p[1] for p in points)
    points = [(p[0], max(p[1] - ground - 0.003, 0.0), p[2]) for p in points]
    partners = mirror_partners(points)
    points = [tuple(single(round(value, 7)) for value in p) for p in points]
    for v, partner in enumerate(partners):
        if partner == v:
            points[v] = (0.0, points[v][1], points[v][2])
        elif points[v][0] > 0:
            points[partner] = (-points[v][0], points[v][1], points[v][2])

    # Faces in the order of their bones: one run of facets for each face group.
    bones = []
    for q, part in zip(quads, parts):
        centre = tuple(sum(points[v][i] for v in q) / 4.0 for i in range(3))
        bones.append(bone_of_face(part, centre, joint))
    by_bone = sorted(range(len(quads)), key=lambda f: (order[bones[f]], f))
    quads = [quads[f] for f in by_bone]
    bones = [bones[f] for f in by_bone]

    weights = spread_weights(len(points), quads, bones)
    swap = {"l": "r", "r": "l"}
    def mirrored(name):
        return swap[name[0]] + name[1:] if swap.get(name[0], "") + name[1:] in order else name
    for v, partner in enumerate(partners):
        if partner == v:
            both = dict(weights[v])
            for bone, w in weights[v].items():
                both[mirrored(bone)] = both.get(mirrored(bone), 0.0) + w
            largest = sorted(both.items(), key=lambda item: (-item[1], item[0]))[:INFLUENCES]
            weights[v] = normalized(dict(largest))
        elif points[v][0] > 0:
            weights[partner] = {mirrored(bone): w for bone, w in weights[v].items()}

    triangles, groups = [], []
    for q, bone in zip(quads, bones):
        a, b, c, d = (points[v] for v in q)
        ac, bd = sub(c, a), sub(d, b)
        if dot(ac, ac) <= 1.0001 * dot(bd, bd):  # never up to the last bit
            pair = [(q[0], q[1], q[2]), (q[0], q[2], q[3])]
        else:
            pair = [(q[1], q[2], q[3]), (q[1], q[3], q[0])]
        if not groups or groups[-1]["name"] != bone:
            groups.append({"name": bone, "runs": [[len(triangles), 0]]})
        groups[-1]["runs"][0][1] += 2
        triangles += pair

    normals = [[0.0, 0.0, 0.0] for _ in points]
    for t in triangles:
        n = cross(sub(points[t[1]], points[t[0]]), sub(points[t[2]], points[t[0]]))
        for v in t:
            for i in range(3):
                normals[v][i] += n[i]
    normals = [unit(n) for n in normals]
    for v, partner in enumerate(partners):
        if partner != v and points[v][0] > 0:
            normals[partner] = (-normals[v][0], normals[v][1], normals[v][2])

    joint_rows, weight_rows = [], []
    for w in weights:
        values = to_65535(w) + [(None, 0)] * INFLUENCES
        joint_rows.append([order[bone] if bone else 0 for bone, _ in values[:INFLUENCES]])
        weight_rows.append([value for _, value in values[:INFLUENCES]])

    buffer = Buffer()
    buffer.add("3f", 5126, "VEC3", points, 34962, limits=True)
    buffer.add("3f", 5126, "VEC3", normals, 34962)
    buffer.add("4B", 5121, "VEC4", joint_rows, 34962)
    buffer.add("4H", 5123, "VEC4", weight_rows, 34962)["normalized"] = True
    buffer.add("3H", 5123, "SCALAR", triangles, 34963)["count"] = 3 * len(triangles)
    inverse_binds = [(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -x, -y, -z, 1) for _, _, (x, y, z) in table]
    buffer.add("16f", 5126, "MAT4", inverse_binds)

    nodes = []
    for name, parent, position in table:
        base = joint[parent] if parent else (0.0, 0.0, 0.0)
        nodes.append({"name": name, "translation": [round(a - b, 6) + 0.0 for a, b in zip(position, base)]})
        if parent:
            nodes[order[parent]].setdefault("children", []).append(len(nodes) - 1)
    figure = len(nodes)
    nodes.append({"name": "mannequin", "mesh": 0, "skin": 0})

    gltf = {
        "asset": {"version": "2.0", "generator": "tools/make_sample.py"},
        "scene": 0,
        "scenes": [{"name": "Scene", "nodes": [0, figure]}],
        "nodes": nodes,
        "meshes": [{"name": "mannequin", "primitives": [
            {"attributes": {"POSITION": 0, "NORMAL": 1, "JOINTS_0": 2, "WEIGHTS_0": 3}, "indices": 4, "material": 0}]}],
        "skins": [{"name": "mannequin", "joints": list(range(figure)), "skeleton": 0, "inverseBindMatrices": 5}],
        "materials": [{"name": "clay", "pbrMetallicRoughness": {
            "baseColorFactor": [0.72, 0.66, 0.60, 1.0], "metallicFactor": 0.0, "roughnessFactor": 0.85}}],
        "accessors": buffer.accessors,
        "bufferViews": buffer.views,
        "extras": {"RYHOST_rigging": {"version": 1, "unit": 100, "figures": [{"faceGroups": groups}]}},
    }
    add_clips(gltf, buffer)
    gltf["buffers"] = [{"byteLength": len(buffer.data) + -len(buffer.data) % 4}]
    return gltf, buffer.data


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(root, "resources", "samples", "mannequin.glb")
    gltf, data = make()
    os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
    write_glb(path, gltf, data)
    groups = gltf["extras"]["RYHOST_rigging"]["figures"][0]["faceGroups"]
    print(f"{path}: {gltf['accessors'][0]['count']} vertices, {gltf['accessors'][4]['count'] // 3} triangles, "
          f"{len(gltf['skins'][0]['joints'])} joints, {len(groups)} face groups, "
          f"{len(gltf['animations'])} clips, {os.path.getsize(path)} bytes")


if __name__ == "__main__":
    main()
