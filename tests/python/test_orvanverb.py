"""The package as its users call it, against the program."""

import doctest
import json
import os
import pathlib
import pickle
import signal
import subprocess
import sys
import threading
import time
import types

import numpy
import pytest

import orvanverb
from orvanverb import batch

PROGRAM = os.environ["ORVANVERB"]


def noise(sources, frames):
    return numpy.random.default_rng(5).uniform(-0.2, 0.2, (sources, frames)).astype(numpy.float32)


def furnished(speakers, **options):
    room = orvanverb.Room(sources=2, speakers=speakers, **options)
    room.decay_s = 1.3
    room.early.gain_db = -4.5
    room.cluster.freq_high_hz = 3000
    room.place(0, azimuth_deg=-45, elevation_deg=0, distance_m=2)
    room.place(1, azimuth_deg=100, distance_m=1.5)
    return room


def test_version_is_the_projects():
    said = subprocess.run([PROGRAM, "--version"], check=True, capture_output=True, text=True).stdout
    assert orvanverb.__version__ in said.split()
    setup = pathlib.Path(__file__).parents[2] / "bindings/python/setup.py"
    packaged = subprocess.run([sys.executable, setup, "--version"], check=True, capture_output=True, text=True,
                              cwd=setup.parent).stdout
    assert packaged.split()[-1] == orvanverb.__version__


def test_documentation_runs():
    assert doctest.testmod(orvanverb).failed == 0
    assert doctest.testmod(orvanverb._formats).failed == 0


@pytest.mark.parametrize("speakers", ["headphones", 6])
def test_impulse_responses_are_what_process_answers(speakers):
    room = furnished(speakers)
    responses = room.impulse_responses(0.2)
    assert responses.shape == (2, room.outputs, 9600)
    x = numpy.zeros((2, 9600), numpy.float32)
    x[1, 128] = 0.5
    played = room.render(x, tail=0)
    numpy.testing.assert_array_equal(played[:, :128], 0)
    # Where the gain cycles of the panners stand differs: worst seen 2e-5, of a direct sound of 0.1.
    numpy.testing.assert_allclose(played[:, 128:], 0.5 * responses[1, :, :-128], atol=1e-4)


def played(command, x, words, tmp_path):
    """What the program makes of a recording."""
    header = b".snd" + b"".join(n.to_bytes(4, "big") for n in (24, x.nbytes, 6, 48000, x.shape[0]))  # AU, float
    (tmp_path / "in.au").write_bytes(header + x.T.astype(">f4").tobytes())
    subprocess.run([PROGRAM, command, tmp_path / "in.au", "-o", tmp_path / "out.wav", "--format", "float", "-f", *words],
                   check=True, capture_output=True)
    data = (tmp_path / "out.wav").read_bytes()
    form, start = data.index(b"fmt "), data.index(b"data") + 8
    channels = int.from_bytes(data[form + 10:form + 12], "little")
    length = int.from_bytes(data[start - 4:start], "little")
    return numpy.frombuffer(data[start:start + length], "<f4").reshape(-1, channels).T


@pytest.mark.parametrize("speakers, frames, tail", [("headphones", 9600, 0.1), (5, 9600, 0.1), (6, 9637, "auto"),
                                                    ("headphones", 64, "auto"), ("5.1.4", 9600, 0.1)])
def test_render_is_the_programs(speakers, frames, tail, tmp_path):
    """The same samples, and as many, from the same state, to the last bit, also with sixteen channels."""
    room = furnished(speakers, internals=16)
    room.decay_s = 0.4
    x = noise(2, frames)
    (tmp_path / "room.state").write_text(room._room.state())
    words = ["--state", tmp_path / "room.state", "--speakers", "2" if speakers == "headphones" else str(speakers),
             "--set", "numinternals=16", "--tail", str(tail)]
    numpy.testing.assert_array_equal(room.render(x, tail=tail), played("render", x, words, tmp_path))


PANNED = [
    (dict(method="binaural", sources=[-45, (100, 30, 1.5)]), "--source 1 -45 0 1 --source 2 100 30 1.5"),
    (dict(method="binaural", model="snowman", orientation=(30, 0, 0), tail=0.25),
     "--model snowman --orientation 30 0 0 --tail 0.25"),
    (dict(method="vbap2d", speakers="5.1"), "--speakers 5.1"),  # a silent channel, and the order of the file
    (dict(method="vbap2d", speakers=[-30, 30, 110, -110.5]), "--speakers FOLDER/layout"),
    (dict(method="ambix", order=2, scene="FOLDER/scene"), "--order 2 --scene FOLDER/scene"),
    (dict(method="hoa2d", outputs=5, convention="n2d", tail="auto"), "--outputs 5 --convention n2d --tail auto"),
    (dict(method="ab"), ""),
]


@pytest.mark.parametrize("given, words", PANNED)
def test_pan_is_the_programs(given, words, tmp_path):
    (tmp_path / "layout").write_text("-30\n30\n110\n-110.5\n")
    (tmp_path / "scene").write_text("0..0.05 source 1 azim 0 -> 90\n0.1 orientation 20\n")
    given = {name: value.replace("FOLDER", str(tmp_path)) if isinstance(value, str) else value
             for name, value in given.items()}
    words = ["--method", given["method"], *words.replace("FOLDER", str(tmp_path)).split()]
    x = noise(2, 9637)
    x[0, 5] = numpy.nan
    numpy.testing.assert_array_equal(orvanverb.pan(x, **given), played("pan", x, words, tmp_path))


@pytest.mark.parametrize("channels, given, words", [
    (16, dict(type="hoa3d", ambix=True, speakers="7.1.4"), "--ambix --speakers 7.1.4"),
    (9, dict(type="binaural", orientation=(-40, 10, 0)), "--orientation -40 10 0"),
    (5, dict(type="hoa2d", speakers=6, weights="basicmaxre", crossover_hz=500, tail=0),
     "--speakers 6 --weights basicmaxre --crossover 500 --tail 0"),
    (2, dict(type="transaural"), ""),
    (2, dict(type="uhj2bformat"), ""),
])
def test_decode_is_the_programs(channels, given, words, tmp_path):
    x = noise(channels, 6400)
    words = ["--type", given["type"], *words.split()]
    numpy.testing.assert_array_equal(orvanverb.decode(x, **given), played("decode", x, words, tmp_path))


def test_measured_ears(tmp_path):
    sofa, ours = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", tmp_path / "ours.hrtf"
    orvanverb.convert_hrtf(sofa, ours, 48000, fir=True, length=64)
    with pytest.raises(FileExistsError):
        orvanverb.convert_hrtf(sofa, ours)
    x = noise(1, 4800)
    words = ["--method", "binaural", "--source", "1", "-60", "0", "1", "--hrtf", ours]
    heard = orvanverb.pan(x, "binaural", sources=[-60], hrtf=ours)
    numpy.testing.assert_array_equal(heard, played("pan", x, words, tmp_path))
    room = orvanverb.Room(speakers="headphones")
    room.load_ears(ours)
    assert os.path.samefile(room.state["ears"][1], ours)


def test_streaming_remembers():
    whole, pieces = furnished(6), furnished(6)
    x = noise(2, 6400)
    parts = [pieces.process(x[:, i:i + 640]) for i in range(0, 6400, 640)]
    numpy.testing.assert_array_equal(numpy.concatenate(parts, axis=1), whole.process(x))
    assert whole.latency == 0


def test_floating_point_mode_stays_what_it_was():
    """Rooms flush what is too small for normal numbers; nobody else's numbers do."""
    small, x = numpy.full(64, 1e-40, numpy.float32), noise(2, 640)
    room = furnished("headphones")
    for work in (lambda: room.process(x), lambda: room.render(x, 0), lambda: setattr(room, "state", room.state),
                 lambda: orvanverb.pan(x, "ab"), lambda: orvanverb.decode(x, "transaural"),
                 lambda: orvanverb.measure(x, 48000), orvanverb.pan_methods, orvanverb.decoders):
        work()
        assert (small * numpy.float32(0.5) > 0).all()


def test_front_left_is_left():
    room = orvanverb.Room(speakers="headphones")
    room.place(0, azimuth_deg=-90)
    left, right = numpy.square(room.impulse_responses(0.01)[0]).sum(axis=1)
    assert left > 4 * right


def test_decay_is_the_one_asked_for():
    room = orvanverb.Room(speakers=8)
    room.decay_s, room.decay_high = 1.0, 1.0
    measured = orvanverb.measure(room.impulse_responses(1.5)[0], 48000)
    assert measured["t30_mid_s"] == pytest.approx(1.0, rel=0.05)


def test_states_come_back():
    room = furnished("5.1", rate=44100, internals=12)
    other = orvanverb.Room(sources=2, speakers="5.1", rate=44100, internals=12)
    other.state = room.to_json()
    assert other.state == room.state
    x = noise(2, 2000)
    copy = pickle.loads(pickle.dumps(room))
    numpy.testing.assert_array_equal(copy.render(x, 0.1), room.render(x, 0.1))
    numpy.testing.assert_array_equal(other.render(x, 0.1), room.render(x, 0.1))


def test_mistakes_are_named():
    room = furnished(6)
    with pytest.raises(ValueError, match="tr0: 99 is not from 0.1 to 10 s"):
        room.decay_s = 99
    with pytest.raises(AttributeError, match="decay_s"):
        room.decay = 1
    with pytest.raises(AttributeError, match="gain_db"):
        room.early.gain = 1
    with pytest.raises(ValueError, match=r"shape \(2, frames\).*\(480, 2\)"):
        room.process(numpy.zeros((480, 2)))
    with pytest.raises(IndexError, match="source 2"):
        room.place(2, 0)
    for speakers, complaint in [(2, "headphones"), ("65", "3 to 64"), ([-30, 30], "3 to 64"), ("9.9", "7.1.4"), (2.5, "no layout")]:
        with pytest.raises(ValueError, match=complaint):
            orvanverb.Room(speakers=speakers)
    with pytest.raises(ValueError, match="-1 is not above 0"):
        room.impulse_responses(-1)
    with pytest.raises(FileNotFoundError, match="none.sofa"):
        orvanverb.Room().load_ears("none.sofa")
    for words, complaint in [(dict(method="vbap3"), "method: 'vbap3' is none"), (dict(method="ambix", order=9), "1 to 7"),
                             (dict(method="vbap", speakers="9.9"), "7.1.4"), (dict(method="xy", tail=-1), "tail: '-1'"),
                             (dict(method="xy", rate=5), "8000 to 384000"), (dict(method="xy", sources=[900]), "-360 to 360")]:
        with pytest.raises(ValueError, match=complaint):
            orvanverb.pan(noise(2, 64), **words)
    with pytest.raises(ValueError, match=r"channels first, not \(640, 2\)"):
        orvanverb.decode(numpy.zeros((640, 2)), "bformat")
    with pytest.raises(FileNotFoundError, match="none.sofa"):
        orvanverb.pan(noise(1, 64), "binaural", hrtf="none.sofa")
    bad = noise(2, 640)
    bad[0, 7], bad[1, 9] = numpy.nan, 3e38
    assert numpy.isfinite(room.process(bad)).all()


def test_two_threads_in_one_room_are_told_so():
    room = furnished(6)
    thread = threading.Thread(target=room.process, args=(noise(2, 64 * 40000),))
    thread.start()
    seen = ""
    while thread.is_alive() and not seen:
        try:
            room.clear()
        except RuntimeError as error:
            seen = str(error)
    thread.join()
    assert "another thread" in seen


TABLE = "id,tr0,azimuth,speakers,seconds\na,0.4,-30,headphones,0.3\nb,0.5,40,6,0.3\nc,0.3,0,8,0.3\nd,0.6,10,1,0.3\n"


def files(folder):
    return {path.name: path.read_bytes() for path in sorted(pathlib.Path(folder).iterdir())}


def test_batches_give_the_same_bytes_however_they_run(tmp_path):
    distributed = pytest.importorskip("distributed")
    (tmp_path / "rooms.csv").write_text(TABLE)
    rooms = batch.read_table(tmp_path / "rooms.csv")
    failed = batch.run(rooms, tmp_path / "one", workers=1)
    assert list(failed) == ["d"] and "3 to 64" in failed["d"]
    batch.run(rooms, tmp_path / "two", workers=2)
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            batch.run(rooms, tmp_path / "dask", client=client)
    assert sorted(files(tmp_path / "one")) == ["a.npz", "b.npz", "c.npz", "index.json"]
    assert files(tmp_path / "one") == files(tmp_path / "two") == files(tmp_path / "dask")
    labels = batch.labels_of(tmp_path / "one" / "b.npz")
    assert labels["azimuth"] == 40 and labels["room"]["tr0"] == 0.5


def test_batches_write_what_others_read(tmp_path):
    zarr = pytest.importorskip("zarr")
    (tmp_path / "rooms.csv").write_text(TABLE)
    rooms = batch.read_table(tmp_path / "rooms.csv")[:2]
    for form in ("npz", "wav", "zarr"):
        assert batch.run(rooms, tmp_path / form, workers=1, form=form) == {}
    response = numpy.load(tmp_path / "npz" / "b.npz")["response"]
    labels = batch.labels_of(tmp_path / "npz" / "b.npz")
    array = zarr.open_group(str(tmp_path / "zarr"), mode="r")["b"]
    numpy.testing.assert_array_equal(array[:], response)
    assert array.attrs.asdict() == labels == batch.labels_of(tmp_path / "wav" / "b.wav")
    # The program reads the sound file, and finds the same in it.
    run = subprocess.run([PROGRAM, "measure", "--json", tmp_path / "wav" / "b.wav"], check=True, capture_output=True)
    told = json.loads(run.stdout)[0]
    assert told["channels"] == 6 and told["rate_hz"] == 48000
    ours, theirs = labels["measured"]["bands"]["63"], told["bands"][0]
    assert theirs["inexact"]
    for name, key, unit in [("edt", "edt_s", 1), ("ts_ms", "ts_s", 1000), *((key, key, 1) for key in ("range_db", "c80_db", "d50"))]:
        assert ours[key] * unit == pytest.approx(theirs[name], rel=1e-5)
        assert ours["inexact"].get(key) == theirs["inexact"].get(name)


def test_a_killed_worker_costs_nothing_but_time(tmp_path):
    """Rooms go through Dask by pickle; those of a worker that dies are made again by another one."""
    distributed = pytest.importorskip("distributed")
    rooms = list(batch.random_rooms(24, 3))
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            room = furnished(6)
            x = noise(2, 640)
            there = client.submit(lambda room, x: room.process(x), room, x, pure=False).result()
            numpy.testing.assert_array_equal(there, room.process(x))

            def kill():
                while len(list((tmp_path / "killed").glob("*.npz"))) < 3:
                    time.sleep(0.02)
                os.kill(next(iter(cluster.workers.values())).pid, signal.SIGKILL)

            killer = threading.Thread(target=kill)
            killer.start()
            assert batch.run(rooms, tmp_path / "killed", client=client) == {}
            killer.join()
    batch.run(rooms, tmp_path / "whole", workers=2)
    killed = {name: data for name, data in files(tmp_path / "killed").items() if not name.endswith(".part")}
    assert killed == files(tmp_path / "whole") and len(killed) == 25


def test_a_killed_run_goes_on(tmp_path):
    words = [sys.executable, "-m", "orvanverb.batch", "random:24:3", "--out", str(tmp_path / "killed"), "--workers", "2"]
    run = subprocess.Popen(words, start_new_session=True, stderr=subprocess.DEVNULL)
    while run.poll() is None and len(list((tmp_path / "killed").glob("*.npz"))) < 3:
        time.sleep(0.02)
    os.killpg(run.pid, signal.SIGKILL)
    run.wait()
    assert not (tmp_path / "killed" / "index.json").exists()
    subprocess.run(words, check=True, stderr=subprocess.DEVNULL)
    batch.run(batch.random_rooms(24, 3), tmp_path / "whole")
    killed = {name: data for name, data in files(tmp_path / "killed").items() if not name.endswith(".part")}
    assert killed == files(tmp_path / "whole") and len(killed) == 25


def test_tables_are_checked(tmp_path, monkeypatch):
    class Parquet:  # stands for pyarrow.parquet, which Debian doesn't have
        @staticmethod
        def read_table(path):
            return types.SimpleNamespace(to_pylist=lambda: [{"id": 7, "tr0": 0.5, "speakers": None}])

    monkeypatch.setitem(sys.modules, "pyarrow", types.SimpleNamespace(parquet=Parquet))
    assert batch.read_table(tmp_path / "rooms.parquet") == [{"id": "7", "tr0": 0.5}]
    for text, complaint in [("tr0\n99\n", r"rooms.csv:2: tr0: 99 is not from 0.1 to 10 s"), ("tro\n1\n", "'tro'"),
                            ("id\na\na\n", "twice"), ("tr0\nx\n", "no number")]:
        (tmp_path / "rooms.csv").write_text(text)
        with pytest.raises(ValueError, match=complaint):
            batch.read_table(tmp_path / "rooms.csv")


def test_stubs_are_current():
    top = pathlib.Path(__file__).parents[2]
    sys.path.append(str(top / "tools"))
    import make_python_stub

    assert (top / "bindings/python/orvanverb/__init__.pyi").read_text() == make_python_stub.stub()


def test_a_type_checker_knows_the_package(tmp_path):
    """The controls have no definitions that it could read: only the stubs tell."""
    pytest.importorskip("mypy")
    (tmp_path / "user.py").write_text("""import orvanverb
room = orvanverb.Room(sources=2)
room.decay_s = 1.5
room.early.gain_db = -3
x = room.render([[0.0]], tail=0.5)
y = orvanverb.pan([[0.0]], "vbap2d", speakers=[-30, 30])
room.decay = 1
room.place("a", 3)
orvanverb.decode(y, type=3)
""")
    run = subprocess.run([sys.executable, "-m", "mypy", "--no-incremental", "--cache-dir", os.devnull, "user.py"],
                         cwd=tmp_path, capture_output=True, text=True,
                         env={**os.environ, "MYPYPATH": str(pathlib.Path(orvanverb.__file__).parents[1])})
    wrong = [line for line in run.stdout.splitlines() if "error:" in line]
    assert [line.split(":")[1] for line in wrong] == ["7", "8", "9"], run.stdout + run.stderr
