"""The bill-of-materials export, its workbook read back with openpyxl."""
import os
import subprocess
import sys

import openpyxl
import pytest

import tessarkao as tk


def _value(arg):
    # The exporter passes the row and the column by reference.
    return arg.value if isinstance(arg, tk.Ref) else arg


class Bom:
    """A bill-of-materials table as a host supplies one."""

    def __init__(self, filename, cells, fonts=None, flags=1):
        self.Filename = filename
        self.Flags = flags
        self.cells = cells
        self.fonts = fonts or {}
        self.Rows = len(cells)
        self.Columns = max((len(r) for r in cells), default=2)

    def _font(self, r, c):
        return self.fonts.get((_value(r), _value(c)), ("Arial", 10, 0))

    def GetCellData(self, r, c):
        return self.cells[_value(r) - 1][_value(c) - 1]

    def GetFontName(self, r, c):
        return self._font(r, c)[0]

    def GetFontSize(self, r, c):
        return self._font(r, c)[1]

    def GetFontFormat(self, r, c):
        return self._font(r, c)[2]


pytestmark = pytest.mark.usefixtures("quiet_ui")


def test_values_fonts_and_widths(tmp_path):
    path = str(tmp_path / "bom.xlsx")
    cells = [
        ["Item", "Qty", "Description", "Stocked"],
        [1, 2.5, "Hexagon head bolt M8 x 40 zinc plated", True],
        [2, tk.Integer(12), "Nut", False],
    ]
    fonts = {(1, 1): ("Times New Roman", 14, 1), (1, 2): ("Courier New", 9, 2), (1, 3): ("Arial", 11, 3)}
    tk.CreateObject("TessarkAO.TKExports").ExportBOMToExcel(Bom(path, cells, fonts))
    assert tk.ui.messages == []

    ws = openpyxl.load_workbook(path).worksheets[0]
    assert [[c.value for c in row] for row in ws.iter_rows()] == [
        ["Item", "Qty", "Description", "Stocked"],
        [1, 2.5, "Hexagon head bolt M8 x 40 zinc plated", True],
        [2, 12, "Nut", False],
    ]
    assert isinstance(ws["D2"].value, bool) and isinstance(ws["A2"].value, (int, float))
    a1, b1, c1, a2 = ws["A1"].font, ws["B1"].font, ws["C1"].font, ws["A2"].font
    assert (a1.name, a1.sz, bool(a1.b), bool(a1.i)) == ("Times New Roman", 14, True, False)
    assert (b1.name, b1.sz, bool(b1.b), bool(b1.i)) == ("Courier New", 9, False, True)
    assert (c1.name, c1.sz, bool(c1.b), bool(c1.i)) == ("Arial", 11, True, True)
    assert (a2.name, a2.sz, bool(a2.b), bool(a2.i)) == ("Arial", 10, False, False)
    widths = {k: ws.column_dimensions[k].width for k in "ABCD"}
    # Auto-fit follows the longest text shown in each column: the long
    # description, then "Stocked" over TRUE/FALSE, then the short headings.
    assert widths["C"] > widths["D"] > widths["B"] > 0
    assert widths["C"] > widths["A"]


def test_a_table_without_rows_is_still_saved(tmp_path):
    path = str(tmp_path / "empty.xlsx")
    bom = Bom(path, [])
    bom.Rows, bom.Columns = 0, 3
    tk.CreateObject("TessarkAO.TKExports").ExportBOMToExcel(bom)
    ws = openpyxl.load_workbook(path).worksheets[0]
    assert ws.max_row == 1 and ws["A1"].value is None


def test_a_failing_save_says_why_once(tmp_path, capfd):
    with pytest.raises(tk.AutomationError) as e:
        tk.CreateObject("TessarkAO.TKExports").ExportBOMToExcel(Bom(str(tmp_path / "no" / "bom.xlsx"), [[1]]))
    assert "bom.xlsx" in e.value.description and "No such file" in e.value.description
    assert capfd.readouterr().err == ""  # nothing of the writer's own


def test_not_installed_message(tmp_path):
    path = str(tmp_path / "none.xlsx")
    script = (
        "import tessarkao as tk\n"
        "tk.ui.set_echo(False)\n"
        "class B:\n"
        f"    Filename = {path!r}\n"
        "    Flags = 1\n"
        "tk.CreateObject('TessarkAO.TKExports').ExportBOMToExcel(B())\n"
        "print(repr([(m.text, m.title, m.icon) for m in tk.ui.messages]))\n"
    )
    env = dict(os.environ, TESSARKAO_SPREADSHEET="off")
    out = subprocess.run([sys.executable, "-c", script], env=env, capture_output=True, text=True, check=True)
    assert out.stdout.strip() == repr(
        [("Excel does not seem to be installed on this system.  Unable to export.", "Export BOM to Excel",
          "exclamation")])
    assert not os.path.exists(path)
