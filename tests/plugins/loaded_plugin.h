// SPDX-License-Identifier: MIT
// A plug-in's file, loaded with a state of its own, and its table under a contract.
#pragma once

#include "plugins/contracts/contract.h"
#include "quillon/platform/loader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

template <typename Table>
class LoadedPlugin {
public:
    using Parameters = std::vector<std::pair<const char*, const char*>>;

    LoadedPlugin(const std::string& file, const char* connect, const Parameters& parameters)
        : library(quillon::platform::load_library(copy_of(file))) {
        std::filesystem::remove(copy);
        quillon::DSPrefHashMap<void> map;
        for (const auto& [name, value] : parameters)
            map.add(const_cast<char*>(value), quillon::name_hash(name));
        EXPECT_TRUE(function<bool(quillon::DSPrefHashMap<void>*)>("initialize")(&map));
        function<void(void**)>(connect)(reinterpret_cast<void**>(&table));
    }

    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;

    ~LoadedPlugin() {
        function<void()>("shutdown")();
        quillon::platform::release_library(library);
    }

    const Table* operator->() const { return &table; }

private:
    // The loader loads a file once, so each object needs one of its own.
    const std::string& copy_of(const std::string& file) {
        copy = (std::filesystem::temp_directory_path() / "quillon-XXXXXX").string();
        EXPECT_NE(nullptr, mkdtemp(copy.data()));
        std::filesystem::remove(copy);
        std::filesystem::copy(file, copy);
        return copy;
    }

    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(quillon::platform::find_function(library, name));
    }

    std::string copy;
    void* library;
    Table table;
};
