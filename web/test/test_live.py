"""The page of orvanverb-live in a browser: what people do to it reaches the engine, and the other way round."""

import os
import pathlib
import socket
import subprocess
import time

import pytest
from browser import Browser
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

LIVE = pathlib.Path(os.environ["BUILD"], "apps/orvanverb-live/orvanverb-live")
VOICE = "/usr/share/sounds/alsa/Front_Center.wav"
# What an element shows, in one step: the page may draw another in its place at any moment.
READ = "return document.querySelector(arguments[0])?.[arguments[1]] ?? '';"
PICTURES = os.environ.get("ORVAN_PICTURES")  # a folder that gets pictures for the documents

pytestmark = pytest.mark.skipif(not LIVE.exists(), reason="orvanverb-live was left out")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def start(folder, port, *words):
    process = subprocess.Popen([LIVE, "--audio", f"file:{VOICE}:{folder}/out.wav", "--force", "--http", str(port), "--osc", "off",
                                "--adm", "off", "--autosave", f"{folder}/end.state", *words], stderr=subprocess.DEVNULL)
    end = time.monotonic() + 10
    while time.monotonic() < end:
        try:
            socket.create_connection(("127.0.0.1", port), 1).close()
            return process
        except OSError:
            time.sleep(0.05)
    raise RuntimeError("nobody listens")


def stop(process):
    process.terminate()
    assert process.wait(20) == 0


@pytest.fixture(scope="module")
def browser():
    with Browser() as made:
        yield made


def until(true, seconds=10):
    end = time.monotonic() + seconds
    while not true():
        assert time.monotonic() < end, "it did not come to be"
        time.sleep(0.05)


def position(folder):
    """Of the first source, as the program saved it."""
    for line in pathlib.Path(folder, "end.state").read_text().splitlines():
        if line.startswith("sourcespositions "):
            return [float(word) for word in line.split()[1:4]]
    raise AssertionError("no position was saved")


def control(folder, name):
    lines = dict(line.split(" ", 1) for line in pathlib.Path(folder, "end.state").read_text().splitlines() if " " in line)
    return float(lines[name])


def test_page_plays_the_room(browser, tmp_path):
    port = free_port()
    live = start(tmp_path, port)
    driver = browser.driver
    browser.open(f"http://localhost:{port}/")
    find = lambda selector: driver.find_element(By.CSS_SELECTOR, selector)
    read = lambda selector, what: driver.execute_script(READ, selector, what)
    until(lambda: driver.find_elements(By.CSS_SELECTOR, ".source .hit"))

    # To the right of the listener, by the mouse.
    source, head = find(".source .hit"), find(".head .skull")
    ActionChains(driver).click_and_hold(source).move_to_element(head).move_by_offset(200, 0).release().perform()
    until(lambda: "90° right" in source.get_attribute("aria-valuetext") or "89° right" in source.get_attribute("aria-valuetext"))
    # A bit back to the front, by keys.
    source.send_keys(Keys.ARROW_LEFT, Keys.ARROW_LEFT)
    # The decay, by its slider and by its number: the picture follows.
    before = read(".decay .line.mid", "outerHTML")
    find("[data-control=tr0] input[type=range]").send_keys(Keys.PAGE_UP)
    until(lambda: read(".decay .line.mid", "outerHTML") != before)
    number = find("[data-control=trl] input.number")
    number.click()
    number.send_keys("1,5" + Keys.ENTER)
    time.sleep(0.5)
    stop(live)
    x, y, _ = position(tmp_path)
    assert x > 0.5 and 0 < y < 0.3 * x
    assert control(tmp_path, "tr0") > 2.2 and control(tmp_path, "trl") == 1.5

    # It comes back by itself, to a program that was started anew.
    until(lambda: "not connected" in read(".state", "textContent"))
    live = start(tmp_path, port, "--state", f"{tmp_path}/end.state")
    until(lambda: "a file" in read(".state", "textContent"), 15)
    assert "1.5" in read("[data-control=trl] input.number", "value")
    Select(find("select[aria-label=Preset]")).select_by_value("cathedral")
    until(lambda: read("[data-control=tr0] input.number", "value") == "6.5 s")
    # Levels move.
    until(lambda: "dBFS" in read(".said", "textContent"))
    errors = [line for line in browser.errors() if "ERR_CONNECTION" not in line and "WebSocket" not in line]
    assert errors == []
    stop(live)


def test_pages_stay_in_step(browser, tmp_path):
    port = free_port()
    live = start(tmp_path, port)
    driver = browser.driver
    browser.open(f"http://localhost:{port}/")
    first = driver.current_window_handle
    driver.switch_to.new_window("tab")
    driver.get(f"http://localhost:{port}/")
    until(lambda: driver.find_elements(By.CSS_SELECTOR, "[data-control=tr0] input.number"))
    number = driver.find_element(By.CSS_SELECTOR, "[data-control=tr0] input.number")
    number.click()
    number.send_keys("3.21" + Keys.ENTER)
    time.sleep(0.3)
    driver.close()
    driver.switch_to.window(first)
    until(lambda: driver.execute_script(READ, "[data-control=tr0] input.number", "value") == "3.21 s")
    assert browser.errors() == []
    stop(live)


def test_pictures(browser, tmp_path):
    """Nothing sticks out on a phone, and pictures of it for the documents."""
    port = free_port()
    quartet = tmp_path / "quartet.wav"
    subprocess.run(["sox", "-M", *[VOICE] * 4, str(quartet)], check=True) if PICTURES else None
    live = start(tmp_path, port, "--preset", "hall") if not PICTURES else subprocess.Popen(
        [LIVE, "--audio", f"file:{quartet}:{tmp_path}/out.wav", "--force", "--http", str(port), "--osc", "off", "--adm", "off",
         "--preset", "hall", "--source", "1", "-50", "0", "2", "--source", "2", "-15", "0", "2.6", "--source", "3", "20", "15", "2.3",
         "--source", "4", "60", "0", "1.4"], stderr=subprocess.DEVNULL)
    time.sleep(1)
    browser.open(f"http://localhost:{port}/")
    until(lambda: browser.driver.find_elements(By.CSS_SELECTOR, ".source .hit"))
    for name, width, height, dark in (("desktop", 1280, 960, False), ("desktop-dark", 1280, 960, True), ("phone", 390, 844, False),
                                      ("phone-dark", 390, 844, True)):
        browser.picture(pathlib.Path(PICTURES or tmp_path) / f"live-{name}.png", width, height, dark)
        assert browser.run("return document.documentElement.scrollWidth <= innerWidth"), name
    assert browser.errors() == []
    stop(live)
