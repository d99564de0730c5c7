"""Runs the tool as its users do: at a terminal, in pipes, by completion, from the examples in its help.

Usage: shell_test.py TOOL SOURCE_FOLDER
"""

import fcntl
import os
import pty
import re
import shlex
import shutil
import struct
import subprocess
import termios
import unicodedata
import unittest

from running import ENVIRONMENT, PLANT, SOURCE, TOOL, FolderTest, at_terminals, main, run


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


@at_terminals
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
                (run(*check).out, False),
                (run(*check, "--color", "always").out, True),
                (run(*check, "-o", "json", "--color", "always").out, False),
                (run("schema", "absent.ksdef").err, False),
                (run("schema", "absent.ksdef", "--color", "always").err, True)]:
            self.assertEqual("\x1b[" in shown, colored, shown)
        plain = re.sub("\x1b\\[[0-9;]*m", "", run(*check, "--color", "always").out)
        self.assertEqual(plain, run(*check).out)

    def test_tables_keep_to_the_width_and_say_what_is_missing(self):
        schema = ("schema", "plant.ksdef", "Orders", "--color", "never")
        whole = run(*schema).out
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


class Streams(FolderTest):
    def test_definitions_come_from_stdin(self):
        with open(os.path.join(PLANT, "plant.ksdef"), encoding="utf-8") as file:
            text = file.read()
        for line in ("schema {}", "graph {}", "show {} --data data Orders", "check {}",
                     "diff {} plant.ksdef --data-old data --data-new data", "track {} Operations Products.Colour"):
            by_name, by_stream = run(line.format("plant.ksdef")), run(line.format("-"), text=text)
            self.assertEqual((by_name.code, by_stream.code), (0, 0), by_name.err + by_stream.err)
            self.assertEqual(by_stream.out.replace("-:", "plant.ksdef:"), by_name.out)
        self.write("a.ksdef", 'include "-"\n')
        self.tool("check a.ksdef", 3, text=text)

    def test_exports_go_to_stdout(self):
        export = f"export {PLANT}/plant.ksdef --data {PLANT}/data -f "
        for form, made in (("json", "all"), ("json --table Orders", "one"),
                           ("csv --table Orders", "folder/Orders.csv")):
            self.tool(f"{export}{form} -o {made.split('/')[0]}")
            self.assertEqual(self.tool(f"{export}{form} -o -"), self.read(made))

    def test_output_that_cannot_be_written_is_told(self):
        for line in ("--help", "show --help", "audit show --help", "--version", "man", "explain KES-0104",
                     "schema plant.ksdef", "check plant.ksdef"):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([TOOL, *line.split()], stdout=full, stderr=subprocess.PIPE, cwd=PLANT,
                                      env=ENVIRONMENT, timeout=120, check=False)
            self.assertEqual((done.returncode, done.stderr.count(b"error: the output cannot be written")), (3, 1), line)

    def test_encodings_of_csv_files(self):
        definition = "format T {\n key N\n field N : INTEGER\n field Text length 200 : REFERENCE | FREE FORMAT\n}\n"
        latin = "".join(bytes([b]).decode("cp1252", "replace") for b in range(0xA0, 0x100)) + "€Žœ‚"
        texts = [latin, "Größe", "plain"]
        # Pairs lie across the blocks that are read.
        wide = texts + ["漢字", "\U0001F600"] + ["\U0001F600x" * 12] * 6000
        show = "show - --data . T -o csv "
        for lines, encoding, option, mark in [
                (texts, "cp1252", "--encoding windows-1252", b""),
                (wide, "utf-8", "", b""),
                (wide, "utf-8", "--encoding utf-16", b"\xef\xbb\xbf"),
                (wide, "utf-16-le", "--encoding utf-16", b""),
                (wide, "utf-16-be", "--encoding UTF-16", b""),
                (wide, "utf-16-le", "", b"\xff\xfe"),
                (wide, "utf-16-be", "--encoding windows-1252", b"\xfe\xff")]:
            rows = "N,Text\n" + "".join(f"{n},{line}\n" for n, line in enumerate(lines, 1))
            self.write("T.csv", mark + rows.encode(encoding))
            self.assertEqual(self.tool(show + option, text=definition), rows, encoding)
        # What is no text in its encoding is rejected in its row, never changed.
        half_pair = "N,Text\n1,a\n2,\ud800b\n3,c\n".encode("utf-16-le", "surrogatepass")
        half_unit = "N,Text\n1,a\n3,c\n2,b".encode("utf-16-le") + b"\x41"
        for damaged, option in ((half_pair, "--encoding utf-16"), (half_unit, "--encoding utf-16"),
                                (b"N,Text\n1,a\n2,\xfc\n3,c\n", "")):
            self.write("T.csv", damaged)
            result = run(show + option, folder=self.folder, text=definition)
            self.assertEqual((result.code, result.out), (1, "N,Text\n1,a\n3,c\n"), result.err)
            self.assertIn("[KES-3008]", result.err)


# What bash and fish offer behind a command line.
COMPLETIONS = {
    "kestrona tr": "track translate", "kestrona translate ": "apply extract", "kestrona completion ": "bash fish zsh",
    "kestrona show plant.ksdef --da": "--data --dataset", "kestrona show --data d": "data",
    "kestrona show x -o ": "csv json jsonl markdown table", "kestrona check -o ": "json sarif text",
    "kestrona check --color ": "always auto never", "kestrona check ": " ".join(sorted(os.listdir(PLANT))),
    "kestrona check plant.k": "plant.ksdef", "kestrona show x --limit ": ""}
# Complete each line of stdin; what is offered goes to a line.
SHELLS = {
    "bash": """
        while IFS= read -r line; do
            IFS=' ' read -ra COMP_WORDS <<< "$line"; [[ $line == *' ' ]] && COMP_WORDS+=('')
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kestrona 2>/dev/null; echo "${COMPREPLY[*]}"
        done""",
    "fish": """
        while read -l line
            echo (complete -C "$line" | string replace -r '\\t.*' '')
        end"""}


class Help(FolderTest):
    def commands(self):
        """The words of every command that can be run, the hidden ones too."""
        def inner(path):
            text = run(*path, "--help").out
            names = re.findall(r"^  ([a-z-]+) {2,}", text.partition("\nSubcommands:\n")[2], re.MULTILINE)
            return [c for name in names for c in inner(path + [name])] or [path]
        return inner([]) + [["completion"], ["man"]]

    def test_examples_run(self):
        shutil.copytree(PLANT, self.folder, dirs_exist_ok=True)
        shutil.copytree(os.path.join(PLANT, "data"), os.path.join(self.folder, "edited"))
        os.mkdir(os.path.join(self.folder, "lists"))
        for name in ("german.lst", "notes.txt", "texts.txt", "encrypted.txt"):
            self.write(name, "")
        self.write("Audit.log", b"\xff\xfe")
        self.write("plant.key", "a pass phrase\n")
        os.chmod(os.path.join(self.folder, "plant.key"), 0o600)
        for name in ("old.kes", "new.kes"):
            self.tool("import plant.ksdef --data data -o " + name)
        os.symlink(TOOL, os.path.join(self.folder, "kestrona"))
        order = {"protect-key": 1, "compile": -2, "import": -1}
        for command in sorted(self.commands(), key=lambda path: order.get(path[0], 0)):
            text = run(*command, "--help").out
            examples = re.findall(r"^  (kestrona .*)$", text.partition("\nExamples:\n")[2], re.MULTILINE)
            self.assertGreaterEqual(len(examples), 2, command)
            for example in examples:
                self.assertEqual(shlex.split(example)[1:1 + len(command)], command)
                done = subprocess.run(["sh", "-c", "./" + example], cwd=self.folder, capture_output=True,
                                      input=b"a pass phrase\n", env={**ENVIRONMENT, "HOME": self.folder}, timeout=120,
                                      check=False)
                self.assertEqual(done.returncode, 0, (example, done.stderr))

    def test_the_reference_has_every_command(self):
        with open(os.path.join(SOURCE, "docs", "tool.md"), encoding="utf-8") as file:
            text = file.read()
        for command in self.commands():
            self.assertIn(f"\n$ kestrona {' '.join(command)} --help\n", text)

    def test_completion_and_manual_know_every_option(self):
        page = run("man").out
        if shutil.which("groff"):
            formatted = subprocess.run(["groff", "-ww", "-man", "-Tutf8"], input=page, capture_output=True,
                                       encoding="utf-8", check=True)
            self.assertEqual(formatted.stderr, "")
        scripts = {shell: run("completion", shell).out for shell in ("bash", "zsh", "fish")}
        for shell in filter(shutil.which, scripts):
            subprocess.run([shell, "-n"], input=scripts[shell], encoding="utf-8", check=True)
        for command in self.commands():
            text = run(*command, "--help").out
            for option in re.findall(r"^  (?:-\w,)?--([a-z-]+)", text, re.MULTILINE):
                self.assertIn("--" + option, scripts["bash"], command)
                self.assertIn("--" + option, scripts["zsh"], command)
                self.assertIn("-l " + option + " ", scripts["fish"], command)
                hidden = command[0] in ("completion", "man")
                self.assertTrue(hidden or "--" + option in page.replace("\\-", "-"), option)

    def test_shells_complete(self):
        for shell in filter(shutil.which, SHELLS):
            script = run("completion", shell).out + SHELLS[shell]
            done = subprocess.run([shell, "-c", script], input="".join(line + "\n" for line in COMPLETIONS), cwd=PLANT,
                                  encoding="utf-8", capture_output=True, check=True,
                                  env={**ENVIRONMENT, "HOME": self.folder})
            # fish marks folders.
            offered = [" ".join(sorted(line.replace("/", "").split())) for line in done.stdout.split("\n")[:-1]]
            self.assertEqual(dict(zip(COMPLETIONS, offered, strict=True)), COMPLETIONS, shell)


main()
