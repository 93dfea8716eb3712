# SPDX-License-Identifier: Apache-2.0
"""What IEEE 754 does not define to the last bit, as disassembled code shows it."""
import re

INEXACT = re.compile(r"\bv?(rcp|rsqrt)(14|28)?[ps][sdh]\b|\bvfn?m(add|sub|addsub|subadd)[0-9]*[ps][sdh]\b")
EXACT = {"ceil", "fabs", "floor", "fmod", "fmodf", "frexp", "frexpf", "ldexp", "ldexpf", "lrint", "lround", "nearbyint", "nearbyintf",
         "rint", "rintf", "round", "sqrt", "sqrtf", "trunc", "truncf", "ceilf", "floorf", "lroundf", "lrintf"}
TRANSCENDENTAL = re.compile(r"^(a?(sin|cos|tan)h?|atan2|sincos|exp(2|10|m1)?|log(2|10|1p|b)?|pow|cbrt|hypot|fma|[lt]?gamma|erfc?)[fl]?$")


def inexact_lines(listing):
    return [line.strip() for line in listing.splitlines() if INEXACT.search(line)]


def inexact_calls(names):
    return [f"calls {name}" for name in sorted(set(names)) if TRANSCENDENTAL.match(name) and name not in EXACT]
