"""orvanverb-live as people and other programs use it: files, OSC of another make, JACK, and those who mean it ill."""

import contextlib
import json
import math
import os
import pathlib
import random
import re
import shutil
import signal
import socket
import struct
import subprocess
import time

import liblo
import numpy
import pytest

LIVE = os.environ["ORVANVERB_LIVE"]
OFFLINE = os.environ["ORVANVERB"]
VOICE = "/usr/share/sounds/alsa/Front_Center.wav"
OFF = ["--osc", "off", "--adm", "off"]


def free_port(kind=socket.SOCK_DGRAM):
    with socket.socket(socket.AF_INET, kind) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def samples(path):
    """The samples of a file of floats, frames x channels."""
    data = pathlib.Path(path).read_bytes()
    place, channels = 12, 0
    while data[place:place + 4] != b"data":
        if data[place:place + 4] == b"fmt ":
            channels = struct.unpack_from("<H", data, place + 10)[0]
        place += 8 + struct.unpack_from("<I", data, place + 4)[0]
    size = struct.unpack_from("<I", data, place + 4)[0]
    return numpy.frombuffer(data, "<f4", size // 4, place + 8).reshape(-1, channels)


def write_wav(path, sound):
    """Writes frames x channels as floats at 48 kHz."""
    data, channels = sound.astype("<f4").tobytes(), sound.shape[1]
    path.write_bytes(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " + struct.pack(
        "<IHHIIHH", 16, 3, channels, 48000, 192000 * channels, 4 * channels, 32) + b"data" + struct.pack("<I", len(data)) + data)


@contextlib.contextmanager
def program(folder, *words, audio=None, environment=None):
    """The program while it plays. Afterwards it has ended by Ctrl-C, in good order."""
    log = folder / "log.txt"
    with open(log, "w") as file:
        process = subprocess.Popen([LIVE, "--audio", audio or f"file:{VOICE}:{folder}/out.wav", "--force", *words],
                                   stderr=file, env={**os.environ, **(environment or {})})
    process.log = log
    try:
        yield process
    finally:
        process.send_signal(signal.SIGINT)
        status = process.wait(30)
    assert status == 0, log.read_text()


def wait_until(holds, seconds=20, step=0.05):
    """Waits until something holds, as long as may be, and says whether it does."""
    end = time.monotonic() + seconds
    while not (held := holds()) and time.monotonic() < end:
        time.sleep(step)
    return held


def await_frames(folder, frames):
    """Waits until so much was played on headphones; what is played stands beside the output until the end."""
    wait_until(lambda: max((part.stat().st_size for part in folder.glob("out.wav.*")), default=0) >= 8 * frames, 60)


def assert_render_plays_the_same(folder, words):
    """To the last bit."""
    subprocess.run([OFFLINE, "render", VOICE, "-o", f"{folder}/a.wav", *words], check=True, capture_output=True)
    subprocess.run([LIVE, "--audio", f"file:{VOICE}:{folder}/b.wav", "--free-running", *words, *OFF], check=True, capture_output=True)
    assert (folder / "a.wav").read_bytes() == (folder / "b.wav").read_bytes(), words


class Client:
    """Speaks OSC by another library, and hears what is answered."""

    def __init__(self, port, hears=None):
        self.target = liblo.Address("127.0.0.1", port)
        self.server = liblo.Server(hears)
        self.heard = []
        self.server.add_method(None, None, lambda path, values: self.heard.append((path, values)))

    def send(self, path, *values):
        self.server.send(self.target, path, *values)

    def ask(self, path, *values, answer=None, seconds=5):
        """The values of the first answer. Asks again as long as nobody listens: so answers to questions before may still come."""
        self.heard.clear()
        end = time.monotonic() + seconds
        while not (found := [told for heard, told in self.heard if heard == (answer or path)]) and time.monotonic() < end:
            self.send(path, *values)
            self.server.recv(100)
        assert found, path
        return found[0]

    def await_answer(self, path, values, seconds=20):
        """Asks until the answer is this one."""
        assert wait_until(lambda: self.ask(path) == values, seconds), (path, values)


def test_file_is_render_sample_for_sample(tmp_path):
    scene = tmp_path / "walk.scene"
    scene.write_text("source 1 ade 45 2 0\n0.1 source 1 azim -60\n0.3 source 1 azim++ 30\n0.31 speaker 1 ade -40 1 0\n0.7 source 1 dist 3\n")
    for words in (["--preset", "hall"], ["--speakers", "5.1", "--vector", "128"], ["--ambix", "--order", "1"]):
        words = [*words, "--scene", str(scene), "--force"]
        if "--speakers" not in words:
            scene.write_text("".join(line + "\n" for line in scene.read_text().splitlines() if "speaker" not in line))
        else:
            scene.write_text(scene.read_text() + "0.31 speaker 1 ade -40 1 0\n")
        assert_render_plays_the_same(tmp_path, words)


def test_signals_that_come_together_are_one_wish(tmp_path):
    """A terminal that closes sends several: what was played is written all the same, and said."""
    with program(tmp_path, *OFF) as live:
        await_frames(tmp_path, 5000)
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            live.send_signal(number)
    assert len(samples(tmp_path / "out.wav")) > 4800
    assert "out.wav: 2 channels" in live.log.read_text()


def test_own_tree(tmp_path):
    port = free_port()
    autosave = tmp_path / "end.state"
    with program(tmp_path, "--osc", str(port), "--adm", "off", "--autosave", str(autosave)) as live:
        client = Client(port)
        assert client.ask("/orvanverb/tr0") == [pytest.approx(1.995)]
        client.send("/orvanverb/tr0", 2.5)
        client.send("/orvanverb/reverb", "trl", 1.5)           # a message of the object
        client.send("/orvanverb/source/1/ade", -30.0, 2.0, 10.0)
        client.send("/orvanverb/early_{start,end}", 20.0)      # as wide as the pattern
        client.send("/orvanverb/source/*/gain", -6.0)
        client.send("/orvanverb/source/1/name", "lead\n voice")
        client.send("/orvanverb/orientation", 20.0, 0.0, 0.0)
        client.await_answer("/orvanverb/tr0", [2.5])
        assert client.ask("/orvanverb/get", "trl", answer="/orvanverb/trl") == [1.5]
        assert client.ask("/orvanverb/source/1/ade") == pytest.approx([-30, 2, 10], abs=1e-3)
        assert client.ask("/orvanverb/source/1/gain") == [-6.0]
        assert client.ask("/orvanverb/orientation") == [20.0, 0.0, 0.0]
        # Positive azimuth is to the right.
        client.send("/orvanverb/source/1/azim", 45.0)
        x, y, z = client.ask("/orvanverb/source/1/xyz")
        assert x > 1 and y > 1 and z > 0
        assert "9" in client.ask("/orvanverb/source/9/azim", 10.0, answer="/orvanverb/error")[0]
        client.send("/orvanverb/preset", "hall")
        client.await_answer("/orvanverb/tr0", [pytest.approx(2.1)])
        # Somebody who follows hears what others do, and levels.
        follower = Client(port)
        follower.ask("/orvanverb/subscribe", 30, answer="/orvanverb/levels/outputs")
        follower.heard.clear()
        client.send("/orvanverb/fl", 300.0)
        end = time.monotonic() + 5
        sounds = lambda: any(path == "/orvanverb/levels/outputs" and max(values) > -60 for path, values in follower.heard)
        while not (("/orvanverb/fl", [300.0]) in follower.heard and sounds()) and time.monotonic() < end:
            follower.server.recv(50)
        assert ("/orvanverb/fl", [300.0]) in follower.heard and sounds()
        assert live.poll() is None
    assert {"fl 300", "sourcesgains -6", "sourcename 1 lead  voice"} <= set(autosave.read_text().splitlines())
    # What was saved is what plays, here and by render.
    assert_render_plays_the_same(tmp_path, ["--state", str(autosave)])


def opening(port, path="/socket", **headers):
    """What a page sends to open a socket."""
    lines = {"Host": f"localhost:{port}", "Upgrade": "websocket", "Connection": "Upgrade", "Sec-WebSocket-Version": "13",
             "Sec-WebSocket-Key": "dGhlIHNhbXBsZSBub25jZQ==", **headers}
    return (f"GET {path} HTTP/1.1\r\n" + "".join(f"{k}: {v}\r\n" for k, v in lines.items()) + "\r\n").encode()


def frame(text):
    """A message of a page."""
    length = bytes([0x80 | len(text)]) if len(text) < 126 else b"\xfe" + struct.pack(">H", len(text))
    return b"\x81" + length + bytes(4) + text.encode()


def open_socket(port):
    await_port(port)
    connection = socket.create_connection(("127.0.0.1", port), 5)
    connection.sendall(opening(port))
    return connection


def hear(page, pattern, seconds=10):
    """Waits until a page was sent this."""
    heard, end = b"", time.monotonic() + seconds
    while not re.search(pattern, heard) and time.monotonic() < end:
        heard += page.recv(65536)
    assert re.search(pattern, heard), pattern


def socket_answer(port, **headers):
    """The status that a socket of the page opens with; 0 if it is closed without a word."""
    with socket.create_connection(("127.0.0.1", port), 5) as connection:
        connection.sendall(opening(port, **headers))
        return int(next(iter(connection.recv(4096).split()[1:]), 0))


def checksum(data):
    total = 14695981039346656037
    for byte in data:
        total = (total ^ byte) * 1099511628211 % 2**64
    return f"{total:016x}"


def test_measured_ears_come_beside_the_sound(tmp_path):
    """Measurements that somebody names while it plays are fitted, here found in the cache, and saved under their name."""
    port, autosave, sofa = free_port(), tmp_path / "end.state", tmp_path / "my head.sofa"
    shutil.copy("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", sofa)
    shutil.copy(pathlib.Path(__file__).parents[2] / "src/hrtf/data/hrtf_2b_KEMAR_48000.coll", tmp_path / "a-head-48000.coll")
    subprocess.run([OFFLINE, "hrtf", "convert", tmp_path / "a-head-48000.coll", tmp_path / "set.hrtf"], check=True, capture_output=True)
    fitted = (tmp_path / "set.hrtf").read_bytes()
    version = subprocess.run([OFFLINE, "--version"], capture_output=True, text=True).stdout.split()[1]
    cache = tmp_path / "orvanverb" / f"{checksum(sofa.read_bytes())}-48000-{version}-{checksum(fitted)}.hrtf"
    cache.parent.mkdir()
    cache.write_bytes(fitted)
    (tmp_path / "no.sofa").write_text("no measurements")
    http = free_port(socket.SOCK_STREAM)
    with program(tmp_path, "--osc", str(port), "--adm", "off", "--http", str(http), "--autosave", str(autosave),
                 environment={"XDG_CACHE_HOME": str(tmp_path)}) as live:
        client = Client(port)
        assert client.ask("/orvanverb/ears") == ["built-in"]
        client.send("/orvanverb/hrtf", f"{tmp_path}/no.sofa")
        client.send("/orvanverb/hrtf", str(sofa))
        client.await_answer("/orvanverb/ears", ["my head.sofa"])
        client.send("/orvanverb/ears", "built-in")
        client.await_answer("/orvanverb/ears", ["built-in"])
        # A state of a page that names them, and what this room doesn't know: the page hears of all of it at once.
        state = f"orvanverb-state 1\nnumsources 1\nnumspeakers 2\nnuminternals 8\nears {checksum(sofa.read_bytes())} {sofa}\ntr0 4\nfog 1\nice 2\n"
        with open_socket(http) as page:
            hear(page, rb'"snapshot"')
            page.sendall(frame(json.dumps({"state": state})))
            client.await_answer("/orvanverb/tr0", [4.0])
            hear(page, rb'"remark":"[^"]*fog 1\\n[^"]*ice 2')
        client.await_answer("/orvanverb/ears", ["my head.sofa"])
        assert "no.sofa: is no SOFA file" in live.log.read_text()
    assert f"ears {checksum(sofa.read_bytes())} my head.sofa" in autosave.read_text().splitlines()


def test_adm(tmp_path):
    port, answers, own = free_port(), 4002, free_port()
    with program(tmp_path, "--osc", str(own), "--adm", str(port), "--adm-dmax", "10"):
        client = Client(port, answers)
        room = Client(own)
        client.send("/adm/obj/1/dmax", 8.0)
        for word, told in (("aed", [30.0, 10.0, 0.5]), ("azim", [-120.0]), ("elev", [-20.0]), ("dist", [0.25]),
                           ("xyz", [-0.5, 0.25, 0.125]), ("x", [0.75]), ("y", [-0.5]), ("z", [0.5]), ("xy", [0.1, 0.2]),
                           ("w", [20.0]), ("gain", [0.5]), ("mute", [1]), ("name", ["voice"]), ("dref", [0.3]), ("dmax", [6.0])):
            client.ask(f"/adm/obj/1/{word}")
            client.send(f"/adm/obj/1/{word}", *told)
            expected = told if word == "name" else pytest.approx(told, abs=2e-4)
            client.await_answer(f"/adm/obj/1/{word}", expected)
        # Positive azimuth is to the left: in the room x is below 0. Beyond the range is clamped.
        client.send("/adm/obj/1/aed", 45.0, 0.0, 99.0)
        room.await_answer("/orvanverb/source/1/ade", pytest.approx([-45, 6, 0], abs=1e-3))
        # A bundle with wildcards, and a head that turns to the left.
        client.server.send(client.target, liblo.Bundle(liblo.Message("/adm/obj/*/{azim,none}", -90.0),
                                                       liblo.Message("/adm/lis/ypr", 30.0, 5.0, 0.0)))
        room.await_answer("/orvanverb/source/1/azim", pytest.approx([90], abs=1e-3))
        room.await_answer("/orvanverb/orientation", pytest.approx([-30, 5, 0]))
        client.send("/adm/env/change", "hall")
        room.await_answer("/orvanverb/tr0", [pytest.approx(2.1)])


def test_left_is_left_in_the_sound(tmp_path):
    """A source at the front left is louder in the left ear, by each front."""
    port, adm = free_port(), free_port()
    for path, azimuth, to in (("/orvanverb/source/1/azim", -60.0, port), ("/adm/obj/1/azim", 60.0, adm)):
        with program(tmp_path, "--osc", str(port), "--adm", str(adm), "--set", "room_gain=-60"):
            Client(port).ask("/orvanverb/tr0")
            client = Client(to)
            client.send(path, azimuth)
            await_frames(tmp_path, 72000)
        left, right = numpy.sum(samples(tmp_path / "out.wav")[24000:] ** 2, axis=0)
        assert left > 2 * right, path


def test_sixty_four_objects_each_ten_milliseconds(tmp_path):
    """6400 messages a second while it plays: the last of each counts, and memory stays flat."""
    seconds = float(os.environ.get("ORVAN_LIVE_SECONDS", "4"))
    own, adm, count = free_port(), free_port(), 64
    write_wav(tmp_path / "in.wav", numpy.random.default_rng(2).uniform(-0.1, 0.1, (48000, count)))
    memory = lambda: int(pathlib.Path(f"/proc/{live.pid}/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")
    with program(tmp_path, "--osc", str(own), "--adm", str(adm), audio=f"file:{tmp_path}/in.wav:{tmp_path}/out.wav") as live, \
            socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        room = Client(own)
        room.ask("/orvanverb/tr0", seconds=20)
        before, begin, rounds = 0, time.monotonic(), round(100 * seconds)
        for turn in range(rounds):
            for n in range(1, count + 1):
                address = f"/adm/obj/{n}/aed".encode()
                address += bytes(4 - len(address) % 4)
                sender.sendto(address + b",fff\0\0\0\0" + struct.pack(">fff", (turn + 5 * n) % 360 - 180, n % 45, 0.2 + 0.01 * n), ("127.0.0.1", adm))
            if turn % 20 == 0:  # a machine under load gets time to read: what a full network buffer drops nobody can know of
                room.ask("/orvanverb/tr0")
            if turn == rounds // 4:
                before = memory()
            time.sleep(max(0, begin + turn / 100 - time.monotonic()))
        time.sleep(0.3)
        grown = memory() - before
        for n in range(1, count + 1):
            room.ask("/orvanverb/tr0")
            values = room.ask(f"/orvanverb/source/{n}/ade")
            told = [-((rounds - 1 + 5 * n) % 360 - 180), 10 * (0.2 + 0.01 * n), n % 45]
            assert values[1:] == pytest.approx(told[1:], abs=1e-3) and math.cos(math.radians(values[0] - told[0])) > 0.9999999, n
    print(f"{seconds} s: memory grew by {grown} bytes")
    assert grown < 4_000_000 or "ORVAN_SANITIZED" in os.environ  # which remembers where memory was used
    assert numpy.abs(samples(tmp_path / "out.wav")).max() > 0.01


def test_malformed_packets_change_nothing(tmp_path):
    port, adm = free_port(), free_port()
    randomly = random.Random(5)
    with program(tmp_path, "--osc", str(port), "--adm", str(adm)) as live, \
            socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        client = Client(port)
        before = client.ask("/orvanverb/source/1/xyz")
        good = [b"/orvanverb/source/1/xyz\0,fff\0\0\0\0" + struct.pack(">fff", 1, 2, 3),
                b"#bundle\0" + bytes(8) + struct.pack(">I", 20) + b"/adm/obj/1/x\0\0\0\0,f\0\0" + struct.pack(">f", 0.5)]
        wrong = [b"", b"/", b"#bundle\0", b"#bundle\0" * 2000, b"/orvanverb/tr0\0\0,f\0\0" + struct.pack(">f", math.nan),
                 b"/adm/obj/1/azim\0,f\0\0" + struct.pack(">f", math.inf), b"#bundle\0" + bytes(8) + b"\xff\xff\xff\xff",
                 b"/adm/obj/" + b"*" * 40 + b"/azim\0" + b",f\0\0" + bytes(4), b"/orvanverb/\x1b[31m\0\0\0\0,\0\0\0",
                 b"/orvanverb/generatexml\0\0,\0\0\0"]
        for _ in range(3000):
            packet = bytearray(randomly.choice(good))
            packet = packet[:randomly.randrange(1, len(packet))]  # always cut
            if len(packet) > 12 and randomly.random() < 0.5:
                packet[randomly.randrange(12)] = randomly.randrange(256)
            wrong.append(bytes(packet))
        for i, packet in enumerate(wrong):
            sender.sendto(packet, ("127.0.0.1", port if i % 2 == 0 else adm))
            if i % 100 == 0:
                time.sleep(0.01)
        time.sleep(0.3)
        assert client.ask("/orvanverb/source/1/xyz") == before
        assert live.poll() is None
    assert live.log.read_text().count("OSC:") <= 2
    assert not pathlib.Path("orvanverb~.maxref.xml").exists()


def await_port(port):
    def answers():
        with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", port), 1):
            return True

    wait_until(answers, 10)


def test_page_is_for_nobody_else(tmp_path):
    port = free_port(socket.SOCK_STREAM)
    with program(tmp_path, *OFF, "--http", str(port)):
        await_port(port)
        assert socket_answer(port) == 101
        assert socket_answer(port, Origin=f"http://localhost:{port}") == 101
        assert socket_answer(port, Origin="http://evil.example") == 0
        assert socket_answer(port, Origin="http://evil.example", Host="evil.example") == 0
        # At this machine's loopback alone.
        others = subprocess.run(["ss", "-tuln"], capture_output=True, text=True).stdout if shutil.which("ss") else ""
        assert f"0.0.0.0:{port}" not in others and f"*:{port}" not in others
    with program(tmp_path, *OFF, "--http", str(port), "--bind", "0.0.0.0", "--token", "secret") as live:
        await_port(port)
        assert socket_answer(port) == 0
        assert socket_answer(port, path="/socket?token=secreT") == 0
        assert socket_answer(port, path="/socket?token=secret") == 101
    assert "?token=secret" in live.log.read_text()


def test_client_that_does_not_read_is_dropped(tmp_path):
    port, osc = free_port(socket.SOCK_STREAM), free_port()
    with program(tmp_path, "--osc", str(osc), "--adm", "off", "--http", str(port)) as live:
        await_port(port)
        threads = lambda: len(os.listdir(f"/proc/{live.pid}/task"))
        before = 0
        while before != threads():  # the server's own begin one after the other
            before = threads()
            time.sleep(0.5)
        deaf = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
        deaf.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        deaf.connect(("127.0.0.1", port))
        deaf.sendall(opening(port))
        client = Client(osc)
        end = time.monotonic() + 3
        while time.monotonic() < end:  # nobody waits for the deaf one
            client.send("/orvanverb/source/1/azim", random.uniform(-180, 180))
            client.ask("/orvanverb/tr0", seconds=1)
        # It asks for more than all buffers hold and reads none of it. The thread that its connection has ends.
        assert threads() == before + 1
        deaf.settimeout(1)
        with contextlib.suppress(OSError):
            for _ in range(20000):
                deaf.sendall(frame('{"save": true}'))
        assert wait_until(lambda: threads() == before, 60, 0.2) and live.poll() is None
        deaf.close()


def test_words(tmp_path):
    def fails(*words, status):
        done = subprocess.run([LIVE, *words], capture_output=True, text=True, timeout=20)
        assert done.returncode == status, done.stderr
        assert len(done.stderr.splitlines()) == 1, done.stderr
        return done.stderr

    assert "file:IN:OUT" in fails("--audio", "alsa", status=2)
    endless = tmp_path / "endless.scene"  # which would be worked out to its end
    endless.write_text("0..1e9 source 1 azim 0 -> 360\n")
    assert "more than 200000 messages" in fails("--audio", f"file:{VOICE}:{tmp_path}/o.wav", "--scene", endless, *OFF, status=1)
    assert "missing.wav" in fails("--audio", f"file:missing.wav:{tmp_path}/o.wav", status=1)
    assert "--force" in fails("--audio", f"file:{VOICE}:{__file__}", status=1)
    assert "--osc" in fails("--osc", "70000", status=2)
    assert "is no state" in fails("--audio", f"file:{VOICE}:{tmp_path}/o.wav", "--autosave", __file__, status=1)
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as taken:
        taken.bind(("127.0.0.1", 0))
        port = str(taken.getsockname()[1])
        assert "--osc off" in fails("--audio", f"file:{VOICE}:{tmp_path}/o.wav", "--osc", port, status=1)


@contextlib.contextmanager
def jack(name, *words):
    """A server that plays to nobody."""
    server = subprocess.Popen(["jackd", "-r", "-n", name, "-d", "dummy", "-r", "48000", *words], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, env={**os.environ, "JACK_NO_AUDIO_RESERVATION": "1"})
    environment = {**os.environ, "JACK_DEFAULT_SERVER": name}
    try:
        if subprocess.run(["jack_wait", "-w", "-t", "10"], env=environment, capture_output=True).returncode != 0:
            pytest.skip("jackd can't run here")
        yield environment
    finally:
        server.terminate()
        server.wait(20)


def jack_ports(environment):
    return set(subprocess.run(["jack_lsp"], env=environment, capture_output=True, text=True).stdout.split())


@pytest.mark.skipif(shutil.which("jackd") is None, reason="there is no jackd")
def test_jack_waits_for_its_server_and_keeps_the_room(tmp_path):
    osc = free_port()
    name = f"orvan{os.getpid()}"
    words = ["--osc", str(osc), "--adm", "off", "--record", f"{tmp_path}/record.wav", "--autosave", f"{tmp_path}/end.state"]
    with contextlib.ExitStack() as end:
        live = None
        with jack(name, "-p", "256") as environment:
            live = end.enter_context(program(tmp_path, *words, audio="jack", environment=environment))
            client = Client(osc)
            client.ask("/orvanverb/tr0")
            client.send("/orvanverb/source/1/azim", 33.0)
            assert wait_until(lambda: {"orvanverb:in_1", "orvanverb:out_1", "orvanverb:out_2"} <= jack_ports(environment), 10)
            time.sleep(1)
        with jack(name, "-p", "128") as environment:  # another one, with other blocks
            assert wait_until(lambda: "orvanverb:out_2" in jack_ports(environment), 15)
            values = client.ask("/orvanverb/source/1/azim")
            assert values == pytest.approx([33], abs=1e-3)
            end.close()  # by Ctrl-C
    assert "JACK has gone away" in live.log.read_text()
    assert len(samples(tmp_path / "record.wav")) > 20000


PLAY = """
import sys, numpy
sys.path.insert(0, sys.argv[1])
from jack_loop import play
numpy.save(sys.argv[3], play(numpy.load(sys.argv[2]), 48000))
"""


@pytest.mark.skipif(shutil.which("jackd") is None, reason="there is no jackd")
def test_jack_plays_what_render_does(tmp_path):
    """To the last bit: what another client sends is what the program records of its input, what comes back to that
    client is what the program records of its output, and from the one recording render makes the other."""
    block = 256
    noise = numpy.zeros(48000, "<f4")
    noise[:24000] = numpy.random.default_rng(1).uniform(-0.5, 0.5, 24000)
    numpy.save(tmp_path / "noise.npy", noise)
    words = ["--preset", "hall", "--source", "1", "-40", "0", "2"]
    with jack(f"orvan{os.getpid()}b", "-p", str(block)) as environment, \
            program(tmp_path, *OFF, *words, "--record", f"{tmp_path}/out.wav", "--record-inputs", f"{tmp_path}/in.wav",
                    audio="jack", environment=environment) as live:
        wait_until(lambda: "client orvanverb" in live.log.read_text(), 15)
        time.sleep(1)
        subprocess.run([shutil.which("python3", path="/usr/bin"), "-c", PLAY, os.path.dirname(__file__), str(tmp_path / "noise.npy"),
                        str(tmp_path / "got.npy")], check=True, env=environment, timeout=90)
    subprocess.run([OFFLINE, "render", f"{tmp_path}/in.wav", "-o", f"{tmp_path}/want.wav", *words], check=True, capture_output=True)
    sent, played, want = (samples(tmp_path / name) for name in ("in.wav", "out.wav", "want.wav"))
    got = numpy.load(tmp_path / "got.npy")[block:]
    onset = numpy.flatnonzero(sent[:, 0])[0]
    assert numpy.array_equal(sent[onset:onset + len(noise), 0], noise)
    assert numpy.array_equal(played, want[:len(played)]) and len(played) == len(sent)
    assert numpy.array_equal(got, played[onset:onset + len(got)]) and numpy.abs(got).max() > 0.1
