#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""programs.py PROGRAM_CODE OBJDUMP ZALASM SOURCE…: the code that the shader compiler makes of whole programs keeps to the same
operations as the device's own (instructions.py), and calls nothing but the device and functions with exact results. Sources
are in Metal's language (.metal) or in assembly, which ZALASM translates. One that calls fma() has what it asks for: there the
fused operation must be found, which shows that this looks in the right place."""
import collections
import pathlib
import re
import subprocess
import sys
import tempfile

from exact import inexact_calls, inexact_lines

program_code, objdump, zalasm, *sources = sys.argv[1:]
LANES = (8, 16)
LINE = re.compile(r"^\s*([0-9a-f]+):\t")
FUSED = re.compile(r"fmadd|calls fmaf$")  # on machines without the instruction it is a call
OPERAND = re.compile(r"#\s*0x([0-9a-f]+)")


def instructions(binary, entry):
    """The lines from the entry to the constants: those lie behind the code, and the code names the first of them."""
    listing = subprocess.run([objdump, "-D", "-b", "binary", "-m", "i386:x86-64", "--no-show-raw-insn", f"--start-address={entry}", binary],
                             check=True, capture_output=True, text=True).stdout
    kept, constants = [], binary.stat().st_size
    for line in listing.splitlines():
        place = LINE.match(line)
        if not place:
            continue
        if int(place[1], 16) >= constants:
            break
        kept.append(line)
        for operand in OPERAND.findall(line):
            constants = min(constants, int(operand, 16))
    return "\n".join(kept)


def in_metal(source, folder):
    source = pathlib.Path(source)
    if source.suffix == ".metal":
        return source
    made = pathlib.Path(folder) / (source.name + ".metal")
    made.write_text(subprocess.run([zalasm, source], check=True, capture_output=True, text=True).stdout)
    return made


faults, functions, packed = [], 0, 0
asked = collections.defaultdict(bool)  # by source and lanes: whether the fused operation was found
for lanes in LANES:
    with tempfile.TemporaryDirectory() as folder:
        metal = [in_metal(source, folder) for source in sources]
        report = subprocess.run([program_code, str(lanes), folder, *metal], check=True, capture_output=True, text=True).stdout
        for line in report.splitlines():
            words, _, imports = line.rpartition(":")
            binary, entry, rest = words.split(" ", 2)
            source, function = rest.rsplit(" ", 1)
            listing = instructions(pathlib.Path(folder) / binary, int(entry))
            where = f"{pathlib.Path(source).name}, {function}, {lanes} lanes: "
            found = inexact_lines(listing) + inexact_calls(imports.split())
            if re.search(r"\bfma\(", pathlib.Path(source).read_text()):
                asked[source, lanes] |= any(FUSED.search(fault) for fault in found)
                found = [fault for fault in found if not FUSED.search(fault)]
            faults += [where + fault for fault in found]
            if not re.search(r"\bret", listing):
                faults.append(where + "its end was not found")
            functions += 1
            packed += len(re.findall(r"\bv?mulps\b", listing))

faults += [f"{source}, {lanes} lanes: the fused operation was not found" for (source, lanes), found in asked.items() if not found]
if packed < 100:
    faults.append(f"only {packed} packed multiplications: this does not look like shaders")
print("\n".join(faults) if faults else f"{functions} functions, {packed} packed multiplications, none fused, nothing approximate")
sys.exit(1 if faults else 0)
