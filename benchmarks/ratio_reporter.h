#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// Keeps the shortest time of every benchmark and prints the ratios in the end: noise only ever adds time.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const std::string name = run.run_name.function_name;
            const auto slash = name.rfind('/');
            auto& time = times_[name.substr(0, slash)][name.substr(slash + 1)];
            const double measured = run.GetAdjustedRealTime();
            time = time == 0 ? measured : std::min(time, measured);
            units_[name.substr(0, slash)] = benchmark::GetTimeUnitString(run.time_unit);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override {
        std::printf(
            "\nThis library's time, and the others' relative to it (more than 1: the other one takes longer)\n");
        for (const auto& [work, contenders] : times_) {
            const auto own = contenders.find("kestrel");
            if (own == contenders.end()) continue;
            std::printf("%-34s %10.1f %s", work.c_str(), own->second, units_[work].c_str());
            for (const auto& [contender, time] : contenders) {
                if (contender != "kestrel") std::printf("  %s %.2f", contender.c_str(), time / own->second);
            }
            std::printf("\n");
        }
    }

  private:
    std::map<std::string, std::map<std::string, double>> times_;
    std::map<std::string, std::string> units_;
};
