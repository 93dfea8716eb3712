# SPDX-License-Identifier: Apache-2.0
"""What the checks of the manual share: the documents, their fenced blocks, headings, links and tables."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def documents(root=ROOT):
    """Every page that a reader meets, in the order of their names."""
    pages = list(root.glob("*.md")) + list(root.glob("docs/**/*.md")) + list(root.glob("Examples/**/*.md"))
    return sorted(set(pages))


class Block:
    """A fenced block: its language, the line of its first content line, its text."""

    def __init__(self, language, line, text):
        self.language, self.line, self.text = language, line, text


def blocks(text):
    """The fenced blocks of a page. An unclosed fence is a fault."""
    found, language, start, content = [], None, 0, []
    for number, line in enumerate(text.splitlines(), 1):
        fence = re.match(r"```(\S*)\s*$", line)
        if fence and language is None:
            language, start, content = fence[1], number + 1, []
        elif fence:
            found.append(Block(language, start, "\n".join(content) + "\n"))
            language = None
        elif language is not None:
            content.append(line)
    if language is not None:
        raise ValueError(f"line {start - 1}: a fence that is not closed")
    return found


def prose(text):
    """(number, line) of the lines outside fenced blocks."""
    inside = False
    for number, line in enumerate(text.splitlines(), 1):
        if re.match(r"```", line):
            inside = not inside
        elif not inside:
            yield number, line


def anchor(heading):
    """The anchor that forges give a heading: lower case, blanks to hyphens, other signs dropped."""
    plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "")
    return re.sub(r"[^\w\- ]", "", plain.lower()).strip().replace(" ", "-")


def anchors(text):
    """All anchors of a page; a heading that repeats gets a number."""
    seen, found = {}, set()
    for _, line in prose(text):
        if match := re.match(r"#{1,6}\s+(.*?)\s*#*$", line):
            name = anchor(match[1])
            count = seen.get(name, 0)
            found.add(name if count == 0 else f"{name}-{count}")
            seen[name] = count + 1
    return found


def links(text):
    """(line, target) of every link and picture; what stands in code is none."""
    for number, line in prose(text):
        bare = re.sub(r"`[^`]*`", "", line)
        for match in re.finditer(r"\]\(([^)\s]+)(?:\s+\"[^\"]*\")?\)", re.sub(r"`[^`]*`", "code", line)):
            yield number, match[1]
        for match in re.finditer(r"<(?:img|a)\b[^>]*?(?:src|href)=\"([^\"]+)\"", bare):
            yield number, match[1]


def rows(text, heading):
    """The rows of the first table under a heading, as lists of cells, without the two lines at its top."""
    level, table, inside = None, [], False
    for _, line in prose(text):
        if match := re.match(r"(#{1,6})\s+(.*)$", line):
            if inside and len(match[1]) <= level:
                break
            if match[2] == heading:
                inside, level = True, len(match[1])
        elif inside and line.startswith("|"):
            table.append([cell.strip() for cell in line.strip("|").split("|")])
        elif inside and table:
            break
    if len(table) < 3:
        raise ValueError(f"no table under \"{heading}\"")
    return table[2:]


def code_words(text):
    """Everything between backticks."""
    return [word for _, line in prose(text) for word in re.findall(r"`([^`]+)`", line)]


def report(faults):
    """Prints the faults and ends the process: 0 for none."""
    for fault in faults:
        print(fault)
    sys.exit(1 if faults else 0)


def name_of(path, root=ROOT):
    return path.relative_to(root).as_posix() if path.is_relative_to(root) else path.name
