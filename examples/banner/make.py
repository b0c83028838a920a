"""Writes banner.json: an aeroplane tows a banner 3.7 thousand pixels long.

    PYTHONPATH=examples python3 examples/banner/make.py

Each word is two bones that follow one wave, each a cubic Bezier with the wave's own tangents at its
ends. The words OVER pass in front of the clouds, the words UNDER behind them. All bones together
are wider than 4,096 pixels.
"""

import math

from figure import card, point, write_scene

START, LEVEL = 880, 352
HEIGHT, LENGTH = 62, 900
CLOTH = {"over": 760, "under": 900, "tail": 412}
IMAGES = ["plane", "propeller", "line", "bar", "over", "under", "tail", "cloud"]


def turned(x):
    return 2 * math.pi * (x - START) / LENGTH


def wave(x):
    return (x, LEVEL + HEIGHT * math.sin(turned(x)))


def slope(x):
    return HEIGHT * 2 * math.pi / LENGTH * math.cos(turned(x))


def ribbon(name, image, rest, pose):
    """Part of a length of cloth: rest and pose are its two ends, as x in the image and as x on
    the layer."""
    third = (pose[1] - pose[0]) / 3
    first, last = wave(pose[0]), wave(pose[1])
    curve = [
        first,
        (first[0] + third, first[1] + third * slope(pose[0])),
        (last[0] - third, last[1] - third * slope(pose[1])),
        last,
    ]
    strip = {
        "rest": [[rest[0], 115], [rest[1], 115]],
        "width": 226,
        "pose": [point(*p) for p in curve],
        "pieces": 56,
    }
    return {"name": name, "image": image, "z": 0, "strip": strip}


def cloth():
    bones, x = [], START
    for word in ("Over 1", "Under 1", "Over 2", "Under 2"):
        image = word.split()[0].lower()
        half = CLOTH[image] // 2
        for part, begin in (("begins", 4), ("ends", 4 + half)):
            bones.append(ribbon(f"{word} {part}", image, (begin, begin + half), (x, x + half)))
            x += half
    end = CLOTH["tail"]
    return bones + [ribbon("Swallow tail", "tail", (4, 4 + end), (x, x + end))]


def line(name, pose):
    strip = {
        "rest": [[4, 12], [244, 12]],
        "width": 20,
        "pose": [point(*p) for p in pose],
        "poseWidth": 13,
        "pieces": 12,
    }
    return {"name": name, "image": "line", "z": 1, "strip": strip}


def towing():
    """The plane, its lines and the bar that stands across the banner's leading edge."""
    hook, knot, bar = (724, 350), (800, 362), wave(START)
    lean, reach = math.atan(slope(START)), 122
    ring = (reach * math.sin(lean), reach * math.cos(lean))
    upper = (bar[0] + ring[0], bar[1] - ring[1])
    lower = (bar[0] - ring[0], bar[1] + ring[1])
    return [
        card("Plane", "plane", -1, (680, 400), (640, 214), hook, turn=5),
        card("Propeller", "propeller", -2, (90, 330), (45, 165), (139, 285), turn=5),
        line("Tow line", [hook, knot]),
        line("Upper line", [knot, (820, 330), (850, 270), upper]),
        line("Lower line", [knot, (815, 400), (828, 450), lower]),
        card("Bar", "bar", -1, (60, 280), (30, 140), bar, turn=math.degrees(lean)),
    ]


def sky():
    behind, before = 3, -3
    clouds = [
        (behind, (300, 560), 0.8),
        (behind, (1260, 190), 1.0),
        (before, (2060, 520), 1.05),
        (behind, (2900, 510), 1.1),
        (before, (3610, 180), 0.9),
        (before, (4080, 500), 0.8),
        (behind, (4520, 220), 0.85),
    ]
    return [
        card(f"Cloud {n}", "cloud", z, (520, 250), (260, 125), at, scale)
        for n, (z, at, scale) in enumerate(clouds, 1)
    ]


def main():
    write_scene("banner", [4800, 700], IMAGES, towing() + cloth() + sky())


if __name__ == "__main__":
    main()
