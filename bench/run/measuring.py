# SPDX-License-Identifier: Apache-2.0
"""Starts what measures: the generator, processes side by side, the parts, the client's host."""
import json
import pathlib
import statistics
import subprocess


class Sample:
    """The runs of one command. Medians; seconds, and bytes of memory."""

    def __init__(self, lines):
        self.wall = statistics.median(int(line[1]) for line in lines) / 1e9
        self.cpu = statistics.median(int(line[2]) + int(line[3]) for line in lines) / 1e6
        self.peak = statistics.median(int(line[4]) for line in lines) * 1024
        self.runs = len(lines)

    def record(self):
        return {"wallSeconds": self.wall, "cpuSeconds": self.cpu, "peakBytes": self.peak,
                "runs": self.runs}


class Command:
    def __init__(self, *arguments, given=None, fresh=None):
        self.words = [f"in={given}"] if given else []
        self.words += [f"fresh={fresh}"] if fresh else []
        self.words += [str(argument) for argument in arguments]


class Bench:
    """The programs of a build folder, and a folder for what they work on."""

    def __init__(self, source, build, folder, quick):
        self.source = source
        self.build = build
        self.folder = folder
        self.quick = quick
        self.worker = build / "src/helper/trellant-omf"
        self.command = build / "src/cli/trellant"
        self.floor = build / "bench/processes/bench_floor_static"
        self.dynamic_floor = build / "bench/processes/bench_floor_dynamic"
        self.converter = build / "src/wav/trellant-wav"
        self.sessions = build / "bench/processes/bench_sessions"

    def size(self, full):
        """Of what a shape has many of: a tenth when things have to be quick."""
        return full // 10 if self.quick else full

    def runs(self, full):
        return max(1, full // 3) if self.quick else full

    def generate(self, shape, count, *options):
        """The file of a shape; kept, so that it is written once only."""
        name = "-".join([shape, str(count)] + [str(o).strip("-") for o in options if "/" not in str(o)])
        path = self.folder / f"{name}.omf"
        if not path.exists():
            subprocess.run([self.build / "bench/generate/bench_generate", shape, path,
                            "--count", str(count), *map(str, options)], check=True)
        self.warm(path)
        return path

    @staticmethod
    def warm(path):
        """Into the system's cache, as every measurement here presumes."""
        with open(path, "rb") as file:
            while file.read(1 << 22):
                pass

    def request(self, path, extract=False, search=None, work="work"):
        """A file with a request for that composition."""
        request = {"protocolVersion": 1, "operation": "extractAndInspect" if extract else "inspect",
                   "aafPath": str(path), "workDirectory": str(self.folder / work),
                   "recoverProToolsTrueFades": False,
                   "removeProToolsSampleAccurateEditFragments": False}
        if search:
            request["mediaSearchDirectory"] = str(search)
        place = self.folder / f"{path.stem}-{request['operation']}.json"
        place.write_text(json.dumps(request))
        return place

    def inspection(self, path, search=None):
        return Command(self.worker, given=self.request(path, search=search))

    def processes(self, runs, *commands):
        """Samples of commands that take turns; with 0 runs each is run once, with nothing warmed up."""
        words = [self.build / "bench/processes/bench_measure", str(runs)]
        for command in commands:
            words += ["--", *command.words]
        output = subprocess.run(words, check=True, capture_output=True, text=True).stdout
        lines = [line.split() for line in output.splitlines()]
        failed = [line for line in lines if line[5] != "0"]
        if failed:
            raise RuntimeError(f"{commands[int(failed[0][0])].words} ended with {failed[0][5]}")
        return [Sample([line for line in lines if line[0] == str(index)])
                for index in range(len(commands))]

    def parts(self, omf, tree):
        """From a part's name to its figures: CPU seconds and items of one iteration."""
        repetitions = self.runs(5)
        output = subprocess.run(
            [self.build / "bench/parts/bench_parts", f"--omf={omf}", f"--tree={tree}",
             "--benchmark_format=json", "--benchmark_enable_random_interleaving=true",
             f"--benchmark_repetitions={repetitions}", "--benchmark_min_time=0.2"],
            check=True, capture_output=True, text=True).stdout
        parts = {}
        for run in json.loads(output)["benchmarks"]:
            if run["run_type"] == "iteration":
                parts.setdefault(run["run_name"], []).append(run)
        return {name: Part(runs) for name, runs in parts.items()}

    def client(self, runs, host_bytes):
        """Median seconds of a bare start, and of a call of the client, in one host."""
        output = subprocess.run([self.build / "bench/processes/bench_client", str(runs),
                                 str(host_bytes), self.floor],
                                check=True, capture_output=True, text=True).stdout
        pairs = [tuple(map(int, line.split())) for line in output.splitlines()]
        return (statistics.median(bare for bare, _ in pairs) / 1e9,
                statistics.median(call for _, call in pairs) / 1e9)


class Part:
    def __init__(self, runs):
        # The library tells CPU microseconds of an iteration and rates per CPU second.
        self.cpu = statistics.median(run["cpu_time"] for run in runs) / 1e6
        self.per_item = 1 / statistics.median(run["items_per_second"] for run in runs)
        self.bytes_per_second = statistics.median(run.get("bytes_per_second", 0) for run in runs)
