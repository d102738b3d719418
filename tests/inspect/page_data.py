"""What the pages of rcpinspect show in their tests, beside the files of data/."""


def large_explanation(size):
    """An explanation of `size` elements, every one from a line of its own; some are longer than a line."""
    path = "/opt/velmo/rcp/jvm.properties"

    def value(number):
        return f"-Dnumber={number}" + (",/some/long path" * (number % 40) if number % 7 == 0 else "")

    def source(number):
        return {"kind": "file", "file": path, "line": number, "key": f"vmarg.n{number:04}", "value": value(number)}
    numbers = range(1, size + 1)
    return {
        "layout": 1, "command": "explain", "launcher": "/opt/velmo/rcp/rcplauncher",
        "installation": "/opt/velmo", "arguments": [],
        "outcome": {"kind": "in-process", "program": "/opt/velmo/eclipse.so", "role": "daemon"},
        "facts": {"workspace": "/w", "firstLaunch": True},
        "elements": [{"text": value(number), "rule": "vmarg entries by name",
                      "source": source(number), "placeholders": [], "instead": []}
                     for number in numbers],
        "dropped": [], "environment": [], "changes": [], "records": [],
        "files": [{"path": path, "found": True, "entries": [
            {"line": number, "key": f"vmarg.n{number:04}", "value": value(number),
             "state": "used", "by": f"element {number - 1}"} for number in numbers]}],
    }


def fatal_explanation():
    """An explanation of a launch that fails, from a file that is not among those it read."""
    missing = {"kind": "file", "file": "/opt/velmo/Info.plist", "line": 7, "key": "Minimum", "value": "9"}
    return {
        "layout": 1, "command": "explain", "launcher": "/opt/velmo/rcp/rcplauncher",
        "installation": "/opt/velmo", "arguments": ["-maxargcnt", "9"],
        "outcome": {"kind": "fatal", "role": "undecided", "status": 255,
                    "program": "/opt/velmo/rcp/eclipse/eclipse", "source": missing,
                    "record": "ZYPRA0000E: a record", "cause": "Something is missing. Put it behind `-vm`."},
        "made": {"time": "2026-01-02 03:04 UTC", "version": "1.2.3", "user": "ann", "locale": "de_DE.UTF-8"},
        "facts": {"waits": ["for the platform", "for the lock"], "lockHolder": 123},
        "elements": [], "dropped": [], "changes": [], "records": [],
        "environment": [{"name": "X", "before": None, "after": "1:2", "source": missing, "parts": [
            {"text": "1", "source": missing}, {"text": "2", "source": {"kind": "environment", "name": "Y"}}]}],
        "files": [{"path": "/opt/velmo/rcp/rcplauncher.properties", "found": False, "entries": []},
                  {"path": "/opt/velmo/rcp/jvm.properties", "found": True, "entries": [
                      {"line": 1, "key": "a", "value": "${rcp.home}/a", "effective": "/opt/velmo/a", "state": "used"},
                      {"line": 2, "key": "b", "value": "b", "effective": "b", "state": "used"}]}],
    }


def refused_explanation():
    """An explanation of a launch whose program cannot be started; some values were taken out of it."""
    told = fatal_explanation()
    program = "/opt/velmo/rcp/eclipse/eclipse"
    return {
        **told,
        "outcome": {"kind": "ends", "role": "main", "program": program, "record": "ZYPRA0001E: not started"},
        "handOff": [{"what": "program", "path": program, "faults": [
                        {"code": "RI701", "file": program, "line": 0, "message": "it is for another machine"}]},
                    {"what": "start jar", "path": "/opt/velmo/launcher.jar", "faults": []}],
        "redacted": [{"name": "proxy.password", "digest": "1f2e", "count": 3},
                     {"name": "home directory", "digest": None, "count": 1}],
    }


def computed_explanation(size):
    """An explanation whose elements all are the launcher's own; the last was given `size` times."""
    losers = [{"text": f"-Xmx{number}m", "why": "it stands behind", "source": {"kind": "command line", "position": 1}}
              for number in range(size)]
    told = large_explanation(size)
    told["files"] = []
    told["outcome"]["beyond"] = "handed to eclipse.so; what the platform does then is not rehearsed"
    told["elements"] = [{**element, "source": {"kind": "computed"}} for element in told["elements"]]
    told["elements"][-1]["instead"] = losers
    return told


def report(files):
    """A report with one finding for each of these files."""
    return {"layout": 1, "command": "check", "installation": "/opt/velmo",
            "findings": [{"code": "RI202", "name": "unread-key", "level": "warning", "file": file, "line": number,
                          "message": f'nothing looks at "number{number}"', "remedy": "Remove the line."}
                         for number, file in enumerate(files, 1)],
            "summary": {"errors": 0, "warnings": len(files)}}


def large_difference(size):
    told = difference()
    told["files"] = [{"change": "removed", "path": f"plugins/part{number}.jar"} for number in range(1, size + 1)]
    return told


def difference():
    """A new installation with one more option, one file less, and a finding that went."""
    settings = {"kind": "file", "file": "/opt/new/rcp/rcplauncher.properties", "line": 9, "key": "vmarg.a", "value": "-Da=1"}
    return {
        "layout": 1, "command": "diff", "isDifferent": True,
        "made": {"time": "2026-01-02 03:04 UTC", "version": "1.2.3", "user": "ann", "host": "dawn", "locale": "C"},
        "first": {"installation": "/opt/old", "level": "1", "date": "2026-01-01",
                  "outcome": {"kind": "fatal", "role": "main", "record": "ZYPRA0016E: missing (x, /opt/old/y, line 3)"}},
        "second": {"installation": "/opt/new", "level": "2", "date": "2026-02-01", "outcome": {"kind": "provisioning", "role": "main"}},
        "elements": [{"change": "added", "element": 3, "text": "-Da=1", "source": settings}],
        "environment": [], "copies": [],
        "properties": [{"change": "added", "name": "vmarg.a", "value": "-Da=1", "source": settings}],
        "files": [{"change": "removed", "path": "plugins/<b>old.jar"}],
        "findings": [{"change": "removed", "code": "RI202", "name": "unread-key", "level": "warning",
                      "file": "rcp/rcplauncher.properties", "line": 4, "message": "nothing looks at \"x\""}],
    }


# What has no file of its own among the data.
MANY = 10000
PAGES = {"large": large_explanation(MANY), "fatal": fatal_explanation(), "refused": refused_explanation(), "clean": report([]),
         "computed": computed_explanation(500), "difference": difference(), "large-difference": large_difference(MANY),
         "large-report": report(["/opt/velmo/rcp/rcplauncher.properties"] * MANY),
         "many-files": report([f"/opt/velmo/rcp/plugins/part{number}.properties" for number in range(1, MANY + 1)])}
