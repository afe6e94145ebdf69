"""tk.refhost: the reference host driven through the module."""
import json

import pytest

import tessarkao as tk

pytestmark = pytest.mark.skipif(not hasattr(tk, "refhost"), reason="built without the reference host")


def add_part(app):
    root = app.ActivePage.Shape
    return root.Components(2).Item(1).Shapes(3).Add()


def test_a_new_scene_and_its_members_through_proxies():
    app = tk.refhost.new_application()
    page = app.ActivePage
    assert (app.Name, page.Name, app.Pages.Count) == ("Tessark", "Scene1", 1)
    assert page.Shape.Name == "" and page.Shape.Parent is None
    assert tk.same(app.Pages(1), page) and tk.same(app.Pages["Scene1"], page)
    part = add_part(app)
    part.Name = "Part"
    position = part.Components(4).Item(1)
    position.Variable(1).Value = 25.0
    assert position.Variable(1).Value == 25.0
    assert part.Parent.Name == "" and tk.same(part.Page, app.ActivePage)


def test_scenes_round_trip_through_text_and_files(tmp_path):
    app = tk.refhost.new_application()
    add_part(app).Name = "Bracket"
    text = tk.refhost.dumps(app)
    assert json.loads(text)["pages"][0]["name"] == "Scene1"
    again = tk.refhost.loads(text)
    assert tk.refhost.dumps(again) == text
    path = tmp_path / "scene.json"
    tk.refhost.save(again, str(path))
    loaded = tk.refhost.load(str(path))
    assert loaded.ActivePage.Shape.Components(2).Item(1).Shapes(3).Count == 1
    assert tk.refhost.dumps(loaded) == text
    with pytest.raises(tk.AutomationError) as e:
        tk.refhost.loads('{"format": "tessarkao-scene", "pages": [')
    assert e.value.number == 321 and e.value.description


def test_the_journal_records_the_calls_made_through_the_module():
    app = tk.refhost.new_application()
    page = app.ActivePage
    tk.refhost.journal_clear()
    tk.refhost.journal_start()
    try:
        page.Name = "Renamed"
        page.UnitsScale(2)
    finally:
        tk.refhost.journal_stop()
    entries = tk.refhost.journal()
    assert [(e.member, e.kind) for e in entries] == [("Name", tk.LET), ("UnitsScale", tk.GET)]
    assert entries[0].args == ("Renamed",) and entries[1].args == (2,)
    # Objects are named as they were at the time of the call.
    assert entries[0].object == "Scene1" and entries[1].object == tk.refhost.name_of(page) == "Renamed"
    assert len(tk.refhost.journal_text().splitlines()) == 2
    tk.refhost.journal_clear()
    assert tk.refhost.journal() == [] and not tk.refhost.journal_on()

