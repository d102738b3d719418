#!/usr/bin/env python3
"""Counts what launches take and compares it with bench/budget.json.

Counted are instructions (valgrind), system calls (strace), page faults and peak memory (the system's own
account) of a first, a later, an in-process and a provisioning launch: figures that hardly depend on what else
the machine does, unlike times. A launch's calls are those of the launcher from main on and of its child, its
instructions those of the launcher up to the hand-off; in-process, of the whole process.

A figure more than the budget's "tolerance" above its limit fails. Page faults and peak memory differ by some
pages from run to run; compared is the least of several runs.

The figures hold for one compiler and one C library, which the budget names: elsewhere there is nothing to
compare, and the test is skipped. Page faults and memory are compared on the same kernel only. With --record the budget is printed with the figures of this machine; a limit
that is raised by hand gets its "reason".

It runs in the sandbox only (tests/support/sandbox), in whose own /tmp every path is as long as anywhere else.
"""
import argparse
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

SKIPPED = 77
RUNS = 40
LAUNCHES = {
    "first": ["--mode", "exec"],
    "later": ["--mode", "exec"],
    "in-process": ["--mode", "in-process"],
    "provisioning": ["--mode", "exec", "--provisioning", "1"],
}
MADE_ANEW = ("first", "provisioning")  # launches that find no user's area
MEASURES = ("instructions", "system calls", "page faults", "peak memory (KiB)")
OF_THE_KERNEL = MEASURES[2:]


def skip(reason):
    print("skipped: " + reason)
    sys.exit(SKIPPED)


class Launch:
    """One kind of launch, in an installation of its own."""

    def __init__(self, name, options):
        self.name = name
        self.folder = pathlib.Path("/tmp") / name
        self.home = self.folder / "home"
        self.program = self.folder / "Velmo/rcp/rcplauncher"
        subprocess.run([options.make_sample, self.folder / "Velmo", options.launcher, *LAUNCHES[name],
                        "--stand-in", options.stand_ins], check=True, stdout=subprocess.DEVNULL)
        self.prepare()

    def prepare(self):
        """The user's area as the launch finds it."""
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir()
        if self.name not in MADE_ANEW:
            self.run()
            self.run()

    def run(self, *wrapper):
        environment = {"LANG": "C.UTF-8", "PATH": "/usr/bin:/bin", "HOME": str(self.home), "USER": "ann",
                       # Other processors have other forms of the string functions.
                       "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2,-AVX,-ERMS,-FSRM,-BMI2,-AVX512F"}
        command = [*map(str, wrapper), self.program, "-config", "sample"]
        with subprocess.Popen(command, env=environment, cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as process:
            output, errors = process.communicate()
        if process.returncode != 0:
            sys.exit(f"{command} ended with {process.returncode}\n{errors}")
        return process.pid, output

    def instructions(self):
        self.prepare()
        out = self.folder / "callgrind"
        process, _ = self.run("setarch", "-R", "valgrind", "--tool=callgrind", "--dump-before=execve",
                              f"--callgrind-out-file={out}.%p")
        # Of the launcher, not of its child: what was counted when it handed over, else at its end.
        texts = [dump.read_text() for dump in sorted(self.folder.glob(f"callgrind.{process}*"))]
        totals = [int(total) for text in texts for total in re.findall(r"^totals: (\d+)", text, re.M)]
        return totals[0]

    def system_calls(self):
        self.prepare()
        self.run("strace", "-ff", "-o", self.folder / "trace")
        count = 0
        for trace in self.folder.glob("trace.*"):
            calls = [line for line in trace.read_text(errors="replace").splitlines()
                     if re.match(r"\w+\(", line)]
            # The loader's come first; main begins with poll(2).
            begin = next((i for i, call in enumerate(calls) if call.startswith("poll(")), 0)
            programs = [i for i, call in enumerate(calls) if call.startswith("execve(") and i > begin]
            count += (programs[0] + 1 if programs else len(calls)) - begin
        return count

    def memory(self, measure):
        """Page faults and peak memory."""
        self.prepare()
        aside = ["--aside", self.home / "workspace"] if self.name in MADE_ANEW else []
        _, out = self.run("setarch", "-R", measure, RUNS, "--", "launch", *aside)
        figures = json.loads(out)["launch"]
        return figures["least_faults"], figures["least_peak_kib"]


def figures_of(name, options):
    launch = Launch(name, options)
    faults, peak = launch.memory(options.measure)
    return dict(zip(MEASURES, (launch.instructions(), launch.system_calls(), faults, peak)))


def surroundings(options):
    libc = os.confstr("CS_GNU_LIBC_VERSION") or "another C library"
    return {"compiler": options.compiler, "C library": libc, "machine": os.uname().machine}


def kernel():
    """As far as it decides how memory is mapped: "6.1"."""
    return ".".join(os.uname().release.split(".")[:2])


def compare(budget, figures):
    """Prints every figure beside its limit; whether all are within it."""
    most = 1 + budget["tolerance"]
    is_within = True
    is_same_kernel = kernel() == budget["kernel"]
    if not is_same_kernel:
        print(f"page faults and memory are not compared: measured on Linux {budget['kernel']}, "
              f"this is {kernel()}")
    for name, measured in figures.items():
        for measure, value in measured.items():
            if measure in OF_THE_KERNEL and not is_same_kernel:
                continue
            limit = budget["launches"][name][measure]
            if not limit["reason"]:
                sys.exit(f"bench/budget.json: {name} launch, {measure}: a limit needs its reason")
            is_too_much = value > limit["limit"] * most
            is_within = is_within and not is_too_much
            print(f"{name + ' launch, ' + measure:44} {value:10d}  limit {limit['limit']:10d}"
                  f"  {(value / limit['limit'] - 1) * 100:+6.2f} %{'  TOO MUCH' if is_too_much else ''}")
    return is_within


def with_limits(budget, figures):
    for name, measured in figures.items():
        for measure, value in measured.items():
            budget["launches"].setdefault(name, {}).setdefault(measure, {"reason": "as first measured"})
            budget["launches"][name][measure]["limit"] = value
    return budget


def main():
    parser = argparse.ArgumentParser()
    for option in ("launcher", "stand-ins", "make-sample", "measure", "budget", "compiler", "build-type"):
        parser.add_argument("--" + option, required=True)
    parser.add_argument("--record", action="store_true")
    options = parser.parse_args()
    if str(os.stat("/tmp").st_dev) != os.environ.get("RCP_SANDBOX_TMP"):
        sys.exit("budget.py: only in the sandbox")
    for tool in ("valgrind", "strace", "setarch"):
        if not shutil.which(tool):
            skip(f"there is no {tool}")
    if options.build_type != "Release":
        skip(f"the budget is that of a Release build; this one is {options.build_type or 'of no type'}")
    budget = json.loads(pathlib.Path(options.budget).read_text())
    here = surroundings(options)
    if here != budget["measured with"] and not options.record:
        skip(f"the budget was measured with {budget['measured with']}, this is {here}")
    figures = {name: figures_of(name, options) for name in LAUNCHES}
    if options.record:
        budget["measured with"] = here
        budget["kernel"] = kernel()
        print(json.dumps(with_limits(budget, figures), indent=2))
        return 0
    return 0 if compare(budget, figures) else 1


sys.exit(main())
