#!/usr/bin/env python3
"""Attacks the program at random: kills, full disks, readers who leave, damaged input, threads.

Whatever happens, it must neither crash nor hang, say what is wrong in one line, and leave files that hold
what is whole. Each attack has a number; the same --seed makes the same attacks.
"""

import argparse
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

PATIENCE = 60  # seconds, for a build with sanitizers on a busy machine
GOOD_ENDS = {0, 1, 2, 3, 4}
SANITIZER = 99
FRAMES = 150


class Failed(Exception):
    """What the program must not do."""


class Torture:
    def __init__(self, program, folder, rng):
        self.program = str(pathlib.Path(program).resolve())
        self.trackers = pathlib.Path(program).resolve().with_name("library_tests")
        self.folder = folder
        self.random = rng
        self.environment = dict(os.environ, ASAN_OPTIONS=f"exitcode={SANITIZER}",
                                UBSAN_OPTIONS=f"halt_on_error=1:exitcode={SANITIZER}")
        self.scene = folder / "scene"
        self.disk = folder / "disk"
        self.disk.mkdir()
        parameters = pathlib.Path(__file__).resolve().parent.parent / "samples/parameters/video.txt"
        shutil.copy(parameters, folder / "p.txt")
        self.must(["simulate", "--output", "scene", "--frames", str(FRAMES), "--people", "12", "--images", "--quiet"])
        begin = time.monotonic()
        self.must(self.run_with("first"))
        self.longest = time.monotonic() - begin  # kills come at any moment of a run

    def attacks(self):
        """All that can be done here."""
        attacks = [self.kill, self.stop, self.limit, self.leave, self.race, self.damage, self.damage]
        if self.can_mount():
            attacks.append(self.fill)
        else:
            print("NOT attacked by a full disk: mounting one needs the rights of root", file=sys.stderr)
        if self.trackers.exists():
            attacks.append(self.threads)
        else:
            print(f"NOT attacked by hosts in threads: there is no {self.trackers}", file=sys.stderr)
        return attacks

    def start(self, arguments, **more):
        return subprocess.Popen([self.program, *arguments], cwd=self.folder, env=self.environment,
                                stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, **more)

    def end_of(self, process):
        try:
            _, errors = process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired as hang:
            process.kill()
            raise Failed(f"hangs: {process.args}") from hang
        text = errors.decode(errors="replace")
        if process.returncode == SANITIZER or "unexpected:" in text:
            raise Failed(f"{process.args} says\n{text[-3000:]}")
        return process.returncode, text

    def must(self, arguments):
        status, text = self.end_of(self.start(arguments, stdout=subprocess.DEVNULL))
        if status != 0:
            raise Failed(f"{arguments} ends with {status}: {text}")

    def run_with(self, name, scene="scene/scene.jsonl"):
        """A run that writes everything that there is, each file called after `name`."""
        pictures = f"{name}.mp4" if self.random.random() < 0.7 else f"{name}-pictures"
        return ["run", scene, "--parameters", "p.txt", "--quiet", "--output", f"{name}.jsonl",
                "--actors", f"{name}-actors.jsonl", "--events", f"{name}-events.jsonl", "--csv", f"{name}.csv",
                "--mot", f"{name}.mot", "--sqlite", f"{name}.sqlite", "--graph", f"{name}.dot",
                "--video", pictures, "--diagnostics", f"{name}-lines.txt", "--mobile-dump", f"{name}-dump.txt",
                "--status", f"{name}-status.json"]

    def clean(self, name):
        for path in self.folder.glob(f"{name}*"):
            shutil.rmtree(path) if path.is_dir() else path.unlink()

    def check_files(self, name):
        for path in self.folder.glob(f"{name}*"):
            if path.is_fifo():
                continue
            if path.is_dir():
                for picture in path.glob("[0-9]*.png"):
                    if not picture.read_bytes().endswith(b"IEND\xaeB`\x82"):
                        raise Failed(f"{picture} is cut")
            elif path.suffix == ".sqlite" and path.stat().st_size > 0:
                with sqlite3.connect(path) as database:
                    if database.execute("PRAGMA integrity_check").fetchone() != ("ok",):
                        raise Failed(f"{path} is damaged")
            elif path.suffix == ".mp4" and path.stat().st_size > 0:
                self.check_film(path)
            elif path.suffix == ".dot" and path.stat().st_size > 0 and not path.read_text().endswith("}\n"):
                raise Failed(f"{path} is cut")
            elif path.suffix in (".jsonl", ".csv", ".mot", ".dot", ".txt"):
                self.check_lines(path)

    def check_film(self, path):
        """All but the last second of a film, and what was still to be drawn, can be seen."""
        wanted = self.lines(path.with_suffix(".jsonl")) - 25 - 32
        _, text = self.end_of(self.start(
            ["run", "scene/scene.jsonl", "--images", str(path), "--parameters", "p.txt", "--output", "seen.jsonl",
             "--video", "seen-pictures", "--quiet", "--mobile-dump", "none", "--diagnostics", "none"],
            stdout=subprocess.DEVNULL))
        seen = re.search(r"has only (\d+) frames", text)
        if wanted > 0 and (int(seen.group(1)) if seen else 0 if text else wanted) < wanted:
            raise Failed(f"{path} shows too little: {wanted} pictures are expected; {text}")

    @staticmethod
    def check_lines(path):
        text = path.read_text(errors="replace")
        if text and not text.endswith("\n"):
            raise Failed(f"{path} ends in the middle of a line")
        if path.suffix == ".jsonl":
            for line in text.splitlines():
                json.loads(line)

    def lines(self, name):
        return len((self.folder / name).read_text().splitlines())

    def kill(self):
        self.clean("killed")
        process = self.start(self.run_with("killed"), stdout=subprocess.DEVNULL)
        time.sleep(self.random.uniform(0.0, self.longest))
        process.kill()
        process.communicate()
        self.check_files("killed")

    def stop(self):
        self.clean("stopped")
        number = self.random.choice([signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
        process = self.start(self.run_with("stopped"), stdout=subprocess.DEVNULL)
        time.sleep(self.random.uniform(0.0, self.longest))
        process.send_signal(number)
        status, text = self.end_of(process)
        if status not in (0, 128 + number, -number):  # the last before the program catches signals
            raise Failed(f"stopped by {number} it ends with {status}: {text}")
        self.check_files("stopped")

    def limit(self):
        self.clean("limited")
        size = self.random.randrange(0, 600_000)
        process = self.start(self.run_with("limited"),
                             stdout=subprocess.DEVNULL,
                             preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)))
        self.check_full(process, f"with files of at most {size} bytes")
        self.check_files("limited")

    def check_full(self, process, where):
        status, text = self.end_of(process)
        if status not in (0, 4) or (status == 4 and len(text.splitlines()) != 1):
            raise Failed(f"{process.args} {where} ends with {status}: {text}")
        return status

    def fill(self):
        """A disk of some kilobytes, which is full sooner or later."""
        self.leave_disk()
        size = self.random.choice([8, 64, 300, 1000, 2000])
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "tmpfs", self.disk], check=True)
        command = self.random.choice([
            self.run_with("disk/full"), self.run_with("disk/full"), self.run_with("disk/full"),
            ["simulate", "--output", "disk/full", "--images", "--frames", "40", "--quiet"],
            ["convert", "scene/scene.jsonl", "--output", "disk/full.jsonl"],
            ["events", "first.jsonl", "--input", "scene/scene.jsonl", "--output", "disk/full.jsonl",
             "--sqlite", "disk/full.sqlite", "--persons", "disk/full.csv"],
            ["report", "scene/scene.jsonl", "first.jsonl", "--output", "disk/full.html"],
            ["evaluate", "first.jsonl", "--truth", "scene/truth.jsonl", "--errors", "disk/full.csv"]])
        status = self.check_full(self.start(command, stdout=subprocess.DEVNULL), f"on a disk of {size} kB")
        self.check_files("disk/full")
        if status == 0 and command[0] == "run" and self.lines("disk/full.jsonl") != FRAMES:
            raise Failed(f"on a disk of {size} kB groups are lost without a word")

    def leave_disk(self):
        if self.disk.is_mount():
            subprocess.run(["umount", "--lazy", self.disk], check=True)  # a database may still be open

    def can_mount(self):
        mount = ["mount", "-t", "tmpfs", "tmpfs", self.disk]
        return os.geteuid() == 0 and subprocess.run(mount, stderr=subprocess.DEVNULL, check=False).returncode == 0

    def threads(self):
        """Several hosts in one process, each in a thread: what each gets is what it gets alone."""
        seed = self.random.randrange(1, 100_000)
        tests = subprocess.run([self.trackers, "--gtest_filter=Trackers.GiveTheSameInThreads", "--gtest_shuffle",
                                f"--gtest_random_seed={seed}"], env=self.environment, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, timeout=PATIENCE, check=False)
        if tests.returncode != 0:
            raise Failed(f"{tests.args} ends with {tests.returncode}: {tests.stdout.decode(errors='replace')[-3000:]}")

    def leave(self):
        """Somebody reads one of the outputs, slowly, and goes; the others are whole."""
        self.clean("left")
        option = self.random.choice(["--actors", "--events", "--csv", "--mot", "--graph", "--diagnostics",
                                     "--mobile-dump", "--video"])
        arguments = self.run_with("left")
        pipe = "left-pipe" + (".mkv" if option == "--video" else "")
        arguments[arguments.index(option) + 1] = pipe
        os.mkfifo(self.folder / pipe)
        process = self.start(arguments, stdout=subprocess.DEVNULL)
        with open(self.folder / pipe, "rb") as reader:
            for _ in range(self.random.randrange(0, 30)):
                reader.read(self.random.randrange(0, 10_000))
                time.sleep(self.random.choice([0.0, 0.01]))
        status, text = self.end_of(process)
        if status not in (0, 5):
            raise Failed(f"when the reader of {option} leaves it ends with {status}: {text}")
        if self.lines("left.jsonl") != FRAMES:
            raise Failed(f"when the reader of {option} leaves the groups are not complete")
        self.check_files("left")

    def race(self):
        """Two runs write the same outputs at the same time: one is refused, the other's are whole."""
        self.clean("raced")
        arguments = self.run_with("raced")
        runs = [self.start(arguments, stdout=subprocess.DEVNULL) for _ in range(2)]
        ends = [self.end_of(run) for run in runs]
        if sorted(status for status, _ in ends) not in ([0, 4], [0, 0]):  # one after the other, if late
            raise Failed(f"two runs on the same outputs end with {ends}")
        if self.lines("raced.jsonl") != FRAMES:
            raise Failed("of two runs on the same outputs none is complete")
        self.check_files("raced")

    def damage(self):
        """One file of a command's is damaged; the command says so or copes."""
        names = ["scene/scene.jsonl", "first.jsonl", "first-actors.jsonl", "first-lines.txt", "first-dump.txt", "p.txt",
                 "scene/calibration.yml", "scene/truth.jsonl", "scene/context.json"]
        name = self.random.choice(names)
        data = bytearray((self.folder / name).read_bytes()[:200_000])
        for _ in range(self.random.randrange(1, 4)):
            self.damage_once(data)
        bad = self.folder / ("bad" + pathlib.Path(name).suffix)
        bad.write_bytes(data)
        here = lambda file: bad.name if file == name else file
        scene, groups = here("scene/scene.jsonl"), here("first.jsonl")
        commands = [
            ["check", scene, "--parameters", here("p.txt"), "--calibration", here("scene/calibration.yml")],
            ["run", scene, "--parameters", here("p.txt"), "--output", "damaged.jsonl", "--context",
             here("scene/context.json"), "--calibration", here("scene/calibration.yml"), "--quiet",
             "--mobile-dump", "none"],
            ["explain", here("first-lines.txt"), "--mobile-dump", here("first-dump.txt"), "--parameters", here("p.txt"),
             "--group", "0", "--uncertain", "9"],
            ["report", scene, here("first-actors.jsonl"), "--diagnostics", here("first-lines.txt"), "--parameters",
             here("p.txt"), "--truth", here("scene/truth.jsonl"), "--output", "r.html"],
            ["evaluate", groups, "--truth", here("scene/truth.jsonl")],
            ["events", groups, "--output", "damaged-events.jsonl"],
        ]
        for command in commands:
            if bad.name not in command:
                continue
            status, text = self.end_of(self.start(command, stdout=subprocess.DEVNULL))
            if status not in GOOD_ENDS:
                raise Failed(f"{command} ends with {status}: {text}")

    def damage_once(self, data):
        at = self.random.randrange(len(data)) if data else 0
        kind = self.random.randrange(5)
        if kind == 0:
            del data[at:]
        elif kind == 1:
            data[at:at + 1] = bytes([self.random.randrange(256)])
        elif kind == 2:
            del data[at:at + self.random.randrange(1, 50)]
        elif kind == 3:
            data[at:at] = data[at:at + self.random.randrange(1, 200)]
        else:
            data[at:at] = self.random.choice([b"1e999", b"-1", b"4294967296", b"9" * 30, b"\0", b"nan", b"}", b"]", b"\n"])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--minutes", type=float, default=2.0)
    parser.add_argument("--program", required=True)
    parser.add_argument("--keep", type=pathlib.Path, required=True, help="where the files of a failure go")
    parser.add_argument("--seed", type=int, default=int(time.time()))
    options = parser.parse_args()
    counts = {}
    with tempfile.TemporaryDirectory() as folder:
        torture = Torture(options.program, pathlib.Path(folder), random.Random(options.seed))
        attacks = torture.attacks()
        end = time.monotonic() + 60.0 * options.minutes
        while time.monotonic() < end:
            attack = torture.random.choice(attacks)
            try:
                attack()
            except (Failed, ValueError, sqlite3.Error, subprocess.TimeoutExpired) as failure:
                print(f"{attack.__name__} (seed {options.seed}): {failure}", file=sys.stderr)
                shutil.rmtree(options.keep, ignore_errors=True)
                shutil.copytree(folder, options.keep)
                return 1
            finally:
                torture.leave_disk()
            counts[attack.__name__] = counts.get(attack.__name__, 0) + 1
    print("survived " + ", ".join(f"{count} x {name}" for name, count in sorted(counts.items())))
    return 0


if __name__ == "__main__":
    sys.exit(main())
