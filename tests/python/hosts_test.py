# SPDX-License-Identifier: Apache-2.0
"""Hosts of all kinds: that end, are killed, handle signals, leave the reaping to the system, have nothing left."""
import signal
import subprocess
import sys
import textwrap
import time
import unittest

from misbehaviour_test import Misbehaviour, is_running
from support import EXAMPLES

SESSION = str(EXAMPLES / "session.omf")


class Hosts(Misbehaviour):
    def host(self, script, *arguments):
        """A host that runs `script`; its arguments are in `sys.argv`."""
        prologue = "import os, signal, sys, threading, time, trellant\n"
        process = subprocess.Popen(
            [sys.executable, "-B", "-c", prologue + textwrap.dedent(script), *arguments], stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True)
        self.addCleanup(process.stdout.close)
        return process

    def output(self, script, *arguments):
        process = self.host(script, *arguments)
        output, _ = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 0, output)
        return output

    def sleeper(self):
        """A worker that leaves its number and sleeps until it is ended, or until its host has gone."""
        return self.worker("host = os.getppid()\n" + self.speak("os.getpid()") +
                           "while os.getppid() == host: time.sleep(0.05)")

    def gone(self, process):
        for _ in range(500):
            if not is_running(process):
                return True
            time.sleep(0.01)
        return False

    def test_one_that_ends_while_a_call_is_under_way_ends_the_worker(self):
        started = time.monotonic()
        self.output("""
            client = trellant.Client(worker=sys.argv[1])
            call = client.start(client.request(trellant.Operation.INSPECT, "/a.omf"))
            while not os.path.exists(sys.argv[2]):
                time.sleep(0.01)
            """, self.sleeper(), str(self.folder / "said"))
        self.assertLess(time.monotonic() - started, 30)
        self.assertTrue(self.gone(int(self.said())))

    def test_one_that_is_killed_takes_the_built_worker_along(self):
        # The worker waits for the end of its request, which lies in a pipe that nobody else holds.
        process = self.host("""
            import subprocess
            reading, writing = os.pipe()
            start = subprocess.Popen
            def watched(*arguments, **options):
                worker = start(*arguments, **{**options, "stdin": reading})
                print(worker.pid, flush=True)
                return worker
            subprocess.Popen = watched
            trellant.Client().inspect(sys.argv[1])
            """, SESSION)
        worker = int(process.stdout.readline())
        self.assertTrue(is_running(worker))
        process.kill()
        process.wait(60)
        self.assertTrue(self.gone(worker))

    def test_a_key_that_interrupts_ends_the_call_and_the_worker(self):
        process = self.host("""
            try:
                trellant.Client(worker=sys.argv[1]).inspect("/a.omf")
            except KeyboardInterrupt:
                print("interrupted")
            """, self.sleeper())
        worker = int(self.said())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.communicate(timeout=60)[0], "interrupted\n")
        self.assertFalse(is_running(worker))

    def test_a_handler_of_a_signal_may_cancel(self):
        process = self.host("""
            client = trellant.Client(worker=sys.argv[1])
            call = client.start(client.request(trellant.Operation.INSPECT, "/a.omf"))
            signal.signal(signal.SIGTERM, lambda number, frame: call.cancel())
            print("ready", flush=True)
            try:
                call.result()
            except trellant.CancellationError:
                print("cancelled")
            """, self.sleeper())
        self.assertEqual(process.stdout.readline(), "ready\n")
        worker = int(self.said())
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.communicate(timeout=60)[0], "cancelled\n")
        self.assertFalse(is_running(worker))

    def test_one_that_a_broken_pipe_would_end_is_not_ended_by_a_worker(self):
        output = self.output("""
            signal.signal(signal.SIGPIPE, signal.SIG_DFL)
            request = trellant.Request(trellant.Operation.INSPECT, "/" + "x" * 3_000_000, "/")
            try:
                trellant.Client(worker=sys.argv[1]).start(request).result()
            except trellant.LaunchFailed as error:
                print(error.cause.name)
            """, self.worker("answer()"))
        self.assertEqual(output, "REQUEST_NOT_TAKEN\n")

    def test_workers_meet_signals_as_a_fresh_program_does(self):
        worker = self.worker(self.speak("[signal.getsignal(signal.SIGTERM), signal.pthread_sigmask(signal.SIG_BLOCK, "
                                        "[]), os.getpgid(0) == os.getpid()]") + "answer()")
        self.output("""
            client = trellant.Client(worker=sys.argv[1])
            for _ in range(2):
                client.inspect("/a.omf")
            """, worker)
        self.assertEqual(self.said(), f"[{signal.SIG_DFL!r}, set(), True]")

    def test_one_that_leaves_the_reaping_to_the_system(self):
        output = self.output("""
            signal.signal(signal.SIGCHLD, signal.SIG_IGN)
            print(trellant.Client().inspect(sys.argv[1]).timeline.composition_name)
            try:
                trellant.Client().inspect("/no/such/place.omf")
            except trellant.NonZeroExit as error:
                print(error.status, error.log_lines.partition(":")[0])
            """, SESSION)
        self.assertEqual(output, "Scene 12\n-1 trellant-omf\n")

    def test_one_with_too_few_descriptors_left(self):
        # The alarm takes two, the pipes six, and what starts a program a few for a moment. The notice of the worker's
        # end is done without.
        output = self.output("""
            import resource
            client = trellant.Client()
            client.inspect(sys.argv[1])
            before = os.listdir("/proc/self/fd")
            for left in range(14):
                resource.setrlimit(resource.RLIMIT_NOFILE, (len(before) + left - 1, 4096))
                try:
                    print(left, client.inspect(sys.argv[1], progress=lambda record: None).timeline.composition_name)
                except trellant.LaunchFailed as error:
                    print(left, error.cause.name)
                resource.setrlimit(resource.RLIMIT_NOFILE, (4096, 4096))
            assert os.listdir("/proc/self/fd") == before
            time.sleep(0.2)
            assert threading.active_count() == 1, threading.enumerate()
            """, SESSION)
        outcomes = [line.split(" ", 1)[1] for line in output.splitlines()]
        self.assertEqual(len(outcomes), 14)
        refused = outcomes.count("SYSTEM_REFUSED")
        self.assertGreaterEqual(refused, 8)
        self.assertEqual(outcomes, ["SYSTEM_REFUSED"] * refused + ["Scene 12"] * (14 - refused))
        self.assertLess(refused, 14)

    def test_one_with_no_thread_left(self):
        output = self.output("""
            def refuse(thread):
                raise RuntimeError("can't start new thread")
            start, threading.Thread.start = threading.Thread.start, refuse
            try:
                trellant.Client().inspect(sys.argv[1])
            except trellant.LaunchFailed as error:
                print(error.cause.name, error.reason)
            """, SESSION)
        self.assertEqual(output, "SYSTEM_REFUSED cannot start a thread: can't start new thread\n")

    def test_errors_come_out_of_the_processes_of_a_pool(self):
        output = self.output("""
            import concurrent.futures, multiprocessing
            def composition(file):
                return trellant.Client().inspect(file).timeline
            if __name__ == "__main__":
                context = multiprocessing.get_context("fork")
                with concurrent.futures.ProcessPoolExecutor(2, mp_context=context) as pool:
                    print(pool.submit(composition, sys.argv[1]).result().clock.timeline_zero)
                    try:
                        pool.submit(composition, "/no/such/place.omf").result()
                    except trellant.NonZeroExit as error:
                        print(error.status)
            """, SESSION)
        self.assertEqual(output, "01:00:00;00\n2\n")

    def test_without_pidfds_and_waitid_the_end_is_seen_all_the_same(self):
        output = self.output("""
            for name in {"pidfd_open", "waitid"} & set(vars(os)):
                delattr(os, name)
            try:
                trellant.Client().inspect("/no/such/place.omf")
            except trellant.NonZeroExit as error:
                print(error.status)
            print(trellant.Client().inspect(sys.argv[1]).timeline.composition_name)
            call = trellant.Client(worker=sys.argv[2]).start(
                trellant.Request(trellant.Operation.INSPECT, "/a.omf", "/"))
            while not os.path.exists(sys.argv[3]):
                time.sleep(0.01)
            call.cancel()
            try:
                call.result()
            except trellant.CancellationError:
                print("cancelled")
            """, SESSION, self.sleeper(), str(self.folder / "said"))
        self.assertEqual(output, "2\nScene 12\ncancelled\n")
        self.assertFalse(is_running(int(self.said())))


if __name__ == "__main__":
    unittest.main(verbosity=2)
