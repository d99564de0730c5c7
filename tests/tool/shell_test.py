"""Runs the tool as its users do: at a terminal, in pipes, by completion, from the examples in its help.

Usage: shell_test.py TOOL SOURCE_FOLDER
"""

import fcntl
import json
import os
import pty
import re
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import unicodedata
import unittest

from json_schema import problems, problems_of_file

TOOL, SOURCE = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
PLANT = os.path.join(SOURCE, "examples", "plant")
ENVIRONMENT = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "TERM": "xterm", "KESTRONA_KEY": "for tests"}


def run(*arguments, text=None, folder=PLANT, **environment):
    return subprocess.run([TOOL, *arguments], input=text, capture_output=True, encoding="utf-8", cwd=folder,
                          errors="replace", env={**ENVIRONMENT, **environment}, timeout=120)


def at_terminal(columns, *arguments, **environment):
    """What the tool shows, stdout and stderr together, on a terminal of this width."""
    leader, follower = pty.openpty()
    fcntl.ioctl(follower, termios.TIOCSWINSZ, struct.pack("HHHH", 40, columns, 0, 0))
    with subprocess.Popen([TOOL, *arguments], stdin=follower, stdout=follower, stderr=follower, cwd=PLANT,
                          env={**ENVIRONMENT, **environment}):
        os.close(follower)
        shown = b""
        try:
            while piece := os.read(leader, 65536):
                shown += piece
        except OSError:
            pass  # the other end is closed
    os.close(leader)
    return shown.decode().replace("\r\n", "\n")


def width(line):
    return sum(2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in line)


class Terminal(unittest.TestCase):
    def test_colours(self):
        check = ("check", "plant.ksdef")
        for shown, colored in [
                (at_terminal(80, *check), True),
                (at_terminal(80, *check, NO_COLOR="1"), False),
                (at_terminal(80, *check, TERM="dumb"), False),
                (at_terminal(80, "--color", "never", *check), False),
                (at_terminal(80, *check, "--color", "always", NO_COLOR="1"), True),
                (at_terminal(80, "check", "absent.ksdef"), True),
                (run(*check).stdout, False),
                (run(*check, "--color", "always").stdout, True),
                (run(*check, "-o", "json", "--color", "always").stdout, False),
                (run("schema", "absent.ksdef").stderr, False),
                (run("schema", "absent.ksdef", "--color", "always").stderr, True)]:
            self.assertEqual("\x1b[" in shown, colored, shown)
        plain = re.sub("\x1b\\[[0-9;]*m", "", run(*check, "--color", "always").stdout)
        self.assertEqual(plain, run(*check).stdout)

    def test_tables_keep_to_the_width_and_say_what_is_missing(self):
        schema = ("schema", "plant.ksdef", "Orders", "--color", "never")
        whole = run(*schema).stdout
        self.assertNotIn("…", whole)
        self.assertEqual(at_terminal(60, *schema, "--wide"), whole)
        self.assertEqual(at_terminal(1000, *schema), whole)
        columns = re.split("  +", whole.split("\n", 1)[0].strip())
        for cells in (1, 7, 20, 60, 80, 132):
            shown = at_terminal(cells, *schema).split("\n")
            table = [line for line in shown if not line.startswith("kestrona: note: ")]
            notes = [line for line in shown if line.startswith("kestrona: note: ")]
            self.assertEqual([line for line in table if width(line) > cells], [], cells)
            self.assertEqual(len(table), len(whole.split("\n")))
            kept = len(table[1].split())
            left_out = len(columns) - kept
            named = [line for line in notes if "columns left out" in line]
            self.assertEqual(len(named), int(left_out > 0), notes)
            self.assertTrue(all(columns[kept] in line for line in named), named)
            cut = sum(line.count("…") for line in table)
            self.assertEqual([int(n) for line in notes for n in re.findall(r"characters: (\d+);", line)],
                             [cut] if cut else [])


class Streams(unittest.TestCase):
    def test_definitions_come_from_stdin(self):
        with open(os.path.join(PLANT, "plant.ksdef"), encoding="utf-8") as file:
            text = file.read()
        for arguments in (["schema", "{}"], ["graph", "{}"], ["show", "{}", "--data", "data", "Orders"],
                          ["diff", "{}", "plant.ksdef", "--data-old", "data", "--data-new", "data"], ["check", "{}"],
                          ["track", "{}", "Operations", "Products.Colour"]):
            by_name = run(*[a.format("plant.ksdef") for a in arguments])
            by_stream = run(*[a.format("-") for a in arguments], text=text)
            self.assertEqual(by_name.returncode, 0, by_name.stderr)
            self.assertEqual(by_stream.returncode, 0, by_stream.stderr)
            self.assertEqual(by_stream.stdout.replace("-:", "plant.ksdef:"), by_name.stdout)
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "a.ksdef"), "w", encoding="utf-8") as file:
                file.write('include "-"\n')
            self.assertEqual(run("check", "a.ksdef", text=text, folder=folder).returncode, 3)

    def test_exports_go_to_stdout(self):
        data = ("export", "plant.ksdef", "--data", "data")
        with tempfile.TemporaryDirectory() as folder:
            for form, options, made in [("json", [], "all"), ("json", ["--table", "Orders"], "one"),
                                        ("csv", ["--table", "Orders"], "folder/Orders.csv")]:
                target = os.path.join(folder, made.split("/")[0])
                self.assertEqual(run(*data, "-f", form, "-o", target, *options).returncode, 0)
                with open(os.path.join(folder, made), encoding="utf-8") as file:
                    self.assertEqual(run(*data, "-f", form, "-o", "-", *options).stdout, file.read())
        for refused in [(*data, "-f", "csv", "-o", "-"), (*data, "-f", "xlsx", "-o", "-"),
                        ("compile", "plant.ksdef", "-o", "-"), ("import", "plant.ksdef", "--data", "data", "-o", "-")]:
            self.assertEqual(run(*refused).returncode, 2, refused)

    def test_encodings_of_csv_files(self):
        definition = "format T {\n key N\n field N : INTEGER\n field Text length 200 : REFERENCE | FREE FORMAT\n}\n"
        latin = "".join(bytes([b]).decode("cp1252", "replace") for b in range(0xA0, 0x100)) + "€Žœ‚"
        texts = [latin, "Größe", "plain"]
        wide = texts + ["漢字", "\U0001F600"] + ["\U0001F600x" * 12] * 6000  # pairs lie across the blocks that are read

        def shown(lines, encoding, *options, mark=b""):
            rows = "N,Text\n" + "".join(f"{n},{line}\n" for n, line in enumerate(lines, 1))
            with tempfile.TemporaryDirectory() as folder:
                with open(os.path.join(folder, "T.csv"), "wb") as file:
                    file.write(mark + (rows.encode(encoding) if isinstance(encoding, str) else encoding))
                result = run("show", "-", "--data", folder, "T", "-o", "csv", *options, text=definition)
                return result, rows

        for lines, encoding, options, mark in [
                (texts, "cp1252", ["--encoding", "windows-1252"], b""),
                (wide, "utf-8", [], b""),
                (wide, "utf-8", ["--encoding", "utf-16"], b"\xef\xbb\xbf"),
                (wide, "utf-16-le", ["--encoding", "utf-16"], b""),
                (wide, "utf-16-be", ["--encoding", "UTF-16"], b""),
                (wide, "utf-16-le", [], b"\xff\xfe"),
                (wide, "utf-16-be", ["--encoding", "windows-1252"], b"\xfe\xff")]:
            result, rows = shown(lines, encoding, *options, mark=mark)
            self.assertEqual(result.returncode, 0, (encoding, result.stderr[:500]))
            self.assertEqual(result.stdout, rows, encoding)
        # What is no text in its encoding is rejected in its row, never changed.
        for damaged in ("N,Text\n1,a\n2,\ud800b\n3,c\n".encode("utf-16-le", "surrogatepass"),
                        "N,Text\n1,a\n3,c\n2,b".encode("utf-16-le") + b"\x41", b"N,Text\n1,a\n2,\xfc\n3,c\n"):
            options = [] if damaged.endswith(b"\xfc\n3,c\n") else ["--encoding", "utf-16"]
            result, _ = shown([], damaged, *options)
            self.assertEqual((result.returncode, result.stdout), (1, "N,Text\n1,a\n3,c\n"), result.stderr)
            self.assertIn("[KES-3008]", result.stderr)


class Help(unittest.TestCase):
    def commands(self):
        """The words of every command that can be run, the hidden ones too."""
        def inner(path):
            text = run(*path, "--help").stdout
            names = re.findall(r"^  ([a-z-]+) {2,}", text.partition("\nSubcommands:\n")[2], re.MULTILINE)
            return [c for name in names for c in inner(path + [name])] or [path]
        return inner([]) + [["completion"], ["man"]]

    def test_examples_run(self):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(PLANT, folder, dirs_exist_ok=True)
            shutil.copytree(os.path.join(PLANT, "data"), os.path.join(folder, "edited"))
            os.mkdir(os.path.join(folder, "lists"))
            for name in ("german.lst", "Audit.log", "notes.txt", "texts.txt", "encrypted.txt"):
                with open(os.path.join(folder, name), "w", encoding="utf-16" if name == "Audit.log" else "utf-8") as file:
                    file.write("")
            with open(os.path.join(folder, "plant.key"), "w", encoding="utf-8", opener=lambda path, flags:
                      os.open(path, flags, 0o600)) as file:
                file.write("a pass phrase\n")
            for name in ("old.kes", "new.kes"):
                run("import", "plant.ksdef", "--data", "data", "-o", name, folder=folder)
            os.symlink(TOOL, os.path.join(folder, "kestrona"))
            order = {"protect-key": 1, "compile": -2, "import": -1}
            for command in sorted(self.commands(), key=lambda path: order.get(path[0], 0)):
                text = run(*command, "--help").stdout
                examples = re.findall(r"^  (kestrona .*)$", text.partition("\nExamples:\n")[2], re.MULTILINE)
                self.assertGreaterEqual(len(examples), 2, command)
                for example in examples:
                    self.assertEqual(shlex.split(example)[1:1 + len(command)], command)
                    done = subprocess.run(["sh", "-c", "./" + example], cwd=folder, capture_output=True,
                                          input="a pass phrase\n", encoding="utf-8",
                                          env={**ENVIRONMENT, "HOME": folder}, timeout=120)
                    self.assertEqual(done.returncode, 0, (example, done.stderr))

    def test_usage_errors_name_what_is_wrong_and_where_help_is(self):
        for arguments, wrong, helped in [
                ("paint x", "'paint'", "kestrona --help"), ("--bogus", "'--bogus'", "kestrona --help"),
                ("check --bogus", "'--bogus'", "kestrona check --help"), ("", "required", "kestrona --help"),
                ("audit show", "FILE", "kestrona audit show --help"),
                ("schema x -o clay", "'clay' is none of csv, json", "kestrona schema --help")]:
            result = run(*arguments.split())
            self.assertEqual((result.returncode, result.stdout), (2, ""), arguments)
            self.assertRegex(result.stderr, f"^kestrona: error: .*{re.escape(wrong)}.* \\[KES-01..\\]\n  hint: See '{helped}'.\n$")

    def test_the_reference_has_every_command(self):
        with open(os.path.join(SOURCE, "docs", "tool.md"), encoding="utf-8") as file:
            text = file.read()
        for command in self.commands():
            self.assertIn(f"\n$ kestrona {' '.join(command)} --help\n", text)

    def test_completion_and_manual_know_every_option(self):
        page = run("man").stdout
        if shutil.which("groff"):
            formatted = subprocess.run(["groff", "-ww", "-man", "-Tutf8"], input=page, capture_output=True,
                                       encoding="utf-8", check=True)
            self.assertEqual(formatted.stderr, "")
        scripts = {shell: run("completion", shell).stdout for shell in ("bash", "zsh", "fish")}
        for shell in filter(shutil.which, scripts):
            subprocess.run([shell, "-n"], input=scripts[shell], encoding="utf-8", check=True)
        for command in self.commands():
            text = run(*command, "--help").stdout
            for option in re.findall(r"^  (?:-\w,)?--([a-z-]+)", text, re.MULTILINE):
                self.assertIn("--" + option, scripts["bash"], command)
                self.assertIn("--" + option, scripts["zsh"], command)
                self.assertIn("-l " + option + " ", scripts["fish"], command)
                hidden = command[0] in ("completion", "man")
                self.assertTrue(hidden or "--" + option in page.replace("\\-", "-"), option)

    def test_bash_completes(self):
        script = run("completion", "bash").stdout + """
            while IFS= read -r line; do
                IFS=' ' read -ra COMP_WORDS <<< "$line"; [[ $line == *' ' ]] && COMP_WORDS+=('')
                COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kestrona 2>/dev/null; echo "${COMPREPLY[*]}"
            done"""
        cases = {"kestrona tr": "translate track", "kestrona translate ": "extract apply",
                 "kestrona show plant.ksdef --da": "--data --dataset", "kestrona show x -o ": "csv json jsonl markdown table",
                 "kestrona check -o ": "json sarif text", "kestrona check ": None, "kestrona show --data d": "data",
                 "kestrona completion ": "bash fish zsh", "kestrona check --color ": "always auto never",
                 "kestrona check plant.k": "plant.ksdef", "kestrona show x --limit ": ""}
        done = subprocess.run(["bash", "-c", script], input="\n".join(cases) + "\n", encoding="utf-8", cwd=PLANT,
                              capture_output=True, check=True)
        replies = done.stdout.split("\n")[:-1]
        self.assertEqual(len(replies), len(cases))
        for (line, expected), reply in zip(cases.items(), replies):
            if expected is None:
                self.assertEqual(sorted(reply.split()), sorted(os.listdir(PLANT)))
            else:
                self.assertEqual(reply, expected, line)


class Reports(unittest.TestCase):
    def test_json_is_as_its_schema_says(self):
        with tempfile.TemporaryDirectory() as folder:
            edited = os.path.join(folder, "edited")
            shutil.copytree(os.path.join(PLANT, "data"), edited)
            with open(os.path.join(edited, "Orders.csv"), encoding="utf-8") as file:
                lines = file.readlines()
            with open(os.path.join(edited, "Orders.csv"), "w", encoding="utf-8") as file:
                file.writelines([lines[0], lines[2].replace("201", "202"), *lines[3:]])
            with open(os.path.join(folder, "bad.ksdef"), "w", encoding="utf-8") as file:
                file.write("format A {\n colour red\n}\n")
            snapshot, compiled = os.path.join(folder, "plant.kes"), os.path.join(folder, "plant.cnf")
            run("import", "plant.ksdef", "--data", "data", "-o", snapshot)
            run("compile", "plant.ksdef", "-o", compiled)
            diff = ("diff", snapshot, "plant.ksdef", "--data-new", edited, "-o", "json")
            for name, arguments in [
                    ("check", ("check", "plant.ksdef", "-o", "json")),
                    ("check", ("check", os.path.join(folder, "bad.ksdef"), "-o", "json")),
                    ("info", ("info", snapshot, "-o", "json")), ("info", ("info", compiled, "-o", "json")),
                    ("tables", ("info", snapshot, "--tables", "-o", "json")), ("diff", diff),
                    ("diff-summary", (*diff, "--summary")), ("export", ("export", snapshot, "-f", "json", "-o", "-"))]:
                result = run(*arguments)
                value = json.loads(result.stdout)
                path = os.path.join(SOURCE, "docs", "schemas", name + ".json")
                self.assertEqual(problems_of_file(value, path), [], arguments)
                self.assertTrue(value.get("rows", value.get("findings", value.get("tables"))), arguments)

    def test_the_checker_finds_faults(self):
        schema = {"type": "object", "required": ["a"], "additionalProperties": False,
                  "properties": {"a": {"type": "array", "items": {"enum": [1, "x"]}}}}
        for value, faults in [({"a": [1, "x"]}, 0), ({"a": [2]}, 1), ({}, 1), ({"a": [], "b": 1}, 1), ([], 1),
                              ({"a": "x"}, 1)]:
            self.assertEqual(len(list(problems(value, schema))), faults, value)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
