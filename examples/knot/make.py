"""Writes knot.json: a rope of 25 bones tied in a trefoil knot.

    PYTHONPATH=examples python3 examples/knot/make.py

The knot is the closed curve x = sin t + 2 sin 2t, y = cos t - 2 cos 2t, whose height sin 3t is
above at one passage of each crossing and below at the other. It is cut into 25 parts of equal
length, each a cubic Bezier with the curve's own tangents at its ends; neighbours share the end
point and the Z there. A lower Z is nearer to the viewer.
"""

import math

from figure import point, write_scene

BONES = 25
CENTRE = (500, 573)
SCALE = 158
HEIGHT = 10
STEPS = 20000


def position(t):
    x = math.sin(t) + 2 * math.sin(2 * t)
    y = math.cos(t) - 2 * math.cos(2 * t)
    return (CENTRE[0] + SCALE * x, CENTRE[1] + SCALE * y)


def tangent(t):
    x = math.cos(t) + 4 * math.cos(2 * t)
    y = -math.sin(t) + 4 * math.sin(2 * t)
    return (SCALE * x, SCALE * y)


def depth(t):
    return round(-HEIGHT * math.sin(3 * t), 2) + 0.0


def cuts_of_equal_length():
    """The 26 parameters at which the rope is cut; the last one closes the knot."""
    at = [2 * math.pi * i / STEPS for i in range(STEPS + 1)]
    reached = [0.0]
    for a, b in zip(at, at[1:]):
        reached.append(reached[-1] + math.dist(position(a), position(b)))
    cuts, i = [], 0
    for n in range(BONES):
        wanted = reached[-1] * n / BONES
        while reached[i + 1] <= wanted:
            i += 1
        within = (wanted - reached[i]) / (reached[i + 1] - reached[i])
        cuts.append(at[i] + within * (at[i + 1] - at[i]))
    return cuts + [2 * math.pi]


def bone(n, start, end, first, last):
    """Bone n from parameter start to parameter end.

    first and last are its end points, shared with its neighbours.
    """
    third = (end - start) / 3
    out, into = tangent(start), tangent(end)
    after_first = point(first[0] + third * out[0], first[1] + third * out[1])
    before_last = point(last[0] - third * into[0], last[1] - third * into[1])
    return {
        "name": f"Rope {n}",
        "image": "rope",
        "z": [depth(start), depth(end)],
        "strip": {
            "rest": [[4, 62], [164, 62]],
            "width": 116,
            "pose": [first, after_first, before_last, last],
            "poseWidth": 112,
            "pieces": 12,
        },
    }


def main():
    cuts = cuts_of_equal_length()
    ends = [point(*position(t)) for t in cuts[:-1]]
    ends.append(ends[0])
    bones = [bone(n + 1, cuts[n], cuts[n + 1], ends[n], ends[n + 1]) for n in range(BONES)]
    write_scene("knot", [1000, 1000], ["rope"], bones)


if __name__ == "__main__":
    main()
