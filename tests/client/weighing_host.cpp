// SPDX-License-Identifier: Apache-2.0
// Makes one call and tells how it ended and how much memory it had in use at most: counted at the
// allocator, so that neither the machine nor a sanitizer changes the figure. Arguments: the worker,
// the limit of the result, and for a worker that repeats: its parts and how often the second comes.
#include <trellant/client/worker_client.h>

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <string>

namespace {

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> most{0};

void add(void* memory) {
    const std::size_t now = inUse += ::malloc_usable_size(memory);
    std::size_t before = most;
    while (before < now && !most.compare_exchange_weak(before, now)) {
    }
}

void* counted(std::size_t size) {
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    add(memory);
    return memory;
}

void release(void* memory) noexcept {
    if (memory != nullptr) {
        inUse -= ::malloc_usable_size(memory);
        std::free(memory);
    }
}

std::string outcomeOf(const trellant::AAFWorkerClient& client,
                      const trellant::AAFWorkerProtocol::Request& request) {
    try {
        return "a result with " + std::to_string(client.run(request).get().diagnostics.size()) +
               " diagnostics";
    } catch (const trellant::AAFWorkerClientError& error) {
        const std::string& text = error.technicalDetail();
        // A long text would only be in the way.
        return text.size() < 200 ? text
                                 : text.substr(0, 20) + " ... " + std::to_string(text.size());
    }
}

}  // namespace

// The linker calls these so (--wrap=realloc). What grows that way is the answer, which is given
// back when the most is known.
extern "C" void* __real_realloc(void* memory, std::size_t size);
extern "C" void* __wrap_realloc(void* memory, std::size_t size);

extern "C" void* __wrap_realloc(void* memory, std::size_t size) {
    const std::size_t before = memory == nullptr ? 0 : ::malloc_usable_size(memory);
    void* const grown = __real_realloc(memory, size);
    if (grown != nullptr) {
        inUse -= before;
        add(grown);
    }
    return grown;
}

void* operator new(std::size_t size) {
    return counted(size);
}
void* operator new[](std::size_t size) {
    return counted(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    release(memory);
}

int main(int count, char** arguments) {
    if (count < 3) {
        return 1;
    }
    trellant::AAFWorkerClient client;
    client.helperURLProvider = [&](const std::string&) { return arguments[1]; };
    client.resultLimit = std::strtoull(arguments[2], nullptr, 10);
    trellant::AAFWorkerProtocol::Request request;
    if (count > 4) {
        request.aafPath = arguments[3];
        request.mediaSearchDirectory = arguments[4];
    }
    const std::string outcome = outcomeOf(client, request);
    std::printf("%zu\n%s\n", most.load(), outcome.c_str());
    return 0;
}
