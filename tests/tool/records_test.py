"""Records are read from CSV files and printed: conditions, orders, paths, expressions, display texts.

Usage: records_test.py TOOL SOURCE_FOLDER
"""

import json
import os
import re
import resource
import signal
import subprocess

from running import ENVIRONMENT, PLANT, TOOL, FolderTest, cases, main, read

SHOP = """
format Makers {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
}
format Products {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
    field Maker           : REFERENCE | DATABASE(Makers(Number))
}
format Works {
    key Number
    field Number          : INTEGER | UNIQUE
    field Town length 20  : REFERENCE | FREE FORMAT
    field Prices          : MATRIX | REAL | AUTO DIMENSION(P,Products(Number),M,Makers(Number))
}
format Kits {
    key Code
    field Code length 5   : TEXT
    field "Part of"       : REFERENCE | FAMILY(Code)
    field Uses            : MATRIX | REFERENCE | AUTO LIST(Products(Number)) | DATABASE(Products(Number))
}
format Orders "Works orders" {
    key Number
    field Number          : INTEGER | UNIQUE
    field "Part of"       : REFERENCE | FAMILY(Number)
    field Product         : REFERENCE | DATABASE(Products(Number))
    field "Product.Name"  : REAL
    field Quantity = 1    : REAL
    field "Up=Down"       : INTEGER
    field Note length 5   : REFERENCE | FREE FORMAT
    field Supplier        : REFERENCE | DATABASE(Makers(Number))
    field Works           : REFERENCE | DATABASE(Works(Number))
    field Due = -1        : DATE AND TIME
    field Price           : REAL
    field Twice           : REAL | EVALUATE "{#Quantity} * 2"
}
"""
# Product 9 is not there.
ORDERS = """Number,Part of,Product,Product.Name,Quantity,Note,Supplier,Works,Due,Price
10,,2,1.5,5,a10,7,2,2026-11-21 07:30:00,2.5
11,10,3,0,1,a9,8,2,,1
12,,2,0,5,b,8,2,2026-11-22,0
13,10,,0,5,a,7,,2026-12-01,3
14,12,9,0,2,a10,7,2,,0
"""
# The orders that are shown; "wrong" is wrong usage.
CHOICES = """
--where Quantity=5                                  | 10 12 13
--where "Quantity>=2" --where Product=2             | 10 12
--where "Due<2026-12-01"                            | 10 12
--where Due=                                        | 11 14
--where "Note = b"                                  | 12
--where "Note>a"                                    | 10 11 12 14
--where "Number<=99" --limit 1                      | 10
--where "Number>99"                                 |
--where Twice=10                                    | 10 12 13
--where "Quantity>4" --where "{#Price} == 0"        | 12
--where "{#Quantity} - 5"                           | 11 14
--order Quantity                                    | 11 14 10 12 13
--order Quantity:desc                               | 10 12 13 14 11
--order Quantity:asc,Number:desc                    | 11 14 13 12 10
--order Note                                        | 13 11 10 14 12
--order Note:desc,Number:desc                       | 12 14 10 11 13
--order Quantity --group-family                     | 11 10 13 14 12
--group-family                                      | 10 11 13 12 14
--order Quantity:desc --where "Number>10" --limit 3 | 12 13 14
--order Product.Name:desc --limit 1                 | 10
--order Quantity --where "Up=Down = 0" --limit 1    | 11
--where Colour=3                                    | wrong
--where Quantity=many                               | wrong
--order Quantity:up                                 | wrong
--order Product.Maker                               | wrong
--order :desc                                       | wrong
--order ""                                          | wrong
--columns Product.Nix                               | wrong
--columns Quantity.Name                             | wrong
--columns Product.Maker.Name.Name                   | wrong
--columns Works.Prices.Number                       | wrong
--columns Product..Maker                            | wrong
"""
# The key and the value of each record.
VALUES = """
"{#Quantity} * {#Price}"                             | 10,12.5 11,1 12,0 13,15 14,0
"{#Twice} + 0.5" --limit 2                           | 10,10.5 11,2.5
1 --where "Quantity>4" --order Note                  | 13,1 10,1 12,1
'"<{$Note}>"' --limit 2                              | 10,<a10> 11,<a9>
--text "{#Number}: {$Note}" --limit 1                | 10,10: a10
--text "" --limit 1                                  | 10,
--limit 2 -- "-{#Quantity}"                          | 10,-5 11,-1
"FUNC_SQRT(-1) == 0" --where "FUNC_LN(-1)" --limit 1 | 10,0
"""
# Wrong texts, and what is said of them.
WRONG = [
    ('eval . Orders "{#Quantity} x 2"', "error: Unexpected symbol ' '\n    {#Quantity} x 2\n                ^\n"),
    ('eval . Orders "1 + FUNC_FOO(1)"', "error: Unresolved Function Name\n    1 + FUNC_FOO(1)\n        ^\n"),
    ('eval . Orders "{#Colour}"', "'Colour'\n    {#Colour}\n      ^\n"),
    ('eval . Orders --text "a {#Colour}"', "'Colour'\n    ~a {#Colour}~\n         ^\n"),
    ('eval . Orders ""', "error: Empty Expression String\n"),
    ('show . Orders --where "({#Price}"', "no expression: ')' Missing\n    ({#Price}\n             ^\n"),
    ("show . Orders --where '\"{$Note}\"'", "is a text, which is never true"),
    ('show . Orders --add "Half={#Price}/"', "no expression: Expecting Valid Expression\n    {#Price}/\n"),
    ("show . Orders --add Half", "--add 'Half' is not of the form NAME=EXPRESSION"),
    ("show . Orders --add Price=1", "gives the name 'Price' a second time"),
    ("show . Orders --add A=1 --add A=2", "gives the name 'A' a second time"),
]
# The steps of a path, and the values at its end.
PATHS = [
    ("Orders Makers.Name", "1,Orders,Product,reference 2,Products,Maker,reference 3,Makers,Name,value",
     "10,Elm 11, 12,Elm 13, 14,"),
    ("Orders class:FAMILY --order Note --limit 2", "1,Orders,Part of,value", "13,10 11,10"),
    # The price of the product by the supplier.
    ("Orders Works.Prices", '1,Orders,Works,reference 2,Works,Prices,"matrix, element of Product and Supplier"',
     "10,0.5 11,3.5 12,1.5 13, 14,"),
    ("Products Works.Town", "1,Products,Number,value 2,Works,Prices,reverse", "2,2 3,"),
    ("Kits Makers.Name --lists", '1,Kits,Uses,"list, entry not named" 2,Products,Maker,reference 3,Makers,Name,value',
     "b, a, c,"),
]


class Shop(FolderTest):
    files = {"shop.ksdef": SHOP, "Orders.csv": ORDERS, "Makers.csv": "Number,Name\n7,Oak & Co\n8,Elm\n",
             "Products.csv": "Number,Name,Maker\n2,Wheel,8\n3,Frame | blue,\n",
             "Works.csv": "Number,Town,Prices\n2,Odra,0.5;1.5|2.5;3.5\n", "Kits.csv": "Code,Uses\nb,2;3\na,\nc,3\n"}
    records = " shop.ksdef --data . "

    def test_records_and_columns_are_those_asked_for(self):
        for choice, numbers in cases(CHOICES):
            columns = "" if "--columns" in choice else "--columns Number "
            wrong = numbers == "wrong"
            self.assertEqual(self.rows(f"show . Orders {columns}{choice}", code=2 if wrong else 0),
                             "" if wrong else numbers, choice)
        self.assertEqual(self.rows("show . Kits --group-family --columns Code"), "b a c")  # keys that are texts
        for wrong in ("--order Prices", "--group-family"):
            self.tool("show . Works " + wrong, 2)
        paths = "Number,Product.Maker.Name,Product.Name,Works.Prices,Works.Town"
        self.assertEqual(self.rows(f"show . Orders --columns {paths} --where 'Note<b' --limit 3"),
                         "10,Elm,1.5,0.5;1.5|2.5;3.5,Odra 11,,0,0.5;1.5|2.5;3.5,Odra 13,,0,,")

    def test_expressions_have_a_value_for_each_record(self):
        for expression, values in cases(VALUES):
            self.assertEqual(self.rows("eval . Orders " + expression), values)
        added = "--add 'Worth={#Quantity}*{#Price}' --add 'Tag=\"{#Number}\"' --add 'Is one={#Quantity}==1'"
        self.assertEqual(self.tool(f"show . Orders -o csv --columns Note,Number --limit 2 {added}"),
                         "Note,Number,Worth,Tag,Is one\na10,10,12.5,10,0\na9,11,1,11,1\n")
        row = self.json(f"show . Orders {added}")[0]
        self.assertEqual([row["Worth"], row["Tag"]], [12.5, "10"])

    def test_wrong_expressions_are_told_with_a_caret_under_the_place(self):
        for line, told in WRONG:
            self.assertEqual(self.tool(line, 2, told), "", line)
        for expression, told in [
                ("{#Quantity} * * 2", '    At Position 15\n    In Expression "{#Quantity} * * 2"\n' + 33 * " " + "^\n"),
                ("{#Twice} + 1", "    This field cannot reference Twice due to cyclic dependencies.\n")]:
            self.write("wrong.ksdef", SHOP.replace("{#Quantity} * 2", expression))
            found = self.tool("check wrong.ksdef", 1)
            self.assertIn("in format 'Works orders' and field 'Twice': [resolution]\n", found)
            self.assertIn(told, found)

    def test_track_tells_the_path_and_the_values_at_its_end(self):
        for target, path, values in PATHS:
            self.assertEqual(self.rows("track . " + target), values)
            self.assertEqual(self.rows("track shop.ksdef " + target), path)
        for wrong in ("Makers.Nix", "Nix.Name", "class:Nix", "Makers", "."):
            self.tool(f"track shop.ksdef Orders {wrong}", 2)
        told = "no way leads from Makers to Orders.Quantity"
        self.assertEqual(self.tool("track . Makers Orders.Quantity", 1, told), "")

    def test_forms_of_output(self):
        self.assertEqual(self.tool("show . Products -o markdown --raw"),
                         "| Number | Name | Maker |\n| ---: | --- | ---: |\n| 2 | Wheel | 8 |\n"
                         "| 3 | Frame \\| blue |  |\n")
        self.assertEqual(self.json("show . Works")[0]["Prices"], [[0.5, 1.5], [2.5, 3.5]])
        self.assertEqual([row["Uses"] for row in self.json("show . Kits")], [[2, 3], [], [3]])
        lines = self.tool("show . Orders -o jsonl").splitlines()
        self.assertEqual([json.loads(line) for line in lines], self.json("show . Orders"))
        self.assertEqual(self.json('show . Orders --where "Number>99"'), [])
        self.tool("show . Orders", told="Orders.Product: 1 of 4 references have no target in Products")

    def test_what_is_rejected_is_told_with_its_place_and_its_code(self):
        self.write("Orders.csv", b"Number,Quantity,Product,Note,Colour\n1,5,2,ok,red\n2,many,2,ok,red\n\n"
                   b"3,5,2,too long,red\n1,6,2,again,red\n4,5\nx,y,2,ok,red\n,5,2,ok,red\n5,7,2,\xff,red\n"
                   b"6,8,Bolt,last,red\n7,8,2,\"open\n")
        self.write("Works.csv", "Number,Prices\n2,1;2\n")
        result = self.result("show . Orders -o csv --columns Number,Quantity,Product,Note")
        self.assertEqual((result.code, result.out), (4, "Number,Quantity,Product,Note\n1,5,2,ok\n6,8,,last\n"))
        found = re.findall(r"(?m)^\./(\w+)\.csv:(\d+): error: rejected: (?:column '(\w+)'|row).*\[KES-(\d+)\]$",
                           result.err)
        self.assertEqual([" ".join(each) for each in found], [
            "Orders 3 Quantity 3004", "Orders 5 Note 3007", "Orders 6 Number 3006", "Orders 7  3005",
            "Orders 8 Number 3004", "Orders 8 Quantity 3004", "Orders 9 Number 3006", "Orders 10 Note 3008",
            "Works 2 Prices 3010", "Orders 11 Product 3009"], result.err)
        for told in ("column 'Colour' belongs to no field", "Orders.csv: error: line 12: ", "[KES-3013]",
                     "2 records into Orders, 7 rows rejected"):
            self.assertIn(told, result.err)
        self.assertEqual(result.err.count("  hint: Write the value"), 2, "not again where the same one follows")
        self.assertEqual(self.rows("show . Works", code=4), "2,,0;0|0;0")

    def test_lists_and_matrices_fit_their_dimensions(self):
        for uses, shown in ((" 2 ; ;3", "b,,2;-1;3"), ("-1", "b,,-1")):
            self.write("Kits.csv", "Code,Uses\nb," + uses)
            self.assertEqual(self.rows("show . Kits"), shown)
        self.write("Kits.csv", "Code,Uses\nb,2|3")
        self.tool("show . Kits", 1, "has 2 rows and not 1")
        for prices, told in (("1;x|3;4", "value 2 'x' is no number"), ("1;|3;4", "value 2 '' is no number"),
                             ("1;2;3|4;5;6", "row 1 has 3 values and not 2"), ("1;2", "has 1 rows and not 2"),
                             ("1;2|3", "row 2 has 1 values and not 2")):
            self.write("Works.csv", "Number,Prices\n2," + prices)
            self.assertIn("2,,0;0|0;0", self.tool("show . Works -o csv", 1, f"'{prices}' {told}"))


# A field of every kind that shows something else than it stores.
JOBS = """
table Units { "kg" = 1 "litre" = 2 }
format Jobs {
    key Number
    field Number       : INTEGER | UNIQUE
    field Customer     : REFERENCE | DATABASE(Customers(Name))
    field Alias        : REFERENCE | DATABASE(Orders(Customer))
    field Day          : DATE AND TIME | SHOW DATE
    field Start        : DATE AND TIME
    field Shift        : DATE AND TIME | SHOW TIME
    field Length       : DURATION
    field Hours        : DURATION | SHOW HOURS
    field Week         : DURATION | SHOW WEEKDAY
    field Done         : TOGGLE
    field Urgency      : INTEGER | SUBSTITUTE(1->"low") | SUBSTITUTE(2->"high")
    field Unit         : REFERENCE | TABLE(Units)
    field Price        : REAL | FORMAT(8.2)
    field Crew         : MATRIX | REFERENCE | AUTO LIST(Customers(Name)) | DATABASE(Customers(Name))
    field Gaps         : MATRIX | DURATION | DATA LIST
}
format Orders {
    key Number
    field Number       : INTEGER | UNIQUE
    field Customer     : REFERENCE | DATABASE(Customers(Name))
}
format Customers {
    key Number
    field Number       : INTEGER | UNIQUE
    field Name         : TEXT
    field Head         : REFERENCE | FAMILY(Name)
}
"""
STORED = """Number,Customer,Alias,Day,Start,Shift,Length,Hours,Week,Done,Urgency,Unit,Price,Crew,Gaps
1,201,1,2026-03-02,2026-03-02 07:30:00,1899-12-30 06:00:00,2.1875,1.5,1.25,1,2,2,2.1,201;203,0.5;-1
2,,,,,,,,,0,7,1,0,,
"""
# Whether the output holds display texts.
SWITCHES = """
                    | yes
-o markdown         | yes
-o csv              | no
-o jsonl            | no
--raw               | no
-o csv --text       | yes
"""
NO_DURATION = "is neither a number of days nor a duration"
# Cells that are no text of their field, and why.
NO_TEXTS = f"""
Customer | Nobody             | is neither a key nor the Name of a record of Customers
Customer | Twin               | is the Name of 2 records of Customers
Crew     | Lind;Twin          | value 2 'Twin' is the Name of 2 records of Customers
Number   | Lind               | is no number
Day      | 2026-02-30         | is no date
Day      | 2026-03-02 7:30 PM | is no date
Shift    | 6:30:45            | is no date
Length   | 2026-03-02         | {NO_DURATION}
Length   | 5 apples           | {NO_DURATION}
Length   | 1.2.3              | {NO_DURATION}
Length   | 1 Day 4:30:15      | {NO_DURATION}
Length   | -4:30              | {NO_DURATION}
Week     | Someday 6:00       | {NO_DURATION}
Done     | perhaps            | is neither 0, 1, yes nor no
Urgency  | medium             | is no number
Unit     | pound              | is neither a number nor a text of the field's table
"""
# The number of records that fulfil a condition.
CONDITIONS = """
Jobs      | Customer=Lind         | 1
Jobs      | Customer=201          | 1
Jobs      | Customer=Nobody       | 0
Jobs      | Customer=Unspecified  | 1
Jobs      | Customer<Lind         | wrong
Jobs      | Alias=Lind            | 1
Jobs      | Length>=2 Days 0:00   | 1
Jobs      | Week=Monday 6:00      | 1
Jobs      | Unit=litre            | 1
Jobs      | Urgency=high          | 1
Jobs      | Urgency=highest       | wrong
Jobs      | Done=No               | 1
Jobs      | Day=Unspecified       | 1
Customers | Head=Lind             | 2
Orders    | Customer=Lind         | 1
"""


class DisplayTexts(FolderTest):
    files = {"jobs.ksdef": JOBS, "Jobs.csv": STORED, "Orders.csv": 'Number,Customer\n1,Lind\n2,"Glow, Wick"\n',
             "Customers.csv": 'Number,Name,Head\n201,Lind,\n202,Twin,Lind\n203,"Glow, Wick",201\n204,Twin,No parent\n'}
    records = " jobs.ksdef --data . "

    def test_read_back_they_give_the_stored_values(self):
        shown = self.tool("show . Jobs -o csv --text")
        self.assertNotEqual(shown, STORED)
        for cells in (STORED, shown):
            self.write("Jobs.csv", cells)
            self.assertEqual(self.tool("show . Jobs -o csv"), STORED)

    def test_those_of_the_plant_read_back_show_the_same(self):
        """They have fewer decimals than what is stored, so the stored values may differ."""
        plant = os.path.join(PLANT, "plant.ksdef")
        shown = {name: self.tool(f"show {plant} --data {PLANT}/data {name[:-4]} -o csv --text")
                 for name in os.listdir(os.path.join(PLANT, "data"))}
        for name, text in shown.items():
            self.write("copy/" + name, text)
        for name, text in shown.items():
            self.assertEqual(self.tool(f"show {plant} --data copy {name[:-4]} -o csv --text"), text)

    def test_the_form_of_the_output_and_the_switches_choose_them(self):
        for switches, texts in cases(SWITCHES):
            out = self.tool("show . Jobs " + switches)
            self.assertEqual(("Lind" in out, "1.5" in out), (texts == "yes", texts == "no"), switches)
        row = self.json("show . Jobs --text")[0]
        self.assertEqual([row[name] for name in ("Crew", "Gaps", "Price", "Unit")],
                         [["Lind", "Glow, Wick"], ["12 Hours 00 Minutes", "-"], 2.1, "litre"])

    def test_cells_that_are_no_text_of_their_field_are_told_and_not_guessed(self):
        for column, cell, reason in cases(NO_TEXTS):
            key = "Week,Number\n0," if column == "Number" else f"Number,{column}\n1,"
            self.write("Jobs.csv", key + cell + "\n")
            self.tool("show . Jobs", 1, reason)

    def test_conditions_take_them(self):
        for table, condition, number in cases(CONDITIONS):
            if number == "wrong":
                self.tool(f"show . {table} --where '{condition}'", 2)
            else:
                self.assertEqual(len(self.json(f"show . {table} --where '{condition}'")), int(number), condition)

    def test_translations_go_out_and_come_back(self):
        self.tool("translate extract jobs.ksdef")
        self.assertTrue(os.path.exists(os.path.join(self.folder, "KS_PDB.LST")))
        self.write("german.lst", '#SECTION Fields\n"Number"\n"Nummer"\n\n"Nummber"\n"Nummer"\n\n"Price"\n" "\n\n'
                   '"Number"\n"Zahl"\n\n#SECTION String tables\n"litre"\n"Liter"\n')
        line = "translate apply jobs.ksdef german.lst KSSERVER.LST -o "
        applied = self.tool(line + "csv", told="2 entries apply, 1 are unused")
        for row in ("Fields,Number,Nummer,german.lst:2\n", "String tables,litre,Liter,german.lst:15\n",
                    "Fields,Price,Price,\n"):
            self.assertIn(row, applied)
        self.tool(line + "csv", told="german.lst:5: warning: unused: the definition has no text 'Nummber'")
        self.tool(line + "csv", told="german.lst:11: warning: unused: 'Number' has its")
        self.write("german.lst", '#SECTION Fields\n"Number\n')
        self.tool("translate apply jobs.ksdef german.lst", 1)
        lists = {name: read(self.folder, name) for name in ("KSSERVER.LST", "KS_PDB.LST")}
        for name in lists:
            self.write(name, "of an earlier run")
        names = os.listdir(self.folder)
        for room in (0, 1, len(lists["KSSERVER.LST"]) - 1):
            def limit(room=room):
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (room, room))

            for line in ("extract jobs.ksdef", "apply jobs.ksdef german.lst"):
                full = subprocess.run([TOOL, "translate", *line.split()], capture_output=True, cwd=self.folder,
                                      env=ENVIRONMENT, timeout=120, check=False, preexec_fn=limit)
                self.assertEqual((full.returncode, full.stdout), (3, b""), (line, room))
                self.assertIn(b"KSSERVER.LST: cannot be written [KES-1003]\n", full.stderr)
            self.assertEqual(sorted(os.listdir(self.folder)), sorted(names))
            self.assertEqual({self.read(name) for name in lists}, {"of an earlier run"}, room)
        self.tool("translate extract jobs.ksdef")
        self.assertEqual({name: read(self.folder, name) for name in lists}, lists)


main()
