// SPDX-License-Identifier: Apache-2.0
// usage: replay FOLDER... | --random COUNT
// Feeds one fuzz target the files of some folders, of which the first one may not be empty, or random bytes.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "input.h"

int main(int count, char** arguments)
{
    constexpr size_t MAX_RANDOM_SIZE = 600;
    const bool isRandom = count == 3 && std::string(arguments[1]) == "--random";
    unsigned long long inputs = 0;
    for (; isRandom && inputs < std::strtoull(arguments[2], nullptr, 10); ++inputs) {
        std::mt19937_64 random(inputs);
        std::vector<uint8_t> bytes(static_cast<size_t>(random() % MAX_RANDOM_SIZE));
        std::generate(bytes.begin(), bytes.end(), std::ref(random));
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    for (int i = 1; !isRandom && i < count; ++i) {
        std::error_code ignored; // The other folders need not be there.
        std::set<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i], ignored)) {
            files.insert(entry.path());
        }
        for (const auto& path : files) {
            std::printf("%s\n", path.c_str());
            std::fflush(stdout); // Before the input may end the process.
            std::ifstream file(path, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++inputs;
        }
        if (inputs == 0) {
            break;
        }
    }
    std::printf("%llu inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
