# SPDX-License-Identifier: Apache-2.0
"""What the manual says about the code is so: files, functions, entry points, formats, variables.  facts.py"""
import re

from markdown import ROOT, code_words, documents, name_of, prose, report, rows

TOP_FOLDERS = "Src|include|SoftMetal|Platform|Scenes|Examples|Bench|Tests|Tools|docs|cmake"


def page(name):
    return (ROOT / "docs" / name).read_text(encoding="utf-8")


def read(path):
    return (ROOT / path).read_text(encoding="utf-8", errors="replace")


def differences(what, said, there):
    """Faults for what a page leaves out and for what it makes up."""
    return [f"{what}: {name} is missing" for name in sorted(there - said)] + \
           [f"{what}: {name} is not in the code" for name in sorted(said - there)]


def paths(root=ROOT):
    """Every path in backticks that begins with a folder of the repository exists; build outputs are not looked for."""
    found = []
    for document in documents(root):
        for word in code_words(document.read_text(encoding="utf-8")):
            if re.fullmatch(rf"(?:{TOP_FOLDERS})(?:/[\w.+-]+)+/?", word) and \
                    not any((root / folder / word).exists() for folder in ("", "include", "SoftMetal/include")):
                found.append(f"{name_of(document, root)}: {word} does not exist")
    return found


def stops(text, root=ROOT):
    """Each stop of the walk through a draw names a file and a function that begins a line of it."""
    found = []
    table = rows(text, "Follow one glDrawElements")
    if len(table) != 8:
        found.append(f"docs/architecture.md: {len(table)} stops")
    for row in table:
        path, function = row[1].strip("`"), row[2].strip("`")
        if not (root / path).is_file():
            found.append(f"docs/architecture.md: there is no {path}")
        elif not re.search(rf"^[A-Za-z].*\b{re.escape(function)}\(", (root / path).read_text(encoding="utf-8"), re.M):
            found.append(f"docs/architecture.md: {path} does not define {function}")
    return found


def entry_points():
    """The guide lists each exported GL name once, and what it calls missing is missing."""
    text, exported = page("porting.md"), {n for n in read("Tests/package/exports.txt").split() if n.startswith("gl")}
    listed = [w for h in ("What is there", "What is there only to link") for row in rows(text, h)
              for w in re.findall(r"`(gl\w+)`", " ".join(row[1:]))]
    absent = {w for row in rows(text, "What is not there") for w in re.findall(r"`(gl\w+)`", row[0])}
    twice = {w for w in listed if listed.count(w) > 1}
    return differences("docs/porting.md", set(listed), exported) + \
        [f"docs/porting.md: {w} is listed twice" for w in sorted(twice)] + \
        [f"docs/porting.md: {w} is there" for w in sorted(absent & exported)]


def host_calls():
    """Each exported call of the host's interface stands on its page."""
    exported = {n for n in read("Tests/package/exports.txt").split() if n.startswith("ZALMetal")}
    said = set(re.findall(r"\bZALMetal\w+", page("host-api.md")))
    return [f"docs/host-api.md: {name} is missing" for name in sorted(exported - said)]


def formats():
    """The texture formats are the rows of the table that the library reads, with their Metal formats."""
    table = re.findall(r"InternalFormatRow\{(GL_\w+), MTL::PixelFormat(\w+), ", read("Src/InternalFormatTable.h"))
    there = {f"{gl} as {metal}" for gl, metal in table}
    said = {f"{gl} as {row[1].strip('`')}" for row in rows(page("limits.md"), "Texture formats")
            for gl in re.findall(r"`(GL_\w+)`", row[0])}
    return differences("docs/limits.md", said, there)


def limits():
    """The numbers that zalinfo prints stand in the table of the page, under the same names."""
    table = {row[0]: row[1] for row in rows(page("limits.md"), "Numbers")}
    found = []
    for name, number in re.findall(r'Limit\{"([^"]+)", 0, (\d+)\}', read("Tools/zalinfo/zalinfo.cpp")):
        said = next((value for what, value in table.items() if what.startswith(name)), None)
        if said is None or not re.match(rf"{number}\b", said):
            found.append(f"docs/limits.md: {name} is {said}, zalinfo says {number}")
    return found


def tags():
    """A tag of kept behaviour that a page names is a row of the list."""
    known = set(re.findall(r"^\| ([a-z0-9-]+) \|", page("kept-behaviour.md"), re.M))
    return [f"{name_of(d)}: there is no row {word}" for d in documents() if d.name in {"porting.md", "limits.md", "host-api.md", "SECURITY.md"}
            for word in code_words(d.read_text(encoding="utf-8")) if re.fullmatch(r"[a-z0-9]+(?:-[a-z0-9]+)+", word) and word not in known]


def variables():
    """The page lists what the code reads from the environment, and zalinfo prints it."""
    there = set()
    for folder in ("Src", "SoftMetal"):
        for path in (ROOT / folder).rglob("*"):
            if path.suffix in {".cpp", ".h", ".inc"}:
                text = path.read_text(encoding="utf-8", errors="replace")
                there |= set(re.findall(r'"((?:ZALMETAL|SOFTMETAL)_[A-Z0-9_]+)"', text))
                there |= set(re.findall(r'\bgetenv\("(\w+)"\)', text))
    text = page("environment.md")
    said = {w for h in ("The library", "The software device") for row in rows(text, h) for w in re.findall(r"`(\w+)`", row[0])}
    shown = set(re.findall(r'"((?:ZALMETAL|SOFTMETAL)_[A-Z0-9_]+)"', read("Tools/zalinfo/zalinfo.cpp")))
    ours = {name for name in there if re.match("ZALMETAL|SOFTMETAL", name)}
    return differences("docs/environment.md", said, there) + differences("zalinfo", shown, ours)


def commands():
    """./dev COMMAND in running text is a command."""
    known = {w for line in re.findall(r"^    ([a-z|-]+)\)", read("dev"), re.M) for w in line.split("|")}
    return [f"{name_of(d)}:{n}: ./dev {w} is no command" for d in documents() if d.name != "CHANGELOG.md"
            for n, line in prose(d.read_text(encoding="utf-8")) for w in re.findall(r"`\./dev ([a-z-]+)", line) if w not in known]


if __name__ == "__main__":
    report(paths() + stops(page("architecture.md")) + entry_points() + host_calls() + formats() + limits() + tags() + variables() + commands())
