// The head of the page, the doors and the subscribers.
import { byId, element, order, plural, setText } from "./page.js";

const states = {
  open: { text: "Open", tone: "good" },
  closed: { text: "Closed", tone: "quiet" },
  heldOpen: { text: "Held open", tone: "warn" },
  heldClosed: { text: "Held closed", tone: "bad" },
  dormant: { text: "Dormant", tone: "quiet" },
};
const commands = [
  { text: "Open", command: "open" },
  { text: "Close", command: "close" },
  { text: "Hold open", command: "alwaysOpen", holds: "heldOpen" },
  { text: "Hold closed", command: "alwaysClose", holds: "heldClosed" },
];

export const doorName = (door, number) => door.name || `Door ${number}`;

function showHead(device) {
  const [date, rest] = device.localTime.split("T");
  document.title = `${device.name} – velta-sim`;
  setText(byId("name"), device.name);
  setText(byId("details"), [device.model, device.serialNumber, device.firmware, device.url].join(" · "));
  setText(byId("time"), rest.slice(0, 8));
  setText(byId("date"), `${date} ${rest.slice(8)}`);
  byId("time").dateTime = device.localTime;
  setText(byId("power-state"), device.on ? "Power on" : "Power off");
  byId("power-state").dataset.tone = device.on ? "good" : "bad";
  document.body.classList.toggle("off", !device.on);
}

function makeDoor(number) {
  const card = byId("door-template").content.firstElementChild.cloneNode(true);
  const title = card.querySelector("h3");
  title.id = `door-${number}`;
  const buttons = commands.map(({ text, command, holds }) => {
    const button = element("button", { data: { command } }, text);
    button.setAttribute("aria-describedby", title.id);
    // A hold that is pressed again ends, as closing does.
    button.addEventListener("click", () =>
      order("POST", "door", { doorNo: number, command: card.dataset.state === holds ? "close" : command }),
    );
    return button;
  });
  card.querySelector(".door-buttons").append(...buttons);
  return card;
}

function showDoor(card, door, number, on) {
  const state = states[door.state];
  const badge = card.querySelector(".badge");
  card.dataset.state = door.state;
  setText(card.querySelector("h3"), doorName(door, number));
  setText(badge, state.text);
  badge.dataset.tone = state.tone;
  const note = door.state === "open" ? `closes in ${door.openFor} s` : door.readerEnabled ? "" : "reader disabled";
  setText(card.querySelector(".door-note"), note);
  for (const button of card.querySelectorAll("button")) {
    const { holds } = commands.find(({ command }) => command === button.dataset.command);
    button.disabled = !on;
    if (holds) button.setAttribute("aria-pressed", String(door.state === holds));
  }
}

function showDoors(device) {
  const list = byId("door-list");
  if (list.children.length !== device.doors.length)
    list.replaceChildren(...device.doors.map((_, index) => makeDoor(index + 1)));
  byId("no-doors").hidden = device.doors.length > 0;
  device.doors.forEach((door, index) => showDoor(list.children[index], door, index + 1, device.on));
}

function howLong(seconds) {
  if (seconds < 60) return `${seconds} s`;
  if (seconds < 3600) return `${Math.floor(seconds / 60)} min`;
  return `${Math.floor(seconds / 3600)} h ${Math.floor((seconds % 3600) / 60)} min`;
}

function showSubscribers({ subscribers, lostEvents }) {
  const list = byId("subscriber-list");
  list.replaceChildren(
    ...subscribers.map(({ address, path, seconds }) =>
      element(
        "li",
        { className: "row" },
        element("strong", {}, address),
        element("span", { className: "muted grow" }, path),
        element("span", { className: "muted" }, `for ${howLong(seconds)}`),
      ),
    ),
  );
  setText(byId("subscriber-count"), subscribers.length ? String(subscribers.length) : "");
  byId("no-subscribers").hidden = subscribers.length > 0;
  byId("end-streams").disabled = byId("cut-streams").disabled = subscribers.length === 0;
  byId("lost-events").hidden = lostEvents === 0;
  setText(byId("lost-events"), `${plural(lostEvents, "event")} lost to subscribers that were too slow.`);
}

export function showDevice(device) {
  showHead(device);
  showDoors(device);
  showSubscribers(device);
}

byId("end-streams").addEventListener("click", () => order("POST", "streams", { end: "after-queue" }));
byId("cut-streams").addEventListener("click", () => order("POST", "streams", { end: "at-once" }));
