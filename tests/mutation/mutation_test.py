# SPDX-License-Identifier: Apache-2.0
"""The faults that are planted: where they are found, what they change, and that they go again."""
import os
import select
import tempfile
import unittest
from pathlib import Path

import faults
import rooms
import trial

TREE = Path(__file__).resolve().parents[2]


def changes(text, kind):
    """What the text becomes by each fault of one kind."""
    return [fault.planted_in(text) for fault in faults.faults_in(text) if fault.kind == kind]


class Operators(unittest.TestCase):
    def test_comparisons_move_their_bound_or_turn_around(self):
        self.assertEqual(changes("return a < b;", "comparison"), ["return a <= b;"])
        self.assertEqual(changes("return a >= b;", "comparison"), ["return a > b;"])
        self.assertEqual(changes("return a == b;", "comparison"), ["return a != b;"])

    def test_brackets_of_templates_are_no_comparisons(self):
        for text in ("template <class T>", "std::vector<int> list;", "f<int>(a);"):
            self.assertEqual(changes(text, "comparison"), [], text)

    def test_pointers_and_references_are_no_arithmetic(self):
        self.assertEqual(changes("void f(const char* a, T& b, T&& c);", "arithmetic"), [])
        self.assertEqual(changes("void f(const char* a, T& b, T&& c);", "bits"), [])

    def test_arithmetic_becomes_another(self):
        self.assertEqual(changes("x = a + b * c;", "arithmetic"), ["x = a - b * c;",
                                                                    "x = a + b + c;"])
        self.assertEqual(changes("x -= -a;", "arithmetic"), ["x += -a;"])

    def test_an_operator_at_the_end_of_a_line_counts(self):
        self.assertEqual(changes("return a &&\n    b;", "logic"), ["return a ||\n    b;"])

    def test_bits_are_shifted_the_other_way(self):
        self.assertEqual(changes("return a << 2U | b;", "bits"), ["return a >> 2U | b;",
                                                                  "return a << 2U & b;"])


class Words(unittest.TestCase):
    def test_truth_and_extremes_turn_around(self):
        self.assertEqual(changes("return true;", "word"), ["return false;"])
        self.assertEqual(changes("x = std::min(a, b);", "word"), ["x = std::max(a, b);"])

    def test_parts_of_longer_words_stay(self):
        self.assertEqual(changes("x = isfalse + std::min_element(a, b);", "word"), [])


class Constants(unittest.TestCase):
    def test_numbers_become_their_neighbours(self):
        self.assertEqual(changes("x = 10;", "constant"), ["x = 11;", "x = 9;"])
        self.assertEqual(changes("x = 0U;", "constant"), ["x = 1U;"])
        self.assertEqual(changes("x = 0x1F;", "constant"), ["x = 0x1e;", "x = 0x20;"])

    def test_separated_digits_are_one_number(self):
        self.assertEqual(changes("x = 1'000;", "constant"), ["x = 1001;", "x = 999;"])

    def test_digits_of_names_and_fractions_stay(self):
        self.assertEqual(changes("x = utf8 + 1.5 + 1e3 + a64;", "constant"), [])


class Conditions(unittest.TestCase):
    def test_conditions_are_negated_as_a_whole(self):
        self.assertEqual(changes("if (a && (b || c)) {", "condition"),
                         ["if (!(a && (b || c))) {"])

    def test_strings_within_stay_as_they_are(self):
        self.assertEqual(changes('if (a == ")") {', "condition"), ['if (!(a == ")")) {'])

    def test_declarations_are_left_alone(self):
        for text in ("if (const auto found = f()) {", "if (auto x = f(); x) {"):
            self.assertEqual(changes(text, "condition"), [], text)


class Statements(unittest.TestCase):
    def dropped(self, body):
        return changes("void f() {\n    " + body + "\n}\n", "dropped statement")

    def test_calls_assignments_and_jumps_are_dropped(self):
        for body in ("a.b(c);", "a_ = b;", "a += f(b,\n      c);", "++a;", "*a = b;", "break;",
                     "a[1] = 2;", "throw Error(a);"):
            self.assertEqual(self.dropped(body), ["void f() {\n    ;\n}\n"], body)

    def test_declarations_and_results_stay(self):
        for body in ("int a = f(b);", "const auto a = b;", "std::string a(b);", "return a;",
                     "using B = C;", "T* a = b;"):
            self.assertEqual(self.dropped(body), [], body)


class Arguments(unittest.TestCase):
    def test_two_plain_arguments_change_places(self):
        self.assertEqual(changes("f(a.b, c_);", "swapped arguments"), ["f(c_, a.b);"])

    def test_parameters_and_equal_arguments_stay(self):
        self.assertEqual(changes("void f(int a, int b);", "swapped arguments"), [])
        self.assertEqual(changes("f(a, a);", "swapped arguments"), [])


class WhatIsNoCode(unittest.TestCase):
    def test_comments_strings_and_directives_hold_no_faults(self):
        for text in ("// a < b + 1\n", "/* a < b\n + 1 */", '"a < b + 1"', 'R"(a < "b" + 1)"',
                     "'1'", "#if A < 1\n", "#define A \\\n    1 + 1\n", "[[nodiscard(1)]]",
                     "static_assert(sizeof(int) == 4);"):
            self.assertEqual(faults.faults_in(text), [], text)

    def test_what_other_systems_compile_holds_no_faults(self):
        here, there = "x = a < b;\n", "y = c < d;\n"
        planted_here = "x = a <= b;\n"
        for before, between, after in (
                ("#ifdef __APPLE__\n" + there + "#else\n", "", "#endif\n"),
                ("#if defined(__APPLE__)\n" + there + "#elif defined(__GLIBC__)\n", "", "#endif\n"),
                ("#ifdef __GLIBC__\n", "#else\n" + there, "#endif\n"),
                ("#ifndef __GLIBC__\n" + there + "#endif\n", "", ""),
                ("#ifdef __linux__\n#ifdef __APPLE__\n" + there + "#endif\n", "#endif\n", "")):
            self.assertEqual(changes(before + here + between + after, "comparison"),
                             [before + planted_here + between + after])

    def test_what_follows_them_keeps_its_place(self):
        self.assertEqual(changes('f("<", a); // 1\nx = b < c;', "comparison"),
                         ['f("<", a); // 1\nx = b <= c;'])

    def test_lines_are_counted_from_one(self):
        text = "// one\n\nx = a < b;\n"
        self.assertEqual([fault.line_in(text) for fault in faults.faults_in(text)
                          if fault.kind == "comparison"], [3])


class Telling(unittest.TestCase):
    def test_a_change_is_one_line(self):
        text = "void f() {\n    a(b,\n      c);\n}\n"
        fault = next(fault for fault in faults.faults_in(text)
                     if fault.kind == "dropped statement")
        self.assertEqual(fault.description(text), "dropped statement: a(b, c) becomes nothing")


class Planting(unittest.TestCase):
    ORIGINAL = "bool f() {\n    return a < \"\u00fc\";\n}\n".encode()

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = Path(folder.name, "source.cpp")
        self.path.write_bytes(self.ORIGINAL)
        self.fault = faults.faults_in(self.ORIGINAL.decode())[0]

    def test_the_fault_stands_there_within_the_block_only(self):
        with trial.planted(self.path, self.fault):
            self.assertEqual(self.path.read_bytes(), self.ORIGINAL.replace(b"<", b"<="))
        self.assertEqual(self.path.read_bytes(), self.ORIGINAL)

    def test_the_original_comes_back_after_an_interruption_too(self):
        with self.assertRaises(KeyboardInterrupt):
            with trial.planted(self.path, self.fault):
                raise KeyboardInterrupt
        self.assertEqual(self.path.read_bytes(), self.ORIGINAL)


class Drawing(unittest.TestCase):
    def setUp(self):
        self.all = trial.candidates(TREE, ["base"])

    def test_a_seed_always_draws_the_same(self):
        again = trial.candidates(TREE, ["base"])
        self.assertEqual(trial.drawn(self.all, 7), trial.drawn(again, 7))
        self.assertNotEqual(trial.drawn(self.all, 7), trial.drawn(self.all, 8))

    def test_a_line_is_drawn_once(self):
        lines = [(candidate.source, candidate.line) for candidate in trial.drawn(self.all, 7)]
        self.assertEqual(len(lines), len(set(lines)))
        self.assertEqual(set(lines), {(one.source, one.line) for one in self.all})

    def test_files_can_be_chosen(self):
        sources = {one.source for one in trial.candidates(TREE, ["base", "json"], "base/u*.cpp")}
        self.assertEqual(sources, {"src/base/url.cpp"})

    def test_every_room_has_its_tests(self):
        self.assertEqual(rooms.rooms_in(TREE), sorted(rooms.TESTS))


class Ending(unittest.TestCase):
    def ended(self, script, seconds):
        return trial.ended_within(["sh", "-c", script], seconds, None, "/")

    def test_the_status_is_that_of_the_command(self):
        self.assertEqual(self.ended("exit 3", 60), 3)

    def test_what_takes_too_long_is_ended(self):
        self.assertIsNone(self.ended("sleep 60", 0.1))

    def test_nothing_of_its_group_is_left(self):
        with tempfile.TemporaryDirectory() as folder:
            pipe = str(Path(folder, "pipe"))
            os.mkfifo(pipe)
            reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
            self.addCleanup(os.close, reader)
            self.assertEqual(self.ended(f"exec 3>{pipe}; sleep 60 & exit 0", 60), 0)
            # The end of the pipe can be read once nobody holds the other end.
            self.assertEqual(select.select([reader], [], [], 30)[0], [reader])
            self.assertEqual(os.read(reader, 1), b"")


if __name__ == "__main__":
    unittest.main()
