"""A list of thousands of screenshots with a file each, as a person has it after years: made at once, without the program."""

import base64
import datetime
import json
import os
import subprocess
import uuid

import captures

_REFERENCE = 978307200  # 2001-01-01, from which dates are counted
_TEXT = "The quick brown fox jumps over the lazy dog and asks what a list says of it.\n" * 22  # with the rest of a record 2.4 kB


def write_files(folder, count, first=datetime.datetime(2025, 11, 1), seconds=61):
    """Small pictures under a capture tool's names; gives the names."""
    os.makedirs(folder, exist_ok=True)
    picture = captures.png()
    names = []
    for number in range(count):
        moment = first + datetime.timedelta(seconds=number * seconds)
        name = moment.strftime("Screenshot from %Y-%m-%d %H-%M-%S.png")
        with open(os.path.join(folder, name), "wb") as file:
            file.write(picture)
        names.append(name)
    return names


def _births(folder):
    """Name, inode and moment of birth of each file."""
    names = "\0".join(os.listdir(folder))
    done = subprocess.run(["xargs", "-0", "stat", "--printf", "%n\\t%i\\t%.9W\\n"], input=names, cwd=folder,
                          capture_output=True, text=True, check=True)
    return [line.split("\t") for line in done.stdout.splitlines()]


def list_of(folder, state="permanent", expires_at=None):
    """A record of each file in the folder."""
    device = os.stat(folder).st_dev
    volume = f"{os.major(device)}:{os.minor(device)}"
    items = []
    for name, inode, birth in sorted(_births(folder), reverse=True):
        path, created = os.path.join(folder, name), float(birth) - _REFERENCE
        bookmark = {"creationDate": created, "file": inode, "path": path, "volume": volume}
        item = {"id": str(uuid.uuid4()).upper(), "url": "file://" + path.replace(" ", "%20"), "createdAt": created,
                "state": state, "recognizedText": _TEXT, "imageDescription": "A page of words.", "suggestedName": name[:-4],
                "fileBookmark": base64.b64encode(json.dumps(bookmark, separators=(",", ":")).encode()).decode(),
                "fileIdentity": {"volume": volume, "file": int(inode), "creationDate": created,
                                 "size": os.path.getsize(path)}}
        if expires_at:
            item["expiresAt"] = expires_at - _REFERENCE
        items.append(item)
    return items


def save_list(desktop, items):
    os.makedirs(os.path.dirname(desktop.list_file), exist_ok=True)
    with open(desktop.list_file, "w", encoding="utf-8") as file:
        json.dump({"version": 1, "items": items}, file, separators=(",", ":"))


def count_in(path):
    """Records of a list, without reading it as JSON."""
    try:
        with open(path, "rb") as file:
            return file.read().count(b'{"id":"')
    except FileNotFoundError:
        return 0
