"""The package works after `cmake --install`, found through its RPATH."""
import os
import subprocess
import sys

import pytest

BUILD = os.environ.get("TESSARKAO_BUILD_DIR", "")


@pytest.mark.skipif(not BUILD, reason="needs TESSARKAO_BUILD_DIR")
def test_installed_package_imports_and_loads_the_installed_libraries(tmp_path):
    prefix = tmp_path / "prefix"
    r = subprocess.run(["cmake", "--install", BUILD, "--prefix", str(prefix)], capture_output=True, text=True)
    assert r.returncode == 0, r.stderr
    site = prefix / "lib" / "python3" / "dist-packages"
    assert (site / "tessarkao" / "__init__.py").exists()
    probe = (
        "import tessarkao as tk\n"
        "print(tk.CreateObject('TessarkAO.Localizer').LoadString(101))\n"
        "print(tk.__file__)\n"
        "print([l.split()[-1] for l in open('/proc/self/maps') if 'libtessarkao.so' in l][0])\n"
    )
    env = dict(os.environ, PYTHONPATH=str(site))
    r = subprocess.run([sys.executable, "-c", probe], capture_output=True, text=True, env=env, cwd=tmp_path)
    assert r.returncode == 0, r.stderr
    text, module, library = r.stdout.split("\n")[:3]
    assert text == "millimeters"
    assert module.startswith(str(site))
    assert library.startswith(str(prefix))  # not the build tree's copy
    tktools = prefix / "bin" / "tktools"
    if tktools.exists():
        script = tmp_path / "s.py"
        script.write_text("print(tk.__file__)\n")
        env = {k: v for k, v in os.environ.items() if k != "PYTHONPATH"}
        r = subprocess.run([str(tktools), "run", str(script)], capture_output=True, text=True, env=env)
        assert r.returncode == 0, r.stderr
        assert r.stdout.startswith(str(site))
