#!/usr/bin/env python3
"""Compares the runtime with recorded answers, node by node, write by write and as feature files, and the order of its nodes
with the rule.

The folder that the environment variable KORO_REFERENCE_DATA names holds conformance/ (small descriptions, the programs that
read them, compare.py), conformance-second/ (more of them, and sequences of calls with the program that runs them) and
camera-descriptions/. The programs are compiled here, unchanged. Without the variable the test is skipped (status 77).

    conformance.py --compiler g++ --flag=-I... --library libkoro_genicam.a --library -lexpat
"""
import argparse
import itertools
import lzma
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from node_order import node_order

SKIPPED = 77

# More lenient on purpose than the recorded answers, or accidents of their build; docs/genicam-runtime.md tells why.
LENIENT = re.compile(r"quirk-|refused-child-order|refused-unknown-|malformed-no-namespace")

# Program, its arguments behind the description, and the suffix of its recorded answers.
PROGRAMS = (("node_dump", ["hash"], ".nodes"), ("node_write", [], ".writes"), ("node_persist", [], ".persist"))

# Runs the calls of one file and prints what they return, the callbacks that fire and the traffic of the port.
SEQUENCE_PROGRAM, SEQUENCE_SUFFIX, SEQUENCE_ANSWERS = "seq", ".seq", ".answers"

# A register that is too long for a text: the words of another standard library, and our exception with its own words.
TOO_LONG_A_TEXT = (b"!std basic_string::_S_create", b"!RuntimeException")

# Their formulas have a minus before a bracket behind "?": recorded is a refusal, and here they have a value.
TEMPERATURES = ("AtmosphericTemperature", "ReflectedTemperature", "WindowTemperature")
DECIDED_OTHERWISE = {"FLIR_A35.xml": {(name + end).encode() for name in TEMPERATURES
                                      for end in ("", "ValConv", "ValConv_ConvertFrom")}}

# Seconds for one program over one description.
TIME_LIMIT = 300


def compile_programs(sources, options, folder):
    for path in sources:
        name, source, built = path.stem, str(path), str(folder / f"{path.stem}.o")
        subprocess.run([options.compiler, "-std=c++17", "-O1", *options.flag, "-c", source, "-o", built], check=True)
        # Sanitizers watch the runtime, not the programs: these subtract numbers that do not fit.
        subprocess.run([options.compiler, built, *options.link_flag, *options.library, "-lpthread", "-o",
                        str(folder / name)], check=True)


def recorded(description, suffix):
    plain = description.with_suffix(suffix)
    packed = plain.with_suffix(suffix + ".xz")
    if plain.exists():
        return plain.read_bytes()
    return lzma.decompress(packed.read_bytes()) if packed.exists() else None


def output_of(program, *arguments):
    # The programs leave their map behind when a step throws; a report of that would take their output along.
    return subprocess.run([program, *arguments], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=TIME_LIMIT,
                          env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}, check=False).stdout


def ordered(answers):
    """The lines of a sequence; the callbacks of one call may come in any order."""
    lines = answers.decode("latin-1").splitlines()
    return [" ".join(["  fired"] + sorted(line.split()[1:])) if line.startswith("  fired") else line for line in lines]


def without(answers, names):
    """The answers but for those nodes, whose lines are indented below their names."""
    lines, left_out = [], False
    for line in answers.splitlines(keepends=True):
        if not line.startswith(b" "):
            left_out = line.strip() in names
        if not left_out:
            lines.append(line)
    return b"".join(lines)


class Comparison:
    """Counts what was compared and collects the differences as text."""

    def __init__(self, folder, tools):
        self.folder, self.tools = folder, tools
        self.lines = self.files = 0
        self.differences = []

    def answers(self, description, program, arguments, suffix):
        """True when the description loads, by the recorded answer."""
        expected = recorded(description, suffix)
        if expected is None:
            return False
        try:
            actual = output_of(self.folder / program, description, *arguments)
        except subprocess.TimeoutExpired:
            self.count(f"{description.name}{suffix}", 0, f"did not end within {TIME_LIMIT} seconds", True)
            return False
        if not expected:
            # The recorded program did not end: all that is asked for is an end, with an answer.
            self.count(f"{description.name}{suffix}", 0, "no answer", not actual)
            return False
        left_out = DECIDED_OTHERWISE.get(description.name, ())
        difference = self.difference(without(expected.replace(*TOO_LONG_A_TEXT), left_out), without(actual, left_out))
        self.count(f"{description.name}{suffix}", expected.count(b"\n"), difference, difference is not None)
        return not expected.startswith(b"FAILED")

    def difference(self, expected, actual):
        """None when there is none. The program that compares is a process for each pair, so it sees only unlike ones."""
        if expected == actual:
            return None
        (self.folder / "expected").write_bytes(expected)
        (self.folder / "actual").write_bytes(actual)
        result = subprocess.run(
            [sys.executable, self.tools / "compare.py", self.folder / "expected", self.folder / "actual"],
            capture_output=True, text=True, check=False)
        return None if result.returncode == 0 else result.stdout + result.stderr

    def sequence(self, description):
        calls = description.with_suffix(SEQUENCE_SUFFIX)
        if not calls.exists():
            return
        expected = ordered(description.with_suffix(SEQUENCE_ANSWERS).read_bytes())
        actual = ordered(output_of(self.folder / SEQUENCE_PROGRAM, description, calls, "p"))
        wrong = [f"line {place + 1}: expected {a}, actual {b}"
                 for place, (a, b) in enumerate(itertools.zip_longest(expected, actual)) if a != b]
        self.count(f"{description.name}{SEQUENCE_SUFFIX}", len(expected), "\n".join(wrong[:5]), bool(wrong))

    def order(self, description):
        expected = node_order(description)
        actual = output_of(self.folder / "node_dump", description, "--order").decode("latin-1").splitlines()
        wrong = [f"place {place}: expected {a}, actual {b}"
                 for place, (a, b) in enumerate(itertools.zip_longest(expected, actual)) if a != b]
        self.count(f"{description.name} order", len(expected), "\n".join(wrong[:5]), bool(wrong))

    def count(self, what, lines, difference, differs):
        self.files += 1
        self.lines += lines
        if differs:
            self.differences.append(f"{what}:\n{difference}")

    def summary(self, subject):
        return f"{subject}: {self.files} files with {self.lines} lines compared, {len(self.differences)} differ"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--flag", action="append", default=[])
    parser.add_argument("--link-flag", action="append", default=[])
    parser.add_argument("--library", action="append", default=[])
    options = parser.parse_args()
    data = os.environ.get("KORO_REFERENCE_DATA")
    if not data:
        print("skipped: KORO_REFERENCE_DATA does not name a folder")
        return SKIPPED

    root = pathlib.Path(data)
    tools = root / "conformance" / "tools"
    second = root / "conformance-second"
    descriptions = sorted(path for folder in (root / "conformance", second, root / "camera-descriptions")
                          for path in folder.glob("*.xml"))
    left_out = [description.name for description in descriptions if LENIENT.match(description.name)]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        sources = [tools / f"{program}.cpp" for program, _, _ in PROGRAMS]
        compile_programs(sources + [*(second / "tools").glob(f"{SEQUENCE_PROGRAM}.cpp")], options, folder)
        answers, order, sequences = (Comparison(folder, tools) for _ in range(3))
        for description in descriptions:
            if description.name in left_out:
                continue
            for program, arguments, suffix in PROGRAMS:
                loads = answers.answers(description, program, arguments, suffix)
                if loads and suffix == ".nodes":
                    order.order(description)
            sequences.sequence(description)
    print(answers.summary("recorded answers"))
    print(sequences.summary("sequences of calls"))
    print(order.summary("order of nodes"))
    print(f"left out: {' '.join(left_out)}")
    without_sequences = second.exists() and not sequences.files
    differences = answers.differences + sequences.differences + order.differences
    print("\n".join(differences))
    return 1 if differences or not answers.files or not order.files or without_sequences else 0


if __name__ == "__main__":
    sys.exit(main())
