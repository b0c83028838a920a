"""What the samples' scripts share: points, stiff bones, and writing the scene file."""

import json
import math
import pathlib


def point(x, y, digits=6):
    """A point as scenes give it, in pixels; whole numbers without a fraction."""
    rounded = (round(x, digits) + 0.0, round(y, digits) + 0.0)
    return [int(v) if v == int(v) else v for v in rounded]


def card(name, image, z, size, pivot, at, scale=1, turn=0, mirrored=False):
    """A stiff bone of one piece: the whole image of this size, but for two pixels all round.

    The image's pivot lies at a place of the layer, turned clockwise by degrees.
    """
    cos = scale * math.cos(math.radians(turn))
    sin = scale * math.sin(math.radians(turn))
    uv = [[2, 2], [size[0] - 2, 2], [size[0] - 2, size[1] - 2], [2, size[1] - 2]]
    corners = []
    for u, v in uv:
        x, y = (pivot[0] - u if mirrored else u - pivot[0]), v - pivot[1]
        corners.append(point(at[0] + x * cos - y * sin, at[1] + x * sin + y * cos, 2))
    piece = {"corners": corners, "uv": uv, "t": 0.5}
    return {"name": name, "image": image, "z": z, "pieces": [piece]}


def one_a_line(items, brackets, indent):
    """JSON items, a line each, between brackets."""
    space = " " * indent
    return brackets[0] + f"\n{space}  " + f",\n{space}  ".join(items) + f"\n{space}" + brackets[1]


def frames_text(frames):
    """The frames of an animation with the keys of one bone to a line."""
    members = [f"{json.dumps(key)}: {json.dumps(value)}" for key, value in frames.items() if key != "bones"]
    keys = [f"{json.dumps(bone)}: {json.dumps(tracks)}" for bone, tracks in frames["bones"].items()]
    return one_a_line(members + ['"bones": ' + one_a_line(keys, "{}", 4)], "{}", 2)


def write_scene(name, size, images, bones, frames=None, **others):
    """Writes NAME/NAME.json beside this file; each image's file is named as the image.

    One bone stands to a line, so that a change to one bone is a change to one line.
    """
    files = {image: f"{image}.png" for image in images}
    lines = [f'  "size": {json.dumps(size)}', f'  "images": {json.dumps(files)}']
    lines += [f"  {json.dumps(key)}: {json.dumps(value)}" for key, value in others.items()]
    lines.append('  "bones": ' + one_a_line([json.dumps(b) for b in bones], "[]", 2))
    if frames:
        lines.append('  "frames": ' + frames_text(frames))
    path = pathlib.Path(__file__).with_name(name) / f"{name}.json"
    path.write_text("{\n" + ",\n".join(lines) + "\n}\n")
    print(f"{path.name}: {len(bones)} bones")
