#!/usr/bin/env python3
"""What bench/strength.py makes of results: sums, factors, alarms, sets and the cache."""

import os
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "bench"))

import strength  # noqa: E402
from strength import ALL, FIRST, MATE, NO_MATE, Position, Result, Row  # noqa: E402

POSITION = Position("a.epd", "one", 4, "fen dm 4;")


def mate(made, *keys, **facts):
    return Result(MATE, True, keys or ("a1a2",), made_moves=made, **facts)


def cut(made, **facts):
    return Result("stopped", False, made_moves=made, was_cut=True, limit=2.0, **facts)


def row(before, after=None, **facts):
    return Row(POSITION, before, after, **facts)


class Sums(unittest.TestCase):
    def test_factor_is_before_through_after(self):
        self.assertEqual(row(mate(600), mate(200)).factor(), 3.0)
        self.assertEqual(row(mate(100), mate(400)).factor(), 0.25)

    def test_no_factor_where_one_did_not_finish(self):
        self.assertIsNone(row(mate(600)).factor())
        self.assertIsNone(row(mate(600), cut(900)).factor())
        self.assertIsNone(row(cut(900), mate(600)).factor())
        self.assertIsNone(row(mate(600), mate(9, was_cut=True)).factor())

    def test_no_made_move_is_no_fault(self):
        self.assertEqual(row(mate(0), mate(0)).factor(), 1.0)

    def test_summary_of_every_kind(self):
        better, worse = row(mate(800), mate(200)), row(mate(100), mate(300))
        equal, lost, gained = row(mate(5), mate(5)), row(mate(5), cut(9)), row(cut(9), mate(5))
        summary = strength.summarise([better, worse, equal, lost, gained, row(cut(7), cut(7))])
        self.assertEqual((summary.solved_before, summary.solved_after), (4, 4))
        self.assertEqual((summary.lost, summary.gained), ([lost], [gained]))
        self.assertEqual((summary.made_before, summary.made_after), (905, 505))
        self.assertEqual(sorted(factor for factor, _ in summary.factors), [1 / 3, 1.0, 4.0])
        self.assertEqual([r for _, r in summary.needing_more_than(1)], [worse])
        self.assertEqual([r for _, r in summary.needing_more_than(2)], [worse])
        self.assertEqual(summary.needing_more_than(3.5), [])
        self.assertEqual(
            strength.factor_cells([4.0, 0.5, 1.0, 2.0]), ["1.500", "0.500", "4.000"]
        )

    def test_sum_of_one_build_leaves_out_what_was_cut(self):
        rows = [row(mate(5, cpu_ms=2)), row(cut(90, cpu_ms=50)), row(mate(7, cpu_ms=3))]
        self.assertEqual(
            strength.single_lines(rows), ["Finished: 2 positions, made moves 12, CPU ms 5."]
        )

    def test_partly_searched_keys_are_not_decided(self):
        partial = Result(MATE, False, ("a1a2",), was_cut=True, mode=ALL)
        self.assertFalse(partial.is_decided())
        self.assertTrue(Result(MATE, False, ("a1a2",), mode=FIRST).is_decided())


class Alarms(unittest.TestCase):
    def assert_alarms(self, count, tested):
        self.assertEqual(len(strength.alarms(tested)), count, strength.alarms(tested))

    def test_agreement_is_none(self):
        self.assert_alarms(0, row(mate(5), mate(9)))
        self.assert_alarms(0, row(mate(5), cut(9)))
        self.assert_alarms(0, row(Result(NO_MATE, True), Result(NO_MATE, True)))

    def test_other_verdict(self):
        self.assert_alarms(1, row(mate(5), Result(NO_MATE, True)))
        self.assert_alarms(1, row(Result(NO_MATE, True), mate(5)))

    def test_other_keys(self):
        one, two = mate(5, "a1a2", mode=ALL), mate(5, "a1a2", "b1b2", mode=ALL)
        self.assert_alarms(1, row(one, two))
        self.assert_alarms(1, row(two, one))
        self.assert_alarms(0, row(two, mate(9, "b1b2", "a1a2", mode=ALL)))

    def test_keys_of_a_cut_search_may_lack_some_but_not_differ(self):
        whole = mate(5, "a1a2", "b1b2", mode=ALL)
        self.assert_alarms(0, row(whole, Result(MATE, False, ("b1b2",), was_cut=True, mode=ALL)))
        self.assert_alarms(1, row(whole, Result(MATE, False, ("c1c2",), was_cut=True, mode=ALL)))

    def test_other_first_key_counts_only_if_it_is_known_to_be_wrong(self):
        pair = mate(5, "a1a2"), mate(5, "b1b2")
        self.assert_alarms(0, row(*pair))
        self.assertTrue(strength.has_another_key(row(*pair)))
        self.assert_alarms(0, row(*pair, known_keys=("a1a2", "b1b2")))
        self.assert_alarms(1, row(*pair, known_keys=("a1a2",)))

    def test_what_the_set_states(self):
        self.assert_alarms(0, row(mate(5, "a1a2", expected=("a1a2", "b1b2"))))
        self.assert_alarms(1, row(mate(5, "a1a2", expected=("a1a2", "b1b2"), mode=ALL)))
        self.assert_alarms(1, row(mate(5, "c1c2", expected=("a1a2",))))
        self.assert_alarms(1, row(Result(NO_MATE, True, expected=("a1a2",))))

    def test_a_program_that_fails(self):
        self.assert_alarms(1, row(Result("failed", fault="exit code 5")))

    def test_a_position_refused_by_one_build_only(self):
        refused, claim = Result(strength.REFUSED), Position("a.csv", "c", 4, "", is_claim=True)
        self.assert_alarms(0, Row(claim, refused, refused))
        self.assert_alarms(1, Row(claim, refused, cut(5)))
        self.assertEqual(len(strength.refused_lines([Row(claim, refused)])), 1)
        self.assert_alarms(1, row(refused))

    def test_alarm_is_in_the_report(self):
        rows = [row(mate(5), Result(NO_MATE, True))]
        builds = [strength.Build("old", "1"), strength.Build("new", "2")]
        self.assertIn("ALARM: 1", strength.report(rows, builds, FIRST, 1))
        rows = [row(mate(5), mate(5))]
        self.assertNotIn("ALARM", strength.report(rows, builds, FIRST, 1))


class Sets(unittest.TestCase):
    def test_epd(self):
        lines = ["# head", "", '8/8 w - - bm Qa1 Qb1; dm 5; id "x";', "8/8 w - - bm #7;"]
        one, two = strength.epd_positions("a.epd", lines)
        self.assertEqual((one.name, one.moves, one.claimed_key), ("x", 5, "Qa1 Qb1"))
        self.assertEqual(one.epd, "8/8 w - - bm Qa1 Qb1; dm 5;")
        self.assertEqual((two.name, two.moves, two.claimed_key), ("line-4", 7, ""))
        with self.assertRaises(strength.BadSet):
            list(strength.epd_positions("a.epd", ["8/8 w - - bm Qa1;"]))

    def test_csv(self):
        lines = ["fen;moves;author;year;key", "8/8 w - - 0 1;4;Loyd, Samuel;1859;Sa1[C]"]
        (one,) = strength.csv_positions("a.csv", lines)
        self.assertEqual((one.name, one.moves, one.author), ("a-2", 4, "Loyd, Samuel, 1859"))
        self.assertEqual((one.epd, one.is_claim), ("8/8 w - - 0 1 dm 4;", True))
        for bad in (["a;b", "1;2"], ["fen;moves", "8/8;four"]):
            with self.assertRaises(strength.BadSet):
                list(strength.csv_positions("a.csv", bad))

    def test_claims(self):
        claim = Position("a.csv", "c", 4, "fen dm 4;", is_claim=True)
        rows = [Row(claim, mate(1)), Row(claim, Result(NO_MATE, True)), Row(claim, cut(1))]
        lines = strength.claim_lines(rows)
        self.assertEqual(lines[1:], ["a.csv #4: 1 proved, 1 refuted, 1 undecided c"])


class TheCache(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "cache.jsonl")

    def test_what_was_added_is_read_again(self):
        result = mate(5, "a1a2", "b1b2", expected=("a1a2",), cpu_ms=7, limit=2.0, mode=ALL)
        strength.Cache(self.path).add("build", POSITION, result)
        read = strength.Cache(self.path)
        self.assertEqual(read.find("build", POSITION, ALL), result)
        self.assertIsNone(read.find("build", POSITION, FIRST))
        self.assertIsNone(read.find("other", POSITION, ALL))

    def test_a_line_cut_off_loses_only_itself(self):
        strength.Cache(self.path).add("build", POSITION, mate(5))
        with open(self.path, "a", encoding="utf-8") as file:
            file.write('{"build": "bu')
        strength.Cache(self.path).add("two", POSITION, mate(6))
        read = strength.Cache(self.path)
        self.assertEqual(read.find("build", POSITION, FIRST).made_moves, 5)
        self.assertEqual(read.find("two", POSITION, FIRST).made_moves, 6)

    def test_a_cut_result_is_not_enough_for_a_higher_limit(self):
        self.assertTrue(cut(5).is_enough_for(2))
        self.assertFalse(cut(5).is_enough_for(3))
        self.assertTrue(mate(5, limit=2.0).is_enough_for(3))


if __name__ == "__main__":
    unittest.main()
