"""A bill of materials gathered from a scene, as a BOM tool builds one.

Run it with `tktools run examples/bill_of_materials.py --scene SCENE.json -- OUT`:
every shape of the scene is listed with TKTreeView, the rows are collected in
a TKColumnSet (type, name, depth, quantity), sorted on two keys (type, then
name), and exported to OUT/bill_of_materials.xlsx through TKExports, which
drives the spreadsheet application ("Excel.Application") late-bound.
"""
import os
import sys
from typing import Any

import tessarkao as tk

app: Any = globals()["app"]  # the application `tktools run` hands the script

out_dir = sys.argv[1] if len(sys.argv) > 1 else "out"
os.makedirs(out_dir, exist_ok=True)

TYPE_NAMES = {1: "Assembly", 3: "Part", 5: "Extrude", 11: "Sheet Metal Extrude", 13: "Sheet Metal Form Shape",
              14: "Sheet Metal Bend"}

page = app.ActivePage
tree = tk.CreateObject("TessarkAO.TKTreeView")
tree.Scene = page
count = tree.NumberOfShapes()  # its one argument is optional: the call form reads it

table = tk.CreateObject("TessarkAO.TKColumnSet")
String, Double = tk.TKColumnTypes.TKColumnType_String, tk.TKColumnTypes.TKColumnType_Double
kind = table.AddColumn(String)
name = table.AddColumn(String)
depth = table.AddColumn(Double)
for i in range(1, count + 1):
    shape = tree.Shape[i, 0]
    table.AddRow()
    row = table.NumberOfRows
    kind.SetAt(row, TYPE_NAMES.get(shape.Type, f"Type {shape.Type}"))
    name.SetAt(row, shape.Name or "(unnamed)")
    depth.SetAt(row, float(tree.ShapeDepth[i, 0]))

# Ascending, on type (column 1) then name (column 2).
sorted_ok = table.Sort(tk.TKColumnSetSort.TKColumnSetSort_Ascending, 1, 2) if count > 1 else True


class BillOfMaterials:
    """The table object the exporter reads, late-bound, cell by cell."""

    headers = ["Type", "Name", "Level"]

    def __init__(self, filename):
        self.Filename = filename
        self.Flags = 1
        self.Rows = count + 1
        self.Columns = len(self.headers)

    def GetCellData(self, row, column):
        row, column = int(row.value), int(column.value)
        if row == 1:
            return self.headers[column - 1]
        value = table.GetElementAt(column, row - 1)
        return value

    def GetFontName(self, row, column):
        return "DejaVu Sans"

    def GetFontSize(self, row, column):
        return 12.0 if int(row.value) == 1 else 10.0

    def GetFontFormat(self, row, column):
        return 1 if int(row.value) == 1 else (2 if int(column.value) == 2 else 0)


xlsx = os.path.abspath(os.path.join(out_dir, "bill_of_materials.xlsx"))
exporter = tk.CreateObject("TessarkAO.TKExports")
exporter.ExportBOMToExcel(BillOfMaterials(xlsx))

print(f"bill of materials: {count} shapes of page {page.Name}, sorted: {bool(sorted_ok)}")
for r in range(1, table.NumberOfRows + 1):
    print(f"  {table.GetElementAt(1, r):<24} {table.GetElementAt(2, r):<24} level {table.GetElementAt(3, r):g}")
print(f"  workbook: {xlsx} ({os.path.getsize(xlsx) if os.path.exists(xlsx) else 0} bytes)")
