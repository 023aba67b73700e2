"""What the window system tells, followed by the program's own watch while a desktop is measured."""

import subprocess

from desktop import Failed


class Watch:
    def __init__(self, program, desktop):
        self._process = subprocess.Popen([program], env=desktop.environment, stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, text=True)

    def write(self, path):
        """All that was shown lately, to a file; how many states those are."""
        self._process.stdin.write(path + "\n")
        self._process.stdin.flush()
        answer = self._process.stdout.readline()
        if not answer:
            raise Failed("window-states has ended")
        return int(answer)

    def close(self):
        self._process.stdin.close()
        self._process.wait(10)
