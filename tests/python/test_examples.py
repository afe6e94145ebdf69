"""The examples, run through tktools as the main job runs them."""
import os
import subprocess
import xml.etree.ElementTree as ET

import pytest

TKTOOLS = os.environ.get("TESSARKAO_TKTOOLS", "")
EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "examples")
pytestmark = pytest.mark.skipif(not os.path.exists(TKTOOLS), reason="tktools was not built")


def text_pixels(text, font):
    """The advance of `text` in the face fontconfig picks for the cell's font,
    at 96 pixels per inch, measured with FreeType itself."""
    import ctypes

    style = ":bold" if font.b else ""
    style += ":italic" if font.i else ""
    path = subprocess.run(["fc-match", "-f", "%{file}", f"{font.name}{style}"], capture_output=True, text=True).stdout
    ft = ctypes.CDLL("libfreetype.so.6")
    library, face = ctypes.c_void_p(), ctypes.c_void_p()
    assert ft.FT_Init_FreeType(ctypes.byref(library)) == 0
    assert ft.FT_New_Face(library, path.encode(), ctypes.c_long(0), ctypes.byref(face)) == 0
    assert ft.FT_Set_Char_Size(face, ctypes.c_long(0), ctypes.c_long(round(font.sz * 64)), 96, 96) == 0
    total = 0
    for ch in text:
        advance = ctypes.c_long()
        index = ft.FT_Get_Char_Index(face, ctypes.c_ulong(ord(ch)))
        assert ft.FT_Get_Advance(face, index, ctypes.c_int32(1 << 1), ctypes.byref(advance)) == 0  # no hinting
        total += advance.value
    ft.FT_Done_Face(face)
    ft.FT_Done_FreeType(library)
    return total / 65536


def run(script, *args):
    r = subprocess.run([TKTOOLS, "run", os.path.join(EXAMPLES, script), *args],
                       capture_output=True, text=True, timeout=300)
    assert r.returncode == 0, r.stdout + r.stderr
    return r.stdout


def test_gear_tooth_builds_a_feature_and_draws_it(tmp_path):
    import math

    scene = tmp_path / "scene.json"
    out = run("gear_tooth.py", "--save", str(scene), "--", str(tmp_path))
    assert "feature 'Spur gear' at Scene1//" in out
    assert "closed: True" in out
    svg = ET.parse(tmp_path / "gear_tooth.svg").getroot()
    ns = "{http://www.w3.org/2000/svg}"
    size = float(svg.get("width"))
    # Every tooth (root, 12 points per flank, root, 3 points along the root
    # circle), all around the centre, inside the tip circle.
    base, pitch, tip = (c for c in svg.findall(ns + "circle") if c.find(ns + "title") is not None)
    cx, cy, tip_r = float(tip.get("cx")), float(tip.get("cy")), float(tip.get("r"))
    points = [tuple(map(float, p.split(","))) for p in svg.find(ns + "polygon").get("points").split()]
    assert len(points) == 20 * 29
    radii = [math.hypot(x - cx, y - cy) for x, y in points]
    assert max(radii) <= tip_r + 0.01 and max(radii) > float(pitch.get("r")) > float(base.get("r"))
    angles = {int(math.degrees(math.atan2(y - cy, x - cx)) // 30) for x, y in points}
    assert len(angles) == 12  # every twelfth of the turn has teeth
    # The circles lie inside the picture.
    for c in (base, pitch, tip):
        r = float(c.get("r"))
        assert 0 < cx - r and cx + r < size and 0 < cy - r and cy + r < size
    assert scene.exists() and "Spur gear" in scene.read_text()


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
    # Every column shows its widest text whole, measured in the cell's own
    # font (bold headings, italic names).
    for column in sheet.iter_cols():
        letter = column[0].column_letter
        width = sheet.column_dimensions[letter].width
        shown = int(((256 * width + 128 // 7) / 256) * 7)  # the column in pixels, 7 per character
        for cell in column:
            if cell.value is None:
                continue
            text = str(cell.value) if not isinstance(cell.value, float) else f"{cell.value:g}"
            assert shown >= text_pixels(text, cell.font), (letter, text, width)


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
