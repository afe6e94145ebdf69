"""Configuration by environment, read when the module loads."""
import os
import subprocess
import sys

PROBE = r"""
import tessarkao as tk
u = tk.CreateObject("TessarkAO.TKSystemUtils")
print(u.SystemDefaultLCID)
print(tk.Double("1,5").value)
HKCU = 3  # the library's number for the current user's root
print(u.SetRegistryLongValue(HKCU, "Software\\TessarkAO\\Test", "Count", 42))
count = tk.Ref(0)
print(u.ReadRegistryLongValue(HKCU, "Software\\TessarkAO\\Test", "Count", count), count.value)
"""


def test_locale_and_registry_store_come_from_the_environment(tmp_path):
    store = tmp_path / "store.sqlite3"
    env = dict(os.environ, LC_ALL="de_DE.UTF-8", TESSARKAO_REGISTRY=str(store))
    r = subprocess.run([sys.executable, "-c", PROBE], capture_output=True, text=True, env=env, cwd=tmp_path)
    assert r.returncode == 0, r.stderr
    assert r.stdout.splitlines() == ["1031", "1.5", "0", "0 42"]
    assert store.exists()  # created on the first write
