"""The types of orvanverb.js: they let through what is right, refuse what is wrong, and leave out nothing that it has."""

import os
import pathlib
import re
import shutil
import subprocess

import pytest

HERE = pathlib.Path(__file__).parent
WEB = pathlib.Path(os.environ["ORVAN_WEB"])  # what `make web` made


@pytest.mark.skipif(shutil.which("tsc") is None, reason="there is no compiler of TypeScript")
def test_compiler_lets_through_what_is_right_alone():
    words = ["tsc", "--noEmit", "--strict", "--target", "es2022", "--moduleResolution", "node", "types.ts"]
    result = subprocess.run(words, cwd=HERE, capture_output=True, text=True)
    assert result.returncode == 0, result.stdout


@pytest.mark.skipif(shutil.which("node") is None, reason="there is no Node")
def test_types_have_what_the_module_has(tmp_path):
    for file in ("orvanverb.js", "orvanverb-memory.js"):
        shutil.copy(WEB / file, tmp_path)
    (tmp_path / "package.json").write_text('{"type": "module"}')
    tell = "import { OrvanRoom } from './orvanverb.js'; console.log(...Object.getOwnPropertyNames(OrvanRoom.prototype))"
    has = subprocess.run(["node", "--input-type=module", "-e", tell], cwd=tmp_path, check=True, capture_output=True, text=True)
    declared = (WEB / "orvanverb.d.ts").read_text().split("export declare class OrvanRoom")[1]
    told = set(re.findall(r"^  (?:readonly )?(\w+)(?=[(:])", declared, re.MULTILINE)) | {"constructor"}
    assert set(has.stdout.split()) == told
