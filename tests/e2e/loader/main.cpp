// SPDX-License-Identifier: Apache-2.0
// usage: loader MODULE
// A program that knows the platform through a module alone, which another thread than the main one loads; the main one
// ends while notices and requests come in.
#include <dlfcn.h>
#include <unistd.h>

#include <thread>

int main(int /* count */, char** arguments)
{
    std::thread([&] {
        void* const module = dlopen(arguments[1], RTLD_NOW);
        if (module == nullptr) {
            _exit(2);
        }
        reinterpret_cast<void (*)()>(dlsym(module, "Begin"))();
    }).join();
    for (char byte = 0; read(STDIN_FILENO, &byte, 1) > 0;) { // Until it is told to end.
    }
    return 0;
}
