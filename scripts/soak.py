#!/usr/bin/env python3
"""Runs the program for as long as asked, live, and shows what a frame costs and what memory it keeps.

  scripts/soak.py PROGRAM people  [FRAMES]   20 people in groups who come, stay 1000 frames and go
  scripts/soak.py PROGRAM passing [FRAMES]   a new person at every frame, who stays for 20
  scripts/soak.py PROGRAM group   [FRAMES]   four people who stand together for ever
  scripts/soak.py PROGRAM messages [FRAMES]  as passing, in people messages with texts as ids, some missing, some late

Time is the processor's, so that a busy machine does not show. The last line says by how many bytes a frame the
memory grew over the second half.
"""

import os
import pathlib
import subprocess
import sys
import tempfile

ROWS = 10
LIST = 3  # mobiles in the list of a person: the latest and those before
TICK = os.sysconf("SC_CLK_TCK")
PAGE = os.sysconf("SC_PAGE_SIZE")


def people(frame):
    """Person, x and y of those who are there."""
    for place in range(20):
        stay, group = 1000, place // 3
        since = (frame + group * 137) % stay
        visit = (frame + group * 137) // stay
        yield visit * 20 + place, 4 * group + since * 0.03, place % 3 * 0.7 + (since % 7) * 0.01


def passing(frame):
    for person in range(max(0, frame - 20), frame):
        yield person, (person % 10) * 2 + (frame - person) * 0.05, (person % 7) * 1.5


def group(frame):
    for person in range(4):
        yield person, person % 2 * 0.7 + (frame % 5) * 0.01, person // 2 * 0.7 + (frame % 3) * 0.01


SCENES = {"people": people, "passing": passing, "group": group, "messages": passing}


class Lines:
    """The frames of a scene as lines of a scene file, in which every person has links and a list."""

    def __init__(self, scene):
        self.scene = scene
        self.next_id = 0
        self.seen = {}

    def at(self, frame):
        mobiles, actors, seen = [], [], {}
        for person, x, y in self.scene(frame):
            before = self.seen.get(person, ())
            self.next_id += 1
            fathers = f'{{"id": {before[-1]}, "reliability": 0.9}}' if before else ""
            mobiles.append(
                f'{{"id": {self.next_id}, "type": "PERSON", "box2d": [{int(x * 20)}, {int(y * 20)}, 20, 50], '
                f'"box3d": [{x + .25:.3f}, {y + .25:.3f}, 1.7, {x - .25:.3f}, {y - .25:.3f}, 0], '
                f'"position": [{x:.3f}, {y:.3f}, 0], "fathers": [{fathers}]}}')
            seen[person] = (*before[1 - LIST:], self.next_id)
            actors.append(f'{{"id": {person}, "mobiles": [{", ".join(map(str, seen[person]))}]}}')
        self.seen = seen
        return (f'{{"frame": {frame}, "time": {frame / 10:.1f}, "mobiles": [{", ".join(mobiles)}], '
                f'"actors": [{", ".join(actors)}]}}\n')


class Messages:
    """The same as people messages, 25 a second; some never come, some come behind the next."""

    def __init__(self, scene):
        self.scene = scene
        self.late = ""

    def at(self, frame):
        who = ", ".join(f'{{"id": "guest-{person}", "x": {x:.3f}, "y": {y:.3f}}}' for person, x, y in self.scene(frame))
        line = f'{{"time": {frame / 25:.2f}, "frame": {frame}, "people": [{who}]}}\n'
        if frame % 1000 == 500:
            return ""
        if frame % 1000 == 700:
            self.late = line
            return ""
        line, self.late = line + self.late, ""
        return line


def resident(process):
    return int(pathlib.Path(f"/proc/{process.pid}/statm").read_text().split()[1]) * PAGE


def seconds(process):
    fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICK


def main():
    if len(sys.argv) < 3 or sys.argv[2] not in SCENES:
        sys.exit(__doc__)
    program, scene = str(pathlib.Path(sys.argv[1]).resolve()), sys.argv[2]
    frames = int(sys.argv[3]) if len(sys.argv) > 3 else 10_000_000
    block = max(1, frames // ROWS)
    parameters = pathlib.Path(__file__).resolve().parent.parent / "samples/parameters/walking.txt"
    lines = (Messages if scene == "messages" else Lines)(SCENES[scene])
    print(f"{'frame':>10} {'resident MiB':>13} {'ms a frame':>11}")
    memory = []
    with tempfile.TemporaryDirectory() as folder:
        process = subprocess.Popen(
            [program, "run", "-", "--parameters", str(parameters), "--output", "/dev/null", "--actors", "/dev/null",
             "--events", "/dev/null", "--diagnostics", "none", "--mobile-dump", "none", "--quiet"],
            cwd=folder, stdin=subprocess.PIPE)
        spent = 0.0
        for first in range(1, ROWS * block + 1, block):
            for frame in range(first, first + block):
                process.stdin.write(lines.at(frame).encode())
            process.stdin.flush()
            memory.append(resident(process))
            now = seconds(process)
            print(f"{first + block - 1:>10} {memory[-1] / 2**20:>13.1f} {1000 * (now - spent) / block:>11.3f}", flush=True)
            spent = now
        process.stdin.close()
        status = process.wait()
    half = len(memory) // 2
    print(f"{(memory[-1] - memory[half]) / (block * (len(memory) - 1 - half)):.1f} bytes a frame")
    return status


if __name__ == "__main__":
    sys.exit(main())
