#!/usr/bin/env python3
"""Measures what a trial of a search costs: benchmarks/tune_costs.py PROGRAM[,PROGRAM] DATA [TRIALS].

DATA has a folder for each sequence, with obsmat.txt, H.txt and groups.txt or truth.jsonl. Rounds of
`tune` with the same seed take turns over the programs, with one job and with two, and beside those of
the last one `run` and `evaluate` of each sequence, which is what a trial would take by hand; the
fastest of each kind counts. Tells whether all programs wrote the same trials.
"""
import hashlib
import pathlib
import sys
import tempfile

from commands import measure

PROGRAMS = [pathlib.Path(name).resolve() for name in sys.argv[1].split(",")]
DATA = pathlib.Path(sys.argv[2]).resolve()
TRIALS = int(sys.argv[3]) if len(sys.argv) > 3 else 24
ROUNDS = 3
BASE = pathlib.Path(__file__).resolve().parent.parent / "samples/parameters/walking.txt"


def truth_of(folder):
    return next((folder / name for name in ("truth.jsonl", "groups.txt") if (folder / name).exists()), None)


SEQUENCES = [folder for folder in sorted(DATA.iterdir()) if (folder / "obsmat.txt").exists() and truth_of(folder)]


def tune(folder, program, jobs):
    inputs = [f"{sequence}:{truth_of(sequence)}" for sequence in SEQUENCES]
    return measure([program, "tune", *inputs, "--base", BASE, "--output", "best.txt", "--log", "log.csv",
                    "--trials", str(TRIALS), "--seed", "1", "--jobs", str(jobs), "--quiet"], folder)


def by_hand(folder, program):
    seconds = [0.0, 0.0]
    for sequence in SEQUENCES:
        for command in (("run", sequence, "--parameters", BASE, "--actors", "actors.jsonl", "--quiet",
                         "--diagnostics", "none", "--mobile-dump", "none"),
                        ("evaluate", "actors.jsonl", "--truth", truth_of(sequence))):
            spent = measure([program, *command], folder)
            seconds = [seconds[0] + spent[0], seconds[1] + spent[1]]
    return tuple(seconds)


def main():
    fastest = {}
    trials = set()
    runs = TRIALS + 2  # the base and what is found are tried, too
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for _ in range(ROUNDS):
            for program in PROGRAMS:
                kinds = {"run and evaluate": by_hand(folder, program)} if program == PROGRAMS[-1] else {}
                for jobs in (1, 2):
                    spent = tune(folder, program, jobs)
                    kinds[f"tune --jobs {jobs}"] = (spent[0] / runs, spent[1] / runs)
                    rows = "\n".join(sorted((folder / "log.csv").read_text().splitlines()))
                    trials.add(hashlib.sha256(rows.encode()).hexdigest())
                for kind, spent in kinds.items():
                    best = fastest.setdefault((kind, program), spent)
                    fastest[kind, program] = (min(best[0], spent[0]), min(best[1], spent[1]))
    print(f"{len(SEQUENCES)} sequences, {TRIALS} trials, seconds a trial")
    print(f"{'':<20} {'wall':>8} {'processor':>10}  program")
    for (kind, program), (wall, processor) in sorted(fastest.items(), key=lambda item: item[0][0]):
        print(f"{kind:<20} {wall:8.3f} {processor:10.3f}  {program}")
    print("the same trials" if len(trials) == 1 else "the trials differ")


if __name__ == "__main__":
    main()
