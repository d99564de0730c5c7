#!/usr/bin/env python3
"""Snapshots by a second writer and reader, which know the bytes and nothing of the library.

    snapshot.py write FILE    writes a small plant and prints what a reader must find in it, as JSON

A text is UTF-16. Inside the definition it is scrambled; in table data and block heads it is plain.
"""
import datetime
import json
import struct
import sys

MARKER = b"KestronaDataExtraction"
REFERENCE, DATE, REAL, INTEGER, DURATION, MATRIX, TOGGLE, FREE_STRING = (1 << bit for bit in range(8))
FREE_FORMAT, OVERRIDE, DATABASE, FAMILY = (0, 0x20), (0, 0x100000), (0, 0x200000), (0, 0x2000000)
LIST, COMMON_MATRIX, SHARED = (1, 0x1), (1, 0x10), (1, 0x40)
CALCULATED, NOT_PERSISTED = (3, 0x2000), (5, 0x80)
END = 0xFFFFFFFF


def units(text):
    return text.encode("utf-16-le", "surrogatepass")


def text_of(data):
    return data.decode("utf-16-le", "surrogatepass")


class Scrambling:
    """Runs through all texts of a definition, in either direction."""

    def __init__(self):
        self.chain, self.checksum, self.count = 0x5C, 0, 0

    def apply(self, data, step):
        self.checksum += len(data)
        return bytes(step(byte, self.count % 8) for byte in data)

    def scramble(self, plain, shift):
        mixed = self.chain ^ plain
        self.chain = (mixed << shift | mixed >> (8 - shift)) & 0xFF
        self.checksum += plain
        return self.chain

    def unscramble(self, code, shift):
        plain = (code >> shift | code << (8 - shift)) & 0xFF ^ self.chain
        self.chain = code
        self.checksum += plain
        return plain

    def checksum_follows(self):
        self.count += 1
        return self.count % 8 == 0


class Writer:
    def __init__(self):
        self.data, self.scrambling = bytearray(), Scrambling()

    def put(self, layout, *values):
        self.data += struct.pack("<" + layout, *values)

    def text(self, text):
        self.put("i", len(units(text)) // 2)
        self.data += units(text)

    def hidden(self, text):
        data = units(text)
        self.put("i", len(data))
        if data:
            self.data += self.scrambling.apply(data, self.scrambling.scramble)
            if self.scrambling.checksum_follows():
                self.put("Q", self.scrambling.checksum)

    def column(self, letter, values):
        self.put("i", len(values))
        self.put(f"{len(values)}{letter}", *values)


class Reader:
    def __init__(self, data):
        self.data, self.at, self.scrambling = data, 0, Scrambling()

    def bytes(self, count):
        if not 0 <= count <= len(self.data) - self.at:
            raise ValueError(f"offset {self.at}: {count} bytes wanted")
        self.at += count
        return self.data[self.at - count:self.at]

    def get(self, layout):
        values = struct.unpack("<" + layout, self.bytes(struct.calcsize("<" + layout)))
        return values[0] if len(values) == 1 else list(values)

    def text(self):
        return text_of(self.bytes(2 * self.get("i")))

    def hidden(self):
        size = self.get("i")
        if size == -1:
            return None
        if size == 0:
            return ""
        text = text_of(self.scrambling.apply(self.bytes(size), self.scrambling.unscramble))
        if self.scrambling.checksum_follows() and self.get("Q") != self.scrambling.checksum:
            raise ValueError(f"offset {self.at}: wrong checksum")
        return text

    def column(self, letter):
        count = self.get("i")
        return list(struct.unpack(f"<{count}{letter}", self.bytes(struct.calcsize(f"<{count}{letter}"))))


def has(field, mark):
    return field["classes"][mark[0]] & mark[1] == mark[1]


def column_letter(field, is_key):
    """How the numbers of a field lie in a block."""
    if is_key or has(field, OVERRIDE):
        return "d"
    return "i" if field["type"] & INTEGER else "b" if field["type"] & TOGGLE else "d"


def is_stored(field):
    return not (has(field, NOT_PERSISTED) or field["type"] & FREE_STRING or has(field, SHARED) or has(field, CALCULATED))


# --- The definition ---


def read_definition(reader):
    reader.get("I")
    texts = [reader.hidden() for _ in range(3)]
    for _ in range(reader.get("I")):
        reader.hidden()
    tables = [read_table(reader) for _ in range(reader.get("I"))]
    trailer = [reader.hidden(), reader.hidden()]
    pairs = []
    while (source := reader.hidden()) is not None:
        pairs.append([source, reader.hidden()])
    return {"texts": texts, "tables": tables, "trailer": trailer, "substitutions": pairs}


def read_table(reader):
    names = ("name", "display_name", "extension", "dataset", "associated_table")
    table = {name: reader.hidden() for name in names}
    table["common_dataset"], table["minimum"], table["maximum"], table["key"], count = reader.get("IIIiI")
    table["fields"] = [read_field(reader) for _ in range(count)]
    return table


def read_field(reader):
    field = {"name": reader.hidden()}
    field["default"], field["type"], field["read_only"] = reader.get("dIB")
    field["classes"] = reader.get("12I")
    reader.get("i")
    field["table"], field["dialog_level"] = reader.get("iH")
    field["classification"], field["slots"] = reader.hidden(), reader.get("20i")
    return field


def write_definition(writer, tables):
    writer.put("I", 0)
    for text in ("", "", "plant.chm"):
        writer.hidden(text)
    writer.put("II", 0, len(tables))
    for table in tables:
        for text in (table["name"], table["display_name"], "", "", ""):
            writer.hidden(text)
        writer.put("IIIiI", 0, 0, table["maximum"], table["key"], len(table["fields"]))
        for field in table["fields"]:
            writer.hidden(field["name"])
            writer.put("dIB12IiiH", field["default"], field["type"], 0, *field["classes"], field["slots"][0], -1, 0)
            writer.hidden(field["classification"])
            writer.put("20i", *field["slots"])
    for text in ("opaque", "", "old", "new"):
        writer.hidden(text)
    writer.put("I", END)


# --- Table data ---


def read_cells(reader, table):
    records, cells = reader.get("i"), {}
    for number, field in enumerate(table["fields"]):
        if not is_stored(field):
            continue
        if has(field, FREE_FORMAT) and not field["type"] & MATRIX:
            cells[field["name"]] = [reader.text() for _ in range(reader.get("i"))]
        elif field["type"] & MATRIX:
            ids = reader.column("i")
            matrices = min(records, 1) if has(field, COMMON_MATRIX) else records
            sizes, elements = [], []
            for _ in range(matrices):
                sizes.append(reader.get("i"))
                elements.append(reader.column("d") if sizes[-1] > 0 else [])
            cells[field["name"]] = {"ids": ids, "sizes": sizes, "elements": elements}
        else:
            cells[field["name"]] = reader.column(column_letter(field, number == table["key"]))
    return records, cells


def write_cells(writer, table, records, cells):
    writer.put("i", records)
    for number, field in enumerate(table["fields"]):
        if not is_stored(field):
            continue
        values = cells[field["name"]]
        if has(field, FREE_FORMAT) and not field["type"] & MATRIX:
            writer.put("i", len(values))
            for text in values:
                writer.text(text)
        elif field["type"] & MATRIX:
            writer.column("i", values["ids"])
            for size, elements in zip(values["sizes"], values["elements"]):
                writer.put("i", size)
                if size > 0:
                    writer.column("d", elements)
        else:
            writer.column(column_letter(field, number == table["key"]), values)


# --- Whole files ---


def decode(data):
    reader = Reader(data)
    if reader.bytes(len(MARKER)) != MARKER:
        raise ValueError("no snapshot")
    header = {"value": reader.get("i"), "stamp": reader.bytes(8).hex(), "version": reader.get("4i")}
    count, header["matrices"], size = reader.get("3i")
    begin = reader.at
    definition = read_definition(reader)
    if reader.at != begin + size:
        raise ValueError(f"the definition takes {reader.at - begin} bytes, not {size}")
    directory = [reader.get("i") for _ in range(count)]
    tables = {table["name"]: table for table in definition["tables"]}
    blocks = []
    for offset, end in zip(directory, directory[1:] + [len(data)]):
        reader.at = offset
        block = {"offset": offset, "table": reader.text(), "fields": reader.get("i")}
        block["dataset"] = reader.text() if reader.get("B") else ""
        block["size"] = end - reader.at - 4
        block["records"], block["cells"] = read_cells(reader, tables[block["table"]])
        if reader.at != end:
            raise ValueError(f"offset {offset}: block ends at {reader.at}, not at {end}")
        blocks.append(block)
    return {"header": header, "definition": definition, "blocks": blocks}


def encode(tables, blocks, matrices):
    definition, data = Writer(), Writer()
    write_definition(definition, tables)
    offsets = []
    begin = len(MARKER) + 40 + len(definition.data) + 4 * len(blocks)
    for table, dataset, records, cells in blocks:
        offsets.append(begin + len(data.data))
        data.text(table["name"])
        data.put("iB", len(table["fields"]), dataset != "")
        if dataset:
            data.text(dataset)
        write_cells(data, table, records, cells)
    head = struct.pack("<i8s4i3i", 7, b"stamp\0\xff!", 14, 3, 0, 12, len(blocks), matrices, len(definition.data))
    directory = struct.pack(f"<{len(offsets)}i", *offsets)
    return MARKER + head + bytes(definition.data) + directory + bytes(data.data), offsets


# --- The plant: what its cells hold, and how a reader shows them ---


def field(name, kind, *marks, default=0.0, classification="", limit=0):
    classes = [0] * 12
    for word, mask in marks:
        classes[word] |= mask
    slots = [limit, 0, 0, 0, -1] + [0] * 15
    return dict(name=name, type=kind, classes=classes, default=default, classification=classification, slots=slots)


def table(name, *fields, key=0, maximum=0):
    return dict(name=name, display_name=name.upper(), key=key, maximum=maximum, fields=list(fields))


MACHINES = table(
    "Machines",
    field("Number", INTEGER),
    field("Name", REFERENCE, FREE_FORMAT, limit=20),
    field("Speed", REAL, default=1.5),
    maximum=5000,
)
ORDERS = table(
    "Orders",
    field("Again", INTEGER, SHARED, classification="ADDITIONAL REFERENCE(Quantity)"),
    field("Number", INTEGER),
    field("Product", REFERENCE, FREE_FORMAT),
    field("Due", DATE, default=-1.0),
    field("Time", DURATION),
    field("Done", TOGGLE),
    field("Quantity", INTEGER, default=7.0),
    field("Machine", REFERENCE, DATABASE, default=-1.0, classification="DATABASE(Machines(Name))"),
    field("Pace", REFERENCE, DATABASE, default=-1.0, classification="TIP | DATABASE(Machines(Speed))"),
    field("Parent", REFERENCE, FAMILY, default=-1.0, classification="FAMILY(Product)"),
    field("Before", REFERENCE, DATABASE, default=-1.0, classification="DATABASE(Orders(Number))"),
    field("Missing", REFERENCE, DATABASE, default=-1.0, classification="DATABASE(Empty(Number))"),
    field("Steps", REAL | MATRIX),
    field("Route", REFERENCE | MATRIX, LIST, DATABASE, classification="DATABASE(Machines(Name))"),
    field("Paces", REFERENCE | MATRIX, LIST, DATABASE, classification="DATABASE(Machines(Speed))"),
    field("Fixed", REAL, OVERRIDE, default=-1.0, classification="OVERRIDE(Weight)"),
    field("Weight", REAL),
    field("Sum", REAL, CALCULATED, classification='EVALUATE "1"'),
    field("Scratch", REAL, NOT_PERSISTED, default=2.0),
    key=1,
)
EMPTY = table("Empty", field("Number", REAL), field("Note", FREE_STRING))

NAMES = {1: "Säge \U0001FA9A", 2: "Bohrer", 4: "\U00010348\U00010348 Presse"}
SPEEDS = {1: 2.25, 2: -3.0, 4: 1.5}
PLAN = [
    dict(Number=10, Product="Regal \U0001F4DA", Due=43831.4375, Time=1.25, Done=1, Quantity=5, Machine=1, Pace=2,
         Parent=-1, Before=11, Missing=1, Steps=[1.0, -2.0, 0.5], Route=[4, 99, 1], Paces=[2], Fixed=4.0, Weight=4.0),
    dict(Number=11, Product="", Due=-1.0, Time=0.0, Done=2, Quantity=-3, Machine=4, Pace=4, Parent=10, Before=99,
         Missing=-1, Steps=[], Route=[], Paces=[7, 1], Fixed=-1.0, Weight=1e12),
    dict(Number=12, Product="", Due=0.25, Time=30.5, Done=0, Quantity=7, Machine=3, Pace=-1, Parent=99, Before=10,
         Missing=-1, Steps=[1 / 3], Route=[2], Paces=[], Fixed=-1.0, Weight=0.0),
]
ARCHIVE = [
    dict(Number=11, Product="Alt", Due=2.5, Time=2 / 3, Done=1, Quantity=7, Machine=2, Pace=-1, Parent=11, Before=11,
         Missing=-1, Steps=[0.0, 0.0], Route=[1], Paces=[], Fixed=-1.0, Weight=-1.5),
    dict(Number=13, Product="Rest", Due=1.0, Time=0.5, Done=0, Quantity=1, Machine=1, Pace=1, Parent=-1, Before=-1,
         Missing=-1, Steps=[], Route=[], Paces=[1], Fixed=2.0, Weight=2.0),
]
UNSET = "-----"
GAP = " " * 13


def shown_date(value, pattern):
    return UNSET if value < 0 else (datetime.datetime(1899, 12, 30) + datetime.timedelta(days=value)).strftime(pattern)


def shown_time(value):
    minutes = round(value * 1440)
    return f"{minutes // 60} h {minutes % 60:02} min"


def joined(elements, show):
    return GAP.join(UNSET if element < 0 else show(element) for element in elements) or UNSET


def display(order, orders):
    """The cells of an order as a reader shows them, in the order of the fields."""
    products = {other["Number"]: other["Product"] for other in orders}

    def pace(key):
        return "%f" % SPEEDS[key] if key in SPEEDS else UNSET

    return {
        "Again": str(order["Quantity"]),
        "Number": str(order["Number"]),
        "Product": order["Product"],
        "Due": shown_date(order["Due"], "%Y-%m-%d %H:%M"),
        "Time": shown_time(order["Time"]),
        "Done": {0: "OFF", 1: "ON"}.get(order["Done"], UNSET),
        "Quantity": str(order["Quantity"]),
        "Machine": NAMES.get(order["Machine"], UNSET),
        "Pace": pace(order["Pace"]),
        "Parent": products.get(order["Parent"], UNSET),
        "Before": str(order["Before"]) if order["Before"] in products else UNSET,
        "Missing": UNSET,
        "Steps": joined(order["Steps"], lambda value: "%f" % value),
        "Route": joined(order["Route"], lambda key: NAMES.get(key, UNSET)),
        "Paces": joined(order["Paces"], pace),
        "Fixed": "%f" % order["Fixed"],
        "Weight": "%f" % order["Weight"],
        "Sum": "0.000000",
        "Scratch": "2.000000",
    }


def stored(order):
    """The cells of some fields as they are stored."""
    return {
        "Number": str(order["Number"]),
        "Product": order["Product"],
        "Due": "" if order["Due"] < 0 else shown_date(order["Due"], "%Y-%m-%d %H:%M:%S"),
        "Done": {0: "0", 1: "1"}.get(order["Done"], ""),
        "Machine": "%f" % order["Machine"],
        "Parent": "%f" % order["Parent"],
        "Steps": GAP.join("%f" % value for value in order["Steps"]),
        "Route": GAP.join("%f" % value for value in order["Route"]),
    }


def without_defaults(values, default):
    """A column ends with its last value that is not the default."""
    while values and values[-1] == default:
        values = values[:-1]
    return values


class MatrixIds:
    def __init__(self):
        self.next = 0

    def take(self, count):
        self.next += count
        return list(range(self.next - count, self.next))


def cells_of(table, records, ids):
    cells = {}
    for number, field in enumerate(table["fields"]):
        values = [record.get(field["name"]) for record in records]
        if has(field, FREE_FORMAT):
            cells[field["name"]] = without_defaults(values, "")
        elif field["type"] & MATRIX and is_stored(field):
            sizes = [len(value) for value in values]
            elements = [without_defaults([float(element) for element in value], 0.0) for value in values]
            cells[field["name"]] = dict(ids=ids.take(len(values)), sizes=sizes, elements=elements)
        elif is_stored(field):
            cells[field["name"]] = without_defaults(values, field["default"])
    return cells


def rows_of(orders, show, names, dataset):
    rows = []
    for order in orders:
        cells = show(order)
        row = [[name, cells[name]] for name in names if name in cells]
        rows.append([["Id" if name == "Number" and dataset else name, text] for name, text in row]
                    + ([["dataset", dataset]] if dataset else []))
    return rows


def write(path):
    machines = [dict(Number=key, Name=NAMES[key], Speed=SPEEDS[key]) for key in NAMES]
    ids, blocks = MatrixIds(), []
    for table, dataset, records in ((MACHINES, "", machines), (ORDERS, "Plan", PLAN), (ORDERS, "Archiv\U0001F5C4", ARCHIVE),
                                    (EMPTY, "", [])):
        blocks.append((table, dataset, len(records), cells_of(table, records, ids)))
    data, offsets = encode([MACHINES, ORDERS, EMPTY], blocks, 128)
    with open(path, "wb") as file:
        file.write(data)

    decoded = decode(data)
    assert [block["cells"] for block in decoded["blocks"]] == [cells for _, _, _, cells in blocks]
    names = [field["name"] for field in ORDERS["fields"]]
    both = (("Plan", PLAN), ("Archiv\U0001F5C4", ARCHIVE))
    print(json.dumps({
        "version": ".".join(map(str, decoded["header"]["version"])),
        "header_value": decoded["header"]["value"],
        "stamp": decoded["header"]["stamp"],
        "blocks": [{key: block[key] for key in ("offset", "table", "dataset", "fields", "records", "size")}
                   for block in decoded["blocks"]],
        "fields": names,
        "stored_fields": list(stored(PLAN[0])),
        "plan": rows_of(PLAN, lambda order: display(order, PLAN), names, ""),
        "archive": rows_of(ARCHIVE, lambda order: display(order, ARCHIVE), names, ""),
        "all": [row for dataset, orders in both
                for row in rows_of(orders, lambda order: display(order, orders), names, dataset)],
        "stored": [row for dataset, orders in both for row in rows_of(orders, stored, names, dataset)],
    }))


if __name__ == "__main__":
    if len(sys.argv) != 3 or sys.argv[1] != "write":
        sys.exit(__doc__)
    write(sys.argv[2])
