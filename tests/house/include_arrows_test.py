#!/usr/bin/env python3
"""Holds the #include arrows between the folders to the allowed ones.

The table below is the one of docs/architecture.md. Besides the arrows: no circle between files,
include paths from the root, #pragma once in every header, third-party and operating-system headers
only where they belong, and no text that names a path of one machine.

Run with a folder as argument, it checks that folder and prints what it finds; without one it is a
unittest that checks this repository, and a copy with one planted fault of each kind.
"""

import os
import re
import shutil
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# Parts of the house, most special first: name, paths (a folder, or a prefix of a file name), and
# the parts that it may include besides itself.
ENGINE = {"core", "options", "registers", "packed", "tablebase", "engine"}
ALL_BELOW_SESSION = ENGINE | {"problems", "online"}
PARTS = [
    ("options", ["session/options", "session/ini_file", "session/program_folder"], {"core"}),
    ("packed", ["tablebase/packed/"], set()),
    ("core", ["core/"], set()),
    ("registers", ["registers/"], {"core", "options"}),
    ("tablebase", ["tablebase/"], {"core", "options", "packed"}),
    ("engine", ["search/", "heuristics/"], ENGINE - {"engine", "packed"}),
    ("problems", ["problems/"], ENGINE - {"packed"}),
    ("online", ["online/"], {"core", "options"}),
    ("session", ["session/"], ALL_BELOW_SESSION),
    ("shell", ["shell/"], ALL_BELOW_SESSION | {"session"}),
    ("cli", ["cli/"], ALL_BELOW_SESSION | {"session"}),
    ("tools", ["tools/"], ALL_BELOW_SESSION | {"session"}),
]
# May include everything.
FREE_FOLDERS = ("tests/", "bench/")

# Third-party headers (a prefix of the name between the brackets) and who may include them.
THIRD_PARTY = [
    ("boost/", {"core", "registers", "tablebase", "engine", "problems", "session"}),
    ("SimpleIni.h", {"options"}),
    ("CLI/", {"cli"}),
    ("nlohmann/", {"cli", "online", "session"}),
    ("fmt/", {"cli", "options", "problems", "online", "session", "shell"}),
    ("curl/", {"online"}),
    ("unicode/", {"problems"}),
    ("tbb/", {"tablebase"}),
    ("oneapi/", {"tablebase"}),
]
QT_HEADER = re.compile(r"^(Q[A-Z]|Qt)")
# Headers of the C++ library have neither a folder nor an extension. Everything else between
# brackets belongs to an operating system, and stands behind core/platform/.
STANDARD_HEADER = re.compile(r"^[a-z0-9_]+$")
PLATFORM_FOLDER = "core/platform/"
# Instructions of the processor, used behind a test of the compiler's macro for them.
PROCESSOR_HEADER = re.compile(r"^[a-z]+mmintrin\.h$")
PROCESSOR_FOLDER = "core/"

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]*)"|<([^>]*)>)', re.MULTILINE)
BLOCK_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)
SOURCE_ENDINGS = (".h", ".hpp", ".cpp", ".cc")
HEADER_ENDINGS = (".h", ".hpp")
# Paths of one machine have no place in a repository.
MACHINE_PATH = re.compile(r"(?<![\w.$})~*-])/(?:home|work|root|Users|mnt|media)/\w")
TEXT_ENDINGS = SOURCE_ENDINGS + (".def", ".py", ".txt", ".cmake", ".json", ".md", ".epd", ".sh")
SKIPPED_FOLDERS = {"build", ".git", "__pycache__", "data"}


def part_of(path):
    """(name, allowed) of a file of the house; None for tests, benchmarks and the like."""
    for name, prefixes, allowed in PARTS:
        if any(path.startswith(prefix) for prefix in prefixes):
            return name, allowed | {name}
    return None


def files_below(root):
    for folder, folders, names in os.walk(root):
        folders[:] = sorted(
            f for f in folders if f not in SKIPPED_FOLDERS and not f.startswith("build")
        )
        for name in sorted(names):
            yield os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        return file.read()


def circles(graph):
    """One path for every circle that a depth-first walk meets."""
    state, found = {}, []

    def visit(node, trail):
        state[node] = 1
        for target in graph.get(node, ()):
            if state.get(target) == 1:
                found.append(trail[trail.index(target):] + [target])
            elif target not in state:
                visit(target, trail + [target])
        state[node] = 2

    for node in sorted(graph):
        if node not in state:
            visit(node, [node])
    return found


def faults(root):
    found, graph = [], {}
    for path in files_below(root):
        if path.endswith(TEXT_ENDINGS) or "." not in os.path.basename(path):
            for number, line in enumerate(read(root, path).splitlines(), 1):
                match = MACHINE_PATH.search(line)
                if match and "MACHINE_PATH" not in line:
                    found.append(f"{path}:{number}: names a path of one machine")
        if not path.endswith(SOURCE_ENDINGS):
            continue
        text = BLOCK_COMMENT.sub(lambda m: "\n" * m.group().count("\n"), read(root, path))
        if path.endswith(HEADER_ENDINGS) and not re.search(r"^#pragma once$", text, re.MULTILINE):
            found.append(f"{path}: a header without #pragma once")
        part = part_of(path)
        is_free = path.startswith(FREE_FOLDERS)
        if part is None and not is_free:
            found.append(f"{path}: no folder of the house")
            continue
        graph[path] = []
        for match in INCLUDE.finditer(text):
            where = f"{path}:{text.count(chr(10), 0, match.start()) + 1}"
            own, system = match.groups()
            if own is not None:
                if not os.path.isfile(os.path.join(root, own)):
                    if part is not None or not own.endswith(".inc"):
                        found.append(f'{where}: "{own}" is no path from the root')
                    continue
                graph[path].append(own)
                if is_free:
                    continue
                target = part_of(own)
                if target is None or target[0] not in part[1]:
                    found.append(f'{where}: {part[0]} must not include "{own}"')
            elif not is_free:
                found += system_faults(where, path, part[0], system)
    found += ["circle: " + " -> ".join(circle) for circle in circles(graph)]
    return found


def system_faults(where, path, part, header):
    if QT_HEADER.match(header):
        return [] if part == "shell" else [f"{where}: <{header}> belongs to shell/ only"]
    for prefix, allowed in THIRD_PARTY:
        if header.startswith(prefix):
            return [] if part in allowed else [f"{where}: {part} must not include <{header}>"]
    if STANDARD_HEADER.match(header) or path.startswith(PLATFORM_FOLDER):
        return []
    if PROCESSOR_HEADER.match(header) and path.startswith(PROCESSOR_FOLDER):
        return []
    return [f"{where}: <{header}> is of an operating system and belongs to {PLATFORM_FOLDER}"]


class IncludeArrows(unittest.TestCase):
    def test_this_repository(self):
        self.assertEqual(faults(ROOT), [])

    # A copy of the sources with one planted fault; each must be found, and nothing else.
    def faults_after(self, path, text, replace=False):
        with tempfile.TemporaryDirectory() as folder:
            copy = os.path.join(folder, "copy")
            shutil.copytree(
                ROOT, copy, ignore=shutil.ignore_patterns("build*", ".git", "__pycache__", "data")
            )
            target = os.path.join(copy, path)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            before = ""
            if os.path.isfile(target) and not replace:
                before = read(copy, path)
            with open(target, "w", encoding="utf-8") as file:
                file.write(before + text)
            return faults(copy)

    def assert_one(self, found, words):
        self.assertEqual(len(found), 1, found)
        self.assertIn(words, found[0])

    def test_arrow_upwards_is_found(self):
        found = self.faults_after("core/planted.cpp", '#include "search/solve.h"\n')
        self.assert_one(found, 'core must not include "search/solve.h"')

    def test_arrow_to_the_command_line_is_found(self):
        found = self.faults_after("search/planted.cpp", '#include "cli/planted.h"\n')
        self.assert_one(found, "is no path from the root")

    def test_arrow_from_registers_to_search_is_found(self):
        found = self.faults_after("registers/planted.cpp", '#include "search/solve.h"\n')
        self.assert_one(found, "registers must not include")

    def test_circle_is_found(self):
        found = self.faults_after("core/types.h", '#include "core/chessboard.h"\n')
        self.assertTrue(found)
        self.assertTrue(all(fault.startswith("circle: ") for fault in found), found)

    def test_relative_path_is_found(self):
        found = self.faults_after("core/planted.cpp", '#include "types.h"\n')
        self.assert_one(found, "is no path from the root")

    def test_header_without_pragma_once_is_found(self):
        found = self.faults_after("core/planted.h", "struct TPlanted;\n")
        self.assert_one(found, "without #pragma once")

    def test_system_header_outside_of_platform_is_found(self):
        found = self.faults_after("search/planted.cpp", "#include <unistd.h>\n")
        self.assert_one(found, "of an operating system")

    def test_processor_header_outside_of_core_is_found(self):
        found = self.faults_after("search/planted.cpp", "#include <emmintrin.h>\n")
        self.assert_one(found, "of an operating system")

    def test_window_header_outside_of_shell_is_found(self):
        found = self.faults_after("cli/planted.cpp", "#include <QWidget>\n")
        self.assert_one(found, "belongs to shell/")

    def test_third_party_header_in_core_is_found(self):
        found = self.faults_after("core/planted.cpp", "#include <fmt/format.h>\n")
        self.assert_one(found, "core must not include")

    def test_machine_path_is_found(self):
        planted = "// see " + "/" + "home/somebody/notes\n"
        found = self.faults_after("core/planted.cpp", planted)
        self.assert_one(found, "path of one machine")

    def test_unknown_folder_is_found(self):
        found = self.faults_after("misc/planted.cpp", "int planted;\n")
        self.assert_one(found, "no folder of the house")


if __name__ == "__main__":
    if len(sys.argv) == 2 and os.path.isdir(sys.argv[1]):
        result = faults(sys.argv[1])
        print("\n".join(result))
        sys.exit(1 if result else 0)
    unittest.main()
