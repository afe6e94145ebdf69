#if !defined(_WIN32)

#include "platform/posix/Syscalls.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace TessarkAO {

namespace {

int DefaultOpen(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }

constexpr PosixCallTable kDefaults = {
    &::stat, &DefaultOpen, &::read, &::close, &::mkdir, &::getenv, &::geteuid, &::getpwuid_r,
};

PosixCallTable g_calls = kDefaults;

}  // namespace

PosixCallTable& PosixCalls() noexcept { return g_calls; }

void RestorePosixCalls() noexcept { g_calls = kDefaults; }

}  // namespace TessarkAO

#endif
