#!/usr/bin/env bash
# The Debian packages cpack makes from the build tree (cmake/TessarkAOCPack.cmake):
# each holds its component's files, and the three unpacked together form a
# working installation.
#   check_deb.sh BUILD_DIR PYTHON
set -euo pipefail
build=$1 python=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Uncompressed: the packages are only listed and unpacked here.
(cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -D CPACK_DEBIAN_COMPRESSION_TYPE=none \
  >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; exit 1; }
prefix=$(sed -n 's/^set(CPACK_PACKAGING_INSTALL_PREFIX "\(.*\)")$/\1/p' "$build/CPackConfig.cmake")
pkgdir=$(sed -n 's/^TK_PYTHON_INSTALL_DIR:STRING=\(.*\)$/\1/p' "$build/CMakeCache.txt")
lib=$prefix/$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=\(.*\)$/\1/p' "$build/CMakeCache.txt")

# Lists `dpkg-deb -c` entries of the package named $1 as "path" or "path -> target".
contents() {
  local deb
  deb=$(echo "$work"/"$1"_*.deb)
  [ -f "$deb" ] || { echo "no package $1 among: $(cd "$work" && echo *.deb)"; exit 1; }
  dpkg-deb -c "$deb" | awk '{ $1 = $2 = $3 = $4 = $5 = ""; sub(/^ +/, ""); sub(/^\.\//, "/"); print }'
}
expect() {  # package, then the lines it must list
  local package=$1 listing line
  shift
  listing=$(contents "$package")
  for line in "$@"; do
    grep -qxF "$line" <<<"$listing" || { echo "$package lacks '$line'"; echo "$listing"; exit 1; }
  done
}
refuse() {  # package, then an extended pattern no line may match
  if contents "$1" | grep -Eq "$2"; then echo "$1 lists $2"; exit 1; fi
}

expect libtessarkao1 "$lib/libtessarkao.so.1 -> libtessarkao.so.1.0.0" "$lib/libtessarkao.so.1.0.0"
refuse libtessarkao1 '/libtessarkao\.so ->'
expect libtessarkao-dev "$prefix/include/tessarkao/TessarkAO.hpp" "$lib/libtessarkao.so -> libtessarkao.so.1" \
  "$lib/cmake/TessarkAO/TessarkAOConfig.cmake" "$lib/pkgconfig/tessarkao.pc"
refuse libtessarkao-dev '/libtessarkao\.so\.1( ->|\.0\.0$)'
expect python3-tessarkao "$prefix/$pkgdir/__init__.py" "$prefix/$pkgdir/py.typed"
contents python3-tessarkao | grep -q "^$prefix/$pkgdir/_core\..*\.so$" || { echo "python3-tessarkao lacks the extension"; exit 1; }
[ "$(dpkg-deb -f "$work"/python3-tessarkao_*.deb Depends | cut -d, -f1)" = "libtessarkao1 (= $(dpkg-deb -f "$work"/libtessarkao1_*.deb Version))" ] \
  || { echo "python3-tessarkao does not depend on its library"; exit 1; }

# Unpacked into one root, the module finds the library through its RPATH.
for deb in "$work"/*.deb; do dpkg-deb -x "$deb" "$work/root"; done
out=$(cd "$work" && PYTHONPATH="$work/root$prefix/$(dirname "$pkgdir")" LD_PRELOAD="${TK_PYTHON_PRELOAD:-}" \
  "$python" -c 'import tessarkao as tk; print(tk.CreateObject("TessarkAO.TKVector4d").Length, tk.__file__)')
[ "$out" = "0.0 $work/root$prefix/$pkgdir/__init__.py" ] || { echo "the unpacked packages gave '$out'"; exit 1; }
echo "Debian packages: $(cd "$work" && echo *.deb)"
