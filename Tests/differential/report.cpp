// SPDX-License-Identifier: Apache-2.0
// Draws every scene of the suite with both libraries and writes a page that shows the pictures, their difference and
// the figures, to be opened from the disk:
//   differential_report [NAME…]
#include "differential/Comparison.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace
{

namespace fs = std::filesystem;
using differential::Comparison;
using scenes::SceneRow;

constexpr const char* Head = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Scenes beside Mesa</title><style>
body { font: 15px/1.45 system-ui, sans-serif; margin: 2em auto; max-width: 74em; padding: 0 1em; color: #222; background: #fafafa }
table { border-collapse: collapse; width: 100% } td, th { padding: .4em .6em; border-top: 1px solid #ddd; vertical-align: top; text-align: left }
img { width: 144px; image-rendering: pixelated; background: repeating-conic-gradient(#bbb 0 25%, #eee 0 50%) 0 0/16px 16px; display: block }
.wrong td:first-child { border-left: 5px solid #c33 } .kept td:first-child { border-left: 5px solid #d90 } .right td:first-child { border-left: 5px solid #3a5 }
code { font-size: 95% } pre { white-space: pre-wrap; max-height: 12em; overflow: auto }
</style></head><body>
<h1>Scenes beside Mesa</h1>
<p>Each scene is drawn from the same source by libZALMetal on the software device and by Mesa's software GL. The third
picture is the difference of the two, channel by channel, brightened eight times. Green rows agree, orange ones differ because
a kept behaviour (docs/kept-behaviour.md) makes them, red ones are not what the table says.</p>
)";

std::string escaped(std::string_view text)
{
    std::string result;
    for (char c : text)
        result += c == '<' ? std::string("&lt;") : c == '&' ? std::string("&amp;") : std::string(1, c);
    return result;
}

std::string figures(const Comparison& c)
{
    char text[160];
    std::snprintf(text, sizeof text, "%llu of %llu pixels beyond the tolerance, largest difference %d",
                  static_cast<unsigned long long>(c.difference.differing),
                  static_cast<unsigned long long>(c.difference.pixels), c.difference.largest);
    return text;
}

std::string pictureCell(const std::string& path)
{
    return "<td><img loading=\"lazy\" alt=\"\" src=\"scenes/" + fs::path(path).filename().string() + "\"></td>";
}

void writeRow(std::ofstream& page, const SceneRow& row, const Comparison& c, const std::string& words)
{
    page << "<tr class=\""
         << (!words.empty() ? "wrong"
             : row.kept     ? "kept"
                            : "right")
         << "\" id=\"" << row.name << "\"><td><b>" << row.name << "</b><br>";
    if (c.failure.empty()) page << figures(c) << "<br>";
    page << "tolerance " << row.tolerance << ", strays " << row.strays << "<br>";
    if (row.kept) page << "kept: <code>" << row.kept << "</code><br>";
    page << escaped(row.note);
    if (!words.empty()) page << "<pre>" << escaped(words) << "</pre>";
    page << "</td>" << pictureCell(c.oursPath) << pictureCell(c.theirsPath) << pictureCell(c.differencePath)
         << "</tr>\n";
}

} // namespace

int main(int argc, char** argv)
{
    fs::path folder = fs::path(ZAL_BINARY_DIR) / "differential";
    fs::create_directories(folder);
    std::ofstream page(folder / "index.html");
    page << Head;
    int scenes = 0, wrong = 0;
    for (const scenes::SceneGroup& group : scenes::sceneGroups()) {
        page << "<h2>" << group.subject
             << "</h2>\n<table><tr><th>scene</th><th>libZALMetal</th><th>Mesa</th><th>difference</th></tr>\n";
        for (const SceneRow& row : group.rows) {
            if (argc > 1 && std::none_of(argv + 1, argv + argc,
                                         [&](const char* name) { return std::string_view(name) == row.name; }))
                continue;
            Comparison comparison = differential::compareScene(row);
            std::string words = verdict(row, comparison);
            writeRow(page, row, comparison, words);
            ++scenes;
            wrong += !words.empty();
            std::printf("%-32s %s\n", row.name, words.empty() ? figures(comparison).c_str() : words.c_str());
        }
        page << "</table>\n";
    }
    page << "</body></html>\n";
    page.close();
    std::printf("%d scenes, %d not as the table says; %s\n", scenes, wrong, (folder / "index.html").c_str());
    return page && wrong == 0 ? 0 : 1;
}
