#!/usr/bin/env python3
"""The bare hand that is there to be rigged: what is committed is what its maker makes, one closed surface of quads."""

import collections
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SAMPLE = ROOT / "resources" / "samples" / "hand.obj"


def read(path):
    points, faces = [], []
    for line in path.read_text(encoding="ascii").splitlines():
        keyword, *rest = line.split()
        if keyword == "v":
            points.append(tuple(float(number) for number in rest))
        elif keyword == "f":
            faces.append([int(number) - 1 for number in rest])
    return points, faces


class MakeHandTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.points, cls.faces = read(SAMPLE)

    def test_is_what_its_maker_makes(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder, "hand.obj")
            subprocess.run([sys.executable, "-B", str(ROOT / "tools" / "make_hand.py"), str(made)], check=True,
                           stdout=subprocess.DEVNULL)
            self.assertEqual(made.read_bytes(), SAMPLE.read_bytes())

    def test_size(self):
        self.assertTrue(1000 <= len(self.points) <= 2000)
        self.assertEqual({len(face) for face in self.faces}, {4})
        low = [min(p[k] for p in self.points) for k in range(3)]
        high = [max(p[k] for p in self.points) for k in range(3)]
        self.assertEqual(low[1], 0.0)  # it lies on the ground
        self.assertTrue(all(0.0 <= a and b < 99.99 for a, b in zip(low, high)))
        self.assertTrue(18.0 <= high[0] - 6.0 <= 19.0)  # from the wrist to the longest tip
        self.assertTrue(12.0 <= high[2] - low[2] <= 16.0 and high[1] < 5.0)

    def test_one_closed_manifold(self):
        edges = collections.Counter((face[k - 1], face[k]) for face in self.faces for k in range(4))
        self.assertEqual(set(edges.values()), {1})  # no edge twice the same way round
        self.assertTrue(all((b, a) in edges for a, b in edges))
        self.assertEqual(len(self.points) - len(edges) // 2 + len(self.faces), 2)  # a sphere, without a handle
        around = collections.defaultdict(dict)
        for face in self.faces:
            for k in range(4):
                around[face[k]][face[k - 1]] = face[(k + 1) % 4]
        self.assertEqual(len(around), len(self.points))
        for ring in around.values():  # one fan of faces around each vertex
            start = next(iter(ring))
            place, steps = ring[start], 1
            while place != start:
                place, steps = ring[place], steps + 1
            self.assertEqual(steps, len(ring))
        reached, queue = {0}, [0]
        while queue:
            for other in around[queue.pop()]:
                if other not in reached:
                    reached.add(other)
                    queue.append(other)
        self.assertEqual(len(reached), len(self.points))

    def test_turned_outwards_without_slivers(self):
        def triple(a, b, c):
            return (a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
                    a[2] * (b[0] * c[1] - b[1] * c[0]))
        volume = 0.0
        for face in self.faces:
            a, b, c, d = (self.points[v] for v in face)
            volume += (triple(a, b, c) + triple(a, c, d)) / 6.0
        self.assertTrue(300.0 <= volume <= 600.0, volume)  # cubic centimetres
        for face in self.faces:
            corners = [self.points[v] for v in face]
            for k in range(4):
                length = sum((p - q) ** 2 for p, q in zip(corners[k - 1], corners[k])) ** 0.5
                self.assertTrue(0.05 <= length <= 2.0, length)


if __name__ == "__main__":
    unittest.main()
