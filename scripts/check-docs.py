#!/usr/bin/python3
"""Runs the commands of the documentation and compares what they print: check-docs.py BUILD [PAGE...].

In blocks that begin with ```console, lines behind "$ " are commands of a shell; the lines below are what they
print, standard error included, where "..." stands for anything and no line for nothing to compare; a command
goes on behind a "\\". Blocks that begin with ```python are run as Python, and where they hold ">>>" compared. The
blocks of a page share a folder of its own. Commands that stand indented, and therefore are not run, are a fault
but for those listed below.
"""

import contextlib
import doctest
import fnmatch
import io
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What begins a line that is a command.
COMMAND = re.compile(r" {4,}(grouptracker|parallel|sqlite3|mosquitto_\w+|sudo|pip|cp|systemctl|journalctl|awk"
                     r"|cmake|(?:scripts|benchmarks|build)/\S+|#!/bin/sh)\b")
# Commands that cannot be run here: page, how they begin, and why.
NOT_RUN = [
    ("building.md", "scripts/", "builds take minutes; every check begins with them"),
    ("evaluation.md", "grouptracker", "the annotated sequences are no part of this; scripts/score.sh runs them"),
    ("evaluation.md", "scripts/", "as above"),
    ("parameters.md", "grouptracker tune", "as above"),
    ("live.md", "grouptracker run mqtt:", "needs a broker; scripts/live-demo.sh starts one"),
    ("live.md", "mosquitto_sub", "as above"),
    ("live.md", "cp", "changes the system; scripts/test-packages.sh installs the packages"),
    ("live.md", "systemctl", "as above"),
    ("live.md", "journalctl", "as above"),
    ("performance.md", "", "benchmarks are for machines that do nothing else"),
    ("python.md", "sudo apt", "needs packages; scripts/test-packages.sh installs them"),
    ("python.md", "pip install", "a build that takes minutes"),
    ("results.md", "grouptracker run made/scene.jsonl --show", "opens a window"),
    ("scale.md", "grouptracker batch manifest.csv --output /shared", "needs Slurm; scripts/test-slurm.sh starts one"),
    ("scale.md", "grouptracker tune", "as above"),
    ("scale.md", "grouptracker batch manifest.csv --output results --", "needs GNU parallel and machines"),
    ("scale.md", "parallel", "as above"),
    ("scale.md", "#!/bin/sh", "is the entry point of a container"),
    ("scale.md", "awk", "as above"),
]


def blocks_of(page):
    return re.findall(r"^```(console|python)\n(.*?)^```$", page.read_text(), re.M | re.S)


def commands_not_run(page):
    """Lines with commands outside of blocks that are run, and for which nobody said why."""
    text = re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.M | re.S)
    commands = [line.strip() for line in text.splitlines() if COMMAND.match(line)]
    return [command for command in commands
            if not any(page.name == name and command.startswith(begin) for name, begin, _ in NOT_RUN)]


def commands_of(block):
    """Commands with the text that is expected of each."""
    commands = []
    for line in block.splitlines():
        if line.startswith("$ "):
            commands.append((line[2:], []))
        elif commands and commands[-1][0].endswith("\\"):
            commands[-1] = (f"{commands[-1][0]}\n{line}", [])
        elif commands:
            commands[-1][1].append(line)
    return [(command, "\n".join(expected)) for command, expected in commands]


def run_python(block, page, names):
    """What is wrong with a block of Python, in words; empty when it is as it says."""
    if ">>>" in block:
        test = doctest.DocTestParser().get_doctest(block, names, page.name, str(page), 0)
        failed = doctest.DocTestRunner(verbose=False, optionflags=doctest.ELLIPSIS).run(test, clear_globs=False).failed
        return f"{page.name}: a Python block" if failed else ""
    try:
        with contextlib.redirect_stdout(io.StringIO()):
            exec(compile(block, str(page), "exec"), names)
        return ""
    except Exception as failure:
        return f"{page.name}: a Python block: {failure!r}"


def fits(printed, expected):
    pattern = "".join("*" if part == "..." else re.sub(r"([\[*?])", r"[\1]", part)
                      for part in re.split(r"(\.\.\.)", expected))
    return fnmatch.fnmatchcase(printed.strip(), pattern.strip())


def run_page(page, environment):
    """What is not as the page says, in words."""
    faults = [f"{page.name}: is not run: {command}" for command in commands_not_run(page)]
    count, names = 0, {}
    with tempfile.TemporaryDirectory() as folder:
        for kind, block in blocks_of(page):
            if kind == "python":
                count += 1
                os.chdir(folder)
                faults += [fault] if (fault := run_python(block, page, names)) else []
                continue
            for command, expected in commands_of(block):
                count += 1
                done = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, env=environment,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300)
                is_cut = done.returncode == 141 or "| head" in command  # who reads the first line leaves
                if done.returncode != 0 and not is_cut:
                    faults.append(f"{page.name}: {command}: status {done.returncode}: {done.stdout}")
                elif expected and not fits(done.stdout, expected):
                    faults.append(f"{page.name}: {command}\nprints\n{done.stdout}in place of\n{expected}")
    return faults, count


def main():
    build = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "build/release").resolve()
    pages = [pathlib.Path(page).resolve() for page in sys.argv[2:]] or sorted((ROOT / "docs").glob("*.md"))
    environment = dict(os.environ, PATH=f"{build / 'bin'}:{os.environ['PATH']}", QT_QPA_PLATFORM="offscreen",
                       PYTHONPATH=str(build / "python"))
    sys.path.insert(0, str(build / "python"))
    faults, count = [], 0
    for page in pages:
        more, commands = run_page(page, environment)
        faults += more
        count += commands
    print("\n".join([*faults, f"{count} commands of the documentation, {len(faults)} not as it says"]))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
