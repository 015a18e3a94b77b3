#!/usr/bin/env python3
"""Uses the command for Windows as a user does, on a database in a folder with a Chinese name, and compares what it
prints and answers with what the command of this machine does on the same database; then runs what the page on Windows
shows of it.

command.py WINDOWS_COMMAND COMMAND FOLDER
"""
import os
import pathlib
import pty
import re
import shutil
import subprocess
import sys
import time

import wine

NAME = "张三"
PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "windows.md"
# Words, standard input, exit status; in this order, as some change orders. Those after a change say what it did.
CALLS = (
    (["ops"], "", 0),
    (["ops", "SaveLogWeight"], "", 0),
    (["sql", "select top 3 FID, FOrderID, FBuyerNick, FOrderDate from IC_Web2ERPOrders order by FID"], "", 0),
    (["sql", "--csv", "-"], f"select N'{NAME}' Name\nGO\nselect FOrderStatus, count(*) n from IC_Web2ERPOrders group by "
                            "FOrderStatus order by FOrderStatus\n", 0),
    (["sql", "--json", "--file", "{folder}查询.sql"], "", 0),
    (["call", "GetListData", "Filter.FOrderStatus=2", "Filter.WebOrderMaxDisplayCount=5", "--json"], "", 0),
    (["call", "ConfirmBill", "dctPara={}"], "", 1),
    (["call", "ConfirmBil"], "", 2),
    (["sql", "select 1", "--no-such-option"], "", 2),
    (["sql", f"select nothing from {NAME}"], "", 3),
    (["call", "GetListData", "Filter={}", "--dsn", "Embedded={folder}没有{separator}orders.db"], "", 3),
)
ROWS = ("create table #t (i int) declare @i int = 0 while @i < 70 begin insert into #t values (@i) set @i = @i + 1 end "
        "select replicate('1000', 25) x from #t a cross join #t b cross join #t c")
WHOLE = 70**3 * 100
# What Ctrl-C meets: the batch, whether it prints, how many times it is pressed.
INTERRUPTED = {
    "does not end": ("declare @i int = 0 while @i >= 0 set @i = @i % 1000 + 1", False, 1),
    "prints": (ROWS, True, 1),
    "prints to nobody": (ROWS, True, 2),
}


def outcome(words, text, database):
    """Exit status, output and, for a call that fails, the error."""
    environment = wine.ENVIRONMENT | {
        "LC_ALL": "C.UTF-8", "TESSARLORN_DSN": f"Connect={{Embedded={database}}};User=16394;Client=10.0.0.5"}
    done = subprocess.run(words, env=environment, input=text.encode(), capture_output=True, timeout=100, check=False)
    return done.returncode, done.stdout.decode(), done.stderr.decode() if done.returncode > 1 else ""


def interrupted(windows_command, batch, prints, presses):
    """Exit status of a command, and the bytes that it printed behind, once Ctrl-C is pressed on its terminal while its
    batch runs, or while its rows wait for who reads them. After the second time nobody reads them."""
    output, printed = os.pipe()
    child, terminal = pty.fork()
    if child == 0:
        os.dup2(printed, 1)
        words = ["wine", windows_command, "sql", batch, "--csv", "--show-sql", "--dsn", "Embedded=:memory:busy"]
        os.execvpe(words[0], words, wine.ENVIRONMENT)
    os.close(printed)
    shown = b""
    while b"1000" not in shown:
        shown += os.read(output if prints else terminal, 1024)
    os.write(terminal, b"\x03")
    size = 0
    while presses == 1 and (read := os.read(output, 65536)):
        size += len(read)
        # The command gets to Ctrl-C long before all is read.
        time.sleep(0.05)
    while not (ended := os.waitpid(child, os.WNOHANG if presses > 1 else 0))[0]:
        os.write(terminal, b"\x03")
        time.sleep(0.05)
    status = os.waitstatus_to_exitcode(ended[1])
    os.close(output)
    os.close(terminal)
    return status, size


def version_of_file(program):
    """What the system shows as the version of a program's file; "" when it has none."""
    key = "ProductVersion\0".encode("utf-16-le")
    value = pathlib.Path(program).read_bytes().partition(key)[2][:64].decode("utf-16-le", errors="replace")
    return value.lstrip("\0").partition("\0")[0]


def strange_words_of_help(windows_command):
    """What the help texts hold that is of other systems, and a missing way to a server."""
    words = [[], ["init"], ["seed"], ["ops"], ["call"], ["sql"]]
    text = "".join(wine.run(windows_command, *command, "--help") for command in words)
    found = re.findall(r"export \w+|serve\b|FreeTDS|'\w*=?[\[{].*|echo [\"'].*", text)
    return found + [string for string in ("Driver=", "Provider=", "set TESSARLORN_DSN=") if string not in text]


def shown_on_page(windows_command, folder):
    """What the commands of the page print, in their order and from the folder that they make; each has to do its work.
    Scripts among them, which want the library registered, are left out."""
    block = re.search(r"^## Trying it$.*?^```bat\n(.*?)^```", PAGE.read_text(encoding="utf-8"), re.M | re.S).group(1)
    lines = [line for line in block.splitlines() if "examples\\" not in line]
    batch = folder / "page.bat"
    program = f'"{wine.windows_path(windows_command)}"'
    text = "".join(line.replace("x64\\tessarlorn", program) + "\nif errorlevel 1 exit /b 1\n" for line in lines)
    batch.write_text("@echo off\n" + text, encoding="ascii", newline="\r\n")
    shutil.rmtree(pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c" / "shop", ignore_errors=True)
    return wine.run("cmd", "/c", wine.windows_path(batch))


def main(windows_command, command, folder):
    folder = pathlib.Path(folder) / "订单"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    (folder / "查询.sql").write_text(f"select '{NAME}' as [姓名], 1.50 as n", encoding="utf-16")
    folders = {"windows": wine.windows_path(folder) + "\\", "here": f"{folder.resolve()}/"}

    def both(words, text):
        for machine, start in (("windows", ["wine", windows_command]), ("here", [command])):
            separator = folders[machine][-1]
            own = [word.replace("{folder}", folders[machine]).replace("{separator}", separator) for word in words]
            status, output, error = outcome(start + own, text, folders[machine] + "orders.db")
            yield status, output, error.replace("\r\n", "\n").replace(folders[machine], "{folder}").replace("/", "\\")

    faults = []
    for words in (["init"], ["seed", "--orders", "60"]):
        status, _, error = outcome(["wine", windows_command, *words], "", folders["windows"] + "orders.db")
        if status != 0:
            faults.append(f"{words} ended with {status}: {error}")
    for words, text, wanted in CALLS:
        on_windows, here = both(words, text)
        if on_windows != here or here[0] != wanted:
            faults += [f"{words}:", f"  Windows: {on_windows}", f"  here:    {here}"]

    order = outcome([command, "sql", "--csv", "select top 1 FID from IC_Web2ERPOrders where FOrderStatus = 2"], "",
                    folders["here"] + "orders.db")[1].split()[-1]
    picked = ["call", "ConfirmBill", f"dctPara.FID={order}", "dctPara.FPickManNumber=E1", f"dctPara.FPickRem={NAME}"]
    status = outcome(["wine", windows_command, *picked], "", folders["windows"] + "orders.db")[0]
    asked = f"select FOrderStatus, FPickRem from IC_Web2ERPOrders where FID = {order}"
    kept = outcome([command, "sql", "--csv", asked], "", folders["here"] + "orders.db")[1]
    if status != 0 or f"6,{NAME}" not in kept:
        faults.append(f"ConfirmBill ended with {status} and left {kept!r}")
    for name, (batch, prints, presses) in INTERRUPTED.items():
        status, size = interrupted(windows_command, batch, prints, presses)
        if status != 130 or size > WHOLE / 2:
            faults.append(f"Ctrl-C ended a batch that {name} with {status}, {size} bytes behind")
    if (told := version_of_file(windows_command)) != outcome([command, "version"], "", "")[1].split()[1]:
        faults.append(f"the file's version is {told!r}")
    if words := strange_words_of_help(windows_command):
        faults.append(f"the help texts have, or miss, {words}")
    shown = shown_on_page(windows_command, folder.parent)
    if len(re.findall(r"^\([1-9]\d* rows\)$", shown, re.M)) < 2 or "(0 rows)" in shown:
        faults.append(f"what the page shows printed {shown}")
    print("\n".join(faults) if faults else f"{len(CALLS)} calls answer what they answer here")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
