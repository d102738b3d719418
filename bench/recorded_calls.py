"""Turns what strace has recorded of a launch into the source of a program that makes the same calls.

The loader's calls in front of main are left out: the program has a loader of its own.
"""
import pathlib
import re

TEXT = r'("(?:[^"\\]|\\.)*")'
# What strace writes of a call, and the statement that makes it. What a call answers is not looked at:
# descriptors get the numbers that they had, because they are opened and closed in the same order.
STATEMENTS = [
    (rf'openat\(AT_FDCWD, {TEXT}, ([A-Z_|]+)\)', r'open(\1, \2)'),
    (rf'openat\(AT_FDCWD, {TEXT}, ([A-Z_|]+), (0\d*)\)', r'open(\1, \2, \3)'),
    (rf'newfstatat\(AT_FDCWD, {TEXT}, .*, 0\)', r'stat(\1, &status)'),
    (rf'newfstatat\(AT_FDCWD, {TEXT}, .*, AT_SYMLINK_NOFOLLOW\)', r'lstat(\1, &status)'),
    (r'newfstatat\((\d+), "", .*, AT_EMPTY_PATH\)', r'fstat(\1, &status)'),
    (rf'readlink\({TEXT}, .*, (\d+)\)', r'readlink(\1, buffer.data(), \2)'),
    (r'read\((\d+), .*, (\d+)\)', r'read(\1, buffer.data(), \2)'),
    (r'pread64\((\d+), .*, (\d+), (\d+)\)', r'pread(\1, buffer.data(), \2, \3)'),
    (rf'write\((\d+), {TEXT}, (\d+)\)', r'write(\1, \2, \3)'),
    (rf'pwrite64\((\d+), {TEXT}, (\d+), (\d+)\)', r'pwrite(\1, \2, \3, \4)'),
    (r'fcntl\((\d+), F_SETFL, .*\)', r'fcntl(\1, F_SETFL, O_APPEND | O_NONBLOCK)'),
    (r'((?:fcntl|close|lseek|ftruncate|fchmod|flock|kill|getpid|getppid|umask|geteuid)\([^"{}]*\))', r'\1'),
    (rf'((?:unlink|rmdir|rename|mkdir|symlink|access)\({TEXT}(?:, {TEXT})?(?:, [A-Z_0-9|]+)?\))', r'\1'),
    (r'pipe2\(\[.*\], (\w+)\)', r'pipe2(ends.data(), \1)'),
    (r'poll\(.*, (\d+), 0\)', r'poll(streams.data(), \1, 0)'),
    (r'rt_sigaction\((SIG\w+), \{sa_handler=(SIG_\w+),.*\)', r'signal(\1, \2)'),
    (r'mmap\(NULL, (\d+), PROT_READ, (\w+), (\d+), 0\)', r'mmap(nullptr, \1, PROT_READ, \2, \3, 0)'),
    (r'munmap\(.*\)', None),
    (r'futex\(.*\)', r'syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 0x7fffffff)'),
    (r'brk\(.*\)', r'syscall(SYS_brk, 0)'),  # no heap is needed, so it asks how large it is
    (r'set_robust_list\(.*\)', None),  # fork's own
    (r'clone\(.*\)', 'if (fork() == 0) {\n        child();\n        _exit(0);\n    }'),
    (r'execve\(.*\)', r'execv(command[0], command)'),
    (r'exit_group\(.*\)', r'_exit(0)'),
]


def statement(call):
    for pattern, replacement in STATEMENTS:
        found = re.fullmatch(pattern, call)
        if found:
            return found.expand(replacement) if replacement else None
    raise SystemExit(f"recorded_calls.py knows no way to make this call again: {call}")


def calls_of(trace):
    """What one process has called, from main on, up to the program that it became."""
    lines = [line for line in trace.read_text(errors="surrogateescape").splitlines()
             if re.match(r"\w+\(", line)]
    calls = [re.sub(r"\s+= (-?\d+|0x[0-9a-f]+|\?)( .*)?$", "", line) for line in lines]
    if calls[0].startswith("execve("):
        begin = next(i for i, call in enumerate(calls) if re.match(r"fcntl\(0, F_GETFD|poll\(", call))
        end = next(i for i, call in enumerate(calls) if i > 0 and call.startswith("execve("))
        return calls[begin:end + 1]
    return calls


def function(name, parameters, calls):
    # "Unused" results are unused on purpose.
    body = "".join(f"    (void)!{text};\n" if re.match(r"(read|readlink|write|pread|pwrite|ftruncate|pipe2|symlink)\(", text)
                   else f"    {text};\n" if not text.endswith("}") else f"    {text}\n"
                   for text in map(statement, calls) if text)
    return f"void {name}({parameters}) {{\n{body}}}\n"


def source_of(folder):
    """The functions `launcher` and `child` for the traces that "strace -ff" has left in a folder."""
    traces = sorted(folder.glob("trace.*"), key=lambda trace: int(trace.suffix[1:]))
    launcher = next(trace for trace in traces if trace.read_text().startswith("execve("))
    child = next(trace for trace in traces if trace != launcher)
    return (function("child", "", calls_of(child)) + "\n" +
            function("launcher", "char** command", calls_of(launcher)))
