"""The windows in a picture, by the program's own detector."""

import json
import os
import subprocess


def main_window(picture):
    """x, y, width and height of the one that Extract Window takes."""
    found = subprocess.run([os.environ["QUILLMERE_DETECT_WINDOWS"], picture], capture_output=True, text=True, check=True)
    result = json.loads(found.stdout)
    window = result["windows"][result["primary"]]
    return window["x"], window["y"], window["width"], window["height"]
