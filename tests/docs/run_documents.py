#!/usr/bin/env python3
"""Runs the code blocks of the documents and compares what they print.

    run_documents.py --source TREE --tool FOLDER [--only NAME] [--write] [--compile COMMAND...]

Each document has a scratch folder of its own with a copy of examples/ and of what is in examples/plant, and the tool
on the PATH. Its blocks are taken in their order, by the words behind the fence:

    console       lines with "$ " are commands, "> " continues one, the lines below are what it prints on stdout and
                  stderr. "..." stands for anything: alone on a line for any lines, within a line for any characters.
                  A command that fails (exit code above 1) must be shown with its error
    LANGUAGE FILE a text of any language, written to FILE for the commands below it
    ksdef         a whole definition, which "kestrona check" must find free of errors
    cpp           a whole program where it has a main; it is compiled, and run where an output block follows
    cpp top       declarations, and
    cpp body      statements: all of a document make one program, whose main begins with a `host` and a `store` unless
                  it makes them itself
    output        what the program before it prints
    diff FILE     lines of FILE that are taken out (-) and put in (+), as an editor would

Blocks of other languages are not run, and the reason is printed. A block without a language is a failure, and so is one
that is indented instead of fenced.

With --write, what commands print is put into the documents, and into the files that are wholly written by the tool,
instead of being compared. Read the difference before you keep it.
"""

import argparse
import collections
import dataclasses
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

NOT_RUN = {
    "sh": "sets up a machine, builds the tree, or needs values of the reader's own",
    "cmake": "belongs to a project of the reader; the test install.examples builds such projects",
    "text": "is not code",
    "ebnf": "is a grammar",
    "json": "shows a form",
}
# Documents whose blocks of a language have a test of their own.
TESTED_ELSEWHERE = {
    ("docs/lint-rules.md", "ksdef"): "the tests of the rules check both definitions of each rule",
    ("docs/file-formats.md", "hex"): "a test compares the bytes with what the tool writes",
    ("docs/file-formats.md", "encrypted"): "a test decrypts it",
}
# Files that the tool writes, with its arguments.
GENERATED = {"docs/images/plant.svg": ["graph", "examples/plant/plant.ksdef"], "docs/errors.md": ["explain", "--all"]}
NEVER_RUN = "(never run)\n"
# What differs from run to run, as pairs of a pattern and what --write puts in its place.
VARYING = [(r"read in \d+\.\d+ s", "read in ... s"), (r"peak memory [\d.]+ MB", "peak memory ... MB"),
           (r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d UTC", "..."), (r"[\d.]+ bytes", "... bytes")]
PROGRAM = """{includes}
{top}
int main() {{
{body}
}}
"""
HOST_HEADERS = "#include <kestrona/host/default_host.h>\n#include <kestrona/kestrona.h>\n"
HOST = "Kestrona::Host::DefaultHost host;\n[[maybe_unused]] auto& store = host.Store();\n"
SESSION = """
for command in "$1"/*.command; do
    eval "$(cat "$command")" >"${command%.command}.output" 2>&1 </dev/null
    echo $? >"${command%.command}.code"
done
"""


@dataclasses.dataclass
class Block:
    line: int
    language: str
    words: list
    text: str

    @property
    def file(self):
        return self.words[0] if self.words and "." in self.words[0] else None


@dataclasses.dataclass
class Command:
    line: int
    text: str
    expected: str = ""


@dataclasses.dataclass
class Program:
    line: int
    source: str
    runs: bool = False
    expected: str = ""


def read_blocks(text):
    """Returns the fenced blocks, and the lines where indented ones begin."""
    blocks, indented, fence, before = [], [], None, ""
    for number, line in enumerate(text.splitlines(), 1):
        if line.lstrip().startswith("```"):
            if fence is None:
                words = line.strip()[3:].split()
                fence = Block(number, words[0] if words else "", words[1:], "")
            else:
                blocks.append(fence)
                fence = None
        elif fence is not None:
            fence.text += line + "\n"
        elif line.startswith("    ") and not before.strip():
            indented.append(number)
        if line.strip() or not before.startswith("    "):
            before = line
    return blocks, indented


def matches(expected, actual):
    pattern = ""
    for line in expected.rstrip("\n").split("\n"):
        if line.strip() == "...":
            pattern += r"(?:[^\n]*\n)*?"
        else:
            pattern += r"[^\n]*?".join(map(re.escape, line.rstrip().split("..."))) + r"[ ]*\n"
    text = actual.rstrip("\n") + "\n" if actual.strip() else "\n"
    return re.fullmatch(pattern, text) is not None


def commands_of(block):
    """Splits a console block into its commands."""
    commands = []
    for number, line in enumerate(block.text.splitlines(), block.line + 1):
        if line.startswith("$ "):
            commands.append(Command(number, line[2:]))
        elif line.startswith("> ") and commands and not commands[-1].expected:
            commands[-1].text += "\n" + line[2:]
        elif commands:
            commands[-1].expected += line + "\n"
    return commands


class Document:
    def __init__(self, options, path, scratch):
        self.options, self.path, self.scratch = options, path, scratch
        self.name = str(path.relative_to(options.source))
        self.failures, self.counts, self.commands = [], collections.Counter(), []
        self.programs, self.program, self.sections = [], None, None # the last one, and the one made of sections
        self.top, self.body = "", ""
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC", HOME=str(scratch))
        self.environment["PATH"] = f"{options.tool}{os.pathsep}{self.environment['PATH']}"
        for name in [name for name in self.environment if name.startswith("KESTRONA_") or name == "NO_COLOR"]:
            del self.environment[name]

    def fail(self, line, text):
        self.failures.append((line, f"{self.name}:{line}: {text}"))

    def run(self):
        blocks, indented = read_blocks(self.path.read_text(encoding="utf-8"))
        for line in indented:
            self.fail(line, "an indented block; put it between fences, with its language")
        for block in blocks:
            self.take(block)
        self.run_commands()
        self.run_programs()

    def take(self, block):
        elsewhere = TESTED_ELSEWHERE.get((self.name, block.language))
        if not block.language:
            self.fail(block.line, "a block without a language")
        elif elsewhere:
            self.counts[f"{block.language} not run: {elsewhere}"] += 1
        elif block.language == "diff" and block.file:
            self.take_edit(block)
        elif block.file:
            self.add(block, f"cat > {block.file} <<'END_OF_BLOCK'\n{block.text}END_OF_BLOCK")
            self.counts["files"] += 1
        elif block.language in NOT_RUN:
            self.counts[f"{block.language} not run: {NOT_RUN[block.language]}"] += 1
        elif block.language == "console" and block.text.startswith("$ "):
            self.commands += commands_of(block)
            self.counts["transcripts"] += 1
        elif block.language == "ksdef":
            definition = self.scratch / f"block at line {block.line}.ksdef"
            definition.write_text(block.text, encoding="utf-8")
            self.add(block, f"kestrona check '{definition}' > checked.txt 2>&1 || cat checked.txt")
            self.counts["definitions"] += 1
        elif block.language == "cpp":
            self.take_program(block)
        elif block.language == "output" and self.program:
            self.program.runs, self.program.expected = True, self.program.expected + block.text
        else:
            self.fail(block.line, f"a block that is not understood here: {block.language}")

    def add(self, block, command):
        self.commands.append(Command(block.line, command))

    def take_edit(self, block):
        """Changes a file as the reader does; the lines that go must be there, one behind the other."""
        lines = block.text.splitlines()
        old = "".join(line[1:] + "\n" for line in lines if line[:1] in "- ")
        new = "".join(line[1:] + "\n" for line in lines if line[:1] in "+ ")
        change = self.scratch / f"change{len(self.commands)}"
        change.with_suffix(".old").write_text(old, encoding="utf-8")
        change.with_suffix(".new").write_text(new, encoding="utf-8")
        self.add(block, f"'{sys.executable}' '{__file__}' --edit {block.file} '{change}'")
        self.counts["edits"] += 1

    def take_program(self, block):
        if "int main" in block.text:
            self.program = Program(block.line, block.text)
            self.programs.append(self.program)
            self.counts["programs"] += 1
            return
        if block.words not in (["top"], ["body"]):
            self.fail(block.line, "C++ without a main; is it 'cpp top' or 'cpp body'?")
            return
        if self.sections is None:
            self.sections = Program(block.line, "")
            self.programs.append(self.sections)
        self.program = self.sections
        self.top += block.text if block.words == ["top"] else ""
        self.body += block.text if block.words == ["body"] else ""
        self.counts["sections of a program"] += 1

    def run_commands(self):
        if not self.commands:
            return
        shutil.copytree(self.options.source / "examples", self.scratch / "examples")
        shutil.copytree(self.options.source / "examples" / "plant", self.scratch, dirs_exist_ok=True)
        session = self.scratch / ".session"
        session.mkdir()
        for index, command in enumerate(self.commands):
            (session / f"{index:04}.command").write_text(command.text, encoding="utf-8")
        subprocess.run(["bash", "-c", SESSION, "session", str(session)], cwd=self.scratch, env=self.environment,
                       timeout=120, check=False)
        written = self.path.read_text(encoding="utf-8").splitlines()
        # From the last one on, so that the lines of those before stay where they are.
        for index, command in reversed(list(enumerate(self.commands))):
            output = session / f"{index:04}.output"
            actual = output.read_text(encoding="utf-8", errors="replace") if output.exists() else NEVER_RUN
            failed = actual == NEVER_RUN or int(output.with_suffix(".code").read_text()) > 1
            if matches(command.expected, actual) and ("error" in command.expected or not failed):
                continue
            if self.options.write and written[command.line - 1].startswith("$ "):
                first = command.line + command.text.count("\n")
                written[first:first + command.expected.count("\n")] = without_varying(actual).splitlines()
            else:
                self.fail(command.line, f"$ {command.text}\n--- the document says\n{command.expected}"
                                        f"--- the command prints\n{actual}---")
        if self.options.write:
            self.path.write_text("\n".join(written) + "\n", encoding="utf-8")

    def run_programs(self):
        if self.sections is not None:
            include = re.compile(r"(?m)^#include .*\n")
            includes = "".join(dict.fromkeys(include.findall(HOST_HEADERS + self.top + self.body)))
            host = "" if re.search(r"DefaultHost host\b", self.body) else HOST
            self.sections.source = PROGRAM.format(includes=includes, top=include.sub("", self.top),
                                                  body=host + include.sub("", self.body))
        for index, program in enumerate(self.programs if self.options.compile else []):
            source, binary = self.scratch / f"program{index}.cpp", self.scratch / f"program{index}"
            source.write_text(program.source, encoding="utf-8")
            command = [word.replace("{source}", str(source)).replace("{binary}", str(binary))
                       for word in self.options.compile]
            made = subprocess.run(command, capture_output=True, text=True, timeout=300, check=False)
            if made.returncode != 0:
                self.fail(program.line, f"does not compile:\n{made.stderr}")
            elif program.runs:
                ran = subprocess.run([binary], cwd=self.scratch, env=self.environment, stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT, encoding="utf-8", timeout=60, check=False)
                if not matches(program.expected, ran.stdout):
                    self.fail(program.line, f"--- the document says\n{program.expected}--- the program prints\n"
                                            f"{ran.stdout}(exit code {ran.returncode})\n---")


def without_varying(text):
    for pattern, replacement in VARYING:
        text = re.sub(pattern, replacement, text)
    return text.strip("\n")


def edit(file, change):
    text = pathlib.Path(file).read_text(encoding="utf-8")
    old, new = (pathlib.Path(change + suffix).read_text(encoding="utf-8") for suffix in (".old", ".new"))
    if text.count(old) != 1:
        sys.exit(f"{file} has these lines {text.count(old)} times:\n{old}")
    pathlib.Path(file).write_text(text.replace(old, new), encoding="utf-8")


def check_generated(options):
    failures = []
    for name, arguments in GENERATED.items():
        written = subprocess.run([options.tool / "kestrona", *arguments], cwd=options.source, capture_output=True,
                                 timeout=60, check=False).stdout
        file = options.source / name
        if options.write:
            file.write_bytes(written)
        elif not file.exists() or written != file.read_bytes():
            failures.append(f"{name}: is not what 'kestrona {' '.join(arguments)}' writes; --write puts it there")
    return failures


def main():
    if sys.argv[1:2] == ["--edit"]:
        edit(*sys.argv[2:])
        return 0
    parser = argparse.ArgumentParser()
    parser.add_argument("--source", type=lambda text: pathlib.Path(text).resolve(), required=True)
    parser.add_argument("--tool", type=lambda text: pathlib.Path(text).resolve(), required=True)
    parser.add_argument("--only", help="the name of one document", default="")
    parser.add_argument("--write", action="store_true", help="put what commands print into the documents")
    parser.add_argument("--compile", nargs=argparse.REMAINDER, default=[],
                        help="how a program is built, with {source} and {binary}; without it C++ is not compiled")
    options = parser.parse_args()

    failures = check_generated(options)
    for path in [options.source / "README.md", *sorted((options.source / "docs").glob("*.md"))]:
        if not path.name.startswith(options.only):
            continue
        with tempfile.TemporaryDirectory(prefix="kestrona-document-") as scratch:
            document = Document(options, path, pathlib.Path(scratch))
            document.run()
        failures += [text for _, text in sorted(document.failures)]
        print(document.name)
        for what, count in sorted(document.counts.items()):
            print(f"    {count} {what}")
    for failure in failures:
        print(failure)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
