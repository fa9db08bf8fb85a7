// Suggestions under a text field: arrow keys choose, Enter or a click takes, Escape closes.
import { h, newId, say } from "./dom.ts";
import type { Found } from "./protocol.ts";

/** find gives what begins or contains the text; taken gets the one that was chosen. */
export function suggest(
  input: HTMLInputElement,
  spoken: HTMLElement,
  find: (text: string) => Promise<Found[]>,
  taken: (name: string) => void,
  count: (n: number) => string,
): HTMLElement {
  const list = h("ul", { class: "suggestions", role: "listbox", id: newId("list"), hidden: true });
  list.setAttribute("aria-label", input.getAttribute("aria-label") ?? "");
  let found: Found[] = [];
  let at = -1;
  let asked = 0;
  for (const [name, value] of [
    ["role", "combobox"],
    ["aria-autocomplete", "list"],
    ["aria-controls", list.id],
    ["aria-expanded", "false"],
  ])
    input.setAttribute(name, value);

  const close = () => {
    list.hidden = true;
    at = -1;
    ++asked;
    input.setAttribute("aria-expanded", "false");
    input.removeAttribute("aria-activedescendant");
  };
  const take = (k: number) => {
    const { name } = found[k];
    close();
    taken(name);
  };
  const choose = (k: number) => {
    at = k;
    [...list.children].forEach((item, i) => item.setAttribute("aria-selected", String(i === at)));
    if (at < 0) return input.removeAttribute("aria-activedescendant");
    input.setAttribute("aria-activedescendant", list.children[at].id);
    list.children[at].scrollIntoView({ block: "nearest" });
  };
  const open = () => {
    const items = found.map(({ name, formula, cas }, k) => {
      const item = h(
        "li",
        { role: "option", id: newId("option"), "aria-selected": "false" },
        name,
        h("span", {}, `${formula} \u00b7 ${cas}`),
      );
      item.onpointerdown = (event) => {
        event.preventDefault(); // the field keeps the focus
        take(k);
      };
      return item;
    });
    list.replaceChildren(...items);
    list.hidden = found.length === 0;
    input.setAttribute("aria-expanded", String(found.length > 0));
    say(spoken, count(found.length));
    at = -1;
  };

  input.addEventListener("input", async () => {
    const mine = ++asked;
    if (input.value.trim() === "") return close();
    const answer = await find(input.value).catch(() => []);
    if (mine !== asked || document.activeElement !== input) return;
    found = answer;
    open();
  });
  input.addEventListener("keydown", (event) => {
    if (event.key === "Escape") return close();
    if (list.hidden) return;
    const step = event.key === "ArrowDown" ? 1 : event.key === "ArrowUp" ? -1 : 0;
    if (step !== 0) {
      event.preventDefault();
      choose((at + step + found.length + (at < 0 && step < 0 ? 1 : 0)) % found.length);
    } else if (event.key === "Enter" && at >= 0) {
      event.preventDefault();
      take(at);
    }
  });
  input.addEventListener("blur", close);
  return list;
}
