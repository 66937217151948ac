// integrations_test.mjs REPOSITORY: what we give to build servers, and the samples of docs/ci.md and docs/scale.md, are
// of the types that the published schemas of these files have.
import {execFileSync} from "node:child_process";
import {readFileSync, writeFileSync} from "node:fs";
import path from "node:path";
import {load} from "js-yaml";

const repository = path.resolve(process.argv[2]);
const read = (name) => readFileSync(path.join(repository, name), "utf8");
// A sample is known by a word that it holds.
const samples = ["docs/ci.md", "docs/scale.md"].flatMap((page) =>
    [...read(page).matchAll(/```yaml\n([\s\S]*?)```/g)].map(([, text]) => text));
const sample = (word) => load(samples.find((text) => text.includes(word)));

// The type of a whole file for GitLab takes each member for a job, that of an inclusion too.
const {include, ...jobs} = sample(".orvanta\n");
const {include: includeShards, ...shardJobs} = sample(".orvanta-shard");
const rows = [
    ["github-action", "HttpsJsonSchemastoreOrgGithubActionJson", load(read("integrations/github/action.yml"))],
    ["github-workflow", "HttpsJsonSchemastoreOrgGithubWorkflowJson", {on: "push", ...sample("runs-on:")}],
    ["github-workflow", "HttpsJsonSchemastoreOrgGithubWorkflowJson", load(read("integrations/github/shards.yml"))],
    ["gitlab-ci", "GitlabCIConfiguration", load(read("integrations/gitlab/orvanta.yml"))],
    ["gitlab-ci", "GitlabCIConfiguration", load(read("integrations/gitlab/shards.yml"))],
    ["gitlab-ci", "GitlabCIConfiguration", jobs],
    ["gitlab-ci", "GitlabCIConfiguration", shardJobs],
    ["gitlab-ci", "IncludeItem", include],
    ["gitlab-ci", "IncludeItem", includeShards],
    ["pre-commit-hooks", "HttpsJsonSchemastoreOrgPreCommitHooksJson", load(read(".pre-commit-hooks.yaml"))],
];
writeFileSync("integrations.ts", rows.map(([schema, type, value], row) =>
    `import type {${type} as Type${row}} from "@schemastore/${schema}";\n` +
    `export const value${row}: Type${row} = ${JSON.stringify(value, null, 4)};\n`).join(""));
// The published types are not our concern, only what we say in them.
execFileSync("node_modules/.bin/tsc", ["--noEmit", "--strict", "--skipLibCheck", "integrations.ts"], {stdio: "inherit"});
