// terminal.mjs PICTURE <TEXT: a picture of what a terminal shows, in its colours.
import {readFileSync} from "node:fs";
import path from "node:path";
import {chromium} from "playwright-core";

const colours = {31: "#ff7b72", 33: "#e3b341", 36: "#56d4dd"}; // those that the program uses
const escaped = (text) => text.replace(/[&<>]/g, (sign) => ({"&": "&amp;", "<": "&lt;", ">": "&gt;"}[sign]));

let style = "";
const spans = readFileSync(0, "utf8").split(/(\u001b\[\d+m)/).map((piece) => {
    const code = /^\u001b\[(\d+)m$/.exec(piece)?.[1];
    if (code === undefined) {
        return `<span style="${style}">${escaped(piece)}</span>`;
    }
    style = code === "0" ? "" : style + (code === "1" ? "font-weight:bold;" : `color:${colours[code]};`);
    return "";
});
const browser = await chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
                                       args: ["--no-sandbox"]});
const tab = await browser.newPage();
await tab.setContent(`<pre style="margin:0; padding:16px; width:100ch; white-space:pre-wrap; word-break:break-all;
    color:#e6edf3; background:#0d1117; font:14px/1.4 monospace; display:inline-block">${spans.join("")}</pre>`);
await tab.locator("pre").screenshot({path: path.resolve(process.argv[2])});
await browser.close();
