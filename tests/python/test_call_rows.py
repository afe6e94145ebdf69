"""The call-behaviour rows (tests/calls/rows.inc) through the Python module."""
import pathlib

import pytest

import tessarkao as tk
import tk_testhelper  # noqa: F401  (registers TkTest.CallProbe)

ROWS = pathlib.Path(__file__).resolve().parent.parent / "calls" / "rows.inc"
KINDS = {"get": tk.GET, "let": tk.LET, "method": tk.METHOD, "default": tk.GET}
TAGS = {"Long": "L", "Double": "D", "String": "S", "Boolean": "B", "Empty": "E"}


def rows():
    for line in ROWS.read_text().splitlines()[1:-1]:
        if line and not line.startswith("#"):
            yield line


def value_of(token):
    tag, rest = token[0], token[1:]
    return {"L": lambda: tk.Long(int(rest)), "D": lambda: float(rest), "S": lambda: rest,
            "B": lambda: rest == "1", "M": lambda: tk.Missing, "E": lambda: tk.Empty}[tag]()


def text_of(vt, value):
    if vt == "Boolean":
        return "B1" if value else "B0"
    if vt == "Empty":
        return "E"
    if vt == "Double":
        return "D" + format(value, "g")
    return TAGS.get(vt, "?" + vt) + str(value)


@pytest.mark.parametrize("row", list(rows()))
def test_row(row):
    call, expect = row.split(" -> ")
    kind, member, *tokens = call.split()
    refs = {i: tk.Ref(value_of(t[1:])) for i, t in enumerate(tokens) if t.startswith("&")}
    args = [refs[i] if i in refs else value_of(t) for i, t in enumerate(tokens)]
    probe = tk.CreateObject("TkTest.CallProbe")
    target = 0 if kind == "default" else member
    if expect.startswith("!"):
        number, _, text = expect[1:].partition(":")
        with pytest.raises(tk.AutomationError) as failure:
            tk.invoke(probe, target, KINDS[kind], *args)
        assert failure.value.number == int(number)
        assert text in failure.value.description
        assert failure.value.hresult == 0x800A0000 | int(number)
        return
    result, *outputs = expect.split()
    r = tk.invoke(probe, target, KINDS[kind], *args)
    assert "=" + text_of(r.vt, r.value) == result
    for out in outputs:
        n, value = out[3:].split("=")
        written = refs[int(n) - 1].value
        assert text_of(tk.typename(written), written) == value

