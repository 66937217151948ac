#!/usr/bin/env python3
"""check_links [REPOSITORY]: every relative link of a page leads to a file, and to a heading where it names one."""
import os
import re

import repository

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"#{1,6}\s+(.*)")


def anchors(folder, name):
    """The headings of a page as links name them."""
    found = set()
    for _, line in repository.lines(folder, name):
        match = HEADING.match(line)
        if match:
            text = re.sub(r"[^\w\- ]", "", match[1].replace("`", "").lower())
            found.add(text.strip().replace(" ", "-"))
    return found


def judge(folder, name, link):
    target, _, anchor = link.partition("#")
    path = os.path.normpath(os.path.join(os.path.dirname(name), target)) if target else name
    if not os.path.exists(os.path.join(folder, path)):
        return f"leads to {path}, which does not exist"
    if anchor and anchor not in anchors(folder, path):
        return f"leads to the heading #{anchor}, which {path} does not have"
    return None


folder = repository.root()
faults = []
for name in repository.files(folder, ".md"):
    for number, line in repository.lines(folder, name):
        for link in LINK.findall(line):
            fault = None if re.match(r"[a-z]+:", link) else judge(folder, name, link)
            if fault:
                faults.append(f"{name}:{number}: {fault}")
repository.finish(faults)
