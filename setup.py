"""Builds the wheel through CMake: the project is configured with the
interpreter that runs the build, the Python module and the shared libraries
are installed into a staging folder with the libraries inside the package
(tessarkao/_libs, found through the module's RPATH), and that folder becomes
the wheel's content.  The version is the one in CMakeLists.txt."""
import os
import re
import subprocess
import sys

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

ROOT = os.path.dirname(os.path.abspath(__file__))


def project_version():
    with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as f:
        return re.search(r"project\(TessarkAO VERSION ([0-9.]+)", f.read()).group(1)


class CMakeBuild(build_py):
    def run(self):
        build = os.path.join(ROOT, "build", "wheel")
        stage = os.path.abspath(os.path.join(self.build_lib))
        subprocess.run(["cmake", "-S", ROOT, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                        "-DTK_BUILD_TESTS=OFF", "-DTK_BUILD_BENCH=OFF", "-DTK_BUILD_PYTHON=ON",
                        "-DPython_EXECUTABLE=" + sys.executable,
                        "-DTK_PYTHON_INSTALL_DIR=tessarkao", "-DCMAKE_INSTALL_LIBDIR=tessarkao/_libs"],
                       check=True)
        subprocess.run(["cmake", "--build", build, "--target", "tessarkao_python"], check=True)
        for component in ("runtime", "python"):
            subprocess.run(["cmake", "--install", build, "--prefix", stage, "--component", component], check=True)


class BinaryDistribution(Distribution):
    def has_ext_modules(self):
        return True


setup(version=project_version(), packages=[], cmdclass={"build_py": CMakeBuild}, distclass=BinaryDistribution)
