# SPDX-License-Identifier: Apache-2.0
"""trellant check from the command line: verdicts on files that are known, their four forms, what a
script is told by the status."""
import json
import os
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from command_help import COMMAND, TREE

EXAMPLES = TREE / "examples"
REAL = os.environ.get("TRELLANT_REAL_FILES")

# What counts by the profile "post", worked out from what `list` and examples/README.md say.
SESSION = {
    # The losses 3, 1 and 2 of `list losses`.
    "loss-dropped": 1, "loss-sound": 1, "effects": 1,
    # Of 24000, 48000, 22050 and 11025 Hz one is right.
    "rate-expected": 3, "rate-mixed": 1,
    "depth-mixed": 1,       # 24 bits beside 16
    "channels-mono": 1,     # Theme.aif is stereo
    "handles": 11,          # no source is longer than two seconds
    "pairs": 1,             # Dialog_L and Dialog_R are cut differently, Music alike
    "off-frame": 1,         # tenths of seconds at 29.97 fps
    "nesting": 1,           # Atmo comes out of nested groups
}
# 22050 Hz, two clips of a source of less than a second, from 00:59:50:00.
ARCHIVE = {"rate-expected": 1, "handles": 2, "start-timecode": 1}
# Steps.wav is not there, Door.wav has 11025 Hz and half a second, from 10:00:00:00.
EXTERNAL = {"media-missing": 1, "rate-expected": 1, "rate-mixed": 1, "handles": 2,
            "start-timecode": 1}
# One clip of 8.68 s of a source that cannot have more than 985372 / 88200 = 11.2 s, at 44100 Hz; its
# end is frame 216.98; from zero.
BIG_ENDIAN = {"rate-expected": 1, "handles": 1, "off-frame": 1, "start-timecode": 1}
# Six clips of 11.1 s in all, of sources of 1638364 / 144000 = 11.4 s in all, so none has handles;
# each is a rendered effect within groups.
EFFECTS = {"effects": 1, "handles": 6, "nesting": 1, "off-frame": 1, "start-timecode": 1}


class InFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-check-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def check(self, *arguments):
        return subprocess.run([COMMAND, "check", *map(str, arguments)], cwd=self.folder,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True)

    def lines(self, *arguments):
        return [json.loads(line) for line in self.check("--json", *arguments).stdout.splitlines()]

    def counts(self, *arguments):
        line, = self.lines(*arguments)
        return {rule["rule"]: rule["findings"] for rule in line["rules"] if rule["findings"]}

    def take(self, *names):
        for name in names:
            shutil.copy(EXAMPLES / name, self.folder / name)
        return [self.folder / name for name in names]

    def profile(self, **keys):
        path = self.folder / "house.json"
        path.write_text(json.dumps({"profileVersion": 1, **keys}))
        return path


class KnownFiles(InFolder):
    def test_examples_break_what_can_be_seen_of_them(self):
        for name, expected in (("session", SESSION), ("archive", ARCHIVE), ("external", EXTERNAL)):
            with self.subTest(name):
                self.assertEqual(self.counts(EXAMPLES / f"{name}.omf"), expected)

    def test_a_source_that_is_found_is_not_missing(self):
        media = self.folder / "audio"
        media.mkdir()
        # A second of a rate that the clip does not need.
        door = (EXAMPLES / "media" / "Door.wav").read_bytes()
        (media / "Steps.wav").write_bytes(door)
        counts = self.counts(EXAMPLES / "external.omf", "--media", media)
        self.assertNotIn("media-missing", counts)
        self.assertEqual(counts["media-ambiguous"], 1)

    @unittest.skipUnless(REAL, "TRELLANT_REAL_FILES is not set")
    def test_real_files_break_what_can_be_seen_of_them(self):
        for name, expected in (("big-endian-25fps", BIG_ENDIAN), ("effects-and-pans", EFFECTS)):
            with self.subTest(name):
                self.assertEqual(self.counts(Path(REAL) / f"{name}.omf"), expected)

    @unittest.skipUnless(REAL, "TRELLANT_REAL_FILES is not set")
    def test_an_older_file_is_told_for_what_it_is(self):
        file = Path(REAL) / "omf1-one-clip.omf"
        # The same session as the one in OMF 2, but for the model and the track's name, which it does not have.
        self.assertEqual(self.counts(file), {**BIG_ENDIAN, "omf-version": 1, "track-names": 1})
        self.assertTrue(self.lines(file)[0]["read"])
        self.assertEqual(self.lines(file)[0]["omfVersion"], "1.0")
        self.assertEqual(self.check(file).returncode, 3)

    def test_profiles_disagree(self):
        file = EXAMPLES / "archive.omf"
        self.assertEqual(self.counts(file, "--profile", "archive"), {})
        # 24 bits are wanted and there, 25 fps are not; nothing is heard of a pop without --audio.
        film = self.counts(file, "--profile", "film")
        self.assertEqual(film["frame-rate"], 1)
        # 22050 Hz are no usual rate of music; its one source has no other beside it.
        self.assertEqual(self.counts(file, "--profile", "music"), {"rate-expected": 1})

    def test_audio_is_read_when_it_is_asked_for(self):
        file = EXAMPLES / "session.omf"
        self.assertFalse(self.lines(file)[0]["audioRead"])
        line, = self.lines(file, "--audio")
        self.assertTrue(line["audioRead"])
        # The session begins at 01:00:00;00, behind where a pop would be.
        self.assertEqual(self.counts(file, "--audio"), {**SESSION, "pop-head": 1})
        by_profile = self.profile(audio=True)
        self.assertTrue(self.lines(file, "--profile", by_profile)[0]["audioRead"])


class Statuses(InFolder):
    def test_tell_the_weight_of_what_was_found(self):
        archive = EXAMPLES / "archive.omf"
        only_warnings = ("--profile", self.profile(rules={"rate-expected": {"severity": "off"}}))
        self.assertEqual(self.check(archive).returncode, 3)
        self.assertEqual(self.check(archive, *only_warnings).returncode, 0)
        self.assertEqual(self.check(archive, *only_warnings, "--fail-on", "warning").returncode, 3)
        nothing = ("--profile", "archive", "--fail-on", "info")
        self.assertEqual(self.check(archive, *nothing).returncode, 0)

    def test_one_that_cannot_be_read_outweighs_and_stops_no_other(self):
        (self.folder / "a.omf").write_text("no session")
        run = self.check("a.omf", EXAMPLES / "archive.omf")
        self.assertEqual(run.returncode, 2)
        self.assertEqual([line.split()[0] for line in run.stdout.splitlines()],
                         ["unread", "failed", "2"])

    def test_wrong_use_says_what_is_wrong(self):
        for arguments, said in (
                (("x.omf", "--profile", "flim"),
                 'there is no profile and no file "flim"; did you mean "film"?'),
                (("--explain", "handels"), 'there is no rule "handels"; did you mean "handles"?'),
                ((), "check needs OMF files, or folders that hold some"),
                (("x.omf", "--list-rules"), "--list-rules and --explain check no files"),
                (("x.omf", "--profile", self.profile(rules={"handels": {}})),
                 f'profile "{self.folder}/house.json": rules.handels: there is no such rule; did '
                 f'you mean "handles"?')):
            with self.subTest(arguments):
                run = self.check(*arguments)
                self.assertEqual((run.returncode, run.stdout), (1, ""))
                self.assertEqual(run.stderr.splitlines()[0], f"trellant: {said}")


class Folders(InFolder):
    def test_stand_for_the_files_in_them(self):
        self.take("session.omf", "archive.omf")
        (self.folder / "deep").mkdir()
        shutil.copy(EXAMPLES / "external.omf", self.folder / "deep" / "External.OMF")
        (self.folder / "notes.txt").touch()
        self.assertEqual([line["file"] for line in self.lines(".")],
                         ["./archive.omf", "./session.omf"])
        self.assertEqual([line["file"] for line in self.lines(".", "--recursive")],
                         ["./archive.omf", "./deep/External.OMF", "./session.omf"])

    def test_without_any_are_told(self):
        (self.folder / "empty").mkdir()
        run = self.check("empty")
        self.assertEqual(run.returncode, 2)
        self.assertEqual(run.stderr, "trellant: empty: there is no OMF file in this folder; "
                                     "--recursive looks into the folders in it too\n")

    def test_have_a_row_a_file_and_sums(self):
        self.take("session.omf", "archive.omf")
        rows = self.check(".", "--profile", "archive").stdout.splitlines()
        self.assertEqual(len(rows), 3)
        self.assertEqual(rows[0].split(), ["passed", "0", "errors,", "0", "warnings,", "0", "info",
                                           "./archive.omf"])
        # What is dropped and what sounds different are errors for an archive.
        self.assertTrue(rows[1].startswith("failed  3 errors, "), rows[1])
        self.assertEqual(rows[2], "2 files: 1 passed, 1 failed")


class Acceptance(InFolder):
    def test_is_counted_shown_and_told_when_of_no_use(self):
        profile = self.profile(extends="post", accept=[
            {"rule": "rate-expected", "audioFile": "Reel 7*", "reason": "an old tape"},
            {"rule": "muted", "reason": "none is"}])
        line, = self.lines(EXAMPLES / "archive.omf", "--profile", profile)
        self.assertEqual((line["errors"], line["accepted"]), (0, 1))
        accepted = [finding for finding in line["findings"] if "acceptedBecause" in finding]
        self.assertEqual([(finding["rule"], finding["acceptedBecause"]) for finding in accepted],
                         [("rate-expected", "an old tape")])
        self.assertEqual(line["acceptedNothing"], [{"rule": "muted", "reason": "none is"}])
        page = self.check(EXAMPLES / "archive.omf", "--profile", profile)
        self.assertEqual(page.returncode, 0)
        self.assertIn("    accepted: an old tape\n", page.stdout)
        self.assertIn("  The profile accepts what is not there: muted (none is)\n", page.stdout)


class Junit(InFolder):
    def suites(self, *arguments):
        run = self.check("--junit", *arguments)
        root = ElementTree.fromstring(run.stdout.encode())
        self.assertEqual(root.tag, "testsuites")
        return root.findall("testsuite")

    def test_is_a_suite_a_file_and_a_case_a_rule(self):
        (self.folder / "a.omf").write_text("no session")
        bad, good = self.suites("a.omf", EXAMPLES / "archive.omf")
        self.assertEqual(bad.attrib, {"name": "a.omf", "tests": "1", "failures": "0",
                                      "errors": "1", "skipped": "0"})
        self.assertEqual(bad.find("testcase/error").get("type"), "unreadable")
        rules = self.check("--list-rules", "--json").stdout.splitlines()
        cases = {case.get("name"): case for case in good.findall("testcase")}
        self.assertEqual(len(cases), len(rules))
        self.assertEqual(good.get("tests"), str(len(rules)))
        # One error; the warnings are below --fail-on, and three rules ask for sound.
        self.assertEqual((good.get("failures"), good.get("skipped")), ("1", "3"))
        self.assertEqual(cases["rate-expected"].find("failure").get("type"), "error")
        self.assertIsNone(cases["handles"].find("failure"))
        self.assertTrue(cases["handles"].find("system-out").text.startswith("warning\n"))
        self.assertIsNotNone(cases["silent"].find("skipped"))
        self.assertEqual(list(cases["overlap"]), [])

    def test_counts_what_it_holds(self):
        for suite in self.suites("--fail-on", "info", *EXAMPLES.glob("*.omf")):
            for kind, path in (("tests", "testcase"), ("failures", "testcase/failure"),
                               ("errors", "testcase/error"), ("skipped", "testcase/skipped")):
                self.assertEqual(int(suite.get(kind)), len(suite.findall(path)), kind)

    def test_holds_any_name(self):
        name = 'a<&>"\x01\n.omf'
        shutil.copy(EXAMPLES / "archive.omf", self.folder / name)
        suite, = self.suites(name)
        self.assertEqual(suite.get("name"), 'a<&>"\ufffd\n.omf')


class Sarif(InFolder):
    def run_of(self, *arguments):
        document = json.loads(self.check("--sarif", *arguments).stdout)
        self.assertEqual(document["version"], "2.1.0")
        run, = document["runs"]
        return run

    def test_has_what_the_standard_asks_for(self):
        run = self.run_of(EXAMPLES / "session.omf")
        driver = run["tool"]["driver"]
        self.assertEqual(driver["name"], "trellant check")
        rules = {rule["id"] for rule in driver["rules"]}
        self.assertEqual(len(rules), len(driver["rules"]))
        for rule in driver["rules"]:
            self.assertIn(rule["defaultConfiguration"]["level"], ("note", "warning", "error"))
            for key in ("shortDescription", "fullDescription", "help"):
                self.assertTrue(rule[key]["text"])
        self.assertEqual(len(run["results"]), sum(SESSION.values()))
        for result in run["results"]:
            self.assertIn(result["ruleId"], rules)
            self.assertIn(result["level"], ("note", "warning", "error"))
            self.assertTrue(result["message"]["text"])
            location, = result["locations"]
            physical = location["physicalLocation"]
            self.assertEqual(physical["artifactLocation"]["uri"],
                             (EXAMPLES / "session.omf").as_uri())
            self.assertEqual(physical["region"], {"startLine": 1})
        paths = [location["fullyQualifiedName"] for result in run["results"]
                 for location in result["locations"][0].get("logicalLocations", ())]
        self.assertIn("CMOB[161]/slot[160]/SCLP[157]", paths)
        self.assertEqual(run["invocations"], [{"executionSuccessful": True}])

    def test_names_files_by_the_way_from_where_the_command_ran(self):
        shutil.copy(EXAMPLES / "archive.omf", self.folder / "a b:c#.omf")
        run = self.run_of("a b:c#.omf")
        self.assertEqual({result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"]
                          for result in run["results"]}, {"./a%20b:c%23.omf"})

    def test_suppresses_what_is_accepted_and_tells_what_could_not_be_read(self):
        (self.folder / "a.omf").write_text("no session")
        profile = self.profile(accept=[{"rule": "rate-expected", "reason": "an old tape"}])
        run = self.run_of("a.omf", EXAMPLES / "archive.omf", "--profile", profile)
        suppressed = [result for result in run["results"] if "suppressions" in result]
        self.assertEqual([(result["ruleId"], result["suppressions"]) for result in suppressed],
                         [("rate-expected", [{"kind": "external",
                                              "justification": "an old tape"}])])
        invocation, = run["invocations"]
        self.assertFalse(invocation["executionSuccessful"])
        self.assertEqual(len(invocation["toolExecutionNotifications"]), 1)


class Screens(InFolder):
    def test_begin_with_what_weighs_most(self):
        lines = self.check(EXAMPLES / "session.omf").stdout.splitlines()
        weights = [line.split()[0] for line in lines
                   if line.startswith("  ") and line.split()[:1] and line[2] != " "
                   and line.split()[0] in ("error", "warning", "info")]
        self.assertEqual(weights, sorted(weights, key=("error", "warning", "info").index))
        self.assertEqual(len(weights), len(SESSION))
        self.assertIn("    and 1 more: -v and --json show them", lines)
        self.assertIn("  The audio was not read (--audio reads it): nothing is said of pop-head, "
                      "silent, clipped.", lines)

    def test_explain_each_rule(self):
        for line in self.check("--list-rules", "--json").stdout.splitlines():
            rule = json.loads(line)
            run = self.check("--explain", rule["rule"])
            self.assertEqual(run.returncode, 0)
            for part in ("what", "why", "source", "repair"):
                self.assertIn(rule[part], run.stdout)

    def test_write_to_a_file_that_is_whole_and_replaced_only_by_force(self):
        file, = self.take("archive.omf")
        self.assertEqual(self.check(file, "--json", "-o", "out.json").returncode, 3)
        before = (self.folder / "out.json").read_text()
        self.assertEqual(json.loads(before)["errors"], 1)
        self.assertEqual(self.check(file, "--json", "-o", "out.json").returncode, 1)
        self.assertEqual(self.check(file, "--json", "-o", file, "--force").returncode, 1)
        self.assertEqual(file.read_bytes(), (EXAMPLES / "archive.omf").read_bytes())


if __name__ == "__main__":
    unittest.main(verbosity=2)
