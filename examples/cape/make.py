"""Writes cape.json: a half-transparent veil on a dressmaker's dummy.

    PYTHONPATH=examples python3 examples/cape/make.py

The veil is one bone with one image. Its cloth runs to and fro in five folds, so that three layers
of the same image lie over one another at the hem. Each piece's t says how near it is to the viewer:
the bone's Z falls from 0 to -10 along t.
"""

import math

from figure import point, write_scene

FOLDS = 5
COLUMNS, ROWS = 70, 7
IMAGE = (1240, 640)
EDGE = 3


def smooth(v):
    return v * v * (3 - 2 * v)


def phase(s):
    return 2 * math.pi * FOLDS * s


def place(s, v):
    """Where the cloth hangs: s runs over its width, v from the collar (0) to the hem (1)."""
    left, right = 428 - 256 * v**0.6, 572 + 268 * v**0.7
    swing = 5 + 74 * smooth(v) ** 0.9
    x = left + (right - left) * s + swing * math.sin(phase(s))
    shoulders = 26 * (2 * s - 1) ** 2
    hem = 560 + 26 * math.cos(2 * math.pi * s) - 60 * (s - 0.45) ** 2
    y = 196 + shoulders * (1 - v) + v * hem + 16 * v * math.cos(phase(s))
    return point(x, y, 2)


def nearness(s):
    """0 for the deepest layer, 1 for the nearest.

    The folds lean: the left side of each lies on the right side of its left neighbour.
    """
    lean = 0.45
    fold = (math.cos(phase(s)) - lean * math.sin(phase(s))) / math.hypot(1, lean)
    return round(0.5 + 0.4 * fold + 0.02 * s, 4)


def cloth_used():
    """For each column's edge, what share of the cloth lies left of it, measured near the hem."""
    used = [0.0]
    for column in range(COLUMNS):
        a, b = place(column / COLUMNS, 0.75), place((column + 1) / COLUMNS, 0.75)
        used.append(used[-1] + math.hypot(b[0] - a[0], 9))
    return [length / used[-1] for length in used]


def texture(share, v):
    return point(EDGE + share * (IMAGE[0] - 2 * EDGE), EDGE + v * (IMAGE[1] - 2 * EDGE), 2)


def veil():
    pieces, shares = [], cloth_used()
    around = [(0, 0), (1, 0), (1, 1), (0, 1)]
    for column in range(COLUMNS):
        s = [(column + right) / COLUMNS for right in (0, 1)]
        for row in range(ROWS):
            v = [(row + low) / ROWS for low in (0, 1)]
            pieces.append(
                {
                    "corners": [place(s[right], v[low]) for right, low in around],
                    "uv": [texture(shares[column + right], v[low]) for right, low in around],
                    "t": nearness(sum(s) / 2),
                }
            )
    return {"name": "Veil", "image": "veil", "opacity": 0.8, "z": [0, -10], "pieces": pieces}


def upright(name, z, size, top):
    """A bone of its own whole image, named as it, hanging straight down from its upper edge."""
    middle = size[0] // 2
    strip = {
        "rest": [[middle, 2], [middle, size[1] - 2]],
        "width": size[0] - 4,
        "pose": [[top[0], top[1] + 2], [top[0], top[1] + size[1] - 2]],
        "pieces": 4,
    }
    return {"name": name, "image": name.lower(), "z": z, "strip": strip}


def main():
    bones = [
        upright("Stand", 6, (440, 330), (500, 664)),
        upright("Bust", 5, (420, 600), (500, 92)),
        veil(),
        upright("Clasp", -20, (220, 110), (500, 162)),
    ]
    write_scene("cape", [1000, 1000], ["stand", "bust", "veil", "clasp"], bones, fast=False)


if __name__ == "__main__":
    main()
