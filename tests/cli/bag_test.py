# SPDX-License-Identifier: Apache-2.0
"""trellant extract --bag and --store from the command line: bags are read back by rules of their own,
and calls are killed in the middle."""
import hashlib
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
import urllib.parse
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from command_help import COMMAND, TREE

EXAMPLES = TREE / "examples"
PREMIS = {"p": "http://www.loc.gov/premis/v3"}


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def manifest(path):
    """From paths to digests."""
    text = path.read_bytes().decode("utf-8")
    entries = {}
    for line in text.split("\n")[:-1]:
        found, _, name = line.partition("  ")
        entries[urllib.parse.unquote(name)] = found
    return entries


def files_below(folder):
    return {str(path.relative_to(folder.parent)) for path in folder.rglob("*") if not path.is_dir()}


class InFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-bag-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name in ("session.omf", "archive.omf", "external.omf"):
            shutil.copy(EXAMPLES / name, self.folder / name)
        shutil.copytree(EXAMPLES / "media", self.folder / "media")

    def call(self, *arguments, **more):
        return subprocess.run([COMMAND, "extract", *arguments], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, env={**os.environ, **more})

    def bag(self, *arguments, status=0, **more):
        run = self.call(*arguments, "--bag", "bag", "--json", **more)
        self.assertEqual(run.returncode, status, run.stderr)
        return json.loads(run.stdout)

    def check_bag(self, bag):
        """The rules of BagIt 1.0 for a whole bag."""
        self.assertEqual((bag / "bagit.txt").read_bytes(),
                         b"BagIt-Version: 1.0\nTag-File-Character-Encoding: UTF-8\n")
        payload = manifest(bag / "manifest-sha256.txt")
        self.assertEqual(set(payload), files_below(bag / "data"))
        tags = manifest(bag / "tagmanifest-sha256.txt")
        self.assertEqual(set(tags), {"bagit.txt", "bag-info.txt", "manifest-sha256.txt",
                                     "metadata/premis.xml"})
        for name, expected in {**payload, **tags}.items():
            self.assertEqual(digest(bag / name), expected, name)
        info = dict(line.split(": ", 1) for line in (bag / "bag-info.txt").read_text().splitlines())
        size = sum((bag / name).stat().st_size for name in payload)
        self.assertEqual(info["Payload-Oxum"], f"{size}.{len(payload)}")
        self.assertRegex(info["Bagging-Date"], r"^\d{4}-\d\d-\d\d$")
        return payload, info


class Bag(InFolder):
    def test_is_whole_for_every_example(self):
        for name in ("session.omf", "archive.omf", "external.omf"):
            with self.subTest(name):
                shutil.rmtree(self.folder / "bag", ignore_errors=True)
                line = self.bag(name)
                payload, info = self.check_bag(self.folder / "bag")
                self.assertEqual(payload[f"data/{name}"], digest(self.folder / name))
                self.assertEqual(line["bag"]["payloadFiles"], len(payload))
                self.assertEqual(info["External-Identifier"], name)
                self.assertNotIn("Source-Organization", info)
                self.assertEqual({entry["name"]: entry["sha256"] for entry in line["audio"]
                                  if "name" in entry},
                                 {path: found for path, found in payload.items()
                                  if path not in (f"data/{name}", "data/timeline.json")})

    def test_a_timeline_leads_nowhere_but_into_its_bag(self):
        self.bag("external.omf")
        timeline = json.loads((self.folder / "bag" / "data" / "timeline.json").read_text())
        urls = [essence["fileURL"] for essence in timeline["essences"] if "fileURL" in essence]
        self.assertNotEqual(urls, [])
        for url in urls + [timeline["sourceAAF"]]:
            self.assertNotIn("/", url)
            self.assertTrue((self.folder / "bag" / "data" / urllib.parse.unquote(url)).is_file(), url)

    def test_says_who_it_is_from(self):
        self.bag("archive.omf", "--organization", "Radio\nDrei", "--identifier", "A 17")
        _, info = self.check_bag(self.folder / "bag")
        self.assertEqual(info["Source-Organization"], "Radio Drei")
        self.assertEqual(info["External-Identifier"], "A 17")

    def test_metadata_name_every_file_of_the_payload_and_every_link_leads_somewhere(self):
        self.bag("session.omf", "--wav")
        payload, _ = self.check_bag(self.folder / "bag")
        root = ElementTree.parse(self.folder / "bag" / "metadata" / "premis.xml").getroot()
        self.assertEqual(root.tag, "{http://www.loc.gov/premis/v3}premis")

        def texts(path):
            return [element.text for element in root.findall(path, PREMIS)]
        named = texts("p:object/p:objectIdentifier/p:objectIdentifierValue")
        self.assertEqual(set(named), set(payload))
        self.assertEqual(len(named), len(payload))
        self.assertEqual(dict(zip(named, texts("p:object//p:messageDigest"))), payload)
        self.assertEqual(texts("p:object[1]//p:formatRegistryKey"), ["fmt/1855"])
        events = texts("p:event/p:eventIdentifier/p:eventIdentifierValue")
        self.assertEqual(len(set(events)), len(events))
        self.assertLessEqual(set(texts(".//p:linkingEventIdentifierValue")), set(events))
        self.assertLessEqual(set(texts(".//p:relatedEventIdentifierValue")), set(events))
        self.assertLessEqual(set(texts(".//p:linkingObjectIdentifierValue")), set(payload))
        # Three losses, as list losses has them (examples/README.md).
        notes = texts("p:event[p:eventType='metadata extraction']//p:eventOutcomeDetailNote")
        self.assertEqual(len(notes), 3)
        self.assertIn("normalization", texts("p:event/p:eventType"))

    def test_the_same_file_and_date_give_the_same_bytes(self):
        kept = []
        for _ in range(2):
            self.bag("session.omf", SOURCE_DATE_EPOCH="1000000000")
            bag = self.folder / "bag"
            kept.append({str(path.relative_to(bag)): path.read_bytes() for path in bag.rglob("*")
                         if path.is_file()})
            shutil.rmtree(bag)
        self.assertEqual(kept[0], kept[1])
        # 1,000,000,000 seconds after 1970 are 2001-09-09 01:46:40 UTC.
        self.assertIn(b"Bagging-Date: 2001-09-09\n", kept[0]["bag-info.txt"])

    def test_the_same_call_again_says_that_it_is_there(self):
        self.assertFalse(self.bag("archive.omf")["bag"]["wasThere"])
        self.assertTrue(self.bag("archive.omf")["bag"]["wasThere"])

    def test_what_is_there_stays(self):
        (self.folder / "bag").mkdir()
        (self.folder / "bag" / "mine").write_text("mine")
        run = self.call("archive.omf", "--bag", "bag")
        self.assertEqual(run.returncode, 2)
        self.assertIn(b"archive.omf: bag is there already and is no bag", run.stderr)
        self.assertEqual(sorted(os.listdir(self.folder / "bag")), ["mine"])

    def test_several_files_have_bags_of_their_own(self):
        run = self.call("session.omf", "archive.omf", "--bag", "bags")
        self.assertEqual(run.returncode, 0, run.stderr)
        for name in ("session", "archive"):
            self.check_bag(self.folder / "bags" / name)

    def test_hostile_names(self):
        name = "50%\r\n\x1b[2Jmix.omf"
        shutil.copy(self.folder / "archive.omf", self.folder / name)
        run = self.call(f"./{name}", "--bag", "bag")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertNotIn(b"\x1b", run.stdout + run.stderr)
        payload, _ = self.check_bag(self.folder / "bag")
        self.assertIn(f"data/{name}", payload)

    def test_a_killed_call_leaves_no_bag_or_a_whole_one(self):
        began = time.monotonic()
        self.bag("session.omf")
        whole = time.monotonic() - began
        for step in range(8):
            shutil.rmtree(self.folder / "bag", ignore_errors=True)
            child = subprocess.Popen([COMMAND, "extract", "session.omf", "--bag", "bag"],
                                     cwd=self.folder, stdout=subprocess.DEVNULL,
                                     stderr=subprocess.DEVNULL)
            time.sleep(whole * step / 7)
            child.send_signal(signal.SIGKILL)
            child.wait()
            if (self.folder / "bag").exists():
                self.check_bag(self.folder / "bag")
        self.bag("session.omf")
        self.check_bag(self.folder / "bag")

    def test_options_that_contradict_it_are_refused(self):
        for other in (["--to", "x"], ["--store", "x"], ["--force"], ["--absolute"], ["--salvage"]):
            with self.subTest(other):
                self.assertEqual(self.call("archive.omf", "--bag", "bag", *other).returncode, 1)
        for lonely in (["--references"], ["--identifier", "x"], ["--organization", "x"]):
            with self.subTest(lonely):
                self.assertEqual(self.call("archive.omf", "--to", "x", *lonely).returncode, 1)
        run = self.call("archive.omf")
        self.assertEqual(run.returncode, 1)
        self.assertIn(b"--to or --bag is required\n", run.stderr)
        self.assertFalse((self.folder / "bag").exists())


class Store(InFolder):
    def objects(self):
        return {str(path.relative_to(self.folder / "store")): path
                for path in (self.folder / "store").rglob("*") if path.is_file()}

    def extract(self, *arguments):
        run = self.call(*arguments, "--store", "store", "--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        return [json.loads(line) for line in run.stdout.splitlines()]

    def check_store(self):
        for name, path in self.objects().items():
            self.assertRegex(name, r"^([0-9a-f]{2})/([0-9a-f]{2})/\1\2[0-9a-f]{60}(\.[a-z0-9]+)?$")
            self.assertEqual(path.stem, digest(path))

    def test_two_hand_offs_of_the_same_audio_share_it(self):
        shutil.copy(self.folder / "session.omf", self.folder / "again.omf")
        first, second = self.extract("session.omf", "again.omf", "--to", "out")
        self.check_store()
        self.assertEqual({entry["stored"] for entry in first["audio"]}, set(self.objects()))
        self.assertTrue(all(entry["storeHadIt"] for entry in second["audio"]))
        for line, name in ((first, "session"), (second, "again")):
            for entry in line["audio"]:
                linked = self.folder / "out" / name / entry["name"]
                self.assertTrue(os.path.samefile(linked, self.objects()[entry["stored"]]))
                self.assertEqual(linked.stat().st_mode & 0o777, 0o444)

    def test_the_same_call_again_changes_nothing(self):
        self.extract("session.omf", "--to", "out")
        before = {name: path.stat().st_mtime_ns for name, path in self.objects().items()}
        names = sorted(os.listdir(self.folder / "out"))
        line, = self.extract("session.omf", "--to", "out")
        self.assertEqual({name: path.stat().st_mtime_ns for name, path in self.objects().items()},
                         before)
        self.assertEqual(sorted(os.listdir(self.folder / "out")), names)
        self.assertTrue(all(entry["wasThere"] and entry["storeHadIt"] for entry in line["audio"]))

    def test_references_name_the_store_in_timeline_and_checksums(self):
        for _ in range(2):
            self.extract("session.omf", "--to", "out", "--references")
            self.assertEqual(sorted(os.listdir(self.folder / "out")),
                             ["MANIFEST.sha256", "timeline.json"])
            timeline = json.loads((self.folder / "out" / "timeline.json").read_text())
            for essence in timeline["essences"]:
                place = self.folder / "out" / urllib.parse.unquote(essence["fileURL"])
                self.assertEqual(place.stem, digest(place))
            check = subprocess.run(["sha256sum", "--strict", "--quiet", "-c", "MANIFEST.sha256"],
                                   cwd=self.folder / "out", stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT)
            self.assertEqual((check.returncode, check.stdout), (0, b""))
        self.check_store()

    def test_a_store_with_a_hostile_name_is_found_by_the_checksums(self):
        run = self.call("archive.omf", "--to", "out", "--store", "a\\b\nstore", "--references")
        self.assertEqual(run.returncode, 0, run.stderr)
        check = subprocess.run(["sha256sum", "--strict", "--quiet", "-c", "MANIFEST.sha256"],
                               cwd=self.folder / "out", stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT)
        self.assertEqual((check.returncode, check.stdout), (0, b""))

    def test_a_damaged_store_is_told_and_not_relied_on(self):
        line, = self.extract("archive.omf", "--to", "out")
        damaged = self.objects()[line["audio"][0]["stored"]]
        damaged.unlink()
        damaged.write_bytes(b"damaged")
        run = self.call("archive.omf", "--to", "other", "--store", "store")
        self.assertEqual(run.returncode, 2)
        self.assertRegex(run.stderr, re.compile(
            rb"archive.omf: the store cannot be relied on: .* does not hold what its name says"))
        self.assertEqual(damaged.read_bytes(), b"damaged")

    def test_a_killed_call_leaves_only_whole_files(self):
        began = time.monotonic()
        self.extract("session.omf", "--to", "out")
        whole = time.monotonic() - began
        for step in range(6):
            child = subprocess.Popen([COMMAND, "extract", "session.omf", "--to", f"out{step}",
                                      "--store", f"store{step}"], cwd=self.folder,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(whole * step / 5)
            child.send_signal(signal.SIGKILL)
            child.wait()
            for path in self.folder.glob(f"store{step}/??/??/*"):
                self.assertEqual(path.stem, digest(path))


if __name__ == "__main__":
    unittest.main()
