// SPDX-License-Identifier: MIT
// Reading with release, writing and copying, each beside its peers on the same documents.
// Times per document stand in bytes of its text a second.
#include "documents.h"

#include "quillon/json/containers.h"
#include "quillon/json/parser.h"
#include "quillon/json/writer.h"

#include <benchmark/benchmark.h>
#include <cjson/cJSON.h>
#include <jansson.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdlib>

using namespace quillon;

namespace {

cson_value* read(const std::string& text) {
    cson_value* value = nullptr;
    const auto length = static_cast<std::uint32_t>(text.size());
    if (cson_read_text(&value, text.data(), length, nullptr, nullptr) != cson_OK)
        std::abort();
    return value;
}

void count_bytes(benchmark::State& state, const std::string& text) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void read_quillon(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        cson_value_release(read(text));
    count_bytes(state, text);
}

int read_memory(void* state, void* destination, std::uint32_t* count) {
    auto& cursor = *static_cast<std::pair<const char*, const char*>*>(state);
    *count = cursor.first != cursor.second ? 1 : 0;
    if (*count != 0)
        *static_cast<char*>(destination) = *cursor.first++;
    return cson_OK;
}

// A caller's reader, which is asked once per byte.
void read_bytewise(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        std::pair cursor(text.data(), text.data() + text.size());
        cson_value* value = nullptr;
        cson_read(&value, read_memory, &cursor, nullptr, nullptr);
        cson_value_release(value);
    }
    count_bytes(state, text);
}

void read_rapidjson(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        rapidjson::Document document;
        document.Parse(text.data(), text.size());
        benchmark::DoNotOptimize(document.HasParseError());
    }
    count_bytes(state, text);
}

void read_cjson(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        cJSON_Delete(cJSON_ParseWithLength(text.data(), text.size()));
    count_bytes(state, text);
}

void read_jansson(benchmark::State& state, const std::string& text) {
    for (auto _ : state)
        json_decref(json_loadb(text.data(), text.size(), 0, nullptr));
    count_bytes(state, text);
}

void copy_quillon(benchmark::State& state, const std::string& text) {
    cson_value* value = read(text);
    for (auto _ : state)
        cson_value_release(cson_value_copy(value));
    cson_value_release(value);
    count_bytes(state, text);
}

void write_quillon(benchmark::State& state, const std::string& text) {
    cson_value* value = read(text);
    for (auto _ : state) {
        cson_buffer buffer;
        if (cson_write_buffer(value, &buffer, nullptr) != cson_OK)
            state.SkipWithError("not written");
        cson_buffer_reserve_bytes(&buffer, 0);
    }
    cson_value_release(value);
    count_bytes(state, text);
}

void write_rapidjson(benchmark::State& state, const std::string& text) {
    rapidjson::Document document;
    document.Parse(text.data(), text.size());
    for (auto _ : state) {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        document.Accept(writer);
        benchmark::DoNotOptimize(buffer.GetString());
    }
    count_bytes(state, text);
}

void write_cjson(benchmark::State& state, const std::string& text) {
    cJSON* value = cJSON_ParseWithLength(text.data(), text.size());
    for (auto _ : state)
        cJSON_free(cJSON_PrintUnformatted(value));
    cJSON_Delete(value);
    count_bytes(state, text);
}

void write_jansson(benchmark::State& state, const std::string& text) {
    json_t* value = json_loadb(text.data(), text.size(), 0, nullptr);
    for (auto _ : state)
        std::free(json_dumps(value, JSON_COMPACT));
    json_decref(value);
    count_bytes(state, text);
}

// An object of `count` pairs whose keys begin with `prefix`.
std::string flat_object(int count, const char* prefix) {
    std::string text = "{";
    for (int i = 0; i < count; ++i) {
        text += text.size() > 1 ? ",\"" : "\"";
        text += prefix + std::to_string(i) + "\":" + std::to_string(i);
    }
    return text + "}";
}

// Half of the source's keys are new to the destination.
void combine_quillon(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    cson_value* source = read(flat_object(count, "key"));
    cson_value* base = read(flat_object(count / 2, "key"));
    for (auto _ : state) {
        cson_value* copy = cson_value_copy(base);
        if (cson_object_combine(cson_value_object(copy), cson_value_object(source), 0) != cson_OK)
            state.SkipWithError("not combined");
        cson_value_release(copy);
    }
    cson_value_release(source);
    cson_value_release(base);
    state.SetItemsProcessed(state.iterations() * count);
}

void combine_jansson(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    json_t* source = json_loads(flat_object(count, "key").c_str(), 0, nullptr);
    json_t* base = json_loads(flat_object(count / 2, "key").c_str(), 0, nullptr);
    for (auto _ : state) {
        json_t* copy = json_deep_copy(base);
        json_object_update_missing(copy, source);
        json_decref(copy);
    }
    json_decref(source);
    json_decref(base);
    state.SetItemsProcessed(state.iterations() * count);
}

BENCHMARK(combine_quillon)->Name("combine/quillon")->Arg(10)->Arg(60)->Arg(100)->Arg(40000);
BENCHMARK(combine_jansson)->Name("combine/jansson")->Arg(10)->Arg(60)->Arg(100)->Arg(40000);

using Measure = void (*)(benchmark::State&, const std::string&);

struct Contender {
    const char* name;
    Measure measure;
};

constexpr Contender contenders[] = {
    {"read/quillon/", read_quillon},
    {"read/rapidjson/", read_rapidjson},
    {"read/cjson/", read_cjson},
    {"read/jansson/", read_jansson},
    {"read_bytewise/quillon/", read_bytewise},
    {"copy/quillon/", copy_quillon},
    {"write/quillon/", write_quillon},
    {"write/rapidjson/", write_rapidjson},
    {"write/cjson/", write_cjson},
    {"write/jansson/", write_jansson},
};

} // namespace

int main(int argc, char** argv) {
    static const std::vector<Document> documents = make_documents();
    for (const Contender& contender : contenders)
        for (const Document& document : documents)
            benchmark::RegisterBenchmark((contender.name + std::string(document.name)).c_str(),
                                         contender.measure, document.text);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
}
