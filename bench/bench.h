// The small harness of orva_bench: suites register themselves by name, and helpers time a
// call as the median of repeated runs after a warm-up. Figures are printed, never asserted.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace orva::bench {

using Suite = void (*)();

struct SuiteEntry {
  const char* name;
  Suite run;
};

// Suites in registration order (static initialisation of the bench files).
inline std::vector<SuiteEntry>& suites() {
  static std::vector<SuiteEntry> all;
  return all;
}

// A bench file registers its suite with a namespace-scope Registration object.
struct Registration {
  Registration(const char* name, Suite run) { suites().push_back({name, run}); }
};

inline double secondsOf(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const size_t mid = values.size() / 2;
  return values.size() % 2 ? values[mid] : (values[mid - 1] + values[mid]) / 2;
}

// Warm-up calls, then the median of `runs` timed calls, in seconds.
inline double medianSeconds(const std::function<void()>& call, int warmUp, int runs) {
  for (int w = 0; w < warmUp; ++w) call();
  std::vector<double> samples;
  for (int r = 0; r < runs; ++r) samples.push_back(secondsOf(call));
  return median(std::move(samples));
}

struct Measurement {
  double seconds = 0;  // median time of one call
  double ratio = 0;    // median of (call time / baseline time) over the rounds
};

// Times each case against a baseline measured right before it, round after round, so that
// other load on the machine and clock changes hit both alike. In a round the baseline and
// then the case are each called `warmCalls` times untimed and once timed: each is timed in
// the cache state that it leaves itself, as when frames follow each other into one buffer.
inline std::vector<Measurement> measureAgainst(const std::function<void()>& baseline,
                                               const std::vector<std::function<void()>>& cases,
                                               int rounds, int warmCalls,
                                               Measurement* baselineResult) {
  std::vector<double> baseSamples;
  std::vector<std::vector<double>> seconds(cases.size()), ratios(cases.size());
  auto timed = [warmCalls](const std::function<void()>& call) {
    for (int w = 0; w < warmCalls; ++w) call();
    return secondsOf(call);
  };
  for (int r = 0; r < rounds; ++r) {
    for (size_t i = 0; i < cases.size(); ++i) {
      const double base = timed(baseline);
      const double t = timed(cases[i]);
      baseSamples.push_back(base);
      seconds[i].push_back(t);
      ratios[i].push_back(t / base);
    }
  }
  std::vector<Measurement> results;
  for (size_t i = 0; i < cases.size(); ++i) {
    results.push_back({median(std::move(seconds[i])), median(std::move(ratios[i]))});
  }
  if (baselineResult != nullptr) *baselineResult = {median(std::move(baseSamples)), 1.0};
  return results;
}

}  // namespace orva::bench
