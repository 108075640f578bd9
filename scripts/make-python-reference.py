#!/usr/bin/env python3
"""Prints the reference of the Python module, Markdown, out of its docstrings."""

import inspect

import grouptracker


def text_of(thing):
    """The docstring, whose sections and code keep their form."""
    return "```text\n" + inspect.getdoc(thing) + "\n```\n"


def signature_of(name, thing):
    try:
        signature = str(inspect.signature(thing)).replace("'", "")
    except (TypeError, ValueError):
        return name
    return name + signature.replace("(self, ", "(").replace("(self)", "()")


def main():
    print("# Python reference\n\n" + text_of(grouptracker))
    for name in sorted(grouptracker.__all__, key=str.lower):
        thing = getattr(grouptracker, name)
        if name.startswith("__"):
            continue
        print(f"## {name}\n")
        if not inspect.isclass(thing) or thing.__module__ != "grouptracker._native":
            print(f"```python\n{signature_of(name, thing)}\n```\n")
        print(text_of(thing))
        if not inspect.isclass(thing):
            continue
        for member, value in vars(thing).items():
            if member.startswith("_") or not getattr(value, "__doc__", None):
                continue
            print(f"### {name}.{member}\n\n" + text_of(getattr(thing, member)))


if __name__ == "__main__":
    main()
