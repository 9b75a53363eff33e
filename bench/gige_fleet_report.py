"""The report's sections on GigE Vision at scale: many cameras at once, large frames (with the
zero-copy check) and the soak, their rows in the targets table and the camera-count picture."""

from report_format import fmt, median, plot, spread, verdict, with_range

TARGET_RATIO = 0.98
TARGET_SOAK_GROWTH_KIB = 1024
# Growth of the library's CPU per frame from one camera to the most that still counts as flat.
FLAT_CPU_GROWTH = 1.2
CAMERA_COUNTS = (1, 4, 8)
RATE_ASKED = 1000
PICTURE = "camera-count.png"
PROGRAM = "vb3_bench_gige"
LOSS_NOTE = ("The raw loop counts lost frames exactly, from the ids of the frames it pops. The library hands the "
             "host one frame per 30 ms, so its losses are the frames sent (from the ids of the delivered frames) "
             "less those its statistics counted, true to the frames of about 30 ms at either end of the window.")
SOAK_PROGRAM = "vb3_bench_soak"


def ratio_verdict(runs, counter, target):
    value = median(runs, counter)
    if value is None:
        return verdict(None)
    if value >= target:
        return verdict(True)
    _, high = spread(runs, counter)
    if high is not None and high >= target:
        return "**missed** in the median, within the run-to-run spread"
    return verdict(False)


class FleetSections:
    def __init__(self, report):
        self.report = report

    def counts(self):
        return {count: self.report.runs(PROGRAM, f"BM_GigeCameraCount/cameras:{count}") for count in CAMERA_COUNTS}

    def cpu_growth(self, side):
        counts = self.counts()
        first = median(counts[CAMERA_COUNTS[0]], f"{side}_cpu_us_per_frame")
        last = median(counts[CAMERA_COUNTS[-1]], f"{side}_cpu_us_per_frame")
        return last / first if first and last else None

    def target_rows(self):
        counts = self.counts()
        ratios = [median(runs, "fps_ratio") for runs in counts.values()]
        met = None if None in ratios else all(ratio >= TARGET_RATIO for ratio in ratios)
        growth, raw_growth = self.cpu_growth("lib"), self.cpu_growth("raw")
        flat = None if growth is None else growth <= max(FLAT_CPU_GROWTH, (raw_growth or 0) * 1.1)
        large = self.report.runs(PROGRAM, "BM_GigeLargeFrames")
        zero_copy = median(large, "zero_copy_share")
        soak = self.report.runs(SOAK_PROGRAM, "BM_GigeSoak")
        soak_growth = median(soak, "rss_growth_kib")
        return [
            [f"Many cameras: the library keeps ≥ {TARGET_RATIO} of raw Aravis's aggregate frames/s at "
             + ", ".join(str(c) for c in CAMERA_COUNTS) + " GigE cameras",
             "; ".join(f"{count}: {fmt(median(runs, 'fps_ratio'), 3)}" for count, runs in counts.items()),
             verdict(met), "§2 table 4b"],
            [f"Many cameras: the library's CPU per frame stays flat from {CAMERA_COUNTS[0]} to "
             f"{CAMERA_COUNTS[-1]} cameras (within {FLAT_CPU_GROWTH}× or the raw loop's own growth)",
             f"×{fmt(growth, 2)} (raw loop ×{fmt(raw_growth, 2)})", verdict(flat), "§2 table 4b"],
            [f"Large frames (2048 × 2048 Mono8 over GigE): ≥ {TARGET_RATIO} of raw Aravis's MB/s",
             f"{with_range(large, 'fps_ratio', 3)}", ratio_verdict(large, "fps_ratio", TARGET_RATIO), "§2 table 4c"],
            ["Zero copy: the host's pixel pointer is the SDK buffer's own",
             f"{fmt(zero_copy, 3)} of the delivered frames",
             verdict(None if zero_copy is None else zero_copy >= 1.0), "§2 table 4c"],
            [f"Soak: resident memory grows ≤ 1 MiB after the warm-up",
             f"{fmt(soak_growth, 0)} KiB over {fmt(median(soak, 'seconds') and median(soak, 'seconds') / 60, 1)} min",
             verdict(None if soak_growth is None else soak_growth <= TARGET_SOAK_GROWTH_KIB), "§6"],
        ]

    def many_cameras(self):
        report = self.report
        counts = self.counts()
        report.add("**Table 4b.** Many cameras at once: " + ", ".join(str(c) for c in CAMERA_COUNTS) + " fake GigE "
                   "cameras, each an `arv-fake-gv-camera-0.8` process on a loopback address of its own "
                   "(127.0.0.x) inside the benchmark's network namespace, 64 × 64 Mono8, each asked for "
                   f"{RATE_ASKED} frames/s. All of them are streamed together by plain Aravis loops (one thread "
                   "each) and then together through the library (one `OpenCamera`/`StartGrab` each), alternating "
                   "which side goes first. Frames per second are summed over the cameras; CPU per frame is the "
                   "receiving process's CPU over the common window divided by the frames it received; "
                   "\"cores\" is that CPU time per second of window. The fake cameras' own CPU is not in it. "
                   + LOSS_NOTE, "")
        rows = []
        for count, runs in counts.items():
            report.problems(runs)
            rows.append([count, with_range(runs, "raw_fps", 0), with_range(runs, "lib_fps", 0),
                         with_range(runs, "fps_ratio", 3),
                         f"{fmt(median(runs, 'raw_camera_fps'), 0)} / {fmt(median(runs, 'lib_camera_fps'), 0)}",
                         f"{fmt(median(runs, 'raw_lost_per_s'))} / {fmt(median(runs, 'lib_lost_per_s'))}",
                         f"{fmt(median(runs, 'raw_cpu_us_per_frame'), 1)} / "
                         f"{fmt(median(runs, 'lib_cpu_us_per_frame'), 1)}",
                         f"{fmt(median(runs, 'raw_cpu_share'), 2)} / {fmt(median(runs, 'lib_cpu_share'), 2)}"])
        report.table(["Cameras", "Raw frames/s", "Library frames/s", "Library / raw", "Sent/s raw / library",
                      "Lost/s raw / library", "CPU µs per frame raw / library", "Cores raw / library"], rows)
        notes = []
        for count, runs in counts.items():
            sent = median(runs, "raw_camera_fps")
            if sent is None:
                continue
            asked = count * RATE_ASKED
            if sent < 0.9 * asked:
                notes.append(f"at {count} camera{'s' if count > 1 else ''} they sent {fmt(sent, 0)} of the "
                             f"{fmt(float(asked), 0)} frames/s asked for")
        if notes:
            report.add("The machine limits both sides: the fake cameras pace themselves in software and share the "
                       "two cores with the receiving process (and here with everything else the machine ran), and "
                       + "; ".join(notes) + ". Where the lost frames stay near zero, the receiving side, raw or "
                       "library, kept up with what was sent, and the frame rate measures the senders, not the "
                       "receiver.", "")
        growth, raw_growth = self.cpu_growth("lib"), self.cpu_growth("raw")
        if growth is not None:
            report.add(f"From {CAMERA_COUNTS[0]} to {CAMERA_COUNTS[-1]} cameras the library's CPU per frame changed "
                       f"×{fmt(growth, 2)}, the raw loops' ×{fmt(raw_growth, 2)}.", "")
        if self.camera_count_plot(counts):
            report.add(f"![Throughput against camera count]({PICTURE})", "",
                       "Left: aggregate frames per second received (and sent, seen by the raw loops); right: CPU "
                       "per received frame.", "")

    def camera_count_plot(self, counts):
        data = self.report.build_dir / "bench-results" / "camera-count.dat"
        data.parent.mkdir(parents=True, exist_ok=True)
        lines = []
        for count, runs in counts.items():
            values = [median(runs, name) for name in ("raw_fps", "lib_fps", "raw_camera_fps", "raw_cpu_us_per_frame",
                                                      "lib_cpu_us_per_frame")]
            if None not in values:
                lines.append(" ".join(str(value) for value in [count, *values]))
        if not lines:
            return False
        data.write_text("\n".join(lines) + "\n")
        script = f"""
set terminal pngcairo size 1100,420 font ',10'
set output '{self.report.folder / PICTURE}'
set multiplot layout 1,2
set grid
set key top left
set xlabel 'cameras streaming at once'
set xtics ({", ".join(str(c) for c in CAMERA_COUNTS)})
set xrange [0:{CAMERA_COUNTS[-1] + 1}]
set yrange [0:*]
set ylabel 'frames per second (all cameras)'
set title 'Throughput'
plot '{data}' using 1:2 with linespoints linewidth 2 title 'raw Aravis loops', \\
     '{data}' using 1:3 with linespoints linewidth 2 title 'through the library', \\
     '{data}' using 1:4 with lines dashtype 2 title 'sent by the cameras'
set ylabel 'CPU per received frame (µs)'
set title 'Receiving process CPU'
plot '{data}' using 1:5 with linespoints linewidth 2 title 'raw Aravis loops', \\
     '{data}' using 1:6 with linespoints linewidth 2 title 'through the library'
unset multiplot
"""
        return plot(script)

    def large_frames(self):
        report = self.report
        runs = report.runs(PROGRAM, "BM_GigeLargeFrames")
        report.add("**Table 4c.** Large frames: one fake GigE camera sending its whole 2048 × 2048 Mono8 sensor "
                   "(4 MiB a frame) as fast as it can in 8000-byte packets (GevSCPSPacketSize, set alike on both sides), "
                   "streamed by a plain Aravis loop and through the library, alternating which goes first.", "")
        report.problems(runs)
        report.table(["", "Raw Aravis loop", "Through the library", "Library / raw"], [
            ["MB/s received", with_range(runs, "raw_mb_per_s", 0), with_range(runs, "lib_mb_per_s", 0),
             with_range(runs, "fps_ratio", 3)],
            ["Frames per second", with_range(runs, "raw_fps", 1), with_range(runs, "lib_fps", 1), ""],
            ["Frames the camera sent per second", with_range(runs, "raw_camera_fps", 1),
             with_range(runs, "lib_camera_fps", 1), ""],
            ["Frames lost per second", with_range(runs, "raw_lost_per_s"), with_range(runs, "lib_lost_per_s"), ""],
            ["CPU per frame (µs)", with_range(runs, "raw_cpu_us_per_frame", 0),
             with_range(runs, "lib_cpu_us_per_frame", 0), with_range(runs, "cpu_ratio", 2)],
        ])
        share = median(runs, "zero_copy_share")
        conclusion = ("so no frame was copied on its way to the host" if share is not None and share >= 1.0
                      else "the others reached the host in memory the SDK's stream does not own")
        report.add("Zero copy: the benchmark notes the data pointer (`arv_buffer_get_data`) of every buffer the "
                   "SDK's stream creates (it interposes `arv_buffer_new_full`) and compares each pixel pointer the "
                   "host's image callback receives (`IImage::GetData`) with them. "
                   f"{fmt(share, 3)} of the {fmt(median(runs, 'delivered'), 0)} frames delivered (median of the "
                   f"repetitions) carried the address of an SDK buffer's own pixels: {conclusion}.", "")

    def soak(self):
        report = self.report
        runs = report.runs(SOAK_PROGRAM, "BM_GigeSoak")
        report.add("## 6. Soak", "")
        if not runs:
            report.add("The soak has not been run (`bench/run-benchmarks --soak-minutes 30`).", "")
            return
        seconds = median(runs, "seconds")
        report.add(f"**Table 11.** Two fake GigE cameras at 64 × 64 Mono8, asked for {RATE_ASKED} frames/s (their "
                   "highest), for "
                   f"{fmt(seconds / 60, 1)} minutes, one through the library and one by a plain Aravis loop at the "
                   "same time in the same process (so both see the same load). Resident memory is the whole "
                   f"process's, compared after a warm-up of {fmt(median(runs, 'warm_up_s'), 0)} s and at the end; "
                   "threads and open files are counted after a first one-second cycle (which sets up what the process "
                   "keeps for good, such as GLib's worker thread), after the warm-up, at the end and after both "
                   "sides closed, each the lowest of ten readings 0.1 s apart (a discovery pass holds a socket "
                   f"per loopback address for a moment). {LOSS_NOTE} {report.soak_when}", "")
        report.problems(runs)
        report.table(["", "Value"], [
            ["Frames per second, library / raw", f"{fmt(median(runs, 'lib_fps'), 0)} / {fmt(median(runs, 'raw_fps'), 0)}"],
            ["Frames received by the library", fmt(median(runs, "lib_frames"), 0)],
            ["Frames lost, library / raw", f"{fmt(median(runs, 'lib_lost'), 0)} / {fmt(median(runs, 'raw_lost'), 0)}"],
            ["Frames the library lost that the raw loop kept (its loss rate taken off)",
             fmt(median(runs, "lost_beyond_raw"), 0)],
            ["Resident after the warm-up / at the end / peak (MiB)",
             f"{fmt(median(runs, 'rss_after_warm_up_mib'), 2)} / {fmt(median(runs, 'rss_end_mib'), 2)} / "
             f"{fmt(median(runs, 'rss_peak_mib'), 2)}"],
            ["Resident growth after the warm-up (KiB)", fmt(median(runs, "rss_growth_kib"), 0)],
            ["Threads before / start / end / after", " / ".join(
                fmt(median(runs, f"threads_{when}"), 0) for when in ("before", "start", "end", "after"))],
            ["Open files before / start / end / after", " / ".join(
                fmt(median(runs, f"files_{when}"), 0) for when in ("before", "start", "end", "after"))],
        ])
