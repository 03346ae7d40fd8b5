# SPDX-License-Identifier: Apache-2.0
"""Plants small faults in the sources, one at a time, and says which of them no test sees.

It works on a copy in a temporary folder that is removed at the end, however the end comes. What
survives is printed at once; the last line counts. The status is 0 whatever survived: faults that
change nothing anyone could see are drawn too."""
import argparse
import os
import random
import shutil
import signal
import sys
import tempfile
from pathlib import Path

import rooms
import trial

TREE = Path(__file__).resolve().parents[2]


def count(text):
    value = int(text)
    if value < 1:
        raise argparse.ArgumentTypeError("must be at least 1")
    return value


def arguments(words):
    parser = argparse.ArgumentParser(prog="scripts/mutate", description=__doc__.split("\n\n")[0])
    parser.add_argument("faults", metavar="N", nargs="?", type=count, default=100,
                        help="faults to plant (100)")
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1_000_000),
                        help="the draw to repeat; printed at the start")
    parser.add_argument("--room", action="append", choices=sorted(rooms.TESTS),
                        help="a folder of src, several times for several; all when left out")
    parser.add_argument("--files", metavar="PATTERN", default="*",
                        help="only sources whose path ends so: 'io/bento_*.cpp'")
    parser.add_argument("--jobs", type=count, default=os.cpu_count(),
                        help="compilers at a time (%(default)s)")
    return parser.parse_args(words)


def show(line):
    print(line, flush=True)


def run(options, folder):
    chosen = [room for room in rooms.rooms_in(TREE)
              if room in rooms.TESTS and (not options.room or room in options.room)]
    trial_ = trial.Trial(TREE, folder, options.jobs)
    drawn = trial.drawn(trial.candidates(trial_.copy, chosen, options.files), options.seed)
    show(f"seed {options.seed}, {len(drawn)} faults to draw from")
    trial_.prepare(sorted({candidate.room for candidate in drawn}))
    counts = {"killed": 0, "survived": 0, "not planted": 0}
    try:
        for candidate in drawn:
            if counts["killed"] + counts["survived"] == options.faults:
                break
            verdict = trial_.verdict(candidate)
            counts[verdict] += 1
            text = (trial_.copy / candidate.source).read_text(encoding="utf-8")
            line = (f"{verdict} {candidate.source}:{candidate.line}: "
                    f"{candidate.fault.description(text)}")
            if verdict == "survived":
                show(line)
            else:
                print(line, file=sys.stderr, flush=True)
    finally:
        show(f"planted {counts['killed'] + counts['survived']}, killed {counts['killed']}, "
             f"survived {counts['survived']} (seed {options.seed}, "
             f"{counts['not planted']} drawn that do not compile)")


def main(words):
    options = arguments(words)
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    folder = tempfile.mkdtemp(prefix="trellant-mutate-")
    try:
        run(options, folder)
    except trial.TrialError as error:
        print(error, file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130
    finally:
        for number in (signal.SIGINT, signal.SIGTERM):
            signal.signal(number, signal.SIG_IGN)
        shutil.rmtree(folder, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
