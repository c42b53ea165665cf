// Elements of HTML and SVG in one call each.

const svgNamespace = "http://www.w3.org/2000/svg";

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (name === "style") element.style.cssText = value; // as an attribute the page's own policy forbids it
    else if (name in element && typeof value === "boolean") element[name] = value;
    else element.setAttribute(name, value);
  }
  element.append(...children);
  return element;
}

/** html("button", {type: "button", onclick: () => {}}, "Save") */
export const html = (name, attributes = {}, ...children) =>
  fill(document.createElement(name), attributes, children);

export const svg = (name, attributes = {}, ...children) =>
  fill(document.createElementNS(svgNamespace, name), attributes, children);
