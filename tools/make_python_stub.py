#!/usr/bin/env python3
"""Writes orvanverb/__init__.pyi, which tells type checkers of the controls that the package makes from their table.

    PYTHONPATH=build/release/python tools/make_python_stub.py
"""

import pathlib

import orvanverb

HEAD = '''"""Made by tools/make_python_stub.py from the table of controls."""

from typing import Any, Iterable, Mapping

from numpy import float32
from numpy.typing import ArrayLike, NDArray

from ._formats import convert_hrtf as convert_hrtf, decode as decode, decoders as decoders
from ._formats import pan as pan, pan_methods as pan_methods

__version__: str

def controls() -> dict[str, dict[str, Any]]: ...
def measure(response: ArrayLike, rate: float, bands: str = ..., curves: bool = ...) -> dict[str, Any]: ...
'''
METHODS = '''    direct: _Direct
    room: _Shelf
    early: _Early
    cluster: _Cluster
    state: Any
    def __init__(self, sources: int = ..., speakers: int | str | Iterable[Any] = ..., rate: float = ...,
                 internals: int = ...) -> None: ...
    @property
    def sources(self) -> int: ...
    @property
    def outputs(self) -> int: ...
    @property
    def internals(self) -> int: ...
    @property
    def rate(self) -> float: ...
    @property
    def latency(self) -> int: ...
    def __getitem__(self, name: str) -> float: ...
    def __setitem__(self, name: str, value: float) -> None: ...
    def place(self, source: int, azimuth_deg: float, elevation_deg: float = ..., distance_m: float = ...) -> None: ...
    def load_ears(self, path: str) -> None: ...
    def process(self, x: ArrayLike) -> NDArray[float32]: ...
    def render(self, x: ArrayLike, tail: float | str = ...) -> NDArray[float32]: ...
    def impulse_responses(self, seconds: float | None = ...) -> NDArray[float32]: ...
    def clear(self) -> None: ...
    def to_json(self) -> str: ...
'''


def stub() -> str:
    text = HEAD
    groups = {"direct": "_Direct", "room": "_Shelf", "early": "_Early", "cluster": "_Cluster", "late": "Room"}
    for group, owner in groups.items():
        text += f"\nclass {owner}:\n"
        for name, control in orvanverb.controls().items():
            if control["group"] == group:
                text += f"    {orvanverb._property_name(name, control)}: float\n"
        if owner == "Room":
            text += METHODS
    return text


if __name__ == "__main__":
    (pathlib.Path(__file__).parents[1] / "bindings/python/orvanverb/__init__.pyi").write_text(stub())
