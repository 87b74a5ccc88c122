#!/usr/bin/env python3
"""Makes the bare hand resources/samples/hand.obj: a left hand without a bone, to be rigged.

It lies relaxed on the ground, back up, fingers along +X, thumb at +Z, in centimetres: 18.4 from the wrist to the tip of the
middle finger. Wrist, knuckles and tips have coordinates above 0 and below 99.99, which any field for numbers takes. A cage
of quads is laid out ring by ring and subdivided once by Catmull and Clark's rule.
The result depends on nothing but this file and quad_cage.py.

    tools/make_hand.py [OUT]
"""

import math
import os
import sys

from quad_cage import Cage, cross, dot, orient, sub, subdivide, unit, volume

# Where the wrist lies in the file; everything below is told from the wrist: x to the finger tips, y to the back of the
# hand, z to the thumb.
WRIST = (6.0, 0.0, 6.0)

# The joints: knuckle or root of the thumb, the two further joints, tip.
JOINTS = {
    "thumb": [(1.4, -0.35, 2.2), (4.9, -0.75, 5.25), (7.65, -0.95, 7.3), (10.2, -1.15, 8.95)],
    "index": [(8.8, 0.25, 2.75), (12.95, -0.05, 3.25), (15.4, -0.5, 3.45), (17.35, -1.0, 3.5)],
    "mid": [(9.0, 0.35, 0.75), (13.6, 0.1, 0.85), (16.35, -0.4, 0.85), (18.4, -0.95, 0.8)],
    "ring": [(8.5, 0.25, -1.2), (12.75, 0.0, -1.55), (15.3, -0.5, -1.8), (17.25, -1.0, -2.0)],
    "pinky": [(7.7, 0.05, -2.95), (11.0, -0.2, -3.75), (12.95, -0.6, -4.2), (14.65, -1.0, -4.5)],
}
FINGERS = ("index", "mid", "ring", "pinky")

# Cross sections of a finger: the bone, how far along it, half width and half height in shares of the finger's.
FINGER_SECTIONS = [
    (0, 0.54, 0.93, 0.99),
    (0, 0.78, 0.97, 0.96),
    (0, 0.96, 1.06, 1.01),
    (1, 0.10, 1.03, 0.98),
    (1, 0.55, 0.91, 0.88),
    (2, 0.00, 0.93, 0.84),
    (2, 0.45, 0.90, 0.76),
    (2, 0.84, 0.70, 0.52),
]
THUMB_SECTIONS = [
    (0, 0.93, 1.16, 1.20),
    (1, 0.16, 1.08, 1.08),
    (1, 0.58, 0.94, 0.96),
    (2, 0.00, 1.00, 0.96),
    (2, 0.45, 1.02, 0.84),
    (2, 0.84, 0.78, 0.56),
]
HALF_WIDTH = {"thumb": 1.14, "index": 0.97, "mid": 1.00, "ring": 0.95, "pinky": 0.82}
HALF_HEIGHT = {"thumb": 1.10, "index": 0.96, "mid": 1.00, "ring": 0.94, "pinky": 0.80}

# Cross sections of the palm from the arm on: x; z at the thumb's and the little finger's side; the height of the back and
# of the palm at the thumb's side, in the middle and at the little finger's side.
PALM_SECTIONS = [
    (-4.2, 2.80, -2.80, (1.65, 2.05, 1.65), (-1.65, -2.05, -1.65)),
    (-2.2, 2.75, -2.75, (1.60, 1.95, 1.60), (-1.60, -1.95, -1.60)),
    (-0.4, 2.60, -2.66, (1.45, 1.80, 1.45), (-1.55, -1.75, -1.55)),
    (1.1, 3.05, -3.25, (1.30, 1.75, 1.30), (-2.00, -1.60, -1.90)),
    (3.0, 3.75, -3.75, (1.20, 1.75, 1.15), (-2.10, -1.35, -1.95)),
    (5.1, 3.80, -4.02, (1.20, 1.70, 1.00), (-1.75, -1.25, -1.75)),
    (7.6, 4.00, -4.10, (1.35, 1.65, 0.90), (-1.35, -1.25, -1.40)),
]
THUMB_ROW = 4  # the thumb grows out of the quads before and after this section
# The end of the palm at the five borders of the fingers and in the four middles between them: x, z, top, bottom.
WEB_BORDERS = [(10.2, 4.08, 0.95, -0.90), (10.7, 1.98, 0.72, -0.95), (10.7, -0.30, 0.70, -0.95),
               (9.8, -2.38, 0.52, -0.95), (8.7, -4.30, 0.55, -0.90)]
WEB_MIDDLES = [(10.1, 3.05, 1.40, -1.12), (10.6, 0.84, 1.50, -1.15), (10.0, -1.35, 1.35, -1.12), (8.8, -3.36, 1.02, -1.05)]
KNUCKLE = 0.30  # by how much the knuckles rise above the last section of the palm


def across(values, place):
    """A value from a side's, the middle's and the other side's; place runs from 0 to 1."""
    first, middle, last = values
    return first * (1 - place) * (1 - 2 * place) + 4 * middle * place * (1 - place) + last * place * (2 * place - 1)


def palm_ring(cage, section):
    """20 vertices: the middle of the thumb's side, nine on the back, the other middle, nine on the palm back again."""
    x, front, back, top, bottom = section
    place = [column / 8.0 for column in range(9)]
    inset = [0.16, 0.02, 0.0, 0.0, 0.0, 0.0, 0.0, -0.02, -0.16]
    zs = [front + (back - front) * p - i for p, i in zip(place, inset)]
    edge = [0.80, 0.97, 1.0, 1.0, 1.0, 1.0, 1.0, 0.97, 0.80]
    knuckles = section is PALM_SECTIONS[-1]
    above = [(x, across(top, p) * e + (KNUCKLE if knuckles and c % 2 else 0.0), z)
             for c, (p, e, z) in enumerate(zip(place, edge, zs))]
    below = [(x, across(bottom, p) * e, z) for p, e, z in zip(place, edge, zs)]
    side = [(x, (above[k][1] + below[k][1]) / 2.0, z) for k, z in ((0, front + 0.16), (8, back - 0.16))]
    return cage.ring([side[0], *above, side[1], *below[::-1]])


def web_ring(cage):
    columns = []
    for number in range(9):
        columns.append((WEB_MIDDLES if number % 2 else WEB_BORDERS)[number // 2])
    above = [(x - (0.0 if k % 2 else 0.25), top, z) for k, (x, z, top, _) in enumerate(columns)]
    below = [(x, bottom, z) for x, z, _, bottom in columns]
    sides = [(WEB_BORDERS[k][0], 0.0, WEB_BORDERS[k][1] + bulge) for k, bulge in ((0, 0.14), (4, -0.14))]
    webs = cage.ring([(x + 0.15, (top + bottom) / 2.0, z) for x, z, top, bottom in WEB_BORDERS[1:4]])
    return cage.ring([sides[0], *above, sides[1], *below[::-1]]), webs


def build_digit(cage, name, base, sections, side, up):
    """A tube of eight sides along the joints. base runs from the upper corner at the near side over the back; side points
    to the far side, up to the nail."""
    joints = JOINTS[name]
    below = base
    for bone, t, width, height in sections:
        centre = tuple(a + (b - a) * t for a, b in zip(joints[bone], joints[bone + 1]))
        along = unit(sub(joints[bone + 1], joints[bone]))
        if bone > 0 and t < 0.3:  # at a joint the section halves the angle
            along = unit(tuple(a + b for a, b in zip(along, unit(sub(joints[bone], joints[bone - 1])))))
        across_finger = unit(sub(side, tuple(dot(side, along) * a for a in along)))
        nail = cross(along, across_finger)
        if dot(nail, up) < 0.0:
            nail = tuple(-v for v in nail)
        w, h = width * HALF_WIDTH[name] * 1.08, height * HALF_HEIGHT[name] * 1.08
        flat = 0.86 if bone == 2 and t > 0.2 else 1.0  # the nail
        points = []
        for s, u in ((-0.72, 0.74 * flat), (0.0, flat), (0.72, 0.74 * flat), (1.0, 0.0), (0.72, -0.74), (0.0, -1.02),
                     (-0.72, -0.74), (-1.0, 0.0)):
            points.append(tuple(c + s * w * a + u * h * b for c, a, b in zip(centre, across_finger, nail)))
        ring = cage.ring(points)
        cage.bridge(below, ring, name)
        below = ring
    tip_lift = tuple(0.30 * a for a in unit(sub(joints[3], joints[2])))
    cage.cap(below, 2, 2, name, tip_lift)


def build_cage():
    cage = Cage()
    rings = [palm_ring(cage, section) for section in PALM_SECTIONS]
    end, webs = web_ring(cage)
    rings.append(end)
    start = rings[0]
    cage.cap([start[(k + 1) % 20] for k in range(20)], 8, 2, "arm", (-0.05, 0.0, 0.0))
    for row in range(len(rings) - 1):
        in_thumb = THUMB_ROW - 1 <= row < THUMB_ROW + 1
        cage.bridge(rings[row], rings[row + 1], "palm", (0, 19) if in_thumb else ())
    sides = [end[0], *webs, end[10]]
    for number, finger in enumerate(FINGERS):
        top = [end[1 + 2 * number + k] for k in range(3)]
        bottom = [end[19 - 2 * number - k] for k in range(3)]
        base = [*top, sides[number + 1], *bottom[::-1], sides[number]]
        build_digit(cage, finger, base, FINGER_SECTIONS, (0.0, 0.0, -1.0), (0.0, 1.0, 0.0))
    near, middle, far = rings[THUMB_ROW - 1], rings[THUMB_ROW], rings[THUMB_ROW + 1]
    base = [near[1], middle[1], far[1], far[0], far[19], middle[19], near[19], near[0]]
    build_digit(cage, "thumb", base, THUMB_SECTIONS, (0.62, 0.45, -0.64), (-0.25, 0.85, 0.35))
    # The vertex in the middle of the thumb's hole is not used.
    used = sorted({v for quad in cage.quads for v in quad})
    number = {v: i for i, v in enumerate(used)}
    cage.points = [cage.points[v] for v in used]
    cage.quads = [[number[v] for v in quad] for quad in cage.quads]
    return cage


def make():
    """Points on the ground and in their place, rounded as the file holds them, and quads turned outwards."""
    cage = build_cage()
    orient(cage.quads)
    points, quads, _ = subdivide(cage.points, cage.quads, cage.parts)
    if volume(points, quads) < 0.0:
        quads = [quad[::-1] for quad in quads]
    ground = min(p[1] for p in points)
    place = (WRIST[0], WRIST[1] - ground, WRIST[2])
    points = [tuple(round(a + b, 3) for a, b in zip(p, place)) for p in points]
    return points, quads, place


def text(points, quads):
    lines = ["# A left hand without bones, made by tools/make_hand.py", "# units: centimeters", "o hand", "g hand", "s 1"]
    lines += ["v {:.3f} {:.3f} {:.3f}".format(*p) for p in points]
    lines += ["f " + " ".join(str(v + 1) for v in quad) for quad in quads]
    return "\n".join(lines) + "\n"


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(root, "resources", "samples", "hand.obj")
    points, quads, place = make()
    with open(path, "w", encoding="ascii", newline="\n") as file:
        file.write(text(points, quads))
    print(f"{path}: {len(points)} vertices, {len(quads)} quads, {os.path.getsize(path)} bytes")
    for name, joints in JOINTS.items():
        print(f"  {name}: " + ", ".join("(" + ", ".join(f"{a + b:.2f}" for a, b in zip(joint, place)) + ")"
                                        for joint in joints))


if __name__ == "__main__":
    main()
