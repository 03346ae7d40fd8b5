/** Rows of a long table that are elements at a time. */
const rowsAtATime = 500;

/** The text of a cell as a long table has it. @param {string} markup */
function unescaped(markup) {
  return markup
    .replace(/&lt;/g, "<")
    .replace(/&gt;/g, ">")
    .replace(/&quot;/g, '"')
    .replace(/&amp;/g, "&");
}

/**
 * Rows that stand in the document as elements.
 * @param {HTMLTableElement} table
 */
function rowsOfElements(table) {
  const rows = [...table.tBodies[0].rows];
  /** @param {number} i */
  const cells = (i) => [...rows[i].cells].map((cell) => (cell.textContent || "").replace(/\n$/, ""));
  return { count: rows.length, cells, row: (/** @type {number} */ i) => rows[i], isLong: false };
}

/**
 * Rows that stand in the document as one text, because there are too many for elements.
 * @param {string[]} lines  a row each
 */
function rowsOfLines(lines) {
  /** @param {number} i */
  const cells = (i) => lines[i].split("<td>").slice(1).map(unescaped);
  /** @param {number} i */
  const row = (i) => {
    const element = document.createElement("tr");
    for (const text of cells(i)) {
      element.insertCell().textContent = text;
    }
    return element;
  };
  return { count: lines.length, cells, row, isLong: true };
}

/** The element of a long table, with its titles. @param {string[]} lines  in front of the rows */
function tableOfLines(lines) {
  const table = document.createElement("table");
  table.createCaption().textContent = unescaped(lines[1].replace(/<[^>]*>/g, ""));
  const head = table.createTHead().insertRow();
  for (const title of lines[2].split('<th scope="col">').slice(1)) {
    const cell = document.createElement("th");
    cell.scope = "col";
    cell.textContent = unescaped(title);
    head.append(cell);
  }
  table.createTBody();
  return table;
}

/** A table of the document with sorting, a filter, and rows that can be chosen. */
class TableView {
  /**
   * @param {HTMLElement} section
   * @param {(row: number) => void} chosen
   */
  constructor(section, chosen) {
    this.section = section;
    this.chosen = chosen;
    this.box = /** @type {HTMLElement} */ (section.querySelector(".rows"));
    const whole = this.box.querySelector("noscript");
    if (whole) {
      const lines = (whole.textContent || "").split("\n");
      const first = lines.findIndex((line) => line.startsWith("<tbody>")) + 1;
      this.table = tableOfLines(lines.slice(0, first));
      this.rows = rowsOfLines(lines.slice(first, -1));
      whole.replaceWith(this.table);
    } else {
      this.table = /** @type {HTMLTableElement} */ (this.box.querySelector("table"));
      this.rows = rowsOfElements(this.table);
    }
    this.body = this.table.tBodies[0];
    this.order = Array.from({ length: this.rows.count }, (_, i) => i);
    this.from = 0;
    this.current = -1;
    this.sortedBy = -1;
    this.isDescending = false;
    this.words = "";
    /** @type {Map<number, HTMLTableRowElement>} */
    this.shown = new Map();
    this.addTools();
    this.addSorting();
    this.addChoosing();
    this.render();
  }

  get pageRows() {
    return this.rows.isLong ? rowsAtATime : this.rows.count;
  }

  addTools() {
    const bar = document.createElement("div");
    bar.className = "bar";
    const label = document.createElement("label");
    this.input = document.createElement("input");
    this.input.type = "search";
    label.append(say("filter"), this.input);
    this.status = document.createElement("span");
    this.status.className = "shown";
    this.status.setAttribute("role", "status");
    bar.append(label);
    if (this.rows.isLong) {
      bar.append(this.turner("previousRows", -1), this.turner("nextRows", 1));
    }
    bar.append(this.status);
    this.box.before(bar);
    this.input.addEventListener("input", () => {
      this.words = /** @type {HTMLInputElement} */ (this.input).value.toLowerCase();
      this.from = 0;
      this.arrange();
    });
  }

  /** @param {string} name @param {number} direction */
  turner(name, direction) {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = say(name);
    button.addEventListener("click", () => {
      const last = Math.max(0, this.order.length - 1);
      this.from = Math.min(
        Math.max(0, this.from + direction * rowsAtATime),
        last - (last % rowsAtATime),
      );
      this.render();
      this.box.scrollTop = 0;
    });
    return button;
  }

  addSorting() {
    [.../** @type {HTMLTableSectionElement} */ (this.table.tHead).rows[0].cells].forEach((cell, column) => {
      const button = document.createElement("button");
      button.type = "button";
      button.append(...cell.childNodes);
      cell.append(button);
      button.addEventListener("click", () => {
        this.isDescending = this.sortedBy === column && !this.isDescending;
        this.sortedBy = column;
        for (const other of /** @type {HTMLTableSectionElement} */ (this.table.tHead).rows[0].cells) {
          other.removeAttribute("aria-sort");
        }
        cell.setAttribute("aria-sort", this.isDescending ? "descending" : "ascending");
        this.from = 0;
        this.arrange();
      });
    });
  }

  addChoosing() {
    /** @param {Event} event */
    const rowOf = (event) => {
      const row = /** @type {Element} */ (event.target).closest("tbody tr");
      for (const [number, element] of this.shown) {
        if (element === row) {
          return number;
        }
      }
      return -1;
    };
    this.body.addEventListener("click", (event) => {
      const row = rowOf(event);
      if (row >= 0) {
        this.chosen(row);
      }
    });
    this.body.addEventListener("keydown", (event) => {
      const row = rowOf(event);
      const element = this.shown.get(row);
      const step = { ArrowDown: "nextElementSibling", ArrowUp: "previousElementSibling" }[event.key];
      if (element && step) {
        const next = /** @type {HTMLElement | null} */ (/** @type {any} */ (element)[step]);
        if (next) {
          this.makeReachable(/** @type {HTMLTableRowElement} */ (next));
          next.focus();
        }
        event.preventDefault();
      } else if (row >= 0 && (event.key === "Enter" || event.key === " ")) {
        this.chosen(row);
        event.preventDefault();
      }
    });
  }

  /** Rows that pass the filter, in the order that was asked for. */
  arrange() {
    const { rows, sortedBy, words } = this;
    let order = Array.from({ length: rows.count }, (_, i) => i);
    if (words !== "") {
      order = order.filter((i) => rows.cells(i).some((text) => text.toLowerCase().includes(words)));
    }
    if (sortedBy >= 0) {
      const keys = Array.from({ length: rows.count }, () => "");
      order.forEach((i) => (keys[i] = rows.cells(i)[sortedBy]));
      const isNumeric = order.every((i) => keys[i] === "" || !Number.isNaN(parseFloat(keys[i])));
      const isLabel = order.every((i) => keys[i] === "" || /^[\d:;]+$/.test(keys[i]));
      const numbers = isNumeric && !isLabel ? keys.map((key) => (key === "" ? -Infinity : parseFloat(key))) : keys.map(Number);
      const byNumber = isNumeric && (!isLabel || order.every((i) => !/[:;]/.test(keys[i])));
      const sign = this.isDescending ? -1 : 1;
      order.sort((a, b) => {
        const [one, other] = byNumber ? [numbers[a], numbers[b]] : [keys[a], keys[b]];
        return (one < other ? -sign : one > other ? sign : 0) || a - b;
      });
    }
    this.order = order;
    this.render();
  }

  render() {
    const part = this.order.slice(this.from, this.from + this.pageRows);
    this.shown = new Map(part.map((i) => [i, this.rows.row(i)]));
    this.body.replaceChildren(...this.shown.values());
    this.shown.forEach((row) => (row.tabIndex = -1));
    const first = this.shown.values().next().value;
    if (first) {
      first.tabIndex = 0;
    }
    this.mark();
    const status = /** @type {HTMLElement} */ (this.status);
    if (this.rows.isLong && part.length > 0) {
      status.textContent = say("rows", this.from + 1, this.from + part.length, this.order.length);
    } else {
      status.textContent = this.words === "" ? "" : say("filterCount", this.order.length, this.rows.count);
    }
  }

  /** Only one row is a stop of the tab key. @param {HTMLTableRowElement} row */
  makeReachable(row) {
    this.shown.forEach((each) => (each.tabIndex = -1));
    row.tabIndex = 0;
  }

  mark() {
    this.shown.forEach((row, number) => {
      if (number === this.current) {
        row.setAttribute("aria-current", "true");
        this.makeReachable(row);
      } else {
        row.removeAttribute("aria-current");
      }
    });
  }

  /** Marks a row and scrolls to it within the table. @param {number} row */
  select(row) {
    this.current = row;
    if (!this.shown.has(row)) {
      const place = this.order.indexOf(row);
      if (place < 0) {
        this.mark();
        return;
      }
      this.from = place - (place % rowsAtATime);
      this.render();
    } else {
      this.mark();
    }
    const element = this.shown.get(row);
    if (element) {
      const top = element.offsetTop - 40;
      if (top < this.box.scrollTop || top + 80 > this.box.scrollTop + this.box.clientHeight) {
        this.box.scrollTop = top - this.box.clientHeight / 3;
      }
    }
  }

  focusCurrent() {
    const row = this.shown.get(this.current);
    if (row) {
      row.focus();
    }
  }

  /** All rows as elements, for the printer. */
  showAll() {
    if (this.rows.isLong) {
      this.body.replaceChildren(...this.order.map((i) => this.rows.row(i)));
    }
  }
}
