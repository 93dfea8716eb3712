#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""instructions.py LIBRARY OBJDUMP NM: a picture has the same bits on every machine only if the device's own code keeps to
operations that IEEE 754 defines to the last bit. So its rasteriser, its samplers and its conversions hold no approximate
reciprocal, nothing that multiplies and adds in one rounding, and no call of the mathematical library but of functions whose
result is exact."""
import re
import subprocess
import sys

from exact import inexact_calls, inexact_lines

library, objdump, nm = sys.argv[1:4]

listing = subprocess.run([objdump, "-d", "--no-show-raw-insn", library], check=True, capture_output=True, text=True).stdout
multiplications = len(re.findall(r"\bv?mulps\b", listing))
faults = inexact_lines(listing)
imported = {line.split()[-1].split("@")[0] for line in subprocess.run([nm, "-D", "--undefined-only", library], check=True, capture_output=True, text=True).stdout.splitlines()}
faults += inexact_calls(imported)

if multiplications < 100:
    faults.append(f"only {multiplications} packed multiplications: this does not look like the device's code")
print("\n".join(faults) if faults else f"{multiplications} packed multiplications, none fused, nothing approximate")
sys.exit(1 if faults else 0)
