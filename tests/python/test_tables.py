"""Whole recordings in tables, scores, learning and simulated scenes."""

import doctest
import json
import unittest

import numpy
import pandas

import grouptracker
import grouptracker.tracker
from support import InFolder, lines, read_lines, walkers


def walking_table(frames=40):
    rows = [(frame, person, *place) for frame, (ids, places) in enumerate(walkers(frames), 1)
            for person, place in zip(ids, places)]
    return pandas.DataFrame(rows, columns=["frame", "id", "x", "y"])


class Tables(InFolder):
    def test_get_a_column_of_groups_in_any_order_of_rows(self):
        table = walking_table().sample(frac=1.0, random_state=1)
        table["speed"] = 1.25
        found = grouptracker.track(table)
        self.assertEqual(list(found.columns), ["frame", "id", "x", "y", "speed", "group"])
        self.assertTrue(found.index.equals(table.index))
        late = found[found["frame"] > 10]
        self.assertEqual(late.groupby("id")["group"].first().fillna(0).tolist(), [1, 1, 0])
        self.assertNotIn("group", table)
        as_arrays = grouptracker.track({name: table[name].to_numpy() for name in table})
        self.assertEqual(as_arrays["group"].tolist(), found["group"].fillna(0).tolist())

    def test_may_call_people_by_texts(self):
        table = walking_table()
        named = table.assign(id=table["id"].map({1: "ann", 2: "bob", 3: "eve"}))
        self.assertEqual(grouptracker.track(named)["group"].tolist(), grouptracker.track(table)["group"].tolist())
        self.assertEqual(grouptracker.evaluate(grouptracker.track_steps(named), [["ann", "bob"]]),
                         grouptracker.evaluate(grouptracker.track_steps(table), [[1, 2]]))

    def test_call_people_in_messages_as_they_are_called(self):
        named = walking_table(3).assign(id=["una", "ida", "eva", "ida", "una", "eva", "ida", "ida", "eva"])
        with self.assertRaisesRegex(ValueError, "table:8: person ida is observed twice at frame 3"):
            grouptracker.track(named)

    def test_say_when_by_frame_or_time(self):
        table = walking_table()
        by_frame = grouptracker.track(table, rate=2.5)
        timed = table.rename(columns={"frame": "time"})
        timed["time"] *= 0.4
        self.assertEqual(grouptracker.track(timed)["group"].tolist(), by_frame["group"].tolist())
        path = self.folder / "timed.csv"
        timed.to_csv(path, index=False)
        self.run_program("run", path, "--output", "groups.jsonl", "--diagnostics", "none", "--mobile-dump", "none")
        self.assertEqual(lines(grouptracker.track_steps(timed)), (self.folder / "groups.jsonl").read_text())

    def test_of_boxes_take_the_camera_from_the_people(self):
        self.run_program("simulate", "--people", 20, "--seconds", 20, "--rate", 5, "--output", "scene", "--quiet")
        boxes = [(number, actor["id"], *mobile["box2d"])
                 for number, frame in enumerate(read_lines(self.folder / "scene" / "scene.jsonl"), 1)
                 for actor in frame["actors"]
                 for mobile in frame["mobiles"] if mobile["id"] == actor["mobiles"][-1]]
        table = pandas.DataFrame(boxes, columns=["frame", "id", "left", "top", "width", "height"])
        mot = table.assign(confidence=1, a=-1, b=-1, c=-1)
        mot.to_csv(self.folder / "tracks.txt", header=False, index=False)
        for camera in ([], ["--calibration", self.folder / "scene" / "calibration.yml"]):
            self.run_program("run", "tracks.txt", "--rate", 5, "--output", "groups.jsonl", "--diagnostics", "none",
                             "--mobile-dump", "none", *camera)
            steps = grouptracker.track_steps(table, rate=5, calibration=camera[1] if camera else None)
            self.assertEqual(lines(steps), (self.folder / "groups.jsonl").read_text())

    def test_that_are_wrong_are_told_with_their_row(self):
        table = walking_table(3)
        for change, message in [
                (lambda t: t.drop(columns="x"), "table: the columns x and y, or left, top, width and height, are expected"),
                (lambda t: t.drop(columns="id"), "table: the columns id and frame or time are expected"),
                (lambda t: t.assign(x=numpy.nan), "table:1: a number is missing or not finite"),
                (lambda t: t.assign(id=[1, 2, 3, 1, 2, 3, 1, 1, 3]), "table:8: person 1 is observed twice at frame 3, first on line 7"),
                (lambda t: t.assign(id=-1), "table:1: "),
                (lambda t: pandas.concat([t, t[["id"]]], axis=1), "table: one column id is expected"),
                (lambda t: pandas.concat([t, t[["frame"]]], axis=1), "table: one column frame is expected"),
                (lambda t: {**t, "frame": t["frame"][:8]}, "table: the columns are not equally long"),
                (lambda t: t.assign(left=0, top=0, width=5, height=5, y=numpy.nan), "table:1: the position "),
                (lambda t: t.assign(left=0, top=0, width=5, height=5, x=1e300), "table:1: the position ")]:
            with self.assertRaises(ValueError) as caught:
                grouptracker.track(change(table))
            self.assertIn(message, str(caught.exception))
        with self.assertRaisesRegex(ValueError, "rate"):
            grouptracker.track(table, rate=0)


class Scores(InFolder):
    def test_are_those_of_the_program(self):
        scene = grouptracker.simulate(self.folder / "scene", seconds=40, rate=5, people=20, merges=1)
        steps = grouptracker.track_steps(scene.tracks)
        (self.folder / "groups.jsonl").write_text(lines(steps))
        truth = self.folder / "scene" / "truth.jsonl"
        self.run_program("evaluate", "groups.jsonl", "--truth", truth, "--output", "scores.json")
        written = json.loads((self.folder / "scores.json").read_text())
        self.assertEqual(grouptracker.evaluate(steps, truth), written)
        self.assertEqual(grouptracker.evaluate(steps, scene.truth), written)
        self.assertGreater(written["windowedMitre"]["f1"], 0.8)

    def test_take_lists_and_refuse_what_is_about_others(self):
        steps = grouptracker.track_steps(walking_table())
        self.assertEqual(grouptracker.evaluate(steps, [[1, 2]])["windowedMitre"]["f1"],
                         grouptracker.evaluate(steps, {n: [[1, 2]] for n in range(1, 41)})["windowedMitre"]["f1"])
        self.assertEqual(grouptracker.evaluate(steps, {n: [[1, 2]] for n in range(1, 41)}),
                         grouptracker.evaluate(steps, {n: {1: [1, 2]} for n in range(1, 41)}))
        with self.assertRaisesRegex(ValueError, "truth: no group has two members in view together"):
            grouptracker.evaluate(steps, [[8, 9]])
        (self.folder / "wrong.txt").write_text("1 2\n3 four\n")
        with self.assertRaisesRegex(ValueError, "wrong.txt:2: "):
            grouptracker.read_truth(self.folder / "wrong.txt")

    def test_a_model_is_learned_saved_and_used(self):
        table = walking_table()
        model = grouptracker.learn([(table, [[1, 2]], 2.5)], ridge=1)
        table.to_csv(self.folder / "walk.csv", index=False)
        (self.folder / "truth.txt").write_text("1 2\n")
        self.run_program("learn", "walk.csv:truth.txt:2.5", "--ridge", 1, "--output", "model.json", "--quiet")
        learned = json.loads((self.folder / "model.json").read_text())
        mine = json.loads(model.text())
        self.assertEqual(mine.pop("learnedFrom"), ["recording 1"])
        self.assertEqual(learned.pop("learnedFrom"), ["walk.csv"])
        self.assertEqual(mine, learned)
        model.save(self.folder / "mine.json")
        used = grouptracker.track_steps(table, rate=2.5, model=model)
        self.assertEqual(used, grouptracker.track_steps(table, rate=2.5, model=self.folder / "mine.json"))
        self.assertEqual(used[-1].groups[0].members, [1, 2])


class Scenes(InFolder):
    def test_are_those_of_the_program(self):
        scene = grouptracker.simulate(self.folder / "here", seed=3, people=10, frames=50, noise=0.01)
        self.run_program("simulate", "--seed", 3, "--people", 10, "--frames", 50, "--noise", 0.01, "--output", "there")
        for name in ("scene.jsonl", "truth.jsonl", "calibration.yml"):
            self.assertEqual((self.folder / "here" / name).read_bytes(), (self.folder / "there" / name).read_bytes())
        written = read_lines(self.folder / "there" / "truth.jsonl")
        self.assertEqual([scene.truth.at(line["frame"]) for line in written], [line["groups"] for line in written])
        self.assertEqual(list(scene.tracks.columns), ["frame", "time", "id", "x", "y"])

    def test_that_cannot_be_are_refused(self):
        for wrong in ({"people": 0}, {"rate": 0}, {"groups": [9]}, {"missed": 2}, {"seconds": -1}, {"circles": [1]}):
            with self.assertRaises(ValueError):
                grouptracker.simulate(**wrong)


class Help(unittest.TestCase):
    def test_shows_what_is_true(self):
        self.assertEqual(doctest.testmod(grouptracker.tracker, extraglobs={"Tracker": grouptracker.Tracker}).failed, 0)
        for name in grouptracker.__all__:
            self.assertTrue(getattr(grouptracker, name).__doc__, name)


if __name__ == "__main__":
    unittest.main()
