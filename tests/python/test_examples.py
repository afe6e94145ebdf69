"""The examples, run through tktools as the main job runs them."""
import os
import subprocess
import xml.etree.ElementTree as ET

import pytest

TKTOOLS = os.environ.get("TESSARKAO_TKTOOLS", "")
EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "examples")
pytestmark = pytest.mark.skipif(not os.path.exists(TKTOOLS), reason="tktools was not built")


def run(script, *args):
    r = subprocess.run([TKTOOLS, "run", os.path.join(EXAMPLES, script), *args],
                       capture_output=True, text=True, timeout=300)
    assert r.returncode == 0, r.stdout + r.stderr
    return r.stdout


def test_gear_tooth_builds_a_feature_and_draws_it(tmp_path):
    scene = tmp_path / "scene.json"
    out = run("gear_tooth.py", "--save", str(scene), "--", str(tmp_path))
    assert "feature 'Gear tooth' at Scene1//" in out
    assert "closed: True" in out
    svg = ET.parse(tmp_path / "gear_tooth.svg").getroot()
    polygon = svg.find("{http://www.w3.org/2000/svg}polygon")
    points = polygon.get("points").split()
    # Root, 12 points per flank, root again.
    assert len(points) == 26
    assert scene.exists() and "Gear tooth" in scene.read_text()


def test_bill_of_materials_is_sorted_and_exported(tmp_path):
    openpyxl = pytest.importorskip("openpyxl")
    scene = tmp_path / "scene.json"
    run("gear_tooth.py", "--save", str(scene), "--", str(tmp_path))
    out = run("bill_of_materials.py", "--scene", str(scene), "--", str(tmp_path))
    assert "sorted: True" in out
    book = openpyxl.load_workbook(tmp_path / "bill_of_materials.xlsx")
    sheet = book.active
    assert [c.value for c in sheet[1]] == ["Type", "Name", "Level"]
    assert sheet["A1"].font.b
    types = [sheet.cell(row=r, column=1).value for r in range(2, sheet.max_row + 1)]
    assert types == sorted(types, key=str.lower)
    assert "Extrude" in types and "Part" in types


def test_cam_track_is_imported_as_a_closed_bspline(tmp_path):
    scene = tmp_path / "cam.json"
    out = run("import_bspline.py", "--save", str(scene), "--", str(tmp_path))
    # 72 distinct points and the first repeated: closed, and the tool says so.
    assert "cam track: 73 fit points from cam_track.txt, degree 3, closed: True" in out
    assert out.count("message (") == 1 and "Import of B-Spline completed successfully." in out
    svg = ET.parse(tmp_path / "cam_track.svg").getroot()
    assert len(svg.findall("{http://www.w3.org/2000/svg}circle")) == 73
    # A file with text where numbers belong is refused with the tool's message.
    bad = tmp_path / "bad.txt"
    bad.write_text("no numbers here\n")
    r = subprocess.run([TKTOOLS, "run", os.path.join(EXAMPLES, "import_bspline.py"), "--", str(tmp_path), str(bad)],
                       capture_output=True, text=True, timeout=300)
    assert r.returncode == 1 and "message (" in r.stdout and "nothing was imported" in r.stderr
