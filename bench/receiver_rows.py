# SPDX-License-Identifier: MIT

"""The rows of bench/compare about receivers: a log of NMEA sentences to GPX, and the thinning of a
track while it is recorded."""

import os
import shutil
import subprocess
import sys
from statistics import median

import inputs
import measure
import nmea_inputs

# What is asked of pelluvia: at least so many times as fast as gpsbabel.
NMEA_BAR = 5.0
# gpsbabel takes minutes to simplify more than that.
MOST_THINNED = 10
# The ride's steps are shorter than the usual tolerance, which would leave two points of it.
THINNING = ["--point-slop", "0.00002", "--slope-slop", "0.1"]


def table(title, size, commands, rounds, folder, count, once=()):
    """Runs the commands in turn, those named in `once` in the first round only, and prints their table.
    `count` is told the points of each result of the first round. The median of each round's own ratio
    to the first command, by name."""
    runs = {name: [] for name in commands}
    target = os.path.join(folder, "out.gpx")
    for number in range(rounds):
        for name, command in commands.items():
            if number > 0 and name in once:
                continue
            run = measure.run(command + [target], os.path.join(folder, "errors"))
            if run.status != 0:
                sys.exit(f"{name} failed with {run.status}: {run.errors}")
            if number == 0:
                count(name, inputs.count_points(target, "bare"))
            os.remove(target)
            runs[name].append(run)
    print(f"\n{title}, medians of {rounds} rounds")
    first = next(iter(commands))
    print(f"  {'':24}wall s    cpu s     MB/s  peak MB  times as long as the first")
    ratios = {}
    for name, each in runs.items():
        ratios[name] = median(run.wall / own.wall for run, own in zip(each, runs[first]))
        wall = median(run.wall for run in each)
        print(f"  {name:22}{wall:8.2f} {median(run.cpu for run in each):8.2f} {size / wall:8.0f}"
              f" {max(run.peak for run in each):8.1f} {ratios[name]:8.1f}")
    return ratios


def compare_nmea(pelluvia, megabytes, rounds, data, folder, at_least):
    """A receiver's log to GPX. True when the bar holds."""
    source = nmea_inputs.log_file(data, megabytes)
    epochs = nmea_inputs.count_epochs(source)

    def count(name, points):
        if points != epochs:
            sys.exit(f"{name} wrote {points} points of {epochs}")

    commands = {"pelluvia": [pelluvia, "convert", "--quiet", "--from", "nmea", "--to", "gpx", source]}
    if shutil.which("gpsbabel"):
        commands["gpsbabel"] = ["gpsbabel", "-t", "-i", "nmea", "-f", source, "-o", "gpx", "-F"]
    size = os.path.getsize(source) / 1e6
    ratios = table(f"nmea: {size:.1f} MB, {epochs} points", size, commands, rounds, folder, count)
    return "gpsbabel" not in ratios or at_least("times as fast as gpsbabel", ratios["gpsbabel"],
                                                NMEA_BAR)


def compare_thinning(pelluvia, megabytes, rounds, data, folder, beside_gpsbabel):
    """A track thinned while it is recorded, beside the same conversion without thinning and without
    a recorder, and, when wanted, beside gpsbabel's simplification to within a metre. Nothing is asked
    of the ratios: what is left out differs."""
    source = inputs.input_file(data, "bare", min(megabytes, MOST_THINNED))
    points = inputs.count_points(source, "bare")
    left = {}
    convert = [pelluvia, "convert", "--quiet", "--to", "gpx"]
    commands = {"pelluvia --minimize": convert + ["--minimize", *THINNING, source],
                "pelluvia --record": convert + ["--record", source],
                "pelluvia --classic": convert + ["--classic", source]}
    if beside_gpsbabel and shutil.which("gpsbabel"):
        commands["gpsbabel -x simplify"] = ["gpsbabel", "-i", "gpx", "-f", source, "-x",
                                            "simplify,crosstrack,error=0.001k", "-o", "gpx", "-F"]
    size = os.path.getsize(source) / 1e6
    table(f"thinning: {size:.1f} MB, {points} points", size, commands, rounds, folder, left.__setitem__,
          once=("gpsbabel -x simplify",))
    print("  points left: " + ", ".join(f"{name} {count}" for name, count in left.items()))


def compare(options, folder, at_least):
    """All of it. `at_least(what, value, limit)` says whether a bar holds. True when all do."""
    measured = (options.pelluvia, options.megabytes, options.rounds, options.data, folder)
    good = compare_nmea(*measured, at_least)
    driver = os.path.join(os.path.dirname(options.pelluvia), "nmea_bench")
    if os.access(driver, os.X_OK):
        sys.stdout.flush()
        log = nmea_inputs.log_file(options.data, options.megabytes)
        good &= subprocess.run([driver, log], check=False).returncode == 0
    compare_thinning(*measured, beside_gpsbabel=not options.quick)
    return good
