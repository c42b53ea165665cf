"""Rooms for sounds: a room reverberator and spatialiser.

>>> import numpy, orvanverb
>>> room = orvanverb.Room(sources=1, speakers="headphones", rate=48000)
>>> room.decay_s = 1.8
>>> room.early.gain_db = -3
>>> room.place(0, azimuth_deg=-45, distance_m=2)
>>> wet = room.render(numpy.zeros((1, 480), numpy.float32), tail=0.5)
>>> wet.shape
(2, 24480)

`pan`, `decode` and `convert_hrtf` do without a room what the program's commands of these names do.

Arrays are float32 and (channels, frames). Azimuths are positive to the right; sources count from 0. A room belongs to
one thread at a time, and says so otherwise; rooms on several threads run at once.
"""

from __future__ import annotations

import json
import os
from typing import Any, Iterable, Mapping, Sequence

import numpy

from . import _orvanverb
from ._formats import convert_hrtf, decode, decoders, in_pythons_words, pan, pan_methods, places, require_file

__version__: str = _orvanverb.__version__

__all__ = ["Room", "controls", "convert_hrtf", "decode", "decoders", "measure", "pan", "pan_methods"]

#: The controls of the late field, by what people call them.
_LATE_NAMES = {
    "gain": "late_gain", "modaldensity": "modal_density", "tr0": "decay", "trl": "decay_low", "trm": "decay_medium",
    "trh": "decay_high", "fl": "crossover_low", "fh": "crossover_high", "airfreq": "air_freq", "reverb_start": "late_start",
}
_UNITS = {"dB": "_db", "Hz": "_hz", "ms": "_ms", "s": "_s", "degrees": "_deg", "": ""}
_VECTOR = 64  # samples of one run of the engine


def controls() -> dict[str, dict[str, Any]]:
    """All controls of a room by name: label, usual name, unit, least and greatest value, standard, group, scale."""
    return _orvanverb.controls()


def _property_name(name: str, control: Mapping[str, Any]) -> str:
    group = control["group"]
    own = _LATE_NAMES.get(name, name)
    if group != "late":
        own = own.removeprefix(group + "_").replace("distr", "distribution")
    return own + _UNITS[control["unit"]]


def _add_controls(owner: type, group: str) -> None:
    for name, control in controls().items():
        if control["group"] != group:
            continue
        unit = f" {control['unit']}" if control["unit"] else ""
        text = f"{control['label']} ({control['usual_name']}), {control['least']:g} to {control['greatest']:g}{unit}"
        setattr(owner, _property_name(name, control), property(
            lambda self, name=name: self._room.get(name),
            lambda self, value, name=name: self._room.set(name, value), doc=text))


class _Group:
    """The controls of a part of the room."""

    __slots__ = ("_room",)

    def __init__(self, room: Any) -> None:
        object.__setattr__(self, "_room", room)

    def __setattr__(self, name: str, value: float) -> None:
        if not isinstance(getattr(type(self), name, None), property):
            raise AttributeError(f"{name}: there is no such control; {', '.join(_names(type(self)))} are")
        object.__setattr__(self, name, value)

    def __repr__(self) -> str:
        return f"<{', '.join(f'{name}={getattr(self, name):g}' for name in _names(type(self)))}>"


def _names(owner: type) -> list[str]:
    return [name for name, value in vars(owner).items() if isinstance(value, property)]


class _Direct(_Group):
    __slots__ = ()


class _Shelf(_Group):
    __slots__ = ()


class _Early(_Group):
    __slots__ = ()


class _Cluster(_Group):
    __slots__ = ()


class Room:
    """A room with sources and loudspeakers in it.

    :param sources: how many, 1 to 64
    :param speakers: "headphones"; a number from 3 to 64 (a ring), the name of a layout as "7.1.4", or a file of places,
        with the channels in the order that `orvanverb render` gives them, silent ones included; or their places:
        azimuths in degrees, or rows of azimuth, elevation [degrees] and distance [m]
    :param rate: samples a second
    :param internals: channels of the room, 2 to 16; more are denser
    """

    _room: Any

    def __init__(self, sources: int = 1, speakers: int | str | Iterable[Any] = "headphones", rate: float = 48000,
                 internals: int = 8) -> None:
        coordinates: list[Any] = []
        order: list[int | None] = []
        if str(speakers).isdigit() and not 3 <= int(str(speakers)) <= 64:
            raise ValueError(f"speakers: {speakers} is not from 3 to 64; two ears are 'headphones'")
        if isinstance(speakers, (str, os.PathLike, int, numpy.integer)):
            if speakers != "headphones":
                coordinates, order = in_pythons_words(lambda: _orvanverb.layout(str(speakers)))
        elif isinstance(speakers, Iterable):
            coordinates, _ = _orvanverb.layout(places(speakers, "speakers"))
        else:
            raise ValueError(f"speakers: {speakers!r} is no number, no layout, no list of places and not 'headphones'")
        if speakers != "headphones" and not 3 <= len(coordinates) <= 64:
            raise ValueError(f"speakers: {speakers!r}: loudspeakers are 3 to 64; two ears are 'headphones'")
        self._rate = float(rate)
        object.__setattr__(self, "_room", _orvanverb.Room(sources, len(coordinates) or 2, internals, rate, order))
        if coordinates:
            self._room.place_speakers(coordinates)
        self._add_groups()

    def _add_groups(self) -> None:
        self.direct = _Direct(self._room)
        self.room = _Shelf(self._room)
        self.early = _Early(self._room)
        self.cluster = _Cluster(self._room)

    def __setattr__(self, name: str, value: Any) -> None:
        known = name.startswith("_") or isinstance(getattr(type(self), name, None), property)
        if not known and not isinstance(value, _Group):
            raise AttributeError(f"{name}: a room has no such control; {', '.join(_names(Room))} are")
        object.__setattr__(self, name, value)

    # Shape

    @property
    def sources(self) -> int:
        """How many sources there are."""
        return self._room.num_sources

    @property
    def outputs(self) -> int:
        """How many channels come out: loudspeakers, or the left and the right ear."""
        return self._room.num_outputs

    @property
    def internals(self) -> int:
        """Channels of the room."""
        return self._room.num_internals

    @property
    def rate(self) -> float:
        """Samples a second."""
        return self._rate

    # Controls and places

    def __getitem__(self, name: str) -> float:
        """The value of a control by its name in `controls()`."""
        return self._room.get(name)

    def __setitem__(self, name: str, value: float) -> None:
        self._room.set(name, value)

    def place(self, source: int, azimuth_deg: float, elevation_deg: float = 0.0, distance_m: float = 1.0) -> None:
        """Moves a source: azimuth 0 is ahead, 90 on the right; the source counts from 0."""
        if not distance_m >= 0:
            raise ValueError(f"distance_m: {distance_m} is not 0 or more")
        self._room.place(source, azimuth_deg, elevation_deg, distance_m)

    def load_ears(self, path: str) -> None:
        """Takes ears of your own for headphones: a .hrtf or .coll file, or measurements (.sofa), which are fitted once
        for each rate."""
        require_file(path)
        in_pythons_words(lambda: self._room.load_ears(str(path)))

    # Sound

    def process(self, x: Any) -> numpy.ndarray:
        """Plays the next frames, and remembers the room's sound for the next call.

        Whole multiples of 64 frames come back at once; other numbers come `latency` frames late.
        :param x: (sources, frames), float32
        :return: (outputs, frames)
        """
        return self._room.process(x)

    @property
    def latency(self) -> int:
        """How late outputs come [frames]; it grows with the first call of another length than multiples of 64."""
        return self._room.latency

    def clear(self) -> None:
        """Silences the room."""
        self._room.clear()

    def render(self, x: Any, tail: float | str = "auto") -> numpy.ndarray:
        """Plays a recording from its beginning in this room, without touching what `process` remembers.

        The same samples as `orvanverb render --state` writes.
        :param x: (sources, frames) or, for one source, (frames,)
        :param tail: seconds behind the end, or "auto": until the output stays 60 dB below its peak for a second, at
            most 120 seconds
        :return: (outputs, frames and tail)
        """
        x = numpy.atleast_2d(numpy.asarray(x, numpy.float32))
        other = self._fresh()
        frames = x.shape[1]
        if tail != "auto":
            if isinstance(tail, str) or not tail >= 0:
                raise ValueError(f"tail: {tail!r} is no number of seconds and not 'auto'")
            length = frames + int(round(tail * self._rate))
            return _padded(other, x, length)
        return _until_it_has_died_away(other, x, self._rate)

    def impulse_responses(self, seconds: float | None = None) -> numpy.ndarray:
        """From each source to each output: (sources, outputs, frames), by default as long as the decay time and a
        half."""
        longest = max(1.0, self["trl"], self["trm"], self["trh"])
        if seconds is not None and not seconds > 0:
            raise ValueError(f"seconds: {seconds} is not above 0")
        length = int(round((1.5 * self["tr0"] * longest if seconds is None else seconds) * self._rate))
        responses = numpy.zeros((self.sources, self.outputs, length), numpy.float32)
        for source in range(self.sources):
            impulse = numpy.zeros((self.sources, 1), numpy.float32)
            impulse[source] = 1.0
            responses[source] = _padded(self._fresh(), impulse, length)
        return responses

    def _fresh(self) -> Any:
        """The same room at rest."""
        room = self._room
        other = _orvanverb.Room(room.num_sources, room.num_speakers, room.num_internals, self._rate, room.order)
        other.restore(self._room.state())
        return other

    # State

    @property
    def state(self) -> dict[str, Any]:
        """All that the room was told: names and values, as `orvanverb render --save-state` writes them."""
        state: dict[str, Any] = {}
        for line in self._room.state().splitlines()[1:]:
            name, *words = line.split()
            values = [_value(word) for word in words]
            state[name] = values[0] if len(values) == 1 else values
        return state

    @state.setter
    def state(self, state: Mapping[str, Any] | str) -> None:
        if isinstance(state, str):  # of to_json
            state = json.loads(state)
        if not isinstance(state, Mapping):
            raise ValueError(f"state: a dictionary of names and values, or that as JSON, is expected, not {state!r}")
        lines = ["orvanverb-state 1"]
        for name, value in state.items():
            values = value if isinstance(value, (list, tuple)) else [value]
            lines.append(" ".join([name, *(_word(item) for item in values)]))
        self._room.restore("\n".join(lines) + "\n")

    def to_json(self) -> str:
        """The state as JSON text."""
        return json.dumps(self.state)

    def __getstate__(self) -> dict[str, Any]:
        room = self._room
        return {"rate": self._rate, "shape": (room.num_sources, room.num_speakers, room.num_internals),
                "order": room.order, "text": room.state()}

    def __setstate__(self, saved: Mapping[str, Any]) -> None:
        self._rate = saved["rate"]
        object.__setattr__(self, "_room", _orvanverb.Room(*saved["shape"], self._rate, saved["order"]))
        self._room.restore(saved["text"])
        self._add_groups()

    def __repr__(self) -> str:
        number = self._room.num_speakers
        where = "headphones" if number == 2 else f"{number} loudspeakers"
        return (f"<orvanverb.Room: {self.sources} source{'s' if self.sources > 1 else ''} to {where}, "
                f"{self._rate:g} Hz, decay {self['tr0']:.3g} s>")


_add_controls(Room, "late")
_add_controls(_Direct, "direct")
_add_controls(_Shelf, "room")
_add_controls(_Early, "early")
_add_controls(_Cluster, "cluster")


def _value(word: str) -> Any:
    for kind in (int, float):
        try:
            return kind(word)
        except ValueError:
            pass
    return word


def _word(value: Any) -> str:
    if isinstance(value, float):
        return repr(float(numpy.float32(value))) if not isinstance(value, numpy.float32) else repr(float(value))
    return str(value)


def _padded(room: Any, x: numpy.ndarray, length: int) -> numpy.ndarray:
    """What comes of a recording with silence behind it, in whole vectors, cut to a length."""
    frames = -(-max(length, x.shape[1] if length >= x.shape[1] else length) // _VECTOR) * _VECTOR
    padded = numpy.zeros((x.shape[0], frames), numpy.float32)
    count = min(frames, x.shape[1])
    padded[:, :count] = x[:, :count]
    return room.process(padded)[:, :length]


def _until_it_has_died_away(room: Any, x: numpy.ndarray, rate: float) -> numpy.ndarray:
    """A recording and its tail, as long as `orvanverb render --tail auto` makes it: it looks at each vector."""
    frames = x.shape[1]
    whole = frames // _VECTOR * _VECTOR
    pieces = [room.process(x[:, :whole])]
    loudest = numpy.abs(pieces[0]).max(initial=numpy.float32(0))
    quiet_gain, longest = numpy.float32(0.001), int(round(120 * rate))
    ahead = numpy.zeros((x.shape[0], 16 * _VECTOR), numpy.float32)
    ahead[:, :frames - whole] = x[:, whole:]
    fresh, tail, quiet = frames - whole, 0, 0
    while True:
        pieces.append(room.process(ahead))
        for start in range(0, pieces[-1].shape[1], _VECTOR):
            of_tail = min(_VECTOR - fresh, longest - tail)
            level = numpy.abs(pieces[-1][:, start:start + fresh + of_tail]).max()
            loudest = max(loudest, level)
            quiet = quiet + of_tail if level <= loudest * quiet_gain else 0
            tail += of_tail
            fresh = 0
            if quiet >= rate or tail == longest:
                return numpy.concatenate(pieces, axis=1)[:, :frames + tail]
        ahead[:] = 0


def measure(response: Any, rate: float, bands: str = "octave", curves: bool = False) -> dict[str, Any]:
    """Measures an impulse response after ISO 3382-1: decay times, energy ratios, correlation of two ears.

    :param response: (channels, frames) or (frames,)
    :param bands: "octave" or "third"
    :param curves: with the decay curves, the echo density and the spectrum's centroid over time, as arrays
    :return: {"all": figures, "bands": {"125": figures, ...}, "t30_mid_s": ..., ...}; None is what can't be told. The
        figures' "missing" says why, and "inexact" why one may be off by more than 1 % or 0.1 dB
    """
    if bands not in ("octave", "third"):
        raise ValueError(f"bands: '{bands}' is neither 'octave' nor 'third'")
    if not rate > 0:
        raise ValueError(f"rate: {rate} is not above 0")
    return _orvanverb.measure(numpy.atleast_2d(numpy.asarray(response, numpy.float32)), rate, bands == "third",
                              curves)
