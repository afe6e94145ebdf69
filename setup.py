"""Builds the tessarkao wheel through CMake (see pyproject.toml).

The pure-Python files, the stubs and py.typed come from python/tessarkao.  The
extension and the library's shared objects are built by CMake and installed
into a staging folder, which gives them their install-time RPATHs; the
extension is then packed as tessarkao/_core*.so and the shared objects under
their SONAMEs in tessarkao/_libs, which the extension's RPATH ($ORIGIN/_libs)
names.  Shared objects of the system (SQLite, FreeType, ...) stay outside: the
wheel is for the machine's own distribution.

By default the project is configured afresh in build/wheel (Release, without
tests; TESSARKAO_CMAKE_ARGS adds configure arguments, CMAKE_BUILD_PARALLEL_LEVEL
limits the build's jobs).  TESSARKAO_BUILD_DIR names an already built tree to
pack instead, as the tests do with theirs.
"""
import glob
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = os.path.dirname(os.path.abspath(__file__))
GIVEN_TREE = os.environ.get("TESSARKAO_BUILD_DIR")
TREE = os.path.abspath(GIVEN_TREE) if GIVEN_TREE else os.path.join(ROOT, "build", "wheel")
SCRATCH = os.path.join(TREE, "wheel-setuptools")


def project_version():
    with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as f:
        return re.search(r"project\(TessarkAO VERSION ([0-9.]+)", f.read()).group(1)


def run(*command):
    print("setup.py:", " ".join(command), flush=True)
    subprocess.run(command, check=True)


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        if not GIVEN_TREE:
            run("cmake", "-S", ROOT, "-B", TREE, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                "-DTK_BUILD_TESTS=OFF", "-DTK_BUILD_BENCH=OFF", "-DTK_BUILD_PYTHON=ON",
                "-DPython_EXECUTABLE=" + sys.executable, *shlex.split(os.environ.get("TESSARKAO_CMAKE_ARGS", "")))
            run("cmake", "--build", TREE, "--target", "tessarkao_python")
        with tempfile.TemporaryDirectory() as stage:
            # The components the extension needs: the library (runtime) and
            # the package (python); both are built with tessarkao_python.
            for component in ("runtime", "python"):
                run("cmake", "--install", TREE, "--prefix", stage, "--component", component)
            modules = glob.glob(os.path.join(stage, "**", "tessarkao", "_core.*.so"), recursive=True)
            if len(modules) != 1:
                raise RuntimeError("expected one installed extension, found %r" % modules)
            target = self.get_ext_fullpath(ext.name)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copyfile(modules[0], target)
            libs = os.path.join(os.path.dirname(target), "_libs")
            os.makedirs(libs, exist_ok=True)
            # libtessarkao.so.1 and its kin: the SONAME links, copied as files.
            sonames = glob.glob(os.path.join(stage, "**", "libtessarkao*.so.[0-9]"), recursive=True)
            if not sonames:
                raise RuntimeError("no libtessarkao*.so.N in the installed runtime component")
            for link in sonames:
                shutil.copyfile(os.path.realpath(link), os.path.join(libs, os.path.basename(link)))


os.makedirs(SCRATCH, exist_ok=True)
setup(
    version=project_version(),
    packages=["tessarkao"],
    package_dir={"tessarkao": "python/tessarkao"},
    package_data={"tessarkao": ["*.pyi", "py.typed"]},
    ext_modules=[Extension("tessarkao._core", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    options={"build": {"build_base": os.path.join(SCRATCH, "build")}, "egg_info": {"egg_base": SCRATCH}},
)
