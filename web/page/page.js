// Everything that is seen of a room, and what people do to it.
import { Controls } from "./controls.js";
import { Decay } from "./decay.js";
import { html } from "./elements.js";
import { Outbox } from "./outbox.js";
import { Plan } from "./plan.js";
import { Meters, Strips } from "./strips.js";

const words = (name) => name.replaceAll("_", " ");

export class Page {
  #connection;
  #outbox;
  /** What the engine has told, and the user's last wishes. */
  #room = { controls: {}, sources: [], speakers: [], table: [], presets: [], selected: 0 };
  #plan;
  #strips;
  #meters;
  #decay;
  #controls;
  #header = {};
  #notice = html("div", { class: "notice", role: "status", "aria-live": "polite" });
  #noticeEnd = 0;

  /** @param {HTMLElement} element  gets the page
   *  @param connection             to an engine, see README.md */
  constructor(element, connection) {
    this.#connection = connection;
    this.#outbox = new Outbox(connection);
    const select = (index) => this.#select(index);
    this.#plan = new Plan(this.#room, this.#outbox, select);
    this.#strips = new Strips(this.#room, this.#outbox, select);
    this.#meters = new Meters(this.#room);
    this.#decay = new Decay(this.#room);
    this.#controls = new Controls(this.#room, this.#outbox, () => this.#decay.update());
    /** For what belongs to one kind of engine alone. */
    this.front = html("div", { id: "front" });
    element.classList.add("waiting");
    element.replaceChildren(this.#makeHeader(), this.front,
      html("div", { class: "columns" },
        html("div", { class: "column stage" }, this.#plan.element, this.#strips.element, this.#meters.element),
        html("div", { class: "column" }, this.#decay.element, this.#controls.element)),
      this.#notice);

    connection.onopen = () => this.#say("");
    connection.onclose = (reason) => {
      element.classList.add("waiting");
      this.#header.state.textContent = "not connected";
      this.#say(`${reason}; waiting for it`, Infinity);
    };
    connection.onmessage = (message) => {
      if (message.snapshot) element.classList.remove("waiting");
      this.#take(message);
    };
    connection.open();
  }

  /** What the engine says. */
  #take(message) {
    if (message.snapshot) this.#takeSnapshot(message.snapshot);
    if (this.#room.table.length === 0) return;
    for (const [name, value] of Object.entries(message.controls ?? {})) {
      if (this.#outbox.holds(`control ${name}`)) continue;
      this.#room.controls[name] = value;
      this.#controls.update(name);
    }
    if (message.controls) this.#decay.update();
    for (const source of message.sources ?? []) {
      if (this.#outbox.holds(`source ${source.index}`)) continue;
      Object.assign(this.#room.sources[source.index], source);
      this.#plan.updateSource(source.index);
    }
    if (message.sources) this.#strips.update();
    if (message.listener && !this.#outbox.holds("listener")) {
      Object.assign(this.#room.listener ??= {}, message.listener);
      this.#plan.updateListener();
    }
    for (const key of ["mute", "bypass"]) if (key in message) this.#header[key].setAttribute("aria-pressed", String(message[key]));
    if ("ears" in message) this.#header.ears.value = message.ears;
    if (message.levels) {
      this.#plan.showLevels(message.levels.sources ?? []);
      this.#strips.showLevels(message.levels.sources ?? []);
      this.#meters.show(message.levels.outputs ?? []);
    }
    if (message.status) this.#showStatus(message.status);
    if (message.state) this.#download(message.state);
    if (message.remark) this.#say(message.remark);
    if (message.error) this.#say(message.error);
  }

  #takeSnapshot(snapshot) {
    const selected = Math.min(this.#room.selected, snapshot.sources.length - 1);
    for (const key of Object.keys(this.#room)) delete this.#room[key];
    Object.assign(this.#room, { speakers: [], presets: [] }, structuredClone(snapshot), { selected });
    const { presets, ears, mute, bypass } = this.#header;
    presets.replaceChildren(html("option", { value: "" }, "Preset…"),
      ...this.#room.presets.map(({ name, title }) => html("option", { value: name, title }, words(name))));
    presets.parentElement.hidden = this.#room.presets.length === 0;
    ears.replaceChildren(...(this.#room.earsNames ?? []).map((name) => html("option", { value: name }, name)));
    ears.value = this.#room.ears ?? "";
    ears.parentElement.hidden = (this.#room.earsNames ?? []).length < 2;
    mute.hidden = !("mute" in snapshot);
    bypass.hidden = !("bypass" in snapshot);
    mute.setAttribute("aria-pressed", String(Boolean(snapshot.mute)));
    bypass.setAttribute("aria-pressed", String(Boolean(snapshot.bypass)));
    this.#header.saves.hidden = !snapshot.saves;
    this.#plan.build();
    this.#strips.build();
    this.#meters.build();
    this.#controls.build();
    this.#decay.update();
    if (snapshot.status) this.#showStatus(snapshot.status);
  }

  #select(index) {
    const before = this.#room.selected;
    this.#room.selected = index;
    for (const source of new Set([before, index])) this.#plan.updateSource(source);
    this.#strips.update();
  }

  #makeHeader() {
    const button = (name, title, onclick, attributes = {}) => html("button", { type: "button", title, onclick, ...attributes }, name);
    const toggle = (name, label, title) => {
      const made = button(label, title, () => this.#outbox.wish({ [name]: made.getAttribute("aria-pressed") !== "true" }), { "aria-pressed": "false", class: "toggle" });
      return made;
    };
    const h = this.#header;
    h.presets = html("select", { "aria-label": "Preset", onchange: () => h.presets.value && this.#outbox.wish({ preset: h.presets.value }) });
    h.ears = html("select", { "aria-label": "Ears", onchange: () => this.#outbox.wish({ ears: h.ears.value }) });
    h.mute = toggle("mute", "Mute", "silence");
    h.bypass = toggle("bypass", "Bypass", "the sources as they are, without the room");
    h.file = html("input", { type: "file", hidden: true, onchange: () => this.#upload(h.file.files[0]) });
    h.saves = html("span", { class: "group" }, button("Save", "the state, as a file", () => this.#outbox.wish({ save: true })),
      button("Open", "a saved state", () => h.file.click()), h.file);
    h.state = html("span", { class: "state" }, "not connected");
    return html("header", {}, html("h1", {}, "orvanverb"),
      html("label", { class: "choice" }, h.presets), html("label", { class: "choice" }, h.ears),
      h.saves, html("span", { class: "group" }, h.mute, h.bypass, button("Clear", "the room falls silent at once", () => this.#outbox.wish({ clear: true }))),
      h.state);
  }

  #showStatus(status) {
    const parts = [status.audio];
    if (status.rate) parts.push(`${status.rate / 1000} kHz`);
    if (status.block) parts.push(`block ${status.block}`);
    if ("load" in status) parts.push(`load ${Math.round(100 * status.load)} %`);
    if ("xruns" in status) parts.push(`${status.xruns} ${status.xruns === 1 ? "xrun" : "xruns"}`);
    if (status.bad) parts.push(`${status.bad} bad samples`);
    const text = parts.filter(Boolean).join(" · ");
    if (this.#header.state.textContent !== text) this.#header.state.textContent = text;
    this.#header.state.classList.toggle("trouble", Boolean(status.xruns || status.bad));
  }

  #download(text) {
    const link = html("a", { href: URL.createObjectURL(new Blob([text], { type: "text/plain" })), download: "room.state" });
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
  }

  async #upload(file) {
    this.#header.file.value = "";
    if (file) this.#outbox.wish({ state: await file.text() });
  }

  #say(text, time = 6000) {
    clearTimeout(this.#noticeEnd);
    this.#notice.textContent = text;
    this.#notice.classList.toggle("shown", text !== "");
    if (text && time !== Infinity) this.#noticeEnd = setTimeout(() => this.#say(""), time);
  }
}
