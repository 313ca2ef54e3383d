# SPDX-License-Identifier: MIT

"""Makes the GPX files that bench/compare converts: the same bytes for the same size, every time."""

import functools
import os
import random
from datetime import datetime, timedelta, timezone

HEAD = ('<?xml version="1.0" encoding="UTF-8"?>\n'
        '<gpx version="1.1" creator="bench" xmlns="http://www.topografix.com/GPX/1/1"'
        ' xmlns:gpxtpx="http://www.garmin.com/xmlschemas/TrackPointExtension/v1">\n')
START = datetime(2024, 5, 4, 5, 30, tzinfo=timezone.utc)
POINTS_PER_SEGMENT = 20_000

# What changes the files changes this number, so that old ones are not taken for new ones.
VERSION = 1


def rider(rng):
    """An endless ride: latitude, longitude, elevation, seconds since the start."""
    lat, lon, ele, seconds = 47.05, 8.31, 440.0, 0
    while True:
        yield lat, lon, ele, seconds
        lat += rng.uniform(-4e-5, 5e-5)
        lon += rng.uniform(-5e-5, 6e-5)
        if not (46.0 < lat < 49.0 and 6.0 < lon < 11.0):
            lat, lon = 47.05, 8.31
        ele = min(3000.0, max(200.0, ele + rng.uniform(-0.8, 0.8)))
        seconds += rng.randint(1, 3)


def stamp(seconds):
    return (START + timedelta(seconds=seconds)).strftime("%Y-%m-%dT%H:%M:%SZ")


def track(write, size, point_text):
    """A track of many segments, until `size` bytes are written."""
    written = write(HEAD + " <trk>\n  <name>Long ride</name>\n  <trkseg>\n")
    count = 0
    while written < size:
        if count and count % POINTS_PER_SEGMENT == 0:
            written += write("  </trkseg>\n  <trkseg>\n")
        written += write(point_text())
        count += 1
    write("  </trkseg>\n </trk>\n</gpx>\n")


def make_ext(write, size, rng):
    """Track points with heart rate, cadence and temperature, indented: about 340 bytes each."""
    ride = rider(rng)
    sensors = {"hr": 120, "cad": 85}

    def point():
        lat, lon, ele, seconds = next(ride)
        sensors["hr"] = min(190, max(60, sensors["hr"] + rng.randint(-2, 2)))
        sensors["cad"] = min(120, max(0, sensors["cad"] + rng.randint(-3, 3)))
        return (f'    <trkpt lat="{lat:.9f}" lon="{lon:.9f}">\n'
                f'     <ele>{ele:.1f}</ele>\n     <time>{stamp(seconds)}</time>\n'
                f'     <extensions>\n      <gpxtpx:TrackPointExtension>\n'
                f'       <gpxtpx:hr>{sensors["hr"]}</gpxtpx:hr>\n'
                f'       <gpxtpx:cad>{sensors["cad"]}</gpxtpx:cad>\n'
                f'       <gpxtpx:atemp>{rng.uniform(12, 28):.1f}</gpxtpx:atemp>\n'
                f'      </gpxtpx:TrackPointExtension>\n     </extensions>\n    </trkpt>\n')
    track(write, size, point)


def make_bare(write, size, rng):
    """Track points with elevation and time on one line: about 100 bytes each."""
    ride = rider(rng)

    def point():
        lat, lon, ele, seconds = next(ride)
        return (f'<trkpt lat="{lat:.9f}" lon="{lon:.9f}"><ele>{ele:.2f}</ele>'
                f'<time>{stamp(seconds)}</time></trkpt>\n')
    track(write, size, point)


WORDS = ("Brücke Mühle Kirche alte Straße Wald Höhle Turm & Bach rechts links Stein über Försterhaus "
         "parkování études größer Łąka небо under the third fence post take a pencil").split()


def words(rng, count):
    return " ".join(rng.choices(WORDS, k=count)).replace("&", "&amp;")


def make_cache(write, size, rng):
    """Waypoints with a geocache that declares its own namespace: about 1 kB each."""
    written = write(HEAD)
    number = 0
    while written < size:
        number += 1
        name = words(rng, 4)
        written += write(
            f' <wpt lat="{rng.uniform(46, 49):.6f}" lon="{rng.uniform(6, 11):.6f}">\n'
            f'  <time>{stamp(rng.randint(0, 10**8))}</time>\n  <name>GC{number:X}</name>\n'
            f'  <desc>{name}</desc>\n  <sym>Geocache</sym>\n  <type>Geocache|Traditional Cache</type>\n'
            f'  <extensions>\n   <groundspeak:cache id="{number}" available="True" archived="False"'
            f' xmlns:groundspeak="http://www.groundspeak.com/cache/1/0">\n'
            f'    <groundspeak:name>{name}</groundspeak:name>\n'
            f'    <groundspeak:placed_by>{words(rng, 2)}</groundspeak:placed_by>\n'
            f'    <groundspeak:owner id="{rng.randint(1, 10**6)}">{words(rng, 2)}</groundspeak:owner>\n'
            f'    <groundspeak:type>Traditional Cache</groundspeak:type>\n'
            f'    <groundspeak:difficulty>{rng.randint(2, 10) / 2}</groundspeak:difficulty>\n'
            f'    <groundspeak:terrain>{rng.randint(2, 10) / 2}</groundspeak:terrain>\n'
            f'    <groundspeak:long_description html="False">{words(rng, 32)}'
            f'</groundspeak:long_description>\n'
            f'    <groundspeak:encoded_hints>{words(rng, 6)}</groundspeak:encoded_hints>\n'
            f'   </groundspeak:cache>\n  </extensions>\n </wpt>\n')
    write("</gpx>\n")


def make_worst(write, size, rng):
    """Waypoints no two of which look alike: elements and attributes in random order, any of a hundred
    prefixes and names in the extensions, random white space everywhere. Hardly anything can be learnt
    from what went before."""
    def blank(least=0):
        return "".join(rng.choices(" \t\n", k=rng.randint(least, 12)))

    pool = ["".join(rng.choices("abcdefghijklmnopqrstuvwxyz", k=rng.randint(3, 12))) for _ in range(100)]

    def name():
        return rng.choice(pool)

    def foreign():
        prefix = name()
        inner = "".join(f"{blank()}<{prefix}:{tag}{blank(1)}{name()}='{rng.randint(0, 99)}'{blank()}>"
                        f"{rng.randint(0, 999)}</{prefix}:{tag}{blank()}>"
                        for tag in (name() for _ in range(rng.randint(1, 4))))
        return (f"<extensions><{prefix}:{prefix}{blank(1)}xmlns:{prefix}=\"urn:{name()}\">{inner}{blank()}"
                f"</{prefix}:{prefix}></extensions>")

    written = write(HEAD)
    while written < size:
        position = [f'lat="{rng.uniform(46, 49):.6f}"', f"lon='{rng.uniform(6, 11):.6f}'"]
        parts = [f"<ele>{rng.uniform(200, 900):.1f}</ele>", f"<time>{stamp(rng.randint(0, 10**8))}</time>",
                 f"<name>{name()}</name>", f"<sym{blank()}>{name()}</sym{blank()}>", foreign(), foreign()]
        rng.shuffle(position)
        rng.shuffle(parts)
        written += write(f"<wpt{blank(1)}{blank(1).join(position)}{blank()}>"
                         + "".join(blank() + part for part in parts) + f"{blank()}</wpt>{blank()}")
    write("</gpx>\n")


# name: how it is made, the element of its points, the layer that another program finds them in
KINDS = {
    "ext": (make_ext, b"<trkpt ", "track_points"),
    "bare": (make_bare, b"<trkpt ", "track_points"),
    "cache": (make_cache, b"<wpt ", "waypoints"),
    "worst": (make_worst, b"<wpt", "waypoints"),
}


@functools.cache
def read_anew(path):
    """Puts the file into the system's cache as a file from the disk is: in large pieces. One that was
    just written may lie there in pages, which take twice as long to copy, and every pass copies all."""
    descriptor = os.open(path, os.O_RDONLY)
    os.fsync(descriptor)
    os.posix_fadvise(descriptor, 0, 0, os.POSIX_FADV_DONTNEED)
    while os.read(descriptor, 1 << 20):
        pass
    os.close(descriptor)
    return path


def input_file(folder, kind, megabytes):
    """The path of the input of this kind and size, made if it is not there yet."""
    path = os.path.join(folder, f"{kind}-{megabytes}MB-v{VERSION}.gpx")
    if not os.path.exists(path):
        os.makedirs(folder, exist_ok=True)
        with open(path + ".part", "w", encoding="utf-8", newline="\n") as stream:
            make = KINDS[kind][0]
            make(lambda text: (stream.write(text), len(text.encode()))[1],
                 megabytes * 1_000_000, random.Random(20240504))
        os.rename(path + ".part", path)
    return read_anew(path)


def tiny_file(folder):
    """The path of a file of ten points, made anew."""
    path = os.path.join(folder, "tiny.gpx")
    ride = rider(random.Random(1))
    with open(path, "w", encoding="utf-8", newline="\n") as stream:
        stream.write(HEAD + " <trk>\n  <trkseg>\n")
        for _ in range(10):
            lat, lon, ele, seconds = next(ride)
            stream.write(f'   <trkpt lat="{lat:.9f}" lon="{lon:.9f}"><ele>{ele:.2f}</ele>'
                         f'<time>{stamp(seconds)}</time></trkpt>\n')
        stream.write("  </trkseg>\n </trk>\n</gpx>\n")
    return path


def count_points(path, kind):
    """How many points the file holds, told by their start tags."""
    element = KINDS[kind][1]
    count, rest = 0, b""
    with open(path, "rb") as stream:
        while block := stream.read(1 << 22):
            data = rest + block
            count += data.count(element)
            rest = data[-(len(element) - 1):]
    return count
