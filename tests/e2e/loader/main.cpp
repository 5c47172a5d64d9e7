// SPDX-License-Identifier: Apache-2.0
// usage: loader MODULE
// A program that knows the platform through a module alone, which another thread than the main one loads; the main one
// ends while notices and requests come in.
#include <dlfcn.h>
#include <unistd.h>

#include <thread>

int main(int /* count */, char** arguments)
{
    std::thread([&] { reinterpret_cast<void (*)()>(dlsym(dlopen(arguments[1], RTLD_NOW), "Begin"))(); }).join();
    char byte = 0;
    return static_cast<int>(read(STDIN_FILENO, &byte, 1)); // Once its input ends.
}
