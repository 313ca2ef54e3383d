# SPDX-License-Identifier: MIT

"""Makes the receiver's log that bench/compare converts: the same bytes for the same size, every time."""

import os
import random
from datetime import timedelta

import inputs

# What changes the file changes this number, so that an old one is not taken for a new one.
VERSION = 1


def framed(body):
    checksum = 0
    for byte in body.encode("ascii"):
        checksum ^= byte
    return f"${body}*{checksum:02X}\r\n"


def angle(degrees, width, letters):
    """Degrees and minutes as the format has them, with the letter of the hemisphere."""
    # In the smallest unit first, so that no minute is rounded up to sixty.
    units = round(abs(degrees) * 60 * 10**5)
    whole, rest = divmod(units, 60 * 10**5)
    return f"{whole:0{width}}{rest / 10**5:08.5f},{letters[degrees < 0]}"


def epoch(ride, rng):
    """What a receiver sends in a second: where it is, how fast, how well, and what it hears."""
    lat, lon, ele, seconds = next(ride)
    moment = inputs.START + timedelta(seconds=seconds)
    clock = moment.strftime("%H%M%S") + ".00"
    position = f"{angle(lat, 2, 'NS')},{angle(lon, 3, 'EW')}"
    knots = rng.uniform(0, 20)
    satellites = ",".join(f"{n:02},{rng.randint(5, 85)},{rng.randint(0, 359):03},{rng.randint(15, 48)}"
                          for n in (3, 8, 14, 27))
    return (framed(f"GPRMC,{clock},A,{position},{knots:.3f},84.40,{moment:%d%m%y},,,A")
            + framed(f"GPVTG,84.40,T,,M,{knots:.3f},N,{knots * 1.852:.3f},K,A")
            + framed(f"GPGGA,{clock},{position},1,08,0.94,{ele:.1f},M,47.0,M,,")
            + framed("GPGSA,A,3,03,08,14,27,,,,,,,,,1.80,0.94,1.53")
            + framed(f"GPGSV,1,1,04,{satellites}"))


def log_file(folder, megabytes):
    """The path of a log of this size, made if it is not there yet."""
    path = os.path.join(folder, f"log-{megabytes}MB-v{VERSION}.nmea")
    if not os.path.exists(path):
        os.makedirs(folder, exist_ok=True)
        rng = random.Random(20240504)
        ride, size = inputs.rider(rng), 0
        with open(path + ".part", "w", encoding="ascii", newline="") as stream:
            while size < megabytes * 1_000_000:
                size += stream.write(epoch(ride, rng))
        os.rename(path + ".part", path)
    return inputs.read_anew(path)


def count_epochs(path):
    with open(path, "rb") as stream:
        return sum(line.startswith(b"$GPRMC,") for line in stream)
