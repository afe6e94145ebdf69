"""The tktools command: subcommands, help, errors, and `run` on a reference-host scene."""
import json
import os
import subprocess

import pytest

TKTOOLS = os.environ.get("TESSARKAO_TKTOOLS", "")
pytestmark = pytest.mark.skipif(not os.path.exists(TKTOOLS), reason="tktools was not built")


def tktools(*args, cwd=None, input=None):
    return subprocess.run([TKTOOLS, *args], capture_output=True, text=True, cwd=cwd, input=input, timeout=120)


def test_help_and_version():
    r = tktools("--version")
    assert r.returncode == 0 and r.stdout.startswith("tktools (TessarkAO) 1.")
    r = tktools("--help")
    assert r.returncode == 0 and "run" in r.stdout
    r = tktools("run", "--help")
    assert r.returncode == 0 and r.stdout.startswith("usage: tktools run SCRIPT.py")
    r = tktools()
    assert r.returncode == 2 and "usage: tktools" in r.stderr


@pytest.mark.parametrize(
    "args, status, reason",
    [
        (["frobnicate"], 2, "tktools: unknown command 'frobnicate'"),
        (["run"], 2, "tktools run: which script?"),
        (["run", "a.py", "b.py"], 2, "tktools run: unexpected argument 'b.py'"),
        (["run", "a.py", "--scene"], 2, "tktools run: option --scene needs a value"),
        (["run", "a.py", "--colour=red"], 2, "tktools run: unknown option --colour"),
        (["run", "/nonexistent/a.py"], 1, "tktools run: cannot read the script /nonexistent/a.py"),
    ],
)
def test_wrong_calls_fail_with_one_line(args, status, reason):
    r = tktools(*args)
    assert r.returncode == status
    lines = r.stderr.strip().splitlines()
    assert len(lines) == 1 and lines[0].startswith(reason)


def write(path, text):
    path.write_text(text)
    return str(path)


def test_script_failures_and_exit_status(tmp_path):
    r = tktools("run", write(tmp_path / "bad.py", "x = 1\napp.NoSuchMember\n"))
    assert r.returncode == 1
    assert "Traceback" in r.stderr
    assert r.stderr.strip().splitlines()[-1].startswith("tktools run: ")
    assert "raised MemberNotFoundError" in r.stderr.strip().splitlines()[-1]
    r = tktools("run", write(tmp_path / "exit.py", "import sys\nsys.exit(3)\n"))
    assert r.returncode == 3
    r = tktools("run", write(tmp_path / "ok.py", "pass\n"), "--scene", str(tmp_path / "none.json"))
    assert r.returncode == 1 and "no scene file" in r.stderr
    broken = write(tmp_path / "broken.json", "{")
    r = tktools("run", write(tmp_path / "ok2.py", "pass\n"), "--scene", broken)
    assert r.returncode == 1 and "cannot load the scene" in r.stderr
    r = tktools("run", write(tmp_path / "ok3.py", "pass\n"), "--save", str(tmp_path / "no" / "dir" / "x.json"))
    assert r.returncode == 1 and "cannot save the scene" in r.stderr


def scene_with_pages(tmp_path):
    """Two pages: an assembly holding a part on the first, a part on the second."""
    import tessarkao as tk

    app = tk.refhost.new_application()
    group = app.ActivePage.Shape.Components(2).Item(1)
    assembly = group.Shapes(1).Add()
    assembly.Name = "Frame"
    assembly.Components(2).Item(1).Shapes(3).Add().Name = "Bracket"
    group.Shapes(3).Add().Name = "Plate"
    second = app.Pages.Add("Drawing")
    second.Shape.Components(2).Item(1).Shapes(3).Add().Name = "Pin"
    path = tmp_path / "scene.json"
    tk.refhost.save(app, str(path))
    return str(path)


def test_tree_prints_the_viewer_tree_of_a_page(tmp_path):
    scene = scene_with_pages(tmp_path)
    r = tktools("tree", scene)
    assert (r.returncode, r.stderr) == (0, "")
    assert r.stdout == "Top Shape\n  Frame (Assembly)\n    Bracket (Part)\n  Plate (Part)\n"
    r = tktools("tree", scene, "--page", "Drawing")
    assert (r.returncode, r.stdout) == (0, "Top Shape\n  Pin (Part)\n")
    r = tktools("tree", scene, "--page=all")
    assert r.stdout.splitlines()[0] == "== page Scene1"
    assert r.stdout.splitlines()[5:] == ["== page Drawing", "Top Shape", "  Pin (Part)"]
    r = tktools("tree", scene, "--page", "Elsewhere")
    assert r.returncode == 1 and r.stderr == "tktools tree: the scene has no page 'Elsewhere'\n"
    r = tktools("tree", write(tmp_path / "broken.json", '{"format": "tessarkao-scene", "pages": ['))
    assert r.returncode == 1 and r.stderr.startswith("tktools tree: cannot load the scene: ")
    assert tktools("tree").returncode == 2
    # Headless, the viewer closes at once and prints the tree it showed.
    r = tktools("view", scene, "--page", "Drawing")
    assert (r.returncode, r.stdout) == (0, "Top Shape\n  Pin (Part)\n")


def test_reg_set_get_export_and_import(tmp_path):
    store = ["--registry", str(tmp_path / "reg.sqlite3")]
    key = "HKCU\\Software\\Tessark\\Tools"
    assert tktools("reg", "set", key, "Title", 'say "hi"\\there', *store).returncode == 0
    assert tktools("reg", "set", key, "Count", "0x2a", "--dword", *store).returncode == 0
    assert tktools("reg", "set", key, "Raw", "hex(1):61,62", "--reg-data", *store).returncode == 0
    assert tktools("reg", "set", key, "@", "default", *store).returncode == 0
    get = lambda name: tktools("reg", "get", "HKEY_CURRENT_USER\\software\\TESSARK\\tools", name, *store)
    assert [get(n).stdout for n in ("Title", "Count", "Raw", "@")] == ['say "hi"\\there\n', "42\n", "ab\n", "default\n"]

    # Version 5.00 by default, as the registry editor writes it today;
    # REGEDIT4 on request.
    r = subprocess.run([TKTOOLS, "reg", "export", "HKCU\\Software\\Tessark", *store], capture_output=True)
    assert r.returncode == 0 and r.stdout.startswith(b"\xff\xfe")
    lines = r.stdout.decode("utf-16").replace("\r\n", "\n").splitlines()
    assert lines[0] == "Windows Registry Editor Version 5.00"  # after the byte-order mark
    assert "[HKEY_CURRENT_USER\\Software\\Tessark\\Tools]" in lines
    # Strings written by set carry their NUL and export as quoted strings;
    # the value written without it keeps the hex(1) form, in UTF-16LE.
    assert '"Title"="say \\"hi\\"\\\\there"' in lines and '"Count"=dword:0000002a' in lines
    assert '"Raw"=hex(1):61,00,62,00' in lines and '@="default"' in lines
    v4 = tktools("reg", "export", "HKCU\\Software\\Tessark", "--format", "4", *store).stdout
    assert v4.startswith("REGEDIT4\n") and '"Raw"=hex(1):61,62\n' in v4

    # The REGEDIT4 export imported from standard input into a fresh store
    # gives the same export.
    third = ["--registry", str(tmp_path / "third.sqlite3")]
    i = subprocess.run([TKTOOLS, "reg", "import", "-", *third], input=v4.encode("cp1252"), capture_output=True)
    assert i.returncode == 0, i.stderr
    assert tktools("reg", "export", "HKCU\\Software\\Tessark", "--format=4", *third).stdout == v4

    # A broken file changes nothing and names its line.
    bad = write(tmp_path / "bad.reg", "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Tessark\\Tools]\n\"New\"=\"x\"\n\"Count\"=dword:zz\n")
    r = tktools("reg", "import", bad, *store)
    assert r.returncode == 1 and "line 5" in r.stderr and len(r.stderr.splitlines()) == 1
    assert get("New").returncode == 1


@pytest.mark.parametrize(
    "args, status, reason",
    [
        (["reg"], 2, "tktools reg: which action"),
        (["reg", "frob"], 2, "tktools reg: unknown action 'frob'"),
        (["reg", "get", "HKXX\\Software", "v"], 2, "tktools reg: 'HKXX\\Software' does not start with a root key"),
        (["reg", "set", "HKCU\\A", "v", "12x", "--dword"], 2, "tktools reg: '12x' is not a dword"),
        (["reg", "set", "HKCU\\A", "v", "dword:1", "--dword", "--reg-data"], 2, "tktools reg: --dword and --reg-data"),
        (["reg", "set", "HKCU\\A", "v", "word:1", "--reg-data"], 2, "tktools reg: 'word:1' is not value data"),
        (["reg", "set", "HKCU", "v", "x"], 2, "tktools reg: values are not written straight below a root key"),
        (["reg", "get", "HKCU\\Nowhere", "v"], 1, "tktools reg: no key HKCU\\Nowhere"),
        (["reg", "export", "HKCU\\Nowhere"], 1, "tktools reg: no key HKCU\\Nowhere"),
        (["reg", "import", "/nonexistent.reg"], 1, "tktools reg: the registry store answered"),
        (["reg", "export", "--format", "3"], 2, "tktools reg: --format is 4 (REGEDIT4) or 5"),
        (["reg", "export", "--codepage", "1252"], 2, "tktools reg: --codepage goes with --format 4"),
        (["reg", "import", "x.reg", "--codepage", "99999"], 2, "tktools reg: code page 99999 is not known here"),
    ],
)
def test_reg_wrong_calls(tmp_path, args, status, reason):
    r = tktools(*args, "--registry", str(tmp_path / "reg.sqlite3"))
    assert r.returncode == status
    assert len(r.stderr.splitlines()) == 1 and r.stderr.startswith(reason), r.stderr


def test_import_bspline_into_a_scene_file(tmp_path):
    scene = scene_with_pages(tmp_path)
    points = write(tmp_path / "points.txt", "X\tY\tZ\n0\t0\t0\n10\t5\t0\n20\t0\t0\n30\t-5\t0\n")
    out = str(tmp_path / "out.json")
    r = tktools("import-bspline", points, "--scene", scene, "--select", "Scene1//Frame//Bracket", "--save", out)
    assert r.returncode == 0 and "Import of B-Spline completed successfully." in r.stderr
    # The curve is a path component of the selected part (the viewer's tree
    # shows only profile components, so the file itself is read).
    root = json.loads(open(out).read())["pages"][0]["root"]
    frame = root["components"][1]["shapes"][0]
    bracket = next(c for c in frame["components"] if c["type"] == 2)["shapes"][0]
    paths = [c for c in bracket["components"] if c["type"] == 3]
    assert bracket["name"] == "Bracket" and len(paths) == 1
    assert paths[0]["curves"][0]["fitPoints"] == [[0.0, 0.0], [10.0, 5.0], [20.0, 0.0], [30.0, -5.0]]
    # The points from standard input, the scene to standard output.
    r = tktools("import-bspline", "-", "--scene", scene, "--select", "Plate", "--save", "-", input="1 2\n3 4\n5 6\n")
    assert r.returncode == 0 and json.loads(r.stdout)["format"] == "tessarkao-scene"
    # The messages the dialog shows are echoed; the last line is the reason.
    r = tktools("import-bspline", write(tmp_path / "none.txt", "a b c\n"), "--scene", scene, "--select", "Plate", "--save", out)
    assert r.returncode == 1
    assert r.stderr.splitlines()[-1] == "tktools import-bspline: The file does not contain valid B-Spline point data."
    r = tktools("import-bspline", points, "--scene", scene, "--select", "Nothing", "--save", out)
    assert r.returncode == 1 and "no shape 'Nothing'" in r.stderr
    r = tktools("import-bspline", points, "--scene", scene, "--select", "Plate")
    assert r.returncode == 2 and "--save OUT.json is needed" in r.stderr


def test_export_bom_from_csv(tmp_path):
    import openpyxl

    csv = 'Item,Qty,Description\n1,4,"Bolt, M8 x 40"\n007,12.5,"Washer ""A"""\n+1,0.5,1e3\n'
    # Read from standard input, saved under exactly the name given.
    out = tmp_path / "bom"
    r = subprocess.run([TKTOOLS, "export-bom", "-", str(out)], input=csv, capture_output=True, text=True)
    assert (r.returncode, r.stderr) == (0, "")
    assert sorted(p.name for p in tmp_path.iterdir()) == ["bom"]
    with open(out, "rb") as f:  # openpyxl goes by the extension of a name
        ws = openpyxl.load_workbook(f).worksheets[0]
    assert [[c.value for c in row] for row in ws.iter_rows()] == [
        ["Item", "Qty", "Description"],
        [1, 4, "Bolt, M8 x 40"],
        ["007", 12.5, 'Washer "A"'],
        ["+1", 0.5, 1000],
    ]
    assert ws["A1"].font.b and not ws["A2"].font.b
    # To standard output; a failing save is one line of the command's own.
    r = subprocess.run([TKTOOLS, "export-bom", "-", "-"], input=csv.encode(), capture_output=True)
    assert r.returncode == 0 and r.stdout.startswith(b"PK")
    r = tktools("export-bom", write(tmp_path / "bom.csv", csv), str(tmp_path / "no" / "such.xlsx"))
    assert r.returncode == 1 and len(r.stderr.splitlines()) == 1 and "[ERROR]" not in r.stderr, r.stderr
    wide = write(tmp_path / "wide.csv", ",".join(str(i) for i in range(27)) + "\n")
    r = tktools("export-bom", wide, str(tmp_path / "wide.xlsx"))
    assert r.returncode == 1 and "at most 26 columns" in r.stderr


STORE_SESSION = r"""
import sys
import tessarkao as tk
tk.ui.screen = (1920, 1080)
d = tk.CreateObject("TessarkAO.DialogUtils")
u = tk.CreateObject("TessarkAO.TKSystemUtils")
if sys.argv[1] == "write":
    d.SetStartPosition(6, 1234, 567)
    u.SetRegistryStringValue(3, "Software\\TessarkAO\\Test", "Text", "abc")
else:
    x, y, text = tk.Ref(0), tk.Ref(0), tk.Ref("")
    d.GetStartPosition(6, x, y)
    print(x.value, y.value, u.ReadRegistryStringValue(3, "Software\\TessarkAO\\Test", "Text", text), text.value)
"""


def test_a_copy_of_the_store_file_alone_holds_every_committed_value(tmp_path):
    import shutil
    import sys

    store = tmp_path / "registry.sqlite3"
    env = dict(os.environ, TESSARKAO_REGISTRY=str(store))
    session = lambda action, e: subprocess.run(
        [sys.executable, "-c", STORE_SESSION, action], capture_output=True, text=True, env=e, timeout=120
    )
    assert session("write", env).returncode == 0
    r = subprocess.run([TKTOOLS, "reg", "set", "HKCU\\Software\\TessarkAO\\Test", "Cli", "from the shell"], env=env)
    assert r.returncode == 0
    copy = tmp_path / "copy" / "registry.sqlite3"
    copy.parent.mkdir()
    shutil.copy(store, copy)  # the main file only, as a backup would take it
    r = session("read", dict(os.environ, TESSARKAO_REGISTRY=str(copy)))
    # Positions and strings read back whole, as on Windows.
    assert r.stdout == "1234 567 0 abc\n", r.stderr
    r = tktools("reg", "get", "HKCU\\Software\\TessarkAO\\Test", "Cli", "--registry", str(copy))
    assert r.stdout == "from the shell\n"
