#!/usr/bin/python3
"""Measures what a start costs, prints one table and writes bench/results.json in the build folder.

usage: run.py BUILD_FOLDER [launches] [java] [window] [growth]
The figures worth comparing are the ratios: every round of a comparison starts each program once, and
a ratio is the median over the rounds of one program's time over another's. What an entry adds to a
whole launch is told in processor time, of which there is too little to be seen in the whole time.
"""
import atexit
import datetime
import json
import math
import os
import pathlib
import platform
import re
import resource
import select
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # beside the sources
import recorded_calls

ROUNDS = 600
JVM_ROUNDS = 100
WINDOW_ROUNDS = 20
WINDOW_TITLE = "Velmo Sample"
PATIENCE = 300  # seconds, for a window
GROWTH_WORK = 1_000_000  # entries a comparison goes through
INSPECTION_WORK = 100_000  # properties that are read for one size
REMOVAL_WORK = 30_000  # files that are made and removed for one size
FILES_PER_FOLDER = 100
SORTING = ("sortVmArguments",)
SIZES = [10, 100, 1000, 10_000, 100_000]

source = pathlib.Path(__file__).resolve().parent.parent
build = pathlib.Path(sys.argv[1]).resolve()
work = pathlib.Path(tempfile.mkdtemp(prefix="work-", dir=build / "bench"))
atexit.register(shutil.rmtree, work, ignore_errors=True)
measure_program = build / "bench" / "bench_measure"
rows = []
results = {}


def environment(home):
    return {"LANG": "C.UTF-8", "PATH": "/usr/bin:/bin", "HOME": str(home), "USER": "ann"}


def run(*command, home=work / "home", **options):
    return subprocess.run([str(word) for word in command], env=environment(home), check=True,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, **options).stdout


def measure(rounds, contenders, *options, home=work / "home"):
    words = []
    for name, command in contenders.items():
        words += ["--", name, *command]
    return json.loads(run(measure_program, rounds, *options, *words, home=home))


def row(name, text, goal=None, reached=None):
    rows.append((name, text, goal or "", {None: "", True: "yes", False: "NO"}[reached]))


def at_most(name, value, limit, form="{:.2f}"):
    row(name, form.format(value), "at most " + form.format(limit), value <= limit)


def make_installation(folder, *options):
    subprocess.run([source / "scripts/make-sample", folder, build / "rcplauncher", *options],
                   check=True)
    return folder / "rcp/rcplauncher"


def launched(home):
    """The command line that the last launch handed over, from its log."""
    log = (home / "workspace/ann/logs/rcplauncher.log").read_text()
    return re.search(r"Begin Launch Parameters =====\n(.*)\nZYPRA0133I", log, re.S)[1].split("\n")


# --- A later and a first launch, against the floor and a start script ------------------------------

def whole_launches():
    installation = work / "exec/Velmo"
    launcher = make_installation(installation, "--mode", "exec",
                                 "--stand-in", build / "tests/standin")
    script = shutil.copy(source / "bench/start.sh", installation / "rcp")
    home, script_home, first = work / "home", work / "script-home", work / "first"
    for folder in (home, script_home):
        folder.mkdir()
    run(launcher, "-config", "sample")
    contenders = {
        "floor": [build / "bench/bench_floor", *launched(home)],
        "later launch": [launcher, "-config", "sample"],
        "first launch": ["--aside", first, f"HOME={first}", launcher, "-config", "sample"],
    }
    figures = measure(ROUNDS, contenders)
    results["whole launches"] = figures
    floor = figures["floor"]
    row("floor: execv of the stand-in", f"{floor['median_us'] / 1000:.2f} ms")
    at_most("later launch / floor", figures["later launch"]["ratio"], 1.5)
    at_most("first launch / floor", figures["first launch"]["ratio"], 2.5)
    times = measure(ROUNDS, {"later launch": contenders["later launch"],
                             "start script": [f"HOME={script_home}", script, "-config", "sample"]})
    results["start script"] = times
    ratio = times["start script"]["ratio"]
    row("start script / later launch", f"{ratio:.2f}", "at least 3.00", ratio >= 3)
    at_most("later launch / floor, processor time",
            figures["later launch"]["processor_us"] / floor["processor_us"], 1.5)
    at_most("later launch, peak memory (MiB)", figures["later launch"]["peak_kib"] / 1024, 6)
    against_their_calls(launcher)
    counts(launcher)


def record(launcher, name, home, launches):
    """Builds the program that makes the calls of a launch in that home, after `launches` others."""
    home.mkdir()
    for _ in range(launches):
        run(launcher, "-config", "sample", home=home)
    traces = work / ("traces-" + name)
    traces.mkdir()
    if not launches:
        home.rmdir()
    run("strace", "-ff", "-s", 1 << 16, "-o", traces / "trace", launcher, "-config", "sample", home=home)
    calls = build / f"bench/recorded/{name}.inc"
    calls.parent.mkdir(exist_ok=True)
    calls.write_text(recorded_calls.source_of(traces))
    subprocess.run(["cmake", "--build", build, "--target", "bench_recorded_" + name], check=True,
                   stdout=subprocess.DEVNULL)
    return [build / ("bench/bench_recorded_" + name), *launched(home)]


def against_their_calls(launcher):
    """Launches against programs that make their system calls and compute nothing."""
    homes = {name: work / ("recorded-" + name) for name in ("later", "first")}
    floors = {name: record(launcher, name, homes[name], 3 if name == "later" else 0) for name in homes}
    mine = work / "first-beside-its-calls"
    both = {
        "later": {"calls alone": floors["later"], "launch": [launcher, "-config", "sample"]},
        "first": {"calls alone": ["--aside", homes["first"], *floors["first"]],
                  "launch": ["--aside", mine, f"HOME={mine}", launcher, "-config", "sample"]},
    }
    for name, limit in (("later", 1.15), ("first", 1.25)):
        figures = measure(ROUNDS, both[name])
        results[f"{name} launch and its calls alone"] = figures
        row(f"calls of a {name} launch alone", f"{figures['calls alone']['median_us'] / 1000:.2f} ms")
        at_most(f"{name} launch / its calls alone", figures["launch"]["ratio"], limit)
        at_most(f"{name} launch / its calls alone, processor time", figures["launch"]["processor_ratio"],
                limit)


def counts(launcher):
    """What the launcher itself does up to the hand-off; its helper process does not count."""
    trace = work / "trace"
    run("strace", "-o", trace, launcher, "-config", "sample")
    calls = [line for line in trace.read_text().splitlines() if re.match(r"\w+\(", line)]
    hand_off = [i for i, line in enumerate(calls) if line.startswith("execve(")][1]
    results["system calls"] = hand_off
    at_most("later launch, system calls", hand_off, 125, "{:d}")
    profile = work / "callgrind.out"
    run("valgrind", "--tool=callgrind", "--dump-before=execve", f"--callgrind-out-file={profile}",
        launcher, "-config", "sample", stderr=subprocess.DEVNULL)
    totals = re.search(r"^totals: (\d+)", (work / "callgrind.out.1").read_text(), re.M)
    results["instructions"] = int(totals[1])
    at_most("later launch, instructions (million)", int(totals[1]) / 1e6, 0.92)


# --- The first line of Java ------------------------------------------------------------------------

def make_jar(jdk):
    """The program, with the class by which the launcher library talks to Java."""
    classes = work / "classes"
    classes.mkdir()
    run(jdk / "bin/javac", "--release", "11", "-d", classes, source / "bench/java/Main.java")
    run(jdk / "bin/jar", "--extract", "--file", "/usr/share/java/equinox-launcher.jar",
        "org/eclipse/equinox/launcher/JNIBridge.class", cwd=classes)
    jar = work / "input/main.jar"
    jar.parent.mkdir()
    run(jdk / "bin/jar", "--create", "--file", jar, "--main-class", "Main", "-C", classes, ".")
    return jar


def make_jpackage_image(jdk, jar, options):
    """An application image of the same jar and options, with the same JRE."""
    if not shutil.which("objcopy") or not (jdk / "bin/jpackage").exists():
        return None
    words = []
    for option in options:
        words += ["--java-options", '"' + option + '"']
    run(jdk / "bin/jpackage", "--type", "app-image", "--input", jar.parent, "--main-jar", jar.name,
        "--main-class", "Main", "--name", "app", "--dest", work / "image",
        "--add-modules", "java.base", *words)
    settings = work / "image/app/lib/app/app.cfg"
    settings.write_text(settings.read_text().replace(
        "[Application]\n", f"[Application]\napp.runtime={jdk}\n", 1))
    return work / "image/app/bin/app"


def first_line_of_java():
    try:
        launcher = make_installation(work / "java/Velmo", "--mode", "in-process")
    except subprocess.CalledProcessError:
        row("first line of Java", "left out: no JDK with Equinox")
        return
    jdk = (work / "java/Velmo/jre/bin/java").resolve().parent.parent
    jar = make_jar(jdk)
    base = work / "java/Velmo/rcp/eclipse/plugins/com.ovr.rcp.base"
    for name in ("launcher.jar", "startup.jar"):
        shutil.copy(jar, base / name)
    home = work / "java-home"
    home.mkdir()
    run(launcher, "-nosplash", home=home)
    command = launched(home)
    options = command[command.index("-vmargs") + 1:command.index("-cp")] + [
        word for word in command[command.index("-cp") + 2:] if word != "-XstartOnFirstThread"]
    contenders = {
        "java -cp": [jdk / "bin/java", *options, "-cp", jar, "Main"],
        "launcher": [launcher, "-nosplash"],
    }
    figures = measure(JVM_ROUNDS, contenders, "--first-line", home=home)
    results["first line of Java"] = figures
    row("java -cp, first line of main", f"{figures['java -cp']['median_us'] / 1000:.1f} ms")
    at_most("launcher / java -cp", figures["launcher"]["ratio"], 1.03)
    # What the platform's own program does: it loads the launcher library and calls it.
    figures = measure(JVM_ROUNDS, {"bare host": command, "launcher": contenders["launcher"]},
                      "--first-line", home=home)
    results["bare host"] = figures
    row("launcher / bare host of the library", f"{figures['launcher']['ratio']:.3f}")
    at_most("launcher / bare host, processor time", figures["launcher"]["processor_ratio"], 1.01, "{:.3f}")
    image = make_jpackage_image(jdk, jar, options)
    if image is None:
        row("jpackage / launcher", "left out: no jpackage")
        return
    figures = measure(JVM_ROUNDS, {"launcher": contenders["launcher"], "jpackage": [image]},
                      "--first-line", home=home)
    results["jpackage"] = figures
    ratio = figures["jpackage"]["ratio"]
    row("jpackage / launcher", f"{ratio:.2f}", "above 1.00", ratio > 1)


# --- The window of a desktop client ----------------------------------------------------------------

class Screen:
    """A virtual one, on which x_client tells what appears."""

    def __init__(self):
        xvfb = self._start("Xvfb", "-displayfd", "1", "-screen", "0", "1280x900x24", "-nolisten", "tcp")
        self.display = ":" + xvfb.stdout.readline().decode().strip()
        self._events = self._start(build / "x_client", "watch", DISPLAY=self.display).stdout
        self._read = b""
        self._line()  # "ready"

    @staticmethod
    def _start(*command, **variables):
        # However this program ends, the other one does too.
        process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *map(str, command)],
                                   env={**environment(work), **variables}, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        atexit.register(process.kill)
        return process

    def _line(self):
        while b"\n" not in self._read:
            ready, _, _ = select.select([self._events], [], [], PATIENCE)
            more = os.read(self._events.fileno(), 4096) if ready else b""
            if not more:
                sys.exit("no window appears")
            self._read += more
        line, self._read = self._read.split(b"\n", 1)
        return line.decode(errors="replace")

    def close(self, window):
        subprocess.run([build / "x_client", "close", window], check=True, stdin=subprocess.DEVNULL,
                       env={**environment(work), "DISPLAY": self.display})

    def time_of(self, what, title="", window=None):
        """Waits for an event of a window; its time in milliseconds, and the window."""
        while True:
            event, milliseconds, number, _, name = (self._line() + " ").split(" ", 4)
            if event == what and name.startswith(title) and window in (None, number):
                return int(milliseconds), number


def start_client(command, home, screen):
    return subprocess.Popen([str(word) for word in command],
                            env={**environment(home), "DISPLAY": screen.display},
                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL)


def first_start(command, home, screen):
    """Makes the user's area and the platform's caches, which it writes when its window is closed."""
    process = start_client(command, home, screen)
    _, window = screen.time_of("map", WINDOW_TITLE)
    screen.close(window)
    if process.wait(PATIENCE) != 0:
        sys.exit(f"{command} ended with status {process.returncode}")
    screen.time_of("unmap", window=window)
    if not any((home / "workspace/ann/.config/org.eclipse.osgi").glob("framework.info.*")):
        sys.exit(f"{command} has left no cache of its bundles")


def until_window(command, home, screen):
    """Whole time and processor time from the start to the window, in milliseconds."""
    start = time.clock_gettime(time.CLOCK_MONOTONIC) * 1e3
    process = start_client(command, home, screen)
    try:
        mapped, window = screen.time_of("map", WINDOW_TITLE)
        # clock_getcpuclockid(3), which Python does not have.
        used = time.clock_gettime((~process.pid << 3) | 2) * 1e3
    finally:
        process.kill()
        process.wait()
    screen.time_of("unmap", window=window)
    return mapped - start, used


def desktop_client():
    """Its launcher, or why there is none."""
    for program in ("Xvfb", "setpriv"):
        if not shutil.which(program):
            return None, f"no {program} (scripts/install-dependencies desktop)"
    if not (build / "x_client").exists():
        return None, "no x_client, for want of an X library (scripts/install-dependencies desktop)"
    try:
        return make_installation(work / "window/Velmo", "--desktop"), None
    except subprocess.CalledProcessError:
        return None, "no workbench (scripts/install-dependencies desktop)"


def plain_java(home, jar):
    """The command line without the launcher that starts the same JVM with the same platform."""
    launch = launched(home)
    options = launch[launch.index("-vmargs") + 1:launch.index("-cp")]
    options += launch[launch.index("-cp") + 2:]
    options.remove("-XstartOnFirstThread")  # java knows it on macOS alone
    arguments = launch[launch.index("-nosplash"):launch.index("-vm")]
    return [work / "window/Velmo/jre/bin/java", *options, "-jar", jar, *arguments]


def window():
    launcher, obstacle = desktop_client()
    if obstacle:
        row("a client's window", "left out: " + obstacle)
        return
    screen = Screen()
    command = [launcher, "-nosplash", "-config", "sample"]
    homes = {name: work / "window" / name for name in ("java", "bare host", "launcher")}
    for home in homes.values():
        home.mkdir()
        first_start(command, home, screen)
    jar = launcher.parent / "eclipse/plugins/com.ovr.rcp.base/startup.jar"
    commands = {"java": plain_java(homes["java"], jar), "bare host": launched(homes["bare host"]),
                "launcher": command}
    taken = {name: [] for name in commands}
    for i in range(-1, WINDOW_ROUNDS):  # The first round is not counted.
        for name in sorted(commands, reverse=i % 2 == 0):
            times = until_window(commands[name], homes[name], screen)
            if i >= 0:
                taken[name].append(times)
    results["window"] = taken
    for column, kind in enumerate(("whole time", "processor time")):
        times = {name: [both[column] for both in all_times] for name, all_times in taken.items()}
        for name, all_times in times.items():
            row(f"{name} to the window, {kind}", f"{statistics.median(all_times):.0f} ms")
        for other in ("bare host", "java"):
            # Of each round, so that what else the machine does falls on both.
            ratios = [mine / its for mine, its in zip(times["launcher"], times[other])]
            lower, ratio, upper = statistics.quantiles(ratios, n=4, method="inclusive")
            name = f"launcher / {other}, {kind}"
            if (other, kind) == ("bare host", "processor time"):
                at_most(name, ratio, 1.01, "{:.3f}")
            else:
                row(name, f"{ratio:.3f}")
            row("    half of the rounds", f"{lower:.3f} to {upper:.3f}")


# --- Growth ----------------------------------------------------------------------------------------

GROWING_LINES = {
    "properties": lambda i: f"property.number.{i}=value of {i}",
    "config.N.i entries": lambda i: f"config.many.{i}=-entry{i}",
    "VM arguments": lambda i: f"vmarg.number.{i}=-Dnumber.{i}=value",
}


def grown_installation(kind, size):
    folder = work / "growth" / re.sub(r"\W", "", kind) / str(size) / "Velmo"
    launcher = make_installation(folder, "--mode", "exec", "--stand-in", build / "tests/standin")
    if kind in GROWING_LINES:
        with open(folder / "rcp/rcplauncher.properties", "a") as file:
            file.writelines(GROWING_LINES[kind](i) + "\n" for i in range(1, size + 1))
    arguments = ["-config", "many"] if kind == "config.N.i entries" else []
    if kind == "arguments":
        arguments = [f"-word{i}" for i in range(1, size + 1)]
    return [f"HOME={folder.parent}", launcher, *arguments]


def processor_time(command, home, statuses=(0,)):
    """One program, in microseconds."""
    null = [(os.POSIX_SPAWN_OPEN, descriptor, "/dev/null", os.O_RDWR, 0) for descriptor in range(3)]
    process = os.posix_spawn(command[0], command, environment(home), file_actions=null)
    _, status, usage = os.wait4(process, 0)
    if os.waitstatus_to_exitcode(status) not in statuses:
        sys.exit(f"{command} ended with wait status {status}")
    return (usage.ru_utime + usage.ru_stime) * 1e6


def removal_times(launcher):
    """A reset removes what an earlier one has set aside. Nanoseconds a file, by their number."""
    home = work / "removal"
    home.mkdir()
    command = [str(launcher), "-resetconfig"]
    run(launcher, home=home)
    times = {}
    for size in SIZES:
        taken = {0: [], size: []}
        for _ in range(max(1, min(60, REMOVAL_WORK // size))):
            for count in taken:
                for i in range(count):
                    folder = home / f"workspace/ann/.configbak/{i // FILES_PER_FOLDER}"
                    if i % FILES_PER_FOLDER == 0:
                        folder.mkdir(parents=True)
                    os.close(os.open(f"{folder}/{i}", os.O_CREAT | os.O_WRONLY))
                taken[count].append(processor_time(command, home))
        added = statistics.median(taken[size]) - statistics.median(taken[0])
        times[size] = added * 1000 / size
    return times


def per_entry_row(name, times):
    """`times`: nanoseconds an entry by size. Small sizes are the fixed part and do not count. What sorts is
    allowed the logarithm of the size."""
    sorts = name in SORTING
    counted = [time / (math.log2(size) if sorts else 1) for size, time in times.items() if size >= 100]
    factor = max(counted) / min(counted) if min(counted) > 0 else float("inf")
    results.setdefault("nanoseconds per entry", {})[name] = times
    row(name, "  ".join(f"{time:7.0f}" for time in times.values()) + f"   x{factor:.1f}",
        "at most x2.0" + (" log n" if sorts else ""), factor <= 2)


def inspection_rows():
    """What rcpinspect takes for each property of an installation."""
    program = build / "inspect/rcpinspect"
    if not program.exists():
        row("rcpinspect", "left out: it is not built")
        return
    page = str(work / "page.html")
    for name, words in {"explain": ["explain"], "check": ["check"],
                        "page": ["explain", "--format", "html", page]}.items():
        times = {}
        for size in SIZES:
            taken = {0: [], size: []}
            for _ in range(max(3, min(60, INSPECTION_WORK // size))):
                for count in taken:
                    launcher = work / f"growth/properties/{count}/Velmo/rcp/rcplauncher"
                    command = [str(program), words[0], "--launcher", str(launcher), *words[1:]]
                    taken[count].append(processor_time(command, work / "home", (0, 1)))
            added = statistics.median(taken[size]) - statistics.median(taken[0])
            times[size] = added * 1000 / size
        per_entry_row(f"rcpinspect: {name}", times)


def growth():
    row("nanoseconds per entry of", "  ".join(f"{size:7d}" for size in SIZES))
    for kind in [*GROWING_LINES, "arguments"]:
        times = {}
        for size in SIZES:
            figures = measure(max(20, min(ROUNDS, GROWTH_WORK // size)), {
                "nothing": grown_installation(kind, 0), "all": grown_installation(kind, size)})
            results[f"launch with {size} {kind}"] = figures
            added = figures["all"]["processor_us"] - figures["nothing"]["processor_us"]
            times[size] = added * 1000 / size
        per_entry_row("launch: " + kind, times)
    inspection_rows()
    launcher = make_installation(work / "growth/removal/Velmo", "--mode", "exec",
                                 "--stand-in", build / "tests/standin")
    per_entry_row("launch: files to remove", removal_times(launcher))
    out = work / "functions.json"
    run(build / "bench/bench_functions", f"--benchmark_out={out}", "--benchmark_out_format=json",
        stderr=subprocess.DEVNULL)
    functions = {}
    for entry in json.loads(out.read_text())["benchmarks"]:
        name, size = entry["name"].split("/")[:2]
        functions.setdefault(name, {})[int(size)] = entry["per_entry"] * 1e9
    for name, times in functions.items():
        per_entry_row(name, times)


def print_history():
    """One line a release, and this run's figures as far as it has them."""
    history = (source / "bench/history.csv").read_text().splitlines()
    value = {name.replace(",", ":"): text for name, text, _, _ in rows}
    now = ["now", results["date"], *(value.get(name, "") for name in history[0].split(",")[2:])]
    print("\nBy release:")
    for line in [*history, ",".join(now)]:
        print("  " + line)


def machine():
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    return (f"{model[1] if model else platform.machine()}, {os.cpu_count()} cores, "
            f"Linux {platform.release()}, load {os.getloadavg()[0]:.1f}")


def main():
    # A hundred thousand arguments do not fit into what the usual stack allows.
    resource.setrlimit(resource.RLIMIT_STACK,
                       (64 << 20, resource.getrlimit(resource.RLIMIT_STACK)[1]))
    results["date"] = datetime.datetime.now().isoformat(timespec="minutes")
    results["machine"] = machine()
    parts = {"launches": whole_launches, "java": first_line_of_java, "window": window,
             "growth": growth}
    for name in sys.argv[2:] or parts:
        parts[name]()
    results["table"] = rows
    (build / "bench/results.json").write_text(json.dumps(results, indent=2) + "\n")
    print(f"\n{results['date']}, {results['machine']}")
    widths = [max(len(cells[column]) for cells in rows) for column in range(3)]
    for name, text, goal, reached in rows:
        print(f"{name:{widths[0]}}  {text:>{widths[1]}}  {goal:{widths[2]}}  {reached}".rstrip())
    print_history()


main()
