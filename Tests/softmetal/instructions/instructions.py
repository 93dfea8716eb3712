#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""instructions.py LIBRARY OBJDUMP NM: a picture has the same bits on every machine only if the device's own code keeps to
operations that IEEE 754 defines to the last bit. So its rasteriser, its samplers and its conversions hold no approximate
reciprocal, nothing that multiplies and adds in one rounding, and no call of the mathematical library but of functions whose
result is exact."""
import re
import subprocess
import sys

library, objdump, nm = sys.argv[1:4]
INEXACT = re.compile(r"\bv?(rcp|rsqrt)(14|28)?[ps][sdh]\b|\bvfn?m(add|sub|addsub|subadd)[0-9]*[ps][sdh]\b")
EXACT = {"ceil", "fabs", "floor", "fmod", "fmodf", "frexp", "frexpf", "ldexp", "ldexpf", "lrint", "lround", "nearbyint", "nearbyintf",
         "rint", "rintf", "round", "sqrt", "sqrtf", "trunc", "truncf", "ceilf", "floorf", "lroundf", "lrintf"}
TRANSCENDENTAL = re.compile(r"^(a?(sin|cos|tan)h?|atan2|sincos|exp(2|10|m1)?|log(2|10|1p|b)?|pow|cbrt|hypot|fma|[lt]?gamma|erfc?)[fl]?$")

listing = subprocess.run([objdump, "-d", "--no-show-raw-insn", library], check=True, capture_output=True, text=True).stdout
multiplications = len(re.findall(r"\bv?mulps\b", listing))
faults = [line.strip() for line in listing.splitlines() if INEXACT.search(line)]
imported = {line.split()[-1].split("@")[0] for line in subprocess.run([nm, "-D", "--undefined-only", library], check=True, capture_output=True, text=True).stdout.splitlines()}
faults += [f"calls {name}" for name in sorted(imported) if TRANSCENDENTAL.match(name) and name not in EXACT]

if multiplications < 100:
    faults.append(f"only {multiplications} packed multiplications: this does not look like the device's code")
print("\n".join(faults) if faults else f"{multiplications} packed multiplications, none fused, nothing approximate")
sys.exit(1 if faults else 0)
