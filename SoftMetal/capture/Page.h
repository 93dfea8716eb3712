// SPDX-License-Identifier: Apache-2.0
// The page of a trace document; the trace itself, as JSON, goes between the two halves.
#pragma once

namespace softmetal::capture {

inline constexpr const char* PageStart = R"html(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<title>SoftMetal trace</title>
<style>
body { font: 14px/1.45 system-ui, sans-serif; margin: 0; background: #f4f5f7; color: #1c2126; }
header { background: #20262e; color: #f4f5f7; padding: 12px 24px; }
header b { margin-right: 18px; }
main { padding: 12px 24px 48px; max-width: 1200px; }
section { background: #fff; border: 1px solid #d8dce2; border-radius: 6px; margin: 14px 0; padding: 10px 16px; }
h2 { font-size: 16px; margin: 4px 0 8px; }
figure { display: inline-block; margin: 0 14px 8px 0; text-align: center; }
figure img { border: 1px solid #9aa3ad; image-rendering: pixelated; min-width: 96px;
  background: repeating-conic-gradient(#ddd 0 25%, #fff 0 50%) 0 0/16px 16px; }
figcaption, .faint { color: #66707b; font-size: 12px; }
summary { cursor: pointer; padding: 2px 0; }
table { border-collapse: collapse; margin: 4px 0 8px 18px; }
td { padding: 1px 12px 1px 0; vertical-align: top; font: 12px/1.4 ui-monospace, monospace; overflow-wrap: anywhere; }
#commands td:first-child { color: #66707b; text-align: right; }
</style>
<header><b>SoftMetal trace</b><span id="counts"></span></header>
<main><div id="passes"></div>
<section><details><summary>All commands</summary><table id="commands"></table></details></section>
<section><details><summary>Objects</summary><table id="objects"></table></details></section></main>
<script id="trace" type="application/json">
)html";

inline constexpr const char* PageEnd = R"html(</script>
<script>
"use strict";
const trace = JSON.parse(document.getElementById("trace").textContent);
const make = (tag, text, parent, cls) => {
  const e = document.createElement(tag);
  if (text) e.textContent = text;
  if (cls) e.className = cls;
  if (parent) parent.append(e);
  return e;
};
const nameOf = id => {
  if (!id) return "nil";
  const o = trace.objects[id - 1];
  return `${o.class} ${id}` + (o.label.startsWith("'") ? ` ${o.label}` : "") + (o.summary ? ` [${o.summary}]` : "");
};
const valueOf = v => v && typeof v === "object" ? nameOf(v.object)
  : typeof v === "string" && v.length > 200 ? v.slice(0, 200) + " …" : String(v);
const argumentsOf = c => Object.entries(c.arguments).map(([k, v]) => `${k} = ${valueOf(v)}`).join(", ");
const row = (table, ...cells) => { const r = make("tr", "", table); for (const c of cells) make("td", c, r); };

// What is bound is what the last call of its kind and index said.
const keyOf = c => c.call + ("index" in c.arguments ? " " + c.arguments.index : "");
const isDraw = c => c.call.startsWith("draw");
const primitives = ["points", "lines", "line strip", "triangles", "triangle strip"];
const titleOf = c => `${primitives[c.arguments.type]}, ${c.arguments.count} ${c.call === "drawPrimitives" ? "vertices" : "indices"}`
  + (c.arguments.instances > 1 ? `, ${c.arguments.instances} instances` : "");

function showPass(pass, number) {
  const section = make("section", "", document.getElementById("passes"));
  make("h2", `Pass ${number + 1}`, section);
  make("div", `${nameOf(pass.encoder)} · ${pass.draws} draw${pass.draws === 1 ? "" : "s"} · commands ${pass.first} to ${pass.last}`, section, "faint");
  for (const a of pass.attachments) {
    const figure = make("figure", "", section);
    make("img", "", figure).src = a.picture;
    make("figcaption", `${a.name}, ${a.width} × ${a.height}`, figure);
  }
  const bound = new Map();
  for (let i = pass.first + 1; i <= pass.last; ++i) {
    const c = trace.commands[i];
    if (c.object !== pass.encoder) continue;
    if (c.call.startsWith("set")) bound.set(keyOf(c), argumentsOf(c));
    if (!isDraw(c)) continue;
    const details = make("details", "", section, "draw");
    make("summary", `Command ${i}: ${titleOf(c)}`, details);
    const table = make("table", "", details);
    row(table, c.call, argumentsOf(c));
    for (const [k, v] of bound) row(table, k, v);
  }
}

trace.passes.forEach(showPass);
trace.commands.forEach((c, i) => row(document.getElementById("commands"), String(i), nameOf(c.object), c.call, argumentsOf(c)));
trace.objects.forEach((o, i) => row(document.getElementById("objects"), nameOf(i + 1)));
const draws = trace.passes.reduce((sum, p) => sum + p.draws, 0);
document.getElementById("counts").textContent =
  `${trace.commands.length} commands · ${trace.passes.length} passes · ${draws} draws · ${trace.objects.length} objects`;
document.body.dataset.draws = document.querySelectorAll("details.draw").length;
</script>
</html>
)html";

} // namespace softmetal::capture
