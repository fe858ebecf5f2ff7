// SPDX-License-Identifier: MIT
// Measures every scene in every renderer in one run and prints how far ahead of the peers we are.
//
//   mm2d_bench [Google Benchmark options]
//
// The renderers' repetitions are interleaved at random and the ratios are of medians, so that what
// else the machine is doing falls on all of them alike.
#include "Scene.h"

#include "graphics2d/convenience/MMText.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <elf.h>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <sstream>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

constexpr char kOurs[] = "mm2d";
constexpr char kCairo[] = "cairo";
constexpr char kAgg[] = "agg";
constexpr char kGrowth[] = "growth";

// Collects the times of all repetitions by scene and renderer.
class Medians : public benchmark::ConsoleReporter {
public:
    Medians() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const std::string& name = run.run_name.function_name;
            const size_t slash = name.rfind('/');
            times_[name.substr(0, slash)][name.substr(slash + 1)].push_back(
                run.GetAdjustedCPUTime());
        }
    }

    // 0 when it was not measured.
    double median(const std::string& scene, const std::string& renderer)
    {
        std::vector<double>& times = times_[scene][renderer];
        if (times.empty()) return 0;
        std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2),
                         times.end());
        return times[times.size() / 2];
    }

private:
    std::map<std::string, std::map<std::string, std::vector<double>>> times_;
};

void registerDraw(const std::string& scene, const char* renderer, const Draw& draw)
{
    if (!draw) return;
    benchmark::RegisterBenchmark((scene + "/" + renderer).c_str(), [draw](benchmark::State& state) {
        for (auto _ : state)
            draw();
    })->Repetitions(9);
}

// A polygon of random vertices around a centre, many of them in one row.
std::vector<MMPoint2D> prickle(int count)
{
    std::mt19937 engine(3);
    std::uniform_real_distribution<double> radius(100, 490);
    std::vector<MMPoint2D> points;
    for (int i = 0; i < count; ++i) {
        const double angle = 6.283185307179586 * i / count;
        const double r = radius(engine);
        points.push_back({static_cast<Fixed>((500 + r * std::cos(angle)) * 65536),
                          static_cast<Fixed>((500 + r * std::sin(angle)) * 65536)});
    }
    return points;
}

Draw growthDraw(int count)
{
    struct Drawing {
        std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
        MMContext2D context;
        std::vector<MMPoint2D> points;
    };
    auto drawing = std::make_shared<Drawing>();
    drawing->points = prickle(count);
    MMContext2D& context = drawing->context;
    context.target = {kSceneSize, kSceneSize, kSceneSize * 4, 0, drawing->pixels.data(), 0};
    context.clipRight = kSceneSize;
    context.clipBottom = kSceneSize;
    context.antiAlias = 1;
    context.currentPaint = context.fillPaint;
    return [drawing] {
        drawing->context.rasterPolygon(drawing->points.data(),
                                       static_cast<uint16_t>(drawing->points.size()));
    };
}

// Bytes of machine code in an object file; 0 when it cannot be read.
size_t codeBytes(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
    Elf64_Ehdr header;
    if (bytes.size() < sizeof header) return 0;
    std::memcpy(&header, bytes.data(), sizeof header);
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    const size_t sectionBytes = sections.size() * sizeof(Elf64_Shdr);
    if (sections.empty() || header.e_shoff + sectionBytes > bytes.size()) return 0;
    std::memcpy(sections.data(), bytes.data() + header.e_shoff, sectionBytes);
    size_t total = 0;
    for (const Elf64_Shdr& section : sections)
        if ((section.sh_flags & SHF_EXECINSTR) != 0) total += section.sh_size;
    return total;
}

// The library's own objects; the engines of the platform do not count.
size_t libraryCodeBytes()
{
    std::istringstream files(MM2D_OBJECT_FILES);
    size_t total = 0;
    for (std::string file; std::getline(files, file, ':');)
        total += codeBytes(file);
    return total;
}

void printRatio(double peer, double ours)
{
    if (peer > 0 && ours > 0)
        std::printf(" %8.2f", peer / ours);
    else
        std::printf(" %8s", "-");
}

} // namespace

int main(int argc, char** argv)
{
    if (!setFontFile(MM2D_BENCH_FONT)) return 1; // for the engine that the first context starts
    std::vector<Scene> scenes;
    for (auto family : {fillScenes, strokeScenes, paintScenes, textScenes})
        for (Scene& scene : family())
            scenes.push_back(std::move(scene));
    for (const Scene& scene : scenes) {
        registerDraw(scene.name, kOurs, scene.ours);
        registerDraw(scene.name, kCairo, scene.cairo);
        registerDraw(scene.name, kAgg, scene.agg);
    }
    const std::vector<int> counts = {100, 1000, 10000, 60000};
    for (int count : counts)
        registerDraw(kGrowth, std::to_string(count).c_str(), growthDraw(count));

    std::vector<char*> arguments(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char shortRuns[] = "--benchmark_min_time=0.02";
    arguments.insert(arguments.begin() + 1, {interleave, shortRuns});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);

    std::printf("\nspeed relative to the peers (2 means twice as fast)\n%-30s %8s %8s\n", "scene",
                kCairo, kAgg);
    for (const Scene& scene : scenes) {
        const double ours = medians.median(scene.name, kOurs);
        if (ours == 0) continue;
        std::printf("%-30s", scene.name.c_str());
        printRatio(medians.median(scene.name, kCairo), ours);
        printRatio(medians.median(scene.name, kAgg), ours);
        std::printf("\n");
    }
    const double first = medians.median(kGrowth, std::to_string(counts.front()));
    if (first > 0) {
        std::printf("\ntime to fill a polygon relative to one of %d vertices\n", counts.front());
        for (int n : counts)
            std::printf("%8d %8.1f\n", n, medians.median(kGrowth, std::to_string(n)) / first);
    }
    const double wrapping = medians.median(kWrapScene, kOurs);
    const double drawing = medians.median(kCachedTextScene, kOurs);
    if (wrapping > 0 && drawing > 0)
        std::printf("\nwrapping 2,000 characters takes as long as drawing %.0f cached glyphs\n",
                    1000 * wrapping / drawing);
    const ContextMemory memory = contextMemory();
    std::printf("\nmemory of a context: %zu bytes at rest, %zu with a full glyph cache\n",
                memory.atRest, memory.withFullCache);
    constexpr size_t kMostText = 128 * 1024;
    const size_t text = libraryCodeBytes();
    std::printf("\nmachine code of the library without its engines: %zu of at most %zu bytes\n",
                text, kMostText);
    return text > 0 && text <= kMostText ? 0 : 1;
}
