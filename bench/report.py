#!/usr/bin/env python3
"""Runs the benchmark programs and makes one result file and the tables of docs/performance.md of what they found.

scripts/bench builds the programs and starts this; its options are told there. What the tables show, and the target of
each operation, stands in bench/tables.json.
"""
import argparse
import datetime
import json
import math
import os
import platform
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs" / "performance.md"
SIZES = [10_000, 100_000, 1_000_000, 5_000_000]
QUICK_SIZE = 10_000
REPETITIONS = 5
# What Google Benchmark appends to a name.
DECORATION = "(/iterations:[0-9]+)?(/manual_time)?(/real_time)?"
LARGE = "[/:](100000|1000000|5000000)(/|$)"
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


class Failure(Exception):
    pass


def sides(row, quick):
    """Program and name of each benchmark of a row: ours, the peer's, the limit's."""
    size = row.get("quick_size", QUICK_SIZE) if quick else row.get("size")
    peer_program = row.get("peer_program", row["program"])
    found = [(row["program"], row["ours"]), (peer_program, row["peer"][1])]
    if "limit" in row:
        found.append((row["program"], row["limit"][1]))
    return [(program, name.format(size=size)) for program, name in found]


def wanted_programs(build, filters):
    programs = sorted(path for path in (build / "bench").glob("*_bench") if os.access(path, os.X_OK))
    if not programs:
        raise Failure(f"no benchmarks in {build}/bench")
    found = [path for path in programs if not filters or any(part in path.name for part in filters)]
    if not found:
        raise Failure(f"no program has a name like {' '.join(filters)}; there are {' '.join(p.name for p in programs)}")
    return found


def memory_folder(needed):
    """A folder in memory for temporary files, where there is one with room."""
    shared = Path("/dev/shm")
    if shared.is_dir() and os.access(shared, os.W_OK) and shutil.disk_usage(shared).free > needed:
        return str(shared)
    return None


def run(program, options, environment):
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [str(program), f"--benchmark_out={out.name}", "--benchmark_out_format=json", *options]
        done = subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            raise Failure(f"{program.name} failed with exit code {done.returncode}\n{done.stderr}")
        text = Path(out.name).read_text(encoding="utf-8")
    # Nothing is written where no benchmark has a name that the filter wants.
    return json.loads(text)["benchmarks"] if text.strip() else []


def check_names(programs, tables):
    """The names that a long run wants must exist, which a short one would not notice."""
    for program in programs:
        known = {re.sub(DECORATION + "$", "", name)
                 for name in output_of(str(program), "--benchmark_list_tests").split("\n")}
        for row in tables["targets"] + tables["others"]:
            for owner, name in sides(row, False):
                if owner == program.name and name not in known:
                    raise Failure(f"{program.name} has no benchmark {name}")


def seconds_of(row):
    return row["each"] if "each" in row else row["cpu_time"] * SECONDS[row["time_unit"]]


def spread_of(values):
    return (max(values) - min(values)) / statistics.median(values) if min(values) > 0 else 0.0


def collect(program, rows, results):
    """Joins the repetitions of a benchmark: the median, and the spread of all."""
    samples = {}
    for row in rows:
        if row.get("run_type") == "aggregate":
            continue
        if row.get("error_occurred"):
            raise Failure(f"{program.name}: {row['name']}: {row['error_message']}")
        samples.setdefault(re.sub(DECORATION + "$", "", row["run_name"]), []).append(row)
    for name, of_name in samples.items():
        seconds = [seconds_of(row) for row in of_name]
        result = {
            "program": program.name,
            "name": name,
            "seconds": statistics.median(seconds),
            "spread": spread_of(seconds),
            "runs": len(seconds),
        }
        for counter in ("cpu", "bytes", "found"):
            if counter in of_name[0]:
                values = [row[counter] for row in of_name]
                result[counter] = statistics.median(values)
                result[counter + "_spread"] = spread_of(values)
        results[program.name, name] = result


def measure(programs, tables, quick):
    environment = dict(os.environ, OMP_NUM_THREADS="1")
    folder = memory_folder(10**8 if quick else 4 * 10**9)
    if folder:
        environment["TMPDIR"] = folder
    results = {}
    for program in programs:
        start = datetime.datetime.now()
        if quick:
            passes = [["--benchmark_min_time=0.001", f"--benchmark_filter=-{LARGE}"]]
        else:
            names = {name for row in tables["targets"] for owner, name in sides(row, False)
                     if owner == program.name}
            chosen = f"^({'|'.join(sorted(names))}){DECORATION}$"
            passes = [["--benchmark_min_time=0.02", f"--benchmark_filter=-{chosen}" if names else
                       "--benchmark_filter=.*"]]
            if names:
                passes.insert(0, ["--benchmark_min_time=0.1", f"--benchmark_filter={chosen}",
                                  f"--benchmark_repetitions={REPETITIONS}"])
        for options in passes:
            collect(program, run(program, options, environment), results)
        taken = (datetime.datetime.now() - start).total_seconds()
        print(f"bench: {program.name}, {taken:.0f} s", file=sys.stderr, flush=True)
    return results


def output_of(*command):
    try:
        return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return ""


def first_match(path, pattern):
    try:
        found = re.search(pattern, Path(path).read_text(encoding="utf-8"), re.MULTILINE)
    except OSError:
        return ""
    return found.group(1).strip() if found else ""


def describe_machine(build):
    compiler = first_match(build / "CMakeCache.txt", r"^CMAKE_CXX_COMPILER:[A-Z]+=(.*)$") or "c++"
    flags = first_match(build / "CMakeCache.txt", r"^CMAKE_CXX_FLAGS_RELEASE:[A-Z]+=(.*)$")
    memory = first_match("/proc/meminfo", r"^MemTotal:\s+(\d+)")
    return {
        "date": datetime.datetime.now().astimezone().isoformat(timespec="seconds"),
        "commit": output_of("git", "rev-parse", "--short", "HEAD"),
        "changed": bool(output_of("git", "status", "--porcelain", "--untracked-files=no")),
        "processor": first_match("/proc/cpuinfo", r"^model name\s*: (.*)$") or platform.machine(),
        "cores": os.cpu_count(),
        "memory_gb": round(int(memory) / 2**20) if memory else None,
        "system": first_match("/etc/os-release", r'^PRETTY_NAME="(.*)"$') + ", Linux " + platform.release(),
        "compiler": output_of(compiler, "--version").split("\n")[0],
        "flags": flags,
    }


def allowed_seconds(row, peer):
    if "seconds" in row:
        return row["seconds"]
    return peer * row["at_most"] if "at_most" in row else peer / row["speed"]


def results_of(row, results, quick):
    """What the benchmarks of a row came to; nothing where a program of it did not run."""
    ran = {program for program, _ in results}
    wanted = sides(row, quick)
    if not all(program in ran for program, _ in wanted):
        return None
    for key in wanted:
        if key not in results:
            raise Failure(f"{key[0]} has no figure of {key[1]}")
    return [results[key] for key in wanted]


def compare(row, results, quick):
    """One row of the table of other peers."""
    found = results_of(row, results, quick)
    if found is None:
        return None
    ours, peer = (result["seconds"] for result in found[:2])
    return {"operation": row["operation"], "size": row["size"], "ours": ours, "peer_name": row["peer"][0],
            "peer": peer, "ratio": ours / peer}


def judge(row, results, quick):
    """One row of the table of targets."""
    found = results_of(row, results, quick)
    if found is None:
        return None
    figure = row.get("figure", "seconds")
    ours, peer, limit = (result[figure] for result in found)
    allowed = allowed_seconds(row, peer)
    return {
        "operation": row["operation"],
        "size": row.get("size"),
        "ours": ours,
        "peer_name": row["peer"][0],
        "peer": peer,
        "limit_name": row["limit"][0],
        "limit": limit,
        "ratio": ours / peer,
        "target": describe_target(row),
        "met": ours <= allowed,
        "of_target": ours / allowed,
        "needed": row.get("needed", ""),
        "spread": max(result["spread" if figure == "seconds" else figure + "_spread"] for result in found),
    }


def describe_target(row):
    if "seconds" in row:
        return "<= " + duration(row["seconds"])
    if "speed" in row:
        return f"speed >= {row['speed']:g} x"
    aim = f", aim {row['aim']:g} x" if "aim" in row else ""
    return f"<= {row['at_most']:g} x{aim}"


def growth_row(row, results, sizes):
    """Costs at each size and the exponent of the total, by least squares over the logarithms."""
    found = [(size, results.get((row["program"], row["ours"].format(size=size)))) for size in sizes]
    points = [(size, result["seconds"]) for size, result in found if result]
    if not points:
        return None
    exponent = None
    if len(points) > 2:
        logs = [(math.log(size), math.log(cost if row.get("is_total") else cost * size)) for size, cost in points]
        exponent = statistics.linear_regression(*zip(*logs)).slope
    return {"operation": row["operation"], "of": row.get("of", "records"), "is_total": row.get("is_total", False),
            "costs": {str(size): cost for size, cost in points}, "exponent": exponent}


def memory_row(row, results):
    found = {size: results.get(("memory_bench", row["ours"].format(size=size))) for size in SIZES}
    if not any(found.values()):
        return None
    peer = results.get(("memory_bench", row["peer"][1])) if "peer" in row else None
    at_million = found[1_000_000]
    return {"what": row["what"], "bytes": {str(size): result["bytes"] for size, result in found.items() if result},
            "values": row["values"], "over": at_million["bytes"] - row["values"] if at_million else None,
            "peer_name": row["peer"][0] if peer else None, "peer": peer["bytes"] if peer else None}


def three_digits(value):
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}"


def duration(seconds):
    for unit, scale in (("s", 1.0), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= 0.9995 * scale:
            return f"{three_digits(seconds / scale)} {unit.replace('us', 'µs')}"
    return f"{three_digits(seconds * 1e9)} ns"


def times(ratio):
    return f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


def wrapped(text, indent=""):
    return textwrap.fill(text, 120, subsequent_indent=indent, break_long_words=False, break_on_hyphens=False)


def table(head, rows):
    align = ["---"] + ["---:"] * (len(head) - 1)
    return "\n".join("| " + " | ".join(cells) + " |" for cells in [head, align, *rows])


def outcome(row):
    return "yes" if row["met"] else f"no, {row['of_target']:.2f} times the target"


def targets_table(rows):
    return table(["operation", "ours", "peer", "limit", "ours / peer", "target", "met", "spread"],
                 [[row["operation"], duration(row["ours"]), f"{row['peer_name']} {duration(row['peer'])}",
                   f"{row['limit_name']} {duration(row['limit'])}", times(row["ratio"]),
                   row["target"], outcome(row), f"{row['spread']:.0%}"] for row in rows])


def size_name(size):
    return f"{size // 10**6} million" if size >= 10**6 else f"{size:,}"


def missed_list(rows):
    """What is missed, by how much, and what would be needed; the worst first."""
    missed = sorted((row for row in rows if not row["met"]), key=lambda row: -row["of_target"])
    items = [f"- {row['operation']}: {row['of_target']:.2f} times the target."
             + (f" It would need {row['needed']}." if row["needed"] else "") for row in missed]
    return "\n".join(wrapped(item, "  ") for item in items) or "Nothing."


def others_table(rows):
    return table(["operation", "ours", "peer", "ours / peer"],
                 [[row["operation"], duration(row["ours"]), f"{row['peer_name']} {duration(row['peer'])}",
                   times(row["ratio"])] for row in rows])


def growth_table(rows):
    def cells(row):
        costs = [row["costs"].get(str(size)) for size in SIZES]
        exponent = f"{row['exponent']:.2f}" if row["exponent"] is not None else ""
        return [row["operation"], *(duration(cost) if cost else "" for cost in costs), exponent]
    return table(["operation", *(size_name(size) for size in SIZES), "exponent"], [cells(row) for row in rows])


def other_growth_table(rows):
    def cells(row):
        costs = ", ".join(f"{duration(cost)} at {size_name(int(size))}" for size, cost in row["costs"].items())
        return [row["operation"], row["of"], costs, f"{row['exponent']:.2f}" if row["exponent"] is not None else ""]
    return table(["operation", "size in", "cost", "exponent"], [cells(row) for row in rows])


def memory_table(rows):
    def cells(row):
        at = [row["bytes"].get(str(size)) for size in SIZES]
        return [row["what"], *(f"{value:.1f}" if value is not None else "" for value in at), str(row["values"]),
                f"{row['over']:.1f}" if row["over"] is not None else "",
                f"{row['peer_name']} {row['peer']:.1f}" if row["peer"] is not None else ""]
    return table(["bytes for each", *(size_name(size) for size in SIZES), "its values", "over them", "peer"],
                 [cells(row) for row in rows])


def machine_text(machine):
    changed = " with changes that are not committed" if machine["changed"] else ""
    return wrapped(
        f"Measured {machine['date']} at commit {machine['commit']}{changed}: {machine['cores']} cores of "
        f"{machine['processor']}, {machine['memory_gb']} GB, {machine['system']}; {machine['compiler']}, "
        f"`{machine['flags']}`; load {machine['load_before']:.1f} before and {machine['load_after']:.1f} after.")


def make_report(results, tables, machine, quick):
    sizes = [QUICK_SIZE] if quick else SIZES
    rows = {
        "targets": [judge(row, results, quick) for row in tables["targets"]],
        "others": [compare(row, results, quick) for row in tables["others"]],
        "growth": [growth_row(row, results, sizes) for row in tables["growth"]],
        "other_growth": [growth_row(row, results, row["sizes"]) for row in tables["other_growth"]],
        "memory": [memory_row(row, results) for row in tables["memory"]],
    }
    report = {"machine": machine, "quick": quick}
    report.update({name: [row for row in found if row] for name, found in rows.items()})
    report["results"] = list(results.values())
    return report


def render(report):
    makers = {"targets": targets_table, "missed": missed_list, "others": others_table,
              "growth": growth_table, "other_growth": other_growth_table, "memory": memory_table}
    texts = {"machine": machine_text(report["machine"])}
    rows = dict(report, missed=report["targets"])
    texts.update({name: make(rows[name]) for name, make in makers.items() if rows[name]})
    return texts


def write_page(texts):
    page = PAGE.read_text(encoding="utf-8")
    for name, text in texts.items():
        begin, end = f"<!-- bench:{name} -->", f"<!-- /bench:{name} -->"
        if begin not in page or end not in page:
            raise Failure(f"{PAGE.name} lacks {begin} or {end}")
        before, rest = page.split(begin, 1)
        page = before + begin + "\n\n" + text + "\n\n" + end + rest.split(end, 1)[1]
    PAGE.write_text(page, encoding="utf-8")


def check_complete(report, tables):
    """A short run stands for the long one: every row of every table must have come out."""
    for name in ("targets", "others", "growth", "other_growth", "memory"):
        missing = len(tables[name]) - len(report[name])
        if missing:
            raise Failure(f"{missing} rows of the table {name} have no figure")


def read_options(arguments):
    parser = argparse.ArgumentParser(prog="scripts/bench")
    parser.add_argument("filters", nargs="*", metavar="FILTER", help="run only programs with this in their name")
    parser.add_argument("--quick", action="store_true", help="only the smallest sizes, only to see that all runs")
    parser.add_argument("--out", type=Path, metavar="FILE.json", help="where the result file goes")
    parser.add_argument("--write", action="store_true", help="put the tables into docs/performance.md")
    parser.add_argument("--from", dest="sources", type=Path, nargs="+", metavar="FILE.json",
                        help="make the tables of earlier result files and run nothing")
    parser.add_argument("--build", type=Path, default=ROOT / "build" / "release", help=argparse.SUPPRESS)
    options = parser.parse_args(arguments)
    if options.write and (options.quick or options.filters):
        parser.error("--write needs a whole run")
    return options


def measure_report(options, tables):
    load_before = os.getloadavg()[0]
    programs = wanted_programs(options.build, options.filters)
    check_names(programs, tables)
    results = measure(programs, tables, options.quick)
    machine = describe_machine(options.build)
    machine.update(load_before=load_before, load_after=os.getloadavg()[0])
    return make_report(results, tables, machine, options.quick)


def join_reports(paths, tables):
    """Runs of single programs count as one, which is described as the last of them."""
    earlier = [json.loads(path.read_text(encoding="utf-8")) for path in paths]
    results = {(row["program"], row["name"]): row for report in earlier for row in report["results"]}
    return make_report(results, tables, earlier[-1]["machine"], earlier[-1]["quick"])


def main(arguments):
    options = read_options(arguments)
    tables = json.loads((ROOT / "bench" / "tables.json").read_text(encoding="utf-8"))
    if options.sources:
        report = join_reports(options.sources, tables)
    else:
        report = measure_report(options, tables)
    if options.out or not options.sources:
        out = options.out or ROOT / "build" / "bench.json"
        out.write_text(json.dumps(report, indent=1) + "\n", encoding="utf-8")
    texts = render(report)
    print("\n\n".join(texts.values()))
    if not options.filters:
        check_complete(report, tables)
    if options.write:
        write_page(texts)


if __name__ == "__main__":
    try:
        main(sys.argv[1:])
    except Failure as failure:
        sys.exit(f"scripts/bench: {failure}")
