"""Runs the benchmarks and compares the results with the goals; called by bench/run.

    report.py PROGRAMS [FOLDER...]

PROGRAMS is the folder of the built programs. Each program runs its benchmarks many times in mixed
order, so that whatever disturbs the machine for a while disturbs them alike; what counts is the median
of the repetitions, and a ratio is always one of two medians of the same run. Times are CPU times.
"""

import csv
import json
import pathlib
import re
import statistics
import subprocess
import sys

# Repetitions, and the shortest time in seconds of each.
PROGRAMS = {
    "bench-whole": (31, 0.02),
    "bench-stages": (21, 0.02),
    "bench-size": (15, 0.05),
    "bench-hostile": (15, 0.02),
    "bench-loading": (11, 0.05),
    "bench-allocations": (1, 0.01),
    "bench-memory": (1, 0.01),
}

# A goal counts as failed when it is missed by more than this; what lies between may be noise.
TOLERANCE = 1.25


def run_program(path, folders):
    """Returns {benchmark: {measure: median}}, in the order of the program."""
    repetitions, seconds = PROGRAMS[path.name]
    command = [
        path,
        f"--benchmark_repetitions={repetitions}",
        f"--benchmark_min_time={seconds}",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_format=json",
        *(folders if path.name == "bench-whole" else []),
    ]
    output = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if output.returncode != 0:
        sys.exit(f"{path.name} failed:\n{output.stderr}")
    runs = {}
    for run in json.loads(output.stdout)["benchmarks"]:
        if "error_message" in run:
            sys.exit(f"{run['name']}: {run['error_message']}")
        if run["run_type"] == "iteration":
            name = run["name"].split("/iterations:")[0].split("/repeats:")[0]
            runs.setdefault((run["family_index"], name), []).append(run)
    return {
        name: {
            measure: statistics.median(run[measure] for run in repeated)
            for measure, value in repeated[0].items()
            if isinstance(value, (int, float))
        }
        for (_, name), repeated in sorted(runs.items())
    }


def with_goal(goal, results):
    """Yields (what the pattern of the goal stands for, measured value) for each benchmark under it."""
    pattern = re.escape(goal["numerator"]).replace(r"\*", "(.+)")
    for name, measures in results.items():
        match = re.fullmatch(pattern, name)
        if not match:
            continue
        value = measures[goal["measure"]]
        if goal["denominator"]:
            other = goal["denominator"].replace("*", match[1] if match.groups() else "")
            value /= results[other][goal["measure"]]
        yield match[1] if match.groups() else "", value


def print_goals(goals, results):
    """Prints the table of goals. Returns the number of those that failed."""
    failed = 0
    for goal in goals:
        limit = float(goal["goal"])
        print(f"\n{goal['what']}: goal at most {limit:g}")
        measured = list(with_goal(goal, results))
        if not measured:
            sys.exit(f"Nothing was measured for {goal['numerator']}.")
        for what, value in measured:
            verdict = "met"
            if value > limit * TOLERANCE:
                verdict = "FAILED"
                failed += 1
            elif value > limit:
                verdict = "missed"
            print(f"  {value:10.3f}  {verdict:7} {what}")
    return failed


def print_times(results):
    print("\nMedians:")
    for name, measures in results.items():
        line = f"  {name:40} {measures['cpu_time'] / 1000:12.2f} us"
        if "seconds_per_byte" in measures:
            line += f" {measures['seconds_per_byte'] * 1e9:8.2f} ns a byte"
        print(line)
    stage = {name[6:]: m["cpu_time"] / 1000 for name, m in results.items() if name[:6] == "stage/"}
    print("\nStages of the conversion of one flight plan, in microseconds:")
    print(f"  decode                       {stage['decode']:7.2f}")
    print(f"  split into words             {stage['split']:7.2f}")
    print(f"  parse, without matching      "
          f"{stage['split_and_parse'] - stage['split'] - stage['match']:7.2f}")
    print(f"  match                        {stage['match']:7.2f}")
    print(f"  write                        {stage['write']:7.2f}")
    print(f"  the whole                    {stage['whole']:7.2f}")


def main():
    programs, *folders = sys.argv[1:]
    results = {}
    for name in PROGRAMS:
        print(f"Running {name} ...", file=sys.stderr)
        results.update(run_program(pathlib.Path(programs) / name, folders))
    goals = pathlib.Path(__file__).with_name("goals.csv")
    print_times(results)
    failed = print_goals(csv.DictReader(goals.open(encoding="utf-8")), results)
    if failed:
        sys.exit(f"\n{failed} of the measured values miss their goal by more than "
                 f"{TOLERANCE - 1:.0%}.")


if __name__ == "__main__":
    main()
