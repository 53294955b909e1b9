#!/usr/bin/env python3
"""Compares the runtime with recorded answers, node by node and write by write.

The folder that the environment variable KORO_REFERENCE_DATA names holds conformance/ (small descriptions, the programs that
read them, compare.py) and camera-descriptions/. The programs are compiled here, unchanged. Without the variable the test is
skipped (status 77).

    conformance.py --compiler g++ --flag=-I... --library libkoro_genicam.a --library -lexpat
"""
import argparse
import lzma
import os
import pathlib
import re
import subprocess
import sys
import tempfile

SKIPPED = 77

# More lenient on purpose than the recorded answers, or accidents of their build; docs/genicam-runtime.md tells why.
LENIENT = re.compile(r"quirk-|refused-child-order|refused-unknown-|malformed-no-namespace")

# Program, its arguments behind the description, and the suffix of its recorded answers.
PROGRAMS = (("node_dump", ["hash"], ".nodes"), ("node_write", [], ".writes"))


def compile_programs(tools, options, folder):
    for name, _, _ in PROGRAMS:
        source, built = str(tools / f"{name}.cpp"), str(folder / f"{name}.o")
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


def compare(description, folder, tools):
    """Number of compared lines and of files, and the differences as text."""
    lines, files, differences = 0, 0, []
    for name, arguments, suffix in PROGRAMS:
        expected = recorded(description, suffix)
        if expected is None:
            continue
        (folder / "expected").write_bytes(expected)
        with open(folder / "actual", "wb") as actual:
            # The programs leave their map behind when a step throws; a report of that would take their output along.
            subprocess.run([folder / name, description, *arguments], stdout=actual, stderr=subprocess.DEVNULL,
                           env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}, timeout=300, check=False)
        result = subprocess.run([sys.executable, tools / "compare.py", folder / "expected", folder / "actual"],
                                capture_output=True, text=True, check=False)
        lines += expected.count(b"\n")
        files += 1
        if result.returncode != 0:
            differences.append(f"{description.name}{suffix}:\n{result.stdout}{result.stderr}")
    return lines, files, differences


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
    descriptions = sorted([*(root / "conformance").glob("*.xml"), *(root / "camera-descriptions").glob("*.xml")])
    left_out = [description.name for description in descriptions if LENIENT.match(description.name)]
    lines = files = 0
    differences = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        compile_programs(tools, options, folder)
        for description in descriptions:
            if description.name in left_out:
                continue
            more_lines, more_files, more_differences = compare(description, folder, tools)
            lines += more_lines
            files += more_files
            differences += more_differences
    print(f"{files} files with {lines} lines compared, {len(differences)} differ")
    print(f"left out: {' '.join(left_out)}")
    print("\n".join(differences))
    return 1 if differences or not files else 0


if __name__ == "__main__":
    sys.exit(main())
