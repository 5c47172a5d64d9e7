// SPDX-License-Identifier: Apache-2.0
// usage: replay FOLDER... | --random COUNT
// Feeds one fuzz target what lies in some folders, of which the first one may not be empty, or random bytes.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "input.h"

namespace {

std::vector<std::filesystem::path> FilesIn(const char* folder)
{
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// COUNT inputs, each from a seed of its own.
int FeedRandom(uint64_t count)
{
    constexpr size_t MAX_SIZE = 600;
    for (uint64_t seed = 0; seed < count; ++seed) {
        std::mt19937_64 random(seed);
        std::vector<uint8_t> bytes(random() % MAX_SIZE);
        std::generate(bytes.begin(), bytes.end(), std::ref(random));
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%llu random inputs\n", static_cast<unsigned long long>(count));
    return count > 0 ? 0 : 1;
}

} // namespace

int main(int count, char** arguments)
{
    if (count == 3 && std::string(arguments[1]) == "--random") {
        return FeedRandom(std::strtoull(arguments[2], nullptr, 10));
    }
    size_t inputs = 0;
    for (int i = 1; i < count; ++i) {
        for (const auto& path : FilesIn(arguments[i])) {
            std::printf("%s\n", path.c_str());
            std::fflush(stdout); // It must be told before the input ends the process.
            std::ifstream file(path, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++inputs;
        }
        if (inputs == 0) {
            std::printf("no input in %s\n", arguments[i]);
            return 1;
        }
    }
    return inputs > 0 ? 0 : 1;
}
