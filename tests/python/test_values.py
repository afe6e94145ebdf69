"""The value mapping between Python and variants, both ways."""
import datetime
import decimal

import pytest

import tessarkao as tk

D = decimal.Decimal


@pytest.mark.parametrize(
    "value, typename",
    [
        (1.5, "Double"), (7, "Long"), (-(2**31), "Long"),
        (2**31, "Double"),  # beyond Long: a Double, as for a literal too large for a Long
        (True, "Boolean"), ("text", "String"), (None, "Nothing"), (tk.Empty, "Empty"), (tk.Null, "Null"),
        (tk.Integer(3), "Integer"), (tk.Long(3), "Long"), (tk.Single(0.5), "Single"), (tk.Double(2), "Double"),
        (tk.Currency(1), "Currency"), (tk.Byte(200), "Byte"), (tk.Date(1.0), "Date"), (tk.Decimal(1), "Decimal"),
        (tk.Boolean(0), "Boolean"), (tk.String(5), "String"), (D("1.25"), "Decimal"),
        (datetime.datetime(2024, 1, 2, 3, 4, 5), "Date"), (datetime.date(2024, 1, 2), "Date"),
        ([1, "a"], "Variant()"), (tk.Array([1, 2], vartype="Double"), "Double()"),
        (tk.Variant(5, vt="Integer"), "Integer"),
    ],
)
def test_python_values_arrive_with_their_types(sample, value, typename):
    assert sample.TypeOf(value) == typename
    assert tk.typename(value) == typename


def test_results_come_back_as_python_values_or_typed_wrappers(sample):
    for value in (1.5, 7, True, "é ü", None):
        back = sample.Echo(value)
        assert back == value and type(back) is type(value)
    assert sample.Echo(tk.Empty) is tk.Empty
    assert sample.Echo(tk.Null) is tk.Null
    # Types without a plain Python counterpart keep their type on the way back.
    for wrapper, value in [(tk.Integer, -7), (tk.Single, 0.25), (tk.Byte, 255), (tk.Currency, D("12.3456")),
                           (tk.Currency, D("922337203685477.5807")), (tk.Decimal, D("-1.500"))]:
        back = sample.Echo(wrapper(value))
        assert type(back) is wrapper
        assert back.value == value
    assert str(sample.Echo(tk.Decimal(D("-1.500"))).value) == "-1.500"  # the scale is kept
    # A result passed on keeps its exact type.
    assert sample.TypeOf(sample.Integer(tk.Integer(3))) == "Integer"


@pytest.mark.parametrize(
    "wrapper, given, expected",
    [
        (tk.Integer, 2.5, 2),  # half to even
        (tk.Boolean, 7, True),
        (tk.String, 0.1 + 0.2, "0.3"),
        (tk.Double, "1.5E3", 1500.0),
        (tk.Currency, 1.23456, D("1.2346")),
        (tk.Currency, D("0.00005"), D("0.0000")),  # half to even at 4 decimals
        (tk.Currency, D("0.00015"), D("0.0002")),
        (tk.Single, 0.1, 0.10000000149011612),
    ],
)
def test_wrappers_convert_as_the_runtime_does(wrapper, given, expected):
    w = wrapper(given)
    assert w.value == expected and type(w.value) is type(expected)


@pytest.mark.parametrize(
    "wrapper, given, number",
    [
        (tk.Integer, -32769, 6),
        (tk.Long, 2**31, 6),
        (tk.Decimal, D("79228162514264337593543950336"), 6),  # 2**96
        (tk.Decimal, D("NaN"), 6),
        (tk.Date, 1e7, 6),
    ],
)
def test_wrappers_raise_classic_errors(raises_number, wrapper, given, number):
    assert raises_number(wrapper, given) == number


def test_decimal_is_exact_to_28_places_and_rounds_beyond():
    assert tk.Decimal(D("1.2345678901234567890123456789")).value == D("1.2345678901234567890123456789")
    assert tk.Decimal(D("0.00000000000000000000000000015")).value == D("2E-28")
    assert tk.Decimal(D("0.00000000000000000000000000025")).value == D("2E-28")
    assert tk.Decimal(D("79228162514264337593543950335")).value == D("79228162514264337593543950335")
    assert tk.Decimal(D("1E+5")).value == 100000
    assert tk.Decimal(D("-0")).value == 0


def test_dates_count_days_from_1899_12_30_with_the_time_as_fraction():
    assert tk.Date(0.0).value == datetime.datetime(1899, 12, 30)
    assert tk.Date(-1.25).value == datetime.datetime(1899, 12, 29, 6)
    assert tk.Date(45292.75).value == datetime.datetime(2024, 1, 1, 18)
    assert tk.Date(datetime.datetime(1899, 12, 29, 6)).serial == -1.25
    assert tk.Date(datetime.date(2024, 1, 1)).serial == 45292.0
    t = datetime.datetime(2001, 2, 3, 4, 5, 6, 500000)
    assert tk.Date(t).value == t
    assert tk.Date("2024-01-01").serial == 45292.0


def test_wrappers_behave_as_their_values():
    assert tk.Integer(5) == 5 and tk.Integer(5) == tk.Long(5) and tk.Integer(5) != 6
    assert tk.Integer(5) + 1 == 6 and 1 - tk.Integer(5) == -4 and tk.Single(0.5) * 4 == 2.0
    assert tk.Integer(2) < 3 and tk.Double(2.5) >= tk.Integer(2)
    assert hash(tk.Long(9)) == hash(9)
    assert [10, 20, 30][tk.Integer(1)] == 20  # integral wrappers index
    assert int(tk.Double(2.5)) == 2 and float(tk.Integer(3)) == 3.0
    assert not tk.Boolean(False) and tk.Boolean(True)
    assert repr(tk.Integer(5)) == "tk.Integer(5)"
    assert repr(tk.Currency("1.5")) == "tk.Currency('1.5000')"
    assert tk.Integer().value == 0 and tk.String().value == ""
    assert tk.Integer(5).vt == "Integer"


def test_special_values():
    assert repr(tk.Empty) == "tk.Empty" and repr(tk.Missing) == "tk.Missing"
    assert not tk.Empty and not tk.Null and not tk.Missing
    assert tk.Variant().vt == "Object" and tk.Variant().typename == "Nothing"
    with pytest.raises(TypeError):
        type(tk.Empty)()


def test_raw_variants_name_their_types():
    assert tk.Variant(3).vt == "Long"
    assert tk.Variant(3, vt="Double").value == 3.0
    assert tk.Variant(3, vt=tk.Byte).vt == "Byte"
    assert tk.Variant(3, vt=2).vt == "Integer"
    assert tk.Variant(tk.Empty).vt == "Empty"
    assert tk.Variant([1.0]).vt == "Variant()"
    assert tk.Variant(1.5) == tk.Variant(1.5) and tk.Variant(1) != tk.Variant(1.0)
    with pytest.raises(ValueError):
        tk.Variant(1, vt="Quad")


def test_ref_is_only_an_argument(sample):
    with pytest.raises(TypeError):
        sample.Echo(tk.Array([tk.Ref(1)]))
    with pytest.raises(TypeError):
        sample.X = [tk.Ref(1)]
