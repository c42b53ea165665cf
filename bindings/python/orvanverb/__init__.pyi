"""Made by tools/make_python_stub.py from the table of controls."""

from typing import Any, Iterable, Mapping

from numpy import float32
from numpy.typing import ArrayLike, NDArray

from ._formats import convert_hrtf as convert_hrtf, decode as decode, decoders as decoders
from ._formats import pan as pan, pan_methods as pan_methods

__version__: str

def controls() -> dict[str, dict[str, Any]]: ...
def measure(response: ArrayLike, rate: float, bands: str = ..., curves: bool = ...) -> dict[str, Any]: ...

class _Direct:
    gain_db: float
    gain_low_db: float
    gain_medium_db: float
    gain_high_db: float
    freq_low_hz: float
    freq_high_hz: float

class _Shelf:
    gain_db: float
    gain_low_db: float
    gain_medium_db: float
    gain_high_db: float
    freq_low_hz: float
    freq_high_hz: float

class _Early:
    gain_db: float
    gain_low_db: float
    gain_medium_db: float
    gain_high_db: float
    freq_low_hz: float
    freq_high_hz: float
    start_ms: float
    end_ms: float
    distribution: float
    width_deg: float
    shape: float

class _Cluster:
    gain_db: float
    gain_low_db: float
    gain_medium_db: float
    gain_high_db: float
    freq_low_hz: float
    freq_high_hz: float
    start_ms: float
    end_ms: float
    distribution: float

class Room:
    late_gain_db: float
    modal_density_s: float
    decay_s: float
    decay_low: float
    decay_medium: float
    decay_high: float
    crossover_low_hz: float
    crossover_high_hz: float
    air: float
    air_freq_hz: float
    infinite: float
    late_start_ms: float
    direct: _Direct
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
