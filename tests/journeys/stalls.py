"""What the watchdog tells of a run: how long the main thread was held, turn by turn of its loop, and by what."""

import bisect
import collections
import os
import re
import subprocess
import time

from waiting import expect

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
LONG = 0.008
LONGEST = 0.050
# What writes the list.
SAVING = ("ScreenshotListWriter::", "AppModel::trySaving")


class Turn:
    def __init__(self, begin, taken, held):
        self.begin, self.taken, self.held, self.stacks = begin / 1e6, taken / 1e6, held / 1e6, []


class Watchdog:
    """Loaded into the next program that the desktop starts. Phases are named while it runs; the report is there once it
    has ended."""

    def __init__(self, desktop):
        self._program = desktop.binary
        library = os.environ.get("QUILLMERE_WATCHDOG") or os.path.join(os.path.dirname(desktop.binary),
                                                                       "libquillmere-watchdog.so")
        self.report = os.path.join(desktop.scratch, "held.txt")
        desktop.program_environment = {"LD_PRELOAD": library, "QUILLMERE_WATCHDOG_REPORT": self.report}
        self._phases = []

    def begin(self, phase):
        self._phases.append((time.monotonic(), phase))

    def read(self):
        self.turns, self._modules = [], []
        stacks = []
        with open(self.report, encoding="utf-8") as file:
            for line in file:
                kind, *fields = line.split()
                if kind == "turn":
                    self.turns.append(Turn(*map(int, fields)))
                elif kind == "stack":
                    stacks.append((int(fields[0]), [int(frame, 16) for frame in fields[2:]]))
                else:
                    self._modules.append((int(fields[0], 16), int(fields[1], 16), fields[2]))
        expect("the watchdog saw the loop turn", len(self.turns) > 1)
        for turn, frames in stacks:
            # The last one is still under way when the report is written.
            if turn < len(self.turns):
                self.turns[turn].stacks.append(frames)
        self._names = self._names_of({frame for _, frames in stacks for frame in frames})

    def _names_of(self, frames):
        """By the program's own table of symbols; what is in libraries goes by the library's name."""
        modules = sorted(self._modules)
        bases = [base for base, _, _ in modules]
        names, own = {}, []
        for frame in frames:
            place = bisect.bisect_right(bases, frame) - 1
            base, end, path = modules[place] if place >= 0 else (0, 0, "?")
            if path == "-" and frame < end:
                own.append((frame, frame - base - 1))
            else:
                names[frame] = os.path.basename(path) if frame < end else "?"
        if own:
            done = subprocess.run(["addr2line", "-f", "-C", "-e", self._program],
                                  input="\n".join(hex(offset) for _, offset in own), capture_output=True, text=True, check=True)
            for (frame, _), name in zip(own, done.stdout.splitlines()[::2]):
                names[frame] = _shortened(name)
        return names

    def named(self, frames):
        """The program's functions of a stack, outermost first, and the library that the thread was in."""
        own = [self._names[frame] for frame in frames[3:] if "quillmere::" in self._names[frame]]
        top = self._names[frames[3]] if len(frames) > 3 else "?"
        return list(reversed(own)) + ([top] if "quillmere::" not in top else [])

    def phase(self, name):
        """The turns that began in it."""
        for place, (begin, phase) in enumerate(self._phases):
            if phase == name:
                end = self._phases[place + 1][0] if place + 1 < len(self._phases) else float("inf")
                return [turn for turn in self.turns if begin <= turn.begin < end]
        return []

    def longest(self, phase, without=()):
        """Seconds that the main thread was held in one turn."""
        return max((turn.held for turn in self.phase(phase) if not self._shows(turn, without)), default=0)

    def tell(self, without=(), names=6):
        """Each phase with its figures and what held longest. Turns whose stacks show a function of `without` are told but
        not counted."""
        for _, name in self._phases:
            turns = self.phase(name)
            counted = [turn for turn in turns if not self._shows(turn, without)]
            if not turns:
                continue
            held = sorted(turn.held for turn in counted) or [0]
            late = held[min(len(held) - 1, int(len(held) * 0.99))]
            print(f"{name:<28} {len(turns):6d} turns   p99 {late * 1000:7.1f} ms   longest {held[-1] * 1000:7.1f} ms   "
                  f"over 8 ms: {sum(one > LONG for one in held)}"
                  + (f"   not counted: {len(turns) - len(counted)}" if len(turns) != len(counted) else ""))
            for line in self._what_held(turns, names):
                print("      " + line)

    def judge(self, first, last, without=()):
        """Of the turns from the first phase's beginning up to the last's: what a turn of a hundred, and what the longest
        holds, in seconds."""
        begin, end = (next(moment for moment, phase in self._phases if phase == name) for name in (first, last))
        held = sorted(turn.held for turn in self.turns if begin <= turn.begin < end and not self._shows(turn, without))
        expect("the loop turned", held)
        return held[min(len(held) - 1, int(len(held) * 0.99))], held[-1]

    def _shows(self, turn, functions):
        seen = [any(function in self._names[frame] for function in functions for frame in frames) for frames in turn.stacks]
        return sum(seen) * 2 > len(seen)

    def _what_held(self, turns, most):
        """The stacks of long turns, counted by the program's functions in them; each stands for about 3 ms."""
        chains = collections.Counter()
        for turn in turns:
            if turn.held > LONG:
                for frames in turn.stacks:
                    chains[" > ".join(_unique(self.named(frames))[-5:])] += 1
        return [f"{count:5d} x {chain}" for chain, count in chains.most_common(most)]


def _unique(names):
    return [name for place, name in enumerate(names) if place == 0 or names[place - 1] != name]


def _shortened(name):
    """Without parameters and what the compiler adds."""
    name = re.sub(r"\[clone [^]]*\]", "", name)
    name = re.sub(r"\(anonymous namespace\)", "_", name)
    depth, kept = 0, []
    for letter in name:
        if letter in "(<":
            depth += 1
        if depth == 0:
            kept.append(letter)
        if letter in ")>":
            depth -= 1
    name = "".join(kept).replace("const", "").strip()
    return name if len(name) < 90 else name[:90]
