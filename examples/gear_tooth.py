"""A spur gear, as a gear tool builds one.

Run it with `tktools run examples/gear_tooth.py --save OUT/scene.json -- OUT`:
the involute flanks of one tooth are computed with TKInvoluteCurve, every
tooth is placed around the axis by a TKMatrix4d rotation, the gear's outline
is collected in a TKProfile and drawn into a new extrude feature made by
TKExtrudeShape, placed with a TKPosition and given the brass finish.  An SVG
picture of the whole gear (with its base, pitch and tip circles) is written
to OUT.  `app` (the reference-host application) is provided by tktools.
"""
import math
import os
import sys
from typing import Any

import tessarkao as tk

app: Any = globals()["app"]  # the application `tktools run` hands the script

out_dir = sys.argv[1] if len(sys.argv) > 1 else "out"
os.makedirs(out_dir, exist_ok=True)

# The gear, in page units.
TEETH = 20
MODULE = 0.25
PRESSURE_ANGLE = 20.0  # degrees
FACE_WIDTH = 1.0

pitch_r = MODULE * TEETH / 2.0
alpha = math.radians(PRESSURE_ANGLE)
base_r = pitch_r * math.cos(alpha)
tip_r = pitch_r + MODULE
root_r = pitch_r - 1.25 * MODULE

# One flank: the involute of the base circle from the base circle to the tip.
involute = tk.CreateObject("TessarkAO.TKInvoluteCurve")
involute.CircleRadius = base_r
involute.Points = 12
involute.CalculatePointsThroughAngle(involute.GetAngleFromInvoluteHeight(tip_r - base_r))
flank = []
for i in range(1, involute.Points + 1):
    x, y = tk.Ref(0.0), tk.Ref(0.0)
    involute.GetCalculatedPointFromIndex(i, x, y)
    flank.append((x.value, y.value))

# The tooth is symmetric about the X axis.  At the pitch circle it is half a
# circular pitch thick, so each flank starts on the base circle at
# pi / (2 N) + inv(alpha) from the axis.
half = math.pi / (2 * TEETH) + (math.tan(alpha) - alpha)


def turn(p, angle):
    c, s = math.cos(angle), math.sin(angle)
    return (p[0] * c - p[1] * s, p[0] * s + p[1] * c)


lower = [turn(p, -half) for p in flank]                    # unwinds towards the axis
upper = [turn((p[0], -p[1]), half) for p in reversed(flank)]
tooth = [turn((root_r, 0.0), -half)] + lower + upper + [turn((root_r, 0.0), half)]
# The root circle from one tooth to the next.
gap = 2 * math.pi / TEETH - 2 * half
ROOT_STEPS = 4
root_arc = [turn((root_r, 0.0), half + gap * k / ROOT_STEPS) for k in range(1, ROOT_STEPS)]

# Every tooth is the first one turned about the gear's axis (Z) by the
# library's own rotation matrix.
rotation = tk.CreateObject("TessarkAO.TKMatrix4d")
point = tk.CreateObject("TessarkAO.TKVector4d")
outline = []
for k in range(TEETH):
    rotation.SetRotation(3, 360.0 * k / TEETH)
    for x, y in tooth + root_arc:
        point.SetPosition(x, y, 0.0)
        placed = rotation.MultiplyByPoint(point)
        outline.append((placed.X, placed.Y))

profile = tk.CreateObject("TessarkAO.TKProfile")
loop = profile.AddOutline()
loop.StartPointX, loop.StartPointY = outline[0]
for x, y in outline[1:]:
    loop.AddLineTo(x, y)
loop.AddLineTo(*outline[0])
loop.Closed = True

# The feature: an extrude in a new part, placed beside the origin.
extrude = tk.CreateObject("TessarkAO.TKExtrudeShape")
extrude.UserName = "Spur gear"
extrude.Height[tk.TKExtrudeDirection.TKExtrude_Up] = FACE_WIDTH
place = tk.CreateObject("TessarkAO.TKPosition")
place.PosX, place.PosY, place.PosZ = 2.0, 0.0, 0.0
extrude.Position = place
root = app.ActivePage.Shape
shape = extrude.Create(root)
profile.SetProfileData(extrude.PathComponents)
extrude.Finish()

finish = tk.CreateObject("TessarkAO.TKSurfaceFinish")
finish.Shape = shape
finish.AssignCustomFinish(tk.TKSurfaceFinishes.Brass)

# Read the profile back from the host, as a later tool would.
check = tk.CreateObject("TessarkAO.TKProfile")
check.GetProfileFromPaths(extrude.PathComponents)
read_loop = check.GetOutline(1)
utils = tk.CreateObject("TessarkAO.SceneUtils")

# The picture: the gear centred, its tip circle framed with a margin, the
# caption above it.
MARGIN, CAPTION = 20, 30
size = 480
scale = (size - 2 * MARGIN - CAPTION) / (2 * tip_r)
cx, cy = size / 2, CAPTION + (size - CAPTION) / 2


def svg_point(p):
    return f"{cx + p[0] * scale:.3f},{cy - p[1] * scale:.3f}"


circles = []
for radius, colour, label in ((base_r, "#888", "base"), (pitch_r, "#36c", "pitch"), (tip_r, "#c63", "tip")):
    circles.append(
        f'<circle cx="{cx:.3f}" cy="{cy:.3f}" r="{radius * scale:.3f}" fill="none" '
        f'stroke="{colour}" stroke-width="1.2" stroke-dasharray="5 3"><title>{label} circle</title></circle>'
    )
legend = [
    f'<text x="{size - 10}" y="{40 + 16 * i}" text-anchor="end" font-family="sans-serif" font-size="12" '
    f'fill="{colour}">{label} circle</text>'
    for i, (colour, label) in enumerate((("#888", "base"), ("#36c", "pitch"), ("#c63", "tip")))
]
svg = "\n".join(
    [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{size}" height="{size}" viewBox="0 0 {size} {size}">',
        '<rect width="100%" height="100%" fill="white"/>',
        f'<polygon points="{" ".join(svg_point(p) for p in outline)}" fill="#d9b44a" stroke="#5a4500" stroke-width="1"/>',
        *circles,
        f'<circle cx="{cx:.3f}" cy="{cy:.3f}" r="3" fill="#5a4500"/>',
        f'<text x="10" y="20" font-family="sans-serif" font-size="13">{TEETH} teeth, module {MODULE}, '
        f"pressure angle {PRESSURE_ANGLE} degrees</text>",
        *legend,
        "</svg>",
    ]
)
svg_path = os.path.join(out_dir, "gear_tooth.svg")
with open(svg_path, "w") as f:
    f.write(svg + "\n")

print(f"gear: {TEETH} teeth, module {MODULE}, pressure angle {PRESSURE_ANGLE}")
print(f"  base radius {base_r:.6f}, pitch radius {pitch_r:.6f}, tip radius {tip_r:.6f}, root radius {root_r:.6f}")
print(f"  involute flank: {len(flank)} points, last ({flank[-1][0]:.6f}, {flank[-1][1]:.6f})")
print(f"  gear outline: {TEETH} teeth of {len(tooth)} points, {len(outline)} points in all, closed: {bool(read_loop.Closed)}, "
      f"curves read back from the host: {read_loop.NumberOfCurves}")
print(f"  feature '{shape.Name}' at {utils.GetShapePath(shape)} (extrude height {extrude.Height[tk.TKExtrudeDirection.TKExtrude_Up]})")
print(f"  finish: brass, surface colour {finish.SurfaceColor}")
print(f"  picture: {svg_path}")
