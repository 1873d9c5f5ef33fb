#!/usr/bin/env python3
"""Makes positions with a unique key at exactly mate in 3, 4, 5 and 6, for measuring.

    tools/generate_mates.py --program build/release/cli/quillmere -o bench/suite/generated.epd

Men are placed at random, white clearly stronger, until there are enough mates in 3. Positions one
move longer are found among those that differ from one already taken by a man moved, added, taken
away or exchanged. The program decides everything under limits of nodes, so that the same seed and
a program with the same search give the same file. A position is written only if the program proved
all three: there is a mate in n, there is none in n - 1, and just one first move mates in n.

The file is written whenever a length is full, and each length needs nothing but the one before it:
called again with --resume, the script goes on behind the last full length. It runs one search at a
time; half an hour is usual, most of it for the mates in 6. --help tells the options.
"""

import argparse
import json
import os
import random
import re
import subprocess
import sys
import tempfile

VALUES = {"Q": 9, "R": 5, "B": 3, "N": 3, "P": 1, "K": 0}
# As many of each as a side has at the start, so that no promotion is needed to reach the position.
MOST = {"Q": 1, "R": 2, "B": 2, "N": 2, "P": 8}
LEAST_MEN, MOST_MEN = 6, 12
# The margin by which white is stronger, in pawns.
LEAST_MARGIN = 5
# Nodes until a question is given up: is there a mate in n, or in n - 1? which first moves mate in n?
NODES = {3: 100_000, 4: 400_000, 5: 600_000, 6: 2_000_000}
NODES_ALL = {3: 300_000, 4: 1_000_000, 5: 2_000_000, 6: 7_000_000}
# A relative one move longer is looked for where that is likely to stay within the limit: a move
# more costs about so many times the nodes.
GROWTH = 8
# Longer tasks are left to fewer men: plain search has to prove them.
MEN_FOR = {3: 12, 4: 10, 5: 8, 6: 8}
BATCH = 24
# At most so many relatives of one position are taken: they measure the same thing.
RELATIVES = 2
# Most of a length, in per cent: keys that check, take or promote; a bare black king. Quiet keys are
# the rarer the longer the mate, so that the short ones have to make up for it: with the default
# counts more than half of all are quiet.
LOUD_SHARE = {3: 30, 4: 30, 5: 70, 6: 70}
BARE_SHARE = 12

KNIGHT_STEPS = [(1, 2), (2, 1), (2, -1), (1, -2), (-1, -2), (-2, -1), (-2, 1), (-1, 2)]
KING_STEPS = [(x, y) for x in (-1, 0, 1) for y in (-1, 0, 1) if (x, y) != (0, 0)]


# A position is a dictionary: (file, rank), both from 0, to a letter as in a FEN. White is to move.

def fen_of(men):
    rows = []
    for rank in range(7, -1, -1):
        row = "".join(men.get((file, rank), ".") for file in range(8))
        for length in range(8, 0, -1):
            row = row.replace("." * length, str(length))
        rows.append(row)
    return "/".join(rows) + " w - -"


def is_attacked(men, square, by_white):
    """Whether a man of that side attacks the square."""

    def is_one_of(where, letters):
        man = men.get(where)
        return man is not None and man.isupper() == by_white and man.upper() in letters

    file, rank = square
    pawn_rank = rank - 1 if by_white else rank + 1
    if any(is_one_of((file + side, pawn_rank), "P") for side in (-1, 1)):
        return True
    if any(is_one_of((file + x, rank + y), "N") for x, y in KNIGHT_STEPS):
        return True
    if any(is_one_of((file + x, rank + y), "K") for x, y in KING_STEPS):
        return True
    for x, y in KING_STEPS:
        sliders = "QB" if x and y else "QR"
        where = (file + x, rank + y)
        while 0 <= where[0] < 8 and 0 <= where[1] < 8:
            if where in men:
                if is_one_of(where, sliders):
                    return True
                break
            where = (where[0] + x, where[1] + y)
    return False


def men_of(fen):
    men = {}
    for rank, row in zip(range(7, -1, -1), fen.split()[0].split("/")):
        file = 0
        for letter in row:
            if letter.isdigit():
                file += int(letter)
            else:
                men[(file, rank)] = letter
                file += 1
    return men


def square_of(men, letter):
    return next(square for square, man in men.items() if man == letter)


def has_locked_bishop(men):
    """A bishop in a corner behind its own pawn, where it cannot have come from."""
    return any(
        men.get((file, rank)) == bishop and men.get((inner_file, inner_rank)) == pawn
        for bishop, pawn, rank, inner_rank in (("B", "P", 0, 1), ("b", "p", 7, 6))
        for file, inner_file in ((0, 1), (7, 6))
    )


def is_proper(men):
    """Legal, without castling and without promoted men, nobody in check, white clearly stronger."""
    letters = list(men.values())
    if not LEAST_MEN <= len(letters) <= MOST_MEN or letters.count("K") != 1:
        return False
    if letters.count("k") != 1 or any(
        letters.count(form(letter)) > most
        for letter, most in MOST.items()
        for form in (str.upper, str.lower)
    ):
        return False
    if any(man in "Pp" and square[1] in (0, 7) for square, man in men.items()):
        return False
    for bishop in "Bb":
        colours = [sum(square) % 2 for square, man in men.items() if man == bishop]
        if len(set(colours)) < len(colours):
            return False
    margin = sum(VALUES[m.upper()] * (1 if m.isupper() else -1) for m in letters)
    if margin < LEAST_MARGIN or has_locked_bishop(men):
        return False
    white_king, black_king = square_of(men, "K"), square_of(men, "k")
    if (white_king == (4, 0) and "R" in (men.get((0, 0)), men.get((7, 0)))) or (
        black_king == (4, 7) and "r" in (men.get((0, 7)), men.get((7, 7)))
    ):
        return False
    return not is_attacked(men, black_king, True) and not is_attacked(men, white_king, False)


class Generator:
    def __init__(self, seed):
        self.rng = random.Random(seed)

    def pick(self, items):
        return items[self.rng.randrange(len(items))]

    def chance(self, per_cent):
        return self.rng.randrange(100) < per_cent

    def king_square(self):
        """On the edge or in the middle, each as often."""
        while True:
            square = (self.rng.randrange(8), self.rng.randrange(8))
            is_edge = square[0] in (0, 7) or square[1] in (0, 7)
            if is_edge == self.chance(50):
                return square

    def place(self, men, letter):
        low, high = (1, 6) if letter in "Pp" else (0, 7)
        while True:
            square = (self.rng.randrange(8), self.rng.randrange(low, high + 1))
            if square not in men:
                men[square] = letter
                return

    def new_position(self):
        while True:
            men = {self.king_square(): "k"}
            self.place(men, "K")
            for _ in range(self.rng.randrange(2, 5)):
                self.place(men, self.pick("QRRBBNN"))
            for _ in range(self.rng.randrange(4)):
                self.place(men, "P")
            if not self.chance(BARE_SHARE):
                for _ in range(self.rng.randrange(3)):
                    self.place(men, self.pick("qrrbbnn"))
                for _ in range(self.rng.randrange(1, 5)):
                    self.place(men, "p")
            if is_proper(men):
                return men

    def relative(self, origin, most_men):
        """A proper position that differs in one man, or two."""
        while True:
            men = dict(origin)
            for _ in range(1 if self.chance(70) else 2):
                self.change(men)
            if men != origin and len(men) <= most_men and is_proper(men):
                return men

    def change(self, men):
        square = self.pick(sorted(men))
        man = men[square]
        dice = self.rng.randrange(100)
        if dice < 35:  # a step aside
            x, y = self.pick(KING_STEPS)
            target = (square[0] + x, square[1] + y)
            if 0 <= target[0] < 8 and 0 <= target[1] < 8 and target not in men:
                men[target] = men.pop(square)
        elif dice < 60:  # to any square
            del men[square]
            self.place(men, man)
        elif dice < 75:
            self.place(men, self.pick("pppnbrP"))
        elif man in "Kk":
            return
        elif dice < 90:
            del men[square]
        elif square[1] not in (0, 7):
            men[square] = self.pick("QRBNP" if man.isupper() else "qrbnp")


class Prover:
    """Asks the program. Questions go in batches, so that it starts seldom."""

    def __init__(self, program, home):
        self.program = program
        self.environment = dict(os.environ, QUILLMERE_HOME=home, LC_ALL="C")

    def ask(self, positions, moves, nodes, wants_all=False):
        if not positions:
            return []
        command = [self.program, "solve", "-", "--moves", str(moves), "--nodes", str(nodes),
                   "--heuristics", "off"]
        command += ["--json", "--quiet"] + (["--all"] if wants_all else [])
        done = subprocess.run(
            command,
            input="".join(fen_of(men) + "\n" for men in positions),
            capture_output=True,
            encoding="utf-8",
            env=self.environment,
        )
        answers = [json.loads(line) for line in done.stdout.splitlines()]
        if len(answers) != len(positions):
            sys.exit(f"{' '.join(command)}: {done.stderr.strip()}")
        return answers

    def shortest_mates(self, positions, moves):
        """Those that are a mate in `moves` and not in one fewer, each with the answer."""
        answers = self.ask([men for _, men in positions], moves - 1, NODES[moves])
        longer = [p for p, a in zip(positions, answers) if a["verdict"] == "no mate"]
        answers = self.ask([men for _, men in longer], moves, NODES[moves])
        return [(*p, a) for p, a in zip(longer, answers) if a["verdict"] == "mate"]

    def has_one_key(self, men, moves):
        """False also where it was not decided."""
        (answer,) = self.ask([men], moves, NODES_ALL[moves], True)
        return answer["complete"] and len(answer["keys"]) == 1


def kind_of(key):
    """What the key does: "quiet", or what makes it loud."""
    loud = [word for word, mark in (("capture", ":"), ("check", "+")) if mark in key["text"]]
    if key["uci"][4:]:
        loud.append("promotion")
    return " and ".join(loud) or "quiet"


class Stage:
    """The search for positions of one length."""

    def __init__(self, seed, moves, wanted, prover):
        # Of its own, so that a length comes out the same whether or not the others were resumed.
        self.generator = Generator(seed * 100 + moves)
        self.moves = moves
        self.wanted = wanted
        self.prover = prover
        self.origins = {}  # root to positions; a root is the number of a shorter one
        self.rows = []
        self.seen = set()

    def start_from(self, shorter):
        """Those whose relatives are likely to be decided within the limit."""
        positions = [men_of(row["fen"]) for row in shorter]
        limit = NODES[self.moves] // GROWTH
        answers = self.prover.ask(positions, self.moves - 1, limit)
        for root, (men, answer) in enumerate(zip(positions, answers)):
            if len(men) <= MEN_FOR[self.moves] and answer["verdict"] == "mate":
                self.origins[root] = [men]

    def is_full(self):
        return len(self.rows) >= self.wanted

    def is_used_up(self, root):
        return sum(row["root"] == root for row in self.rows) >= RELATIVES

    def step(self):
        generator, moves = self.generator, self.moves
        if moves == min(NODES):
            # Nobody has an ancestor here; each is its own root.
            batch = [(None, generator.new_position()) for _ in range(BATCH)]
        else:
            roots = [root for root in sorted(self.origins) if not self.is_used_up(root)]
            if not roots:
                sys.exit(f"no origins are left for a mate in {moves}: ask for more shorter ones")
            root = generator.pick(roots)
            origin = generator.pick(self.origins[root])
            batch = [(root, generator.relative(origin, MEN_FOR[moves])) for _ in range(BATCH)]
        for root, men, answer in self.prover.shortest_mates(batch, moves):
            if fen_of(men) not in self.seen:
                self.seen.add(fen_of(men))
                self.consider(root, men, answer["keys"][0])

    def consider(self, root, men, key):
        if root is not None:
            self.origins[root].append(men)
        # If there is only one key, it is this one; so the dear question comes last.
        if self.is_welcome(root, men, kind_of(key)) and self.prover.has_one_key(men, self.moves):
            self.rows.append(
                {"root": root, "fen": fen_of(men), "kind": kind_of(key), "key": key["move"]}
            )

    def is_welcome(self, root, men, kind):
        if self.is_full() or (root is not None and self.is_used_up(root)):
            return False
        loud = sum(row["kind"] != "quiet" for row in self.rows)
        if kind != "quiet" and (loud + 1) * 100 > LOUD_SHARE[self.moves] * self.wanted:
            return False
        bare = sum(is_bare(men_of(row["fen"])) for row in self.rows)
        return not is_bare(men) or (bare + 1) * 100 <= BARE_SHARE * self.wanted


def is_bare(men):
    return not any(man.islower() and man != "k" for man in men.values())


def generate(seed, wanted, taken, prover, on_full):
    """Fills `taken`, from length to its rows; lengths that are full in it already are kept."""
    for moves in sorted(wanted):
        if len(taken.get(moves, [])) == wanted[moves]:
            continue
        stage = Stage(seed, moves, wanted[moves], prover)
        stage.start_from(taken.get(moves - 1, []))
        while not stage.is_full():
            stage.step()
            count = len(stage.rows)
            print(f"\rmate in {moves}: {count} of {wanted[moves]} ", end="", file=sys.stderr)
        print(file=sys.stderr)
        taken[moves] = stage.rows
        on_full()


def rows_of(text):
    """What text_of() wrote, back."""
    taken = {}
    for line in text.splitlines():
        match = re.match(r'(\S+ w - -) bm (\S+); dm (\d+); id ".*?"; c0 "(.*)";$', line)
        if match:
            row = {"fen": match.group(1), "key": match.group(2), "kind": match.group(4)}
            taken.setdefault(int(match.group(3)), []).append(row)
    return taken


def text_of(taken, seed, source):
    counts = ", ".join(f"{len(rows)} #{moves}" for moves, rows in sorted(taken.items()))
    lines = [
        "# Generated positions, for bench/strength.py; not a suite of the program itself.",
        "#",
        f"# {counts}. Each was proved by plain search: a mate in dm, none in dm - 1,",
        "# and bm is the only key. "
        "c0 tells what the key does: quiet, or check, capture, promotion.",
        "#",
        f"# Made by tools/generate_mates.py --seed {seed} with the program of commit {source}.",
    ]
    for moves, rows in sorted(taken.items()):
        lines.append("")
        for number, row in enumerate(rows, 1):
            lines.append(
                f'{row["fen"]} bm {row["key"]}; dm {moves}; id "generated-{moves}-{number:02}"; '
                f'c0 "{row["kind"]}";'
            )
    return "\n".join(lines) + "\n"


def counts_from(text):
    counts = {int(m): int(c) for m, c in (part.split(":") for part in text.split(","))}
    lengths = sorted(counts)
    if lengths != list(range(3, 3 + len(lengths))) or lengths[-1] > 6 or min(counts.values()) < 1:
        raise ValueError(text)
    return counts


def main():
    parser = argparse.ArgumentParser(
        description="Makes positions with a unique key at exactly mate in 3 to 6."
    )
    parser.add_argument("--program", required=True, help="the quillmere that proves them")
    parser.add_argument("--source", default="unknown", help="its commit, for the head of the file")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument(
        "--counts",
        type=counts_from,
        default="3:70,4:70,5:50,6:10",
        help="how many of each length, from 3 without a gap (default %(default)s)",
    )
    parser.add_argument("-o", "--output", required=True, help="the file to write")
    parser.add_argument("--resume", action="store_true", help="keep the full lengths of the file")
    arguments = parser.parse_args()
    taken = {}
    if arguments.resume and os.path.exists(arguments.output):
        with open(arguments.output, encoding="utf-8") as file:
            taken = rows_of(file.read())

    def write():
        with open(arguments.output, "w", encoding="utf-8") as file:
            file.write(text_of(taken, arguments.seed, arguments.source))

    with tempfile.TemporaryDirectory() as home:
        prover = Prover(arguments.program, home)
        generate(arguments.seed, arguments.counts, taken, prover, write)


if __name__ == "__main__":
    main()
