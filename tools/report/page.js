"use strict";
// Draws the pictures when they come into view, sorts tables, and changes between light and dark.

const figures = JSON.parse(document.getElementById("figures").textContent);

function colour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

// What of a picture depends on light and dark, and on the width.
function themed(layout) {
  const grid = {gridcolor: colour("--grid"), zerolinecolor: colour("--grid"), linecolor: colour("--line")};
  const shapes = (layout.shapes || []).map((shape) => ({...shape, line: {...shape.line, color: colour("--text")}}));
  return {
    ...layout, shapes, autosize: true, margin: {l: 60, r: 15, t: 15, b: 50, ...layout.margin},
    paper_bgcolor: "rgba(0,0,0,0)", plot_bgcolor: "rgba(0,0,0,0)", font: {color: colour("--text"), size: 12},
    xaxis: {...grid, ...layout.xaxis}, yaxis: {...grid, ...layout.yaxis},
    hoverlabel: {bgcolor: colour("--card"), font: {color: colour("--text")}, namelength: -1},
  };
}

const OPTIONS = {responsive: true, displaylogo: false, displayModeBar: false};

function draw(place) {
  const figure = figures[place.id];
  place.dataset.drawn = "yes";
  return Plotly.react(place, figure.data, themed(figure.layout), OPTIONS);
}

// For whoever prints or checks the page.
function drawAll() {
  return Promise.all(Array.from(document.querySelectorAll(".picture"), draw));
}

const inView = new IntersectionObserver((entries) => {
  for (const entry of entries) {
    if (entry.isIntersecting && entry.target.dataset.drawn !== "yes") draw(entry.target);
  }
}, {rootMargin: "300px"});

function setTheme(theme) {
  document.documentElement.dataset.theme = theme;
  document.querySelectorAll('.picture[data-drawn="yes"]').forEach(draw);
}

// By the first click ascending, by the next the other way round. Cells without a value stay last.
function sortBy(header) {
  const table = header.closest("table");
  const column = Array.from(header.parentNode.children).indexOf(header);
  const descending = header.getAttribute("aria-sort") === "ascending";
  header.parentNode.querySelectorAll("th").forEach((other) => other.removeAttribute("aria-sort"));
  header.setAttribute("aria-sort", descending ? "descending" : "ascending");
  const valueOf = (row) => {
    const value = row.children[column].dataset.value;
    return value === undefined || value === "" || Number.isNaN(Number(value)) ? value : Number(value);
  };
  const rows = Array.from(table.tBodies[0].rows);
  rows.sort((one, other) => {
    const [a, b] = [valueOf(one), valueOf(other)];
    if (a === b) return 0;
    if (a === undefined || a === "") return 1;
    if (b === undefined || b === "") return -1;
    return (a < b ? -1 : 1) * (descending ? -1 : 1);
  });
  table.tBodies[0].append(...rows);
}

const dark = window.matchMedia("(prefers-color-scheme: dark)");
setTheme(dark.matches ? "dark" : "light");
dark.addEventListener("change", () => setTheme(dark.matches ? "dark" : "light"));
document.getElementById("theme").addEventListener("click", () => {
  setTheme(document.documentElement.dataset.theme === "dark" ? "light" : "dark");
});
document.querySelectorAll("th").forEach((header) => header.addEventListener("click", () => sortBy(header)));
document.querySelectorAll(".picture").forEach((place) => inView.observe(place));
