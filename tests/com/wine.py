"""Programs of Windows under Wine, in the prefix that WINEPREFIX names."""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

ENVIRONMENT = {name: value for name, value in os.environ.items() if name != "DISPLAY"} | {
    # What the interpreter of scripts does not understand it says only here.
    "WINEDEBUG": "-all,fixme+vbscript"
}


def windows_path(path):
    """As a program of Windows names a file of this machine."""
    return "Z:" + str(pathlib.Path(path).resolve()).replace("/", "\\")


def finished(*words):
    """A program's status, output and error output. They go to files: Wine's own processes, which stay for a minute,
    would hold a pipe open."""
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as remarks:
        words = ["wine", *words]
        done = subprocess.run(words, env=ENVIRONMENT, stdout=output, stderr=remarks, timeout=300, check=False)
        texts = []
        for told in (output, remarks):
            told.seek(0)
            texts.append(told.read().decode("utf-8", errors="replace").replace("\r\n", "\n"))
    return done.returncode, *texts


def run(*words, check=True):
    """Runs a program; answers its output. Its error output, in which Wine chats, is shown when it fails."""
    status, output, remarks = finished(*words)
    if check and status != 0:
        raise SystemExit(f"{words[0]} ended with {status}: {output}{remarks}")
    return output


def start_script(script, *arguments):
    """A script under cscript, running."""
    words = ["wine", "cscript", "//nologo", windows_path(script), *arguments]
    return subprocess.Popen(words, env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def run_script(script, *arguments):
    """A script's output, and what the interpreter says of it."""
    return finished("cscript", "//nologo", windows_path(script), *arguments)[1:]


def expectations(script):
    """What a script says that it prints, as (number of the line, text): the remarks that begin with '= ."""
    found = []
    for number, line in enumerate(script.splitlines(), 1):
        if match := re.search(r"'= ?(.*)$", line):
            found.append((number, match.group(1).rstrip()))
    return found


def differences(script, output):
    """The places where a script's output is not what it says, as lines to read."""
    wanted = expectations(script)
    lines = output.splitlines()
    faults = [
        f"line {number}: expected {text!r}, got {line!r}"
        for (number, text), line in zip(wanted, lines)
        if text != line
    ]
    if len(lines) < len(wanted):
        faults.append(f"nothing more after line {wanted[len(lines)][0]}, which prints {wanted[len(lines)][1]!r}")
    return faults + [f"unexpected: {line!r}" for line in lines[len(wanted):]]


def report(script, output, remarks=""):
    """Prints where a script's output is not what the script says; answers the exit status."""
    text = pathlib.Path(script).read_text(encoding="ascii")
    faults = differences(text, output)
    print("\n".join([*faults, remarks]) if faults else f"{len(expectations(text))} lines as expected")
    return 1 if faults else 0


def new_database(folder, name):
    """The path of a database that is not there yet."""
    path = pathlib.Path(folder) / f"{name}.db"
    for left in (path, path.with_name(path.name + "-wal"), path.with_name(path.name + "-shm")):
        left.unlink(missing_ok=True)
    return path


def copy_database(database, folder, name):
    """A copy of a database for one test, which may change it."""
    return pathlib.Path(shutil.copy(database, new_database(folder, name)))
