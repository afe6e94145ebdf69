"""Python objects acting as host objects, called by the library late-bound."""
import decimal
import json
import threading

import pytest

import tessarkao as tk


class Collection:
    """Callable like a host collection: Items(3) is an item."""

    def __init__(self):
        self.items = {3: "third"}
        self.calls = 0

    def __call__(self, index):
        self.calls += 1
        return self.items[index]


class Host:
    def __init__(self):
        self.Name = "host"
        self.Items = Collection()
        self.Values = [0, 10, 20]
        self.log = []

    def Count(self):
        self.log.append("Count")
        return 3

    def Twice(self, x):
        return x * 2

    def GetPosition(self, x, y, z):
        assert isinstance(x, tk.Ref)
        x.value, y.value, z.value = 1.0, 2.0, 3.0

    def Describe(self, value):
        return type(value).__name__

    def Json(self, value):
        return json.dumps(value)

    def Explode(self, kind):
        raise {"zero": ZeroDivisionError, "key": KeyError, "value": ValueError, "other": RuntimeError}[kind]("boom")

    def Refuse(self):
        raise tk.AutomationError(1004, "Refused by the host", source="Host")

    @property
    def Area(self):
        self.log.append("Area")
        return 12.5

    @Area.setter
    def Area(self, value):
        self.log.append(("Area=", value))


def test_gets_read_attributes_and_call_methods(sample):
    h = Host()
    assert sample.HostGet(h, "Name") == "host"
    assert sample.HostGet(h, "name") == "host"  # names resolve case-insensitively
    assert sample.HostGet(h, "Count") == 3  # a method is called
    assert sample.HostGet(h, "Area") == 12.5  # a property is read
    # A value that is merely callable is returned as it is, and called with
    # the arguments of a later call: Items(3).
    items = sample.HostGet(h, "Items")
    assert items is h.Items and h.Items.calls == 0
    assert sample.HostCall(h, "Items", 3) == "third"
    assert sample.HostCall(h, "Twice", 21) == 42
    assert sample.HostCall(h, "Values", 2) == 20  # an attribute that is not callable is indexed
    assert sample.HostCall(h, "Count") == 3


def test_lets_assign_attributes(sample):
    h = Host()
    sample.HostLet(h, "name", "renamed")
    assert h.Name == "renamed" and not hasattr(h, "name")
    sample.HostLet(h, "Area", 3.0)
    assert h.log == [("Area=", 3.0)]  # assigned without reading the property first
    sample.HostLet(h, "Fresh", tk.Integer(4))
    assert type(h.Fresh) is tk.Integer and h.Fresh == 4
    tk.invoke(h, "Values", tk.LET, 1, 99)  # a let with an argument assigns an item
    assert h.Values == [0, 99, 20]


def test_values_arrive_as_python_values(sample):
    h = Host()
    cases = [(1.5, "float"), (7, "int"), (True, "bool"), ("s", "str"), (None, "NoneType"), (tk.Empty, "EmptyType")]
    cases += [(tk.Integer(1), "Integer"), (tk.Array([1.0]), "Array"), (sample, "Sample"), (h, "Host")]
    for value, name in cases:
        assert sample.HostCall(h, "Describe", value) == name
    # What the host returns maps the same way: a list becomes an array, a
    # host object comes back as the very same Python object.
    values = sample.HostGet(h, "Values")
    assert isinstance(values, tk.Array) and values == [0, 10, 20]
    sample.Child = h
    assert sample.Child is h
    assert sample.SameObject(h, h) and not sample.SameObject(h, Host())
    sample.Child = None


def test_typed_numbers_reach_hosts_as_numbers_and_keep_their_type(sample):
    h = Host()
    for value, text in [(tk.Integer(-7), "-7"), (tk.Long(7), "7"), (tk.Byte(255), "255"), (tk.Single(0.25), "0.25"),
                        (tk.Double(2), "2.0"), (tk.Currency(decimal.Decimal("1.5")), "1.5")]:
        assert sample.HostCall(h, "Json", value) == text
        sample.HostLet(h, "Kept", value)  # read back by the library with its own type
        assert sample.TypeOf(sample.HostGet(h, "Kept")) == value.vt


def test_by_reference_arguments_are_written_back(sample):
    assert sample.HostPosition(Host()) == 123.0
    h = Host()
    r = tk.Ref(0)
    tk.invoke(h, "GetPosition", tk.METHOD, r, tk.Ref(), tk.Ref())
    assert r.value == 1.0


def test_python_exceptions_become_automation_errors(sample, raises_number):
    h = Host()
    assert raises_number(sample.HostCall, h, "Explode", "zero") == 11
    assert raises_number(sample.HostCall, h, "Explode", "key") == 9
    assert raises_number(sample.HostCall, h, "Explode", "value") == 5
    assert raises_number(sample.HostCall, h, "Explode", "other") == 440
    assert raises_number(sample.HostGet, h, "Missing") == 438
    with pytest.raises(tk.AutomationError) as e:
        sample.HostCall(h, "Explode", "zero")
    assert e.value.description == "ZeroDivisionError: boom"
    assert isinstance(e.value.__cause__, ZeroDivisionError)
    # An AutomationError raised by the host keeps its number, and arrives as itself.
    with pytest.raises(tk.AutomationError) as e:
        sample.HostCall(h, "Refuse")
    assert (e.value.number, e.value.description, e.value.source) == (1004, "Refused by the host", "Host")
    assert e.value.hresult == 0x800A03EC


def test_interrupts_are_not_swallowed(sample):
    class Stopper:
        def Stop(self):
            raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        sample.HostCall(Stopper(), "Stop")


def test_calls_from_other_threads_take_the_interpreter_lock(sample):
    h = Host()
    results = []

    def work():
        s = tk.CreateObject("TkTest.Sample")
        for _ in range(200):
            results.append(s.HostCall(h, "Twice", 2))

    threads = [threading.Thread(target=work) for _ in range(4)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert results == [4] * 800
