// page_test.mjs CONVERTER FOLDER: opens the page of findings in a browser and does what its readers do. FOLDER gets the
// pages and pictures of them. Fails with a list of what went wrong.
import {execFileSync} from "node:child_process";
import {mkdirSync, readFileSync, writeFileSync} from "node:fs";
import {createRequire} from "node:module";
import path from "node:path";
import {pathToFileURL} from "node:url";
import {chromium} from "playwright-core";

const [converter, folder] = process.argv.slice(2).map((name) => path.resolve(name));
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const MANY = 50000;
const faults = [];

const expect = (condition, text) => {
    if (!condition) {
        faults.push(text);
    }
};

const finding = (number, changes = {}) => JSON.stringify({
    falseAlarm: false, level: number % 3 + 1, code: ["V501", "V112", "V2567"][number % 3],
    message: `Finding ${number} of 'value'.`,
    positions: [{file: `|?|/src/file${number % 500}.c`, line: number % 40 + 1}], cwe: number % 2 ? 570 : 0, sastId: "",
    prevLine: "", currLine: `line ${number}`, nextLine: "", ...changes,
});

const convert = (name, findings) => {
    writeFileSync(path.join(folder, `${name}.log`), findings.join("\n") + "\n");
    execFileSync(converter, [`${name}.log`, "-t", "html", "-o", `${name}.html`, "-r", "."], {cwd: folder});
    return pathToFileURL(path.join(folder, `${name}.html`)).href;
};

mkdirSync(path.join(folder, "src"), {recursive: true});
writeFileSync(path.join(folder, "src", "odd.c"), "int f(int a) {\n    </script><b>\n    return a == a;\n}\n");
const smallPage = convert("small", [
    finding(0, {code: "V501", level: 1, message: "<img src=x onerror=alert(1)> </script>",
                positions: [{file: "|?|/src/odd.c", line: 3}, {file: "/usr/include/x.h", line: 7}]}),
    finding(1, {positions: [{file: "|?|/src/b.c", line: 2}]}),
    finding(2, {code: "External", message: "[zerodiv] Division by zero.", level: 2}),
]);
const largePage = convert("large", Array.from({length: MANY}, (_, number) => finding(number)));

const browser = await chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
                                       args: ["--no-sandbox"]});
const open = async (address, options = {}) => {
    const page = await browser.newPage({viewport: {width: 1400, height: 1100}, ...options});
    page.on("console", (message) => expect(message.type() !== "error", `console: ${message.text()}`));
    page.on("pageerror", (error) => faults.push(`error in the page: ${error.message}`));
    page.on("request", (request) => expect(request.url().startsWith("file:"), `asks for ${request.url()}`));
    page.on("dialog", (dialog) => faults.push(`a text of the report became a script: ${dialog.message()}`));
    await page.goto(address);
    return page;
};
const rowsOf = (page) => page.locator("#body .row").count();
const firstRow = (page) => page.locator('#body .row[aria-rowindex="2"]').innerText();
const countOf = (page) => page.locator("#count").innerText();

const readSmall = async () => {
    const page = await open(smallPage);
    expect(await rowsOf(page) === 3, "the small page has three rows");
    expect((await firstRow(page)).includes("<img src=x"), "markup of a finding is shown as text");
    await page.locator("#body .row").first().click();
    const detail = page.locator("#detail");
    expect((await detail.innerText()).includes("return a == a;"), "a finding is shown in its source");
    expect((await detail.innerText()).includes("</script><b>"), "the line above is shown");
    expect((await detail.innerText()).includes("/usr/include/x.h:7"), "further places are shown");
    expect(await detail.locator("a").first().getAttribute("href") ===
        "https://docs.orvanta.example/en/docs/warnings/v501/", "the rule's page is linked");
    expect(page.url().includes("finding=1"), "the address keeps the chosen finding");
    await page.screenshot({path: path.join(folder, "light.png")});

    await page.locator("#theme").click();
    const ground = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    expect(ground === "rgb(15, 19, 24)", `dark mode is dark, not ${ground}`);
    await page.screenshot({path: path.join(folder, "dark.png")});

    for (const theme of ["dark", "light"]) {
        await page.evaluate((name) => { document.documentElement.dataset.theme = name; }, theme);
        await page.evaluate(axe);
        const {violations} = await page.evaluate(() => globalThis.axe.run());
        for (const violation of violations) {
            faults.push(`${theme}: ${violation.id}: ${violation.help}: ` +
                violation.nodes.map((node) => node.html.slice(0, 120)).join(" | "));
        }
    }

    const again = await open(page.url());
    expect((await again.locator("#detail").innerText()).includes("return a == a;"), "the address opens the finding");
    await again.emulateMedia({colorScheme: "dark"});
    expect(await again.evaluate(() => getComputedStyle(document.body).backgroundColor) === "rgb(15, 19, 24)",
           "the browser's dark setting is followed");
};

const readLarge = async () => {
    const page = await open("about:blank");
    await page.goto(largePage);
    // The script draws the table before the page counts as loaded.
    const shownAfter = await page.evaluate(() => performance.getEntriesByType("navigation")[0].domContentLoadedEventEnd);
    expect(await rowsOf(page) > 5 && await rowsOf(page) < 200, "only the rows that can be seen are in the page");
    console.log(`${MANY} rows: first shown after ${Math.round(shownAfter)} ms`);
    expect(shownAfter < 1000, `${MANY} rows are shown after ${shownAfter} ms`);

    await page.locator("#search").fill("value");
    const tookFirst = await page.evaluate(() => {
        const search = document.getElementById("search");
        const begin = performance.now();
        search.value = "finding 4999";
        search.dispatchEvent(new Event("input"));
        return performance.now() - begin;
    });
    console.log(`filtered in ${Math.round(tookFirst)} ms`);
    expect(tookFirst < 100, `filtering takes ${tookFirst} ms`);
    expect(await countOf(page) === "15 of 50000 findings", `the search finds "${await countOf(page)}"`);

    await page.locator("#clear").click();
    expect(await countOf(page) === "50000 findings", "filters are cleared");
    await page.locator('[data-level="0"]').click();
    expect(await countOf(page) === "33333 of 50000 findings", `a level is hidden: ${await countOf(page)}`);
    await page.locator('[role=columnheader][data-key="file"] button').click();
    expect((await firstRow(page)).includes("src/file0.c:1"), `sorted by place: ${await firstRow(page)}`);
    await page.locator('[role=columnheader][data-key="file"] button').click();
    expect((await firstRow(page)).includes("src/file99.c:"), `sorted backwards: ${await firstRow(page)}`);
    await page.locator('[data-name="rule"]').first().click();
    expect(page.url().includes("rule=") && page.url().includes("sort=-file") && page.url().includes("without=high"),
           `the address keeps filters and order: ${page.url()}`);
    await page.locator("#body").focus();
    await page.keyboard.press("ArrowDown");
    await page.keyboard.press("End");
    expect(await page.locator('#body .row[aria-selected="true"]').count() === 1, "keys choose a finding");
    await page.keyboard.press("Enter");
    expect(await page.evaluate(() => document.activeElement.id) === "detail", "Enter goes to the source");
    await page.keyboard.press("/");
    expect(await page.evaluate(() => document.activeElement.id) === "search", "/ searches");
    await page.screenshot({path: path.join(folder, "large.png")});
};

await readSmall();
await readLarge();
await browser.close();
for (const fault of faults) {
    console.error(fault);
}
process.exit(faults.length > 0 ? 1 : 0);
