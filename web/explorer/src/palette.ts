// Colours of the pictures, of a set that colour-blind people tell apart; lines differ in their dashes too.

export interface Palette {
  paper: string;
  ink: string;
  faint: string;
  grid: string;
  /** By gas. */
  dew: [string, string];
  bubble: [string, string];
  liquids: string;
  unstable: string;
  quality: [string, string];
  hydrate: [string, string];
  water: [string, string];
  point: string;
}

export const LIGHT: Palette = {
  ...{ paper: "#ffffff", ink: "#1c2430", faint: "#4d5866", grid: "#dfe4ea" },
  ...{ dew: ["#c8470a", "#a0307c"], bubble: ["#0064a6", "#007a5a"] },
  ...{ liquids: "#6d5a8d", unstable: "#7c838c", quality: ["#4f7a1c", "#8a6d00"] },
  ...{ hydrate: ["#a86a00", "#75551c"], water: ["#0b7f9e", "#3e6fd0"], point: "#1c2430" },
};
export const DARK: Palette = {
  ...{ paper: "#161b22", ink: "#e8edf2", faint: "#a9b4c0", grid: "#2f3843" },
  ...{ dew: ["#ff8a4c", "#f08fcf"], bubble: ["#62b5f5", "#3fd3a5"] },
  ...{ liquids: "#b9a5dd", unstable: "#98a1ac", quality: ["#a6cf6a", "#e0c04a"] },
  ...{ hydrate: ["#f2b134", "#cfa96a"], water: ["#56cfe8", "#93b4ff"], point: "#ffffff" },
};
