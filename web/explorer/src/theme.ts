// Light and dark: as the system has it, or as one chose.
import { choice, type Field } from "./dom.ts";
import { texts } from "./texts.ts";

const KEY = "kestrune-colours";

export class Theme {
  readonly box: HTMLElement;
  #field: Field<HTMLSelectElement>;
  #system = matchMedia("(prefers-color-scheme: dark)");

  constructor(private readonly changed: () => void) {
    this.#field = choice(texts.theme, Object.entries(texts.themes), (value) => this.#choose(value));
    this.box = this.#field.box;
    this.#field.input.value = this.#stored();
    this.#apply();
    this.#system.addEventListener("change", () => (this.#apply(), this.changed()));
  }

  get dark(): boolean {
    const { value } = this.#field.input;
    return value === "" ? this.#system.matches : value === "dark";
  }

  /** There may be no storage, as for a page of the file system. */
  #stored(): string {
    try {
      const value = localStorage.getItem(KEY) ?? "";
      return value in texts.themes ? value : "";
    } catch {
      return "";
    }
  }
  #choose(value: string): void {
    try {
      localStorage.setItem(KEY, value);
    } catch {
      // kept for this page alone
    }
    this.#apply();
    this.changed();
  }
  #apply(): void {
    document.documentElement.dataset.theme = this.dark ? "dark" : "light";
  }
}
