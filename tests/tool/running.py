"""What the tests of the tool share. Each of them is called with the tool and the folder of the sources."""

import json
import os
import pty
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import types
import unittest

TOOL, SOURCE = (os.path.abspath(path) for path in sys.argv[1:3])
PLANT = os.path.join(SOURCE, "examples", "plant")
ENVIRONMENT = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "TERM": "xterm", "KESTRONA_KEY": "for tests",
               **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}}


def run(*arguments, text="", folder=PLANT, **environment):
    """Runs the tool, without a terminal; a command line may be one text. A variable of None is not set."""
    words = shlex.split(arguments[0]) if len(arguments) == 1 and " " in arguments[0] else arguments
    variables = {name: value for name, value in {**ENVIRONMENT, **environment}.items() if value is not None}
    done = subprocess.run([TOOL, *words], input=text.encode(), capture_output=True, cwd=folder, env=variables,
                          timeout=120, check=False, start_new_session=True)
    out, err = (stream.decode(errors="replace") for stream in (done.stdout, done.stderr))
    check_messages(re.sub("\x1b\\[[0-9;]*m", "", err))
    return types.SimpleNamespace(code=done.returncode, out=out, err=err)


def check_messages(text):
    """Each error and each warning has its code; where there are any, there is advice."""
    messages = [line for line in text.split("\n") if re.match(r"\S.*: (error|warning): ", line)]
    assert all(re.search(r" \[\S+\]$", line) for line in messages), text
    assert bool(messages) == ("\n  hint: " in text or "; expected " in text), text


def has_terminals():
    """Bare containers have none."""
    try:
        ends = pty.openpty()
    except OSError:
        return False
    for end in ends:
        os.close(end)
    return True


at_terminals = unittest.skipUnless(has_terminals(), "no pseudo-terminals here")


def read(*path):
    with open(os.path.join(*path), "rb") as file:
        return file.read()


class FolderTest(unittest.TestCase):
    """Runs the tool in a fresh folder that holds `files`, texts by name. In commands " . " stands for `records`."""
    files = {}
    records = " . "

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="kestrona-tool-")
        self.addCleanup(shutil.rmtree, self.folder)
        for name, content in self.files.items():
            self.write(name, content)

    def write(self, name, content):
        os.makedirs(os.path.dirname(os.path.join(self.folder, name)), exist_ok=True)
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())

    def read(self, name):
        return read(self.folder, name).decode()

    def result(self, line, **more):
        return run(*shlex.split(line.replace(" . ", self.records)), folder=self.folder, **more)

    def tool(self, line, code=0, told="", **more):
        """Expects this exit code, and the text in what is said, whose codes do not matter; returns the output."""
        result = self.result(line, **more)
        self.assertEqual(result.code, code, f"{line}\n{result.out}{result.err}")
        self.assertIn(told, re.sub(r" \[(KES-[0-9]+|[a-z-]+)\](?=\n|$)", "", result.err), line)
        return result.out

    def rows(self, line, **more):
        """What is printed as CSV behind the heading, in one line."""
        command, _, rest = line.partition(" ")
        return " ".join(self.tool(f"{command} -o csv {rest}", **more).split("\n")[1:]).strip()

    def json(self, line, **more):
        value = json.loads(self.tool(line + " -o json", **more))
        return value["rows"] if isinstance(value, dict) and "report" in value else value


def cases(table):
    """The cells of a table, whose lines have a bar between them."""
    return [tuple(cell.strip() for cell in re.split(r" +\|(?: +|$)", line)) for line in table.strip("\n").split("\n")]


def main():
    unittest.main(argv=sys.argv[:1])
