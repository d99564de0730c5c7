"""What is told about definitions and files: findings, schemas, pictures, reports, and the examples of the documents.

Usage: reports_test.py TOOL SOURCE_FOLDER AUDIT_LOG, a program that writes the audit log of docs/file-formats.md
"""

import base64
import json
import os
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

from running import PLANT, SOURCE, FolderTest, cases, main, read, run

PLANT_FILE = os.path.join(PLANT, "plant.ksdef")
ADVENTURE = os.path.join(SOURCE, "examples", "adventureworks", "adventureworks.ksdef")


def document(name):
    return read(SOURCE, "docs", name).decode()


def documented_rules():
    """Severity and definitions by the name of the rule."""
    return {name: (severity.lower(), re.findall(r"```ksdef\n(.*?)```", text, re.DOTALL)) for name, severity, text in
            re.findall(r"^## (\S+)\n\n(\w+)\.(.*?)(?=^## |\Z)", document("lint-rules.md"), re.DOTALL | re.MULTILINE)}


# What must not be reported although it comes near.
RIGHT = r"""define Unused = 4
help 3 "shown by an exact text"
table Words { "a" = 1 }
format Plant "The works" {
    key Number
    field Number : INTEGER | UNIQUE | SYSTEMDB
    field "Hash#1" : REAL | HIDDEN
    field Sum : REAL | EVALUATE "{#Hash#1} + FUNC_MAX(({#Number} > 1), (2 && 3))"
    field Exact classification "INTEGER | HELPPOPUPID(3) | TABLE(Words)"
    field Several : INTEGER | REMOTE(Plant(Number)) | REMOTE(Plant(Sum)) | STRING_DEF "Sum"
    field Label : TEXT | EVALUATE "{$Number} > 1 && so on"
    field Late : DURATION | FORMAT(4.1)
    field Low : INTEGER | SUBSTITUTE(1->"low") | SUBSTITUTX(1->"low") | SUBSTITUTX(1->"small") | STRING_DEF "small"
    field Own : REFERENCE | DATABASE(Plant(Number)) | LOOKUP SOURCE(Other(Number))
    field Matrix = 3 : MATRIX | REAL | AUTO DIMENSION(A,Plant(Number),B,Other(Number))
    field Texts : MATRIX | REFERENCE | FREE FORMAT | STRING STORAGE(Other(Name)) | DATA LIST
}
format Other {
    associated Plant
    key Number
    field Number : INTEGER | UNIQUE | INHERIT FROM PARENT
    field Name length 5 : TEXT | FF_STRING_DEF "none"
}
"""
# Failures of the resolution: the line, the field with the failure, its declaration.
FAILURES = r"""
4 | X | field X : MATRIX | RELATED LIST(Number)
4 | X | field X : REAL | LOOKUP SOURCE(Orders(Number)) | LOOKUP UPDATE(Number)
4 | X | field X : REFERENCE | DATABASE(Files(Number))
5 | X | field "It's" : MATRIX | AUTO RESTRICT(Number)\n field X : MATRIX | ASSOCIATE(It's)
4 | X | field X : INTEGER | UPDATE REFERENCE(X) | SOURCE(Orders(Number)) | UNCHECKED
"""


class Lint(FolderTest):
    def check(self, definition, form="json"):
        self.write("a plant.ksdef", definition)
        self.file = os.path.join(self.folder, "a plant.ksdef")
        result = self.result(f"check '{self.file}' -o {form}")
        self.assertEqual(result.err, "")
        return json.loads(result.out)

    def test_each_documented_example_is_found_and_its_mended_form_is_not(self):
        for rule, (severity, definitions) in documented_rules().items():
            wrong, mended = map(self.check, definitions)
            found = [finding for finding in wrong["findings"] if finding["rule"] == rule]
            self.assertTrue(found, rule)
            for finding in found:
                self.assertEqual((finding["severity"], finding["file"]), (severity, self.file), rule)
                self.assertTrue(finding["line"] >= 1 and finding["message"] and finding["hint"], rule)
                self.assertRegex(finding["code"], "^KES-" if rule == "resolution" else f"^{rule}$")
            self.assertEqual(mended["errors"], 0, mended)
            self.assertNotIn(rule, [finding["rule"] for finding in mended["findings"]])

    def test_what_is_right_is_passed_over(self):
        report = self.check(RIGHT)
        self.assertEqual((report["findings"], report["formats"], report["fields"]), ([], 2, 13))

    def test_failures_of_the_resolution_point_at_their_field(self):
        for line in FAILURES.strip().split("\n"):
            number, field, declaration = line.split(" | ", 2)
            declaration = declaration.replace("\\n", "\n")
            report = self.check(f"format Orders {{\n key Number\n field Number : INTEGER | UNIQUE\n {declaration}\n}}\n"
                                "format Files {\n extension dat\n key Number\n field Number : INTEGER | UNIQUE\n}\n")
            self.assertEqual([(finding["line"], finding["format"], finding["field"]) for finding in report["findings"]
                              if finding["rule"] == "resolution"], [(int(number), "Orders", field)], report)

    def test_sarif_logs_hold_together(self):
        documented = documented_rules()
        for _, definitions in documented.values():
            log = self.check(definitions[0], "sarif")
            self.assertEqual(log["version"], "2.1.0")
            self.assertTrue(log["$schema"].endswith("sarif-2.1.0.json"))
            [each] = log["runs"]
            rules = each["tool"]["driver"]["rules"]
            self.assertEqual(each["tool"]["driver"]["name"], "kestrona")
            self.assertEqual(sorted(rule["id"] for rule in rules), sorted(documented))
            self.assertTrue(all(rule["shortDescription"]["text"] and rule["help"]["text"] for rule in rules))
            self.assertTrue(each["results"])
            for result in each["results"]:
                rule = rules[result["ruleIndex"]]
                self.assertEqual(rule["id"], result["ruleId"])
                self.assertEqual(rule["defaultConfiguration"]["level"], result["level"])
                self.assertTrue(result["message"]["text"])
                place = result["locations"][0]["physicalLocation"]
                self.assertRegex(place["artifactLocation"]["uri"], "^file:///.*/a%20plant.ksdef$")
                self.assertTrue(place["region"]["startLine"] >= 1 and place["region"]["startColumn"] >= 1)

    def test_findings_come_in_reading_order_and_decide_the_exit_code(self):
        self.write("more.ksdef", "format B {\n key N\n field N : INTEGER\n}\n")
        self.write("a.ksdef", 'include "more.ksdef"\nformat A {\n key N\n field N : INTEGER\n field T : TEXT\n}\n')
        self.assertEqual(" ".join(re.findall(r"(?m)^(\w+\.ksdef:[\d:]*) ", self.tool("check a.ksdef"))),
                         "a.ksdef:2:8: a.ksdef:4:8: a.ksdef:5:8: more.ksdef:1:8: more.ksdef:3:8: a.ksdef:")
        self.tool("check --strict a.ksdef", 1)
        self.tool("check --strict " + PLANT_FILE)
        self.tool("check --strict " + ADVENTURE)
        for definition, code in [
                ("colour red\n", " [syntax]\n"), ("field N : INTEGER\n", "[KES-21039]"),
                ('key N\n field N : INTEGER\n field P : REAL | EVALUATE "1 +"\n', "[KES-4001]\n"),
                ("key N\n field N : INTEGER\n field T : REFERENCE | DATABASE(A(N)) | FREE FORMAT\n", "[KES-29012]\n")]:
            self.write("wrong.ksdef", "format A {\n " + definition + "}\n")
            self.assertIn(code, self.result("schema wrong.ksdef").err)
            self.tool("check wrong.ksdef", 1)


# What resolution made of fields of the plant.
SHEETS = """
Plant Speeds               | Dimensions=Products(Number) x Resources(Number) (Product, Work centre)
Plant 'Bar label'          | REMOTE=Orders(Due date) REMOTE=Operations(Number) REMOTE_DEF=Orders(Number)
Plant Number               | Key=yes
Calendars Crews            | ASSOCIATE=Shifts
Calendars Shifts           | Type=list of references
Products Changeover        | MATRIX DEFAULT=Usual cleaning MATRIX MINIMUM=Least cleaning
Products Recipe            | Type=text, encrypted Length=200
Routings 'Cooling time'    | switched, at first on, by=Cooling
Routings Resources         | AUTO LIST=Resources(Number) AUTO RESTRICT=Group
Routings Preferred         | RELATED LIST=Resources
Resources Group            | FAMILY=Name
Resources Manual           | Name in dialogs=Manual Type=button
Orders 'Customer name'     | DATABASE=Customers(Name) ADDITIONAL REFERENCE=Customer
Orders 'Customer code'     | LOOKUP UPDATE=Customers(Code)
Orders Price               | SOURCE=Products(Price) UPDATE REFERENCE=Product
Orders Batches             | AUTO SPLIT=Quantity
Orders 'Planned start'     | OVERRIDE=Earliest start
Orders Remarks             | STRING STORAGE=Remarks(Text)
Operations Resource        | RELATED FIELD=Step entry of=Routings(Resources)
Operations 'Due date'      | ORDER MATCH=Orders(Due date)
Operations Colour          | MATCH FIELD=Products(Colour)
Operations 'Running order' | SOURCE ORDER=Orders(Number) Class=SOURCE ORDER
Operations Done            | EXPAND MATCH=Orders(Number)
Operations Setup           | SETUP OVERRIDE MATCH=Products(Changeover)
Operations Cleaning        | MATCH DURATION FIELD=Routings(Fixed time) MATCH END DURATION FIELD=Routings(Cooling time)
"""
# A definition whose texts need care, and what stands in its dictionary.
AWKWARD = r"""define MOST = 12
table Units { "a|b" = 1 }
help 4 "Helps"
format "A<b>&" "Say \"x\"" {
    key Number
    field Number : INTEGER | UNIQUE | HELPPOPUPID(4)
    field "R&D" : REFERENCE | DATABASE(A<b>&(Number))
    field Line : REFERENCE | DATABASE(Lines(Number))
    field Unit : REFERENCE | TABLE(Units)
    field Low length 3 : TEXT | HELP TEXT(As *told*)
}
format Lines "Rows" {
    key Number
    field Number : INTEGER | UNIQUE
    field Level : INTEGER | SUBSTITUTE(1->"low") | HIDDEN IF "{#Number} == 2"
}
"""
DICTIONARY = [
    "# Data dictionary of awkward.ksdef\n", "\n## Lines\n\n- Name: Rows\n- Key: Number\n- Used by: ",
    "| Number | integer | 1 |  | Helps; key; unique |\n", "| Line | reference |  | Lines(Number) |  |\n",
    "| Low | text, up to 3 characters |  |  | As \\*told\\* |\n",
    "| Level | integer | 0 |  | hidden if {\\#Number} == 2; 1 = low |\n", "\n## Table Units\n", "| a\\|b | 1 |\n",
    "\n## Constants\n", "| MOST | 12 |\n"]


class Schemas(FolderTest):
    files = {"awkward.ksdef": AWKWARD}

    def test_a_sheet_tells_what_resolution_made_of_a_field(self):
        for field, told in cases(SHEETS):
            sheet = " ".join(f"{row['Property']}={row['Value']}" for row in self.json(f"schema {PLANT_FILE} {field}"))
            self.assertIn(f" {told} ", f" {sheet} ")

    def test_a_dictionary_names_every_format_field_table_and_constant(self):
        self.tool("docs awkward.ksdef -f d.md")
        text = self.read("d.md")
        for told in DICTIONARY:
            self.assertIn(told, text)

    def test_pictures_are_well_formed_and_show_every_format(self):
        for path, formats in (("awkward.ksdef", 2), (PLANT_FILE, 11)):
            group = ElementTree.fromstring(self.tool("graph " + path)).find("{*}g")
            self.assertEqual(len(group.findall("{*}rect")), formats)
            texts = "\n".join(text.text for text in group.findall("{*}text"))
            for told in ('A<b>&\nSay "x"\n5 fields, key Number\n\u21bb R&D\n', "\nRows\n2 fields"):
                self.assertEqual(told in texts, path == "awkward.ksdef", texts)

    def test_pictures_have_the_form_that_the_name_of_the_file_or_a_flag_tells(self):
        for name, flag, start in (("a.svg", "", "<svg"), ("b.dot", "", "digraph"), ("c.gv", "", "digraph"),
                                  ("d", "--dot", "digraph"), ("e.dot", "--svg", "<svg")):
            self.assertEqual(self.tool(f"graph {PLANT_FILE} -f {name} {flag}"), "")
            self.assertTrue(self.read(name).startswith(start), name)
        self.assertIn('"Orders" -> "Customers" [label="Customer, Customer name", style=solid];', self.read("d"))


TYPES = {"object": dict, "array": list, "string": str, "number": (int, float), "integer": int,
         "boolean": bool, "null": type(None)}
KNOWN = {"$schema", "title", "type", "enum", "required", "properties", "additionalProperties", "items"}


def problems(value, schema, place="$"):
    """Yields a line for each place where the value is not as the schema says."""
    assert set(schema) <= KNOWN, f"{place}: the checker does not know {set(schema) - KNOWN}"
    types = schema.get("type", list(TYPES))
    types = [types] if isinstance(types, str) else types
    if not any(isinstance(value, TYPES[name]) and (name == "boolean") == isinstance(value, bool) for name in types):
        yield f"{place}: {value!r} is none of {types}"
    if "enum" in schema and value not in schema["enum"]:
        yield f"{place}: {value!r} is none of {schema['enum']}"
    if isinstance(value, list):
        for index, item in enumerate(value):
            yield from problems(item, schema.get("items", {}), f"{place}[{index}]")
    if isinstance(value, dict):
        for name in schema.get("required", []):
            if name not in value:
                yield f"{place}: no {name}"
        for name, item in value.items():
            inner = schema.get("properties", {}).get(name, schema.get("additionalProperties", {}))
            if inner is False:
                yield f"{place}: {name} is not described"
            else:
                yield from problems(item, inner, f"{place}.{name}")


class Reports(FolderTest):
    def test_json_is_as_its_schema_says(self):
        shutil.copytree(PLANT, self.folder, dirs_exist_ok=True)
        orders = self.read("data/Orders.csv").split("\n")
        self.write("edited/Orders.csv", "\n".join([orders[0], orders[2].replace("201", "202"), *orders[3:]]))
        self.write("bad.ksdef", "format A {\n colour red\n}\n")
        self.tool("import plant.ksdef --data data -o plant.kes")
        self.tool("compile plant.ksdef -o plant.cnf")
        diff = "diff plant.kes plant.ksdef --data-new data --data-new edited -o json"
        for name, line in [
                ("check", "check plant.ksdef -o json"), ("check", "check bad.ksdef -o json"),
                ("info", "info plant.kes -o json"), ("info", "info plant.cnf -o json"),
                ("tables", "info plant.kes --tables -o json"), ("diff", diff), ("diff-summary", diff + " --summary"),
                ("export", "export plant.kes -f json -o -")]:
            value = json.loads(self.result(line).out)
            self.assertEqual(list(problems(value, json.loads(document(f"schemas/{name}.json")))), [], line)
            self.assertTrue(value.get("rows", value.get("findings", value.get("tables"))), line)

    def test_the_checker_finds_faults(self):
        schema = {"type": "object", "required": ["a"], "additionalProperties": False,
                  "properties": {"a": {"type": "array", "items": {"enum": [1, "x"]}}}}
        for value, faults in [({"a": [1, "x"]}, 0), ({"a": [2]}, 1), ({}, 1), ({"a": [], "b": 1}, 1), ([], 1),
                              ({"a": "x"}, 1)]:
            self.assertEqual(len(list(problems(value, schema))), faults, value)


class Documents(FolderTest):
    files = {"a.ksdef": """
format Orders {
    key Number
    field Number          : INTEGER | UNIQUE
    field Quantity        : INTEGER
    field Price           : REAL
    field Code length 20  : TEXT
    field Name length 20  : TEXT
    field Total           : REAL | EVALUATE "{#Quantity} * {#Price}"
}
""", "Orders.csv": "Number,Quantity,Price,Code,Name\n7,12,2.5,12.5,bolt M8\n"}

    def test_examples_of_expressions_have_the_values_that_are_given(self):
        tables = re.findall(r"(?m)^\| expression \| value \|.*\n((?:\|.*\n)+)", document("expression-language.md"))
        examples = [tuple(cell.replace("\\|", "|") for cell in example)
                    for table in tables for example in re.findall(r"(?m)^\| `(.*?)` \| `(.*?)` \|", table)]
        self.assertEqual(len(examples), sum(table.count("\n") - 1 for table in tables))
        self.assertGreater(len(examples), 90)
        row = run("show", "a.ksdef", "--data", ".", "Orders", "-o", "jsonl", *(
            word for number, (expression, value) in enumerate(examples) if value != "error"
            for word in ("--add", f"E{number}={expression}")), folder=self.folder)
        row = json.loads(row.out)
        for number, (expression, value) in enumerate(examples):
            if value == "error":
                wrong = run("eval", "a.ksdef", "--data", ".", "Orders", "--", expression, folder=self.folder)
                self.assertEqual(wrong.code, 2, expression)
            else:
                shown = row[f"E{number}"]
                # A number that JSON does not have is written as a text.
                bare = isinstance(shown, str) and value[0] != '"'
                self.assertEqual(shown if bare else json.dumps(shown), value, expression)

    def test_the_bytes_of_files_are_those_that_are_shown(self):
        """A line has an offset (a negative one counts from the end), bytes, and perhaps a remark behind two blanks.
        Lines follow each other without a gap unless "..." stands between; ".." is a byte of the time or the version."""
        page = document("file-formats.md")
        shutil.copytree(os.path.join(SOURCE, "docs", "examples", "tiny"), self.folder, dirs_exist_ok=True)
        for line in ("compile tiny.ksdef -o tiny.cnf", "compress tiny.cnf tiny.z",
                     "import tiny.ksdef --data data -o tiny.kes", "translate extract tiny.ksdef"):
            self.tool(line)
        secret = re.search(r"```encrypted\n(.*?)```", page, re.DOTALL).group(1)
        self.assertEqual(self.tool("decrypt", text=secret, KESTRONA_KEY="open sesame"), "S\xe4ge\n")
        self.write("secret", base64.b64decode(secret))
        self.write("Audit.log", subprocess.run([sys.argv[3]], capture_output=True, check=True).stdout)
        self.assertRegex(self.tool("audit show Audit.log -o csv"),
                         r"\n1,Orders,Created,planner,[^,]+,Key,,7.00\n1,Orders,Created,planner,[^,]+,Note,,\n$")
        shown = set()
        for name, block in re.findall(r"```hex (\S+)\n(.*?)```", page, re.DOTALL):
            data, end = read(self.folder, name), None
            shown.add(name)
            for line in block.splitlines():
                if line.endswith("..."):
                    end = None
                    continue
                offset, digits = re.match(r" *(-?\d+)  ((?:[0-9a-f.]{2} ?)+)(?: |$)", line).groups()
                start = int(offset) + (len(data) if offset.startswith("-") else 0)
                self.assertIn(end, (None, start), line)
                end = start + len(digits.split())
                found = data[start:end].hex(" ")
                if name == "tiny.kes" and 26 <= start < 50:
                    found = re.sub(r"\w\w", "..", found)
                self.assertEqual(digits.strip(), found, f"{name}: {line}")
        self.assertEqual(shown, {"tiny.cnf", "tiny.z", "tiny.kes", "KSSERVER.LST", "Audit.log", "secret"})

main()
