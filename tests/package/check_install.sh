#!/usr/bin/env bash
# The library as a user outside the build tree gets it: installed into a
# temporary prefix, then found by a CMake project (find_package) and by
# pkg-config, both linked with --as-needed, and imported by the system's
# python3 from the folder a default install fills.
#   check_install.sh BUILD_DIR SOURCE_DIR PYTHON [extra compiler flags...]
set -euo pipefail
build=$1 source=$2 python=$3
shift 3
flags="$*"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
soname=$(readelf -d "$prefix/lib/libtessarkao.so" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
[ "$soname" = libtessarkao.so.1 ] || { echo "SONAME is '$soname'"; exit 1; }

expect="$(sed -n 's/^project(TessarkAO VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt") 13"

# find_package, linked with --as-needed.
cmake -S "$source/tests/package/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="-Wl,--as-needed $flags" >/dev/null
cmake --build "$work/consumer" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
out=$("$work/consumer/consumer" 2>&1) || true
[ "$out" = "$expect" ] || { echo "find_package program printed '$out', expected '$expect'"; exit 1; }
out=$("$work/consumer/consumer_runtime_only" 2>&1) || true
[ "$out" = 13 ] || { echo "find_package program without the umbrella header printed '$out'"; exit 1; }
out=$("$work/consumer/consumer_refhost" 2>&1) || true
[ "$out" = Scene1 ] || { echo "refhost program printed '$out'"; exit 1; }

# pkg-config, linked with --as-needed.
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
# shellcheck disable=SC2046,SC2086
g++ -std=c++20 $flags "$source/tests/package/consumer/main.cpp" -o "$work/pc" \
  -Wl,--as-needed $(pkg-config --cflags --libs tessarkao) -Wl,-rpath,"$prefix/lib"
out=$("$work/pc" 2>&1) || true
[ "$out" = "$expect" ] || { echo "pkg-config program printed '$out', expected '$expect'"; exit 1; }
# shellcheck disable=SC2046,SC2086
g++ -std=c++20 $flags "$source/tests/package/consumer/runtime_only.cpp" -o "$work/pc_runtime_only" \
  -Wl,--as-needed $(pkg-config --cflags --libs tessarkao) -Wl,-rpath,"$prefix/lib"
out=$("$work/pc_runtime_only" 2>&1) || true
[ "$out" = 13 ] || { echo "pkg-config program without the umbrella header printed '$out'"; exit 1; }

# Python: the package sits in the interpreter's platform folder under the
# prefix, the one the interpreter searches under /usr/local.
rel=$("$python" -c 'import sysconfig; print(sysconfig.get_path("platlib"))')
rel=${rel#/usr/local/}
[ -f "$prefix/$rel/tessarkao/__init__.py" ] || { echo "no package in $prefix/$rel"; exit 1; }
"$python" -c 'import site, sys; sys.exit("/usr/local/'"$rel"'" not in site.getsitepackages())'
out=$(cd "$work" && PYTHONPATH="$prefix/$rel" LD_PRELOAD="${TK_PYTHON_PRELOAD:-}" "$python" -c \
  'import tessarkao as tk; v = tk.CreateObject("TessarkAO.TKVector4d"); v.SetPosition(3, 4, 12); print(tk.__version__, v.Length)')
[ "$out" = "${expect% *} 13.0" ] || { echo "python printed '$out'"; exit 1; }
# tktools finds the package beside itself, without PYTHONPATH.
if [ -x "$prefix/bin/tktools" ]; then
  echo 'print(tk.__file__)' >"$work/where.py"
  out=$(env -u PYTHONPATH "$prefix/bin/tktools" run "$work/where.py")
  [ "$out" = "$prefix/$rel/tessarkao/__init__.py" ] || { echo "tktools imported '$out'"; exit 1; }
fi
echo "installed package: CMake, pkg-config and Python users OK"
