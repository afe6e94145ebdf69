"""Late-bound calls through tk.Object: properties, methods, references, errors."""
import gc

import pytest

import tessarkao as tk
import tk_testhelper

LOCALIZER_CLSID = "{B0131D2E-07ED-11D3-80A0-00C04F6BFADF}"


def test_create_by_progid_or_clsid(raises_number):
    by_id = tk.CreateObject(LOCALIZER_CLSID)
    assert by_id.LoadString(101) == tk.CreateObject("tessarkao.localizer").LoadString(101)
    assert tk.CreateObject(LOCALIZER_CLSID.strip("{}").lower()).LoadString(103) == by_id.LoadString(103)
    assert raises_number(tk.CreateObject, "TessarkAO.NoSuchClass") == 429
    assert len(tk.catalogue()) == 31


def test_properties_with_and_without_arguments(sample):
    assert sample.X == 1.5
    sample.X = "2.5"  # let converts the text
    assert sample.x == 2.5  # names are case-insensitive
    sample.Value[2] = 7.0
    assert sample.Value[2] == 7.0 and sample.Value(2) == 7.0
    assert sample.Cell[1, 2] == 12.0 and sample.Cell(3, 4) == 34.0
    assert sample.Value.__doc__ == "Value(lngIndex: Long) -> Double {get, let}"
    with pytest.raises(tk.AutomationError) as e:
        sample.Value[9]
    assert e.value.number == 9


def test_methods_take_optional_and_named_arguments(sample):
    x, y, z = tk.Ref(), tk.Ref(), tk.Ref()
    sample.SetPosition(7, dblz=8)  # by parameter name, case-insensitive
    sample.GetPosition(x, y, z)
    assert (x.value, y.value, z.value) == (7.0, 0.0, 8.0)
    assert sample.SetPosition.__doc__ == "SetPosition(dblX: Double, [dblY: Double = 0], [dblZ: Double = 0])"
    assert sample.GetPosition.__doc__ == ("GetPosition(ByRef X: Double, ByRef Y: Double, ByRef Z: Double)\n"
                                          "Outputs (pass a tk.Ref): X, Y, Z.")
    assert sample.Join("-", 1, "b", 2.5) == "1-b-2.5"
    assert sample.Join.__doc__ == "Join(strSeparator: String, ParamArray varItems()) -> String"


def test_references_are_written_back_with_the_members_type(sample):
    x, y, z = tk.Ref(tk.Integer(0)), tk.Ref(tk.Empty), tk.Ref()
    sample.GetPosition(x, y, z)
    assert type(x.value) is float and x.value == 1.5
    # An argument the member leaves alone stays exactly what the caller gave.
    keep = [1, 2]
    r = tk.Ref(keep)
    sample.Echo(r)
    assert r.value is keep


def test_objects_are_set_and_keep_their_identity(sample):
    other = tk.CreateObject("TkTest.Sample")
    sample.Child = other
    assert sample.Child == other and tk.same(sample.Child, other)
    assert hash(sample.Child) == hash(other) and sample.Child != sample
    assert sample.Child is not other  # a new proxy, the same object
    assert sample.SameObject(sample.Child, other) is True
    sample.Child = None
    assert sample.Child is None
    assert not tk.same(sample, other) and tk.same(None, None)


def test_default_member(sample):
    assert sample() == "sample" and tk.invoke(sample, 0, tk.GET).value == "sample"


def test_errors_carry_number_hresult_description(sample, raises_number):
    with pytest.raises(tk.AutomationError) as e:
        sample.Fail(5)
    assert str(e.value) == "Invalid procedure call or argument (error 5)"
    assert raises_number(lambda: sample.NoSuchThing) == 438
    assert not hasattr(sample, "NoSuchThing") and getattr(sample, "Nope", 1) == 1
    assert raises_number(setattr, sample, "Nope", 1) == 438
    assert raises_number(sample.SetPosition, 1, bogus=2) == 448
    assert raises_number(lambda: sample.Value) == 0  # a bound property: nothing called yet
    assert raises_number(lambda: sample.Value[1, 2]) == 450
    assert raises_number(tk.invoke, 5, "X", tk.GET) == 424
    assert raises_number(tk.invoke, None, "X", tk.GET) == 91
    with pytest.raises(ValueError):
        tk.invoke(sample, "X", 3)
    with pytest.raises(TypeError):
        sample.SetPosition(1, dblX=2)


def test_invoke_returns_raw_variants(sample):
    v = tk.invoke(sample, "Integer", tk.METHOD, 3)
    assert (v.vt, v.value) == ("Integer", 3) and type(v.value) is int
    assert tk.invoke(sample, "Child", tk.GET).vt == "Object"
    assert tk.invoke(sample, "Echo", tk.METHOD, tk.Empty).vt == "Empty"
    assert tk.invoke(sample, "Echo", tk.METHOD, [1.0]).vt == "Variant()"
    tk.invoke(sample, "Child", tk.SET, sample)
    assert tk.same(sample.Child, sample)
    sample.Child = None  # no cycle left behind


def test_describe_lists_the_member_table(sample):
    text = tk.describe(sample)
    assert text.splitlines()[0] == "Sample"
    assert "  X: Double {get, let}" in text.splitlines()
    assert "  Child: Object {get, set}" in text.splitlines()
    assert "  Name: String {get}  (default member)" in text.splitlines()
    assert "  Omitted([varValue: Variant]) -> Boolean" in text.splitlines()
    assert tk.describe("TessarkAO.Localizer") == "Localizer\n  LoadString(lngStrID: Long) -> String\n"
    assert {"X", "SetPosition", "Value", "Name"} <= set(dir(sample))


def test_objects_are_released_with_their_last_reference():
    gc.collect()
    before = tk_testhelper.live_samples()
    s = tk.CreateObject("TkTest.Sample")
    method = s.SetPosition
    assert tk_testhelper.live_samples() == before + 1
    del s
    assert tk_testhelper.live_samples() == before + 1  # the bound member keeps it
    del method
    assert tk_testhelper.live_samples() == before
