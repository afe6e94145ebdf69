import gc

import pytest

import tessarkao as tk
import tk_testhelper

_leaks = []


@pytest.fixture
def sample():
    return tk.CreateObject("TkTest.Sample")


def error_number(fn, *args, **kwargs):
    """The automation error number `fn` raises (0 when it raises none)."""
    try:
        fn(*args, **kwargs)
    except tk.AutomationError as e:
        return e.number
    return 0


@pytest.fixture
def raises_number():
    return error_number


@pytest.fixture
def quiet_ui():
    """The headless user interface without echo and with no records, before
    and after the test."""
    tk.ui.set_echo(False)
    tk.ui.clear()
    yield tk.ui
    tk.ui.clear()
    tk.ui.set_echo(True)


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_protocol(item, nextitem):
    """Every test must release the library objects it made (checked once
    pytest has dropped the test's arguments)."""
    gc.collect()
    before = tk_testhelper.live_samples()
    yield
    gc.collect()
    if tk_testhelper.live_samples() != before:
        _leaks.append(f"{item.nodeid}: {tk_testhelper.live_samples() - before} Sample object(s) left alive")


def pytest_sessionfinish(session, exitstatus):
    if _leaks:
        print("\nlibrary objects left alive:\n  " + "\n  ".join(_leaks))
        session.exitstatus = 1
