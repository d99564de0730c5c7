"""Reads and writes compiled configurations without the library.

compiled.py decode FILE [KIND]  prints what the file holds as JSON
compiled.py encode FILE         writes a file from such JSON on standard input

KIND is the kind of file that a reader expects: 2 has one identity text, 1 and 3 have two, any other has none.
What is encoded may tell another "format_version", "format_count" or "field_count" than it has.
Texts are UTF-16 in a "wide" file and windows-1252 in others; doubles stand as their eight bytes in hexadecimal.
"""

import json
import struct
import sys

COMMON_DATASET_VERSION = [14, 3]
FORMAT_TEXTS = ("name", "display", "extension", "dataset", "associated")
FORMAT_NUMBERS = ("minimum", "maximum", "key")


def rotate_left(byte, count):
    return (byte << count | byte >> (8 - count)) & 0xFF


class Chain:
    """The state that runs through all texts of a file."""

    def __init__(self):
        self.previous = 0x5C
        self.sum = 0
        self.count = 0

    def scramble(self, plain):
        out = bytearray()
        for byte in plain:
            self.previous = rotate_left(self.previous ^ byte, self.count)
            out.append(self.previous)
        return bytes(out) + self.checksum(plain)

    def unscramble(self, scrambled):
        out = bytearray()
        for byte in scrambled:
            out.append(rotate_left(byte, 8 - self.count) ^ self.previous)
            self.previous = byte
        return bytes(out)

    def checksum(self, plain):
        """What stands behind a text."""
        self.sum += len(plain) + sum(plain)
        self.count = (self.count + 1) % 8
        return struct.pack("<Q", self.sum) if self.count == 0 else b""


class Source:
    def __init__(self, data):
        self.data = data
        self.at = 0
        self.chain = Chain()
        self.wide = False

    def take(self, count):
        part = self.data[self.at : self.at + count]
        assert len(part) == count, f"ends at {len(self.data)}"
        self.at += count
        return part

    def number(self, code="i"):
        return struct.unpack("<" + code, self.take(struct.calcsize("<" + code)))[0]

    def text(self):
        """None at the end marker."""
        size = self.number()
        if size <= 0:
            return None if size < 0 else ""
        plain = self.chain.unscramble(self.take(size))
        expected = self.chain.checksum(plain)
        assert self.take(len(expected)) == expected, f"checksum before {self.at}"
        return plain.decode("utf-16-le", "surrogatepass") if self.wide else plain.decode("cp1252")


class Sink:
    def __init__(self, wide):
        self.data = bytearray()
        self.chain = Chain()
        self.wide = wide

    def number(self, value, code="i"):
        self.data += struct.pack("<" + code, value)

    def text(self, text):
        plain = text.encode("utf-16-le", "surrogatepass") if self.wide else text.encode("cp1252")
        self.number(len(plain))
        if plain:
            self.data += self.chain.scramble(plain)


def decode_field(source):
    field = {"name": source.text(), "default": source.take(8).hex(), "type": source.number("I")}
    field["read_only"] = source.number("B")
    field["classes"] = [source.number("I") for _ in range(12)]
    field["slot0"] = source.number()
    field["table"] = source.number()
    field["level"] = source.number("h")
    field["class_string"] = source.text()
    field["slots"] = [source.number() for _ in range(20)]
    return field


def encode_field(sink, field):
    sink.text(field["name"])
    sink.data += bytes.fromhex(field["default"])
    sink.number(field["type"], "I")
    sink.number(field["read_only"], "B")
    for word in field["classes"]:
        sink.number(word, "I")
    sink.number(field["slot0"])
    sink.number(field["table"])
    sink.number(field["level"], "h")
    sink.text(field["class_string"])
    for slot in field["slots"]:
        sink.number(slot)


def decode_format(source, version):
    format = {name: source.text() for name in FORMAT_TEXTS}
    format["eligible"] = source.number() if version >= COMMON_DATASET_VERSION else 0
    format.update({name: source.number() for name in FORMAT_NUMBERS})
    format["fields"] = [decode_field(source) for _ in range(source.number())]
    return format


def encode_format(sink, format, version):
    for name in FORMAT_TEXTS:
        sink.text(format[name])
    if version >= COMMON_DATASET_VERSION:
        sink.number(format["eligible"])
    for name in FORMAT_NUMBERS:
        sink.number(format[name])
    sink.number(format.get("field_count", len(format["fields"])))
    for field in format["fields"]:
        encode_field(sink, field)


def decode_pairs(source):
    pairs = []
    while (original := source.text()) is not None:
        pairs.append([original, source.text()])
    return pairs


def decode(data, kind):
    marker = data.index(26)
    source = Source(data)
    source.wide = 0 in data[:marker]
    source.at = marker + (2 if source.wide else 1)
    file = {"wide": source.wide, "banner": data[:marker].decode("utf-16-le" if source.wide else "cp1252")}
    assert source.number("f") == 12.0
    version = file["version"] = [source.number(), source.number()]
    file["type"] = source.number()
    file["identity"] = [source.text() for _ in range({1: 2, 2: 1, 3: 2}.get(kind, 0))]
    if version < COMMON_DATASET_VERSION:
        source.text()
    file["flag"] = source.number()
    assert source.number() == 0
    file["host"] = [source.text(), source.text()]
    file["help"] = source.text()
    file["opaque"] = [source.text() for _ in range(source.number())]
    file["formats"] = [decode_format(source, version) for _ in range(source.number())]
    file["substitutions"] = decode_pairs(source)
    file["end"] = source.at
    assert source.at == len(data), "bytes behind the end"
    return file


def encode(file):
    sink = Sink(file["wide"])
    version = file["version"]
    sink.data += (file["banner"] + "\x1a").encode("utf-16-le" if sink.wide else "cp1252")
    sink.number(file.get("format_version", 12.0), "f")
    sink.number(version[0])
    sink.number(version[1])
    sink.number(file["type"])
    for text in file["identity"]:
        sink.text(text)
    if version < COMMON_DATASET_VERSION:
        sink.text("one more text")
    sink.number(file["flag"])
    sink.number(0)
    for text in file["host"] + [file["help"]]:
        sink.text(text)
    sink.number(len(file["opaque"]))
    for text in file["opaque"]:
        sink.text(text)
    sink.number(file.get("format_count", len(file["formats"])))
    for format in file["formats"]:
        encode_format(sink, format, version)
    for pair in file["substitutions"]:
        for text in pair:
            sink.text(text)
    sink.number(-1)
    return bytes(sink.data)


def main():
    if sys.argv[1] == "decode":
        with open(sys.argv[2], "rb") as file:
            print(json.dumps(decode(file.read(), int((sys.argv + ["0"])[3]))))
    else:
        with open(sys.argv[2], "wb") as file:
            file.write(encode(json.load(sys.stdin)))


main()
