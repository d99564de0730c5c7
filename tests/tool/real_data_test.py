"""A real set of data comes back as it was. It is no part of the sources.

Usage: real_data_test.py TOOL SOURCE_FOLDER
"""

import csv
import io
import os
import unittest

from running import SOURCE, main, run

DATA = os.path.join(SOURCE, "..", "shared", "data", "adventureworks")
DEFINITION = os.path.join(SOURCE, "examples", "adventureworks", "adventureworks.ksdef")
FOLDERS = ["--data", os.path.join(DATA, "derived-csv"), "--data", os.path.join(DATA, "raw-tsv-2017")]


def source(table):
    with open(os.path.join(DATA, "derived-csv", f"Production.{table}.csv"), encoding="utf-8-sig", newline="") as file:
        return list(csv.DictReader(file))


def same(shown, cell):
    """The same value, however many decimals or clock digits it is written with."""
    return cell in (shown, shown + " 00:00:00") or (shown and cell and float(shown) == float(cell))


@unittest.skipUnless(os.path.isdir(DATA), "the data is not there")
class RealData(unittest.TestCase):
    def rows(self, table):
        result = run("show", DEFINITION, *FOLDERS, "-o", "csv", table)
        self.assertEqual(result.code, 0, result.err)
        self.assertNotIn("no target", result.err)
        return list(csv.DictReader(io.StringIO(result.out, newline="")))

    def test_every_work_order_and_routing_comes_back(self):
        for table, count in (("WorkOrder", 72591), ("WorkOrderRouting", 67131)):
            original = source(table)
            self.assertEqual(len(original), count)
            for shown, row in zip(self.rows(table), original, strict=True):
                wrong = [name for name in shown if name in row and not same(shown[name], row[name])]
                self.assertEqual(wrong, [], row)


main()
