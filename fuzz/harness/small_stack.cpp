#include "small_stack.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>

namespace fuzz {
namespace {

// One job at a time, handed over under the mutex. A plain pthread (not
// std::thread) because only pthread lets us choose the stack size.
struct Worker {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t wake = PTHREAD_COND_INITIALIZER;
    pthread_cond_t done = PTHREAD_COND_INITIALIZER;
    void (*fn)(void *) = nullptr;
    void *arg = nullptr;
    bool busy = false;
};

Worker g_worker;

void *WorkerMain(void *) {
    pthread_mutex_lock(&g_worker.mutex);
    for (;;) {
        while (!g_worker.busy) pthread_cond_wait(&g_worker.wake, &g_worker.mutex);
        pthread_mutex_unlock(&g_worker.mutex);
        g_worker.fn(g_worker.arg);
        pthread_mutex_lock(&g_worker.mutex);
        g_worker.busy = false;
        pthread_cond_signal(&g_worker.done);
    }
    return nullptr;
}

void StartWorker() {
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    if (pthread_attr_setstacksize(&attr, kWorkStackBytes) != 0) {
        std::fprintf(stderr, "small_stack: cannot set a %zu byte stack\n", kWorkStackBytes);
        std::abort();
    }
    pthread_t thread;
    if (pthread_create(&thread, &attr, WorkerMain, nullptr) != 0) {
        std::fprintf(stderr, "small_stack: cannot start the worker thread\n");
        std::abort();
    }
    pthread_attr_destroy(&attr);
    pthread_detach(thread);
}

}  // namespace

void RunOnSmallStack(void (*fn)(void *), void *arg) {
    static const bool started = (StartWorker(), true);
    (void)started;
    pthread_mutex_lock(&g_worker.mutex);
    g_worker.fn = fn;
    g_worker.arg = arg;
    g_worker.busy = true;
    pthread_cond_signal(&g_worker.wake);
    while (g_worker.busy) pthread_cond_wait(&g_worker.done, &g_worker.mutex);
    pthread_mutex_unlock(&g_worker.mutex);
}

void RunInput(void (*work)(const Input &), const uint8_t *data, size_t size) {
    static const uint8_t kEmpty[1] = {0};
    struct Job {
        void (*work)(const Input &);
        Input input;
    } job{work, {size == 0 ? kEmpty : data, size}};
    RunOnSmallStack(
        [](void *arg) {
            const Job &j = *static_cast<const Job *>(arg);
            j.work(j.input);
        },
        &job);
}

}  // namespace fuzz
