// Elements of the page, made in one expression.

type Children = (Node | string)[];
type Properties = Record<string, string | number | boolean | EventListener | ((event: never) => void)>;

/** An element with attributes, or properties and listeners where the value is no text: h("input", { id: "T", oninput: f }). */
export function h<K extends keyof HTMLElementTagNameMap>(tag: K, properties: Properties = {}, ...children: Children) {
  const element = document.createElement(tag);
  for (const [key, value] of Object.entries(properties))
    if (typeof value === "string" || typeof value === "number") element.setAttribute(key, String(value));
    else (element as unknown as Record<string, unknown>)[key] = value;
  element.append(...children);
  return element;
}

let numbers = 0;
export const newId = (what: string): string => `${what}-${++numbers}`;

/** Text of an element, set where it differs: what did not change is not read out again. */
export function say(element: Element, text: string): void {
  if (element.textContent !== text) element.textContent = text;
}

/** A field with its label, and a place for what is wrong with it. */
export interface Field<E extends HTMLElement = HTMLInputElement> {
  box: HTMLElement;
  input: E;
  label: HTMLElement;
  wrong(text: string): void;
}

function withLabel<E extends HTMLInputElement | HTMLSelectElement | HTMLTextAreaElement>(
  label: string,
  input: E,
): Field<E> {
  input.id = newId("field");
  const error = h("span", { class: "wrong", id: `${input.id}-wrong` });
  const title = h("label", { for: input.id }, label);
  input.setAttribute("aria-describedby", error.id);
  const wrong = (text: string) => {
    say(error, text);
    input.setAttribute("aria-invalid", String(text !== ""));
  };
  return { box: h("div", { class: "field" }, title, input, error), input, label: title, wrong };
}

export function textField(label: string, change: (text: string) => void, mode = "text"): Field {
  const input = h("input", { type: "text", inputmode: mode, autocomplete: "off", spellcheck: "false", maxlength: 400 });
  input.oninput = () => change(input.value);
  return withLabel(label, input);
}

export function choice(
  label: string,
  options: [string, string][],
  change: (value: string) => void,
): Field<HTMLSelectElement> {
  const input = h("select", {}, ...options.map(([value, text]) => h("option", { value }, text)));
  input.onchange = () => change(input.value);
  return withLabel(label, input);
}

export function tick(label: string, change: (on: boolean) => void): { box: HTMLElement; input: HTMLInputElement } {
  const input = h("input", { type: "checkbox" });
  input.onchange = () => change(input.checked);
  return { box: h("label", { class: "tick" }, input, label), input };
}

export function button(label: string, press: () => void, more: Properties = {}): HTMLButtonElement {
  return h("button", { type: "button", onclick: press, ...more }, label);
}

/** The value of a field from the state, unless that is what stands there. */
export function fill(input: HTMLInputElement | HTMLSelectElement, value: string): void {
  if (input.value !== value) input.value = value;
}
