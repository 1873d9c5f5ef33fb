#!/usr/bin/env python3
"""How much work one or two builds of the program need on sets of positions.

    bench/strength.py --build PROGRAM --cache strength.jsonl bench/suite/generated.epd
    bench/strength.py --build OLD --build NEW --cache strength.jsonl --min 4 --max 8 --all SET...

Every position is solved alone, by a program of its own with default options, without heuristics
unless --heuristics says otherwise, and with a limit of CPU time. Work is counted in made moves, which
are the same on every machine; CPU time is told beside it. In JSON the program also rebuilds the main line of a mate, and that is part of both.

A SET is an EPD file, or a CSV file with semicolons and the header fen;moves;... (author and key
are shown if they are there). What an EPD file states as bm is taken for true: whatever differs
from it is an alarm. The lengths of a CSV file are claims; the report tells which were proved and
which refuted.

Two builds must not contradict each other: different verdicts, or different keys with --all, are
alarms too. Searching for the first key, they may find different ones where there are several; it
is an alarm if the cache knows all keys of the position and the one that was found is none of them.

Results are kept in the cache by build (a hash of the program file and, but for "off", the
heuristics), position and mode, so that a run that was stopped goes on where it ended, and an old build
is measured once. A result that reached the limit is measured again only under a higher one.

Exit codes: 0 all well, 1 an alarm, 2 wrong usage or a set that cannot be read. Needs Linux.
"""

import argparse
import csv
import hashlib
import json
import os
import re
import resource
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from concurrent.futures import ThreadPoolExecutor, as_completed
from dataclasses import dataclass, field

MATE, NO_MATE, REFUSED = "mate", "no mate", "refused"
ALL, FIRST = "all", "first"
OFF = "off"
# Behind the CPU limit: what the program gets to stop by itself, and then it is killed.
GRACE_SECONDS = 2
# Real time after which a program counts as hung: it waits for something that never comes.
HUNG_FACTOR, HUNG_SECONDS = 20, 60
BAD_INPUT = 3  # exit code of a program that does not accept the position
TICK_SECONDS = 0.01


# ---- Sets of positions


@dataclass(frozen=True)
class Position:
    set_name: str
    name: str
    moves: int
    epd: str  # what the program reads, without an id
    author: str = ""
    claimed_key: str = ""
    is_claim: bool = False  # its length is a claim that may be refuted


class BadSet(Exception):
    pass


def epd_positions(set_name, lines):
    for number, line in enumerate(lines, 1):
        line = line.strip()
        if not line or line.startswith("#"):
            continue
        length = re.search(r"\b(?:dm |bm #)(\d+)", line)
        if not length:
            raise BadSet(f"{set_name}:{number}: dm or bm #n is missing")
        name = re.search(r'\bid "([^"]*)";', line)
        key = re.search(r"\bbm ([^#;][^;]*);", line)
        yield Position(
            set_name,
            name.group(1) if name else f"line-{number}",
            int(length.group(1)),
            line.replace(name.group(0), "").strip() if name else line,
            claimed_key=key.group(1) if key else "",
        )


def csv_positions(set_name, lines):
    rows = csv.DictReader(lines, delimiter=";", quoting=csv.QUOTE_NONE)
    if not rows.fieldnames or not {"fen", "moves"} <= set(rows.fieldnames):
        raise BadSet(f"{set_name}:1: the header fen;moves;... is missing")
    stem = os.path.splitext(set_name)[0]
    for number, row in enumerate(rows, 2):
        if not (row["moves"] or "").isdigit():
            raise BadSet(f"{set_name}:{number}: no number of moves")
        author = ", ".join(row[name] for name in ("author", "year") if row.get(name))
        yield Position(
            set_name,
            f"{stem}-{number}",
            int(row["moves"]),
            f"{row['fen']} dm {row['moves']};",
            author,
            row.get("key") or "",
            True,
        )


def read_set(path):
    name = os.path.basename(path)
    try:
        with open(path, encoding="utf-8-sig") as file:
            lines = file.read().splitlines()
    except (OSError, UnicodeDecodeError) as error:
        raise BadSet(f"{path}: {error}") from error
    read = csv_positions if path.lower().endswith(".csv") else epd_positions
    return list(read(name, lines))


# ---- Results, and the cache of them


@dataclass(frozen=True)
class Result:
    """What one build said of one position in one mode."""

    verdict: str
    is_complete: bool = False  # every first move that was asked for was decided
    keys: tuple = ()
    expected: tuple = ()  # the keys that the set states
    made_moves: int = 0
    cpu_ms: int = 0
    limit: float = 0.0  # seconds of CPU
    was_cut: bool = False  # it reached the limit
    mode: str = FIRST
    fault: str = ""  # why there is no answer at all

    def is_decided(self):
        if self.mode == FIRST:
            return self.verdict in (MATE, NO_MATE)
        return self.verdict == NO_MATE or (self.verdict == MATE and self.is_complete)

    def is_measured(self):
        """Decided and brought to its end, so that its made moves are those of the whole task."""
        return self.is_decided() and not self.was_cut

    def is_enough_for(self, limit):
        return not self.was_cut or self.limit >= limit


class Cache:
    """A file of JSON lines. A line that was cut off while it was written is passed over."""

    def __init__(self, path):
        self.path = path
        self.results = {}
        self.lock = threading.Lock()
        if not path or not os.path.exists(path):
            return
        with open(path, encoding="utf-8") as file:
            for line in file:
                try:
                    row = json.loads(line)
                    key = tuple(row.pop(name) for name in ("build", "position", "mode"))
                    keys, expected = tuple(row.pop("keys")), tuple(row.pop("expected"))
                    self.results[key] = Result(
                        mode=key[2], keys=keys, expected=expected, **row
                    )
                except (ValueError, KeyError, TypeError, AttributeError):
                    continue

    def find(self, build, position, mode):
        return self.results.get((build, position.epd, mode))

    def add(self, build, position, result):
        with self.lock:
            self.results[(build, position.epd, result.mode)] = result
            if not self.path:
                return
            row = {"build": build, "position": position.epd, **vars(result)}
            del row["fault"]
            with open(self.path, "a", encoding="utf-8") as file:
                file.write("\n" if self.ends_within_a_line() else "")
                file.write(json.dumps(row, ensure_ascii=False) + "\n")

    def ends_within_a_line(self):
        with open(self.path, "rb") as file:
            size = file.seek(0, os.SEEK_END)
            if size == 0:
                return False
            file.seek(-1, os.SEEK_END)
            return file.read() != b"\n"


# ---- Running the program


@dataclass(frozen=True)
class Build:
    path: str
    hash: str  # of the file, with the heuristics that it is asked to use
    word: str = OFF  # for --heuristics; empty for a program that does not know it


def build_of(path, word):
    file = hash_of(path)
    return Build(os.path.abspath(path), file if word in (OFF, "") else f"{file} {word}", word)


def hash_of(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()[:16]


def cpu_seconds_of(pid):
    """CPU time of a running process with all its threads; 0 if it cannot be told."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
            fields = file.read().rpartition(")")[2].split()
    except OSError:
        return 0
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def wait_within(process, limit):
    """(status, CPU seconds, was cut, is hung). Asks the program to stop at the limit, so that it
    still tells what it did until then; the kernel kills it a little later."""
    soft = int(limit) + 1 + GRACE_SECONDS
    try:
        resource.prlimit(process.pid, resource.RLIMIT_CPU, (soft, soft + 1))
    except ProcessLookupError:
        pass
    start, was_cut = time.monotonic(), False
    while True:
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        if pid:
            process.returncode = os.waitstatus_to_exitcode(status)
            return process.returncode, usage.ru_utime + usage.ru_stime, was_cut, False
        if not was_cut and cpu_seconds_of(process.pid) >= limit:
            process.send_signal(signal.SIGTERM)
            was_cut = True
        if time.monotonic() - start > HUNG_FACTOR * limit + HUNG_SECONDS:
            process.kill()
            process.wait()
            return process.returncode, 0, was_cut, True
        time.sleep(TICK_SECONDS if time.monotonic() - start > 0.2 else TICK_SECONDS / 5)


def run(build, position, mode, limit):
    command = [build.path, "epd", "-", "--json", "--quiet"] + (["--all"] if mode == ALL else [])
    command += ["--heuristics", build.word] if build.word else []
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ, QUILLMERE_HOME=os.path.join(folder, "home"), LC_ALL="C")
        task = os.path.join(folder, "task")
        with open(task, "w", encoding="utf-8") as file:
            file.write(position.epd + "\n")
        with open(task, encoding="utf-8") as stdin, open(
            os.path.join(folder, "out"), "w+", encoding="utf-8"
        ) as out, open(os.path.join(folder, "err"), "w+", encoding="utf-8") as err:
            process = subprocess.Popen(
                command, stdin=stdin, stdout=out, stderr=err, env=environment,
                start_new_session=True,  # Ctrl-C ends this script, not the search with a result
            )
            try:
                code, cpu, was_cut, is_hung = wait_within(process, limit)
            finally:
                if process.returncode is None:
                    process.kill()
                    process.wait()
            out.seek(0)
            err.seek(0)
            return result_of(out.read(), err.read(), code, cpu, was_cut, is_hung, mode, limit)


def result_of(out, err, code, cpu, was_cut, is_hung, mode, limit):
    facts = {"cpu_ms": round(cpu * 1000), "limit": limit, "was_cut": was_cut, "mode": mode}
    try:
        (row,) = [json.loads(line) for line in out.splitlines()]
        result = Result(
            row["verdict"],
            row["complete"],
            tuple(key["uci"] for key in row["keys"]),
            tuple(key["uci"] for key in row["expectedKeys"]),
            row["madeMoves"],
            **facts,
        )
    except (ValueError, KeyError):
        if was_cut and code == -signal.SIGXCPU:
            return Result("limit", **facts)  # it did not heed the request to stop
        if code == BAD_INPUT:
            return Result(REFUSED, **facts)
        reason = "hung" if is_hung else f"exit code {code}"
        return Result("failed", fault=f"{reason} {err.strip()}".strip(), **facts)
    if not result.is_decided() and not was_cut:
        return Result(row["verdict"], fault=f"gave up with exit code {code}", **facts)
    return result


def measure(builds, positions, mode, limit, jobs, cache, tell):
    """Fills the cache; returns {(build, position): result}."""
    results, waiting = {}, []
    for position in positions:
        for build in dict.fromkeys(builds):
            known = cache.find(build.hash, position, mode)
            if known and known.is_enough_for(limit):
                results[(build, position)] = known
            else:
                waiting.append((build, position))
    with ThreadPoolExecutor(jobs) as pool:
        tasks = {pool.submit(run, b, p, mode, limit): (b, p) for b, p in waiting}
        try:
            for number, task in enumerate(as_completed(tasks), 1):
                build, position = tasks[task]
                result = results[(build, position)] = task.result()
                if not result.fault:
                    cache.add(build.hash, position, result)
                tell(f"{number} of {len(waiting)}  {position.name}  {result.verdict}")
        except BaseException:
            pool.shutdown(wait=False, cancel_futures=True)
            raise
    return results


# ---- Comparing and summing up


@dataclass
class Row:
    """One position with the results of one build or of two."""

    position: Position
    before: Result
    after: Result = None
    known_keys: tuple = None  # all keys, if the cache knows them

    def results(self):
        return [result for result in (self.before, self.after) if result is not None]

    def factor(self):
        """How many times fewer moves the second build made; None if one did not finish."""
        if self.after is None or not (self.before.is_measured() and self.after.is_measured()):
            return None
        return max(1, self.before.made_moves) / max(1, self.after.made_moves)


@dataclass
class Summary:
    solved_before: int = 0
    solved_after: int = 0
    lost: list = field(default_factory=list)  # decided before, not after
    gained: list = field(default_factory=list)
    factors: list = field(default_factory=list)  # (factor, row)
    made_before: int = 0  # over the positions with a factor
    made_after: int = 0
    cpu_before: int = 0
    cpu_after: int = 0

    def needing_more_than(self, times):
        """Rows in which the second build made more than `times` as many moves, worst first."""
        rows = [(1 / factor, row) for factor, row in self.factors if 1 / factor > times]
        return sorted(rows, key=lambda pair: -pair[0])


def summarise(rows):
    summary = Summary()
    for row in rows:
        summary.solved_before += row.before.is_decided()
        if row.after is None:
            continue
        summary.solved_after += row.after.is_decided()
        if row.before.is_decided() and not row.after.is_decided():
            summary.lost.append(row)
        if row.after.is_decided() and not row.before.is_decided():
            summary.gained.append(row)
        factor = row.factor()
        if factor is not None:
            summary.factors.append((factor, row))
            summary.made_before += row.before.made_moves
            summary.made_after += row.after.made_moves
            summary.cpu_before += row.before.cpu_ms
            summary.cpu_after += row.after.cpu_ms
    return summary


def alarms(row):
    """What must not be, as sentences."""
    found, name = [], row.position.name
    for word, result in zip(("first", "second"), row.results()):
        if result.fault:
            found.append(f"{name}: the {word} build: {result.fault}")
        if result.verdict == REFUSED and not row.position.is_claim:
            found.append(f"{name}: the {word} build does not accept the line of the set")
        if result.expected and result.verdict == NO_MATE:
            found.append(f"{name}: the {word} build says no mate, the set states {result.expected}")
        whole = result.mode == ALL and result.is_complete and result.verdict == MATE
        strange = set(result.keys) - set(result.expected)
        if result.expected and (strange or (whole and set(result.keys) != set(result.expected))):
            found.append(
                f"{name}: the {word} build finds {result.keys}, the set states {result.expected}"
            )
        if row.known_keys is not None and set(result.keys) - set(row.known_keys):
            found.append(f"{name}: the {word} build finds {result.keys}, all are {row.known_keys}")
    return found + (contradictions(row) if row.after is not None else [])


def contradictions(row):
    before, after = row.before, row.after
    if {before.verdict, after.verdict} == {MATE, NO_MATE}:
        return [f"{row.position.name}: {before.verdict} and {after.verdict}"]
    if (before.verdict == REFUSED) != (after.verdict == REFUSED):
        return [f"{row.position.name}: refused by one build only"]
    if before.mode != ALL:
        return []
    for one, other in ((before, after), (after, before)):
        is_whole = one.verdict == MATE and one.is_complete
        is_other_whole = other.verdict == MATE and other.is_complete
        strange = set(other.keys) - set(one.keys)
        if is_whole and (strange or (is_other_whole and set(one.keys) != set(other.keys))):
            return [f"{row.position.name}: keys {before.keys} and {after.keys}"]
    return []


def has_another_key(row):
    """Searching for the first key, the builds found different ones."""
    return (
        row.after is not None
        and row.before.mode == FIRST
        and bool(row.before.keys and row.after.keys)
        and row.before.keys != row.after.keys
    )


# ---- The report

COLUMNS = ["id", "author", "n", "verdict", "key", "claimed key"]
ONE = ["made moves", "CPU ms"]
TWO = ["made moves before", "made moves after", "before/after", "CPU ms before", "CPU ms after"]


def cells(row):
    position, last = row.position, row.results()[-1]
    best = last if last.is_decided() or not row.before.is_decided() else row.before
    made = [made_text(result) for result in row.results()]
    cpu = [str(result.cpu_ms) for result in row.results()]
    factor = row.factor()
    middle = [] if row.after is None else ["" if factor is None else f"{factor:.3f}"]
    is_told = best.is_decided() or best.fault or best.verdict == REFUSED
    verdict = best.verdict if is_told else "undecided"
    return [
        position.name,
        position.author,
        str(position.moves),
        verdict,
        " ".join(best.keys),
        position.claimed_key,
        *made,
        *middle,
        *cpu,
    ]


def made_text(result):
    return f"{'' if result.is_measured() else '>'}{result.made_moves}"


def header(rows):
    return COLUMNS + (TWO if rows and rows[0].after is not None else ONE)


def markdown(table):
    lines = ["| " + " | ".join(cell.replace("|", "\\|") for cell in line) + " |" for line in table]
    return "\n".join([lines[0], "|" + "---|" * len(table[0]), *lines[1:]])


def groups(rows):
    """Name and rows: each set and length, then everything."""
    by_name = {}
    for row in rows:
        by_name.setdefault((row.position.set_name, row.position.moves), []).append(row)
    named = [(f"{name} #{moves}", part) for (name, moves), part in sorted(by_name.items())]
    return named + [("all", rows)]


def solved_table(rows):
    is_pair = rows[0].after is not None
    head = ["set", "positions", "solved"]
    if is_pair:
        head += ["solved after", "lost", "gained", "median before/after", "min", "max"]
    table = [head]
    for name, part in groups(rows):
        summary = summarise(part)
        line = [name, str(len(part)), str(summary.solved_before)]
        if is_pair:
            line += [str(summary.solved_after), str(len(summary.lost)), str(len(summary.gained))]
            line += factor_cells([factor for factor, _ in summary.factors])
        table.append(line)
    return markdown(table)


def factor_cells(factors):
    if not factors:
        return ["", "", ""]
    return [f"{value:.3f}" for value in (statistics.median(factors), min(factors), max(factors))]


def pair_lines(rows):
    summary = summarise(rows)
    if not summary.factors:
        return ["No position was finished by both."]
    lines = [
        f"Finished by both: {len(summary.factors)} positions, "
        f"made moves {summary.made_before} before, {summary.made_after} after "
        f"({max(1, summary.made_before) / max(1, summary.made_after):.3f} times fewer), "
        f"CPU ms {summary.cpu_before} before, {summary.cpu_after} after."
    ]
    for times in (1, 2):
        worse = summary.needing_more_than(times)
        lines.append(f"Needing more than {times}x as many made moves as before: {len(worse)}")
        if times == 1:
            lines += [f"  {ratio:.3f}x  {row.position.name}" for ratio, row in worse[:20]]
            lines += ["  ..."] if len(worse) > 20 else []
    for word, part in (("Lost", summary.lost), ("Gained", summary.gained)):
        names = " ".join(row.position.name for row in part)
        lines.append(f"{word} within the limit: {len(part)} {names}".rstrip())
    others = [row for row in rows if has_another_key(row)]
    names = " ".join(
        f"{r.position.name}({r.before.keys[0]},{r.after.keys[0]})" for r in others
    )
    lines.append(f"Another first key: {len(others)} {names}".rstrip())
    return lines


def single_lines(rows):
    measured = [row.before for row in rows if row.before.is_measured()]
    made, cpu = sum(r.made_moves for r in measured), sum(r.cpu_ms for r in measured)
    return [f"Finished: {len(measured)} positions, made moves {made}, CPU ms {cpu}."]


def claim_lines(rows):
    lines = []
    for name, part in groups(rows)[:-1]:
        if not part[0].position.is_claim:
            continue
        verdicts = [{r.verdict for r in row.results() if r.is_decided()} for row in part]
        proved = sum(v == {MATE} for v in verdicts)
        refuted = [row.position.name for row, v in zip(part, verdicts) if v == {NO_MATE}]
        open_count = len(part) - proved - len(refuted)
        lines.append(
            f"{name}: {proved} proved, {len(refuted)} refuted, {open_count} undecided "
            f"{' '.join(refuted)}".rstrip()
        )
    return ["Lengths claimed:", *lines] if lines else []


def refused_lines(rows):
    names = [row.position.name for row in rows if row.before.verdict == REFUSED]
    return [f"Refused as no position: {len(names)} {' '.join(names)}"] if names else []


def alarm_lines(rows):
    found = [alarm for row in rows for alarm in alarms(row)]
    if not found:
        return []
    banner = f"!!!!!!!! ALARM: {len(found)} !!!!!!!!"
    return [banner, *found, banner]


def report(rows, builds, mode, limit):
    # The files are told by name and hash; where they lie is nobody's business.
    names = ", ".join(f"{os.path.basename(b.path)} {b.hash}" for b in builds)
    words = "all keys" if mode == ALL else "first key"
    parts = [[f"Builds: {names}; {words}; {limit:g} s CPU a position."], [solved_table(rows)]]
    parts.append(pair_lines(rows) if len(builds) == 2 else single_lines(rows))
    parts += [claim_lines(rows), refused_lines(rows), alarm_lines(rows)]
    return "\n\n".join("\n".join(lines) for lines in parts if lines) + "\n"


def write_tables(prefix, rows, text):
    table = [header(rows), *(cells(row) for row in rows)]
    with open(prefix + ".csv", "w", encoding="utf-8", newline="") as file:
        csv.writer(file, delimiter=";", lineterminator="\n").writerows(table)
    with open(prefix + ".md", "w", encoding="utf-8") as file:
        file.write(text + "\n" + markdown(table) + "\n")


# ---- The command


def arguments_of(words):
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("sets", nargs="+", metavar="SET", help="an EPD or a CSV file")
    parser.add_argument(
        "--build", action="append", required=True, metavar="PROGRAM",
        help="the program; given twice, the second is compared with the first",
    )
    parser.add_argument("--cache", metavar="FILE", help="results known already, and new ones")
    parser.add_argument("--all", action="store_true", help="find all keys, not only the first")
    parser.add_argument("--heuristics", default=OFF, metavar="auto|off|TEXT",
                        help='as for epd (default off); "" for a program that does not know it')
    parser.add_argument("--cpu", type=float, default=10, metavar="S",
                        help="seconds of CPU for each position (default 10)")
    parser.add_argument("--min", type=int, default=1, metavar="N", help="shortest mates to take")
    parser.add_argument("--max", type=int, default=1000, metavar="N", help="longest mates to take")
    parser.add_argument("--jobs", type=int, choices=(1, 2), default=1,
                        help="programs running at the same time (default 1)")
    parser.add_argument("-o", "--output", metavar="PREFIX",
                        help="write PREFIX.md and PREFIX.csv, with a line for each position")
    parser.add_argument("--quiet", action="store_true", help="no progress")
    arguments = parser.parse_args(words)
    if len(arguments.build) > 2:
        parser.error("one build or two")
    if arguments.cpu <= 0:
        parser.error("--cpu must be above 0")
    return arguments


def main(words=None):
    arguments = arguments_of(words)
    mode = ALL if arguments.all else FIRST
    try:
        builds = [build_of(path, arguments.heuristics) for path in arguments.build]
        positions = [
            position
            for path in arguments.sets
            for position in read_set(path)
            if arguments.min <= position.moves <= arguments.max
        ]
        if not positions:
            raise BadSet("no position of these lengths")
        cache = Cache(arguments.cache)
    except (BadSet, OSError) as error:
        print(f"strength.py: {error}", file=sys.stderr)
        return 2

    def tell(text):
        if not arguments.quiet:
            print(text, file=sys.stderr, flush=True)

    results = measure(builds, positions, mode, arguments.cpu, arguments.jobs, cache, tell)
    rows = [
        Row(
            position,
            results[(builds[0], position)],
            results[(builds[1], position)] if len(builds) == 2 else None,
            known_keys(cache, builds, position),
        )
        for position in positions
    ]
    text = report(rows, builds, mode, arguments.cpu)
    if arguments.output:
        write_tables(arguments.output, rows, text)
    print(text, end="")
    return 1 if any(alarms(row) for row in rows) else 0


def known_keys(cache, builds, position):
    """All keys by the first build that searched for all."""
    for build in builds:
        result = cache.find(build.hash, position, ALL)
        if result and result.is_decided():
            return result.keys
    return None


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
