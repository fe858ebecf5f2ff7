// SPDX-License-Identifier: MIT
// Measures every scene in every renderer in one run and prints how far ahead of the peers we are.
//
//   mm2d_bench [--twice] [Google Benchmark options]
//
// --twice measures all of it twice: where the two tables differ the machine was not quiet.
// The renderers' repetitions are interleaved at random and the ratios are of medians, so that what
// else the machine is doing falls on all of them alike.
#include "Footprint.h"
#include "Scene.h"

#include "graphics2d/convenience/MMText.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

// Who draws a scene.
struct Renderer {
    const char* name;
    Draw Scene::*draw;
    Draw Scene::*fine =
        nullptr; // what stands beside the refined mode where there is such a drawing
};
constexpr Renderer kClassic = {"classic", &Scene::classic};
constexpr Renderer kRefined = {"refined", &Scene::refined};
constexpr Renderer kPeers[] = {{"cairo", &Scene::cairo, &Scene::fineCairo},
                               {"agg", &Scene::agg, &Scene::fineAgg},
                               {"qt", &Scene::qt},
                               {"memory", &Scene::memory}};
constexpr int kRepetitions = 9;

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

void registerDraw(const std::string& scene, const std::string& renderer, const Draw& draw)
{
    if (!draw) return;
    benchmark::RegisterBenchmark((scene + "/" + renderer).c_str(),
                                 [draw](benchmark::State& state) {
                                     for (auto _ : state)
                                         draw();
                                 })
        ->Repetitions(kRepetitions)
        ->MeasureProcessCPUTime(); // of all threads: Qt may start some
}

void printRatio(double peer, double ours)
{
    if (peer > 0)
        std::printf(" %7.2f", peer / ours);
    else
        std::printf(" %7s", "-");
}

std::string fineName(const Renderer& peer)
{
    return std::string("fine ") + peer.name;
}

// One of our modes beside every peer and the best of them.
void printScenes(Medians& medians, const std::vector<Scene>& scenes, const Renderer& mode)
{
    std::printf("\n%-34s", (std::string(mode.name) + ": speed relative to").c_str());
    for (const Renderer& peer : kPeers)
        std::printf(" %7s", peer.name);
    std::printf("    best\n");
    for (const Scene& scene : scenes) {
        const double ours = medians.median(scene.name, mode.name);
        if (ours == 0) continue;
        std::printf("%-34s", scene.name.c_str());
        double best = 0;
        const char* nameOfBest = "";
        for (const Renderer& peer : kPeers) {
            const double fine =
                mode.draw == kRefined.draw ? medians.median(scene.name, fineName(peer)) : 0;
            const double time = fine > 0 ? fine : medians.median(scene.name, peer.name);
            printRatio(time, ours);
            if (time == 0 || (best > 0 && time >= best)) continue;
            best = time;
            nameOfBest = peer.name;
        }
        printRatio(best, ours);
        std::printf(" %s\n", nameOfBest);
    }
}

// What the refined rules cost.
void printModes(Medians& medians, const std::vector<Scene>& scenes)
{
    std::printf("\n%-34s %7s\n", "refined: speed relative to", kClassic.name);
    for (const Scene& scene : scenes) {
        const double refined = medians.median(scene.name, kRefined.name);
        if (refined == 0) continue;
        std::printf("%-34s", scene.name.c_str());
        printRatio(medians.median(scene.name, kClassic.name), refined);
        std::printf("\n");
    }
}

// The exponent is that of the growth from one size to the next: 1 is in proportion.
void printGrowth(Medians& medians, const std::vector<Growth>& series)
{
    std::printf("\ntime relative to the smallest size, and the exponent of the last step\n");
    for (const Growth& growth : series) {
        const auto timeOf = [&](uint32_t size) {
            return medians.median(growth.name, std::to_string(size));
        };
        const double first = timeOf(growth.sizes.front());
        if (first == 0) continue;
        std::printf("%-32s %u: 1", growth.name.c_str(), growth.sizes.front());
        double exponent = 0;
        for (size_t i = 1; i < growth.sizes.size() && timeOf(growth.sizes[i]) > 0; ++i) {
            const double before = timeOf(growth.sizes[i - 1]);
            const double times = static_cast<double>(growth.sizes[i]) / growth.sizes[i - 1];
            std::printf(" %u: %.1f", growth.sizes[i], timeOf(growth.sizes[i]) / first);
            exponent = std::log(timeOf(growth.sizes[i]) / before) / std::log(times);
        }
        std::printf("; exponent %.2f\n", exponent);
    }
}

void printAll(Medians& medians, const std::vector<Scene>& scenes, const std::vector<Growth>& series)
{
    std::printf("\n2.00 is twice as fast\n");
    printScenes(medians, scenes, kClassic);
    printScenes(medians, scenes, kRefined);
    printModes(medians, scenes);
    printGrowth(medians, series);
    const double wrapping = medians.median(kWrapScene, kClassic.name);
    const double drawing = medians.median(kCachedTextScene, kClassic.name);
    if (wrapping > 0 && drawing > 0)
        std::printf("\nwrapping 2,000 characters takes as long as drawing %.0f cached glyphs\n",
                    1000 * wrapping / drawing);
}

} // namespace

int main(int argc, char** argv)
{
    if (!setFontFile(MM2D_BENCH_FONT)) return 1; // for the engine that the first context starts
    const ContextMemory memory = contextMemory();
    std::vector<Scene> scenes;
    for (auto family :
         {fillScenes, strokeScenes, paintScenes, sourceScenes, textScenes, layerScenes})
        for (Scene& scene : family())
            scenes.push_back(std::move(scene));
    for (const Scene& scene : scenes) {
        for (const Renderer& renderer : {kClassic, kRefined})
            registerDraw(scene.name, renderer.name, scene.*renderer.draw);
        for (const Renderer& peer : kPeers) {
            registerDraw(scene.name, peer.name, scene.*peer.draw);
            if (peer.fine != nullptr) registerDraw(scene.name, fineName(peer), scene.*peer.fine);
        }
    }
    const std::vector<Growth> series = growthSeries();
    for (const Growth& growth : series)
        for (const uint32_t size : growth.sizes)
            registerDraw(growth.name, std::to_string(size), growth.make(size));

    std::vector<char*> arguments(argv, argv + argc);
    const auto twice = std::find(arguments.begin(), arguments.end(), std::string("--twice"));
    const int runs = twice == arguments.end() ? 1 : 2;
    if (runs == 2) arguments.erase(twice);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char shortRuns[] = "--benchmark_min_time=0.02";
    arguments.insert(arguments.begin() + 1, {interleave, shortRuns});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    std::vector<Medians> tables(runs);
    for (Medians& medians : tables)
        benchmark::RunSpecifiedBenchmarks(&medians);
    for (Medians& medians : tables)
        printAll(medians, scenes, series);

    std::printf("\nmemory of a context: %zu bytes at rest, %zu with a full glyph cache\n",
                memory.atRest, memory.withFullCache);
    constexpr size_t kMostText = 192 * 1024; // with masks, layers, sources and levels
    const size_t text = libraryCodeBytes();
    std::printf("\nmachine code of the library without its engines: %zu of at most %zu bytes\n",
                text, kMostText);
    return text > 0 && text <= kMostText ? 0 : 1;
}
