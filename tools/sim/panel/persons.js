// The persons, and who of them stands at which reader.
import { address, ask, byId, element, order, plural, setText, view } from "./page.js";
import { doorName } from "./device.js";

const kDigits = 10;
const kNobody = "No persons yet. Whoever speaks to the device adds them, with their cards, faces and fingerprints.";
const kNoMatch = "Nobody has that name, number or card.";

let persons = []; // those in the table
let known = ""; // what the table was made from
let asked = 0;

// -- the table --

function portrait(person) {
  if (person.faces === 0) return element("span", { className: "portrait" }, (person.name || "?").slice(0, 1));
  const source = address("/face", { employeeNo: person.employeeNo });
  const button = element(
    "button",
    { className: "portrait" },
    element("img", { src: source, alt: "", width: 36, height: 36, loading: "lazy" }),
  );
  button.setAttribute("aria-label", `Face of ${person.name || person.employeeNo}`);
  button.addEventListener("click", () => view(person.name, source, [["Employee", person.employeeNo]]));
  return button;
}

function validity({ begin, end, isValidNow, userType }) {
  const period = [begin, end].map((time) => time.slice(0, 10) || "…").join(" to ");
  return [
    element(
      "span",
      { className: "badge", data: { tone: userType === "blackList" || !isValidNow ? "bad" : "good" } },
      userType === "blackList" ? "blocked" : isValidNow ? "valid" : "not now",
    ),
    element("span", { className: "muted period" }, begin || end ? period : "always"),
  ];
}

function cell(label, ...content) {
  return element("td", { data: { label } }, ...content);
}

function row(person) {
  const name = person.name || "No name";
  const choose = element("button", { type: "button" }, "Choose");
  choose.setAttribute("aria-label", `Choose ${name} for the reader`);
  choose.addEventListener("click", () => {
    byId("person").value = person.employeeNo;
    enableButtons();
    byId("person").focus();
  });
  const kind = person.userType === "visitor" ? ", visitor" : "";
  const who = element("div", {}, element("strong", {}, name),
    element("span", { className: "muted" }, `${person.employeeNo}${kind}`));
  return element(
    "tr",
    {},
    element("th", { scope: "row" }, element("div", { className: "who" }, portrait(person), who)),
    element("td", { title: person.cards.join(", "), data: { label: "Cards" } }, String(person.cards.length)),
    cell("Faces", String(person.faces)),
    cell("Fingers", String(person.fingerprints)),
    cell("Doors", person.doors.join(", ") || "none"),
    cell("Valid", ...validity(person)),
    element("td", { className: "choose" }, choose),
  );
}

function showTable(matches) {
  const searching = byId("person-search").value.trim() !== "";
  byId("person-list").replaceChildren(...persons.map(row));
  byId("person-table").hidden = persons.length === 0;
  byId("more-persons").hidden = persons.length >= matches;
  byId("no-persons").hidden = persons.length > 0;
  setText(byId("no-persons"), searching ? kNoMatch : kNobody);
}

async function load(first) {
  const number = ++asked;
  try {
    const page = await ask("/control/persons", { search: byId("person-search").value.trim(), first });
    if (number !== asked) return; // a later question is on its way
    persons = first === 0 ? page.persons : persons.concat(page.persons);
    showTable(page.matches);
    showChoices();
  } catch {
    known = ""; // the next news of the device asks again
  }
}

byId("person-search").addEventListener("input", () => load(0));
byId("more-persons").addEventListener("click", () => load(persons.length));

// -- at the reader --

function showChoices() {
  const select = byId("person");
  const chosen = select.value;
  const options = persons.map((person) =>
    element("option", { value: person.employeeNo }, `${person.name || "No name"} (${person.employeeNo})`),
  );
  select.replaceChildren(...(options.length ? options : [element("option", { value: "" }, "Nobody yet")]));
  if (persons.some(({ employeeNo }) => employeeNo === chosen)) select.value = chosen;
  enableButtons();
}

const chosenPerson = () => persons.find(({ employeeNo }) => employeeNo === byId("person").value);

function enableButtons() {
  const off = document.body.classList.contains("off") || byId("reader").value === "";
  const person = chosenPerson();
  for (const button of byId("readers").querySelectorAll("button")) button.disabled = off;
  byId("present-card").disabled = off || !person || person.cards.length === 0;
  byId("present-face").disabled = off || !person;
}

function showReaders(doors) {
  const names = doors.map((door, index) => `${index + 1} · ${doorName(door, index + 1)}`);
  const select = byId("reader");
  if (names.join("\n") === [...select.options].map(({ text }) => text).join("\n")) return;
  const chosen = select.value;
  select.replaceChildren(...names.map((name, index) => element("option", { value: String(index + 1) }, name)));
  if (Number(chosen) >= 1 && Number(chosen) <= names.length) select.value = chosen;
}

async function present(path, body) {
  const passage = await order("POST", path, { ...body, reader: Number(byId("reader").value) });
  if (!passage) return;
  const person = persons.find(({ employeeNo }) => employeeNo === passage.employeeNo);
  const who = person?.name || passage.employeeNo;
  setText(byId("passage"), `Reader ${passage.doorNo}: ${passage.outcome}${who ? `, ${who}` : ""}`);
  byId("passage").dataset.tone = passage.granted ? "good" : "bad";
}

// A number that nobody here has.
function unknownNumber() {
  const taken = new Set(persons.flatMap(({ cards, employeeNo }) => [...cards, employeeNo]));
  for (;;) {
    const number = Array.from({ length: kDigits }, () => Math.floor(Math.random() * 10)).join("");
    if (!taken.has(number)) return number;
  }
}

byId("person").addEventListener("change", enableButtons);
byId("present-card").addEventListener("click", () => present("card", { cardNo: chosenPerson().cards[0] }));
byId("present-face").addEventListener("click", () => present("face", { employeeNo: chosenPerson().employeeNo }));
byId("unknown-card").addEventListener("click", () => present("card", { cardNo: unknownNumber() }));
byId("unknown-face").addEventListener("click", () => present("face", { employeeNo: unknownNumber() }));
byId("card-form").addEventListener("submit", (event) => {
  event.preventDefault();
  const cardNo = byId("card-number").value.trim();
  if (cardNo) present("card", { cardNo });
  else byId("card-number").focus();
});

export function forgetPersons() {
  known = "";
}

export function showPersons(device) {
  showReaders(device.doors);
  enableButtons();
  const limits = [[device.persons, "person"], [device.cards, "card"], [device.faces, "face"],
    [device.fingerprints, "fingerprint"]];
  setText(byId("person-count"), device.persons ? device.persons.toLocaleString("en") : "");
  setText(byId("totals"), limits.map(([count, what]) => plural(count, what)).join(" · "));
  const now = `${device.serialNumber} ${device.changes}`;
  if (now === known) return;
  known = now;
  load(0);
}
