"""Writes wave.json: a lemur that waves from behind its own head.

    PYTHONPATH=examples python3 examples/wave/make.py

The forearm starts in front of the chest and the scarf (start Z -8) and ends behind the head (end
Z -4, the head is at -6): one bone, in front at one end and behind at the other. A lower Z is nearer
to the viewer. All numbers are pixels.
"""

import math

from figure import card, point, write_scene

IMAGES = (
    "head ear chest hips scarf upper_arm forearm forearm_short hand_open hand_hip thigh shin foot "
    "tail shadow"
).split()


def blossom(curve, a, b, c):
    """The cubic's polar form.

    (s, s, s), (s, s, t), (s, t, t) and (t, t, t) give the four points of its part from s to t, also
    where s and t lie beyond 0 and 1.
    """
    for t in (a, b, c):
        curve = [
            ((1 - t) * p[0] + t * q[0], (1 - t) * p[1] + t * q[1])
            for p, q in zip(curve, curve[1:])
        ]
    return curve[0]


def parameter_at(curve, start, length):
    """The parameter that lies length along the curve from start; backwards if it is negative."""
    t, here, step = start, blossom(curve, start, start, start), math.copysign(0.0005, length)
    left = abs(length)
    while left > 0:
        t += step
        there = blossom(curve, t, t, t)
        left -= math.dist(here, there)
        here = there
    return t


def straight(first, last):
    return [(first[0] + (last[0] - first[0]) * k / 3, first[1] + (last[1] - first[1]) * k / 3)
            for k in range(4)]


def limb(name, image, z, joints, ends, width, pose, pieces=8):
    """A bone that bends: its joints lie in the image, its pose leads from one to the other.

    The strip goes on beyond each joint by what ends says, along the pose's own curve, so that a
    round joint stays where the skeleton has it.
    """
    (ax, ay), (bx, by) = joints
    drawn = math.dist(*joints)
    along = ((bx - ax) / drawn, (by - ay) / drawn)
    curve = pose if len(pose) == 4 else straight(*pose)
    s, t = parameter_at(curve, 0, -ends[0]), parameter_at(curve, 1, ends[1])
    part = [(s, s, s), (s, s, t), (s, t, t), (t, t, t)]
    if len(pose) == 2:
        part = [part[0], part[3]]
    strip = {
        "rest": [
            point(ax - along[0] * ends[0], ay - along[1] * ends[0]),
            point(bx + along[0] * ends[1], by + along[1] * ends[1]),
        ],
        "width": width,
        "pose": [point(*blossom(curve, *at)) for at in part],
        "pieces": pieces,
    }
    return {"name": name, "image": image, "z": z, "strip": strip}


UPPER_ARM = dict(image="upper_arm", joints=[(54, 56), (54, 236)], ends=(52, 48), width=104)
FOREARM = dict(image="forearm", joints=[(54, 50), (54, 430)], ends=(46, 36), width=104)
SHORT_FOREARM = dict(image="forearm_short", joints=[(54, 50), (54, 250)], ends=(46, 36), width=104)
OPEN_HAND = dict(image="hand_open", joints=[(90, 170), (90, 20)], ends=(28, 18), width=176)
THIGH = dict(image="thigh", joints=[(68, 64), (68, 174)], ends=(60, 62), width=132)
SHIN = dict(image="shin", joints=[(64, 58), (64, 168)], ends=(54, 38), width=124)
HIPS = dict(image="hips", joints=[(125, 20), (125, 170)], ends=(16, 8), width=246)
CHEST = dict(image="chest", joints=[(150, 280), (150, 20)], ends=(8, 16), width=296)
TAIL = dict(image="tail", joints=[(32, 70), (450, 70)], ends=(0, 0), width=136)
TAIL_TIP = dict(image="tail", joints=[(450, 70), (876, 70)], ends=(0, 0), width=136)


def waving_arm():
    shoulder, elbow, wrist = (416, 514), (433, 692), (678, 316)
    raised = [elbow, (482, 596), (556, 440), wrist]
    hand = [wrist, (712, 295), (744, 256), (762, 206)]
    return [
        limb("Upper arm", z=-1, pose=[shoulder, elbow], **UPPER_ARM),
        limb("Forearm", z=[-8, -4], pose=raised, pieces=24, **FOREARM),
        limb("Hand", z=-3, pose=hand, pieces=24, **OPEN_HAND),
    ]


def resting_arm():
    shoulder, elbow, wrist = (622, 518), (790, 606), (640, 724)
    return [
        limb("Hip upper arm", z=5, pose=[shoulder, elbow], **UPPER_ARM),
        limb("Hip forearm", z=-1, pose=[elbow, wrist], **SHORT_FOREARM),
        card("Hip hand", "hand_hip", -0.5, (140, 160), (70, 30), wrist, turn=38),
    ]


def leg(name, side):
    """side is -1 for the leg on the viewer's left, 1 for the one on the right."""
    hip, knee, ankle = (520 + 56 * side, 768), (520 + 70 * side, 872), (520 + 80 * side, 968)
    heel = (ankle[0] - 2 * side, ankle[1] - 8)
    return [
        limb(f"{name} thigh", z=1, pose=[hip, knee], **THIGH),
        limb(f"{name} shin", z=0.5, pose=[knee, ankle], **SHIN),
        card(f"{name} foot", "foot", 1.5, (210, 130), (66, 22), heel, mirrored=side < 0),
    ]


def tail():
    root, middle, tip = (442, 776), (176, 706), (214, 316)
    first = [root, (364, 892), (190, 880), middle]
    second = [middle, (162, 532), (310, 440), tip]
    return [
        limb("Tail", z=7, pose=first, pieces=24, **TAIL),
        limb("Tail tip", z=6, pose=second, pieces=24, **TAIL_TIP),
    ]


def body():
    ear = dict(image="ear", z=-5, size=(150, 170), pivot=(92, 150))
    return [
        limb("Hips", z=2, pose=[(520, 664), (520, 814)], pieces=4, **HIPS),
        limb("Chest", z=0, pose=[(520, 704), (518, 446)], **CHEST),
        card("Neck", "scarf", -2, (260, 200), (130, 50), (520, 458), turn=-3),
        card("Head", "head", -6, (440, 420), (220, 402), (512, 462), turn=-5),
        card("Left ear", at=(396, 178), turn=-30, **ear),
        card("Right ear", at=(598, 156), turn=22, mirrored=True, **ear),
        card("Shadow", "shadow", 9, (640, 120), (320, 60), (520, 1016)),
    ]


def main():
    legs = leg("Left", -1) + leg("Right", 1)
    bones = tail() + body() + legs + waving_arm() + resting_arm()
    write_scene("wave", [1000, 1080], IMAGES, bones)


if __name__ == "__main__":
    main()
