#!/usr/bin/env python3
"""Runs the commands of the documents' console blocks and holds what they print against what is written there.

usage: check_readme.py FOLDER_OF_THE_PROGRAM [--update]     --update writes what they print into the documents
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENTS = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]
CONSOLE = re.compile(r"(?<=^```console\n).*?(?=^```$)", re.M | re.S)


def run(block, folder, environment):
    """The block with the output of its commands renewed; a command begins with "$ " and may end with a backslash."""
    text = ""
    for command in re.findall(r"^\$ ((?:.*\\\n)*.*)\n", block, re.M):
        done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        text += f"$ {command}\n{done.stdout}"
        if done.stdout and not done.stdout.endswith("\n"):
            text += "\n"
    return text


def main():
    environment = {**os.environ, "PATH": f"{pathlib.Path(sys.argv[1]).resolve()}:{os.environ['PATH']}"}
    commands, wrong = 0, 0
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "examples").symlink_to(ROOT / "examples")
        for document in DOCUMENTS:
            old = document.read_text(encoding="utf-8")
            new = CONSOLE.sub(lambda block: run(block[0], folder, environment), old)
            commands += len(re.findall(r"^\$ ", new, re.M))
            if new == old:
                continue
            wrong += 1
            if "--update" in sys.argv:
                document.write_text(new, encoding="utf-8")
            else:
                sys.stdout.writelines(difflib.unified_diff(old.splitlines(True), new.splitlines(True),
                                                           f"{document.name}, written", "printed"))
    print(f"documents: {commands} commands, {wrong} documents differ")
    return 0 if commands and (not wrong or "--update" in sys.argv) else 1


if __name__ == "__main__":
    sys.exit(main())
