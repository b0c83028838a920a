"""Writes wave.json: a lemur that waves from behind its own head.

    PYTHONPATH=examples python3 examples/wave/make.py

The forearm starts in front of the chest and the scarf (start Z -8) and ends behind the head (end
Z -4, the head is at -6): one bone, in front at one end and behind at the other. A lower Z is nearer
to the viewer. All numbers are pixels.

The 100 frames are a loop: four waves (the hand comes in behind the ear at first; from frame 37 to
86 the ear lies behind it), a nod, two blinks and a sway of the tail.
"""

import math

from figure import card, point, write_scene

IMAGES = (
    "head head_blink ear chest hips scarf upper_arm forearm forearm_short hand_open hand_hip thigh "
    "shin foot tail shadow"
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


NECK = (512, 462)
IN_AND_OUT = [0.42, 0, 0.58, 1]


def turned(at, around, degrees):
    """A point turned clockwise around another."""
    cos, sin = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    x, y = at[0] - around[0], at[1] - around[1]
    return (around[0] + x * cos - y * sin, around[1] + x * sin + y * cos)


def waving_arm(swing=0, drag=0):
    """swing turns the forearm around the elbow, drag the hand around the wrist; in degrees."""
    shoulder, elbow, wrist = (416, 514), (433, 692), turned((678, 316), (433, 692), swing)
    raised = [elbow, (482, 596), turned((556, 440), elbow, swing), wrist]
    hand = [turned(turned(at, (433, 692), swing), wrist, drag * bend)
            for at, bend in [((678, 316), 0), ((712, 295), 0), ((744, 256), 1), ((762, 206), 1)]]
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


def tail(sway=0):
    root, middle, tip = (442, 776), (176, 706), (214 + sway, 316 + sway / 3)
    first = [root, (364, 892), (190, 880), middle]
    second = [middle, (162, 532), (310 + 1.4 * sway, 440), tip]
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
        card("Head", "head", -6, (440, 420), (220, 402), NECK, turn=-5),
        card("Left ear", at=(396, 178), turn=-30, **ear),
        card("Right ear", at=(598, 156), turn=22, mirrored=True, **ear),
        card("Shadow", "shadow", 9, (640, 120), (320, 60), (520, 1016)),
    ]


def keys(*pairs, ease=None):
    """Keys at frames; all but the last with handles, if there are any."""
    made = [{"frame": frame, "value": value} for frame, value in pairs]
    for key in made[:-1] if ease else []:
        key["ease"] = ease
    return made


def wave_keys():
    """Out and in again in 25 frames, four times over; the hand is dragged behind the arm."""
    out = waving_arm(swing=9, drag=26)
    into = waving_arm(swing=-5, drag=-14)
    going, coming = waving_arm(swing=3, drag=-16), waving_arm(swing=2, drag=28)
    leave, arrive = [0.5, 0, 0.8, 0.7], [0.2, 0.3, 0.5, 1]
    frames = {}
    for bone, name in (1, "Forearm"), (2, "Hand"):
        poses = []
        for start in range(0, 100, 25):
            turning_point = into if start else waving_arm()
            for frame, arm, ease in ((0, turning_point, leave), (6, going, arrive),
                                     (12, out, leave), (18, coming, arrive)):
                poses.append({"frame": start + frame, "value": arm[bone]["strip"]["pose"], "ease": ease})
        poses.append({"frame": 100, "value": waving_arm()[bone]["strip"]["pose"]})
        frames[name] = {"pose": poses}
    frames["Forearm"]["z"] = keys((0, [-8, -4]), (50, [-8, -3]), (100, [-8, -4]))
    frames["Right ear"] = {"z": [{"frame": 0, "value": -5, "ease": "hold"},
                                 {"frame": 37, "value": -2, "ease": "hold"},
                                 {"frame": 87, "value": -5}]}
    return frames


def add_nod_keys(bones, frames):
    """The head and its ears turn around the neck; the eyes shut twice."""
    for bone in bones:
        if bone["name"] in ("Head", "Left ear", "Right ear"):
            corners = bone["pieces"][0]["corners"]
            nodded = [point(*turned(corner, NECK, 4), 2) for corner in corners]
            nod = keys((0, [corners]), (50, [nodded]), (100, [corners]), ease=IN_AND_OUT)
            frames.setdefault(bone["name"], {})["corners"] = nod
    frames["Head"]["image"] = keys((0, "head"), (30, "head_blink"), (34, "head"), (78, "head_blink"),
                                   (81, "head"))


def animation(bones):
    sway = [tail(sway)[1]["strip"]["pose"] for sway in (0, -46, 0)]
    tip = {"Tail tip": {"pose": keys(*zip((0, 50, 100), sway), ease=IN_AND_OUT)}}
    frames = wave_keys() | tip
    add_nod_keys(bones, frames)
    return {"count": 100, "rate": 25, "bones": frames}


def main():
    legs = leg("Left", -1) + leg("Right", 1)
    bones = tail() + body() + legs + waving_arm() + resting_arm()
    write_scene("wave", [1000, 1080], IMAGES, bones, animation(bones))


if __name__ == "__main__":
    main()
