"""Runs `tarvo` under full disks, signals, killed child processes, resource limits, closed streams, and with damaged or
unusual files. Reports lost or damaged files, false success, crashes, hangs and leftovers.

A seed chooses what each run does. --seed and --run repeat a finding, except for the exact moment of a signal. What a
run started is ended with it. `scripts/torture` builds what is needed and calls this.
"""
import argparse
import json
import os
import random
import resource
import shutil
import signal
import stat
import struct
import subprocess
import sys
import tempfile
import time
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MARK = "TARVO_TORTURE_RUN"  # in the environment of all that a run starts, by which what is left is found
LIMIT = 120  # seconds that any command here may take
CODES = {0, 1, 2, 3, 4, 5, 130}  # the exit codes that `tarvo --help` lists
OLD = b"the user's older file\n"


class Result:
    """How a command ended: `code` is negative for a signal, None if it was still there at the limit."""

    def __init__(self, code, out, err):
        self.code, self.out, self.err = code, out, err


class Run:
    """One attack in a folder of its own. `found` collects what must not be."""

    def __init__(self, tarvo, number, rng, folder):
        self.tarvo, self.number, self.rng, self.folder = tarvo, number, rng, Path(folder)
        self.found = []
        self.mark = f"{os.getpid()}-{number}"

    def expect(self, holds, text):
        if not holds:
            self.found.append(text)

    def start(self, *words, limits=None, stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
              prepare=None):
        def before():
            signal.signal(signal.SIGINT, signal.SIG_DFL)  # a background shell has it ignored
            for what, amount in (limits or {}).items():
                resource.setrlimit(what, (amount, amount))
            if prepare:
                prepare()

        environment = dict(os.environ, **{MARK: self.mark})
        process = subprocess.Popen([self.tarvo, *map(str, words)], cwd=self.folder, env=environment, stdin=stdin,
                                   stdout=stdout, stderr=stderr, start_new_session=True, preexec_fn=before)
        process.may_die_of = set()  # signals that a command need not survive
        process.may_be_silent = False  # there may be nowhere to say why
        return process

    def call(self, *words, **how):
        """Runs a command to its end and holds it to what is always so."""
        return self.finish(self.start(*words, **how), words)

    def finish(self, process, words):
        try:
            out, err = process.communicate(timeout=LIMIT)
            code = process.returncode
        except subprocess.TimeoutExpired:
            self.end_all()
            out, err = process.communicate()
            code = None
        line = " ".join(map(str, words))
        self.expect(code is not None, f"hung: {line}")
        if code is not None and -code not in process.may_die_of:
            self.expect(code in CODES, f"ended with {code}: {line}\n{(err or b'')[-400:].decode(errors='replace')}")
            said_why = process.stderr is None or bool(err and err.strip()) or code in (0, 1, 130)
            self.expect(said_why or process.may_be_silent, f"ended with {code} without a message: {line}")
        return Result(code, out or b"", err or b"")

    def left(self):
        """The processes of this run that are still there."""
        mine = []
        for entry in Path("/proc").iterdir():
            if not entry.name.isdigit():
                continue
            try:
                if f"{MARK}={self.mark}".encode() in (entry / "environ").read_bytes().split(b"\0"):
                    if (entry / "stat").read_text().rsplit(")", 1)[1].split()[0] != "Z":
                        mine.append(int(entry.name))
            except OSError:
                continue
        return mine

    def end_all(self):
        for process in self.left():
            try:
                os.kill(process, signal.SIGKILL)
            except OSError:
                pass

    def expect_nothing_left(self, timeout=5.0):
        deadline = time.monotonic() + timeout
        while self.left() and time.monotonic() < deadline:
            time.sleep(0.05)
        self.expect(not self.left(), "processes are left")
        self.end_all()
        parts = [str(path) for path in self.folder.rglob("*.part*")]
        self.expect(not parts, f"left behind: {parts}")


# ---- What is whole.


def is_whole_png(data):
    """Chunks with good checksums, from the header to the end, whose data inflate to the header's size."""
    try:
        return has_all_rows(data)
    except (zlib.error, struct.error, TypeError):
        return False


def has_all_rows(data):
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        return False
    at, pixels, header = 8, b"", None
    while at + 12 <= len(data):
        size, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + size]
        if len(body) != size or struct.unpack(">I", data[at + 8 + size:at + 12 + size])[0] != zlib.crc32(kind + body):
            return False
        header = body if kind == b"IHDR" else header
        pixels += body if kind == b"IDAT" else b""
        at += 12 + size
        if kind == b"IEND":
            width, height, depth, colour = struct.unpack(">IIBB", header[:10])
            channels = {0: 1, 2: 3, 4: 2, 6: 4}.get(colour, 1)
            row = (width * channels * depth + 7) // 8 + 1
            return at == len(data) and len(zlib.decompress(pixels)) == row * height
    return False


def frames_of_movie(path):
    """The frames that a decoder finds in a movie; -1 if it cannot read it to the end."""
    probe = subprocess.run(["ffprobe", "-v", "error", "-count_frames", "-select_streams", "v:0", "-show_entries",
                            "stream=nb_read_frames", "-of", "csv=p=0", path], capture_output=True, text=True,
                           timeout=LIMIT)
    words = probe.stdout.strip().strip(",")
    return int(words) if probe.returncode == 0 and not probe.stderr.strip() and words.isdigit() else -1


def is_whole(path, frames):
    if path.suffix == ".png":
        return is_whole_png(path.read_bytes())
    return frames_of_movie(path) == frames


def expect_old_or_whole(run, path, frames, code, context):
    """An output holds either the user's older file or a whole new one, and success means the latter."""
    if not path.exists():
        run.expect(False, f"{path.name} is gone (exit {code}): {context}")
    elif path.read_bytes() == OLD:
        run.expect(code != 0, f"success, but nothing new in {path.name}: {context}")
    else:
        run.expect(is_whole(path, frames), f"{path.name} is neither the old file nor whole (exit {code}): {context}")


# ---- The attacks: each takes a run and fills in what it finds.

SCENE = ROOT / "examples/wave/wave.json"


def outputs(run):
    """A command that makes something, with its output and how many frames that holds."""
    frames = run.rng.randint(2, 4)
    first = run.rng.randint(0, 40)
    span = f"{first}-{first + frames - 1}"
    small = ["--scale", f"1/{run.rng.choice([4, 6])}"]
    jobs = ["--jobs", run.rng.choice([1, 2])]
    return run.rng.choice([
        (["render", SCENE, "-o", "o.png", *small], "o.png", 1),
        (["render", SCENE, "-o", "o.gif", "--frames", span, *small, *jobs], "o.gif", frames),
        (["render", SCENE, "-o", "o.webm", "--frames", span, *small, *jobs], "o.webm", frames),
        (["render", SCENE, "-o", "o.mp4", "--frames", span, *small, *jobs], "o.mp4", frames),
        (["render", SCENE, "-o", "f.%04d.png", "--frames", span, *small, *jobs], f"f.{first:04d}.png", 1),
        (["sheet", SCENE, "-o", "o.png", "--frames", span, "--cell", 64], "o.png", 1),
    ])


def job_over_older_file(run):
    """A command that makes something in place of an older file, and a check of what it left: exit code, context."""
    words, name, frames = outputs(run)
    target = run.folder / name
    target.write_bytes(OLD)

    def expect_intact_output(code, context):
        expect_old_or_whole(run, target, frames, code, f"{context}, {words}")
        run.expect_nothing_left()

    return words, expect_intact_output


def full_disk(run):
    """The disk fills up: a file system of a few kilobytes where one may be mounted, a limit on files elsewhere."""
    words, name, frames = outputs(run)
    size = run.rng.choice([4, 8, 16, 32, 64]) * 1024
    disk = run.folder / "disk"
    disk.mkdir()
    mounted = os.geteuid() == 0 and subprocess.run(
        ["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", disk], capture_output=True).returncode == 0
    try:
        (disk / name).write_bytes(OLD)
        words = [f"disk/{word}" if word in (name, "f.%04d.png") else word for word in words]
        result = run.call(*words, limits=None if mounted else {resource.RLIMIT_FSIZE: size})
        expect_old_or_whole(run, disk / name, frames, result.code, f"{size} bytes, {words}")
        run.expect_nothing_left()
    finally:
        if mounted:
            subprocess.run(["umount", "-l", disk], check=True)


def signals(run):
    """A signal at a random moment, to the command alone or, as from a terminal, to its whole group."""
    words, expect_intact_output = job_over_older_file(run)
    process = run.start(*words)
    time.sleep(run.rng.uniform(0, 1.5))
    number = run.rng.choice([signal.SIGINT, signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
    try:
        (os.killpg if run.rng.random() < 0.5 else os.kill)(process.pid, number)
    except ProcessLookupError:
        pass
    # Before the command listens, which on a busy machine takes its time, a signal ends it as it ends any program.
    process.may_die_of = {number}
    result = run.finish(process, words)
    expect_intact_output(result.code, number.name)


def killed(run):
    """The command, or one of its children, is killed outright: what is left is old or whole, and no process."""
    words, expect_intact_output = job_over_older_file(run)
    process = run.start(*words)
    time.sleep(run.rng.uniform(0.05, 1.5))
    whole_command = run.rng.random() < 0.4
    victims = [process.pid] if whole_command else [pid for pid in run.left() if pid != process.pid]
    if victims:
        try:
            os.kill(run.rng.choice(victims), run.rng.choice([signal.SIGKILL, signal.SIGSEGV]))
        except ProcessLookupError:
            pass
    process.may_die_of = {signal.SIGKILL, signal.SIGSEGV} if whole_command else set()
    result = run.finish(process, words)
    if whole_command:  # it cannot remove what it was making, but its children must go
        for part in run.folder.rglob("*.part*"):
            part.unlink()
    expect_intact_output(result.code, "killed")


def others_may_run(program):
    """Whether a user without rights reaches the program and the samples."""
    places = [place for path in (Path(program).resolve(), SCENE) for place in (path, *path.parents)]
    return all(place.stat().st_mode & (stat.S_IROTH if place == SCENE else stat.S_IXOTH) for place in places)


def limits(run):
    """Little memory, few open files, no more processes or threads."""
    words, expect_intact_output = job_over_older_file(run)
    which = run.rng.choice([
        {resource.RLIMIT_AS: run.rng.randint(64, 900) * 1024 * 1024},
        {resource.RLIMIT_NOFILE: run.rng.randint(8, 40)},
        {resource.RLIMIT_FSIZE: run.rng.randint(1, 40) * 1000},
    ])
    prepare = None
    if os.geteuid() == 0 and run.rng.random() < 0.3 and others_may_run(run.tarvo):  # root has no limit of processes
        which = {resource.RLIMIT_NPROC: run.rng.randint(0, 3)}
        os.chmod(run.folder, 0o777)
        prepare = lambda: os.setresuid(65534, 65534, 65534)
    result = run.call(*words, limits=which, prepare=prepare)
    expect_intact_output(result.code, which)


def streams(run):
    """Streams that are closed, full or inherited in a bad state."""
    words, expect_intact_output = job_over_older_file(run)
    with open("/dev/full", "wb") as full:
        how = run.rng.choice([{"stdout": full}, {"stderr": full},
                               {"prepare": lambda: os.close(0)}, {"prepare": lambda: os.close(1)},
                               {"prepare": lambda: os.close(2)},
                               {"prepare": lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN)}])
        process = run.start(*words, **how)
        process.may_be_silent = "prepare" in how
        result = run.finish(process, words)
        expect_intact_output(result.code, list(how))
        if "stdout" in how:
            words = run.rng.choice([["--help"], ["check", "--list"], ["explain", SCENE]])
            code = run.finish(run.start(*words, stdout=full), words).code
            run.expect(code != 0, f"success though standard output was full: {words}")
            run.expect_nothing_left()


def chunk(kind, body):
    return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))


def mutated_picture(run):
    data = bytearray((ROOT / "examples/wave" / run.rng.choice(["hand_open.png", "foot.png", "ear.png"])).read_bytes())
    way = run.rng.randint(0, 3)
    if way == 0:  # any bytes
        for _ in range(run.rng.randint(1, 8)):
            data[run.rng.randrange(len(data))] = run.rng.randrange(256)
    elif way == 1:  # cut short
        del data[run.rng.randrange(len(data)):]
    elif way == 2:  # a header that claims much, with a good checksum
        side = run.rng.choice([1, 16384, 65535, 2**31 - 1])
        header = struct.pack(">IIBBBBB", side, run.rng.choice([1, side]), run.rng.choice([1, 8, 16]),
                             run.rng.choice([0, 2, 3, 4, 6]), 0, 0, run.rng.choice([0, 1]))
        data = bytearray(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(b"")) +
                         chunk(b"IEND", b""))
    else:  # data that inflate to far more than the header says
        header = struct.pack(">IIBBBBB", 4, 4, 8, 6, 0, 0, 0)
        packer = zlib.compressobj(9)
        bomb = b"".join(packer.compress(bytes(2**20)) for _ in range(64)) + packer.flush()
        data = bytearray(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", bomb) + chunk(b"IEND", b""))
    (run.folder / "i.png").write_bytes(data)
    (run.folder / "s.json").write_text(json.dumps({
        "size": [64, 64], "images": {"i": "i.png"},
        "bones": [{"name": "A", "image": "i", "strip": {"rest": [[2, 8], [14, 8]], "width": 8, "pieces": 2, "pose": [[8, 8], [56, 56]]}}]}))
    limit = {resource.RLIMIT_AS: 3 * 2**30}
    run.call("render", "s.json", "-o", "o.png", limits=limit)
    run.call("diff", "i.png", SCENE.parent / "ear.png", limits=limit)
    run.expect((run.folder / "i.png").read_bytes() == bytes(data), "an input was changed")
    run.expect_nothing_left()


def mutated_scene(run):
    source = run.rng.choice([SCENE, ROOT / "examples/cape/cape.json", ROOT / "examples/knot/knot.json",
                              run.rng.choice(sorted((ROOT / "examples/broken").glob("*.json"))),
                              run.rng.choice(sorted((ROOT / "tests/fuzz/corpus/scene").glob("*.json")))])
    text = bytearray(source.read_bytes())
    for _ in range(run.rng.randint(1, 6)):
        at = run.rng.randrange(len(text))
        way = run.rng.randint(0, 5)
        if way == 0:
            text[at] = run.rng.randrange(256)
        elif way == 1:
            del text[at:at + run.rng.randint(1, 20)]
        elif way == 2:
            text[at:at] = text[at:at + run.rng.randint(1, 60)]
        elif way == 3:
            text[at:at] = run.rng.choice([b"[" * 60000, b"\0", b"\x1b[2J", b'"' + b"a" * 70000 + b'"'])
        else:
            text[at:at] = run.rng.choice([b"1e308", b"-1", b"0", b"99999999999", b"null", b"1e-320", b"{}", b"[]"])
    for image in [*source.parent.glob("*.png"), *(ROOT / "examples/broken").glob("*.png")]:
        if not (run.folder / image.name).exists():
            (run.folder / image.name).symlink_to(image)
    (run.folder / "s.json").write_bytes(text)
    limit = {resource.RLIMIT_AS: 4 * 2**30}
    command = run.rng.choice([["render", "s.json", "-o", "o.png", "--scale", "1/8"], ["explain", "s.json"],
                               ["flips", "s.json"]])
    result = run.call(*command, limits=limit)
    for stream in (result.out, result.err):
        raw = [byte for byte in stream if byte < 32 and byte not in b"\n\r\t"]
        run.expect(not raw, f"control characters reach the terminal: {command}")
    run.expect((run.folder / "s.json").read_bytes() == bytes(text), "the scene was changed")
    run.expect_nothing_left()


def odd_files(run):
    """Outputs that are inputs, links, pipes, devices or folders."""
    folder = run.folder
    shutil.copytree(SCENE.parent, folder / "rig", symlinks=True)
    inputs = {path: path.read_bytes() for path in sorted((folder / "rig").iterdir()) if path.is_file()}
    scene = folder / "rig/wave.json"
    victim = run.rng.choice([path for path in inputs if path.suffix == ".png"] + [scene])
    way = run.rng.randint(0, 6)
    output = folder / "o.png"
    if way == 0:
        output = victim
    elif way == 1:
        output.symlink_to(victim)
    elif way == 2:
        os.link(victim, output)
    elif way == 3:
        output.mkdir()
    elif way == 4:
        os.mkfifo(output)
    elif way == 5:
        output.symlink_to(folder / "real.png")
        (folder / "real.png").write_bytes(OLD)
    else:
        output.write_bytes(OLD)
        output.chmod(0o640)
    reader = subprocess.Popen(["cat", output], stdout=subprocess.DEVNULL) if way == 4 else None
    result = run.call("render", scene, "-o", output, "--scale", "1/6")
    if reader:
        reader.kill()
        reader.wait()
        run.expect(stat.S_ISFIFO(output.stat().st_mode), "a pipe was replaced by a file")
    if way == 3:
        run.expect(result.code != 0 and output.is_dir(), f"a folder as the output ended with {result.code}")
    if way == 5:
        run.expect(output.is_symlink(), "a link was replaced by a file")
        expect_old_or_whole(run, folder / "real.png", 1, result.code, "through a link")
    if way == 6:
        run.expect(stat.S_IMODE(output.stat().st_mode) == 0o640, "the file's mode was changed")
    if way in (0, 1, 2):
        run.expect(result.code == 2, f"an output that is an input ended with {result.code}")
    for path, data in inputs.items():
        run.expect(path.read_bytes() == data, f"the input {path.name} was changed (way {way})")
    odd = run.rng.choice(["/dev/zero", "/dev/null", ".", "missing.json", "a\nb.json"])
    run.expect(run.call("render", odd, "-o", "p.png", limits={resource.RLIMIT_AS: 4 * 2**30}).code != 0,
               f"success with {odd!r} as the scene")
    run.expect_nothing_left()


ATTACKS = [full_disk, signals, killed, limits, streams, mutated_picture, mutated_scene, odd_files]


def attack(tarvo, seed, number, only):
    """One run; what it found."""
    rng = random.Random(f"{seed}/{number}")
    chosen = [each for each in ATTACKS if only in ("", each.__name__)]
    kind = chosen[number % len(chosen)]
    with tempfile.TemporaryDirectory(prefix="tarvo-torture-") as folder:
        run = Run(tarvo, number, rng, folder)
        try:
            kind(run)
        except Exception as fault:  # so that the run is named
            run.found.append(f"the attack itself failed: {fault!r}")
        finally:
            run.end_all()
    return kind.__name__, run.found


def main():
    parser = argparse.ArgumentParser(prog="scripts/torture", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("minutes", nargs="?", type=float, default=5, help="how long to go on (5)")
    parser.add_argument("--seed", type=int, default=1, help="draws everything that is left to chance (1)")
    parser.add_argument("--only", default="", choices=["", *(each.__name__ for each in ATTACKS)],
                        help="one kind of attack")
    parser.add_argument("--run", type=int, help="the run of this number alone, to repeat a finding")
    parser.add_argument("--tarvo", default=str(ROOT / "build/linux/bin/tarvo"), help="the command under attack")
    options = parser.parse_args()
    deadline = time.monotonic() + options.minutes * 60
    counts, findings = {each.__name__: 0 for each in ATTACKS}, 0
    number = options.run if options.run is not None else 0
    while True:
        name, found = attack(options.tarvo, options.seed, number, options.only)
        counts[name] += 1
        for text in found:
            findings += 1
            print(f"FOUND in {name}: {text}")
        if found:
            only = f" --only {options.only}" if options.only else ""
            print(f"  again: scripts/torture --seed {options.seed}{only} --run {number}", flush=True)
        number += 1
        if options.run is not None or time.monotonic() > deadline:
            break
    ran = ", ".join(f"{count} {name}" for name, count in counts.items() if count)
    print(f"{sum(counts.values())} runs ({ran}), {findings} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
