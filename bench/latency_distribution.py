"""Frame ages at the host's image callback as a distribution: the samples the latency benchmark
leaves in the results folder (VB3_BENCH_SAMPLES_DIR), a baseline kept in the repository so that
later code can be drawn against it, and the cumulative distribution picture."""

import datetime
import math
from pathlib import Path

from report_format import plot

RATE = 25
BASELINE = Path(__file__).resolve().parent / "latency-baseline.txt"
PICTURE = "latency-cdf.png"


def samples_path(results_dir, side):
    return results_dir / f"latency_{RATE}_{side}.txt"


def read_microseconds(path, scale):
    """Sorted samples of a file, one a line, '#' lines left out; scale turns them into µs."""
    if not path.exists():
        return []
    values = []
    for line in path.read_text().splitlines():
        line = line.strip()
        if line and not line.startswith("#"):
            values.append(float(line) * scale)
    return sorted(values)


def quantile(values, p):
    """Nearest rank, as the benchmarks compute it."""
    if not values:
        return None
    rank = max(1, min(len(values), math.ceil(p * len(values))))
    return values[rank - 1]


def baseline_commit():
    if not BASELINE.exists():
        return None
    for line in BASELINE.read_text().splitlines():
        if line.startswith("# commit "):
            return line[len("# commit "):].strip()
    return "unknown"


def record_baseline(results_dir, commit):
    """Keeps this run's library samples as the baseline later runs are drawn against."""
    library = read_microseconds(samples_path(results_dir, "library"), 1e-3)
    if not library:
        return False
    BASELINE.write_text(
        f"# Frame age (µs) at the host's image callback through the library, simulated area camera at {RATE} "
        "frames/s, written by bench/run-benchmarks --record-latency-baseline\n"
        f"# commit {commit}\n"
        f"# recorded {datetime.datetime.now(datetime.timezone.utc):%Y-%m-%d %H:%M} UTC\n"
        + "".join(f"{value:.1f}\n" for value in library))
    return True


def series(results_dir):
    """(title, sorted µs) for each curve there is data for."""
    curves = [("raw Aravis loop", read_microseconds(samples_path(results_dir, "raw"), 1e-3)),
              ("library, this run", read_microseconds(samples_path(results_dir, "library"), 1e-3))]
    commit = baseline_commit()
    if commit is not None:
        curves.append((f"library at {commit} (baseline)", read_microseconds(BASELINE, 1.0)))
    return [(title, values) for title, values in curves if values]


def draw(results_dir, folder):
    """Writes the picture; the curves drawn, or [] when there was nothing to draw."""
    curves = series(results_dir)
    if not curves:
        return []
    data = results_dir / "latency-cdf"
    data.mkdir(parents=True, exist_ok=True)
    plots = []
    for index, (title, values) in enumerate(curves):
        path = data / f"curve_{index}.dat"
        with open(path, "w") as out:
            for rank, value in enumerate(values, start=1):
                out.write(f"{max(value, 1.0) / 1000.0} {rank / len(values)}\n")
        plots.append(f"'{path}' using 1:2 with steps linewidth 2 title '{title}'")
    script = f"""
set terminal pngcairo size 800,480 font ',10'
set output '{folder / PICTURE}'
set logscale x
set grid
set key bottom right
set xlabel 'age of the frame when the host gets it (ms)'
set ylabel 'share of frames'
set yrange [0:1]
set title 'Frame age at {RATE} frames/s (simulated area camera)'
plot {", ".join(plots)}
"""
    return curves if plot(script) else []
