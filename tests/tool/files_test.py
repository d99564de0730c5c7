"""Snapshots, compiled and compressed files, keys; and everything that is refused.

Usage: files_test.py TOOL SOURCE_FOLDER
"""

import os
import pty
import re
import shutil
import signal
import tempfile
import zlib

from running import PLANT, SOURCE, TOOL, FolderTest, at_terminals, cases, main, read

# The field of the plant that is not saved.
UNSAVED = "Sequence on screen"
RECORDS = [
    'show . Orders --columns Number,Product.Name,Label --where "Quantity>200" --order "Due date:desc" -o markdown',
    'eval . Orders "{#Quantity} * {#Price}" -o csv', "track . Operations Products.Colour -o csv"]
SCHEMAS = ["schema .", "schema . Orders", "schema . Plant Speeds", "graph .", "docs ."]
# Exit code, codes that are told, command line. "plant" is the definition, its data is in "data".
REFUSED = """
2 0102 |
2 0101 | paint plant
2 0103 | schema plant -o clay
2 0104 | schema plant Ordres
2 0105 | schema plant Orders due
2 0101 | show plant --bogus
2 0108 | show plant Orders
2 0104 | show plant --data data Ordres
2 0105 | show plant --data data Orders --columns Colour
2 0106 | show plant --data data Orders --dataset Summer
2 0106 | show plant.kes Orders --dataset Summer
2 0107 | show plant.kes Orders --data data
2 0111 | show plant --data data Orders --where Number=x
2 0112 | show plant --data data Plant --order Speeds
2 0103 | show plant --data data Orders --raw --text
2 0103 | show plant --data data Orders --limit -1
2 0103 | eval plant --data data Orders 1 --limit 99999999999999999999
3 1002 | show plant --data absent Orders
3 1001 | show absent --data data Orders
2 4001 | eval plant --data data Orders "1 +"
2 0113 | track plant Orders class:Nothing
1 0114 | track plant Shifts Orders.Number
3 1001 | check absent
3 1011 | check plant.kes
2 0103 | graph plant --svg --dot
3 1003 | graph plant -f absent/a.svg
3 1002 | translate apply plant absent
3 1003 | translate extract plant -o absent
3 1011 | translate extract plant.kez -o data
2 0116 | info plant.cnf --tables
3 1004 | info plant
3 1001 | info absent
3 1011 | compile plant.cnf -o target
2 0109 | compile plant -o plant
3 1011 | import plant.kes --data data -o target
2 0102 | import plant -o target
2 0109 | import plant --data data -o plant
3 1002 | import plant --data absent -o target
2 0110 | import plant --data data -o target --dataset X
3 1002 | import plant --data data -o target --dataset X=absent
2 0110 | import plant --data data -o target --dataset X=data --dataset x=data
2 0109 | compress plant.kes ./plant.kes
3 1001 | decompress absent target
3 1004 | decompress plant.kes target
4 1007 | decompress trailing target
2 0103 | export plant --data data -f ods -o target
2 0102 | export plant --data data -f csv
2 0104 | export plant --data data -f csv -o target --table Nuts
2 0115 | export plant --data data -f sqlite -o -
2 0115 | export plant --data data -f csv -o -
2 0103 | compile plant -o -
2 0103 | import plant --data data -o -
3 1002 | diff plant.kes plant --data-new absent
2 0107 | diff plant.kes plant --data-old data
2 0103 | diff plant plant --tolerance -1
2 0103 | diff plant plant --tolerance inf
2 0103 | diff plant plant --tolerance nan
4 syntax syntax | diff plant.kes bad
4 3004 | diff plant.kes plant --data-new rejected
5 5002 | encrypt x --key-file absent
2 0102 | audit
3 1001 | audit show absent
3 1001 | audit show data
3 1001 | audit show /dev/null
4 1012 | audit show data/Orders.csv
2 0117 | explain KES-0001
3 1003 | protect-key -o absent/key
3 1010 | protect-key -o key
"""


class PlantFiles(FolderTest):
    """The sample plant in every form."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="kestrona-tool-")
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        shutil.copytree(PLANT, cls.folder, dirs_exist_ok=True)
        maker = cls()
        for line in ("import plant.ksdef --data data -o plant.kes", "compile plant.ksdef -o plant.cnf",
                     "import plant.ksdef --data data -o plant.kez --compress"):
            maker.assertEqual(maker.tool(line), "")

    def setUp(self):
        pass

    def test_every_form_shows_the_same_records(self):
        tables = [row["Format"] for row in self.json("schema plant.ksdef")]
        self.assertGreaterEqual(len(tables), 8)
        for table in tables:
            expected = self.json(f"show plant.ksdef --data data {table}")
            self.assertTrue(expected, table)
            self.assertEqual(self.json(f"show plant.cnf --data data {table}"), expected)
            expected = [{**row, UNSAVED: 0} if UNSAVED in row else row for row in expected]
            for file in ("plant.kes", "plant.kez"):
                self.assertEqual(self.json(f"show {file} {table}"), expected, file)
        self.tool("diff plant.ksdef --data-old data plant.kez")

    def test_every_command_takes_every_form(self):
        forms = ["plant.ksdef --data data", "plant.cnf --data data", "plant.kes"]
        for commands, files in ((RECORDS, forms), (SCHEMAS, ["plant.ksdef", "plant.cnf", "plant.kez"])):
            for command in commands:
                shown = [self.tool((command + " ").replace(" . ", f" {file} ")) for file in files]
                # The title of a dictionary names the file.
                self.assertEqual({text.partition("\n")[2] if command == "docs ." else text for text in shown[1:]},
                                 {shown[0].partition("\n")[2] if command == "docs ." else shown[0]}, command)

    def test_info_tells_what_a_file_holds(self):
        records, end = 0, 0
        for table in self.json("info plant.kes --tables"):
            shown = self.json(f"show plant.kes {table['Table']}")
            self.assertEqual(table["Records"], len(shown))
            self.assertEqual(table["Fields"], len(self.json(f"schema plant.kes {table['Table']}")))
            self.assertGreater(table["Offset"], end)
            records, end = records + len(shown), table["Offset"] + table["Size"]
        size, packed = (os.path.getsize(os.path.join(self.folder, name)) for name in ("plant.kes", "plant.kez"))
        self.assertTrue(end < size > packed)
        for file, expected in [
                ("plant.kes", {"Kind": "snapshot", "Records": str(records), "File": f"{size} bytes"}),
                ("plant.kez", {"Kind": "compressed snapshot", "File": f"{packed} bytes",
                               "Decompressed": f"{size} bytes"}),
                ("plant.cnf", {"Kind": "compiled definition", "Version": "15.0", "Can be read": "yes"})]:
            told = {row["Property"]: row["Value"] for row in self.json("info " + file)}
            self.assertEqual({**told, **expected}, told)
        self.assertIn("\nOrders ", self.tool("info plant.kes"))  # people see both at once

    def test_damage_is_told_by_its_kind(self):
        whole, packed, compiled = (read(self.folder, "plant." + kind) for kind in ("kes", "kez", "cnf"))
        text, version = 1000, compiled.index(b"\x1a") + 2  # in the texts, which are under a checksum

        def changed(data, place, byte=None):
            return data[:place] + bytes([255 - data[place] if byte is None else byte]) + data[place + 1:]

        for data, told, code, info in [  # info looks at the beginning only
                (whole[:40], "ends too early at offset 34: found 6 bytes, expected 16 bytes", 4, 4),
                (whole[:-9], "ends too early at offset", 4, 0),
                (changed(whole, 22, 7), "not read at offset 22: found layout 7, expected layout 1", 3, 3),
                (changed(whole, 0, 88), "is another kind of file at offset 23: found a zero byte", 3, 3),
                (changed(whole, 53, 0xff), "is damaged at offset 50: found -", 4, 4),
                (whole + b"x", ": found 1 byte more, expected the end of table 'Operations'", 4, 0),
                (packed + b"xy", f"at offset {len(packed)}: found 2 bytes more, expected the end of the comp", 4, 4),
                (changed(whole, text), "is damaged at offset", 4, 0),
                (changed(whole, 53, 0x7f), "ends too early at offset", 4, 4),
                (packed[:-9], "found its end, expected more compressed data", 4, 4),
                (changed(packed, 0, 88), "is another kind of file", 3, 3), (changed(packed, 3000), "is damaged", 4, 4),
                (changed(compiled, version + 4, 16), "found version 16.0, expected version 15.0", 3, 0),
                (changed(compiled, version + 4, 14), "found version 14.0, expected version 15.0", 3, 0),
                (compiled[:version + 6], "ends too early at offset", 4, 4),
                (changed(compiled, text), "is damaged", 4, 0), (compiled[:-9], "ends too early at offset", 4, 0)]:
            self.write("broken", data)
            self.assertEqual(self.tool("show broken Orders --data data", code, "kestrona: error: 'broken' "), "")
            self.tool("show broken Orders --data data", code, told)
            self.tool("info broken", info)
            self.tool("diff broken broken", code)

    def test_refusals_have_a_code_and_change_nothing(self):
        described = read(SOURCE, "docs", "errors.md").decode()
        for name, text in {"target": "as it was", "KSSERVER.LST": "as it was", "bad": "format {", "key": "a phrase\n",
                           "trailing": read(self.folder, "plant.kez") + b"more",
                           "rejected/Shifts.csv": "Number\nmany\n"}.items():
            self.write(name, text)
        os.chmod(os.path.join(self.folder, "key"), 0o600)

        def content():
            return {name: read(folder, name) for folder, _, names in os.walk(self.folder) for name in names}

        before = content()
        for expected, line in cases(REFUSED):
            result = self.result(re.sub(r"\bplant\b(?!\.)", "plant.ksdef", line), text="x\n")
            codes = re.findall(r" \[(?:KES-)?(\d+|[a-z-]+)\]\n", result.err)
            with self.subTest(line):
                self.assertEqual(f"{result.code} {' '.join(codes)}", expected, result.err)
                self.assertTrue(result.out == "" or result.code == 4, result.out)
                self.assertTrue(all(code in described for code in codes))
                self.assertEqual(content(), before)

    def test_compressed_files_are_zlib_streams(self):
        for data in (b"", b"x", read(self.folder, "plant.kes"), bytes(100000)):
            self.write("source", data)
            self.tool("compress source packed")
            packed = read(self.folder, "packed")
            self.assertEqual(zlib.decompress(packed), data)
            self.tool("decompress packed target")
            self.assertEqual(read(self.folder, "target"), data)
        self.write("short", read(self.folder, "plant.kez")[:-1])
        self.tool("decompress short target", 4)

    def test_encrypted_fields_need_their_key(self):
        show = "show plant.kes Products --columns Recipe --limit 1 -o csv"
        self.assertNotIn("(encrypted)", self.tool(show))
        self.assertNotIn("paraffin".encode("utf-16-le"), read(self.folder, "plant.kes"))
        self.tool(show, 5, KESTRONA_KEY="another pass phrase")
        self.assertEqual(self.tool(show, KESTRONA_KEY=None), "Recipe\n(encrypted)\n")
        self.tool("import plant.ksdef --data data -o keyless", 5, "Products(Recipe) is encrypted", KESTRONA_KEY=None)
        self.assertFalse(os.path.exists(os.path.join(self.folder, "keyless")))


class Datasets(FolderTest):
    files = {"plant.ksdef": """
format Orders {
    key Number
    field Number          : INTEGER | UNIQUE
    field Product = -1    : REFERENCE | DATABASE(Products(Number))
}
format Products {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
    field Speeds          : MATRIX | REAL | AUTO LIST(Orders(Number))
}
""", "base/Orders.csv": "Number,Product\n1,1\n", "summer/Orders.csv": "Number,Product\n1,1\n2,1\nx,1\n",
             **{f"{name}/Products.csv": f"Number,Name,Speeds\n1,{name},1\n" for name in ("base", "summer", "winter")}}

    def test_they_stand_beside_one_another(self):
        line = "import plant.ksdef --data base --dataset Summer=summer --dataset Winter=winter -o plant.kes"
        refused = self.result(line)
        self.assertEqual((refused.code, re.findall(r"\[KES-(\d+)", refused.err)), (1, ["3004", "3012"]))
        self.assertIn("summer/Orders.csv:4: error: rejected: column 'Number'", refused.err)
        self.assertFalse(os.path.exists(os.path.join(self.folder, "plant.kes")))
        self.tool(line + " --keep-going", 1)
        self.assertEqual(re.sub(r"(,\d+){2}(?= |$)", "", self.rows("info plant.kes --tables")),
                         "Orders,,2,1 Products,,3,1 Orders,Summer,2,2 Products,Summer,3,1 Products,Winter,3,1")
        # The winter has no orders of its own.
        for option, name, orders in (("", "base", "1,1"), ("--dataset Summer", "summer", "1,1 2,1"),
                                     ("--dataset winter", "winter", "1,1")):
            self.assertEqual(self.rows("show plant.kes Orders " + option), orders)
            self.assertEqual(self.rows("show plant.kes Products " + option), f"1,{name},1")


# "the text" under the phrase of the tests. A fixed one, since a wrong key passes once in many times.
THE_TEXT = "8OUcq83xEaDlVDxTp+Opd0KS4SvPaa949rvOROvip5HbnYoxDo64/UB+LyXTzNjgRaZ4/LgfruyImQl8kLUDBQ=="
# What a choice shows with the key; without one it is refused.
LOCKED = """
--where Secret=ab                                     | 1
--where Secret=                                       | 2
--where Secret=ab --where "Number>1"                  |
--where Number=3 --add 'S="[{$Secret}]"'              | 3,[\U0001F9A6 12]
--where '"{$Secret}" == "ab"'                         | wrong
--where "Secret<b"                                    | wrong
"""


class Keys(FolderTest):
    files = {"accounts.ksdef": """
format Accounts {
    key Number
    field Number             : INTEGER | UNIQUE
    field Secret length 12   : REFERENCE | FREE FORMAT | ENCRYPTED
    field Open length 20     : REFERENCE | FREE FORMAT
    field Copy               : REFERENCE | FREE FORMAT | EVALUATE "<{$Secret}>"
}
""", "Accounts.csv": "Number,Secret,Open\n1,ab,x\n2,,y\n3,\U0001F9A6 12,z\n"}
    records = " accounts.ksdef --data . "

    def setUp(self):
        super().setUp()
        self.key("key", "a phrase of some length\n")

    def key(self, name, phrase):
        self.write(name, phrase)
        os.chmod(os.path.join(self.folder, name), 0o600)

    def result(self, line, **more):
        return super().result(line, **{"KESTRONA_KEY": None, "XDG_DATA_HOME": self.folder + "/user", **more})

    def test_texts_come_back_whatever_their_length(self):
        texts = "\n".join(["", "x", "'; --", "K\xe9ttle \U0001F9A6", *(n * "m" for n in (7, 8, 9, 1000))]) + "\n"
        encrypted = self.tool("encrypt --key-file key", text=texts)
        self.assertNotIn("mmmmmmm", encrypted)
        self.assertEqual(self.tool("decrypt --key-file key", text=encrypted), texts)
        encrypted = self.tool("encrypt --key-file key 'two words' '\n'")
        self.assertEqual(self.tool("decrypt --key-file key", text=encrypted), "two words\n\n\n")

    def test_a_wrong_key_and_a_damaged_text_are_told_apart(self):
        altered = THE_TEXT[:-10] + chr(ord(THE_TEXT[-10]) ^ 1) + THE_TEXT[-9:]  # in the last block
        for text, phrase, code, told in [
                (THE_TEXT, "another phrase", 5, "wrong key or altered value"),
                (altered, "a phrase of some length", 5, "wrong key or altered value"),
                ("no base64!", "a phrase of some length", 4, "is damaged: Not enough data to decrypt text"),
                (THE_TEXT[:-8], "a phrase of some length", 4, "Invalid data supplied to decryption method")]:
            self.key("other", phrase)
            self.assertEqual(self.tool("decrypt --key-file other", code, told, text=text + "\n"), "\n")
        mixed = f"decrypt --key-file key {THE_TEXT} AAAA {THE_TEXT}"
        self.assertEqual(self.tool(mixed, 4), "the text\n\nthe text\n")
        self.tool("decrypt " + THE_TEXT, 5)
        self.tool(f"decrypt {THE_TEXT} --ask-key --key-file absent", 5)
        self.tool("encrypt --key-file key \udcff", 4)  # a byte that is no UTF-8
        self.tool("show . Accounts --key-file .", 5)

    def opens(self, options="", code=0, told="", **environment):
        self.tool(f"decrypt {options} {THE_TEXT}", code, told, **environment)

    def test_a_protected_key_serves_like_the_phrase(self):
        protected = {"KESTRONA_KEY_FILE": os.path.join(self.folder, "protected")}
        self.assertEqual(self.tool("protect-key -o protected", text="a phrase of some length\n"), "")
        content = self.read("protected")
        self.assertNotIn("phrase", content)
        self.assertEqual(os.stat(os.path.join(self.folder, "protected")).st_mode & 0o777, 0o600)
        self.opens(**protected)
        self.tool("protect-key -o protected", 3, text="another\n")
        self.assertEqual(self.read("protected"), content)
        self.tool("protect-key -o protected --force", text="another\n")
        self.opens(code=5, **protected)
        self.tool("protect-key", 5, text="\n")  # an empty phrase
        self.write("protected", self.tool("protect-key", text="a phrase of some length"))
        self.opens(**protected)

    def test_the_first_place_that_names_a_key_counts(self):
        right, key = "a phrase of some length", os.path.join(self.folder, "key")
        self.key("other", "another")
        self.opens(KESTRONA_KEY=right)
        self.opens(code=5, KESTRONA_KEY="another")
        self.opens(KESTRONA_KEY_FILE=key, KESTRONA_KEY="another")
        self.opens("--key-file key --ask-key", KESTRONA_KEY_FILE=self.folder + "/other", KESTRONA_KEY="another")
        self.opens(code=5, KESTRONA_KEY_FILE="absent", KESTRONA_KEY=right)  # no other place stands in
        self.opens(code=5, KESTRONA_KEY="\udcff")
        self.opens("--ask-key", 5, "there is no terminal")

    def test_files_of_keys_are_taken_or_refused_with_a_reason(self):
        phrase = "a phrase of some length"
        sealed = self.tool("protect-key", text=phrase).strip()
        altered = sealed[:20] + chr(ord(sealed[20]) ^ 1) + sealed[21:]
        for content, mode, told in [
                (phrase, 0o600, ""), (phrase + "\r\n", 0o400, ""), (" " + phrase, 0o600, "wrong key"),
                (sealed, 0o644, ""), (sealed + "\n", 0o600, ""), (phrase, 0o640, "open to others"),
                (phrase, 0o604, "open to others"), (altered, 0o600, "altered"), (sealed[:-4], 0o600, "altered"),
                ("\n", 0o600, "is empty"), ("one\ntwo\n", 0o600, "more than one line"), (b"\xc3", 0o600, "UTF-8"),
                ("a\0b", 0o600, "UTF-8"), (70000 * "x", 0o600, "too large")]:
            self.write("file", content)
            os.chmod(os.path.join(self.folder, "file"), mode)
            self.opens("--key-file file", 5 if told else 0, told)
            os.remove(os.path.join(self.folder, "file"))
        os.mkfifo(os.path.join(self.folder, "pipe"), 0o600)
        self.opens("--key-file pipe", 5, "no regular file")

    def typed(self, text):
        """What a terminal shows when this is typed as the phrase, and how the tool ends."""
        process, terminal = pty.fork()
        if process == 0:
            os.execve(TOOL, [TOOL, "decrypt", "--ask-key", THE_TEXT], {"PATH": os.environ["PATH"], "HOME": self.folder})
        shown = b""
        try:
            while piece := os.read(terminal, 65536):
                if b"Pass phrase: " in shown + piece and b"Pass phrase: " not in shown:
                    os.write(terminal, text)
                shown += piece
        except OSError:
            pass  # the other end is closed
        os.close(terminal)
        return shown.decode(), os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])

    @at_terminals
    def test_a_phrase_is_typed_unseen(self):
        self.assertEqual(self.typed(b"a phrase of some length\n"), ("Pass phrase: \r\nthe text\r\n", 0))
        shown, code = self.typed(b"a phra\x03")
        self.assertEqual((code, "phra" in shown.replace("Pass phrase", "")), (-signal.SIGINT, False))

    def test_fields_show_their_text_with_a_key_and_a_placeholder_without(self):
        for switch in ("", " --text"):
            self.assertEqual(self.rows("show . Accounts --key-file key" + switch),
                             "1,ab,x,<ab> 2,,y,<> 3,\U0001F9A6 12,z,<\U0001F9A6 12>")
            self.assertEqual(self.rows("show . Accounts" + switch),
                             "1,(encrypted),x,<(encrypted)> 2,,y,<> 3,(encrypted),z,<(encrypted)>")
        for choice, shown in cases(LOCKED):
            line = f"show . Accounts --columns Number {choice} "
            self.tool(line, 2, "there is no key")
            wrong = shown == "wrong"
            self.assertEqual(self.rows(line + "--key-file key", code=2 if wrong else 0), "" if wrong else shown, choice)


main()
