#!/usr/bin/env python3
"""Runs the commands of the documentation and compares what they print: check-docs.py BUILD [PAGE...].

In blocks that begin with ```console, lines behind "$ " are commands of a shell; the lines below are what they
print, standard error included, where "..." stands for anything and no line for nothing to compare. Blocks that
begin with ```python and hold ">>>" are run as Python. The blocks of a page share a folder of its own.
"""

import doctest
import fnmatch
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent


def blocks_of(page):
    return re.findall(r"^```(console|python)\n(.*?)^```$", page.read_text(), re.M | re.S)


def commands_of(block):
    """Commands with the text that is expected of each."""
    commands = []
    for line in block.splitlines():
        if line.startswith("$ "):
            commands.append((line[2:], []))
        elif commands:
            commands[-1][1].append(line)
    return [(command, "\n".join(expected)) for command, expected in commands]


def fits(printed, expected):
    pattern = "".join("*" if part == "..." else re.sub(r"([\[*?])", r"[\1]", part)
                      for part in re.split(r"(\.\.\.)", expected))
    return fnmatch.fnmatchcase(printed.strip(), pattern.strip())


def run_page(page, environment):
    """What is not as the page says, in words."""
    faults, count = [], 0
    with tempfile.TemporaryDirectory() as folder:
        for kind, block in blocks_of(page):
            if kind == "python":
                count += 1
                os.chdir(folder)
                test = doctest.DocTestParser().get_doctest(block, {}, page.name, str(page), 0)
                if doctest.DocTestRunner(verbose=False, optionflags=doctest.ELLIPSIS).run(test).failed:
                    faults.append(f"{page.name}: a Python block")
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
