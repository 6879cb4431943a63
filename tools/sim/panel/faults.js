// Power, the lock of the user, and all that can go wrong, as switches.
import { byId, element, order, setText } from "./page.js";

const kLockSeconds = 300;

const faults = [
  { kind: "slow", title: "Slow", text: "answers trickle", unit: "bytes per second", amount: 100 },
  { kind: "drop", title: "Drop", text: "half of the answer, then the connection is cut" },
  { kind: "hang-before", title: "Hang", text: "no answer at all; the connection stays open" },
  { kind: "hang-midway", title: "Hang midway", text: "half of the answer, then silence" },
  { kind: "http-error", title: "HTTP error", text: "every answer says so", unit: "status", amount: 500 },
  { kind: "status", title: "Refusal", text: "every answer refuses", unit: "error code", amount: 1610612737 },
  { kind: "malformed", title: "Malformed body", text: "the body loses its second half" },
  { kind: "wrong-length", title: "Wrong length", text: "the length is too great", unit: "bytes", amount: 16 },
  { kind: "stale-nonce", title: "Stale nonce", text: "asks for the password again" },
];

function makeSwitch(id, title, text, flip, ...more) {
  const button = element("button", { id: `switch-${id}`, className: "switch" }, element("span", {}, title));
  const note = element("span", { id: `note-${id}`, className: "muted" }, text);
  button.setAttribute("role", "switch");
  button.setAttribute("aria-checked", "false");
  button.setAttribute("aria-describedby", note.id);
  button.addEventListener("click", () => flip(button.getAttribute("aria-checked") !== "true"));
  byId("switch-list").append(element("li", {}, button, note, ...more));
}

function setSwitch(id, on) {
  byId(`switch-${id}`).setAttribute("aria-checked", String(on));
}

function makeFault({ kind, title, text, unit, amount }) {
  const input = element("input", { type: "number", id: `amount-${kind}`, placeholder: String(amount) });
  const flip = (on) => {
    if (!on) return order("DELETE", "fault", { kind });
    return order("POST", "fault", {
      kind,
      amount: Number(input.value),
      path: byId("fault-path").value.trim(),
      count: Number(byId("fault-count").value),
    });
  };
  makeSwitch(kind, title, text, flip, ...(unit ? [element("label", { className: "amount" }, input, ` ${unit}`)] : []));
}

// How a fault in force differs from one that always strikes everything.
function told({ path, count }) {
  return [path && `on ${path}`, count && `${count} more`].filter(Boolean).join(", ");
}

export function showFaults(device) {
  setSwitch("power", device.on);
  setSwitch("lock", device.locked);
  for (const { kind, text } of faults) {
    const inForce = device.faults.filter((fault) => fault.kind === kind);
    const more = inForce.map(told).filter(Boolean).join("; ");
    setSwitch(kind, inForce.length > 0);
    setText(byId(`note-${kind}`), more ? `${text} (${more})` : text);
    const amount = byId(`amount-${kind}`);
    if (!amount) continue;
    amount.disabled = inForce.length > 0;
    if (inForce[0]?.amount) amount.value = inForce[0].amount;
  }
  byId("clear-faults").disabled = device.faults.length === 0;
}

makeSwitch("power", "Power", "without it nobody gets a connection", (on) => order("POST", "power", { on }));
makeSwitch("lock", "User locked", "as after too many wrong passwords", (on) =>
  order("POST", "lock", { seconds: on ? kLockSeconds : 0 }),
);
faults.forEach(makeFault);
byId("clear-faults").addEventListener("click", () => order("DELETE", "faults"));
