"""The tktools command: subcommands, help, errors, and `run` on a reference-host scene."""
import json
import os
import subprocess

import pytest

TKTOOLS = os.environ.get("TESSARKAO_TKTOOLS", "")
pytestmark = pytest.mark.skipif(not os.path.exists(TKTOOLS), reason="tktools was not built")


def tktools(*args, cwd=None):
    return subprocess.run([TKTOOLS, *args], capture_output=True, text=True, cwd=cwd, timeout=120)


def test_help_on_the_command_and_each_subcommand():
    r = tktools("--help")
    assert r.returncode == 0 and "run" in r.stdout
    r = tktools("run", "--help")
    assert r.returncode == 0 and r.stdout.startswith("usage: tktools run SCRIPT.py")
    r = tktools()
    assert r.returncode == 2 and "usage: tktools" in r.stderr


@pytest.mark.parametrize(
    "args, status, reason",
    [
        (["frobnicate"], 2, "tktools: unknown command 'frobnicate'"),
        (["run"], 2, "tktools run: which script?"),
        (["run", "a.py", "b.py"], 2, "tktools run: unexpected argument 'b.py'"),
        (["run", "a.py", "--scene"], 2, "tktools run: option --scene needs a value"),
        (["run", "a.py", "--colour=red"], 2, "tktools run: unknown option --colour"),
        (["run", "/nonexistent/a.py"], 1, "tktools run: cannot read the script /nonexistent/a.py"),
    ],
)
def test_wrong_calls_fail_with_one_line(args, status, reason):
    r = tktools(*args)
    assert r.returncode == status
    lines = r.stderr.strip().splitlines()
    assert len(lines) == 1 and lines[0].startswith(reason)


def write(path, text):
    path.write_text(text)
    return str(path)


def test_run_builds_on_a_new_scene_and_saves_it(tmp_path):
    script = write(
        tmp_path / "make.py",
        "import sys\n"
        "root = app.ActivePage.Shape\n"
        "part = root.Components(2).Item(1).Shapes(3).Add()\n"
        "part.Name = sys.argv[1]\n"
        "print('made', part.Name, tk.CreateObject('TessarkAO.Localizer').LoadString(101))\n",
    )
    out = tmp_path / "out.json"
    r = tktools("run", script, "--save", str(out), "--", "Gear")
    assert r.returncode == 0, r.stderr
    assert r.stdout == "made Gear millimeters\n"
    assert "Gear" in out.read_text() and json.loads(out.read_text())["format"] == "tessarkao-scene"
    # The saved scene is the starting point of the next run.
    check = write(tmp_path / "check.py", "print(app.ActivePage.Shape.Components(2).Item(1).Shapes(3).Count)\n")
    r = tktools("run", check, "--scene", str(out))
    assert (r.returncode, r.stdout) == (0, "1\n")


def test_script_failures_and_exit_status(tmp_path):
    r = tktools("run", write(tmp_path / "bad.py", "x = 1\napp.NoSuchMember\n"))
    assert r.returncode == 1
    assert "Traceback" in r.stderr
    assert r.stderr.strip().splitlines()[-1].startswith("tktools run: ")
    assert "raised MemberNotFoundError" in r.stderr.strip().splitlines()[-1]
    r = tktools("run", write(tmp_path / "exit.py", "import sys\nsys.exit(3)\n"))
    assert r.returncode == 3
    r = tktools("run", write(tmp_path / "ok.py", "pass\n"), "--scene", str(tmp_path / "none.json"))
    assert r.returncode == 1 and "no scene file" in r.stderr
    broken = write(tmp_path / "broken.json", "{")
    r = tktools("run", write(tmp_path / "ok2.py", "pass\n"), "--scene", broken)
    assert r.returncode == 1 and "cannot load the scene" in r.stderr
    r = tktools("run", write(tmp_path / "ok3.py", "pass\n"), "--save", str(tmp_path / "no" / "dir" / "x.json"))
    assert r.returncode == 1 and "cannot save the scene" in r.stderr
