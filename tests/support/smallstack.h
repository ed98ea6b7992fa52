#ifndef SMALLSTACK_H
#define SMALLSTACK_H

#include <gtest/gtest.h>

#include <functional>

#include <pthread.h>

/// The stack that is enough by promise, in bytes.
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t SmallStack = 2048 * 1024; // the sanitizer makes each frame several times as large
#else
constexpr size_t SmallStack = 256 * 1024;
#endif

/// Runs @p task in a thread of its own that has a small stack, and waits for its end.
inline void runWithSmallStack(const std::function<void()>& task)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, SmallStack), 0);
    pthread_t thread{};
    const auto entry = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(
        pthread_create(&thread, &attributes, entry, const_cast<std::function<void()>*>(&task)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

#endif
