#!/usr/bin/env python3
"""Runs the examples of every command's --help as they stand, each command's in a folder of its own.

Usage: help_examples.py PROGRAM
"""
import array
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import wave

MEASURED_HEAD = "/usr/share/libmysofa/default.sofa"


def make_files(folder, run):
    """What examples speak of as the user's own."""
    with wave.open(str(folder / "voice.wav"), "wb") as voice:
        voice.setparams((1, 2, 48000, 0, "NONE", ""))
        voice.writeframes(array.array("h", [(i * i) % 20011 - 10005 for i in range(4800)]).tobytes())
    (folder / "walk.scene").write_text("source 1 ade -45 2 0\n0..0.1 source 1 azim -45 -> 45\n")
    (folder / "duet.scene").write_text("source 1 ade -45 2 0\n0.05 source 2 azim 45\n")
    shutil.copy(MEASURED_HEAD, folder / "me.sofa")
    run(folder, "orvanverb ir -o yours.wav --preset studio && orvanverb pan voice.wav -o field.wav --method hoa3d --ambix --order 3"
        " && orvanverb pan voice.wav -o ears.wav --method binaural")


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as place:
        place = pathlib.Path(place)
        (place / "bin").mkdir()
        (place / "bin" / "orvanverb").symlink_to(program)
        environment = {**os.environ, "PATH": f"{place}/bin:{os.environ['PATH']}", "HOME": f"{place}",
                       "XDG_CACHE_HOME": f"{place}/cache", "XDG_STATE_HOME": f"{place}/state"}
        (place / ".local/share/bash-completion/completions").mkdir(parents=True)

        def run(folder, line):
            done = subprocess.run(["bash", "-c", line], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                                  capture_output=True, text=True, check=False)
            if done.returncode != 0:
                sys.exit(f"{line}\nended with {done.returncode}: {done.stderr}{done.stdout}")
            return done.stdout

        (place / "own").mkdir()
        make_files(place / "own", run)
        commands, played = [""], 0
        for command in commands:  # grows while it is gone through
            text = run(place, f"orvanverb {command} --help")
            listed = re.search(r"^Subcommands:\n((?:  .*\n)*)", text, re.MULTILINE)
            names = re.findall(r"^  (\S+)", listed.group(1), re.MULTILINE) if listed else []
            commands += [f"{command} {name}".strip() for name in names]
            examples = [line for line in text.splitlines() if line.startswith(("  orvanverb ", "  echo "))]
            if len(examples) < 2:
                sys.exit(f"orvanverb {command} --help has {len(examples)} examples, not two")
            folder = place / f"of {command}"
            shutil.copytree(place / "own", folder)
            for example in examples:
                run(folder, example)
                played += 1
            shutil.rmtree(folder)
    print(f"help: {played} examples of {len(commands)} commands run")


if __name__ == "__main__":
    main()
