"""Many rooms: impulse responses with their figures, on this machine's processors or on a Dask cluster.

    python3 -m orvanverb.batch rooms.csv --out DIRECTORY [--format npz|wav|zarr] [--scheduler tcp://...] [--workers N]

Each row of the table is a room: any control of `orvanverb.controls()`, and `id`, `speakers` ("headphones", a number, a layout as 7.1.4),
`rate`, `internals`, `azimuth`, `elevation`, `distance`, `seconds`. What a row leaves out has its standard. A room gives
one NPZ file with the response (outputs, frames), the rate and the figures of `orvanverb.measure`; or a WAV file of
32-bit float and the figures beside it as JSON; or an array, with the figures as its attributes, in the Zarr group that
DIRECTORY then is. `index.json` lists all of them once the run is complete. A run that was stopped goes on where it was:
complete files stay as they are.
"""

from __future__ import annotations

import argparse
import csv
import io
import itertools
import json
import os
import pathlib
import random
import struct
import sys
import tempfile
import time
import zipfile
from concurrent.futures import Executor, ProcessPoolExecutor, as_completed
from typing import Any, Iterable, Iterator, Mapping

import numpy

from . import Room, controls, measure

__all__ = ["random_rooms", "read_table", "make_response", "run"]

_FORMS = ("npz", "wav", "zarr")
_OWN = ("id", "speakers", "rate", "internals", "azimuth", "elevation", "distance", "seconds")


def random_rooms(number: int, seed: int = 0) -> Iterator[dict[str, Any]]:
    """Rooms of living and working: decays of 0.2 to 2 s, sources all around. The same for the same seed."""
    generator = random.Random(seed)
    for i in range(number):
        yield {
            "id": f"room{i:06d}",
            "tr0": round(0.2 * 10.0 ** generator.random(), 3),
            "trh": round(generator.uniform(0.3, 1.0), 3),
            "reverb_start": round(generator.uniform(20.0, 120.0), 2),
            "modaldensity": round(generator.uniform(0.3, 1.2), 3),
            "azimuth": round(generator.uniform(-180.0, 180.0), 1),
            "elevation": round(generator.uniform(-30.0, 60.0), 1),
            "distance": round(0.5 * 10.0 ** generator.random(), 2),
        }


def read_table(path: str | os.PathLike[str]) -> list[dict[str, Any]]:
    """Rooms of a CSV or Parquet file, checked: unknown columns and values out of range are named."""
    path = pathlib.Path(path)
    rows: list[dict[str, Any]]
    if path.suffix == ".parquet":
        try:
            from pyarrow import parquet
        except ImportError:
            raise ValueError(f"{path}: Parquet tables are read by pyarrow, which isn't here; CSV needs nothing") from None
        rows = parquet.read_table(path).to_pylist()
    else:
        with path.open(newline="", encoding="utf-8-sig") as file:
            rows = list(csv.DictReader(file))
    known = controls()
    rooms, names = [], set()
    for number, row in enumerate(rows, 2):
        room: dict[str, Any] = {}
        for name, value in row.items():
            if value in (None, ""):
                continue
            if name not in known and name not in _OWN:
                raise ValueError(f"{path}: '{name}' is no control of a room, and none of {', '.join(_OWN)}")
            try:
                if name == "speakers" and isinstance(value, float):
                    value = int(value)  # as columns with gaps have whole numbers
                room[name] = str(value) if name in ("id", "speakers") else float(value)
            except ValueError:
                raise ValueError(f"{path}:{number}: {name}: '{value}' is no number") from None
            limits = known.get(name)
            if limits and not limits["least"] <= room[name] <= limits["greatest"]:
                raise ValueError(f"{path}:{number}: {name}: {value} is not from {limits['least']:g} to "
                                 f"{limits['greatest']:g} {limits['unit']}".rstrip())
        room.setdefault("id", f"room{number - 2:06d}")
        if room["id"] in names or "/" in room["id"]:
            raise ValueError(f"{path}:{number}: id '{room['id']}' stands there twice, or is no file name")
        names.add(room["id"])
        rooms.append(room)
    return rooms


def make_response(room: Mapping[str, Any]) -> tuple[numpy.ndarray, dict[str, Any]]:
    """The response of a described room (outputs, frames), and its labels."""
    rate = float(room.get("rate", 48000))
    made = Room(1, room.get("speakers", "headphones"), rate, int(room.get("internals", 8)))
    for name in controls():
        if name in room:
            made[name] = room[name]
    place = {"azimuth": float(room.get("azimuth", 0)), "elevation": float(room.get("elevation", 0)),
             "distance": float(room.get("distance", 1))}
    made.place(0, place["azimuth"], place["elevation"], place["distance"])
    seconds = room.get("seconds")
    response = made.impulse_responses(None if seconds is None else float(seconds))[0]
    return response, {"id": room["id"], "rate": rate, **place, "room": dict(room), "measured": measure(response, rate)}


def _file(folder: pathlib.Path, room: Mapping[str, Any], form: str) -> pathlib.Path:
    return folder / (room["id"] if form == "zarr" else f"{room['id']}.{form}")


def _whole(path: pathlib.Path, data: bytes) -> None:
    """Writes aside and renames, so that a file is whole or absent."""
    handle, name = tempfile.mkstemp(dir=path.parent, suffix=".part")
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(data)
        os.replace(name, path)
    except BaseException:
        if os.path.exists(name):
            os.unlink(name)
        raise


def _npz(response: numpy.ndarray, labels: bytes) -> bytes:
    """Without the time of day in it, so that the same room gives the same bytes."""
    whole = io.BytesIO()
    with zipfile.ZipFile(whole, "w", zipfile.ZIP_STORED) as archive:
        for key, value in (("response", response), ("labels", numpy.frombuffer(labels, numpy.uint8))):
            buffer = io.BytesIO()
            numpy.lib.format.write_array(buffer, numpy.ascontiguousarray(value))
            archive.writestr(zipfile.ZipInfo(f"{key}.npy"), buffer.getvalue())
    return whole.getvalue()


def _wav(response: numpy.ndarray, rate: float) -> bytes:
    channels, frames = response.shape
    samples = numpy.ascontiguousarray(response.T, "<f4").tobytes()
    form = struct.pack("<HHIIHHH", 3, channels, round(rate), 4 * channels * round(rate), 4 * channels, 32, 0)  # 3: float
    chunks = b"".join(name + struct.pack("<I", len(data)) + data
                      for name, data in ((b"fmt ", form), (b"fact", struct.pack("<I", frames)), (b"data", samples)))
    return b"RIFF" + struct.pack("<I", 4 + len(chunks)) + b"WAVE" + chunks


def _write_zarr(path: pathlib.Path, response: numpy.ndarray, labels: Mapping[str, Any]) -> None:
    import zarr

    with tempfile.TemporaryDirectory(dir=path.parent, suffix=".part") as folder:
        array = zarr.open_array(f"{folder}/array", mode="w", shape=response.shape, chunks=response.shape,
                                dtype="<f4", compressor=None)
        array[:] = response
        array.attrs.put(dict(labels))
        os.replace(f"{folder}/array", path)


def _write(path: pathlib.Path, form: str, response: numpy.ndarray, labels: Mapping[str, Any]) -> None:
    text = json.dumps(labels, sort_keys=True).encode()
    if form == "zarr":
        _write_zarr(path, response, labels)
    elif form == "npz":
        _whole(path, _npz(response, text))
    else:
        _whole(path.with_suffix(".json"), text)  # first: a room is made when its sound is there
        _whole(path, _wav(response, labels["rate"]))


def labels_of(path: str | os.PathLike[str]) -> dict[str, Any]:
    """The labels of a room that `run` wrote: a file .npz or .wav, or an array of Zarr."""
    path = pathlib.Path(path)
    if path.is_dir():
        return json.loads((path / ".zattrs").read_text())
    if path.suffix == ".wav":
        return json.loads(path.with_suffix(".json").read_text())
    with numpy.load(path) as data:
        return json.loads(data["labels"].tobytes())


def _make(folder: str, form: str, room: Mapping[str, Any]) -> tuple[str, str | None]:
    """Makes one file. Gives the id, and why it failed if it did."""
    try:
        response, labels = make_response(room)
        _write(_file(pathlib.Path(folder), room, form), form, response, labels)
        return room["id"], None
    except Exception as error:  # one bad room must not stop ten thousand others
        return room["id"], f"{type(error).__name__}: {error}"


def _results(rooms: list[Mapping[str, Any]], folder: str, form: str, client: Any,
             workers: int | None) -> Iterator[tuple[str, str | None]]:
    """Results as they come, with a bounded number of rooms under way."""
    if client is not None:
        from distributed import as_completed as completed

        under_way = completed()
        waiting = iter(rooms)
        batch = 4 * max(1, sum(client.nthreads().values()))

        def submit() -> bool:
            for room in waiting:
                under_way.add(client.submit(_make, folder, form, room, pure=False))
                return True
            return False

        for _ in range(batch):
            if not submit():
                break
        for future in under_way:
            yield future.result()
            submit()
        return
    executor: Executor
    with ProcessPoolExecutor(workers) as executor:
        waiting = iter(rooms)
        at_once = 4 * (workers or os.cpu_count() or 1)
        futures = {executor.submit(_make, folder, form, room) for room in itertools.islice(waiting, at_once)}
        while futures:
            done = next(as_completed(futures))
            futures.remove(done)
            yield done.result()
            for room in waiting:
                futures.add(executor.submit(_make, folder, form, room))
                break


class _Progress:
    """A bar on a terminal, with the time that is left; nothing elsewhere."""

    def __init__(self, number: int, wanted: bool) -> None:
        self._number = number
        self._wanted = wanted and sys.stderr.isatty()
        self._begin = time.monotonic()

    def show(self, done: int) -> None:
        if not self._wanted:
            return
        left = (time.monotonic() - self._begin) / done * (self._number - done)
        bar = "#" * (30 * done // self._number)
        print(f"\r[{bar:30}] {done} of {self._number}, {left / 60:.0f} min left ", end="", file=sys.stderr, flush=True)

    def end(self) -> None:
        if self._wanted:
            print("\r\033[K", end="", file=sys.stderr)


def run(rooms: Iterable[Mapping[str, Any]], out: str | os.PathLike[str], client: Any = None, workers: int | None = None,
        progress: bool = False, form: str = "npz") -> dict[str, str]:
    """Makes the response of each room that isn't there yet.

    :param client: a `distributed.Client`; without one, processes of this machine
    :param form: "npz"; or "wav": sound files, with their labels beside them; or "zarr": a group of arrays
    :return: what failed: id and cause
    """
    if form not in _FORMS:
        raise ValueError(f"form: '{form}' is none of {', '.join(_FORMS)}")
    folder = pathlib.Path(out).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    if form == "zarr":
        import zarr

        zarr.open_group(str(folder), mode="a")
    rooms = list(rooms)
    missing = [room for room in rooms if not _file(folder, room, form).exists()]
    failed: dict[str, str] = {}
    bar = _Progress(len(missing), progress)
    for number, (name, cause) in enumerate(_results(missing, str(folder), form, client, workers), 1):
        if cause is not None:
            failed[name] = cause
        bar.show(number)
    bar.end()
    if progress:
        print(f"{len(missing) - len(failed)} made, {len(rooms) - len(missing)} were there, {len(failed)} failed",
              file=sys.stderr)
    index = {"rooms": [room["id"] for room in rooms if room["id"] not in failed], "failed": failed}
    (folder / "index.json").write_text(json.dumps(index, indent=1, sort_keys=True) + "\n", encoding="utf-8")
    return failed


def main(words: list[str] | None = None) -> int:
    parser = argparse.ArgumentParser(prog="python3 -m orvanverb.batch", description="Impulse responses of many rooms, with their figures.")
    parser.add_argument("table", help="CSV or Parquet file, one room a row; or random:NUMBER[:SEED]")
    parser.add_argument("--out", required=True, help="folder for the files")
    parser.add_argument("--format", choices=_FORMS, default="npz", help="of the responses [npz]")
    parser.add_argument("--scheduler", help="address of a Dask scheduler, tcp://...")
    parser.add_argument("--workers", type=int, help="processes on this machine [its processors]")
    options = parser.parse_args(words)
    try:
        if options.table.startswith("random:"):
            number, *seed = options.table.split(":")[1:]
            rooms = list(random_rooms(int(number), int(seed[0]) if seed else 0))
        else:
            rooms = read_table(options.table)
        client = None
        if options.scheduler:
            from distributed import Client

            client = Client(options.scheduler)
        failed = run(rooms, options.out, client, options.workers, progress=True, form=options.format)
    except (ImportError, OSError, ValueError) as error:
        print(f"{parser.prog}: {error}", file=sys.stderr)
        return 1
    for name, cause in sorted(failed.items()):
        print(f"{name}: {cause}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
