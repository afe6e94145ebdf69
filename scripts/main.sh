#!/usr/bin/env bash
# Sets up a fresh machine, builds the optimised library and runs the main job:
# add-on tool sessions on the reference host that write what they made into
# the output folder (default out/): the gear tooth's scene and SVG picture,
# a bill of materials exported to .xlsx, and a measured cam track imported
# as a B-spline with its picture.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
export CCACHE_BASEDIR="$PWD"
# The main job runs unattended: no windows even where a display is set.
export TESSARKAO_UI=headless
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target tktools tessarkao_python
out="$(realpath -m "${1:-out}")"
mkdir -p "$out"
tktools=./build/release/bin/tktools

echo "== gear tooth"
"$tktools" run examples/gear_tooth.py --save "$out/gear_scene.json" -- "$out"
echo "  scene: $out/gear_scene.json"
if [ -f examples/bill_of_materials.py ]; then
  echo "== bill of materials"
  "$tktools" run examples/bill_of_materials.py --scene "$out/gear_scene.json" -- "$out"
fi
echo "== B-spline import"
"$tktools" run examples/import_bspline.py --save "$out/cam_scene.json" -- "$out"
echo "  scene: $out/cam_scene.json"
echo "== made"
ls -l "$out"
