"""tk.ui over the headless user-interface service."""
import pytest

import tessarkao as tk


pytestmark = pytest.mark.usefixtures("quiet_ui")


def test_message_boxes_are_recorded_with_their_icons(sample):
    assert sample.ShowMessage("Saved", "Export", 64) == 1  # OK
    sample.ShowMessage("Bad data", "Import", 48)
    tk.ui.queue_answer(7)
    assert sample.ShowMessage("Go on?", "Import", 4 + 32) == 7
    got = [(m.text, m.title, m.icon) for m in tk.ui.messages]
    assert got == [
        ("Saved", "Export", "information"),
        ("Bad data", "Import", "exclamation"),
        ("Go on?", "Import", "question"),
    ]


def test_file_dialogs_answer_from_the_queue_in_order(sample):
    tk.ui.queue_file("/tmp/points.txt")
    tk.ui.queue_file("")
    assert sample.AskFile("Open") == "/tmp/points.txt"
    assert sample.AskFile("Open") == ""  # cancelled
    assert tk.ui.last_file_request == ["Open", "Text files (*.txt)|*.txt", "txt"]


def test_screen_size_and_clear(sample):
    tk.ui.screen = (19200, 14400)
    assert tk.ui.screen == (19200, 14400)
    tk.ui.queue_file("kept?")
    sample.ShowMessage("x", "y", 0)
    tk.ui.clear()
    assert tk.ui.messages == [] and tk.ui.shown == []
    assert sample.AskFile("Open") == ""  # the queue was emptied too: cancelled
