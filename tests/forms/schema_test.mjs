// schema_test.mjs CONVERTER FOLDER [REPORT...]: checks the forms against schemas: SARIF's published one, our own for the
// others. The reports are one of odd findings, one without any, and those given. FOLDER gets what is written.
import {execFileSync} from "node:child_process";
import {mkdirSync, readFileSync, writeFileSync} from "node:fs";
import {createRequire} from "node:module";
import path from "node:path";
import {fileURLToPath} from "node:url";
import Ajv from "ajv";
import AjvDraft04 from "ajv-draft-04";
import addFormats from "ajv-formats";

const [converter, folder, ...given] = process.argv.slice(2).map((name) => path.resolve(name));
const here = path.dirname(fileURLToPath(import.meta.url));
const require = createRequire(import.meta.url);
const json = (name) => JSON.parse(readFileSync(name, "utf8"));
const sarifSchema = path.join(path.dirname(require.resolve("@microsoft/jest-sarif")), "schemas",
                              "sarif-2.1.0-rtm.5.json");

const oddFindings = () => {
    const texts = ["plain", "<&\"'>", "]]>", "\u001b[31m\u0000", "\u202eabc", "=1+1", "::error::x", "##teamcity[x]|", "a\nb\r\n\tc",
                   "\ud83d\ude00 é", ""];
    const files = ["|?|/src/a b.c", "/usr/include/x.h", "C:\\p\\s.c", "\\\\host\\share\\a.c", "", "a%#?.c", "x:y.c"];
    return texts.flatMap((text, index) => files.map((file, place) => JSON.stringify({
        falseAlarm: false, level: (index + place) % 5, code: ["V501", "External", "V008", "odd", "V2567"][index % 5],
        message: index % 5 === 1 ? `[rule${place}] ${text}` : `m${text}`,
        positions: place === 4 ? [] : [{file, line: index}, {file: "|?|/src/b.c", line: 0}].slice(0, 1 + place % 2),
        cwe: index, sastId: index % 2 ? `MISRA-C-8.${place}` : "", prevLine: text, currLine: text, nextLine: text,
    })));
};

mkdirSync(folder, {recursive: true});
writeFileSync(path.join(folder, "odd.log"), oddFindings().join("\n") + "\n");
writeFileSync(path.join(folder, "empty.log"), "");
writeFileSync(path.join(folder, "base.json"), '{"version": 2, "warnings": []}');
const sarif = addFormats(new AjvDraft04({strict: false, allErrors: true, unicodeRegExp: false}))
    .compile(json(sarifSchema));
const others = addFormats(new Ajv({allErrors: true}));
const checks = {
    sarif,
    "gitlab.json": others.compile(json(path.join(here, "gitlab.schema.json"))),
    "sonarqube.json": others.compile(json(path.join(here, "sonarqube.schema.json"))),
};
let faults = 0;
for (const report of [path.join(folder, "odd.log"), path.join(folder, "empty.log"), ...given]) {
    const types = ["sarif", "gitlab", "sonarqube", "junit", "csv"].flatMap((type) => ["-t", type]);
    const extra = report.endsWith("odd.log") ? ["-s", "base.json", "--keep-suppressed", "-r", "."] : [];
    execFileSync(converter, [report, ...types, ...extra, "-o", "."], {cwd: folder});
    const stem = path.join(folder, path.parse(report).name);
    for (const [suffix, check] of Object.entries(checks)) {
        if (!check(json(`${stem}.${suffix}`))) {
            faults += 1;
            console.error(`${stem}.${suffix}:`, check.errors.slice(0, 5));
        }
    }
    execFileSync("xmllint", ["--noout", "--schema", path.join(here, "junit.xsd"), `${stem}.junit.xml`],
                 {stdio: ["ignore", "ignore", "inherit"]});
    const rows = execFileSync("python3", ["-c", "import csv,sys; print(len({len(r) for r in csv.reader(open(sys.argv[1], " +
        "newline='', encoding='utf-8'), strict=True)}))", `${stem}.csv`], {encoding: "utf8"});
    if (rows.trim() !== "1") {
        faults += 1;
        console.error(`${stem}.csv: rows of ${rows.trim()} lengths`);
    }
}
process.exit(faults > 0 ? 1 : 0);
