# The work of line_core: one unit, its dependencies, or a stage of an analysis across units.
function absolute(path) { return path ~ /^\// ? path : ENVIRON["PWD"] "/" path }

function finding(path, number, text) {
    printf "{\"falseAlarm\":false,\"level\":1,\"code\":\"V501\",\"message\":\"%s\"," \
        "\"positions\":[{\"file\":\"%s\",\"line\":%d}]}\n", text, path, number > value["output-file"]
}

BEGIN {
    while ((getline line < settings) > 0) {
        split_at = index(line, "=")
        value[substr(line, 1, split_at - 1)] = substr(line, split_at + 1)
    }
    stage = value["intermodular"]
    if (stage == "merge-info") {
        count = 0
        while ((getline unit < value["intermodular-unit-list"]) > 0)
            while ((getline line < unit) > 0)
                count += line
        print count > value["intermodular-file"]
        exit
    }
    if (task == "") printf "" > value["output-file"]
    while ((getline line < value["i-file"]) > 0) {
        if (line ~ /^# [0-9]+ "/) {
            split(line, words, " ")
            number = words[2] - 1
            path = line
            gsub(/^[^"]*"|"[^"]*$/, "", path)
            if (path !~ /^</ && path !~ /\/\/$/ && !(path in seen)) {
                seen[path] = 1
                if (task != "") print "<}include{>" absolute(path)
            }
            continue
        }
        number++
        if (match(line, /finding_[a-z0-9_]+/)) {
            found++
            if (task == "") finding(absolute(path), number, substr(line, RSTART, RLENGTH))
        }
    }
    if (stage == "first-run" && task == "") print found + 0 > value["intermodular-unit-file"]
    if (stage == "second-run" && task == "") {
        getline count < value["intermodular-file"]
        finding(absolute(value["source-file"]), 1, "one of " count)
    }
}
