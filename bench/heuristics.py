#!/usr/bin/env python3
"""What each heuristic brings and costs on a suite of positions: moves made without it and with it.

    bench/heuristics.py --build build/release/cli/quillmere
    bench/heuristics.py --build PROGRAM --id "0x4 helps" --id "0x4 costs" [SUITE]

A line of the suite is a position of an EPD file: its id is the bit of the heuristic and the role
of the position, "helps" or "costs"; c2 is the text for --heuristics, and c3, where it is there,
the text that it is compared with in place of "off": some rules act beside another one only.

Every task is solved twice by a program of its own, on one thread and with default options, for the
first key. Counted are the made moves of all passes up to the proof: those under heuristics, the
relaxed ones and the last one without any. The search for the main line is not. So the table is the
same on every machine. Its factor is the first number through the second: above 1 the heuristic
saved moves, below 1 it cost some.

A heuristic must not change the answer: another verdict or another first key is an alarm, and so is
a key that the suite does not state, or a search that does not come to its end. A position that
does not do any more what its role says is told as a note: at least twice as few moves for "helps",
more moves for "costs".

Exit codes: 0 all well, 1 an alarm, 2 wrong usage or a suite that cannot be read.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass

from strength import MATE, NO_MATE, OFF, BadSet, epd_positions, hash_of, markdown

SUITE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "suite", "heuristics.epd")
HELPS, COSTS = "helps", "costs"
# A position helps if it needs so many times fewer moves.
LEAST_HELP = 2
COLUMNS = ["bit", "role", "heuristics", "n", "without", "with", "factor"]
COLUMNS += ["verdict", "key", "passes"]


# ---- The suite


@dataclass(frozen=True)
class Task:
    name: str
    bit: str  # as in docs/heuristics.md: 0x and hexadecimal digits
    role: str
    fen: str
    moves: int
    text: str
    base: str  # what the text is compared with


def task_of(suite_name, position):
    where = f"{suite_name}: {position.name}"
    name = re.fullmatch(rf"(0x[0-9a-f]+) ({HELPS}|{COSTS})", position.name)
    text = re.search(r'\bc2 "([^"]+)";', position.epd)
    base = re.search(r'\bc3 "([^"]+)";', position.epd)
    if not name:
        raise BadSet(f"{where}: the id is no bit and role")
    if not text:
        raise BadSet(f"{where}: c2 with the heuristics is missing")
    return Task(
        position.name,
        name.group(1),
        name.group(2),
        " ".join(position.epd.split()[:4]),
        position.moves,
        text.group(1),
        base.group(1) if base else OFF,
    )


def read_suite(path):
    name = os.path.basename(path)
    try:
        with open(path, encoding="utf-8") as file:
            lines = file.read().splitlines()
    except (OSError, UnicodeDecodeError) as error:
        raise BadSet(f"{path}: {error}") from error
    tasks = [task_of(name, position) for position in epd_positions(name, lines)]
    names = [task.name for task in tasks]
    twice = sorted({name for name in names if names.count(name) > 1})
    if twice:
        raise BadSet(f"{path}: twice: {', '.join(twice)}")
    return tasks


# ---- Running the program


@dataclass(frozen=True)
class Answer:
    verdict: str
    key: str
    passes: tuple  # names in order
    made_moves: int


def answer_of(row):
    return Answer(
        row["verdict"],
        row["keys"][0]["uci"] if row["keys"] else "",
        tuple(each["name"] for each in row["passes"]),
        sum(each["madeMoves"] for each in row["passes"]),
    )


def solve(program, task, text):
    command = [program, "solve", task.fen, "--moves", str(task.moves), "--heuristics", text]
    command += ["--threads", "1", "--json", "--quiet"]
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ, QUILLMERE_HOME=os.path.join(folder, "home"), LC_ALL="C")
        done = subprocess.run(command, capture_output=True, encoding="utf-8", env=environment)
    try:
        return answer_of(json.loads(done.stdout))
    except (ValueError, KeyError, TypeError):
        reason = f"exit code {done.returncode} {done.stderr.strip()}".strip()
        return Answer(f"failed: {reason}", "", (), 0)


# ---- Comparing, and the report


@dataclass(frozen=True)
class Row:
    task: Task
    off: Answer
    base: Answer  # the same as off where the task names nothing else
    word: Answer

    def factor(self):
        return max(1, self.base.made_moves) / max(1, self.word.made_moves)

    def keeps_role(self):
        return self.factor() >= LEAST_HELP if self.task.role == HELPS else self.factor() < 1


def measure(program, task):
    off = solve(program, task, OFF)
    base = off if task.base == OFF else solve(program, task, task.base)
    return Row(task, off, base, solve(program, task, task.text))


def alarms(row):
    """What must not be, as sentences."""
    found, off = [], row.off
    for text, answer in ((OFF, off), (row.task.base, row.base), (row.task.text, row.word)):
        if answer.verdict not in (MATE, NO_MATE):
            found.append(f"{row.task.name}: {text}: {answer.verdict}")
        elif (answer.verdict, answer.key) != (off.verdict, off.key):
            found.append(
                f"{row.task.name}: {text}: {answer.verdict} {answer.key}, "
                f"without heuristics {off.verdict} {off.key}"
            )
    return list(dict.fromkeys(found))


def cells(row):
    task, word = row.task, row.word
    text = task.text if task.base == OFF else f"{task.text} against {task.base}"
    return [
        task.bit,
        task.role,
        text,
        str(task.moves),
        str(row.base.made_moves),
        str(word.made_moves),
        f"{row.factor():.2f}",
        word.verdict,
        word.key,
        " ".join(word.passes),
    ]


def report(rows):
    parts = [markdown([COLUMNS, *(cells(row) for row in rows)])]
    notes = [f"{r.task.name}: factor {r.factor():.2f}" for r in rows if not r.keeps_role()]
    if notes:
        parts.append("\n".join(["Not as the role says:", *notes]))
    found = [alarm for row in rows for alarm in alarms(row)]
    if found:
        banner = f"!!!!!!!! ALARM: {len(found)} !!!!!!!!"
        parts.append("\n".join([banner, *found, banner]))
    return "\n\n".join(parts) + "\n"


# ---- The command


def arguments_of(words):
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("suite", nargs="?", default=SUITE, metavar="SUITE",
                        help="an EPD file (default: bench/suite/heuristics.epd)")
    parser.add_argument("--build", required=True, metavar="PROGRAM", help="the program")
    parser.add_argument("--id", action="append", default=[], metavar="ID",
                        help="only the position of this id; may be given several times")
    parser.add_argument("--quiet", action="store_true", help="no progress")
    return parser.parse_args(words)


def main(words=None):
    arguments = arguments_of(words)
    program = os.path.abspath(arguments.build)
    try:
        hash_of(program)  # fails here, not in the first task, where there is no such file
        tasks = read_suite(arguments.suite)
        unknown = set(arguments.id) - {task.name for task in tasks}
        if unknown:
            raise BadSet(f"{arguments.suite}: no {', '.join(sorted(unknown))}")
    except (BadSet, OSError) as error:
        print(f"heuristics.py: {error}", file=sys.stderr)
        return 2

    rows = []
    for task in tasks:
        if arguments.id and task.name not in arguments.id:
            continue
        rows.append(measure(program, task))
        if not arguments.quiet:
            print(task.name, file=sys.stderr, flush=True)
    print(report(rows), end="")
    return 1 if any(alarms(row) for row in rows) else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
