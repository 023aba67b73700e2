#!/usr/bin/python3
"""Each source has a test file of its own name in its place, or a line below that says what fails when it breaks."""

import pathlib
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = ROOT / "src"
TESTS = ROOT / "tests"

# By their paths in src, without ".cpp". Each was broken once, and the test that is named failed.
TESTED_ELSEWHERE = {
    "main": "Every journey starts the program; journey.command_line and journey.without_x11 ask what it says where it "
            "can't start.",
    "platform/linux/LinuxPlatform": "Puts the services together: every journey starts through it, and "
                                    "journey.popup_timeout has the countdown that stands still.",
    "formats/PngFiltersVector": "formats/PngFiltersTest compares it with the plain form, bit for bit.",
    "pixels/ScalingStepsVector": "pixels/ScalingStepsTest compares it with the plain form, bit for bit.",
    "model/AppModelFileAccess": "Access to files outside the folder is asked of what needs it: "
                                "model/AppModelWatchFolderTest and model/AppModelMovingTest.",
    "model/AppModelFollowing": "Records follow files that come under new names, and their folder: "
                               "model/AppModelArrivalTest and model/AppModelWatchFolderTest.",
    "model/FileDisposal": "What is done to a file that is thrown away: model/AppModelDisposalTest.",
    "model/FileExpiry": "What is done to a file whose time is up: model/AppModelExpiryTest.",
    "model/ScreenshotExpiry": "What becomes of records whose time is up: model/AppModelExpiryTest.",
    "model/FileExchange": "What is done to files of which one takes the other's place: model/FileReplacementTest.",
    "model/FileRenaming": "What is done to a file that gets another name: model/AppModelRenamingTest.",
    "model/FileServices": "Hands the world to work on files: model/AppModelDisposalTest and model/AppModelExpiryTest.",
    "model/CloudDownloads": "Asks a sync client over D-Bus: platform/linux/files/CloudDownloadsTest, with a fake one.",
    "update/entry/UpdateEntry": "The library's one function: update/UpdateLibraryTest loads the library, and "
                                "journey.update has all that it does.",
    "popup/CardMotion": "How the panel comes and goes: popup/CaptureDecisionPanelTest.",
    "popup/CapturePromptPanelRecess": "A part of CapturePromptPanelController: popup/CapturePromptPanelControllerTest.",
    "popup/CapturePromptViewPicture": "A part of CapturePromptView: popup/CapturePromptViewTest.",
    "editor/CropCanvasPointer": "A part of CropCanvas: editor/CropCanvasTest.",
    "editor/CropCanvasScene": "A part of CropCanvas: editor/CropCanvasTest and editor/CropSceneTest.",
    "settings/SettingsPane": "What every pane is made of: settings/GeneralPaneTest and the tests of the other panes.",
    "settings/PanePage": "The pages of the window: settings/SettingsWindowTest.",
    "settings/SymbolNote": "The lines of the panes: settings/LoginItemStatusRowTest and settings/KeyboardPaneTest.",
    "settings/ShortcutField": "The field of the recorder: settings/ShortcutRecorderTest.",
    "settings/RestoreDefaultShortcutButton": "The button beside the recorder: settings/KeyboardPaneTest.",
    "inbox/InboxMenuBar": "The menus of a window: inbox/InboxWindowTest, and journey.global_menu over the bus.",
    "inbox/QuickLookPresenter": "Between the selection and its window: inbox/InboxWindowTest.",
    "inbox/ScreenshotDrag": "A drag holds the pointer: journey.inbox_drag.",
    "platform/linux/system/SystemFiles": "foundation/FileStatusTest and foundation/FileCopyTest: it is what those two "
                                         "call on this system.",
    "platform/linux/announcing/LiveAnnouncer": "Chooses a form by the reader that runs: journey.announcements has all "
                                               "of them.",
    "platform/linux/appearance/XSettingsAppearance": "Needs an X server with a settings manager: journey.appearance.",
    "platform/linux/shortcuts/PortalShortcut": "What goes over the bus to a portal: "
                                               "platform/linux/shortcuts/PortalHotKeysTest.",
    "platform/linux/shortcuts/SessionHotKeys": "Chooses by the session that there is: journey.shortcut, and "
                                               "journey.without_x11 where there is none.",
    "platform/linux/shortcuts/X11Modifiers": "What it finds is what is grabbed: platform/linux/shortcuts/X11HotKeysTest.",
    "platform/linux/signs/BusCaptureSigns": "Needs a bus that can be listened to: journey.next_capture.",
    "platform/linux/signs/X11CaptureSigns": "Needs an X server with keys: journey.next_capture.",
    "platform/linux/windows/X11WindowReader": "Needs an X server and a window manager: journey.window_watch.",
    "platform/linux/windows/X11WindowWatch": "Needs an X server and a window manager: journey.window_watch.",
    "platform/linux/windows/WindowWatch": "Chooses who tells: journey.window_watch and journey.window_watch_wayland.",
    "platform/linux/windows/SwayConnection": "What is said to sway and by it: platform/linux/windows/SwayWindowWatchTest.",
    "platform/linux/windows/JsonValues": "Reads what sway tells: platform/linux/windows/SwayTreeTest.",
    "platform/linux/windows/ScreenPixels": "Where points stand in a picture: platform/linux/windows/SwayTreeTest.",
    "platform/linux/tray/X11Tray": "Needs an X server: journey.login.tray-that-embeds.",
    "platform/linux/reader/entry/ReaderMain": "platform/linux/reading/ReaderPoolTest starts it for every test.",
    "platform/linux/reader/Reader": "What it answers: platform/linux/reading/ReaderPoolTest.",
    "platform/linux/reader/SystemCallFilter": "platform/linux/reader/ConfinementTest has a run with it alone.",
    "platform/linux/reading/ReaderLane": "How many there are, and when they end: platform/linux/reading/ReaderPoolTest.",
    "platform/linux/reading/ReaderProcess": "What one answers, or not: platform/linux/reading/ReaderPoolTest.",
    "platform/linux/panel/X11Display": "Needs an X server: journey.popup_on_window_managers.",
    "platform/linux/panel/X11FullScreenCompanion": "Needs a window manager: journey.popup_on_window_managers.",
    "platform/linux/panel/X11Keyboard": "Needs an X server: journey.keys.",
    "platform/linux/panel/X11KeyboardHolder": "Needs a compositor with an X server: journey.wayland_session.sway.",
    "platform/linux/panel/X11PanelWindowSystem": "Needs a window manager: journey.popup_on_window_managers.",
}

# Files that share the header of a class whose work they are a part of.
PARTS = {
    "main": "It has nothing to declare.",
    "platform/linux/reader/entry/ReaderMain": "It has nothing to declare.",
    "update/entry/UpdateEntry": "Its one function has the type that UpdateInterface.h declares.",
    "monitor/ScreenshotInboxMonitorApply": "ScreenshotInboxMonitor.h: what it does with what a look has found.",
    "editor/ImageEditorActions": "ImageEditor.h: what the buttons do.",
    "editor/CropCanvasPointer": "CropCanvas.h: what the pointer does.",
    "editor/CropCanvasScene": "CropCanvas.h: what is painted over the picture.",
    "popup/CapturePromptPanelRecess": "CapturePromptPanelController.h: how it keeps away from captures.",
    "popup/CapturePromptViewPicture": "CapturePromptView.h: what the card does with its picture.",
}


def is_part_of_model(name):
    """AppModel is cut over several files by concern, under one header."""
    return name.startswith("model/AppModel")


def sources():
    return sorted(path.relative_to(SOURCES).with_suffix("").as_posix() for path in SOURCES.rglob("*.cpp"))


def has_test(name):
    return (TESTS / (name + "Test.cpp")).is_file()


class Mirrored(unittest.TestCase):
    def test_every_source_has_a_test_file_or_a_reason(self):
        untested = [name for name in sources() if not has_test(name) and name not in TESTED_ELSEWHERE]
        self.assertEqual(untested, [])

    def test_every_source_has_a_header_or_a_reason(self):
        bare = [name for name in sources()
                if not has_header(name) and name not in PARTS and not is_part_of_model(name)]
        self.assertEqual(bare, [])

    def test_no_reason_is_out_of_date(self):
        present = set(sources())
        self.assertEqual([name for name in TESTED_ELSEWHERE if name not in present or has_test(name)], [])
        self.assertEqual([name for name in PARTS if name not in present or has_header(name)], [])

    def test_the_sources_were_found(self):
        self.assertIn("model/AppModel", sources())


def has_header(name):
    """What every system does in a way of its own is declared in the foundation."""
    declared = SOURCES / "foundation" / (pathlib.PurePath(name).name + ".h")
    return (SOURCES / (name + ".h")).is_file() or (name.startswith("platform/") and declared.is_file())


if __name__ == "__main__":
    unittest.main()
