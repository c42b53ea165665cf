// A slider with a number beside it that can be typed: for the room's controls and for what a source has.
import { html } from "./elements.js";
import { clamp, scales, typedNumber, withUnit } from "./values.js";

const steps = 1000; // of a slider

export class Slider {
  #range;
  #scale;
  #input;
  #number;
  #onchange;

  /** @param range     {min, max, default, unit, scale}
   *  @param onchange  called with the value that somebody chose */
  constructor(name, title, range, onchange) {
    this.#range = range;
    this.#scale = scales[range.scale] ?? scales.linear;
    this.#onchange = onchange;
    this.#input = html("input", {
      type: "range", min: 0, max: steps, step: "any", "aria-label": name, oninput: () => this.#choose(this.#scale.value(this.#input.value / steps, range)),
      onkeydown: (event) => this.#key(event),
    });
    this.#number = html("input", {
      type: "text", inputmode: "decimal", class: "number", "aria-label": `${name}, as a number`, size: 7,
      onfocus: () => this.#number.select(), onchange: () => this.#type(),
    });
    this.element = html("div", { class: "slider", title },
      html("span", { class: "label", ondblclick: () => this.#choose(range.default) }, name), this.#input, this.#number);
  }

  show(value) {
    const place = steps * clamp(this.#scale.place(value, this.#range), 0, 1);
    this.#input.value = place;
    this.#input.style.setProperty("--place", `${place / 10}%`);
    this.#input.setAttribute("aria-valuetext", withUnit(value, this.#range.unit));
    if (document.activeElement !== this.#number) this.#number.value = withUnit(value, this.#range.unit);
  }

  #choose(value) {
    const { min, max } = this.#range;
    const rounded = Number(clamp(value, min, max).toPrecision(4));
    this.show(rounded);
    this.#onchange(rounded);
  }

  #type() {
    const value = typedNumber(this.#number.value);
    this.#number.blur();
    if (Number.isNaN(value)) this.show(this.#scale.value(this.#input.value / steps, this.#range));
    else this.#choose(value);
  }

  #key(event) {
    const moves = { ArrowLeft: -1, ArrowDown: -1, ArrowRight: 1, ArrowUp: 1, PageDown: -10, PageUp: 10 };
    const move = moves[event.key];
    if (move === undefined || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    const place = clamp(Number(this.#input.value) / steps + move * (event.shiftKey ? 0.001 : 0.01), 0, 1);
    this.#choose(this.#scale.value(place, this.#range));
  }
}

/** Something that is on or off. */
export class Switch {
  #box;
  constructor(name, title, onchange) {
    this.#box = html("input", { type: "checkbox", role: "switch", onchange: () => onchange(this.#box.checked) });
    this.element = html("label", { class: "switch", title }, html("span", { class: "label" }, name), this.#box);
  }
  show(on) {
    this.#box.checked = on;
  }
}

