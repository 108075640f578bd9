#!/usr/bin/env python3
"""Makes what describes the commands out of the program's own help: make-manual.py PROGRAM FOLDER.

Man pages in FOLDER/man1, completion for bash (grouptracker.bash) and zsh (_grouptracker), and the reference
of commands (commands.md).
"""

import dataclasses
import gzip
import pathlib
import re
import subprocess
import sys

NAME = "grouptracker"


@dataclasses.dataclass
class Entry:
    """An option or argument with its kind of value, or a command, and what it means."""

    names: list
    value: str
    meaning: str


@dataclasses.dataclass
class Section:
    title: str
    entries: list = dataclasses.field(default_factory=list)
    lines: list = dataclasses.field(default_factory=list)  # of a section that lists nothing


@dataclasses.dataclass
class Page:
    command: str  # empty for the program as a whole
    summary: str
    usage: str
    sections: list


def help_of(program, *command):
    done = subprocess.run([program, *command, "--help"], capture_output=True, text=True, check=True)
    return done.stdout


def read_entry(line):
    """`  -h,--help    Print ...` as an entry; the meaning stands in a column of its own or on the next line."""
    column = 30
    is_wide = line[column - 1:column] not in ("", " ")
    head, meaning = (line, "") if is_wide else (line[:column], line[column:])
    names, _, value = head.strip().partition(" ")
    value = re.sub(r"^([A-Z]+)=([^A-Z].*)$", r"\1 (default \2)", value)
    return Entry(names.split(","), value, meaning.strip())


def read_page(program, command):
    lines = help_of(program, *command.split()).splitlines()
    usage = lines[1].replace("Usage: " + str(program), NAME)
    sections = []
    for line in lines[2:]:
        if line and not line.startswith(" ") and line.endswith(":"):
            sections.append(Section(line[:-1]))
        elif not line.startswith(" ") and line:
            sections.append(Section("Examples", lines=["  " + line.partition(": ")[2]]))
        elif line and sections and sections[-1].title.startswith(("Example", "Tracks that")):
            sections[-1].lines.append(line)
        elif line.startswith("   ") and sections and sections[-1].entries:
            entry = sections[-1].entries[-1]
            entry.meaning = f"{entry.meaning} {line.strip()}".strip()
        elif line and sections:
            sections[-1].entries.append(read_entry(line))
    return Page(command, lines[0], usage, [s for s in sections if s.entries or s.lines])


def roff(text):
    escaped = text.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + escaped if escaped.startswith((".", "'")) else escaped


def man_page(page, version, commands):
    name = f"{NAME}-{page.command}" if page.command else NAME
    summary = page.summary[0].lower() + page.summary[1:]
    out = [f'.TH {name.upper()} 1 "" "{NAME} {version}" "User Commands"', ".SH NAME",
           f"{roff(name)} \\- {roff(summary)}", ".SH SYNOPSIS", ".B " + roff(page.usage)]
    for section in page.sections:
        out.append(f'.SH "{roff(section.title.upper())}"')
        for entry in section.entries:
            names = ", ".join(entry.names)
            out += [".TP", f"\\fB{roff(names)}\\fR {roff(entry.value)}".rstrip(), roff(entry.meaning)]
        if section.lines:
            out += [".nf", *[roff(line) for line in section.lines], ".fi"]
    out += [".SH SEE ALSO"]
    others = [NAME] + [f"{NAME}-{command}" for command in commands]
    out.append(",\n".join(f".BR {roff(other)} (1)" for other in others if other != name).replace(",\n", " ,\n"))
    return "\n".join(out) + "\n"


def options_of(page):
    return sorted({name for section in page.sections for entry in section.entries for name in entry.names
                   if name.startswith("--")})


def choices_of(page):
    """Options with values of their own, such as `--unit m|cm`."""
    return {name: entry.value.split("|") for section in page.sections for entry in section.entries
            for name in entry.names if re.fullmatch(r"[a-z]+(\|[a-z]+)+", entry.value)}


def bash_completion(pages):
    cases = []
    for page in pages[1:]:
        cases.append(f"    {page.command}) options='{' '.join(options_of(page))}' ;;")
    choices = {}
    for page in pages[1:]:
        choices.update(choices_of(page))
    values = [f"    {name}) COMPREPLY=($(compgen -W '{' '.join(words)}' -- \"$word\")); return ;;"
              for name, words in sorted(choices.items())]
    commands = " ".join(page.command for page in pages[1:])
    return "\n".join([
        f"# Completion of {NAME} for bash.", f"_{NAME}() {{", "  local word=${COMP_WORDS[COMP_CWORD]}",
        "  local before=${COMP_WORDS[COMP_CWORD-1]} options", "  if [ \"$COMP_CWORD\" = 1 ]; then",
        f"    COMPREPLY=($(compgen -W '{commands} --help --version' -- \"$word\"))", "    return", "  fi",
        "  case $before in", *values, "  esac", "  case ${COMP_WORDS[1]} in", *cases, "  esac",
        "  case $word in", "    -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")) ;;",
        "    *) COMPREPLY=($(compgen -f -- \"$word\")) ;;", "  esac", "}",
        f"complete -o filenames -F _{NAME} {NAME}", ""])


def zsh_text(text):
    return re.sub(r"([\[\]:'\\])", "", text)


def zsh_completion(pages):
    out = [f"#compdef {NAME}", "", f"_{NAME}() {{", "  local -a commands=("]
    out += [f"    '{page.command}:{zsh_text(page.summary)}'" for page in pages[1:]]
    out += ["  )", "  if (( CURRENT == 2 )); then", f"    _describe command commands", "    return", "  fi",
            "  case $words[2] in"]
    for page in pages[1:]:
        arguments = []
        for section in page.sections:
            for entry in section.entries:
                for name in (n for n in entry.names if n.startswith("--")):
                    words = choices_of(page).get(name)
                    value = f":value:({' '.join(words)})" if words else ":value:_files" if entry.value else ""
                    arguments.append(f"'{name}[{zsh_text(entry.meaning)}]{value}'")
        out += [f"    {page.command})", "      _arguments " + " \\\n        ".join([*arguments, "'*:file:_files'"]),
                "      ;;"]
    return "\n".join([*out, "  esac", "}", "", f"_{NAME} \"$@\"", ""])


def reference(pages):
    out = ["# Commands", "", "Every command and option, as the program itself tells them."]
    for page in pages:
        out += ["", f"## {NAME} {page.command}".rstrip(), "", page.summary + ".", "", f"    {page.usage}"]
        for section in page.sections:
            out += ["", f"**{section.title}**", ""]
            if section.entries:
                out += ["| | | |", "| --- | --- | --- |"]
            for entry in section.entries:
                names, value = ", ".join(f"`{name}`" for name in entry.names), entry.value
                cells = [names, f"`{value}`" if value else "", entry.meaning.replace("<", "&lt;")]
                out.append("| " + " | ".join(cell.replace("|", "\\|") for cell in cells) + " |")
            out += ["    " + line.strip() if line.strip() else "" for line in section.lines]
    return "\n".join(out) + "\n"


def main():
    program, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    whole = read_page(program, "")
    commands = [entry.names[0] for section in whole.sections if section.title == "Subcommands"
                for entry in section.entries]
    pages = [whole] + [read_page(program, command) for command in commands]
    version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.strip()
    (folder / "man1").mkdir(parents=True, exist_ok=True)
    for page in pages:
        name = f"{NAME}-{page.command}" if page.command else NAME
        text = man_page(page, version, commands).encode()
        (folder / "man1" / f"{name}.1.gz").write_bytes(gzip.compress(text, 9, mtime=0))
    (folder / f"{NAME}.bash").write_text(bash_completion(pages))
    (folder / f"_{NAME}").write_text(zsh_completion(pages))
    (folder / "commands.md").write_text(reference(pages))
    print(f"{len(pages)} pages in {folder}")


if __name__ == "__main__":
    main()
