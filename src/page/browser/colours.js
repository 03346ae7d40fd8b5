const colourNames = [
  "surface", "lane", "ink", "soft-ink", "line", "strong-line", "bad", "bad-ground", "changed",
  "changed-ground", "clip-0", "clip-1", "clip-2", "clip-3", "clip-4", "clip-5", "clip-edge",
  "clip-ink", "wave", "fade", "gain", "silent", "cursor", "focus", "accent", "on-accent",
];

/** The colours of the style as it is now. @returns {Record<string, string>} */
function currentColours() {
  const style = getComputedStyle(document.documentElement);
  return Object.fromEntries(
    colourNames.map((name) => [name, style.getPropertyValue("--" + name).trim()]),
  );
}

/** Light or dark: as the system says, until a person chooses. */
function setUpTheme(/** @type {() => void} */ changed) {
  const dark = matchMedia("(prefers-color-scheme: dark)");
  const button = element("theme");
  button.hidden = false;
  button.addEventListener("click", () => {
    const root = document.documentElement;
    const isDark = root.dataset.theme === undefined ? dark.matches : root.dataset.theme === "dark";
    root.dataset.theme = isDark ? "light" : "dark";
    changed();
  });
  dark.addEventListener("change", changed);
}
