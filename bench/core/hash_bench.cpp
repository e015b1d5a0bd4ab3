// SPDX-License-Identifier: MIT
#include "quillon/containers/name_hash.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

void Hash(benchmark::State& state) {
    const std::string name(static_cast<std::size_t>(state.range(0)), 'n');
    for (auto _ : state)
        benchmark::DoNotOptimize(__mystring_hash(name.c_str()));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(Hash)->Arg(8)->Arg(32)->Arg(1024);
