// SPDX-License-Identifier: Apache-2.0
// Runs every workload on this library and, where it is installed, on Mesa's software GL: one worker process for each,
// in turn, several times over, so that both meet the same noise. Prints smallest, median, spread and ratio.
#include "Image.h"
#include "Plot.h"
#include "Workload.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>
#include <vector>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

constexpr int PictureTolerance = 8; // of 255
constexpr double PictureWithin = 0.99;

struct Options
{
    std::string filter, plot;
    int repeats = 5;
    double seconds = 0.4;
    bool json = false, list = false;
};

struct Result
{
    const bench::Workload* workload = nullptr;
    std::vector<double> ours, theirs;
    std::string remark;
};

fs::path binary(const char* name)
{
    return fs::read_symlink("/proc/self/exe").parent_path() / name;
}

/// Standard output of a command, nothing when it fails.
std::optional<std::string> output(const std::string& command)
{
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return std::nullopt;
    std::string text;
    std::array<char, 256> chunk;
    while (std::fgets(chunk.data(), chunk.size(), pipe))
        text += chunk.data();
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return pclose(pipe) == 0 ? std::optional(text) : std::nullopt;
}

std::optional<double> timeOnce(const fs::path& worker, const char* name, double seconds)
{
    auto text = output(worker.string() + " " + name + " " + std::to_string(seconds));
    return text ? std::optional(std::atof(text->c_str())) : std::nullopt;
}

/// Empty when the pictures of both agree or when there is none; else why the workload is not timed.
std::string checkPicture(const fs::path& ours, const fs::path& theirs, const char* name)
{
    std::string stem = (fs::temp_directory_path() / ("zalbench-" + std::to_string(getpid()) + "-")).string();
    std::string a = stem + "a.png", b = stem + "b.png", error;
    auto draw = [&](const fs::path& worker, const std::string& file) {
        return std::system((worker.string() + " --picture " + name + " " + file + " 2>/dev/null").c_str());
    };
    int first = draw(ours, a), second = draw(theirs, b);
    scenes::Image x, y;
    std::string why;
    if (WIFEXITED(first) && WEXITSTATUS(first) == 3) return why;
    if (first != 0 || second != 0 || !readPng(a, x, error) || !readPng(b, y, error))
        why = "no picture";
    else if (compare(x, y, PictureTolerance).within() < PictureWithin)
        why = "wrong picture";
    fs::remove(a);
    fs::remove(b);
    return why;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

/// Largest over smallest, less one: 0.1 means that the runs lie within ten per cent.
double spread(const std::vector<double>& values)
{
    if (values.empty()) return 0;
    auto [low, high] = std::minmax_element(values.begin(), values.end());
    return *high / *low - 1;
}

/// Ours against theirs, above one where ours is better.
double ratio(const Result& r)
{
    double a = median(r.ours), b = median(r.theirs);
    if (a == 0 || b == 0) return 0;
    return r.workload->perSecond ? a / b : b / a;
}

Result run(const bench::Workload& workload, const Options& options, bool mesa)
{
    Result result{&workload, {}, {}, {}};
    fs::path ours = binary("zalbench_worker_zal"), theirs = binary("zalbench_worker_mesa");
    if (mesa) result.remark = checkPicture(ours, theirs, workload.name);
    if (!result.remark.empty()) return result;
    for (int i = 0; i < options.repeats; ++i) {
        if (auto value = timeOnce(ours, workload.name, options.seconds))
            result.ours.push_back(*value);
        else
            result.remark = "ours fails";
        if (!mesa) continue;
        if (auto value = timeOnce(theirs, workload.name, options.seconds))
            result.theirs.push_back(*value);
        else
            result.remark = "mesa fails";
    }
    return result;
}

void printRow(const Result& r)
{
    std::printf("%-20s %-9s %10.4g %6.0f%% %10.4g %6.0f%% %8.2f  %s\n", r.workload->name, r.workload->unit,
                median(r.ours), spread(r.ours) * 100, median(r.theirs), spread(r.theirs) * 100, ratio(r),
                r.remark.c_str());
    std::fflush(stdout);
}

void printJson(const std::vector<Result>& results, const std::string& machine, const std::string& ours,
               const std::string& theirs)
{
    std::printf("{\"machine\": \"%s\", \"zalmetal\": \"%s\", \"mesa\": \"%s\", \"workloads\": [", machine.c_str(),
                ours.c_str(), theirs.c_str());
    for (size_t i = 0; i < results.size(); ++i) {
        const Result& r = results[i];
        std::printf(
            "%s\n  {\"name\": \"%s\", \"unit\": \"%s\", \"zalmetal\": %.6g, \"zalmetal_spread\": %.3f, \"mesa\": %.6g, "
            "\"mesa_spread\": %.3f, \"ratio\": %.4g, \"remark\": \"%s\"}",
            i ? "," : "", r.workload->name, r.workload->unit, median(r.ours), spread(r.ours), median(r.theirs),
            spread(r.theirs), ratio(r), r.remark.c_str());
    }
    std::printf("\n]}\n");
}

std::string machineName()
{
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(':') + 2) + ", " + std::to_string(std::thread::hardware_concurrency()) +
                   " cores";
    return "unknown machine";
}

/// The bars' thin lines reach from our worst run against their best to the opposite.
bool writePlot(const std::vector<Result>& results, const std::string& path, const std::string& machine)
{
    std::vector<bench::Bar> bars;
    for (const Result& r : results) {
        if (r.ours.empty() || r.theirs.empty()) continue;
        auto [low, high] = std::minmax_element(r.ours.begin(), r.ours.end());
        auto [least, most] = std::minmax_element(r.theirs.begin(), r.theirs.end());
        const bool up = r.workload->perSecond;
        bars.push_back(
            {r.workload->name, ratio(r), up ? *low / *most : *least / *high, up ? *high / *least : *most / *low});
    }
    std::ofstream file(path);
    file << bench::plot(bars, "zalmetal against Mesa: above 1 is better", machine);
    return file.good();
}

bool parse(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        std::string word = argv[i];
        bool more = i + 1 < argc;
        if (word == "--list")
            options.list = true;
        else if (word == "--json")
            options.json = true;
        else if (word == "--filter" && more)
            options.filter = argv[++i];
        else if (word == "--plot" && more)
            options.plot = argv[++i];
        else if (word == "--repeats" && more)
            options.repeats = std::max(1, std::atoi(argv[++i]));
        else if (word == "--seconds" && more)
            options.seconds = std::atof(argv[++i]);
        else
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!parse(argc, argv, options)) {
        std::fprintf(stderr,
                     "usage: %s [--list] [--filter TEXT] [--repeats N] [--seconds S] [--json] [--plot FILE.svg]\n",
                     argv[0]);
        return 2;
    }
    if (options.list) {
        for (const auto& w : bench::workloads())
            std::printf("%-20s %-9s %s\n", w.name, w.unit, w.note);
        return 0;
    }
    auto ours = output(binary("zalbench_worker_zal").string() + " --describe");
    auto theirs = output(binary("zalbench_worker_mesa").string() + " --describe 2>/dev/null");
    if (!ours) {
        std::fprintf(stderr, "zalbench: this library's worker does not run\n");
        return 1;
    }
    if (!options.json) {
        std::printf("machine: %s\nours:    %s\nmesa:    %s\n\n", machineName().c_str(), ours->c_str(),
                    theirs.value_or("not here").c_str());
        std::printf("%-20s %-9s %10s %7s %10s %7s %8s\n", "workload", "unit", "zalmetal", "spread", "mesa", "spread",
                    "ratio");
    }
    std::vector<Result> results;
    for (const auto& workload : bench::workloads()) {
        if (std::strstr(workload.name, options.filter.c_str()) == nullptr) continue;
        results.push_back(run(workload, options, theirs.has_value()));
        if (!options.json) printRow(results.back());
    }
    if (!options.json && options.filter.empty())
        if (auto stages = output(binary("zalbench_stages").string()))
            std::printf("\nfrom program text to machine code, stage by stage (medians)\n%s\n", stages->c_str());
    if (!options.plot.empty() && !writePlot(results, options.plot, machineName() + "; " + theirs.value_or("no Mesa"))) {
        std::fprintf(stderr, "zalbench: %s cannot be written\n", options.plot.c_str());
        return 1;
    }
    if (options.json) printJson(results, machineName(), *ours, theirs.value_or(""));
    return 0;
}
