#!/usr/bin/python3
"""Compares the mean shift with scikit-learn's MeanShift and DBSCAN on the same points, in one run.

usage: benchmarks/compare_sklearn.py build/release/bin/mean_shift_benchmark

Needs scikit-learn (Debian: apt-get install --no-install-recommends python3-sklearn). Every time is
that of the fastest of several calls, on the wall clock, so let the machine be idle: scikit-learn may
use all processors, the mean shift uses one. "x" says how many times longer the others take. Ends
with status 1 only when the benchmark program's results differ from those of its plain reference.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import numpy
from sklearn.cluster import DBSCAN, MeanShift

REPETITIONS = 5
# Points: how many times faster than MeanShift and DBSCAN the mean shift is to be.
TARGETS = {100: (150, 2), 500: (150, 4), 2000: (150, 10)}


def run_benchmark(program, folder):
    """Seconds per benchmark, clusters and bandwidth per case, and whether all results agree."""
    report = folder / "report.json"
    status = subprocess.run(
        [program, f"--points_folder={folder}", f"--benchmark_out={report}",
         "--benchmark_out_format=json"],
        stdout=subprocess.DEVNULL, check=False).returncode
    if status not in (0, 1):
        sys.exit(f"{program} ended with status {status}")
    times, details = {}, {}
    for entry in json.loads(report.read_text())["benchmarks"]:
        what, case = entry["name"].split("/")[:2]
        times[what, case] = entry["best"]
        if what == "mean_shift":
            details[case] = int(entry["clusters"]), entry["bandwidth"]
    return times, details, status == 0


def best_time(estimator, points):
    """Seconds of the fastest fit, after one to warm up."""
    durations = []
    estimator.fit(points)
    for _ in range(REPETITIONS):
        start = time.perf_counter()
        estimator.fit(points)
        durations.append(time.perf_counter() - start)
    return min(durations)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    if os.getloadavg()[0] > 0.5 * os.cpu_count():
        print("The machine is busy; the ratios below are not reliable.", file=sys.stderr)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        times, details, agree = run_benchmark(sys.argv[1], folder)
        points = {case: numpy.loadtxt(folder / f"{case}.txt") for case in details}

    print(f"{'points':>12} {'clusters':>8} {'time':>9} {'with cov.':>10} {'plain':>7} "
          f"{'MeanShift':>10} {'DBSCAN':>8}")
    verdicts = []
    for case, (clusters, bandwidth) in details.items():
        own = times["mean_shift", case]
        mean_shift = best_time(MeanShift(bandwidth=bandwidth, bin_seeding=False), points[case])
        dbscan = best_time(DBSCAN(eps=bandwidth, min_samples=1), points[case])
        print(f"{case:>12} {clusters:8d} {1e6 * own:6.0f} us {1e6 * times['with_covariances', case]:7.0f} us "
              f"{times['reference', case] / own:6.0f}x {mean_shift / own:9.0f}x "
              f"{dbscan / own:7.1f}x")
        for other, ratio, target in zip(("MeanShift", "DBSCAN"), (mean_shift / own, dbscan / own),
                                        TARGETS.get(len(points[case]), ())):
            verdicts.append(f"{case}: {ratio:.1f} times faster than {other}, wanted {target}: "
                            + ("holds" if ratio >= target else "MISSED"))
    print("\n" + "\n".join(verdicts))
    print("\nresults: " + ("those of the plain way, bit for bit" if agree else "DIFFERENT"))
    return 0 if agree else 1


if __name__ == "__main__":
    sys.exit(main())
