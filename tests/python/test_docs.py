"""What help(), inspect, editors and mypy learn about the classes: member texts
from the tables, signatures, the enumerations and the installed stubs."""
import inspect
import os
import pydoc
import subprocess
import sys

import tessarkao as tk

SOURCE = os.path.join(os.path.dirname(__file__), "..", "..")


def test_every_member_of_every_class_has_a_text():
    undocumented = [f"{cls}.{row[0]}" for cls, _, _ in tk.catalogue()
                    for row in tk._core._class_members(cls) if not row[5]]
    assert undocumented == []


def test_help_on_an_object_shows_its_class_members_with_their_texts():
    cs = tk.CreateObject("TessarkAO.TKColumnSet")
    assert type(cs).__name__ == "TKColumnSet" and isinstance(cs, tk.Object)
    text = pydoc.render_doc(cs, renderer=pydoc.plaintext)
    assert "TessarkAO.TKColumnSet" in text
    for name, _, _, _, _, doc, _ in tk._core._class_members("TKColumnSet"):
        assert name in text and doc.split(";")[0].split("(")[0] in " ".join(text.split())
    # The proxy still resolves members late-bound, the documentation aside.
    cs.AddColumn(tk.TKColumnTypes.TKColumnType_Double)
    assert cs.NumberOfColumns == 1 and cs.Item(1).ColumnType == 1


def test_signatures_of_methods_and_indexed_properties():
    m = tk.CreateObject("TessarkAO.TKMatrix4d")
    assert str(inspect.signature(m.SetRotation)) == "(Axis: int, Degrees: float, ApplyToCurrent: bool = False) -> None"
    assert str(inspect.signature(m.GetTranslation)) == "(X: 'Ref', Y: 'Ref', Z: 'Ref') -> None"
    assert str(inspect.signature(m.Value)) == "(Row: int, Column: int) -> float"
    assert "ByRef X: Double" in m.GetTranslation.__doc__ and "translation row" in m.GetTranslation.__doc__
    cs = tk.CreateObject("TessarkAO.TKColumnSet")
    assert str(inspect.signature(cs.Sort)) == "(SortType: int, *ColumnOrder) -> bool"


def test_enumerations_are_int_enums_the_library_accepts():
    assert tk.TKColumnTypes.TKColumnType_String == 3
    assert tk.TKUnit.UNIT_SYSTEM_ANGLE_UNITS == 12 and tk.TKTools.TKTOOL_NULL == 0
    assert tk.ESheetMetalReliefs.SheetMetalRelief_All == 15 and tk.TKSystemLCIDs.LCID_Japanese == 1041
    assert tk.TKSurfaceFinishes.Brass == 2 and tk.RefreshSettings.OnSetScene == 2
    column = tk.CreateObject("TessarkAO.TKColumnSet").AddColumn(tk.TKColumnTypes.TKColumnType_String)
    assert column.ColumnType == tk.TKColumnTypes.TKColumnType_String


def test_mypy_accepts_the_examples_against_the_stubs():
    package = os.path.dirname(os.path.dirname(tk.__file__))
    assert os.path.exists(os.path.join(package, "tessarkao", "py.typed"))
    env = dict(os.environ, MYPYPATH=package)
    env.pop("LD_PRELOAD", None)
    r = subprocess.run([sys.executable, "-m", "mypy", "--no-incremental", "--cache-dir", os.devnull,
                        os.path.join(SOURCE, "examples")], capture_output=True, text=True, env=env)
    assert r.returncode == 0, r.stdout + r.stderr
