// The room from above: the listener in the middle, looking up, and the sources to drag.
import { html, svg } from "./elements.js";
import { clamp, digits, direction, silent, sourceHue, turned } from "./values.js";

const radius = 100; // of the outermost ring, in the picture's own units
const ranges = [1, 2, 3, 5, 10, 20, 50, 100]; // [m]
const longestName = 16; // letters below a source; its tab has all of them
const degrees = 180 / Math.PI;

export class Plan {
  #room;
  #outbox;
  #onselect;
  #range = 3;
  #rings = svg("g");
  #speakers = svg("g");
  #head;
  #sources = svg("g");
  #dots = [];
  #picture;

  /** @param onselect  called with the index of a source that was touched */
  constructor(room, outbox, onselect) {
    this.#room = room;
    this.#outbox = outbox;
    this.#onselect = onselect;
    this.#head = this.#makeHead();
    this.#picture = svg(
      "svg",
      { viewBox: "-112 -112 224 224", class: "plan", role: "group", "aria-label": "Plan of the room" },
      this.#rings, this.#speakers, this.#head, this.#sources,
    );
    this.element = html("section", { class: "card plan-card", "aria-label": "Places" },
      this.#picture,
      html("div", { class: "zoom" },
        html("button", { type: "button", "aria-label": "Show less of the room", onclick: () => this.#zoom(-1) }, "+"),
        html("button", { type: "button", "aria-label": "Show more of the room", onclick: () => this.#zoom(1) }, "−")));
  }

  /** Everything anew. */
  build() {
    const farthest = 1.3 * Math.max(...this.#room.sources.map((source) => source.distance), 1); // with room around them
    this.#range = ranges.find((range) => range >= farthest) ?? ranges.at(-1);
    this.#dots = this.#room.sources.map((source) => this.#makeSource(source.index));
    this.#sources.replaceChildren(...this.#dots.map((dot) => dot.group));
    this.#speakers.replaceChildren(...this.#room.speakers.filter((speaker) => "azimuth" in speaker).map((speaker) => {
      const angle = speaker.azimuth;
      return svg("g", { transform: `rotate(${angle}) translate(0 ${-radius})`, class: "speaker" },
        svg("rect", { x: -4, y: -3, width: 8, height: 6, rx: 1.5 }),
        svg("text", { y: -6, transform: `rotate(${-angle} 0 -8)` }, speaker.name));
    }));
    this.#drawRings();
    this.#room.sources.forEach((source) => this.updateSource(source.index));
    this.updateListener();
  }

  updateSource(index) {
    const source = this.#room.sources[index];
    const { group, hit, below } = this.#dots[index];
    const [x, y] = this.#point(source);
    group.setAttribute("transform", `translate(${x} ${y})`);
    group.classList.toggle("muted", source.mute || source.gain <= silent);
    group.classList.toggle("selected", index === this.#room.selected);
    const height = Math.abs(source.elevation) >= 1 ? `${source.elevation > 0 ? "↑" : "↓"}${digits(Math.abs(source.elevation))}°` : "";
    const name = source.name ?? "";
    below.textContent = `${name.length > longestName ? `${name.slice(0, longestName - 1)}…` : name} ${height}`.trim();
    hit.setAttribute("aria-valuenow", String(Math.round(source.azimuth)));
    hit.setAttribute("aria-valuetext",
      `${direction(source.azimuth)}, ${digits(source.distance)} metres, ${digits(source.elevation)}° up`);
    hit.setAttribute("aria-label", `Source ${index + 1}${source.name ? ` ${source.name}` : ""}`);
  }

  updateListener() {
    this.#head.setAttribute("transform", `rotate(${this.#room.listener?.yaw ?? 0})`);
    this.#head.classList.toggle("turns", Boolean(this.#room.listener));
    const handle = this.#head.querySelector(".handle");
    handle.setAttribute("aria-valuenow", String(Math.round(this.#room.listener?.yaw ?? 0)));
    handle.setAttribute("aria-valuetext", `looks ${direction(this.#room.listener?.yaw ?? 0)}`);
  }

  showLevels(levels) {
    this.#dots.forEach(({ halo }, index) => {
      const loud = clamp(((levels[index] ?? silent) + 60) / 60, 0, 1);
      halo.setAttribute("r", String(7 + 12 * loud));
      halo.style.opacity = String(0.1 + 0.4 * loud);
    });
  }

  #zoom(steps) {
    const place = clamp(ranges.indexOf(this.#range) + steps, 0, ranges.length - 1);
    this.#range = ranges[place];
    this.#drawRings();
    this.#room.sources.forEach((source) => this.updateSource(source.index));
  }

  #drawRings() {
    const parts = [1 / 3, 2 / 3, 1];
    this.#rings.replaceChildren(
      svg("path", { d: `M0 ${-radius}V${radius}M${-radius} 0H${radius}`, class: "axis" }),
      ...parts.map((part) => svg("circle", { r: part * radius, class: part === 1 ? "ring outer" : "ring" })),
      ...parts.map((part) => svg("text", { x: 2, y: part * radius - 2.5, class: "metres" }, `${digits(part * this.#range)} m`)),
    );
  }

  /** Where a place is in the picture; beyond its range on its edge. */
  #point({ azimuth, elevation, distance }) {
    const across = Math.min((distance * Math.cos(elevation / degrees)) / this.#range, 1.06) * radius;
    return [across * Math.sin(azimuth / degrees), -across * Math.cos(azimuth / degrees)];
  }

  #pointer(event) {
    const inverse = this.#picture.getScreenCTM().inverse();
    const point = new DOMPoint(event.clientX, event.clientY).matrixTransform(inverse);
    return { azimuth: degrees * Math.atan2(point.x, -point.y), across: (Math.hypot(point.x, point.y) / radius) * this.#range };
  }

  #makeSource(index) {
    const halo = svg("circle", { r: 7, class: "halo" });
    const number = svg("text", { class: "name", y: 0.5 }, String(index + 1));
    const below = svg("text", { class: "below", y: 14 });
    const hit = svg("circle", { r: 14, class: "hit", tabindex: 0, role: "slider", "aria-valuemin": -180, "aria-valuemax": 180 });
    const group = svg("g", { class: "source", style: `--hue: ${sourceHue(index)}`, "data-index": index },
      halo, svg("circle", { r: 8, class: "dot" }), number, below, hit);
    hit.addEventListener("pointerdown", (event) => this.#drag(event, hit, (at) => this.#dragSource(index, at)));
    hit.addEventListener("pointerdown", () => this.#onselect(index));
    hit.addEventListener("focus", () => this.#onselect(index));
    hit.addEventListener("keydown", (event) => this.#key(event, index));
    return { group, hit, halo, below };
  }

  #drag(event, target, move) {
    if (event.button !== 0) return;
    event.preventDefault();
    target.focus({ preventScroll: true });
    target.setPointerCapture(event.pointerId);
    const onmove = (moved) => move(this.#pointer(moved));
    target.addEventListener("pointermove", onmove);
    for (const end of ["pointerup", "pointercancel"])
      target.addEventListener(end, () => target.removeEventListener("pointermove", onmove), { once: true });
  }

  #dragSource(index, { azimuth, across }) {
    const { elevation } = this.#room.sources[index];
    const flat = Math.max(Math.cos(elevation / degrees), 0.05); // straight above there is no way out
    this.#change(index, { azimuth, distance: clamp(across / flat, 0.1, Math.min(1.06 * this.#range, 100)) });
  }

  #key(event, index) {
    const source = this.#room.sources[index];
    const step = event.shiftKey ? 15 : 3;
    const change = {
      ArrowLeft: () => ({ azimuth: turned(source.azimuth - step) }),
      ArrowRight: () => ({ azimuth: turned(source.azimuth + step) }),
      ArrowUp: () => ({ distance: clamp(source.distance * 1.05, 0.1, 100) }),
      ArrowDown: () => ({ distance: clamp(source.distance / 1.05, 0.1, 100) }),
      PageUp: () => ({ elevation: clamp(source.elevation + 5, -90, 90) }),
      PageDown: () => ({ elevation: clamp(source.elevation - 5, -90, 90) }),
      m: () => ({ mute: !source.mute }),
    }[event.key]?.();
    if (!change || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    this.#change(index, change);
  }

  #change(index, change) {
    Object.assign(this.#room.sources[index], change);
    this.#outbox.source(index, change);
    this.#onselect(index);
  }

  #makeHead() {
    const turn = (yaw) => {
      this.#room.listener.yaw = turned(yaw);
      this.#outbox.listener({ yaw: this.#room.listener.yaw });
      this.updateListener();
    };
    const handle = svg("circle", {
      r: 13, class: "hit handle", tabindex: 0, role: "slider", "aria-label": "Listener", "aria-valuemin": -180, "aria-valuemax": 180,
    });
    handle.addEventListener("pointerdown", (event) => this.#room.listener && this.#drag(event, handle, ({ azimuth }) => turn(azimuth)));
    handle.addEventListener("dblclick", () => this.#room.listener && turn(0));
    handle.addEventListener("keydown", (event) => {
      const step = { ArrowLeft: -3, ArrowRight: 3 }[event.key];
      if (!this.#room.listener || (step === undefined && event.key !== "Home")) return;
      event.preventDefault();
      turn(event.key === "Home" ? 0 : this.#room.listener.yaw + step * (event.shiftKey ? 5 : 1));
    });
    return svg("g", { class: "head" },
      svg("ellipse", { cx: -7.5, cy: 0, rx: 1.8, ry: 3.2, class: "ear" }),
      svg("ellipse", { cx: 7.5, cy: 0, rx: 1.8, ry: 3.2, class: "ear" }),
      svg("path", { d: "M-2.2 -7.2L0 -11L2.2 -7.2Z", class: "nose" }),
      svg("circle", { r: 7.6, class: "skull" }),
      handle);
  }
}
