"""Closed cages of quads and their subdivision: what the makers of the samples have in common."""

import math


def shrink(count):
    """What subdivision leaves of the radius of a ring of so many vertices."""
    return (2.0 + math.cos(2.0 * math.pi / count)) / 3.0


class Cage:
    """Vertices, quads, and for each quad the part of the body it belongs to."""

    def __init__(self):
        self.points = []
        self.quads = []
        self.parts = []

    def ring(self, points):
        first = len(self.points)
        self.points += points
        return list(range(first, first + len(points)))

    def quad(self, corners, part):
        self.quads.append(corners)
        self.parts.append(part)

    def bridge(self, below, above, part, leave_out=()):
        count = len(below)
        for k in range(count):
            if k not in leave_out:
                n = (k + 1) % count
                self.quad([below[k], below[n], above[n], above[k]], part)

    def cap(self, boundary, columns, rows, part, lift=(0.0, 0.0, 0.0)):
        """Closes a ring with columns x rows quads; the first corner of that grid is boundary[0]. lift bulges it."""
        grid = {}
        walk = ([(c, 0) for c in range(columns)] + [(columns, r) for r in range(rows)] +
                [(c, rows) for c in range(columns, 0, -1)] + [(0, r) for r in range(rows, 0, -1)])
        for place, vertex in zip(walk, boundary, strict=True):
            grid[place] = vertex
        for r in range(1, rows):
            for c in range(1, columns):
                s, t = c / columns, r / rows
                at = [self.points[grid[place]] for place in ((0, r), (columns, r), (c, 0), (c, rows))]
                point = tuple(0.5 * ((1 - s) * at[0][i] + s * at[1][i] + (1 - t) * at[2][i] + t * at[3][i]) + lift[i]
                              for i in range(3))
                grid[(c, r)] = self.ring([point])[0]
        for r in range(rows):
            for c in range(columns):
                self.quad([grid[(c, r)], grid[(c + 1, r)], grid[(c + 1, r + 1)], grid[(c, r + 1)]], part)


def sub(a, b):
    return (a[0] - b[0], a[1] - b[1], a[2] - b[2])


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def unit(a):
    length = math.sqrt(dot(a, a))
    return (a[0] / length, a[1] / length, a[2] / length)


def orient(quads):
    """Turns quads so that all agree, starting from the first; fails when an edge has not exactly two faces."""
    at_edge = {}
    for f, q in enumerate(quads):
        for k in range(4):
            at_edge.setdefault(frozenset((q[k], q[(k + 1) % 4])), []).append(f)
    odd = [tuple(e) for e, faces in at_edge.items() if len(faces) != 2]
    if odd:
        raise ValueError(f"the cage is not closed at {odd}")
    done, queue = {0}, [0]
    while queue:
        f = queue.pop()
        q = quads[f]
        for k in range(4):
            a, b = q[k], q[(k + 1) % 4]
            for other in at_edge[frozenset((a, b))]:
                if other in done:
                    continue
                o = quads[other]
                i = o.index(a)
                if o[(i + 1) % 4] == b:
                    quads[other] = o[::-1]
                done.add(other)
                queue.append(other)
    if len(done) != len(quads):
        raise ValueError("the cage falls apart")


def volume(points, quads):
    total = 0.0
    for q in quads:
        a, b, c, d = (points[v] for v in q)
        total += dot(a, cross(b, c)) + dot(a, cross(c, d))
    return total / 6.0


def subdivide(points, quads, parts):
    """One step of Catmull and Clark on a closed mesh of quads."""
    face_points = [tuple(sum(points[v][i] for v in q) / 4.0 for i in range(3)) for q in quads]
    edges, edge_faces = {}, []
    for f, q in enumerate(quads):
        for k in range(4):
            a, b = q[k], q[(k + 1) % 4]
            key = (a, b) if a < b else (b, a)
            e = edges.setdefault(key, len(edges))
            if e == len(edge_faces):
                edge_faces.append([])
            edge_faces[e].append(f)
    keys = list(edges)
    edge_points = [tuple((points[a][i] + points[b][i] + face_points[f][i] + face_points[g][i]) / 4.0 for i in range(3))
                   for (a, b), (f, g) in zip(keys, edge_faces)]
    count = len(points)
    face_sum = [[0.0, 0.0, 0.0] for _ in points]
    edge_sum = [[0.0, 0.0, 0.0] for _ in points]
    valence = [0] * count
    for f, q in enumerate(quads):
        for v in q:
            for i in range(3):
                face_sum[v][i] += face_points[f][i]
    for a, b in keys:
        valence[a] += 1
        valence[b] += 1
        for i in range(3):
            middle = (points[a][i] + points[b][i]) / 2.0
            edge_sum[a][i] += middle
            edge_sum[b][i] += middle
    moved = []
    for v in range(count):
        n = valence[v]
        moved.append(tuple((face_sum[v][i] / n + 2.0 * edge_sum[v][i] / n + (n - 3) * points[v][i]) / n
                           for i in range(3)))
    first_edge, first_face = count, count + len(keys)
    new_quads, new_parts = [], []
    for f, q in enumerate(quads):
        for k in range(4):
            a, b, c = q[k - 1], q[k], q[(k + 1) % 4]
            before = edges[(a, b) if a < b else (b, a)]
            after = edges[(b, c) if b < c else (c, b)]
            new_quads.append([b, first_edge + after, first_face + f, first_edge + before])
            new_parts.append(parts[f])
    return moved + edge_points + face_points, new_quads, new_parts
