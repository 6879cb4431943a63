// The event log and the request log, newest first.
import { address, ask, byId, element, order, plural, setText, speak, view } from "./page.js";

const kMostShown = 200;

let lastKept = 0; // number of the last event from before we listened

function clockTime(dateTime) {
  return dateTime.slice(11, 19) || dateTime;
}

// -- events --

function titleOf(event) {
  if (event.eventType !== "AccessControllerEvent") return event.description || event.eventType;
  return event.name || (event.employeeNo ? `Person ${event.employeeNo}` : "Unknown person");
}

function outcomeOf(event) {
  if (event.eventType !== "AccessControllerEvent") return { text: `alarm ${event.state}`, tone: "warn" };
  if (!event.outcome) return { text: `event ${event.major}/${event.minor}`, tone: "quiet" };
  return { text: event.outcome, tone: event.granted ? "good" : "bad" };
}

function factsOf(event) {
  return [
    ["Outcome", outcomeOf(event).text],
    ["Time", event.dateTime],
    ["Door", event.doorNo],
    ["Reader", event.reader],
    ["Employee", event.employeeNo],
    ["Card", event.cardNo],
    ["Verified by", event.verifyMode],
    ["Serial number", event.serialNo],
    ["Type", event.eventType],
  ];
}

function thumbnailOf(event) {
  if (!event.picture) return element("span", { className: "thumbnail" });
  const source = address("/picture", { name: event.picture });
  const button = element(
    "button",
    { className: "thumbnail", type: "button" },
    element("img", { src: source, alt: "", width: 56, height: 44, loading: "lazy" }),
  );
  button.setAttribute("aria-label", `Picture of ${titleOf(event)}, ${clockTime(event.dateTime)}`);
  button.addEventListener("click", () => view(titleOf(event), source, factsOf(event)));
  return button;
}

function eventRow(event) {
  const { text, tone } = outcomeOf(event);
  const facts = [
    event.doorNo && `door ${event.doorNo}`,
    event.cardNo && `card ${event.cardNo}`,
    event.employeeNo && `no. ${event.employeeNo}`,
    event.serialNo ? `#${event.serialNo}` : event.eventType,
  ];
  return element(
    "li",
    { className: event.number > lastKept ? "row event fresh" : "row event" },
    thumbnailOf(event),
    element(
      "div",
      { className: "grow" },
      element("strong", {}, titleOf(event)),
      " ",
      element("span", { className: "badge", data: { tone } }, text),
      element("p", { className: "muted" }, facts.filter(Boolean).join(" · ")),
    ),
    element("time", { className: "muted", dateTime: event.dateTime, title: event.dateTime }, clockTime(event.dateTime)),
  );
}

function putOnTop(list, rows) {
  list.prepend(...rows.reverse());
  while (list.children.length > kMostShown) list.lastElementChild.remove();
}

function say(events) {
  const last = events.at(-1);
  speak(events.length > 1 ? plural(events.length, "new event") : `${titleOf(last)}: ${outcomeOf(last).text}`);
}

export function addEvents(events) {
  putOnTop(byId("event-list"), events.map(eventRow));
  byId("no-events").hidden = true;
  setText(byId("event-count"), events.at(-1).number.toLocaleString("en"));
  if (events.at(-1).number > lastKept) say(events);
}

byId("send-alarm").addEventListener("click", () =>
  order("POST", "event", { eventType: "tamperDetection", picture: "small" }),
);

// -- requests --

// Text as it is, JSON with indentation, and of what is no text only how much it is.
function readable(text) {
  try {
    return JSON.stringify(JSON.parse(text), null, 2);
  } catch {
    const odd = text.search(/[\0-\x08\x0e-\x1f\ufffd]/);
    return odd < 0 ? text : `${text.slice(0, odd)} … and no more text`;
  }
}

function bodyPart(title, text) {
  if (!text) return [];
  return [element("h4", {}, title), element("pre", { tabIndex: 0 }, text)];
}

// Basic credentials are the password itself.
const withoutPassword = (header) => header.replace(/^(authorization: basic) .*/i, "$1 (hidden)");

async function fillDetails(details, number) {
  const place = details.querySelector(".bodies");
  try {
    const request = await ask("/control/request", { number });
    place.replaceChildren(
      ...bodyPart("Headers", request.headers.map(withoutPassword).join("\n")),
      ...bodyPart("Body", readable(request.body)),
      ...bodyPart("Answer", readable(request.answer)),
    );
  } catch (error) {
    setText(place, error.message);
  }
}

function toneOf(status) {
  return status === 0 || status >= 500 ? "bad" : status >= 400 ? "warn" : "good";
}

function requestRow({ number, method, target, status, user, microseconds }) {
  const details = element(
    "details",
    {},
    element(
      "summary",
      {},
      element("span", { className: "method", data: { method } }, method),
      element("span", { className: "target grow" }, target),
      element("span", { className: "badge", data: { tone: toneOf(status) } }, status ? String(status) : "no answer"),
      element("span", { className: "muted duration" }, `${(microseconds / 1000).toFixed(1)} ms`),
    ),
    element("p", { className: "muted" }, `Request ${number}, ${user ? `user ${user}` : "without a user"}`),
    element("div", { className: "bodies" }, "…"),
  );
  details.addEventListener("toggle", () => details.open && fillDetails(details, number), { once: true });
  const row = element("li", { data: { text: `${method} ${target} ${status} ${user}`.toLowerCase() } }, details);
  Object.assign(row.dataset, { writes: method !== "GET", errors: status === 0 || status >= 400, all: true });
  return row;
}

function applyFilter(rows) {
  const text = byId("request-filter").value.trim().toLowerCase();
  const kind = byId("request-kind").value;
  for (const row of rows) row.hidden = row.dataset[kind] !== "true" || !row.dataset.text.includes(text);
  const list = byId("request-list");
  const shown = list.querySelector("li:not([hidden])");
  byId("no-requests").hidden = shown !== null;
  setText(byId("no-requests"), list.children.length ? "No request fits the filter." : "No requests yet.");
}

export function addRequests(requests) {
  const list = byId("request-list");
  putOnTop(list, requests.map(requestRow));
  setText(byId("request-count"), requests.at(-1).number.toLocaleString("en"));
  applyFilter([...list.children].slice(0, requests.length));
}

function forgetRequests() {
  byId("request-list").replaceChildren();
  setText(byId("request-count"), "");
  applyFilter([]);
}

export function startLogs(lastEvent) {
  lastKept = lastEvent;
  byId("event-list").replaceChildren();
  byId("no-events").hidden = false;
  setText(byId("event-count"), "");
  forgetRequests();
}

for (const id of ["request-filter", "request-kind"])
  byId(id).addEventListener("input", () => applyFilter(byId("request-list").children));
byId("forget-requests").addEventListener("click", async () => {
  if (await order("DELETE", "requests")) forgetRequests();
});
