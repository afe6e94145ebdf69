"""A measured cam track imported as a B-spline, as the import tool does it.

Run it with `tktools run examples/import_bspline.py --save OUT/cam.json -- OUT [POINTS.txt]`:
a new part is added to the scene and selected, then TKImports.ImportBSpline
shows its dialog; the script answers it as a user would (Browse picks the
point file, Import is pressed) through tk.ui.  The curve the host now holds
is read back with TKProfile and drawn, with its fit points, into OUT/cam_track.svg.
The default point file, examples/data/cam_track.txt, is a closed track
(its last point repeats the first) exported by a measuring machine.
`app` (the reference-host application) is provided by tktools.
"""
import os
import sys
from typing import Any

import tessarkao as tk

app: Any = globals()["app"]  # the application `tktools run` hands the script

out_dir = sys.argv[1] if len(sys.argv) > 1 else "out"
points_file = sys.argv[2] if len(sys.argv) > 2 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "data", "cam_track.txt")
os.makedirs(out_dir, exist_ok=True)

# The part the curve goes into, selected as the tool expects.
page = app.ActivePage
part = page.Shape.Components(2).Item(1).Shapes(3).Add()
part.Name = "Cam"
page.SelectedItems.Clear()
page.SelectedItems.Add(part)

# The dialog: Browse answers with the point file, then Import.
tk.ui.set_echo(False)
tk.ui.clear()
tk.ui.queue_file(points_file)
tk.ui.queue_button("Import")
tk.CreateObject("TessarkAO.TKImports").ImportBSpline(app)
for m in tk.ui.messages:
    print(f"message ({m.title}): {m.text}")

# Read the curve back from the part's profile, as a later tool would.
profile = tk.CreateObject("TessarkAO.TKProfile")
profile.GetProfileFromPaths(part.Components(3))
if profile.NumberOfOutlines < 1:
    sys.exit("nothing was imported")
curve = profile.GetOutline(1).GetCurve(1)
fit = []
for i in range(1, curve.BSplineFitPoints + 1):
    x, y = tk.Ref(0.0), tk.Ref(0.0)
    curve.GetFitPoint(i, x, y)
    fit.append((x.value, y.value))

# The picture: the fit points joined in order, each marked.
xs, ys = [p[0] for p in fit], [p[1] for p in fit]
span = max(max(xs) - min(xs), max(ys) - min(ys)) or 1.0
size, margin = 440, 20
scale = (size - 2 * margin) / span


def svg_point(p):
    return (margin + (p[0] - min(xs)) * scale, size - margin - (p[1] - min(ys)) * scale)


path = " ".join(f"{x:.2f},{y:.2f}" for x, y in map(svg_point, fit))
marks = "\n".join(f'<circle cx="{x:.2f}" cy="{y:.2f}" r="2" fill="#c63"/>' for x, y in map(svg_point, fit))
svg_path = os.path.join(out_dir, "cam_track.svg")
with open(svg_path, "w") as f:
    f.write(
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{size}" height="{size}" viewBox="0 0 {size} {size}">\n'
        '<rect width="100%" height="100%" fill="white"/>\n'
        f'<polyline points="{path}" fill="none" stroke="#36c" stroke-width="1.5"/>\n'
        f"{marks}\n"
        "</svg>\n"
    )

print(f"cam track: {len(fit)} fit points from {os.path.basename(points_file)}, degree {curve.BSplineDegree}, "
      f"closed: {bool(curve.BSplineClosed)}")
print(f"  picture: {svg_path}")
