"""Reading Google Benchmark results and writing their figures into the report: shared by
bench/run-benchmarks and the report's section modules."""

import shutil
import statistics
import subprocess


def group(entries):
    """Iterations by benchmark name (repetitions together), aggregates left out."""
    grouped = {}
    for entry in entries:
        if entry.get("run_type") == "aggregate":
            continue
        if entry.get("error_occurred"):
            grouped.setdefault(entry.get("run_name", entry["name"]), []).append({"error": entry.get("error_message")})
            continue
        grouped.setdefault(entry.get("run_name", entry["name"]), []).append(entry)
    return grouped


def median(runs, counter):
    values = [run[counter] for run in runs if counter in run]
    return statistics.median(values) if values else None


def spread(runs, counter):
    values = [run[counter] for run in runs if counter in run]
    return (min(values), max(values)) if values else (None, None)


def errors(runs):
    return [run["error"] for run in runs if "error" in run]


def fmt(value, digits=1):
    if value is None:
        return "n/a"
    if isinstance(value, float) and abs(value) >= 1000:
        return f"{value:,.0f}"
    return f"{value:.{digits}f}"


def with_range(runs, counter, digits=1):
    value = median(runs, counter)
    low, high = spread(runs, counter)
    if value is None:
        return "n/a"
    if len([run for run in runs if counter in run]) > 1:
        return f"{fmt(value, digits)} ({fmt(low, digits)}–{fmt(high, digits)})"
    return fmt(value, digits)


def verdict(met):
    if met is None:
        return "not measured"
    return "**met**" if met else "**missed**"



def plot(script):
    """Runs a gnuplot script; False when gnuplot is missing or failed."""
    if shutil.which("gnuplot") is None:
        return False
    result = subprocess.run(["gnuplot"], input=script, text=True, capture_output=True, check=False)
    if result.returncode != 0:
        print("[run-benchmarks] gnuplot failed: " + result.stderr.strip(), flush=True)
        return False
    return True
