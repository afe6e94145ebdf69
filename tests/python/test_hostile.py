"""A hostile caller through Python and tktools: every failure arrives as an
automation error with its number, and text of any code units survives."""
import os
import subprocess

import pytest

import tessarkao as tk

TKTOOLS = os.environ.get("TESSARKAO_TKTOOLS", "")


def test_lone_surrogates_round_trip():
    column = tk.CreateObject("TessarkAO.TKColumn")
    column.ColumnType = 3
    text = "a\ud800b\udfff"
    assert column.Add(text) and column.GetAt(1) == text
    assert column.Find("A\ud800B\udfff") == 1


def test_error_texts_are_always_text(tmp_path, raises_number):
    # The loader quotes the bytes it stopped at: here UTF-16, not UTF-8.
    path = tmp_path / "utf16.json"
    path.write_bytes('{"pages": []}'.encode("utf-16"))
    with pytest.raises(tk.AutomationError) as e:
        tk.refhost.load(str(path))
    assert e.value.number == 321 and isinstance(e.value.description, str)

    class Page:
        @property
        def Shape(self):
            raise tk.AutomationError(5, "bad \udcff text")

    view = tk.CreateObject("TessarkAO.TKTreeView")
    view.Scene = Page()
    with pytest.raises(tk.AutomationError) as e:
        view.Refresh()
    assert (e.value.number, e.value.description) == (5, "bad \udcff text")


@pytest.mark.skipif(not os.path.exists(TKTOOLS), reason="tktools was not built")
def test_tktools_reports_the_number_and_valid_text(tmp_path):
    app = tk.refhost.new_application()
    app.ActivePage.Shape.Components(2).Item(1).Shapes(3).Add().Name = "P"
    scene = tmp_path / "scene.json"
    scene.write_text(tk.refhost.dumps(app))
    points = tmp_path / "wide.txt"
    points.write_text("1 2\n" * 2000 + "1 " * 300000 + "\n")
    r = subprocess.run([TKTOOLS, "import-bspline", str(points), "--scene", str(scene), "--select", "P",
                        "--save", str(tmp_path / "out.json")],
                       capture_output=True, timeout=120)
    assert r.stderr.decode("utf-8").endswith("Out of memory (error 7)\n")
    assert r.returncode == 1
    bad = tmp_path / "utf16.json"
    bad.write_bytes('{"pages": []}'.encode("utf-16"))
    r = subprocess.run([TKTOOLS, "tree", str(bad)], capture_output=True, timeout=120)
    assert r.returncode == 1 and "cannot load the scene" in r.stderr.decode("utf-8")
