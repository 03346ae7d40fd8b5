# SPDX-License-Identifier: Apache-2.0
"""Workers that do not do what they should, and what the host sees of it."""
import asyncio
import json
import os
import threading
import time
import unittest
from pathlib import Path

import trellant
from support import SMALLEST_RESULT, FolderTest
from trellant import LaunchCause, Operation, ResponseFault

REQUEST = trellant.Request(Operation.INSPECT, "/a.omf", "/work")
MEBIBYTE = 2**20
# Seconds that a call which is cancelled may take, and what a busy machine adds.
SOON = 1.0 + 4.0


def is_running(process):
    """Whether a process is there and no zombie."""
    try:
        return Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    except FileNotFoundError:
        return False


class Misbehaviour(FolderTest):
    def start(self, script, **options):
        limits = {key: options.pop(key) for key in ("time_limit", "result_limit", "memory_limit") if key in options}
        return trellant.Client(worker=self.worker(script), **limits).start(REQUEST, **options)

    def fail(self, script, expected, **options):
        with self.assertRaises(expected) as caught:
            self.start(script, **options).result(60)
        return caught.exception

    def said(self, name="said"):
        """What a worker has written to a file, when it is there."""
        path = self.folder / name
        for _ in range(2_000):
            if path.exists() and path.read_text():
                return path.read_text()
            time.sleep(0.01)
        raise AssertionError(f"no worker wrote {name}")

    def speak(self, expression, name="said"):
        """Lines that leave a value for `said`, whole or not at all."""
        path = str(self.folder / name)
        return (f"with open({path!r} + '~', 'w') as file: file.write(str({expression}))\n"
                f"os.rename({path!r} + '~', {path!r})\n")


class Requests(Misbehaviour):
    def sent(self, request, **limits):
        worker = self.worker(self.speak("read_request()") + "answer()")
        trellant.Client(worker=worker, **limits).start(request).result(60)
        return json.loads(self.said())

    def test_have_all_keys_that_are_required_and_no_more(self):
        self.assertEqual(self.sent(REQUEST), {
            "protocolVersion": 1, "operation": "inspect", "aafPath": "/a.omf", "workDirectory": "/work",
            "recoverProToolsTrueFades": False, "removeProToolsSampleAccurateEditFragments": False})

    def test_have_what_is_given(self):
        request = trellant.Request(
            Operation.EXTRACT_AND_INSPECT, "/é\n.omf", "", "/media", True, True, ("dates",), 7, 3)
        self.assertEqual(self.sent(request, memory_limit=1), {
            "protocolVersion": 3, "operation": "extractAndInspect", "aafPath": "/é\n.omf", "workDirectory": "",
            "mediaSearchDirectory": "/media", "recoverProToolsTrueFades": True,
            "removeProToolsSampleAccurateEditFragments": True, "extensions": ["dates"], "memoryLimit": 7})

    def test_have_the_clients_memory_limit(self):
        self.assertEqual(self.sent(REQUEST, memory_limit=2**40)["memoryLimit"], 2**40)

    def test_of_megabytes_reach_a_worker_that_is_slow(self):
        request = trellant.Request(Operation.INSPECT, "/" + "x" * 3 * MEBIBYTE, "/")
        worker = self.worker("time.sleep(0.3)\n" + self.speak("len(read_request())") + "answer()")
        trellant.Client(worker=worker).start(request).result(60)
        self.assertGreater(int(self.said()), 3 * MEBIBYTE)


class Floods(Misbehaviour):
    def test_a_megabyte_of_errors_before_the_request_is_read(self):
        call = self.start("sys.stderr.write('line\\n' * 210_000); sys.stderr.flush(); read_request(); answer()")
        answer = call.result(60)
        self.assertEqual(answer.log_lines, ("line",) * 60)

    def test_one_line_without_an_end(self):
        error = self.fail(f"sys.stderr.write('x' * {5 * MEBIBYTE}); sys.exit(4)", trellant.NonZeroExit)
        self.assertEqual(error.status, 4)
        # Eight pieces of a line, as long as a line may be, and line feeds between them.
        self.assertLessEqual(len(error.log_lines), 8 * 65_536 + 7)
        self.assertEqual(set(error.log_lines), {"x", "\n"})

    def test_errors_without_end_and_a_time_limit(self):
        self.fail("while True: sys.stderr.write('x' * 65536)", trellant.TimeLimitError, time_limit=0.5)

    def test_an_answer_without_end_is_cut_off(self):
        error = self.fail("while True: sys.stdout.write('x' * 65536)", trellant.InvalidResponse,
                          result_limit=3 * MEBIBYTE)
        self.assertEqual(error.kind, ResponseFault.TOO_LONG)

    def test_progress_without_end(self):
        line = 'TRELLANT-AAF-PROGRESS {"phase":"x","fraction":0}\\n'
        seen = []
        self.start(f"read_request(); sys.stderr.write('{line}' * 20_000); answer()", progress=seen.append).result(60)
        self.assertGreater(len(seen), 0)
        self.assertLessEqual(len(seen), 20_000)

    def test_a_callback_that_sleeps_gets_the_newest_records(self):
        line = 'TRELLANT-AAF-PROGRESS {{"phase":"{}","fraction":0}}\\n'
        go, seen = threading.Event(), []

        def take(record):
            seen.append(record.phase)
            go.wait(30)

        call = self.start(
            "read_request()\nfor number in range(3_000):\n"
            f"    sys.stderr.write('{line}'.format(number))\n"
            # Until the host has read all that the pipe holds.
            "import fcntl, termios\n"
            "while fcntl.ioctl(2, termios.FIONREAD, bytes(4)) != bytes(4): time.sleep(0.01)\n" +
            self.speak("1") + "while not os.path.exists(" + repr(str(self.folder / "go")) + "): time.sleep(0.01)\n"
            "answer()", progress=take)
        self.said()
        # What was read last may still be on its way from one thread to the other.
        time.sleep(0.5)
        go.set()
        (self.folder / "go").touch()
        call.result(60)
        self.assertEqual(seen[0], "0")
        self.assertEqual(seen[1:], [str(number) for number in range(3_000 - 1_024, 3_000)])


class Ends(Misbehaviour):
    def test_by_a_status(self):
        error = self.fail("read_request(); sys.stderr.write('one\\n\\nlast'); sys.exit(3)", trellant.NonZeroExit)
        self.assertEqual((error.status, error.signal, error.log_lines), (3, None, "one\nlast"))

    def test_the_last_eight_lines_are_told(self):
        error = self.fail("read_request()\nfor i in range(20): print(i, file=sys.stderr)\nsys.exit(1)",
                          trellant.NonZeroExit)
        self.assertEqual(error.log_lines, "\n".join(str(number) for number in range(12, 20)))

    def test_by_a_signal(self):
        error = self.fail("read_request(); os.kill(os.getpid(), signal.SIGKILL)", trellant.NonZeroExit)
        self.assertEqual((error.status, error.signal), (9, 9))

    def test_before_the_request_is_read(self):
        # It fits the pipe, so what counts is how the worker ended.
        self.assertEqual(self.fail("sys.exit(5)", trellant.NonZeroExit).status, 5)

    def test_with_most_of_a_long_request_unread(self):
        request = trellant.Request(Operation.INSPECT, "/" + "x" * 3 * MEBIBYTE, "/")
        with self.assertRaises(trellant.LaunchFailed) as caught:
            trellant.Client(worker=self.worker("answer()")).start(request).result(60)
        self.assertEqual((caught.exception.cause, caught.exception.reason),
                         (LaunchCause.REQUEST_NOT_TAKEN, "cannot write the request: Broken pipe"))

    def test_well_without_a_word(self):
        error = self.fail("read_request()", trellant.InvalidResponse)
        self.assertEqual((error.kind, error.reason),
                         (ResponseFault.CORRUPT, "syntax error at line 1, column 1: Expecting value"))

    def test_well_with_rubbish(self):
        error = self.fail("read_request(); sys.stdout.buffer.write(bytes(range(256)))", trellant.InvalidResponse)
        self.assertEqual(error.kind, ResponseFault.CORRUPT)

    def test_well_with_half_an_answer(self):
        error = self.fail("read_request(); sys.stdout.write(RESULT[:-1])", trellant.InvalidResponse)
        self.assertEqual(error.kind, ResponseFault.CORRUPT)

    def test_well_with_an_answer_of_another_version(self):
        error = self.fail("sys.stdout.write(RESULT.replace('Version\":1', 'Version\":2'))", trellant.InvalidResponse)
        self.assertEqual((error.kind, error.reason), (ResponseFault.OTHER_VERSION, "protocol version mismatch"))

    def test_well_with_a_timeline_that_breaks_a_rule(self):
        error = self.fail("sys.stdout.write(RESULT.replace('\"hours\":0', '\"hours\":24'))",
                          trellant.InvalidResponse)
        self.assertEqual((error.kind, error.reason), (
            ResponseFault.INVALID_TIMELINE, "AAF raw model: invalid-timecode-label (clock)"))
        answer = self.start("sys.stdout.write(RESULT.replace('\"hours\":0', '\"hours\":24'))", checked=False)
        self.assertEqual(answer.result(60).timeline.clock.timeline_zero.hours, 24)

    def test_well_with_a_wrong_type(self):
        error = self.fail("sys.stdout.write(RESULT.replace('[]', '7', 1))", trellant.InvalidResponse)
        self.assertEqual((error.kind, error.key_path, error.reason), (
            ResponseFault.WRONG_TYPE, "diagnostics", "diagnostics: expected an array, found a number"))

    def test_with_streams_closed_early_and_work_left(self):
        answer = self.start(
            "answer(); sys.stdout.flush(); os.close(0); os.close(1); os.close(2); time.sleep(0.3); os._exit(0)")
        self.assertEqual(answer.result(60).timeline.tracks, ())

    def test_leaving_somebody_behind_who_holds_its_errors(self):
        started = time.monotonic()
        call = self.start("child = subprocess.Popen(['sleep', '20'], stdin=0, stdout=subprocess.DEVNULL)\n" +
                          self.speak("child.pid") + "read_request(); answer()")
        self.assertEqual(call.result(60).timeline.tracks, ())
        self.assertLess(time.monotonic() - started, 15)
        os.kill(int(self.said()), 9)

    def test_broken_progress_is_passed_over(self):
        seen = []
        call = self.start(
            "read_request()\nmark = 'TRELLANT-AAF-PROGRESS '\n"
            "for text in ('', '{', '{}', '{\"phase\":7,\"fraction\":0}', '[[[[', '{\"phase\":\"x\",\"fraction\":2}'):\n"
            "    sys.stderr.write(mark + text + '\\n')\nsys.stderr.buffer.write(b'\\xff\\n')\nanswer()",
            progress=seen.append)
        self.assertEqual(call.result(60).log_lines, ("\ufffd",))
        # As the worker wrote it: a fraction is any finite number.
        self.assertEqual(seen, [trellant.Progress("x", 2.0)])

    def test_a_line_in_two_writes_is_one(self):
        call = self.start("sys.stderr.write('on'); sys.stderr.flush(); time.sleep(0.2); sys.stderr.write('e\\n')\n"
                          "read_request(); answer()")
        self.assertEqual(call.result(60).log_lines, ("one",))


class Cancellations(Misbehaviour):
    def cancel(self, script, **options):
        """A call of a worker that has left its number, cancelled; whether it is gone."""
        call = self.start(self.speak("os.getpid()") + script, **options)
        process = int(self.said())
        started = time.monotonic()
        self.assertTrue(call.cancel())
        with self.assertRaises(trellant.CancellationError):
            call.result(60)
        self.assertLess(time.monotonic() - started, SOON)
        self.assertFalse(is_running(process))
        self.assertFalse(call.cancel())

    def test_of_a_worker_that_sleeps(self):
        self.cancel("time.sleep(60)")

    def test_of_a_worker_that_does_not_want_to_end(self):
        self.cancel("signal.signal(signal.SIGTERM, signal.SIG_IGN)\nwhile True: time.sleep(1)")

    def test_of_a_worker_that_reads_nothing_and_writes_for_ever(self):
        self.cancel("while True: sys.stdout.write('x' * 65536)", result_limit=2**60)

    def test_of_a_worker_with_helpers(self):
        call = self.start("child = subprocess.Popen(['sleep', '60'])\n" + self.speak("child.pid") + "child.wait()")
        helper = int(self.said())
        call.cancel()
        with self.assertRaises(trellant.CancellationError):
            call.result(60)
        for _ in range(500):
            if not is_running(helper):
                break
            time.sleep(0.01)
        self.assertFalse(is_running(helper))

    def test_while_a_callback_does_not_return(self):
        go = threading.Event()
        self.addCleanup(go.set)
        line = 'TRELLANT-AAF-PROGRESS {"phase":"x","fraction":0}\\n'
        self.cancel(f"sys.stderr.write('{line}'); sys.stderr.flush(); time.sleep(60)",
                    progress=lambda record: go.wait(60))

    def test_out_of_the_callback_itself(self):
        line = 'TRELLANT-AAF-PROGRESS {"phase":"x","fraction":0}\\n'
        calls = []
        ready = threading.Event()

        def take(record):
            ready.wait(60)
            calls[0].cancel()

        calls.append(self.start(f"sys.stderr.write('{line}'); sys.stderr.flush(); time.sleep(60)", progress=take))
        ready.set()
        with self.assertRaises(trellant.CancellationError):
            calls[0].result(60)

    def test_by_the_end_of_a_block(self):
        with self.start(self.speak("os.getpid()") + "time.sleep(60)") as call:
            process = int(self.said())
        self.assertTrue(call.done())
        self.assertFalse(is_running(process))

    def test_by_an_exception_that_leaves_the_block(self):
        with self.assertRaises(KeyboardInterrupt):
            with self.start(self.speak("os.getpid()") + "time.sleep(60)"):
                process = int(self.said())
                raise KeyboardInterrupt
        self.assertFalse(is_running(process))

    def test_a_time_limit_ends_the_worker(self):
        started = time.monotonic()
        self.fail(self.speak("os.getpid()") + "time.sleep(60)", trellant.TimeLimitError, time_limit=1.0)
        self.assertGreaterEqual(time.monotonic() - started, 1.0)
        self.assertFalse(is_running(int(self.said())))

    def test_an_answer_that_is_being_decoded(self):
        # A million remarks take a second to decode, and a look is taken at each.
        call = self.start("read_request()\n" + self.speak("os.getpid()") +
                          "sys.stdout.write(RESULT.replace('[]', '[' + '\"x\",' * 1_000_000 + '\"x\"]', 1))")
        process = int(self.said())
        while is_running(process):
            time.sleep(0.01)
        self.assertTrue(call.cancel())
        with self.assertRaises(trellant.CancellationError):
            call.result(60)

    def test_by_the_task_that_waits(self):
        async def wait(call):
            await asyncio.wait_for(asyncio.wrap_future(call), 0.2)

        call = self.start(self.speak("os.getpid()") + "time.sleep(60)")
        process = int(self.said())
        with self.assertRaises(asyncio.TimeoutError):
            asyncio.run(wait(call))
        with self.assertRaises(trellant.CancellationError):
            call.result(60)
        self.assertFalse(is_running(process))

    def test_a_failing_callback_ends_the_worker(self):
        line = 'TRELLANT-AAF-PROGRESS {"phase":"x","fraction":0}\\n'

        def refuse(record):
            raise LookupError(record.phase)

        self.fail(self.speak("os.getpid()") + f"sys.stderr.write('{line}'); sys.stderr.flush(); time.sleep(60)",
                  LookupError, progress=refuse)
        self.assertFalse(is_running(int(self.said())))

    def test_a_callback_that_waits_for_the_call_does_not_hang_both(self):
        line = 'TRELLANT-AAF-PROGRESS {"phase":"x","fraction":0}\\n'
        calls, ready = [], threading.Event()

        def wait(record):
            ready.wait(60)
            calls[0].result(60)

        calls.append(self.start(f"sys.stderr.write('{line}'); read_request(); answer()", progress=wait))
        ready.set()
        self.assertEqual(calls[0].result(60).timeline.tracks, ())


class Answers(Misbehaviour):
    def test_the_smallest_there_is(self):
        answer = self.start("read_request(); answer()").result(60)
        self.assertEqual(answer.result, trellant.decode_result(SMALLEST_RESULT.encode()))


if __name__ == "__main__":
    unittest.main(verbosity=2)
