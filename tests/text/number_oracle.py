"""Prints one line for each pair of a FORMAT classification and a value, and what another formatter makes of them:

    CLASSIFICATION <tab> VALUE IN HEXADECIMAL <tab> [TEXT]"""

import random
import struct
import sys

FORMATS = ["8.2", ".2", "0.3", "08.3", "-9.1", "+.2", "+08.2", "#.0", "12", "0", "5.", "010", "10.0", "30.25", ".17",
           "512.500", "MAX 0.3", "MAX .4", "MAX 8.2", "MAX 07.1", "MAX 3", "MAX", None]


def is_whole(value):
    return -2 ** 31 <= value < 2 ** 31 and value == int(value)


def show(name, value):
    if name is None:
        return "%.2f" % value
    maximum, text = name.startswith("MAX"), name.replace("MAX", "").strip()
    if name == "MAX":
        text = ".2"
    before, point, _ = text.partition(".")
    if point and maximum and is_whole(value):
        text = before + ".0"
    return ("%" + text + "f") % value


def values(count):
    yield from (0.0, -0.0, 0.5, 1.5, -2.5, 0.125, 0.375, 1e15, -1e22, 2147483647.0, -2147483648.0, 2147483648.0, 1e-300,
                5e-324, 1.7976931348623157e308, 0.995, 9.995, 99.995, 2.0 ** 53 + 2)
    for _ in range(count):
        yield random.randrange(-10 ** 9, 10 ** 9) / 100
        yield float(random.randrange(-10 ** 6, 10 ** 6))
        yield random.randrange(-10 ** 6, 10 ** 6) / 8
        value = struct.unpack("<d", random.getrandbits(64).to_bytes(8, "little"))[0]
        if value - value == 0.0:
            yield value


random.seed(6)
for name in FORMATS:
    for value in values(500):
        classification = "" if name is None else "FORMAT(" + name + ")"
        sys.stdout.write("%s\t%s\t[%s]\n" % (classification, value.hex(), show(name, value)))
