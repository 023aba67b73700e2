"""What may be found of each screenshot after a crash, by the promises of the program that crashed.

A screenshot has one fate while nothing is under way, and several while something is: that which was, and those that may
come of it. After a start it must have met one of them, whole.
"""

import configparser
import dataclasses
import hashlib
import json
import os
import time
import urllib.parse

TRASHES = ("data/Trash", ".Trash-0", f".Trash-{os.getuid()}")
OWN_FILES = {"data/Quillmere": {"screenshots.json"}, "config/Quillmere": {"settings.json"}}


class Lost(Exception):
    """Something that must not be."""


def expect(fact, is_so):
    if not is_so:
        raise Lost(f"not so: {fact}")


@dataclasses.dataclass(frozen=True)
class Fate:
    """`stem`: the file may have any name in its folder that begins so. In the Trash `place` is where it came from."""
    kind: str  # "live", "trash" or "never came"
    place: str = None
    states: frozenset = frozenset()
    content: str = "whole"
    stem: str = None

    def fits(self, path):
        if not self.stem:
            return path == self.place
        return os.path.dirname(path) == os.path.dirname(self.place) and os.path.basename(path).startswith(self.stem)


class Shot:
    def __init__(self, line):
        self.place, self.hashes = line["capturing"], {"whole": line["whole"], "crop": line["crop"]}
        self.id = self.until = None
        self.told = []  # the lines about it, for a failure
        self.certain = [Fate("never came")]
        self.possible = self.certain + [self.pending()]

    def pending(self):
        return Fate("live", self.place, frozenset({"pending"}))

    def settle(self, fates):
        """One fate, or two where a replacement was cut off and nobody has looked yet."""
        self.certain = list(dict.fromkeys(fates))
        self.possible = list(self.certain)

    def begin(self, operation, line):
        """What may come of an operation that has begun."""
        for was in [fate for fate in self.possible if fate.kind == "live"]:
            self.possible += outcomes(was, operation, line)
        self.possible = list(dict.fromkeys(self.possible))


def outcomes(was, operation, line):
    if operation in ("trash", "expire"):
        return [dataclasses.replace(was, kind="trash")]
    if operation == "replace":
        return [dataclasses.replace(was, content="crop")]
    if operation == "move":
        return [dataclasses.replace(was, place=line["to"], states=frozenset({"permanent"}))]
    target = {"keep": {"permanent"}, "temporary": {"temporary"}}.get(operation, set())
    decided = dataclasses.replace(was, states=was.states | target)
    if not line["name"]:
        return [decided]
    # What a start finds renamed is kept.
    found = {"permanent"} if "temporary" in was.states else set()
    return [decided, dataclasses.replace(decided, stem=line["name"], states=decided.states | found)]


class World:
    """The folders of a home, its screenshots, and what is known of them. `tops` are the tops of its disks."""

    def __init__(self, home, folders, tops):
        self.home, self.folders, self.tops = home, folders, tops
        self.shots, self._under_way = [], []

    # --- What was promised ---

    def take(self, lines):
        for line in lines:
            self._take(json.loads(line))

    def _by_id(self, name):
        return next((shot for shot in self.shots if shot.id == name), None)

    def _take(self, line):
        if "capturing" in line:
            self.shots.append(Shot(line))
        elif "captured" in line:
            self.shots[-1].settle([self.shots[-1].pending()])
        elif "try" in line:
            for shot in map(self._by_id, line["ids"]):
                shot.told.append(line)
                shot.begin(line["try"], line)
                self._under_way.append(shot)
        elif "is" in line:
            self._told(line)
        elif "records" in line:
            for shot in self.shots:
                if shot.id and shot.id not in line["records"]:
                    self._gone(shot, line)
        elif "gone" in line:
            self._gone(self._by_id(line["gone"]), line)
        elif "replaced" in line:
            shot = self._by_id(line["replaced"])
            shot.told.append(line)
            shot.certain = [dataclasses.replace(fate, content="crop") for fate in shot.certain]
            shot.possible = [fate for fate in shot.possible if fate.content == "crop"]
        elif "end" in line:
            for shot in self._under_way:
                shot.told.append(line)
                shot.settle(shot.certain)
            self._under_way = []

    @staticmethod
    def _gone(shot, line):
        shot.told.append(line)
        fates = [fate for fate in shot.possible if fate.kind == "trash"]
        expect(f"{shot.place} goes where that was asked for: {shot.told}", fates)
        shot.settle(fates)

    def _told(self, line):
        shot = self._by_id(line["is"]) or next(
            (one for one in self.shots if one.id is None and one.place == line["path"]), None)
        expect(f"the record of {line['path']} is one of a screenshot", shot)
        shot.told.append(line)
        fates = [fate for fate in shot.possible
                 if fate.kind == "live" and fate.fits(line["path"]) and line["state"] in fate.states]
        expect(f"{line} is one of {shot.possible}", fates)
        shot.id, shot.until = line["is"], line.get("until")
        shot.settle(dataclasses.replace(fate, place=line["path"], states=frozenset({line["state"]}), stem=None)
                    for fate in fates)

    # --- What is found ---

    def check(self):
        found = Findings(self)
        for shot in self.shots:
            self._check(shot, found)
        expect(f"every file is a screenshot's, not {sorted(found.unclaimed)}", not found.unclaimed)
        expect(f"every record is a screenshot's, not {sorted(found.records)}", not found.records)
        for folder, names in OWN_FILES.items():
            path = os.path.join(self.home, folder)
            strays = set(os.listdir(path)) - names
            expect(f"{path} has nothing else, not {strays}", not strays)

    def _check(self, shot, found):
        if shot.until and time.time() > shot.until - 1:
            shot.begin("expire", {})
        reasons = []
        for fate in shot.possible:
            try:
                shot.settle([found.meet(shot, fate)])
                return
            except Lost as reason:
                reasons.append(f"  {fate}: {reason}")
        raise Lost("\n".join([f"{shot.place} ({shot.id}) has met none of its fates:", *reasons, found.describe(shot)]))


class Findings:
    def __init__(self, world):
        self.live, self.trashed, self.unclaimed = {}, {}, set()
        for folder in world.folders:
            for parent, _, names in os.walk(folder):
                for name in names:
                    path = os.path.join(parent, name)
                    self.live.setdefault(hash_of(path), set()).add(path)
                    self.unclaimed.add(path)
        for top in [world.home, *world.tops]:
            for trash in dict.fromkeys(TRASHES):
                self._look_in_trash(top, os.path.join(top, trash))
        with open(os.path.join(world.home, "data/Quillmere/screenshots.json"), encoding="utf-8") as file:
            items = json.load(file)["items"]
        self.records = {}
        for item in items:
            path = urllib.parse.unquote(urllib.parse.urlparse(item["url"]).path)
            expect(f"{path} has one record", path not in self.records)
            self.records[path] = (item["id"], item["state"])

    def _look_in_trash(self, top, trash):
        files = os.path.join(trash, "files")
        for name in os.listdir(files) if os.path.isdir(files) else []:
            path = path_in(os.path.join(trash, "info", name + ".trashinfo"))
            origin = path and os.path.join(top, urllib.parse.unquote(path))
            self.trashed.setdefault(hash_of(os.path.join(files, name)), []).append(origin)

    def meet(self, shot, fate):
        """The fate with all that is certain now."""
        live = {content: self.live.get(value, set()) for content, value in shot.hashes.items()}
        trashed = {content: self.trashed.get(value, []) for content, value in shot.hashes.items()}
        other = "crop" if fate.content == "whole" else "whole"
        expect(f"its {other} form is not in the folders", not live[other])
        expect("its original is in the Trash" if other == "whole" else "its crop was never made",
               len(trashed[other]) == (1 if other == "whole" else 0))
        expect("its original can be restored", None not in trashed[other])
        if fate.kind != "live":
            expect("it is not in the folders", not live[fate.content])
        if fate.kind == "never came":
            expect("it is not in the Trash", not trashed[fate.content])
            return fate
        if fate.kind == "trash":
            expect("it is in the Trash once", len(trashed[fate.content]) == 1)
            origin = trashed[fate.content][0]
            expect("it can be restored", origin and fate.fits(origin))
            expect("it has no record", shot.id is None or all(name != shot.id for name, _ in self.records.values()))
            return dataclasses.replace(fate, place=origin, stem=None)
        places = live[fate.content]
        place = next((path for path in sorted(places) if fate.fits(path)), None)
        expect("it is in its place", place)
        expect("it is nowhere else", places == {place})
        expect("it is not in the Trash", not trashed[fate.content])
        expect("it has a record", place in self.records)
        name, state = self.records[place]
        expect("the record is its own", shot.id in (None, name))
        expect(f"it is not {state}", state in fate.states)
        shot.id = name
        self.unclaimed -= places
        del self.records[place]
        return dataclasses.replace(fate, place=place, states=frozenset({state}), stem=None)

    def describe(self, shot):
        found = {content: (sorted(self.live.get(value, set())), self.trashed.get(value, []))
                 for content, value in shot.hashes.items()}
        records = [record for record in self.records.items() if record[1][0] == shot.id]
        return "\n  ".join([f"  found: {found}, record {records}", *map(str, shot.told[-12:])])


def path_in(info):
    """None where nobody could restore the file."""
    parser = configparser.RawConfigParser()
    try:
        parser.read(info, encoding="utf-8")
    except (configparser.Error, UnicodeError):
        return None
    return parser.get("Trash Info", "Path", fallback=None)


def hash_of(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()
