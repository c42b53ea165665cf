#include "support/lock_count.h"

#include <dlfcn.h>
#include <pthread.h>

namespace {

thread_local long locks = 0;

}  // namespace

long LockCount() noexcept {
    return locks;
}

#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
namespace {

template <typename Function>
Function* Real(char const* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static auto* const real = Real<int(pthread_mutex_t*)>("pthread_mutex_lock");
    ++locks;
    return real(mutex);
}

extern "C" int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
    static auto* const real = Real<int(pthread_mutex_t*)>("pthread_mutex_trylock");
    ++locks;
    return real(mutex);
}

extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    static auto* const real = Real<int(pthread_cond_t*, pthread_mutex_t*)>("pthread_cond_wait");
    ++locks;
    return real(condition, mutex);
}
#endif
