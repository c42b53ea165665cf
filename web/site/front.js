// What a page with the engine in it has beyond one that steers a program: play, what each source plays, the link.
import { html } from "./elements.js";
import { Player, sounds } from "./players.js";

const first = Object.keys(sounds);

export class Front {
  #connection;
  #players = [];
  #play = html("button", { type: "button", class: "play", disabled: true, onclick: () => this.#toggle() }, "Play");
  #rows = html("div", { class: "sounds" });
  #said = html("span", { class: "front-said", role: "status" });

  /** @param element  gets it; @param connection  a WorkletConnection */
  constructor(element, connection) {
    this.#connection = connection;
    element.replaceChildren(
      this.#play,
      this.#rows,
      html("button", { type: "button", title: "the room as it is, to send to somebody", onclick: () => this.#copyLink() }, "Copy link"),
      this.#said,
    );
    connection.onready = () => this.#build();
    document.addEventListener("dragover", (event) => event.preventDefault());
    document.addEventListener("drop", (event) => this.#drop(event, 0));
  }

  #build() {
    const { context, inputs } = this.#connection;
    inputs.forEach((input, i) => {
      const player = new Player(context, input);
      this.#players.push(player);
      const file = html("input", { type: "file", accept: "audio/*", hidden: true, onchange: () => this.#choose(i, file.files[0]) });
      const choice = html("select", { "aria-label": `What source ${i + 1} plays`, onchange: () => {
        if (choice.value === "file") file.click();
        else this.#choose(i, choice.value);
      } }, ...first.map((name) => html("option", { value: name }, name)),
        html("option", { value: "file" }, "file…"), html("option", { value: "microphone" }, "microphone"),
        html("option", { value: "nothing" }, "nothing"));
      choice.value = first[i] ?? "nothing";
      const row = html("label", { class: "sound", ondrop: (event) => this.#drop(event, i) }, `${i + 1}`, choice, file);
      this.#rows.append(row);
      this.#choose(i, choice.value);
    });
    context.addEventListener("statechange", () => this.#showState());
    this.#showState();
    this.#play.disabled = false;
  }

  #showState() {
    const plays = this.#connection.context.state === "running";
    this.#play.textContent = plays ? "Pause" : "Play";
    this.#play.setAttribute("aria-pressed", String(plays));
  }

  #toggle() {
    const { context } = this.#connection;
    if (context.state === "running") context.suspend();
    else context.resume();
  }

  /** @param sound  a name of sounds, "microphone", "nothing" or a file */
  async #choose(index, sound) {
    if (!sound) return;
    this.#say("");
    try {
      if (await this.#players[index].play(sound))
        this.#connection.nameSource(index, sound instanceof File ? sound.name : sound === "nothing" ? "" : sound);
    } catch (error) {
      this.#say(error.message);
    }
  }

  #drop(event, index) {
    event.preventDefault();
    event.stopPropagation();
    const file = event.dataTransfer.files[0];
    if (!file || !this.#players[index]) return;
    this.#rows.children[index].querySelector("select").value = "file";
    this.#choose(index, file);
  }

  async #copyLink() {
    await new Promise((resolve) => setTimeout(resolve, 500)); // until the address has followed the last change
    try {
      await navigator.clipboard.writeText(location.href);
      this.#say("The link is in the clipboard.");
    } catch {
      this.#say("The link is the address of this page.");
    }
  }

  #say(text) {
    this.#said.textContent = text;
  }
}
