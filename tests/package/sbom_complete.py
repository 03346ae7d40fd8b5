# SPDX-License-Identifier: Apache-2.0
"""Reads the list of what is linked: its form, and that no library of the documents is missing.

Arguments: the list, docs/dependencies.md, the version of the project.
"""

import json
import re
import sys

SPDX_ID = re.compile(r"SPDXRef-[A-Za-z0-9.-]+")
RELATIONS = {"DESCRIBES", "CONTAINS", "STATIC_LINK", "DYNAMIC_LINK"}
# Parts of the compiler and the system that no table lists, since every C++ program has them.
RUNTIMES = {"glibc", "libstdc++", "libgcc"}


def linked_rows(table):
    """The names, in lower case, of what becomes part of a program or is loaded by one."""
    rows = []
    for line in table.splitlines():
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) != 8 or cells[1] in ("what", "---"):
            continue
        check(cells[6], cells[1] + " has no licence in the table")
        if not re.match(r"(tests|build|lint|bench\w*|fuzz\w*)\b", cells[5]):
            rows.append(cells[1].split(" (")[0].lower())
    return rows


def check(condition, text):
    if not condition:
        sys.exit(text)


def check_form(document, version):
    check(document["spdxVersion"] == "SPDX-2.3", "not SPDX 2.3")
    check(document["dataLicense"] == "CC0-1.0", "not under the licence that SPDX asks for")
    check(document["SPDXID"] == "SPDXRef-DOCUMENT", "the document has another name")
    check(document["name"] == "trellant-" + version, "of another version")
    check(re.fullmatch(r"urn:uuid:[0-9a-f-]{36}", document["documentNamespace"]), "no namespace")
    created = document["creationInfo"]["created"]
    check(re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", created), "no time: " + created)
    check(document["creationInfo"]["creators"], "made by nobody")


def check_packages(packages):
    for package in packages:
        name = package["name"]
        check(SPDX_ID.fullmatch(package["SPDXID"]), name + " has no proper identity")
        check(package["downloadLocation"] and package["copyrightText"], name + " lacks a field")
        check(package["filesAnalyzed"] is False, name + " claims to be analysed")
        check(re.match(r"(\d+:)?\d+\.\d+", package["versionInfo"]), name + " has no version")
        licence = package["licenseConcluded"]
        if name.startswith("trellant"):
            check(licence == "Apache-2.0", name + " is under another licence: " + licence)
        check(licence != "NOASSERTION", name + " has no licence")
    identities = [package["SPDXID"] for package in packages]
    check(len(set(identities)) == len(identities), "two packages of one identity")


def check_relations(document, packages):
    known = {package["SPDXID"] for package in packages} | {"SPDXRef-DOCUMENT"}
    reached = set()
    for relation in document["relationships"]:
        check(relation["relationshipType"] in RELATIONS, "odd: " + relation["relationshipType"])
        check(relation["spdxElementId"] in known, "unknown: " + relation["spdxElementId"])
        check(relation["relatedSpdxElement"] in known, "unknown: " + relation["relatedSpdxElement"])
        reached.add(relation["relatedSpdxElement"])
    check(reached == known - {"SPDXRef-DOCUMENT"}, "linked with nothing: " + str(known - reached))


def main():
    listed, table, version = sys.argv[1:]
    with open(listed, encoding="utf-8") as file:
        document = json.load(file)
    with open(table, encoding="utf-8") as file:
        rows = linked_rows(file.read())
    packages = document["packages"]
    check_form(document, version)
    check_packages(packages)
    check_relations(document, packages)

    check(len(rows) >= 5, "the table of the documents was not understood")
    names = {package["name"].lower() for package in packages}
    check(set(rows) <= names, "not in the list: " + str(set(rows) - names))
    own = {name for name in names if name.startswith("trellant")}
    check(names - own - RUNTIMES <= set(rows), "not documented: " + str(names - own - RUNTIMES - set(rows)))
    check(RUNTIMES <= names, "not in the list: " + str(RUNTIMES - names))


main()
