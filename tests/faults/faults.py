#!/usr/bin/env python3
"""Lets system calls of whole launches fail, one at a time, and looks at what comes of it.

Each kind of launch is run once under strace as it is: that gives its calls. Then it is run again
and again from the same state of the user's area, each time with another call failing in another
way. Of every such launch must hold:

  - it ends by itself, and soon, with status 0 or 255 and never by a signal;
  - 255 leaves an error record, in the workspace's log or in the temporary one;
  - 0 means that the platform started, or that a record tells why it did not;
  - 0 without a record means that nothing was lost on the way: the platform has the arguments and
    the environment of always;
  - files of the user that were complete are still complete and there;
  - the next launch, undisturbed, starts the platform with the arguments and files of always.

Only the launcher's own calls count. Those of the dynamic loader before main come before the first
poll(2), which is the first thing that main does; those of the platform come behind
the execve(2) that starts it or, inside the launcher's process, behind its look at /dev/fd, the
first thing that the stand-in does.

strace counts the calls of each process by itself. A fault for the N-th call of the launcher's child
can therefore hit the N-th call of the loader; such runs are left out of the count.

It runs in the sandbox only (tests/support/sandbox), whose /tmp it empties before each launch.
"""

import argparse
import collections
import difflib
import glob
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

LIMIT_SECONDS = 60  # ends what hangs; a launch is over in a moment
SKIPPED = 77
KEPT = ("registry", "bookmarks.xml")
TEMPORARY = (".tmp", ".new", "/.rcp.unfinished")
USER = "ann"

# What each call can really answer. "+" is a failure that stays: one that is over with the next call
# harms nobody who reads on. "0" and "1" are short reads and writes: nothing, or one byte (a
# line feed, which no text file of the launcher minds). brk(2) never answers with an error, only
# with an end of the heap that is not the one asked for. close(2) is left out: the system gives the
# descriptor up whatever it answers, while a call that strace lets fail is never made.
ERRORS = {
    "openat": "EACCES EMFILE ENOMEM EINTR EIO ENOSPC",
    "open": "EACCES EMFILE ENOMEM EINTR EIO ENOSPC",
    "read": "EIO EIO+ EINTR 1",
    "pread64": "EIO EIO+ EINTR 0",
    "write": "EIO EINTR ENOSPC 0",
    "pwrite64": "EIO EINTR ENOSPC 0",
    "newfstatat": "EIO ENOMEM EACCES",
    "fstat": "EIO ENOMEM",
    "lstat": "EIO ENOMEM EACCES",
    "stat": "EIO ENOMEM EACCES",
    "statx": "EIO ENOMEM EACCES",
    "access": "EACCES EIO",
    "faccessat2": "EACCES EIO",
    "readlink": "EACCES EIO ENOMEM",
    "readlinkat": "EACCES EIO ENOMEM",
    "getcwd": "ENOMEM EACCES",
    "getdents64": "EIO ENOMEM",
    "mkdir": "ENOSPC EACCES EIO ENOMEM",
    "unlinkat": "EACCES EIO EBUSY",
    "rename": "ENOSPC EACCES EIO ENOMEM",
    "unlink": "EACCES EIO ENOMEM",
    "symlink": "ENOSPC EACCES EIO",
    "ftruncate": "EIO EINTR EACCES",
    "fchmod": "EIO EPERM",
    "fsync": "EIO ENOSPC",
    "flock": "EINTR ENOMEM",
    "lseek": "EIO",
    "pipe": "EMFILE ENOMEM",
    "pipe2": "EMFILE ENOMEM",
    "clone": "EAGAIN ENOMEM",
    "clone3": "EAGAIN ENOMEM",
    "fork": "EAGAIN ENOMEM",
    "vfork": "EAGAIN ENOMEM",
    "execve": "EACCES ENOMEM EIO EAGAIN",
    "wait4": "EINTR",
    "mmap": "ENOMEM EAGAIN",
    "mprotect": "ENOMEM",
    "munmap": "ENOMEM",
    "brk": "0",
    "mremap": "ENOMEM",
}
BYTE = {"read": ":poke_exit=@arg2=0a"}

ERROR_RECORD = re.compile(r"^(ZYPRA\w{4}E[: ]|Error: )")
CALL = re.compile(r"^(\d+) +(\w+)\((.*)")

Call = collections.namedtuple("Call", "name number text is_child")
Fault = collections.namedtuple("Fault", "launch call error")
Outcome = collections.namedtuple("Outcome", "status ended seconds trace log arguments environment")


def read(path):
    try:
        with open(path, encoding="utf-8", errors="replace") as file:
            return file.read()
    except OSError:
        return ""


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def longer_than_one_read(name):
    """The rest of a property file. What stands at its end is seen in the command line, so that a file
    that is read in part is seen there too."""
    return "# of several pages\n" * 500 + f"vmarg.{name}=-Dlast.of.{name}=1\n"


def files_below(folder):
    """The bytes of every file below the folder, by relative path; links by what they lead to."""
    found = {}
    for where, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(where, name)
            if os.path.islink(path):
                found[os.path.relpath(path, folder)] = os.readlink(path).encode()
            elif os.path.isfile(path):
                with open(path, "rb") as file:
                    found[os.path.relpath(path, folder)] = file.read()
    return found


class Installation:
    """An installation with a stand-in platform, in a folder that is not there yet."""

    def __init__(self, root, options):
        self.root = root
        self.home = root + "/home"
        self.program = root + "/Velmo/rcp/rcplauncher"
        self.base = root + "/Velmo/rcp/eclipse/plugins/com.ovr.rcp.base"
        self.workspace = f"{self.home}/OVR/RCP/abc123/{USER}"
        for folder in (self.home, root + "/folder", self.base + "/macosx/x86"):
            os.makedirs(folder)
        shutil.copy(options.platform, self.base + "/macosx/x86/eclipse")
        shutil.copy(options.library, self.base + "/macosx/x86/eclipse_1615.so")
        shutil.copy(options.launcher, self.program)
        write(self.base + "/launcher.jar", "")
        write(self.base + "/plugin_customization.ini", "# preferences\n")
        write(self.base + "/library with blank.so", "")
        for core in (self.base, self.base + "/config/user"):
            write(core + "/config.ini", "osgi.bundles=\n")
            write(core + "/platform.xml", "<config>\n</config>\n")
            write(core + "/rcpinstall.properties",
                  "# values\nx.win32=1\ny.macosx=2\\\n  3\nresetDir.1=com.example\n"
                  + longer_than_one_read("user"))
        write(root + "/Velmo/rcp/deploy/jvm.properties", longer_than_one_read("jvm"))
        self.set({})

    def set(self, changes):
        properties = {
            "rcp.install.id": "abc123",
            "rcp.base.location": "${rcp.home}/rcp/eclipse/plugins/com.ovr.rcp.base",
            "plugincustomization": self.base + "/plugin_customization.ini",
            "vmarg.Dx": "-Dx=${env.USER}",
        }
        properties.update(changes)
        write(self.root + "/Velmo/rcp/rcplauncher.properties",
              "".join(f"{key}={value}\n" for key, value in properties.items())
              + longer_than_one_read("launcher"))

    def launch(self, arguments=(), inject=None):
        """One launch under strace, to its end or the end of the time."""
        trace, report = self.root + "/trace", self.root + "/report"
        for path in (trace, report):
            if os.path.exists(path):
                os.remove(path)
        command = ["strace", "-f", "-qq", "-o", trace]
        if inject:
            command += ["--seccomp-bpf", "-e", "trace=" + inject.split(":")[0],
                        "-e", "inject=" + inject]
        environment = {"LANG": "C.UTF-8", "PATH": "/usr/bin:/bin", "HOME": self.home, "USER": USER,
                       "RCP_STANDIN_REPORT": report}
        start = time.monotonic()
        with subprocess.Popen(command + [self.program, *arguments], env=environment,
                              cwd=self.root + "/folder", stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              start_new_session=True) as process:
            try:
                status = process.wait(LIMIT_SECONDS)
                ended = True
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                status, ended = process.wait(), False
        # While the lock is taken tracing is on, and a traced launch's log has the time in its name.
        logs = [self.workspace + "/logs/rcplauncher.log", *glob.glob("/tmp/rcplauncher*.log")]
        log = "".join(read(path) for path in logs)
        started = json.loads(read(report) or "{}")
        return Outcome(status, ended, time.monotonic() - start, read(trace), log,
                       started.get("argv"), started.get("environment"))

    def restore(self, before):
        """Puts the user's area back as it was saved and empties /tmp."""
        shutil.rmtree(self.home)
        shutil.copytree(before, self.home, symlinks=True)
        empty_tmp()


def check_tmp():
    """Ends the program when /tmp is not the sandbox's own."""
    if str(os.stat("/tmp").st_dev) != os.environ.get("RCP_SANDBOX_TMP"):
        sys.exit("faults.py: this is not the sandbox's /tmp, and it is emptied again and again: "
                 "start it by tests/support/sandbox")


def empty_tmp():
    check_tmp()
    for name in os.listdir("/tmp"):
        path = "/tmp/" + name
        if os.path.isdir(path) and not os.path.islink(path):
            shutil.rmtree(path)
        else:
            os.remove(path)


class LaunchKind:
    """A kind of launch: what it starts from, how it is started, and what it is like undisturbed."""

    def __init__(self, name, installation, properties=None, arguments=(), prepare=None,
                 first=False):
        self.name = name
        self.installation = installation
        self.properties = properties or {}
        self.arguments = arguments
        self.before = f"{installation.root}/before-{name}"
        installation.set(self.properties)
        shutil.rmtree(installation.home)
        os.makedirs(installation.home)
        empty_tmp()
        if not first:
            expect_good(installation.launch())
            # By the time of the last run another process could have the id that was recorded now.
            write(installation.workspace + "/.rcp.lock", " " * 14)
        if prepare:
            prepare(installation)
        shutil.copytree(installation.home, self.before, symlinks=True)
        self.complete = files_below(self.before)

        self.undisturbed = installation.launch(self.arguments)
        expect_good(self.undisturbed)
        self.after = files_below(installation.home)
        self.next = installation.launch()
        expect_good(self.next)
        self.next_after = files_below(installation.home)
        self.records = set(self.undisturbed.log.splitlines())

    def faults(self):
        for call in own_calls(self.undisturbed.trace):
            for error in ERRORS.get(call.name, "").split():
                yield Fault(self, call, error)

    def unknown_calls(self):
        return {call.name for call in own_calls(self.undisturbed.trace)} - set(ERRORS)


def expect_good(outcome):
    if outcome.status != 0 or not outcome.arguments:
        sys.exit(f"an undisturbed launch failed with {outcome.status}\n{outcome.log}")


def own_calls(trace):
    """The launcher's calls, its forked child's included, less those of loader and platform."""
    counts = collections.Counter()
    main = None
    started, handed_off, others = False, False, set()
    children, calls = set(), []
    for line in trace.splitlines():
        match = CALL.match(line)
        if not match:
            continue
        process, name, text = match.groups()
        main = main or process
        counts[process, name] += 1
        if process == main:
            started = started or name in ("poll", "ppoll")
            handed_off = handed_off or '"/dev/fd"' in text
        elif process not in children:
            children.add(process)
            if name == "execve" or name in ("rt_sigprocmask", "rt_sigaction", "dup2"):
                others.add(process)  # a listing of processes, not the launcher itself
        if name == "execve" and started and process != main:
            others.add(process)
        if started and process not in others and not (process == main and handed_off):
            calls.append(Call(name, counts[process, name], text, process != main))
        if process == main and name == "execve" and started:
            handed_off = True
    return calls


def injected(trace, fault):
    """Whether the fault reached the launcher itself and the loader was left alone."""
    hits = [line for line in trace.splitlines() if "(INJECTED)" in line]
    if not hits:
        return False
    main = trace.split(" ", 1)[0]
    return not fault.call.is_child or all(not line.startswith(main + " ") for line in hits)


def run(fault):
    """The problems that a fault caused; None when it did not reach the launcher."""
    kind, call = fault.launch, fault.call
    installation = kind.installation
    installation.restore(kind.before)
    error = fault.error.rstrip("+")
    answer = f"retval={error}" if error.isdigit() else f"error={error}"
    when = str(call.number) + "+" * fault.error.endswith("+")
    extra = BYTE.get(call.name, "") if fault.error == "1" else ""
    outcome = installation.launch(kind.arguments,
                                  f"{call.name}:{answer}{extra}:when={when}")
    if not injected(outcome.trace, fault):
        return None
    problems = []
    new_errors = [line for line in outcome.log.splitlines()
                  if ERROR_RECORD.match(line) and line not in kind.records]
    if not outcome.ended:
        problems.append(f"it did not end within {LIMIT_SECONDS} seconds")
    elif outcome.status < 0 or outcome.status >= 128 and outcome.status != 255:
        problems.append(f"a signal ended it (status {outcome.status})")
    elif outcome.status == 255:
        if not new_errors:
            problems.append("status 255 without an error record")
    elif outcome.status != 0:
        problems.append(f"status {outcome.status}")
    elif not new_errors:
        problems += silent_losses(kind.undisturbed, outcome)
    problems += incomplete_files(kind, files_below(installation.home))
    problems += next_launch(kind, call)
    return problems


def silent_losses(undisturbed, outcome):
    """What the platform of a launch without a record lacks or has too much."""
    if not outcome.arguments:
        return ["status 0, but neither a platform nor a record"]
    return [f"{what} without a record: {line}"
            for what in ("arguments", "environment")
            for line in difflib.ndiff(getattr(undisturbed, what), getattr(outcome, what))
            if line.startswith(("-", "+"))]


def is_of_interest(path):
    """Files whose bytes are the same after every launch."""
    name = os.path.basename(path)
    return not path.endswith(".log") and name not in (".rcp.lock", ".rcp.main", "deleteme")


def incomplete_files(kind, now):
    """Files of the user that are neither as before nor as after an undisturbed launch, wherever
    they were moved to."""
    problems = []
    whole = collections.defaultdict(set)
    for known in (kind.complete, kind.after):
        for path, content in known.items():
            whole[os.path.basename(path)].add(content)
    for path, content in now.items():
        name = os.path.basename(path)
        if is_of_interest(path) and name in whole and content not in whole[name]:
            problems.append(f"{path} is not complete")
    return problems + lost_files(kind, now)


def lost_files(kind, now):
    """The user's own files that are nowhere in the area any more. Reset and reuse carry them along
    when they can be opened; one that cannot counts as missing and stays in the backup."""
    return [f"{path} is lost" for path, content in kind.complete.items()
            if os.path.basename(path) in KEPT and content not in now.values()]


def next_launch(kind, call):
    outcome = kind.installation.launch()
    if outcome.status != 0 or not outcome.ended:
        last = outcome.log.strip().splitlines()[-1:]
        return [f"the next launch ended with {outcome.status}: {last}"]
    if outcome.arguments != kind.next.arguments:
        return [f"the next launch started another platform command line: {outcome.arguments}",
                f"instead of {kind.next.arguments}"]
    now = files_below(kind.installation.home)
    problems = lost_files(kind, now)
    for path, content in kind.next_after.items():
        moved = ".old" in path or ".configbak" in path or os.path.basename(path) in KEPT
        if is_of_interest(path) and not moved and now.get(path) != content:
            problems.append(f"after the next launch {path} is not as always")
    for path in now:
        if path.endswith(TEMPORARY) and call.name not in ("unlink", "rename"):
            problems.append(f"{path} was left behind")
    return problems


def launch_kinds(installation):
    def with_bookmarks(tree):
        for name in KEPT:
            write(f"{tree.workspace}/.config/org.eclipse.update/{name}", f"the user's {name}\n")
        write(f"{tree.workspace}/.metadata/.plugins/com.example/state", "x")

    def of_earlier_installation(tree):
        with_bookmarks(tree)
        path = tree.workspace + "/.config/rcpinstall.properties"
        write(path, read(path).replace("rcp.install.id=abc123", "rcp.install.id=earlier"))

    def with_stale_lock(tree):
        write(tree.workspace + "/.rcp.lock", f"{os.getpid()}          ")

    return [
        LaunchKind("first", installation, first=True),
        LaunchKind("later", installation),
        LaunchKind("in-process", installation, {"invoke.eclipse.dylib": "1"}),
        LaunchKind("preload", installation,
                   {"library.preload": installation.base + "/library with blank.so"}),
        LaunchKind("stale-lock", installation, prepare=with_stale_lock),
        LaunchKind("reset", installation, arguments=("-resetconfig",), prepare=with_bookmarks),
        LaunchKind("reuse", installation, prepare=of_earlier_installation),
    ]


def can_trace():
    return subprocess.run(["strace", "-f", "-qq", "-o", os.devnull, "true"],
                          check=False).returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--launcher", required=True)
    parser.add_argument("--platform", required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--folder", required=True, help="for the trees, in a new folder")
    parser.add_argument("--sample", type=int, help="so many faults, chosen at random; else all")
    parser.add_argument("--seed", type=int, help="repeats an earlier choice")
    parser.add_argument("--only", help="only the faults whose description holds this text")
    options = parser.parse_args()
    for name in ("launcher", "platform", "library", "folder"):
        setattr(options, name, os.path.realpath(getattr(options, name)))
    check_tmp()
    if not can_trace():
        print("skipped: no tracing here")
        return SKIPPED
    os.umask(0o022)
    installation = Installation(tempfile.mkdtemp(dir=options.folder) + "/tree", options)
    kinds = launch_kinds(installation)
    faults = [fault for kind in kinds for fault in kind.faults()]
    others = set().union(*(kind.unknown_calls() for kind in kinds))
    print(f"{len(faults)} faults; calls that never fail or are not let fail: "
          + " ".join(sorted(others)), flush=True)
    if options.only:
        faults = [fault for fault in faults if options.only in describe(fault)]
    seed = options.seed if options.seed is not None else random.SystemRandom().randrange(10**9)
    if options.sample:
        print(f"seed {seed} (--seed={seed} repeats this choice)", flush=True)
        random.Random(seed).shuffle(faults)
    return report(faults, options.sample)


def describe(fault):
    call = fault.call
    where = " of the child" if call.is_child else ""
    return f"{fault.launch.name}: {call.name} #{call.number}{where} {fault.error}: {call.text[:100]}"


def report(faults, wanted):
    tried, survived, missed = collections.Counter(), collections.Counter(), 0
    failures = []
    current = None
    queue = faults if not wanted else in_order(faults, wanted)
    for fault in queue:
        if fault.launch is not current:
            current = fault.launch
            current.installation.set(current.properties)
            print(f"{current.name} ...", flush=True)
        problems = run(fault)
        if problems is None:
            missed += 1
            continue
        tried[fault.call.name] += 1
        if problems:
            failures.append(fault)
            print(f"FAILED {describe(fault)}", *problems, sep="\n    ", flush=True)
        else:
            survived[fault.call.name] += 1
    print(f"{sum(tried.values())} faults in {len(tried)} kinds of calls, "
          f"{sum(survived.values())} survived; {missed} did not reach the launcher")
    print(", ".join(f"{name} {survived[name]}/{tried[name]}" for name in sorted(tried)))
    return 1 if failures or not tried else 0


def in_order(faults, wanted):
    """The chosen ones grouped by launch, with some more in place of those that miss."""
    chosen = faults[:wanted + wanted // 10]
    return sorted(chosen, key=lambda fault: fault.launch.name)


if __name__ == "__main__":
    sys.exit(main())
