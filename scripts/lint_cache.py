# SPDX-License-Identifier: MIT
"""Remembers what the linters have found clean, so that it is looked at again only when it, a header it includes, or how it is
looked at has changed. Where CI=true nothing is remembered. What it does not see is a system's header that is new and comes
before another of its name."""

import collections
import hashlib
import json
import os
import pathlib
import re
import subprocess

root = pathlib.Path(__file__).resolve().parent.parent


def included_files(rule, folder):
    """The files that a compiler's rule for make names after the colon, links resolved."""
    words = re.findall(r"(?:\\[ #]|\S)+", rule.split(":", 1)[1].replace("\\\n", " "))
    names = (re.sub(r"\\([ #])", r"\1", word).replace("$$", "$") for word in words)
    return sorted({os.path.realpath(os.path.join(folder, name)) for name in names})


class Cache:
    def __init__(self, folder, how):
        """`how` is all that goes for every entry: versions, the linter's own text."""
        self.folder = None if os.environ.get("CI") == "true" else pathlib.Path(folder)
        self.how = how
        self.digests = {}
        self.headers = collections.defaultdict(list)
        if self.folder:
            self.folder.mkdir(parents=True, exist_ok=True)
            listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.h"], cwd=root,
                                    text=True, capture_output=True, check=True).stdout.split("\n")
            for header in sorted(filter(None, listed)):
                self.headers[os.path.basename(header)].append(header)

    def knows(self, name, options):
        """Whether it was clean as it is now."""
        if not self.folder:
            return False
        try:
            entry = json.loads(self._file(name).read_text())
            return entry["state"] == self.state(options, entry["files"])
        except (OSError, ValueError, KeyError, TypeError):
            return False

    def state(self, options, files):
        """What must stay for a clean result to hold; None where a file cannot be read."""
        if not self.folder:
            return None
        whole = hashlib.sha256(json.dumps([self.how, options]).encode())
        try:
            for file in files:
                whole.update(json.dumps([file, self._digest(file)]).encode())
        except OSError:
            return None
        # A header of the same name may come to stand before the one that was included.
        for name in sorted({os.path.basename(file) for file in files}):
            whole.update(json.dumps(self.headers.get(name, [])).encode())
        return whole.hexdigest()

    def remember(self, name, options, files, before):
        """It was found clean, and this was its state before. If that has changed meanwhile, nobody knows what was seen."""
        if before is None or before != self.state(options, files):
            return
        new = self._file(name).with_suffix(f".{os.getpid()}")
        new.write_text(json.dumps({"name": name, "state": before, "files": files}))
        new.replace(self._file(name))

    def _file(self, name):
        return self.folder / (hashlib.sha256(name.encode()).hexdigest()[:32] + ".json")

    def _digest(self, file):
        now = os.stat(file)
        key = (file, now.st_ino, now.st_size, now.st_mtime_ns)
        if key not in self.digests:
            self.digests[key] = hashlib.sha256(pathlib.Path(file).read_bytes()).hexdigest()
        return self.digests[key]
