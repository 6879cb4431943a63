// Listens to the device, and hands what it says to the parts of the page.
import { address, byId, element } from "./page.js";
import { showDevice } from "./device.js";
import { showFaults } from "./faults.js";
import { addEvents, addRequests, startLogs } from "./logs.js";
import { forgetPersons, showPersons } from "./persons.js";

const kSilence = 6000; // the clock of a device in order tells the time every second
const kRetry = 1500;

let source;
let silence;

function setReachable(reachable) {
  const banner = byId("banner");
  document.body.classList.toggle("unreachable", !reachable);
  banner.hidden = reachable;
  banner.textContent = reachable ? "" : "Device not reachable. Trying again …";
  if (reachable) return;
  byId("power-state").textContent = "not reachable";
  byId("power-state").dataset.tone = "bad";
}

function heard() {
  clearTimeout(silence);
  silence = setTimeout(() => {
    setReachable(false);
    connect();
  }, kSilence);
}

function showChoice(names) {
  const select = byId("device");
  byId("choice").hidden = names.length < 2;
  select.replaceChildren(...names.map((name, index) => element("option", { value: String(index) }, name)));
  select.value = new URLSearchParams(location.search).get("device") ?? "0";
}

const parts = {
  start(data) {
    startLogs(data.lastEvent);
    forgetPersons();
    showChoice(data.devices);
    setReachable(true);
  },
  device(data) {
    showDevice(data);
    showFaults(data);
    showPersons(data);
  },
  events: addEvents,
  requests: addRequests,
};

function connect() {
  source?.close();
  source = new EventSource(address("/live"));
  heard();
  for (const [name, show] of Object.entries(parts)) {
    source.addEventListener(name, (message) => {
      heard();
      show(JSON.parse(message.data));
    });
  }
  source.addEventListener("error", () => {
    setReachable(false);
    // A browser comes back by itself, unless the server refused it or was not there at all.
    if (source.readyState !== EventSource.CLOSED) return;
    clearTimeout(silence);
    silence = setTimeout(connect, kRetry);
  });
}

byId("device").addEventListener("change", (event) => {
  history.replaceState(null, "", `?device=${event.target.value}`);
  connect();
});
connect();
