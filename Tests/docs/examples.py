# SPDX-License-Identifier: Apache-2.0
"""The examples of one page do what a reader would do with them: C and C++ are compiled, assembly programs and Metal
source are loaded, commands of ./dev exist, YAML is read.

  examples.py PAGE.md --cc C --cxx C++ --include FOLDER... [--loader PROGRAM]

A block with an #include is a whole file. Of any other C or C++ block the functions at its top stand for themselves and the
rest in a function, with the names of Names.h."""
import argparse
import pathlib
import re
import subprocess
import tempfile

from markdown import ROOT, blocks, name_of, report

HERE = pathlib.Path(__file__).resolve().parent
COMPILED = {"c": "c", "cpp": "cpp"}
LOADED = {"vp", "fp", "metal"}
SHOWN = {"text", "cmake", "make"}  # nothing to check them with
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror", "-Wno-unused-variable", "-Wno-unused-parameter",
            "-Wno-unused-but-set-variable", "-Wno-unused-function"]


def split(lines):
    """The number of lines at the top that define functions: their braces stand alone at the left."""
    opened = [i for i, line in enumerate(lines) if line == "{"]
    return next((i + 1 for i in range(opened[-1], len(lines)) if lines[i] == "}"), 0) if opened else 0


def source_of(block, page):
    """The file that the compiler sees; its messages name the page's lines."""
    lines = block.text.splitlines()
    top = len(lines) if "#include" in block.text else split(lines)
    functions = f'#line {block.line} "{page}"\n' + "\n".join(lines[:top]) + "\n"
    if "#include" in block.text:
        return functions
    body = f'#line {block.line + top} "{page}"\n' + "\n".join(lines[top:]) + "\n"
    return f'#include "Names.h"\n{functions}int example(void);\nint example(void)\n{{\n{body}    return 0;\n}}\n'


def compile_one(block, page, options, folder):
    compiler = [options.cc, "-std=c99"] if block.language == "c" else [options.cxx, "-std=c++20"]
    file = folder / f"example.{COMPILED[block.language]}"
    file.write_text(source_of(block, page), encoding="utf-8")
    includes = [f"-I{path}" for path in [HERE, *options.include]]
    done = subprocess.run([*compiler, "-fsyntax-only", *WARNINGS, *includes, str(file)], capture_output=True, text=True)
    return [done.stderr.rstrip()] if done.returncode != 0 else []


def load_one(block, page, options, folder):
    if not options.loader:
        return []
    file = folder / f"example.{block.language}"
    file.write_text(block.text, encoding="utf-8")
    stage = "vertex" if block.language == "vp" or re.search(r"^vertex ", block.text, re.M) else "fragment"
    form = "metal" if block.language == "metal" else "assembly"
    done = subprocess.run([options.loader, form, stage, str(file)], capture_output=True, text=True)
    return [f"{page}:{block.line}: {done.stderr.rstrip()}"] if done.returncode != 0 else []


def shell_faults(block, page):
    commands = set(re.findall(r"^    ([a-z|-]+)\)", (ROOT / "dev").read_text(encoding="utf-8"), re.M))
    known = {word for alternatives in commands for word in alternatives.split("|")}
    used = re.findall(r"\./dev ([a-z-]+)", block.text)
    faults = [f"{page}:{block.line}: ./dev {word} is no command" for word in used if word not in known]
    done = subprocess.run(["bash", "-n"], input=block.text, capture_output=True, text=True)
    return faults + ([f"{page}:{block.line}: {done.stderr.rstrip()}"] if done.returncode != 0 else [])


def yaml_faults(block, page):
    try:
        import yaml
    except ImportError:
        return []  # a machine without python3-yaml
    try:
        yaml.safe_load(block.text)
    except yaml.YAMLError as error:
        return [f"{page}:{block.line}: {error}"]
    return []


def faults(page, options):
    name, found = name_of(page), []
    with tempfile.TemporaryDirectory() as folder:
        for block in blocks(page.read_text(encoding="utf-8")):
            if block.language in COMPILED:
                found += compile_one(block, name, options, pathlib.Path(folder))
            elif block.language in LOADED:
                found += load_one(block, name, options, pathlib.Path(folder))
            elif block.language == "sh":
                found += shell_faults(block, name)
            elif block.language == "yaml":
                found += yaml_faults(block, name)
            elif block.language not in SHOWN:
                found.append(f"{name}:{block.line - 1}: a block of no language that is checked (\"{block.language}\")")
    return found


def arguments(words=None):
    parser = argparse.ArgumentParser()
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("--cc", default="cc")
    parser.add_argument("--cxx", default="c++")
    parser.add_argument("--include", action="append", default=[])
    parser.add_argument("--loader")
    return parser.parse_args(words)


if __name__ == "__main__":
    given = arguments()
    report(faults(given.page.resolve(), given))
