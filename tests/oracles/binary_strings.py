"""Scrambled texts of compiled definitions, by another hand.

    binary_strings.py LINES FILE    writes a text for each line of LINES: its bytes in hexadecimal"""

import struct
import sys


class Scrambling:
    def __init__(self):
        self.chain, self.sum, self.count = 0x5C, 0, 0

    def encode(self, plain):
        out, shift = bytearray(), self.count
        for byte in plain:
            mixed = byte ^ self.chain
            self.chain = (mixed << shift | mixed >> (8 - shift)) & 255
            out.append(self.chain)
        return struct.pack("<i", len(plain)) + bytes(out) + self.finish(plain)

    def finish(self, plain):
        if not plain:
            return b""
        self.sum = (self.sum + sum(plain) + len(plain)) % 2 ** 64
        self.count = (self.count + 1) % 8
        return b"" if self.count else struct.pack("<Q", self.sum)


def main(source, target):
    scrambling = Scrambling()
    with open(source) as lines, open(target, "wb") as file:
        file.write(b"".join(scrambling.encode(bytes.fromhex(line)) for line in lines))


if __name__ == "__main__":
    main(*sys.argv[1:])
