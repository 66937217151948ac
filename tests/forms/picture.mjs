// picture.mjs PAGE PICTURE: a picture of a page with its first finding chosen.
import path from "node:path";
import {pathToFileURL} from "node:url";
import {chromium} from "playwright-core";

const [page, picture] = process.argv.slice(2).map((name) => path.resolve(name));
const browser = await chromium.launch({executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
                                       args: ["--no-sandbox"]});
const tab = await browser.newPage({viewport: {width: 1200, height: 1180}});
await tab.goto(pathToFileURL(page).href);
await tab.addStyleTag({content: ".body { max-height: 270px !important; }"});
await tab.locator("#body .row").first().click();
await tab.screenshot({path: picture});
await browser.close();
