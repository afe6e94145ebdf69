"""tk.Array: element types, lower bounds and real indices, in and out."""
import pytest

import tessarkao as tk


def test_nested_lists_give_one_dimension_per_level():
    a = tk.Array([[1, 2, 3], [4, 5, 6]], vartype="Double", lbounds=(1, 0))
    assert (a.dims, a.vartype, a.lbounds, a.ubounds) == (2, "Double", (1, 0), (2, 2))
    assert a[1, 0] == 1.0 and a[2, 2] == 6.0 and type(a[1, 1]) is float
    assert a.tolist() == [[1.0, 2.0, 3.0], [4.0, 5.0, 6.0]]
    assert len(a) == 2 and list(a) == a.tolist()
    assert a == [[1, 2, 3], [4, 5, 6]]


def test_indices_are_the_real_ones_and_out_of_range_raises_9(raises_number):
    a = tk.Array([10, 20, 30], vartype="Long", lbounds=-1)
    assert (a[-1], a[0], a[1]) == (10, 20, 30)  # no wrap-around for negative indices
    assert raises_number(lambda: a[2]) == 9
    assert raises_number(lambda: a[-2]) == 9
    assert raises_number(lambda: a[0, 0]) == 9  # wrong number of indices
    a[1] = 2.5
    assert a[1] == 2 and type(a[1]) is int  # stored as a Long, rounded half to even
    assert raises_number(a.__setitem__, 0, "x") == 13


def test_element_types_and_empty_arrays():
    assert tk.Array([1, "2"], vartype="String").tolist() == ["1", "2"]
    v = tk.Array([1, "a", None, tk.Empty])
    assert v.vartype == "Variant" and v.tolist() == [1, "a", None, tk.Empty]
    e = tk.Array([], vartype="Double", lbounds=(1,))
    assert (e.lbounds, e.ubounds, e.tolist(), len(e)) == ((1,), (0,), [], 0)
    assert tk.Array([[], []], vartype="Long").ubounds == (1, -1)
    assert tk.Array([1, 2], vartype=tk.Integer).vartype == "Integer"


def test_malformed_input_is_refused():
    ragged = [([[1, 2], [3]], {}), ([[1, 2], 3], {}), ([1, [2]], {})]
    for value, options in ragged + [([1, 2], {"lbounds": (0, 0)}), ([1], {"vartype": "Null"})]:
        with pytest.raises(ValueError):
            tk.Array(value, **options)
    with pytest.raises(TypeError):
        tk.Array(5)
    with pytest.raises(tk.AutomationError):
        tk.Array(["x"], vartype="Double")
    # bounds are Longs: an upper bound outside their range is an overflow
    for value, lower in [([1, 2], 2147483647), ([], -2147483648)]:
        with pytest.raises(tk.AutomationError, match="Overflow"):
            tk.Array(value, lbounds=lower)
    assert tk.Array([1], lbounds=2147483647).ubounds == (2147483647,)


def test_arrays_keep_shape_bounds_and_order_through_the_library(sample):
    a = tk.Array([[1, 2, 3], [4, 5, 6]], vartype="Long", lbounds=(1, 5))
    back = sample.Echo(a)
    assert isinstance(back, tk.Array) and back == a
    assert back.lbounds == (1, 5) and back[2, 7] == 6
    assert sample.TypeOf(a) == "Long()"
    # Plain lists arrive as 0-based Variant arrays, each level a dimension.
    back = sample.Echo([[1, "a"], [2.5, None]])
    assert back.vartype == "Variant" and back.lbounds == (0, 0) and back[1, 0] == 2.5


def test_an_array_a_member_fills_comes_back_through_a_ref(sample):
    out = tk.Ref()
    sample.Fill(out, 5)
    a = out.value
    assert isinstance(a, tk.Array)
    assert (a.vartype, a.lbounds, a.ubounds, a.tolist()) == ("Long", (5,), (7,), [10, 20, 30])
    assert a[6] == 20


def test_copying_an_array_may_change_its_type_and_bounds():
    a = tk.Array([1.5, 2.5], vartype="Double", lbounds=3)
    b = tk.Array(a, vartype="Long")
    assert (b.vartype, b.lbounds, b.tolist()) == ("Long", (3,), [2, 2])
    assert tk.Array(a, lbounds=0).lbounds == (0,)
    assert repr(a) == "tk.Array([1.5, 2.5], vartype='Double', lbounds=(3,))"
