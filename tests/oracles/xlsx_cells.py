"""Prints the sheets of a workbook as JSON: {NAME: {"frozen": rows, "filter": range, "bold": heading is bold, "rows": [[cell]]}}.

A cell is null, a number, a text, or the ISO text of a date. Reads the XML itself.
"""

import datetime
import json
import re
import sys
import xml.etree.ElementTree as ElementTree
import zipfile

MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"
RELATION = "{http://schemas.openxmlformats.org/officeDocument/2006/relationships}id"


def read_styles(package):
    root = ElementTree.fromstring(package.read("xl/styles.xml"))
    formats = {f.get("numFmtId"): f.get("formatCode") for f in root.iter(MAIN + "numFmt")}
    bold = [font.find(MAIN + "b") is not None for font in root.find(MAIN + "fonts")]
    return [(formats.get(xf.get("numFmtId"), ""), bold[int(xf.get("fontId"))]) for xf in root.find(MAIN + "cellXfs")]


def unescape(text):
    return re.sub("_x([0-9A-Fa-f]{4})_", lambda match: chr(int(match.group(1), 16)), text)


def date_text(value, code):
    # A workbook holds 16 digits of a number, which are too few for the last microseconds.
    moment = datetime.datetime(1899, 12, 30) + datetime.timedelta(milliseconds=round(value * 86400000))
    if "y" not in code:
        return moment.strftime("1899-12-30 %H:%M:%S")
    return moment.strftime("%Y-%m-%d %H:%M:%S" if "h" in code else "%Y-%m-%d")


def cell_value(cell, styles):
    if cell.get("t") == "inlineStr":
        return unescape("".join(part.text or "" for part in cell.iter(MAIN + "t")))
    value = cell.find(MAIN + "v")
    if value is None:
        return None
    code = styles[int(cell.get("s", "0"))][0]
    number = float(value.text)
    return date_text(number, code) if code else number


def column_number(reference):
    number = 0
    for letter in re.match("[A-Z]+", reference).group():
        number = number * 26 + ord(letter) - ord("A") + 1
    return number - 1


def read_sheet(root, styles):
    rows = []
    for row in root.iter(MAIN + "row"):
        cells = {column_number(cell.get("r")): cell_value(cell, styles) for cell in row}
        rows += [[]] * (int(row.get("r")) - 1 - len(rows))
        rows.append([cells.get(column) for column in range(max(cells, default=-1) + 1)])
    heading = root.find(f"{MAIN}sheetData/{MAIN}row")
    pane = root.find(f".//{MAIN}pane")
    return {
        "frozen": int(pane.get("ySplit")) if pane is not None and pane.get("state") == "frozen" else 0,
        "filter": root.find(MAIN + "autoFilter").get("ref"),
        "bold": all(styles[int(cell.get("s", "0"))][1] for cell in heading),
        "rows": rows,
    }


def main():
    with zipfile.ZipFile(sys.argv[1]) as package:
        styles = read_styles(package)
        relations = ElementTree.fromstring(package.read("xl/_rels/workbook.xml.rels"))
        targets = {relation.get("Id"): "xl/" + relation.get("Target") for relation in relations}
        book = ElementTree.fromstring(package.read("xl/workbook.xml"))
        sheets = {
            sheet.get("name"): read_sheet(ElementTree.fromstring(package.read(targets[sheet.get(RELATION)])), styles)
            for sheet in book.iter(MAIN + "sheet")
        }
    json.dump(sheets, sys.stdout)


main()
