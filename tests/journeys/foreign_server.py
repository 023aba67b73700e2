#!/usr/bin/python3
"""A model server of another user of this computer is asked nothing before the person allows it in Settings; there, too,
stands that the disk of the folder keeps too little for its files to be followed."""

import os
import socket
import sys

from disks import Disk, can_mount
from harness import expect, hold_for, run_journey, wait_until
from steps import open_settings

NOBODY = 65534
TOO_LITTLE = ("The disk of this folder keeps too little about its files: a screenshot that you rename or move with another "
              "app may become unavailable here, and one that can’t be told from another file isn’t deleted when its time "
              "is up.")
SERVER = """
import http.server, os, sys
os.setgid({user}); os.setuid({user})
class Handler(http.server.BaseHTTPRequestHandler):
    def log_message(self, *arguments):
        pass
    def do_GET(self):
        print(self.path, flush=True)
        self.send_response(404)
        self.send_header("Content-Length", "0")
        self.end_headers()
http.server.HTTPServer(("127.0.0.1", {port}), Handler).serve_forever()
"""


def journey(desktop):
    if not can_mount:
        print("Only root can be several users; left out.")
        return
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        port = free.getsockname()[1]
    asked = os.path.join(desktop.scratch, "asked")
    with open(asked, "w", encoding="utf-8") as file:
        desktop.start([sys.executable, "-c", SERVER.format(user=NOBODY, port=port)], stdout=file)
    wait_until("the server listens", lambda: socket.socket().connect_ex(("127.0.0.1", port)) == 0)
    desktop.environment["OLLAMA_HOST"] = f"127.0.0.1:{port}"
    disk = Disk(desktop, ("mkfs.ext4", "-q", "-I", "128"))
    disk.connect()
    folder = os.path.join(disk.point, "Screenshots")
    os.mkdir(folder)
    desktop.choose_folder(folder)
    desktop.launch()

    open_settings(desktop, "Intelligence")
    question = f"“nobody”, another user of this computer, runs a model server at 127.0.0.1:{port}. It would see your " \
               "screenshots and their text."
    desktop.wait_for(question, "label", "Settings")
    desktop.picture(os.path.join(desktop.pictures, "foreign-server.png"))
    hold_for("nothing is asked", lambda: os.path.getsize(asked) == 0, 1)
    desktop.click(desktop.wait_for("Use It", "push button", "Settings"))
    wait_until("now it is asked", lambda: os.path.getsize(asked) > 0)

    desktop.click(desktop.wait_for("Screenshots", "page tab", "Settings"))
    desktop.wait_for(TOO_LITTLE, "label", "Settings")
    expect("the program runs on", desktop.program.is_running)


run_journey("foreign-server", journey)
