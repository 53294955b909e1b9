#!/usr/bin/env python3
"""Checks that no source includes a folder that layers.txt does not allow it to include.

usage: check_layers.py ROOT [LAYERS]

Reads every C and C++ file below ROOT but for build folders and hidden ones. Prints each offending line as FILE:LINE
and ends with status 1 when there is one.
"""

import pathlib
import posixpath
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')
ANY = "*"
SUFFIXES = {".c", ".cpp", ".h", ".hpp"}
# Where the compiler looks for a header, besides the folder of the file that includes it.
SEARCHED = ["", "src", "include", "genicam", "genicam/include", "image/include", "camera/include"]


def read_layers(path):
    """Returns for each listed folder the set of folders that it may include."""
    allowed = {}
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        line = line.split("#")[0].strip()
        if not line:
            continue
        if ":" not in line:
            sys.exit(f"{path}:{number}: a line is 'folder: folders'")
        folders, _, below = line.partition(":")
        group = folders.split()
        for folder in group:
            if folder in allowed:
                sys.exit(f"{path}:{number}: {folder} is listed twice")
            allowed[folder] = set(below.split()) | set(group)
    for folder, below in allowed.items():
        for unknown in sorted(below - allowed.keys() - {ANY}):
            sys.exit(f"{path}: {folder} may include {unknown}, which is not listed")
    return allowed


def layer_of(file, allowed):
    """The nearest listed folder above a file; None when there is none."""
    return next((str(folder) for folder in file.parents if str(folder) in allowed), None)


def included_file(root, includer, quote, name):
    """The file of the tree that an include names; None for headers of the system."""
    places = [includer.parent] if quote == '"' else []
    # The runtime has folders with names that the library has, too.
    first = [includer.parts[0]] if includer.parts[0] == "genicam" else []
    for place in places + first + SEARCHED:
        candidate = pathlib.PurePosixPath(posixpath.normpath(posixpath.join(place, name)))
        if (root / candidate).is_file():
            return candidate
    return None


def sources(root):
    for top in sorted(root.iterdir()):
        if top.is_dir() and not top.name.startswith((".", "build")):
            for path in sorted(top.rglob("*")):
                if path.suffix in SUFFIXES:
                    yield pathlib.PurePosixPath(path.relative_to(root))


def reason_against(root, allowed, file, layer, quote, name):
    """Why the file may not have this include; None when it may."""
    if ANY in allowed[layer]:
        return None
    target = included_file(root, file, quote, name)
    if target is None:
        return "there is no such file" if quote == '"' else None
    below = layer_of(target, allowed)
    return None if below in allowed[layer] else f"{layer} may not include {below or target}"


def offences(root, allowed):
    for file in sources(root):
        layer = layer_of(file, allowed)
        if layer is None:
            yield f"{file}: its folder is not listed"
            continue
        for number, line in enumerate((root / file).read_text(encoding="utf-8").splitlines(), 1):
            include = INCLUDE.match(line)
            reason = include and reason_against(root, allowed, file, layer, *include.groups())
            if reason:
                yield f"{file}:{number}: {line.strip()} ({reason})"


def main():
    root = pathlib.Path(sys.argv[1])
    layers = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else pathlib.Path(__file__).with_name("layers.txt")
    allowed = read_layers(layers)
    missing = [folder for folder in allowed if not (root / folder).is_dir()]
    found = [f"{layers}: {folder} does not exist" for folder in missing] + list(offences(root, allowed))
    print("\n".join(found) if found else f"{len(allowed)} folders include what they may")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
