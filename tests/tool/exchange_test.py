"""Random records are exported, read back by other readers, and compared.

Usage: exchange_test.py TOOL SOURCE_FOLDER
"""

import csv
import io
import json
import math
import os
import random
import sqlite3
import subprocess
import sys

from running import PLANT, SOURCE, FolderTest, main, read

PARTS = """
table Units { "kg" = 1 "m" = 2 }
format Parts {
    key Number
    field Number                : INTEGER | UNIQUE
    field Name length 60        : TEXT
    field "Size; a;b;c;d;e;f;g;h;i;j;k;l;m" : REAL
    field Due                   : DATE AND TIME
    field Took                  : DURATION
    field Done                  : TOGGLE
    field Unit = 1              : REFERENCE | TABLE(Units)
    field Main                  : REFERENCE | DATABASE(Parts(Number))
    field Uses                  : MATRIX | REFERENCE | AUTO LIST(Parts(Number)) | DATABASE(Parts(Number))
    field Dates                 : MATRIX | DATE AND TIME | DATA LIST
    field Setup                 : MATRIX | DURATION | AUTO DIMENSION(From,Parts(Number),To,Notes(Code))
    field Shared                : MATRIX | REAL | AUTO DIMENSION(From,Notes(Code),To,Notes(Code)) | COMMON MATRIX
    field Double                : REAL | EVALUATE "{#Took} * 2"
    field Last length 30        : TEXT
}
format Notes {
    key Code
    field Code length 60        : TEXT
}
"""
FIELDS = ["Number", "Name", "Size; a;b;c;d;e;f;g;h;i;j;k;l;m", "Due", "Took", "Done", "Unit", "Main", "Uses", "Dates",
          "Setup", "Shared", "Last"]
NUMBERS = {FIELDS[i] for i in (0, 2, 4, 5, 6, 7)}
TEXTS = ["", "plain", " blanks around ", "comma, semicolon; bar|", '"quoted"', '"', "two\nlines", "ends with\r", "\r\n",
         "a\ttab", "𝄞 and 𠀀", "Größe", "=1+1", "007", "-1", "_x0041_", "\x01", "\uFFFE", "null", "'"]


def random_parts(seed, parts):
    """Tables by name, their heading first. The codes of the notes may stand twice."""
    chance = random.Random(seed)

    def real():
        return repr(chance.gauss(0, 1.0e6))

    def date():
        day = "%04d-%02d-%02d" % (chance.randrange(1850, 2250), chance.randrange(1, 13), chance.randrange(1, 29))
        time = "%02d:%02d:%02d" % (chance.randrange(24), chance.randrange(60), chance.randrange(1, 60))
        return chance.choice(["", day, f"{day} {time}", "1899-12-30 06:00:00", repr(chance.uniform(-1000, 90000))])

    def many(make, count, separator=";"):
        return separator.join(make() for _ in range(count))

    def key():
        return str(chance.randrange(1, parts + 1))

    def row(number):
        return [str(number), chance.choice(TEXTS), real(), date(), chance.choice(["", repr(chance.randrange(100) / 7)]),
                chance.choice("01"), chance.choice("12"), chance.choice(["", key()]), many(key, chance.randrange(4)),
                many(lambda: date() or "-1", chance.randrange(4)), many(real, 5),
                many(lambda: many(real, 5), 5, "|") if number == 1 else "", chance.choice(TEXTS)]

    return {"Parts": [FIELDS] + [row(number) for number in range(1, parts + 1)],
            "Notes": [["Code"]] + [[chance.choice(TEXTS)] for _ in range(5)]}


def csv_text(table):
    out = io.StringIO()
    csv.writer(out, quoting=csv.QUOTE_ALL, lineterminator="\n").writerows(table)
    return out.getvalue()


def csv_table(text):
    return list(csv.reader(io.StringIO(text, newline="")))


class ExchangeTest(FolderTest):
    files = {"parts.ksdef": PARTS}

    def write_tables(self, folder, tables):
        for name, table in tables.items():
            self.write(f"{folder}/{name}.csv", csv_text(table))

    def table(self, path):
        return csv_table(self.read(path))


class Export(ExchangeTest):
    def setUp(self):
        super().setUp()
        self.tables = random_parts(1, 40)
        self.write_tables("data", self.tables)

    def export(self, form, target, what="parts.ksdef --data data", told="", **more):
        line = f"export {what} -f {form} -o {target}"
        if "was built without" in self.result(line, **more).err:
            self.skipTest("a form that this build does not have")
        self.tool(line, told=told, **more)
        return target

    def assert_same_files(self, left, right):
        names = os.listdir(os.path.join(self.folder, left))
        self.assertGreater(len(names), 1)
        for name in names:
            self.assertEqual(self.read(f"{left}/{name}"), self.read(f"{right}/{name}"), name)

    def assert_same_cell(self, found, cell, field, error=0.0):
        """A cell of another form, and that of a CSV file."""
        if isinstance(found, (int, float)):
            self.assertTrue(math.isclose(found, float(cell), rel_tol=0, abs_tol=error), (field, found, cell))
        else:
            self.assertEqual(found or "", cell, field)

    def test_csv_is_read_back_to_the_same_values_and_the_same_bytes(self):
        for seed in range(2, 7):
            self.tables = random_parts(seed, 40)
            self.write_tables("data", self.tables)
            first = self.export("csv", "first")
            self.assert_same_files(first, self.export("csv", "second", "parts.ksdef --data first"))
            self.tool("import parts.ksdef --data first -o saved.kes")
            self.assert_same_files(first, self.export("csv", "third", "saved.kes"))
            # Stored values are compared as numbers, to the last bit.
            self.tool("diff parts.ksdef parts.ksdef --data-old data --data-new first")
            for name, table in self.tables.items():
                for row, exported in zip(table, self.table(f"first/{name}.csv"), strict=True):
                    for field, cell, found in zip(table[0], row, exported, strict=True):
                        if field in NUMBERS and cell and row is not table[0]:
                            self.assertEqual(float(found), float(cell), field)
                        elif field in NUMBERS or field in ("Name", "Last", "Code"):
                            self.assertEqual(found, cell, field)

    def test_the_plant_and_its_secrets_come_back(self):
        plant = f"{PLANT}/plant.ksdef --data "
        first = self.export("csv", "first", plant + PLANT + "/data")
        self.assertEqual(self.table("first/Customers.csv")[1][-1], "gentle-otter-41")
        self.assert_same_files(first, self.export("csv", "second", plant + "first"))
        self.tool(f"import {plant} first -o saved.kes")
        # A field is excluded from snapshots.
        orders = self.table("first/Orders.csv")
        column = orders[0].index("Sequence on screen")
        self.export("csv", "saved", "saved.kes")
        self.assertEqual(self.table("saved/Orders.csv"),
                         orders[:1] + [row[:column] + ["0"] + row[column + 1:] for row in orders[1:]])
        os.remove(os.path.join(self.folder, "saved/Orders.csv"))
        self.assert_same_files("saved", "first")
        self.export("csv", "locked", plant + PLANT + "/data", "Portal password is encrypted", KESTRONA_KEY=None)
        self.assertEqual(self.table("locked/Customers.csv")[1][-1], "(encrypted)")
        self.export("json", "locked.json --text", plant + PLANT + "/data", KESTRONA_KEY=None)
        self.assertNotIn("gentle-otter", self.read("locked.json"))

    def test_json_holds_what_csv_holds(self):
        self.export("csv", "csv")
        written = json.loads(self.read(self.export("json", "out.json")))
        self.assertEqual((written["version"], set(written["tables"])), (1, set(self.tables)))
        for name, found in written["tables"].items():
            rows = csv.DictReader(io.StringIO(self.read(f"csv/{name}.csv"), newline=""))
            for row, cells in zip(found, rows, strict=True):
                for field, cell in cells.items():
                    if isinstance(row[field], list):
                        self.assertEqual(bool(row[field]), bool(cell))
                    else:
                        self.assert_same_cell(row[field], cell, field)

    def test_sqlite_holds_what_csv_holds_with_types_and_keys(self):
        self.export("csv", "csv")
        self.write("out.db", "what was here before")
        self.export("sqlite", "out.db", told="Notes: keys are missing or not unique")
        database = sqlite3.connect(os.path.join(self.folder, "out.db"))
        self.addCleanup(database.close)

        def query(text):
            return database.execute(text).fetchall()

        table = self.table("csv/Parts.csv")
        columns = ", ".join(f'"{field}"' for field in table[0])
        for found, row in zip(query(f"SELECT {columns} FROM Parts ORDER BY rowid"), table[1:], strict=True):
            for cell, expected, field in zip(found, row, table[0]):
                self.assert_same_cell(cell, expected, field)
        self.assertEqual(query("SELECT name, pk FROM pragma_table_info('Parts') WHERE name IN ('Number', 'Main')"),
                         [("Number", 1), ("Main", 0)])
        self.assertEqual(query('SELECT "table", "from", "to" FROM pragma_foreign_key_list(\'Parts\')'),
                         [("Parts", "Main", "Number")])
        self.assertEqual(query("PRAGMA foreign_key_check") + query("PRAGMA integrity_check"), [("ok",)])
        self.assertEqual(query("SELECT DISTINCT typeof(Took) t FROM Parts ORDER BY t"), [("null",), ("real",)])
        self.assertEqual(query("SELECT COUNT(*) FROM Notes"), [(5,)])

    def test_xlsx_holds_what_csv_holds(self):
        self.export("csv", "csv")
        self.export("xlsx", "out.xlsx --table Parts")
        reader = [sys.executable, os.path.join(SOURCE, "tests", "oracles", "xlsx_cells.py"), "out.xlsx"]
        sheet = json.loads(subprocess.run(reader, cwd=self.folder, capture_output=True, check=True).stdout)["Parts"]
        self.assertEqual((sheet["frozen"], sheet["filter"], sheet["bold"]), (1, "A1:N41", True))
        table = self.table("csv/Parts.csv")
        for found, row in zip(sheet["rows"], table, strict=True):
            # A calculated field stands before the last one.
            for cell, expected, field in zip(found + [None] * len(row), row[:-1], table[0]):
                if field == "Due" and len(expected) > 19:
                    self.assertEqual(cell[:16], expected[:16])
                else:
                    self.assert_same_cell(cell, expected.replace("\uFFFE", "\uFFFD"), field, 1.0e-8)


STOCK = """format Stock {
    key Code
    field Code length 8 : TEXT
    field Amount        : REAL
    field Due           : DATE AND TIME
    field Note length 9 : TEXT
}
"""
HEADING = ["Table", "Change", "Key", "Field", "Old", "New"]


def differences(old, new):
    """What `diff` finds, by looking through all rows for each one."""
    heading, new = old[0], new[1:]
    removed, changed = [], []
    for row in old[1:]:
        partner = next((other for other in new if other[0] == row[0]), None)
        if partner is None:
            removed.append(["Stock", "removed", row[0], "", "", ""])
        else:
            changed += [["Stock", "changed", row[0], field, was, now]
                        for field, was, now in zip(heading, row, partner) if was != now]
            new.remove(partner)
    return [HEADING] + removed + changed + [["Stock", "added", row[0], "", "", ""] for row in new]


class Diff(ExchangeTest):
    files = {"old.ksdef": STOCK, "new.ksdef": STOCK, **ExchangeTest.files}

    def diff(self, more="", code=1, form="csv"):
        return self.tool(f"diff old.ksdef new.ksdef --data-old old --data-new new -o {form} {more}", code)

    def test_it_finds_what_looking_through_all_rows_finds(self):
        chance = random.Random(11)

        def row():  # few keys, so that many stand twice
            return [f"k{chance.randrange(60)}", f"{chance.randrange(4)}.5",
                    chance.choice(["", "2026-03-02", "2026-03-02 06:00:00"]),
                    chance.choice(["", "x", 'y\n"z"', "𝄞"])]

        for edits in range(12):
            old = [row() for _ in range(chance.randrange(1, 60))]
            new = chance.sample(old, len(old))
            for _ in range(edits):
                new.insert(chance.randrange(len(new) + 1), row())
                new.pop(chance.randrange(len(new)))
            old, new = ([["Code", "Amount", "Due", "Note"]] + rows for rows in (old, new))
            self.write_tables("old", {"Stock": old})
            self.write_tables("new", {"Stock": new})
            expected = differences(old, new)
            self.assertEqual(csv_table(self.diff(code=int(len(expected) > 1))), expected, edits)

    def test_it_finds_a_single_change_in_every_kind_of_field(self):
        tables = random_parts(12, 30)
        self.write_tables("old", tables)
        row = tables["Parts"][17]
        for field, value in {"Name": "other", "Due": "2031-01-01", "Took": "99", "Done": str(1 - int(row[5])),
                             "Unit": str(3 - int(row[6])), "Main": "31", "Uses": "1;2;3;4",
                             "Dates": "2031-01-01;-1;-1;-1", "Setup": "1;2;3;4;5"}.items():
            column = FIELDS.index(field)
            edited = tables["Parts"][:17] + [row[:column] + [value] + row[column + 1:]] + tables["Parts"][18:]
            self.write_tables("new", {**tables, "Parts": edited})
            found = csv_table(self.tool("diff parts.ksdef parts.ksdef --data-old old --data-new new -o csv", 1))
            self.assertEqual([cells[:4] + cells[5:] for cells in found[1:]], [["Parts", "changed", "17", field, value]])

    def test_tables_and_fields_of_one_side_and_small_differences(self):
        self.write("old.ksdef", STOCK + "format Extra {\n key Number\n field Number : INTEGER | UNIQUE\n}\n")
        self.write("new.ksdef", STOCK.replace("Note", "Memo"))
        self.write("old/Stock.csv", "Code,Amount,Due\na,1.5,2026-03-02\nb,2,\nb,2,\n")
        self.write("new/Stock.csv", "Code,Amount,Due\na,1.75,2026-03-02 06:00:00\nb,2,1899-12-29 06:00:00\n")
        near = ["Stock,changed,a,Amount,1.5,1.75", "Stock,changed,a,Due,2026-03-02,2026-03-02 06:00:00"]
        # An unset date is near to no other.
        far = ["Stock,changed,b,Due,,1899-12-29 06:00:00", "Extra,table removed,,,,"]
        begin = [",".join(HEADING), "Stock,field removed,,Note,,", "Stock,field added,,Memo,,", "Stock,removed,b,,,"]
        self.assertEqual(self.diff().split("\n")[:-1], begin + near + far)
        self.assertEqual(self.diff("--tolerance 0.25").split("\n")[:-1], begin + far)
        self.assertEqual(self.diff("--summary --table Stock").split("\n")[1], "Stock,3,2,1,0,2,3,1,1")
        self.assertEqual(json.loads(self.diff(form="json"))["rows"][3]["New"], "1.75")
        self.tool("diff old.ksdef new.ksdef --data-old old --data-new new", 1,
                  "Stock: 1 records of the old side have the key of an earlier one")

    def test_a_snapshot_is_a_side_and_a_broken_one_is_no_difference(self):
        self.write("new/Stock.csv", "Code,Amount\na,1\n")
        self.tool("diff old.ksdef new.ksdef")
        self.tool("import old.ksdef --data new -o old.kes")
        self.tool("diff old.kes new.ksdef --data-new new")
        self.tool("diff old.kes new.ksdef", 1)
        self.write("broken.kes", read(self.folder, "old.kes")[:-9])
        self.tool("diff broken.kes new.ksdef", 4)


main()
