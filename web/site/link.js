// The state of a room in the address of its page: what differs from a new room, in words.
//
//     #tr0=2.5&air=1&sources=-45,0,2;60,10,3&listener=20,0,0

const updateAfter = 400; // [ms] of quiet: browsers take few changes of the address a second

/** As few digits as make the same number in single precision. */
function shortest(value) {
  for (let digits = 1; digits < 9; ++digits) {
    const text = String(Number(value.toPrecision(digits)));
    if (Math.fround(Number(text)) === Math.fround(value)) return text;
  }
  return String(Number(value.toPrecision(9)));
}

const row = (place, names) => names.map((name) => shortest(place[name])).join(",");
const placeNames = ["azimuth", "elevation", "distance"];
const angleNames = ["yaw", "pitch", "roll"];

/** @param room {controls, sources, listener}, as an engine tells them; @param table of controls */
export function linkText({ controls, sources, listener }, table) {
  const parts = table
    .filter(({ name, default: standard }) => controls[name] !== standard)
    .map(({ name }) => `${name}=${shortest(controls[name])}`);
  parts.push(`sources=${sources.map((source) => row(source, placeNames)).join(";")}`);
  if (angleNames.some((name) => listener[name] !== 0)) parts.push(`listener=${row(listener, angleNames)}`);
  return parts.join("&");
}

/** What a link says, as a message to an engine; what it can't mean is left out. */
export function readLink(text, table) {
  const message = {};
  const numbers = (list, names) => {
    const values = list.split(",").map(Number);
    return Object.fromEntries(names.map((name, i) => [name, values[i]]).filter(([, value]) => Number.isFinite(value)));
  };
  const given = new URLSearchParams(text.replace(/^#/, ""));
  if ([...given].length === 0) return message;
  message.controls = {};
  for (const { name, min, max, default: standard } of table) {
    const value = given.has(name) ? Number(given.get(name)) : standard;
    if (value >= min && value <= max) message.controls[name] = value;
  }
  if (given.has("sources"))
    message.sources = given.get("sources").split(";").map((list, index) => ({ index, ...numbers(list, placeNames) }));
  if (given.has("listener")) message.listener = numbers(given.get("listener"), angleNames);
  return message;
}

/** Keeps the address of the page as the room is, and the room as an address that somebody enters. */
export function followLink(connection) {
  let timer = 0;
  let written = "";
  connection.onchange = () => {
    clearTimeout(timer);
    timer = setTimeout(() => {
      written = `#${linkText(connection.room(), connection.table)}`;
      history.replaceState(null, "", written);
    }, updateAfter);
  };
  window.addEventListener("hashchange", () => {
    if (location.hash !== written) connection.send(readLink(location.hash, connection.table));
  });
}
