// Record encoding against memcpy of the same bytes: the full station list
// (100 stations x 312 rates, every text at full length) and a small record.
#include <benchmark/benchmark.h>
#include <string.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "codec.h"
#include "station_list.h"

namespace {

using wifiap::codec::Ops;

using bench::fullList;

struct Case {
    const Ops *ops;
    const void *rec;
    std::vector<uint8_t> body;
    void *out;
};

Case &statList() {
    static std::unique_ptr<assocDevStatList> in = fullList(), out = std::make_unique<assocDevStatList>();
    static Case c{&wifiap::codec::kAssocDevStatList, in.get(), {}, out.get()};
    return c;
}
Case &smallConf() {
    static conf in{1, 258}, out{};
    static Case c{&wifiap::codec::kConf, &in, {}, &out};
    return c;
}

void prepare(Case &c) {
    if (!c.body.empty()) return;
    c.body.assign(c.ops->size(c.rec), 0);
    uint8_t *cur = c.body.data();
    c.ops->write(c.rec, &cur);
}

void Serialize(benchmark::State &st, Case &(*get)()) {
    Case &c = get();
    prepare(c);
    for (auto _ : st) {
        uint8_t *cur = c.body.data();
        benchmark::DoNotOptimize(c.ops->write(c.rec, &cur));
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(c.body.size()));
}

void Size(benchmark::State &st, Case &(*get)()) {
    Case &c = get();
    for (auto _ : st) benchmark::DoNotOptimize(c.ops->size(c.rec));
}

void Unserialize(benchmark::State &st, Case &(*get)()) {
    Case &c = get();
    prepare(c);
    for (auto _ : st) {
        const uint8_t *cur = c.body.data();
        benchmark::DoNotOptimize(c.ops->read(c.out, &cur, c.body.size(), {}));
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(c.body.size()));
}

void UnserializeTrusted(benchmark::State &st, Case &(*get)()) {
    Case &c = get();
    prepare(c);
    auto *out = static_cast<assocDevStatList *>(c.out);
    for (auto _ : st) {
        const uint8_t *cur = c.body.data();
        benchmark::DoNotOptimize(intfWifiAp_assocDevStatList_unserialize(out, &cur));
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(c.body.size()));
}

void Memcpy(benchmark::State &st, Case &(*get)()) {
    Case &c = get();
    prepare(c);
    std::vector<uint8_t> dst(c.body.size());
    for (auto _ : st) {
        benchmark::DoNotOptimize(dst.data());
        memcpy(dst.data(), c.body.data(), c.body.size());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(c.body.size()));
}

BENCHMARK_CAPTURE(Memcpy, statList, statList);
BENCHMARK_CAPTURE(Serialize, statList, statList);
BENCHMARK_CAPTURE(Unserialize, statList, statList);
BENCHMARK_CAPTURE(UnserializeTrusted, statList, statList);
BENCHMARK_CAPTURE(Size, statList, statList);
BENCHMARK_CAPTURE(Memcpy, conf, smallConf);
BENCHMARK_CAPTURE(Serialize, conf, smallConf);
BENCHMARK_CAPTURE(Unserialize, conf, smallConf);

// Prints, after the usual table, each case's median against the median of
// memcpy of the same bytes in the same run.
class Ratios : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &r : runs)
            if (r.run_type == Run::RT_Aggregate && r.aggregate_name == "median")
                medians_[r.run_name.function_name] = r.GetAdjustedCPUTime();
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        for (const char *c : {"statList", "conf"}) {
            auto base = medians_.find(std::string("Memcpy/") + c);
            if (base == medians_.end()) continue;
            for (const char *op : {"Serialize", "Unserialize", "UnserializeTrusted"})
                if (auto it = medians_.find(std::string(op) + "/" + c); it != medians_.end())
                    printf("%-20s %-9s %.2fx memcpy (median CPU time)\n", op, c,
                           it->second / base->second);
        }
    }

private:
    std::map<std::string, double> medians_;
};

}  // namespace

// Medians need repetitions: without --benchmark_repetitions, 9 are run.
int main(int argc, char **argv) {
    std::vector<char *> args(argv, argv + argc);
    std::string reps = "--benchmark_repetitions=9";
    bool given = false;
    for (char *a : args) given |= strncmp(a, "--benchmark_repetitions", 23) == 0;
    if (!given) args.push_back(reps.data());
    int n = int(args.size());
    benchmark::Initialize(&n, args.data());
    Ratios reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
