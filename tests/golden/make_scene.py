#!/usr/bin/env python3
"""Makes a scene to run the tracker on: scene.jsonl, parameters.txt, calibration.yml, context.json.

    tests/golden/make_scene.py KIND SEED FOLDER

The same kind and seed give the same files. Kinds: walk, plain groups; crowd, mobiles typed as groups,
crowds and noise, tall and wide boxes; sparse, empty frames and lists; reuse and persist, ids declared
again; stale, links to mobiles long forgotten; dense, many people; cluster, groups by clustering.
"""
import json
import math
import random
import sys
from pathlib import Path

KINDS = {  # people, frames, and what is odd: (probability per mobile or frame)
    "walk": dict(people=6, frames=16),
    "crowd": dict(people=6, frames=16, types=0.25, sizes=0.2),
    "sparse": dict(people=5, frames=18, empty=0.2, lists=0.25, missed=0.2),
    "reuse": dict(people=5, frames=16, again=0.2),
    "persist": dict(people=5, frames=16, again=1.0),
    "stale": dict(people=5, frames=20, old=0.4),
    "dense": dict(people=18, frames=8),
    "cluster": dict(people=6, frames=16, clusters=1),
}

LABELS = """coherenceThreshold distWeight speedSimWeight dirSimWeight distanceThreshold speedSimThreshold
dirSimThreshold reliabilityThreshold temporalWinSize temporalWinForRemoval recentLinkWeight
maxDistGroupCreation maxDistGroupMerge maxDistGroupUpdate imagesFolder fileFormat firstImage saveOutput
outputFolder extDisplayOn openCVOutput useClustering tolerance sonDistanceWeight fatherDistanceWeight
minReliabilityBest minReliabilityOthers minCrowdWidth minCrowdHeight histogramDepth mvtAreaTh mvtSpeedTh
mvtSpeedNFrames mvtFrameGap mvtBrightnessTh mvtBlobsFilter personWidth personDepth personHeight
positionNormalization detectSuddenMvt trajectoryLength samplingStride samplingStrideDetection
gaussianGridFile alpha minNumCells""".split()


class Person:
    def __init__(self, rng, ident, place, step):
        self.ident = ident
        self.place = place
        self.step = step
        self.height = rng.uniform(1.5, 1.95)
        self.width = rng.uniform(0.5, 0.8)
        self.seen = []  # ids, the latest last
        self.mobile = None


def parameters(rng, kind):
    window = rng.choice([1, 2, 3, 4, 5, 7])
    values = dict.fromkeys(LABELS, "1")
    values.update(
        coherenceThreshold=round(rng.choice([rng.uniform(1, 6), rng.uniform(5, 80)]), 3),
        distWeight=rng.randint(1, 4), speedSimWeight=rng.randint(0, 4), dirSimWeight=rng.randint(0, 9),
        distanceThreshold=0.5, speedSimThreshold=0.5, dirSimThreshold=0.5, reliabilityThreshold=0.3,
        temporalWinSize=window,
        temporalWinForRemoval=window + rng.choice([1, 3, 10, 40]),
        recentLinkWeight=round(rng.uniform(0, 1), 2),
        maxDistGroupCreation=round(rng.uniform(0.8, 5), 2),
        maxDistGroupMerge=round(rng.uniform(1, 8), 2), maxDistGroupUpdate=round(rng.uniform(1, 5), 2),
        imagesFolder="images/", fileFormat=".png", firstImage=rng.choice([0, 1, 25]), saveOutput=0,
        outputFolder="out/", extDisplayOn=0, openCVOutput=0,
        useClustering=int("clusters" in KINDS[kind]), tolerance=round(rng.uniform(0.03, 1.2), 3),
        sonDistanceWeight=rng.choice([0, 5, 10, 120]), fatherDistanceWeight=rng.choice([0, 10, 30]),
        minReliabilityBest=round(rng.uniform(-0.1, 0.5), 2),
        minReliabilityOthers=round(rng.uniform(0, 0.5), 2),
        minCrowdWidth=rng.choice([3, 20000]), minCrowdHeight=rng.choice([20000, 30000]),
        mvtAreaTh=0.5, mvtSpeedTh=0.5, personWidth=0.6, personDepth=0.5, personHeight=1.75,
        positionNormalization=rng.choice([0, 1]), detectSuddenMvt=0, samplingStride=0.5,
        gaussianGridFile="none", alpha=0.5)
    return "".join(f"{label}: {values[label]}{rng.choice([' ', chr(10)])}" for label in LABELS) + "\n"


def newcomers(rng, people, known, kind):
    """Parties of one to four people until there are as many as the kind wants."""
    while len(people) < KINDS[kind]["people"]:
        start = [rng.uniform(0, 18), rng.uniform(0, 14)]
        speed, course = rng.choice([0.0, rng.uniform(0.2, 0.7)]), rng.uniform(0, 2 * math.pi)
        for _ in range(rng.choice([1, 2, 2, 3, 4])):
            place = [start[0] + rng.uniform(-0.8, 0.8), start[1] + rng.uniform(-0.8, 0.8)]
            people.append(Person(rng, next(known), place, [speed * math.cos(course), speed * math.sin(course)]))


def body(rng, person, options):
    """The mobile's type and boxes; metres rounded to millimetres."""
    type_name, height, width = "PERSON", person.height, person.width
    if rng.random() < options.get("types", 0):
        type_name = rng.choice(["GROUP_OF_PERSONS", "CROWD", "NOISE", "UNKNOWN", "VEHICLE"])
    if rng.random() < options.get("sizes", 0):
        height, width = rng.choice([(2.6, width), (height, 2.4), (2.41, 0.9), (0.9, 0.4)])
    x, y = (round(value + rng.gauss(0, 0.04), 3) for value in person.place)
    half = width / 2
    return {
        "type": type_name,
        "box2d": [round(30 * x - 10), round(25 * y), round(40 * width), round(28 * height)],
        "box3d": [round(x + half, 3), round(y + half * 0.8, 3), round(height, 3),
                  round(x - half, 3), round(y - half * 0.8, 3), 0.0],
        "position": [x, y, rng.choice([0.0, 0.02])],
    }


def fathers(rng, person, people, declared, options):
    """Links to the person's own past, to neighbours' and, where that is the kind, to the long gone."""
    links = {}
    for ident in reversed(person.seen[-3:]):
        if rng.random() < 0.9:
            links[ident] = round(rng.uniform(0.3, 1.0), 2)
    for other in people:
        near = math.dist(other.place, person.place) < 2
        if other is not person and near and other.seen and rng.random() < 0.6:
            links[other.seen[-1]] = rng.choice([0.0, round(rng.uniform(0, 1), 6)])
    if declared and rng.random() < options.get("old", 0):
        links[rng.choice(declared)] = rng.choice([0.4, 0.95])
    order = list(links.items())
    rng.shuffle(order)
    return [{"id": ident, "reliability": reliability} for ident, reliability in order]


def frames(rng, kind):
    options = KINDS[kind]
    people, declared = [], []
    persons = iter(range(rng.choice([0, 5, 40]), 10**6))
    idents = iter(range(rng.choice([0, 1, 100]), 10**6))
    for number in range(options["frames"]):
        newcomers(rng, people, persons, kind)
        mobiles, actors, named = [], [], set()
        is_empty = rng.random() < options.get("empty", 0)
        for person in people:
            if is_empty or rng.random() < options.get("missed", 0.04):
                continue
            again = person.seen and person.seen[-1] not in named and rng.random() < options.get("again", 0)
            ident = person.seen[-1] if again else next(idents)
            links = fathers(rng, person, people, declared, options)
            if again and rng.random() < 0.3:
                links.append({"id": ident, "reliability": 0.6})
                links = list({link["id"]: link for link in links}.values())
            links = [link for link in links if link["id"] not in named or link["id"] == ident]
            mobiles.append({"id": ident, **body(rng, person, options), "fathers": links})
            named.add(ident)
            actor = {"id": person.ident, "mobiles": person.seen[-rng.choice([1, 4, 12]):] + [ident]}
            if rng.random() < options.get("lists", 0):
                actor["mobiles"] = rng.choice([[], [ident]])
            actors.append(actor)
            person.seen.append(ident)
        declared = (declared + sorted(named))[-400:]
        yield {"mobiles": mobiles, "actors": actors}
        for person in people:
            person.place = [place + step for place, step in zip(person.place, person.step)]
            if rng.random() < 0.04:
                person.step = [rng.uniform(-0.5, 0.5), rng.uniform(-0.5, 0.5)]
        people = [person for person in people if rng.random() > 0.03]


def main():
    kind, seed, folder = sys.argv[1], sys.argv[2], Path(sys.argv[3])
    rng = random.Random(f"{kind} {seed}")
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "parameters.txt").write_text(parameters(rng, kind))
    (folder / "scene.jsonl").write_text("".join(json.dumps(frame) + "\n" for frame in frames(rng, kind)))
    (folder / "calibration.yml").write_text(
        "%YAML:1.0\n---\n"
        "homography: !!opencv-matrix\n   rows: 3\n   cols: 3\n   dt: d\n"
        "   data: [ 0.033, 0.002, -1., 0.001, 0.04, -2., 0., 0.0003, 1. ]\n"
        "camera_position: !!opencv-matrix\n   rows: 3\n   cols: 1\n   dt: d\n   data: [ 8., -9., 7. ]\n")
    (folder / "context.json").write_text(json.dumps({"elements": [
        {"kind": "zone", "shape": "polygon", "vertices": [[-1, -1, 0], [14.5, -1, 0], [14.5, 15, 0]]},
        {"kind": "wall", "shape": "polygon", "vertices": [[90, 90, 0]]}]}) + "\n")


if __name__ == "__main__":
    main()
