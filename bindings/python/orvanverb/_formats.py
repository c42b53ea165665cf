"""What the program does without a room, with arrays in place of files: panning, decoding, sets of filters."""

from __future__ import annotations

import errno
import os
import re
import tempfile
import warnings
from typing import Any, Callable, Sequence, Union

import numpy
from numpy.typing import ArrayLike, NDArray

from . import _orvanverb

Place = Union[float, Sequence[float]]
Path = Union[str, "os.PathLike[str]"]


def places(rows: Any, what: str) -> list[tuple[float, float, float]]:
    """Azimuths, or rows of azimuth, elevation [degrees] and distance [m], as whole rows."""
    whole = []
    for row in rows:
        values = [float(value) for value in numpy.atleast_1d(row)]
        if not 1 <= len(values) <= 3:
            raise ValueError(f"{what}: {row!r} is no azimuth with an elevation [degrees] and a distance [m] if need be")
        whole.append((values[0], values[1] if len(values) > 1 else 0.0, values[2] if len(values) > 2 else 1.0))
    return whole


def _recording(x: ArrayLike) -> NDArray[numpy.float32]:
    samples = numpy.atleast_2d(numpy.asarray(x, numpy.float32))
    if samples.ndim != 2 or samples.shape[0] > 64:
        raise ValueError(f"a recording has the shape (channels, frames), at most 64 channels first, not {samples.shape}")
    return samples


def in_pythons_words(work: Callable[[], Any]) -> Any:
    """The program names its options in what it says: here they are keywords."""
    try:
        return work()
    except _orvanverb.ProgramError as error:
        raise ValueError(_keywords(str(error))) from None


def _keywords(text: str) -> str:
    text = text.replace("orvanverb decode --list shows them", "decoders() tells them")
    return re.sub(r"--([a-z]+(?:-[a-z]+)*)", lambda found: found[1].replace("-", "_"), text)


def require_file(path: Path) -> None:
    if not os.path.exists(path):
        raise FileNotFoundError(errno.ENOENT, os.strerror(errno.ENOENT), os.fspath(path))


def _number(value: Any) -> Any:
    return value if value is None else str(value)


def _played(call: Callable[..., Any], x: ArrayLike, rate: int, sources: Any, orientation: Any, order: Any,
            convention: Any, sorting: Any, speakers: Any, hrtf: Any, scene: Any, tail: Any, ambix: bool,
            files: Sequence[Any], words: dict[str, Any]) -> NDArray[numpy.float32]:
    for path in (hrtf, scene, *files):
        if path is not None:
            require_file(path)
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as layout:  # the program reads a list of places from a file
        if speakers is not None and not isinstance(speakers, (str, int, numpy.integer)):
            layout.writelines(f"{a!r} {e!r} {d!r}\n" for a, e, d in places(speakers, "speakers"))
            layout.flush()
            speakers = layout.name

        def work() -> Any:
            common = _orvanverb.Common(
                rate=rate, sources=[[repr(value) for value in place] for place in places(sources or [], "sources")],
                orientation=[] if orientation is None else [repr(float(angle)) for angle in orientation],
                order=_number(order), convention=convention, sorting=sorting, speakers=_number(speakers),
                hrtf=_number(hrtf), scene=_number(scene), tail=_number(tail), ambix=ambix)
            return call(_recording(x), common, **words)

        played, remarks = in_pythons_words(work)
    for remark in remarks:
        warnings.warn(remark, stacklevel=3)
    return played


def pan(x: ArrayLike, method: str, rate: int = 48000, *, sources: Sequence[Place] | None = None,
        orientation: Sequence[float] | None = None, model: str = "direct",
        speakers: int | str | Sequence[Place] | None = None, outputs: int | None = None, order: int | None = None,
        convention: str | None = None, sorting: str | None = None, ambix: bool = False, hrtf: Path | None = None,
        near: Path | None = None, scene: Path | None = None,
        tail: float | str | None = None) -> NDArray[numpy.float32]:
    """Pans a recording with one method, without a room: the samples that `orvanverb pan` writes.

    >>> import numpy, orvanverb
    >>> dry = numpy.ones((1, 480), numpy.float32)
    >>> feeds = orvanverb.pan(dry, "vbap2d", speakers=[-30, 30, 110, -110], sources=[30])
    >>> feeds.shape, float(feeds[1, -1])
    ((4, 480), 1.0)
    >>> orvanverb.pan(dry, "ambix", order=3, sources=[(-90, 0, 1)]).shape
    (16, 480)

    :param x: (sources, frames) or, for one source, (frames,)
    :param method: a name of `pan_methods()`; "ambix" is hoa3d as other tools read it
    :param rate: samples a second, 8000 to 384000
    :param sources: azimuths, or rows of azimuth, elevation [degrees] and distance [m]; none: the built-in places
    :param orientation: where the listener looks: to the right, up, and tilted to the right [degrees]
    :param model: for headphones: direct, nearfield, sphericalhead, snowman; or early, diffuse
    :param speakers: a number, a name as "5.1" or "7.1.4", a file, or places as for sources
    :param outputs: channels of an ambisonic method, or its `order`, 1 to 7
    :param convention: SN3D or N3D for hoa3d, SN2D or N2D for hoa2d
    :param sorting: IncreasingDegrees (ACN) or AlternateDegrees
    :param hrtf: ears: a .hrtf or .coll file, or measurements (.sofa), which are fitted once for each rate
    :param near: a set of near-field compensation filters
    :param scene: a file that moves sources and listener
    :param tail: seconds behind the end, "auto", or none: what the method's filters and delays still give
    :return: (outputs, frames and tail)
    """
    if method == "ambix":
        method, ambix = "hoa3d", True
    if ambix and (convention not in (None, "SN3D") or sorting not in (None, "IncreasingDegrees", "ACN")):
        raise ValueError("ambix: means SN3D and IncreasingDegrees")
    return _played(_orvanverb.pan, x, rate, sources, orientation, order, convention, sorting, speakers, hrtf, scene,
                   tail, ambix, [near],
                   {"method": method, "model": model, "outputs": outputs, "near": _number(near)})


def decode(x: ArrayLike, type: str, rate: int = 48000, *, speakers: int | str | Sequence[Place] | None = None,
           sub_type: str | None = None, outputs: int | None = None, convention: str | None = None,
           sorting: str | None = None, hoa_method: str | None = None, weights: str = "basic",
           crossover_hz: float | None = None, ambix: bool = False, fuma: bool = False,
           orientation: Sequence[float] | None = None, hrtf: Path | None = None, filters: Path | None = None,
           scene: Path | None = None, tail: float | str = 0.1) -> NDArray[numpy.float32]:
    """Turns an ambisonic, matrixed or binaural recording into feeds: the samples that `orvanverb decode` writes.

    >>> import numpy, orvanverb
    >>> field = orvanverb.pan(numpy.ones((1, 480), numpy.float32), "ambix", order=3, sources=[-90])
    >>> feeds = orvanverb.decode(field, "hoa3d", ambix=True, speakers="7.1.4", tail=0)
    >>> feeds.shape
    (12, 480)

    :param x: (channels, frames): the channels are those of the format
    :param type: a name of `decoders()`
    :param rate: samples a second, 8000 to 384000
    :param speakers: a number, a name as "7.1.4", a file, or places as for `pan`
    :param sub_type: the network of the transaural type
    :param outputs: channels of surround, bformat2uhj and uhj2bformat
    :param convention: SN3D or N3D, SN2D or N2D
    :param sorting: IncreasingDegrees (ACN) or AlternateDegrees
    :param hoa_method: pseudoinverse, projection or allrad
    :param weights: basic, inphase, maxre, basicmaxre or maxreinphase
    :param crossover_hz: of basicmaxre and maxreinphase, 20 to 20000 Hz
    :param ambix: the sound field is AmbiX: ACN, SN3D (or N3D), x ahead
    :param fuma: the sound field is FuMa: W X Y Z, R S T ...
    :param orientation: where the listener looks in a sound field: to the right, up, tilted to the right [degrees]
    :param hrtf: ears of the type binaural
    :param filters: a set for the transaural network
    :param scene: a file that turns the listener
    :param tail: seconds behind the end, or "auto"
    :return: (outputs, frames and tail)
    """
    if crossover_hz is not None and not 20 <= crossover_hz <= 20000:
        raise ValueError(f"crossover_hz: {crossover_hz} is not from 20 to 20000 Hz")
    if ambix and sorting not in (None, "IncreasingDegrees", "ACN"):
        raise ValueError("ambix: means IncreasingDegrees")
    if fuma and (ambix or convention or sorting):
        raise ValueError("fuma: has its own order, weights and axes")
    return _played(_orvanverb.decode, x, rate, None, orientation, None, convention, sorting, speakers, hrtf, scene,
                   tail, ambix, [filters],
                   {"type": type, "sub_type": sub_type, "outputs": outputs, "hoa_method": hoa_method,
                    "weights": weights, "crossover_hz": crossover_hz, "fuma": fuma, "filters": _number(filters)})


def _rows(text: str) -> dict[str, str]:
    table = text.split("\n\n")[0].splitlines()[1:]
    return {name: " ".join(rest.split()) for name, rest in (line.split(maxsplit=1) for line in table)}


def pan_methods() -> dict[str, str]:
    """The methods of `pan`: how many outputs each has, and what it is.

    >>> import orvanverb
    >>> orvanverb.pan_methods()["vbap2d"]
    '2 to 64 a ring, pairs of loudspeakers'
    """
    return _rows(_orvanverb.pan_methods())


def decoders() -> dict[str, str]:
    """The types of `decode`, and what each takes.

    >>> import orvanverb
    >>> orvanverb.decoders()["binaural"]
    '4, 9, 16 ... 64 ambisonic channels to headphones'
    """
    return _rows(_orvanverb.decoders())


def convert_hrtf(source: Path, target: Path, rate: int | None = None, *, fir: bool = False, length: int | None = None,
                 equalise: bool | None = None, force: bool = False) -> None:
    """Makes a set of filters for headphones from measurements, as `orvanverb hrtf convert` does.

    How far it is and how good the fit became is told on standard error.

    :param source: a .sofa, .hrtf or .coll file, or "kemar": the built-in ears
    :param target: the .hrtf file to write
    :param rate: of the filters; none: that of the source
    :param fir: keep impulse responses; otherwise six second-order sections and a delay for each ear are fitted
    :param length: most samples of an impulse response, 16 to 65536; none: 512
    :param equalise: take out the diffuse field; none: for measurements
    :param force: replace a file that is there
    """
    if source != "kemar":
        require_file(source)
    if os.path.exists(target) and not force:
        raise FileExistsError(errno.EEXIST, os.strerror(errno.EEXIST), os.fspath(target))
    if length is not None and not (fir and 16 <= length <= 65536):
        raise ValueError(f"length: {length} is not from 16 to 65536 samples, or fir is not set")
    if rate is not None and not 8000 <= rate <= 384000:
        raise ValueError(f"rate: {rate} is not from 8000 to 384000 Hz")
    in_pythons_words(lambda: _orvanverb.convert_hrtf(os.fspath(source), os.fspath(target), rate, fir, length,
                                                      equalise))
