"""The page with the engine in it: what people let its sources play."""

import os
import pathlib

import pytest

from browser import Browser, serve

WEB = pathlib.Path(os.environ["ORVAN_WEB"])  # what `make web` made

# Helpers for what runs in the page.
PAGE = """
const until = async (true_, what) => {
  for (let i = 0; !true_(); ++i) {
    if (i === 400) throw new Error(`not within ten seconds: ${what}`);
    await new Promise((resolve) => setTimeout(resolve, 25));
  }
};
const find = (selector) => document.querySelector(selector);
const level = (source) => Number(find(`.tab:nth-child(${source}) .bar > span`).style.getPropertyValue("--level"));
const choose = (source, what) => {
  const choice = find(`.sound:nth-child(${source}) select`);
  choice.value = what;
  choice.dispatchEvent(new Event("change"));
};
const drop = (bytes, name, selector) => {
  const dataTransfer = new DataTransfer();
  dataTransfer.items.add(new File([bytes], name, { type: "audio/wav" }));
  find(selector).dispatchEvent(new DragEvent("drop", { dataTransfer, bubbles: true, cancelable: true }));
};
/** A tone, as a WAV file. */
const tone = (frames) => {
  const view = new DataView(new ArrayBuffer(44 + 2 * frames));
  const word = (at, text) => [...text].forEach((letter, i) => view.setUint8(at + i, letter.charCodeAt(0)));
  word(0, "RIFF"), view.setUint32(4, 36 + 2 * frames, true), word(8, "WAVEfmt "), view.setUint32(16, 16, true);
  view.setUint16(20, 1, true), view.setUint16(22, 1, true), view.setUint32(24, 48000, true), view.setUint32(28, 96000, true);
  view.setUint16(32, 2, true), view.setUint16(34, 16, true), word(36, "data"), view.setUint32(40, 2 * frames, true);
  for (let i = 0; i < frames; ++i) view.setInt16(44 + 2 * i, 16000 * Math.sin(0.05 * i), true);
  return view.buffer;
};
await until(() => !find("main").matches(".waiting") && find(".sound:nth-child(3)"), "the page");
"""


@pytest.fixture(scope="module")
def page():
    """The page, playing nothing."""
    with Browser() as browser, serve(WEB) as address:
        browser.open(address)
        browser.run(PAGE + """
for (const source of [1, 2, 3]) choose(source, "nothing");
find(".play").click();
await until(() => find(".state").textContent.includes("playing"), "playing");
""")
        yield browser
        assert browser.errors() == []


def test_microphone(page):
    page.run(PAGE + """
choose(2, "microphone");
await until(() => level(2) > 0.2, "the microphone"); // the browser's made-up one beeps
if (level(1) > 0 || level(3) > 0) throw new Error("another source sounds");
choose(2, "nothing");
await until(() => level(2) === 0, "silence");
""")


def test_the_last_choice_counts(page):
    page.run(PAGE + """
choose(1, "voice"); // loads for a while
choose(1, "nothing");
choose(2, "voice");
await until(() => level(2) > 0.05, "the voice");
await new Promise((resolve) => setTimeout(resolve, 500));
if (level(1) > 0) throw new Error("what was asked for first came last");
choose(2, "nothing");
await until(() => level(2) === 0, "silence");
""")


def test_files_are_dropped(page):
    said = page.run(PAGE + """
drop(tone(48000), "tone.wav", ".sound:nth-child(3)");
await until(() => level(3) > 0.5, "the tone");
const name = find(".tab:nth-child(3) .tab-name").textContent;
drop(tone(4800), "first.wav", "main"); // beside everything: the first source
await until(() => level(1) > 0.5, "the other tone");
choose(1, "voice"); // which takes longer to load than what follows, and has no word on it
drop(new Uint8Array(1000), "noise.wav", ".sound:nth-child(2)");
await until(() => find(".front-said").textContent, "a complaint");
await until(() => find(".tab:nth-child(1) .tab-name").textContent === "voice", "the voice");
return [name, find(".front-said").textContent, level(2), find(".sound:nth-child(3) select").value];
""")
    assert said == ["tone.wav", "noise.wav: the browser can't read this as sound", 0, "file"]
