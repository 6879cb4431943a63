// What all parts of the page share. Whatever a device says goes into the page as text, never as markup.

export const byId = (id) => document.getElementById(id);

// An element with properties, data-* attributes under "data", and children, which may be texts.
export function element(tag, properties = {}, ...children) {
  const { data = {}, ...rest } = properties;
  const made = Object.assign(document.createElement(tag), rest);
  Object.assign(made.dataset, data);
  made.append(...children);
  return made;
}

// Sets the text only if it differs, so that what a reader has selected stays selected.
export function setText(node, text) {
  if (node.textContent !== text) node.textContent = text;
}

export const plural = (count, one, many = `${one}s`) => `${count.toLocaleString("en")} ${count === 1 ? one : many}`;

export function notice(text) {
  const line = element("p", { className: "notice" }, text);
  byId("notices").replaceChildren(line);
  setTimeout(() => line.remove(), 6000);
}

export const speak = (text) => setText(byId("spoken"), text);

export const deviceIndex = () => new URLSearchParams(location.search).get("device") ?? "0";

// An address at the simulator, for the device that the page shows.
export function address(path, parameters = {}) {
  return `${path}?${new URLSearchParams({ device: deviceIndex(), ...parameters })}`;
}

export async function ask(path, parameters) {
  const answer = await fetch(address(path, parameters));
  const json = await answer.json();
  if (!answer.ok) throw new Error(json.error);
  return json;
}

// Gives an order. What became of it; nothing if it was refused or did not arrive, which the user is told.
export async function order(method, path, body = {}) {
  try {
    const answer = await fetch(address(`/control/${path}`), {
      method,
      headers: { "X-Velta-Panel": "1", "Content-Type": "application/json" },
      body: JSON.stringify(body),
    });
    const json = await answer.json();
    if (answer.ok) return json;
    notice(`Refused: ${json.error}`);
  } catch {
    notice("The device is not reachable.");
  }
  return undefined;
}

const viewer = byId("viewer");
viewer.addEventListener("click", (event) => {
  if (event.target === viewer) viewer.close();
});

// Shows a picture large, with what is known of it.
export function view(title, picture, facts) {
  setText(byId("viewer-title"), title);
  Object.assign(byId("viewer-picture"), { src: picture, alt: `Picture: ${title}` });
  const known = facts.filter(([, value]) => value !== undefined && value !== "");
  byId("viewer-facts").replaceChildren(
    ...known.flatMap(([name, value]) => [element("dt", {}, name), element("dd", {}, String(value))]),
  );
  viewer.showModal();
}
