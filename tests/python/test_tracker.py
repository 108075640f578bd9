"""The tracker beside a tracker of persons: against the program, in company, and on bad input."""

import io
import json
import os
import signal
import subprocess
import sys
import threading
import unittest
import xml.etree.ElementTree

import numpy

import grouptracker
from support import DATA, InFolder, frames_of, lines, read_lines, read_obsmat, walkers

# Frame numbers a second of the public sequences, for their own frame numbers.
RATES = {"seq_eth": 15.0, "seq_hotel": 25.0, "zara01": 25.0, "students03_first": 25.0, "cocktail_first": 1.0}


def run(tracker, frames, **more):
    """All steps, and all lines of the process."""
    steps, actors = [], []
    for ids, positions in frames:
        step = tracker.update(ids, positions, **more)
        if step:
            steps.append(step)
        actors.append(tracker.actors)
    return steps + tracker.finish(), actors


class SameAsTheProgram(InFolder):
    def compare(self, path, tracks, rate):
        """Groups, actors and diagnostics of a file and of the same rows, frame by frame."""
        self.run_program("run", path, "--rate", rate, "--output", "groups.jsonl", "--actors", "actors.jsonl",
                         "--diagnostics", "lines.txt", "--mobile-dump", "none", "--quiet")
        frames = list(frames_of(tracks))
        printed = io.StringIO()
        tracker = grouptracker.Tracker(rate=rate / (frames[1][0] - frames[0][0]), diagnostics=printed)
        steps, actors = [], []
        for number, ids, positions in frames:
            step = tracker.update(ids, positions, time=number / rate, frame=number)
            steps += [step] if step else []
            actors.append(tracker.actors)
        steps += tracker.finish()
        self.assertEqual(lines(steps), (self.folder / "groups.jsonl").read_text())
        written = read_lines(self.folder / "actors.jsonl")
        self.assertEqual(actors, written)
        self.assertEqual(printed.getvalue(), (self.folder / "lines.txt").read_text())
        self.assertEqual(grouptracker.read_groups(self.folder / "groups.jsonl"), steps)
        self.assertEqual(lines(grouptracker.track_steps(tracks, rate=rate)), lines(steps))

    def test_on_the_public_sequences(self):
        for name in RATES:
            with self.subTest(name):
                if not (DATA / name / "obsmat.txt").exists():
                    self.skipTest("this public sequence is not there")
                tracks = read_obsmat(DATA / name)
                self.compare(self.write_csv(tracks), tracks, RATES[name])

    def test_on_a_simulated_scene_with_faults(self):
        scene = grouptracker.simulate(seconds=30, rate=10, people=25, noise=0.02, missed=0.05, gaps=2, merges=2)
        tracks = {name: numpy.asarray(scene.tracks[name]) for name in ("frame", "id", "x", "y")}
        self.compare(self.write_csv(tracks), tracks, 10.0)

    def test_on_boxes_with_a_camera(self):
        folder = DATA / "pets2009_s2l1"
        camera = folder / "calibration_derived.yml"
        if not camera.exists():
            self.skipTest("the public sequences are not there")
        self.run_program("run", folder / "PETS2009-S2L1.xml", "--calibration", camera, "--rate", 7, "--output",
                         "groups.jsonl", "--actors", "actors.jsonl", "--diagnostics", "none", "--mobile-dump",
                         "none", "--quiet")
        tracker = grouptracker.Tracker(rate=7, calibration=camera, actors=True)
        steps, actors = [], []
        for frame in xml.etree.ElementTree.parse(folder / "PETS2009-S2L1.xml").getroot():
            people = frame.findall("./objectlist/object")
            boxes = [[float(p.find("box").get(key)) for key in ("xc", "yc", "w", "h")] for p in people]
            boxes = [[x - w / 2, y - h / 2, w, h] for x, y, w, h in boxes]
            number = int(frame.get("number"))
            step = tracker.update([int(p.get("id")) for p in people], boxes=boxes, time=number / 7, frame=number)
            steps += [step] if step else []
            actors.append(tracker.actors)
        self.assertEqual(lines(steps + tracker.finish()), (self.folder / "groups.jsonl").read_text())
        self.assertEqual(actors, read_lines(self.folder / "actors.jsonl"))


class Frames(unittest.TestCase):
    def test_have_one_step_each_in_order_at_a_constant_delay(self):
        tracker = grouptracker.Tracker(rate=10, look_ahead=2.0)
        seen = [tracker.update(*frame).frame for frame in walkers()]
        self.assertEqual(seen, [None] * 20 + list(range(1, 21)))
        self.assertEqual([step.frame for step in tracker.finish()], list(range(21, 41)))
        self.assertEqual(tracker.finish(), [])
        self.assertRaisesRegex(RuntimeError, "has finished", tracker.update, [], [])

    def test_are_decided_at_once_without_look_ahead(self):
        tracker = grouptracker.Tracker(rate=2.5, look_ahead=0)
        steps = [tracker.update(*frame) for frame in walkers()]
        self.assertEqual([step.frame for step in steps], list(range(1, 41)))
        self.assertEqual([group.members for group in steps[-1].groups], [[1, 2]])
        self.assertEqual(steps[-1].alone, [3])
        self.assertEqual(steps[-1].group_of([3, 2, 99, 1]).tolist(), [0, 1, 0, 1])
        self.assertEqual([event.kind for step in steps for event in step.events], ["created"])

    def test_that_took_longer_can_be_had_in_one_piece(self):
        tracker = grouptracker.Tracker(rate=10, look_ahead=2.0)
        for number, (ids, positions) in enumerate(walkers(20)):
            tracker.update(ids, positions, time=number / 10)
        self.assertEqual(tracker.update([], time=60).frame, 1)
        self.assertEqual([step.frame for step in tracker.decided()], list(range(2, 21)))
        self.assertEqual(tracker.decided(), [])

    def test_take_ids_in_any_order_and_from_any_array(self):
        expected, _ = run(grouptracker.Tracker(rate=2.5), walkers())
        turned = ((numpy.array(ids[::-1], dtype=numpy.float32), numpy.array(positions)[::-1])
                  for ids, positions in walkers())
        self.assertEqual(run(grouptracker.Tracker(rate=2.5), turned)[0], expected)
        objects = ((numpy.array([*map(numpy.int64, ids)], dtype=object), positions) for ids, positions in walkers())
        self.assertEqual(run(grouptracker.Tracker(rate=2.5), objects)[0], expected)

    def test_give_back_texts_as_ids(self):
        names = numpy.array(["nobody", "ann", "bob", "eve"])
        tracker = grouptracker.Tracker(rate=2.5, look_ahead=0)
        steps = [tracker.update(names[ids], positions) for ids, positions in walkers()]
        self.assertEqual([group.members for group in steps[-1].groups], [["ann", "bob"]])
        self.assertEqual(steps[-1].alone, ["eve"])
        self.assertEqual(steps[-1].group_of(["bob", "eve"]).tolist(), [1, 0])
        self.assertIn('"members": ["ann", "bob"]', steps[-1].line())

    def test_take_corners_and_a_homography(self):
        matrix = numpy.diag([0.01, 0.01, 1.0])
        sizes = grouptracker.Tracker(rate=2.5, calibration=matrix)
        corners = grouptracker.Tracker(rate=2.5, calibration=matrix, box_format="xyxy")
        for ids, positions in walkers():
            left_top = numpy.array(positions) * 100
            sizes.update(ids, boxes=numpy.hstack([left_top, [[40, 100]] * 3]))
            corners.update(ids, boxes=numpy.hstack([left_top, left_top + [40, 100]]))
        steps = sizes.finish()
        self.assertEqual(corners.finish(), steps)
        self.assertEqual([group.members for group in steps[-1].groups], [[1, 2]])


class Company(unittest.TestCase):
    """Several trackers at once, with different parameters, give what each gives alone."""

    settings = ({"rate": 2.5}, {"rate": 2.5, "parameters": {"coherenceThreshold": 8, "temporalWinSize": 2}},
                {"rate": 10, "parameters": {"useClustering": 1}})

    def frames(self):
        scene = grouptracker.simulate(seconds=20, rate=5, people=25)
        tracks = {name: numpy.asarray(scene.tracks[name]) for name in ("frame", "id", "x", "y")}
        return [(ids, positions) for _, ids, positions in frames_of(tracks)]

    def test_frame_by_frame(self):
        frames = self.frames()
        alone = [run(grouptracker.Tracker(actors=True, **one), frames) for one in self.settings]
        self.assertNotEqual(alone[0][1], alone[1][1])
        self.assertNotEqual(alone[0][1], alone[2][1])
        trackers = [grouptracker.Tracker(actors=True, **one) for one in self.settings]
        together = [([], []) for _ in trackers]
        for ids, positions in frames:
            for tracker, (steps, actors) in zip(trackers, together):
                step = tracker.update(ids, positions)
                steps += [step] if step else []
                actors.append(tracker.actors)
        for tracker, (steps, _) in zip(trackers, together):
            steps += tracker.finish()
        self.assertEqual(together, alone)

    def test_with_texts_for_people_whoever_was_named_first(self):
        grouptracker.Tracker().update(["d", "c", "b", "a"], [[0, 0], [5, 0], [10, 0], [15, 0]])
        walk = [[[0.5 * n, 0], [0.5 * n, 0.7], [0.5 * n, 9], [0.5 * n, 9.7]] for n in range(40)]

        def found(names):
            tracker = grouptracker.Tracker(rate=2.5, actors=True)
            steps, actors = run(tracker, ((names, positions) for positions in walk))
            return lines(steps) + json.dumps(actors)

        text = found(["a", "b", "c", "d"])
        self.assertIn('"id": 1, "members": ["a", "b"]', text)
        for letter, name in zip("abcd", "wxyz"):
            text = text.replace(f'"{letter}"', f'"{name}"')
        self.assertEqual(found(["w", "x", "y", "z"]), text)

    def test_in_threads_without_the_interpreters_lock(self):
        frames = self.frames()
        settings = self.settings * 2
        alone = [run(grouptracker.Tracker(actors=True, **one), frames) for one in settings]
        found = [None] * len(settings)

        def work(index):
            found[index] = run(grouptracker.Tracker(actors=True, **settings[index]), frames)

        threads = [threading.Thread(target=work, args=[index]) for index in range(len(settings))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(found, alone)


class WhatIsWrong(InFolder):
    def message(self, *arguments, **options):
        with self.assertRaises(ValueError) as caught:
            grouptracker.Tracker(*arguments, **options)
        return str(caught.exception)

    def test_with_parameters_is_told_as_by_the_program_and_ends_nothing(self):
        (self.folder / "tracks.csv").write_text("frame,id,x,y\n1,1,0,0\n2,1,1,0\n")
        good = self.run_program("run", "tracks.csv", "--print-parameters").stdout
        files = {"wrong label.txt": good.replace("distWeight:", "distanceWeight:"),
                 "wrong value.txt": good.replace("useClustering:", "useClustering: perhaps"), "cut.txt": good[:200]}
        for name, text in files.items():
            (self.folder / name).write_text(text)
            told = self.run_program("run", "tracks.csv", "--parameters", self.folder / name, status=1).stderr
            for actors in (False, True):
                self.assertEqual(self.message(self.folder / name, actors=actors) + "\n", told)
        missing = self.folder / "nowhere.txt"
        told = self.run_program("run", "tracks.csv", "--parameters", missing, status=1).stderr
        self.assertEqual(self.message(missing) + "\n", told)
        told = self.run_program("run", "tracks.csv", "--set", "coherenceTreshold=3", status=2).stderr
        self.assertEqual(self.message({"coherenceTreshold": 3}) + "\n", told)

    def test_with_settings_is_told(self):
        self.assertEqual(self.message(rate=0), "rate: a number above 0 is expected")
        self.assertEqual(self.message(look_ahead=-1), "look-ahead: a number of seconds from 0 on is expected")
        self.assertEqual(self.message(calibration=numpy.zeros((3, 3))), "homography: cannot be inverted")
        self.assertIn("3 x 3", self.message(calibration=[1, 2]))
        (self.folder / "model.json").write_text("{}")
        self.assertIn("model.json:1: ", self.message(model=self.folder / "model.json"))
        self.assertIn("camera.yml: ", self.message(calibration=self.folder / "camera.yml"))

    def test_with_a_frame_is_told_and_the_frame_left_out(self):
        cases = [
            (dict(ids=[1, 1], positions=[[0, 0], [1, 1]]), "frame 21: person 1 is there twice"),
            (dict(ids=[1, 2], positions=[[0, 0]]), "ids, positions and boxes are not equally many"),
            (dict(ids=[1], positions=[0, 0]), "positions: an array of N x 2 is expected"),
            (dict(ids=[-1], positions=[[0, 0]]), "ids: a whole number from 0 to 4294967295 is expected, or a text"),
            (dict(ids=[1.5], positions=[[0, 0]]), "ids: a whole number from 0 to 4294967295 is expected, or a text"),
            (dict(ids=[1j], positions=[[0, 0]]), "ids: a whole number from 0 to 4294967295 is expected, or a text"),
            (dict(ids=numpy.array(["2024-01-01"], "datetime64[D]"), positions=[[0, 0]]),
             "ids: a whole number from 0 to 4294967295 is expected, or a text"),
            (dict(ids=["a", "a"], positions=[[0, 0], [1, 1]]), "frame 21: person a is there twice"),
            (dict(ids=[1], positions=[[numpy.inf, 0]]),
             "frame 21: person 1 lies too far away to be metres, or is no number"),
            (dict(ids=[1]), "frame 21: person 1 has neither place nor box"),
            (dict(ids=[1], boxes=[[0, 0, 5, 5]]), "frame 21: person 1 has a box only, for which a camera is needed"),
            (dict(ids=[], time=1.0), "frame 21: the time 1 is behind that of the frame before, 8"),
            (dict(ids=[], frame=20), "frame 20: the frame before was 20"),
        ]
        expected, _ = run(grouptracker.Tracker(rate=2.5), walkers())
        tracker = grouptracker.Tracker(rate=2.5)
        steps = []
        for number, (ids, positions) in enumerate(walkers()):
            for wrong, message in cases if number == 20 else []:
                with self.assertRaises(ValueError) as caught:
                    tracker.update(**wrong)
                self.assertEqual(str(caught.exception), message)
            step = tracker.update(ids, positions)
            steps += [step] if step else []
        self.assertEqual(steps + tracker.finish(), expected)

    def test_ctrl_c_ends_a_long_call(self):
        for call in ("simulate(people=2000, frames=10000000)", "simulate(sys.argv[1], people=2000, frames=10000000)"):
            code = ("import grouptracker, sys\n"
                    "print('ready', flush=True)\n"
                    "try:\n"
                    f"    grouptracker.{call}\n"
                    "except KeyboardInterrupt:\n"
                    "    sys.exit(7)\n")
            child = subprocess.Popen([sys.executable, "-c", code, self.folder], stdout=subprocess.PIPE, env=os.environ)
            child.stdout.readline()
            threading.Timer(0.5, child.send_signal, [signal.SIGINT]).start()
            self.assertEqual(child.wait(timeout=60), 7, call)
            child.stdout.close()


class Diagnostics(unittest.TestCase):
    def test_go_nowhere_or_where_one_says(self):
        code = ("import contextlib, io, sys, grouptracker\n"
                "for diagnostics in (None, sys.stderr):\n"
                "    tracker = grouptracker.Tracker(rate=2.5, actors=True, diagnostics=diagnostics)\n"
                "    for frame in range(10):\n"
                "        tracker.update([1, 2], [[frame, 0], [frame, 1]])\n")
        done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, env=os.environ)
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        self.assertTrue(done.stderr.startswith("parameter file name: "), done.stderr[:200])
        self.assertEqual(done.stderr.count("parameter file name: "), 1)


if __name__ == "__main__":
    unittest.main()
