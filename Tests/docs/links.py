# SPDX-License-Identifier: Apache-2.0
"""Relative links and anchors of all pages lead somewhere; the network is not asked.  links.py [FOLDER]"""
import pathlib
import re
import sys
import urllib.parse

from markdown import ROOT, anchors, documents, links, name_of, report


def faults(root=ROOT):
    found = []
    for page in documents(root):
        text = page.read_text(encoding="utf-8")
        for line, target in links(text):
            if re.match(r"[a-z][a-z0-9+.-]*:", target):
                continue
            path, _, fragment = urllib.parse.unquote(target).partition("#")
            place = (page.parent / path).resolve() if path else page
            where = f"{name_of(page, root)}:{line}"
            if path.startswith("/") or not place.is_relative_to(root.resolve()):
                found.append(f"{where}: {target} leads out of the repository")
            elif not place.exists():
                found.append(f"{where}: {target} does not exist")
            elif fragment and place.suffix == ".md" and fragment not in anchors(place.read_text(encoding="utf-8")):
                found.append(f"{where}: {target} names a heading that is not there")
    return found


if __name__ == "__main__":
    report(faults(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT))
