#!/usr/bin/env bash
# The wheel as a pip user gets it: built from this source tree by Debian's
# python3-build without isolation (packing the given build tree), checked for
# its content, installed with pip into a fresh venv without the network or the
# system's site-packages, then imported and called there.
#   check_wheel.sh BUILD_DIR SOURCE_DIR PYTHON
set -euo pipefail
build=$1 source=$2 python=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
version=$(sed -n 's/^project(TessarkAO VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")

TESSARKAO_BUILD_DIR=$build "$python" -m build --wheel --no-isolation --outdir "$work/dist" "$source" \
  >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }
wheel=$(echo "$work"/dist/tessarkao-"$version"-*.whl)
[ -f "$wheel" ] || { ls "$work/dist"; echo "no wheel for version $version"; exit 1; }

# Content: the package, its stubs, the extension and the library under its
# SONAME, which the extension's RPATH finds beside it.
"$python" - "$wheel" "$work/unpacked" <<'PY'
import re, sys, zipfile
names = zipfile.ZipFile(sys.argv[1]).namelist()
for pattern in [r"tessarkao/__init__\.py", r"tessarkao/__init__\.pyi", r"tessarkao/_core\.pyi", r"tessarkao/py\.typed",
                r"tessarkao/_core\..*\.so", r"tessarkao/_libs/libtessarkao\.so\.1"]:
    if not any(re.fullmatch(pattern, n) for n in names):
        sys.exit(f"the wheel lacks {pattern}: {names}")
zipfile.ZipFile(sys.argv[1]).extractall(sys.argv[2])
PY
runpath=$(readelf -d "$work"/unpacked/tessarkao/_core.*.so | sed -n 's/.*R\(UN\)\?PATH.*\[\(.*\)\]/\2/p')
case ";$runpath;" in *'$ORIGIN/_libs'*) ;; *) echo "extension RPATH '$runpath' does not name \$ORIGIN/_libs"; exit 1 ;; esac

"$python" -m venv "$work/venv"
"$work/venv/bin/python" -m pip install --no-index --quiet "$wheel"
out=$(cd "$work" && env -u PYTHONPATH LD_PRELOAD="${TK_PYTHON_PRELOAD:-}" "$work/venv/bin/python" -c '
import tessarkao as tk
v = tk.CreateObject("TessarkAO.TKVector4d")
v.SetPosition(3, 4, 12)
print(tk.__version__, v.Length, tk.__file__.startswith("'"$work/venv/"'"))')
[ "$out" = "$version 13.0 True" ] || { echo "python in the venv printed '$out'"; exit 1; }
echo "wheel $(basename "$wheel"): built, installed into a venv and called"
