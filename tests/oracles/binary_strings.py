"""Scrambled texts of compiled definitions, by another hand.

    binary_strings.py encode LINES FILE    writes a text for each line of LINES: its bytes in hexadecimal
    binary_strings.py decode FILE LINES    the other way round; fails on a wrong checksum"""

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

    def decode(self, data, at):
        """The text at a place of a file, and the place behind it."""
        size, = struct.unpack_from("<i", data, at)
        at, shift, plain = at + 4, self.count, bytearray()
        for byte in data[at:at + size]:
            plain.append((byte >> shift | byte << (8 - shift)) & 255 ^ self.chain)
            self.chain = byte
        check = self.finish(plain)
        if len(plain) != size or data[at + size:at + size + len(check)] != check:
            raise ValueError("wrong length or checksum at %d" % at)
        return bytes(plain), at + size + len(check)

    def finish(self, plain):
        if not plain:
            return b""
        self.sum = (self.sum + sum(plain) + len(plain)) % 2 ** 64
        self.count = (self.count + 1) % 8
        return b"" if self.count else struct.pack("<Q", self.sum)


def main(direction, source, target):
    scrambling = Scrambling()
    if direction == "encode":
        with open(source) as lines, open(target, "wb") as file:
            file.write(b"".join(scrambling.encode(bytes.fromhex(line)) for line in lines))
        return
    data, at = open(source, "rb").read(), 0
    with open(target, "w") as lines:
        while at < len(data):
            plain, at = scrambling.decode(data, at)
            lines.write(plain.hex() + "\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
