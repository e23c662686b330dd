"""Makes the table of a run of the benchmarks, and for the full run the documents.

    report.py RESULTS              the table, to standard output; fails where a ratio is more than twice its target
    report.py RESULTS --write DOCS the table; also puts it into DOCS/performance.md and draws DOCS/performance/*.svg

RESULTS is what the benchmarks wrote as JSON. A row that could not be measured is a failure either way.
"""

import json
import os
import re
import subprocess
import sys

TABLE = re.compile(r"(?<=<!-- table -->\n).*(?=<!-- end of table -->)", re.DOTALL)
SIZE = re.compile(r"(.*?), ([\d,]+) (models|blocks)$")
PLOTS = {
    "start": "Start, nanoseconds for each model",
    "reading everything": "Reading everything, nanoseconds for each attribute",
    "finish": "Finish, nanoseconds for each block",
}


def rows(results):
    """The rows in their order, each a dictionary of aggregates; and the names of those without a measurement."""
    found, broken = {}, []
    for entry in sorted(results["benchmarks"], key=lambda entry: entry["family_index"]):
        name = entry["run_name"].split("/")[0]
        if entry.get("error_occurred"):
            broken.append(f"{name}: {entry['error_message']}")
        elif entry["run_type"] == "aggregate":
            found.setdefault(name, {"label": entry.get("label", "")})[entry["aggregate_name"]] = entry
    for name in [name for name, row in found.items() if not row["median"]["ratio"] > 0]:
        broken.append(f"{name}: the ratio is {found.pop(name)['median']['ratio']}")
    return found, broken


def excess(row):
    """How many times its target the row's ratio is, more than 1 when over it; 0 without a target."""
    median = row["median"]
    if "atMost" in median:
        return median["ratio"] / median["atMost"]
    return median["atLeast"] / median["ratio"] if "atLeast" in median else 0


def target(row):
    for name, words in (("atMost", "at most"), ("atLeast", "at least")):
        if name in row["median"]:
            return f"{words} {row['median'][name]:g}"
    return "-"


def cost(value, unit):
    if unit == "s":
        for scale, name in ((1, "s"), (1e-3, "ms"), (1e-6, "µs"), (1e-9, "ns")):
            if value >= scale:
                break
        return f"{value / scale:.3g} {name}"
    return f"{value:.3g} {unit}".strip()


def verdict(row):
    return "reported" if target(row) == "-" else "over" if excess(row) > 1 else "ok"


def lines(table):
    """The cells of the table, its head first."""
    yield "What", "Ratio", "Spread", "Target", "Result", "Component", "Floor"
    for name, row in table.items():
        median = row["median"]
        spread = f"{row['lowerQuartile']['ratio']:.2f} to {row['upperQuartile']['ratio']:.2f}"
        costs = (cost(median[side], row["label"]) for side in ("component", "floor"))
        yield name, f"{median['ratio']:.2f}", spread, target(row), verdict(row), *costs


def show(table):
    cells = list(lines(table))
    widths = [max(len(line[i]) for line in cells) for i in range(len(cells[0]))]
    for line in cells:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def markdown(table, context):
    head, *body = lines(table)
    text = [f"| {' | '.join(head)} |", "|---|--:|--:|---|---|--:|--:|"]
    text += [f"| {' | '.join(line)} |" for line in body]
    load = ", ".join(f"{value:.1f}" for value in context["load_avg"])
    when = f"{context['date'][:10]}, {context['num_cpus']} processors of {context['mhz_per_cpu']} MHz, load before: {load}"
    repetitions = next(iter(table.values()))["median"]["repetitions"]
    return "\n".join(text) + f"\n\n{when}; {repetitions} repetitions.\n"


def plot(folder, group, title, table):
    """Draws the costs of one group of rows against their sizes."""
    points = []
    for name, row in table.items():
        match = SIZE.match(name)
        if match and match[1] == group:
            points.append((int(match[2].replace(",", "")), row["median"]["component"], row["median"]["floor"], match[3]))
    data = "\n".join(f"{size} {component * 1e9} {floor * 1e9}" for size, component, floor, _ in sorted(points))
    script = f"""
        set terminal svg size 640,400 dynamic background "white"
        set output "{folder}/{group.split()[0]}.svg"
        set title "{title}"
        set xlabel "{points[0][3]}"
        set logscale x
        set xrange [{min(points)[0] / 2}:{max(points)[0] * 2}]
        set yrange [0:*]
        set grid
        set key below
        $data << END
{data}
END
        plot $data using 1:2 with linespoints title "component", $data using 1:3 with linespoints title "floor"
        """
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def write(docs, table, context):
    path = os.path.join(docs, "performance.md")
    with open(path, encoding="utf-8") as file:
        page = file.read()
    with open(path, "w", encoding="utf-8") as file:
        file.write(TABLE.sub(lambda _: markdown(table, context), page))
    folder = os.path.join(docs, "performance")
    os.makedirs(folder, exist_ok=True)
    for group, title in PLOTS.items():
        plot(folder, group, title, table)


def main(results_path, docs=None):
    with open(results_path, encoding="utf-8") as file:
        results = json.load(file)
    table, broken = rows(results)
    show(table)
    if docs is not None and not broken:
        write(docs, table, results["context"])
    if docs is None:
        broken += [f"{name}: more than twice its target" for name, row in table.items() if excess(row) > 2]
    print(f"{len(table)} rows")
    for problem in broken:
        print(f"bench: {problem}", file=sys.stderr)
    return 1 if broken or not table else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[3] if sys.argv[2:3] == ["--write"] else None))
