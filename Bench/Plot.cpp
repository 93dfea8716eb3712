// SPDX-License-Identifier: Apache-2.0
#include "Plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace bench
{
namespace
{

constexpr double Left = 180, Width = 560, RowHeight = 18, Top = 70, BarHeight = 11;
constexpr std::array Marks = {0.05, 0.1, 0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0};

template <class... Values>
std::string format(const char* pattern, Values... values)
{
    std::array<char, 400> text;
    std::snprintf(text.data(), text.size(), pattern, values...);
    return text.data();
}

std::string escaped(const std::string& text)
{
    std::string result;
    for (char c : text)
        result += c == '&' ? "&amp;" : c == '<' ? "&lt;" : std::string(1, c);
    return result;
}

double across(double ratio)
{
    const double low = std::log(Marks.front()), high = std::log(Marks.back());
    return Left + Width * (std::log(std::clamp(ratio, Marks.front(), Marks.back())) - low) / (high - low);
}

std::string row(const Bar& bar, double y)
{
    const double one = across(1), end = across(bar.ratio);
    std::string text = format("<text x=\"%.0f\" y=\"%.1f\" text-anchor=\"end\">%s</text>", Left - 8, y + BarHeight - 1,
                              escaped(bar.name).c_str());
    text += format("<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.0f\" fill=\"%s\"/>", std::min(one, end), y,
                   std::abs(end - one), BarHeight, bar.ratio < 1 ? "#c0504d" : "#4f81bd");
    text += format("<line x1=\"%.1f\" x2=\"%.1f\" y1=\"%.1f\" y2=\"%.1f\" stroke=\"#333\"/>", across(bar.least),
                   across(bar.most), y + BarHeight / 2, y + BarHeight / 2);
    return text + format("<text x=\"%.0f\" y=\"%.1f\">%.2f</text>\n", Left + Width + 10, y + BarHeight - 1, bar.ratio);
}

} // namespace

std::string plot(const std::vector<Bar>& bars, const std::string& title, const std::string& machine)
{
    const auto drawn =
        static_cast<double>(std::count_if(bars.begin(), bars.end(), [](const Bar& bar) { return bar.ratio > 0; }));
    const double bottom = Top + drawn * RowHeight;
    std::string svg = format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" "
                             "font-family=\"sans-serif\" font-size=\"11\">\n"
                             "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
                             Left + Width + 60, bottom + 16);
    svg += "<text x=\"12\" y=\"20\" font-size=\"13\">" + escaped(title) + "</text>\n";
    svg += "<text x=\"12\" y=\"36\" fill=\"#555\">" + escaped(machine) + "</text>\n";
    for (double mark : Marks) {
        svg += format("<line x1=\"%.1f\" x2=\"%.1f\" y1=\"%.0f\" y2=\"%.1f\" stroke=\"%s\"/>", across(mark),
                      across(mark), Top - 6, bottom, mark == 1 ? "#333" : "#ddd");
        svg += format("<text x=\"%.1f\" y=\"%.0f\" text-anchor=\"middle\">%g</text>\n", across(mark), Top - 12, mark);
    }
    double y = Top;
    for (const Bar& bar : bars) {
        if (bar.ratio <= 0) continue;
        svg += row(bar, y);
        y += RowHeight;
    }
    return svg + "</svg>\n";
}

} // namespace bench
