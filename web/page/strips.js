// The sources beside each other, with their levels, and what the selected one has.
import { html } from "./elements.js";
import { Slider, Switch } from "./sliders.js";
import { clamp, silent, sourceHue } from "./values.js";

export const meterPlace = (decibels) => clamp((decibels + 60) / 66, 0, 1); // up to +6 dBFS

const ranges = {
  azimuth: { min: -180, max: 180, default: 0, unit: "degrees" },
  elevation: { min: -90, max: 90, default: 0, unit: "degrees" },
  distance: { min: 0.1, max: 100, default: 1, unit: "m", scale: "logarithmic" },
  gain: { min: -60, max: 12, default: 0, unit: "dB" },
};

export class Strips {
  #room;
  #outbox;
  #onselect;
  #tabs = html("div", { class: "tabs", role: "group", "aria-label": "Sources" });
  #panel = html("div", { class: "panel" });
  #sliders = {};
  #mute;
  #name;

  constructor(room, outbox, onselect) {
    this.#room = room;
    this.#outbox = outbox;
    this.#onselect = onselect;
    const change = (part) => {
      Object.assign(this.#room.sources[this.#room.selected], part);
      this.#outbox.source(this.#room.selected, part);
      this.#onselect(this.#room.selected);
    };
    const titles = {
      azimuth: "0 is ahead, to the right positive", elevation: "0 is at the height of the ears",
      distance: "how far away", gain: "of this source, ahead of the room",
    };
    for (const [name, range] of Object.entries(ranges))
      this.#sliders[name] = new Slider(name, titles[name], range, (value) =>
        change({ [name]: name === "gain" && value <= ranges.gain.min ? silent : value }));
    this.#mute = new Switch("mute", "this source alone", (on) => change({ mute: on }));
    this.#name = html("input", {
      type: "text", class: "source-name", maxlength: 40, "aria-label": "Name of the source", onchange: () => change({ name: this.#name.value }),
    });
    this.#panel.append(html("div", { class: "panel-head" }, this.#name, this.#mute.element),
      ...Object.values(this.#sliders).map((slider) => slider.element));
    this.element = html("section", { class: "card strips", "aria-label": "Sources" }, this.#tabs, this.#panel);
  }

  build() {
    this.#tabs.replaceChildren(...this.#room.sources.map(({ index }) =>
      html("button", { type: "button", class: "tab", style: `--hue: ${sourceHue(index)}`, onclick: () => this.#onselect(index) },
        html("span", { class: "tab-name" }), html("span", { class: "bar" }, html("span")))));
    this.update();
  }

  update() {
    this.#room.sources.forEach((source, index) => {
      const tab = this.#tabs.children[index];
      tab.querySelector(".tab-name").textContent = source.name || String(index + 1);
      tab.classList.toggle("muted", source.mute);
      tab.setAttribute("aria-pressed", String(index === this.#room.selected));
      tab.setAttribute("aria-label", `Source ${index + 1}${source.name ? ` ${source.name}` : ""}${source.mute ? ", muted" : ""}`);
    });
    const source = this.#room.sources[this.#room.selected];
    this.#panel.style.setProperty("--hue", sourceHue(source.index));
    if (document.activeElement !== this.#name) this.#name.value = source.name ?? "";
    this.#name.placeholder = `Source ${source.index + 1}`;
    this.#mute.show(source.mute);
    for (const [name, slider] of Object.entries(this.#sliders)) {
      slider.element.hidden = !(name in source);
      if (name in source) slider.show(source[name]);
    }
  }

  showLevels(levels) {
    levels.forEach((level, index) =>
      this.#tabs.children[index]?.querySelector(".bar > span").style.setProperty("--level", meterPlace(level)));
  }
}

/** The levels of the outputs. */
export class Meters {
  #room;
  #bars = html("div", { class: "bars", "aria-hidden": "true" });
  #said = html("span", { class: "said" });

  constructor(room) {
    this.#room = room;
    this.element = html("section", { class: "card meters", "aria-label": "Levels of the outputs" }, this.#bars, this.#said);
  }

  build() {
    this.#bars.replaceChildren(...this.#room.speakers.map(({ name }) =>
      html("div", { class: "output" }, html("span", { class: "bar" }, html("span")), html("span", { class: "output-name" }, name))));
  }

  show(levels) {
    levels.forEach((level, index) => {
      const bar = this.#bars.children[index]?.querySelector(".bar > span");
      bar?.style.setProperty("--level", meterPlace(level));
      bar?.classList.toggle("over", level > 0);
    });
    const loudest = Math.max(...levels, silent);
    this.#said.textContent = loudest <= silent ? "silence" : `${loudest.toFixed(0).replace("-", "−")} dBFS`;
  }
}
