"""Runs the tool while the system lets it down: no memory, full disks, kills, and files that change under its eyes.

Usage: tool_faults_test.py TOOL [--preload LIBRARY] [--long]

LIBRARY is the memory that runs out, built beside this file; without it that part is left out. --long tries many more
places and moments, and takes minutes. The figures are printed at the end.
"""

import argparse
import bisect
import collections
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import zipfile
import zlib

DEFINITION = """
table Colours { "red" = 1 "blue" = 2 }
format Product {
    key Number
    field Number : INTEGER | UNIQUE
    field Name length 40 : TEXT
    field Weight = 1.5 : REAL
    field Twice : REAL | EVALUATE "{#Weight} * 2"
    field Colour : REFERENCE | TABLE(Colours)
    field Likes : MATRIX | REFERENCE | AUTO LIST(Product(Number)) | DATABASE(Product(Number))
}
format Order {
    key Number
    field Number : INTEGER | UNIQUE
    field Product : REFERENCE | DATABASE(Product(Number))
    field Name : REFERENCE | DATABASE(Product(Name)) | ADDITIONAL REFERENCE(Product)
}
"""
FORMER = b"what stood there before"
DRAFT = re.compile(r"(OUT|Product\.csv|Order\.csv)\.[a-z0-9]{6}(-journal)?$")
STAMP = slice(26, 34)  # of a snapshot: when it was written

figures = collections.Counter()


def write(path, content):
    with open(path, "wb") as file:
        file.write(content if isinstance(content, bytes) else content.encode())


def read(path):
    with open(path, "rb") as file:
        return file.read()


def plant(folder, records, name):
    """A folder of CSV files in which the name of every product is `name`, so that a mixture shows."""
    os.makedirs(folder)
    write(f"{folder}/Product.csv", "Number,Name,Weight,Colour,Likes\n" + "".join(
        f"{n},{name} {n},{n / 8},{'red' if n % 2 else 'blue'},{max(n - 1, 1)};{n}\n" for n in range(1, records + 1)))
    write(f"{folder}/Order.csv", "Number,Product\n" + "".join(f"{n},{n}\n" for n in range(1, records + 1)))


class Faults(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="kestrona-faults-")
        os.chdir(cls.folder)
        cls.environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "TMPDIR": cls.folder + "/tmp"}
        os.mkdir("tmp")
        write("plant.ksdef", DEFINITION)
        for name in ("old", "new"):
            plant(name, 300, name)
            cls.tool("import", "plant.ksdef", "--data", name, "-o", f"{name}.kes")
            cls.tool("import", "plant.ksdef", "--data", name, "-o", f"{name}.kez", "--compress")
        # The commands that write; OUT is what they write to.
        imported = ("import", "plant.ksdef", "--data", "new", "-o", "OUT")
        cls.writers = {
            "compile": ("compile", "plant.ksdef", "-o", "OUT"),
            "import": imported,
            "import --compress": (*imported, "--compress"),
            "compress": ("compress", "new.kes", "OUT"),
            "decompress": ("decompress", "new.kez", "OUT"),
            "export csv": ("export", "new.kes", "-f", "csv", "-o", "OUT"),
            "export json": ("export", "new.kes", "-f", "json", "-o", "OUT"),
            "graph": ("graph", "plant.ksdef", "-f", "OUT"),
            "docs": ("docs", "plant.ksdef", "-f", "OUT"),
        }
        for form in ("sqlite", "xlsx"):
            command = ("export", "new.kes", "-f", form, "-o", "OUT")
            if cls.tool(*command, check=False).returncode == 0:
                cls.writers["export " + form] = command
        cls.clear()

    @classmethod
    def tearDownClass(cls):
        os.chdir("/")
        shutil.rmtree(cls.folder)

    @classmethod
    def tool(cls, *arguments, check=True, **more):
        run = subprocess.run([OPTIONS.tool, *arguments], capture_output=True, timeout=120,
                             env={**cls.environment, **more.pop("variables", {})}, **more)
        if check and run.returncode != 0:
            raise AssertionError(f"{arguments}: {run.returncode}, {run.stderr.decode()}")
        return run

    @classmethod
    def clear(cls):
        for name in os.listdir():
            if name == "OUT" or DRAFT.match(name):
                shutil.rmtree(name) if os.path.isdir(name) else os.remove(name)

    @classmethod
    def stage(cls, form):
        """Puts something where the command writes to. Returns what it is."""
        cls.clear()
        if form == "export csv":
            os.mkdir("OUT")
            for name in ("Order", "Product"):
                write(f"OUT/{name}.csv", FORMER)
        else:
            write("OUT", FORMER)

    def whole(self, form):
        """What the command writes when nothing goes wrong, by file."""
        self.stage(form)
        self.tool(*self.writers[form])
        return self.written(form)

    def written(self, form):
        paths = [f"OUT/{name}.csv" for name in ("Order", "Product")] if form == "export csv" else ["OUT"]
        return [self.comparable(path) for path in paths]

    @staticmethod
    def comparable(path):
        data = read(path)
        if data[:1] == b"\x78":
            try:
                data = zlib.decompress(data)
            except zlib.error:
                return b"broken compression"
        if data[:1] == b"P":  # a ZIP file, whose properties hold the time
            with zipfile.ZipFile(path) as archive:
                return [(name, archive.read(name)) for name in archive.namelist() if name != "docProps/core.xml"]
        return data[:STAMP.start] + data[STAMP.stop:]

    def drafts(self):
        return [name for folder in (".", "OUT") if os.path.isdir(folder)
                for name in os.listdir(folder) if DRAFT.match(name)] + os.listdir("tmp")

    def assert_told(self, run, where):
        self.assertGreater(run.returncode, 0, f"{where}: {run.returncode}")
        self.assertRegex(run.stderr + run.stdout, rb"error: ", where)


class Disk(Faults):
    def test_full_at_every_place(self):
        """A limit on the size of files refuses the byte behind it, as a full disk does."""
        for form, command in self.writers.items():
            whole = self.whole(form)
            size = max(os.path.getsize(path) for path in
                       (["OUT/Order.csv", "OUT/Product.csv"] if form == "export csv" else ["OUT"]))
            former = [self.former(form)] * len(whole)
            places = [0, 1, size - 1] + random.sample(range(size), min(size, 300 if OPTIONS.long else 3))
            for place in places:
                self.stage(form)

                def limit():
                    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                    resource.setrlimit(resource.RLIMIT_FSIZE, (place, place))

                run = self.tool(*command, check=False, preexec_fn=limit)
                where = f"{form}, full after {place} of {size} bytes: {run.stderr.decode()}"
                self.assert_told(run, where)
                self.assertEqual(run.returncode, 3, where)
                for found, old, new in zip(self.written(form), former, whole):
                    self.assertIn(found, (old, new), where)
                self.assertIn(former[0], self.written(form), where)
                self.assertEqual(self.drafts(), [], where)
                figures["writes refused"] += 1

    def former(self, form):
        self.stage(form)
        return self.written(form)[0]

    def test_full_output(self):
        for command in (("show", "new.kes", "Order"), ("graph", "plant.ksdef"), ("docs", "plant.ksdef"),
                        ("export", "new.kes", "-f", "json", "-o", "-"), ("check", "plant.ksdef"),
                        ("schema", "plant.ksdef"), ("info", "new.kes"), ("man",)):
            with open("/dev/full", "wb") as full:
                run = subprocess.run([OPTIONS.tool, *command], stdout=full, stderr=subprocess.PIPE, timeout=60,
                                     env=self.environment)
            self.assertGreater(run.returncode, 0, command)

    def test_wrong_kinds_of_files(self):
        os.makedirs("folder", exist_ok=True)
        write("dangling", "")
        os.remove("dangling")
        os.symlink("nowhere", "dangling")
        for path in ("folder", "dangling", "/dev/full", "/proc/self/mem", "plant.ksdef/no"):
            for command in (("check", path), ("show", path, "Order"), ("info", path), ("decompress", path, "OUT"),
                            ("compress", path, "OUT")):
                self.assert_told(self.tool(*command, check=False), command)
        os.makedirs("odd/Product.csv")
        self.assert_told(self.tool("show", "plant.ksdef", "--data", "odd", "Product", check=False), "a folder of CSV")
        for target in ("folder", "/dev/full", "nowhere/OUT", "plant.ksdef/OUT"):
            for form, command in self.writers.items():
                if form != "export csv" or target not in ("folder", "nowhere/OUT"):  # it makes folders
                    run = self.tool(*(target if word == "OUT" else word for word in command), check=False)
                    self.assert_told(run, f"{form} to {target}")


class Kill(Faults):
    def test_at_any_moment(self):
        kills = 200 if OPTIONS.long else 5
        for form in ("compile", "import", "import --compress", "export csv", "export json", "docs"):
            begin = time.monotonic()
            whole = self.whole(form)
            duration = time.monotonic() - begin
            self.stage(form)
            former = self.written(form)
            for _ in range(kills):
                self.stage(form)
                with subprocess.Popen([OPTIONS.tool, *self.writers[form]], env=self.environment,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
                    time.sleep(random.uniform(0, duration))
                    process.kill()
                for found, old, new in zip(self.written(form), former, whole):
                    self.assertIn(found, (old, new), form)
                figures["kills"] += 1 if process.returncode == -signal.SIGKILL else 0
                figures["kills that left a draft"] += 1 if self.drafts() else 0
                for name in os.listdir("tmp"):
                    os.remove(f"tmp/{name}")
            # Nothing that is left over is in the way.
            self.tool(*self.writers[form])
            self.assertEqual(self.written(form), whole, form)


class Change(Faults):
    """Somebody writes the file that the tool is reading."""

    def outcomes(self, change, *command):
        """Runs the command again and again while `change` is called in between all the time."""
        stopped = threading.Event()

        def keep_changing():
            while not stopped.is_set():
                change()

        thread = threading.Thread(target=keep_changing)
        thread.start()
        try:
            for _ in range(150 if OPTIONS.long else 12):
                run = self.tool(*command, check=False)
                self.assertGreaterEqual(run.returncode, 0, f"{command}: {run.stderr.decode()}")
                if run.returncode != 0:
                    self.assertIn(b"error", run.stderr + run.stdout, command)
                figures["reads of a file that changes"] += 1
                yield run
        finally:
            stopped.set()
            thread.join()

    def test_replaced(self):
        for kind in ("kes", "kez"):
            expected = [self.tool("show", f"{name}.{kind}", "Product").stdout for name in ("old", "new")]

            def replace():
                for name in ("old", "new"):
                    shutil.copyfile(f"{name}.{kind}", "next")
                    os.rename("next", "changing")

            replace()
            for run in self.outcomes(replace, "show", "changing", "Product"):
                self.assertEqual(run.returncode, 0, run.stderr.decode())
                self.assertIn(run.stdout, expected)

    def test_written_in_place(self):
        """A compressed snapshot has a checksum, so that no mixture passes; the others must not crash the tool."""
        commands = {"kes": ("show", "changing", "Product"), "kez": ("show", "changing", "Product"),
                    "ksdef": ("check", "changing"), "cnf": ("schema", "changing")}
        self.tool("compile", "plant.ksdef", "-o", "old.cnf")
        shutil.copyfile("old.cnf", "new.cnf")
        shutil.copyfile("plant.ksdef", "old.ksdef")
        write("new.ksdef", DEFINITION.replace("Product", "Article"))
        for kind, command in commands.items():
            expected = [self.tool(command[0], f"{name}.{kind}", *command[2:]).stdout for name in ("old", "new")]
            contents = [read(f"{name}.{kind}") for name in ("old", "new")]

            def rewrite():
                data = random.choice(contents)
                cut = random.randrange(len(data))
                with open("changing", "wb", buffering=0) as file:
                    file.write(data[:cut])
                    time.sleep(random.uniform(0, 0.002))
                    file.write(data[cut:])
                time.sleep(random.uniform(0, 0.02))

            rewrite()
            for run in self.outcomes(rewrite, *command):
                if kind == "kez" and run.returncode == 0:
                    self.assertIn(run.stdout, expected)

    def test_folder_of_records(self):
        shutil.copytree("new", "folder of records")

        def change():
            for name in ("Product", "Order"):
                data = read(f"new/{name}.csv")
                write(f"folder of records/{name}.csv", data[:random.randrange(len(data))])
                write("next", data)
                os.rename("next", f"folder of records/{name}.csv")

        for _ in self.outcomes(change, "import", "plant.ksdef", "--data", "folder of records", "-o", "OUT"):
            pass


class Memory(Faults):
    def test_runs_out(self):
        if OPTIONS.preload is None:
            self.skipTest("no --preload")
        for form in ("compile", "import", "import --compress"):
            whole = self.whole(form)
            self.stage(form)
            former = self.written(form)

            def starved(at, mode):
                self.stage(form)
                return self.tool(*self.writers[form], check=False, variables={
                    "LD_PRELOAD": OPTIONS.preload, "KESTRONA_FAIL_AT": f"{at}{mode}"})

            self.assertEqual(starved(1, "+").returncode, 3)
            enough = bisect.bisect(range(1 << 20), False, key=lambda at: starved(at, "+").returncode == 0)
            for at in range(1, enough) if OPTIONS.long else random.sample(range(1, enough), 12):
                run = starved(at, random.choice(["", "+"]))
                where = f"{form}, request {at}: {run.returncode} {run.stderr.decode()}"
                self.assertGreaterEqual(run.returncode, 0, where)
                if run.returncode != 0:
                    self.assertIn(b"error: ", run.stderr, where)
                self.assertIn(self.written(form), (former, whole), where)
                self.assertEqual(self.drafts(), [], where)
                figures["commands that ran out of memory"] += 1 if run.returncode == 3 else 0


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("tool", type=os.path.abspath)
    parser.add_argument("--preload", type=os.path.abspath)
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--seed", type=int, default=None)
    OPTIONS, rest = parser.parse_known_args()
    seed = random.randrange(1 << 32) if OPTIONS.seed is None else OPTIONS.seed
    random.seed(seed)
    program = unittest.main(argv=[sys.argv[0], *rest], exit=False, verbosity=2)
    print(f"seed {seed}", *(f"{count} {name}" for name, count in sorted(figures.items())), sep="; ")
    sys.exit(0 if program.result.wasSuccessful() else 1)
