// The controls of the room, as the engine's table has them.
import { html } from "./elements.js";
import { Slider, Switch } from "./sliders.js";

const groups = [
  ["late", "Late field", "what goes on behind everything else"],
  ["early", "Early reflections", "the first ones, which tell of the size"],
  ["cluster", "Dense reflections", "between the first ones and the late field"],
  ["direct", "Direct sound", "what comes straight from the sources"],
  ["room", "Whole room", "all that the room answers"],
];

export class Controls {
  #room;
  #outbox;
  #onchange;
  #rows = new Map();

  /** @param onchange  called when somebody has changed one */
  constructor(room, outbox, onchange) {
    this.#room = room;
    this.#outbox = outbox;
    this.#onchange = onchange;
    this.element = html("section", { class: "controls", "aria-label": "Controls of the room" });
  }

  build() {
    this.#rows.clear();
    const open = new Set([...this.element.querySelectorAll("details[open]")].map((details) => details.dataset.group));
    this.element.replaceChildren(...groups.map(([group, name, what]) => {
      const rows = this.#room.table.filter((control) => control.group === group).map((control) => this.#row(control).element);
      return html("details", { class: "card", "data-group": group, open: open.size > 0 ? open.has(group) : group === "late" },
        html("summary", {}, html("h2", {}, name), html("span", { class: "what" }, what)), ...rows);
    }));
    this.#room.table.forEach(({ name }) => this.update(name));
  }

  update(name) {
    const value = this.#room.controls[name];
    const row = this.#rows.get(name);
    if (row instanceof Switch) row.show(value !== 0);
    else row?.show(value);
  }

  #row(control) {
    const words = (control.usual_name || control.label).split(",")[0];
    const title = `${control.name}: ${control.what}`;
    const choose = (value) => {
      this.#room.controls[control.name] = value;
      this.#outbox.control(control.name, value);
      this.#onchange(control.name);
    };
    const row = control.scale === "on/off"
      ? new Switch(words, title, (on) => choose(on ? 1 : 0))
      : new Slider(words, title, control, choose);
    row.element.dataset.control = control.name;
    this.#rows.set(control.name, row);
    return row;
  }
}
