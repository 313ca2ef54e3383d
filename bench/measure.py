# SPDX-License-Identifier: MIT

"""Runs one program and tells what it took: wall time, processor time, peak resident memory."""

import ctypes
import os
import subprocess
import time
from dataclasses import dataclass

PR_SET_CHILD_SUBREAPER = 36


@dataclass
class Run:
    status: int    # exit status; minus the signal when one ended it
    wall: float    # seconds
    cpu: float     # seconds, user and system
    peak: float    # megabytes (10^6 bytes) of resident memory
    errors: str    # the end of what it wrote to standard error


def adopt_orphans():
    """Makes this process the parent of what its children leave behind; see `run`."""
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


def run(command, errors_path, environment=None):
    """Runs the command to its end, with `environment` added to the own one.

    The kernel counts the memory of the process that calls exec, here that of this interpreter, into
    the peak of the program that it becomes. So a shell starts the program and ends at once; the
    program, whose own beginning was that small shell, becomes our child, and its figures are its own.
    """
    begin = time.perf_counter()
    shell = subprocess.run(
        ["/bin/sh", "-c", 'errors=$1; shift; "$@" >/dev/null 2>"$errors" & echo $!', "sh",
         errors_path, *command], stdout=subprocess.PIPE, check=True,
        env={**os.environ, **(environment or {})})
    _, status, usage = os.wait4(int(shell.stdout), 0)
    wall = time.perf_counter() - begin
    with open(errors_path, encoding="utf-8", errors="replace") as stream:
        message = stream.read()[-2000:].strip()
    return Run(os.waitstatus_to_exitcode(status), wall, usage.ru_utime + usage.ru_stime,
               usage.ru_maxrss * 1024 / 1e6, message)


def processor_time(command):
    """Seconds of processor time of a program that is too short-lived for `run`, whose shell may end
    after it."""
    _, status, usage = os.wait4(os.posix_spawn(command[0], command, os.environ), 0)
    if status != 0:
        raise OSError(f"{command[0]} failed with {status}")
    return usage.ru_utime + usage.ru_stime
