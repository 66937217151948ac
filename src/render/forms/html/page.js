"use strict";
// The page of findings. Texts of the report come into it as text nodes only, never as markup.
(() => {
    const read = (id) => JSON.parse(document.getElementById(id).textContent);
    // A row: level, rule, file, line, text, CWE, standard, further places [file, line]..., lines around when there is
    // no source. Rules, files and groups are numbers of the shared lists.
    const [LEVEL, RULE, FILE, LINE, TEXT, CWE, STANDARD, PLACES, LINES] = [0, 1, 2, 3, 4, 5, 6, 7, 8];
    const rows = read("rows");
    const shared = read("shared");
    const LEVELS = ["high", "medium", "low", "none"];
    const ROW_HEIGHT = 30;
    const LONGEST_CHART = 8;
    const MOST_PRINTED = 5000;
    const rule = (row) => shared.rules[row[RULE]];
    const byId = (id) => document.getElementById(id);

    const element = (name, attributes = {}, ...children) => {
        const made = document.createElement(name);
        for (const [key, value] of Object.entries(attributes)) {
            made.setAttribute(key, value);
        }
        made.append(...children);
        return made;
    };

    // What the address keeps.
    const state = {text: "", hidden: new Set(), group: "", rule: "", file: "", cwe: "", sort: "level", down: false,
                   chosen: -1};
    const CHOICES = ["group", "rule", "file", "cwe"];
    const keyOf = {
        group: (row) => rule(row).group,
        rule: (row) => rule(row).id,
        file: (row) => shared.files[row[FILE]],
        cwe: (row) => (row[CWE] ? `CWE-${row[CWE]}` : ""),
    };
    const COLUMNS = [
        {key: "level", title: "Level", value: (row) => row[LEVEL]},
        {key: "rule", title: "Rule", value: keyOf.rule},
        {key: "file", title: "Place", value: keyOf.file},
        {key: "text", title: "Finding", value: (row) => row[TEXT]},
        {key: "cwe", title: "CWE", value: (row) => row[CWE]},
    ];

    let shown = []; // numbers of rows, in the order of the table
    let haystacks = null; // what is searched, one for each row; made at the first search

    const searched = (number) => {
        haystacks ??= rows.map((row) => `${row[TEXT]}\n${keyOf.file(row)}\n${keyOf.rule(row)}`.toLowerCase());
        return haystacks[number];
    };

    const matches = (row, number, words) =>
        !state.hidden.has(row[LEVEL]) && CHOICES.every((name) => !state[name] || keyOf[name](row) === state[name]) &&
        words.every((word) => searched(number).includes(word));

    const select = () => {
        const words = state.text.toLowerCase().split(/\s+/).filter(Boolean);
        shown = [];
        rows.forEach((row, number) => {
            if (matches(row, number, words)) {
                shown.push(number);
            }
        });
        const value = COLUMNS.find((column) => column.key === state.sort).value;
        const keys = new Map(shown.map((number) => [number, value(rows[number])]));
        const turn = state.down ? -1 : 1;
        shown.sort((one, other) => {
            const [left, right] = [keys.get(one), keys.get(other)];
            return (left < right ? -turn : left > right ? turn : 0) ||
                (state.sort === "file" && rows[one][LINE] - rows[other][LINE]) || one - other;
        });
    };

    const tally = (name) => {
        const counts = new Map();
        for (const row of rows) {
            const key = keyOf[name](row);
            if (key) {
                counts.set(key, (counts.get(key) ?? 0) + 1);
            }
        }
        return [...counts].sort((one, other) => other[1] - one[1] || (one[0] < other[0] ? -1 : 1));
    };

    const makeCharts = () => {
        const titles = {group: "Groups", rule: "Rules", file: "Files", cwe: "Weaknesses"};
        for (const [name, title] of Object.entries(titles)) {
            const counts = tally(name);
            if (counts.length === 0) {
                continue;
            }
            const list = element("ol");
            for (const [key, count] of counts.slice(0, LONGEST_CHART)) {
                const bar = element("button", {type: "button", title: key, "data-name": name, "data-key": key},
                                    element("span", {class: "name"}, key), element("span", {}, String(count)));
                bar.style.setProperty("--share", `${100 * count / counts[0][1]}%`);
                bar.addEventListener("click", () => change({[name]: state[name] === key ? "" : key}));
                list.append(element("li", {}, bar));
            }
            const more = counts.length - LONGEST_CHART;
            const section = element("section", {}, element("h2", {}, title), list);
            if (more > 0) {
                section.append(element("span", {class: "quiet"}, `and ${more} more`));
            }
            byId("charts").append(section);
        }
    };

    const makeLevels = () => {
        LEVELS.forEach((word, level) => {
            const count = rows.reduce((sum, row) => sum + (row[LEVEL] === level ? 1 : 0), 0);
            if (count === 0 && level === 3) {
                return;
            }
            const button = element("button", {type: "button", class: `level-${level}`, "data-level": level},
                                   element("b", {}, String(count)), word);
            button.addEventListener("click", () => {
                const hidden = new Set(state.hidden);
                if (!hidden.delete(level)) {
                    hidden.add(level);
                }
                change({hidden});
            });
            byId("levels").append(button);
        });
    };

    const makeHead = () => {
        for (const column of COLUMNS) {
            const button = element("button", {type: "button", tabindex: "0"}, column.title);
            button.addEventListener("click", () =>
                change({sort: column.key, down: state.sort === column.key && !state.down}));
            byId("head").append(element("div", {role: "columnheader", "data-key": column.key}, button));
        }
    };

    const makeRow = (number, place) => {
        const row = rows[number];
        const made = element("div", {
            class: "row", role: "row", "aria-rowindex": place + 2, "aria-selected": number === state.chosen,
            "data-number": number,
        });
        const cells = [LEVELS[row[LEVEL]], keyOf.rule(row), `${keyOf.file(row)}:${row[LINE]}`, row[TEXT],
                       keyOf.cwe(row)];
        cells.forEach((text, index) => made.append(element("div", {
            role: "gridcell", class: index === 0 ? `cell word-${row[LEVEL]}` : "cell", title: text,
        }, text)));
        made.style.top = `${place * ROW_HEIGHT}px`;
        return made;
    };

    // Only the rows that can be seen are in the page; a space as high as all of them keeps the scroll bar true.
    const drawRows = (all = false) => {
        const body = byId("body");
        const above = 10;
        const first = all ? 0 : Math.max(0, Math.floor(body.scrollTop / ROW_HEIGHT) - above);
        const last = all ? Math.min(shown.length, MOST_PRINTED)
                         : Math.min(shown.length, first + Math.ceil(body.clientHeight / ROW_HEIGHT) + 2 * above);
        const space = element("div", {id: "space", role: "presentation"});
        space.style.height = `${shown.length * ROW_HEIGHT}px`;
        body.replaceChildren(space);
        for (let place = first; place < last; ++place) {
            body.append(makeRow(shown[place], place));
        }
    };

    const drawControls = () => {
        for (const button of document.querySelectorAll("[data-level]")) {
            button.setAttribute("aria-pressed", String(!state.hidden.has(Number(button.dataset.level))));
        }
        for (const bar of document.querySelectorAll("[data-name]")) {
            bar.setAttribute("aria-pressed", String(state[bar.dataset.name] === bar.dataset.key));
        }
        for (const head of document.querySelectorAll("[role=columnheader]")) {
            const order = head.dataset.key !== state.sort ? "none" : state.down ? "descending" : "ascending";
            head.setAttribute("aria-sort", order);
            const mark = order === "none" ? "" : state.down ? " ▾" : " ▴";
            const title = COLUMNS.find((column) => column.key === head.dataset.key).title;
            head.firstChild.textContent = title + mark;
        }
        byId("count").textContent = shown.length === rows.length ? `${rows.length} findings`
                                                                 : `${shown.length} of ${rows.length} findings`;
        byId("table").setAttribute("aria-rowcount", shown.length + 1);
        if (document.activeElement !== byId("search")) {
            byId("search").value = state.text;
        }
    };

    const linesAround = (file, line, row, isFirst) => {
        for (const [start, ...lines] of shared.sources[file] ?? []) {
            if (line >= start && line < start + lines.length) {
                return [start, lines];
            }
        }
        const known = isFirst ? row[LINES] : null;
        return known ? [line - 1, known] : null;
    };

    const drawPlace = (target, file, line, row, isFirst) => {
        target.append(element("div", {class: "place"}, `${shared.files[file]}:${line}`));
        const found = linesAround(file, line, row, isFirst);
        if (!found) {
            return;
        }
        const [start, lines] = found;
        const source = element("pre", {tabindex: "0", "aria-label": "Source"});
        const AROUND = 5;
        lines.forEach((text, index) => {
            const number = start + index;
            if (Math.abs(number - line) <= AROUND && number > 0) {
                source.append(element("div", number === line ? {class: "here"} : {},
                                      element("span", {class: "number"}, String(number)), text));
            }
        });
        target.append(source);
    };

    const drawDetail = () => {
        const detail = byId("detail");
        const row = rows[state.chosen];
        detail.hidden = !row;
        detail.replaceChildren();
        if (!row) {
            return;
        }
        detail.append(element("h2", {}, `${rule(row).id}: ${LEVELS[row[LEVEL]]}`), element("p", {}, row[TEXT]));
        const links = element("div", {});
        if (rule(row).help) {
            links.append(element("a", {href: rule(row).help, rel: "noreferrer"}, `About ${rule(row).id}`), " ");
        }
        if (row[CWE]) {
            links.append(element("a", {href: `https://cwe.mitre.org/data/definitions/${row[CWE]}.html`,
                                       rel: "noreferrer"}, keyOf.cwe(row)), " ");
        }
        links.append([rule(row).group, row[STANDARD]].filter(Boolean).join(", "));
        detail.append(links);
        drawPlace(detail, row[FILE], row[LINE], row, true);
        for (const [file, line] of row[PLACES]) {
            drawPlace(detail, file, line, row, false);
        }
    };

    const toAddress = () => {
        const parts = new URLSearchParams();
        for (const name of ["text", ...CHOICES]) {
            if (state[name]) {
                parts.set(name, state[name]);
            }
        }
        if (state.hidden.size > 0) {
            parts.set("without", [...state.hidden].map((level) => LEVELS[level]).join(","));
        }
        if (state.sort !== "level" || state.down) {
            parts.set("sort", (state.down ? "-" : "") + state.sort);
        }
        if (state.chosen >= 0) {
            parts.set("finding", state.chosen + 1);
        }
        history.replaceState(null, "", `#${parts}`);
    };

    const fromAddress = () => {
        const parts = new URLSearchParams(location.hash.slice(1));
        for (const name of ["text", ...CHOICES]) {
            state[name] = parts.get(name) ?? "";
        }
        state.hidden = new Set((parts.get("without") ?? "").split(",").map((word) => LEVELS.indexOf(word))
            .filter((level) => level >= 0));
        const sort = parts.get("sort") ?? "level";
        state.down = sort.startsWith("-");
        const key = sort.replace(/^-/, "");
        state.sort = COLUMNS.some((column) => column.key === key) ? key : "level";
        state.chosen = Number(parts.get("finding") ?? 0) - 1;
    };

    const draw = () => {
        select();
        drawControls();
        drawRows();
        drawDetail();
    };

    const change = (changes) => {
        Object.assign(state, changes);
        byId("body").scrollTop = 0;
        draw();
        toAddress();
    };

    const choose = (number, moveFocus = false) => {
        state.chosen = number;
        const place = shown.indexOf(number);
        const body = byId("body");
        const top = place * ROW_HEIGHT;
        if (place >= 0 && (top < body.scrollTop || top + ROW_HEIGHT > body.scrollTop + body.clientHeight)) {
            body.scrollTop = top - body.clientHeight / 2;
        }
        drawRows();
        drawDetail();
        toAddress();
        if (moveFocus) {
            byId("detail").focus();
        }
    };

    const step = (by) => {
        const place = shown.indexOf(state.chosen);
        const next = Math.max(0, Math.min(shown.length - 1, place < 0 ? 0 : place + by));
        if (shown.length > 0) {
            choose(shown[next]);
        }
    };

    const STEPS = {ArrowDown: 1, ArrowUp: -1, PageDown: 15, PageUp: -15, Home: -1e9, End: 1e9};

    const listen = () => {
        const body = byId("body");
        body.addEventListener("scroll", () => requestAnimationFrame(() => drawRows()));
        body.addEventListener("click", (event) => {
            const row = event.target.closest("[data-number]");
            if (row) {
                choose(Number(row.dataset.number));
            }
        });
        body.addEventListener("keydown", (event) => {
            if (STEPS[event.key]) {
                event.preventDefault();
                step(STEPS[event.key]);
            } else if (event.key === "Enter" && state.chosen >= 0) {
                choose(state.chosen, true);
            }
        });
        byId("search").addEventListener("input", (event) => change({text: event.target.value}));
        byId("clear").addEventListener("click", () =>
            change({text: "", hidden: new Set(), group: "", rule: "", file: "", cwe: ""}));
        byId("theme").addEventListener("click", () => setTheme(isDark() ? "light" : "dark"));
        document.addEventListener("keydown", (event) => {
            if (event.key === "/" && document.activeElement !== byId("search")) {
                event.preventDefault();
                byId("search").focus();
            } else if (event.key === "Escape") {
                byId("body").focus();
            }
        });
        addEventListener("resize", () => drawRows());
        addEventListener("beforeprint", () => drawRows(true));
        addEventListener("afterprint", () => drawRows());
        addEventListener("hashchange", () => {
            fromAddress();
            draw();
        });
    };

    const isDark = () => (document.documentElement.dataset.theme ??
        (matchMedia("(prefers-color-scheme: dark)").matches ? "dark" : "light")) === "dark";

    const setTheme = (theme) => {
        if (theme) {
            document.documentElement.dataset.theme = theme;
        }
        byId("theme").textContent = isDark() ? "Light" : "Dark";
    };

    byId("about").textContent = shared.about;
    makeLevels();
    makeCharts();
    makeHead();
    listen();
    setTheme(null);
    fromAddress();
    draw();
    if (state.chosen >= 0) {
        choose(state.chosen);
    }
})();
