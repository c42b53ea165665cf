// How the room answers a clap, drawn from its controls: early and dense reflections, and the late field's three bands.
import { html, svg } from "./elements.js";
import { clamp, digits, withUnit } from "./values.js";

const width = 360;
const height = 170;
const left = 30;
const top = 10;
const bottom = 142; // of the curves
const floor = -60; // [dB]
const bands = [
  { name: "low", factor: "trl" },
  { name: "mid", factor: "trm" },
  { name: "high", factor: "trh" },
];

export class Decay {
  #room;
  #picture = svg("svg", { viewBox: `0 0 ${width} ${height}`, class: "decay", role: "img" });
  #legend = html("ul", { class: "legend" });

  constructor(room) {
    this.#room = room;
    this.element = html("section", { class: "card decay-card", "aria-label": "Decay" }, this.#picture, this.#legend);
  }

  update() {
    const c = this.#room.controls;
    const endless = c.infinite !== 0;
    const times = bands.map(({ factor }) => (endless ? Infinity : c.tr0 * c[factor])); // [s] for 60 dB
    const start = (c.reverb_start ?? 0) / 1000;
    const span = endless ? 5 : clamp(1.12 * (start + Math.max(...times)), 0.4, 60);
    const x = (seconds) => left + (seconds / span) * (width - left - 8);
    const y = (decibels) => top + (clamp(decibels, floor, 0) / floor) * (bottom - top);

    const step = [0.1, 0.2, 0.5, 1, 2, 5, 10, 20].find((candidate) => span / candidate <= 6) ?? 20;
    const marks = [];
    for (let t = 0; t <= span; t += step)
      marks.push(svg("path", { d: `M${x(t)} ${top}V${bottom}`, class: "grid" }),
        svg("text", { x: x(t), y: bottom + 13, class: "tick middle" }, withUnit(t, "s")));
    for (let level = 0; level >= floor; level -= 20)
      marks.push(svg("path", { d: `M${left} ${y(level)}H${width - 8}`, class: "grid" }),
        svg("text", { x: left - 5, y: y(level) + 3.5, class: "tick end" }, digits(level)));

    const block = (name, from, to) => svg("rect", {
      x: x(from / 1000), y: top, width: Math.max(x(to / 1000) - x(from / 1000), 2), height: bottom - top, class: `block ${name}`,
    });
    const lines = bands.map(({ name }, i) => {
      const end = endless ? span : Math.min(start + times[i], span);
      const last = endless ? 0 : ((end - start) / times[i]) * floor;
      return svg("path", { d: `M${x(start)} ${y(0)}L${x(end)} ${y(last)}`, class: `line ${name}` });
    });
    this.#picture.replaceChildren(...marks, block("early", c.early_start, c.early_end), block("cluster", c.cluster_start, c.cluster_end),
      svg("path", { d: `M${x(0)} ${bottom}V${top}`, class: "line direct" }), ...lines);

    const said = bands.map(({ name }, i) => [name, endless ? "for ever" : withUnit(times[i], "s")]);
    const spans = [["early", `${digits(c.early_start)}–${digits(c.early_end)} ms`], ["cluster", `${digits(c.cluster_start)}–${digits(c.cluster_end)} ms`]];
    this.#picture.setAttribute("aria-label", `Decay: ${said.map((pair) => pair.join(" ")).join(", ")}`);
    this.#legend.replaceChildren(...[...said, ...spans].map(([name, text]) =>
      html("li", { class: name }, html("span", { class: "key" }), ` ${name} `, html("b", {}, text))));
  }
}
