/** @type {Record<string, TableView | undefined>} */
const tables = {};
/** @type {Walk | undefined} */
let walk;

for (const section of document.querySelectorAll("main > section")) {
  if (section.querySelector(".rows")) {
    const { id } = section;
    tables[id] = new TableView(/** @type {HTMLElement} */ (section), (row) => {
      if (id === "clips") {
        walk?.goToClip(row);
      } else if (id === "losses") {
        walk?.goToLoss(row);
      } else if (id === "tracks") {
        walk?.stage.showTrack(row);
        tables.tracks?.select(row);
      } else {
        tables[id]?.select(row);
      }
    });
  }
}

const model = readModel((track) => tables.tracks?.rows.cells(track)[1] || "");
/** @param {number} clip */
const nameOfClip = (clip) => {
  const cells = tables.clips?.rows.cells(clip) || [];
  return cells[3] || cells[4] || "";
};

element("stage").hidden = false;
const stage = new Stage(model, nameOfClip);
stage.fillHead = (track, head) => {
  const name = document.createElement("b");
  name.textContent = model.lanes[track].name;
  head.append(name);
  transport.addSwitches(track, head);
};
walk = new Walk(model, stage, tables);
const transport = new Transport(walk, stage, stage.painter.audible);
if (model.losses.start.length === 0) {
  element("loss-buttons").hidden = true;
}
setUpTheme(() => stage.repaint());
setUpKeys(walk, stage, transport);
setUpWheel(stage);
setUpPointers(walk, stage);
setUpOverview(stage);
setUpPrinting(model, /** @type {TableView[]} */ (Object.values(tables)), nameOfClip);
walk.moveCursor(0);
stage.resize();
walk.followLink();
addEventListener("hashchange", () => walk?.followLink());
