"""Times glue (Debian's glueviz 1.0.1) on the interactions the explorer's benchmark times, over
the same generated studies: a scatter viewer (angle against range), a table viewer and a
histogram viewer (of range) in one application, each interaction timed until every viewer has
drawn. Prints one JSON object: {interaction: {runs: milliseconds}}, the median of five.

    xvfb-run -a /usr/bin/python3 tools/glue_bench.py DATA_FOLDER 10000 100000 1000000

The studies are those of bench/explorer_interactions.cpp (DATA_FOLDER/explorer-N/cases.csv).
"""
import json
import os
import statistics
import sys
import time
import warnings

os.environ["GLUE_TESTING"] = "True"  # an error raises instead of opening a dialog
import numpy as np

# glue 1.0.1 still names the aliases numpy 1.24 removed.
warnings.simplefilter("ignore", FutureWarning)
for _name, _type in [("complex", complex), ("float", float), ("int", int), ("bool", bool),
                     ("object", object), ("str", str)]:
    if not hasattr(np, _name):
        setattr(np, _name, _type)

import glue.icons  # noqa: E402
import glue.icons.qt.helpers  # noqa: E402
import pandas as pd  # noqa: E402
from glue.app.qt import GlueApplication  # noqa: E402
from glue.core import Data, DataCollection  # noqa: E402
from glue.core.roi import RectangularROI  # noqa: E402
from glue.utils.qt import get_qapp  # noqa: E402
from glue.viewers.histogram.qt import HistogramViewer  # noqa: E402
from glue.viewers.scatter.qt import ScatterViewer  # noqa: E402
from glue.viewers.table.qt import TableViewer  # noqa: E402


# Debian's package leaves out glue's icons; a missing icon is drawn as none.
_icon_path = glue.icons.icon_path


def _icon_path_or_none(icon_name, icon_format="png"):
    try:
        return _icon_path(icon_name, icon_format)
    except RuntimeError:
        return ""


glue.icons.icon_path = _icon_path_or_none
glue.icons.qt.helpers.icon_path = _icon_path_or_none
# Layer icons are tinted from those files: without them, blank.
_tint_pixmap = glue.icons.qt.helpers.tint_pixmap
glue.icons.qt.helpers.tint_pixmap = lambda bm, color: bm if bm.depth() != 1 else _tint_pixmap(bm, color)


def drawn(app, viewers):
    """Lets every viewer take in the change and draws each of them now."""
    app.processEvents()
    for viewer in viewers:
        figure = getattr(viewer, "figure", None)
        if figure is not None:
            figure.canvas.draw()
        viewer.repaint()
    app.processEvents()


def time_runs(runs, data_folder):
    frame = pd.read_csv(os.path.join(data_folder, f"explorer-{runs}", "cases.csv"))
    data = Data(label="cases", **{name: frame[name].to_numpy() for name in frame.columns})
    collection = DataCollection([data])
    application = GlueApplication(collection)
    application.resize(1600, 1000)
    application.show()
    qapp = get_qapp()
    scatter = application.new_data_viewer(ScatterViewer, data=data)
    scatter.state.x_att = data.id["angle"]
    scatter.state.y_att = data.id["range"]
    table = application.new_data_viewer(TableViewer, data=data)
    histogram = application.new_data_viewer(HistogramViewer, data=data)
    histogram.state.x_att = data.id["range"]
    viewers = [scatter, table, histogram]
    drawn(qapp, viewers)

    def clear():
        for group in list(collection.subset_groups):
            collection.remove_subset_group(group)

    def select_by_rectangle(flip):
        clear()
        drawn(qapp, viewers)
        low, high = scatter.state.y_min, scatter.state.y_max
        top = low + (high - low) * (0.6 if flip else 0.5)
        start = time.perf_counter()
        scatter.apply_roi(RectangularROI(xmin=12, xmax=18, ymin=low, ymax=top))
        drawn(qapp, viewers)
        elapsed = time.perf_counter() - start
        selected = collection.subset_groups[0].subsets[0].to_mask().mean()
        print(f"glue: the rectangle selects {selected:.1%} of {runs} runs", file=sys.stderr)
        return elapsed

    def clear_selection(flip):
        clear()
        scatter.apply_roi(RectangularROI(xmin=-1e30, xmax=1e30, ymin=-1e30, ymax=1e30))
        drawn(qapp, viewers)
        start = time.perf_counter()
        clear()
        drawn(qapp, viewers)
        return time.perf_counter() - start

    def change_x(flip):
        start = time.perf_counter()
        scatter.state.x_att = data.id["speed" if flip else "flight_time"]
        drawn(qapp, viewers)
        return time.perf_counter() - start

    result = {}
    for name, interaction in [("select by rectangle", select_by_rectangle),
                              ("clear the selection", clear_selection),
                              ("change the scatter plot's X", change_x)]:
        interaction(False)  # a first run warms caches, as the explorer's benchmark does
        times = [interaction(flip) for flip in [True, False, True, False, True]]
        result[name] = statistics.median(times) * 1e3
    clear()
    application.close()
    return result


def main():
    data_folder = sys.argv[1]
    sizes = [int(size) for size in sys.argv[2:]] or [10000, 100000, 1000000]
    results = {}
    for runs in sizes:
        for name, ms in time_runs(runs, data_folder).items():
            results.setdefault(name, {})[str(runs)] = ms
    print(json.dumps(results))


if __name__ == "__main__":
    main()
