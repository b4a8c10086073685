#!/usr/bin/env python3
"""Commits random edits through aaanc for a long time, to a service that is
restarted now and then, and holds memory, file descriptors and threads of both
flat after warming up. All restarts come in the first half: memory of the service
is judged by its last life, which takes the other half.

Every callback of a valid edit returns 0 while the service is there.
"""
import argparse
import json
import pathlib
import random
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import time

from edits import Edits

PATIENCE = 60  # seconds that anything may take
SAMPLE_EVERY = 20  # commits
WARMING_UP = 20  # samples: until the configuration has filled up, and each page been touched
FEWEST = 100  # samples after that, to tell a small leak from what malloc takes for itself
# Bytes of memory, at most. malloc's own hardly grow any more after 20,000 commits.
MOST_A_COMMIT = 32
MOST_A_REQUEST = 8
DESCRIPTOR_SLACK = 2  # the sockets of requests under way


def sample(process, done):
    """What a process holds, as (what it has done, memory in KiB, file descriptors, threads); none when it has ended."""
    proc = pathlib.Path("/proc", str(process.pid))
    status = dict(line.split(":", 1) for line in (proc / "status").read_text().splitlines())
    if "VmRSS" not in status:
        return []
    return [(done, int(status["VmRSS"].split()[0]), len(list((proc / "fd").iterdir())), int(status["Threads"]))]


class Usage:
    """The samples of one process after warming up: the most of the first tenth and of the last, and the growth."""

    def __init__(self, samples, unit, most):
        warm = samples[WARMING_UP:]
        if len(warm) < FEWEST:
            sys.exit(f"soak: {len(warm)} samples are too few to judge by")
        count = len(warm) // 10
        self.warm, self.end = ([max(column) for column in zip(*part)] for part in (warm[:count], warm[-count:]))
        done, memory, *_ = zip(*warm)
        self.growth = 1024 * statistics.linear_regression(done, memory).slope
        self.unit, self.most = unit, most

    def is_flat(self):
        _, _, descriptors, threads = (end - warm for end, warm in zip(self.end, self.warm))
        return self.growth <= self.most and descriptors <= DESCRIPTOR_SLACK and threads == 0

    def __str__(self):
        _, memory, descriptors, threads = zip(self.warm, self.end)
        return (f"memory {memory[0]} KiB after warm-up and {memory[1]} KiB at the end, "
                f"{self.growth:.1f} bytes a {self.unit} (at most {self.most}), "
                f"file descriptors {descriptors[0]} and {descriptors[1]}, threads {threads[0]} and {threads[1]}")


class Service:
    """aaanc service, in one life after another."""

    def __init__(self, aaanc, path):
        self.aaanc, self.path = aaanc, path
        self.start()

    def start(self):
        self.process = subprocess.Popen([self.aaanc, "service", "--socket", self.path], stdout=subprocess.DEVNULL)
        self.samples = []

    def wait_until_it_listens(self):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as probe:
                if probe.connect_ex(str(self.path)) == 0:
                    return
            time.sleep(0.01)
        sys.exit("soak: aaanc service does not listen")

    def sample(self, requests):
        self.samples += sample(self.process, requests)

    def end(self, number):
        if self.process.poll() is not None:
            sys.exit(f"soak: aaanc service has ended by itself, with {self.process.returncode}")
        self.process.send_signal(number)
        self.process.wait(PATIENCE)
        if number == signal.SIGTERM and self.path.exists():
            sys.exit("soak: aaanc service has left its socket")

    def restart(self, number):
        self.end(number)
        self.start()
        self.wait_until_it_listens()  # meanwhile aaanc apply goes on, as far as its output is taken


class Counter:
    """Goes through the records of aaanc apply."""

    def __init__(self):
        self.commits = 0
        self.requests = 0
        self.failed = 0  # callbacks, for want of a service
        self.unanswered = set()  # callbacks with an unanswered request
        self.faults = []

    def take(self, line):
        record = json.loads(line)
        kind = record["record"]
        if kind == "stage":
            self.commits += record["stage"] == "edit"
        elif kind == "request":
            self.requests += 1
            result = record["answer"]["result"]
            if result is None:
                self.unanswered.add(record["callback"])
            elif result != 0:
                self.faults.append(line)
        elif kind == "callback" and record["result"] != 0:
            self.failed += 1
            if record["number"] not in self.unanswered:
                self.faults.append(line)
        elif kind == "stopped":
            self.faults.append(line)
        return kind


def write_edits(directory, seed, count):
    edits = Edits(seed)
    files = []
    for number in range(count):
        files.append(f"{number:06}.xml")
        (directory / files[-1]).write_text(edits.next())
    return files


def soak(options, directory):
    files = write_edits(directory, options.seed, options.commits)
    service = Service(options.aaanc, directory / "aaa")
    try:
        service.wait_until_it_listens()
        with subprocess.Popen([options.aaanc, "apply", "--json", "--socket", service.path, *files],
                              cwd=directory, stdout=subprocess.PIPE, text=True) as apply:
            counter, samples = follow(options, apply, service)
        service.end(signal.SIGTERM)
    finally:
        service.process.kill()
    return (counter, apply.returncode,
            Usage(samples, "commit", MOST_A_COMMIT), Usage(service.samples, "request", MOST_A_REQUEST))


def follow(options, apply, service):
    """Reads what aaanc apply writes, and restarts the service on the way."""
    choices = random.Random(options.seed)
    restarts = set(choices.sample(range(1, options.commits // 2), options.restarts))
    counter = Counter()
    samples = []
    for line in apply.stdout:
        if counter.take(line) != "stage":
            continue
        if counter.commits in restarts:
            service.restart(choices.choice([signal.SIGTERM, signal.SIGKILL]))
        if counter.commits % SAMPLE_EVERY == 0:
            samples += sample(apply, counter.commits)
            service.sample(counter.requests)
    return counter, samples


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("aaanc", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--commits", type=int, default=10000)
    parser.add_argument("--restarts", type=int, help="by default one for 1,000 commits")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    fewest = 2 * (WARMING_UP + FEWEST) * SAMPLE_EVERY
    if options.commits < fewest:
        parser.error(f"--commits: fewer than {fewest} say nothing")
    if options.restarts is None:
        options.restarts = options.commits // 1000
    with tempfile.TemporaryDirectory(prefix="soak-") as directory:
        counter, status, of_apply, of_service = soak(options, pathlib.Path(directory))

    print(f"soak, aaanc apply: {counter.commits} commits, {of_apply}")
    print(f"soak, aaanc service: {options.restarts} restarts, {counter.failed} callbacks found none; "
          f"in the last life: {of_service}")
    faults = counter.faults[:10]
    if counter.commits != options.commits:
        faults.append(f"{counter.commits} commits instead of {options.commits}")
    if status != (1 if counter.failed else 0):
        faults.append(f"aaanc apply ended with {status}")
    faults += [f"not flat: {usage}" for usage in (of_apply, of_service) if not usage.is_flat()]
    if faults:
        sys.exit("soak: " + "\nsoak: ".join(faults))


if __name__ == "__main__":
    main()
